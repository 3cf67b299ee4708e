// SPDX-License-Identifier: Apache-2.0
#include "text/output.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include <fmt/format.h>

#include "base/display_text.h"
#include "text/terminal.h"

namespace reeldb::cli {

namespace {

bool stored = false;
int failure = 0; ///< the first error of a write to standard output; 0 if there was none
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

} // namespace

void print(std::string_view text)
{
  if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size())
    noteFailure();
}

void printBytes(std::string_view bytes)
{
  if (!isTerminal(stdout))
    return print(bytes);
  for (std::size_t at = 0; at < bytes.size();) {
    const std::size_t end = std::min(bytes.find('\n', at), bytes.size());
    print(base::displayText(bytes.substr(at, end - at)) + "\n");
    at = end + 1;
  }
}

void complain(std::string_view message)
{
  const std::string line = "reeldb: " + base::displayText(message) + "\n";
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
                         stored ? "; the changes are stored" : ""));
  }
  return failure == 0;
}

} // namespace reeldb::cli
