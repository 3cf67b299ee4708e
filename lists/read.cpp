// SPDX-License-Identifier: Apache-2.0
#include <string>

#include "lists/ale.h"
#include "lists/detect.h"
#include "lists/edl.h"
#include "lists/encoding.h"
#include "lists/list.h"
#include "lists/text.h"

namespace reeldb::lists {

std::optional<Format> detect(std::string_view bytes)
{
  return detectText(decode(bytes));
}

List read(std::string_view bytes)
{
  const std::string text = decode(bytes);
  if (trim(text).empty())
    throw Error("holds no text");
  const std::optional<Format> format = detectText(text);
  if (format == Format::Edl)
    return readEdl(text);
  if (format == Format::Ale)
    return readAle(text);
  if (isUnmarkedUtf16(bytes))
    throw Error("UTF-16 without a byte order mark (save it as UTF-8)");
  const bool binary = text.find('\0') != std::string::npos;
  throw Error(binary ? "neither a cut list (EDL) nor a log file (ALE) (it holds binary data)"
                     : "neither a cut list (EDL) nor a log file (ALE) (it has no event line and no Heading or Column)");
}

} // namespace reeldb::lists
