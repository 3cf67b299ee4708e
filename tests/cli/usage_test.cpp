// SPDX-License-Identifier: Apache-2.0
//
// The command line itself: what is refused, how arguments come through, what the exit code is.
#include "cli/command_fixture.h"

using namespace reeldb_tests;

namespace {

class Usage : public FacilityTest {
protected:
  void expectUsageError(const Words& words, const std::string& message)
  {
    const ProcessResult result = reeldb(words);
    EXPECT_EQ(result.code, 2) << message;
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "reeldb: " + message + "\n");
  }
};

TEST_F(Usage, NoCommandIsAnError)
{
  expectUsageError({}, "no command given (see reeldb --help)");
  expectUsageError({"-p", "main"}, "no command given (see reeldb --help)");
}

TEST_F(Usage, UnknownCommandIsNamed)
{
  expectUsageError({"lsit"}, "\"lsit\": no such command (perhaps list; see reeldb --help)");
  expectUsageError({"project", "lsit"}, "project: \"lsit\": no such command (perhaps list; see reeldb project --help)");
  expectUsageError({"project"}, "project: no command given (see reeldb project --help)");
}

TEST_F(Usage, UnknownCommandIsNotReadAsAQuestion)
{
  for (const Words& words : std::vector<Words>{{"nosuch", "--help"}, {"nosuch", "-h"}, {"--help", "nosuch"}}) {
    const ProcessResult result = reeldb(words);
    EXPECT_EQ(result.code, 2);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "reeldb: \"nosuch\": no such command (see reeldb --help)\n");
  }
  EXPECT_EQ(reeldb({"project", "nosuch", "--help"}).err,
            "reeldb: project: \"nosuch\": no such command (see reeldb project --help)\n");
}

TEST_F(Usage, MistypedCommandIsGuessed)
{
  EXPECT_EQ(reeldb({"improt", "x.edl"}).err,
            "reeldb: \"improt\": no such command (perhaps import; see reeldb --help)\n");
  EXPECT_EQ(reeldb({"labelmap", "list"}).err,
            "reeldb: \"labelmap\": no such command (perhaps label-map; see reeldb --help)\n");
  EXPECT_EQ(reeldb({"project", "chek"}).err,
            "reeldb: project: \"chek\": no such command (perhaps check; see reeldb project --help)\n");
}

TEST_F(Usage, UnknownOptionIsNamed)
{
  expectUsageError({"--versoin"}, "\"--versoin\": no such option (see reeldb --help)");
  expectUsageError({"list", "--jsom"}, "list: \"--jsom\": not expected here (see reeldb list --help)");
  expectUsageError({"--bad", "list"}, "list: \"--bad\": not expected here (see reeldb list --help)");
  expectUsageError({"--json", "list"}, "list: \"--json\": not expected before the command (see reeldb list --help)");
}

TEST_F(Usage, ArgumentTooManyIsNamed)
{
  expectUsageError({"show", "R1", "R2"}, "show: \"R2\": not expected here (see reeldb show --help)");
  expectUsageError({"project", "new", "a", "b"},
                   "project new: \"b\": not expected here (see reeldb project new --help)");
}

TEST_F(Usage, MissingArgumentIsNamed)
{
  expectUsageError({"show"}, "show: ID is required (see reeldb show --help)");
  expectUsageError({"import", "--json"}, "import: FILE is required (see reeldb import --help)");
}

TEST_F(Usage, OptionWithoutValueIsNamed)
{
  expectUsageError({"list", "-p"}, "list: --project: a value is missing (see reeldb list --help)");
}

TEST_F(Usage, ProjectMayBeGivenWithAnEqualsSign)
{
  output({"project", "new", "other"});
  output({"create", "R9", "-p=other"});
  EXPECT_EQ(json({"list", "--json", "-p=other"}).size(), 1u);
  EXPECT_EQ(output({"create", "--", "-p=other"}), "-p=other\n");
}

TEST_F(Usage, OptionGivenTwiceIsNamed)
{
  expectUsageError({"list", "-C", ".", "-C", "."}, "list: -C: given more than once (-C DIR names the facility)");
  expectUsageError({"list", "-p", "a", "-p", "b"}, "list: --project: given more than once (see reeldb list --help)");
}

TEST_F(Usage, ControlCharactersOfAnArgumentAreEscaped)
{
  expectUsageError({"a\x1b[2J\n"}, "\"a\\x1b[2J\\n\": no such command (see reeldb --help)");
}

TEST_F(Usage, IdentifiersThatLookLikeSyntaxComeThroughByteForByte)
{
  const Words ids = {"list",  "[a,b]", "[]", "{}",          "++",      "%%", "a b", "--x",   "-",   "-5",
                     "\"q\"", "a=b",   "=",  "caf\xc3\xa9", "project", "1",  "#x",  "a\\nb", "x,y", "[a] b [c]"};
  for (const std::string& id : ids) {
    const ProcessResult result = reeldb({"create", "--json", "--", id});
    EXPECT_EQ(result.code, 0) << id << ": " << result.err;
    EXPECT_EQ(reeldb({"show", "--", id}).code, 0) << id;
  }
  EXPECT_EQ(json({"list", "--json"}).size(), ids.size());
  EXPECT_EQ(json({"show", "--json", "--", "[a,b]"}).at("id"), "[a,b]");
  EXPECT_EQ(json({"show", "--json", "++"}).at("id"), "++");
  EXPECT_EQ(json({"set", "--json", "{}", "bin=[x,y]"}).at("changed").at(0).at("to"), "[x,y]");
}

TEST_F(Usage, OptionsMayStandAnywhere)
{
  reeldb({"project", "new", "other"});
  reeldb({"create", "R9", "-p", "other"});
  EXPECT_EQ(json({"-p", "other", "list", "--json"}).at(0).at("id"), "R9");
  EXPECT_EQ(json({"list", "--json", "--project=other"}).at(0).at("id"), "R9");
  EXPECT_EQ(json({"--project", "other", "show", "--json", "R9"}).at("id"), "R9");
}

TEST_F(Usage, ProjectThatIsNotThereIsRefusedWithThoseThatAre)
{
  reeldb({"project", "new", "other"});
  const ProcessResult result = reeldb({"list", "-p", "nope"});
  EXPECT_EQ(result.code, 1);
  EXPECT_EQ(result.err, "reeldb: nope: no such project (this facility has: main, other)\n");
}

TEST_F(Usage, ProjectNameThatIsNotAFileNameIsRefused)
{
  for (const std::string name : {"../main", "a/b", ".", "..", ""}) {
    const ProcessResult result = reeldb({"list", "-p", name});
    EXPECT_EQ(result.code, 1) << name;
    EXPECT_NE(result.err, "") << name;
  }
}

TEST_F(Usage, StandardOutputThatCannotBeWrittenIsReported)
{
  ProcessSetting full = setting_;
  full.outputFile = "/dev/full";
  const ProcessResult result = reeldb({"type", "list"}, full);
  EXPECT_EQ(result.code, 3);
  EXPECT_EQ(result.err, "reeldb: standard output: cannot be written (No space left on device)\n");
}

TEST_F(Usage, FailureOfStandardOutputIsReportedOnceWithoutChangesThatWereNotMade)
{
  output({"create", "R1"});
  ProcessSetting full = setting_;
  full.outputFile = "/dev/full";
  const std::string lost = "reeldb: standard output: cannot be written (No space left on device";
  EXPECT_EQ(reeldb({"set", "R1", "available=yes"}, full).err, lost + ")\n");
  EXPECT_EQ(reeldb({"watch", "--for", "0"}, full).err, lost + ")\n");
  for (const Words& words : std::vector<Words>{{"set", "R1", "available=no"},
                                               {"rename", "R1", "R2"},
                                               {"field", "name", "0=Scene"},
                                               {"project", "new", "p2"},
                                               {"init", "deeper"},
                                               {"delete", "R2", "--yes"},
                                               {"undelete"},
                                               {"device", "live", "1"}}) {
    const ProcessResult result = reeldb(words, full);
    EXPECT_EQ(result.code, 3) << words[0];
    EXPECT_EQ(result.err, lost + "; the changes are stored)\n") << words[0];
  }
}

TEST_F(Usage, BrokenConfigurationIsExitCode3)
{
  dir_.write("facility.toml", "this is no TOML [");
  const ProcessResult result = reeldb({"list"});
  EXPECT_EQ(result.code, 3);
  EXPECT_NE(result.err.find("facility.toml"), std::string::npos) << result.err;
}

TEST_F(Usage, DamagedProjectIsExitCode3AndStaysAsItWas)
{
  const std::string garbage(100000, 'x');
  dir_.write("projects/main.reels", garbage);
  for (const Words& words : std::vector<Words>{{"list"}, {"create", "R1"}, {"set", "R1", "bin=x"}}) {
    const ProcessResult result = reeldb(words);
    EXPECT_EQ(result.code, 3) << words[0];
    EXPECT_NE(result.err.find("main.reels"), std::string::npos) << result.err;
  }
  EXPECT_EQ(readFile("projects/main.reels"), garbage);
}

TEST_F(Usage, VersionIsThatOfTheLibrary)
{
  EXPECT_EQ(output({"--version"}), "reeldb 14.0.0.0\n");
}

} // namespace
