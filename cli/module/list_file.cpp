// SPDX-License-Identifier: Apache-2.0
#include "module/list_file.h"

#include <fmt/format.h>

#include "module/failure.h"
#include "module/input_file.h"

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
