// SPDX-License-Identifier: Apache-2.0
#include "text/terminal.h"

#include <cstdlib>
#include <string_view>
#include <sys/ioctl.h>
#include <unistd.h>

namespace reeldb::cli {

namespace {

constexpr std::size_t usualColumns = 80;

} // namespace

bool isTerminal(std::FILE* file)
{
  return isatty(fileno(file)) != 0;
}

bool isCapableTerminal(std::FILE* file)
{
  const char* kind = std::getenv("TERM");
  return isTerminal(file) && kind && *kind && std::string_view(kind) != "dumb";
}

bool showsColours(std::FILE* file)
{
  const char* none = std::getenv("NO_COLOR");
  return isCapableTerminal(file) && !(none && *none);
}

std::optional<std::size_t> terminalColumns(std::FILE* file)
{
  if (!isTerminal(file))
    return std::nullopt;
  winsize size{};
  if (ioctl(fileno(file), TIOCGWINSZ, &size) != 0 || size.ws_col == 0)
    return usualColumns;
  return size.ws_col;
}

std::size_t textColumns(std::FILE* file)
{
  constexpr std::size_t columnsOfFiles = 100;
  return terminalColumns(file).value_or(columnsOfFiles);
}

} // namespace reeldb::cli
