// SPDX-License-Identifier: Apache-2.0
#include "lists/name_index.h"

#include <algorithm>
#include <map>
#include <random>
#include <utility>

#include <gtest/gtest.h>

#include "lists/name_forms.h"
#include "support.h"

using namespace reeldb::lists;
using namespace reeldb::lists::test;

namespace {

struct Use {
  std::string name;
  bool mayBeCut = false;
  std::string id = {};
  std::string clipName = {};
};
using Uses = std::vector<Use>;
using Decisions = std::vector<std::pair<std::string, std::string>>;

NameIndex indexOf(const Uses& uses, const Decisions& decisions = {}, NameRules rules = NameRules::All)
{
  NameIndex index(rules);
  for (const Use& use : uses)
    index.add({use.name, use.mayBeCut, use.id, use.clipName});
  for (const auto& [name, reel] : decisions)
    index.decide(name, reel);
  index.settle();
  return index;
}

std::string reelOf(const NameIndex& index, const std::string& name, const std::string& id = {})
{
  return index.find(name, id).reel;
}

Use whole(const std::string& name)
{
  return {name};
}

Use cut(const std::string& name, const std::string& clipName = {})
{
  return {name, true, {}, clipName};
}

const std::string longName = "A001C001_200303_F701", otherName = "A001C001_200303_G802", cutName = "A001C001";

TEST(NameIndex, NameAloneIsItself)
{
  const ReelOfName found = indexOf({whole("A001")}).find("A001");
  EXPECT_EQ(found.reel, "A001");
  EXPECT_EQ(found.match, Match::Itself);
  EXPECT_TRUE(found.perhaps.empty());
}

TEST(NameIndex, NameThatWasNotAddedIsItself)
{
  EXPECT_EQ(reelOf(indexOf({whole("A001")}), "B002"), "B002");
  EXPECT_EQ(reelOf(indexOf({}), ""), "");
}

TEST(NameIndex, OtherSpellingIsTheSameName)
{
  const ReelOfName found = indexOf({whole("BOONE SMITH"), whole("boone_smith")}).find("boone_smith");
  EXPECT_EQ(found.reel, "BOONE SMITH");
  EXPECT_EQ(found.match, Match::SameName);
}

TEST(NameIndex, OtherEndingOfOneKind)
{
  const NameIndex index = indexOf({whole("X.MOV"), whole("X.MXF"), whole("X.WAV")});
  EXPECT_EQ(reelOf(index, "X.MXF"), "X.MOV");
  EXPECT_EQ(index.find("X.MXF").match, Match::OtherEnding);
  EXPECT_EQ(reelOf(index, "X.WAV"), "X.WAV");
}

TEST(NameIndex, NameWithoutItsEnding)
{
  const NameIndex index = indexOf({whole("X.MOV"), whole("X")});
  EXPECT_EQ(reelOf(index, "X.MOV"), "X");
  EXPECT_EQ(index.find("X.MOV").match, Match::NoEnding);
}

TEST(NameIndex, NameWithoutItsEndingIsADoubtIfTwoKindsHaveIt)
{
  const ReelOfName found = indexOf({whole("X.MOV"), whole("X"), whole("X.WAV")}).find("X");
  EXPECT_EQ(found.reel, "X");
  EXPECT_EQ(found.match, Match::Itself);
  EXPECT_EQ(found.perhaps, (Strings{"X.MOV", "X.WAV"}));
}

TEST(NameIndex, CutNameOfOneReel)
{
  const NameIndex index = indexOf({cut(cutName), whole(longName)});
  EXPECT_EQ(reelOf(index, cutName), longName);
  EXPECT_EQ(index.find(cutName).match, Match::Cut);
}

TEST(NameIndex, CutNameOfTwoReelsIsADoubt)
{
  const ReelOfName found = indexOf({cut(cutName), whole(longName), whole(otherName)}).find(cutName);
  EXPECT_EQ(found.reel, cutName);
  EXPECT_EQ(found.perhaps, (Strings{longName, otherName}));
}

TEST(NameIndex, ReelCountsOnceHoweverManyNamesItHas)
{
  const NameIndex index = indexOf({cut(cutName), whole(longName + ".MOV"), whole(longName + ".MXF"), whole(longName)});
  EXPECT_EQ(reelOf(index, cutName), longName);
}

TEST(NameIndex, WholeNameIsNoBeginning)
{
  EXPECT_EQ(reelOf(indexOf({whole(cutName), whole(longName)}), cutName), cutName);
}

TEST(NameIndex, NameThatIsWholeInOneListIsWholeInAll)
{
  EXPECT_EQ(reelOf(indexOf({cut(cutName), whole(cutName), whole(longName)}), cutName), cutName);
  EXPECT_EQ(reelOf(indexOf({cut("Z677_13."), whole("Z677_13_"), whole("Z677_13_B")}), "Z677_13."), "Z677_13_");
}

TEST(NameIndex, CutNameFollowsAWiderCutName)
{
  const std::string wider = longName.substr(0, 16);
  const NameIndex one = indexOf({cut(cutName), cut(wider), whole(longName)});
  EXPECT_EQ(reelOf(one, cutName), longName);
  EXPECT_EQ(reelOf(one, wider), longName);
  EXPECT_EQ(reelOf(indexOf({cut(cutName), cut(wider)}), cutName), wider);
  EXPECT_EQ(reelOf(indexOf({cut(cutName), cut(wider), whole(longName), whole(otherName)}), cutName), cutName);
}

TEST(NameIndex, ClipNameThatAgreesDoesNoHarm)
{
  for (const std::string& clip : {longName, longName.substr(0, 10), longName + ".mov.NEW.01", std::string("12A-1")})
    EXPECT_EQ(reelOf(indexOf({cut(cutName, clip), whole(longName)}), cutName), longName) << clip;
}

TEST(NameIndex, ClipNameThatSpeaksAgainstTheOnlyReelIsADoubt)
{
  const ReelOfName found =
      indexOf({cut(cutName, longName), cut(cutName, "A001C001 take 2"), whole(longName)}).find(cutName);
  EXPECT_EQ(found.reel, cutName);
  EXPECT_EQ(found.perhaps, Strings{longName});
  EXPECT_EQ(found.clipNames, (Strings{"A001C001 take 2", longName}));
}

TEST(NameIndex, NameCutWithoutItsOtherCharacters)
{
  EXPECT_EQ(reelOf(indexOf({cut("BOONESMI"), whole("BOONE SMITH")}), "BOONESMI"), "BOONE SMITH");
}

TEST(NameIndex, NameCutInTwoWaysFollowsTheFormThatKeepsItsCharacters)
{
  const NameIndex index = indexOf({cut("BOONESMI"), cut("BOONE_SM"), whole("BOONE SMITH")});
  EXPECT_EQ(reelOf(index, "BOONE_SM"), "BOONE SMITH");
  EXPECT_EQ(reelOf(index, "BOONESMI"), "BOONESMI");
}

TEST(NameIndex, OneSourceIdIsOneReelWhateverTheNames)
{
  const NameIndex index = indexOf({{"TAPE 1", false, "ID-1"}, {"ROLL 7", false, "id-1"}});
  EXPECT_EQ(reelOf(index, "TAPE 1"), "ROLL 7");
  EXPECT_EQ(index.find("TAPE 1").match, Match::SourceId);
}

TEST(NameIndex, DifferentSourceIdsAreDifferentReels)
{
  const NameIndex spellings = indexOf({{"A-1", false, "id-1"}, {"A_1", false, "id-2"}, whole("A 1")});
  EXPECT_EQ(reelOf(spellings, "A-1"), "A-1");
  EXPECT_EQ(reelOf(spellings, "A_1"), "A_1");
  EXPECT_EQ(spellings.find("A 1").perhaps, (Strings{"A-1", "A_1"}));
  const NameIndex forms = indexOf({{cutName, true, "id-1"}, {longName, false, "id-2"}});
  EXPECT_EQ(reelOf(forms, cutName), cutName);
  EXPECT_TRUE(forms.find(cutName).perhaps.empty());
}

TEST(NameIndex, NameWithTwoSourceIdsIsTwoReels)
{
  const NameIndex index = indexOf({{"N", false, "id-1"}, {"N", false, "id-2"}, whole("N")});
  EXPECT_EQ(reelOf(index, "N", "id-1"), "N id-1");
  EXPECT_EQ(reelOf(index, "N", "id-2"), "N id-2");
  EXPECT_EQ(reelOf(index, "N"), "N");
  EXPECT_EQ(index.find("N").perhaps, (Strings{"N id-1", "N id-2"}));
}

TEST(NameIndex, ThirdNameDoesNotJoinTwoSourceIds)
{
  const NameIndex index = indexOf({{cutName, true, "id-1"}, {longName.substr(0, 16), true, "id-2"}, whole(longName)});
  EXPECT_EQ(reelOf(index, cutName), cutName);
  EXPECT_NE(reelOf(index, longName.substr(0, 16)), reelOf(index, cutName));
}

TEST(NameIndex, CutNameFollowsItsSource)
{
  const std::string wider = longName.substr(0, 16);
  const NameIndex index = indexOf({{cutName, true, "id-1"}, {wider, true, "id-1", wider + " take 2"}, whole(longName)});
  EXPECT_EQ(reelOf(index, cutName), wider);
}

TEST(NameIndex, DecisionStandsBeforeAllRules)
{
  const NameIndex index = indexOf({cut(cutName), whole(longName), whole("TAPE 7")}, {{cutName, "TAPE 7"}});
  EXPECT_EQ(reelOf(index, cutName), "TAPE 7");
  EXPECT_EQ(index.find(cutName).match, Match::Decided);
  EXPECT_EQ(reelOf(index, longName), longName);
}

TEST(NameIndex, NameThatIsDecidedToBeItselfJoinsNothing)
{
  EXPECT_EQ(reelOf(indexOf({cut(cutName), whole(longName)}, {{cutName, cutName}}), cutName), cutName);
  const NameIndex index = indexOf({whole("A-1"), whole("A_1")}, {{"A-1", "A-1"}, {"A_1", "A_1"}});
  EXPECT_EQ(reelOf(index, "A-1"), "A-1");
  EXPECT_EQ(reelOf(index, "A_1"), "A_1");
}

TEST(NameIndex, ShortFormsFollowARenamedReel)
{
  const NameIndex index = indexOf({cut(cutName), whole(longName)}, {{longName, "KITCHEN"}});
  EXPECT_EQ(reelOf(index, longName), "KITCHEN");
  EXPECT_EQ(reelOf(index, cutName), "KITCHEN");
}

TEST(NameIndex, NameWithItsEndingFollowsARenamedReel)
{
  const NameIndex index = indexOf({whole("X"), whole("X.MOV")}, {{"X", "KITCHEN"}});
  EXPECT_EQ(reelOf(index, "X"), "KITCHEN");
  EXPECT_EQ(reelOf(index, "X.MOV"), "KITCHEN");
}

TEST(NameIndex, DecisionsMakeAChain)
{
  const NameIndex index = indexOf({whole("A")}, {{"A", "B"}, {"B", "C"}});
  EXPECT_EQ(reelOf(index, "A"), "C");
  const NameIndex circle = indexOf({}, {{"B", "A"}, {"A", "B"}});
  EXPECT_EQ(reelOf(circle, "A"), "A");
  EXPECT_EQ(reelOf(circle, "B"), "A");
}

TEST(NameIndex, DecisionJoinsDifferentSourceIds)
{
  const NameIndex index = indexOf({{"A", false, "id-1"}, {"B", false, "id-2"}}, {{"A", "B"}});
  EXPECT_EQ(reelOf(index, "A"), "B");
}

/// The index of names, of which people gave some to reels.
NameIndex indexWithReels(const Uses& uses, const Strings& given, const Decisions& decisions = {})
{
  NameIndex index;
  for (const Use& use : uses)
    index.add({use.name, use.mayBeCut, use.id, use.clipName});
  for (const std::string& name : given)
    index.nameReel(name);
  for (const auto& [name, reel] : decisions)
    index.decide(name, reel);
  index.settle();
  return index;
}

TEST(NameIndex, NameThatAPersonGaveAReelIsWhole)
{
  const NameIndex index = indexWithReels({cut(cutName), whole(longName)}, {cutName});
  EXPECT_EQ(reelOf(index, cutName), cutName);
  EXPECT_EQ(reelOf(index, longName), longName);
}

TEST(NameIndex, OtherFormsFollowANameThatAPersonGaveAReel)
{
  const NameIndex index = indexWithReels({cut(cutName), whole("X"), whole("X.MOV")}, {longName, "X.MOV"});
  EXPECT_EQ(reelOf(index, cutName), longName);
  EXPECT_EQ(reelOf(index, "X"), "X.MOV");
}

TEST(NameIndex, TwoNamesThatPeopleGaveReelsAreNeverJoined)
{
  const NameIndex index = indexWithReels({{"A", false, "1"}, {"B", false, "1"}}, {"A", "B", "X.MOV", "X.MXF"});
  EXPECT_EQ(reelOf(index, "A"), "A");
  EXPECT_EQ(reelOf(index, "B"), "B");
  EXPECT_EQ(reelOf(index, "X.MOV"), "X.MOV");
  EXPECT_EQ(reelOf(index, "X.MXF"), "X.MXF");
}

TEST(NameIndex, NameThatAPersonGaveAReelJoinsNoTwoSourceIds)
{
  const NameIndex index = indexWithReels({{"A", false, "1"}, {"A", false, "2"}}, {"A"});
  EXPECT_NE(reelOf(index, "A", "1"), reelOf(index, "A", "2"));
}

TEST(NameIndex, ShortFormDoesNotFollowANameThatIsDecidedToBeItself)
{
  const NameIndex index = indexWithReels({cut(cutName), whole(longName)}, {}, {{longName, longName}});
  EXPECT_EQ(reelOf(index, cutName), cutName);
  EXPECT_EQ(reelOf(index, longName), longName);
}

TEST(NameIndex, ExactRulesJoinOnlyTheSameNameAndWhatIsDecided)
{
  const NameIndex index =
      indexOf({cut(cutName), whole(longName), whole("X"), whole("X.MOV"), whole("X.MXF"), whole("x"), whole("OLD")},
              {{"OLD", "NEW"}}, NameRules::Exact);
  for (const std::string& name : {cutName, longName, std::string("X"), std::string("X.MOV"), std::string("X.MXF")})
    EXPECT_EQ(reelOf(index, name), name);
  EXPECT_EQ(reelOf(index, "x"), "X");
  EXPECT_EQ(reelOf(index, "OLD"), "NEW");
}

// ---- Any names ----------------------------------------------------------------------------------

class AnyNames : public testing::TestWithParam<unsigned> {
protected:
  std::size_t upTo(std::size_t most) { return std::uniform_int_distribution<std::size_t>(0, most)(random_); }
  const std::string& oneOf(const Strings& texts) { return texts[upTo(texts.size() - 1)]; }

  /// Names that are often forms of each other: few letters, cut to two fields, with endings.
  std::string anyName()
  {
    std::string name = oneOf({"A001C1", "A001C2", "A001-C", "A 01C1"});
    name += oneOf({"", "_1", "-1", " 1", "_1203", "_1203_F70", "_1203_F70 TAKE 2", "_1204_G"});
    return name + oneOf({"", "", "", ".MOV", ".mxf", ".WAV", ".[1-96]"});
  }

  Uses anyUses(bool withIds)
  {
    Uses uses;
    for (std::size_t count = upTo(14); count-- > 0;) {
      Use use{anyName()};
      const std::size_t field = upTo(1) ? 8 : 6;
      if (upTo(1) && use.name.size() >= field)
        use = {use.name.substr(0, field), true, {}, upTo(2) ? std::string() : anyName()};
      if (withIds && !upTo(3))
        use.id = oneOf({"id-1", "id-2", "id-3"});
      uses.push_back(use);
    }
    return uses;
  }

  std::mt19937 random_{GetParam()};
};

std::map<std::pair<std::string, std::string>, std::string> results(const NameIndex& index, const Uses& uses)
{
  std::map<std::pair<std::string, std::string>, std::string> all;
  for (const Use& use : uses) {
    const ReelOfName found = index.find(use.name, use.id);
    std::string result = found.reel + " " + std::string(wordOf(found.match));
    for (const Strings& texts : {found.perhaps, found.clipNames})
      for (const std::string& text : texts)
        result += "|" + text;
    all[{use.name, use.id}] = result;
  }
  return all;
}

TEST_P(AnyNames, AreTheSameReelsInEveryOrder)
{
  for (int turn = 0; turn < 300; ++turn) {
    Uses uses = anyUses(true);
    Decisions decisions;
    std::map<std::string, std::string> decided;
    for (std::size_t count = upTo(2); count-- > 0;)
      decided[anyName()] = anyName();
    decisions.assign(decided.begin(), decided.end());
    const auto expected = results(indexOf(uses, decisions), uses);
    for (int order = 0; order < 5; ++order) {
      std::shuffle(uses.begin(), uses.end(), random_);
      std::shuffle(decisions.begin(), decisions.end(), random_);
      ASSERT_EQ(results(indexOf(uses, decisions), uses), expected);
    }
  }
}

/// Whether the rules may join two whole names without source ids by themselves.
bool mayBeOne(const std::string& a, const std::string& b)
{
  const NameParts one = partsOf(a), other = partsOf(b);
  const bool kindsFit = one.ending == other.ending || one.ending == Ending::None || other.ending == Ending::None;
  return isSameName(a, b) || (isSameName(one.stem, other.stem) && kindsFit);
}

TEST_P(AnyNames, AreJoinedOnlyAsForms)
{
  std::size_t joined = 0;
  for (int turn = 0; turn < 500; ++turn) {
    const Uses uses = anyUses(false);
    const NameIndex index = indexOf(uses);
    std::map<std::string, bool> wholeNames;
    for (const Use& use : uses)
      wholeNames[use.name] = wholeNames[use.name] || !use.mayBeCut;
    for (const auto& [a, aIsWhole] : wholeNames)
      for (const auto& [b, bIsWhole] : wholeNames) {
        if (a == b || reelOf(index, a) != reelOf(index, b))
          continue;
        ++joined;
        const bool mustBeForms = aIsWhole == bIsWhole && (aIsWhole || a.size() == b.size());
        EXPECT_TRUE(!mustBeForms || mayBeOne(a, b)) << a << " and " << b;
      }
  }
  EXPECT_GT(joined, 100U);
}

TEST_P(AnyNames, AreNeverJoinedIfTheirSourceIdsDiffer)
{
  std::size_t pairs = 0;
  for (int turn = 0; turn < 500; ++turn) {
    const Uses uses = anyUses(true);
    const NameIndex index = indexOf(uses);
    for (const Use& a : uses)
      for (const Use& b : uses) {
        if (a.id.empty() || b.id.empty())
          continue;
        ++pairs;
        EXPECT_EQ(reelOf(index, a.name, a.id) == reelOf(index, b.name, b.id), a.id == b.id)
            << a.name << " " << a.id << " and " << b.name << " " << b.id;
      }
  }
  EXPECT_GT(pairs, 100U);
}

INSTANTIATE_TEST_SUITE_P(Seeds, AnyNames, testing::Values(1U, 2U, 3U));

// ---- Cost ---------------------------------------------------------------------------------------

TEST(NameIndex, HundredThousandNamesWithOneBeginning)
{
  NameIndex index;
  constexpr int count = 100'000;
  for (int i = 0; i < count; ++i) {
    const std::string name = "A001C001_" + std::to_string(1'000'000 + i) + "_F701";
    index.add({name});
    index.add({.name = std::string_view(name).substr(0, 16), .mayBeCut = true});
    index.add({.name = "A001C001", .mayBeCut = true});
  }
  index.settle();
  EXPECT_EQ(index.find("A001C001").perhaps.size(), static_cast<std::size_t>(count));
  EXPECT_EQ(index.find("A001C001_1000007").reel, "A001C001_1000007_F701");
}

} // namespace
