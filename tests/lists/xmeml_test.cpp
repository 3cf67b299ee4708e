// SPDX-License-Identifier: Apache-2.0
#include "lists/xmeml.h"

#include <string>

#include <gtest/gtest.h>

#include "support.h"

using namespace reeldb::lists;
using namespace reeldb::lists::test;

namespace {

const std::string rate25 = "<rate><timebase>25</timebase><ntsc>FALSE</ntsc></rate>";
const std::string rate2997 = "<rate><timebase>30</timebase><ntsc>TRUE</ntsc></rate>";

std::string file(const std::string& id, const std::string& timecode, const std::string& members = "")
{
  return "<file id='" + id + "'><name>" + id + ".mov</name><pathurl>file://localhost/D%3a/" + id + ".mov</pathurl>" +
         members + "<timecode>" + timecode + "</timecode></file>";
}

std::string item(const std::string& name, const std::string& members,
                 const std::string& at = "<start>0</start><end>50</end>")
{
  return "\n<clipitem id='c'><name>" + name + "</name><in>25</in><out>75</out>" + at + members + "</clipitem>";
}

std::string sequence(const std::string& video, const std::string& audio = "", const std::string& rate = rate25)
{
  return "<sequence><name>cut</name>" + rate + "<media><video><track>" + video + "</track></video><audio>" + audio +
         "</audio></media></sequence>";
}

List readOne(const std::string& content)
{
  return read("<?xml version='1.0'?><!DOCTYPE xmeml><xmeml version='5'>" + content + "</xmeml>");
}

std::string errorOf(const std::string& text)
{
  try {
    read(text);
  } catch (const Error& error) {
    return error.what();
  }
  return {};
}

TEST(Xmeml, ReadsAReelAFileAndTheirTimes)
{
  const List list =
      readOne(sequence(item("take", file("A1", rate25 + "<frame>90000</frame><reel><name>R7</name></reel>"))));
  EXPECT_EQ(list.format, Format::Xmeml);
  EXPECT_EQ(list.title, "cut");
  ASSERT_EQ(list.clips.size(), 1U);
  const Clip& clip = list.clips[0];
  EXPECT_EQ(clip.reel, "R7");
  EXPECT_EQ(clip.clipName, "take");
  EXPECT_EQ(clip.sourceFile, "/D:/A1.mov");
  EXPECT_EQ(clip.sourceIn, "01:00:01:00");
  EXPECT_EQ(clip.sourceOut, "01:00:03:00");
  EXPECT_EQ(clip.recordIn, "00:00:00:00");
  EXPECT_EQ(clip.recordOut, "00:00:02:00");
  EXPECT_EQ(clip.frameRate, "25");
  EXPECT_EQ(clip.line, 2);
  EXPECT_TRUE(list.warnings.empty());
}

TEST(Xmeml, FindsAFileByItsId)
{
  const List list =
      readOne(sequence(item("one", "<file id='A1'/>") + item("two", file("A1", rate25 + "<frame>0</frame>"))));
  EXPECT_EQ(reels(list), (std::vector<std::string>{"A1.mov", "A1.mov"}));
  EXPECT_EQ(list.clips[0].sourceIn, "00:00:01:00");
}

TEST(Xmeml, TakesAnEmptyReelAsNone)
{
  EXPECT_EQ(reels(readOne(sequence(item("a", file("A1", rate25 + "<frame>0</frame><reel><name> </name></reel>"))))),
            std::vector<std::string>{"A1.mov"});
}

TEST(Xmeml, ReadsTheStartFromALabelAndDropFrame)
{
  const List list = readOne(sequence(
      item("a", file("A1", rate2997 + "<string>01:00:00;00</string><displayformat>DF</displayformat>")), "", rate2997));
  EXPECT_EQ(list.clips.at(0).sourceIn, "01:00:00;25");
  EXPECT_TRUE(list.clips.at(0).dropFrame);
  EXPECT_EQ(list.clips.at(0).frameRate, "29.97");
}

TEST(Xmeml, InheritsTheRateOfTheElementAround)
{
  const List list =
      readOne(sequence(item("a", file("A1", "<frame>0</frame>", "<rate><timebase>50</timebase></rate>"))));
  EXPECT_EQ(list.clips.at(0).frameRate, "50");
  EXPECT_EQ(list.clips.at(0).sourceIn, "00:00:01:00") << "in is counted at the rate of the sequence";
}

TEST(Xmeml, KeepsAClipWithoutAStartWithoutTimecodes)
{
  const List list = readOne(sequence(item("a", "<file id='x'><name>x.mov</name></file>")));
  EXPECT_EQ(list.clips.at(0).reel, "x.mov");
  EXPECT_EQ(list.clips.at(0).sourceIn, "");
  EXPECT_EQ(list.warnings.at(0).reason, "its file has no start timecode (kept without timecodes)");
}

TEST(Xmeml, TakesTheBoundsOfTransitions)
{
  const std::string transition = "<transitionitem><start>40</start><end>60</end></transitionitem>";
  const std::string medium = file("A1", rate25 + "<frame>0</frame>");
  const List list = readOne(sequence(item("a", medium, "<start>0</start><end>-1</end>") + transition +
                                     item("b", medium, "<start>-1</start><end>100</end>")));
  EXPECT_EQ(list.clips.at(0).recordOut, "00:00:02:10");
  EXPECT_EQ(list.clips.at(1).recordIn, "00:00:01:15");
}

TEST(Xmeml, MakesOneClipOfPictureAndSound)
{
  const std::string one = item("a", file("A1", rate25 + "<frame>0</frame>"));
  const List list = readOne(sequence(one, "<track>" + one + "</track><track>" + one + "</track>"));
  ASSERT_EQ(list.clips.size(), 1U);
  EXPECT_EQ(list.clips[0].tracks, "VA1A2");
}

TEST(Xmeml, ReportsGeneratorsAndNestedSequences)
{
  const List list =
      readOne(sequence(item("Bars", "<file id='b'><name>Bars</name><mediaSource>Slug</mediaSource></file>") +
                       "<generatoritem><name>Title</name></generatoritem>" +
                       item("inner", "<sequence><name>inner</name>" + rate25 + "<media><video><track>" +
                                         item("deep", file("D1", rate25 + "<frame>0</frame>")) +
                                         "</track></video></media></sequence>")));
  EXPECT_EQ(reels(list), std::vector<std::string>{"D1.mov"});
  EXPECT_EQ(list.clips[0].recordIn, "");
  EXPECT_EQ(list.title, "cut");
  ASSERT_EQ(list.specials.size(), 3U);
  EXPECT_EQ(list.specials[0].text, "Bars");
  EXPECT_EQ(list.specials[0].reason, "generated");
  EXPECT_EQ(list.specials[2].reason, "nested sequence");
}

TEST(Xmeml, WarnsOfDisabledAndRetimedClips)
{
  const List list =
      readOne(sequence(item("a", file("A1", rate25 + "<frame>0</frame>") +
                                     "<enabled>FALSE</enabled>"
                                     "<filter><effect><effectid>timeremap</effectid></effect></filter>")));
  ASSERT_EQ(list.warnings.size(), 2U);
  EXPECT_EQ(list.warnings[0].reason, "is disabled (kept: its source is in the list)");
  EXPECT_EQ(list.warnings[1].reason, "plays at another speed: source in and out are as written");
}

TEST(Xmeml, ReadsSeveralSequencesAndBins)
{
  const std::string one = item("a", file("A1", rate25 + "<frame>0</frame>"));
  EXPECT_EQ(readOne("<bin><children>" + sequence(one) + sequence(one) + "</children></bin>").clips.size(), 2U);
}

TEST(Xmeml, RefusesWhatHasNoTracks)
{
  EXPECT_EQ(errorOf("<xmeml version='4'><sequence><media></media></sequence></xmeml>"),
            "xmeml without a sequence that has tracks");
  EXPECT_EQ(errorOf("<?xml version='1.0'?><filter/>"),
            "not a cut list, a log file or a timeline (it is XML without a list: 'filter')");
}

} // namespace
