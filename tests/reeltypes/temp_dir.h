// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_TESTS_REELTYPES_TEMP_DIR_H
#define REELDB_TESTS_REELTYPES_TEMP_DIR_H

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>

namespace reeldb_tests {

/// A folder of its own, gone with everything in it when this ends.
class TempDir {
public:
  TempDir()
  {
    std::string name = (std::filesystem::temp_directory_path() / "reeldb-XXXXXX").string();
    if (!mkdtemp(name.data()))
      throw std::runtime_error(name + ": cannot be made");
    path_ = name;
  }
  ~TempDir()
  {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;

  const std::filesystem::path& path() const { return path_; }

  /// Writes a file, with the folders above it, and gives its path.
  std::string write(const std::string& name, const std::string& bytes) const
  {
    const std::filesystem::path file = path_ / name;
    std::filesystem::create_directories(file.parent_path());
    std::ofstream out(file, std::ios::binary);
    out << bytes;
    out.close();
    if (!out)
      throw std::runtime_error(file.string() + ": cannot be written");
    return file.string();
  }

private:
  std::filesystem::path path_;
};

} // namespace reeldb_tests

#endif
