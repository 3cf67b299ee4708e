// SPDX-License-Identifier: Apache-2.0
#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <optional>
#include <regex>
#include <sstream>
#include <thread>

#include <sqlite3.h>

#include "cli/command_fixture.h"
#include "standalone/store/support.h"

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
    for (int i = 0; i < 1500 && readFile("said").empty(); ++i)
      std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }

  /// Waits until the watch has said these lines, and no others, since it began; without the commits at their ends.
  void expectSaid(const std::string& lines)
  {
    const std::string expected = "watching (end with Ctrl-C)\n" + lines;
    for (int i = 0; i < 600 && said().size() < expected.size(); ++i)
      std::this_thread::sleep_for(std::chrono::milliseconds(50));
    EXPECT_EQ(said(), expected) << readFile("said");
  }
  std::string said() { return withoutCommits(readFile("said")); }
  static std::string withoutCommits(const std::string& lines)
  {
    static const std::regex commit(R"( \(revision [^\n]*\)\n)");
    return std::regex_replace(lines, commit, "\n");
  }

  /// What a watch of three seconds says in JSON while something is done.
  template <class Action>
  std::vector<Json> watchInJson(Action action)
  {
    ProcessResult result;
    std::thread watcher([&] { result = reeldb({"watch", "--json", "--for", "3"}); });
    std::this_thread::sleep_for(std::chrono::milliseconds(1200));
    action();
    watcher.join();
    EXPECT_EQ(result.code, 0) << result.err;
    EXPECT_EQ(result.err, "");
    std::vector<Json> events;
    std::istringstream lines(result.out);
    for (std::string line; std::getline(lines, line);)
      events.push_back(Json::parse(line));
    return events;
  }

  std::optional<RunningProcess> watcher_;
};

TEST_F(Watch, ReportsCommitsOfOtherProcessesAndKeepsNobodyWaiting)
{
  output({"create", "R1"});
  watch();
  output({"create", "R2"});
  expectSaid("new R2\n");
}

TEST_F(Watch, ReportsChangedAndDeletedReels)
{
  output({"create", "R1"});
  watch();
  output({"set", "R1", "bin=x"});
  expectSaid("changed R1: bin: x (was -)\n");
  reeldb({"delete", "R1", "--yes"});
  expectSaid("changed R1: bin: x (was -)\ngone R1\n");
}

TEST_F(Watch, ReportsARenamedReelAsTheSameReel)
{
  output({"create", "R1"});
  const std::vector<Json> events = watchInJson([this] { reeldb({"rename", "R1", "R2"}); });
  ASSERT_EQ(events.size(), 2u);
  EXPECT_EQ(events[0].at("what"), "renamed");
  EXPECT_EQ(events[0].at("reel"), "R2");
  EXPECT_EQ(events[0].at("from"), "R1");
  EXPECT_EQ(events[1].at("what"), "database");
  EXPECT_EQ(events[1].at("reel"), "");
  for (const Json& event : events) {
    EXPECT_EQ(event.at("commit").at("revision"), 2);
    EXPECT_EQ(event.at("commit").at("command"), "reeldb rename R1 R2");
  }
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
  expectAfter({"set", "R3", "bin=x"}, "changed R3: bin: x (was -)\n");
  expectAfter({"create", "R2"}, "");
  expectAfter({"delete", "R3", "--yes"}, "gone R3\n");
  expectAfter({"set", "R2", "bin=x"}, "");
  expectAfter({"create", "r3"}, "new r3\n");
  expectAfter({"set", "R3", "bin=y"}, "changed r3: bin: y (was -)\n");
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

TEST_F(Watch, LineNamesTheCommit)
{
  dir_.write("facility.toml", readFile("facility.toml") + "\n[history]\nnames = false\n");
  watch();
  output({"create", "R1"});
  expectSaid("new R1\n");
  EXPECT_EQ(readFile("said"), "watching (end with Ctrl-C)\nnew R1 (revision 1: reeldb create R1)\n");
}

TEST_F(Watch, CommitThatChangesSeveralReelsIsALineOfTotals)
{
  output({"create", "A001"});
  dir_.write("cut.edl", event(1, "A001", "V", "01:00:00:00", "01:00:01:00") +
                            event(2, "B001", "V", "01:00:00:00", "01:00:01:00") +
                            event(3, "C001", "V", "01:00:00:00", "01:00:01:00"));
  watch();
  reeldb({"import", "cut.edl"});
  expectSaid("2 new reels, 1 reel changed, 3 new shots, 1 list changed\n");
  EXPECT_EQ(withoutCommits(output({"watch", "--since", "1", "--all"})),
            "new B001\nnew C001\nchanged A001: shots: 1 (was 0)\n");
}

TEST_F(Watch, CommitThatChangesNoReelIsReportedToo)
{
  dir_.write("cut.edl", event(1, "A001", "V", "01:00:00:00", "01:00:01:00"));
  reeldb({"import", "cut.edl"});
  watch();
  output({"project", "rate", "30"});
  output({"list-file", "remove", "cut.edl"});
  output({"undo"});
  dir_.write("same.edl", "TITLE: SAME\n" + event(1, "A001", "V", "01:00:00:00", "01:00:01:00"));
  reeldb({"import", "same.edl"});
  const std::string said = "options of the project changed\ngone A001\nnew A001\n1 list changed\n";
  expectSaid(said);
  EXPECT_EQ(withoutCommits(output({"watch", "--since", "1", "--all"})), said);
  const std::string lines = output({"watch", "--since", "1", "--json"});
  EXPECT_EQ(lines.find("{\"what\":\"database\",\"reel\":\"\",\"commit\":{\"revision\":2,"), 0u) << lines;
}

TEST_F(Watch, OtherNamesOfAReelAreAField)
{
  output({"create", "R1"});
  watch({"--reel", "R1"});
  output({"alias", "R1", "ZZ"});
  expectSaid("changed R1: aliases: ZZ (was -)\n");
  output({"alias", "R1", "--remove", "ZZ"});
  expectSaid("changed R1: aliases: ZZ (was -)\nchanged R1: aliases: - (was ZZ)\n");
}

TEST_F(Watch, SinceWithAReelReportsAllReelsThatHadTheName)
{
  output({"create", "R1"});
  reeldb({"delete", "--yes", "R1"});
  output({"create", "R1"});
  EXPECT_EQ(withoutCommits(output({"watch", "--since", "0", "--reel", "R1"})), "new R1\ngone R1\nnew R1\n");
  EXPECT_EQ(withoutCommits(output({"watch", "--since", "1", "--reel", "r1"})), "gone R1\nnew R1\n");
  output({"rename", "R1", "R2"});
  EXPECT_EQ(withoutCommits(output({"watch", "--since", "2", "--reel", "R1"})), "new R1\nrenamed R2 from R1\n");
  EXPECT_EQ(output({"watch", "--since", "4", "--reel", "R2"}), "");
  EXPECT_EQ(reeldb({"watch", "--since", "4", "--reel", "R1"}).code, 1);
  watch({"--since", "3", "--follow", "--reel", "R1"});
  output({"set", "R2", "bin=x"}); // the reel that was R1
  expectSaid("renamed R2 from R1\nchanged R2: bin: x (was -)\n");
}

TEST_F(Watch, CommitWhoseReelsAreRemovedForGoodIsReportedByItsNumbers)
{
  output({"create", "R1"});
  reeldb({"delete", "--yes", "R1"});
  output({"project", "compact"});
  EXPECT_EQ(withoutCommits(output({"watch", "--since", "0"})), "1 new, 0 changed, 0 deleted (since removed for good)\n"
                                                               "0 new, 0 changed, 1 deleted (since removed for good)\n"
                                                               "no reel changed\n");
}

TEST_F(Watch, EveryCommitIsReportedOnceAndInOrder)
{
  watch();
  std::string lines;
  for (int i = 0; i < 20; ++i) {
    output({"create", "R" + std::to_string(i)});
    lines += "new R" + std::to_string(i) + "\n";
  }
  expectSaid(lines);
}

TEST_F(Watch, CommitOfAnotherProgramIsReportedWithoutItsOrigin)
{
  output({"create", "R1"});
  output({"create", "R2"});
  watch();
  store_tests::runSql(dir_.path() / "projects" / "main.reels",
                      "BEGIN; UPDATE logs SET reel_id = 'R3' WHERE number = 1; DELETE FROM logs WHERE number = 2;"
                      "DELETE FROM fields WHERE log = 2; COMMIT");
  expectSaid("1 reel gone, 1 reel renamed\n");
  output({"set", "R3", "bin=x"});
  expectSaid("1 reel gone, 1 reel renamed\nchanged R3: bin: x (was -)\n");
}

TEST_F(Watch, CommitIsReportedWhileTheNextProcessWrites)
{
  output({"create", "R1"});
  watch();
  sqlite3* holder = nullptr;
  ASSERT_EQ(sqlite3_open(path("projects/main.reels").c_str(), &holder), SQLITE_OK);
  EXPECT_EQ(sqlite3_exec(holder,
                         "BEGIN IMMEDIATE; UPDATE logs SET reel_id = 'R2' WHERE number = 1; COMMIT; BEGIN IMMEDIATE",
                         nullptr, nullptr, nullptr),
            SQLITE_OK);
  expectSaid("renamed R2 from R1\n");
  sqlite3_close(holder);
}

TEST_F(Watch, CommitRightBehindTheWriteOfAnotherProgramHidesNothing)
{
  output({"create", "R1"});
  output({"create", "R2"});
  watch();
  watcher_->signal(SIGSTOP); // it finds both at once
  store_tests::runSql(dir_.path() / "projects" / "main.reels", "UPDATE logs SET reel_id = 'R3' WHERE number = 1");
  output({"set", "R2", "bin=x"});
  watcher_->signal(SIGCONT);
  expectSaid("1 reel renamed, 1 reel changed\n");
}

// Somebody takes the write-ahead log away while the watch has it open.
TEST_F(Watch, RemovedLogLosesWhatItHeldAndNothingThatComesAfterIt)
{
  output({"create", "R1"});
  watch();
  output({"create", "R2"});
  expectSaid("new R2\n");
  for (const char* ending : {"-wal", "-shm"})
    std::filesystem::remove(path("projects/main.reels") + ending);
  expectSaid("new R2\ngone R2\n");
  output({"create", "R3"});
  expectSaid("new R2\ngone R2\nnew R3\n");
  watcher_->signal(SIGINT); // it does not write the removed log into the project
  EXPECT_EQ(watcher_->wait().code, 0);
  const Json reels = json({"list", "--json"});
  ASSERT_EQ(reels.size(), 2u);
  EXPECT_EQ(reels[1].at("id"), "R3");
}

TEST_F(Watch, SinceARevisionReportsWhatWasStoredAndEnds)
{
  output({"create", "R1"});
  output({"set", "R1", "bin=x"});
  output({"rename", "R1", "R2"});
  EXPECT_EQ(withoutCommits(output({"watch", "--since", "0"})),
            "new R1\nchanged R1: bin: x (was -)\nrenamed R2 from R1\n");
  EXPECT_EQ(withoutCommits(output({"watch", "--since", "2"})), "renamed R2 from R1\n");
  EXPECT_EQ(output({"watch", "--since", "3"}), "");
  EXPECT_EQ(withoutCommits(output({"watch", "--since", "0", "--reel", "r2"})),
            "new R1\nchanged R1: bin: x (was -)\nrenamed R2 from R1\n");
}

TEST_F(Watch, SinceARevisionAndFollowMissNothing)
{
  output({"create", "R1"});
  watch({"--since", "0", "--follow"});
  expectSaid("new R1\n");
  output({"create", "R2"});
  expectSaid("new R1\nnew R2\n");
}

TEST_F(Watch, RevisionThatIsUnknownOrForgottenIsRefused)
{
  output({"create", "R1"});
  output({"create", "R2"});
  ProcessResult result = reeldb({"watch", "--since", "9"});
  EXPECT_EQ(result.code, 1);
  EXPECT_EQ(result.err, "reeldb: watch: no revision 9 (the newest is 2)\n");
  result = reeldb({"watch", "--since", "yesterday"});
  EXPECT_EQ(result.code, 2);
  EXPECT_EQ(result.err, "reeldb: --since \"yesterday\": not a revision (reeldb history lists them)\n");
  output({"project", "compact", "--before", "2"});
  EXPECT_EQ(withoutCommits(output({"watch", "--since", "1"})), "new R2\nno reel changed\n"); // nothing of it is missing
  result = reeldb({"watch", "--since", "0"});
  EXPECT_EQ(result.code, 1);
  EXPECT_EQ(result.err,
            "reeldb: watch: the history does not reach back to revision 0 (it begins with 2; use --since 1 or a later "
            "one)\n");
}

TEST_F(Watch, QuietProjectWakesNobody)
{
  output({"create", "R1"});
  watch();
  output({"create", "R2"});
  expectSaid("new R2\n");
  const auto timesItWaited = [this] {
    std::ifstream status("/proc/" + std::to_string(watcher_->id()) + "/status");
    for (std::string line; std::getline(status, line);)
      if (line.rfind("voluntary_ctxt_switches:", 0) == 0)
        return line;
    return std::string("no process");
  };
  std::this_thread::sleep_for(std::chrono::milliseconds(500)); // what it has to do for the commit
  const std::string before = timesItWaited();
  EXPECT_NE(before, "no process");
  std::this_thread::sleep_for(std::chrono::seconds(2));
  EXPECT_EQ(timesItWaited(), before);
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
