// SPDX-License-Identifier: Apache-2.0
#include "app/input_file.h"

#include <cerrno>
#include <cstddef>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fmt/format.h>

#include "line/failure.h"

namespace reeldb::cli {

namespace {

constexpr off_t largest = off_t{256} << 20; // a list of a hundred thousand events has some twenty megabytes

class Descriptor {
public:
  explicit Descriptor(const std::string& path)
      : number_(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC))
  {
  }
  ~Descriptor()
  {
    if (number_ >= 0)
      close(number_);
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  operator int() const { return number_; }

private:
  int number_;
};

[[noreturn]] void fail(const std::string& path, const std::string& cause, ExitCode code = unreadable)
{
  throw Failure(code, fmt::format("{}: cannot be read ({})", path.empty() ? "\"\"" : path, cause));
}

} // namespace

std::string readInputFile(const std::string& path)
{
  // Opening alone can do something to a device, so the look comes first; O_NONBLOCK because it may have changed since.
  struct stat status {};
  if (stat(path.c_str(), &status) != 0)
    fail(path, std::strerror(errno), errno == ENOENT ? refused : unreadable);
  if (!S_ISREG(status.st_mode))
    fail(path, S_ISDIR(status.st_mode) ? "a folder" : "no regular file");
  if (status.st_size > largest)
    fail(path, fmt::format("{} bytes are too many for a list", status.st_size));
  const Descriptor file(path);
  if (file < 0)
    fail(path, std::strerror(errno));
  std::string bytes;
  char buffer[1 << 16];
  for (;;) {
    const ssize_t count = read(file, buffer, sizeof buffer);
    if (count == 0)
      return bytes;
    if (count < 0 && errno != EINTR)
      fail(path, std::strerror(errno));
    if (count > 0)
      bytes.append(buffer, static_cast<std::size_t>(count));
    if (bytes.size() > static_cast<std::size_t>(largest))
      fail(path, "too long for a list");
  }
}

} // namespace reeldb::cli
