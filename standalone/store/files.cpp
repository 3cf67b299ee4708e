// SPDX-License-Identifier: Apache-2.0
#include "store/files.h"

#include <cerrno>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "reelhost/display_text.h"

namespace reelhost {

void throwSystemError(ErrorKind kind, const std::filesystem::path& subject, const std::string& fact, int error)
{
  throw Error(kind, displayText(subject.native()) + ": " + fact + " (" + std::generic_category().message(error) + ")");
}

FileDescriptor::~FileDescriptor()
{
  if (fd_ >= 0)
    ::close(fd_);
}

TemporaryFile::~TemporaryFile()
{
  if (!kept_)
    ::unlink(path_.c_str());
}

void writeNewFile(const std::filesystem::path& path, std::string_view content)
{
  const FileDescriptor fd(::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
  if (!fd.valid())
    throwSystemError(errno == EEXIST ? ErrorKind::Refused : ErrorKind::Io, path, "cannot be made", errno);
  TemporaryFile file(path);
  while (!content.empty()) {
    const ssize_t written = ::write(fd.get(), content.data(), content.size());
    if (written < 0 && errno != EINTR)
      throwSystemError(ErrorKind::Io, path, "cannot be written", errno);
    if (written > 0)
      content.remove_prefix(static_cast<std::size_t>(written));
  }
  if (::fsync(fd.get()) != 0)
    throwSystemError(ErrorKind::Io, path, "cannot be written", errno);
  file.keep();
}

void syncFolder(const std::filesystem::path& folder)
{
  const FileDescriptor fd(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  // EINVAL: the file system keeps no folders that could be synchronised.
  if (!fd.valid() || (::fsync(fd.get()) != 0 && errno != EINVAL))
    throwSystemError(ErrorKind::Io, folder, "cannot be written", errno);
}

std::filesystem::path folderOf(const std::filesystem::path& path)
{
  return path.has_parent_path() ? path.parent_path() : std::filesystem::path(".");
}

std::string kindOfFile(unsigned mode)
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

void requireRegularFile(const std::filesystem::path& path)
{
  struct stat status = {};
  if (::stat(path.c_str(), &status) != 0) {
    const bool absent = errno == ENOENT || errno == ENOTDIR;
    throwSystemError(absent ? ErrorKind::NotFound : ErrorKind::Io, path, "cannot be opened", errno);
  }
  if (!S_ISREG(status.st_mode))
    throw Error(ErrorKind::Unreadable,
                displayText(path.native()) + ": no regular file (" + kindOfFile(status.st_mode) + ")");
}

std::string readRegularFile(const std::filesystem::path& path, std::size_t limit)
{
  // Opening alone can do something to a device, so the look comes first; O_NONBLOCK because it may have changed since.
  requireRegularFile(path);
  const FileDescriptor fd(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
  if (!fd.valid())
    throwSystemError(ErrorKind::Io, path, "cannot be opened", errno);
  std::string content;
  char buffer[65536];
  for (;;) {
    const ssize_t got = ::read(fd.get(), buffer, sizeof buffer);
    if (got < 0 && errno == EINTR)
      continue;
    if (got < 0)
      throwSystemError(ErrorKind::Io, path, "cannot be read", errno);
    if (got == 0)
      return content;
    content.append(buffer, static_cast<std::size_t>(got));
    if (content.size() > limit)
      throw Error(ErrorKind::Unreadable,
                  displayText(path.native()) + ": too large (more than " + std::to_string(limit) + " bytes)");
  }
}

} // namespace reelhost
