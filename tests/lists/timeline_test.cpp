// SPDX-License-Identifier: Apache-2.0
#include "lists/timeline.h"

#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "lists/names.h"

using namespace reeldb::lists;

namespace {

TEST(PathOfUrl, IsThePathOfAFileAndTheRestAsWritten)
{
  EXPECT_EQ(pathOfUrl("file://localhost/D%3a/my%20media/a.mov"), "/D:/my media/a.mov");
  EXPECT_EQ(pathOfUrl("file:///Volumes/a/b.mxf"), "/Volumes/a/b.mxf");
  EXPECT_EQ(pathOfUrl("file:/a.mov"), "/a.mov");
  EXPECT_EQ(pathOfUrl("https://host/a/b.mov?token=1#x"), "/a/b.mov");
  EXPECT_EQ(pathOfUrl("media/a%20b.mov"), "media/a%20b.mov");
  EXPECT_EQ(pathOfUrl("D:\\a\\b.mov"), "D:\\a\\b.mov");
  EXPECT_EQ(pathOfUrl(""), "");
}

TEST(PathOfUrl, KeepsEscapesThatWouldNotBeTextOrWouldMakeFolders)
{
  EXPECT_EQ(pathOfUrl("file:///50% done.mov"), "/50% done.mov");
  EXPECT_EQ(pathOfUrl("file:///a%2Fb.mov"), "/a%2Fb.mov");
  EXPECT_EQ(pathOfUrl("file:///a%5cb.mov"), "/a%5cb.mov");
  EXPECT_EQ(pathOfUrl("file:///a%ff.mov"), "/a%ff.mov");
  EXPECT_EQ(pathOfUrl("file:///a%00.mov"), "/a%00.mov");
  EXPECT_EQ(pathOfUrl("file:///a%4"), "/a%4");
}

TimelineClip clipOn(int line, std::set<int> sound)
{
  TimelineClip clip;
  clip.line = line;
  clip.what = "clip";
  clip.name = "take";
  clip.reel = "A001";
  clip.place = "1";
  clip.picture = sound.empty();
  clip.sound = std::move(sound);
  clip.source = {Seconds{3600, 1}, Seconds{3602, 1}, Counting{{25, false}, false}};
  return clip;
}

TEST(Timeline, JoinsPictureAndSoundOfOneClip)
{
  Timeline timeline(Format::Otio);
  timeline.clip(clipOn(1, {}));
  timeline.clip(clipOn(2, {1}));
  timeline.clip(clipOn(3, {2}));
  const List list = timeline.finish("1\n\n3");
  ASSERT_EQ(list.clips.size(), 1U);
  EXPECT_EQ(list.clips[0].tracks, "VA1A2");
  EXPECT_EQ(list.clips[0].videoChannels, 1);
  EXPECT_EQ(list.clips[0].audioChannels, 2);
  EXPECT_EQ(list.clips[0].line, 1);
  EXPECT_EQ(list.clips[0].sourceIn, "01:00:00:00");
  EXPECT_EQ(list.clips[0].sourceOut, "01:00:02:00");
  EXPECT_EQ(list.clips[0].frameRate, "25");
  EXPECT_EQ(list.tally.lines, 3);
  EXPECT_EQ(list.tally.blank, 1);
}

TEST(Timeline, KeepsClipsApartThatShareATrackOrDifferInTimeOrPlace)
{
  Timeline timeline(Format::Otio);
  timeline.clip(clipOn(1, {}));
  timeline.clip(clipOn(2, {}));
  TimelineClip later = clipOn(3, {1});
  later.source.in = Seconds{3601, 1};
  timeline.clip(later);
  TimelineClip elsewhere = clipOn(4, {1});
  elsewhere.place = "2";
  timeline.clip(elsewhere);
  EXPECT_EQ(timeline.finish("").clips.size(), 4U);
}

TEST(Timeline, WarnsOfTimesThatHaveNoTimecodeOfTheirOwn)
{
  Timeline timeline(Format::Otio);
  TimelineClip clip = clipOn(1, {});
  clip.source = {Seconds{1, 50}, Seconds{86400, 1}, Counting{{25, false}, false}};
  timeline.clip(clip);
  const List list = timeline.finish("");
  EXPECT_EQ(list.clips.at(0).sourceIn, "00:00:00:00");
  EXPECT_EQ(list.clips.at(0).sourceOut, "");
  ASSERT_EQ(list.warnings.size(), 2U);
  EXPECT_EQ(list.warnings[0].reason, "source in 1/50s lies within a frame (kept as 00:00:00:00)");
  EXPECT_EQ(list.warnings[1].reason,
            "source out 86400/1s has no timecode: after the last frame of the day, 2159999 (kept without it)");
}

TEST(Timeline, RejectsAClipWithoutAnyName)
{
  Timeline timeline(Format::Otio);
  TimelineClip clip = clipOn(7, {});
  clip.name = clip.reel = "";
  timeline.clip(clip);
  const List list = timeline.finish("");
  ASSERT_EQ(list.rejected.size(), 1U);
  EXPECT_EQ(list.rejected[0].line, 7);
  EXPECT_EQ(list.rejected[0].reason, "no reel, no file and no name");
}

TEST(Timeline, ReportsAFileNameThatSeveralFilesHave)
{
  Timeline timeline(Format::Otio);
  for (const char* id : {"u1", "u2", "u1"}) {
    TimelineClip clip = clipOn(1, {});
    clip.reel.clear();
    clip.file = "/" + std::string(id) + "/IMG_1.MOV";
    clip.ids = {{"asset", id}};
    timeline.clip(clip);
  }
  const List list = timeline.finish("");
  ASSERT_EQ(list.ambiguous.size(), 1U);
  EXPECT_EQ(list.ambiguous[0].reel, "IMG_1.MOV");
  EXPECT_EQ(list.ambiguous[0].sourceIds, (std::vector<std::string>{"u1", "u2"}));
}

TEST(Timeline, KeepsTheWholeNameOfAReelWithoutItsEnding)
{
  Timeline timeline(Format::Otio);
  TimelineClip clip = clipOn(1, {});
  clip.file = "/cards/A001.mov";
  timeline.clip(clip);
  const List list = timeline.finish("");
  EXPECT_EQ(list.clips.at(0).reel, "A001");
  EXPECT_EQ(list.clips.at(0).ownName, "A001.mov");
}

TEST(Timeline, RefusesMoreClipsThanItsLimit)
{
  Timeline timeline(Format::Otio);
  for (std::size_t i = 0; i < mostTimelineClips; ++i)
    timeline.special({}, gapReason);
  EXPECT_THROW(timeline.clip(clipOn(1, {})), Error);
}

} // namespace
