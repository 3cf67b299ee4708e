// SPDX-License-Identifier: Apache-2.0
/// @file
/// How the standalone host fails.
#ifndef REELHOST_ERROR_H
#define REELHOST_ERROR_H

#include <stdexcept>
#include <string>

namespace reelhost {

/// What kind of failure an Error tells of; a command maps it to its exit code.
enum class ErrorKind {
  NotFound,   ///< no such facility, project, file
  Refused,    ///< the request makes no sense as things are (a project of that name exists, say)
  ReadOnly,   ///< the project cannot be written
  Busy,       ///< another process holds the project
  Unreadable, ///< no project, damaged, of a newer version; a configuration file with an error in it
  Io,         ///< the system refused a read or a write (disk full, permission)
};

/// The one exception of the standalone host; std::bad_alloc passes. what() reads "subject: fact (cause)".
class Error : public std::runtime_error {
public:
  Error(ErrorKind kind, const std::string& what) : std::runtime_error(what), kind_(kind) {}
  ErrorKind kind() const { return kind_; }

private:
  ErrorKind kind_;
};

} // namespace reelhost

#endif
