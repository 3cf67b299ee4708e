// SPDX-License-Identifier: Apache-2.0
//
// The open project of an operation.
#ifndef REELDB_APP_SESSION_H
#define REELDB_APP_SESSION_H

#include <optional>
#include <string>

class ReelDbManager;

namespace reeldb::app {

/// The environment variable that names the project to work on.
inline constexpr const char* projectVariable = "REELDB_PROJECT";

/// The name of the project to work on: @p asked, else the one in projectVariable unless that is empty, else the
/// facility's default. Throws Error (Refused), which lists the existing projects, if there is no default or no project
/// of that name.
std::string chosenProject(const std::optional<std::string>& asked);

enum class Access { Read, Write };

/// Holds a project open while it lives. Its destructor discards uncommitted changes. One session at a time, on the main
/// thread.
class Session {
public:
  /// Opens the chosenProject and enters it. Also throws Error if the project cannot be opened for this access.
  Session(const std::optional<std::string>& project, Access access);
  ~Session();
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  /// The library's manager. It belongs to the process.
  ReelDbManager& manager();

  /// Runs deferred actions and stores all changes as one transaction. Returns whether there was a change to store.
  bool commit();
};

} // namespace reeldb::app

#endif
