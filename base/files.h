// SPDX-License-Identifier: Apache-2.0
//
// Files: reading what is a regular file, and writing that survives a power cut. Any thread.
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
  NotFound,   ///< nothing has the name
  Exists,     ///< something has the name already
  NotRegular, ///< a folder, a device, a named pipe, a link that leads to no file
  TooLarge,   ///< more bytes than the caller takes
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
  /// What the system says of the error number @p error.
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

/// A file that goes with its owner, unless keep() was called.
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

/// The folder that @p path lies in; "." when it names none.
inline std::filesystem::path folderOf(const std::filesystem::path& path)
{
  return path.has_parent_path() ? path.parent_path() : std::filesystem::path(".");
}

/// What kind of thing a file mode stands for, in words: "a folder", "a named pipe", ...; empty for a regular file.
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
    throw FileError(FileFault::NotRegular, path, "no regular file", kindOfFile(mode));
}

/// What the system knows of the regular file that @p path leads to.
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

/// The content of @p path, a regular file of at most @p limit bytes; a link to one is followed. Throws FileError:
/// NotFound, NotRegular, TooLarge, System. Never waits for a writer.
inline std::string readRegularFile(const std::filesystem::path& path, std::size_t limit)
{
  const auto tooLarge = [&] {
    return FileError(FileFault::TooLarge, path, "too large", "more than " + std::to_string(limit) + " bytes");
  };
  // open() alone can do something to a device, so stat() comes first; O_NONBLOCK because the file may have been
  // exchanged since.
  if (static_cast<std::uintmax_t>(detail::statusOf(path).st_size) > limit)
    throw tooLarge();
  const FileDescriptor fd(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
  if (!fd.valid())
    throw FileError(path, "cannot be opened", errno);
  std::string content;
  char buffer[65536];
  for (;;) {
    const ssize_t got = ::read(fd.get(), buffer, sizeof buffer);
    if (got < 0 && errno == EINTR)
      continue;
    if (got < 0)
      throw FileError(path, "cannot be read", errno);
    if (got == 0)
      return content;
    content.append(buffer, static_cast<std::size_t>(got));
    if (content.size() > limit) // it has grown
      throw tooLarge();
  }
}

/// Waits until the names in @p folder are on disk. A folder that may be written but not read cannot be waited for.
/// Throws FileError (System).
inline void syncFolder(const std::filesystem::path& folder)
{
  const FileDescriptor fd(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!fd.valid() && errno == EACCES)
    return;
  // EINVAL: the file system keeps no folders that could be synchronised.
  if (!fd.valid() || (::fsync(fd.get()) != 0 && errno != EINVAL))
    throw FileError(folder, "cannot be written", errno);
}

namespace detail {

/// A name beside @p path that nobody else uses, for a file that is to become @p path.
inline std::filesystem::path nameBeside(const std::filesystem::path& path)
{
  constexpr std::size_t mostBytes = 200; // of a name, which may have 255
  std::uint64_t number = 0;
  if (::getentropy(&number, sizeof number) != 0)
    throw FileError(path, "cannot be made", errno);
  char ending[32];
  std::snprintf(ending, sizeof ending, ".new-%016llx", static_cast<unsigned long long>(number));
  return folderOf(path) / ("." + path.filename().native().substr(0, mostBytes) + ending);
}

/// Makes the new file @p place and waits until its content is on disk; no file is left after a throw. A file without
/// @p mode gets the usual permissions. A FileError names @p subject, and says @p cannotBeMade when there can be no
/// file.
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
  if (mode && (status.st_mode & 0777) != *mode) // not every file system lets them be set
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

/// Makes the new file @p path with @p content and waits until it is on disk. Throws FileError: Exists when anything has
/// the name (nothing is overwritten, no link is followed), System; no file is left then.
inline void writeNewFile(const std::filesystem::path& path, std::string_view content)
{
  detail::writeFile(path, content, {}, path, "cannot be made");
}

/// Makes an empty file with the usual permissions under a name that nobody else uses. It lies beside @p path, which it
/// is to become. Throws FileError (System).
inline TemporaryFile newFileBeside(const std::filesystem::path& path)
{
  const std::filesystem::path place = detail::nameBeside(path);
  detail::writeFile(place, {}, {}, path, "cannot be made");
  return TemporaryFile(place);
}

/// Gives a finished file the name @p path, which nothing may have; from then on it stays. Throws FileError: Exists,
/// System.
inline void nameNewFile(TemporaryFile& file, const std::filesystem::path& path)
{
  if (::renameat2(AT_FDCWD, file.path().c_str(), AT_FDCWD, path.c_str(), RENAME_NOREPLACE) == 0) {
    file.keep();
    return;
  }
  // Network file systems do not know that call, but second names; file systems of memory cards the other way round.
  if ((errno == EINVAL || errno == ENOSYS) && ::link(file.path().c_str(), path.c_str()) == 0)
    return;
  if (errno == EEXIST)
    throw FileError(FileFault::Exists, path, "exists already");
  throw FileError(path, "cannot be made", errno);
}

/// What replaceFile does with what has the name already.
enum class IfThere {
  Refuse,      ///< stays: FileError (Exists)
  Replace,     ///< a file is replaced; a link stays, and the file that it leads to is replaced
  ReplaceLink, ///< a file is replaced, and so is a link, whatever it leads to
};

/// Writes the file @p path, whole or not at all: into a new file beside it, which takes the name when everything is on
/// disk. A file that is replaced leaves its permissions to the new one. Throws FileError: Exists, NotRegular when
/// something other than a file has the name or a link leads to none, System. What was there is then as it was, and
/// nothing else is left.
///
/// The new file lies at @p temporary until it takes the name, or under a name that nobody else uses. A caller that
/// names one keeps all others away from it; what a killed process left there is removed.
inline void replaceFile(const std::filesystem::path& path, std::string_view content, IfThere ifThere,
                        const std::filesystem::path& temporary = {})
{
  const bool followsLinks = ifThere != IfThere::ReplaceLink;
  std::filesystem::path target = path;
  std::optional<mode_t> mode; // of the file that is replaced
  struct stat status = {};
  const bool isThere = (followsLinks ? ::stat(path.c_str(), &status) : ::lstat(path.c_str(), &status)) == 0;
  if (isThere) {
    if (!S_ISLNK(status.st_mode)) {
      detail::requireRegular(path, status.st_mode);
      mode = status.st_mode & 0777; // who may not read the old content may not read the new one
    }
    if (ifThere == IfThere::Refuse)
      throw FileError(FileFault::Exists, path, "exists already");
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
