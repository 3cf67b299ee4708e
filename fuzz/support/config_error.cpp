// SPDX-License-Identifier: Apache-2.0
#include "support/config_error.h"

#include <algorithm>
#include <cstdlib>

#include <utf8.h>

#include "support/check.h"

namespace reeldb_fuzz {

void requirePrintable(const std::string& text, const char* what)
{
  require(utf8::is_valid(text), what, "is no UTF-8", text);
  for (const char32_t point : utf8::utf8to32(text))
    require(point >= 0x20 && (point < 0x7F || point >= 0xA0), what, "holds a control character", text);
}

void requireHelpful(const reelhost::Error& error, const std::string& path, const std::string& bytes)
{
  const std::string text = error.what();
  requirePrintable(text, "error");
  require(error.kind() == reelhost::ErrorKind::Unreadable, "error of another kind:", text);
  require(text.compare(0, path.size(), path) == 0 && text[path.size()] == ':',
          "error does not begin with the file:", text);
  const std::string rest = text.substr(path.size() + 1);
  if (rest.rfind(" too many dots", 0) == 0)
    return;
  const long line = std::strtol(rest.c_str(), nullptr, 10);
  const long lines = 1 + std::count(bytes.begin(), bytes.end(), '\n');
  require(line >= 1 && line <= lines, "error names no line of the file:", text);
}

} // namespace reeldb_fuzz
