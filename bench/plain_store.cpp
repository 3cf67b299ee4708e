// SPDX-License-Identifier: Apache-2.0
//
// The store that projects had before they kept their history and their lists: the same tables, settings and statements,
// and nothing of what came later. A program that is linked with this file has it in place of the host's own, because
// the symbols of a program take precedence over those of shared libraries. It knows no other process and no damage.
#include <sqlite3.h>

#include <algorithm>
#include <array>
#include <stdexcept>
#include <string_view>

#include "reelhost/store.h"

namespace {

using reelhost::Changes;
using reelhost::KeyValues;
using reelhost::ProjectInfo;
using reelhost::StoredLog;
using Sink = std::function<void(StoredLog&&)>;

constexpr const char* tables =
    "CREATE TABLE project(key TEXT PRIMARY KEY NOT NULL, value ANY NOT NULL) STRICT, WITHOUT ROWID;"
    "CREATE TABLE options(key TEXT PRIMARY KEY NOT NULL, value TEXT NOT NULL) STRICT, WITHOUT ROWID;"
    "CREATE TABLE logs(number INTEGER PRIMARY KEY, type INTEGER NOT NULL, deletion INTEGER,"
    " uuid BLOB NOT NULL CHECK(length(uuid) = 16), tag INTEGER NOT NULL CHECK(tag BETWEEN 0 AND 65535),"
    " kind TEXT NOT NULL CHECK(length(CAST(kind AS BLOB)) = 1), imported INTEGER NOT NULL,"
    " entire_medium INTEGER NOT NULL, name TEXT NOT NULL, reel_type TEXT NOT NULL, video INTEGER NOT NULL,"
    " audio INTEGER NOT NULL, reel_id TEXT, source_file TEXT, source_in TEXT, source_out TEXT, record_in TEXT,"
    " record_out TEXT, tracks TEXT, aliases TEXT) STRICT;"
    "CREATE TABLE fields(log INTEGER NOT NULL REFERENCES logs(number) ON DELETE CASCADE, key TEXT NOT NULL,"
    " value TEXT NOT NULL, PRIMARY KEY(log, key)) STRICT, WITHOUT ROWID;"
    "CREATE INDEX others_by_reel ON logs(reel_id COLLATE NOCASE, type, deletion) WHERE type <> 9 AND deletion IS NULL;"
    "CREATE INDEX bin ON logs(deletion) WHERE deletion IS NOT NULL";

/// The keys of logs that have a column.
constexpr std::array<std::string_view, 8> columns = {"reelid",    "source_file", "source_in", "source_out",
                                                     "record_in", "record_out",  "tracks",    "aliases"};
constexpr int firstText = 11; // of the columns of a log, counted from 0

std::size_t columnOf(std::string_view key)
{
  return static_cast<std::size_t>(std::find(columns.begin(), columns.end(), key) - columns.begin());
}

class Statement {
public:
  Statement(sqlite3* db, const char* sql) : db_(db)
  {
    if (sqlite3_prepare_v2(db, sql, -1, &statement_, nullptr) != SQLITE_OK)
      fail();
  }
  ~Statement() { sqlite3_finalize(statement_); }
  Statement(const Statement&) = delete;
  Statement& operator=(const Statement&) = delete;

  Statement& bind(int at, std::int64_t value) { return check(sqlite3_bind_int64(statement_, at, value)); }
  Statement& bind(int at, std::string_view text)
  {
    return check(sqlite3_bind_text64(statement_, at, text.data(), text.size(), SQLITE_STATIC, SQLITE_UTF8));
  }
  Statement& bindBlob(int at, const std::array<unsigned char, 16>& bytes)
  {
    return check(sqlite3_bind_blob(statement_, at, bytes.data(), static_cast<int>(bytes.size()), SQLITE_STATIC));
  }
  Statement& bindNull(int at) { return check(sqlite3_bind_null(statement_, at)); }
  bool step()
  {
    const int status = sqlite3_step(statement_);
    if (status != SQLITE_ROW && status != SQLITE_DONE)
      fail();
    return status == SQLITE_ROW;
  }
  void run()
  {
    step();
    sqlite3_reset(statement_);
  }
  std::int64_t integer(int column) const { return sqlite3_column_int64(statement_, column); }
  bool isNull(int column) const { return sqlite3_column_type(statement_, column) == SQLITE_NULL; }
  std::string text(int column) const
  {
    const void* const bytes = sqlite3_column_blob(statement_, column);
    return {static_cast<const char*>(bytes), static_cast<std::size_t>(sqlite3_column_bytes(statement_, column))};
  }

private:
  [[noreturn]] void fail() const { throw std::runtime_error(sqlite3_errmsg(db_)); }
  Statement& check(int status)
  {
    if (status != SQLITE_OK)
      fail();
    return *this;
  }

  sqlite3* db_;
  sqlite3_stmt* statement_ = nullptr;
};

class PlainStore final : public reelhost::Store {
public:
  explicit PlainStore(std::filesystem::path path) : path_(std::move(path)) {}
  ~PlainStore() override { sqlite3_close(db_); }
  PlainStore(const PlainStore&) = delete;
  PlainStore& operator=(const PlainStore&) = delete;

  std::string subject() const override { return path_.native(); }
  void begin(reelhost::Access access, std::chrono::milliseconds) override
  {
    end();
    const bool isNew = !db_;
    if (isNew)
      open();
    execute(access == reelhost::Access::Write ? "BEGIN IMMEDIATE" : "BEGIN");
    if (isNew)
      Statement(db_, "PRAGMA quick_check(1)").run(); // as small files are checked
    begun_ = true;
  }
  void end() noexcept override
  {
    if (begun_)
      sqlite3_exec(db_, "ROLLBACK", nullptr, nullptr, nullptr);
    begun_ = false;
  }

  ProjectInfo info() override
  {
    ProjectInfo info;
    Statement rows(db_, "SELECT key, value FROM project");
    while (rows.step()) {
      const std::string key = rows.text(0);
      if (key == "name")
        info.name = rows.text(1);
      else if (key == "uuid")
        std::copy_n(rows.text(1).begin(), info.uuid.size(), info.uuid.begin());
      else if (key == "frame_rate")
        info.frameRate = static_cast<int>(rows.integer(1));
      else if (key == "output_frame_rate")
        info.outputFrameRate = static_cast<int>(rows.integer(1));
    }
    return info;
  }
  KeyValues options() override
  {
    KeyValues options;
    Statement rows(db_, "SELECT key, value FROM options ORDER BY key");
    while (rows.step())
      options.emplace_back(rows.text(0), rows.text(1));
    return options;
  }
  std::int64_t nextNumber() override { return lastNumber() + 1; }
  void readReels(const Sink& sink) override { read("type = 9", sink); }
  void readOthers(const Sink& sink) override { read("type <> 9", sink); }
  std::vector<std::pair<std::string, std::int64_t>> countOthersByReel() override
  {
    std::vector<std::pair<std::string, std::int64_t>> counts;
    Statement rows(db_, "SELECT lower(reel_id), count(*) FROM logs WHERE type <> 9 AND deletion IS NULL AND "
                        "reel_id <> '' GROUP BY reel_id COLLATE NOCASE ORDER BY 1");
    while (rows.step())
      counts.emplace_back(rows.text(0), rows.integer(1));
    return counts;
  }

  void commit(const Changes& changes) override
  {
    if (!changes.logs.empty())
      writeLogs(changes.logs);
    Statement option(db_, "INSERT OR REPLACE INTO options(key, value) VALUES(?1, ?2)");
    for (const auto& [key, value] : changes.options)
      option.bind(1, key).bind(2, value).run();
    execute("COMMIT");
    begun_ = false;
  }

  bool changedElsewhere() override { return false; }
  std::vector<std::string> check() override { return {}; }

  void create(const ProjectInfo& info, const KeyValues& options)
  {
    open();
    execute("PRAGMA application_id = 1380271436; PRAGMA user_version = 1; BEGIN");
    execute(tables);
    Statement(db_, "INSERT INTO project VALUES('name', ?1)").bind(1, info.name).run();
    Statement(db_, "INSERT INTO project VALUES('uuid', ?1)").bindBlob(1, info.uuid).run();
    Statement number(db_, "INSERT INTO project VALUES(?1, ?2)");
    number.bind(1, "frame_rate").bind(2, info.frameRate).run();
    number.bind(1, "output_frame_rate").bind(2, info.outputFrameRate).run();
    number.bind(1, "last_number").bind(2, 0).run();
    for (const auto& [key, value] : options)
      Statement(db_, "INSERT INTO options VALUES(?1, ?2)").bind(1, key).bind(2, value).run();
    execute("COMMIT; PRAGMA journal_mode = WAL");
  }

private:
  void open()
  {
    constexpr int mode = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX;
    if (sqlite3_open_v2(path_.c_str(), &db_, mode, nullptr) != SQLITE_OK)
      throw std::runtime_error(sqlite3_errmsg(db_));
    execute("PRAGMA foreign_keys = ON; PRAGMA synchronous = FULL; PRAGMA cell_size_check = ON");
  }
  void execute(const char* sql)
  {
    if (sqlite3_exec(db_, sql, nullptr, nullptr, nullptr) != SQLITE_OK)
      throw std::runtime_error(sqlite3_errmsg(db_));
  }
  std::int64_t lastNumber()
  {
    Statement row(db_, "SELECT value FROM project WHERE key = 'last_number'");
    row.step();
    return row.integer(0);
  }

  void read(const std::string& condition, const Sink& sink)
  {
    std::string sql = "SELECT number, type, uuid, tag, kind, imported, entire_medium, name, reel_type, video, audio, "
                      "reel_id, source_file, source_in, source_out, record_in, record_out, tracks, aliases "
                      "FROM logs WHERE deletion IS NULL AND ";
    sql.append(condition).append(" ORDER BY number");
    Statement rows(db_, sql.c_str());
    Statement fields(db_, "SELECT log, key, value FROM fields ORDER BY log, key");
    bool more = fields.step();
    while (rows.step()) {
      StoredLog log;
      log.number = rows.integer(0);
      log.type = static_cast<int>(rows.integer(1));
      std::copy_n(rows.text(2).begin(), log.uuid.size(), log.uuid.begin());
      log.tag = static_cast<std::uint16_t>(rows.integer(3));
      log.kind = rows.text(4).front();
      log.imported = rows.integer(5) != 0;
      log.entireMedium = rows.integer(6) != 0;
      log.name = rows.text(7);
      log.reelType = rows.text(8);
      log.videoChannels = static_cast<int>(rows.integer(9));
      log.audioChannels = static_cast<int>(rows.integer(10));
      for (std::size_t i = 0; i < columns.size(); ++i)
        if (const int column = firstText + static_cast<int>(i); !rows.isNull(column))
          log.fields.emplace_back(columns[i], rows.text(column));
      for (; more && fields.integer(0) <= log.number; more = fields.step())
        if (fields.integer(0) == log.number)
          log.fields.emplace_back(fields.text(1), fields.text(2));
      sink(std::move(log));
    }
  }

  void writeLogs(const std::vector<StoredLog>& logs)
  {
    Statement put(db_,
                  "INSERT INTO logs(number, type, uuid, tag, kind, imported, entire_medium, name, reel_type, video, "
                  "audio, reel_id, source_file, source_in, source_out, record_in, record_out, tracks, aliases) VALUES("
                  "?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9, ?10, ?11, ?12, ?13, ?14, ?15, ?16, ?17, ?18, ?19) "
                  "ON CONFLICT(number) DO UPDATE SET type = excluded.type, uuid = excluded.uuid, tag = excluded.tag, "
                  "kind = excluded.kind, imported = excluded.imported, entire_medium = excluded.entire_medium, "
                  "name = excluded.name, reel_type = excluded.reel_type, video = excluded.video, "
                  "audio = excluded.audio, reel_id = excluded.reel_id, source_file = excluded.source_file, "
                  "source_in = excluded.source_in, source_out = excluded.source_out, record_in = excluded.record_in, "
                  "record_out = excluded.record_out, tracks = excluded.tracks, aliases = excluded.aliases");
    Statement dropFields(db_, "DELETE FROM fields WHERE log = ?1");
    Statement putField(db_, "INSERT OR REPLACE INTO fields(log, key, value) VALUES(?1, ?2, ?3)");
    const std::int64_t lastBefore = lastNumber();
    std::int64_t last = lastBefore;
    for (const StoredLog& log : logs) {
      put.bind(1, log.number).bind(2, log.type).bindBlob(3, log.uuid).bind(4, log.tag);
      put.bind(5, std::string_view(&log.kind, 1)).bind(6, log.imported ? 1 : 0).bind(7, log.entireMedium ? 1 : 0);
      put.bind(8, log.name).bind(9, log.reelType).bind(10, log.videoChannels).bind(11, log.audioChannels);
      const auto parameter = [](std::size_t place) { return firstText + static_cast<int>(place) + 1; };
      for (std::size_t place = 0; place < columns.size(); ++place)
        put.bindNull(parameter(place));
      for (const auto& [key, value] : log.fields)
        if (const std::size_t place = columnOf(key); place < columns.size())
          put.bind(parameter(place), value);
      put.run();
      if (log.number <= lastBefore)
        dropFields.bind(1, log.number).run();
      for (const auto& [key, value] : log.fields)
        if (columnOf(key) == columns.size())
          putField.bind(1, log.number).bind(2, key).bind(3, value).run();
      last = std::max(last, log.number);
    }
    if (last != lastBefore)
      Statement(db_, "UPDATE project SET value = ?1 WHERE key = 'last_number'").bind(1, last).run();
  }

  std::filesystem::path path_;
  sqlite3* db_ = nullptr;
  bool begun_ = false;
};

} // namespace

namespace reelhost {

std::unique_ptr<Store> makeSqliteStore(const std::filesystem::path& path)
{
  return std::make_unique<PlainStore>(path);
}

void createSqliteProject(const std::filesystem::path& path, const ProjectInfo& info, const KeyValues& options,
                         const Changes&)
{
  PlainStore(path).create(info, options);
}

} // namespace reelhost
