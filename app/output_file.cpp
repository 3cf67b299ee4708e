// SPDX-License-Identifier: Apache-2.0
#include "app/output_file.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fmt/format.h>

#include "line/failure.h"

namespace reeldb::cli {

namespace {

namespace fs = std::filesystem;

[[noreturn]] void fail(const std::string& path, int error)
{
  throw Failure(unreadable,
                fmt::format("{}: cannot be written ({})", path.empty() ? "\"\"" : path, std::strerror(error)));
}

[[noreturn]] void refuse(const std::string& path, const std::string& fact)
{
  throw Failure(refused, fmt::format("{}: {}", path, fact));
}

/// The permissions of a file that is made without others being asked for.
mode_t usualMode()
{
  const mode_t mask = umask(0);
  umask(mask);
  constexpr mode_t everybody = 0666;
  return everybody & ~mask;
}

/// A file of a name that nobody has; gone again unless it is given another one.
class NewFile {
public:
  explicit NewFile(const std::string& beside) : name_(beside + ".XXXXXX"), number_(mkstemp(name_.data())) {}
  ~NewFile()
  {
    if (number_ < 0)
      return;
    close(number_);
    if (!named_)
      unlink(name_.c_str());
  }
  NewFile(const NewFile&) = delete;
  NewFile& operator=(const NewFile&) = delete;

  explicit operator bool() const { return number_ >= 0; }

  bool write(std::string_view bytes, mode_t mode)
  {
    while (!bytes.empty()) {
      const ssize_t count = ::write(number_, bytes.data(), bytes.size());
      if (count < 0 && errno != EINTR)
        return false;
      bytes.remove_prefix(count < 0 ? 0 : static_cast<std::size_t>(count));
    }
    return fchmod(number_, mode) == 0 && fsync(number_) == 0;
  }

  /// Takes the name; one that is taken only when it is to be replaced.
  bool takeName(const std::string& path, bool replace)
  {
    if (replace) {
      named_ = rename(name_.c_str(), path.c_str()) == 0;
      return named_;
    }
    named_ = renameat2(AT_FDCWD, name_.c_str(), AT_FDCWD, path.c_str(), RENAME_NOREPLACE) == 0;
    // Network file systems do not know that call, but links; file systems of memory cards the other way round.
    return named_ || (errno == EINVAL && link(name_.c_str(), path.c_str()) == 0);
  }

private:
  std::string name_;
  int number_;
  bool named_ = false;
};

} // namespace

void writeOutputFile(const std::string& path, std::string_view bytes, bool replace)
{
  const std::string taken = "exists already (--force replaces it)";
  std::string target = path;
  mode_t mode = usualMode();
  struct stat status {};
  if (stat(path.c_str(), &status) == 0) {
    if (S_ISDIR(status.st_mode))
      refuse(path, "a folder");
    if (!S_ISREG(status.st_mode))
      refuse(path, "no regular file");
    if (!replace)
      refuse(path, taken);
    std::error_code error;
    target = fs::canonical(path, error).string(); // a link stays, and what it names is replaced
    if (error)
      fail(path, error.value());
    mode = status.st_mode & 0777; // who may not read what was there may not read what comes in its place
  } else if (lstat(path.c_str(), &status) == 0) {
    refuse(path, "a link that leads to no file"); // nothing to replace, and the link is not ours to take away
  }
  NewFile file(target);
  if (!file || !file.write(bytes, mode))
    fail(path, errno);
  if (!file.takeName(target, replace)) {
    if (errno == EEXIST)
      refuse(path, taken);
    fail(path, errno);
  }
}

} // namespace reeldb::cli
