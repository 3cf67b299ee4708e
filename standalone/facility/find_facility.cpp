// SPDX-License-Identifier: Apache-2.0
#include "reelhost/facility.h"

namespace reelhost {

std::optional<std::filesystem::path> findFacility(const std::filesystem::path& start)
{
  std::error_code error;
  for (std::filesystem::path dir = std::filesystem::absolute(start, error);; dir = dir.parent_path()) {
    if (std::filesystem::is_regular_file(dir / "facility.toml", error))
      return dir;
    if (dir == dir.parent_path())
      return {};
  }
}

} // namespace reelhost
