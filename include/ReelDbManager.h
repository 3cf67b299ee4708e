// SPDX-License-Identifier: Apache-2.0
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
/// exceptions of the host pass unchanged.
class REELDB_EXPORT ReelDbManager : public ProjectListener {
public:
  ReelDbManager();  ///< reads nothing; the reel list is empty until a project is entered
  ~ReelDbManager(); ///< tells the clients nothing
  ReelDbManager(const ReelDbManager&) = delete;
  ReelDbManager& operator=(const ReelDbManager&) = delete;

  /// The manager of the process, made by the first call and never deleted.
  static ReelDbManager* theReelDbManager();

  // --- Project events -----------------------------------------------------------------------------------------------

  /// A log was modified: imported material gets its reel.
  void handleLogModification(const Cookie& log, const EditModification& mod) override;
  /// Rebuilds the reel list and tells every client; makes sure the project has a default reel type; resets the devices
  /// when the project is another than last time. The placeholder project "P0001000" is passed over.
  void handleProjectEntry() override;
  /// Empties the reel list; tells nobody.
  void handleProjectExit() override;
  /// Takes the reel logs from the project database; without a database the list stays as it was.
  void buildReelList();
  bool handleDeviceChange(const NotifyMsg& msg); ///< changes nothing and answers true
  /// Stores the reel type that new reels of the project get.
  void setProjectDefaultReelType(LightweightString<char> type);

  // --- Clients ------------------------------------------------------------------------------------------------------

  void registerClient(ReelDbClient* client);   ///< borrowed; registered twice it hears everything twice
  void deRegisterClient(ReelDbClient* client); ///< takes out one registration; an unknown client is ignored
  /// Rebuilds the reel list and calls every client's reelDbChanged, unless notifications are held.
  void informReelDbChanged(LightweightString<char> id);
  /// Calls the clients' ourReelDbRecChanged and someReelDbRecChanged, unless @p id is empty or notifications are held.
  void informReelDbRecChanged(LightweightString<char> id);

  // --- Lookup -------------------------------------------------------------------------------------------------------
  // Identifiers are found without regard to the case of ASCII letters; of two that differ in case only, the first in
  // the list is found.

  Cookie getCookieFromReelId(LightweightString<char> id); ///< invalid when there is no such reel
  ReelDbRec getReelInfo(LightweightString<char> id);      ///< empty when there is no such reel
  bool doesReelExist(LightweightString<char> id);
  int checkReelValid(LightweightString<char> id); ///< 0 valid, 1 no such reel, 4 its type is not in the catalogue
  bool representsLiveMaterial(LightweightString<char> id);                ///< whether the reel's type is exactly "Live"
  bool representsInternallyGeneratedMaterial(LightweightString<char> id); ///< whether the identifier contains '*'

  void reelInUse(LightweightString<char> id,
                 bool inUse); ///< marks or unmarks, letter for letter; entry clears all marks
  bool reelInUse(LightweightString<char> id);

  LightweightString<char> userFieldName(int n); ///< display name of user field @p n; by default "User field " and n + 1
  void userFieldName(int n, LightweightString<char> name);

  // --- Listing ------------------------------------------------------------------------------------------------------
  // The vector forms append to what the vector holds; the StringList forms clear the list first.

  /// Identifiers of all reels in list order; without those of type "Live" when @p includeLive is false.
  void getAllReelIds(std::vector<LightweightString<char>>& out, bool includeLive);
  void getAllReelIds(StringList& out, bool includeLive);
  /// Identifiers of the reels whose type the device accepts or the catalogue does not know.
  void getReelsCompatibleWithDevice(std::vector<LightweightString<char>>& out, int device);
  void getReelsCompatibleWithDevice(StringList& out, int device);

  // --- Creation -----------------------------------------------------------------------------------------------------

  /// Makes a reel. @p deviceId is a device whose audio inputs the reel gets as channels, or negative for none; a device
  /// of port type 2 gives the reel its own name as identifier. Empty result: the reel exists, the identifier is blank
  /// or denotes generated material, no project is open, or the call came from another thread; then the reel is made
  /// later, on the main thread.
  ReelDbRec createNewReel(const LightweightString<char>& reelId, int deviceId);
  LightweightString<char> trimLeadingTrailingSpaces(LightweightString<char> s); ///< without blanks (0x20) at both ends

  // --- Renaming and copying -----------------------------------------------------------------------------------------

  /// Renames the reel and every shot recorded from it. @p newId is taken as it is; callers check it first.
  void changeReelId(LightweightString<char> oldId, LightweightString<char> newId);
  /// Copies type, flags, label mapping and the user fields 0 to 5 with one notification in all. The source is not
  /// checked: an unknown one empties the target.
  void copyReelInfo(LightweightString<char> fromId, LightweightString<char> toId);

  // --- Reels and shots ----------------------------------------------------------------------------------------------

  bool doesCookieSetContainReels(CookieSet& set);
  bool removeReelsFromCookieSet(CookieVec& v);          ///< whether any was removed
  CookieVec getReelsReferenced(const CookieVec& shots); ///< one entry a shot, in the order of the shots
  void addShotsFromReel(Cookie reel, CookieVec& out);   ///< appends every shot recorded from the reel
  /// What goes when @p selection is deleted: each selected reel that is not in use, followed by its shots.
  CookieVec buildSetOfReelsAndAssociatedShots(CookieVec selection);

  // --- Live devices -------------------------------------------------------------------------------------------------

  LightweightString<char> getLiveDeviceMediaName(LightweightString<char> deviceName); ///< the name and " live feed"
  /// Makes sure that a device which accepts "Live" has its live-feed reel. To be called on the main thread.
  void checkLiveDeviceMedia(int deviceId);

  CookieVec reelList;    ///< the reel logs of the project, in the order of the database
  StringList reelsInUse; ///< identifiers marked as in use, sorted
  Cookie lastProject;    ///< the project for which the devices were last reset
  int notifyHoldCount;   ///< while not 0, no client is told anything
  Array clients;         ///< registered clients in order of registration, not owned

  static ReelDbManager* theReelDbManager_;                   ///< null until first use
  static LightweightString<char> systemWideDefaultReelType_; ///< "default_reel_type" as it was at load
};

#endif
