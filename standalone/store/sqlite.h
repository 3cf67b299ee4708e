// SPDX-License-Identifier: Apache-2.0
//
// Four small classes around SQLite. Only sqlite.cpp includes SQLite's own header. A connection and its statements
// belong to one thread.
#ifndef REELDB_STORE_SQLITE_H
#define REELDB_STORE_SQLITE_H

#include <chrono>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

struct sqlite3;
struct sqlite3_stmt;

namespace reelhost::sqlite {

/// The causes that a caller distinguishes.
enum class Cause {
  Busy,       ///< another connection holds a lock
  Damaged,    ///< not a database, malformed, or without the expected tables and columns
  ReadOnly,   ///< the file cannot be written
  CannotOpen, ///< the file, or a file beside it, cannot be opened
  Constraint, ///< a value that the schema forbids
  Full,       ///< the disk has no room for the file, or for a file beside it
  Other,      ///< the system refused a read or a write, or there is not enough memory
};

/// A failed call of SQLite. what() is SQLite's own text, followed by the system's text if there is one.
class Failure : public std::runtime_error {
public:
  Failure(Cause cause, const std::string& text) : std::runtime_error(text), cause_(cause) {}
  Cause cause() const { return cause_; }

private:
  Cause cause_;
};

/// Reports that the file holds what no program of ours has written. @p text is the fact: "log 7 has no valid identity".
[[noreturn]] inline void failDamaged(const std::string& text)
{
  throw Failure(Cause::Damaged, text);
}

/// A connection. It distrusts the schema of the file: triggers, views and unsafe functions in it do nothing.
class Database {
public:
  enum class Mode {
    ReadWrite,
    ReadOnly,  ///< the file itself is never written; locks and the write-ahead log are shared as usual
    Immutable, ///< the file alone: no locks, no write-ahead log
    Alone,     ///< the file and its write-ahead log, without any lock and without the index file of the log
    Exclusive, ///< likewise without the index file, but locked: no other process can use the file while it is open
  };

  /// Opens the existing file @p absolutePath; reads nothing that takes a lock.
  Database(const std::string& absolutePath, Mode mode);

  void execute(const char* sql);         ///< runs the statements; rows are dropped
  bool tryExecute(const char* sql);      ///< likewise; false when a statement fails. Never throws
  std::int64_t integer(const char* sql); ///< first column of the first row; 0 when there is no row
  std::string text(const char* sql);     ///< likewise; empty when there is no row
  std::string readStart(int bytes);      ///< the first bytes of the file on disk, fewer if it is shorter
  std::int64_t fileSize();
  void setBusyTimeout(std::chrono::milliseconds timeout); ///< how long to wait for a lock
  /// Whether the last connection keeps the write-ahead log when it closes. It does not, unless this is called.
  void keepLogOnClose(bool keep);
  void copyTo(const std::string& path); ///< the pages as this transaction sees them, into the empty file @p path
  bool moved();                         ///< whether the path no longer leads to the file that was opened
  bool inTransaction();                 ///< whether a transaction is open
  sqlite3* handle() const { return handle_.get(); }

private:
  struct Closer {
    void operator()(sqlite3*) const;
  };
  std::unique_ptr<sqlite3, Closer> handle_;
};

/// A transaction. The destructor rolls it back unless it was committed. If the rollback fails, the connection stays
/// inTransaction() and can only be closed.
class Transaction {
public:
  enum class Kind {
    Read, ///< a snapshot from the first read on
    Write ///< takes the write lock at once
  };

  Transaction(Database& database, Kind kind) : database_(database), kind_(kind)
  {
    database_.execute(kind == Kind::Write ? "BEGIN IMMEDIATE" : "BEGIN");
  }
  ~Transaction()
  {
    if (database_.inTransaction()) // an error may have ended it already
      database_.tryExecute("ROLLBACK");
  }
  Transaction(const Transaction&) = delete;
  Transaction& operator=(const Transaction&) = delete;
  Kind kind() const { return kind_; }
  void commit() { database_.execute("COMMIT"); }

private:
  Database& database_;
  const Kind kind_;
};

/// A prepared statement. Texts may hold any bytes; they are stored and returned unchanged.
class Statement {
public:
  Statement(Database& database, std::string_view sql);

  // The text or blob must stay where it is until the next reset or bind.
  Statement& bind(int parameter, std::string_view text);
  Statement& bind(int parameter, std::string&&) = delete; ///< would be gone before the statement runs
  Statement& bind(int parameter, const char* text) { return bind(parameter, std::string_view(text)); }
  Statement& bind(int parameter, std::int64_t value);
  Statement& bind(int parameter, int value) { return bind(parameter, static_cast<std::int64_t>(value)); }
  Statement& bind(int parameter, bool) = delete;
  Statement& bindBlob(int parameter, const void* bytes, std::size_t size);
  Statement& bindNull(int parameter);

  bool step();  ///< whether there is a row
  void reset(); ///< ready to run again; the parameters stay bound
  void run()    ///< runs to the end and resets
  {
    while (step()) {
    }
    reset();
  }

  bool isNull(int column) const;
  std::int64_t integer(int column) const;
  std::string_view text(int column) const; ///< valid until the next step or reset

private:
  struct Finalizer {
    void operator()(sqlite3_stmt*) const;
  };
  sqlite3* database_;
  std::unique_ptr<sqlite3_stmt, Finalizer> handle_;
};

} // namespace reelhost::sqlite

#endif
