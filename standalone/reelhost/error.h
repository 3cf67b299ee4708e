// SPDX-License-Identifier: Apache-2.0
/// @file
/// The errors of the standalone host.
#ifndef REELHOST_ERROR_H
#define REELHOST_ERROR_H

#include <stdexcept>
#include <string>

namespace reelhost {

/// The kind of failure that an Error reports; a command maps it to its exit code.
enum class ErrorKind {
  NotFound,   ///< no such facility, project or file
  Refused,    ///< the request is not possible in this state, for example because a project of that name exists
  ReadOnly,   ///< the project cannot be written
  Busy,       ///< another process holds the project
  Unreadable, ///< not a project, damaged, or of a newer version; or a configuration file with an error in it
  Io,         ///< the system refused a read or a write (disk full, permission)
  Conflict,   ///< another process has stored something else meanwhile; a Conflict (reelhost/conflict.h)
};

/// The only exception type of the standalone host, besides std::bad_alloc. what() reads "subject: fact (cause)".
class Error : public std::runtime_error {
public:
  Error(ErrorKind kind, const std::string& what) : std::runtime_error(what), kind_(kind) {}
  ErrorKind kind() const { return kind_; }

private:
  ErrorKind kind_;
};

} // namespace reelhost

#endif
