// SPDX-License-Identifier: Apache-2.0
//
// The example panel at a terminal: it shows the reels, follows what the command does meanwhile, and ends on a key.
#include <poll.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>

#include "cli/command_fixture.h"

using namespace reeldb_tests;

namespace {

/// A program at a terminal of its own, 80 columns by 24 rows.
class AtTerminal {
public:
  AtTerminal(const std::string& program, const std::string& facility)
  {
    winsize size{};
    size.ws_row = 24;
    size.ws_col = 80;
    id_ = forkpty(&terminal_, nullptr, nullptr, &size);
    if (id_ == 0) {
      setenv("REELDB_FACILITY", facility.c_str(), 1);
      execl(program.c_str(), program.c_str(), static_cast<char*>(nullptr));
      _exit(127);
    }
  }
  ~AtTerminal()
  {
    if (id_ > 0 && waitpid(id_, nullptr, WNOHANG) == 0)
      kill(id_, SIGKILL);
    close(terminal_);
  }
  AtTerminal(const AtTerminal&) = delete;
  AtTerminal& operator=(const AtTerminal&) = delete;

  void type(const std::string& keys) { EXPECT_EQ(write(terminal_, keys.data(), keys.size()), ssize_t(keys.size())); }

  /// Whether the text comes up within half a minute. What was read up to it is done with.
  bool shows(const std::string& text)
  {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    for (;;) {
      const std::size_t at = seen_.find(text);
      if (at != std::string::npos) {
        seen_.erase(0, at + text.size());
        return true;
      }
      pollfd output{terminal_, POLLIN, 0};
      char bytes[4096];
      if (std::chrono::steady_clock::now() > end || poll(&output, 1, 30'000) <= 0)
        return false;
      const ssize_t count = read(terminal_, bytes, sizeof bytes);
      if (count <= 0)
        return false;
      seen_.append(bytes, static_cast<std::size_t>(count));
    }
  }

  /// Exit code, once it has ended; -1 when a signal ended it.
  int exitCode()
  {
    while (shows("\n")) { // a terminal that nobody reads would keep it from ending
    }
    int status = 0;
    waitpid(std::exchange(id_, -1), &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

private:
  int terminal_ = -1;
  pid_t id_ = -1;
  std::string seen_;
};

class ReelPanel : public FacilityTest {};

TEST_F(ReelPanel, ShowsTheReelsAndFollowsWhatOthersCommit)
{
  output({"create", "A001"});
  AtTerminal panel(REELDB_PANEL, dir_.path().string());
  ASSERT_TRUE(panel.shows("1 reels"));
  ASSERT_TRUE(panel.shows("A001"));
  output({"create", "B002"});
  ASSERT_TRUE(panel.shows("2 reels"));
  ASSERT_TRUE(panel.shows("B002"));
  output({"set", "B002", "available=no"});
  ASSERT_TRUE(panel.shows("(not at hand)"));
  output({"delete", "--yes", "A001"});
  ASSERT_TRUE(panel.shows("1 reels"));
  panel.type("q");
  EXPECT_EQ(panel.exitCode(), 0);
}

TEST_F(ReelPanel, WithoutAFacilitySaysSo)
{
  const ProcessResult result = runProcess({REELDB_PANEL}, setting_);
  EXPECT_EQ(result.code, 1);
  EXPECT_EQ(result.err, "reel-panel: REELDB_FACILITY: not a facility\n");
}

TEST_F(ReelPanel, ColumnsStandBelowEachOtherWhateverTheScript)
{
  output({"create", "A001"});
  output({"create", "CAF\xC3\x89 \xE6\x97\xA5\xE6\x9C\xAC"}); // two letters of it take two columns each
  AtTerminal panel(REELDB_PANEL, dir_.path().string());
  EXPECT_TRUE(panel.shows("A001" + std::string(22, ' ') + "Tape 2ch"));
  EXPECT_TRUE(panel.shows("\xE6\x97\xA5\xE6\x9C\xAC" + std::string(17, ' ') + "Tape 2ch"));
  panel.type("q");
  EXPECT_EQ(panel.exitCode(), 0);
}

TEST_F(ReelPanel, ScrollsWithTheArrows)
{
  for (int i = 0; i < 30; ++i)
    output({"create", numbered("R", static_cast<std::size_t>(100 + i))});
  AtTerminal panel(REELDB_PANEL, dir_.path().string());
  ASSERT_TRUE(panel.shows("R100"));
  panel.type("\x1b[B");
  ASSERT_TRUE(panel.shows("30 reels\r\nR101"));
  panel.type("q");
  EXPECT_EQ(panel.exitCode(), 0);
}

TEST_F(ReelPanel, WithoutAProjectSaysSo)
{
  const ProcessResult result = runProcess({REELDB_PANEL, "nosuch"}, [&] {
    ProcessSetting setting = setting_;
    setting.environment["REELDB_FACILITY"] = dir_.path().string();
    return setting;
  }());
  EXPECT_EQ(result.code, 1);
  EXPECT_NE(result.err.find("nosuch.reels"), std::string::npos) << result.err;
}

} // namespace
