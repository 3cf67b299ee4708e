// SPDX-License-Identifier: Apache-2.0
//
// Files of every released version can be read. The code in this file that makes old files is never changed.
#include "store/sqlite_schema.h"

#include <memory>

#include <gtest/gtest.h>

#include "standalone/store/support.h"
#include "store/sqlite_store.h"

namespace {

using namespace reelhost;
using namespace store_tests;
namespace fs = std::filesystem;

// A project of version 1 as the first release of that version wrote it.
const char fileOfVersion1[] = R"sql(
PRAGMA application_id = 1380271436;
PRAGMA journal_mode = WAL;
CREATE TABLE project(key TEXT PRIMARY KEY NOT NULL, value ANY NOT NULL) STRICT, WITHOUT ROWID;
CREATE TABLE options(key TEXT PRIMARY KEY NOT NULL, value TEXT NOT NULL) STRICT, WITHOUT ROWID;
CREATE TABLE logs(
  number INTEGER PRIMARY KEY, type INTEGER NOT NULL, deletion INTEGER, uuid BLOB NOT NULL CHECK(length(uuid) = 16),
  tag INTEGER NOT NULL CHECK(tag BETWEEN 0 AND 65535), kind TEXT NOT NULL CHECK(length(CAST(kind AS BLOB)) = 1),
  imported INTEGER NOT NULL, entire_medium INTEGER NOT NULL, name TEXT NOT NULL, reel_type TEXT NOT NULL,
  video INTEGER NOT NULL, audio INTEGER NOT NULL, reel_id TEXT, source_file TEXT, source_in TEXT, source_out TEXT,
  record_in TEXT, record_out TEXT, tracks TEXT, aliases TEXT) STRICT;
CREATE TABLE fields(log INTEGER NOT NULL REFERENCES logs(number) ON DELETE CASCADE, key TEXT NOT NULL,
  value TEXT NOT NULL, PRIMARY KEY(log, key)) STRICT, WITHOUT ROWID;
CREATE INDEX others_by_reel ON logs(reel_id COLLATE NOCASE, type, deletion) WHERE type <> 9 AND deletion IS NULL;
CREATE INDEX bin ON logs(deletion) WHERE deletion IS NOT NULL;
INSERT INTO project VALUES('name', 'Old'), ('uuid', x'000102030405060708090A0B0C0D0E0F'), ('frame_rate', 3),
  ('output_frame_rate', 8), ('last_number', 7);
INSERT INTO options VALUES('reeldb_defaultType', 'Tape 2ch');
INSERT INTO logs VALUES
  (1, 9, NULL, x'10000000000000000000000000000000', 1, 'E', 0, 1, 'Reel R1', 'Tape 2ch', 1, 2,
   'R1', NULL, NULL, NULL, NULL, NULL, NULL, NULL),
  (2, 1, NULL, x'20000000000000000000000000000000', 65535, 'E', 1, 0, 'shot', '', 1, 0,
   'r1', 'a.mov', '01:00:00:00', '01:00:01:00', '', NULL, 'V', 'other'),
  (5, 9, 2, x'50000000000000000000000000000000', 0, 'E', 0, 1, 'Reel gone', 'Disc', 0, 0,
   'gone', NULL, NULL, NULL, NULL, NULL, NULL, NULL);
INSERT INTO fields VALUES(1, 'reel_available_flag', '1'), (1, 'reel_userfield0', 'Scene 1'), (5, 'k', 'v');
PRAGMA user_version = 1;
)sql";

class SqliteSchema : public testing::Test {
protected:
  fs::path file() const { return folder_ / "old.reels"; }

private:
  TempFolder folder_;
};

void expectContentOfVersion1(Store& project)
{
  project.begin(Access::Read, muchPatience);
  const ProjectInfo info = project.info();
  EXPECT_EQ(info.name, "Old");
  for (std::size_t i = 0; i < info.uuid.size(); ++i)
    EXPECT_EQ(info.uuid[i], i);
  EXPECT_EQ(info.frameRate, 3);
  EXPECT_EQ(info.outputFrameRate, 8);
  EXPECT_EQ(project.options(), (KeyValues{{"reeldb_defaultType", "Tape 2ch"}}));
  EXPECT_EQ(project.nextNumber(), 8);
  EXPECT_EQ(project.trashCount(), 1);
  EXPECT_EQ(project.lastDeletion(), std::vector<std::int64_t>{5});
  EXPECT_EQ(project.countOthersByReel(), (std::vector<std::pair<std::string, std::int64_t>>{{"r1", 1}}));
  project.end();
  StoredLog reel;
  reel.number = 1;
  reel.uuid[0] = 0x10;
  reel.tag = 1;
  reel.type = 9;
  reel.entireMedium = true;
  reel.name = "Reel R1";
  reel.reelType = "Tape 2ch";
  reel.videoChannels = 1;
  reel.audioChannels = 2;
  reel.fields = {{"reelid", "R1"}, {"reel_available_flag", "1"}, {"reel_userfield0", "Scene 1"}};
  EXPECT_EQ(reelsOf(project), std::vector<std::string>{describe(reel)});
  StoredLog shot;
  shot.number = 2;
  shot.uuid[0] = 0x20;
  shot.tag = 65535;
  shot.type = 1;
  shot.imported = true;
  shot.name = "shot";
  shot.videoChannels = 1;
  shot.fields = {
      {"reelid", "r1"},  {"source_file", "a.mov"}, {"source_in", "01:00:00:00"}, {"source_out", "01:00:01:00"},
      {"record_in", ""}, {"tracks", "V"},          {"aliases", "other"}};
  EXPECT_EQ(othersOf(project), std::vector<std::string>{describe(shot)});
}

TEST_F(SqliteSchema, FileOfVersion1IsReadAndWritten)
{
  runSql(file(), fileOfVersion1);
  const auto project = makeSqliteStore(file());
  expectContentOfVersion1(*project);
  EXPECT_EQ(project->check(), std::vector<std::string>{});
  store(*project, logChanges({exampleLog(8, 9)}));
  EXPECT_EQ(numbersOf(*project), (std::vector<std::int64_t>{1, 8, 2}));
}

TEST_F(SqliteSchema, NewFileHasTheTablesOfVersion1)
{
  runSql(file(), fileOfVersion1);
  const fs::path made = file().native() + ".new";
  createSqliteProject(made, exampleInfo(), {});
  const std::string tables = "SELECT group_concat(replace(replace(sql, char(10), ''), ' ', ''), ';') FROM "
                             "(SELECT sql FROM sqlite_schema WHERE sql IS NOT NULL ORDER BY name)";
  // The columns have the same order, types and constraints; only the line breaks differ.
  EXPECT_EQ(runSql(made, tables), runSql(file(), tables));
}

TEST_F(SqliteSchema, DocumentShowsTheTablesOfANewFile)
{
  const std::string text = bytesOf(fs::path(REELDB_SOURCE_DIR) / "docs/formats/project.md");
  const std::size_t start = text.find("```sql\n") + 7;
  const std::size_t end = text.find("```", start);
  ASSERT_LT(start, end);
  runSql(file(), text.substr(start, end - start));
  const fs::path made = file().native() + ".new";
  createSqliteProject(made, exampleInfo(), {});
  const std::string tables = "SELECT group_concat(sql, ';') FROM "
                             "(SELECT sql FROM sqlite_schema WHERE sql IS NOT NULL ORDER BY name)";
  EXPECT_EQ(runSql(made, tables), runSql(file(), tables));
}

TEST_F(SqliteSchema, ValuesAreStoredAsTheyWillAlwaysBe)
{
  createSqliteProject(file(), exampleInfo(), {{"o", "p"}});
  StoredLog log = exampleLog(3, 1);
  log.fields.emplace_back("k", "v");
  log.imported = true;
  {
    const auto project = makeSqliteStore(file());
    store(*project, logChanges({log}));
    Changes changes;
    changes.deleted = {3};
    store(*project, changes);
  }
  EXPECT_EQ(runSql(file(),
                   "SELECT number || '|' || type || '|' || deletion || '|' || hex(uuid) || '|' || tag || '|' || "
                   "kind || '|' || imported || '|' || entire_medium || '|' || name || '|' || reel_type || '|' "
                   "|| video || '|' || audio || '|' || reel_id || '|' || source_file || '|' || source_in || "
                   "'|' || ifnull(source_out, 'NULL') FROM logs"),
            "3|1|1|03000000000000000000000000000000|3|E|1|1|name 3|type 3|3|3|R3|clip3.mov|01:00:00:00|NULL");
  EXPECT_EQ(runSql(file(), "SELECT group_concat(log || key || value) FROM fields"), "3kv");
  EXPECT_EQ(
      runSql(file(), "SELECT group_concat(key || '=' || typeof(value)) FROM (SELECT * FROM project ORDER BY key)"),
      "frame_rate=integer,last_number=integer,name=text,output_frame_rate=integer,uuid=blob");
  EXPECT_EQ(runSql(file(), "SELECT value FROM project WHERE key = 'last_number'"), "3");
  EXPECT_EQ(runSql(file(), "SELECT group_concat(key || value) FROM options"), "op");
}

// Two more versions, as a later program may have them.
const SchemaSteps& laterSteps()
{
  static const SchemaSteps steps = {
      schemaSteps()[0],
      "ALTER TABLE project RENAME TO project_old; CREATE TABLE project(key TEXT PRIMARY KEY NOT NULL, value ANY NOT "
      "NULL) STRICT, WITHOUT ROWID; INSERT INTO project SELECT * FROM project_old; DROP TABLE project_old; INSERT INTO "
      "options VALUES('step', 'two')",
      "UPDATE options SET value = value || ', three' WHERE key = 'step'",
  };
  return steps;
}

TEST_F(SqliteSchema, OlderFileIsBroughtUpStepByStep)
{
  for (const Access access : {Access::Read, Access::Write}) {
    fs::remove(file());
    runSql(file(), fileOfVersion1);
    SqliteStore project(file(), laterSteps());
    project.begin(access, noPatience);
    EXPECT_EQ(project.options(), (KeyValues{{"reeldb_defaultType", "Tape 2ch"}, {"step", "two, three"}}));
    EXPECT_EQ(project.nextNumber(), 8);
    project.end();
    EXPECT_EQ(runSql(file(), "PRAGMA user_version"), "3");
    project.begin(access, noPatience); // nothing is left to do
    EXPECT_EQ(project.options()[1].second, "two, three");
  }
}

TEST_F(SqliteSchema, FileOfAVersionInBetweenTakesOnlyTheStepsItLacks)
{
  runSql(file(), fileOfVersion1);
  runSql(file(), "INSERT INTO options VALUES('step', 'two by hand'); PRAGMA user_version = 2");
  SqliteStore project(file(), laterSteps());
  project.begin(Access::Read, noPatience);
  EXPECT_EQ(project.options()[1].second, "two by hand, three");
}

TEST_F(SqliteSchema, StepThatFailsLeavesTheFileInItsVersion)
{
  runSql(file(), fileOfVersion1);
  static const SchemaSteps broken = {schemaSteps()[0], "INSERT INTO options VALUES('step', 'two')",
                                     "UPDATE missing SET x = 1"};
  const std::string before = bytesOf(file());
  {
    SqliteStore project(file(), broken);
    EXPECT_EQ(errorOf([&] { project.begin(Access::Write, noPatience); }),
              "Unreadable: " + file().native() + ": damaged (no such table: missing)");
  }
  EXPECT_EQ(bytesOf(file()), before);
  expectContentOfVersion1(*makeSqliteStore(file()));
}

TEST_F(SqliteSchema, OlderFileThatCannotBeWrittenIsRefused)
{
  runSql(file(), fileOfVersion1);
  fs::permissions(file(), fs::perms::owner_read);
  SqliteStore project(file(), laterSteps());
  EXPECT_EQ(errorOf([&] { project.begin(Access::Read, noPatience); }),
            "Unreadable: " + file().native() +
                ": of an older version (1) and cannot be brought up to date (its mode does not allow writing)");
}

TEST_F(SqliteSchema, OlderFileThatIsBusyIsReportedAsBusy)
{
  runSql(file(), fileOfVersion1);
  const auto holder = makeSqliteStore(file());
  holder->begin(Access::Write, noPatience);
  SqliteStore project(file(), laterSteps());
  EXPECT_EQ(errorOf([&] { project.begin(Access::Read, noPatience); }),
            "Busy: " + file().native() + ": held by another process");
  holder->end();
  project.begin(Access::Read, noPatience);
  EXPECT_EQ(project.options()[1].second, "two, three");
}

TEST(FileStart, ReadsWhatTheFirstHundredBytesSay)
{
  std::string start(100, '\0');
  EXPECT_FALSE(readFileStart(start).isSqlite);
  start.replace(0, 16, std::string("SQLite format 3\0", 16));
  start.replace(16, 2, std::string("\x10\x00", 2));
  start.replace(24, 4, "same");
  start.replace(28, 4, std::string("\0\0\1\2", 4));
  start.replace(60, 4, std::string("\0\0\0\x07", 4));
  start.replace(68, 4, "REEL");
  start.replace(92, 4, "same");
  EXPECT_TRUE(readFileStart(start).isSqlite);
  EXPECT_EQ(readFileStart(start).version, 7);
  EXPECT_EQ(readFileStart(start).applicationId, projectApplicationId);
  EXPECT_EQ(readFileStart(start).bytes, 4096 * 258);
  start.replace(16, 2, std::string("\0\1", 2));
  EXPECT_EQ(readFileStart(start).bytes, 65536 * 258);
  start.replace(92, 4, "else");
  EXPECT_EQ(readFileStart(start).bytes, 0);
  EXPECT_FALSE(readFileStart(start.substr(0, 99)).isSqlite);
  EXPECT_FALSE(readFileStart("").isSqlite);
}

} // namespace
