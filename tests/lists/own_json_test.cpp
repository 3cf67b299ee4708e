// SPDX-License-Identifier: Apache-2.0
#include "lists/own_json.h"

#include <gtest/gtest.h>

#include "support.h"

using namespace reeldb::lists;
using namespace reeldb::lists::test;

namespace {

/// A whole project with these shots.
std::string project(const std::string& shots)
{
  return "{\n\"project\": \"main\", \"reels\": [{\"id\": \"A001\"}], \"shots\": [" + shots + R"(], "state_version": 1,
           "options": {"a": 1}, "logs": [{"number": 1, "shots": [{"reel": "not one"}]}], "lists": []})";
}

TEST(OwnJson, AWholeProjectHasItsShotsAsClips)
{
  const List list = read(project(R"({"reel": "A001", "clip": "one", "tracks": "VA2", "source_in": "01:00:00;00",
    "source_out": "01:00:01;00", "record_in": "", "record_out": "", "source_file": "/a/one.mov",
    "aliases": ["other"], "video_channels": 1, "audio_channels": 4, "frame_rate": "29.97", "drop_frame": true,
    "own_name": "A00", "source_id": "u1", "camera_roll": "A00"})"));
  EXPECT_EQ(list.format, Format::Json);
  EXPECT_TRUE(list.holdsProject);
  ASSERT_EQ(list.clips.size(), 1u);
  const Clip& clip = list.clips[0];
  EXPECT_EQ(clip.reel, "A001");
  EXPECT_EQ(clip.clipName, "one");
  EXPECT_EQ(clip.tracks, "VA2");
  EXPECT_EQ(clip.sourceIn, "01:00:00;00");
  EXPECT_EQ(clip.sourceOut, "01:00:01;00");
  EXPECT_EQ(clip.sourceFile, "/a/one.mov");
  EXPECT_EQ(clip.aliases, (Strings{"other", "A00"}));
  EXPECT_EQ(clip.videoChannels, 1);
  EXPECT_EQ(clip.audioChannels, 4);
  EXPECT_EQ(clip.frameRate, "29.97");
  EXPECT_TRUE(clip.dropFrame);
  EXPECT_EQ(clip.cameraRoll, "A00");
  EXPECT_EQ(clip.sourceId, "u1");
  EXPECT_EQ(clip.line, 2);
  EXPECT_EQ(list.tally.lines, 6);
}

TEST(OwnJson, AShotThatNoListCanHaveIsRejectedWithItsLine)
{
  const List list = read(project("\n{\"reel\": \"A001\", \"source_in\": \"25:00:00:00\"},\n{\"clip\": \"\"},\n"
                                 "{\"reel\": \"A002\", \"tracks\": \"?\"},\n{\"reel\": \"A003\"}"));
  EXPECT_EQ(reels(list), Strings{"A003"});
  EXPECT_EQ(list.clips[0].tracks, "V");
  EXPECT_EQ(list.clips[0].videoChannels, 1);
  ASSERT_EQ(list.rejected.size(), 3u);
  EXPECT_EQ(list.rejected[0].line, 3);
  EXPECT_EQ(list.rejected[0].text, "{reel: A001, source_in: 25:00:00:00}");
  EXPECT_EQ(list.rejected[0].reason, "source in '25:00:00:00' is not a timecode (hours above 23)");
  EXPECT_EQ(list.rejected[1].reason, "no reel, no source file and no clip name");
  EXPECT_EQ(list.rejected[2].reason, "unknown tracks '?'");
}

TEST(OwnJson, ObjectsMayHaveALineEach)
{
  const List list = read(R"json({"id": "A001", "bin": "1", "available": false, "type": "", "Scene": 12, "shots": 7}
{"reel": "A002", "clip": "c", "source_in": "01:00:00:00", "source_out": "01:00:01:00"}
[{"id": "A003", "bin": null, "user_fields": {"2": "x", "Take": "y"}, "old_names": ["B1"], "aliases": null}]
{"file": "a.edl", "content": "TITLE: A\n"} {"content": {"bytes": "AQI="}}
{"reels": [{"id": "A004"}], "shots": [], "lists": []}
)json");
  EXPECT_EQ(list.format, Format::Json);
  EXPECT_FALSE(list.holdsProject);
  EXPECT_EQ(reels(list), Strings{"A002"});
  EXPECT_EQ(list.clips[0].line, 2);
  EXPECT_EQ(list.fields, (Strings{"bin", "available", "Scene", "user-field.2", "Take"}));
  ASSERT_EQ(list.reels.size(), 3u);
  EXPECT_EQ(list.reels[0].reel, "A001");
  EXPECT_EQ(list.reels[0].values, (std::vector<ReelValue>{{0, "1"}, {1, "no"}, {2, "12"}}));
  EXPECT_EQ(list.reels[1].values, (std::vector<ReelValue>{{0, ""}, {3, "x"}, {4, "y"}}));
  EXPECT_EQ(list.reels[1].aliases, Strings{"B1"});
  EXPECT_TRUE(list.reels[1].clearsAliases);
  EXPECT_EQ(list.reels[1].line, 3);
  EXPECT_TRUE(list.reels[2].values.empty());
  ASSERT_EQ(list.lists.size(), 2u);
  EXPECT_EQ(list.lists[0].file, "a.edl");
  EXPECT_EQ(list.lists[0].bytes, "TITLE: A\n");
  EXPECT_EQ(list.lists[1].bytes, "\x01\x02");
  EXPECT_TRUE(list.rejected.empty());
}

TEST(OwnJson, TheTextOfAReelIsEscaped)
{
  EXPECT_EQ(read("{\"id\": \"A001\", \"Sce\xC2\x97\": 1}").reels.at(0).text, "{id: A001, Sce\\u0097: 1}");
}

TEST(OwnJson, WhatIsNeitherReelNorShotNorListIsRejected)
{
  const List list = read("{\"id\": \"BL\"}\n{\"name\": \"x\"}\n7\n{\"content\": {\"bytes\": \"?\"}}\n{\"reel\": 7}\n");
  ASSERT_EQ(list.rejected.size(), 5u);
  EXPECT_EQ(list.rejected[0].reason, "'BL' is not a reel (black)");
  EXPECT_EQ(list.rejected[1].line, 2);
  EXPECT_EQ(list.rejected[1].text, "{name: x}");
  EXPECT_EQ(list.rejected[1].reason,
            "neither a reel (with \"id\"), a shot (with \"reel\") nor a list (with \"content\")");
  EXPECT_EQ(list.rejected[2].line, 3);
  EXPECT_EQ(list.rejected[3].reason, "its content is not base64");
}

TEST(OwnJson, DamageIsReportedWithItsLine)
{
  const std::string whole = project("");
  const auto failure = [](const std::string& text) {
    try {
      read(text);
    } catch (const Error& error) {
      return std::string(error.what());
    }
    return std::string();
  };
  EXPECT_EQ(failure(whole.substr(0, whole.size() - 1)), "damaged JSON in line 3 (the file is cut short)");
  EXPECT_EQ(failure("{\"id\": \"A001\"}\n{\"id\": A002}\n"), "damaged JSON in line 2 (Invalid value.)");
  EXPECT_EQ(failure("{\n\"state_version\": 1,\n}"), "damaged JSON in line 3 (Missing a name for object member.)");
}

} // namespace
