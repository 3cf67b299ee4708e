// SPDX-License-Identifier: Apache-2.0
#include "lists/source_table.h"

#include <string>
#include <unordered_set>

#include <gtest/gtest.h>

#include "lists/text.h"
#include "support.h"

using namespace reeldb::lists;
using namespace reeldb::lists::test;

namespace {

constexpr const char* kUmid = "060a2b340101010101010f00-13-00-00-00-{53c08d51-33fd-b737-060e2b347f7f2a80}";

SourceTable tableOf(const Strings& rows, const Strings& reels = {})
{
  SourceTable table;
  for (const std::string& row : rows)
    EXPECT_TRUE(table.add(row)) << row;
  std::unordered_set<std::string> folded;
  for (const std::string& reel : reels)
    folded.insert(fold(reel));
  table.settle([&](const std::string& name) { return folded.contains(name); });
  return table;
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
    const SourceTable table = tableOf({std::string(names) + kUmid});
    for (const char* reel : {"A008C013", "a008c013_140711zj"}) {
      const SourceMatch match = table.find(reel);
      EXPECT_TRUE(match.found) << reel;
      EXPECT_EQ(match.ids, Strings{kUmid}) << reel;
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
  const std::string id = std::string(" ") + kUmid;
  EXPECT_EQ(split("SROY-12B SROY-12B" + id, "SROY-12B"), std::string("SROY-12B|") + kUmid);
  EXPECT_EQ(split("LONG_NAME LONG" + id, "LONG"), std::string("LONG_NAME|LONG|") + kUmid);
  EXPECT_EQ(split("LONG\tNAME\t4919975f.793b8d33", "NAME"), "LONG|NAME|4919975f.793b8d33");
  EXPECT_EQ(split("A  B 4919975f 793b8d33", "A"), "A|B|4919975f 793b8d33");
  EXPECT_EQ(split("ONE" + id, "ONE"), std::string("ONE|") + kUmid);
  EXPECT_EQ(split("ONE TWO", "TWO"), "ONE|TWO|");
  EXPECT_EQ(split("ONE 060A2B34-ABCDEF.09{af}", "ONE"), "ONE|060A2B34-ABCDEF.09{af}");
  EXPECT_EQ(split("ONE ONE_LONGER_AGAIN.MOV", "ONE"), "ONE|ONE_LONGER_AGAIN.MOV|");
  EXPECT_EQ(split("ONE 060A2B34GBCDEF09", "ONE"), "ONE|060A2B34GBCDEF09|");
  EXPECT_EQ(split("ONE 060a2b34gbcdef09", "ONE"), "ONE|060a2b34gbcdef09|");
  EXPECT_EQ(split("ONE 060a2b34abcdef09", "ONE"), "ONE|060a2b34abcdef09");
  EXPECT_EQ(split("ONE 060a2b34a", "ONE"), "ONE|060a2b34a|") << "too short for an id";
  EXPECT_EQ(split("A  B 4919975 793b8d33", "A"), "A|B 4919975|793b8d33") << "no word of eight digits";
  EXPECT_EQ(split("A  B TAPE0001 793b8d33", "A"), "A|B TAPE0001|793b8d33") << "no hex digits";
  EXPECT_EQ(split("A 4919975f 793b8d33", "A"), "A|4919975f|793b8d33") << "two names go before a longer id";
  EXPECT_EQ(split("ONE", "ONE"), "ONE|");
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
  EXPECT_EQ(split("ONE TWO THREE 4919975f.793b8d33", "ONE TWO THREE"), "ONE TWO THREE|4919975f.793b8d33");
}

TEST(SourceTable, ARowWithoutANameIsRefused)
{
  SourceTable table;
  EXPECT_FALSE(table.add(""));
  EXPECT_FALSE(table.add("  \t "));
}

TEST(SourceTable, ACutNameThatFitsSeveralSourcesHasNoIdentifier)
{
  const SourceMatch match = tableOf({"A001_ONE A001 id00000000000001", "A001_TWO A001 id00000000000002"}).find("A001");
  EXPECT_TRUE(match.found);
  EXPECT_EQ(match.identifier, "");
  EXPECT_EQ(match.fits, (Strings{"A001_ONE", "A001_TWO"}));
  EXPECT_EQ(match.ids, (Strings{"id00000000000001", "id00000000000002"}));
}

TEST(SourceTable, ARowWhoseWholeNameIsTheReelGoesFirst)
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
  const SourceMatch match = tableOf({words + "4919975f.793b8d33"}, {"w"}).find(words.substr(0, words.size() - 1));
  EXPECT_TRUE(match.found);
  EXPECT_EQ(match.names.size(), 1u);
}

} // namespace
