// SPDX-License-Identifier: Apache-2.0
#include "store/sqlite_schema.h"

#include <string>

namespace reelhost {

namespace {

// type: 9 is a reel. deletion: null while the log is there, else the number of the deletion that put it into the trash.
// The columns from reel_id to aliases hold the configuration keys that shots have (null: the log has no such key);
// fields holds all other keys. project.last_number: the highest log number ever used. others_by_reel counts the uses
// of each identifier without reading the logs: SQLite needs type and deletion in the index even though its condition
// fixes them.
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

std::int64_t bigEndian(std::string_view bytes, std::size_t at, std::size_t count)
{
  std::int64_t value = 0;
  for (std::size_t i = 0; i < count; ++i)
    value = value * 256 + static_cast<unsigned char>(bytes[at + i]);
  return value;
}

} // namespace

const SchemaSteps& schemaSteps()
{
  static const SchemaSteps steps = {version1};
  return steps;
}

void bringUpToDate(sqlite::Database& database, const SchemaSteps& steps)
{
  auto version = static_cast<std::size_t>(database.integer("PRAGMA user_version"));
  for (; version < steps.size(); ++version) {
    database.execute(steps[version]);
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
