// SPDX-License-Identifier: Apache-2.0
//
// Facilities and their projects.
#ifndef REELDB_APP_PROJECTS_H
#define REELDB_APP_PROJECTS_H

#include <optional>
#include <string>
#include <vector>

#include "app/session.h"
#include "lists/frame_rate.h"

namespace reeldb::app {

/// The default frame rate of a new project, as the facility names it.
inline constexpr const char* usualFrameRate = "25";

struct NewFacilityReport {
  std::string project; ///< the first project; empty if facility.toml names no default project
  std::string rate;    ///< its frame rate
};

/// Creates a facility in the folder, completely or not at all: configuration, reel types, label maps and a first
/// project of this frame rate, as in makeProject(). Overwrites nothing. Throws Error: Invalid for a rate that
/// facilities do not have, Refused if one of its files already exists, Io.
NewFacilityReport makeFacility(const std::string& folder, const std::string& rate = usualFrameRate);

/// Creates the project in the facility of the process, with everything that entering it would otherwise store, so that
/// a reader never changes a new project. The rate is a name or a code of the facility, or another way to write the rate
/// that a name means ("23.976" for "23.98"). Returns the facility's name of it. Throws Error: Invalid for a rate that
/// the facility does not know and for a name that cannot be shown, Refused for a name that is not a plain
/// file name or is taken, Io.
std::string makeProject(const std::string& name, const std::string& rate);

/// The facility's name of a frame rate code, or the code itself.
std::string frameRateName(int code);

/// The frame rate of a project, or how it was changed.
struct ProjectRate {
  std::string project;
  std::string rate; ///< the facility's name of it
  int rateCode = -1;
  std::string before; ///< its rate before the change; the same if it was not changed
  bool stored = false;
};

ProjectRate rateOf(Session& session);

/// Gives the project this rate, as in makeProject(), and stores that. Timecodes, shots and lists stay as they are.
/// Throws Error (Invalid) for a rate that the facility does not know. REQUIRES: a session for writing.
ProjectRate changeRate(Session& session, const std::string& rate);

/// The frame rate of the open project. Empty if the facility has no name for it that is a known rate.
std::optional<lists::FrameRate> projectRate();

struct FrameRate {
  std::string name;
  int code = -1;
};

/// The frame rates that the facility knows, in the order of its file; without a facility, those that a new one has.
std::vector<FrameRate> frameRates();

struct Project {
  std::string name;
  bool isDefault = false;
  std::string rate;  ///< the facility's name of its frame rate
  int rateCode = -1; ///< the code in its file
  std::string fault; ///< why it cannot be read; if set, the rate is not known
};

/// The projects of the facility, by name. A project that cannot be read has a fault.
std::vector<Project> listProjects();

/// The names of the facility's projects, sorted. No file is read.
std::vector<std::string> projectNames();

/// The name of the facility's default project; empty if it has no default.
std::string defaultProject();

struct ProjectCheck {
  std::string project;
  std::vector<std::string> problems; ///< one line per problem; empty if the project is sound
};

/// Reads the whole file of the project. Changes nothing. Throws Error if it cannot be read at all.
ProjectCheck checkProject(const std::optional<std::string>& project);

struct Compacted {
  int gone = 0;                      ///< the number of deleted reels and shots
  int lists = 0;                     ///< the number of removed lists
  std::optional<int> revisions = {}; ///< the number of forgotten revisions, if history was to be forgotten
};

/// Empties the trash for good and stores that. REQUIRES: a session for writing.
Compacted compactProject(Session& session);

/// Forgets the history before a revision, given by its number, or before the first revision of a day ("2026-11-01", by
/// the clock of this place) or of a later one, with the deleted logs that only the forgotten part has; stores that and
/// gives the space back. If that last step fails, notice reports it. Throws Error: NotFound if the number is above the
/// one of the next revision, Invalid for anything else, Refused if the project keeps no history.
/// REQUIRES: a session for writing.
Compacted forgetHistory(Session& session, const std::string& before);

struct Backup {
  std::string project, file;
};

/// Copies the project as its last commit left it to a new file, while others read and write it. Throws Error: Refused
/// if the file exists, Io.
Backup backUpProject(const std::optional<std::string>& project, const std::string& file);

} // namespace reeldb::app

#endif
