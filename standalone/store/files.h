// SPDX-License-Identifier: Apache-2.0
//
// What the stores and the facility share about files: descriptors, reading, and writing that survives a power cut. Any
// thread.
#ifndef REELDB_STORE_FILES_H
#define REELDB_STORE_FILES_H

#include <filesystem>
#include <string>
#include <string_view>

#include "reelhost/error.h"

namespace reelhost {

/// Throws Error of @p kind, "SUBJECT: FACT (text of the errno @p error)".
[[noreturn]] void throwSystemError(ErrorKind kind, const std::filesystem::path& subject, const std::string& fact,
                                   int error);

/// An open file descriptor, closed with its owner.
class FileDescriptor {
public:
  explicit FileDescriptor(int fd) : fd_(fd) {}
  ~FileDescriptor();
  FileDescriptor(const FileDescriptor&) = delete;
  FileDescriptor& operator=(const FileDescriptor&) = delete;
  int get() const { return fd_; }
  bool valid() const { return fd_ >= 0; }

private:
  int fd_;
};

/// A file that goes when its owner goes, unless keep() was called.
class TemporaryFile {
public:
  explicit TemporaryFile(std::filesystem::path path) : path_(std::move(path)) {}
  ~TemporaryFile();
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;
  const std::filesystem::path& path() const { return path_; }
  void keep() { kept_ = true; }

private:
  std::filesystem::path path_;
  bool kept_ = false;
};

/// Makes the new file @p path with @p content and waits until it is on disk. Throws Error: Refused when there is
/// anything of that name (nothing is overwritten, no link is followed), Io; no file is left then.
void writeNewFile(const std::filesystem::path& path, std::string_view content);

/// Waits until the names in @p folder are on disk. Throws Error (Io).
void syncFolder(const std::filesystem::path& folder);

/// The folder that @p path lies in; "." when it names none.
std::filesystem::path folderOf(const std::filesystem::path& path);

/// The whole of @p path, which has to be a regular file of at most @p limit bytes; a link to one is followed. Throws
/// Error: NotFound, Unreadable (a folder, a device or the like, too large), Io. Never waits for a writer.
std::string readRegularFile(const std::filesystem::path& path, std::size_t limit);

/// Throws Error unless @p path leads to a regular file: NotFound, Unreadable, Io. Opens nothing.
void requireRegularFile(const std::filesystem::path& path);

/// What kind of thing a file mode tells of, in words: "a folder", "a named pipe", ...; empty for a regular file.
std::string kindOfFile(unsigned mode);

} // namespace reelhost

#endif
