// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <charconv>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "reelhost/display_text.h"
#include "store/project_file.h"

namespace reelhost {

namespace {

/// The process that holds a lock on @p length bytes of @p path from @p start on; 0 if it cannot be found.
///
/// Uses the descriptor of SQLite: closing another descriptor of the file would drop all locks of this process on it.
pid_t holderOf(const std::string& path, off_t start, off_t length)
{
  struct stat wanted = {};
  if (::stat(path.c_str(), &wanted) != 0)
    return 0;
  std::error_code error;
  for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd", error)) {
    const std::string name = entry.path().filename().native();
    int fd = -1;
    std::from_chars(name.data(), name.data() + name.size(), fd);
    struct stat status = {};
    if (::fstat(fd, &status) != 0 || status.st_dev != wanted.st_dev || status.st_ino != wanted.st_ino)
      continue;
    struct flock lock = {};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    lock.l_start = start;
    lock.l_len = length;
    if (::fcntl(fd, F_GETLK, &lock) == 0 && lock.l_type != F_UNLCK && lock.l_pid > 0)
      return lock.l_pid;
  }
  return 0;
}

/// The process that holds the write lock of the project; 0 if it cannot be found.
pid_t writer(const std::string& path)
{
  // SQLite locks these bytes for writing: in the index of the write-ahead log if there is one, else in the file itself.
  const pid_t pid = holderOf(path + "-shm", 120, 1);
  return pid != 0 ? pid : holderOf(path, 0x40000000, 2);
}

/// The command line of a process, with the program's name without its folder; empty if it cannot be read.
std::string commandOf(pid_t pid)
{
  std::ifstream file("/proc/" + std::to_string(pid) + "/cmdline", std::ios::binary);
  std::string line(std::istreambuf_iterator<char>(file), {});
  while (!line.empty() && line.back() == '\0')
    line.pop_back();
  const std::size_t folder = line.substr(0, line.find('\0')).rfind('/');
  if (folder != std::string::npos)
    line.erase(0, folder + 1);
  std::replace(line.begin(), line.end(), '\0', ' ');
  constexpr std::size_t longest = 120; // the start of a long list of files is enough
  if (line.size() > longest)
    line = line.substr(0, longest) + "...";
  return displayText(line);
}

} // namespace

bool isBeingWritten(const std::string& absolutePath) noexcept
{
  try {
    return writer(absolutePath) != 0;
  } catch (const std::exception&) { // no memory: as if nobody were writing
    return false;
  }
}

std::string writeLockHolder(const std::string& absolutePath)
{
  const pid_t pid = writer(absolutePath);
  if (pid == 0)
    return {};
  const std::string command = commandOf(pid);
  return "pid " + std::to_string(pid) + (command.empty() ? "" : ", " + command);
}

} // namespace reelhost
