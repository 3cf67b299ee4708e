// SPDX-License-Identifier: Apache-2.0
/// @file
/// The manager: operations on the reels of the open project.
#ifndef REELDB_MANAGER_H
#define REELDB_MANAGER_H

#include <vector>

#include "ReelDbClient.h"
#include "ReelDbExport.h"
#include "ReelDbRec.h"
#include "host/containers.h"
#include "host/cookie.h"
#include "host/events.h"
#include "host/lwstring.h"

// The virtual functions are those of ProjectListener, and nobody deletes a manager.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"

/// The reels of the open project. The manager keeps only the Cookies of the reel logs. Every lookup opens logs in list
/// order until one matches, so its cost grows with the number of reels.
///
/// Main thread only, with one exception: createNewReel may be called from any thread. No operation throws anything
/// itself; exceptions of the host pass through unchanged. Identifiers and names are bytes, UTF-8 by convention. Device
/// numbers are those that ExtDeviceConfigurationManager::getConfig(int) takes.
class REELDB_EXPORT ReelDbManager : public ProjectListener {
public:
  ReelDbManager();                              ///< reads nothing; the reel list is empty until a project is entered
  ~ReelDbManager();                             ///< notifies no client
  ReelDbManager(const ReelDbManager&) = delete; ///< all clients register with the same manager
  ReelDbManager& operator=(const ReelDbManager&) = delete;

  /// The manager of the process. The first call creates it; it is never deleted. From then on it receives the host's
  /// events.
  static ReelDbManager* theReelDbManager();

  /// @name Project events
  /// The host calls the functions of ProjectListener.
  /// @{

  /// A log was modified: creates the reel of imported material. Only a modification of type 59 counts, and only on an
  /// imported log of type 1. Calls createNewReel with the log's reel identifier and no device.
  void handleLogModification(const Cookie& log, const EditModification& mod) override;
  /// Clears the marks of reels in use, rebuilds the reel list and notifies every client. Sets the project's default
  /// reel type if it has none. Resets the devices if the project differs from the last one entered. Ignores the
  /// placeholder project "P0001000".
  void handleProjectEntry() override;
  /// Empties the reel list. Notifies no client.
  void handleProjectExit() override;
  /// Reads the reel list from the project database; without a database the list stays as it was. Notifies no client.
  void buildReelList();
  bool handleDeviceChange(const NotifyMsg& msg); ///< changes nothing and returns true: a host need not call it
  /// Sets the type of the project's new reels: stores it as the project option "reeldb_defaultType". Empty: no type.
  void setProjectDefaultReelType(LightweightString<char> type);

  /// @}
  /// @name Clients
  /// @{

  /// Appends the client, which is borrowed. The constructor of ReelDbClient calls it. A client that is registered twice
  /// is notified twice; remove one of the two registrations before you delete it.
  void registerClient(ReelDbClient* client);
  void deRegisterClient(ReelDbClient* client); ///< removes one registration; an unknown client is ignored
  /// Rebuilds the reel list, always, and calls every client's reelDbChanged(@p id), unless notifications are held.
  void informReelDbChanged(LightweightString<char> id);
  /// Calls ourReelDbRecChanged of the clients that follow @p id, letter for letter, and someReelDbRecChanged of all,
  /// unless @p id is empty or notifications are held. The reel list stays as it is.
  void informReelDbRecChanged(LightweightString<char> id);

  /// @}
  /// @name Lookup
  /// Lookups ignore the case of letters, as LC_CTYPE has it: of ASCII letters in "C" and "C.UTF-8", which the host has
  /// to keep (docs/embedding.md, Traps). Of two identifiers that differ only in case, they find the first in the list.
  /// They never find the empty identifier.
  /// @{

  Cookie getCookieFromReelId(LightweightString<char> id); ///< invalid if there is no such reel
  ReelDbRec getReelInfo(LightweightString<char> id);      ///< empty if there is no such reel
  bool doesReelExist(LightweightString<char> id);
  int checkReelValid(LightweightString<char> id); ///< 0 valid, 1 no such reel, 4 its type is not in the catalogue
  /// Whether the reel's type is exactly "Live". False if there is no such reel.
  bool representsLiveMaterial(LightweightString<char> id);
  /// Whether the identifier contains '*'. The reel need not exist.
  bool representsInternallyGeneratedMaterial(LightweightString<char> id);

  /// Marks the reel as in use, or removes the mark. The identifier is kept with its letter case; the reel need not
  /// exist. Entering a project clears all marks. Their only effect is on buildSetOfReelsAndAssociatedShots.
  void reelInUse(LightweightString<char> id, bool inUse);
  bool reelInUse(LightweightString<char> id); ///< whether the identifier is marked, in this letter case

  /// Display name of user field @p n, counted from 0. The default is "User field " and n + 1. Any number is allowed.
  LightweightString<char> userFieldName(int n);
  /// Stores the display name of user field @p n for all projects. The empty name restores the default.
  void userFieldName(int n, LightweightString<char> name);

  /// @}
  /// @name Listing
  /// The vector forms append to the vector; the StringList forms clear the list first.
  /// @{

  /// Identifiers of all reels in list order, without those of type "Live" if @p includeLive is false. Logs without an
  /// identifier and logs that cannot be opened are left out. If identifiers differ only in case, the type of the first
  /// reel decides for all of them.
  void getAllReelIds(std::vector<LightweightString<char>>& out, bool includeLive);
  void getAllReelIds(StringList& out, bool includeLive);
  /// Identifiers of the reels whose type the device accepts or the catalogue does not contain, in list order. A log
  /// without an identifier, or one that cannot be opened, gives an empty text. An unknown device accepts no type.
  void getReelsCompatibleWithDevice(std::vector<LightweightString<char>>& out, int device);
  void getReelsCompatibleWithDevice(StringList& out, int device);

  /// @}
  /// @name Creation
  /// @{

  /// Creates a reel and calls every client's reelDbChanged with the stored identifier. The stored identifier is trimmed
  /// of blanks; the duplicate check uses the untrimmed one. The reel gets a channel for each audio input of the device
  /// @p deviceId; a negative number means no device. If the device has port type 2, its name is the identifier. The
  /// reel is available, not inhibited, without a label map, and of the project's default type.
  ///
  /// The result is empty if the reel exists, if the identifier is blank or denotes generated material, if no project is
  /// open, or if the call comes from another thread. In the last case the reel is created later, on the main thread.
  ReelDbRec createNewReel(const LightweightString<char>& reelId, int deviceId);
  LightweightString<char> trimLeadingTrailingSpaces(LightweightString<char> s); ///< trims blanks (0x20) only

  /// @}
  /// @name Renaming and copying
  /// @{

  /// Renames the reel, its log and every shot recorded from it. Prints one line for each shot. @p newId is not checked;
  /// the caller checks it. An unknown @p oldId changes nothing. A shot whose log cannot be opened keeps @p oldId.
  /// All clients are first notified of a changed field of @p oldId. When the shots are renamed, reelDbChanged("")
  /// of all clients is called, unless there is no database.
  void changeReelId(LightweightString<char> oldId, LightweightString<char> newId);
  /// Copies type, flags, label mapping and the user fields 0 to 5. Sends one notification in all, for @p toId, even if
  /// that reel does not exist. The source is not checked: copying from an unknown reel empties the target.
  void copyReelInfo(LightweightString<char> fromId, LightweightString<char> toId);

  /// @}
  /// @name Reels and shots
  /// A log is a reel if its database row says so. A log without a row is opened instead; if it cannot be opened, it is
  /// not a reel.
  /// @{

  bool doesCookieSetContainReels(CookieSet& set); ///< changes nothing
  bool removeReelsFromCookieSet(CookieVec& v);    ///< true if @p v contained a reel
  /// The reels that the shots name, one entry per shot, in the order of the shots. A shot has no entry if it names no
  /// reel or a reel that does not exist.
  CookieVec getReelsReferenced(const CookieVec& shots);
  /// Appends every shot recorded from the reel and prints a line for each. The case of letters is ignored as in
  /// lookups. Does nothing for an invalid Cookie or without a database.
  void addShotsFromReel(Cookie reel, CookieVec& out);
  /// The logs to delete when the user deletes @p selection: each selected reel that is not in use, followed by its
  /// shots. A shot is not in the result merely because it is selected. Prints a line for each shot and for each reel
  /// in use. Deletes nothing.
  CookieVec buildSetOfReelsAndAssociatedShots(CookieVec selection);

  /// @}
  /// @name Live devices
  /// @{

  LightweightString<char> getLiveDeviceMediaName(LightweightString<char> deviceName); ///< the name and " live feed"
  /// Creates the live-feed reel of a device that accepts "Live": its type is "Live", its last device is this one, and
  /// the device stores it as its last reel. If a reel of that name exists, it stays as it is. Main thread only.
  void checkLiveDeviceMedia(int deviceId);

  /// @}
  /// @name State
  /// For reading. Only the operations above change it, except notifyHoldCount: code that holds notifications increments
  /// and decrements it.
  /// @{

  CookieVec reelList;    ///< the reel logs of the project, in database order
  StringList reelsInUse; ///< identifiers marked as in use, sorted
  Cookie lastProject;    ///< the project for which the devices were last reset
  int notifyHoldCount;   ///< while not 0, no client is notified
  Array clients;         ///< registered clients in order of registration, not owned

  static ReelDbManager* theReelDbManager_;                   ///< null until first use
  static LightweightString<char> systemWideDefaultReelType_; ///< the setting "default_reel_type", read at load

  /// @}
};

#pragma GCC diagnostic pop

#endif
