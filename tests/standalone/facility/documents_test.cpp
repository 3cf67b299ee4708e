// SPDX-License-Identifier: Apache-2.0
//
// The host reads the examples of the documents as the documents describe.
#include <algorithm>
#include <sstream>

#include <gtest/gtest.h>

#include "facility/label_map_words.h"
#include "facility/state_file.h"
#include "reelhost/facility.h"
#include "standalone/store/support.h"

namespace {

using namespace reelhost;
using namespace store_tests;

std::string document(const std::string& name)
{
  return bytesOf(std::filesystem::path(REELDB_SOURCE_DIR) / "docs/formats" / name);
}

/// The contents of all blocks that are marked as TOML.
std::vector<std::string> tomlBlocks(const std::string& name)
{
  std::vector<std::string> blocks;
  std::istringstream in(document(name));
  bool inside = false;
  for (std::string line; std::getline(in, line);) {
    if (line.rfind("```", 0) == 0) {
      inside = line == "```toml";
      if (inside)
        blocks.emplace_back();
    } else if (inside) {
      blocks.back() += line + "\n";
    }
  }
  return blocks;
}

TEST(FacilityDocument, ExamplesAreRead)
{
  const auto blocks = tomlBlocks("facility.md");
  ASSERT_EQ(blocks.size(), 2u);
  const TempFolder folder;
  std::filesystem::create_directory(folder / "devicedata");
  writeBytes(folder / "devicedata/reeltype.dat", "Tape 4ch:VideoChannels=1 AudioChannels=4\n");
  writeBytes(folder / "facility.toml", blocks[0]);
  const Facility before = Facility::read(folder.path());
  EXPECT_EQ(before.frameRates(), Facility().frameRates());
  EXPECT_EQ(before.systemValue("reel_userfield0"), "Scene");
  EXPECT_EQ(before.devices().size(), 2u);
  EXPECT_EQ(before.typeRules().size(), 1u);
  writeBytes(folder / "state.toml", blocks[1]);
  const Facility after = Facility::read(folder.path());
  EXPECT_EQ(after.systemValue("reel_userfield0"), "Scene number");
  EXPECT_EQ(after.devices()[1].lastReel, "Camera 1 live feed");
}

TEST(LabelMapDocument, ExamplesMakeAWholeMap)
{
  const auto blocks = tomlBlocks("labelmap.md");
  ASSERT_EQ(blocks.size(), 2u);
  std::string map = blocks[0];
  for (int i = 0; i < 12; ++i)
    map += blocks[1];
  const TempFolder folder;
  writeBytes(folder / "map.toml", map);
  const auto entries = readLabelMap(folder / "map.toml");
  EXPECT_EQ(entries[0].source, 3u);
  EXPECT_EQ(entries[1].source, 1u);
  EXPECT_FALSE(entries[13].inUse);
}

TEST(LabelMapDocument, NamesEveryWordWithItsCode)
{
  const std::string text = document("labelmap.md");
  const auto expectRows = [&](const std::string& words, std::optional<unsigned> (*codeOf)(std::string_view)) {
    for (std::size_t start = 0; start < words.size();) {
      const std::size_t end = std::min(words.find(", ", start), words.size());
      const std::string word = words.substr(start, end - start);
      const std::string row = "| `" + word + "` | " + std::to_string(codeOf(word).value_or(99)) + " |";
      EXPECT_NE(text.find(row), std::string::npos) << row;
      start = end + 2;
    }
  };
  expectRows(labelSourceWords(), labelSourceCode);
  expectRows(labelFormatWords(), labelFormatCode);
}

} // namespace
