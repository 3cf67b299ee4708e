// SPDX-License-Identifier: Apache-2.0
/// @file
/// The manager: all that is done with more than one reel.
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

/// The reels of the open project. It keeps the Cookies of all reel logs and nothing else of them: every lookup opens
/// logs in list order until one matches, so its cost grows with the number of reels.
///
/// Main thread only, with one exception: createNewReel may be called from any thread. No operation throws of its own;
/// exceptions of the host pass unchanged. Identifiers and names are bytes, UTF-8 by convention. Devices go by the
/// number that ExtDeviceConfigurationManager::getConfig(int) takes.
class REELDB_EXPORT ReelDbManager : public ProjectListener {
public:
  ReelDbManager();                              ///< reads nothing; the reel list is empty until a project is entered
  ~ReelDbManager();                             ///< tells the clients nothing
  ReelDbManager(const ReelDbManager&) = delete; ///< not copied: the clients know one manager
  ReelDbManager& operator=(const ReelDbManager&) = delete;

  /// The manager of the process, made by the first call and never deleted. From then on it hears the host's events.
  static ReelDbManager* theReelDbManager();

  /// @name Project events
  /// The host calls those of ProjectListener.
  /// @{

  /// A log was modified: imported material gets its reel. Only a modification of type 59 counts, and only on a log of
  /// type 1 that is imported; its identifier goes to createNewReel, with no device.
  void handleLogModification(const Cookie& log, const EditModification& mod) override;
  /// Clears the marks of reels in use, rebuilds the reel list and tells every client; makes sure the project has a
  /// default reel type; resets the devices when the project is another than last time. The placeholder project
  /// "P0001000" is passed over.
  void handleProjectEntry() override;
  /// Empties the reel list; tells nobody.
  void handleProjectExit() override;
  /// Takes the reel logs from the project database; without a database the list stays as it was. Tells nobody.
  void buildReelList();
  bool handleDeviceChange(const NotifyMsg& msg); ///< changes nothing and answers true
  /// Stores the reel type that new reels of the project get, as the project's option "reeldb_defaultType"; empty: none.
  void setProjectDefaultReelType(LightweightString<char> type);

  /// @}
  /// @name Clients
  /// @{

  /// Adds at the end of the clients; the client is borrowed. Registered twice it hears everything twice. Every
  /// ReelDbClient calls it when it is made.
  void registerClient(ReelDbClient* client);
  void deRegisterClient(ReelDbClient* client); ///< takes out one registration; an unknown client is ignored
  /// Rebuilds the reel list, always, and calls every client's reelDbChanged(@p id), unless notifications are held.
  void informReelDbChanged(LightweightString<char> id);
  /// Calls ourReelDbRecChanged of the clients that follow @p id, letter for letter, and someReelDbRecChanged of all,
  /// unless @p id is empty or notifications are held. The reel list stays as it is.
  void informReelDbRecChanged(LightweightString<char> id);

  /// @}
  /// @name Lookup
  /// Identifiers are found without regard to the case of letters, as LC_CTYPE has it: of ASCII letters in "C" and
  /// "C.UTF-8", which the host has to keep (docs/embedding.md, Traps). Of two that differ in case only, the first in
  /// the list is found. The empty identifier is never found.
  /// @{

  Cookie getCookieFromReelId(LightweightString<char> id); ///< invalid when there is no such reel
  ReelDbRec getReelInfo(LightweightString<char> id);      ///< empty when there is no such reel
  bool doesReelExist(LightweightString<char> id);
  int checkReelValid(LightweightString<char> id); ///< 0 valid, 1 no such reel, 4 its type is not in the catalogue
  /// Whether the reel's type is exactly "Live"; false when there is no such reel.
  bool representsLiveMaterial(LightweightString<char> id);
  /// Whether the identifier contains '*'. There need be no such reel.
  bool representsInternallyGeneratedMaterial(LightweightString<char> id);

  /// Marks the reel as in use, or takes the mark away. The identifier is kept letter for letter, and need not be that
  /// of a reel. Marks go when a project is entered. All they do is keep a reel out of
  /// buildSetOfReelsAndAssociatedShots.
  void reelInUse(LightweightString<char> id, bool inUse);
  bool reelInUse(LightweightString<char> id); ///< whether the identifier is marked, letter for letter

  /// Display name of user field @p n, counted from 0; by default "User field " and n + 1. Any number forms a key.
  LightweightString<char> userFieldName(int n);
  /// Stores the display name of user field @p n for all projects; the empty name brings back the default.
  void userFieldName(int n, LightweightString<char> name);

  /// @}
  /// @name Listing
  /// The vector forms append to what the vector holds; the StringList forms clear the list first.
  /// @{

  /// Identifiers of all reels in list order; without those of type "Live" when @p includeLive is false. Logs without an
  /// identifier, and those that do not open, are left out. Of reels whose identifiers differ in case only, the type of
  /// the first counts.
  void getAllReelIds(std::vector<LightweightString<char>>& out, bool includeLive);
  void getAllReelIds(StringList& out, bool includeLive);
  /// Identifiers of the reels whose type the device accepts or the catalogue does not know, in list order; an empty
  /// one for a log that has none or does not open. An unknown device accepts no type.
  void getReelsCompatibleWithDevice(std::vector<LightweightString<char>>& out, int device);
  void getReelsCompatibleWithDevice(StringList& out, int device);

  /// @}
  /// @name Creation
  /// @{

  /// Makes a reel and tells the clients: reelDbChanged with the identifier that was stored. The identifier is stored
  /// without blanks at both ends; whether there is such a reel is asked with them. @p deviceId is a device whose audio
  /// inputs the reel gets as channels, or negative for none; a device of port type 2 gives the reel its own name as
  /// identifier. The reel is available, not inhibited, without a label map, and of the project's default type.
  ///
  /// Empty result: the reel exists, the identifier is blank or denotes generated material, no project is open, or the
  /// call came from another thread; then the reel is made later, on the main thread.
  ReelDbRec createNewReel(const LightweightString<char>& reelId, int deviceId);
  LightweightString<char> trimLeadingTrailingSpaces(LightweightString<char> s); ///< without blanks (0x20) at both ends

  /// @}
  /// @name Renaming and copying
  /// @{

  /// Renames the reel, its log and every shot recorded from it; prints one line for each shot. @p newId is taken as it
  /// is; callers check it first. An unknown @p oldId changes nothing, and a shot whose log does not open keeps it. Of
  /// the clients, those of a field's change hear with @p oldId; then, the shots renamed, all hear reelDbChanged(""),
  /// unless there is no database.
  void changeReelId(LightweightString<char> oldId, LightweightString<char> newId);
  /// Copies type, flags, label mapping and the user fields 0 to 5 with one notification in all, for @p toId, whether or
  /// not there is such a reel. The source is not checked: an unknown one empties the target.
  void copyReelInfo(LightweightString<char> fromId, LightweightString<char> toId);

  /// @}
  /// @name Reels and shots
  /// Whether a log is a reel is read from its row, or from the log when it has none; one that does not open is none.
  /// @{

  bool doesCookieSetContainReels(CookieSet& set); ///< whether a log of the set is a reel; changes nothing
  bool removeReelsFromCookieSet(CookieVec& v);    ///< takes all reels out; whether any was there
  /// The reels that the shots name, one entry a shot, in the order of the shots. Shots that name no reel, or one that
  /// does not exist, have none.
  CookieVec getReelsReferenced(const CookieVec& shots);
  /// Appends every shot recorded from the reel and prints a line for each; ASCII letters without regard to case.
  /// Nothing for an invalid Cookie and without a database.
  void addShotsFromReel(Cookie reel, CookieVec& out);
  /// What goes when @p selection is deleted: each selected reel that is not in use, followed by its shots. Selected
  /// shots are not in it of themselves. Prints a line for each shot and for each reel in use. Deletes nothing.
  CookieVec buildSetOfReelsAndAssociatedShots(CookieVec selection);

  /// @}
  /// @name Live devices
  /// @{

  LightweightString<char> getLiveDeviceMediaName(LightweightString<char> deviceName); ///< the name and " live feed"
  /// Makes sure that a device which accepts "Live" has its live-feed reel: of type "Live", with the device as its last
  /// one, and remembered by the device as its last reel. A reel of that name that exists stays as it is. To be called
  /// on the main thread.
  void checkLiveDeviceMedia(int deviceId);

  /// @}
  /// @name State
  /// To be read, and to be changed by the operations above alone; code that holds notifications counts in
  /// notifyHoldCount.
  /// @{

  CookieVec reelList;    ///< the reel logs of the project, in the order of the database
  StringList reelsInUse; ///< identifiers marked as in use, sorted
  Cookie lastProject;    ///< the project for which the devices were last reset
  int notifyHoldCount;   ///< while not 0, no client is told anything
  Array clients;         ///< registered clients in order of registration, not owned

  static ReelDbManager* theReelDbManager_;                   ///< null until first use
  static LightweightString<char> systemWideDefaultReelType_; ///< "default_reel_type" as it was at load

  /// @}
};

#endif
