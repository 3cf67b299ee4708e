// SPDX-License-Identifier: Apache-2.0
//
// The connection to a project file and the transaction on it.
#ifndef REELDB_STORE_SQLITE_SESSION_H
#define REELDB_STORE_SQLITE_SESSION_H

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include <sys/types.h>

#include "reelhost/store.h"
#include "store/project_file.h"
#include "store/sqlite.h"
#include "store/sqlite_schema.h"

namespace reelhost {

/// The device and number of a file; empty if there is no such file.
using FileIdentity = std::optional<std::pair<dev_t, ino_t>>;

/// A use of the project is one transaction. The connection stays open between uses, for changedElsewhere.
class SqliteSession {
public:
  SqliteSession(std::filesystem::path path, const SchemaSteps& steps) : path_(std::move(path)), steps_(steps) {}
  ~SqliteSession() { end(); }
  SqliteSession(const SqliteSession&) = delete;
  SqliteSession& operator=(const SqliteSession&) = delete;

  const std::filesystem::path& path() const { return path_; }
  std::string subject() const; ///< as Store::subject

  /// As Store::begin.
  void beginRead(std::chrono::milliseconds busyTimeout) { begin(Kind::Read, busyTimeout, Purpose::Use); }
  void beginWrite(std::chrono::milliseconds busyTimeout) { begin(Kind::Write, busyTimeout, Purpose::Use); }
  /// Begins to read for an integrity check, without the verification that beginRead does. It waits only for another
  /// process in the middle of a recovery.
  void beginCheck() { begin(Kind::Read, std::chrono::seconds(5), Purpose::Check); }
  void end() noexcept; ///< rolls back; does nothing if no use was begun
  bool hasBegun() const { return transaction_ != nullptr; }
  bool isWriting() const { return hasBegun() && transaction_->kind() == sqlite::Transaction::Kind::Write; }
  sqlite::Database& database() { return *database_; } ///< REQUIRES: begun
  std::int64_t version() const { return tables_; }    ///< of the tables. REQUIRES: begun
  /// As History::olderVersion.
  int olderVersion() const;

  /// Runs @p write and commits, or throws Error and discards the changes; ends the use either way. REQUIRES: begun for
  /// writing.
  void commit(const std::function<void(sqlite::Database&)>& write);

  bool changedElsewhere(); ///< as Store::changedElsewhere
  void giveSpaceBack();    ///< as History::giveSpaceBack

  /// Runs @p work and converts a Failure of SQLite to an Error with @p fact.
  template <class Work>
  auto guarded(const char* fact, Work work) -> decltype(work())
  {
    try {
      return work();
    } catch (const sqlite::Failure& failure) {
      throw errorFor(fact, failure);
    }
  }

private:
  using Mode = sqlite::Database::Mode;
  using Kind = sqlite::Transaction::Kind;
  enum class Purpose { Use, Check };
  /// The value that changedElsewhere compares: the version that SQLite counts, or time and size of a file that is read
  /// without locks.
  using Version = std::pair<std::int64_t, std::int64_t>;
  static constexpr Version otherVersion = {-1, -1}; ///< equals no version

  void begin(Kind kind, std::chrono::milliseconds busyTimeout, Purpose purpose);
  void open(const ProjectFile& file, Mode mode, std::chrono::milliseconds busyTimeout);
  void start(Kind kind, Purpose purpose);
  void verify();
  void requireKnown(std::int64_t version) const;
  void close() noexcept;
  Version currentVersion();
  std::string logPath() const { return file_.path + "-wal"; }
  /// Whether the open database, or its write-ahead log, is no longer the one at its path. REQUIRES: a database is open.
  bool isReplaced();
  [[noreturn]] void refuse(ErrorKind kind, const std::string& fact) const;
  Error errorFor(const char* fact, const sqlite::Failure& failure);

  const std::filesystem::path path_;
  const SchemaSteps& steps_;
  std::optional<sqlite::Database> database_;
  Mode mode_ = Mode::ReadWrite; ///< of the open database
  ProjectFile file_;            ///< as it was when it was opened
  FileIdentity log_;            ///< the write-ahead log of the open database; empty if it is not known
  bool verified_ = false;       ///< whether the open database was
  std::unique_ptr<sqlite::Transaction> transaction_;
  std::int64_t stored_ = 0, tables_ = 0; ///< the version of the tables, as stored and as the transaction sees them
  std::optional<Version> version_;       ///< at the last begin; empty before the first
};

} // namespace reelhost

#endif
