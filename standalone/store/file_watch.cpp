// SPDX-License-Identifier: Apache-2.0
#include "store/file_watch.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <iterator>
#include <system_error>

#include <linux/magic.h>
#include <sys/inotify.h>
#include <sys/vfs.h>
#include <unistd.h>

#include "reelhost/display_text.h"
#include "store/project_file.h"

namespace reelhost {

namespace {

using std::chrono::microseconds;

// Closing a file and changes of its attributes are not asked for: every reader of the project causes them.
constexpr std::uint32_t eventsOfInterest = IN_MODIFY | IN_CREATE | IN_DELETE | IN_MOVED_TO | IN_MOVED_FROM;

// While another process writes: the first pause, the longest one within the first second, and the longest one.
constexpr microseconds firstPause{200}, shortPause{10'000}, longPause{200'000}, firstSecond{1'000'000};

constexpr long smb2Magic = 0xFE534D42, cifsMagic = 0xFF534D42, nineMagic = 0x01021997, fuseMagic = 0x65735546;

/// Whether other machines may write to the folder, which this one does not report.
bool mayBeShared(const std::string& folder)
{
  struct statfs status = {};
  if (::statfs(folder.c_str(), &status) != 0)
    return false;
  constexpr long shared[] = {NFS_SUPER_MAGIC, SMB_SUPER_MAGIC, smb2Magic, cifsMagic, nineMagic, fuseMagic};
  const long type = static_cast<long>(status.f_type) & 0xFFFFFFFF;
  return std::find(std::begin(shared), std::end(shared), type) != std::end(shared);
}

} // namespace

FileWatch::FileWatch(std::string absolutePath)
    : path_(std::move(absolutePath)), fileName_(std::filesystem::path(path_).filename().native())
{
  const std::string folder = std::filesystem::path(path_).parent_path().native();
  if (mayBeShared(folder)) {
    whyNot_ = displayText(folder) + ": changes by other machines are not reported (a network or user file system)";
    return;
  }
  handle_ = ::inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
  if (handle_ >= 0 && ::inotify_add_watch(handle_, folder.c_str(), eventsOfInterest) >= 0)
    return;
  whyNot_ = displayText(folder) + ": cannot be watched (" + std::generic_category().message(errno) + ")";
  if (handle_ >= 0)
    ::close(handle_);
  handle_ = -1;
}

FileWatch::~FileWatch()
{
  if (handle_ >= 0)
    ::close(handle_);
}

/// Reads all events. Returns whether one was of the project.
bool FileWatch::drain() noexcept
{
  bool found = false;
  alignas(inotify_event) char events[4096];
  for (;;) {
    const ssize_t size = ::read(handle_, events, sizeof events);
    if (size < 0 && errno == EINTR)
      continue;
    if (size <= 0)
      return found;
    for (const char* at = events; at < events + size;) {
      const auto* const event = reinterpret_cast<const inotify_event*>(at);
      const std::string_view name = event->len == 0 ? std::string_view() : std::string_view(event->name);
      const bool isOfTheProject = name.substr(0, fileName_.size()) == fileName_ &&
                                  (name.size() == fileName_.size() || name.substr(fileName_.size()) == "-wal");
      if (isOfTheProject || (event->mask & (IN_Q_OVERFLOW | IN_IGNORED)) != 0)
        found = true;
      at += sizeof(inotify_event) + event->len;
    }
  }
}

AskAgain FileWatch::readEvents() noexcept
{
  if (handle_ >= 0 && drain())
    mayHaveChanged_ = true;
  if (!mayHaveChanged_)
    return std::nullopt;
  if (!isBeingWritten(path_)) {
    mayHaveChanged_ = false;
    pause_ = waited_ = {};
    return microseconds(0);
  }
  const microseconds longest = waited_ < firstSecond ? shortPause : longPause;
  pause_ = std::clamp(2 * pause_, firstPause, longest);
  waited_ += pause_;
  return pause_;
}

} // namespace reelhost
