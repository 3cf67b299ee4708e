// SPDX-License-Identifier: Apache-2.0
#include <chrono>
#include <csignal>
#include <thread>

#include "cli/command_fixture.h"

using namespace reeldb_tests;

namespace {

class Watch : public FacilityTest {
protected:
  /// What a watch of so many seconds says while something is done.
  template <class Action>
  std::string watching(Words words, Action action)
  {
    ProcessResult result;
    words.insert(words.begin(), "watch");
    words.insert(words.end(), {"--for", "3"});
    std::thread watcher([&] { result = reeldb(words); });
    std::this_thread::sleep_for(std::chrono::milliseconds(1200));
    action();
    watcher.join();
    EXPECT_EQ(result.code, 0) << result.err;
    EXPECT_EQ(result.err, "");
    return result.out;
  }
};

TEST_F(Watch, HearsOfOtherProcessesCommitsAndKeepsNobodyWaiting)
{
  output({"create", "R1"});
  const std::string said = watching({}, [this] { output({"create", "R2"}); });
  EXPECT_EQ(said, "watching (end with Ctrl-C)\nnew R2\ndatabase\n");
}

TEST_F(Watch, TellsWhatChangedAndWhatIsGone)
{
  output({"create", "R1"});
  EXPECT_EQ(watching({},
                     [this] {
                       output({"set", "R1", "bin=x"});
                     }),
            "watching (end with Ctrl-C)\nchanged R1\ndatabase\n");
  EXPECT_EQ(watching({"--json"},
                     [this] {
                       reeldb({"delete", "R1", "--yes"});
                     }),
            "{\"what\":\"gone\",\"reel\":\"R1\"}\n{\"what\":\"database\",\"reel\":\"\"}\n");
}

TEST_F(Watch, OneReelOfInterestLeavesOthersOut)
{
  const std::string said = watching({"--reel", "r2"}, [this] {
    output({"create", "R1"});
    output({"create", "R2"});
  });
  EXPECT_EQ(said.find("R1"), std::string::npos) << said;
  EXPECT_NE(said.find("new R2\n"), std::string::npos) << said;
}

TEST_F(Watch, EndsInOrderWhenAsked)
{
  RunningProcess process({reeldbProgram, "watch"}, setting_);
  std::this_thread::sleep_for(std::chrono::seconds(1));
  process.signal(SIGINT);
  const ProcessResult result = process.wait();
  EXPECT_EQ(result.code, 0);
  EXPECT_EQ(result.signal, 0);
}

} // namespace
