// SPDX-License-Identifier: Apache-2.0
//
// A command at work on a project.
#ifndef REELDB_CLI_SESSION_H
#define REELDB_CLI_SESSION_H

#include <string>

#include "ReelDbManager.h"
#include "line/command_line.h"
#include "reelhost/host.h"

namespace reeldb::cli {

/// The facility of the process. Throws Failure when there is none, reelhost::Error when it is bad.
reelhost::Facility& requireFacility();

/// The name of the project to work on: chosen with -p, else the facility's default. Throws Failure, which lists the
/// projects there are, when it names none or one that is not there.
std::string requireProject(const Globals& globals);

/// Has the project open from its beginning to its end. What was not committed is dropped.
class Session {
public:
  Session(const Globals& globals, reelhost::Access access);
  ~Session();
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  ReelDbManager& manager() { return *ReelDbManager::theReelDbManager(); }

  /// The record of a reel, letter case aside. Throws Failure when there is no such reel; it names those that may have
  /// been meant.
  ReelDbRec requireReel(const std::string& id);

  /// Stores everything. Answers whether there was anything to store.
  bool commit();
};

} // namespace reeldb::cli

#endif
