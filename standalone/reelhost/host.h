// SPDX-License-Identifier: Apache-2.0
//
// What an application does with the standalone host: start it, open a project, import material, commit. Everything the
// library asks of a host is declared in src/host and provided by the same shared object. Main thread only.
#ifndef REELHOST_HOST_H
#define REELHOST_HOST_H

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "host/cookie.h"
#include "reelhost/error.h"
#include "reelhost/facility.h"
#include "reelhost/store.h"

namespace reelhost {

// --- Start-up
// ----------------------------------------------------------------------------------------------------------

/// Makes the calling thread the main thread: stores co_pid() & 0xFFFF in the library's glib_pid. Until this was called
/// every reel creation is deferred.
void startUp();

/// The facility of the process: the one given to useFacility, else the folder in the environment variable
/// REELDB_FACILITY, else none. Throws Error when its facility.toml is bad. The library reads its settings while it is
/// loaded; a facility that cannot be read then counts as none, and this is where the error is told.
Facility& facility();
void useFacility(Facility facility);

// --- Projects
// ----------------------------------------------------------------------------------------------------------

/// How long a command waits for another process's write lock before it says who holds the project.
void setPatience(std::chrono::milliseconds patience);

/// Opens a project and enters it: listeners hear handleProjectEntry. Another open project is closed first.
/// Throws Error as Store::begin does; then no project is open.
void openProject(std::unique_ptr<Store> store, Access access);
/// Opens projects/NAME.reels of the facility.
void openProject(const std::string& name, Access access);
/// Leaves the project (listeners hear handleProjectExit) and drops what was not committed. Does nothing without one.
void closeProject() noexcept;
bool projectIsOpen();
const ProjectInfo& projectInfo(); ///< REQUIRES: a project is open
Store& projectStore();            ///< REQUIRES: a project is open

bool hasChanges(); ///< whether commit would store anything
/// Stores all changes as one transaction, then the facility's state file. A project opened for writing may be changed
/// and committed again afterwards. Answers whether anything was stored. Throws Error; then nothing was stored.
bool commit();

/// For an application that waits: lets go of the snapshot, so that other processes are not kept from anything.
void idle();
/// Whether another process has committed; if so the project is read anew. The application then tells the manager.
bool reloadIfChangedElsewhere();

/// Runs the actions that were deferred until now, in order, on the calling (main) thread; answers how many.
int runDeferredActions();

// --- Material
// ----------------------------------------------------------------------------------------------------------

/// A clip of imported material: one shot. All texts UTF-8; timecodes as written.
struct Material {
  std::string reel; ///< reel identifier; empty: none
  std::string name; ///< clip name
  std::string sourceFile, sourceIn, sourceOut, recordIn, recordOut, tracks;
  std::string aliases; ///< other names of the reel, one a line
  int videoChannels = 0, audioChannels = 0;
};

/// Makes an imported material log and reports it to the listeners as modification 59, as a host does when a clip comes
/// in; the library answers by making the reel. Exceptions of listeners pass; the log stays.
Cookie importMaterial(const Material& material);
/// The clip behind a log; empty texts for what it does not hold.
Material materialOf(const Cookie& log);
/// All logs other than reel logs, in the order of creation.
CookieVec allShots();
/// How many logs other than reel logs carry each identifier, keyed by the identifier with ASCII letters in lower case.
std::unordered_map<std::string, std::int64_t> shotCounts();

// --- Deletion
// ----------------------------------------------------------------------------------------------------------

/// Deletes the logs as one deletion and tells the listeners (handleLogsDeletion). Stored by commit. Logs that do not
/// exist are passed over; answers how many went.
int deleteLogs(const CookieVec& logs);
int undelete(); ///< brings the last stored deletion back; answers how many logs came. Stored by commit.
int compact();  ///< empties the bin for good; answers how many logs went. Stored by commit.

// --- Direct changes, as another module of the application would make them
// ----------------------------------------------

/// A new log of any type, outside any library operation: for tests and for applications that keep other logs.
Cookie addLog(const StoredLog& log);

} // namespace reelhost

#endif
