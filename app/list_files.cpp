// SPDX-License-Identifier: Apache-2.0
#include "app/list_files.h"

#include <filesystem>
#include <system_error>
#include <utility>

#include <fmt/format.h>

#include "base/files.h"

namespace reeldb::app {

namespace {

constexpr std::size_t largestList = std::size_t{256} << 20; // a list of a hundred thousand events has some 20 MB

ErrorKind kindFrom(base::FileFault fault)
{
  switch (fault) {
  case base::FileFault::NotFound:
    return ErrorKind::NotFound;
  case base::FileFault::Exists:
    return ErrorKind::Refused;
  case base::FileFault::NotRegular:
  case base::FileFault::TooLarge:
    return ErrorKind::Unreadable;
  case base::FileFault::System:
    return ErrorKind::Io;
  }
  return ErrorKind::Io;
}

/// The file with the list: in a folder of FCPXML that is not the folder itself.
std::string fileOfList(const std::string& path)
{
  namespace fs = std::filesystem;
  const fs::path inner = fs::path(path) / "Info.fcpxml";
  std::error_code ignored; // then the path itself says why it cannot be read
  return fs::is_regular_file(inner, ignored) ? inner.string() : path;
}

} // namespace

std::string readInputFile(const std::string& path, std::size_t largest)
{
  try {
    return base::readRegularFile(path, largest);
  } catch (const base::FileError& error) {
    throw Error(kindFrom(error.fault()), error.what());
  }
}

ListFile readListFile(const std::string& path, const lists::ReadOptions& options)
{
  std::string bytes = readInputFile(fileOfList(path), largestList);
  try {
    lists::List list = lists::read(bytes, options);
    const std::size_t end = path.find_last_not_of('/'); // of a folder
    return {path.substr(0, end + 1), std::move(list), std::move(bytes)};
  } catch (const lists::Error& error) {
    throw Error(ErrorKind::Unreadable, fmt::format("{}: {}", path, error.what()));
  }
}

ListFiles readListFiles(const std::vector<std::string>& paths, const lists::ReadOptions& options)
{
  ListFiles files;
  for (const std::string& path : paths) {
    try {
      files.read.push_back(readListFile(path, options));
    } catch (const Error& error) {
      files.failures.push_back(error);
    }
  }
  return files;
}

void writeOutputFile(const std::string& path, std::string_view bytes, bool replace)
{
  try {
    base::replaceFile(path, bytes, replace ? base::IfThere::Replace : base::IfThere::Refuse);
  } catch (const base::FileError& error) {
    if (error.fault() == base::FileFault::Exists)
      throw Error(ErrorKind::Refused, fmt::format("{} (--force replaces it)", error.what()));
    throw Error(error.fault() == base::FileFault::System ? ErrorKind::Io : ErrorKind::Refused, error.what());
  }
}

} // namespace reeldb::app
