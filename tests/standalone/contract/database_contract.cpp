// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <string>
#include <vector>

#include "host/projdb.h"
#include "host_fixture.h"

namespace {

HOST_CONTRACT(Database);

using Texts = std::vector<std::string>;

CookieVec reelLogs()
{
  return EditManager::getProjdb()->search(codes::reelSearchMask, codes::reelSearchMaskOff);
}

/// The search for the shots of a reel, as the library makes it.
CookieVec shotsOf(const char* id)
{
  projdb::SearchCriteria criteria;
  criteria.first = codes::shotSearchFirst;
  criteria.second = codes::shotSearchSecond;
  criteria.attributes.add(codes::reelIdAttribute, id);
  return EditManager::getProjdb()->search(criteria);
}

bool holds(const CookieVec& cookies, const Cookie& cookie)
{
  return std::any_of(cookies.begin(), cookies.end(), [&](const Cookie& c) { return c.compare(cookie) == 0; });
}

TEST_P(Database, IsThereWhileAProjectIs)
{
  PROMISE("host/projdb.h", "null if no database is open; callers must not keep it");
  EXPECT_EQ(EditManager::getProjdb(), nullptr);
  host().openEmptyProject("A");
  EXPECT_NE(EditManager::getProjdb(), nullptr);
  EXPECT_NE(EditManager::getProjdb()->database(), nullptr);
  host().closeProject();
  EXPECT_EQ(EditManager::getProjdb(), nullptr);
}

TEST_P(Database, TheReelLogsAreExactlyThoseInOrder)
{
  PROMISE("host/projdb.h",
          "Returns exactly the reel logs, in database order. This order is stable: new logs come at the end.");
  host().openEmptyProject("A");
  EXPECT_EQ(reelLogs().count(), 0);
  CookieVec reels;
  reels.add(host().addLog(codes::reelLog, "b"));
  host().addLog(codes::materialLog, "b");
  reels.add(host().addLog(codes::reelLog, "a"));
  host().addLog(0, "");
  reels.add(host().addLog(codes::reelLog, ""));
  EXPECT_EQ(textsOf(reelLogs()), textsOf(reels));
}

TEST_P(Database, StoredReelLogsAreExactlyThoseInOrder)
{
  PROMISE("host/projdb.h",
          "Returns exactly the reel logs, in database order. This order is stable: new logs come at the end.");
  HOST_NEEDS(Storage);
  host().openEmptyProject("A");
  CookieVec reels;
  reels.add(host().addLog(codes::reelLog, "b"));
  host().addLog(codes::materialLog, "b");
  reels.add(host().addLog(codes::reelLog, "a"));
  host().storeAndReopen();
  EXPECT_EQ(textsOf(reelLogs()), textsOf(reels));
}

TEST_P(Database, AListOfReelsStaysAsItWas)
{
  PROMISE("docs/embedding.md", "it is a copy: later logs do not appear in it");
  host().openEmptyProject("A");
  host().addLog(codes::reelLog, "a");
  const CookieVec before = reelLogs();
  const Cookie second = host().addLog(codes::reelLog, "b");
  EXPECT_EQ(before.count(), 1);
  ASSERT_EQ(reelLogs().count(), 2);
  EXPECT_EQ(reelLogs()[1].compare(second), 0);
}

// The library compares again, so more may be found; but none may be missed.
TEST_P(Database, ShotsAreFoundWithoutRegardToCase)
{
  PROMISE("host/projdb.h", "the case of ASCII letters is ignored.");
  host().openEmptyProject("A");
  const Cookie lower = host().addLog(codes::materialLog, "a001"), upper = host().addLog(codes::materialLog, "A001");
  host().addLog(codes::materialLog, "B002");
  for (const char* id : {"A001", "a001"}) {
    EXPECT_TRUE(holds(shotsOf(id), lower)) << id;
    EXPECT_TRUE(holds(shotsOf(id), upper)) << id;
  }
}

TEST_P(Database, StoredShotsAreFoundWithoutRegardToCase)
{
  PROMISE("host/projdb.h", "the case of ASCII letters is ignored.");
  HOST_NEEDS(Storage);
  host().openEmptyProject("A");
  const Cookie lower = host().addLog(codes::materialLog, "a001");
  host().storeAndReopen();
  EXPECT_TRUE(holds(shotsOf("A001"), lower));
}

// A search by identifier is for every log that is not a reel log, whatever else it is.
TEST_P(Database, ALogOfNoTypeIsFoundAmongTheShots)
{
  PROMISE("host/projdb.h", "every log that is not a reel log.");
  host().openEmptyProject("A");
  const Cookie log = host().addLog(0, "A001");
  EXPECT_TRUE(holds(shotsOf("A001"), log));
}

// All found logs are renamed and deleted as shots.
TEST_P(Database, AReelLogIsNotAShot)
{
  PROMISE("host/projdb.h", "every log that is not a reel log.");
  host().openEmptyProject("A");
  const Cookie reel = host().addLog(codes::reelLog, "A001");
  EXPECT_FALSE(holds(shotsOf("A001"), reel));
}

// A log without an identifier matches the empty one: whatever is found here goes when the reel is deleted.
TEST_P(Database, NothingIsFoundForTheEmptyIdentifier)
{
  PROMISE("host/projdb.h", "An empty value finds nothing.");
  host().openEmptyProject("A");
  host().addLog(codes::materialLog, "");
  host().addLog(0, "");
  host().addLog(codes::materialLog, "A001");
  const Cookie emptied = host().addLog(codes::materialLog, "B002");
  withLog(emptied, [](Edit& edit) { edit.set_reelid(0, ""); });
  EditManager::updateProjdbRec(emptied);
  EXPECT_EQ(shotsOf("").count(), 0);
}

TEST_P(Database, ARenamedShotIsFoundUnderItsNewIdentifier)
{
  PROMISE("host/projdb.h", "No match may be missing.");
  host().openEmptyProject("A");
  const Cookie shot = host().addLog(codes::materialLog, "A001");
  EXPECT_TRUE(holds(shotsOf("A001"), shot));
  withLog(shot, [](Edit& edit) { edit.set_reelid(0, "B002"); });
  EditManager::updateProjdbRec(shot);
  EXPECT_TRUE(holds(shotsOf("b002"), shot));
}

TEST_P(Database, RowsHaveTheTypesOfLogs)
{
  PROMISE("host/edit.h", "The log type for the text of a row's field \"Type\".");
  host().openEmptyProject("A");
  const unsigned short column = EditManager::getProjdb()->findField("Type");
  const auto typeOf = [&](const Cookie& log) {
    dbrecord* const row = (*EditManager::getProjdb())[log];
    return row ? Edit::getLogTypeFromString(row->get_field(column)) : eLogType(-1);
  };
  EXPECT_EQ(typeOf(host().addLog(codes::reelLog, "R1")), 9);
  EXPECT_EQ(typeOf(host().addLog(codes::materialLog, "R1")), 1);
  EXPECT_NE(typeOf(host().addLog(0, "")), 9);
}

TEST_P(Database, AnUnknownTypeTextIsNotAReel)
{
  PROMISE("host/edit.h", "Empty or unknown text does not give codes::reelLog.");
  EXPECT_NE(Edit::getLogTypeFromString(""), 9);
  EXPECT_NE(Edit::getLogTypeFromString(LightweightString<char>()), 9);
  EXPECT_NE(Edit::getLogTypeFromString("no type"), 9);
}

TEST_P(Database, AnUnknownFieldIsNullInEveryRow)
{
  PROMISE("host/projdb.h", "If the name is unknown: a number for which get_field returns null.");
  host().openEmptyProject("A");
  dbrecord* const row = (*EditManager::getProjdb())[host().addLog(codes::reelLog, "R1")];
  ASSERT_NE(row, nullptr);
  EXPECT_EQ(row->get_field(EditManager::getProjdb()->findField("no such field")), nullptr);
}

TEST_P(Database, WhatNamesNoLogHasNoRow)
{
  PROMISE("host/projdb.h", "null if the Cookie has no row");
  host().openEmptyProject("A");
  EXPECT_EQ((*EditManager::getProjdb())[Cookie()], nullptr);
  EXPECT_EQ((*EditManager::getProjdb())[Cookie("P0001000", false)], nullptr);
}

TEST_P(Database, AnUnknownLogHasNoFileName)
{
  PROMISE("host/projdb.h", "The file name of a log, unique among logs; empty for an unknown log.");
  host().openEmptyProject("A");
  EXPECT_TRUE(getFilenameForCookie(Cookie(), Cookie()).empty());
}

TEST_P(Database, RowsOfUnknownLogsAreUpdatedWithoutHarm)
{
  PROMISE("host/projdb.h", "writes a changed log's fields to its row; an unknown log is ignored");
  host().openEmptyProject("A");
  EditManager::updateProjdbRec(Cookie());
}

// --- Views ---------------------------------------------------------------------------------------

std::string typeNameOf(const Cookie& log)
{
  const ODBView view(new ODBViewRep(EditManager::getProjdb()->database()));
  view->displayRecordsAt(std::vector<Cookie>(1, log), 0);
  if (view->numRows() < 1)
    return "<no row>";
  const char* const text = view->cellText(0, "Reel Type");
  return text ? text : "";
}

TEST_P(Database, AViewShowsTheReelTypeAtOnce)
{
  PROMISE("host/edit.h", "the reel type; the column \"Reel Type\" shows it at once");
  host().openEmptyProject("A");
  const Cookie reel = host().addLog(codes::reelLog, "R1");
  EXPECT_EQ(typeNameOf(reel), "");
  withLog(reel, [&](Edit& edit) {
    edit.reelType("Tape 4ch");
    EXPECT_EQ(typeNameOf(reel), "Tape 4ch");
  });
  EditManager::updateProjdbRec(reel);
  EXPECT_EQ(typeNameOf(reel), "Tape 4ch");
}

TEST_P(Database, AViewShowsTheReelTypeThatWasStored)
{
  PROMISE("host/edit.h", "and is stored whether or not the log is marked dirty.");
  HOST_NEEDS(Storage);
  host().openEmptyProject("A");
  const Cookie reel = host().addLog(codes::reelLog, "R1");
  withLog(reel, [](Edit& edit) { edit.reelType("Tape 4ch"); });
  host().storeAndReopen();
  EXPECT_EQ(typeNameOf(reel), "Tape 4ch");
}

TEST_P(Database, TheReelTypeIsNotReadFromTheConfiguration)
{
  PROMISE("host/edit.h", "the reel type; the column \"Reel Type\" shows it at once");
  host().openEmptyProject("A");
  const Cookie reel = host().addLog(codes::reelLog, "R1");
  withLog(reel, [](Edit& edit) {
    edit.reelType("Tape");
    edit.config().set("reel_type", "Z", nullptr);
  });
  EXPECT_EQ(typeNameOf(reel), "Tape");
}

TEST_P(Database, AViewShowsNoRowOfWhatIsNotThere)
{
  PROMISE("host/projdb.h", "Logs without a row are skipped.");
  host().openEmptyProject("A");
  EXPECT_EQ(typeNameOf(Cookie()), "<no row>");
}

TEST_P(Database, ACellStaysWhileTheViewShowsIt)
{
  PROMISE("host/projdb.h", "Valid while the view shows the row, even if the log changes.");
  host().openEmptyProject("A");
  const Cookie reel = host().addLog(codes::reelLog, "R1");
  withLog(reel, [](Edit& edit) { edit.reelType("a name longer than any small buffer would hold"); });
  const ODBView view(new ODBViewRep(EditManager::getProjdb()->database()));
  view->displayRecordsAt({reel}, 0);
  ASSERT_EQ(view->numRows(), 1);
  const char* const text = view->cellText(0, "Reel Type");
  withLog(reel, [](Edit& edit) { edit.reelType("other"); });
  EXPECT_STREQ(text, "a name longer than any small buffer would hold");
  EXPECT_EQ(typeNameOf(reel), "other");
}

TEST_P(Database, AViewShowsOtherRowsInPlaceOfThoseItShowed)
{
  PROMISE("host/projdb.h", "Shows the rows of these logs from @p position on and replaces all rows from there.");
  host().openEmptyProject("A");
  const Cookie first = host().addLog(codes::reelLog, "R1"), second = host().addLog(codes::reelLog, "R2");
  withLog(second, [](Edit& edit) { edit.reelType("Tape"); });
  const ODBView view(new ODBViewRep(EditManager::getProjdb()->database()));
  EXPECT_EQ(view->numRows(), 0);
  view->displayRecordsAt({first, second}, 0);
  EXPECT_EQ(view->numRows(), 2);
  view->displayRecordsAt({second}, 0);
  ASSERT_EQ(view->numRows(), 1);
  EXPECT_STREQ(view->cellText(0, "Reel Type"), "Tape");
  view->displayRecordsAt({}, 0);
  EXPECT_EQ(view->numRows(), 0);
}

TEST_P(Database, AViewDistinguishesItsRows)
{
  PROMISE("host/projdb.h", "Null if there is no such row or column.");
  host().openEmptyProject("A");
  const Cookie first = host().addLog(codes::reelLog, "R1"), second = host().addLog(codes::reelLog, "R2");
  withLog(second, [](Edit& edit) { edit.reelType("Tape"); });
  const ODBView view(new ODBViewRep(EditManager::getProjdb()->database()));
  view->displayRecordsAt({first, second}, 0);
  ASSERT_EQ(view->numRows(), 2);
  EXPECT_STREQ(view->cellText(1, "Reel Type"), "Tape");
  EXPECT_EQ(view->cellText(0, "no such column"), nullptr);
  EXPECT_EQ(view->cellText(2, "Reel Type"), nullptr);
}

} // namespace
