// SPDX-License-Identifier: Apache-2.0
#include "commands/import_report.h"

#include <gtest/gtest.h>

using namespace reeldb;
using namespace reeldb::cli;

namespace {

app::ImportedList sample()
{
  app::ImportedList imported;
  imported.file = "cut.edl";
  imported.clips = 5;
  imported.shotsAdded = 1;
  imported.shotsThere = 4;
  imported.shotsRepeated = 3;
  imported.created = {"A", "B"};
  imported.matched = {"C"};
  imported.list.specials = {{"BL", "black", 2, {3, 5}}};
  imported.list.spellings = {{"A", "a"}};
  imported.list.ambiguous = {{"SHORT", "stands for several sources", {"SHORT_1", "SHORT_2"}, {"11", "12"}}};
  imported.list.warnings = {{6, "odd\tline", "looks odd"}};
  imported.list.rejected = {{7, "bad\tline", "no timecodes"}};
  return imported;
}

TEST(ImportReport, TextHasALineForEverything)
{
  EXPECT_EQ(toText(sample(), 100, Mood::Fact),
            "cut.edl (edl): 5 clips, 1 shot added, 1 already there, 3 repeated in the list\n"
            "  2 reels created: A, B\n"
            "  1 reel already there\n"
            "  without a reel:\n"
            "    BL: black (2 events, lines 3, 5)\n"
            "  same reel, other spelling: a is A\n"
            "  ambiguous: SHORT: stands for several sources (names SHORT_1, SHORT_2) (sources 11, 12)\n"
            "  1 line kept with a warning:\n"
            "    line 6: looks odd: odd\\tline\n"
            "  1 line rejected:\n"
            "    line 7: no timecodes: bad\\tline\n");
}

TEST(ImportReport, WhatWouldBeDoneIsSaidInTheConditional)
{
  app::ImportedList imported = sample();
  imported.shotsAdded = 2;
  imported.shotsThere = 1;
  imported.shotsRepeated = 0;
  imported.created = {"A"};
  imported.list.specials.clear();
  imported.list.spellings.clear();
  imported.list.ambiguous.clear();
  imported.list.rejected.push_back({8, "other", "no reel"});
  EXPECT_EQ(toText(imported, 100, Mood::Conditional),
            "cut.edl (edl): 5 clips, 2 shots would be added, 1 already there\n"
            "  1 reel would be created: A\n"
            "  1 reel already there\n"
            "  1 line would be kept with a warning:\n"
            "    line 6: looks odd: odd\\tline\n"
            "  2 lines would be rejected:\n"
            "    line 7: no timecodes: bad\\tline\n"
            "    line 8: no reel: other\n");
}

TEST(ImportReport, ManyLineNumbersAreWrapped)
{
  app::ImportedList imported;
  imported.file = "a.edl";
  imported.list.specials = {{"BL", "black", 10, {1, 22, 333, 4444, 5555, 6666, 7777, 8888, 9999, 10000}}};
  EXPECT_EQ(toText(imported, 50, Mood::Fact), "a.edl (edl): 0 clips, 0 shots added\n"
                                              "  without a reel:\n"
                                              "    BL: black (10 events, lines 1, 22, 333, 4444,\n"
                                              "      5555, 6666, 7777, 8888, 9999, 10000)\n");
}

TEST(ImportReport, ReelsAreWrappedBelowTheirHeading)
{
  app::ImportedList imported;
  imported.file = "a.edl";
  imported.created = {"TAPE1", "TAPE2", "TAPE3"};
  EXPECT_EQ(toText(imported, 32, Mood::Fact), "a.edl (edl): 0 clips, 0 shots added\n"
                                              "  3 reels created: TAPE1, TAPE2,\n"
                                              "    TAPE3\n");
}

TEST(ImportReport, ALogFileHasRows)
{
  app::ImportedList imported;
  imported.file = "a.ale";
  imported.list.format = lists::Format::Ale;
  imported.list.specials = {{"BARS", "colour bars", 1, {9}}};
  EXPECT_EQ(toText(imported, 100, Mood::Fact), "a.ale (ale): 0 clips, 0 shots added\n"
                                               "  without a reel:\n"
                                               "    BARS: colour bars (1 row, line 9)\n");
}

TEST(ImportReport, WhatDidNotHappenIsNotMentioned)
{
  app::ImportedList imported;
  imported.file = "a.ale";
  imported.list.format = lists::Format::Ale;
  EXPECT_EQ(toText(imported, 100, Mood::Fact), "a.ale (ale): 0 clips, 0 shots added\n");
}

} // namespace
