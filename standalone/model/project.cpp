// SPDX-License-Identifier: Apache-2.0
#include "model/project.h"

#include "host/codes.h"

#include <algorithm>
#include <cinttypes>
#include <cstdio>
#include <new>
#include <unordered_map>
#include <utility>

#include "base/ascii.h"
#include "model/stored_log.h"
#include "reelhost/host.h"

namespace reelhost::model {

namespace {

constexpr std::size_t prefixLength = 8, numberLength = 8; // together the sixteen bytes of a UUID

/// Eight characters made from the project's UUID, so that logs of two projects hardly ever have the same name.
std::string prefixFor(const std::array<unsigned char, 16>& project)
{
  std::uint64_t hash = 0xcbf29ce484222325u;
  for (const unsigned char byte : project)
    hash = (hash ^ byte) * 0x100000001b3u;
  std::string prefix;
  for (std::size_t i = 0; i < prefixLength; ++i)
    prefix += "ABCDEFGHIJKLMNOPQRSTUVWXYZ234567"[(hash >> (64 - 5 * (i + 1))) & 31];
  return prefix;
}

bool byNumber(const Log* a, const Log* b)
{
  return a->number < b->number;
}

/// Makes sure that adding one more element needs no memory.
template <class T>
void makeRoom(std::vector<T>& list)
{
  if (list.size() == list.capacity())
    list.reserve(2 * list.size() + 8);
}

} // namespace

Project* openedProject = nullptr;

Project& requireProject(const char* wanted)
{
  if (!openedProject)
    throw Error(ErrorKind::Refused, std::string(wanted) + ": no project is open");
  return *openedProject;
}

std::string fileNameOf(const Log& log)
{
  char name[32];
  std::snprintf(name, sizeof name, "E%07" PRId64, log.number);
  return name;
}

Project::Project(std::shared_ptr<Store> store, Access access, Access beginWith)
    : store_(std::move(store)), access_(access)
{
  begin(beginWith);
  try {
    info_ = currentInfo(*store_);
    cookie_ = cookieOf(info_.uuid, 0, 'P');
    logPrefix_ = prefixFor(info_.uuid);
    nextNumber_ = unusedFrom_ = store_->nextNumber();
    blockOf(options_).assign(store_->options());
    blockOf(options_).setOwner(&optionsOwner_);
    position_ = newestPosition();
    store_->readReels([this](StoredLog&& log) { read(std::move(log)); });
  } catch (...) {
    endUse();
    throw;
  }
}

Project::~Project()
{
  close();
}

void Project::close() noexcept
{
  if (std::exchange(isClosed_, true))
    return;
  endUse();
  store_.reset();
}

// --- The use of the store ------------------------------------------------------------------------

void Project::endUse() noexcept
{
  if (std::exchange(use_, Use::None) != Use::None)
    store_->end();
}

void Project::use(Access needed)
{
  if (isClosed_ || use_ == Use::Write || (use_ == Use::Read && needed == Access::Read))
    return;
  if (!beginUnlessChanged(needed))
    throw Error(ErrorKind::Busy, subject() + ": changed by another process since it was read (read it again)");
}

bool Project::beginUnlessChanged(Access access)
{
  endUse(); // the store does not see during a use what others commit
  if (changedElsewhere())
    return false;
  begin(access);
  isStale_ = newestPosition() != position_; // the last commit of others may have come after the question
  if (isStale_)
    endUse();
  return !isStale_;
}

void Project::begin(Access access)
{
  store_->begin(access, busyTimeout());
  use_ = access == Access::Write ? Use::Write : Use::Read;
}

// A project that was opened for reading may be changed in memory, to try out a change.
void Project::useForChange()
{
  if (access_ == Access::Write)
    use(Access::Write);
}

bool Project::changedElsewhere()
{
  if (!isClosed_ && !isStale_)
    isStale_ = store_->changedElsewhere();
  return isStale_;
}

// Everything is read first, so that later reads do not mix two states of the project.
void Project::idle()
{
  loadOthers();
  reserveNumbers();
  endUse();
}

// The Cookie of a log is made of its number, so other processes must not give out the numbers of logs that wait to be
// stored.
void Project::reserveNumbers()
{
  if (use_ != Use::Write)
    return;
  Changes reservation;
  if (nextNumber_ > unusedFrom_)
    reservation.reservedLogs = nextNumber_ - 1;
  if (!changedLists_.empty() && changedLists_.rbegin()->first >= store_->lists()->nextListNumber())
    reservation.reservedLists = changedLists_.rbegin()->first;
  if (reservation.empty())
    return;
  use_ = Use::None; // the store ends the use even if it throws
  store_->commit(reservation);
  position_ = newestPosition();
  unusedFrom_ = nextNumber_;
}

// --- Reading -------------------------------------------------------------------------------------

Log& Project::add(StoredLog&& stored)
{
  Log& log = logs_.emplace_back(*this, std::move(stored));
  try {
    table_.insert(log);
  } catch (...) {
    logs_.pop_back(); // a log that cannot be found must not exist
    throw;
  }
  join(log);
  return log;
}

Log& Project::addInPlaceOfGone(const StoredLog& stored)
{
  Log& log = *gone_.back();
  log.become(stored);
  table_.insert(log);
  gone_.pop_back();
  join(log);
  return log;
}

void Project::join(Log& log)
{
  if (log.type == codes::reelLog)
    joinReels(log);
  refreshIndex(log);
}

// Logs in memory are skipped: they were stored since the project was opened. So are logs that are to be deleted.
void Project::read(StoredLog&& stored)
{
  if (table_.find(CookieWords(cookieOf(stored))))
    return;
  if (deleted_.count(stored.number))
    return;
  add(std::move(stored));
}

void Project::loadOthers()
{
  if (othersLoaded_ || isClosed_)
    return;
  use(Access::Read);
  store_->readOthers([this](StoredLog&& log) { read(std::move(log)); });
  othersLoaded_ = true;
}

Log* Project::findAmongOthers(const Cookie& cookie)
{
  if (othersLoaded_)
    return nullptr;
  loadOthers();
  return table_.find(CookieWords(cookie));
}

// A new reel is almost always the last. In all other cases, and on out-of-memory, the next call of reels() rebuilds the
// list.
void Project::joinReels(const Log& log)
{
  if (!std::exchange(reelsReady_, false) || log.number <= lastReel_)
    return;
  try {
    reels_.add(log.cookie);
    lastReel_ = log.number;
    reelsReady_ = true;
  } catch (const std::bad_alloc&) {
  }
}

// To leave a few reels out is to copy the list at most once. To build it takes a look at every log.
void Project::leaveReels(const Log& log)
{
  constexpr int fewReels = 16;
  if (!std::exchange(reelsReady_, false) || ++reelsGone_ > fewReels)
    return;
  try {
    reels_.remove(log.cookie);
    reelsReady_ = true;
  } catch (const std::bad_alloc&) {
  }
}

const CookieVec& Project::reels()
{
  reelsGone_ = 0;
  if (!reelsReady_) {
    std::vector<const Log*> logs;
    for (const Log& log : logs_)
      if (log.type == codes::reelLog && !log.isGone)
        logs.push_back(&log);
    std::sort(logs.begin(), logs.end(), byNumber);
    reels_ = CookieVec();
    lastReel_ = 0;
    for (const Log* log : logs) {
      reels_.add(log->cookie);
      lastReel_ = log->number;
    }
    reelsReady_ = true;
  }
  return reels_;
}

std::vector<Log*> Project::others()
{
  loadOthers();
  std::vector<Log*> logs;
  for (Log& log : logs_)
    if (log.type != codes::reelLog && !log.isGone)
      logs.push_back(&log);
  std::sort(logs.begin(), logs.end(), byNumber);
  return logs;
}

CookieVec Project::othersWithReelId(std::string_view id)
{
  if (!index_) {
    loadOthers();
    index_.emplace();
    try {
      for (Log& log : logs_)
        index_->refresh(log);
    } catch (...) {
      dropIndex();
      throw;
    }
  }
  CookieVec cookies;
  for (const Log* log : index_->find(id))
    cookies.add(log->cookie);
  return cookies;
}

std::unordered_map<std::string, std::int64_t> Project::countOthersByReelId()
{
  std::unordered_map<std::string, std::int64_t> counts;
  if (!othersLoaded_ && !hasChanges()) {
    use(Access::Read);
    for (auto& [id, count] : store_->countOthersByReel())
      counts.emplace(std::move(id), count);
  } else {
    for (const Log* log : others())
      if (!log->reelId.empty())
        ++counts[reeldb::base::fold(log->reelId.c_str())];
  }
  return counts;
}

// --- Changing ------------------------------------------------------------------------------------

Log& Project::create(StoredLog&& stored)
{
  useForChange();
  if (nextNumber_ > lastLogNumber)
    throw Error(ErrorKind::Refused, subject() + ": no number is left for another log");
  char digits[numberLength + 1];
  std::snprintf(digits, sizeof digits, "%08d", static_cast<int>(nextNumber_));
  const std::string name = logPrefix_ + digits;
  std::copy(name.begin(), name.end(), stored.uuid.begin());
  stored.tag = 0;
  stored.kind = 'E';
  stored.number = nextNumber_++;
  makeRoom(dirty_); // a log that is made is stored
  Log& log = add(std::move(stored));
  changing(log);
  log.storedReelId = {};
  return log;
}

void Project::changing(Log& log)
{
  if (isClosed_ || log.isGone || log.isDirty)
    return;
  useForChange();
  dirty_.push_back(&log);
  log.isDirty = true;
  log.storedReelId = log.reelId;
}

// A partial index would hide logs from every search. On out-of-memory the index is dropped; the next search rebuilds
// it.
void Project::refreshIndex(Log& log)
{
  if (!index_)
    return;
  try {
    index_->refresh(log);
  } catch (const std::bad_alloc&) {
    dropIndex();
  }
}

void Project::dropIndex()
{
  index_.reset();
  for (Log& log : logs_)
    log.indexedUnder = nullptr;
}

void Project::reelIdChanged(Log& log)
{
  refreshIndex(log);
}

void Project::typeChanged(Log& log)
{
  if (log.type == codes::reelLog)
    joinReels(log);
  else
    reelsReady_ = false;
  refreshIndex(log);
}

CookieVec Project::erase(const CookieVec& cookies)
{
  useForChange();
  CookieVec gone;
  for (const Cookie& cookie : cookies) {
    Log* const log = find(cookie);
    if (!log)
      continue;
    gone.add(cookie);
    deleted_.insert(log->number);
    remove(*log);
  }
  return gone;
}

void Project::remove(Log& log)
{
  gone_.push_back(&log);
  table_.erase(log);
  if (index_)
    index_->take(log);
  if (log.type == codes::reelLog)
    leaveReels(log);
}

History& Project::requireHistory() const
{
  if (History* const history = store_->history())
    return *history;
  throw Error(ErrorKind::Refused, subject() + ": this project keeps no history");
}

// The stored history does not know yet what waits to be stored.
void Project::requireNoTrashPending(const char* what) const
{
  if (!deleted_.empty() || inverse_.revision != 0 || compact_ || forgetBefore_ != 0)
    throw Error(ErrorKind::Refused,
                subject() + ": cannot " + what + " (a deletion or an undeletion is not stored yet)");
}

int Project::undelete()
{
  requireNoTrashPending("undelete");
  if (!changedLists_.empty()) // it may be one that gets events back
    throw Error(ErrorKind::Refused, subject() + ": cannot undelete (a change of a list is not stored yet)");
  useForChange();
  use(Access::Read);
  History& history = requireHistory();
  const std::int64_t deletion = lastDeletion(history);
  if (deletion == 0)
    return 0;
  RevisionChanges changes = history.changesOf(deletion);
  Plan plan;
  plan.inverse.revision = deletion;
  for (LogChange& change : changes.logs)
    if (isRestorable(change))
      plan.inverse.logs.push_back(std::move(*change.before));
  for (const ListChange& change : changes.lists)
    if (!change.forgotten)
      planTakingBack(change, plan);
  requireShots(plan);
  for (const StoredLog& log : plan.inverse.logs)
    read(StoredLog(log));
  inverse_ = std::move(plan.inverse);
  return static_cast<int>(inverse_.logs.size());
}

Compacted Project::compact()
{
  requireNoTrashPending("empty the trash");
  useForChange();
  use(Access::Read);
  History& history = requireHistory();
  const Compacted result{static_cast<int>(history.trashCount()), static_cast<int>(history.removedListCount())};
  compact_ = result.logs != 0 || result.lists != 0;
  return result;
}

int Project::forgetHistory(std::int64_t before)
{
  requireNoTrashPending("forget history");
  useForChange();
  use(Access::Read);
  int count = 0;
  requireHistory().readRevisions([&](Revision&& revision) {
    count += revision.number < before ? 1 : 0;
    return true;
  });
  forgetBefore_ = count == 0 ? 0 : before;
  return count;
}

void Project::OptionsOwner::configChanging(Key key)
{
  if (!project_.isClosed_)
    project_.useForChange();
  makeRoom(project_.changedOptions_); // an option that is changed is stored
  const LightweightString<char>* const text = blockOf(project_.options_).find(key);
  before_ = text ? std::optional<std::string>(text->c_str()) : std::nullopt;
}

void Project::OptionsOwner::configChanged(Key key)
{
  std::vector<ChangedOption>& changed = project_.changedOptions_;
  const auto known =
      std::find_if(changed.begin(), changed.end(), [key](const ChangedOption& option) { return option.key == key; });
  if (known == changed.end())
    changed.push_back({key, std::move(before_)});
  else if (known->stored == blockOf(project_.options_).find(key)->c_str())
    changed.erase(known); // it is as it was
}

// --- Storing -------------------------------------------------------------------------------------

bool Project::hasChanges() const
{
  return !dirty_.empty() || !changedOptions_.empty() || !deleted_.empty() || !changedLists_.empty() ||
         inverse_.revision != 0 || compact_ || forgetBefore_ != 0;
}

Changes Project::collect() const
{
  Changes changes;
  std::vector<const Log*> logs(dirty_.begin(), dirty_.end());
  std::sort(logs.begin(), logs.end(), byNumber);
  for (const Log* log : logs)
    changes.logs.push_back(log->toStored());
  changes.deleted.assign(deleted_.begin(), deleted_.end());
  changes.inverse = inverse_;
  changes.origin = currentOrigin();
  changes.compact = compact_;
  changes.forgetBefore = forgetBefore_;
  for (const ChangedOption& option : changedOptions_)
    changes.options.emplace_back(*option.key, blockOf(options_).find(option.key)->c_str());
  for (const auto& [number, list] : changedLists_)
    if (list) {
      changes.lists.push_back(*list);
      if (const auto bytes = listBytes_.find(list->digest); bytes != listBytes_.end())
        changes.listBytes.insert(*bytes);
    } else {
      changes.deletedLists.push_back(number);
    }
  return changes;
}

void Project::forgetChanges()
{
  for (Log* log : dirty_)
    log->isDirty = false;
  dirty_.clear();
  changedOptions_.clear();
  deleted_.clear();
  changedLists_.clear();
  listBytes_.clear();
  inverse_ = {};
  compact_ = false;
  forgetBefore_ = 0;
}

bool Project::commit()
{
  if (!hasChanges()) {
    if (use_ == Use::Write)
      endUse();
    return false;
  }
  if (access_ == Access::Read)
    throw Error(ErrorKind::ReadOnly, subject() + ": changes cannot be stored (opened for reading only)");
  const bool isAlone = use_ == Use::Write || beginUnlessChanged(Access::Write);
  Changes changes;
  try {
    std::vector<StoredLog> merged;
    if (!isAlone) {
      begin(Access::Write);
      merged = differenceWithChangesHere().logs;
    }
    dropEventsOfDeletedLogs();
    changes = collect();
    std::unordered_map<std::int64_t, StoredLog*> written;
    for (StoredLog& log : changes.logs)
      written.emplace(log.number, &log);
    for (StoredLog& log : merged)
      if (const auto found = written.find(log.number); found != written.end())
        *found->second = std::move(log);
  } catch (...) {
    endUse();
    throw;
  }
  use_ = Use::None; // the store ends the use even if it throws
  store_->commit(changes);
  if (isAlone) // else the logs in memory lack what others stored, until that is applied
    position_ = newestPosition();
  unusedFrom_ = nextNumber_;
  forgetChanges();
  return true;
}

} // namespace reelhost::model
