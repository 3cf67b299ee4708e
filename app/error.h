// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_APP_ERROR_H
#define REELDB_APP_ERROR_H

#include <stdexcept>
#include <string>

namespace reeldb::app {

/// Why an operation did not do what it was asked to. A face maps it: the command to an exit code, a server to a status.
enum class ErrorKind {
  Invalid,    ///< the request makes no sense, whatever the project holds
  NotFound,   ///< what the request names is not there
  Refused,    ///< the request makes no sense as things are
  ReadOnly,   ///< the project cannot be written
  Busy,       ///< another process holds the project
  Cancelled,  ///< the caller asked for that
  Unreadable, ///< damaged data, data of a newer version, or a file of another kind
  Io,         ///< the system refused a read or a write
};

/// The one exception of this room's operations, besides std::bad_alloc. Nothing of the operation is stored then. what()
/// reads "subject: fact (cause)"; it may hold control characters of what it names, so a face escapes it.
class Error : public std::runtime_error {
public:
  Error(ErrorKind kind, const std::string& what) : std::runtime_error(what), kind_(kind) {}
  ErrorKind kind() const { return kind_; }

private:
  ErrorKind kind_;
};

} // namespace reeldb::app

#endif
