// SPDX-License-Identifier: Apache-2.0
//
// Whatever is in a project and in the arguments: what is printed is UTF-8, and steers no terminal.
#include <sstream>

#include "cli/command_fixture.h"
#include "cli/stored_field.h"
#include "reelhost/display_text.h"

using namespace reeldb_tests;

namespace {

const std::string odd = "O\x1b[31m\xff\xc2\x9b\xe2\x80\xae\nX";
const std::string oddShown = "O\\x1b[31m\\xff\\u009b\\u202e\\nX";

class Printing : public FacilityTest {
protected:
  void SetUp() override
  {
    FacilityTest::SetUp();
    dir_.write("cut.edl", event(1, "A001", "V", "01:00:00:00", "01:00:01:00") + "* FROM CLIP NAME: ONE\n" +
                              event(2, "B001", "V", "01:00:00:00", "01:00:01:00"));
    ASSERT_EQ(reeldb({"import", "cut.edl"}).code, 0);
    output({"set", "A001", "bin=x", "0=x", "label-map=pal9pin"});
    for (const char* key : {"profile_bin_name", "reel_userfield0", "reel_labelmapping", "tracks", "source_in"})
      setStored(path("projects/main.reels"), "A001", key, odd);
    respell(path("projects/main.reels"), "A001", odd);
    dir_.write("state.toml", "[system]\nreel_userfield0 = [79, 27, 255, 10]\n[last_reel]\n1 = [27, 255]\n");
    dir_.write("labelmaps/o\x1b\xff.toml", "x");
  }

  void expectHarmless(const Words& words)
  {
    expectHarmless(reeldb(words), "");
    expectHarmlessOnATerminal(words);
  }

  std::string expectHarmlessOnATerminal(const Words& words)
  {
    ProcessSetting terminal = setting_;
    terminal.terminal = true;
    const ProcessResult result = reeldb(words, terminal);
    expectHarmless(result, "\r"); // the terminal's own, before each line feed
    return result.out;
  }

  static void expectHarmless(const ProcessResult& result, const std::string& lineEnd)
  {
    EXPECT_EQ(result.signal, 0);
    std::istringstream lines(result.out + result.err);
    int count = 0;
    for (std::string line; std::getline(lines, line); ++count)
      EXPECT_EQ(line, reelhost::displayText(line.substr(0, line.size() - lineEnd.size())) + lineEnd);
    EXPECT_GT(count, 0);
  }
};

TEST_F(Printing, OddReelIsShownWithEscapesByEveryCommand)
{
  const std::string text = output({"show", odd});
  EXPECT_NE(text.find("reel            " + oddShown + "\n"), std::string::npos) << text;
  EXPECT_NE(text.find("bin             " + oddShown + "\n"), std::string::npos) << text;
  const std::vector<Words> commands = {{"list"},
                                       {"list", "--json"},
                                       {"show", odd},
                                       {"show", odd, "--json"},
                                       {"shots", odd},
                                       {"shots", odd, "--json"},
                                       {"reels-of", "--reel", odd},
                                       {"which", odd},
                                       {"which", odd, "--json"},
                                       {"diff", "--gone", "cut.edl"},
                                       {"diff", "--gone", "cut.edl", "--json"},
                                       {"export", "--json"},
                                       {"device", "list"},
                                       {"device", "list"},
                                       {"device", "show", "0"},
                                       {"device", "show", "1", "--json"},
                                       {"device", "live", "1"},
                                       {"device", "live", "1", "--json"},
                                       {"label-map", "for", "--device", "0"},
                                       {"label-map", "for", "--device", "0", "--json"},
                                       {"device", "reels", "0", "--why"},
                                       {"device", "reels", "0", "--why", "--json"},
                                       {"label-map", "list"},
                                       {"label-map", "list", "--json"},
                                       {"label-map", "for", odd, "--device", "0"},
                                       {"field", "list"},
                                       {"field", "list", "--json"},
                                       {"copy", odd, "B001"},
                                       {"set", odd, "bin="},
                                       {"rename", "--dry-run", odd, "X"},
                                       {"delete", "--dry-run", odd},
                                       {"delete", "--dry-run", odd, "--keep", odd},
                                       {"project", "check"},
                                       {"project", "check", "--json"},
                                       {"watch", "--reel", odd, "--for", "0"}};
  for (const Words& words : commands) {
    SCOPED_TRACE(words[0]);
    expectHarmless(words);
    Words traced = words;
    traced.insert(traced.begin(), "--trace");
    expectHarmless(traced);
  }
  for (const Words& words : std::vector<Words>{
           {"delete", odd, "--yes"}, {"undelete"}, {"rename", odd, "X"}, {"project", "list"}, {"project", "compact"}}) {
    SCOPED_TRACE(words[0]);
    expectHarmless(words);
  }
}

/// Elsewhere it is a file's content, which is handed through as it is.
TEST_F(Printing, OddShotIsExportedWithEscapesToATerminal)
{
  setStored(path("projects/main.reels"), odd, "source_in", "01:00:00:00"); // otherwise lists leave it out
  for (const Words& words : std::vector<Words>{{"export", "--edl", "--reel-length", "129"},
                                               {"export", "--ale"},
                                               {"export", "--csv"},
                                               {"export", "--csv", "--reels"}}) {
    SCOPED_TRACE(testing::PrintToString(words));
    const std::string shown = expectHarmlessOnATerminal(words);
    const std::string handedOn = reeldb(words).out;
    EXPECT_NE(handedOn.find("\xc2\x9b"), std::string::npos) << handedOn;
    EXPECT_NE(shown.find("\\u009b"), std::string::npos) << shown;
  }
}

TEST_F(Printing, OddArgumentIsShownWithEscapesInEveryMessage)
{
  const std::vector<Words> commands = {{odd},
                                       {"list", odd},
                                       {"--" + odd},
                                       {"-C", odd, "list"},
                                       {"-p", odd, "list"},
                                       {"create", odd},
                                       {"create", "x", "--device", odd},
                                       {"rename", "B001", odd},
                                       {"set", "B001", odd},
                                       {"set", "B001", "bin=" + odd},
                                       {"set", "B001", odd + "=x"},
                                       {"field", "name", "0=" + odd},
                                       {"reels-of", "--file", odd},
                                       {"reels-of", "x" + odd},
                                       {"label-map", "check", odd},
                                       {"project", "new", odd},
                                       {"project", "new", "x", "--rate", odd},
                                       {"watch", "--for", odd},
                                       {"import", odd},
                                       {"which", odd},
                                       {"diff", odd},
                                       {"export", "--csv", "-o", odd + "/x"},
                                       {"export", "--edl", "--reel-length", odd},
                                       {"init", odd}};
  for (const Words& words : commands) {
    SCOPED_TRACE(words[0]);
    expectHarmless(words);
  }
}

} // namespace
