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
  EXPECT_EQ(project->check(), std::vector<std::string>{});
}

TEST_F(SqliteSchema, ReadingAFileOfVersion1LeavesEveryByteOfIt)
{
  runSql(file(), fileOfVersion1);
  const std::string before = bytesOf(file());
  {
    const auto project = makeSqliteStore(file());
    expectContentOfVersion1(*project);
    EXPECT_EQ(revisionsOf(*project).size(), 0u);
    EXPECT_EQ(trashCountOf(*project), 1);
    project->begin(Access::Read, noPatience);
    EXPECT_EQ(project->history()->olderVersion(), 1);
  }
  EXPECT_EQ(bytesOf(file()), before);
}

TEST_F(SqliteSchema, UseForWritingThatStoresNothingLeavesTheFileInItsVersion)
{
  runSql(file(), fileOfVersion1);
  const auto project = makeSqliteStore(file());
  project->begin(Access::Write, noPatience);
  EXPECT_EQ(project->history()->olderVersion(), 1);
  EXPECT_EQ(project->history()->trashCount(), 1); // as it is going to be
  project->commit({});
  EXPECT_EQ(runSql(file(), "PRAGMA user_version"), "1");
  expectContentOfVersion1(*project);
}

TEST_F(SqliteSchema, TablesOfAFileBroughtUpToDateAreThoseOfANewFile)
{
  runSql(file(), fileOfVersion1);
  store(*makeSqliteStore(file()), logChanges({exampleLog(8, 9)}));
  const fs::path made = file().native() + ".new";
  createSqliteProject(made, exampleInfo(), {});
  const std::string tables = "SELECT group_concat(replace(replace(sql, char(10), ''), ' ', ''), ';') FROM "
                             "(SELECT sql FROM sqlite_schema WHERE sql IS NOT NULL ORDER BY name)";
  // The columns have the same order, types and constraints; only the line breaks differ.
  EXPECT_EQ(runSql(made, tables), runSql(file(), tables));
}

// --- A file of version 1: a list imported, two reels changed, one renamed, two deletions ---------

class FileOfVersion1 : public SqliteSchema {
protected:
  void SetUp() override
  {
    fs::copy_file(fs::path(REELDB_SOURCE_DIR) / "tests/standalone/store/data/version-1.reels", file());
  }
  void bringUpToDate() { store(*makeSqliteStore(file()), logChanges({exampleLog(100, 9)})); }
};

TEST_F(FileOfVersion1, ItsTrashBecomesARevisionForEachDeletion)
{
  bringUpToDate();
  const auto project = makeSqliteStore(file());
  const std::vector<Revision> revisions = revisionsOf(*project);
  ASSERT_EQ(revisions.size(), 3u);
  EXPECT_EQ(revisions[0].number, 1);
  EXPECT_EQ(revisions[0].deleted, 2);
  EXPECT_EQ(revisions[0].origin.time, 0);
  EXPECT_EQ(revisions[0].origin.command, "");
  EXPECT_EQ(revisions[1].deleted, 5);
  EXPECT_EQ(revisions[2].created, 1);
  EXPECT_NE(revisions[0].token, revisions[1].token);
  EXPECT_EQ(trashCountOf(*project), 7);
  EXPECT_EQ(project->check(), std::vector<std::string>{});
}

TEST_F(FileOfVersion1, ItsDeletionsComeBackAsTheyWere)
{
  const fs::path old = file().native() + ".old";
  fs::copy_file(file(), old);
  // What version 1 itself would bring back.
  runSql(old, "UPDATE logs SET deletion = NULL");
  const auto whole = makeSqliteStore(old);
  const std::vector<std::string> reels = reelsOf(*whole), others = othersOf(*whole);
  bringUpToDate();
  const auto project = makeSqliteStore(file());
  for (int deletion = 0; deletion < 2; ++deletion) {
    Changes changes;
    changes.inverse = inverseOfLastDeletion(*project);
    store(*project, changes);
  }
  EXPECT_EQ(trashCountOf(*project), 0);
  std::vector<std::string> back = reelsOf(*project);
  back.pop_back(); // the one that brought the file up to date
  EXPECT_EQ(back, reels);
  EXPECT_EQ(othersOf(*project), others);
}

TEST_F(FileOfVersion1, ReadOnlyPlaceIsReadAsItIs)
{
  const std::string before = bytesOf(file());
  fs::permissions(file(), fs::perms::owner_read);
  fs::permissions(file().parent_path(), fs::perms::owner_read | fs::perms::owner_exec);
  const auto project = makeSqliteStore(file());
  EXPECT_EQ(reelsOf(*project).size(), 11u);
  EXPECT_EQ(revisionsOf(*project).size(), 0u);
  EXPECT_EQ(errorOf([&] { project->begin(Access::Write, noPatience); }).rfind("ReadOnly: ", 0), 0u);
  EXPECT_EQ(project->check(), std::vector<std::string>{});
  fs::permissions(file().parent_path(), fs::perms::owner_all);
  EXPECT_EQ(bytesOf(file()), before);
}

TEST_F(FileOfVersion1, FullDiskLeavesItInItsVersion)
{
  TempMount disk("size=128k");
  if (!disk.mounted())
    GTEST_SKIP() << "needs root to mount a small file system";
  const fs::path place = disk / "full.reels";
  fs::copy_file(file(), place);
  const std::string before = bytesOf(place);
  const auto fill = [&](std::size_t bytes) { writeBytes(disk / "filler", std::string(bytes, 'x')); };
  int refused = 0;
  for (std::size_t left = 0; left <= 96 * 1024; left += 4096) {
    fill(96 * 1024 - left);
    const auto project = makeSqliteStore(place);
    const std::string error = errorOf([&] { store(*project, logChanges({exampleLog(100, 9)})); });
    if (error == "nothing")
      break;
    ++refused;
    EXPECT_EQ(error.rfind("Io: ", 0), 0u) << error;
    EXPECT_EQ(reelsOf(*project).size(), 11u);
    EXPECT_EQ(bytesOf(place).substr(60, 4), before.substr(60, 4)); // its version
  }
  EXPECT_GT(refused, 0);
  EXPECT_EQ(makeSqliteStore(place)->check(), std::vector<std::string>{});
}

/// The steps of a program that knows version 1 only.
const SchemaSteps& firstSteps()
{
  static const SchemaSteps steps = {schemaSteps()[0]};
  return steps;
}

TEST_F(FileOfVersion1, OlderProgramThatHasItOpenReadsOnAndThenRefuses)
{
  SqliteStore old(file(), firstSteps());
  old.begin(Access::Read, noPatience);
  bringUpToDate();
  int reels = 0;
  old.readReels([&](StoredLog&&) { ++reels; });
  EXPECT_EQ(reels, 11); // its snapshot
  old.end();
  EXPECT_TRUE(old.changedElsewhere());
  const std::string refusal = "Unreadable: " + file().native() + ": of a newer version (2; this program reads up to 1)";
  EXPECT_EQ(errorOf([&] { old.begin(Access::Read, noPatience); }), refusal);
  EXPECT_EQ(errorOf([&] { old.begin(Access::Write, noPatience); }), refusal);
}

TEST_F(FileOfVersion1, OlderProgramThatWritesIsWaitedFor)
{
  SqliteStore old(file(), firstSteps());
  old.begin(Access::Write, noPatience);
  const auto project = makeSqliteStore(file());
  EXPECT_EQ(errorOf([&] { project->begin(Access::Write, noPatience); }),
            "Busy: " + file().native() + ": held by another process");
  EXPECT_EQ(reelsOf(*project).size(), 11u);
  old.end();
  bringUpToDate();
}

TEST_F(FileOfVersion1, ProcessKilledWhileItBringsItUpToDateLeavesIt)
{
  const std::string before = bytesOf(file());
  {
    Child upgrading([this] {
      static std::unique_ptr<Store> held;
      held = makeSqliteStore(file());
      held->begin(Access::Write, noPatience); // the tables are new from here on, in its transaction
    });
    upgrading.waitUntilDone();
    upgrading.kill();
  }
  EXPECT_EQ(bytesOf(file()), before);
  EXPECT_EQ(reelsOf(*makeSqliteStore(file())).size(), 11u);
  bringUpToDate();
  EXPECT_EQ(trashCountOf(*makeSqliteStore(file())), 7);
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
  const std::string tables = "SELECT group_concat(sql, ';') FROM (SELECT sql FROM sqlite_schema "
                             "WHERE sql IS NOT NULL AND type <> 'trigger' ORDER BY name)";
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
    Changes changes = logChanges({exampleLog(4, 9)});
    changes.options = {{"o", "q"}};
    changes.origin = {1, "reeldb 14", "reeldb create", "anna", "suite1", "/work", {"device VTR: last reel R4", "x"}};
    store(*project, changes);
    changes = {};
    changes.deleted = {4};
    store(*project, changes);
    changes.deleted = {};
    changes.inverse = {3, true, {exampleLog(4, 9)}, {}, {}, {}};
    store(*project, changes);
    changes.inverse = {};
    changes.deleted = {4};
    store(*project, changes);
    changes = {};
    changes.compact = true;
    store(*project, changes);
    store(*project, listChanges({exampleList(1, {3})}));
    store(*project, listChanges({exampleList(1, {3, 3})}));
  }
  EXPECT_EQ(runSql(file(), "SELECT number || '|' || type || '|' || hex(uuid) || '|' || tag || '|' || "
                           "kind || '|' || imported || '|' || entire_medium || '|' || name || '|' || reel_type || '|' "
                           "|| video || '|' || audio || '|' || reel_id || '|' || source_file || '|' || source_in || "
                           "'|' || ifnull(source_out, 'NULL') FROM logs"),
            "3|1|03000000000000000000000000000000|3|E|1|1|name 3|type 3|3|3|R3|clip3.mov|01:00:00:00|NULL");
  EXPECT_EQ(runSql(file(), "SELECT group_concat(log || key || value) FROM fields"), "3kv");
  EXPECT_EQ(
      runSql(file(), "SELECT group_concat(key || '=' || typeof(value)) FROM (SELECT * FROM project ORDER BY key)"),
      "frame_rate=integer,last_list=integer,last_number=integer,name=text,other_writes=integer,"
      "output_frame_rate=integer,uuid=blob");
  EXPECT_EQ(runSql(file(), "SELECT value FROM project WHERE key = 'last_number'"), "4");
  EXPECT_EQ(runSql(file(), "SELECT group_concat(key || value) FROM options"), "oq");
  EXPECT_EQ(runSql(file(),
                   "SELECT group_concat(number || ',' || time || ',' || program || ',' || command || ',' || user "
                   "|| ',' || machine || ',' || folder || ',' || elsewhere || ',' || length(token)) "
                   "FROM revisions WHERE time IS NOT NULL"),
            "2,1,reeldb 14,reeldb create,anna,suite1,/work,device VTR: last reel R4\nx,16");
  EXPECT_EQ(
      runSql(file(),
             "SELECT group_concat(number || ':' || ifnull(takes_back, '') || is_redo || ' ' || "
             "ifnull(first_new || '-' || last_new, '') || ' ' || logs || ' ' || created || changed || deleted, '; ') "
             "FROM revisions"),
      "1:0 3-3  100; 2:0 4-4 0 100; 3:0  4 001; 4:31  4 100; 5:0  4 001; 6:0   000; 7:0  -1 000; 8:0  -1 000");
  EXPECT_EQ(
      runSql(file(),
             "SELECT group_concat(revision || ':' || log || ' ' || iif(before IS NULL, 'null', hex(before)), '; ') "
             "FROM (SELECT * FROM changes WHERE revision < 8 ORDER BY revision)"),
      "2:0 6F007000; 3:4 ; 4:4 null; 5:4 ; 7:-1 null");
  EXPECT_EQ(runSql(file(), "SELECT number || ' ' || file || ' ' || title || ' ' || format || ' ' || event_count || ' ' "
                           "|| (SELECT count(*) FROM list_bytes WHERE list_bytes.digest = lists.digest) FROM lists"),
            "1 list1.edl TITLE 1 edl 2 1");
  EXPECT_EQ(runSql(file(), "SELECT value FROM project WHERE key = 'last_list'"), "1");
  EXPECT_EQ(runSql(file(), "SELECT count(*) FROM changes, lists WHERE log = -1 AND revision = 8 AND "
                           "substr(before, 1, 32) = digest"),
            "1");
}

// Two more versions, as a later program may have them.
const SchemaSteps& laterSteps()
{
  static const SchemaSteps steps = {
      schemaSteps()[0],
      schemaSteps()[1],
      sqlStep(
          "ALTER TABLE project RENAME TO project_old; CREATE TABLE project(key TEXT PRIMARY KEY NOT NULL, value ANY "
          "NOT NULL) STRICT, WITHOUT ROWID; INSERT INTO project SELECT * FROM project_old; DROP TABLE project_old; "
          "INSERT INTO options VALUES('step', 'three')"),
      sqlStep("UPDATE options SET value = value || ', four' WHERE key = 'step'"),
  };
  return steps;
}

TEST_F(SqliteSchema, OlderFileIsBroughtUpStepByStepByWhatIsStored)
{
  runSql(file(), fileOfVersion1);
  SqliteStore project(file(), laterSteps());
  project.begin(Access::Read, noPatience);
  EXPECT_EQ(project.options(), (KeyValues{{"reeldb_defaultType", "Tape 2ch"}}));
  project.begin(Access::Write, noPatience);
  EXPECT_EQ(project.olderVersion(), 1);
  EXPECT_EQ(project.options(), (KeyValues{{"reeldb_defaultType", "Tape 2ch"}, {"step", "three, four"}}));
  EXPECT_EQ(project.nextNumber(), 8);
  project.commit(logChanges({exampleLog(8, 9)}));
  EXPECT_EQ(runSql(file(), "PRAGMA user_version"), "4");
  project.begin(Access::Write, noPatience); // nothing is left to do
  EXPECT_EQ(project.olderVersion(), 0);
  EXPECT_EQ(project.options()[1].second, "three, four");
}

TEST_F(SqliteSchema, FileOfAVersionInBetweenTakesOnlyTheStepsItLacks)
{
  createSqliteProject(file(), exampleInfo(), {});
  runSql(file(), "INSERT INTO options VALUES('step', 'three by hand'); PRAGMA user_version = 3");
  SqliteStore project(file(), laterSteps());
  store(project, logChanges({exampleLog(1, 9)}));
  project.begin(Access::Read, noPatience);
  EXPECT_EQ(project.options()[0].second, "three by hand, four");
}

TEST_F(SqliteSchema, StepThatFailsLeavesTheFileInItsVersion)
{
  runSql(file(), fileOfVersion1);
  static const SchemaSteps broken = {schemaSteps()[0], schemaSteps()[1],
                                     sqlStep("INSERT INTO options VALUES('step', 'three')"),
                                     sqlStep("UPDATE missing SET x = 1")};
  const std::string before = bytesOf(file());
  {
    SqliteStore project(file(), broken);
    EXPECT_EQ(errorOf([&] { project.begin(Access::Write, noPatience); }),
              "Unreadable: " + file().native() + ": damaged (no such table: missing)");
  }
  EXPECT_EQ(bytesOf(file()), before);
  expectContentOfVersion1(*makeSqliteStore(file()));
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
