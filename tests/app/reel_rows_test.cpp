// SPDX-License-Identifier: Apache-2.0
#include "app/reel_rows.h"

#include "app/alias.h"
#include "app/export.h"
#include "app/history.h"
#include "app/list_files.h"
#include "app/reel_fields.h"
#include "app/reels.h"
#include "app/rename.h"
#include "app/shots.h"
#include "reelhost/host.h"
#include "tests/app/app_fixture.h"

using namespace reeldb;
using Strings = std::vector<std::string>;

namespace {

class ReelRowsOfTables : public reeldb_tests::AppTest {
protected:
  app::ImportReport importTable(const std::string& text, bool dryRun = false, const app::Treatment& treatment = {})
  {
    const app::ListFile file = app::readListFile(folder_.write("table.csv", text));
    app::Session session("main", dryRun ? app::Access::Read : app::Access::Write);
    return app::importLists(session, {file}, dryRun, {}, {}, treatment);
  }
  /// "A001: bin: old -> new"
  static Strings changes(const app::ImportReport& report)
  {
    Strings result;
    for (const app::ImportedList& imported : report.lists)
      for (const app::RowChange& change : imported.changes)
        result.push_back(change.reel + ": " + change.field + ": " + change.before + " -> " + change.after);
    return result;
  }
  static Strings rejected(const app::ImportReport& report)
  {
    Strings result;
    for (const lists::Rejected& line : report.lists.at(0).list.rejected)
      result.push_back(std::to_string(line.line) + ": " + line.reason);
    return result;
  }
  static app::Reel reel(const std::string& id)
  {
    app::Session session("main", app::Access::Read);
    return app::showReel(session, id).reel;
  }
  static std::size_t commits()
  {
    app::Session session("main", app::Access::Read);
    return app::readHistory(session, {}).commits.size();
  }
};

TEST_F(ReelRowsOfTables, ReelsGetTheirFieldsInOneCommit)
{
  import({"A001", "B002"});
  app::nameUserFields({{"1", "Scene"}});
  const std::size_t before = commits();
  const app::ImportReport report =
      importTable("reel,shelf,available,scene,user_field_0\nA001,Shelf 1,no,12,x\nb002,,yes,\" a\nb \",\n");
  EXPECT_TRUE(report.stored);
  EXPECT_EQ(changes(report),
            (Strings{"A001: bin:  -> Shelf 1", "A001: available: yes -> no", "A001: user-field.1:  -> 12",
                     "A001: user-field.0:  -> x", "B002: user-field.1:  -> a b"}));
  EXPECT_EQ(report.lists[0].matched, (Strings{"A001", "B002"}));
  EXPECT_EQ(report.lists[0].keeping, app::Keeping::NotKept);
  EXPECT_EQ(report.totals().reelsChanged, 2u);
  EXPECT_EQ(reel("A001").bin, "Shelf 1");
  EXPECT_FALSE(reel("A001").available);
  EXPECT_EQ(reel("B002").userFields[1], "a b");
  EXPECT_EQ(commits(), before + 1);
}

TEST_F(ReelRowsOfTables, AnEmptyCellKeepsAndAHyphenRemoves)
{
  import({"A001"});
  importTable("reel,shelf,user_field_0,user_field_1\nA001,1,a,b\n");
  const app::ImportReport report = importTable("reel,shelf,user_field_0,user_field_1\nA001,,-,'-\n");
  EXPECT_EQ(changes(report), (Strings{"A001: user-field.0: a -> ", "A001: user-field.1: b -> -"}));
  EXPECT_EQ(reel("A001").bin, "1");
}

TEST_F(ReelRowsOfTables, ADryRunReportsAndStoresNothing)
{
  import({"A001"});
  const std::size_t before = commits();
  const app::ImportReport report = importTable("reel,shelf\nA001,1\nC003,2\n", true);
  EXPECT_EQ(changes(report), (Strings{"A001: bin:  -> 1", "C003: bin:  -> 2"}));
  EXPECT_EQ(report.lists[0].created, Strings{"C003"});
  EXPECT_TRUE(report.changes);
  EXPECT_FALSE(report.stored);
  EXPECT_EQ(commits(), before);
  EXPECT_EQ(reelIds(), Strings{"A001"});
}

TEST_F(ReelRowsOfTables, RowsOfOtherNamesMakeReels)
{
  const app::ImportReport report = importTable("reel,type,shelf\nA001,Film,\nB002,,1\n");
  EXPECT_EQ(report.lists[0].created, (Strings{"A001", "B002"}));
  EXPECT_EQ(reel("A001").type, "Film");
  EXPECT_EQ(reel("B002").bin, "1");
  EXPECT_EQ(report.remarks,
            Strings{"Film: not in the reel type catalogue (stored anyway; reeldb type list shows the catalogue)"});
}

TEST_F(ReelRowsOfTables, ABadValueRejectsItsRowAlone)
{
  import({"A001", "B002"});
  const app::ImportReport report = importTable("reel,shelf,available,last_device,alias\nA001,1,maybe,,\nB002,2,no,,\n"
                                               "A001,,,,B002\nC003,1,,none,\nD004,1,,,x*y\n");
  EXPECT_EQ(changes(report), (Strings{"B002: bin:  -> 2", "B002: available: yes -> no"}));
  EXPECT_EQ(rejected(report).size(), 3u);
  EXPECT_EQ(rejected(report)[0], "2: available: \"maybe\" is neither yes nor no");
  EXPECT_TRUE(report.isIncomplete());
  EXPECT_EQ(reelIds(), (Strings{"A001", "B002"}));
  EXPECT_EQ(rejected(importTable("reel,alias\nA001,b002\n")),
            Strings{"2: b002: a reel has this name (reeldb merge joins two reels)"});
}

TEST_F(ReelRowsOfTables, AliasesAreNamesThatPeopleGave)
{
  import({"A001", "OLD"});
  const app::ImportReport report = importTable("reel,also called\nA001,\"one\nTWO\nA001\"\n");
  EXPECT_EQ(changes(report), Strings{"A001: aliases:  -> one, TWO"});
  EXPECT_TRUE(changes(importTable("reel,also called\nA001,two\n")).empty());
  EXPECT_EQ(changes(importTable("reel,shelf\ntwo,7\n")), Strings{"A001: bin:  -> 7"}); // a row finds it by them
  EXPECT_EQ(rejected(importTable("reel,alias\nOLD,One\n")),
            Strings{"2: One: already a name of A001 (reeldb alias --remove takes it from there)"});
  EXPECT_EQ(changes(importTable("reel,alias\nA001,-\n")), Strings{"A001: aliases: one, TWO -> "});
}

TEST_F(ReelRowsOfTables, AnAliasTakesTheShotsOfItsName)
{
  import({"A001"});
  importTable("reel,alias\nA001,X9\n");
  import({"X9"});
  EXPECT_EQ(reelIds(), Strings{"A001"});
}

TEST_F(ReelRowsOfTables, ColumnsThatMeanNoFieldAreNamed)
{
  import({"A001"});
  const app::ImportReport report = importTable("reel,shelf,Colour,7,empty\nA001,1,red,x,\n");
  EXPECT_EQ(report.lists[0].list.unread, (Strings{"Colour", "7"}));
  EXPECT_EQ(changes(report), Strings{"A001: bin:  -> 1"});
}

TEST_F(ReelRowsOfTables, WhatAnExportWroteComesBackAndChangesNothing)
{
  import({"A001", "B002", "C003"});
  {
    app::Session session("main", app::Access::Write);
    app::changeReel(session, "A001",
                    {{"bin", "=1+2"}, {"user-field.0", "-"}, {"user-field.1", " x "}, {"type", "Film"}});
    app::changeReel(session, "B002", {{"bin", "'90s"}, {"user-field.0", "a,\"b\"; c"}, {"available", "no"}});
    app::renameReel(session, "C003", "C004", false);
    app::changeAliases(session, "C004", {"C005"}, false, false);
  }
  const auto tables = [] {
    app::Session session("main", app::Access::Read);
    const app::ProjectContent content = app::readContent(session);
    return std::pair(app::writeReelsCsv(content).text, app::writeShotsCsv(content).text);
  };
  const auto [reels, shots] = tables();
  const std::size_t before = commits();
  for (const std::string& text : {reels, shots}) {
    const app::ImportReport report = importTable(text);
    EXPECT_FALSE(report.changes) << text;
    EXPECT_FALSE(report.stored) << text;
    EXPECT_FALSE(report.isIncomplete()) << text;
  }
  EXPECT_EQ(commits(), before);
  EXPECT_EQ(tables(), std::pair(reels, shots));
}

TEST_F(ReelRowsOfTables, ATableOfClipsIsKeptAndComesInOnce)
{
  const std::string text = "reel,clip,in,out,shelf\nA001,one,01:00:00:00,01:00:01:00,3\n";
  const app::ImportReport report = importTable(text);
  EXPECT_EQ(report.lists[0].shotsAdded, 1u);
  EXPECT_EQ(report.lists[0].keeping, app::Keeping::New);
  EXPECT_EQ(changes(report), Strings{"A001: bin:  -> 3"});
  const app::ImportReport again = importTable(text);
  EXPECT_EQ(again.lists[0].keeping, app::Keeping::Unchanged);
  EXPECT_FALSE(again.stored);
}

TEST_F(ReelRowsOfTables, JsonHasReelsShotsAndLists)
{
  const std::string list = cutList("inner.edl", {"B002"});
  std::string lines =
      "{\"id\": \"A001\", \"bin\": \"1\"}\n"
      "{\"reel\": \"A001\", \"clip\": \"c\", \"source_in\": \"01:00:00:00\", \"source_out\": \"01:00:01:00\"}\n"
      "{\"file\": \"inner.edl\", \"content\": \"TITLE: T\\n001  B002 V C 01:00:00:00 01:00:01:00 "
      "01:00:00:00 01:00:01:00\\n\"}\n{\"file\": \"bad.edl\", \"content\": \"\"}\n";
  app::ListFiles files = app::readListFiles({folder_.write("lines.json", lines)});
  ASSERT_EQ(files.read.size(), 2u);
  EXPECT_EQ(files.read[1].path, "inner.edl");
  ASSERT_EQ(files.failures.size(), 1u);
  EXPECT_EQ(files.failures[0].reason(), "holds no text");
  app::Session session("main", app::Access::Write);
  const app::ImportReport report = app::importLists(session, std::move(files.read), false);
  EXPECT_EQ(changes(report), Strings{"A001: bin:  -> 1"});
  EXPECT_EQ(report.totals().shotsAdded, 2u);
  EXPECT_EQ(report.lists[1].keeping, app::Keeping::New);
}

TEST_F(ReelRowsOfTables, AMapHasToMeanAColumnOrAField)
{
  app::requireMeanings({{"Tape No", "reel"}, {"x", "Source In"}, {"y", "user-field.2"}, {"z", "label-map"}});
  const app::Error error = errorOf([] { app::requireMeanings({{"Tape No", "nothing"}}); });
  EXPECT_EQ(error.kind(), app::ErrorKind::Invalid);
  EXPECT_STREQ(error.what(), "import: --map Tape No=nothing: \"nothing\" is neither a column that tables have nor a "
                             "field of a reel");
}

} // namespace
