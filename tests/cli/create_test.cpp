// SPDX-License-Identifier: Apache-2.0
#include <sstream>

#include "cli/command_fixture.h"
#include "cli/stored_field.h"

using namespace reeldb_tests;

namespace {

class Create : public FacilityTest {};

TEST_F(Create, MakesAReelThatIsAvailableAndNotInhibited)
{
  EXPECT_EQ(output({"create", "R1"}), "R1\n");
  const Json made = reel("R1");
  EXPECT_EQ(made.at("available"), true);
  EXPECT_EQ(made.at("inhibit"), false);
  EXPECT_EQ(made.at("label_mapping"), "");
  EXPECT_EQ(made.at("shots"), 0);
}

TEST_F(Create, OuterBlanksAreNotStored)
{
  EXPECT_EQ(output({"create", "  R1 "}), "R1\n");
  EXPECT_EQ(reelIds(), Words{"R1"});
}

TEST_F(Create, ReelThatIsThereInOtherCaseIsRefused)
{
  output({"create", "R1"});
  expectRefusal({"create", "r1"}, "\"R1\": already exists");
}

TEST_F(Create, ReelThatIsThereWithoutTheBlanksIsRefused)
{
  output({"create", "R1"});
  expectRefusal({"create", " r1 "}, "\"r1\": already exists");
  EXPECT_EQ(reelIds(), Words{"R1"});
}

TEST_F(Create, BlankIdentifierIsRefused)
{
  expectRefusal({"create", "   "}, "\"   \": not a valid reel name (it is blank)");
  expectRefusal({"create", ""}, "\"\": not a valid reel name (it is blank)");
}

TEST_F(Create, StarIsRefused)
{
  expectRefusal({"create", "A*B"}, "\"A*B\": not a valid reel name (a star denotes generated material)");
}

TEST_F(Create, IdentifierThatCannotBeHandedOnIsAUsageError)
{
  for (const auto& [id, shown] : std::vector<std::pair<std::string, std::string>>{
           {"a\nb", "a\\nb"}, {"\x01", "\\x01"}, {"R\x7f", "R\\x7f"}, {"\xc2\x9b", "\\u009b"}, {"\tR1", "\\tR1"}})
    expectRefusal({"create", id}, "\"" + shown + "\": not a valid reel name (it holds a control character)", 2);
  expectRefusal({"create", "R\xff"}, "\"R\\xff\": not a valid reel name (it is not UTF-8)", 2);
  EXPECT_EQ(output({"create", "M\xc3\x9cLLER \xd7\x90\xe2\x80\x8f"}), "M\xc3\x9cLLER \xd7\x90\\u200f\n");
}

TEST_F(Create, NameThatCutListsUseForNoReelIsTakenWithAWarning)
{
  const auto expectWarning = [this](const std::string& id, const std::string& meaning) {
    const ProcessResult result = reeldb({"create", id});
    EXPECT_EQ(result.code, 0);
    EXPECT_EQ(result.out, id + "\n");
    EXPECT_EQ(result.err,
              "reeldb: " + id +
                  ": stored, but import cannot find a reel by this name (its meaning in cut lists: " + meaning + ")\n");
  };
  expectWarning("BL", "black");
  expectWarning("Black", "black");
  expectWarning("BARS", "colour bars");
  expectWarning("gen", "generated");
  expectWarning("AX", "a source without a tape");
  EXPECT_EQ(reelIds().size(), 5u);
  // None of the list's events is this reel.
  dir_.write("cut.edl", event(1, "BL", "V", "00:00:00:00", "00:00:01:00"));
  EXPECT_EQ(reeldb({"import", "cut.edl"}).code, 0);
  EXPECT_EQ(reel("BL").at("shots"), 0);
}

TEST_F(Create, DefaultTypeThatIsNotListedIsStoredWithAWarning)
{
  dir_.write("devicedata/reeltype.dat", "Live:VideoChannels=1\n");
  const ProcessResult result = reeldb({"create", "R1"});
  EXPECT_EQ(result.code, 0);
  EXPECT_EQ(result.out, "R1\n");
  EXPECT_EQ(result.err,
            "reeldb: Tape 2ch: not in the reel type catalogue (stored anyway; reeldb type list shows the catalogue)\n");
  EXPECT_EQ(reel("R1").at("type"), "Tape 2ch");
}

TEST_F(Create, ReportThatIsLostSaysThatTheReelIsMade)
{
  ProcessSetting full = setting_;
  full.outputFile = "/dev/full";
  const ProcessResult result = reeldb({"create", "R1"}, full);
  EXPECT_EQ(result.code, 3);
  EXPECT_EQ(result.err,
            "reeldb: standard output: cannot be written (No space left on device; the changes are stored)\n");
  EXPECT_EQ(reelIds(), Words{"R1"});
}

TEST_F(Create, IdentifierOf2047BytesIsWholeAndOf2048IsRefused)
{
  const std::string longest(2047, 'x');
  output({"create", longest});
  EXPECT_EQ(reelIds(), Words{longest});
  const ProcessResult result = reeldb({"create", longest + "x"});
  EXPECT_EQ(result.code, 1);
  EXPECT_NE(result.err.find("not a valid reel name (it has 2048 bytes; at most 2047)"), std::string::npos)
      << result.err;
}

TEST_F(Create, DeviceGivesItsAudioInputsAsChannels)
{
  const Json device = json({"device", "list", "--json"}).at(0);
  ASSERT_GT(device.at("audio_inputs"), 0);
  // Only a type that the catalogue lists could add further ones.
  const Json made = json({"create", "R1", "--json", "--device", device.at("number").dump()});
  EXPECT_GE(made.at("audio_channels"), device.at("audio_inputs"));
}

TEST_F(Create, UnknownDeviceIsRefusedWithThoseThatAre)
{
  const ProcessResult result = reeldb({"create", "R1", "--device", "99"});
  EXPECT_EQ(result.code, 1);
  EXPECT_EQ(result.err.compare(0, 48, "reeldb: 99: no such device (this facility has: 0"), 0) << result.err;
  EXPECT_EQ(reelIds(), Words{});
}

TEST_F(Create, DeviceThatIsNotANumberIsAUsageError)
{
  for (const std::string number : {"x", "1x", "-1", "", "0x1", "99999999999"}) {
    const ProcessResult result = reeldb({"create", "R1", "--device", number});
    EXPECT_EQ(result.code, 2) << number;
    EXPECT_EQ(result.err, "reeldb: \"" + number + "\": not a device number\n");
  }
}

/// The operations that follow one another in the trace, from the thread check on.
Words creationCalls(const std::string& trace)
{
  Words calls;
  std::istringstream in(trace);
  for (std::string line; std::getline(in, line);)
    if (!calls.empty() || line.compare(0, 6, "co_pid") == 0)
      calls.push_back(line);
  return calls;
}

TEST_F(Create, TraceShowsTheHostCallsInTheirOrder)
{
  const ProcessResult result = reeldb({"--trace", "create", " R1 "});
  EXPECT_EQ(result.code, 0);
  EXPECT_EQ(result.out, "R1\n");
  const Words calls = creationCalls(result.err);
  ASSERT_FALSE(calls.empty()) << result.err;

  // Each change of the new log stands between the opening and the closing of a handle of its own.
  const Words expected = {
      "co_pid()",
      "EditManager::makeNewEdit(",
      "paddedResourceStrW(10043",
      "Edit::set_reelid(",
      "Edit::set_entire_medium(",
      "Edit::make_original(",
      "Edit::setName(",
      "Edit::redetermineLogType(",
      "configb::set(", // available
      "EditManager::ProjOpts()",
      "Edit::setChangeDescription(",
      "projdb::search(", // the list is rebuilt
      "EditModifier::~EditModifier(",
  };
  std::size_t at = 0;
  for (const std::string& call : expected) {
    while (at < calls.size() && calls[at].find(call) == std::string::npos)
      ++at;
    ASSERT_LT(at, calls.size()) << call << " is missing or comes too early in\n" << result.err;
    ++at;
  }
  const auto line = [&calls](const std::string& start) {
    for (const std::string& call : calls)
      if (call.compare(0, start.size(), start) == 0)
        return call;
    return std::string();
  };
  EXPECT_NE(line("Edit::set_reelid(").find("0, \"R1\")"), std::string::npos) << result.err;
  EXPECT_NE(line("Edit::setName(").find("\"Reel R1\""), std::string::npos) << result.err;
  EXPECT_NE(line("Edit::setChangeDescription(").find("59, true"), std::string::npos) << result.err;
}

TEST_F(Create, TraceIsUtf8WithoutControlCharactersWhateverIsInTheProject)
{
  output({"create", "R1"});
  respell(path("projects/main.reels"), "R1", "a\x1b[2J\xff\n");
  const ProcessResult result = reeldb({"--trace", "create", "R2"});
  EXPECT_EQ(result.code, 0);
  EXPECT_NE(result.err.find("\"a\\x1b[2J\\xff\\n\""), std::string::npos) << result.err;
  EXPECT_EQ(result.err.find('\x1b'), std::string::npos);
  EXPECT_EQ(result.err.find('\xff'), std::string::npos);
}

TEST_F(Create, TraceIsOffUnlessAskedFor)
{
  EXPECT_EQ(reeldb({"create", "R1"}).err, "");
}

} // namespace
