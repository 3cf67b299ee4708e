// SPDX-License-Identifier: Apache-2.0
//
// Files: reading regular files, and writing that survives a power cut. Any thread.
#ifndef REELDB_BASE_FILES_H
#define REELDB_BASE_FILES_H

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "base/display_text.h"

namespace reeldb::base {

/// What went wrong with a file.
enum class FileFault {
  NotFound,   ///< there is no such file
  Exists,     ///< there is a file of that name already
  NotRegular, ///< a folder, a device, a named pipe, or a link that leads to no file
  TooLarge,   ///< more bytes than the caller allows
  System,     ///< the system refused (permission, disk full)
};

/// A failed operation on a file. what() reads "PATH: FACT (CAUSE)", or "PATH: FACT" without a cause.
class FileError : public std::runtime_error {
public:
  FileError(FileFault fault, const std::filesystem::path& path, std::string fact, std::string cause = {})
      : std::runtime_error((path.empty() ? "\"\"" : displayText(path.native())) + ": " + fact +
                           (cause.empty() ? "" : " (" + cause + ")")),
        fault_(fault), fact_(std::move(fact)), cause_(std::move(cause))
  {
  }
  /// A failure of the system; the cause is the system's text for @p error.
  FileError(const std::filesystem::path& path, std::string fact, int error)
      : FileError(FileFault::System, path, std::move(fact), std::generic_category().message(error))
  {
  }
  FileFault fault() const { return fault_; }
  const std::string& fact() const { return fact_; }   ///< "cannot be read"
  const std::string& cause() const { return cause_; } ///< "Permission denied"; may be empty

private:
  FileFault fault_;
  std::string fact_, cause_;
};

/// An open file descriptor, closed with its owner.
class FileDescriptor {
public:
  explicit FileDescriptor(int fd) : fd_(fd) {}
  ~FileDescriptor()
  {
    if (fd_ >= 0)
      ::close(fd_);
  }
  FileDescriptor(const FileDescriptor&) = delete;
  FileDescriptor& operator=(const FileDescriptor&) = delete;
  int get() const { return fd_; }
  bool valid() const { return fd_ >= 0; }

private:
  int fd_;
};

/// A file that the destructor removes unless keep() was called.
class TemporaryFile {
public:
  explicit TemporaryFile(std::filesystem::path path) : path_(std::move(path)) {}
  ~TemporaryFile()
  {
    if (!kept_)
      ::unlink(path_.c_str());
  }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;
  const std::filesystem::path& path() const { return path_; }
  void keep() { kept_ = true; }

private:
  std::filesystem::path path_;
  bool kept_ = false;
};

/// The folder that @p path lies in; "." if the path has no folder.
inline std::filesystem::path folderOf(const std::filesystem::path& path)
{
  return path.has_parent_path() ? path.parent_path() : std::filesystem::path(".");
}

/// The kind of file that a mode describes, in words: "a folder", "a named pipe", ...; empty for a regular file.
inline std::string kindOfFile(mode_t mode)
{
  switch (mode & S_IFMT) {
  case S_IFREG:
    return {};
  case S_IFDIR:
    return "a folder";
  case S_IFIFO:
    return "a named pipe";
  case S_IFSOCK:
    return "a socket";
  case S_IFLNK:
    return "a symbolic link";
  default:
    return "a device";
  }
}

namespace detail {

inline void requireRegular(const std::filesystem::path& path, mode_t mode)
{
  if (!S_ISREG(mode))
    throw FileError(FileFault::NotRegular, path, "not a regular file", kindOfFile(mode));
}

/// The status of the regular file that @p path leads to.
inline struct stat statusOf(const std::filesystem::path& path)
{
  struct stat status = {};
  if (::stat(path.c_str(), &status) != 0) {
    const int error = errno;
    const bool absent = error == ENOENT || error == ENOTDIR;
    throw FileError(absent ? FileFault::NotFound : FileFault::System, path, "cannot be opened",
                    std::generic_category().message(error));
  }
  requireRegular(path, status.st_mode);
  return status;
}

} // namespace detail

/// Throws FileError unless @p path leads to a regular file: NotFound, NotRegular, System. Opens nothing.
inline void requireRegularFile(const std::filesystem::path& path)
{
  detail::statusOf(path);
}

namespace detail {

inline FileError tooLarge(const std::filesystem::path& path, std::size_t limit)
{
  return {FileFault::TooLarge, path, "too large", "more than " + std::to_string(limit) + " bytes"};
}

} // namespace detail

/// The rest of an open file or stream, at most @p limit bytes. Throws FileError, which names @p path: TooLarge, System.
inline std::string readOpenFile(int fd, const std::filesystem::path& path, std::size_t limit)
{
  std::string content;
  char buffer[65536];
  for (;;) {
    const ssize_t got = ::read(fd, buffer, sizeof buffer);
    if (got < 0 && errno == EINTR)
      continue;
    if (got < 0)
      throw FileError(path, "cannot be read", errno);
    if (got == 0)
      return content;
    content.append(buffer, static_cast<std::size_t>(got));
    if (content.size() > limit) // a file may have grown since its size was asked for
      throw detail::tooLarge(path, limit);
  }
}

/// The content of @p path, a regular file of at most @p limit bytes; a link to one is followed. Throws FileError:
/// NotFound, NotRegular, TooLarge, System. Never waits for a writer.
inline std::string readRegularFile(const std::filesystem::path& path, std::size_t limit)
{
  // open() can have side effects on a device, so stat() comes first. O_NONBLOCK: the file may have been swapped in
  // between.
  if (static_cast<std::uintmax_t>(detail::statusOf(path).st_size) > limit)
    throw detail::tooLarge(path, limit);
  const FileDescriptor fd(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
  if (!fd.valid())
    throw FileError(path, "cannot be opened", errno);
  return readOpenFile(fd.get(), path, limit);
}

/// Waits until the names in @p folder are on disk. Returns without waiting if the folder can be written but not read.
/// Throws FileError (System).
inline void syncFolder(const std::filesystem::path& folder)
{
  const FileDescriptor fd(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!fd.valid() && errno == EACCES)
    return;
  // EINVAL: the file system does not synchronise folders.
  if (!fd.valid() || (::fsync(fd.get()) != 0 && errno != EINVAL))
    throw FileError(folder, "cannot be written", errno);
}

namespace detail {

/// An unused name beside @p path, for a file that is renamed to @p path later.
inline std::filesystem::path nameBeside(const std::filesystem::path& path)
{
  constexpr std::size_t mostBytes = 200; // leaves room for the ending: a name has at most 255 bytes
  std::uint64_t number = 0;
  if (::getentropy(&number, sizeof number) != 0)
    throw FileError(path, "cannot be made", errno);
  char ending[32];
  std::snprintf(ending, sizeof ending, ".new-%016llx", static_cast<unsigned long long>(number));
  return folderOf(path) / std::string(".").append(path.filename().native(), 0, mostBytes).append(ending);
}

/// Creates the file @p place and waits until its content is on disk. No file is left after a throw. Without @p mode the
/// file gets the usual permissions. A FileError names @p subject, with the fact @p cannotBeMade if the file cannot be
/// created.
inline void writeFile(const std::filesystem::path& place, std::string_view content, std::optional<mode_t> mode,
                      const std::filesystem::path& subject, const char* cannotBeMade)
{
  constexpr mode_t usual = 0666, own = 0600;
  const FileDescriptor fd(::open(place.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode ? own : usual));
  if (!fd.valid()) {
    const int error = errno;
    throw FileError(error == EEXIST ? FileFault::Exists : FileFault::System, subject, cannotBeMade,
                    std::generic_category().message(error));
  }
  TemporaryFile file(place);
  const auto require = [&](bool done) {
    if (!done)
      throw FileError(subject, "cannot be written", errno);
  };
  struct stat status = {};
  require(::fstat(fd.get(), &status) == 0);
  if (mode && (status.st_mode & 0777) != *mode) // some file systems cannot change permissions
    require(::fchmod(fd.get(), *mode) == 0);
  while (!content.empty()) {
    const ssize_t written = ::write(fd.get(), content.data(), content.size());
    require(written >= 0 || errno == EINTR);
    if (written > 0)
      content.remove_prefix(static_cast<std::size_t>(written));
  }
  require(::fsync(fd.get()) == 0);
  file.keep();
}

} // namespace detail

/// Creates the file @p path with @p content and waits until it is on disk. Throws FileError: Exists if the name is
/// taken (nothing is overwritten, no link is followed), System. No file is left after a throw.
inline void writeNewFile(const std::filesystem::path& path, std::string_view content)
{
  detail::writeFile(path, content, {}, path, "cannot be made");
}

/// Creates an empty file with the usual permissions, under an unused name beside @p path, to be renamed to @p path
/// later. Throws FileError (System).
inline TemporaryFile newFileBeside(const std::filesystem::path& path)
{
  const std::filesystem::path place = detail::nameBeside(path);
  detail::writeFile(place, {}, {}, path, "cannot be made");
  return TemporaryFile(place);
}

/// Renames a finished file to @p path and keeps it. The name must be free. Throws FileError: Exists, System.
inline void nameNewFile(TemporaryFile& file, const std::filesystem::path& path)
{
  if (::renameat2(AT_FDCWD, file.path().c_str(), AT_FDCWD, path.c_str(), RENAME_NOREPLACE) == 0) {
    file.keep();
    return;
  }
  // Network file systems lack renameat2() with RENAME_NOREPLACE but have hard links; file systems of memory cards have
  // it but lack hard links.
  if ((errno == EINVAL || errno == ENOSYS) && ::link(file.path().c_str(), path.c_str()) == 0)
    return;
  if (errno == EEXIST)
    throw FileError(FileFault::Exists, path, "already exists");
  throw FileError(path, "cannot be made", errno);
}

/// What replaceFile does if the name is taken.
enum class IfThere {
  Refuse,      ///< throws FileError (Exists)
  Replace,     ///< replaces a file; keeps a link and replaces the file that it leads to
  ReplaceLink, ///< replaces a file; replaces also a link, whatever it leads to
};

/// Writes the file @p path completely or not at all: writes a new file beside it, and renames that file when its
/// content is on disk. The new file gets the permissions of the file that it replaces. Throws FileError: Exists,
/// NotRegular if @p path is not a file or is a link that leads to no file, System. After a throw the old file is
/// unchanged, and no new file is left.
///
/// Until it is renamed, the new file has the name @p temporary, or an unused name. The caller makes sure that no other
/// process uses @p temporary; a file that a killed process left there is removed.
inline void replaceFile(const std::filesystem::path& path, std::string_view content, IfThere ifThere,
                        const std::filesystem::path& temporary = {})
{
  const bool followsLinks = ifThere != IfThere::ReplaceLink;
  std::filesystem::path target = path;
  std::optional<mode_t> mode; // of the old file
  struct stat status = {};
  const bool isThere = (followsLinks ? ::stat(path.c_str(), &status) : ::lstat(path.c_str(), &status)) == 0;
  if (isThere) {
    if (!S_ISLNK(status.st_mode)) {
      detail::requireRegular(path, status.st_mode);
      mode = status.st_mode & 0777; // the new content is as private as the old one
    }
    if (ifThere == IfThere::Refuse)
      throw FileError(FileFault::Exists, path, "already exists");
    std::error_code error;
    if (followsLinks)
      target = std::filesystem::canonical(path, error);
    if (error)
      throw FileError(path, "cannot be replaced", error.value());
  } else if (::lstat(path.c_str(), &status) == 0) {
    throw FileError(FileFault::NotRegular, path, "a link that leads to no file");
  }
  const char* const failed = isThere ? "cannot be replaced" : "cannot be made";
  const std::filesystem::path place = temporary.empty() ? detail::nameBeside(target) : temporary;
  if (!temporary.empty())
    ::unlink(place.c_str());
  detail::writeFile(place, content, mode, path, failed);
  TemporaryFile file(place);
  if (ifThere == IfThere::Refuse)
    nameNewFile(file, path);
  else if (::rename(place.c_str(), target.c_str()) == 0)
    file.keep();
  else
    throw FileError(path, failed, errno);
  syncFolder(folderOf(target));
}

} // namespace reeldb::base

#endif
