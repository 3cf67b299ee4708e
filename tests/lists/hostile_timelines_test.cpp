// SPDX-License-Identifier: Apache-2.0
//
// Timelines that are cut short, too large or made to be expensive: a clear error, or every clip.
#include <algorithm>
#include <array>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "lists/json_tree.h"
#include "lists/list.h"
#include "lists/xml_root.h"

using namespace reeldb::lists;

namespace {

constexpr std::string_view otio = R"({
"OTIO_SCHEMA": "Timeline.1", "name": "cut \u00e9 é",
"tracks": {"OTIO_SCHEMA": "Stack.1", "children": [
  {"OTIO_SCHEMA": "Track.1", "kind": "Video", "children": [
    {"OTIO_SCHEMA": "Clip.1", "name": "one", "metadata": {"cmx_3600": {"reel": "A001"}}, "source_range": null},
    {"OTIO_SCHEMA": "Clip.1", "name": "two", "metadata": {"other": [NaN, -1.5e3]}, "source_range": null}
  ]}]}
})";

constexpr std::string_view xmeml = R"(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE xmeml [<!ENTITY a "x>]"> <!ENTITY b "&a;&a;"> <!ENTITY c SYSTEM "file:///etc/hostname">]>
<!-- a cut -->
<xmeml version="5"><sequence><name>cut é</name><rate><timebase>25</timebase></rate><media><video><track>
<clipitem><name>one &amp; &a;</name><file id="A"><name>A001.mov</name></file></clipitem>
<clipitem><name><![CDATA[two]]></name><file id="B"><name>B001.mov</name></file></clipitem>
</track></video></media></sequence></xmeml>)";

constexpr std::string_view fcpxml = R"(<?xml version="1.0"?>
<fcpxml version="1.11"><resources><format id="f" frameDuration="1/25s"/>
<asset id="a" name="A001" start="0s" duration="9s" hasVideo="1" format="f"/></resources>
<library><event><project name="cut é"><sequence format="f"><spine>
<asset-clip ref="a" name="one" offset="0s" start="1s" duration="1s"/>
<asset-clip ref="a" name="two" offset="1s" start="1s" duration="1s"/>
</spine></sequence></project></event></library></fcpxml>)";

class CutShort : public testing::TestWithParam<std::string_view> {};

TEST_P(CutShort, AtEveryByteNamesTheLineAndIsNotAShorterList)
{
  const std::string_view whole = GetParam();
  ASSERT_EQ(read(whole).clips.size(), 2U);
  std::size_t damaged = 0;
  for (std::size_t size = 1; size < whole.size(); ++size) {
    const std::string_view bytes = whole.substr(0, size);
    const std::string_view text = bytes.substr(0, bytes.find_last_not_of(" \n") + 1);
    const auto line = 1 + std::count(text.begin(), text.end(), '\n');
    try {
      ADD_FAILURE() << "read with " << read(bytes).clips.size() << " clips: " << bytes;
    } catch (const Error& error) {
      const std::string what = error.what();
      if (what.starts_with("not a cut list, a log file or a timeline ("))
        continue; // the piece does not show its format yet
      ++damaged;
      EXPECT_NE(what.find(" in line " + std::to_string(line) + " ("), std::string::npos) << what << "\n" << bytes;
    }
  }
  EXPECT_GT(damaged, whole.size() / 2);
}

INSTANTIATE_TEST_SUITE_P(Timelines, CutShort, testing::Values(otio, xmeml, fcpxml), [](const auto& place) {
  return std::string(std::array{"Otio", "Xmeml", "Fcpxml"}.at(place.index));
});

TEST(Xmeml, ReadsAHundredThousandItemsOfOneTrack)
{
  constexpr std::size_t items = 100'000;
  std::string text = "<xmeml><sequence><rate><timebase>25</timebase></rate><media><video><track>";
  for (std::size_t i = 0; i < items; ++i)
    text += "<clipitem><name>c</name><in>0</in><out>1</out><file><name>A.mov</name></file></clipitem>";
  const List list = read(text + "</track></video></media></sequence></xmeml>");
  EXPECT_EQ(list.clips.size(), items);
  EXPECT_EQ(list.clips.back().frameRate, "25");
}

TEST(RootName, SkipsAHundredThousandInstructions)
{
  std::string text;
  for (int i = 0; i < 100'000; ++i)
    text += "<?a?>";
  EXPECT_EQ(rootName(text + "<xmeml a='['>"), "xmeml");
}

std::size_t countValues(const JsonValue& value)
{
  std::size_t count = 1;
  for (const auto& [unused, member] : value.members)
    count += countValues(member);
  return count;
}

TEST(ParseJson, KeepsNothingOfWhatNobodyAsksFor)
{
  std::string foreign = "{";
  for (int i = 0; i < 100'000; ++i)
    foreign += "\"k" + std::to_string(i) + "\": [1, {\"name\": \"n\"}], ";
  const AsksFor asksFor = [](std::string_view name, std::string_view) {
    return name == "OTIO_SCHEMA" || name == "metadata";
  };
  const JsonValue root =
      parseJson(R"({"OTIO_SCHEMA": "Clip.1", "metadata": {"x": )" + foreign + R"("z": 1}}})", "OTIO", asksFor);
  EXPECT_EQ(countValues(root), 3U); // the clip, its schema and its metadata
}

} // namespace
