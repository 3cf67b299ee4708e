// SPDX-License-Identifier: Apache-2.0
//
// The open project: its logs in memory, the changes since it was stored, and the use of the store.
#ifndef REELHOST_MODEL_PROJECT_H
#define REELHOST_MODEL_PROJECT_H

#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "host/cookie.h"
#include "model/attribute_index.h"
#include "model/config_block.h"
#include "model/log.h"
#include "model/log_table.h"
#include "reelhost/feed.h"
#include "reelhost/history.h"
#include "reelhost/host.h"

namespace reelhost::model {

/// Reel logs are read when the project is opened, all others when they are first needed.
///
/// Reading uses one use of the store as long as possible. After a commit or after idle a new use begins. It is an error
/// if another process has committed in between, because the logs in memory would then differ from the stored ones.
class Project {
public:
  /// Reads the project, beginning the store's use with @p beginWith, which is at most @p access. Throws Error.
  Project(std::shared_ptr<Store> store, Access access, Access beginWith);
  ~Project();
  Project(const Project&) = delete;
  Project& operator=(const Project&) = delete;
  /// Ends the use of the store. Open handles on logs stay valid as long as the Project, but changes to them are lost.
  void close() noexcept;

  const std::shared_ptr<Store>& store() const { return store_; }
  Store& storeToRead() ///< begun for reading, in the state of the logs in memory
  {
    use(Access::Read);
    return *store_;
  }
  Access access() const { return access_; }
  const ProjectInfo& info() const { return info_; }
  const Cookie& cookie() const { return cookie_; }
  configb& options() { return options_; }

  // --- Finding -----------------------------------------------------------------------------------
  Log* find(const Cookie& cookie) ///< null when there is no such log
  {
    if (!cookie.valid())
      return nullptr;
    Log* const log = table_.find(CookieWords(cookie));
    return log ? log : findAmongOthers(cookie);
  }
  const CookieVec& reels();                        ///< all reel logs by number
  std::vector<Log*> others();                      ///< all other logs by number
  CookieVec othersWithReelId(std::string_view id); ///< those with this identifier, in any ASCII case
  std::unordered_map<std::string, std::int64_t> countOthersByReelId();

  // --- Changing. Each throws Error if another process holds the project or has changed it. -------
  Log& create(StoredLog&& log);           ///< sets the log's number and Cookie
  void changing(Log& log);                ///< to be called before a change that is to be stored
  void reelIdChanged(Log& log);           ///< to be called after the change
  void typeChanged(Log& log);             ///< likewise
  CookieVec erase(const CookieVec& logs); ///< returns the logs that existed
  int undelete();
  Compacted compact();
  int forgetHistory(std::int64_t before);
  TakenBack takeBack(std::int64_t revision);

  // --- Lists; those that wait to be stored are included ------------------------------------------
  bool keepsLists() const { return !isClosed_ && store_->lists(); }
  std::vector<KeptList> lists(); ///< without their events
  std::vector<ListEvent> eventsOf(std::int64_t list);
  std::string listBytes(const Digest& digest);
  std::int64_t keep(KeptList&& list, std::string&& bytes);
  void removeList(std::int64_t list);

  // --- Storing -----------------------------------------------------------------------------------
  bool hasChanges() const;
  bool commit(); ///< returns whether anything was stored
  void idle();
  void endUse() noexcept;  ///< ends the use of the store for now
  bool changedElsewhere(); ///< stays true until the project is read again, or the changes are applied
  /// Reads what others changed, applies it and notifies the listeners. Empty if another project is in the place of this
  /// one; nothing is applied then. Throws Error as Store::begin does, and Busy if there are changes that are not
  /// stored. REQUIRES: changedElsewhere, and no handle on a log is open.
  std::optional<ForeignChanges> applyFromElsewhere();

private:
  enum class Use { None, Read, Write };

  /// An option whose text is not the stored one.
  struct ChangedOption {
    Key key;
    std::optional<std::string> stored; ///< empty if it is not stored
  };

  class OptionsOwner final : public ConfigOwner {
  public:
    explicit OptionsOwner(Project& project) : project_(project) {}
    void configChanging(Key key) override;
    void configChanged(Key key) override;

  private:
    Project& project_;
    std::optional<std::string> before_; ///< the text of the option that is being changed
  };

  void begin(Access access);
  bool beginUnlessChanged(Access access); ///< false if others have committed; no use is begun then
  void reserveNumbers();
  void use(Access needed);
  void useForChange();
  Log& add(StoredLog&& log);
  Log& addInPlaceOfGone(const StoredLog& log);
  void join(Log& log);
  void read(StoredLog&& log);
  void joinReels(const Log& log);
  void leaveReels(const Log& log);
  void refreshIndex(Log& log);
  void dropIndex();
  void loadOthers();
  Log* findAmongOthers(const Cookie& cookie);
  /// What takes a revision back.
  struct Plan {
    Inverse inverse;
    std::vector<Log*> gone; ///< the logs of inverse.deleted
    int changed = 0;        ///< the number of logs in inverse.logs that exist
    KeyValues options;      ///< all of them, if inverse changes options
  };
  void remove(Log& log);
  struct AppliedChanges;
  FeedPosition newestPosition() const;
  Delta differenceToStored();
  class Others;
  /// What others have stored since, merged with the changes made here. Throws Conflict, and Busy if that is unknown.
  /// REQUIRES: a use was begun.
  Delta differenceWithChangesHere();
  void apply(StoredLog&& stored, AppliedChanges& changes);
  void apply(Delta&& delta, AppliedChanges& changes);
  /// Adds what takes the change back. Throws Error (Refused) if a later revision is in the way.
  void planTakingBack(const LogChange& change, Plan& plan);
  void planTakingBack(const ListChange& change, Plan& plan);
  void refuseIfForgotten(bool forgotten, std::int64_t revision) const;
  void planTakingBack(const RevisionChanges& changes, Plan& plan);
  /// Throws Error (Refused) if an event of a list would be left without its shot.
  void requireShots(const Plan& plan);
  /// The list as it waits to be stored, null if it is to be removed; empty if it is as it is stored.
  std::optional<const KeptList*> pendingList(std::int64_t number) const;
  void dropEventsOfDeletedLogs();
  Lists& requireLists() const;
  void apply(const Plan& plan);
  History& requireHistory() const;
  void requireNoTrashPending(const char* what) const;
  Changes collect() const;
  void forgetChanges();
  std::string subject() const { return store_->subject(); }

  std::shared_ptr<Store> store_;
  const Access access_;
  Use use_ = Use::None;
  bool isClosed_ = false, isStale_ = false;

  ProjectInfo info_;
  Cookie cookie_;
  std::string logPrefix_; ///< the start of the names of the project's logs
  std::int64_t nextNumber_ = 1;
  std::int64_t unusedFrom_ = 1; ///< other processes give out numbers from this one on
  FeedPosition position_;       ///< the state that the logs in memory have, but for changes that are not stored
  configb options_;
  OptionsOwner optionsOwner_{*this};

  std::deque<Log> logs_;   ///< a log never moves
  std::vector<Log*> gone_; ///< those that are gone, whose places others may take while no handle is open
  LogTable table_;
  bool othersLoaded_ = false;
  CookieVec reels_;
  std::int64_t lastReel_ = 0; ///< number of the last log in reels_
  bool reelsReady_ = true;
  int reelsGone_ = 0;                   ///< since the last call of reels()
  std::optional<AttributeIndex> index_; ///< from the first attribute search on

  std::vector<Log*> dirty_;
  std::vector<ChangedOption> changedOptions_;
  std::set<std::int64_t> deleted_;
  std::map<std::int64_t, std::optional<KeptList>> changedLists_; ///< empty: to be removed
  std::map<Digest, std::string> listBytes_;                      ///< of changed lists
  Inverse inverse_; ///< what takes an earlier revision back; its changes are made already
  bool compact_ = false;
  std::int64_t forgetBefore_ = 0;
};

/// The project that is open; null without one.
extern Project* openedProject;

/// The open project. Throws Error (Refused) without one; @p wanted names the operation in the message.
Project& requireProject(const char* wanted);

/// How long a use of the store waits for another process.
std::chrono::milliseconds busyTimeout();

/// "E" and the number, with at least seven digits: the file name of a log in this host.
std::string fileNameOf(const Log& log);

} // namespace reelhost::model

#endif
