// SPDX-License-Identifier: Apache-2.0
//
// The state of a project: all that it keeps but its history. A project can be made from it.
#ifndef REELDB_APP_STATE_H
#define REELDB_APP_STATE_H

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "app/import.h"
#include "app/list_files.h"
#include "app/session.h"
#include "lists/list.h"

namespace reeldb::app {

/// Unique keys with one text per key. Both may hold any bytes but NUL.
using KeyTexts = std::vector<std::pair<std::string, std::string>>;

/// A reel or a shot, or any other log of the project, as it is stored.
struct LogState {
  std::int64_t number = 0; ///< 1, 2, 3, ... in the order of creation
  std::string id;          ///< the uuid of its Cookie: 32 hexadecimal digits
  std::int64_t tag = 0;    ///< of its Cookie, and so is the kind
  std::string kind;        ///< one character
  std::int64_t type = 0;   ///< 9 a reel, 1 a shot
  bool imported = false;
  bool entireMedium = false;
  std::string name;
  std::string reelType;
  std::int64_t videoChannels = 0;
  std::int64_t audioChannels = 0;
  KeyTexts keys; ///< its configuration, in the order of the store
};

/// An event of a list.
struct EventState {
  std::int64_t shot = 0; ///< the number of its shot's log; 0: it has no source
  lists::Clip clip;      ///< what the list says
};

/// A list that was imported, as the project keeps it.
struct ListState {
  std::int64_t number = 0; ///< 1, 2, 3, ... in the order of the first import
  std::string file;        ///< the name of its file
  std::string title;
  std::string format;  ///< "edl", "ale"
  std::string content; ///< the bytes of its file
  std::vector<EventState> events;
};

struct ProjectState {
  std::string id;                  ///< the project's uuid, as above
  std::int64_t frameRateCode = -1; ///< the code that the project was made with
  std::int64_t outputFrameRateCode = -1;
  KeyTexts options;             ///< by key
  std::vector<LogState> logs;   ///< by number
  std::vector<ListState> lists; ///< likewise
};

/// The state that is stored. REQUIRES: the session has not changed anything.
ProjectState readState(Session& session);

/// Reads the state from a file with the JSON of an export. Throws Error: NotFound, Io, Unreadable.
ProjectState readStateFile(const std::string& path);

/// Makes the project in the facility of the process, with this state and an empty history. Returns the facility's name
/// of its frame rate. Throws Error: Invalid and Refused as makeProject does, Unreadable for a state that no project can
/// have, Io. The project is made completely or not at all.
std::string makeProjectFrom(const ProjectState& state, const std::string& name);

/// Whether the file is the JSON of an export with the state of a project.
bool isState(const ListFile& file);

/// Gives the chosenProject, which must not have had a reel, a shot or a list, the state in the file: all but the name.
/// That is one revision; taking it back leaves the project's id, rate and options. With @p dryRun nothing is stored.
/// Throws Error: Refused if the project has had anything, Unreadable as readStateFile and makeProjectFrom do, and as
/// opening it does. REQUIRES: isState(file); no session is open.
ImportReport importState(const std::optional<std::string>& project, const ListFile& file, bool dryRun);

} // namespace reeldb::app

#endif
