// SPDX-License-Identifier: Apache-2.0
#include "store/sqlite.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <system_error>

#include <sqlite3.h>

namespace reelhost::sqlite {

namespace {

Cause causeOf(int code)
{
  switch (code & 0xFF) {
  case SQLITE_BUSY:
  case SQLITE_LOCKED:
  case SQLITE_PROTOCOL: // the locks of others kept a read from beginning several times
    return Cause::Busy;
  case SQLITE_CORRUPT:
  case SQLITE_NOTADB:
  case SQLITE_ERROR: // all statements are our own, so a table or a column is missing
  case SQLITE_SCHEMA:
    return Cause::Damaged;
  case SQLITE_READONLY:
  case SQLITE_PERM:
    return Cause::ReadOnly;
  case SQLITE_CANTOPEN:
    return Cause::CannotOpen;
  case SQLITE_FULL:
    return Cause::Full;
  case SQLITE_CONSTRAINT:
  case SQLITE_MISMATCH:
    return Cause::Constraint;
  default:
    return Cause::Other;
  }
}

[[noreturn]] void fail(sqlite3* database, int code)
{
  const int system = sqlite3_system_errno(database); // from the last failed system call; 0 without a database
  const bool systemRefused = (code & 0xFF) == SQLITE_CANTOPEN || (code & 0xFF) == SQLITE_IOERR;
  if (systemRefused && system == ENOSPC)
    throw Failure(Cause::Full, sqlite3_errstr(SQLITE_FULL)); // whichever file was to be made or to grow
  std::string text = database ? sqlite3_errmsg(database) : sqlite3_errstr(code);
  if ((code & 0xFF) == SQLITE_CANTOPEN && system != 0) // otherwise the system's error may come from an earlier call
    text += ": " + std::generic_category().message(system);
  throw Failure(causeOf(code), text);
}

void check(sqlite3* database, int code)
{
  if (code != SQLITE_OK)
    fail(database, code);
}

/// The file name as a URI, because some modes have a parameter of the URI but no flag.
std::string uri(const std::string& path, Database::Mode mode)
{
  static const char digits[] = "0123456789ABCDEF";
  std::string out = "file:";
  for (const char c : path) {
    const auto byte = static_cast<unsigned char>(c);
    const bool plain = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '/' ||
                       c == '.' || c == '-' || c == '_';
    if (plain)
      out.push_back(c);
    else
      out.append(1, '%').append(1, digits[byte >> 4]).append(1, digits[byte & 15]);
  }
  if (mode == Database::Mode::Immutable)
    out += "?immutable=1";
  else if (mode == Database::Mode::Alone)
    out += "?vfs=unix-none"; // takes no locks
  return out;
}

/// SQLite's own handle of the open file. If the file were opened and closed again here, this process would lose its
/// locks on it.
sqlite3_file* fileOf(sqlite3* database)
{
  sqlite3_file* file = nullptr;
  check(database, sqlite3_file_control(database, "main", SQLITE_FCNTL_FILE_POINTER, &file));
  return file;
}

} // namespace

void Database::Closer::operator()(sqlite3* handle) const
{
  sqlite3_close_v2(handle);
}

Database::Database(const std::string& absolutePath, Mode mode)
{
  const bool writable = mode == Mode::ReadWrite || mode == Mode::Exclusive; // the exclusive lock needs it, too
  const int access = writable ? SQLITE_OPEN_READWRITE : SQLITE_OPEN_READONLY;
  sqlite3* opened = nullptr;
  const int code = sqlite3_open_v2(uri(absolutePath, mode).c_str(), &opened,
                                   access | SQLITE_OPEN_URI | SQLITE_OPEN_NOMUTEX, nullptr);
  handle_.reset(opened);
  check(opened, code);
  sqlite3_extended_result_codes(opened, 1);
  sqlite3_db_config(opened, SQLITE_DBCONFIG_ENABLE_TRIGGER, 0, nullptr);
  sqlite3_db_config(opened, SQLITE_DBCONFIG_ENABLE_VIEW, 0, nullptr);
  sqlite3_db_config(opened, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
  sqlite3_db_config(opened, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
  if (mode == Mode::Alone || mode == Mode::Exclusive)
    execute("PRAGMA locking_mode = EXCLUSIVE"); // keeps the index of the log in memory
}

void Database::execute(const char* sql)
{
  check(handle(), sqlite3_exec(handle(), sql, nullptr, nullptr, nullptr));
}

bool Database::tryExecute(const char* sql)
{
  return sqlite3_exec(handle(), sql, nullptr, nullptr, nullptr) == SQLITE_OK;
}

std::int64_t Database::integer(const char* sql)
{
  Statement statement(*this, sql);
  return statement.step() ? statement.integer(0) : 0;
}

std::string Database::text(const char* sql)
{
  Statement statement(*this, sql);
  return statement.step() ? std::string(statement.text(0)) : std::string();
}

std::string Database::readStart(int bytes)
{
  std::string start(static_cast<std::size_t>(std::min<std::int64_t>(bytes, fileSize())), '\0');
  sqlite3_file* file = fileOf(handle());
  const int code = file->pMethods->xRead(file, start.data(), static_cast<int>(start.size()), 0);
  if (code != SQLITE_OK && code != SQLITE_IOERR_SHORT_READ)
    fail(nullptr, code);
  return start;
}

std::int64_t Database::fileSize()
{
  sqlite3_int64 size = 0;
  if (const int code = fileOf(handle())->pMethods->xFileSize(fileOf(handle()), &size); code != SQLITE_OK)
    fail(nullptr, code);
  return size;
}

void Database::setBusyTimeout(std::chrono::milliseconds timeout)
{
  const auto limited = std::clamp<std::int64_t>(timeout.count(), 0, INT_MAX);
  sqlite3_busy_timeout(handle(), static_cast<int>(limited));
}

void Database::keepLogOnClose(bool keep)
{
  sqlite3_db_config(handle(), SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, keep ? 1 : 0, nullptr);
}

void Database::copyTo(const std::string& path)
{
  Database copy(path, Mode::ReadWrite);
  sqlite3_backup* const backup = sqlite3_backup_init(copy.handle(), "main", handle(), "main");
  if (!backup)
    fail(copy.handle(), sqlite3_errcode(copy.handle()));
  const int step = sqlite3_backup_step(backup, -1);
  check(copy.handle(), sqlite3_backup_finish(backup));
  if (step != SQLITE_DONE) // finish does not report a file that is busy
    fail(nullptr, step);
}

bool Database::moved()
{
  int answer = 0;
  check(handle(), sqlite3_file_control(handle(), "main", SQLITE_FCNTL_HAS_MOVED, &answer));
  return answer != 0;
}

bool Database::inTransaction()
{
  return sqlite3_get_autocommit(handle()) == 0;
}

void Statement::Finalizer::operator()(sqlite3_stmt* handle) const
{
  sqlite3_finalize(handle);
}

Statement::Statement(Database& database, std::string_view sql) : database_(database.handle())
{
  sqlite3_stmt* prepared = nullptr;
  check(database_, sqlite3_prepare_v2(database_, sql.data(), static_cast<int>(sql.size()), &prepared, nullptr));
  handle_.reset(prepared);
}

Statement& Statement::bind(int parameter, std::string_view text)
{
  const char* start = text.empty() ? "" : text.data(); // a null pointer would store NULL
  check(database_, sqlite3_bind_text64(handle_.get(), parameter, start, text.size(), SQLITE_STATIC, SQLITE_UTF8));
  return *this;
}

Statement& Statement::bind(int parameter, std::int64_t value)
{
  check(database_, sqlite3_bind_int64(handle_.get(), parameter, value));
  return *this;
}

Statement& Statement::bindBlob(int parameter, const void* bytes, std::size_t size)
{
  check(database_, sqlite3_bind_blob64(handle_.get(), parameter, bytes, size, SQLITE_STATIC));
  return *this;
}

Statement& Statement::bindNull(int parameter)
{
  check(database_, sqlite3_bind_null(handle_.get(), parameter));
  return *this;
}

bool Statement::step()
{
  const int code = sqlite3_step(handle_.get());
  if (code == SQLITE_ROW)
    return true;
  if (code != SQLITE_DONE)
    fail(database_, code);
  return false;
}

void Statement::reset()
{
  sqlite3_reset(handle_.get());
}

bool Statement::isNull(int column) const
{
  return sqlite3_column_type(handle_.get(), column) == SQLITE_NULL;
}

std::int64_t Statement::integer(int column) const
{
  return sqlite3_column_int64(handle_.get(), column);
}

std::string_view Statement::text(int column) const
{
  // The blob call returns the bytes of a text unchanged.
  const void* start = sqlite3_column_blob(handle_.get(), column);
  const int size = sqlite3_column_bytes(handle_.get(), column);
  return start ? std::string_view(static_cast<const char*>(start), static_cast<std::size_t>(size)) : std::string_view();
}

} // namespace reelhost::sqlite
