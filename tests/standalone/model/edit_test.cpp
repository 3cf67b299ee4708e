// SPDX-License-Identifier: Apache-2.0
#include <climits>
#include <stdexcept>

#include "host/text.h"
#include "standalone/model/host_test.h"

namespace {

using namespace reeldb_tests;

class EditTest : public HostTest {
protected:
  EditTest() { openMemory(); }
  static void classify(Edit& edit, bool entire, bool original)
  {
    edit.set_entire_medium(entire);
    edit.make_original(original, false);
    edit.redetermineLogType();
  }
};

TEST_F(EditTest, EntireMediumThatIsNotAnOriginalIsAReel)
{
  const EditModifier modifier(EditManager::makeNewEdit(Cookie()));
  Edit& edit = *modifier.get();
  EXPECT_EQ(edit.getLogType(), 0);
  classify(edit, true, true);
  EXPECT_EQ(edit.getLogType(), 0);
  EXPECT_EQ(reels().count(), 0);
  classify(edit, false, false);
  EXPECT_EQ(edit.getLogType(), 0);
  classify(edit, true, false);
  EXPECT_EQ(edit.getLogType(), 9);
  EXPECT_EQ(reels().count(), 1);
  classify(edit, false, false);
  EXPECT_EQ(edit.getLogType(), 0);
  EXPECT_EQ(reels().count(), 0);
}

TEST_F(EditTest, ImportedMaterialStaysMaterial)
{
  const Cookie log = reelhost::importMaterial({});
  withLog(log, [](Edit& edit) {
    EXPECT_TRUE(edit.isImported());
    EXPECT_EQ(edit.getLogType(), 1);
    edit.redetermineLogType();
    EXPECT_EQ(edit.getLogType(), 1);
  });
}

TEST_F(EditTest, StoredReelStaysAReelWhenItsTypeIsDeterminedAgain)
{
  reelhost::StoredLog stored;
  stored.type = 9;
  stored.entireMedium = true;
  const Cookie log = reelhost::addLog(stored);
  reelhost::commit();
  reopen();
  withLog(log, [](Edit& edit) {
    edit.redetermineLogType();
    EXPECT_EQ(edit.getLogType(), 9);
  });
  EXPECT_FALSE(reelhost::hasChanges());
}

TEST_F(EditTest, NamesAreStoredAsUtf8)
{
  const Cookie log = addLog(9, "R1");
  withLog(log, [](Edit& edit) { edit.setName(L"Reel \u00e9", false); });
  EXPECT_EQ(reelhost::materialOf(log).name, "Reel \xC3\xA9");
}

TEST_F(EditTest, TheReelTypeIsAlsoThereForOtherModules)
{
  const Cookie log = addLog(9, "R1");
  withLog(log, [](Edit& edit) { edit.reelType("Tape"); });
  EXPECT_EQ(fieldOf(log, "reel_type"), "Tape");
  EXPECT_EQ(typeNameOf(log), "Tape");
}

TEST_F(EditTest, ChannelsOfOtherTypesCountForNothing)
{
  const Cookie log = addLog(9, "R1");
  withLog(log, [](Edit& edit) {
    edit.addChan(EditChanType(3), nullptr, false, EditChanSubType(0), false, -1.0);
    EXPECT_EQ(edit.getNumChans(EditChanType(3)), 0);
    EXPECT_EQ(edit.getNumChans(codes::videoChannel), 0);
    EXPECT_EQ(edit.getNumChans(codes::audioChannel), 0);
  });
}

// With one more, the bits that the library reads would be 0, and it would add channels for ever.
TEST_F(EditTest, ChannelBeyondTheBitsThatCountIsRefused)
{
  reelhost::StoredLog stored;
  stored.type = 9;
  stored.videoChannels = INT_MAX;
  stored.audioChannels = 65534;
  const Cookie unnamed = reelhost::addLog(stored);
  stored.fields = {{"reelid", "R\t1"}};
  const Cookie named = reelhost::addLog(stored);
  const auto add = [](const Cookie& log, EditChanType type) {
    return errorOf([&] {
      withLog(log, [type](Edit& edit) { edit.addChan(type, nullptr, false, EditChanSubType(0), false, -1.0); });
    });
  };
  const std::string cause = " channels (at most 65535; its type or its device requires more)";
  EXPECT_EQ(add(unnamed, codes::videoChannel), "Refused: E0000001: too many video" + cause);
  EXPECT_EQ(add(named, codes::audioChannel), "none");
  EXPECT_EQ(add(named, codes::audioChannel), "Refused: R\\t1: too many audio" + cause);
  withLog(named, [](Edit& edit) {
    EXPECT_EQ(edit.getNumChans(codes::audioChannel), 65535);
    EXPECT_EQ(edit.getNumChans(codes::videoChannel), INT_MAX);
  });
}

// Each alone must be stored: the library marks logs dirty only for some of them.
TEST_F(EditTest, EveryChangeIsToBeStored)
{
  const std::pair<const char*, std::function<void(Edit&)>> changes[] = {
      {"identifier", [](Edit& edit) { edit.set_reelid(0, "R2"); }},
      {"name", [](Edit& edit) { edit.setName(L"n", false); }},
      {"reel type", [](Edit& edit) { edit.reelType("Tape"); }},
      {"channel",
       [](Edit& edit) { edit.addChan(codes::videoChannel, nullptr, false, EditChanSubType(0), false, -1.0); }},
      {"field", [](Edit& edit) { edit.config().set("k", "v", nullptr); }},
      {"type", [](Edit& edit) { edit.redetermineLogType(); }}, // by its flags it is not a reel
      {"entire medium", [](Edit& edit) { edit.set_entire_medium(1); }},
      {"said so", [](Edit& edit) { edit.setDirty(true); }},
  };
  const Cookie log = addLog(9, "R1");
  for (const auto& [what, change] : changes) {
    reelhost::commit();
    EXPECT_FALSE(reelhost::hasChanges());
    withLog(log, change);
    EXPECT_TRUE(reelhost::hasChanges()) << what;
  }
}

TEST_F(EditTest, WhatChangesNothingIsNotStored)
{
  const Cookie log = addLog(1, "R1");
  withLog(log, [](Edit& edit) { edit.setName(L"n", false); });
  reelhost::commit();
  withLog(log, [](Edit& edit) {
    edit.set_reelid(0, "R1");
    edit.setName(L"n", false);
    edit.set_entire_medium(0);
    edit.setDirty(false);
  });
  EXPECT_FALSE(reelhost::hasChanges());
}

TEST_F(EditTest, NotDirtyTakesNothingBack)
{
  const Cookie log = addLog(9, "R1");
  reelhost::commit();
  withLog(log, [](Edit& edit) {
    edit.set_reelid(0, "R2");
    edit.setDirty(false);
  });
  EXPECT_TRUE(reelhost::commit());
  reopen();
  EXPECT_EQ(reelIdOf(log), "R2");
}

TEST_F(EditTest, AReelIdentifierThatIsUnsetLeavesTheFieldAlone)
{
  const Cookie log = addLog(1, "");
  strp_field field;
  field.set("old");
  withLog(log, [&](Edit& edit) { edit.get_reelid(field, 0, -1); });
  EXPECT_STREQ(field.text(), "old");
}

TEST_F(EditTest, TypesHaveTexts)
{
  EXPECT_EQ(Edit::getLogTypeFromString("Reel"), 9);
  EXPECT_EQ(Edit::getLogTypeFromString("Material"), 1);
  EXPECT_EQ(Edit::getLogTypeFromString("reel"), 0);
  EXPECT_EQ(Edit::getLogTypeFromString(""), 0);
}

TEST_F(EditTest, CookiesAreNamedAfterProjectAndNumber)
{
  const std::string first = text(addLog(9, "")), second = text(addLog(1, ""));
  EXPECT_EQ(first.size(), 17u);
  EXPECT_EQ(first[0], 'E');
  EXPECT_EQ(first.substr(9), "00000001");
  EXPECT_EQ(second.substr(0, 9), first.substr(0, 9));
  EXPECT_EQ(second.substr(9), "00000002");
  EXPECT_EQ(first.substr(1, 8).find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZ234567"), std::string::npos);
  reelhost::openProject(reelhost::makeMemoryStore(info("OTHER")), reelhost::Access::Write);
  EXPECT_NE(text(addLog(9, "")).substr(0, 9), first.substr(0, 9));
}

TEST_F(EditTest, FileNamesAreNumbers)
{
  addLog(9, "");
  const Cookie second = addLog(9, "");
  EXPECT_STREQ(toUTF8(getFilenameForCookie(second, Cookie())).c_str(), "E0000002");
  EXPECT_TRUE(getFilenameForCookie(Cookie(), Cookie()).empty());
}

} // namespace
