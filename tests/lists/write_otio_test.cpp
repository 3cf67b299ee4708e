// SPDX-License-Identifier: Apache-2.0
#include <string>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include "lists/write.h"
#include "support.h"

using namespace reeldb::lists;
using namespace reeldb::lists::test;

namespace {

/// A second of a cut at 25 frames per second.
Clip clipAt(const std::string& reel, int second, const std::string& tracks = "V", int video = 1, int audio = 0)
{
  const std::string in = std::to_string(second), out = std::to_string(second + 1);
  Clip clip;
  clip.reel = reel;
  clip.clipName = "clip of " + reel;
  clip.tracks = tracks;
  clip.sourceIn = "01:00:00:00";
  clip.sourceOut = "01:00:01:00";
  clip.recordIn = "10:00:0" + in + ":00";
  clip.recordOut = "10:00:0" + out + ":00";
  clip.frameRate = "25";
  clip.videoChannels = video;
  clip.audioChannels = audio;
  return clip;
}

auto valuesOf(const Clip& clip)
{
  return std::tuple(clip.reel, clip.clipName, clip.sourceFile, clip.tracks, clip.sourceIn, clip.sourceOut,
                    clip.recordIn, clip.recordOut, clip.aliases, clip.videoChannels, clip.audioChannels, clip.frameRate,
                    clip.dropFrame, clip.cameraRoll, clip.soundOf);
}

void expectSame(const List& list, const std::vector<Clip>& clips)
{
  EXPECT_TRUE(list.rejected.empty());
  EXPECT_TRUE(list.warnings.empty());
  ASSERT_EQ(list.clips.size(), clips.size());
  for (std::size_t i = 0; i < clips.size(); ++i)
    EXPECT_EQ(valuesOf(list.clips[i]), valuesOf(clips[i])) << i;
}

std::size_t count(const std::string& text, const std::string& part)
{
  std::size_t found = 0;
  for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
    ++found;
  return found;
}

/// The text with its first @p part changed.
std::string changed(std::string text, const std::string& part, const std::string& into)
{
  return text.replace(text.find(part), part.size(), into);
}

TEST(WriteOtio, ClipOnPictureAndSoundStandsOnATrackOfEachAndComesBackAsOne)
{
  Clip clip = clipAt("A001", 0, "AA/V", 1, 2);
  clip.aliases = {"SR007"};
  clip.sourceFile = "/media/a001.mov";
  clip.cameraRoll = "A";
  clip.soundOf = "A002";
  const Written written = writeOtio("EVENING", {clip}, "24", true);
  EXPECT_EQ(written.clips, 1u);
  EXPECT_EQ(written.remarks, Strings{});
  EXPECT_EQ(count(written.text, "Track.1"), 3u);
  EXPECT_EQ(count(written.text, "Clip.1"), 3u);
  const List list = read(written.text);
  EXPECT_EQ(list.title, "EVENING");
  expectSame(list, {clip});
}

TEST(WriteOtio, ReelStandsWhereOtherProgramsReadIt)
{
  std::string text = writeOtio("T", {clipAt("A001", 0)}, "25", true).text;
  std::erase_if(text, [](char c) { return c == ' ' || c == '\n'; });
  EXPECT_EQ(count(text, R"("cmx_3600":{"reel":"A001"})"), 1u);
}

TEST(WriteOtio, ReelThatLooksLikeACutNameOfItsFileStays)
{
  Clip clip = clipAt("A001C001", 0);
  clip.sourceFile = "A001C001_210609.mov";
  expectSame(read(writeOtio("T", {clip}, "25", true).text), {clip});
}

TEST(WriteOtio, ClipsThatOverlapStandOnTracksOfTheirOwnAndGapsPartTheOthers)
{
  const std::vector<Clip> clips = {clipAt("A001", 0), clipAt("B001", 3), clipAt("A002", 0)};
  const std::string text = writeOtio("T", clips, "25", true).text;
  EXPECT_EQ(count(text, "Track.1"), 2u);
  EXPECT_EQ(count(text, "Gap.1"), 1u);
  expectSame(read(text), clips);
}

TEST(WriteOtio, EqualClipsComeBackAsSeveral)
{
  const std::vector<Clip> clips = {clipAt("A001", 0, "A", 0, 1), clipAt("A001", 0, "A2", 0, 1),
                                   clipAt("A001", 0, "A", 0, 1)};
  expectSame(read(writeOtio("T", clips, "25", true).text), clips);
}

TEST(WriteOtio, ClipsWithoutACutAreACollectionAndKeepTheirRecordTimes)
{
  Clip log = clipAt("B001", 0, "A1A2", 0, 2);
  log.recordIn.clear();
  log.recordOut.clear();
  const std::vector<Clip> clips = {clipAt("A001", 0), log};
  const std::string text = writeOtio("T", clips, "25", false).text;
  EXPECT_EQ(count(text, "Timeline.1"), 0u);
  expectSame(read(text), clips);
}

TEST(WriteOtio, ClipWithoutAPlaceInTheCutStandsBesideTheTimeline)
{
  Clip loose = clipAt("B001", 0);
  loose.recordIn.clear();
  loose.recordOut.clear();
  const std::vector<Clip> clips = {clipAt("A001", 0), loose};
  const std::string text = writeOtio("T", clips, "25", true).text;
  EXPECT_EQ(count(text, "SerializableCollection.1"), 1u);
  EXPECT_EQ(count(text, "Timeline.1"), 1u);
  expectSame(read(text), clips);
}

TEST(WriteOtio, TextsOfTimesThatNoRateIsKnownOfComeBack)
{
  Clip numbers = clipAt("A001", 0), dropFrame = clipAt("B001", 1), odd = clipAt("C001", 2), none = clipAt("D001", 3);
  numbers.sourceIn = "1000";
  numbers.sourceOut = "1025";
  dropFrame.sourceIn = "01:00:00;02";
  dropFrame.sourceOut = "01:00:01;02";
  dropFrame.dropFrame = true;
  odd.sourceIn = "01:00:00:59"; // of another rate than the project's
  odd.sourceOut = "01:00:01:59";
  none.sourceIn.clear();
  none.sourceOut.clear();
  for (Clip* clip : {&numbers, &dropFrame, &odd, &none})
    clip->frameRate.clear();
  const std::vector<Clip> clips = {numbers, odd, none};
  const Written written = writeOtio("T", clips, "25", true);
  expectSame(read(written.text), clips);
  EXPECT_EQ(written.remarks,
            Strings{"timecodes written as texts alone: 1 (they do not exist at the rate of their clip)"});
  expectSame(read(writeOtio("T", {dropFrame}, "25", true).text), {dropFrame});
  expectSame(read(writeOtio("T", {odd, dropFrame, none}, "25", false).text), {odd, dropFrame, none});
}

TEST(WriteOtio, SpeedIsAnEffectAndTheSourceTimesComeBack)
{
  Clip clip = clipAt("A001", 0);
  clip.sourceOut = "01:00:02:00";
  clip.event.speed = Speed{"050.0", "01:00:00:00"};
  const std::string text = writeOtio("T", {clip}, "25", true).text;
  EXPECT_EQ(count(text, "\"time_scalar\": 2.0"), 1u);
  const List list = read(text);
  ASSERT_EQ(list.clips.size(), 1u);
  EXPECT_EQ(valuesOf(list.clips[0]), valuesOf(clip));
  EXPECT_EQ(list.warnings.size(), 1u);
  clip.event.speed = Speed{"000.0", ""};
  EXPECT_EQ(count(writeOtio("T", {clip}, "25", true).text, "FreezeFrame.1"), 1u);
}

TEST(WriteOtio, TransitionLiesBehindItsCut)
{
  Clip to = clipAt("B001", 1);
  to.event.transition = "D";
  to.event.duration = "012";
  const std::string text = writeOtio("T", {clipAt("A001", 0), to}, "25", true).text;
  EXPECT_EQ(count(text, "\"transition_type\": \"SMPTE_Dissolve\""), 1u);
  EXPECT_LT(text.find("clip of A001"), text.find("Transition.1"));
  EXPECT_LT(text.find("Transition.1"), text.find("clip of B001"));
  EXPECT_EQ(read(text).clips.size(), 2u);
  to.event.transition = "W001";
  EXPECT_EQ(count(writeOtio("T", {clipAt("A001", 0), to}, "25", true).text, "Custom_Transition"), 1u);
  EXPECT_EQ(writeOtio("T", {to}, "25", true).remarks,
            Strings{"transitions not written: 1 (nothing stands before them on their track)"});
}

TEST(WriteOtio, ClipWithoutASourceIsAGenerator)
{
  Clip black = clipAt("BL", 0), bars = clipAt("BARS", 1), gap = clipAt("gap", 2);
  black.special = "black";
  bars.special = "colour bars";
  gap.special = "gap";
  const List list = read(writeOtio("T", {black, bars, gap, clipAt("A001", 3)}, "25", true).text);
  ASSERT_EQ(list.specials.size(), 3u);
  EXPECT_EQ(list.specials[0].reason, "black");
  EXPECT_EQ(list.specials[1].reason, "colour bars");
  EXPECT_EQ(list.specials[2].reason, "gap");
  EXPECT_EQ(reels(list), Strings{"A001"});
}

TEST(WriteOtio, WhatItCannotHoldIsNamed)
{
  Clip clip = clipAt("A001", 0);
  clip.event.number = "001";
  clip.event.sourceIds = {{"umid", "1"}};
  EXPECT_EQ(writeOtio("T", {clip}, "25", true).remarks,
            (Strings{"event numbers not written: 1 (a timeline of OTIO has no place for them)",
                     "source ids not written: 1 (a timeline of OTIO has no place for them)"}));
}

TEST(WriteOtio, TimesThatAnotherProgramChangedCount)
{
  const std::string text = writeOtio("T", {clipAt("A001", 0)}, "25", true).text;
  const List moved = read(changed(text, "\"value\": 90000.0", "\"value\": 90010.0"));
  EXPECT_EQ(moved.clips.at(0).sourceIn, "01:00:00:10");
  EXPECT_EQ(moved.clips.at(0).sourceOut, "01:00:01:10");
  const List shortened = read(changed(text, "\"value\": 25.0", "\"value\": 5.0"));
  EXPECT_EQ(shortened.clips.at(0).sourceOut, "01:00:00:05");
  EXPECT_EQ(shortened.clips.at(0).recordOut, "10:00:00:05");
}

TEST(WriteOtio, TracksThatAnotherProgramChangedCount)
{
  const std::string text = writeOtio("T", {clipAt("A001", 0, "A7", 0, 1)}, "25", true).text;
  EXPECT_EQ(read(text).clips.at(0).tracks, "A7");
  EXPECT_EQ(read(changed(text, "\"kind\": \"Audio\"", "\"kind\": \"Video\"")).clips.at(0).tracks, "V");
}

TEST(WriteOtio, DamagedTextsOfAClipAreNotTaken)
{
  std::string text = writeOtio("T", {clipAt("A001", 0)}, "25", false).text;
  text = changed(text, "\"record_in\": \"10:00:00:00\"", "\"record_in\": \"noon\"");
  text = changed(text, "\"audio_channels\": 0", "\"audio_channels\": -4");
  const List list = read(text);
  EXPECT_EQ(list.clips.at(0).recordIn, "");
  EXPECT_EQ(list.clips.at(0).audioChannels, 0);
}

} // namespace
