// SPDX-License-Identifier: Apache-2.0
//
// One writer at a time: the next one waits, then says who is there. Readers wait for nobody.
#include <chrono>
#include <csignal>
#include <filesystem>
#include <optional>
#include <thread>

#include "cli/command_fixture.h"
#include "reelhost/history.h"
#include "standalone/store/support.h"

namespace fs = std::filesystem;
using namespace reeldb_tests;
using store_tests::Child;
using store_tests::errorOf;

namespace {

constexpr std::chrono::seconds patience{2}; // of the command, for a project that is held

class BusyProject : public FacilityTest {
protected:
  void SetUp() override
  {
    FacilityTest::SetUp();
    dir_.write("cut.edl", event(1, "A001", "V", "01:00:00:00", "01:00:01:00") +
                              event(2, "B001", "V", "01:00:00:00", "01:00:01:00"));
    output({"import", "cut.edl"});
  }

  /// A process that holds the project for writing until it is released.
  void hold()
  {
    holder_.emplace([this] {
      static const auto held = reelhost::makeSqliteStore(project()); // outlives the work
      held->begin(reelhost::Access::Write, store_tests::noPatience);
    });
    holder_->waitUntilDone();
    ASSERT_TRUE(isHeldBy(holder_->pid()));
  }

  /// The holder as the message to the next writer names it.
  bool isHeldBy(pid_t holder) const
  {
    const std::string error = errorOf(
        [this] { reelhost::makeSqliteStore(project())->begin(reelhost::Access::Write, store_tests::noPatience); });
    return error.rfind("Busy: ", 0) == 0 && error.find(heldBy(holder)) != std::string::npos;
  }

  static std::string heldBy(pid_t holder)
  {
    return "projects/main.reels: held by another process (pid " + std::to_string(holder) + ", ";
  }

  fs::path project() const { return path("projects/main.reels"); }

  std::optional<Child> holder_;
};

TEST_F(BusyProject, NextWriterWaitsAndThenSaysWhoHoldsIt)
{
  hold();
  const std::string before = output({"export", "--json"});
  for (const Words& words : std::vector<Words>{{"create", "X"}, {"import", "cut.edl"}, {"project", "compact"}}) {
    SCOPED_TRACE(words[0]);
    const auto begin = std::chrono::steady_clock::now();
    const ProcessResult result = reeldb(words);
    EXPECT_GE(std::chrono::steady_clock::now() - begin, patience);
    EXPECT_EQ(result.code, 1);
    EXPECT_EQ(result.out, "");
    EXPECT_NE(result.err.find(heldBy(holder_->pid())), std::string::npos) << result.err;
    EXPECT_EQ(result.err.substr(result.err.size() - 2), ")\n");
  }
  EXPECT_TRUE(isHeldBy(holder_->pid())); // as it was all the time
  EXPECT_EQ(output({"export", "--json"}), before);
}

TEST_F(BusyProject, NextWriterContinuesWhenItIsReleasedInTime)
{
  hold();
  RunningProcess writer({reeldbProgram, "create", "X"}, setting_);
  // It has come as far as the lock once it has the log's index open.
  const std::string index = project().native() + "-shm";
  const auto isThere = [&] {
    std::error_code ended;
    for (const auto& entry : fs::directory_iterator("/proc/" + std::to_string(writer.id()) + "/fd", ended))
      if (fs::equivalent(entry.path(), index, ended))
        return true;
    return false;
  };
  for (int i = 0; i < 10'000 && !isThere(); ++i)
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  EXPECT_TRUE(isThere());
  std::this_thread::sleep_for(patience / 10); // it waits by now, and for long
  EXPECT_EQ(holder_->waitForExit(), 0);
  EXPECT_EQ(writer.wait().code, 0);
  EXPECT_EQ(reelIds(), (Words{"A001", "B001", "X"}));
}

TEST_F(BusyProject, MayBeRead)
{
  hold();
  const std::vector<Words> commands = {{"list"},
                                       {"show", "A001"},
                                       {"shots", "A001"},
                                       {"export", "--json"},
                                       {"diff", "cut.edl"},
                                       {"import", "--dry-run", "cut.edl"},
                                       {"delete", "--dry-run", "A001"},
                                       {"project", "check"}};
  std::vector<std::string> answers;
  for (const Words& words : commands)
    answers.push_back(output(words));
  EXPECT_TRUE(isHeldBy(holder_->pid())); // as it was all the time
  EXPECT_EQ(holder_->waitForExit(), 0);
  for (std::size_t i = 0; i < commands.size(); ++i)
    EXPECT_EQ(output(commands[i]), answers[i]) << commands[i][0];
}

TEST_F(BusyProject, ReaderKeepsItsHistoryWhileAnotherForgetsIt)
{
  output({"set", "A001", "bin=1"});
  const auto reader = reelhost::makeSqliteStore(project());
  const auto oldestRevision = [&] {
    std::int64_t oldest = 0;
    reader->history()->readRevisions([&](const reelhost::Revision& revision) {
      oldest = revision.number;
      return true;
    });
    return oldest;
  };
  reader->begin(reelhost::Access::Read, store_tests::noPatience);
  EXPECT_EQ(output({"project", "compact", "--before", "2"}), "1 revision forgotten\n");
  EXPECT_EQ(oldestRevision(), 1);
  reader->end();
  reader->begin(reelhost::Access::Read, store_tests::noPatience);
  EXPECT_EQ(oldestRevision(), 2);
  reader->end();
}

TEST_F(BusyProject, ReadersDuringAnImportSeeWhatWasThereBeforeItOrAfterIt)
{
  std::string large;
  for (std::size_t i = 1; i <= 20000; ++i)
    large += event(static_cast<int>(i), numbered("T", i % 4000), "V", "01:00:00:00", "01:00:01:00");
  dir_.write("large.edl", large);
  RunningProcess writer({reeldbProgram, "import", "large.edl"}, setting_);
  for (int i = 0; i < 10'000 && !isHeldBy(writer.id()); ++i)
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  writer.signal(SIGSTOP); // in the middle of it
  ASSERT_TRUE(isHeldBy(writer.id()));
  EXPECT_EQ(reelIds().size(), 2u);
  EXPECT_TRUE(isHeldBy(writer.id()));
  writer.signal(SIGCONT);
  std::size_t reels = 2;
  for (int i = 0; i < 10; ++i) {
    const std::size_t now = reelIds().size();
    EXPECT_TRUE(now == reels || now == 4002u) << now;
    reels = now;
  }
  EXPECT_EQ(writer.wait().code, 0);
  EXPECT_EQ(reelIds().size(), 4002u);
}

} // namespace
