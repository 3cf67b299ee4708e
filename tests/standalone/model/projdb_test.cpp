// SPDX-License-Identifier: Apache-2.0
#include "host/projdb.h"

#include "journal/watch.h"
#include "standalone/model/host_test.h"

namespace {

using namespace reeldb_tests;
using Texts = std::vector<std::string>;

class ProjdbTest : public HostTest {
protected:
  ProjdbTest() { openMemory(); }

  static CookieVec search(int first, int second, std::initializer_list<std::pair<int, const char*>> attributes)
  {
    projdb::SearchCriteria criteria;
    criteria.first = first;
    criteria.second = second;
    for (const auto& [attribute, value] : attributes)
      criteria.attributes.add(LogAttributes::eLogAttribute(attribute), value);
    return EditManager::getProjdb()->search(criteria);
  }
};

TEST_F(ProjdbTest, OtherMasksFindNothing)
{
  addLog(9, "R1");
  projdb& database = *EditManager::getProjdb();
  EXPECT_EQ(database.search(0x10040, 0xFFFEEF9F).count(), 1);
  EXPECT_EQ(database.search(0x10040, 0xFFFEEF9E).count(), 0);
  EXPECT_EQ(database.search(0x10041, 0xFFFEEF9F).count(), 0);
  EXPECT_EQ(database.search(0, 0).count(), 0);
}

TEST_F(ProjdbTest, OtherNumbersAndOtherAttributesFindNothing)
{
  addLog(1, "R1");
  EXPECT_EQ(search(1, 102350, {{20, "R1"}}).count(), 1);
  EXPECT_EQ(search(1, 102351, {{20, "R1"}}).count(), 0);
  EXPECT_EQ(search(2, 102350, {{20, "R1"}}).count(), 0);
  EXPECT_EQ(search(1, 102350, {}).count(), 0);
  EXPECT_EQ(search(1, 102350, {{21, "R1"}}).count(), 0);
  EXPECT_EQ(search(1, 102350, {{20, "R1"}, {21, "R1"}}).count(), 0);
}

TEST_F(ProjdbTest, TwoIdentifiersMustAgree)
{
  addLog(1, "R1");
  EXPECT_EQ(search(1, 102350, {{20, "R1"}, {20, "r1"}}).count(), 1);
  EXPECT_EQ(search(1, 102350, {{20, "R1"}, {20, "R2"}}).count(), 0);
  EXPECT_EQ(search(1, 102350, {{20, "R1"}, {20, ""}}).count(), 0);
}

TEST_F(ProjdbTest, ASearchMayBeCopied)
{
  addLog(1, "R1");
  projdb::SearchCriteria criteria;
  criteria.first = 1;
  criteria.second = 102350;
  criteria.attributes.add(codes::reelIdAttribute, "R1");
  projdb::SearchCriteria copy(criteria);
  criteria.attributes.add(codes::reelIdAttribute, "R2");
  EXPECT_EQ(EditManager::getProjdb()->search(copy).count(), 1);
  copy = criteria;
  EXPECT_EQ(EditManager::getProjdb()->search(copy).count(), 0);
}

TEST_F(ProjdbTest, ShotsAreFoundInTheOrderOfTheirCreation)
{
  CookieVec shots;
  shots.add(addLog(1, "a001"));
  addLog(9, "A001");
  shots.add(addLog(0, "A001"));
  addLog(1, "A0012");
  const Cookie late = addLog(1, "B002");
  EXPECT_EQ(texts(shotsOf("A001")), texts(shots));
  shots.add(addLog(1, "A001"));
  EXPECT_EQ(texts(shotsOf("a001")), texts(shots));
  rename(late, "a001");
  CookieVec four;
  four.add(shots[0]);
  four.add(shots[1]);
  four.add(late);
  four.add(shots[2]);
  EXPECT_EQ(texts(shotsOf("A001")), texts(four));
  EXPECT_EQ(shotsOf("B002").count(), 0);
}

TEST_F(ProjdbTest, LettersBeyondAsciiAreTakenAsTheyAre)
{
  addLog(1, "\xC3\x89");
  EXPECT_EQ(shotsOf("\xC3\xA9").count(), 0);
  EXPECT_EQ(shotsOf("\xC3\x89").count(), 1);
}

TEST_F(ProjdbTest, ShotThatBecomesAReelIsNotAShot)
{
  const EditModifier modifier(EditManager::makeNewEdit(Cookie()));
  modifier.get()->set_reelid(0, "R1");
  EXPECT_EQ(shotsOf("R1").count(), 1);
  modifier.get()->set_entire_medium(1);
  modifier.get()->make_original(false, false);
  modifier.get()->redetermineLogType();
  EXPECT_EQ(shotsOf("R1").count(), 0);
  modifier.get()->set_entire_medium(0);
  modifier.get()->redetermineLogType();
  EXPECT_EQ(shotsOf("R1").count(), 1);
}

TEST_F(ProjdbTest, ReelsAreInTheOrderOfTheirCreationHoweverTheyBecameReels)
{
  const EditModifier first(EditManager::makeNewEdit(Cookie()));
  const EditModifier second(EditManager::makeNewEdit(Cookie()));
  const auto becomeReel = [](Edit& edit) {
    edit.set_entire_medium(1);
    edit.make_original(false, false);
    edit.redetermineLogType();
  };
  EXPECT_EQ(reels().count(), 0);
  becomeReel(*second.get());
  EXPECT_EQ(reels().count(), 1);
  becomeReel(*first.get());
  ASSERT_EQ(reels().count(), 2);
  EXPECT_STREQ(reels()[0].asString(false).c_str() + 9, "00000001");
  EXPECT_STREQ(reels()[1].asString(false).c_str() + 9, "00000002");
}

TEST_F(ProjdbTest, AnUnchangedListOfReelsIsHandedOutWithoutACopy)
{
  for (int i = 0; i < 100; ++i)
    addLog(9, "R");
  const CookieVec first = reels(), second = reels();
  EXPECT_EQ(first.begin(), second.begin());
}

TEST_F(ProjdbTest, FieldsHaveColumns)
{
  projdb& database = *EditManager::getProjdb();
  const unsigned short type = database.findField("Type"), reelType = database.findField("Reel Type");
  EXPECT_NE(type, reelType);
  const Cookie reel = addLog(9, "R1"), material = addLog(1, "R1"), other = addLog(0, "R1");
  withLog(reel, [](Edit& edit) { edit.reelType("Tape"); });
  EXPECT_STREQ(database[reel]->get_field(type), "Reel");
  EXPECT_STREQ(database[reel]->get_field(reelType), "Tape");
  EXPECT_STREQ(database[material]->get_field(type), "Material");
  EXPECT_STREQ(database[other]->get_field(type), "");
  EXPECT_EQ(database[reel]->get_field(database.findField("no field")), nullptr);
  EXPECT_EQ(database[reel]->get_field(database.findField(nullptr)), nullptr);
}

TEST_F(ProjdbTest, AViewShowsFromAPositionOn)
{
  const Cookie first = addLog(9, "R1"), second = addLog(1, "R2");
  withLog(first, [](Edit& edit) { edit.reelType("Tape"); });
  const ODBView view(new ODBViewRep(EditManager::getProjdb()->database()));
  EXPECT_EQ(view->numRows(), 0);
  view->displayRecordsAt({first, Cookie(), second}, 0);
  ASSERT_EQ(view->numRows(), 2);
  EXPECT_STREQ(view->cellText(0, "Type"), "Reel");
  EXPECT_STREQ(view->cellText(1, "Type"), "Material");
  view->displayRecordsAt({first}, 1);
  ASSERT_EQ(view->numRows(), 2);
  EXPECT_STREQ(view->cellText(1, "Type"), "Reel");
  view->displayRecordsAt({}, 0);
  EXPECT_EQ(view->numRows(), 0);
  EXPECT_EQ(view->cellText(-1, "Type"), nullptr);
  EXPECT_EQ(view->cellText(0, "Type"), nullptr);
  EXPECT_EQ(view->cellText(0, nullptr), nullptr);
}

TEST_F(ProjdbTest, AViewShowsTheSameWithoutAScript)
{
  const Cookie reel = addLog(9, "R1");
  withLog(reel, [](Edit& edit) { edit.reelType("Tape"); });
  reelhost::watch(reelhost::Watcher::Script, false); // as in every program but these tests
  EXPECT_EQ(typeNameOf(reel), "Tape");
  EXPECT_EQ(typeNameOf(Cookie()), "<no row>");
}

} // namespace
