// SPDX-License-Identifier: Apache-2.0
#include "lists/source_table.h"

#include <algorithm>
#include <string>
#include <unordered_set>

#include <gtest/gtest.h>

#include "base/ascii.h"
#include "lists/text.h"
#include "support.h"

using reeldb::base::fold;
using namespace reeldb::lists;
using namespace reeldb::lists::test;

namespace {

constexpr const char* umid = "060a2b340101010101010f00-13-00-00-00-{53c08d51-33fd-b737-060e2b347f7f2a80}";

SourceTable tableOf(const Strings& rows, const Strings& reels = {})
{
  SourceTable table;
  for (const std::string& row : rows)
    EXPECT_EQ(table.add(row), "") << row;
  std::unordered_set<std::string> folded;
  for (const std::string& reel : reels)
    folded.insert(fold(reel));
  EXPECT_TRUE(table.settle([&](const std::string& name) { return folded.contains(name); }).empty());
  return table;
}

/// Why the only row is left out in a list with these reels.
std::string fault(const std::string& row, const Strings& reels = {})
{
  SourceTable table;
  EXPECT_EQ(table.add(row), "");
  const auto unused = table.settle([&](const std::string& name) {
    return std::any_of(reels.begin(), reels.end(), [&](const std::string& reel) { return fold(reel) == name; });
  });
  EXPECT_LE(unused.size(), 1u);
  EXPECT_TRUE(unused.empty() || unused[0].row == 0);
  return unused.empty() ? "" : unused[0].reason;
}

/// "first|second|id" of the only row, found through `name`.
std::string split(const std::string& row, const std::string& name, const Strings& reels = {})
{
  const SourceMatch match = tableOf({row}, reels).find(name);
  if (!match.found)
    return "not found";
  std::string result;
  for (const std::string& each : match.names)
    result += each + "|";
  return result + (match.ids.empty() ? "" : match.ids.front());
}

TEST(SourceTable, TheLongerNameIsTheIdentifierWhicheverIsCut)
{
  for (const char* names : {"A008C013_140711ZJ                A008C013 ", "A008C013 A008C013_140711ZJ "}) {
    const SourceTable table = tableOf({std::string(names) + umid});
    for (const char* reel : {"A008C013", "a008c013_140711zj"}) {
      const SourceMatch match = table.find(reel);
      EXPECT_TRUE(match.found) << reel;
      EXPECT_EQ(match.ids, Strings{umid}) << reel;
      EXPECT_TRUE(match.fits.empty()) << reel;
    }
    EXPECT_EQ(table.find("A008C013").identifier, "A008C013_140711ZJ");
    EXPECT_EQ(table.find("a008c013_140711zj").identifier, "") << "the reel text itself";
    EXPECT_FALSE(table.find("A008").found);
  }
}

TEST(SourceTable, OnATieTheReelTextStays)
{
  const SourceTable table = tableOf({"106770   106770           4919975f.793b8d33"});
  const SourceMatch match = table.find("106770");
  EXPECT_TRUE(match.found);
  EXPECT_EQ(match.identifier, "");
  EXPECT_EQ(match.ids, Strings{"4919975f.793b8d33"});
}

TEST(SourceTable, RowsOfAllShapes)
{
  const std::string id = std::string(" ") + umid;
  EXPECT_EQ(split("SROY-12B SROY-12B" + id, "SROY-12B"), std::string("SROY-12B|") + umid);
  EXPECT_EQ(split("LONG_NAME LONG" + id, "LONG"), std::string("LONG_NAME|LONG|") + umid);
  EXPECT_EQ(split("LONG\tNAME\t4919975f.793b8d33", "NAME"), "LONG|NAME|4919975f.793b8d33");
  EXPECT_EQ(split("A  B 4919975f 793b8d33", "A"), "A|B|4919975f 793b8d33");
  EXPECT_EQ(split("ONE" + id, "ONE", {"ONE"}), std::string("ONE|") + umid);
  EXPECT_EQ(split("ONE 060A2B34-ABCDEF.09{af}", "ONE", {"ONE"}), "ONE|060A2B34-ABCDEF.09{af}");
  EXPECT_EQ(split("ONE ONE_LONGER_AGAIN.MOV", "ONE", {"ONE"}), "ONE|ONE_LONGER_AGAIN.MOV|");
  EXPECT_EQ(split("ONE 060a2b34abcdef09", "ONE", {"ONE"}), "ONE|060a2b34abcdef09");
  EXPECT_EQ(split("A  B 4919975 793b8d33", "A"), "A|B 4919975|793b8d33") << "no word of eight digits";
  EXPECT_EQ(split("A  B TAPE0001 793b8d33", "A"), "A|B TAPE0001|793b8d33") << "no hex digits";
  EXPECT_EQ(split("A 4919975f 793b8d33", "A"), "A|4919975f|793b8d33") << "two names go before a longer id";
  EXPECT_EQ(split("ONE", "ONE", {"ONE"}), "ONE|");
}

TEST(SourceTable, ARowWithOneNameNeedsAReelOfTheList)
{
  EXPECT_EQ(fault("ONE", {"one"}), "");
  EXPECT_EQ(fault("ONE", {"TWO"}), "source row with one name, and no event has the reel 'ONE'");
  EXPECT_EQ(fault(std::string("ONE ") + umid, {"ONE"}), "");
  EXPECT_EQ(fault(std::string("ONE ") + umid), "source row with one name, and no event has the reel 'ONE'");
  EXPECT_EQ(fault(umid), "source row with one name, and no event has the reel '" + std::string(umid, 40) + "...'");
}

TEST(SourceTable, ARowWithoutAnIdNeedsTwoFormsOfOneReelOfTheList)
{
  EXPECT_EQ(fault("A001_LONG A001", {"A001"}), "");
  EXPECT_EQ(fault("A001 a001_LONG", {"A001_LONG"}), "");
  EXPECT_EQ(fault("A001_LONG A001", {"A00"}),
            "source row without an id, and no event has the reels 'A001_LONG' and 'A001'");
  for (const char* second : {"TWO", "060A2B34GBCDEF09", "060a2b34a", "id12"})
    EXPECT_EQ(fault(std::string("ONE ") + second, {"ONE", "TWO"}),
              std::string("source row without an id, and 'ONE' and '") + second + "' are not two forms of one name")
        << "it may be a name or an id";
}

TEST(SourceTable, ARowOfNamesOrAnIdThatAreTooLongIsRefused)
{
  SourceTable table;
  const std::string name(516, 'n');
  EXPECT_EQ(table.add(name + " " + name + " id1"), "");
  EXPECT_EQ(table.add(name + " x" + name + " id1"), "source row with names of 1034 bytes (at most 1033)");
  EXPECT_EQ(table.add("A A " + std::string(2047, 'i')), "");
  EXPECT_EQ(table.add("A A " + std::string(2048, 'i')), "source row with an id of 2048 bytes (at most 2047)");
}

TEST(SourceTable, AWholeRowOfASourceThatIsNotUsedIsFine)
{
  EXPECT_EQ(fault("ONE TWO id1"), "");
}

TEST(SourceTable, ARowThatIsLeftOutIsNotFoundAndTheOthersAre)
{
  SourceTable table;
  for (const char* row : {"ONE TWO", "A001_LONG A001 id1", "LOST"})
    EXPECT_EQ(table.add(row), "");
  const auto unused = table.settle([](const std::string& name) { return name == "TWO" || name == "A001"; });
  ASSERT_EQ(unused.size(), 2u);
  EXPECT_EQ(unused[0].row, 0u);
  EXPECT_EQ(unused[1].row, 2u);
  EXPECT_FALSE(table.find("TWO").found);
  EXPECT_FALSE(table.find("LOST").found);
  EXPECT_EQ(table.find("A001").identifier, "A001_LONG");
}

TEST(SourceTable, NameWithBlanksIsASingleNameIfAReelOfTheListHasIt)
{
  EXPECT_EQ(split("PIER CAM 2", "PIER CAM 2", {"PIER CAM 2"}), "PIER CAM 2|");
  EXPECT_EQ(split("PIER CAM", "PIER CAM", {"PIER CAM"}), "PIER CAM|");
  EXPECT_EQ(split("PIER CAM 4919975f.793b8d33", "PIER CAM", {"PIER CAM"}), "PIER CAM|4919975f.793b8d33");
}

TEST(SourceTable, NamesMayHoldBlanks)
{
  EXPECT_EQ(split("PIER CAM 2   PIER CAM 4919975f.793b8d33", "PIER CAM"), "PIER CAM 2|PIER CAM|4919975f.793b8d33");
  EXPECT_EQ(split("PIER CAM  HARBOUR 7 4919975f.793b8d33", "HARBOUR 7"), "PIER CAM|HARBOUR 7|4919975f.793b8d33");
  EXPECT_EQ(split("PIER CAM 2 PIER CA 4919975f.793b8d33", "pier ca"), "PIER CAM 2|PIER CA|4919975f.793b8d33");
  EXPECT_EQ(split("PIER CAM 2 HARBOUR 4919975f.793b8d33", "PIER CAM 2", {"PIER CAM 2"}),
            "PIER CAM 2|HARBOUR|4919975f.793b8d33");
  EXPECT_EQ(split("PIER CAM HARBOUR 7 4919975f.793b8d33", "HARBOUR 7", {"PIER", "PIER CAM", "HARBOUR 7"}),
            "PIER CAM|HARBOUR 7|4919975f.793b8d33");
  EXPECT_EQ(split("ONE TWO THREE 4919975f.793b8d33", "ONE TWO THREE", {"ONE TWO THREE"}),
            "ONE TWO THREE|4919975f.793b8d33");
}

TEST(SourceTable, ARowWithoutANameIsRefused)
{
  SourceTable table;
  EXPECT_EQ(table.add(""), "source row without a name");
  EXPECT_EQ(table.add("  \t "), "source row without a name");
}

TEST(SourceTable, ARowWithAControlCharacterIsRefused)
{
  SourceTable table;
  EXPECT_EQ(table.add("A\x1B A id"), "source row with a control character (\\x1b)");
}

TEST(SourceTable, ACutNameThatFitsSeveralSourcesHasNoIdentifier)
{
  const SourceMatch match = tableOf({"A001_ONE A001 id00000000000001", "A001_TWO A001 id00000000000002"}).find("A001");
  EXPECT_TRUE(match.found);
  EXPECT_EQ(match.identifier, "");
  EXPECT_EQ(match.fits, (Strings{"A001_ONE", "A001_TWO"}));
  EXPECT_EQ(match.ids, (Strings{"id00000000000001", "id00000000000002"}));
}

TEST(SourceTable, RowWhoseWholeNameIsTheReelComesFirst)
{
  const SourceMatch match = tableOf({"A001_LONG A001 id1", "A001 A001 id2"}).find("a001");
  EXPECT_EQ(match.identifier, "");
  EXPECT_TRUE(match.fits.empty());
  EXPECT_EQ(match.ids, Strings{"id2"});
  EXPECT_EQ(match.names, Strings{"A001"});
}

TEST(SourceTable, SourcesThatShareTheLongerNameAreOneIdentifierWithAllIds)
{
  const SourceMatch match = tableOf({"A001_LONG A001 id1", "a001_long A001 id2", "A001_LONG A001 ID1"}).find("A001");
  EXPECT_EQ(match.identifier, "A001_LONG");
  EXPECT_EQ(match.ids, (Strings{"id1", "id2"}));
}

TEST(SourceTable, LengthIsCountedInCharacters)
{
  EXPECT_EQ(tableOf({"\xC3\xBC\xC3\xBC\xC3\xBC ABCD id1"}).find("\xC3\xBC\xC3\xBC\xC3\xBC").identifier, "ABCD");
}

TEST(SourceTable, ARowOfManyWordsIsOneName)
{
  std::string words;
  for (int i = 0; i < 100; ++i)
    words += "w ";
  words.pop_back();
  EXPECT_EQ(fault(words + " 4919975f.793b8d33", {"w"}),
            "source row with one name, and no event has the reel " + inQuotes(words));
}

} // namespace
