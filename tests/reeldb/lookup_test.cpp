// SPDX-License-Identifier: Apache-2.0
#include <climits>
#include <functional>

#include "ReelDbRec.h"
#include "host/config.h"
#include "reeldb/reel_list_fixture.h"

namespace reeldb_tests {

namespace {

using Texts = std::vector<std::string>;

/// The steps of reading one log: it is opened, read and closed.
const Texts oneLook{"EditInfo::EditInfo", "EditInfo::getAttrib", "EditPtr::i_close"};

class Lookup : public ReelListTest {
protected:
  std::string found(const char* id) { return text(manager().getCookieFromReelId(id)); }

  int looksFor(const char* id)
  {
    return countOf(operationsOf([&] { manager().getCookieFromReelId(id); }), "EditInfo::EditInfo");
  }

  void define(const char* type, const char* params = "VideoChannels=1") { theReelTypeManager()->add(type, params); }

  static bool isListedType(const char* type) { return static_cast<bool>(theReelTypeManager()->rep()->find(type)); }

  Texts marks()
  {
    Texts all;
    for (unsigned i = 0; i < manager().reelsInUse.count(); ++i)
      all.push_back(text(manager().reelsInUse[i]));
    return all;
  }

  /// All lookups of this kind, each called once.
  std::vector<std::pair<const char*, std::function<void()>>> questions(const char* id)
  {
    return {
        {"getCookieFromReelId", [=, this] { EXPECT_FALSE(manager().getCookieFromReelId(id).valid()); }},
        {"getReelInfo", [=, this] { EXPECT_FALSE(manager().getReelInfo(id).valid()); }},
        {"doesReelExist", [=, this] { EXPECT_FALSE(manager().doesReelExist(id)); }},
        {"checkReelValid", [=, this] { EXPECT_EQ(manager().checkReelValid(id), 1); }},
        {"representsLiveMaterial", [=, this] { EXPECT_FALSE(manager().representsLiveMaterial(id)); }},
    };
  }

  std::string invalid() { return text(Cookie()); }
};

} // namespace

// --- Finding the log -----------------------------------------------------------------------------

TEST_F(Lookup, FindsTheReelWhateverTheCaseOfItsLetters)
{
  const Cookie abc = addReel("abc"), other = addReel("Xyz-9");
  EXPECT_EQ(found("ABC"), text(abc));
  EXPECT_EQ(found("aBc"), text(abc));
  EXPECT_EQ(found("abc"), text(abc));
  EXPECT_EQ(found("xYZ-9"), text(other));
}

TEST_F(Lookup, FindsWholeIdentifiersOnly)
{
  addReel("abc");
  for (const char* const id : {"ab", "abcd", " abc", "abc ", "b", "a*c", "*"})
    EXPECT_EQ(found(id), invalid()) << id;
}

TEST_F(Lookup, BlanksOfAStoredIdentifierBelongToIt)
{
  const Cookie reel = addReel(" abc ");
  EXPECT_EQ(found(" ABC "), text(reel));
  for (const char* const id : {"abc", " abc", "abc "})
    EXPECT_EQ(found(id), invalid()) << id;
}

TEST_F(Lookup, InvalidCookieInTheListIsOpenedLikeAnyOther)
{
  CookieVec answer;
  answer.add(Cookie());
  answer.add(addReel("A"));
  script().maskSearchResult = answer;
  manager().buildReelList();
  EXPECT_EQ(looksFor("A"), 2);
}

TEST_F(Lookup, FoldsAsciiLettersOnly)
{
  const Cookie lower = addReel("caf\xC3\xA9");
  EXPECT_EQ(found("CAF\xC3\xA9"), text(lower));
  EXPECT_EQ(found("CAF\xC3\x89"), invalid());
  addReel("a[b");
  EXPECT_EQ(found("a{b"), invalid());
}

TEST_F(Lookup, FindsTheFirstOfTwoThatDifferInCaseOnly)
{
  const Cookie first = addReel("Cam"), second = addReel("CAM");
  EXPECT_EQ(found("Cam"), text(first));
  EXPECT_EQ(found("CAM"), text(first));
  EXPECT_EQ(found("cam"), text(first));

  CookieVec swapped;
  swapped.add(second);
  swapped.add(first);
  script().maskSearchResult = swapped;
  manager().buildReelList();
  EXPECT_EQ(found("Cam"), text(second));
  EXPECT_EQ(found("CAM"), text(second));
}

TEST_F(Lookup, NeverFindsTheEmptyIdentifier)
{
  addReel("");
  const Cookie withEmptyText = addReel("", {}, {{"reelid", ""}});
  ASSERT_EQ(configText(withEmptyText, "reelid"), "");

  EXPECT_EQ(operationsOf([&] { EXPECT_FALSE(manager().getCookieFromReelId("").valid()); }), Texts{});
  EXPECT_EQ(operationsOf([&] { EXPECT_FALSE(manager().getCookieFromReelId({}).valid()); }), Texts{});
  EXPECT_FALSE(manager().doesReelExist(""));
}

TEST_F(Lookup, LooksAtOneLogAfterTheOtherUntilOneMatches)
{
  addReel("A");
  addReel("B");
  addReel("C");
  addReel("b");
  Texts twoLooks = oneLook;
  twoLooks.insert(twoLooks.end(), oneLook.begin(), oneLook.end());

  EXPECT_EQ(operationsOf([&] { manager().getCookieFromReelId("A"); }), oneLook);
  EXPECT_EQ(operationsOf([&] { manager().getCookieFromReelId("b"); }), twoLooks);
  EXPECT_EQ(looksFor("c"), 3);
  EXPECT_EQ(looksFor("no such reel"), 4);
  EXPECT_EQ(looksFor("no such reel"), 4) << "nothing is kept from one call to the next";
}

TEST_F(Lookup, OpensEachLogInTheDefaultWayAndReadsTheIdentifier)
{
  const Cookie reel = addReel("A");
  const auto lines = linesOf([&] { manager().getCookieFromReelId("A"); });
  ASSERT_EQ(lines.size(), 3U);
  EXPECT_EQ(lines[0].find("EditInfo::EditInfo(" + text(reel) + ", 0)"), 0U) << lines[0];
  EXPECT_EQ(lines[1], "EditInfo::getAttrib(" + text(reel) + ", 20) -> \"A\"");
  EXPECT_EQ(lines[2], "EditPtr::i_close(" + text(reel) + ")");
}

TEST_F(Lookup, SkipsLogsWithoutIdentifier)
{
  addReel("");
  const Cookie reel = addReel("A");
  EXPECT_EQ(found("A"), text(reel));
  EXPECT_EQ(looksFor("A"), 2);
}

TEST_F(Lookup, SkipsALogThatDoesNotOpenAndClosesIt)
{
  addReel("A");
  const Cookie shut = addReel("B");
  const Cookie last = addReel("C");
  script().failOpen(shut);

  const auto calls = operationsOf([&] { EXPECT_EQ(text(last), text(manager().getCookieFromReelId("C"))); });

  EXPECT_EQ(countOf(calls, "EditInfo::EditInfo"), 3);
  EXPECT_EQ(countOf(calls, "EditPtr::i_close"), 3);
  EXPECT_EQ(found("B"), invalid());
  EXPECT_EQ(reelhost::openLogs(), 0);
}

TEST_F(Lookup, GoesByTheAttributeNotByTheStoredKey)
{
  const Cookie reel = addReel("stored");
  script().attribute(reel, "shown");
  EXPECT_EQ(found("SHOWN"), text(reel));
  EXPECT_EQ(found("stored"), invalid());
}

TEST_F(Lookup, FindsAReelMadeByOthersAfterTheNextRebuildOnly)
{
  const Cookie reel = addLog(9, "A");
  EXPECT_EQ(found("A"), invalid());
  manager().informReelDbChanged("");
  EXPECT_EQ(found("A"), text(reel));
}

TEST_F(Lookup, LooksAtTheLogsThatWereListedWhenItBegan)
{
  addReel("A");
  addReel("B");
  const Cookie last = addReel("C");
  script().before = [&](const std::string& operation, const std::string&) {
    if (operation == "EditInfo::EditInfo")
      manager().handleProjectExit(); // a host may call the library while it opens a log
  };

  EXPECT_EQ(found("C"), text(last));
  EXPECT_EQ(manager().reelList.count(), 0);
}

TEST_F(Lookup, LooksAtTheLogsItBeganWithAlsoWhenTheListIsRebuiltUnderneath)
{
  addReel("A");
  addReel("B");
  const Cookie last = addReel("C");
  holdReelListOnlyInTheManager();
  script().before = [&](const std::string& operation, const std::string&) {
    if (operation == "EditInfo::getAttrib")
      replaceReelList();
  };

  EXPECT_EQ(found("C"), text(last));
  EXPECT_EQ(manager().reelList.count(), 3);
  EXPECT_EQ(found("C"), invalid());
}

TEST_F(Lookup, IsOfOneManagersListAlone)
{
  const Cookie reel = addReel("A");
  ReelDbManager second;
  EXPECT_FALSE(second.getCookieFromReelId("A").valid());
  EXPECT_FALSE(second.getReelInfo("A").valid());
  EXPECT_FALSE(second.doesReelExist("A"));
  EXPECT_EQ(second.checkReelValid("A"), 1);
  EXPECT_FALSE(second.representsLiveMaterial("A"));
  EXPECT_FALSE(second.reelInUse("A"));

  second.buildReelList();
  manager().handleProjectExit();
  EXPECT_EQ(text(reel), text(second.getCookieFromReelId("A")));
  EXPECT_EQ(text(reel), text(second.getReelInfo("A")));
  EXPECT_TRUE(second.doesReelExist("A"));
  EXPECT_EQ(second.checkReelValid("A"), 4);
}

// --- Cost ----------------------------------------------------------------------------------------

TEST_F(Lookup, EmptyListCostsNoHostCallAtAll)
{
  for (const char* const id : {"A", "*", ""})
    for (const auto& [name, ask] : questions(id))
      EXPECT_EQ(operationsOf(ask), Texts{}) << name << " of '" << id << "'";
}

TEST_F(Lookup, UnknownReelIsLookedForOnceAndItsTypeNotAtAll)
{
  addReel("A");
  addReel("B");
  for (const auto& [name, ask] : questions("no such reel")) {
    const auto calls = operationsOf(ask);
    EXPECT_EQ(calls.size(), 6U) << name;
    EXPECT_EQ(countOf(calls, "EditInfo::EditInfo"), 2) << name;
  }
}

// --- The record ----------------------------------------------------------------------------------

TEST_F(Lookup, RecordIsTheReelsOwn)
{
  const Cookie reel = addReel("abc", {}, {{"reel_userfield0", "scene"}});
  ReelDbRec rec = manager().getReelInfo("ABC");
  EXPECT_EQ(text(reel), text(rec));
  EXPECT_EQ(text(rec.reelId()), "abc");
  EXPECT_EQ(text(rec.userField(0)), "scene");

  EXPECT_EQ(invalid(), text(manager().getReelInfo("abd")));
  EXPECT_EQ(invalid(), text(manager().getReelInfo("")));
}

TEST_F(Lookup, ReelExistsWhenItsLogIsFound)
{
  addReel("abc");
  EXPECT_TRUE(manager().doesReelExist("abc"));
  EXPECT_TRUE(manager().doesReelExist("ABC"));
  EXPECT_FALSE(manager().doesReelExist("abd"));
}

// --- Whether the type is known -------------------------------------------------------------------

TEST_F(Lookup, ReelOfAKnownTypeIsValid)
{
  define("lookup known");
  addReel("A", "lookup known");
  EXPECT_EQ(manager().checkReelValid("A"), 0);
  EXPECT_EQ(manager().checkReelValid("a"), 0);
}

TEST_F(Lookup, ReelOfAnUnknownTypeIsNotValid)
{
  define("lookup known");
  addReel("A", "lookup unknown");
  addReel("B", "Lookup known");
  addReel("C", "lookup known ");
  addReel("D");
  for (const char* const id : {"A", "B", "C", "D"})
    EXPECT_EQ(manager().checkReelValid(id), 4) << id;
  EXPECT_FALSE(isListedType("lookup unknown")) << "asking adds nothing";
  EXPECT_EQ(manager().checkReelValid("A"), 4);
}

TEST_F(Lookup, UnknownReelIsNotValid)
{
  addReel("A", "lookup known");
  EXPECT_EQ(manager().checkReelValid("B"), 1);
  EXPECT_EQ(manager().checkReelValid(""), 1);
}

TEST_F(Lookup, ReelTurnsValidOnceItsTypeWasAskedForItsChannels)
{
  addReel("A", "lookup asked for");
  ASSERT_EQ(manager().checkReelValid("A"), 4);
  EXPECT_EQ(theReelTypeManager()->numVideoChans("lookup asked for"), 0);
  EXPECT_EQ(manager().checkReelValid("A"), 0);
}

TEST_F(Lookup, WithoutDatabaseNoTypeIsKnown)
{
  define("lookup known");
  addReel("A", "lookup known");
  script().noDatabase(true);
  EXPECT_EQ(manager().checkReelValid("A"), 4);
  EXPECT_EQ(manager().checkReelValid("B"), 1);
}

TEST_F(Lookup, TypeIsReadOnceFromTheDatabasesView)
{
  define("lookup known");
  addReel("A", "lookup known");
  const auto calls = operationsOf([&] { manager().checkReelValid("A"); });
  EXPECT_EQ(countOf(calls, "EditInfo::EditInfo"), 1);
  EXPECT_EQ(countOf(calls, "EditManager::getProjdb"), 1);
  EXPECT_EQ(countOf(calls, "EditPtr::i_open"), 0);
}

// --- Live material -------------------------------------------------------------------------------

TEST_F(Lookup, LiveMaterialIsOfTheVeryTypeLive)
{
  addReel("A", "Live");
  EXPECT_TRUE(manager().representsLiveMaterial("A"));
  EXPECT_TRUE(manager().representsLiveMaterial("a"));

  int n = 0;
  for (const char* const type : {"live", "LIVE", "Live feed", "Live ", " Live", "Liv", ""}) {
    const std::string id = numbered("N", ++n);
    addReel(id, type);
    EXPECT_FALSE(manager().representsLiveMaterial(id.c_str())) << type;
  }
  EXPECT_FALSE(manager().representsLiveMaterial("no such reel"));
  EXPECT_FALSE(manager().representsLiveMaterial(""));
}

TEST_F(Lookup, LiveMaterialNeedsNoEntryInTheCatalogue)
{
  addReel("A", "Live");
  ASSERT_FALSE(isListedType("Live"));
  EXPECT_TRUE(manager().representsLiveMaterial("A"));
  EXPECT_FALSE(isListedType("Live"));
}

TEST_F(Lookup, OfTwoThatDifferInCaseOnlyTheFirstDecidesWhetherItIsLive)
{
  addReel("cam", "Live");
  addReel("CAM", "lookup tape");
  EXPECT_TRUE(manager().representsLiveMaterial("CAM"));
  EXPECT_TRUE(manager().representsLiveMaterial("cam"));
}

TEST_F(Lookup, WithoutDatabaseNothingIsLive)
{
  addReel("A", "Live");
  script().noDatabase(true);
  EXPECT_FALSE(manager().representsLiveMaterial("A"));
}

// --- Generated material --------------------------------------------------------------------------

TEST_F(Lookup, GeneratedMaterialHasAStarInItsIdentifier)
{
  addReel("AB");
  EXPECT_EQ(operationsOf([&] {
              for (const char* const id : {"*", "A*B", "A*", "*A", "**", " * "})
                EXPECT_TRUE(manager().representsInternallyGeneratedMaterial(id)) << id;
              for (const char* const id : {"", "AB", "A", " ", "no such reel", "A\xC2\xAA"})
                EXPECT_FALSE(manager().representsInternallyGeneratedMaterial(id)) << id;
              EXPECT_FALSE(manager().representsInternallyGeneratedMaterial({}));
            }),
            Texts{});
}

// --- Marks ---------------------------------------------------------------------------------------

TEST_F(Lookup, MarksAreSetAndTakenBack)
{
  EXPECT_EQ(operationsOf([&] {
              EXPECT_FALSE(manager().reelInUse("A1"));
              manager().reelInUse("A1", true);
              EXPECT_TRUE(manager().reelInUse("A1"));
              manager().reelInUse("A1", false);
              EXPECT_FALSE(manager().reelInUse("A1"));
            }),
            Texts{})
      << "no reel is looked for";
}

TEST_F(Lookup, MarksAreLetterForLetter)
{
  addReel("A1");
  manager().reelInUse("A1", true);
  for (const char* const id : {"a1", " A1", "A1 ", "A", "A11", ""})
    EXPECT_FALSE(manager().reelInUse(id)) << id;
  manager().reelInUse("a1", false);
  EXPECT_TRUE(manager().reelInUse("A1"));
}

TEST_F(Lookup, MarksNeedNoReel)
{
  manager().reelInUse(" not * a reel ", true);
  EXPECT_TRUE(manager().reelInUse(" not * a reel "));
  manager().reelInUse("", true);
  EXPECT_TRUE(manager().reelInUse(""));
}

TEST_F(Lookup, MarkThatWasNotSetCanBeTakenBack)
{
  manager().reelInUse("A1", true);
  manager().reelInUse("B1", false);
  EXPECT_EQ(marks(), (Texts{"A1"}));
}

TEST_F(Lookup, MarkSetTwiceIsTakenBackAtOnce)
{
  manager().reelInUse("A1", true);
  manager().reelInUse("A1", true);
  manager().reelInUse("A1", false);
  EXPECT_FALSE(manager().reelInUse("A1"));
}

TEST_F(Lookup, MarksAreSortedAlsoAfterTheyWereCleared)
{
  const auto mark = [&] {
    for (const char* const id : {"b", "B", "a", "\xC3\xA9", "A", "ab"})
      manager().reelInUse(id, true);
  };
  const Texts sorted{"A", "B", "a", "ab", "b", "\xC3\xA9"};
  mark();
  EXPECT_EQ(marks(), sorted);

  manager().handleProjectEntry();
  EXPECT_EQ(marks(), Texts{});
  mark();
  EXPECT_EQ(marks(), sorted);

  manager().reelInUse("a", false);
  EXPECT_EQ(marks(), (Texts{"A", "B", "ab", "b", "\xC3\xA9"}));
}

TEST_F(Lookup, MarksDoNotAffectLookups)
{
  const Cookie reel = addReel("A", "Live");
  manager().reelInUse("A", true);
  EXPECT_EQ(found("A"), text(reel));
  EXPECT_TRUE(manager().representsLiveMaterial("A"));
  std::vector<LightweightString<char>> ids;
  manager().getAllReelIds(ids, true);
  EXPECT_EQ(ids.size(), 1U);
}

// --- Names of user fields ------------------------------------------------------------------------

TEST_F(Lookup, UserFieldsAreNamedFromOneWhenNothingIsStored)
{
  EXPECT_EQ(text(manager().userFieldName(0)), "User field 1");
  EXPECT_EQ(text(manager().userFieldName(5)), "User field 6");
  EXPECT_EQ(text(manager().userFieldName(99)), "User field 100");
  EXPECT_EQ(text(manager().userFieldName(-1)), "User field 0");
  EXPECT_EQ(text(manager().userFieldName(INT_MAX)), "User field 2147483648");
  EXPECT_EQ(text(manager().userFieldName(INT_MIN)), "User field -2147483647");
}

TEST_F(Lookup, UserFieldNameIsStoredUnderItsNumberFromZero)
{
  const auto lines = linesOf([&] { manager().userFieldName(0, "Scene"); });
  EXPECT_EQ(countOf(lines, R"(SystemCfg::set("reel_userfield0", "Scene"))"), 1);
  EXPECT_EQ(text(SystemCfg::theConfig().get("reel_userfield0")), "Scene");
  EXPECT_EQ(text(manager().userFieldName(0)), "Scene");
  EXPECT_EQ(text(manager().userFieldName(1)), "User field 2");

  SystemCfg::theConfig().set("reel_userfield1", "Take");
  EXPECT_EQ(text(manager().userFieldName(1)), "Take");
  EXPECT_EQ(text(manager().userFieldName(0)), "Scene");
}

TEST_F(Lookup, UserFieldNumbersAreNotChecked)
{
  for (const int n : {-1, 6, 12345, INT_MAX, INT_MIN}) {
    const std::string name = numbered("field ", n);
    manager().userFieldName(n, name.c_str());
    EXPECT_EQ(text(SystemCfg::theConfig().get(numbered("reel_userfield", n).c_str())), name);
    EXPECT_EQ(text(manager().userFieldName(n)), name);
  }
}

TEST_F(Lookup, EmptyUserFieldNameCountsAsNone)
{
  manager().userFieldName(0, "Scene");
  manager().userFieldName(0, "");
  EXPECT_EQ(text(manager().userFieldName(0)), "User field 1");
}

TEST_F(Lookup, UserFieldNameIsStoredAsItIsAndEachTime)
{
  manager().userFieldName(0, " Sc\xC3\xA8ne ");
  EXPECT_EQ(text(manager().userFieldName(0)), " Sc\xC3\xA8ne ");
  EXPECT_EQ(countOf(operationsOf([&] { manager().userFieldName(0, " Sc\xC3\xA8ne "); }), "SystemCfg::set"), 1);
}

TEST_F(Lookup, UserFieldNamesNotifyNobodyAndNeedNoReel)
{
  Heard heard;
  RecordingClient client(heard);
  manager().userFieldName(0, "Scene");
  EXPECT_EQ(heard, Heard{});
  EXPECT_EQ(countOf(linesOf([&] { manager().userFieldName(0); }), R"(SystemCfg::get("reel_userfield0") -> "Scene")"),
            1);
}

TEST_F(Lookup, KeyOfTheNamesIsNotTheKeyOfTheFields)
{
  const char* const base = TR_USER_FIELD_BASE;
  TR_USER_FIELD_BASE = "elsewhere";
  manager().userFieldName(3, "Roll");
  TR_USER_FIELD_BASE = base;
  EXPECT_EQ(text(manager().userFieldName(3)), "Roll");
}

} // namespace reeldb_tests
