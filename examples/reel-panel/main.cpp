// SPDX-License-Identifier: Apache-2.0
//
// A panel with the project's reels that shows changes as they are made: an example of a client of the library.
//
//   REELDB_FACILITY=DIR reel-panel [PROJECT]
//
// It is a ReelDbClient: the library calls it when the reels change, and it only notes that it has to draw again. It
// holds no lock. It sleeps until a key is pressed or another program commits, and then shows what that did.
#include <poll.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <clocale>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cwchar>
#include <exception>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "ReelDbClient.h"
#include "ReelDbManager.h"
#include "reelhost/display_text.h"
#include "reelhost/feed.h"
#include "reelhost/inform_manager.h"

using reelhost::displayText;

namespace {

volatile std::sig_atomic_t ended = 0;
volatile std::sig_atomic_t resized = 0;

/// The start of a line that fits into @p columns, padded with blanks if @p fill is set. The text comes from
/// displayText, so it contains no control characters.
std::string fitted(const std::string& line, int columns, bool fill)
{
  std::string result;
  std::mbstate_t state{};
  for (std::size_t at = 0; at < line.size();) {
    wchar_t character = 0;
    const std::size_t bytes = std::mbrtowc(&character, line.data() + at, line.size() - at, &state);
    const int width = bytes <= line.size() ? std::max(0, wcwidth(character)) : -1;
    if (width < 0 || width > columns)
      break;
    result.append(line, at, bytes);
    at += bytes;
    columns -= width;
  }
  return fill ? result + std::string(static_cast<std::size_t>(columns), ' ') : result;
}

/// Receives changes to the reels. Handlers are called during changes, so they only take notes and read nothing.
class Panel final : public ReelDbClient {
public:
  void reelDbChanged(LightweightString<char>) override { stale_ = true; }
  void someReelDbRecChanged(LightweightString<char> id) override
  {
    stale_ = true;
    news_ = displayText(id.c_str());
  }

  bool stale() const { return stale_; }
  void redraw() { stale_ = true; }

  void scroll(int by) { first_ = std::max(0, first_ + by), stale_ = true; }

  void draw(const std::string& project)
  {
    stale_ = false;
    winsize size{};
    if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_row < 4 || size.ws_col == 0)
      size.ws_row = 24, size.ws_col = 80;
    std::vector<LightweightString<char>> ids;
    ReelDbManager& manager = *ReelDbManager::theReelDbManager();
    manager.getAllReelIds(ids, true);
    first_ = std::min(first_, std::max(0, static_cast<int>(ids.size()) - 1));

    std::string screen = "\x1b[H\x1b[2J"; // moves the cursor to the corner and clears the screen
    screen += fitted(displayText(project.c_str()) + ": " + std::to_string(ids.size()) + " reels" +
                         (news_.empty() ? "" : ", last changed: " + news_),
                     size.ws_col, false) +
              "\n";
    const int rows = size.ws_row - 2;
    for (int i = first_; i < std::min(static_cast<int>(ids.size()), first_ + rows); ++i) {
      const auto& id = ids[static_cast<std::size_t>(i)];
      ReelDbRec reel = manager.getReelInfo(id);
      const std::string line = fitted(displayText(id.c_str()), idColumns, true) + "  " +
                               displayText(reel.typeName().c_str()) + (reel.reelAvailable() ? "" : "  (not at hand)");
      screen += fitted(line, size.ws_col, false) + "\n";
    }
    screen += "\x1b[7m" + fitted(" up, down: scroll   q: end ", size.ws_col, false) + "\x1b[0m";
    std::fwrite(screen.data(), 1, screen.size(), stdout);
    std::fflush(stdout);
  }

private:
  static constexpr int idColumns = 24;

  bool stale_ = true;
  int first_ = 0;
  std::string news_;
};

/// Lets the terminal pass on each key at once. The destructor restores the terminal's settings.
class Keys {
public:
  Keys() : isTerminal_(tcgetattr(STDIN_FILENO, &before_) == 0)
  {
    if (!isTerminal_)
      return;
    termios raw = before_;
    raw.c_lflag &= static_cast<tcflag_t>(~(ICANON | ECHO));
    tcsetattr(STDIN_FILENO, TCSANOW, &raw);
  }
  ~Keys()
  {
    if (isTerminal_)
      tcsetattr(STDIN_FILENO, TCSANOW, &before_);
    std::puts("");
  }
  Keys(const Keys&) = delete;
  Keys& operator=(const Keys&) = delete;

  /// Waits for keys, until the descriptor (unless it is -1) is readable, for a signal, or for @p longest. Returns the
  /// keys; "q" at the end of the input; nothing if no key was pressed.
  std::string pressed(int descriptor, const reelhost::AskAgain& longest) const
  {
    pollfd sources[] = {{STDIN_FILENO, POLLIN, 0}, {descriptor, POLLIN, 0}};
    timespec limit{};
    if (longest) {
      limit.tv_sec = longest->count() / 1'000'000;
      limit.tv_nsec = longest->count() % 1'000'000 * 1'000;
    }
    sigset_t none; // signals are blocked but here, so that none comes between the check of its flag and the sleep
    sigemptyset(&none);
    if (ppoll(sources, 2, longest ? &limit : nullptr, &none) <= 0 || sources[0].revents == 0)
      return {};
    char keys[16];
    const ssize_t count = read(STDIN_FILENO, keys, sizeof keys);
    return count > 0 ? std::string(keys, static_cast<std::size_t>(count)) : "q";
  }

private:
  termios before_{};
  bool isTerminal_;
};

void run(const std::string& wanted)
{
  reelhost::startUp(); // this is the main thread
  if (reelhost::facility().directory().empty())
    throw std::runtime_error("REELDB_FACILITY: not a facility");
  const std::string project = wanted.empty() ? reelhost::facility().defaultProject() : wanted;
  ReelDbManager& manager = *ReelDbManager::theReelDbManager(); // it listens to the project from now on
  reelhost::openProject(project, reelhost::Access::Read);
  Panel panel;
  const Keys keys;
  reelhost::Feed& feed = *reelhost::projectStore().feed(); // projects of a facility have one
  const int commits = feed.waitHandle();
  const reelhost::AskAgain soon = std::chrono::milliseconds(200), now = std::chrono::microseconds(0);
  reelhost::AskAgain ask = now;
  for (std::string key; ended == 0 && key != "q";) {
    if (key == "\x1b[A" || key == "\x1b[B")
      panel.scroll(key == "\x1b[A" ? -1 : 1);
    if (ask) {          // also while somebody writes: there may be an earlier commit
      reelhost::idle(); // lets other programs write
      reelhost::informOfChangesFromElsewhere(manager);
      reelhost::idle();
    }
    if (ask == now)
      ask = std::nullopt;
    if (resized) {
      resized = 0;
      panel.redraw();
    }
    if (panel.stale())
      panel.draw(project);
    if (commits < 0) { // the system does not report what others write here
      key = keys.pressed(-1, soon);
      ask = now;
    } else {
      key = keys.pressed(ask ? -1 : commits, ask);
      ask = feed.readEvents();
    }
  }
  reelhost::closeProject();
}

} // namespace

int main(int argc, char** argv)
{
  if (argc > 2 || (argc == 2 && argv[1][0] == '-')) {
    std::fprintf(stderr, "usage: REELDB_FACILITY=DIR %s [PROJECT]\n", argv[0]);
    return 2;
  }
  sigset_t handled;
  sigemptyset(&handled);
  for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGWINCH}) {
    sigaddset(&handled, signal);
    std::signal(
        signal, signal == SIGWINCH ? [](int) { resized = 1; } : [](int) { ended = 1; });
  }
  sigprocmask(SIG_BLOCK, &handled, nullptr); // they are handled while the panel sleeps
  std::setlocale(LC_CTYPE, "C.UTF-8");       // the widths of characters are those of UTF-8
  try {
    run(argc == 2 ? argv[1] : "");
    return 0;
  } catch (const std::exception& e) {
    std::fprintf(stderr, "reel-panel: %s\n", e.what());
    return 1;
  }
}
