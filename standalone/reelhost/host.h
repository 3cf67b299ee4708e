// SPDX-License-Identifier: Apache-2.0
/// @file
/// The operations of the standalone host for an application: start it, open a project, import material, commit. The
/// operations that the library calls are declared in host/*.h; the same shared object provides them. Main thread only.
///
/// Operations throw Error and std::bad_alloc. Exceptions of listeners pass through where a comment says so. The first
/// change to a project since it was opened, since a commit or since idle locks the project for writing, in whatever
/// host operation it happens. That operation throws Error as Store::begin does, or Busy if another process has
/// committed since the project was read: apply that first (applyChangesFromElsewhere). An operation that needs an open
/// project throws Error (Refused) without one.
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

/// Makes the calling thread the main thread: stores `co_pid() & codes::threadMask` in the library's glib_pid. Before
/// this call every reel creation is deferred. Stores nothing if the library is not loaded.
///
/// Gives the calling thread a locale of its own (uselocale): characters and their cases are those of C.UTF-8 from then
/// on, whatever setlocale sets, and the other categories stay as they are now. The library compares identifiers by it.
void startUp();

/// The facility of the process: the one given to useFacility, else the folder in the environment variable
/// REELDB_FACILITY, else no facility. The library reads its settings while it is loaded. A facility that cannot be read
/// is then treated as no facility, and this function throws the Error of Facility::read.
Facility& facility();
/// Makes this the facility of the process. An open project stays open, and the settings that the library read while it
/// was loaded do not change.
void useFacility(Facility facility);

/// Sends the library's prints (vorn_printf) to @p sink instead of standard error. An empty sink restores standard
/// error. The sink gets each print as valid UTF-8 without control characters, except the line feed at its end.
/// Exceptions of the sink pass through the library. Prints made while the library is loaded come before any call of
/// this function.
void printTo(std::function<void(std::string_view)> sink);

/// Names the program ("reeldb 14.0.0.0") and the words of its command line in the history of every project that it
/// changes from now on. Without this call the history names neither.
void setCommandLine(std::string program, std::vector<std::string> words);
/// The origin of a commit that is made now, with the pending changes of the facility's state. If the facility keeps no
/// names, there is neither user, machine nor folder, and the words of the command line lose the folders of paths.
Origin currentOrigin();

/// @}
/// @name Projects
/// @{

/// How long to wait for another process's write lock before an Error (Busy) reports the holder. Initially two seconds.
void setBusyTimeout(std::chrono::milliseconds busyTimeout);

/// Opens a project and enters it: listeners receive handleProjectEntry. Closes another open project first. A project
/// opened for reading can be changed but not committed, so a caller can try out a change. Throws Error as Store::begin
/// does; then no project is open. Exceptions of listeners pass through; then the project is open.
void openProject(std::unique_ptr<Store> store, Access access);
/// Opens projects/NAME.reels of the facility. Also throws what facility() and Facility::projectFile throw; another open
/// project then stays open.
void openProject(const std::string& name, Access access);
/// Leaves the project (listeners receive handleProjectExit) and discards uncommitted changes, those of the facility's
/// state too. Does nothing if no project is open. Swallows exceptions of listeners.
void closeProject() noexcept;
bool projectIsOpen();
const ProjectInfo& projectInfo(); ///< as it was when the project was read. REQUIRES: a project is open
Store& projectStore();            ///< the open project's store, which it owns. REQUIRES: a project is open
/// The open project's store, begun for reading. It is in the state of the logs in memory, also after idle. Throws
/// Error as Store::begin does, and Busy if another process has committed since. REQUIRES: a project is open
Store& projectStoreToRead();

/// The properties of a store's project, as projectInfo() returns them: the frame rates are those of Store::info, unless
/// the option frameRateOption holds the code of another rate. Throws as reading the store does. REQUIRES: a use was
/// begun.
ProjectInfo currentInfo(Store& store);
/// The project option that holds the frame rate code if the rate was changed after the project was made. It is an
/// option because a commit can change options and undo can restore them; the result of Store::info never changes.
inline constexpr const char* frameRateOption = "reeldb_frame_rate";

bool hasChanges(); ///< whether commit would store anything
/// Stores all changes as one transaction, then the facility's state file. Returns whether anything was stored. A
/// project opened for writing can be changed and committed again afterwards. Throws Error, with ReadOnly if the project
/// was opened for reading; nothing is stored then, and all changes are kept for another commit. An Error of
/// Facility::saveState comes after the project was stored.
///
/// If others have committed while changes waited over idle, it stores both as far as they concern different values.
/// Otherwise it throws Conflict (reelhost/conflict.h); or Busy as applyChangesFromElsewhere does.
/// What others stored is in memory once it is applied.
bool commit();

/// For an application that waits: loads the part of the project that is not loaded yet, and releases the snapshot or
/// the write lock, so that it blocks no other process. Changes stay, in memory; the numbers of logs and lists that wait
/// to be stored are reserved in the project, so that no other process is given them. Does nothing if no project is
/// open. Throws Error as commit does if that fails; the lock is released then, and changes stay.
void idle();
/// Returns whether another process has committed. If so, reads the project again and discards uncommitted changes; the
/// application then notifies the manager. Throws Error as Store::begin does; the project then stays as it was. Returns
/// false if no project is open.
bool reloadIfChangedElsewhere();

/// What changes by other processes mean for a program that shows the reels of the project.
struct ForeignChanges {
  enum class State {
    Nothing, ///< no other process has committed
    Later,   ///< not applied, because a handle on a log is open: ask again
    Applied  ///< the project is as it is stored now
  };
  State state = State::Nothing;
  bool reelSet = false;   ///< whether reels are new or gone or have another identifier
  std::string newReel;    ///< the identifier of the only reel that is new, if that is all that changed in the set
  CookieVec changedReels; ///< the reels that keep their identifier and have another value, in the order of the project
};

/// Applies what other processes have committed to the open project: its logs change in place, and nothing else is read
/// if the store has a Feed. Changes by its own commits are not among them. Then notifies the listeners, once each, of
/// the logs that are new or changed (handleLogsModification) and of those that are gone (handleLogsDeletion); neither
/// project entry nor codes::madeOrImported is reported. The application then notifies the manager;
/// informOfChangesFromElsewhere (reelhost/inform_manager.h) does both. If the file now holds another project, that one
/// is read, and reelSet is true. Does nothing if no project is open.
///
/// Changes made here that are not stored stay, and are merged with the others. Throws Error, and nothing is applied: as
/// Store::begin does; Conflict (reelhost/conflict.h) if a change made here and one of others exclude each other; Busy
/// if changes made here are not stored and the store does not know what others changed, or one of the changes here is
/// an undelete, a compact or another taking back. Exceptions of listeners pass through; everything is applied then.
ForeignChanges applyChangesFromElsewhere();

/// Runs the actions that were deferred before the call, in order, on the calling (main) thread. Returns their number.
/// Actions deferred during the call wait for the next one. If an action throws, the exception passes through, that
/// action is removed, and the actions after it wait.
int runDeferredActions();

/// @}
/// @name Material
/// @{

/// Creates an imported material log and reports it to the listeners as codes::madeOrImported, as a host does when it
/// imports a clip. The library then creates the reel. Exceptions of listeners pass through; the log stays.
Cookie importMaterial(const Material& material);
/// Gives a shot the reel and the texts of @p material, as far as they differ. Its clip name, its channels and its frame
/// rate stay. Notifies no listener. Does nothing for a log that does not exist.
void changeMaterial(const Cookie& log, const Material& material);
/// The clip that the log describes. Texts that the log lacks are empty; all are empty for a log that does not exist.
Material materialOf(const Cookie& log);
/// All logs other than reel logs, in the order of creation. Empty if no project is open.
CookieVec allShots();
/// The logs other than reel logs with this reel identifier, in the order of creation. The case of ASCII letters is
/// ignored. Empty for an empty identifier, and if no project is open. Throws Error (Unreadable, Io, Busy) if logs have
/// to be loaded and cannot be.
CookieVec shotsOf(const std::string& reelId);
/// The number of logs other than reel logs for each identifier. The keys are identifiers with ASCII letters in lower
/// case. Empty if no project is open.
std::unordered_map<std::string, std::int64_t> shotCounts();

/// The highest number that a log can have: Cookies have eight digits for it.
inline constexpr std::int64_t lastLogNumber = 99'999'999;
/// The number of the log; 0 if there is no such log. Events of lists name their shots by it.
std::int64_t logNumber(const Cookie& log);

/// @}
/// @name Lists
/// The lists that the project keeps. Those that wait to be stored are included. Throws Error: Refused if the project's
/// store keeps no lists, and as reading it does.
/// @{

bool keepsLists();                 ///< whether the open project's store keeps lists
std::vector<KeptList> keptLists(); ///< without their events, by number. Empty if the store keeps no lists
/// The events of the list. Throws Error (NotFound) if there is no such list.
std::vector<ListEvent> eventsOfList(std::int64_t list);
/// The bytes of a kept list, by its digest. Throws Error (NotFound) if there are none.
std::string bytesOfList(const Digest& digest);
/// Keeps a list of these bytes, or, if @p list has a number, puts it in the place of the list with that number. Its
/// number of events is set here. Returns its number. commit stores the change. REQUIRES: its digest is that of the
/// bytes; each event names a log that exists, or none.
std::int64_t keepList(KeptList list, std::string bytes);
/// Removes the list with its events. Its shots stay. commit stores the change.
void removeList(std::int64_t list);

/// @}
/// @name Deletion
/// @{

/// Deletes the logs as one deletion, with the events of lists that name them, notifies the listeners
/// (handleLogsDeletion) and returns the number of deleted logs. Skips logs that do not exist. commit stores the
/// deletion. Exceptions of listeners pass through; the logs are deleted.
int deleteLogs(const CookieVec& logs);
/// Restores the logs of the last stored deletion, with their events, and returns their number. Notifies no listener.
/// commit stores the change. Throws Error (Refused) while a deletion, an undelete, a compact or a change of a list is
/// not stored yet.
int undelete();
/// What compact removes.
struct Compacted {
  int logs = 0;  ///< the number of deleted logs
  int lists = 0; ///< the number of removed lists
};
/// Removes for good what the history keeps of deleted logs and removed lists. commit stores the change. Throws
/// Error (Refused) while a deletion, an undelete or a compact is not stored yet.
Compacted compact();

/// @}
/// @name History
/// @{

/// What taking a revision back has changed.
struct TakenBack {
  int restored = 0, changed = 0, removed = 0; ///< numbers of logs
  int lists = 0;                              ///< the number of lists that changed
  bool options = false;                       ///< whether options of the project changed
  bool anything() const { return restored != 0 || changed != 0 || removed != 0 || lists != 0 || options; }
};

/// Takes a stored revision back: each value of a log that it changed is as it was before, logs that it created are
/// gone, and logs that it deleted are there again, with number and Cookie. Values that it did not change stay. Taking a
/// revision back that took another one back makes the changes of that other one again. Notifies no listener. commit
/// stores the change, as a revision of its own. Throws Error, and nothing has changed: Refused if a later revision
/// changed one of the values, if the revision is taken back already, if an event of a list would be left without its
/// shot, if another change is not stored yet, or if the project keeps no history; NotFound if there is no such
/// revision.
TakenBack takeBack(std::int64_t revision);
/// Removes all revisions below @p before from the history for good, with the deleted logs that only they have, and
/// returns their number. commit stores the change. Throws as undelete does.
int forgetHistory(std::int64_t before);

/// @}
/// @name Direct changes, as another module of the application would make them
/// @{

/// Adds a log of any type, outside any library operation: for tests, and for applications that keep other logs. The
/// number, uuid, tag and kind of @p log are ignored; the new log gets its own. Notifies no listener.
Cookie addLog(const StoredLog& log);

/// @}

} // namespace reelhost

#endif
