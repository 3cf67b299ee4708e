// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_TESTS_STANDALONE_MODEL_TEMP_FOLDER_H
#define REELDB_TESTS_STANDALONE_MODEL_TEMP_FOLDER_H

#include <stdlib.h>

#include <filesystem>
#include <stdexcept>
#include <string>
#include <system_error>

namespace reeldb_tests {

/// A folder of the test's own; it goes with its owner.
class TempFolder {
public:
  TempFolder()
  {
    std::string name = (std::filesystem::temp_directory_path() / "reeldb-XXXXXX").string();
    if (!::mkdtemp(name.data()))
      throw std::runtime_error(name + ": no folder can be made");
    path_ = name;
  }
  ~TempFolder()
  {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;

  const std::filesystem::path& path() const { return path_; }

private:
  std::filesystem::path path_;
};

} // namespace reeldb_tests

#endif
