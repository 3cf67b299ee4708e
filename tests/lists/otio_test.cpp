// SPDX-License-Identifier: Apache-2.0
#include "lists/otio.h"

#include <gtest/gtest.h>

#include "lists/timeline.h"
#include "support.h"

using namespace reeldb::lists;
using namespace reeldb::lists::test;

namespace {

std::string time(const std::string& value, const std::string& rate)
{
  return R"({"OTIO_SCHEMA": "RationalTime.1", "rate": )" + rate + R"(, "value": )" + value + "}";
}

std::string range(const std::string& start, const std::string& length, const std::string& rate = "25.0")
{
  return R"({"OTIO_SCHEMA": "TimeRange.1", "start_time": )" + time(start, rate) + R"(, "duration": )" +
         time(length, rate) + "}";
}

/// A clip with a source range from 01:00:00:00 on at 25, and further members.
std::string clip(const std::string& name, const std::string& members, const std::string& length = "50")
{
  return R"({"OTIO_SCHEMA": "Clip.1", "name": ")" + name + R"(", "source_range": )" + range("90000", length) +
         (members.empty() ? "" : ", " + members) + "}";
}

std::string file(const std::string& url, const std::string& members = "")
{
  return R"("media_reference": {"OTIO_SCHEMA": "ExternalReference.1", "target_url": ")" + url + "\"" +
         (members.empty() ? "" : ", " + members) + "}";
}

std::string track(const std::string& children, const std::string& kind = "Video")
{
  return R"({"OTIO_SCHEMA": "Track.1", "kind": ")" + kind + R"(", "children": [)" + children + "]}";
}

std::string timeline(const std::string& tracks, const std::string& members = "")
{
  return "{\"OTIO_SCHEMA\": \"Timeline.1\", \"name\": \"cut\", " + members +
         "\"tracks\": {\"OTIO_SCHEMA\": \"Stack.1\", \"children\": [\n" + tracks + "\n]}}\n";
}

List readOne(const std::string& clipText)
{
  return read(timeline(track(clipText)));
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

TEST(Otio, ReadsNamesTimesAndTracks)
{
  const List list = read(timeline(
      track(clip("take 1", file("file:///cards/A001C002.mov")) + ",\n" + clip("take 2", file("/cards/A001C003.mov"))),
      R"("global_start_time": )" + time("90000", "25") + ", "));
  EXPECT_EQ(list.format, Format::Otio);
  EXPECT_EQ(list.title, "cut");
  EXPECT_EQ(reels(list), (std::vector<std::string>{"A001C002.mov", "A001C003.mov"}));
  const Clip& second = list.clips[1];
  EXPECT_EQ(second.clipName, "take 2");
  EXPECT_EQ(second.sourceFile, "/cards/A001C003.mov");
  EXPECT_EQ(second.evidence, NameEvidence::SourceFile);
  EXPECT_EQ(second.tracks, "V");
  EXPECT_EQ(second.sourceIn, "01:00:00:00");
  EXPECT_EQ(second.sourceOut, "01:00:02:00");
  EXPECT_EQ(second.recordIn, "01:00:02:00");
  EXPECT_EQ(second.recordOut, "01:00:04:00");
  EXPECT_EQ(second.frameRate, "25");
  EXPECT_EQ(second.line, 3);
  EXPECT_TRUE(list.warnings.empty());
}

TEST(Otio, TakesTheReelFromTheFirstPlaceThatHasOne)
{
  const std::string aaf = R"("AAF": {"UserComments": {"TapeID": "T3", "TapeName": "T2"}})";
  const std::string fcp = R"("metadata": {"fcp_xml": {"timecode": {"reel": {"name": "F1"}}}, "ALE": {"Tape": "L2"}})";
  const std::string own = R"("metadata": {"cmx_3600": {"reel": "C1"}, "ALE": {"Tape": "L1"}, )" + aaf + "}";
  EXPECT_EQ(reels(readOne(clip("c", own + ", " + file("x.mov", fcp)))), std::vector<std::string>{"C1"});
  EXPECT_EQ(reels(readOne(clip("c", R"("metadata": {"ALE": {"Tape": "L1"}}, )" + file("x.mov", fcp)))),
            std::vector<std::string>{"F1"});
  EXPECT_EQ(reels(readOne(clip("c", R"("metadata": {"ALE": {"Tape": "L1"}, )" + aaf + "}, " + file("x.mov")))),
            std::vector<std::string>{"L1"});
  const List tape = readOne(clip("c", "\"metadata\": {" + aaf + "}, " + file("x.mov")));
  EXPECT_EQ(reels(tape), std::vector<std::string>{"T2"});
  EXPECT_EQ(tape.clips[0].event.reelText, "T2");
  EXPECT_EQ(tape.clips[0].aliases, (std::vector<std::string>{"T3", "x.mov"}));
}

TEST(Otio, TakesNullAndEmptyReelsAsNone)
{
  for (const char* reel : {"null", "\"\"", "\" \"", "{}", "[]"})
    EXPECT_EQ(reels(readOne(clip("c", file("a/x.mov", std::string(R"("metadata": {"fcp_xml": {"timecode": {"reel": )") +
                                                          R"({"name": )" + reel + "}}}}")))),
              std::vector<std::string>{"x.mov"})
        << reel;
}

TEST(Otio, NamesAClipWithoutAFileByItsReferenceThenItself)
{
  const auto missing = [](const std::string& members) {
    return R"("media_reference": {"OTIO_SCHEMA": "MissingReference.1")" + members + "}";
  };
  EXPECT_EQ(reels(readOne(clip("c", missing(R"(, "name": "ref")")))), std::vector<std::string>{"ref"});
  EXPECT_EQ(reels(readOne(clip("c", missing("")))), std::vector<std::string>{"c"});
  EXPECT_EQ(reels(readOne(clip("c.NEW.01", R"("media_reference": null)"))), std::vector<std::string>{"c"});
  EXPECT_EQ(readOne(clip("", missing(""))).rejected.at(0).reason, "no reel, no file and no name");
}

TEST(Otio, TakesTheNameOfAnImageSequenceFromItsParts)
{
  EXPECT_EQ(reels(readOne(clip("c", R"("media_reference": {"OTIO_SCHEMA": "ImageSequenceReference.1", )"
                                    R"("target_url_base": "file:///shots/", "name_prefix": "sh010.", )"
                                    R"("name_suffix": ".exr"})"))),
            std::vector<std::string>{"sh010..exr"});
}

TEST(Otio, TakesTheActiveMediumOfASecondVersionClip)
{
  const std::string media =
      R"("media_references": {"proxy": {"OTIO_SCHEMA": "ExternalReference.1", "target_url": )"
      R"("p.mov"}, "DEFAULT_MEDIA": {"OTIO_SCHEMA": "ExternalReference.1", "target_url": "d.mov"}})";
  EXPECT_EQ(reels(readOne(clip("c", media + R"(, "active_media_reference_key": "proxy")"))),
            std::vector<std::string>{"p.mov"});
  EXPECT_EQ(reels(readOne(clip("c", media))), std::vector<std::string>{"d.mov"});
  EXPECT_EQ(reels(readOne(clip("c", media + R"(, "active_media_reference_key": "gone")"))),
            std::vector<std::string>{"c"});
}

TEST(Otio, ReadsACutNameOfACutListAsTheListWouldBeRead)
{
  const List list = readOne(clip("Z", R"("metadata": {"cmx_3600": {"reel": "ZZ100_50", "comments": )"
                                      R"(["LOC: x", "SOURCE FILE: ZZ100_501.LAY3.01"]}})"));
  EXPECT_EQ(reels(list), std::vector<std::string>{"ZZ100_501.LAY3.01"});
  EXPECT_EQ(list.clips[0].event.reelText, "ZZ100_50");
  EXPECT_EQ(list.clips[0].event.reelField, 8U);
  EXPECT_EQ(readOne(clip("Z", R"("metadata": {"cmx_3600": {"reel": "BL"}})")).specials.at(0).reason, "black");
}

TEST(Otio, TakesTheWholeMediumWithoutASourceRange)
{
  const std::string item = R"({"OTIO_SCHEMA": "Clip.1", "name": "c", "source_range": null, )";
  const List whole = readOne(item + file("x.mov", "\"available_range\": " + range("0", "24", "24")) + "}");
  EXPECT_EQ(whole.clips.at(0).sourceIn, "00:00:00:00");
  EXPECT_EQ(whole.clips.at(0).sourceOut, "00:00:01:00");
  EXPECT_EQ(whole.clips.at(0).frameRate, "24");
  const List none = readOne(item + file("x.mov", R"("available_range": null)") + "}");
  EXPECT_EQ(none.clips.at(0).sourceIn, "");
  EXPECT_EQ(none.warnings.at(0).reason, "no source range (kept without timecodes)");
}

std::string rangeClip(const std::string& sourceRange, const std::string& members = "")
{
  return R"({"OTIO_SCHEMA": "Clip.1", "name": "c", "source_range": )" + sourceRange + members + "}";
}

TEST(Otio, CountsEveryRateExactly)
{
  const auto in = [](const std::string& value, const std::string& rate) {
    const List list = readOne(rangeClip(range(value, "1", rate)));
    EXPECT_TRUE(list.warnings.empty()) << list.warnings.at(0).reason;
    return list.clips.at(0).sourceIn + " " + list.clips.at(0).frameRate;
  };
  EXPECT_EQ(in("86400", "23.976023976023978"), "01:00:00:00 23.98");
  EXPECT_EQ(in("86400.0", "23.976"), "01:00:00:00 23.98");
  EXPECT_EQ(in("8.64e4", "24.0"), "01:00:00:00 24");
  EXPECT_EQ(in("107892", "29.97002997002997"), "00:59:56:12 29.97");
  EXPECT_EQ(in("215784", "59.94005994005994"), "00:59:56:24 59.94");
  EXPECT_EQ(in("215784", "59.9400599401"), "00:59:56:24 59.94");
}

TEST(Otio, TakesDropFrameFromTheTimecodeOfTheFile)
{
  const std::string dropFrame = R"("metadata": {"fcp_xml": {"timecode": {"displayformat": "DF"}}})";
  const List list = readOne(rangeClip(range("107892", "1", "29.97"), ", " + file("x.mov", dropFrame)));
  EXPECT_EQ(list.clips.at(0).sourceIn, "01:00:00;00");
  EXPECT_TRUE(list.clips.at(0).dropFrame);
  EXPECT_EQ(readOne(rangeClip(range("24", "1", "24"), ", " + file("x.mov", dropFrame))).clips.at(0).sourceIn,
            "00:00:01:00");
}

TEST(Otio, CountsAnUnknownRateAtThatOfItsFile)
{
  const List list = readOne(
      rangeClip(range("15", "15", "15"), ", " + file("x.mov", "\"available_range\": " + range("0", "90", "30"))));
  EXPECT_EQ(list.clips.at(0).sourceIn, "00:00:01:00");
  EXPECT_EQ(list.clips.at(0).sourceOut, "00:00:02:00");
  EXPECT_EQ(list.clips.at(0).frameRate, "30");
  EXPECT_EQ(list.warnings.at(0).reason, "unknown frame rate '15' (its timecodes are counted at 30)");
  EXPECT_EQ(readOne(rangeClip(range("15", "15", "15"))).warnings.at(0).reason,
            "unknown frame rate '15' (kept without timecodes)");
}

TEST(Otio, ReadsDifferentRatesWithinOneClip)
{
  const List list = readOne(rangeClip(R"({"OTIO_SCHEMA": "TimeRange.1", "start_time": )" + time("25", "25") +
                                      R"(, "duration": )" + time("48", "24") + "}"));
  EXPECT_EQ(list.clips.at(0).sourceOut, "00:00:03:00");
}

TEST(Otio, WarnsOfNumbersThatAreNotTimes)
{
  for (const char* value : {"NaN", "Inf", "-Infinity", "null", "57896044618658097711785492504343953926634992332820"})
    EXPECT_EQ(readOne(rangeClip(range(value, "1"))).warnings.at(0).reason,
              "its source range is not a range of numbers (kept without timecodes)")
        << value;
}

TEST(Otio, ReadsNumbersThatAreNotStrictlyJson)
{
  EXPECT_EQ(readOne(clip("c", R"("metadata": {"a": NaN, "b": [-Infinity, Inf], "c": )" + std::string(77, '9') + "}"))
                .clips.size(),
            1U);
}

TEST(Otio, MakesOneClipOfPictureAndSoundTracks)
{
  const std::string one = clip("c", file("x.mov"));
  const List list = read(timeline(track(one) + ",\n" + track(one, "Audio") + ",\n" + track(one, "Audio")));
  ASSERT_EQ(list.clips.size(), 1U);
  EXPECT_EQ(list.clips[0].tracks, "VA1A2");
}

TEST(Otio, CountsGapsTransitionsAndNestedSequencesInTheRecord)
{
  const std::string gap = R"({"OTIO_SCHEMA": "Gap.1", "source_range": )" + range("0", "25") + "}";
  const std::string transition = R"({"OTIO_SCHEMA": "Transition.1", "in_offset": )" + time("5", "25") + "}";
  const std::string nested =
      R"({"OTIO_SCHEMA": "Stack.1", "name": "inner", "children": [)" + track(clip("in", file("i.mov"))) + "]}";
  const List list = read(timeline(track(gap + ",\n" + clip("a", file("a.mov")) + ",\n" + transition + ",\n" + nested +
                                        ", null,\n" + clip("b", file("b.mov"))),
                                  R"("global_start_time": )" + time("0", "25") + ", "));
  ASSERT_EQ(list.clips.size(), 3U);
  EXPECT_EQ(list.clips[0].recordIn, "00:00:01:00");
  EXPECT_EQ(list.clips[1].reel, "i.mov");
  EXPECT_EQ(list.clips[1].recordIn, "");
  EXPECT_EQ(list.clips[2].recordIn, "00:00:05:00");
  ASSERT_EQ(list.specials.size(), 2U);
  EXPECT_EQ(list.specials[0].text, "gap");
  EXPECT_EQ(list.specials[1].text, "inner");
  EXPECT_EQ(list.specials[1].reason, "nested sequence");
  EXPECT_EQ(list.specials[1].lines, std::vector<int>{5});
}

TEST(Otio, StartsTheRecordWhereTheTrackIsSeen)
{
  const std::string seen = R"({"OTIO_SCHEMA": "Track.1", "kind": "Video", "source_range": )" + range("-50", "100") +
                           R"(, "children": [)" + clip("a", file("a.mov")) + "]}";
  EXPECT_EQ(read(timeline(seen)).clips.at(0).recordIn, "00:00:02:00");
}

TEST(Otio, ReportsGeneratorsWithoutAReel)
{
  const auto reason = [](const std::string& kind) {
    return readOne(clip("g", R"("media_reference": {"OTIO_SCHEMA": "GeneratorReference.1", "generator_kind": ")" +
                                 kind + "\"}"))
        .specials.at(0)
        .reason;
  };
  EXPECT_EQ(reason("SMPTEBars"), "colour bars");
  EXPECT_EQ(reason("black"), "black");
  EXPECT_EQ(reason("Text"), "generated");
}

TEST(Otio, WarnsOfWhatItDoesNotKnowAndOfWhatIsDoubtful)
{
  const List list =
      read(timeline(track(R"({"OTIO_SCHEMA": "Caption.1", "source_range": )" + range("0", "25") + "},\n" +
                          clip("a", R"("enabled": false, "effects": [{"OTIO_SCHEMA": "LinearTimeWarp.1", )"
                                    R"("time_scalar": 2.0}, {"OTIO_SCHEMA": "Effect.1"}], )" +
                                        file("a.mov")))));
  ASSERT_EQ(list.warnings.size(), 3U);
  EXPECT_EQ(list.warnings[0].line, 2);
  EXPECT_EQ(list.warnings[0].reason, "unknown schema 'Caption.1' (skipped)");
  EXPECT_EQ(list.warnings[1].line, 3);
  EXPECT_EQ(list.warnings[1].reason, "is disabled (kept: its source is in the list)");
  EXPECT_EQ(list.warnings[2].reason, "plays at another speed (2.0): source in and out are as written");
  EXPECT_EQ(list.clips.at(0).recordIn, "00:00:01:00");
}

TEST(Otio, ReadsCollectionsAndParts)
{
  const std::string one = clip("a", file("a.mov"));
  EXPECT_EQ(read(R"({"OTIO_SCHEMA": "SerializableCollection.1", "name": "all", "children": [)" + timeline(track(one)) +
                 ", null, " + track(one) + ", " + one + "]}")
                .clips.size(),
            3U);
  EXPECT_EQ(errorOf(R"({"OTIO_SCHEMA": "Marker.2"})"), "OTIO without a timeline (it is a 'Marker.2')");
}

TEST(Otio, ReportsALineEndOfAnyKind)
{
  std::string text = timeline(track(clip("", "")));
  const auto line = [](const std::string& bytes) { return read(bytes).rejected.at(0).line; };
  EXPECT_EQ(line(text), 2);
  text.replace(text.find('\n'), 1, "\r\n");
  EXPECT_EQ(line(text), 2);
  text.replace(text.find("\r\n"), 2, "\r");
  EXPECT_EQ(line(text), 2);
  EXPECT_EQ(line("\xEF\xBB\xBF" + text), 2);
}

TEST(Otio, RefusesDamagedFilesWithTheLine)
{
  const std::string whole = timeline(track(clip("a", file("a.mov"))));
  EXPECT_EQ(errorOf(whole.substr(0, whole.size() / 2)), "damaged OTIO in line 2 (the file is cut short)");
  std::string withNul = whole;
  withNul[withNul.find("Video")] = '\0';
  EXPECT_EQ(errorOf(withNul).substr(0, 22), "damaged OTIO in line 2");
  EXPECT_EQ(errorOf(whole + std::string("\0x", 2)), "damaged OTIO in line 4 (a NUL byte)");
  EXPECT_EQ(errorOf(whole + "{}").substr(0, 22), "damaged OTIO in line 4");
}

TEST(Otio, RefusesMoreLevelsThanItsLimit)
{
  const auto nested = [](int levels) {
    std::string text = R"({"OTIO_SCHEMA": "Timeline.1", "tracks": )";
    for (int i = 1; i < levels; ++i)
      text += '[';
    text += "\n";
    text.append(static_cast<std::size_t>(levels - 1), ']');
    return text + "}";
  };
  EXPECT_EQ(errorOf(nested(mostLevels)), "");
  EXPECT_EQ(errorOf(nested(mostLevels + 1)), "OTIO with more than 512 levels in line 1");
  EXPECT_EQ(errorOf(nested(100'000)), "OTIO with more than 512 levels in line 1");
}

TEST(Otio, ReadsUtf16WithAMark)
{
  const std::string text = timeline(track(clip("a", file("a.mov"))));
  std::string wide = "\xFF\xFE";
  for (const char c : text)
    wide += {c, '\0'};
  EXPECT_EQ(reels(read(wide)), std::vector<std::string>{"a.mov"});
}

TEST(Otio, RejectsNamesWithControlCharacters)
{
  const List list = readOne(clip("a\\u0007b", file("a.mov")));
  EXPECT_EQ(list.rejected.at(0).line, 2);
  EXPECT_EQ(list.rejected.at(0).reason, "clip name 'a\\x07b' holds a control character (\\x07)");
}

} // namespace
