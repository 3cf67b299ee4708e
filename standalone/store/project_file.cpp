// SPDX-License-Identifier: Apache-2.0
#include "store/project_file.h"

#include <cerrno>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "reelhost/display_text.h"
#include "store/file_error.h"

namespace reelhost {

namespace {

std::string messageOf(int error)
{
  return std::generic_category().message(error);
}

/// Why @p path cannot be written; empty if it can. A mode without any write bit counts for root as well, because it was
/// set on purpose.
std::string whyNotWritable(const std::string& path, unsigned mode, const char* withoutWriteBit)
{
  if ((mode & 0222) == 0)
    return withoutWriteBit;
  if (::faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) != 0)
    return messageOf(errno);
  return {};
}

/// Inspects a file that SQLite keeps beside the project. Returns whether it exists.
bool inspectCompanion(const std::filesystem::path& subject, const std::string& path, struct stat& status)
{
  if (::lstat(path.c_str(), &status) != 0)
    return false;
  // Through a link in its place SQLite would write to another file.
  if (!S_ISREG(status.st_mode))
    throw Error(ErrorKind::Unreadable, displayText(subject.native()) + ": damaged (" + displayText(path) + " is " +
                                           base::kindOfFile(status.st_mode) + ")");
  return true;
}

} // namespace

ProjectFile inspectProjectFile(const std::filesystem::path& path)
{
  struct stat status = {};
  if (::stat(path.c_str(), &status) != 0) {
    if (errno == ENOENT || errno == ENOTDIR)
      throw Error(ErrorKind::NotFound, displayText(path.native()) + ": no such project");
    throw hostError(base::FileError(path, "cannot be opened", errno));
  }
  if (!S_ISREG(status.st_mode))
    throw Error(ErrorKind::Unreadable,
                displayText(path.native()) + ": not a project (" + base::kindOfFile(status.st_mode) + ")");
  if (::faccessat(AT_FDCWD, path.c_str(), R_OK, AT_EACCESS) != 0)
    throw hostError(base::FileError(path, "cannot be opened", errno));

  ProjectFile file;
  std::error_code error;
  file.path = std::filesystem::canonical(path, error).native();
  if (error)
    throw hostError(base::FileError(path, "cannot be opened", error.value()));
  if (file.path.size() > longestProjectPath)
    throw Error(ErrorKind::Io, displayText(path.native()) + ": cannot be opened (its full path is longer than " +
                                   std::to_string(longestProjectPath) + " bytes)");
  file.size = static_cast<std::uintmax_t>(status.st_size);
  file.modified = static_cast<std::int64_t>(status.st_mtim.tv_sec) * 1'000'000'000 + status.st_mtim.tv_nsec;

  file.whyNot = whyNotWritable(file.path, status.st_mode, "its mode does not allow writing");
  if (file.whyNot.empty()) {
    const std::string folder = base::folderOf(file.path).native();
    struct stat folderStatus = {};
    if (::stat(folder.c_str(), &folderStatus) != 0)
      throw hostError(base::FileError(path, "cannot be opened", errno));
    file.whyNot = whyNotWritable(folder, folderStatus.st_mode, "the mode of its folder does not allow writing");
  }
  file.writable = file.whyNot.empty();

  struct stat beside = {};
  inspectCompanion(path, file.path + "-journal", beside);
  file.hasLogIndex = inspectCompanion(path, file.path + "-shm", beside);
  if (inspectCompanion(path, file.path + "-wal", beside))
    file.logSize = static_cast<std::uintmax_t>(beside.st_size);
  return file;
}

} // namespace reelhost
