// SPDX-License-Identifier: Apache-2.0
#include "store/sqlite_session.h"

#include <stdexcept>
#include <thread>

#include <sys/stat.h>
#include <unistd.h>

#include "reelhost/display_text.h"
#include "store/sqlite_errors.h"
#include "store/sqlite_integrity.h"

namespace reelhost {

using sqlite::Cause;
using sqlite::Database;
using sqlite::Failure;
using sqlite::Transaction;

namespace {

/// A file up to this size is verified completely when it is opened, which takes up to 40 ms. Damage in a larger file is
/// found when the damaged page is read, and by Store::check.
constexpr std::uintmax_t verifyLimit = 8U << 20;

/// The longest pause in milliseconds between two attempts to lock the file exclusively. Processes pause for different
/// times: with equal pauses they would collide again.
constexpr int mostPause = 8;

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

FileIdentity identityOf(const std::string& path)
{
  struct stat status = {};
  if (::stat(path.c_str(), &status) != 0)
    return std::nullopt;
  return std::pair(status.st_dev, status.st_ino);
}

} // namespace

std::string SqliteSession::subject() const
{
  return displayText(path_.native());
}

void SqliteSession::begin(Kind kind, std::chrono::milliseconds busyTimeout, Purpose purpose)
{
  end();
  const ProjectFile file = inspectProjectFile(path_);
  if (kind == Kind::Write && !file.writable)
    refuse(ErrorKind::ReadOnly, "read-only (" + file.whyNot + ")");
  Mode mode = modeFor(file);
  const auto last = std::chrono::steady_clock::now() + busyTimeout;
  for (;;) {
    try {
      open(file, mode, busyTimeout);
      start(kind, purpose);
      return;
    } catch (const Failure& failure) {
      const Error error = errorFor("cannot be opened", failure);
      const Cause cause = failure.cause();
      end();
      if (cause == Cause::Busy && isShared(mode))
        throw error; // the connection stays open, because changedElsewhere compares its version
      close();
      const bool noIndex = cause == Cause::CannotOpen || cause == Cause::ReadOnly;
      if (mode == Mode::Exclusive && cause == Cause::Busy && std::chrono::steady_clock::now() < last)
        // SQLite itself must not wait here: it keeps its shared lock meanwhile, so two processes could wait for ever.
        std::this_thread::sleep_for(std::chrono::milliseconds(1 + ::getpid() % mostPause));
      else if (mode == Mode::ReadOnly && noIndex && file.logSize == 0)
        mode = Mode::Immutable; // the index is left over or belongs to others; the file alone is complete
      else if (mode == Mode::ReadWrite && kind == Kind::Read && cause == Cause::Full)
        mode = Mode::Exclusive; // the disk has no room for the index
      else
        throw error;
    } catch (...) {
      close();
      throw;
    }
  }
}

void SqliteSession::open(const ProjectFile& file, Mode mode, std::chrono::milliseconds busyTimeout)
{
  if (database_ && (mode != mode_ || !isShared(mode) || file.path != file_.path || isReplaced()))
    close();
  const bool isNew = !database_;
  if (isNew)
    database_.emplace(file.path, mode);
  // This comes before all calls that may wait, because another process may just be closing the file.
  database_->setBusyTimeout(mode == Mode::Exclusive ? std::chrono::milliseconds(0) : busyTimeout);
  if (!isNew)
    return;
  mode_ = mode;
  file_ = file;
  log_.reset();
  verified_ = false;
  // Until the file has been verified, nothing may be written from its log into it.
  database_->keepLogOnClose(file.logSize > 0);
  const FileStart start = readFileStart(database_->readStart(100));
  if (!start.isSqlite)
    refuse(ErrorKind::Unreadable, "not a project (not an SQLite file)");
  if (start.applicationId != projectApplicationId)
    refuse(ErrorKind::Unreadable, "not a project (an SQLite file of another application)");
  requireKnown(start.version);
  database_->execute("PRAGMA foreign_keys = ON; PRAGMA synchronous = FULL; PRAGMA cell_size_check = ON");
}

void SqliteSession::start(Kind kind, Purpose purpose)
{
  auto transaction = std::make_unique<Transaction>(*database_, kind);
  stored_ = tables_ = database_->integer("PRAGMA user_version"); // the first read: it takes the snapshot
  requireKnown(stored_);
  if (isShared(mode_) && !log_)
    log_ = identityOf(logPath());
  if (purpose == Purpose::Use && !verified_)
    verify();
  if (kind == Kind::Write && olderVersion() != 0) {
    bringUpToDate(*database_, steps_); // a part of the transaction, stored or rolled back with it
    tables_ = static_cast<std::int64_t>(steps_.size());
  }
  if (purpose == Purpose::Use)
    version_ = currentVersion();
  transaction_ = std::move(transaction);
}

int SqliteSession::olderVersion() const
{
  return stored_ < static_cast<std::int64_t>(steps_.size()) ? static_cast<int>(stored_) : 0;
}

void SqliteSession::requireKnown(std::int64_t version) const
{
  const auto known = static_cast<std::int64_t>(steps_.size());
  if (version > known)
    refuse(ErrorKind::Unreadable, "of a newer version (" + std::to_string(version) + "; this program reads up to " +
                                      std::to_string(known) + ")");
  if (version < 1)
    refuse(ErrorKind::Unreadable, "damaged (version " + std::to_string(version) + ")");
}

void SqliteSession::verify()
{
  std::string damage = missingBytes(*database_, path_);
  if (damage.empty() && file_.size + file_.logSize <= verifyLimit)
    damage = quickCheck(*database_);
  if (!damage.empty())
    refuse(ErrorKind::Unreadable, "damaged (" + damage + ")");
  verified_ = true;
  database_->keepLogOnClose(false);
}

void SqliteSession::commit(const std::function<void(Database&)>& write)
{
  const struct Ending {
    SqliteSession& session;
    ~Ending() { session.end(); }
  } ending{*this};
  guarded("not stored", [&] {
    write(*database_);
    transaction_->commit();
    stored_ = tables_;
  });
  // Some tools copy a project without its write-ahead mode, and readers then block writers. If setting the mode fails
  // now, the next commit tries again.
  database_->tryExecute("PRAGMA journal_mode = WAL");
}

void SqliteSession::giveSpaceBack()
{
  if (hasBegun())
    throw std::logic_error(subject() + ": giveSpaceBack during a use");
  beginWrite(std::chrono::seconds(2)); // the project may be another by now
  transaction_.reset();
  const struct Ending {
    SqliteSession& session;
    ~Ending() { session.end(); }
  } ending{*this};
  guarded("the space is not given back", [this] { database_->execute("VACUUM"); });
  // While others read, the file keeps its size until the last of them is done.
  database_->tryExecute("PRAGMA wal_checkpoint(TRUNCATE)");
}

void SqliteSession::end() noexcept
{
  transaction_.reset();
  // An exclusively locked file must not keep others waiting. A transaction that cannot be rolled back ends only by
  // closing.
  if (database_ && (mode_ == Mode::Exclusive || database_->inTransaction()))
    close();
}

void SqliteSession::close() noexcept
{
  transaction_.reset();
  database_.reset();
  if (version_ && isShared(mode_))
    version_ = otherVersion; // versions of different connections cannot be compared
}

SqliteSession::Version SqliteSession::currentVersion()
{
  if (!isShared(mode_)) {
    const ProjectFile file = inspectProjectFile(path_);
    return {file.modified, static_cast<std::int64_t>(file.size + file.logSize)};
  }
  return {database_->integer("PRAGMA data_version"), 0};
}

// SQLite does not notice if its log is removed. It would read and write the removed one for ever, and write it over
// what others have stored when it closes.
bool SqliteSession::isReplaced()
{
  if (database_->moved())
    return true;
  if (!log_ || identityOf(logPath()) == log_)
    return false;
  database_->keepLogOnClose(true);
  return true;
}

bool SqliteSession::changedElsewhere()
{
  if (hasBegun() || !version_)
    return false;
  return guarded("cannot be read", [this] {
    if (mode_ != Mode::Exclusive && (!database_ || isReplaced())) {
      close();
      version_.reset();
      return true;
    }
    try {
      const Version now = currentVersion();
      return std::exchange(version_, now) != now;
    } catch (const Failure& failure) {
      if (failure.cause() == Cause::Busy) // a later call will detect the change
        return false;
      throw;
    }
  });
}

void SqliteSession::refuse(ErrorKind kind, const std::string& fact) const
{
  throw Error(kind, subject() + ": " + fact);
}

Error SqliteSession::errorFor(const char* fact, const Failure& failure)
{
  const std::string holder = failure.cause() == Cause::Busy ? writeLockHolder(file_.path) : std::string();
  if (failure.cause() == Cause::Damaged && database_) {
    try {
      if (const std::string missing = missingBytes(*database_, path_); !missing.empty())
        return errorFrom(Failure(Cause::Damaged, missing), subject(), fact, holder);
    } catch (const std::exception&) { // the first cause is reported
    }
  }
  return errorFrom(failure, subject(), fact, holder);
}

} // namespace reelhost
