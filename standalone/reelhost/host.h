// SPDX-License-Identifier: Apache-2.0
/// @file
/// What an application does with the standalone host: start it, open a project, import material, commit. Everything the
/// library asks of a host is declared in src/host and provided by the same shared object. Main thread only.
///
/// Operations throw Error; std::bad_alloc passes, and a listener's exceptions pass where this is said. What changes a
/// project for the first time since it was opened, committed or let go by idle takes hold of it, in whatever host
/// operation that comes: it throws Error as Store::begin does, or Busy when another process has committed since the
/// project was read. Without an open project, what needs one throws Error (Refused).
#ifndef REELHOST_HOST_H
#define REELHOST_HOST_H

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "host/cookie.h"
#include "reelhost/error.h"
#include "reelhost/facility.h"
#include "reelhost/material.h"
#include "reelhost/store.h"

namespace reelhost {

/// @name Start-up
/// @{

/// Makes the calling thread the main thread: stores `co_pid() & codes::threadMask` in the library's glib_pid. Until
/// this was called every reel creation is deferred. Where the library is not loaded it stores nothing.
///
/// Gives the calling thread a locale of its own (uselocale): characters and their cases are those of C.UTF-8 from then
/// on, whatever setlocale sets, and the other categories stay as they are now. The library compares identifiers by it.
void startUp();

/// The facility of the process: the one given to useFacility, else the folder in the environment variable
/// REELDB_FACILITY, else none. The library reads its settings while it is loaded; a facility that cannot be read counts
/// as none then, and this function throws what Facility::read threw.
Facility& facility();
/// Makes this the facility of the process. The project that is open stays open, and what the library read while it was
/// loaded stays as it is.
void useFacility(Facility facility);

/// Hands the library's own prints (vorn_printf) to @p sink, which takes each as it may be shown: valid UTF-8 without
/// control characters but the line feed that ends it. An empty sink stands for standard error, where they go at first.
/// What a sink throws passes through the library. What is printed while the library is loaded precedes any call of
/// this.
void printTo(std::function<void(std::string_view)> sink);

/// @}
/// @name Projects
/// @{

/// How long to wait for another process's write lock before saying who holds the project; two seconds at first.
void setBusyTimeout(std::chrono::milliseconds busyTimeout);

/// Opens a project and enters it: listeners hear handleProjectEntry. Another open project is closed first. A project
/// that is opened for reading may be changed, but not committed: that is how a change is tried out. Throws Error as
/// Store::begin does; then no project is open. Exceptions of listeners pass; then it is open.
void openProject(std::unique_ptr<Store> store, Access access);
/// Opens projects/NAME.reels of the facility. Throws also what facility() and Facility::projectFile throw; the project
/// that is open then stays open.
void openProject(const std::string& name, Access access);
/// Leaves the project (listeners hear handleProjectExit) and drops what was not committed, of the facility's state too.
/// Does nothing without one. Exceptions of listeners are swallowed.
void closeProject() noexcept;
bool projectIsOpen();
const ProjectInfo& projectInfo(); ///< as it was when the project was read. REQUIRES: a project is open
Store& projectStore();            ///< where it is kept; belongs to the project. REQUIRES: a project is open

bool hasChanges(); ///< whether commit would store anything
/// Stores all changes as one transaction, then the facility's state file. A project opened for writing may be changed
/// and committed again afterwards. Answers whether anything was stored. Throws Error, ReadOnly when the project was
/// opened for reading; nothing was stored then, and all of it is still there to be committed. What Facility::saveState
/// throws comes when the project is stored.
bool commit();

/// For an application that waits: reads what is not read yet and lets go of the snapshot, or of the right to write, so
/// that other processes are not kept from anything. What was changed stays, in memory. Does nothing without a project.
void idle();
/// Whether another process has committed; if so the project is read anew, and what was not committed is dropped. The
/// application then tells the manager. Throws Error as Store::begin does; the project then stays as it was. False
/// without a project.
bool reloadIfChangedElsewhere();

/// Runs the actions that were deferred until now, in order, on the calling (main) thread; answers how many. Those that
/// are deferred meanwhile wait for the next call. An action's exception passes; the action is gone, and those after it
/// wait.
int runDeferredActions();

/// @}
/// @name Material
/// @{

/// Makes an imported material log and reports it to the listeners as codes::madeOrImported, as a host does when a clip
/// comes in; the library answers by making the reel. Exceptions of listeners pass; the log stays.
Cookie importMaterial(const Material& material);
/// The clip behind a log; empty texts for what it does not hold, and for a log that does not exist.
Material materialOf(const Cookie& log);
/// All logs other than reel logs, in the order of creation; none without a project.
CookieVec allShots();
/// The logs other than reel logs that carry the identifier, the case of ASCII letters aside, in the order of creation.
/// None for an empty identifier, and none without a project. Throws Error (Unreadable, Io, Busy) when they have to be
/// read and cannot be.
CookieVec shotsOf(const std::string& reelId);
/// How many logs other than reel logs carry each identifier, keyed by the identifier with ASCII letters in lower case.
/// Empty without a project.
std::unordered_map<std::string, std::int64_t> shotCounts();

/// @}
/// @name Deletion
/// @{

/// Deletes the logs as one deletion and tells the listeners (handleLogsDeletion). Stored by commit. Logs that do not
/// exist are passed over; answers how many went. Exceptions of listeners pass; the logs are gone.
int deleteLogs(const CookieVec& logs);
/// Brings the last stored deletion back; answers how many logs came. Stored by commit; tells no listener. Throws Error
/// (Refused) while a deletion, an undelete or a compact is not stored yet.
int undelete();
/// Empties the trash for good; answers how many logs go. Stored by commit. Throws as undelete does.
int compact();

/// @}
/// @name Direct changes, as another module of the application would make them
/// @{

/// A new log of any type, outside any library operation: for tests and for applications that keep other logs. Its
/// number, uuid, tag and kind are given to it, whatever they are here. Tells no listener.
Cookie addLog(const StoredLog& log);

/// @}

} // namespace reelhost

#endif
