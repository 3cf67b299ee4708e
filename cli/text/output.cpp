// SPDX-License-Identifier: Apache-2.0
#include "text/output.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

#include <fmt/format.h>
#include <utf8.h>

#include "text/display_text.h"

namespace reeldb::cli {

namespace {

bool stored = false;
int failure = 0; ///< why standard output did not take something: the first cause
bool told = false;

void noteFailure()
{
  if (failure == 0)
    failure = errno;
}

void flush()
{
  if (std::fflush(stdout) != 0)
    noteFailure();
}

std::string dumped(const Json& value, int indent)
{
  const std::string text = value.dump(indent, ' ', false, Json::error_handler_t::replace);
  std::string result;
  result.reserve(text.size() + 1);
  for (auto at = text.begin(); at != text.end();) {
    const auto start = at;
    // Below 0x7F stands what the dump has escaped itself, and its own line ends.
    if (const char32_t c = utf8::next(at, text.end()); c >= 0x7F && reelhost::isShownEscaped(c))
      result += fmt::format("\\u{:04x}", static_cast<unsigned>(c));
    else
      result.append(start, at);
  }
  return result += '\n';
}

} // namespace

void print(std::string_view text)
{
  if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size())
    noteFailure();
}

std::string jsonText(const Json& value)
{
  return dumped(value, 2);
}

std::string jsonLine(const Json& value)
{
  return dumped(value, -1);
}

void printJson(const Json& value)
{
  print(jsonText(value));
}

void complain(std::string_view message)
{
  const std::string line = "reeldb: " + displayText(message) + "\n";
  flush();
  std::fwrite(line.data(), 1, line.size(), stderr);
}

void changesAreStored()
{
  stored = true;
}

bool flushOutput()
{
  flush();
  if (failure != 0 && !told) {
    told = true;
    complain(fmt::format("standard output: cannot be written ({}{})", std::strerror(failure),
                         stored ? "; the changes are stored all the same" : ""));
  }
  return failure == 0;
}

} // namespace reeldb::cli
