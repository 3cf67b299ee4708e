// SPDX-License-Identifier: Apache-2.0
#include "store/sqlite_schema.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "store/log_image.h"
#include "store/sqlite_history.h"

namespace reelhost {

using sqlite::Database;
using sqlite::Statement;

namespace {

// type: 9 is a reel. deletion: null while the log is there, else the number of the deletion that put it into the trash.
// The columns from reel_id to aliases hold the configuration keys that shots have (null: the log has no such key);
// fields holds all other keys. project.last_number: the highest log number ever used. others_by_reel counts the uses
// of each identifier without reading the logs: SQLite needs type and deletion in the index even though its condition
// fixes them. Version 2 has neither the column deletion nor the index bin.
const char version1[] = R"sql(
CREATE TABLE project(key TEXT PRIMARY KEY NOT NULL, value ANY NOT NULL) STRICT, WITHOUT ROWID;
CREATE TABLE options(key TEXT PRIMARY KEY NOT NULL, value TEXT NOT NULL) STRICT, WITHOUT ROWID;
CREATE TABLE logs(
  number INTEGER PRIMARY KEY,
  type INTEGER NOT NULL,
  deletion INTEGER,
  uuid BLOB NOT NULL CHECK(length(uuid) = 16),
  tag INTEGER NOT NULL CHECK(tag BETWEEN 0 AND 65535),
  kind TEXT NOT NULL CHECK(length(CAST(kind AS BLOB)) = 1),
  imported INTEGER NOT NULL,
  entire_medium INTEGER NOT NULL,
  name TEXT NOT NULL,
  reel_type TEXT NOT NULL,
  video INTEGER NOT NULL,
  audio INTEGER NOT NULL,
  reel_id TEXT,
  source_file TEXT,
  source_in TEXT,
  source_out TEXT,
  record_in TEXT,
  record_out TEXT,
  tracks TEXT,
  aliases TEXT) STRICT;
CREATE TABLE fields(
  log INTEGER NOT NULL REFERENCES logs(number) ON DELETE CASCADE,
  key TEXT NOT NULL,
  value TEXT NOT NULL,
  PRIMARY KEY(log, key)) STRICT, WITHOUT ROWID;
CREATE INDEX others_by_reel ON logs(reel_id COLLATE NOCASE, type, deletion) WHERE type <> 9 AND deletion IS NULL;
CREATE INDEX bin ON logs(deletion) WHERE deletion IS NOT NULL;
)sql";

// revisions: one row per commit; null: unknown, or not to be kept. takes_back: the earlier revision that this one takes
// back. The new logs of a revision have the numbers from first_new to last_new. logs: the other logs that it changed,
// each with a row in changes. changes: the image that a log had before a revision; null: there was no such log, an
// empty blob: removed for good. log 0 stands for the options of the project, log -n for list n. What a log was after a
// revision is what it was before the next one, so all changes of a log stand together. lists: the lists that are there;
// events is their packed text. list_bytes: the deflated bytes of each list that lists or changes names.
// project.last_list: the highest number that a list ever had. project.other_writes counts what programs of others
// write, see countOtherWrites.
const char history[] = R"sql(
CREATE TABLE revisions(
  number INTEGER PRIMARY KEY,
  token BLOB NOT NULL CHECK(length(token) = 16),
  time INTEGER,
  program TEXT,
  command TEXT,
  user TEXT,
  machine TEXT,
  folder TEXT,
  elsewhere TEXT,
  takes_back INTEGER,
  is_redo INTEGER NOT NULL,
  first_new INTEGER,
  last_new INTEGER,
  logs TEXT NOT NULL,
  created INTEGER NOT NULL,
  changed INTEGER NOT NULL,
  deleted INTEGER NOT NULL) STRICT;
CREATE TABLE changes(
  log INTEGER NOT NULL,
  revision INTEGER NOT NULL,
  before BLOB,
  PRIMARY KEY(log, revision)) STRICT, WITHOUT ROWID;
CREATE TABLE lists(
  number INTEGER PRIMARY KEY,
  digest BLOB NOT NULL CHECK(length(digest) = 32),
  file TEXT NOT NULL,
  title TEXT NOT NULL,
  format TEXT NOT NULL,
  event_count INTEGER NOT NULL,
  events BLOB NOT NULL) STRICT;
CREATE TABLE list_bytes(
  digest BLOB PRIMARY KEY NOT NULL CHECK(length(digest) = 32),
  bytes BLOB NOT NULL) STRICT, WITHOUT ROWID;
)sql";

/// Each deletion in the trash becomes a revision, with the logs that it still holds.
void moveTrash(Database& database)
{
  Statement revision(database, "INSERT INTO revisions(number, token, is_redo, logs, created, changed, deleted) "
                               "VALUES(?1, randomblob(16), 0, ?3, 0, 0, ?2)");
  Statement change(database, "INSERT INTO changes(revision, log, before) VALUES(?1, ?2, ?3)");
  Statement fields(database, "SELECT key, value FROM fields WHERE log = ?1");
  Statement logs(database, "SELECT number, uuid, tag, kind, type, imported, entire_medium, name, reel_type, video, "
                           "audio, reel_id, source_file, source_in, source_out, record_in, record_out, tracks, aliases "
                           "FROM logs WHERE deletion = ?1 ORDER BY number");
  constexpr const char* keys[] = {"reelid",    "source_file", "source_in", "source_out",
                                  "record_in", "record_out",  "tracks",    "aliases"};
  Statement deletions(database, "SELECT deletion, count(*) FROM logs WHERE deletion IS NOT NULL GROUP BY deletion "
                                "ORDER BY deletion");
  for (std::int64_t number = 1; deletions.step(); ++number) {
    std::vector<std::int64_t> deleted;
    logs.bind(1, deletions.integer(0));
    while (logs.step()) {
      StoredLog log;
      const std::string_view uuid = logs.text(1), kind = logs.text(3);
      std::copy_n(uuid.begin(), std::min(uuid.size(), log.uuid.size()), log.uuid.begin());
      log.tag = static_cast<std::uint16_t>(logs.integer(2));
      log.kind = kind.empty() ? 'I' : kind[0];
      log.type = static_cast<int>(logs.integer(4));
      log.imported = logs.integer(5) != 0;
      log.entireMedium = logs.integer(6) != 0;
      log.name = logs.text(7);
      log.reelType = logs.text(8);
      log.videoChannels = static_cast<int>(logs.integer(9));
      log.audioChannels = static_cast<int>(logs.integer(10));
      for (int i = 0; i < 8; ++i)
        if (!logs.isNull(11 + i))
          log.fields.emplace_back(keys[i], logs.text(11 + i));
      fields.bind(1, logs.integer(0));
      while (fields.step())
        log.fields.emplace_back(fields.text(0), fields.text(1));
      fields.reset();
      const std::string image = imageOf(log);
      deleted.push_back(logs.integer(0));
      change.bind(1, number).bind(2, logs.integer(0)).bindBlob(3, image.data(), image.size()).run();
    }
    logs.reset();
    const std::string numbers = textOfNumbers(std::move(deleted));
    revision.bind(1, number).bind(2, deletions.integer(1)).bind(3, numbers).run();
  }
}

/// Other programs write without a revision. Triggers count what they change; in this program triggers do nothing.
void countOtherWrites(Database& database)
{
  database.execute("INSERT INTO project(key, value) VALUES('other_writes', 0)");
  for (const char* const table : {"logs", "fields", "options"})
    for (const char* const change : {"insert", "update", "delete"})
      database.execute(("CREATE TRIGGER " + std::string(change) + '_' + table + " AFTER " + change + " ON " + table +
                        " BEGIN UPDATE project SET value = value + 1 WHERE key = 'other_writes'; END")
                           .c_str());
}

void keepHistory(Database& database)
{
  database.execute(history);
  moveTrash(database);
  database.execute("DELETE FROM logs WHERE deletion IS NOT NULL;"
                   "DROP INDEX bin; DROP INDEX others_by_reel; ALTER TABLE logs DROP COLUMN deletion;"
                   "CREATE INDEX others_by_reel ON logs(reel_id COLLATE NOCASE, type) WHERE type <> 9;");
  countOtherWrites(database);
}

std::int64_t bigEndian(std::string_view bytes, std::size_t at, std::size_t count)
{
  std::int64_t value = 0;
  for (std::size_t i = 0; i < count; ++i)
    value = value * 256 + static_cast<unsigned char>(bytes[at + i]);
  return value;
}

} // namespace

SchemaStep sqlStep(const char* sql)
{
  return [sql](Database& database) { database.execute(sql); };
}

const SchemaSteps& schemaSteps()
{
  static const SchemaSteps steps = {sqlStep(version1), keepHistory};
  return steps;
}

void bringUpToDate(sqlite::Database& database, const SchemaSteps& steps)
{
  auto version = static_cast<std::size_t>(database.integer("PRAGMA user_version"));
  for (; version < steps.size(); ++version) {
    steps[version](database);
    database.execute(("PRAGMA user_version = " + std::to_string(version + 1)).c_str());
  }
}

FileStart readFileStart(std::string_view start)
{
  using namespace std::string_view_literals;
  FileStart out;
  if (start.size() < 100 || start.substr(0, 16) != "SQLite format 3\0"sv)
    return out;
  out.isSqlite = true;
  out.version = bigEndian(start, 60, 4);
  out.applicationId = bigEndian(start, 68, 4);
  const std::int64_t pageSize = bigEndian(start, 16, 2);
  if (start.substr(24, 4) == start.substr(92, 4)) // else the page count is a remnant
    out.bytes = (pageSize == 1 ? 65536 : pageSize) * bigEndian(start, 28, 4);
  return out;
}

} // namespace reelhost
