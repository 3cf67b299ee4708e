// SPDX-License-Identifier: Apache-2.0
#include "store/sqlite_store.h"

#include <stdexcept>

#include "store/sqlite_feed.h"
#include "store/sqlite_history.h"
#include "store/sqlite_integrity.h"
#include "store/sqlite_lists.h"
#include "store/sqlite_reader.h"
#include "store/sqlite_writer.h"

namespace reelhost {

using sqlite::Database;

SqliteStore::SqliteStore(std::filesystem::path path, const SchemaSteps& steps) : session_(std::move(path), steps) {}

std::string SqliteStore::subject() const
{
  return session_.subject();
}

void SqliteStore::begin(Access access, std::chrono::milliseconds busyTimeout)
{
  if (access == Access::Write)
    session_.beginWrite(busyTimeout);
  else
    session_.beginRead(busyTimeout);
}

void SqliteStore::end() noexcept
{
  session_.end();
}

template <class Work>
auto SqliteStore::read(Work work)
{
  return session_.guarded("cannot be read", [&] { return work(session_.database()); });
}

ProjectInfo SqliteStore::info()
{
  return read(readInfo);
}

KeyValues SqliteStore::options()
{
  return read(readOptions);
}

std::int64_t SqliteStore::nextNumber()
{
  return read(lastNumber) + 1;
}

void SqliteStore::readReels(const std::function<void(StoredLog&&)>& sink)
{
  read([&](Database& database) { readLogs(database, session_.version(), LogSet::Reels, sink); });
}

void SqliteStore::readOthers(const std::function<void(StoredLog&&)>& sink)
{
  read([&](Database& database) { readLogs(database, session_.version(), LogSet::Others, sink); });
}

std::vector<std::pair<std::string, std::int64_t>> SqliteStore::countOthersByReel()
{
  return read([this](Database& database) { return reelhost::countOthersByReel(database, session_.version()); });
}

void SqliteStore::commit(const Changes& changes)
{
  if (!session_.isWriting())
    throw std::logic_error(subject() + ": commit without begin for writing");
  if (changes.empty()) {
    session_.end();
    return;
  }
  FeedPosition position;
  session_.commit([&](Database& database) {
    writeChanges(database, changes);
    position = newestPosition(database);
  });
  stored_ = position;
}

bool SqliteStore::changedElsewhere()
{
  return session_.changedElsewhere();
}

std::vector<std::string> SqliteStore::check()
{
  const struct Ending { // ends a use that begins here
    SqliteSession* session;
    ~Ending()
    {
      if (session)
        session->end();
    }
  } ending{session_.hasBegun() ? nullptr : &session_};
  std::vector<std::string> problems;
  try {
    if (!session_.hasBegun())
      session_.beginCheck();
    problems = read([this](Database& database) {
      std::vector<std::string> found = integrityProblems(database, session_.version());
      if (const std::string missing = missingBytes(database, session_.path()); !missing.empty())
        found.push_back("only " + missing + " are there");
      readInfo(database); // throws if the tables are damaged
      return found;
    });
  } catch (const Error& error) {
    if (error.kind() != ErrorKind::Unreadable)
      throw;
    problems.push_back(error.what());
  }
  return problems;
}

int SqliteStore::olderVersion()
{
  return session_.olderVersion();
}

void SqliteStore::readRevisions(const std::function<bool(Revision&&)>& sink)
{
  if (keepsHistory())
    read([&](Database& database) { reelhost::readRevisions(database, sink); });
}

RevisionChanges SqliteStore::changesOf(std::int64_t revision)
{
  std::optional<RevisionChanges> changes;
  if (keepsHistory())
    changes = read([&](Database& database) { return reelhost::changesOf(database, revision); });
  if (!changes)
    throw Error(ErrorKind::NotFound, subject() + ": no revision " + std::to_string(revision));
  return std::move(*changes);
}

void SqliteStore::readChangesOfLog(std::int64_t number, const std::function<void(LogChange&&)>& sink)
{
  if (keepsHistory())
    read([&](Database& database) { reelhost::readChangesOfLog(database, number, sink); });
}

void SqliteStore::readChangedLogs(const std::function<void(std::int64_t, std::int64_t, bool)>& sink)
{
  if (keepsHistory())
    read([&](Database& database) { reelhost::readChangedLogs(database, sink); });
}

std::int64_t SqliteStore::trashCount()
{
  if (keepsHistory())
    return read(reelhost::trashCount);
  return read([](Database& database) { // version 1 kept them in the same table
    return database.integer("SELECT count(*) FROM logs WHERE deletion IS NOT NULL");
  });
}

std::int64_t SqliteStore::removedListCount()
{
  return keepsHistory() ? read(reelhost::removedListCount) : 0;
}

FeedPosition SqliteStore::position()
{
  if (!session_.hasBegun())
    return stored_;
  // What the current use brings up to date has no position yet that another use could have seen.
  return session_.olderVersion() == 0 ? read(newestPosition) : FeedPosition();
}

Delta SqliteStore::since(const FeedPosition& before)
{
  if (keepsHistory())
    return read([&](Database& database) { return changesSince(database, before); });
  Delta delta;
  delta.whole = true;
  return delta;
}

FileWatch& SqliteStore::watch()
{
  if (!watch_) {
    std::error_code error;
    const std::filesystem::path path = std::filesystem::canonical(session_.path(), error);
    watch_.emplace(error ? session_.path().native() : path.native());
  }
  return *watch_;
}

std::int64_t SqliteStore::nextListNumber()
{
  return (keepsHistory() ? read(lastListNumber) : 0) + 1;
}

void SqliteStore::readListHeads(const std::function<void(KeptList&&)>& sink)
{
  if (keepsHistory())
    read([&](Database& database) { reelhost::readListHeads(database, sink); });
}

std::vector<ListEvent> SqliteStore::eventsOf(std::int64_t list)
{
  std::optional<std::vector<ListEvent>> events;
  if (keepsHistory())
    events = read([&](Database& database) { return reelhost::eventsOf(database, list); });
  if (!events)
    throw Error(ErrorKind::NotFound, subject() + ": no list " + std::to_string(list));
  return std::move(*events);
}

std::string SqliteStore::listBytes(const Digest& digest)
{
  std::optional<std::string> bytes;
  if (keepsHistory())
    bytes = read([&](Database& database) { return reelhost::listBytes(database, digest); });
  if (!bytes)
    throw Error(ErrorKind::NotFound, subject() + ": no list with these bytes");
  return std::move(*bytes);
}

std::unique_ptr<Store> makeSqliteStore(const std::filesystem::path& path)
{
  return std::make_unique<SqliteStore>(path);
}

} // namespace reelhost
