// SPDX-License-Identifier: Apache-2.0
//
// Lists from the field, which are not part of the project: the folder comes from REELDB_SAMPLES. What each must give
// was counted with a script of its own; list_names.py counts the names.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <set>
#include <string>

#include <gtest/gtest.h>

#include "lists/list.h"
#include "lists/short_names.h"
#include "lists/write.h"
#include "support.h"

using namespace reeldb::lists;
using namespace reeldb::lists::test;

namespace {

struct Sample {
  const char* file;
  std::size_t clips;
  int specialLines;
  std::size_t reels;
  std::uint64_t digest; ///< FNV-1a of the sorted reel names, joined by line feeds
};

const Sample samples[] = {
    {"01_file32_source_table.edl", 287, 0, 158, 0x48e4f25b4717d509U},
    {"02_file32_source_table_b.edl", 250, 0, 165, 0x31832146c7c42c35U},
    {"04_audio_dissolves_BL.edl", 144, 4, 11, 0xd451100575e543a8U},
    {"05_sound_rolls.edl", 575, 0, 28, 0x2437b7dbfd4f0916U},
    {"06_long_mixed_case_reels.edl", 42, 0, 20, 0xd41cefd6a6093182U},
    {"08_no_FCM_no_comments.edl", 38, 0, 32, 0x375312e24da21b61U},
    {"10_AX_BL_dissolve_wipe_M2.edl", 12, 1, 4, 0xdcbf8011d3308f83U},
    {"12_file32_small.edl", 9, 0, 6, 0x1c2023b387cb94deU},
    {"14_other_dialect_one_reel.edl", 787, 0, 1, 0x5de847df54ec39f1U},
    {"15_numeric_tapes_source_table.edl", 32, 1, 5, 0x31ad0c40abc3e5eeU},
    {"17_key_transition.edl", 2, 0, 2, 0xc1d90ac1c06c0536U},
    {"18_reel_IS_CLIP_notes.edl", 4, 0, 1, 0xcd67f4ea9ae4001aU},
    {"20_many_reels_dots.edl", 548, 0, 408, 0x47e20085d3ebbd2bU},
    {"22_camera_and_sound_rolls.ale", 12, 0, 7, 0x413fad6d033ff88U},
    {"23_one_line_heading.ale", 2, 0, 1, 0x7e24b9c3927778f1U},
    {"25_all_headings_tape_253.ale", 5, 0, 1, 0x602dad18277eef09U},
};

std::uint64_t digest(const std::set<std::string>& names)
{
  std::uint64_t hash = 0xcbf29ce484222325U;
  const auto add = [&](unsigned char byte) { hash = (hash ^ byte) * 0x100000001b3U; };
  bool first = true;
  for (const std::string& name : names) {
    if (!first)
      add('\n');
    first = false;
    for (char c : name)
      add(static_cast<unsigned char>(c));
  }
  return hash;
}

class Samples : public testing::TestWithParam<Sample> {
protected:
  void SetUp() override
  {
    const char* folder = std::getenv("REELDB_SAMPLES");
    if (folder == nullptr || *folder == '\0')
      GTEST_SKIP() << "REELDB_SAMPLES does not name the folder of sample lists";
    bytes_ = fileBytes(std::string(folder) + "/" + GetParam().file);
    ASSERT_FALSE(bytes_.empty()) << GetParam().file << " is not in " << folder;
  }

  std::string bytes_;
};

TEST_P(Samples, GivesExactlyItsReels)
{
  const Sample& sample = GetParam();
  const List list = read(bytes_);
  EXPECT_EQ(list.format, std::string(sample.file).ends_with(".ale") ? Format::Ale : Format::Edl);
  EXPECT_EQ(list.clips.size(), sample.clips);
  EXPECT_EQ(specialLines(list), sample.specialLines);
  EXPECT_EQ(distinctReels(list).size(), sample.reels);
  EXPECT_EQ(digest(distinctReels(list)), sample.digest);
  EXPECT_TRUE(list.rejected.empty());
  EXPECT_TRUE(list.warnings.empty());
  EXPECT_TRUE(list.spellings.empty());
  EXPECT_EQ(list.ambiguous.empty(), list.format == Format::Ale || sample.reels > 1)
      << "one reel for all clips is a doubt";
}

TEST_P(Samples, EveryLineIsAccountedFor)
{
  const List list = read(bytes_);
  EXPECT_GT(list.tally.lines, 0);
  EXPECT_EQ(accountedLines(list), list.tally.lines);
}

INSTANTIATE_TEST_SUITE_P(Lists, Samples, testing::ValuesIn(samples), [](const auto& instance) {
  std::string name = instance.param.file;
  for (char& c : name)
    c = c == '.' ? '_' : c;
  return name;
});

TEST(AllSamples, EventsComeBackAsTheyWere)
{
  const char* folder = std::getenv("REELDB_SAMPLES");
  if (folder == nullptr || *folder == '\0')
    GTEST_SKIP() << "REELDB_SAMPLES does not name the folder of sample lists";
  int lists = 0, speeds = 0, transitions = 0;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    const std::string extension = entry.path().extension();
    if (extension != ".edl" && extension != ".ale")
      continue;
    SCOPED_TRACE(entry.path().filename());
    const List list = read(fileBytes(entry.path()));
    const std::vector<Clip> events = eventsOf(list);
    ++lists;
    for (const Clip& clip : events) {
      speeds += clip.event.speed ? 1 : 0;
      transitions += clip.event.transition.empty() || clip.event.transition == "C" ? 0 : 1;
    }
    if (list.format == Format::Ale) {
      const Written written = writeAle("25", events);
      EXPECT_EQ(eventTexts(eventsOf(read(written.text))), eventTexts(events));
      EXPECT_EQ(written.leftOut, Strings{});
      continue;
    }
    for (const std::size_t field : reelFields) {
      SCOPED_TRACE(field);
      const Written written = writeEdl(list.title, events, field);
      const List again = read(written.text);
      EXPECT_EQ(eventTexts(eventsOf(again)), eventTexts(events));
      EXPECT_TRUE(again.rejected.empty());
      EXPECT_EQ(again.warnings.size(), list.warnings.size());
      EXPECT_EQ(written.leftOut, Strings{});
    }
  }
  EXPECT_GE(lists, 24);
  EXPECT_GE(speeds, 58);
  EXPECT_GE(transitions, 33);
}

TEST(SampleOfSpeeds, AllSeventeenComeBack)
{
  const char* folder = std::getenv("REELDB_SAMPLES");
  if (folder == nullptr || *folder == '\0')
    GTEST_SKIP() << "REELDB_SAMPLES does not name the folder of sample lists";
  const List list = read(fileBytes(std::string(folder) + "/20_many_reels_dots.edl"));
  const std::string text = writeEdl(list.title, eventsOf(list), 8).text;
  Strings speeds;
  for (const Clip& clip : read(text).clips)
    if (clip.event.speed)
      speeds.push_back(clip.event.speed->framesPerSecond + " " + clip.event.speed->timecode);
  EXPECT_EQ(speeds.size(), 17u);
  EXPECT_EQ(speeds.at(0), "000.0 01:00:10:21");
  EXPECT_EQ(speeds.at(2), "047.6 01:00:06:00");
  EXPECT_EQ(std::count(speeds.begin(), speeds.end(), "045.3 01:00:18:09"), 1);
}

TEST(SampleOfDropFrame, TheMannerOfCountingComesBack)
{
  const char* folder = std::getenv("REELDB_SAMPLES");
  if (folder == nullptr || *folder == '\0')
    GTEST_SKIP() << "REELDB_SAMPLES does not name the folder of sample lists";
  const List list = read(fileBytes(std::string(folder) + "/33_drop_frame_5994.edl"));
  const std::string text = writeEdl(list.title, eventsOf(list), 8).text;
  EXPECT_NE(text.find("FCM: DROP FRAME\n"), std::string::npos);
  EXPECT_EQ(text.find("NON-DROP"), std::string::npos);
  const List again = read(text);
  ASSERT_EQ(again.clips.size(), 9u);
  for (const Clip& clip : again.clips) {
    EXPECT_TRUE(clip.dropFrame);
    EXPECT_EQ(clip.frameRate, "59.94");
  }
}

TEST(SampleOfASoundMix, SidesOfDissolvesKeepTheirFiles)
{
  const char* folder = std::getenv("REELDB_SAMPLES");
  if (folder == nullptr || *folder == '\0')
    GTEST_SKIP() << "REELDB_SAMPLES does not name the folder of sample lists";
  const List list = read(fileBytes(std::string(folder) + "/04_audio_dissolves_BL.edl"));
  int seen = 0;
  for (const Clip& clip : list.clips) {
    seen += clip.line == 120 || clip.line == 121 || clip.line == 178 ? 1 : 0;
    if (clip.line == 120) { // the side dissolved from
      EXPECT_EQ(clip.clipName, "TC R1 V6 TEMP2 M DX.WAV");
      EXPECT_EQ(clip.sourceFile, "TC R1 V6 TEMP2 M DX.WAV");
    }
    if (clip.line == 121) { // the side dissolved to, of another reel
      EXPECT_EQ(clip.clipName, "TC R1 V1.2 TEMP1 DX M.WAV");
      EXPECT_EQ(clip.sourceFile, "");
    }
    if (clip.line == 178) { // from black: its source file is (NULL)
      EXPECT_EQ(clip.clipName, "TC R1 V6 TEMP2 ST MX.WAV");
      EXPECT_EQ(clip.sourceFile, "");
    }
    EXPECT_LE(clip.audioChannels, 1) << "A10 to A12 are single channels in this list";
  }
  EXPECT_EQ(seen, 3);
}

} // namespace
