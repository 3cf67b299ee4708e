// SPDX-License-Identifier: Apache-2.0
#include <chrono>
#include <csignal>
#include <optional>
#include <thread>

#include "cli/command_fixture.h"

using namespace reeldb_tests;

namespace {

class Watch : public FacilityTest {
protected:
  /// Begins to watch, and waits until it says so.
  void watch(Words words = {})
  {
    words.insert(words.begin(), {reeldbProgram, "watch"});
    dir_.write("said", "");
    ProcessSetting setting = setting_;
    setting.outputFile = path("said");
    watcher_.emplace(words, setting);
    expectSaid("");
  }

  /// Waits until the watch has said these lines, and no others, since it began.
  void expectSaid(const std::string& lines)
  {
    const std::string expected = "watching (end with Ctrl-C)\n" + lines;
    for (int i = 0; i < 600 && readFile("said").size() < expected.size(); ++i)
      std::this_thread::sleep_for(std::chrono::milliseconds(50));
    EXPECT_EQ(readFile("said"), expected);
  }

  /// What a watch of three seconds says in JSON while something is done.
  template <class Action>
  std::string watchInJson(Action action)
  {
    ProcessResult result;
    std::thread watcher([&] { result = reeldb({"watch", "--json", "--for", "3"}); });
    std::this_thread::sleep_for(std::chrono::milliseconds(1200));
    action();
    watcher.join();
    EXPECT_EQ(result.code, 0) << result.err;
    EXPECT_EQ(result.err, "");
    return result.out;
  }

  std::optional<RunningProcess> watcher_;
};

TEST_F(Watch, ReportsCommitsOfOtherProcessesAndKeepsNobodyWaiting)
{
  output({"create", "R1"});
  watch();
  output({"create", "R2"});
  expectSaid("new R2\ndatabase\n");
}

TEST_F(Watch, ReportsChangedAndDeletedReels)
{
  output({"create", "R1"});
  watch();
  output({"set", "R1", "bin=x"});
  expectSaid("changed R1\ndatabase\n");
  reeldb({"delete", "R1", "--yes"});
  expectSaid("changed R1\ndatabase\ngone R1\ndatabase\n");
}

TEST_F(Watch, ReportsARenamedReelAsTheSameReel)
{
  output({"create", "R1"});
  EXPECT_EQ(watchInJson([this] {
              reeldb({"rename", "R1", "R2"});
            }),
            "{\"what\":\"renamed\",\"reel\":\"R2\",\"from\":\"R1\"}\n{\"what\":\"database\",\"reel\":\"\"}\n");
}

TEST_F(Watch, OneReelOfInterestIsFollowedAndOthersAreLeftOut)
{
  output({"create", "R1"});
  output({"create", "R2"});
  watch({"--reel", "r2"});
  std::string said;
  const auto expectAfter = [&](const Words& words, const std::string& line) {
    EXPECT_EQ(reeldb(words).code, 0);
    said += line;
    expectSaid(said);
  };
  expectAfter({"set", "R1", "bin=x"}, "");
  expectAfter({"rename", "R2", "R3"}, "renamed R3 from R2\n");
  expectAfter({"set", "R3", "bin=x"}, "changed R3\n");
  expectAfter({"create", "R2"}, "");
  expectAfter({"delete", "R3", "--yes"}, "gone R3\n");
  expectAfter({"set", "R2", "bin=x"}, "");
  expectAfter({"create", "r3"}, "new r3\n");
  expectAfter({"set", "R3", "bin=y"}, "changed r3\n");
}

TEST_F(Watch, ReelOfInterestComesBackByAnotherNamedLikeIt)
{
  output({"create", "R1"});
  output({"create", "R2"});
  watch({"--reel", "R1"});
  reeldb({"delete", "R1", "--yes"});
  expectSaid("gone R1\n");
  reeldb({"rename", "R2", "R1"});
  expectSaid("gone R1\nrenamed R1 from R2\n");
}

TEST_F(Watch, UnknownReelIsRefused)
{
  output({"create", "R1"});
  const ProcessResult result = reeldb({"watch", "--reel", "r 1", "--for", "5"});
  EXPECT_EQ(result.code, 1);
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.err, "reeldb: r 1: no such reel (but there is R1)\n");
}

TEST_F(Watch, EndsInOrderWhenAsked)
{
  watch();
  watcher_->signal(SIGINT);
  const ProcessResult result = watcher_->wait();
  EXPECT_EQ(result.code, 0);
  EXPECT_EQ(result.signal, 0);
}

} // namespace
