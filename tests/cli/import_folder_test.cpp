// SPDX-License-Identifier: Apache-2.0
//
// Many files in one import: folders, standard input, files that cannot be read, totals.
#include <fstream>

#include "cli/command_fixture.h"

namespace reeldb_tests {
namespace {

class ImportFolder : public FacilityTest {
protected:
  void SetUp() override
  {
    FacilityTest::SetUp();
    dir_.write("lists/b.edl", event(1, "B001", "V", "01:00:00:00", "01:00:01:00"));
    dir_.write("lists/a.edl", event(1, "A001", "V", "01:00:00:00", "01:00:01:00") +
                                  event(2, "A001", "V", "01:00:00:00", "01:00:01:00"));
    dir_.write("lists/deep/c.edl", event(1, "B001", "V", "01:00:05:00", "01:00:06:00"));
    dir_.write("lists/deep/invoice.pdf", "%PDF-1.4\n");
    dir_.write("lists/note.txt", "milk, bread\n");
  }
};

const std::string pdf = "lists/deep/invoice.pdf: not a cut list, a log file or a timeline (it is a PDF document)";
const std::string note =
    "lists/note.txt: not a cut list, a log file or a timeline (it has no event line and no Heading or Column)";

TEST_F(ImportFolder, SkipsWhatItCannotReadAndEndsWithTotals)
{
  const ProcessResult result = reeldb({"import", "--recursive", "--skip-unreadable", "lists"});
  EXPECT_EQ(result.code, 4);
  EXPECT_EQ(result.err, "reeldb: " + pdf + "\nreeldb: " + note + "\n");
  EXPECT_EQ(result.out, "lists/a.edl (edl): 2 clips, 1 shot added, 1 repeated in the list\n"
                        "  1 reel created: A001\n"
                        "lists/b.edl (edl): 1 clip, 1 shot added\n"
                        "  1 reel created: B001\n"
                        "lists/deep/c.edl (edl): 1 clip, 1 shot added\n"
                        "  1 reel already there\n"
                        "total: 3 lists (3 new), 4 clips, 3 shots added, 2 reels created, 2 files skipped\n");
  EXPECT_EQ(reeldb({"import", "-r", "--skip-unreadable", "lists"}).out,
            "lists/a.edl (edl): 2 clips, unchanged\n"
            "lists/b.edl (edl): 1 clip, unchanged\n"
            "lists/deep/c.edl (edl): 1 clip, unchanged\n"
            "total: 3 lists (3 unchanged), 4 clips, 0 shots added, 2 files skipped\n"
            "nothing new: the project stays as it was\n");
  output({"undo"}); // all files were one import
  EXPECT_EQ(reelIds(), Words{});
}

TEST_F(ImportFolder, JsonHasTheSkippedFilesAndTheTotals)
{
  const ProcessResult result = reeldb({"import", "-r", "--skip-unreadable", "--json", "lists"});
  EXPECT_EQ(result.code, 4);
  const Json report = Json::parse(result.out);
  EXPECT_EQ(report.at("files").size(), 3u);
  ASSERT_EQ(report.at("skipped").size(), 2u);
  EXPECT_EQ(report.at("skipped").at(0).at("file"), "lists/deep/invoice.pdf");
  EXPECT_EQ(report.at("skipped").at(0).at("reason"), "not a cut list, a log file or a timeline (it is a PDF document)");
  EXPECT_EQ(report.at("totals"), Json::parse(R"({"lists": 3, "lists_new": 3, "lists_replaced": 0, "lists_unchanged": 0,
      "clips": 4, "shots_added": 3, "shots_there": 0, "shots_repeated": 1, "reels_created": 2, "reels_changed": 0, "warnings": 0, "rejected": 0, "skipped": 2})"));
}

TEST_F(ImportFolder, WithoutRecursiveGivesItsOwnFilesOnly)
{
  EXPECT_EQ(json({"import", "--json", "lists/deep/c.edl"}).at("totals").at("lists"), 1);
  const ProcessResult result = reeldb({"import", "-q", "--skip-unreadable", "lists"});
  EXPECT_EQ(result.err, "reeldb: " + note + "\n");
  EXPECT_EQ(result.out, "total: 2 lists (2 new), 3 clips, 2 shots added, 1 reel created, 1 file skipped\n");
}

TEST_F(ImportFolder, WithAFileThatCannotBeReadChangesNothing)
{
  expectRefusal({"import", "-r", "lists"},
                pdf + "\nreeldb: " + note +
                    "\nreeldb: import: nothing imported (2 of 5 files cannot be read; --skip-unreadable imports the "
                    "others)",
                3);
  expectRefusal({"import", "--skip-unreadable", "lists/note.txt", "lists/deep/invoice.pdf"},
                note + "\nreeldb: " + pdf + "\nreeldb: import: nothing imported (2 of 2 files cannot be read)", 3);
}

TEST_F(ImportFolder, QuietReportHasRejectedLinesAndTotals)
{
  dir_.write("bad.edl", event(1, "C001", "V", "01:00:00:00", "01:00:01:00") +
                            "002  C001  V  C  01:00:99:00 01:00:01:00 01:00:00:00 01:00:01:00\n");
  const ProcessResult result = reeldb({"import", "--quiet", "bad.edl", "lists/b.edl"});
  EXPECT_EQ(result.code, 4);
  EXPECT_EQ(result.out.substr(0, result.out.find("    line 2: ")), "bad.edl:\n  1 line rejected:\n");
  EXPECT_EQ(result.out.substr(result.out.find("total: ")),
            "total: 2 lists (2 new), 2 clips, 2 shots added, 2 reels created, 1 line rejected\n");
}

TEST_F(ImportFolder, DryRunSaysWhatWouldBe)
{
  EXPECT_EQ(output({"import", "-q", "--dry-run", "lists/a.edl", "lists/b.edl"}),
            "total: 2 lists (2 new), 3 clips, 2 shots would be added, 2 reels would be created\n"
            "dry run: the project stays as it was\n");
}

TEST_F(ImportFolder, StandardInputIsAList)
{
  ProcessSetting typed = setting_;
  typed.input = readFile("lists/b.edl");
  EXPECT_EQ(reeldb({"import", "-"}, typed).out, "standard input (edl): 1 clip, 1 shot added\n  1 reel created: B001\n");
  EXPECT_EQ(json({"list-file", "list", "--json"}).at(0).at("file"), "standard input");
  typed.input = "milk, bread\n";
  const ProcessResult refused = reeldb({"import", "-"}, typed);
  EXPECT_EQ(refused.code, 3);
  EXPECT_EQ(refused.err,
            "reeldb: standard input: not a cut list, a log file or a timeline (it has no event line and no "
            "Heading or Column)\n");
}

} // namespace
} // namespace reeldb_tests
