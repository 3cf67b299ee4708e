// SPDX-License-Identifier: Apache-2.0
#include "app/list_versions.h"

#include <gtest/gtest.h>

using namespace reeldb::app;

namespace {

using Texts = std::vector<std::string>;

/// A clip of that reel and name, with source in and record in.
Shot clip(const std::string& reel, const std::string& name, const std::string& in, const std::string& record = "r")
{
  Shot shot;
  shot.reel = reel;
  shot.clipName = name;
  shot.sourceIn = in;
  shot.recordIn = record;
  shot.tracks = "V";
  shot.event.transition = "C";
  return shot;
}

std::string nameOf(const Shot& shot)
{
  return shot.reel + " " + shot.clipName + " " + shot.sourceIn + " " + shot.recordIn;
}

Texts linesOf(const VersionDifference& difference)
{
  Texts lines;
  for (const Shot& shot : difference.added)
    lines.push_back("+ " + nameOf(shot));
  for (const Shot& shot : difference.gone)
    lines.push_back("- " + nameOf(shot));
  for (const ClipStep& step : difference.trimmed)
    lines.push_back("trimmed " + nameOf(step.before) + " -> " + nameOf(step.after));
  for (const ClipStep& step : difference.changed)
    lines.push_back("changed " + nameOf(step.before) + " -> " + nameOf(step.after));
  EXPECT_EQ(difference.empty(), lines.empty());
  return lines;
}

TEST(ListVersions, SameClipsInAnyOrderAndCaseOfTheReelDifferInNothing)
{
  EXPECT_EQ(linesOf(difference({clip("A", "x", "1", "1"), clip("B", "y", "2", "2")},
                               {clip("B", "y", "2", "2"), clip("a", "x", "1", "1")})),
            Texts{});
}

TEST(ListVersions, ClipsOfOneVersionOnlyAreAddedOrGone)
{
  EXPECT_EQ(linesOf(difference({clip("A", "x", "1"), clip("B", "y", "2")}, {clip("B", "y", "2"), clip("C", "z", "3")})),
            (Texts{"+ C z 3 r", "- A x 1 r"}));
}

TEST(ListVersions, OtherSourceTimesOfTheOnlySuchPairAreATrim)
{
  EXPECT_EQ(linesOf(difference({clip("A", "x", "1")}, {clip("a", "x", "2")})), Texts{"trimmed A x 1 r -> a x 2 r"});
}

TEST(ListVersions, SeveralSuchPairsAreNotATrim)
{
  EXPECT_EQ(linesOf(difference({clip("A", "x", "1"), clip("A", "x", "2")}, {clip("A", "x", "3")})),
            (Texts{"+ A x 3 r", "- A x 1 r", "- A x 2 r"}));
  EXPECT_EQ(linesOf(difference({clip("A", "x", "1")}, {clip("A", "x", "2"), clip("A", "x", "3")})),
            (Texts{"+ A x 2 r", "+ A x 3 r", "- A x 1 r"}));
}

TEST(ListVersions, PairWithAnUnchangedThirdIsATrim)
{
  EXPECT_EQ(linesOf(difference({clip("A", "x", "1"), clip("A", "x", "2")}, {clip("A", "x", "1"), clip("A", "x", "3")})),
            Texts{"trimmed A x 2 r -> A x 3 r"});
}

TEST(ListVersions, OtherTracksAreNotATrim)
{
  Shot sound = clip("A", "x", "2");
  sound.tracks = "A";
  EXPECT_EQ(linesOf(difference({clip("A", "x", "1")}, {sound})), (Texts{"+ A x 2 r", "- A x 1 r"}));
}

TEST(ListVersions, SameShotAtAnotherPlaceOfTheCutIsChanged)
{
  EXPECT_EQ(linesOf(difference({clip("A", "x", "1", "10")}, {clip("A", "x", "1", "20")})),
            Texts{"changed A x 1 10 -> A x 1 20"});
}

TEST(ListVersions, SameShotWithAnotherTransitionOrSpeedIsChanged)
{
  Shot dissolve = clip("A", "x", "1"), slow = dissolve;
  dissolve.event.transition = "D";
  slow.event.speed = reeldb::lists::Speed{"012.0", ""};
  EXPECT_EQ(linesOf(difference({clip("A", "x", "1")}, {dissolve})).size(), 1u);
  EXPECT_EQ(linesOf(difference({clip("A", "x", "1")}, {slow})).size(), 1u);
}

TEST(ListVersions, ShotThatIsUsedOnceMoreIsAdded)
{
  EXPECT_EQ(linesOf(difference({clip("A", "x", "1", "10")}, {clip("A", "x", "1", "05"), clip("A", "x", "1", "10")})),
            Texts{"+ A x 1 05"});
  EXPECT_EQ(linesOf(difference({clip("A", "x", "1", "05"), clip("A", "x", "1", "10")}, {clip("A", "x", "1", "10")})),
            Texts{"- A x 1 05"});
}

TEST(ListVersions, ClipsWithoutASourceAreLeftOut)
{
  Shot black = clip("BL", "", "0");
  black.special = "black";
  EXPECT_EQ(linesOf(difference({black}, {})), Texts{});
}

} // namespace
