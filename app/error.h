// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_APP_ERROR_H
#define REELDB_APP_ERROR_H

#include <stdexcept>
#include <string>

namespace reeldb::app {

/// Why an operation failed. A face maps it: the command to an exit code, a server to a status.
enum class ErrorKind {
  Invalid,    ///< the request is invalid, whatever the project holds
  NotFound,   ///< the request names something that does not exist
  Refused,    ///< the request is not possible in this state
  ReadOnly,   ///< the project cannot be written
  Busy,       ///< another process holds the project
  Cancelled,  ///< the caller cancelled the operation
  Unreadable, ///< damaged data, data of a newer version, or a file of another kind
  Io,         ///< the system refused a read or a write
  Conflict,   ///< somebody has changed a value meanwhile
};

/// The only exception type of this room's operations, besides std::bad_alloc. After a throw nothing of the operation is
/// stored. what() reads "subject: fact (cause)". It may hold control characters of a name, so a face escapes it.
class Error : public std::runtime_error {
public:
  Error(ErrorKind kind, const std::string& what) : std::runtime_error(what), kind_(kind) {}
  ErrorKind kind() const { return kind_; }

private:
  ErrorKind kind_;
};

} // namespace reeldb::app

#endif
