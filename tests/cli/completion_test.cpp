// SPDX-License-Identifier: Apache-2.0
//
// The completions that shells receive, and what each installed shell makes of them.
#include <sstream>

#include "cli/command_fixture.h"

using namespace reeldb_tests;

namespace {

class Completion : public FacilityTest {
protected:
  void SetUp() override
  {
    FacilityTest::SetUp();
    output({"create", "Tape 7"});
    output({"create", "T:9"});
    output({"create", "Ärmel"});
    asked_ = setting_;
    asked_.environment["REELDB_COMPLETE"] = "1";
  }

  std::string answer(const Words& words)
  {
    const ProcessResult result = reeldb(words, asked_);
    EXPECT_EQ(result.code, 0);
    return result.out;
  }

  /// The words without their descriptions; the first says where they come from.
  Words candidates(const Words& words)
  {
    Words found;
    std::istringstream in(answer(words));
    for (std::string line; std::getline(in, line);)
      found.push_back(line.substr(0, line.find('\t')));
    return found;
  }

  ProcessSetting asked_;
};

TEST_F(Completion, StartOfCommandGivesCommandsWithTheirDescriptions)
{
  EXPECT_EQ(answer({"sho"}), "words\nshow\tShow all fields of one reel\n"
                             "shots\tList the shots recorded from reels\n"
                             "shot\tMove or delete single shots\n");
  EXPECT_EQ(candidates({"device", "l"}), (Words{"words", "list", "live"}));
}

TEST_F(Completion, HelpIsFollowedByCommandsAndVerbs)
{
  EXPECT_EQ(candidates({"help", "undel"}), (Words{"words", "undelete"}));
  EXPECT_EQ(candidates({"help", "label-map", "f"}), (Words{"words", "for"}));
  EXPECT_EQ(candidates({"help", "list", ""}), Words{"words"});
}

TEST_F(Completion, UserFieldsGiveTheirNumbers)
{
  EXPECT_EQ(candidates({"field", "name", ""}), (Words{"words", "0=", "1=", "2=", "3=", "4=", "5="}));
}

TEST_F(Completion, UnknownCommandGivesNothing)
{
  EXPECT_EQ(candidates({"sing", ""}), Words{"words"});
}

TEST_F(Completion, HyphenGivesOptionsOfTheCommandAndOfAll)
{
  EXPECT_EQ(candidates({"undelete", "-"}),
            (Words{"words", "--help", "--list", "--json", "--facility", "--project", "--trace"}));
  EXPECT_EQ(candidates({"--ver"}), (Words{"words", "--version"}));
  EXPECT_EQ(candidates({"list", "--ver"}), Words{"words"});
}

TEST_F(Completion, NothingLeftToSayGivesOptions)
{
  EXPECT_EQ(candidates({"type", "list", ""}),
            (Words{"words", "--help", "--json", "--facility", "--project", "--trace"}));
  EXPECT_EQ(candidates({"type", "list", "--", ""}), Words{"words"});
}

TEST_F(Completion, ReelGivesIdentifiersWithTheirTypes)
{
  output({"set", "T:9", "type=Tape 4ch"});
  EXPECT_EQ(answer({"show", "T"}), "words\nTape 7\tTape 2ch\nT:9\tTape 4ch\n");
  EXPECT_EQ(candidates({"rename", "Tape 7", ""}), Words{"words"}) << "the new name is the user's";
  EXPECT_EQ(candidates({"copy", "Tape 7", "\xC3\x84"}), (Words{"words", "Ärmel"}));
  EXPECT_EQ(candidates({"delete", "Tape 7", "T:"}), (Words{"words", "T:9"})) << "as many as one likes";
  EXPECT_EQ(candidates({"reels-of", "--reel", "Tape"}), (Words{"words", "Tape 7"}));
  EXPECT_EQ(candidates({"reels-of", "--reel=Tape"}), (Words{"words", "--reel=Tape 7"}));
}

TEST_F(Completion, ReelOfTheProjectThatWasChosen)
{
  output({"project", "new", "other"});
  output({"-p", "other", "create", "B1"});
  for (const Words& chosen :
       {Words{"-p", "other"}, Words{"-pother"}, Words{"--project", "other"}, Words{"--project=other"}}) {
    Words line = chosen;
    line.insert(line.end(), {"show", ""});
    EXPECT_EQ(candidates(line), (Words{"words", "B1"})) << chosen[0];
  }
  EXPECT_EQ(candidates({"show", "-p", "other", ""}), (Words{"words", "B1"}));
  EXPECT_EQ(candidates({"-p", ""}), (Words{"words", "main", "other"}));
  EXPECT_EQ(candidates({"-p", "gone", "show", ""}), Words{"words"});
}

TEST_F(Completion, ReelOfTheProjectThatTheEnvironmentNames)
{
  output({"project", "new", "film"});
  output({"-p", "film", "create", "Film 1"});
  asked_.environment["REELDB_PROJECT"] = "film";
  EXPECT_EQ(candidates({"show", ""}), (Words{"words", "Film 1"}));
  EXPECT_EQ(candidates({"-p", "main", "show", "Tape"}), (Words{"words", "Tape 7"}));
}

TEST_F(Completion, RateOfAProject)
{
  EXPECT_EQ(candidates({"project", "rate", "5"}), (Words{"words", "50", "59.94"}));
  EXPECT_EQ(candidates({"import", "--type", "Tape"}), (Words{"words", "Tape 2ch", "Tape 4ch"}));
}

TEST_F(Completion, RateOfANewFacilityNeedsNone)
{
  asked_.folder = "/";
  EXPECT_EQ(candidates({"init", "--rate", "23"}), (Words{"words", "23.98"}));
  EXPECT_EQ(candidates({"import", "--match", ""}), (Words{"words", "all", "exact"}));
  EXPECT_EQ(candidates({"reels-of", "--names", "c"}), (Words{"words", "clip"}));
}

TEST_F(Completion, DeviceGivesNumbersWithTheirNames)
{
  EXPECT_EQ(answer({"device", "show", ""}), "words\n0\tDeck 1\n1\tCamera 1\n");
  EXPECT_EQ(candidates({"create", "A1", "--device", ""}), (Words{"words", "0", "1"}));
}

TEST_F(Completion, FieldGivesNamesAndThenTheirValues)
{
  EXPECT_EQ(candidates({"set", "T:9", ""}),
            (Words{"words", "type=", "available=", "inhibit=", "label-map=", "bin=", "last-device=", "user-field.0=",
                   "user-field.1=", "user-field.2=", "user-field.3=", "user-field.4=", "user-field.5="}));
  EXPECT_EQ(candidates({"set", "T:9", "type=T"}), (Words{"words", "type=Tape 2ch", "type=Tape 4ch"}));
  EXPECT_EQ(candidates({"set", "T:9", "bin=x", "inhibit="}), (Words{"words", "inhibit=yes", "inhibit=no"}));
  EXPECT_EQ(candidates({"set", "T:9", "bin=x", "--if", "inhibit="}), (Words{"words", "inhibit=yes", "inhibit=no"}));
  EXPECT_EQ(candidates({"set", "T:9", "last-device=C"}), (Words{"words", "last-device=Camera 1"}));
  EXPECT_EQ(candidates({"set", "T:9", "label-map=palt"}), (Words{"words", "label-map=paltofd"}));
}

TEST_F(Completion, LabelMapAndFrameRateGiveTheirNames)
{
  EXPECT_EQ(candidates({"label-map", "check", "pal9"}), (Words{"words", "pal9pin"}));
  EXPECT_EQ(candidates({"project", "new", "x", "--rate", "2"}), (Words{"words", "25", "29.97", "24", "23.98"}));
}

TEST_F(Completion, FilesAndFoldersAreLeftToTheShell)
{
  EXPECT_EQ(answer({"reels-of", "--file", ""}), "files\n");
  EXPECT_EQ(answer({"import", "c"}), "files\n");
  EXPECT_EQ(answer({"export", "--edl", "-o", ""}), "files\n");
  EXPECT_EQ(answer({"init", ""}), "folders\n");
  EXPECT_EQ(answer({"-C", ""}), "folders\n");
}

TEST_F(Completion, WithoutFacilityCommandsAreKnownAndNamesAreNot)
{
  asked_.folder = "/";
  const ProcessResult commands = reeldb({"undel"}, asked_);
  EXPECT_EQ(commands.out, "words\nundelete\tBring the last deletion back\n");
  EXPECT_EQ(commands.err, "");
  const ProcessResult reels = reeldb({"show", ""}, asked_);
  EXPECT_EQ(reels.out, "words\n");
  EXPECT_EQ(reels.err, "");
  EXPECT_EQ(reeldb({"-C", dir_.path().string(), "show", "T:"}, asked_).out, "words\nT:9\tTape 2ch\n");
}

TEST_F(Completion, NothingIsChanged)
{
  const std::string before = readFile("projects/main.reels");
  candidates({"delete", "T:9", "--yes", ""});
  EXPECT_EQ(readFile("projects/main.reels"), before);
}

// --- The shells ----------------------------------------------------------------------------------

class Shells : public Completion {
protected:
  void SetUp() override
  {
    Completion::SetUp();
    shell_ = setting_;
    shell_.environment["PATH"] = std::filesystem::path(reeldbProgram).parent_path().string() + ":/usr/bin:/bin";
    shell_.environment["LC_ALL"] = "C.UTF-8";
    shell_.environment["HOME"] = dir_.path().string();
  }

  bool isHere(const std::string& shell)
  {
    return runProcess({"sh", "-c", "command -v " + shell + " >/dev/null"}, shell_).code == 0;
  }

  ProcessSetting shell_;
};

const std::string scripts = REELDB_COMPLETIONS;

TEST_F(Shells, BashQuotesWordsAndKeepsWhatItCutThemAt)
{
  if (!isHere("bash"))
    GTEST_SKIP() << "no bash here";
  output({"create", "it's"});
  output({"create", "say\"so"});
  std::filesystem::create_directory_symlink(".", path("a b"));
  // compopt works while a key is pressed only; here it says what it was asked for.
  dir_.write("try.bash", "source " + scripts + R"(/reeldb.bash
compopt() { options+=" $*"; }
try() {
  COMP_WORDS=(reeldb "$@") COMP_CWORD=$# options='' COMPREPLY=()
  _reeldb reeldb
  printf '<%s>' "${COMPREPLY[@]}"
  echo "$options"
}
try undel
try show 'Tape\ '
try show '"Tape '
try show "'T:"
try show '"say'
try show "'it"
try show it
try -C '"a b"' show Tape
try -C '~/a\ b' show Tape
try -C '$HOME/"a b"' show Tape
try -C '$(touch ran)' show ''
try -C '>' : made show ''
try show T : ''
try reels-of --reel = T
try set T : 9 ava
try set T : 9 type = Au
try --facility = "$PWD" -p m
try import facility.t
try init proj
)");
  EXPECT_EQ(runProcess({"bash", "--norc", "try.bash"}, shell_).out, "<undelete>\n"
                                                                    "<Tape\\ 7>\n"
                                                                    "<Tape 7>\n"
                                                                    "<T:9>\n"
                                                                    "<say\\\"so>\n"
                                                                    "<>\n"
                                                                    "<it\\'s>\n"
                                                                    "<Tape\\ 7>\n"
                                                                    "<Tape\\ 7>\n"
                                                                    "<Tape\\ 7>\n"
                                                                    "<>\n"
                                                                    "<>\n"
                                                                    "<9>\n"
                                                                    "<Tape\\ 7><T:9>\n"
                                                                    "<available=> -o nospace\n"
                                                                    "<Audio\\ only>\n"
                                                                    "<main>\n"
                                                                    "<facility.toml> -o filenames\n"
                                                                    "<projects> -o filenames\n");
  EXPECT_FALSE(std::filesystem::exists(path("ran"))) << "a command was run";
  EXPECT_FALSE(std::filesystem::exists(path(":made"))) << "a redirection was done";
}

TEST_F(Shells, BashCompletesWhatIsTypedAtATerminal)
{
  if (!isHere("bash"))
    GTEST_SKIP() << "no bash here";
  shell_.terminal = true;
  shell_.input = "source " + scripts + "/reeldb.bash\nreeldb show Ta\t | head -1\nexit\n";
  const std::string screen = runProcess({"bash", "--norc", "--noprofile", "-i"}, shell_).out;
  EXPECT_NE(screen.find("reel            Tape 7"), std::string::npos) << screen;
}

TEST_F(Shells, FishDescribesWords)
{
  if (!isHere("fish"))
    GTEST_SKIP() << "no fish here";
  dir_.write("try.fish", "source " + scripts + R"(/reeldb.fish
complete -C'reeldb device sh'
complete -C'reeldb device show '
complete -C'reeldb -C ~/ show T:'
complete -C'reeldb undel'
complete -C'reeldb show Tape\ '
complete -C'reeldb show T:'
complete -C'reeldb set T:9 type=Au'
complete -C'reeldb -p m'
complete -C'reeldb import facility.t'
complete -C'reeldb init proj'
)");
  const ProcessResult result = runProcess({"fish", "--no-config", "try.fish"}, shell_);
  EXPECT_EQ(result.out, "show\tShow one device\n"
                        "0\tDeck 1\n"
                        "1\tCamera 1\n"
                        "T:9\tTape 2ch\n"
                        "undelete\tBring the last deletion back\n"
                        "Tape 7\tTape 2ch\n"
                        "T:9\tTape 2ch\n"
                        "type=Audio only\n"
                        "main\n"
                        "facility.toml\n"
                        "projects/\tDirectory\n");
  EXPECT_EQ(result.err, "");
}

/// Each line completes to one that prints what is looked for.
TEST_F(Shells, ZshCompletesWhatIsTypedAtATerminal)
{
  if (!isHere("zsh"))
    GTEST_SKIP() << "no zsh here";
  output({"create", "say\"so"});
  output({"create", "back\\slash"});
  dir_.write("try.zsh", R"(zmodload zsh/zpty
zpty inner zsh -f -i
type() { # type KEYS: runs that line and prints what came out until it was done
  local shown
  zpty -w -n inner "$1; print do''ne"$'\n'
  zpty -r inner shown $'*\ndone\r*'
  print -r -- $shown
}
type "fpath=()" + scripts + R"( \$fpath); autoload -Uz compinit; compinit -u -D"
type $'reeldb undel\t --help'
type $'reeldb show Tape\\ \t'
type $'reeldb -C ~/ show T:\t'
type $'reeldb show "say\t'
type $'reeldb show back\t'
type $'reeldb set T:9 ava\tno'
type $'cat facility.t\t | grep -c default; reeldb import /dev/nul\t'
)");
  const std::string screen = runProcess({"zsh", "-f", "try.zsh"}, shell_).out;
  for (const char* const shown :
       {"Bring the last deletion back", "reel            Tape 7", "reel            T:9", "reel            say\"so",
        "reel            back\\slash", "T:9: available: no (was yes)", "/dev/null: "})
    EXPECT_NE(screen.find(shown), std::string::npos) << shown << "\n" << screen;
}

} // namespace
