// SPDX-License-Identifier: Apache-2.0
#include "module/import_report.h"

#include <gtest/gtest.h>

using namespace reeldb;
using namespace reeldb::cli;

namespace {

Imported sample()
{
  Imported imported;
  imported.file = "cut.edl";
  imported.list.clips.resize(2);
  imported.shotsAdded = 1;
  imported.shotsThere = 1;
  imported.created = {"A", "B"};
  imported.matched = {"C"};
  imported.list.specials = {{"BL", "black", 2, {3, 5}}};
  imported.list.spellings = {{"A", "a"}};
  imported.list.ambiguous = {{"SHORT", "stands for several sources", {"SHORT_1", "SHORT_2"}, {"11", "12"}}};
  imported.list.rejected = {{7, "bad\tline", "no timecodes"}};
  return imported;
}

TEST(ImportReport, TextHasALineForEverything)
{
  EXPECT_EQ(toText(sample(), 100),
            "cut.edl (edl): 2 clips, 1 shot added, 1 already there\n"
            "  2 reels created: A, B\n"
            "  1 reel already there: C\n"
            "  without a reel:\n"
            "    BL: black (2 events, lines 3, 5)\n"
            "  same reel, other spelling: a is A\n"
            "  ambiguous: SHORT: stands for several sources (names SHORT_1, SHORT_2) (sources 11, 12)\n"
            "  1 line rejected:\n"
            "    line 7: no timecodes: bad\\tline\n");
}

TEST(ImportReport, WhatDidNotHappenIsNotMentioned)
{
  Imported imported;
  imported.file = "a.ale";
  imported.list.format = lists::Format::Ale;
  EXPECT_EQ(toText(imported, 100), "a.ale (ale): 0 clips, 0 shots added, 0 already there\n");
}

TEST(ImportReport, JsonHasEveryKey)
{
  const Json json = toJson(sample());
  EXPECT_EQ(json, Json::parse(R"({
    "file": "cut.edl", "format": "edl", "title": "", "clips": 2, "shots_added": 1, "shots_there": 1,
    "created": ["A", "B"], "matched": ["C"],
    "special": [{"text": "BL", "reason": "black", "count": 2, "lines": [3, 5]}],
    "spellings": [{"reel": "A", "other": "a"}],
    "ambiguous": [{"reel": "SHORT", "reason": "stands for several sources", "names": ["SHORT_1", "SHORT_2"],
                   "source_ids": ["11", "12"]}],
    "rejected": [{"line": 7, "text": "bad\tline", "reason": "no timecodes"}],
    "lines": {"total": 0, "blank": 0, "headers": 0, "notes": 0, "statements": 0}})"));
}

} // namespace
