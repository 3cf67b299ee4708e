// SPDX-License-Identifier: Apache-2.0
#include "app/list_files.h"

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <utility>

#include <fmt/format.h>
#include <unistd.h>

#include "base/display_text.h"
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

namespace fs = std::filesystem;

/// The file with the list in a folder of FCPXML; empty for anything else.
fs::path innerFile(const fs::path& path)
{
  fs::path inner = path / "Info.fcpxml";
  std::error_code ignored; // then the path itself says why it cannot be read
  return fs::is_regular_file(inner, ignored) ? inner : fs::path();
}

bool isFolderOfFiles(const fs::path& path)
{
  std::error_code ignored; // likewise
  return fs::is_directory(path, ignored) && innerFile(path).empty();
}

/// Appends the paths of the files in the folder, sorted.
void addFilesIn(const fs::path& folder, Folders folders, std::vector<std::string>& files,
                std::vector<UnreadFile>& failures)
{
  const auto fail = [&](const fs::path& path, ErrorKind kind, const std::string& reason) {
    failures.push_back({path.native(), Error(kind, fmt::format("{}: {}", path.native(), reason))});
  };
  std::vector<fs::path> entries;
  std::error_code error;
  for (auto entry = fs::directory_iterator(folder, error); !error && entry != fs::directory_iterator();
       entry.increment(error))
    if (!entry->path().filename().native().starts_with('.'))
      entries.push_back(entry->path());
  if (error)
    return fail(folder, ErrorKind::Io, fmt::format("cannot be read ({})", error.message()));
  std::sort(entries.begin(), entries.end());
  for (const fs::path& entry : entries) {
    std::error_code ignored; // then the file itself cannot be read
    if (!isFolderOfFiles(entry))
      files.push_back(entry.native());
    else if (folders == Folders::AllFiles && fs::is_symlink(entry, ignored))
      fail(entry, ErrorKind::Unreadable, "a link to a folder (name the folder itself)");
    else if (folders == Folders::AllFiles)
      addFilesIn(entry, folders, files, failures);
  }
}

/// The paths with the files of folders in their places. Adds to the failures what cannot be read.
std::vector<std::string> filesOf(const std::vector<std::string>& paths, Folders folders,
                                 std::vector<UnreadFile>& failures)
{
  std::vector<std::string> files;
  for (const std::string& path : paths) {
    if (folders == Folders::NotLists || path == standardInput || !isFolderOfFiles(path)) {
      files.push_back(path);
      continue;
    }
    const std::size_t before = files.size() + failures.size();
    addFilesIn(path, folders, files, failures);
    if (files.size() + failures.size() == before)
      failures.push_back(
          {path, Error(ErrorKind::Unreadable,
                       fmt::format("{}: holds no files{}", path,
                                   folders == Folders::Files ? " (--recursive reads its folders, too)" : ""))});
  }
  return files;
}

std::string readStandardInput()
{
  try {
    return base::readOpenFile(STDIN_FILENO, standardInputName, largestList);
  } catch (const base::FileError& error) {
    throw Error(kindFrom(error.fault()), error.what());
  }
}

/// Adds the lists that JSON holds.
void addLists(const std::vector<lists::InnerList>& inner, const std::string& path, const lists::ReadOptions& options,
              ListFiles& files)
{
  for (const lists::InnerList& each : inner) {
    const std::string name = each.file.empty() ? path : each.file;
    try {
      files.read.push_back({name, lists::read(each.bytes, options), each.bytes});
    } catch (const lists::Error& error) {
      const std::string subject = fmt::format("{}, list {}", path, name);
      files.failures.push_back({subject, Error(ErrorKind::Unreadable, fmt::format("{}: {}", subject, error.what()))});
    }
  }
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

std::string UnreadFile::reason() const
{
  std::string what = error.what();
  for (const std::string& shown : {path, base::displayText(path)})
    if (what.starts_with(shown + ": "))
      return what.substr(shown.size() + 2);
  return what;
}

ListFile readListFile(const std::string& path, const lists::ReadOptions& options)
{
  const bool isInput = path == standardInput;
  const std::size_t end = path.find_last_not_of('/'); // of a folder
  const std::string shown = isInput ? std::string(standardInputName) : path.substr(0, end + 1);
  const fs::path inner = isInput ? fs::path() : innerFile(path);
  std::string bytes = isInput ? readStandardInput() : readInputFile(inner.empty() ? path : inner.native(), largestList);
  try {
    lists::List list = lists::read(bytes, options);
    return {shown, std::move(list), std::move(bytes)};
  } catch (const lists::Error& error) {
    throw Error(ErrorKind::Unreadable, fmt::format("{}: {}", isInput ? shown : path, error.what()));
  }
}

ListFiles readListFiles(const std::vector<std::string>& paths, const lists::ReadOptions& options, Folders folders)
{
  ListFiles files;
  for (const std::string& path : filesOf(paths, folders, files.failures)) {
    try {
      ListFile file = readListFile(path, options);
      const std::vector<lists::InnerList> inner = std::exchange(file.list.lists, {});
      if (inner.empty() || !file.list.clips.empty() || !file.list.reels.empty() || !file.list.rejected.empty())
        files.read.push_back(std::move(file));
      addLists(inner, path, options, files);
    } catch (const Error& error) {
      files.failures.push_back({path == standardInput ? std::string(standardInputName) : path, error});
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
