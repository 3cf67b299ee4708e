// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <map>
#include <optional>
#include <random>
#include <set>

#include "base/ascii.h"
#include "host/codes.h"
#include "reelhost/feed.h"
#include "reelhost/history.h"
#include "store/log_fields.h"
#include "store/log_image.h"
#include "store/revisions.h"

namespace reelhost {

namespace {

template <class Record>
using Shared = std::shared_ptr<const Record>; ///< null: no such log or list
template <class Record>
using Records = std::map<std::int64_t, Shared<Record>>; ///< by number
using Options = std::map<std::string, std::string>;

/// One revision and what it found.
struct Commit {
  template <class Record>
  struct Before {
    Shared<Record> record;
    bool forgotten = false;
    bool isNew = false; ///< there had never been such a log
  };
  template <class Record>
  using Found = std::map<std::int64_t, Before<Record>>;
  Revision revision;
  Found<StoredLog> logs; ///< what each log was that it changed
  Found<KeptList> lists;
  std::optional<Options> options; ///< all of them, if it changed options
};

/// All that a project holds: a value that is quick to copy.
struct Content {
  Options options;
  Records<StoredLog> logs;
  Records<KeptList> lists;
  std::map<Digest, Shared<std::string>> listBytes;
  std::int64_t lastNumber = 0, lastRevision = 0, lastList = 0;
  std::vector<Commit> commits; ///< by number
};

/// Changes the content as one revision.
class RevisionWriter {
public:
  explicit RevisionWriter(Content& content) : content_(content), lastBefore_(content.lastNumber) {}

  void writeLogs(const std::vector<StoredLog>& logs)
  {
    for (const StoredLog& log : logs) {
      StoredLog whole = log;
      whole.fields = arranged(log.fields);
      const bool isNew = log.number > lastBefore_;
      content_.lastNumber = std::max(content_.lastNumber, log.number);
      const auto there = content_.logs.find(log.number);
      if (there == content_.logs.end()) {
        commit_.logs[log.number].isNew = isNew;
        ++commit_.revision.created;
      } else if (imageOf(*there->second) != imageOf(whole)) {
        commit_.logs[log.number].record = there->second;
        ++commit_.revision.changed;
      }
      content_.logs[log.number] = std::make_shared<const StoredLog>(std::move(whole));
    }
  }

  void deleteLogs(const std::vector<std::int64_t>& numbers)
  {
    for (const std::int64_t number : numbers)
      if (auto gone = content_.logs.extract(number)) {
        commit_.logs[number].record = std::move(gone.mapped());
        ++commit_.revision.deleted;
      }
  }

  void setOptions(const KeyValues& options, const std::vector<std::string>& unset)
  {
    const Options before = content_.options;
    for (const auto& [key, value] : options)
      content_.options[key] = value;
    for (const std::string& key : unset)
      content_.options.erase(key);
    if (content_.options == before)
      return;
    commit_.options = before;
    commit_.revision.setOptions = true;
  }

  void writeLists(const std::vector<KeptList>& lists, const std::map<Digest, std::string>& allBytes)
  {
    for (const auto& [digest, bytes] : allBytes)
      content_.listBytes.try_emplace(digest, std::make_shared<const std::string>(bytes));
    for (const KeptList& list : lists) {
      KeptList whole = list;
      whole.eventCount = static_cast<std::int64_t>(list.events.size());
      content_.lastList = std::max(content_.lastList, list.number);
      Shared<KeptList>& there = content_.lists[list.number];
      if (there && *there == whole)
        continue;
      commit_.lists[list.number].record = std::exchange(there, std::make_shared<const KeptList>(std::move(whole)));
      ++commit_.revision.lists;
    }
  }

  void deleteLists(const std::vector<std::int64_t>& numbers)
  {
    for (const std::int64_t number : numbers)
      if (auto gone = content_.lists.extract(number)) {
        commit_.lists[number].record = std::move(gone.mapped());
        ++commit_.revision.lists;
      }
  }

  void finish(const Origin& origin, const Inverse& inverse, bool always = false)
  {
    if (!always && !commit_.revision.hasChanges())
      return;
    Revision& revision = commit_.revision;
    revision.number = ++content_.lastRevision;
    std::random_device source;
    for (unsigned char& byte : revision.token)
      byte = static_cast<unsigned char>(source());
    revision.origin = origin;
    revision.origin.command.resize(std::min(origin.command.size(), longestCommand));
    revision.takesBack = inverse.revision;
    revision.isRedo = inverse.isRedo;
    content_.commits.push_back(std::move(commit_));
  }

private:
  Content& content_;
  const std::int64_t lastBefore_;
  Commit commit_;
};

KeyValues listOf(const Options& options)
{
  return KeyValues(options.begin(), options.end());
}

class MemoryStore final : public Store, public History, public Feed, public Lists {
public:
  MemoryStore(const ProjectInfo& info, const KeyValues& options) : info_(info)
  {
    for (const auto& [key, value] : options)
      content_.options[key] = value;
  }

  std::string subject() const override { return "memory"; }
  void begin(Access, std::chrono::milliseconds) override {}
  void end() noexcept override {}
  ProjectInfo info() override { return info_; }
  KeyValues options() override { return listOf(content_.options); }
  std::int64_t nextNumber() override { return content_.lastNumber + 1; }

  void readReels(const std::function<void(StoredLog&&)>& sink) override { read(sink, true); }
  void readOthers(const std::function<void(StoredLog&&)>& sink) override { read(sink, false); }

  std::vector<std::pair<std::string, std::int64_t>> countOthersByReel() override
  {
    std::map<std::string, std::int64_t> counts;
    for (const auto& [number, log] : content_.logs) {
      if (log->type == codes::reelLog)
        continue;
      for (const auto& [key, value] : log->fields)
        if (key == shotTexts.front().key && !value.empty())
          ++counts[reeldb::base::fold(value)];
    }
    return {counts.begin(), counts.end()};
  }

  void commit(const Changes& changes) override
  {
    if (changes.empty())
      return;
    Content after = content_; // nothing has changed when memory runs short
    writeRevisions(
        changes, [&] { return RevisionWriter(after); }, [&] { removeForGood(after, changes); });
    after.lastNumber = std::max(after.lastNumber, changes.reservedLogs);
    after.lastList = std::max(after.lastList, changes.reservedLists);
    content_ = std::move(after);
  }

  bool changedElsewhere() override { return false; }
  std::vector<std::string> check() override { return {}; }

  History* history() override { return this; }
  int olderVersion() override { return 0; }

  void readRevisions(const std::function<bool(Revision&&)>& sink) override
  {
    for (auto commit = content_.commits.rbegin(); commit != content_.commits.rend(); ++commit)
      if (!sink(Revision(commit->revision)))
        return;
  }

  RevisionChanges changesOf(std::int64_t number) override
  {
    const auto commit = std::find_if(content_.commits.begin(), content_.commits.end(),
                                     [&](const Commit& c) { return c.revision.number == number; });
    if (commit == content_.commits.end())
      throw Error(ErrorKind::NotFound, subject() + ": no revision " + std::to_string(number));
    RevisionChanges changes;
    for (const auto& [log, before] : commit->logs)
      changes.logs.push_back(changeOf(log, commit, &Commit::logs, content_.logs));
    for (const auto& [list, before] : commit->lists)
      changes.lists.push_back(changeOf(list, commit, &Commit::lists, content_.lists));
    if (!commit->options)
      return changes;
    changes.optionsBefore = listOf(*commit->options);
    const auto next = std::find_if(commit + 1, content_.commits.end(), [](const Commit& c) { return !!c.options; });
    changes.optionsAfter = listOf(next == content_.commits.end() ? content_.options : *next->options);
    return changes;
  }

  void readChangesOfLog(std::int64_t number, const std::function<void(LogChange&&)>& sink) override
  {
    for (auto commit = content_.commits.begin(); commit != content_.commits.end(); ++commit)
      if (commit->logs.count(number) != 0)
        sink(changeOf(number, commit, &Commit::logs, content_.logs));
  }

  void readChangedLogs(const std::function<void(std::int64_t, std::int64_t, bool)>& sink) override
  {
    for (const Commit& commit : content_.commits)
      for (const auto& [log, before] : commit.logs)
        sink(commit.revision.number, log, before.isNew);
  }

  void giveSpaceBack() override {}

  std::int64_t trashCount() override { return keptOfDeleted(&Commit::logs, content_.logs); }
  std::int64_t removedListCount() override { return keptOfDeleted(&Commit::lists, content_.lists); }

  Feed* feed() override { return this; }

  FeedPosition position() override
  {
    return content_.commits.empty() ? FeedPosition() : positionOf(content_.commits.back());
  }

  Delta since(const FeedPosition& before) override
  {
    Delta delta;
    auto commit = content_.commits.begin();
    if (before.revision != 0) {
      while (commit != content_.commits.end() && positionOf(*commit) != before)
        ++commit;
      delta.whole = commit == content_.commits.end();
      if (!delta.whole)
        ++commit;
    } else {
      delta.whole = content_.commits.empty() || content_.commits.front().revision.number != 1;
    }
    Commit::Found<StoredLog> then;
    bool setOptions = false;
    for (; !delta.whole && commit != content_.commits.end(); ++commit) {
      then.insert(commit->logs.begin(), commit->logs.end());
      setOptions = setOptions || commit->options;
    }
    for (const auto& [number, was] : then) {
      const auto now = content_.logs.find(number);
      if (now != content_.logs.end()) {
        if (!was.record || imageOf(*was.record) != imageOf(*now->second))
          delta.logs.push_back(*now->second);
      } else if (was.record) {
        delta.gone.push_back({number, was.record->uuid, was.record->tag, was.record->kind});
      } else if (was.forgotten) {
        delta = {};
        delta.whole = true;
        return delta;
      }
    }
    if (setOptions)
      delta.options = options();
    return delta;
  }

  int waitHandle() override { return -1; } // no other process has this project
  std::string whyNoWaitHandle() override { return {}; }
  AskAgain readEvents() noexcept override { return std::nullopt; }

  Lists* lists() override { return this; }
  std::int64_t nextListNumber() override { return content_.lastList + 1; }

  void readListHeads(const std::function<void(KeptList&&)>& sink) override
  {
    for (const auto& [number, list] : content_.lists)
      sink({list->number, list->digest, list->file, list->title, list->format, list->eventCount, {}});
  }

  std::vector<ListEvent> eventsOf(std::int64_t number) override
  {
    const auto list = content_.lists.find(number);
    if (list == content_.lists.end())
      throw Error(ErrorKind::NotFound, subject() + ": no list " + std::to_string(number));
    return list->second->events;
  }

  std::string listBytes(const Digest& digest) override
  {
    const auto bytes = content_.listBytes.find(digest);
    if (bytes == content_.listBytes.end())
      throw Error(ErrorKind::NotFound, subject() + ": no list with these bytes");
    return *bytes->second;
  }

private:
  using Commits = std::vector<Commit>;

  static FeedPosition positionOf(const Commit& commit) { return {commit.revision.number, commit.revision.token}; }

  void read(const std::function<void(StoredLog&&)>& sink, bool reels)
  {
    for (const auto& [number, log] : content_.logs)
      if ((log->type == codes::reelLog) == reels)
        sink(StoredLog(*log));
  }

  /// @p found is what the commits found of these records, and @p records are those of now.
  template <class Record>
  RecordChange<Record> changeOf(std::int64_t number, Commits::const_iterator commit,
                                Commit::Found<Record> Commit::*found, const Records<Record>& records) const
  {
    const auto valueOf = [](const Shared<Record>& record) { return record ? std::optional(*record) : std::nullopt; };
    const Commit::Before<Record>& before = ((*commit).*found).at(number);
    RecordChange<Record> change{
        commit->revision.number, number, valueOf(before.record), {}, before.forgotten, 0, false};
    const auto there = records.find(number);
    change.isThere = there != records.end();
    const auto next = std::find_if(commit + 1, content_.commits.end(),
                                   [&](const Commit& c) { return (c.*found).count(number) != 0; });
    if (next != content_.commits.end()) {
      change.after = valueOf(((*next).*found).at(number).record);
      change.next = next->revision.number;
    } else if (change.isThere) {
      change.after = *there->second;
    }
    return change;
  }

  /// The number of records that the commits found and that are not there any more.
  template <class Record>
  std::int64_t keptOfDeleted(Commit::Found<Record> Commit::*found, const Records<Record>& records) const
  {
    std::set<std::int64_t> gone;
    for (const Commit& commit : content_.commits)
      for (const auto& [number, before] : commit.*found)
        if (before.record && records.count(number) == 0)
          gone.insert(number);
    return static_cast<std::int64_t>(gone.size());
  }

  /// Forgets what the commits found of records that are not there any more.
  template <class Record>
  static void forgetDeleted(Commit::Found<Record>& found, const Records<Record>& records)
  {
    for (auto& [number, before] : found)
      if (before.record && records.count(number) == 0)
        before = {{}, true, before.isNew};
  }

  static void removeForGood(Content& content, const Changes& changes)
  {
    std::erase_if(content.commits, [&](const Commit& commit) { return commit.revision.number < changes.forgetBefore; });
    if (changes.compact)
      for (Commit& commit : content.commits) {
        forgetDeleted(commit.logs, content.logs);
        forgetDeleted(commit.lists, content.lists);
      }
    if (!changes.compact && changes.forgetBefore == 0)
      return;
    std::set<Digest> named;
    for (const auto& [number, list] : content.lists)
      named.insert(list->digest);
    for (const Commit& commit : content.commits)
      for (const auto& [number, before] : commit.lists)
        if (before.record)
          named.insert(before.record->digest);
    std::erase_if(content.listBytes, [&](const auto& entry) { return named.count(entry.first) == 0; });
  }

  const ProjectInfo info_;
  Content content_;
};

} // namespace

std::unique_ptr<Store> makeMemoryStore(const ProjectInfo& info, const KeyValues& options)
{
  return std::make_unique<MemoryStore>(info, options);
}

} // namespace reelhost
