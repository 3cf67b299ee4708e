// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_STORE_FILE_WATCH_H
#define REELDB_STORE_FILE_WATCH_H

#include <chrono>
#include <string>

#include "reelhost/feed.h"

namespace reelhost {

/// Reports commits to a project file by other processes of this machine, without asking in the meantime.
///
/// The system reports a write to the write-ahead log before the commit can be seen: the writer then waits for the disk,
/// and only after that publishes the commit and releases its lock, of which nothing is reported. So after a report this
/// class waits until no process holds the write lock.
class FileWatch {
public:
  /// @p absolutePath: of the project file, with links resolved. The file may be replaced meanwhile.
  explicit FileWatch(std::string absolutePath);
  ~FileWatch();
  FileWatch(const FileWatch&) = delete;
  FileWatch& operator=(const FileWatch&) = delete;

  int handle() const { return handle_; }                ///< as Feed::waitHandle
  const std::string& whyNot() const { return whyNot_; } ///< as Feed::whyNoWaitHandle
  AskAgain readEvents() noexcept;                       ///< as Feed::readEvents

private:
  bool drain() noexcept;

  const std::string path_, fileName_;
  std::string whyNot_;
  int handle_ = -1;
  bool mayHaveChanged_ = false;
  std::chrono::microseconds pause_{}, waited_{};
};

} // namespace reelhost

#endif
