// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <set>

#include "cli/command_fixture.h"
#include "cli/stored_field.h"

namespace fs = std::filesystem;
using namespace reeldb_tests;

namespace {

const std::string eachShotOnce = "reeldb: main: each shot of the project is written once, as a cut "
                                 "(reeldb export LIST writes an imported list with its transitions and speeds)\n";

const Words reelLengths = {"3", "6", "8", "32", "129"};

std::vector<fs::path> listsIn(const fs::path& folder)
{
  std::vector<fs::path> files;
  for (const auto& entry : fs::directory_iterator(folder))
    if (entry.is_regular_file() && (entry.path().extension() == ".edl" || entry.path().extension() == ".ale"))
      files.push_back(entry.path());
  std::sort(files.begin(), files.end());
  return files;
}

class Export : public FacilityTest {
protected:
  /// Without what lists called the source: the export is another list. A cut list has no rolls either.
  static Json withoutNames(Json shots, bool withoutRolls = false)
  {
    for (Json& shot : shots) {
      for (const char* key : {"own_name", "own_name_may_be_cut", "source_id", "further_names"})
        shot.erase(key);
      for (const char* key : {"camera_roll", "sound_of"})
        if (withoutRolls)
          shot.erase(key);
    }
    return shots;
  }

  /// Identifiers of the reels, and the shots: what a list carries.
  Json contents(const std::string& project)
  {
    const Json all = json({"-p", project, "export", "--json"});
    Json reels = Json::array();
    for (const Json& reel : all.at("reels"))
      reels.push_back({reel.at("id"), reel.at("shots")});
    return {{"reels", std::move(reels)}, {"shots", withoutNames(all.at("shots"))}};
  }

  /// Exports the project as a list, which must report that each shot is written once, and nothing else.
  std::string listOf(const Words& options)
  {
    Words words = {"export"};
    words.insert(words.end(), options.begin(), options.end());
    const ProcessResult result = reeldb(words);
    EXPECT_EQ(result.code, 0);
    EXPECT_EQ(result.err, eachShotOnce);
    return result.out;
  }

  /// Exports the project with these options and imports that in a project of its own, which is then as the first is.
  void expectSameAfter(const Words& options, const std::string& project)
  {
    SCOPED_TRACE(testing::PrintToString(options));
    Words words = {"-p", project, "export", "-o", "out"};
    words.insert(words.end(), options.begin(), options.end());
    ASSERT_EQ(reeldb(words).code, 0);
    const std::string copy = numbered("copy", ++copies_);
    output({"project", "new", copy});
    const ProcessResult imported = reeldb({"-p", copy, "import", "--json", "out"});
    fs::remove(path("out"));
    ASSERT_EQ(imported.code, 0) << imported.out;
    const Json report = Json::parse(imported.out).at("files").at(0);
    EXPECT_EQ(report.at("special"), Json::array());
    EXPECT_EQ(report.at("rejected"), Json::array());
    // One reel for all clips is a doubt in every list.
    EXPECT_TRUE(report.at("ambiguous").empty() || contents(project).at("reels").size() == 1) << report.at("ambiguous");
    EXPECT_EQ(report.at("spellings"), Json::array());
    const bool isCutList = options.front() == "--edl";
    const Json before = contents(project), after = contents(copy);
    EXPECT_EQ(after.at("reels"), before.at("reels"));
    EXPECT_EQ(withoutNames(after.at("shots"), isCutList), withoutNames(before.at("shots"), isCutList));
  }

  void expectRoundTrips(const fs::path& list)
  {
    SCOPED_TRACE(list.filename().string());
    const std::string project = numbered("list", ++lists_);
    output({"project", "new", project});
    const int code = reeldb({"-p", project, "import", list.string()}).code;
    ASSERT_TRUE(code == 0 || code == 4);
    expectSameAfter({"--ale"}, project);
    expectSameAfter({"--otio"}, project);
    for (const std::string& length : reelLengths)
      expectSameAfter({"--edl", "--reel-length", length}, project);
  }

  /// What a list says of its events: all but the form in which it writes the reels, and the places of its lines.
  Json eventsOf(const std::string& project, const std::string& list)
  {
    Json events = json({"-p", project, "list-file", "show", list, "--json"}).at("events");
    for (Json& event : events)
      for (const char* key : {"line", "reel_text", "reel_field", "own_name_may_be_cut"})
        event.erase(key);
    return events;
  }

  /// The reels and shots with all that the project keeps of them, but their numbers.
  Json logsOf(const std::string& project)
  {
    Json logs = json({"-p", project, "export", "--json"}).at("logs");
    for (Json& log : logs)
      for (const char* key : {"number", "id", "tag"})
        log.erase(key);
    std::sort(logs.begin(), logs.end());
    return logs;
  }

  /// Exports the list with these options and imports that in a project of its own, which then has the same events,
  /// reels and shots.
  void expectSameListAfter(const Words& options, const std::string& project, const std::string& list)
  {
    SCOPED_TRACE(testing::PrintToString(options));
    Words words = {"-p", project, "export", list, "-o", "out"};
    words.insert(words.end(), options.begin(), options.end());
    ASSERT_EQ(reeldb(words).code, 0);
    const std::string copy = numbered("copy", ++copies_);
    output({"project", "new", copy});
    const int code = reeldb({"-p", copy, "import", "out"}).code;
    fs::remove(path("out"));
    ASSERT_EQ(code, 0);
    EXPECT_EQ(eventsOf(copy, "1"), eventsOf(project, list));
    EXPECT_EQ(contents(copy), contents(project));
    if (options.empty()) { // in the field of the list, also names that may be cut come back
      EXPECT_EQ(logsOf(copy), logsOf(project));
    }
  }

  std::size_t copies_ = 0, lists_ = 0;
};

TEST_F(Export, EveryExampleComesBackAsTheSameReelsAndShots)
{
  const auto files = listsIn(REELDB_EXAMPLES);
  ASSERT_GE(files.size(), 3u);
  for (const fs::path& file : files)
    expectRoundTrips(file);
}

TEST_F(Export, EverySampleComesBackAsTheSameReelsAndShots)
{
  const char* const folder = std::getenv("REELDB_SAMPLES");
  if (!folder || listsIn(folder).empty())
    GTEST_SKIP() << "REELDB_SAMPLES names no folder with lists";
  for (const fs::path& file : listsIn(folder))
    expectRoundTrips(file);
}

TEST_F(Export, ListOfEachSampleComesBackAsTheSameEventsReelsAndShots)
{
  const char* const folder = std::getenv("REELDB_SAMPLES");
  if (!folder || listsIn(folder).empty())
    GTEST_SKIP() << "REELDB_SAMPLES names no folder with lists";
  for (const fs::path& file : listsIn(folder)) {
    SCOPED_TRACE(file.filename().string());
    const std::string project = numbered("list", ++lists_);
    output({"project", "new", project});
    const int code = reeldb({"-p", project, "import", file.string()}).code;
    ASSERT_TRUE(code == 0 || code == 4);
    expectSameListAfter({}, project, file.filename());
    if (file.extension() == ".edl")
      expectSameListAfter({"--reel-length", "32"}, project, "1");
  }
}

const std::string cutWithADissolve = "TITLE: EVENING\nFCM: NON-DROP FRAME\n"
                                     "001  BL       V     C        00:00:00:00 00:00:00:00 10:00:00:00 10:00:00:00\n"
                                     "001  A001     V     D    024 01:00:00:00 01:00:02:00 10:00:00:00 10:00:01:00\n"
                                     "M2   A001     050.0                  01:00:00:00\n"
                                     "* TO CLIP NAME: KITCHEN\n"
                                     "* LOC: 10:00:00:12 RED LOOK\n"
                                     "007  A001     V     C        03:00:00:00 03:00:01:00 10:00:01:00 10:00:02:00\n"
                                     "008  A001     V     C        03:00:00:00 03:00:01:00 10:00:02:00 10:00:03:00\n";

TEST_F(Export, ListIsWrittenWithItsOwnEvents)
{
  dir_.write("evening.edl", cutWithADissolve + "009  broken 01:00:00:00\n");
  ASSERT_EQ(reeldb({"import", "evening.edl"}).code, 4);
  const ProcessResult result = reeldb({"export", "evening.edl"});
  EXPECT_EQ(result.code, 0);
  EXPECT_EQ(result.out, "TITLE: EVENING\nFCM: NON-DROP FRAME\n"
                        "001  BL       V     C        00:00:00:00 00:00:00:00 10:00:00:00 10:00:00:00\n"
                        "001  A001     V     D    024 01:00:00:00 01:00:02:00 10:00:00:00 10:00:01:00\n"
                        "* EVENT LINE: 1 OF 2\n"
                        "* EVENT LINE: 2 OF 2\n"
                        "M2   A001     050.0                  01:00:00:00\n"
                        "* TO CLIP NAME: KITCHEN\n"
                        "007  A001     V     C        03:00:00:00 03:00:01:00 10:00:01:00 10:00:02:00\n"
                        "008  A001     V     C        03:00:00:00 03:00:01:00 10:00:02:00 10:00:03:00\n");
  EXPECT_EQ(result.err,
            "reeldb: evening.edl: notes and statements not written: 1 (list-file show --original has them)\n"
            "reeldb: evening.edl: rejected lines not written: 1 (they could not be read)\n");
  EXPECT_EQ(reeldb({"export", "1", "-o", "out.edl"}).out, "out.edl: 4 events\n");
  EXPECT_EQ(readFile("out.edl"), result.out);
}

TEST_F(Export, ListHasTheNamesThatItsReelsHaveNow)
{
  dir_.write("evening.edl", cutWithADissolve);
  ASSERT_EQ(reeldb({"import", "evening.edl"}).code, 0);
  ASSERT_EQ(reeldb({"rename", "A001", "A021C012_210609_H1KV"}).code, 0);
  const ProcessResult result = reeldb({"export", "EVENING"});
  EXPECT_NE(result.out.find("* REEL MAP: A021C012 = A021C012_210609_H1KV\n"), std::string::npos) << result.out;
  EXPECT_EQ(result.out.find("A001"), std::string::npos) << result.out;
  dir_.write("out.edl", result.out);
  output({"project", "new", "copy"});
  output({"-p", "copy", "import", "out.edl"});
  EXPECT_EQ(json({"-p", "copy", "list", "--json"}).at(0).at("id"), "A021C012_210609_H1KV");
  EXPECT_EQ(contents("copy"), contents("main"));
}

TEST_F(Export, ListWithANewNameThatWasTheOldOneOfAnotherReelIsNotMisread)
{
  dir_.write("cut.edl", "TITLE: X\n" + event(1, "A001", "V", "01:00:00:00", "01:00:01:00") +
                            event(2, "A002", "V", "02:00:00:00", "02:00:01:00"));
  ASSERT_EQ(reeldb({"import", "cut.edl"}).code, 0);
  ASSERT_EQ(reeldb({"rename", "A001", "X001"}).code, 0);
  ASSERT_EQ(reeldb({"rename", "A002", "A001"}).code, 0);
  const std::string text = output({"export", "cut.edl"});
  EXPECT_NE(text.find("\n001  X001 "), std::string::npos) << text;
  EXPECT_NE(text.find("\n002  A001 "), std::string::npos) << text;
  EXPECT_EQ(text.find("REEL MAP"), std::string::npos) << text;
}

TEST_F(Export, ListKeepsTheTextThatIsAFormOfTheReelsPresentName)
{
  dir_.write("cut.edl", // in a field of eight characters, which the first name fills
             "TITLE: X\n"
             "001  A021C012 V     C        01:00:00:00 01:00:01:00 01:00:00:00 01:00:01:00\n"
             "002  TAPE.7   V     C        02:00:00:00 02:00:01:00 01:00:00:00 01:00:01:00\n");
  ASSERT_EQ(reeldb({"import", "cut.edl"}).code, 0);
  ASSERT_EQ(reeldb({"rename", "A021C012", "A021C012_210609_H1KV"}).code, 0);
  ASSERT_EQ(reeldb({"rename", "TAPE.7", "TAPE_7"}).code, 0);
  const std::string text = output({"export", "cut.edl"});
  EXPECT_NE(text.find("\n001  A021C012 "), std::string::npos) << text;
  EXPECT_NE(text.find("* REEL MAP: A021C012 = A021C012_210609_H1KV\n"), std::string::npos) << text;
  EXPECT_NE(text.find("\n002  TAPE.7 "), std::string::npos) << text;
}

TEST_F(Export, EventsOfDeletedShotsAreNamed)
{
  dir_.write("evening.edl", cutWithADissolve + event(9, "B001", "V", "05:00:00:00", "05:00:01:00"));
  ASSERT_EQ(reeldb({"import", "evening.edl"}).code, 0);
  ASSERT_EQ(reeldb({"delete", "B001", "-y"}).code, 0);
  const ProcessResult result = reeldb({"export", "evening.edl"});
  EXPECT_EQ(result.out.find("B001"), std::string::npos);
  EXPECT_NE(result.err.find("reeldb: evening.edl: events not written: 1 (their shots were deleted)\n"),
            std::string::npos)
      << result.err;
}

TEST_F(Export, ListAsALogNamesWhatALogHasNot)
{
  dir_.write("evening.edl", cutWithADissolve);
  ASSERT_EQ(reeldb({"import", "evening.edl"}).code, 0);
  const ProcessResult result = reeldb({"export", "evening.edl", "--ale"});
  EXPECT_EQ(result.code, 0);
  EXPECT_EQ(result.out.substr(0, 8), "Heading\n");
  EXPECT_EQ(result.err,
            "reeldb: evening.edl: notes and statements not written: 1 (list-file show --original has them)\n"
            "reeldb: event numbers not written: 4 (a log file cannot hold them)\n"
            "reeldb: transitions not written: 1 (a log file cannot hold them)\n"
            "reeldb: speeds not written: 1 (a log file cannot hold them)\n");
}

TEST_F(Export, LogNamesTheColumnsThatAreNotWrittenBack)
{
  dir_.write("rushes.ale", "Heading\nFIELD_DELIM\tTABS\nVIDEO_FORMAT\t1080\nFPS\t25\n\nColumn\n"
                           "Name\tTape\tTracks\tStart\tEnd\tScene\tTake\tEmpty\n\nData\n"
                           "x\tA001\tV\t01:00:00:00\t01:00:01:00\t7\t1\t\n");
  ASSERT_EQ(reeldb({"import", "rushes.ale"}).code, 0);
  const ProcessResult result = reeldb({"export", "rushes.ale"});
  EXPECT_EQ(result.code, 0);
  EXPECT_EQ(result.err, "reeldb: rushes.ale: headings and columns of the log not written: 2 (Scene, Take)\n");
}

TEST_F(Export, LogKeepsTheRateOfItsHeading)
{
  const auto log = [](const std::string& fps, const std::string& rateOfB) {
    return "Heading\nFIELD_DELIM\tTABS\nVIDEO_FORMAT\t1080\nFPS\t" + fps +
           "\n\nColumn\nName\tTape\tTracks\tStart\tEnd\tFPS\n\nData\n"
           "a\tA001\tV\t01:00:00:00\t01:00:01:00\t24\nb\tB001\tV\t01:00:00:00\t01:00:01:00\t" +
           rateOfB + "\n";
  };
  dir_.write("mixed.ale", log("30000/1001", "48"));
  dir_.write("odd.ale", log("100", "abc"));
  dir_.write("same.ale", log("50", "24"));
  EXPECT_EQ(reeldb({"import", "mixed.ale", "odd.ale", "same.ale"}).code, 0);
  const ProcessResult mixed = reeldb({"export", "mixed.ale"}), odd = reeldb({"export", "odd.ale"}),
                      same = reeldb({"export", "same.ale"});
  EXPECT_NE(mixed.out.find("\nFPS\t29.97\n"), std::string::npos) << mixed.out;
  EXPECT_EQ(mixed.err, "");
  EXPECT_EQ(odd.err, "reeldb: odd.ale: headings and columns of the log not written: 2 (FPS 100, FPS)\n");
  EXPECT_NE(same.out.find("\nFPS\t50\n"), std::string::npos) << same.out;
  EXPECT_NE(same.out.find("\tA001\t24\n"), std::string::npos) << same.out;
}

TEST_F(Export, ListThatIsNotThereAndOptionsThatDoNotFitAreRefused)
{
  dir_.write("evening.edl", cutWithADissolve);
  ASSERT_EQ(reeldb({"import", "evening.edl"}).code, 0);
  EXPECT_EQ(reeldb({"export", "morning.edl"}).code, 1);
  const std::string which = " (use one of --edl, --ale, --otio, --csv, --json)";
  expectRefusal({"export", "evening.edl", "--history"},
                "export: --history needs --json and excludes --reels, --reel, --where and a list", 2);
  expectRefusal({"export", "evening.edl", "--reels"}, "export: no format given" + which, 2);
  expectRefusal({"export", "evening.edl", "--edl", "--ale"}, "export: more than one format given" + which, 2);
  for (const char* option : {"--ale", "--otio", "--csv", "--json"})
    expectRefusal({"export", "evening.edl", option, "--reel-length", "8"}, "export: --reel-length needs --edl", 2);
  expectRefusal({"export", "evening.edl", "--list", "evening.edl"}, "export: LIST and --list exclude each other", 2);
  expectRefusal({"export", "evening.edl", "--force"}, "export: --force needs -o FILE", 2);
}

TEST_F(Export, TimelineOfEachSampleComesBackAsTheSameReelsAndShots)
{
  const char* const folder = std::getenv("REELDB_SAMPLES");
  if (!folder || listsIn(folder).empty())
    GTEST_SKIP() << "REELDB_SAMPLES names no folder with lists";
  std::vector<fs::path> files = listsIn(folder);
  for (const char* const kind : {"otio", "xmeml", "fcpxml"})
    for (const auto& entry : fs::directory_iterator(fs::path(folder) / kind))
      files.push_back(entry.path());
  for (const fs::path& file : files) {
    SCOPED_TRACE(file.filename().string());
    const std::string project = numbered("timeline", ++lists_), copy = numbered("copy", ++copies_);
    output({"project", "new", project});
    if (const int code = reeldb({"-p", project, "import", file.string()}).code; code != 0 && code != 4)
      continue; // no list
    ASSERT_EQ(reeldb({"-p", project, "export", "--otio", "--list", "1", "-o", "out"}).code, 0);
    output({"project", "new", copy});
    EXPECT_EQ(reeldb({"-p", copy, "import", "out"}).code, 0);
    fs::remove(path("out"));
    const auto sorted = [&](const std::string& of) {
      Json all = contents(of);
      all.at("shots") = withoutNames(all.at("shots"), true);
      std::sort(all.at("reels").begin(), all.at("reels").end());
      std::sort(all.at("shots").begin(), all.at("shots").end());
      return all;
    };
    EXPECT_EQ(sorted(copy), sorted(project));
  }
}

TEST_F(Export, ListOfATimelineIsATimeline)
{
  dir_.write("evening.edl", cutWithADissolve);
  ASSERT_EQ(reeldb({"import", "evening.edl"}).code, 0);
  ASSERT_EQ(reeldb({"export", "--otio", "--list", "evening.edl", "-o", "evening.otio"}).code, 0);
  ASSERT_EQ(reeldb({"import", "evening.otio"}).code, 0);
  EXPECT_EQ(json({"list-file", "list", "--json"}).at(1).at("format"), "otio");
  EXPECT_EQ(Json::parse(reeldb({"export", "evening.otio"}).out).at("OTIO_SCHEMA"), "Timeline.1");
}

TEST_F(Export, SelectedReelsComeWithTheirShotsAlone)
{
  dir_.write("one.edl",
             event(1, "A001", "V", "01:00:00:00", "01:00:01:00") + event(2, "B001", "V", "01:00:00:00", "01:00:01:00"));
  dir_.write("two.edl",
             event(1, "B001", "V", "02:00:00:00", "02:00:01:00") + event(2, "B002", "V", "01:00:00:00", "01:00:01:00"));
  ASSERT_EQ(reeldb({"import", "one.edl", "two.edl"}).code, 0);
  const Json some = json({"export", "--json", "--reel", "b*"});
  EXPECT_EQ(some.at("reels").size(), 2u);
  EXPECT_EQ(some.at("shots").size(), 3u);
  EXPECT_FALSE(some.contains("state_version"));
  EXPECT_TRUE(json({"export", "--json"}).contains("state_version"));
  EXPECT_EQ(json({"export", "--json", "--reels", "--where", "list=one.edl"}).at("reels").size(), 2u);
  EXPECT_EQ(json({"export", "--json", "--reels", "two.edl"}).at("reels").at(1).at("id"), "B002");
  EXPECT_EQ(json({"export", "--json", "--list", "two.edl", "--reel", "B002"}).at("events").size(), 1u);
  const std::string table = output({"export", "--csv", "--where", "name=A001"});
  EXPECT_EQ(std::count(table.begin(), table.end(), '\n'), 2);
  const ProcessResult cut = reeldb({"export", "two.edl", "--reel", "B001"});
  EXPECT_EQ(cut.code, 0);
  EXPECT_EQ(cut.err, "");
  EXPECT_NE(cut.out.find("001  B001"), std::string::npos) << cut.out;
  EXPECT_EQ(cut.out.find("B002"), std::string::npos) << cut.out;
  EXPECT_EQ(reeldb({"export", "--csv", "--reel", "X*"}).code, 1);
}

TEST_F(Export, TableOfAListHasItsEvents)
{
  dir_.write("evening.edl", cutWithADissolve);
  ASSERT_EQ(reeldb({"import", "evening.edl"}).code, 0);
  ASSERT_EQ(reeldb({"rename", "A001", "NEW"}).code, 0);
  const std::string table = output({"export", "evening.edl", "--csv"});
  const Json events = json({"export", "evening.edl", "--json"}).at("events");
  EXPECT_EQ(table.find("reel,clip,tracks,source_in,source_out,record_in,record_out,source_file,aliases,video_channels,"
                       "audio_channels,frame_rate,drop_frame,reel_now,special,event,part,reel_text,transition,duration,"
                       "speed,speed_timecode,source_ids,line\r\n"),
            0u)
      << table;
  EXPECT_EQ(std::count(table.begin(), table.end(), '\n'), static_cast<std::ptrdiff_t>(events.size()) + 1);
  EXPECT_NE(table.find(",NEW,"), std::string::npos) << table;
  EXPECT_NE(table.find(",D,"), std::string::npos) << table;
  EXPECT_EQ(events, json({"list-file", "show", "evening.edl", "--json"}).at("events"));
}

TEST_F(Export, CutListHasAMapOfTheNamesThatDoNotFit)
{
  dir_.write("cut.edl", "TITLE: X\n" + event(1, "A021C012_210609_H1KV", "V", "01:00:00:00", "01:00:01:00") +
                            "* FROM CLIP NAME: ONE\n" + event(2, "B001", "AA/V", "02:00:00:00", "02:00:01:00"));
  ASSERT_EQ(reeldb({"import", "cut.edl"}).code, 0);
  EXPECT_EQ(listOf({"--edl"}), "TITLE: main\n"
                               "FCM: NON-DROP FRAME\n"
                               "* REEL MAP: A021C012 = A021C012_210609_H1KV\n"
                               "001  A021C012 V     C        01:00:00:00 01:00:01:00 01:00:00:00 01:00:01:00\n"
                               "* FROM CLIP NAME: ONE\n"
                               "002  B001     AA/V  C        02:00:00:00 02:00:01:00 01:00:00:00 01:00:01:00\n");
  EXPECT_NE(listOf({"--edl", "--reel-length", "32"})
                .find("\n000001  A021C012_210609_H1KV             V     C        01:00:00:00"),
            std::string::npos);
}

TEST_F(Export, LogHasTheRequiredColumnsAndThoseThatAreUsed)
{
  dir_.write("cut.ale", "Heading\nFIELD_DELIM\tTABS\n\nColumn\nName\tTracks\tStart\tEnd\tTape\n\nData\n"
                        "one\tVA1A2\t01:00:00:00\t01:00:05:00\tA001\n");
  ASSERT_EQ(reeldb({"import", "cut.ale"}).code, 0);
  EXPECT_EQ(listOf({"--ale"}),
            "Heading\nFIELD_DELIM\tTABS\nVIDEO_FORMAT\t1080\nAUDIO_FORMAT\t48khz\nFPS\t25\n\nColumn\n"
            "Name\tTracks\tStart\tEnd\tTape\tFPS\n\nData\n"
            "one\tVA1A2\t01:00:00:00\t01:00:05:00\tA001\t\n");
}

TEST_F(Export, DropFrameAndRateAreWrittenBack)
{
  dir_.write("cut.edl", "TITLE: X\nFCM: DROP FRAME\n" + event(1, "A001", "V", "01:00:00:00", "01:00:01:31"));
  ASSERT_EQ(reeldb({"import", "cut.edl"}).code, 0);
  const std::string edl = listOf({"--edl"});
  EXPECT_NE(edl.find("\nFCM: DROP FRAME\n* FRAME RATE: 59.94\n001  A001 "), std::string::npos) << edl;
  EXPECT_NE(edl.find(" 01:00:00:00 01:00:01:31 "), std::string::npos) << edl;
  const std::string ale = listOf({"--ale"});
  EXPECT_NE(ale.find("\nFPS\t59.94\n"), std::string::npos) << ale;
  EXPECT_NE(ale.find("\t01:00:00;00\t01:00:01;31\tA001\t"), std::string::npos) << ale;
  expectSameAfter({"--edl"}, "main");
  expectSameAfter({"--ale"}, "main");
}

TEST_F(Export, ShotsOfSeveralRatesComeBackWithTheirRates)
{
  const std::string titles = "\nColumn\nName\tTracks\tStart\tEnd\tTape\n\nData\n";
  dir_.write("a.ale",
             "Heading\nFIELD_DELIM\tTABS\nFPS\t23.976\n" + titles + "one\tV\t01:00:00:00\t01:00:05:00\tA001\n");
  dir_.write("b.ale", "Heading\nFIELD_DELIM\tTABS\nFPS\t25\n" + titles + "two\tV\t01:00:00:00\t01:00:05:00\tA002\n");
  dir_.write("c.edl", event(1, "A003", "V", "01:00:00:00", "01:00:01:00"));
  ASSERT_EQ(reeldb({"import", "a.ale", "b.ale", "c.edl"}).code, 0);
  const Json shots = json({"export", "--json"}).at("shots");
  EXPECT_EQ(shots.at(0).at("frame_rate"), "23.98");
  EXPECT_EQ(shots.at(1).at("frame_rate"), "25");
  EXPECT_EQ(shots.at(2).at("frame_rate"), "");
  EXPECT_NE(listOf({"--ale"}).find("\nFPS\t25\n"), std::string::npos);
  expectSameAfter({"--edl"}, "main");
  expectSameAfter({"--ale"}, "main");
}

TEST_F(Export, TableQuotesWhatItMust)
{
  dir_.write("cut.edl", event(1, "A\"1", "V", "01:00:00:00", "01:00:01:00") + "* FROM CLIP NAME: one, two\n");
  ASSERT_EQ(reeldb({"import", "cut.edl"}).code, 0);
  EXPECT_EQ(output({"export", "--csv"}),
            "reel,clip,tracks,source_in,source_out,record_in,record_out,source_file,aliases,video_channels,"
            "audio_channels,frame_rate,drop_frame\r\n"
            "\"A\"\"1\",\"one, two\",V,01:00:00:00,01:00:01:00,01:00:00:00,01:00:01:00,,,1,0,,no\r\n");
  ASSERT_EQ(reeldb({"rename", "A\"1", "B1"}).code, 0);
  ASSERT_EQ(reeldb({"set", "B1", "0=12A"}).code, 0);
  EXPECT_EQ(output({"export", "--csv", "--reels"}),
            "id,type,available,inhibit,label_mapping,bin,last_device,video_channels,audio_channels,user_field_0,"
            "user_field_1,user_field_2,user_field_3,user_field_4,user_field_5,shots,old_names\r\n"
            "B1,Tape 2ch,yes,no,,,,1,2,12A,,,,,,1,\"A\"\"1\"\r\n");
}

TEST_F(Export, ReelsThatDifferInCaseHaveTheirOwnOldNames)
{
  for (const char* const number : {"1", "2"}) {
    output({"create", std::string("A") + number});
    output({"rename", std::string("A") + number, std::string("N") + number});
  }
  respell(path("projects/main.reels"), "N2", "n1");
  const Json reels = json({"export", "--json"}).at("reels");
  ASSERT_EQ(reels.size(), 2u);
  EXPECT_EQ(reels.at(0).at("old_names"), Words{"A1"});
  EXPECT_EQ(reels.at(1).at("old_names"), Words{"A2"});
}

TEST_F(Export, JsonHoldsReelsAndShots)
{
  output({"create", "A001"});
  const Json all = json({"export", "--json"});
  EXPECT_EQ(all.at("project"), "main");
  EXPECT_EQ(all.at("frame_rate"), "25");
  EXPECT_EQ(all.at("reels").at(0).at("id"), "A001");
  EXPECT_EQ(all.at("reels").at(0).at("old_names"), Json::array());
  EXPECT_EQ(all.at("shots"), Json::array());
  EXPECT_FALSE(json({"export", "--json", "--reels"}).contains("shots"));
}

TEST_F(Export, JsonMakesTheSameProjectAgainByteForByte)
{
  dir_.write("cut.edl", "TITLE: X\nFCM: DROP FRAME\n" + event(1, "A001", "V", "01:00:00:00", "01:00:01:31") +
                            event(2, "B001", "V", "01:00:00:00", "01:00:01:00"));
  ASSERT_EQ(reeldb({"import", "cut.edl"}).code, 0);
  output({"create", "C001"});
  output({"delete", "C001", "-y"});
  output({"set", "A001", "bin=Shelf 4", "0=rain"});
  ASSERT_EQ(reeldb({"rename", "A001", "A002"}).code, 0);
  setStored(path("projects/main.reels"), "B001", "bin", "\xff shelf");
  output({"project", "rate", "29.97"});
  const std::string state = output({"export", "--json"});
  dir_.write("main.json", state);
  EXPECT_EQ(output({"project", "new", "copy", "--from", "main.json"}).substr(0, 29), "project copy made (29.97 fps)");
  fs::remove(path("projects/main.reels"));
  output({"project", "new", "main", "--from", "main.json"});
  EXPECT_EQ(output({"export", "--json"}), state);
  EXPECT_EQ(json({"history", "--json"}).at("commits"), Json::array());
  EXPECT_EQ(reeldb({"project", "check"}).code, 0);
  // It goes on as any other project.
  dir_.write("more.edl", event(1, "B001", "V", "07:00:00:00", "07:00:01:00"));
  EXPECT_EQ(json({"import", "more.edl", "--json"}).at("files").at(0).at("shots_added"), 1);
  output({"undo"});
  EXPECT_EQ(output({"export", "--json"}), state);
}

TEST_F(Export, EverySampleComesBackByteForByteFromJson)
{
  const char* const folder = std::getenv("REELDB_SAMPLES");
  if (!folder || listsIn(folder).empty())
    GTEST_SKIP() << "REELDB_SAMPLES names no folder with lists";
  for (const fs::path& file : listsIn(folder))
    reeldb({"import", file.string()});
  output({"export", "--json", "-o", "main.json"});
  fs::remove(path("projects/main.reels"));
  output({"project", "new", "main", "--from", "main.json"});
  EXPECT_EQ(output({"export", "--json"}), readFile("main.json"));
}

TEST_F(Export, JsonHasTheHistoryIfAskedTo)
{
  output({"create", "A001"});
  EXPECT_FALSE(json({"export", "--json"}).contains("history"));
  const Json all = json({"export", "--json", "--history"});
  EXPECT_EQ(all.at("history"), json({"history", "--json"}).at("commits"));
  EXPECT_EQ(all.at("history").at(0).at("created"), 1);
  dir_.write("main.json", all.dump());
  output({"project", "new", "copy", "--from", "main.json"});
  EXPECT_EQ(json({"-p", "copy", "history", "--json"}).at("commits"), Json::array());
}

TEST_F(Export, JsonWithReelsAloneIsNotAProject)
{
  dir_.write("main.json", output({"export", "--json", "--reels"}));
  expectRefusal({"project", "new", "copy", "--from", "main.json"},
                "main.json: JSON: not of the expected form (it has no state; reeldb export --json without --reels "
                "writes one)",
                3);
}

TEST_F(Export, EmptyProjectMakesListsThatCanBeRead)
{
  for (const char* format : {"--edl", "--ale"})
    expectSameAfter({format}, "main");
}

TEST_F(Export, ReelWithoutAShotIsReported)
{
  output({"create", "A001"});
  const ProcessResult result = reeldb({"export", "--edl"});
  EXPECT_EQ(result.code, 0);
  EXPECT_EQ(result.err, "reeldb: 1 reel without a shot: not in the list\n");
}

TEST_F(Export, OldNamesAndSpellingsOfShotsDoNotSplitAReel)
{
  dir_.write("a.edl", event(1, "A001", "V", "01:00:00:00", "01:00:01:00"));
  dir_.write("b.edl", event(1, "a001", "V", "02:00:00:00", "02:00:01:00"));
  ASSERT_EQ(reeldb({"import", "a.edl", "b.edl"}).code, 0);
  const std::string list = listOf({"--edl"});
  EXPECT_EQ(list.find("a001"), std::string::npos) << list;
  EXPECT_EQ(list.find("REEL MAP"), std::string::npos) << list;
}

TEST_F(Export, TextWithControlCharactersIsWrittenWithoutThemAndReported)
{
  dir_.write("cut.edl", event(1, "A001", "V", "01:00:00:00", "01:00:01:00"));
  ASSERT_EQ(reeldb({"import", "cut.edl"}).code, 0);
  respell(path("projects/main.reels"), "A001", "A\t0\n1");
  for (const char* format : {"--edl", "--ale"}) {
    const ProcessResult result = reeldb({"export", format, "--force", "-o", "out"});
    EXPECT_EQ(result.code, 0);
    EXPECT_EQ(result.err, eachShotOnce + "reeldb: 'A 0\\n1': written as 'A 0 1' (a list cannot hold it as it is)\n");
    const Json report = json({"import", "--dry-run", "--json", "out"});
    EXPECT_EQ(report.at("files").at(0).at("created"), Json::array());
    EXPECT_EQ(report.at("files").at(0).at("names").at(0).at("match"), "same-name");
  }
}

TEST_F(Export, ShotWithAnImpossibleTimecodeIsLeftOutAndReported)
{
  dir_.write("cut.edl", event(1, "A001", "V", "01:00:00:00", "01:00:01:00") + "* FROM CLIP NAME: ONE\n" +
                            event(2, "B001", "V", "01:00:00:00", "01:00:01:00"));
  ASSERT_EQ(reeldb({"import", "cut.edl"}).code, 0);
  setStored(path("projects/main.reels"), "A001", "source_in", "soon");
  const ProcessResult result = reeldb({"export", "--edl"});
  EXPECT_EQ(result.code, 4);
  EXPECT_EQ(result.err,
            eachShotOnce +
                "reeldb: clip 'ONE' of reel 'A001': left out (source in 'soon' is not a timecode: not hh:mm:ss:ff)\n");
  EXPECT_NE(result.out.find("\n001  B001 "), std::string::npos);
}

TEST_F(Export, ReelWithASpecialMeaningInListsIsReported)
{
  dir_.write("cut.edl", event(1, "A001", "V", "01:00:00:00", "01:00:01:00"));
  ASSERT_EQ(reeldb({"import", "cut.edl"}).code, 0);
  ASSERT_EQ(reeldb({"rename", "A001", "BARS"}).code, 0);
  EXPECT_EQ(reeldb({"export", "--edl"}).err,
            eachShotOnce +
                "reeldb: reel 'BARS': an import will not read it as a reel (its meaning in lists: colour bars)\n");
}

TEST_F(Export, FileIsWrittenOnceAndReplacedOnlyByForce)
{
  dir_.write("cut.edl", event(1, "A001", "V", "01:00:00:00", "01:00:01:00"));
  ASSERT_EQ(reeldb({"import", "cut.edl"}).code, 0);
  EXPECT_EQ(listOf({"--edl", "-o", "out.edl"}), "out.edl: 1 shot\n");
  EXPECT_EQ(readFile("out.edl"), listOf({"--edl"}));
  dir_.write("out.edl", "mine");
  expectRefusal({"export", "--edl", "-o", "out.edl"}, "out.edl: already exists (--force replaces it)");
  EXPECT_EQ(readFile("out.edl"), "mine");
  EXPECT_EQ(listOf({"--edl", "--output", "out.edl", "--force"}), "out.edl: 1 shot\n");
  EXPECT_EQ(readFile("out.edl"), listOf({"--edl"}));
}

TEST_F(Export, ForceReplacesWhatALinkNames)
{
  dir_.write("mine", "mine");
  fs::create_symlink("mine", path("link"));
  EXPECT_EQ(output({"export", "--csv", "-o", "link", "--force"}), "link: 0 shots\n");
  EXPECT_TRUE(fs::is_symlink(path("link")));
  EXPECT_EQ(readFile("mine"), output({"export", "--csv"}));
}

TEST_F(Export, FileThatIsReplacedKeepsItsPermissions)
{
  output({"export", "--csv", "-o", "mine"});
  const fs::perms usual = fs::status(path("mine")).permissions();
  EXPECT_EQ(usual & fs::perms::owner_all, fs::perms::owner_read | fs::perms::owner_write);
  for (const fs::perms kept : {fs::perms::owner_read | fs::perms::owner_write, fs::perms::owner_all}) {
    ASSERT_NE(kept, usual);
    fs::permissions(path("mine"), kept);
    output({"export", "--csv", "-o", "mine", "--force"});
    EXPECT_EQ(fs::status(path("mine")).permissions(), kept);
  }
}

TEST_F(Export, FileThatCannotBeWrittenLeavesNothingBehind)
{
  expectRefusal({"export", "--csv", "-o", "none/out"}, "none/out: cannot be made (No such file or directory)", 3);
  expectRefusal({"export", "--csv", "-o", "projects", "--force"}, "projects: not a regular file (a folder)");
  expectRefusal({"export", "--csv", "-o", "/dev/null", "--force"}, "/dev/null: not a regular file (a device)");
  expectRefusal({"export", "--csv", "-o", ""}, "\"\": cannot be made (No such file or directory)", 3);
  std::set<std::string> files;
  for (const auto& entry : fs::directory_iterator(dir_.path()))
    files.insert(entry.path().filename().string());
  EXPECT_EQ(files.count("out"), 0u);
  for (const std::string& name : files)
    EXPECT_EQ(name.find("out."), std::string::npos) << name;
}

TEST_F(Export, MoreReelsThanNumbersAreRefused)
{
  std::string list;
  for (int i = 1; i <= 999; ++i)
    list += event(i, numbered("TAPE", static_cast<std::size_t>(i)), "V", "01:00:00:00", "01:00:01:00");
  dir_.write("cut.edl", list);
  ASSERT_EQ(reeldb({"import", "cut.edl"}).code, 0);
  expectRefusal({"export", "--edl", "--reel-length", "3", "-o", "out"},
                "export: nothing written (999 reels: a reel field of 3 has fewer names)");
  EXPECT_FALSE(fs::exists(path("out")));
}

TEST_F(Export, OptionsThatDoNotFitAreUsageErrors)
{
  const std::string which = " (use one of --edl, --ale, --otio, --csv, --json)";
  expectRefusal({"export"}, "export: no format given" + which, 2);
  expectRefusal({"export", "--edl", "--ale"}, "export: more than one format given" + which, 2);
  expectRefusal({"export", "--edl", "--reel-length", "7"}, "--reel-length 7: invalid (use one of 3, 6, 8, 32, 129)", 2);
  expectRefusal({"export", "--ale", "--reel-length", "8"}, "export: --reel-length needs --edl", 2);
  expectRefusal({"export", "--edl", "--reels"}, "export: --reels needs --csv or --json (lists contain shots)", 2);
  for (const Words& words : {Words{"--csv"}, Words{"--edl"}, Words{"--json", "--reels"}}) {
    Words command = {"export", "--history"};
    command.insert(command.end(), words.begin(), words.end());
    expectRefusal(command, "export: --history needs --json and excludes --reels, --reel, --where and a list", 2);
  }
  expectRefusal({"export", "--csv", "--force"}, "export: --force needs -o FILE", 2);
}

} // namespace
