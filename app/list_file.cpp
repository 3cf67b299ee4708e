// SPDX-License-Identifier: Apache-2.0
#include "app/list_file.h"

#include <fmt/format.h>

#include "line/failure.h"
#include "app/input_file.h"

namespace reeldb::cli {

lists::List readListFile(const std::string& path)
{
  try {
    return lists::read(readInputFile(path));
  } catch (const lists::Error& error) {
    throw Failure(unreadable, fmt::format("{}: {}", path, error.what()));
  }
}

} // namespace reeldb::cli
