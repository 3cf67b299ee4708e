// SPDX-License-Identifier: Apache-2.0
#include "module/output.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>

#include "module/display_text.h"

namespace reeldb::cli {

void print(std::string_view text)
{
  std::fwrite(text.data(), 1, text.size(), stdout);
}

void printJson(const Json& value)
{
  print(value.dump(2, ' ', false, Json::error_handler_t::replace) + "\n");
}

void complain(std::string_view message)
{
  const std::string line = "reeldb: " + displayText(message) + "\n";
  std::fflush(stdout);
  std::fwrite(line.data(), 1, line.size(), stderr);
}

bool flushOutput()
{
  if (std::fflush(stdout) == 0 && !std::ferror(stdout))
    return true;
  complain(std::string("standard output: cannot be written (") + std::strerror(errno) + ")");
  return false;
}

} // namespace reeldb::cli
