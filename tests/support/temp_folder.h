// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_TESTS_SUPPORT_TEMP_FOLDER_H
#define REELDB_TESTS_SUPPORT_TEMP_FOLDER_H

#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>

namespace reeldb_tests {

/// A folder of the test's own below the system's folder for temporary files. It goes with its owner, and so does
/// everything in it.
class TempFolder {
public:
  TempFolder()
  {
    // The canonical path is the one that messages show.
    std::string name = (std::filesystem::canonical(std::filesystem::temp_directory_path()) / "reeldb-XXXXXX").string();
    if (!::mkdtemp(name.data()))
      throw std::runtime_error(name + ": cannot be made");
    path_ = name;
  }
  ~TempFolder()
  {
    namespace fs = std::filesystem;
    std::error_code error;
    // A test may have taken away the permission to look into a folder.
    fs::permissions(path_, fs::perms::owner_all, fs::perm_options::add, error);
    for (fs::recursive_directory_iterator entry(path_, error), last; !error && entry != last; entry.increment(error))
      if (entry->symlink_status(error).type() == fs::file_type::directory)
        fs::permissions(entry->path(), fs::perms::owner_all, fs::perm_options::add, error);
    fs::remove_all(path_, error);
  }
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;

  const std::filesystem::path& path() const { return path_; }
  std::filesystem::path operator/(std::string_view name) const { return path_ / name; }

  /// Writes a file and the folders above it; returns its path.
  std::string write(std::string_view name, std::string_view bytes) const
  {
    const std::filesystem::path file = path_ / name;
    std::filesystem::create_directories(file.parent_path());
    std::ofstream out(file, std::ios::binary);
    out << bytes << std::flush;
    if (!out)
      throw std::runtime_error(file.string() + ": cannot be written");
    return file.string();
  }

private:
  std::filesystem::path path_;
};

} // namespace reeldb_tests

#endif
