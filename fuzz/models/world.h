// SPDX-License-Identifier: Apache-2.0
//
// A second implementation of the manager, its records and the host on plain containers: a map of logs, a list of reels,
// and the notifications of each client. It has no Cookies, no opening of logs and no host calls. Logs are numbers from
// 1, and 0 means no log.
#ifndef REELDB_FUZZ_MODELS_WORLD_H
#define REELDB_FUZZ_MODELS_WORLD_H

#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "reelhost/facility.h"

namespace reeldb_fuzz {

using Number = int;
using Numbers = std::vector<Number>;
using Texts = std::vector<std::string>;

struct ModelLog {
  int type = 0;
  bool imported = false;
  bool gone = false;
  std::string name;                          ///< UTF-8
  std::string reelType;                      ///< as the database shows it
  std::map<std::string, std::string> fields; ///< the configuration block; the identifier is "reelid"
  int video = 0, audio = 0;
  friend bool operator==(const ModelLog&, const ModelLog&) = default;
};

/// The habit of a client, besides listening.
enum class Habit {
  Listens,
  LeavesWhenListChanges,   ///< unregisters when it receives reelDbChanged
  CreatesWhenListChanges,  ///< makes a reel, once
  EndsWhenItsReelChanges,  ///< ceases to exist when it receives ourReelDbRecChanged
  BringsOneWhenRecChanges, ///< makes another client, once, when it receives someReelDbRecChanged
};

struct ModelClient {
  std::string interest;
  Habit habit = Habit::Listens;
  std::string makes; ///< the reel that a creating client makes
  bool done = false; ///< whether it has done what it does once
};

class World {
public:
  World(std::vector<reelhost::DeviceSettings> devices, std::string systemWideType);

  // --- The state ---------------------------------------------------------------------------------
  bool open = false;                 ///< whether a project is open
  bool databaseGone = false;         ///< whether the host returns no database
  bool offMain = false;              ///< whether calls come from another thread
  std::string project, lastProject;  ///< "": no project
  std::vector<ModelLog> logs;        ///< by number - 1
  Numbers reels;                     ///< the manager's list
  std::set<std::string> inUse;       ///< identifiers marked
  int hold = 0;                      ///< the hold count of notifications
  std::vector<int> clients;          ///< the registered clients, in order; a client may be registered twice
  std::map<int, ModelClient> people; ///< all clients by number
  std::optional<std::string> defaultType;
  std::vector<std::pair<std::string, std::string>> types; ///< the catalogue
  std::vector<reelhost::DeviceSettings> devices;
  std::map<std::string, std::string> system;
  std::deque<std::pair<std::string, int>> deferred;
  int resets = 0;     ///< the number of resets of the devices
  std::string prefix; ///< the start of the text of a log's Cookie; eight digits of its number follow
  Texts heard, printed;

  // --- The host's part ---------------------------------------------------------------------------
  void enter(const std::string& name, const std::optional<std::string>& defaultTypeOption);
  void leave();
  Number addLog(const ModelLog& log);
  Number import(const std::string& reel, const std::string& name);
  int erase(const Numbers& which);
  void commit();
  std::optional<int> undelete(); ///< empty if it is refused
  int runDeferred();
  bool exists(Number log) const;
  ModelLog* find(Number log); ///< null if there is no such log

  // --- Clients -----------------------------------------------------------------------------------
  int newClient(const ModelClient& client);
  void endClient(int client);
  void registerClient(int client);
  void deRegisterClient(int client);
  void informChanged(const std::string& id);
  void informRecord(const std::string& id);

  // --- One record --------------------------------------------------------------------------------
  std::string id(Number log) const;
  std::string text(Number log, const std::string& key) const;
  std::string typeName(Number log) const;
  bool flag(Number log, const std::string& key) const;
  std::string textUnless(Number log, const std::string& key, const std::string& nothing) const;
  void store(Number log, const std::string& key, const std::string& value);
  void setId(Number log, const std::string& value);
  void setTypeName(Number log, const std::string& value);
  void setFlag(Number log, const std::string& key, bool value);
  void setText(Number log, const std::string& key, const std::string& value, const std::string& nothing = {});
  void setLastDevice(Number log, const std::string& value);
  void updateChannels(Number log);

  // --- The catalogue -----------------------------------------------------------------------------
  bool isKnownType(const std::string& name) const;
  void addType(const std::string& name, const std::string& params);
  int channelsOf(const std::string& type,
                 const std::string& param); ///< adds the type to the catalogue if it is missing

  // --- The manager -------------------------------------------------------------------------------
  void handleEntry();
  void buildList();
  Number lookUp(const std::string& id) const;
  int validity(const std::string& id) const;
  bool isLive(const std::string& id) const;
  Texts allIds(bool includeLive) const;
  Texts compatibleIds(int device) const;
  Number create(const std::string& id, int device);
  void handleModification(Number log, int modification);
  void rename(const std::string& from, const std::string& to);
  void copy(const std::string& from, const std::string& to);
  bool isReel(Number log) const;
  std::map<std::string, std::int64_t> shotCounts() const; ///< by identifier in lower case
  Numbers referenced(const Numbers& shots) const;
  void addShots(Number reel, Numbers& out);
  Numbers doomed(const Numbers& selection);
  void checkLive(int device);
  std::string userFieldName(int n) const;

private:
  bool databaseThere() const { return open && !databaseGone; }
  const reelhost::DeviceSettings& deviceOf(int number) const;
  const reelhost::DeviceSettings& deviceNamed(const std::string& name) const;
  void notify(Number log) { informRecord(id(log)); }
  void hear(int client, const std::string& what);
  std::string seenOf(Number reel); ///< what a client reads of the reel
  Numbers shotsOf(const std::string& id) const;
  /// Whether a deleted log is otherwise as it was at the last commit.
  bool isAsStored(std::size_t at) const;

  /// The values of the facility that last only if they are committed.
  struct State {
    std::map<std::string, std::string> system;
    std::map<unsigned, std::string> lastReels;
  };
  State committed_;
  std::vector<Numbers> bin_;     ///< stored deletions, the last one last
  std::set<Number> deleted_;     ///< not stored yet
  bool undeleted_ = false;       ///< not stored yet
  std::vector<ModelLog> stored_; ///< the logs at the last commit
  const std::string systemWideType_;
  int lastClient_ = 0;
};

/// The text with ASCII letters in lower case, for comparing identifiers.
std::string foldedId(const std::string& id);
/// The text without blanks at both ends.
std::string trimmedId(const std::string& id);
/// Each byte as the character of that number, in UTF-8, as a log's name contains an identifier.
std::string byteWise(const std::string& text);

} // namespace reeldb_fuzz

#endif
