// SPDX-License-Identifier: Apache-2.0
#include "lists/fcpxml.h"

#include <string>

#include <gtest/gtest.h>

#include "support.h"

using namespace reeldb::lists;
using namespace reeldb::lists::test;

namespace {

const std::string resources =
    "<resources><format id='f25' frameDuration='100/2500s'/><format id='f30' frameDuration='1001/30000s'/>"
    "<effect id='e'/>"
    "<asset id='a' name='Asset A' uid='UA' start='3600s' duration='100s' hasVideo='1' format='f25' hasAudio='1' "
    "audioChannels='2'><media-rep src='file:///cards/A%20001.mov'/></asset>"
    "<asset id='b' name='Asset B' uid='UB' src='file:///cards/B.wav' start='0s' duration='100s' hasAudio='1'/>"
    "<media id='m'><sequence format='f25'><spine><asset-clip ref='a' name='in compound' offset='0s' start='3601s' "
    "duration='1s'/></spine></sequence></media></resources>";

std::string reel(const std::string& name)
{
  return "<metadata><md key='com.apple.proapps.studio.reel' value='" + name + "'/></metadata>";
}

std::string project(const std::string& spine, const std::string& mode = "NDF", const std::string& format = "f25")
{
  return "<library><event><project name='cut'><sequence format='" + format + "' tcStart='3600s' tcFormat='" + mode +
         "'><spine>" + spine + "</spine></sequence></project></event></library>";
}

List readOne(const std::string& content, const std::string& of = resources)
{
  return read("<?xml version='1.0'?><!DOCTYPE fcpxml><fcpxml version='1.11'>" + of + "\n" + content + "</fcpxml>");
}

/// The clips of the project, without that of the compound clip.
List readProject(const std::string& spine)
{
  List list = readOne(project(spine));
  std::erase_if(list.clips, [](const Clip& clip) { return clip.clipName == "in compound"; });
  return list;
}

TEST(Fcpxml, ReadsNamesTimesAndTracks)
{
  const List list = readProject("\n<asset-clip ref='a' name='take' offset='3602s' start='3610s' duration='5s'/>");
  EXPECT_EQ(list.format, Format::Fcpxml);
  EXPECT_EQ(list.title, "cut");
  ASSERT_EQ(list.clips.size(), 1U);
  const Clip& clip = list.clips[0];
  EXPECT_EQ(clip.reel, "A 001.mov");
  EXPECT_EQ(clip.clipName, "take");
  EXPECT_EQ(clip.tracks, "VA1A2");
  EXPECT_EQ(clip.sourceIn, "01:00:10:00");
  EXPECT_EQ(clip.sourceOut, "01:00:15:00");
  EXPECT_EQ(clip.recordIn, "01:00:02:00");
  EXPECT_EQ(clip.recordOut, "01:00:07:00");
  EXPECT_EQ(clip.frameRate, "25");
  EXPECT_EQ(clip.line, 3);
  EXPECT_EQ(clip.event.sourceIds, (std::vector<SourceId>{{std::string(assetKind), "UA"}}));
  EXPECT_TRUE(list.warnings.empty());
}

TEST(Fcpxml, StartsAtItsAssetWithoutAStart)
{
  EXPECT_EQ(readProject("<asset-clip ref='a' name='x' offset='3600s' duration='5s'/>").clips.at(0).sourceIn,
            "01:00:00:00");
}

TEST(Fcpxml, TakesTheReelOfTheNearestElement)
{
  const List list =
      readProject("<sync-clip offset='3600s' duration='5s'>"
                  "<asset-clip ref='a' name='own' offset='0s' duration='5s'>" +
                  reel("OWN") + "</asset-clip><asset-clip ref='b' name='outer' offset='0s' duration='5s'/>" +
                  reel("OUTER") + "</sync-clip>");
  EXPECT_EQ(reels(list), (std::vector<std::string>{"OWN", "OUTER"}));
}

TEST(Fcpxml, MakesASourceOfEachReelOfAText)
{
  const List list =
      readProject("<asset-clip ref='a' name='x' offset='3600s' duration='5s'>" + reel("B003; 0304;") + "</asset-clip>");
  EXPECT_EQ(reels(list), (std::vector<std::string>{"B003", "0304"}));
}

TEST(Fcpxml, CountsDropFrame)
{
  const List list = readOne(project("<asset-clip ref='a' name='x' offset='0s' start='108108000/30000s' "
                                    "duration='1001/30000s' format='f30' tcFormat='DF'/>",
                                    "DF", "f30"));
  EXPECT_EQ(list.clips.back().sourceIn, "01:00:03;18");
  EXPECT_EQ(list.clips.back().frameRate, "29.97");
  EXPECT_TRUE(list.clips.back().dropFrame);
}

TEST(Fcpxml, ReportsTitlesGapsGeneratorsAndReferencesWithTheirConnectedClips)
{
  const List list =
      readProject("<gap offset='3600s' start='3600s' duration='10s'><asset-clip ref='a' name='over' lane='1' "
                  "offset='3604s' duration='1s'/></gap><title ref='e' name='T' offset='3610s' duration='1s'/>"
                  "<video ref='e' name='Clouds' offset='3611s' duration='1s'/>"
                  "<ref-clip ref='m' name='comp' offset='3612s' duration='1s'/>"
                  "<mc-clip ref='m' name='multi' offset='3613s' duration='1s'/>");
  EXPECT_EQ(reels(list), std::vector<std::string>{"A 001.mov"});
  EXPECT_EQ(list.clips[0].recordIn, "01:00:04:00");
  std::vector<std::string> reasons;
  for (const Special& special : list.specials)
    reasons.push_back(special.text + ": " + special.reason);
  EXPECT_EQ(reasons, (std::vector<std::string>{"gap: gap", "T: generated", "Clouds: generated", "comp: nested sequence",
                                               "multi: multicam clip"}));
}

TEST(Fcpxml, ReadsACompoundClipOnceForAllItsUses)
{
  const List list = readOne(project("<ref-clip ref='m' offset='3600s' duration='1s'/><ref-clip ref='m' offset='3601s' "
                                    "duration='1s'/>"));
  ASSERT_EQ(list.clips.size(), 1U);
  EXPECT_EQ(list.clips[0].clipName, "in compound");
  EXPECT_EQ(list.clips[0].recordIn, "");
}

TEST(Fcpxml, TakesTheFirstOfAnAudition)
{
  EXPECT_EQ(
      reels(readProject("<audition offset='3600s'><asset-clip ref='b' name='x' duration='1s'/><asset-clip ref='a' "
                        "name='y' duration='1s'/></audition>")),
      std::vector<std::string>{"B.wav"});
}

TEST(Fcpxml, ReadsClipsWithParts)
{
  const List list = readProject("<clip name='c' offset='3600s' duration='10s'><video ref='a' offset='0s' start='3600s' "
                                "duration='10s'><audio ref='a' lane='-1' offset='3600s' start='3600s' duration='10s'/>"
                                "</video></clip>");
  ASSERT_EQ(list.clips.size(), 1U);
  EXPECT_EQ(list.clips[0].clipName, "c");
  EXPECT_EQ(list.clips[0].tracks, "VA1A2");
}

TEST(Fcpxml, ReadsClipsWithoutAProject)
{
  EXPECT_EQ(readOne("<asset-clip ref='b' name='top' duration='1s'/>").clips.size(), 2U);
  EXPECT_EQ(readOne("<event><asset-clip ref='b' name='in event' duration='1s'/></event>").clips.size(), 2U);
}

TEST(Fcpxml, WarnsOfWhatIsDoubtful)
{
  const auto reason = [](const std::string& clip) { return readProject(clip).warnings.at(0).reason; };
  EXPECT_EQ(reason("<asset-clip ref='a' offset='3600s' start='0s' duration='1s'/>"),
            "lies outside its asset (the asset may not say its start)");
  EXPECT_EQ(reason("<asset-clip ref='a' offset='3600s' duration='1s' enabled='0'/>"),
            "is disabled (kept: its source is in the list)");
  EXPECT_EQ(reason("<asset-clip ref='a' offset='3600s' duration='1s'><timeMap/></asset-clip>"),
            "plays at another speed: source in and out are as written");
  EXPECT_EQ(reason("<asset-clip ref='gone' name='x' offset='3600s' duration='1s'/>"),
            "its asset 'gone' is not in the file");
  EXPECT_EQ(reason("<asset-clip ref='a' offset='3600s' start='x' duration='1s'/>"),
            "start or duration is not a time (kept without timecodes)");
  EXPECT_EQ(reason("<asset-clip ref='a' offset='3600s' start='3600s' duration='1/50s'/>"),
            "source out 180001/50s lies within a frame (kept as 01:00:00:00)");
}

} // namespace
