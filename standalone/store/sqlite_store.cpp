// SPDX-License-Identifier: Apache-2.0
#include "store/sqlite_store.h"

#include <algorithm>
#include <array>
#include <limits>
#include <map>
#include <stdexcept>
#include <thread>

#include <unistd.h>

#include "base/ascii.h"
#include "reelhost/display_text.h"
#include "store/log_fields.h"

namespace reelhost {

namespace {

using sqlite::Cause;
using sqlite::Database;
using sqlite::Failure;
using sqlite::Statement;

/// A file up to this size is looked over whole when it is opened: that takes some 40 ms, which nobody notices. In a
/// larger one damage is found when the page is read, and by check().
constexpr std::uintmax_t lookOverLimit = 8 * 1024 * 1024;

/// check() only reads: it waits for nobody but another process in the middle of a recovery.
constexpr std::chrono::seconds checkPatience(5);

/// Milliseconds between two attempts to have the file to oneself, at most: not the same for everybody, or they would
/// meet again and again.
constexpr int mostPause = 8;

// The columns of a log, as written and read: those that every log fills, then the texts of a shot.
constexpr std::array<std::string_view, 11> plainColumns = {
    "number", "type", "uuid", "tag", "kind", "imported", "entire_medium", "name", "reel_type", "video", "audio"};
constexpr int firstTextColumn = static_cast<int>(plainColumns.size());
constexpr int columnCount = firstTextColumn + static_cast<int>(shotTexts.size());

std::vector<std::string> logColumns()
{
  std::vector<std::string> columns(plainColumns.begin(), plainColumns.end());
  for (const ShotText& text : shotTexts)
    columns.emplace_back(text.text == &Material::reel ? "reel_id" : text.key);
  return columns;
}

/// What @p make makes of each name, with commas between.
template <class Make>
std::string listOf(const std::vector<std::string>& names, Make make)
{
  std::string list;
  for (const std::string& name : names)
    list += (list.empty() ? "" : ", ") + make(name);
  return list;
}

std::string listOf(const std::vector<std::string>& names)
{
  return listOf(names, [](const std::string& name) { return name; });
}

/// Stores a log under its number, over the one that has it.
std::string sqlToStoreLog()
{
  std::vector<std::string> columns = logColumns();
  std::string sql = "INSERT INTO logs(" + listOf(columns) + ") VALUES(" +
                    listOf(columns, [](const std::string&) { return std::string("?"); });
  columns.erase(columns.begin());
  return sql + ") ON CONFLICT(number) DO UPDATE SET " +
         listOf(columns, [](const std::string& column) { return column + " = excluded." + column; });
}

/// The keys of logs that are no columns, read alongside the logs in ascending order of the number.
class FieldRows {
public:
  explicit FieldRows(Database& database)
      : rows_(database, "SELECT log, key, value FROM fields WHERE log >= ?1 ORDER BY log, key")
  {
  }

  void appendTo(KeyValues& fields, std::int64_t number)
  {
    // A few rows of passed-over logs are stepped over; beyond that finding the place anew is cheaper.
    for (int steps = 0; at_ < number; ++steps) {
      if (at_ == nowhere || steps == nearby) {
        rows_.reset();
        rows_.bind(1, number);
      }
      next();
    }
    for (; at_ == number; next())
      fields.emplace_back(rows_.text(1), rows_.text(2));
  }

private:
  void next() { at_ = rows_.step() ? rows_.integer(0) : std::numeric_limits<std::int64_t>::max(); }

  static constexpr std::int64_t nowhere = std::numeric_limits<std::int64_t>::min();
  static constexpr int nearby = 16;
  Statement rows_;
  std::int64_t at_ = nowhere; ///< the log of the row the statement stands on
};

Database::Mode modeFor(const ProjectFile& file)
{
  if (file.writable)
    return Database::Mode::ReadWrite;
  if (file.hasLogIndex)
    return Database::Mode::ReadOnly;
  // Nobody uses the project and the index of the log cannot be made here.
  return file.logSize > 0 ? Database::Mode::Alone : Database::Mode::Immutable;
}

/// Whether other processes may use the file while it is open, and SQLite counts the versions they make of it.
bool isShared(Database::Mode mode)
{
  return mode == Database::Mode::ReadWrite || mode == Database::Mode::ReadOnly;
}

/// The lines of an integrity check without their headings; empty when all is well.
std::vector<std::string> problemsFrom(Database& database, const char* sql)
{
  std::vector<std::string> problems;
  Statement rows(database, sql);
  while (rows.step()) {
    std::string_view text = rows.text(0);
    while (!text.empty()) {
      const std::size_t end = std::min(text.find('\n'), text.size());
      const std::string_view line = text.substr(0, end);
      if (line != "ok" && line.substr(0, 3) != "***")
        problems.push_back(displayText(line));
      text.remove_prefix(std::min(end + 1, text.size()));
    }
  }
  return problems;
}

} // namespace

SqliteStore::SqliteStore(std::filesystem::path path, const SchemaSteps& steps) : path_(std::move(path)), steps_(steps)
{
}

SqliteStore::~SqliteStore()
{
  end();
}

std::string SqliteStore::subject() const
{
  return displayText(path_.native());
}

// --- Beginning and ending a use
// ----------------------------------------------------------------------------------------

void SqliteStore::begin(Access access, std::chrono::milliseconds patience)
{
  beginUse(access, patience, Look::WholeFile);
  try {
    seen_ = guarded("cannot be read", [this] { return seenNow(); });
  } catch (...) {
    end();
    throw;
  }
}

void SqliteStore::beginUse(Access access, std::chrono::milliseconds patience, Look look)
{
  end();
  const ProjectFile file = inspectProjectFile(path_);
  if (access == Access::Write && !file.writable)
    throw Error(ErrorKind::ReadOnly, subject() + ": read-only (" + file.whyNot + ")");
  Database::Mode mode = modeFor(file);
  const auto last = std::chrono::steady_clock::now() + patience;
  for (;;) {
    try {
      if (database_ && (mode != mode_ || !isShared(mode) || file.path != file_.path || database_->moved()))
        close();
      use(file, mode, access, patience, look);
      return;
    } catch (const Failure& failure) {
      const Error error = errorFor("cannot be opened", failure);
      end();
      if (failure.cause() == Cause::Busy) {
        if (mode != Database::Mode::Exclusive || std::chrono::steady_clock::now() >= last)
          throw error;
        // Not in SQLite, which would go on sharing the file while it waits: two could do that for ever.
        std::this_thread::sleep_for(std::chrono::milliseconds(1 + ::getpid() % mostPause));
        continue;
      }
      close();
      const bool noIndex = failure.cause() == Cause::CannotOpen || failure.cause() == Cause::ReadOnly;
      if (mode == Database::Mode::ReadOnly && noIndex && file.logSize == 0)
        mode = Database::Mode::Immutable; // the index is a remnant, or was made for others only; the file is whole
      else if (mode == Database::Mode::ReadWrite && access == Access::Read && failure.cause() == Cause::Full)
        mode = Database::Mode::Exclusive; // there is no room for the index
      else
        throw error;
    } catch (...) {
      end();
      close();
      throw;
    }
  }
}

void SqliteStore::use(const ProjectFile& file, Database::Mode mode, Access access, std::chrono::milliseconds patience,
                      Look look)
{
  const bool isNew = !database_;
  if (isNew)
    database_.emplace(file.path, mode);
  // Before anything that may have to wait: another process may be closing the file behind itself.
  database_->setPatience(mode == Database::Mode::Exclusive ? std::chrono::milliseconds(0) : patience);
  if (isNew)
    greet(file, mode);
  startUse(access);
  if (!lookedAt_ && look == Look::WholeFile)
    lookOver();
  if (database_->integer("PRAGMA user_version") < static_cast<std::int64_t>(steps_.size())) {
    endUse();
    upgrade();
    startUse(access);
  }
}

/// The first look at a file that was just opened.
void SqliteStore::greet(const ProjectFile& file, Database::Mode mode)
{
  mode_ = mode;
  file_ = file;
  lookedAt_ = false;
  // Until the file is known to be a project in order, nothing may move from its log into it.
  database_->keepLogOnClose(file.logSize > 0);
  const FileStart start = readFileStart(database_->readStart(100));
  if (!start.isSqlite)
    refuse(ErrorKind::Unreadable, "no project (not an SQLite file)");
  if (start.applicationId != projectApplicationId)
    refuse(ErrorKind::Unreadable, "no project (an SQLite file of another application)");
  refuseUnknown(start.version);
  database_->execute("PRAGMA foreign_keys = ON; PRAGMA synchronous = FULL; PRAGMA cell_size_check = ON");
}

void SqliteStore::startUse(Access access)
{
  database_->execute(access == Access::Write ? "BEGIN IMMEDIATE" : "BEGIN");
  use_ = access == Access::Write ? Use::Write : Use::Read;
  refuseUnknown(database_->integer("PRAGMA user_version")); // the first read: it takes the snapshot
}

void SqliteStore::refuseUnknown(std::int64_t version) const
{
  const auto known = static_cast<std::int64_t>(steps_.size());
  if (version > known)
    refuse(ErrorKind::Unreadable, "of a newer version (" + std::to_string(version) + "; this program reads up to " +
                                      std::to_string(known) + ")");
  if (version < 1)
    refuse(ErrorKind::Unreadable, "damaged (version " + std::to_string(version) + ")");
}

/// "N of M bytes" when the start of the file says that some of it is missing; else empty. What is in the write-ahead
/// log may not have reached the file, so nothing can be said while there is one.
std::string SqliteStore::cutShort()
{
  const std::int64_t expected = readFileStart(database_->readStart(100)).bytes;
  const std::int64_t there = database_->fileSize();
  if (there >= expected || inspectProjectFile(path_).logSize > 0)
    return {};
  return std::to_string(there) + " of " + std::to_string(expected) + " bytes";
}

void SqliteStore::lookOver()
{
  if (const std::string missing = cutShort(); !missing.empty())
    refuse(ErrorKind::Unreadable, "damaged (" + missing + ")");
  if (file_.size + file_.logSize <= lookOverLimit) {
    const std::vector<std::string> problems = problemsFrom(*database_, "PRAGMA quick_check(1)");
    if (!problems.empty())
      refuse(ErrorKind::Unreadable, "damaged (" + problems.front() + ")");
  }
  lookedAt_ = true;
  database_->keepLogOnClose(false);
}

void SqliteStore::upgrade()
{
  const auto version = database_->integer("PRAGMA user_version");
  if (!file_.writable)
    refuse(ErrorKind::Unreadable, "of an older version (" + std::to_string(version) +
                                      ") and cannot be brought up to date (" + file_.whyNot + ")");
  startUse(Access::Write);
  bringUpToDate(*database_, steps_);
  database_->execute("COMMIT");
  use_ = Use::None;
}

void SqliteStore::end() noexcept
{
  endUse();
  if (mode_ == Database::Mode::Exclusive)
    database_.reset(); // others wait for it
}

void SqliteStore::endUse() noexcept
{
  if (use_ == Use::None)
    return;
  use_ = Use::None;
  try {
    if (database_->inTransaction()) // an error may have ended it already
      database_->execute("ROLLBACK");
  } catch (const std::exception&) {
    close();
  }
}

void SqliteStore::close() noexcept
{
  database_.reset();
  if (seen_)
    seen_ = changed;
}

// --- Reading
// -----------------------------------------------------------------------------------------------------------

ProjectInfo SqliteStore::info()
{
  return guarded("cannot be read", [this] {
    ProjectInfo info;
    bool named = false, identified = false;
    Statement rows(*database_, "SELECT key, value FROM project");
    while (rows.step()) {
      const std::string_view key = rows.text(0);
      const std::string_view value = rows.text(1);
      if (key == "name") {
        info.name = value;
        named = true;
      } else if (key == "uuid" && value.size() == info.uuid.size()) {
        std::copy(value.begin(), value.end(), info.uuid.begin());
        identified = true;
      } else if (key == "frame_rate") {
        info.frameRate = static_cast<int>(rows.integer(1));
      } else if (key == "output_frame_rate") {
        info.outputFrameRate = static_cast<int>(rows.integer(1));
      }
    }
    if (!named || !identified)
      refuse(ErrorKind::Unreadable, "damaged (the project has no name or no uuid)");
    return info;
  });
}

KeyValues SqliteStore::options()
{
  return guarded("cannot be read", [this] {
    KeyValues options;
    Statement rows(*database_, "SELECT key, value FROM options ORDER BY key");
    while (rows.step())
      options.emplace_back(rows.text(0), rows.text(1));
    return options;
  });
}

std::int64_t SqliteStore::nextNumber()
{
  return guarded("cannot be read", [this] { return lastNumber() + 1; });
}

std::int64_t SqliteStore::lastNumber()
{
  return database_->integer("SELECT value FROM project WHERE key = 'last_number'");
}

void SqliteStore::readReels(const std::function<void(StoredLog&&)>& sink)
{
  readLogs("type = 9 AND deletion IS NULL", sink);
}

void SqliteStore::readOthers(const std::function<void(StoredLog&&)>& sink)
{
  readLogs("type <> 9 AND deletion IS NULL", sink);
}

void SqliteStore::readLastDeletion(const std::function<void(StoredLog&&)>& sink)
{
  readLogs("deletion = (SELECT max(deletion) FROM logs WHERE deletion IS NOT NULL)", sink);
}

void SqliteStore::readLogs(const char* condition, const std::function<void(StoredLog&&)>& sink)
{
  guarded("cannot be read", [&] {
    Statement rows(*database_, "SELECT " + listOf(logColumns()) + " FROM logs WHERE " + condition + " ORDER BY number");
    FieldRows fields(*database_);
    while (rows.step()) {
      StoredLog log;
      log.fields.reserve(shotTexts.size());
      log.number = rows.integer(0);
      log.type = static_cast<int>(rows.integer(1));
      const std::string_view uuid = rows.text(2);
      const std::string_view kind = rows.text(4);
      if (uuid.size() != log.uuid.size() || kind.size() != 1)
        refuse(ErrorKind::Unreadable, "damaged (log " + std::to_string(log.number) + " has no valid identity)");
      std::copy(uuid.begin(), uuid.end(), log.uuid.begin());
      log.tag = static_cast<std::uint16_t>(rows.integer(3));
      log.kind = kind[0];
      log.imported = rows.integer(5) != 0;
      log.entireMedium = rows.integer(6) != 0;
      log.name = rows.text(7);
      log.reelType = rows.text(8);
      log.videoChannels = static_cast<int>(rows.integer(9));
      log.audioChannels = static_cast<int>(rows.integer(10));
      for (std::size_t i = 0; i < shotTexts.size(); ++i)
        if (const int column = firstTextColumn + static_cast<int>(i); !rows.isNull(column))
          log.fields.emplace_back(shotTexts[i].key, rows.text(column));
      fields.appendTo(log.fields, log.number);
      sink(std::move(log));
    }
  });
}

std::vector<std::pair<std::string, std::int64_t>> SqliteStore::countOthersByReel()
{
  return guarded("cannot be read", [this] {
    std::vector<std::pair<std::string, std::int64_t>> counts;
    Statement rows(*database_, "SELECT reel_id, count(*) FROM logs WHERE type <> 9 AND deletion IS NULL "
                               "AND reel_id <> '' GROUP BY reel_id COLLATE NOCASE ORDER BY reel_id COLLATE NOCASE");
    while (rows.step())
      counts.emplace_back(reeldb::base::fold(rows.text(0)), rows.integer(1));
    return counts;
  });
}

std::vector<std::int64_t> SqliteStore::lastDeletion()
{
  return guarded("cannot be read", [this] {
    std::vector<std::int64_t> numbers;
    Statement rows(*database_, "SELECT number FROM logs WHERE deletion = "
                               "(SELECT max(deletion) FROM logs WHERE deletion IS NOT NULL) ORDER BY number");
    while (rows.step())
      numbers.push_back(rows.integer(0));
    return numbers;
  });
}

std::int64_t SqliteStore::binCount()
{
  return guarded("cannot be read",
                 [this] { return database_->integer("SELECT count(*) FROM logs WHERE deletion IS NOT NULL"); });
}

// --- Storing
// -----------------------------------------------------------------------------------------------------------

void SqliteStore::commit(const Changes& changes)
{
  if (use_ != Use::Write)
    throw std::logic_error(subject() + ": commit without begin for writing");
  if (changes.empty()) {
    end();
    return;
  }
  try {
    write(changes);
    database_->execute("COMMIT");
  } catch (const Failure& failure) {
    const Error error = errorFor("not stored", failure);
    end();
    throw error;
  } catch (...) {
    end();
    throw;
  }
  use_ = Use::None;
  if (database_->text("PRAGMA journal_mode") != "wal")
    shareAgain();
}

void SqliteStore::write(const Changes& changes)
{
  Database& database = *database_;
  if (changes.undelete)
    database.execute("UPDATE logs SET deletion = NULL "
                     "WHERE deletion = (SELECT max(deletion) FROM logs WHERE deletion IS NOT NULL)");
  if (changes.compact)
    database.execute("DELETE FROM logs WHERE deletion IS NOT NULL");
  if (!changes.logs.empty())
    writeLogs(changes.logs);
  if (!changes.deleted.empty()) {
    const std::int64_t deletion = database.integer("SELECT max(deletion) FROM logs WHERE deletion IS NOT NULL") + 1;
    Statement remove(database, "UPDATE logs SET deletion = ?1 WHERE number = ?2 AND deletion IS NULL");
    for (const std::int64_t number : changes.deleted)
      remove.bind(1, deletion).bind(2, number).run();
  }
  Statement option(database, "INSERT OR REPLACE INTO options(key, value) VALUES(?1, ?2)");
  for (const auto& [key, value] : changes.options)
    option.bind(1, key).bind(2, value).run();
}

void SqliteStore::writeLogs(const std::vector<StoredLog>& logs)
{
  Database& database = *database_;
  Statement put(database, sqlToStoreLog());
  Statement dropFields(database, "DELETE FROM fields WHERE log = ?1");
  Statement putField(database, "INSERT OR REPLACE INTO fields(log, key, value) VALUES(?1, ?2, ?3)");
  const std::int64_t lastBefore = lastNumber();
  std::int64_t last = lastBefore;
  for (const StoredLog& log : logs) {
    put.bind(1, log.number).bind(2, log.type).bindBlob(3, log.uuid.data(), log.uuid.size());
    put.bind(4, log.tag).bind(5, std::string_view(&log.kind, 1)).bind(6, log.imported ? 1 : 0);
    put.bind(7, log.entireMedium ? 1 : 0).bind(8, log.name).bind(9, log.reelType);
    put.bind(10, log.videoChannels).bind(11, log.audioChannels);
    for (int column = firstTextColumn; column < columnCount; ++column)
      put.bindNull(column + 1);
    for (const auto& [key, value] : log.fields)
      if (const std::size_t place = leadingPlace(key); place < shotTexts.size())
        put.bind(firstTextColumn + static_cast<int>(place) + 1, value);
    put.run();
    if (log.number <= lastBefore)
      dropFields.bind(1, log.number).run();
    for (const auto& [key, value] : log.fields)
      if (leadingPlace(key) == shotTexts.size())
        putField.bind(1, log.number).bind(2, key).bind(3, value).run();
    last = std::max(last, log.number);
  }
  if (last != lastBefore)
    Statement(database, "UPDATE project SET value = ?1 WHERE key = 'last_number'").bind(1, last).run();
}

void SqliteStore::shareAgain() noexcept
{
  // Some tools copy a project without its write-ahead mode, and readers then keep writers away. Not now means next
  // time.
  try {
    database_->execute("PRAGMA journal_mode = WAL");
  } catch (const std::exception&) {
  }
}

// --- Looking around
// ----------------------------------------------------------------------------------------------------

SqliteStore::Seen SqliteStore::seenNow()
{
  if (!isShared(mode_)) {
    const ProjectFile file = inspectProjectFile(path_);
    return {file.modified, static_cast<std::int64_t>(file.size + file.logSize)};
  }
  return {database_->integer("PRAGMA data_version"), 0};
}

bool SqliteStore::changedElsewhere()
{
  if (use_ != Use::None || !seen_)
    return false;
  return guarded("cannot be read", [this] {
    if (mode_ != Database::Mode::Exclusive && (!database_ || database_->moved())) {
      close();
      seen_.reset();
      return true;
    }
    try {
      const Seen now = seenNow();
      return std::exchange(seen_, now) != now;
    } catch (const Failure& failure) {
      if (failure.cause() == Cause::Busy) // asked again later it will tell
        return false;
      throw;
    }
  });
}

std::vector<std::string> SqliteStore::check()
{
  const bool begun = use_ != Use::None;
  std::vector<std::string> problems;
  try {
    if (!begun)
      beginUse(Access::Read, checkPatience, Look::Start);
    problems = guarded("cannot be read", [this] { return examine(); });
  } catch (const Error& error) {
    if (error.kind() != ErrorKind::Unreadable) {
      if (!begun)
        end();
      throw;
    }
    problems.push_back(error.what());
  }
  if (!begun)
    end();
  return problems;
}

std::vector<std::string> SqliteStore::examine()
{
  std::vector<std::string> problems = problemsFrom(*database_, "PRAGMA integrity_check");
  if (const std::string missing = cutShort(); !missing.empty())
    problems.push_back("only " + missing + " are there");
  const auto add = [&](const char* sql, const char* what) {
    Statement rows(*database_, sql);
    while (rows.step())
      problems.push_back("log " + std::to_string(rows.integer(0)) + ": " + what);
  };
  add("SELECT DISTINCT log FROM fields WHERE log NOT IN (SELECT number FROM logs)", "fields without a log");
  add("SELECT number FROM logs WHERE number > (SELECT value FROM project WHERE key = 'last_number')",
      "a number that was not given out");
  add("SELECT max(number) FROM logs GROUP BY uuid, tag, kind HAVING count(*) > 1", "the identity of another log");
  info();
  return problems;
}

// --- Errors
// ------------------------------------------------------------------------------------------------------------

template <class Work>
auto SqliteStore::guarded(const char* fact, Work work) -> decltype(work())
{
  try {
    return work();
  } catch (const Failure& failure) {
    throw errorFor(fact, failure);
  }
}

void SqliteStore::refuse(ErrorKind kind, const std::string& fact) const
{
  throw Error(kind, subject() + ": " + fact);
}

Error SqliteStore::errorFor(const char* fact, const Failure& failure)
{
  std::string cause = displayText(failure.what());
  switch (failure.cause()) {
  case Cause::Busy: {
    const std::string holder = writeLockHolder(file_.path);
    return Error(ErrorKind::Busy,
                 subject() + ": held by another process" + (holder.empty() ? "" : " (" + holder + ")"));
  }
  case Cause::Damaged:
    try {
      if (const std::string missing = database_ ? cutShort() : ""; !missing.empty())
        cause = missing;
    } catch (const std::exception&) { // the first cause is the one to tell
    }
    return Error(ErrorKind::Unreadable, subject() + ": damaged (" + cause + ")");
  case Cause::ReadOnly:
    return Error(ErrorKind::ReadOnly, subject() + ": read-only (" + cause + ")");
  case Cause::Constraint:
    return Error(ErrorKind::Refused, subject() + ": " + fact + " (" + cause + ")");
  case Cause::CannotOpen:
  case Cause::Full:
  case Cause::Other:
    break;
  }
  return Error(ErrorKind::Io, subject() + ": " + fact + " (" + cause + ")");
}

std::unique_ptr<Store> makeSqliteStore(const std::filesystem::path& path)
{
  return std::make_unique<SqliteStore>(path);
}

} // namespace reelhost
