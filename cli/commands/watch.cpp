// SPDX-License-Identifier: Apache-2.0
#include "commands/commands.h"

#include <cerrno>
#include <chrono>
#include <csignal>
#include <ctime>

#include <fmt/format.h>

#include "app/json/json.h"
#include "app/watch.h"
#include "base/number.h"
#include "base/text_width.h"
#include "text/output.h"

namespace reeldb::cli {

namespace {

using base::displayText;

struct Options {
  std::optional<std::string> reel;
  std::optional<std::string> seconds;
  bool json = false;
};

constexpr std::chrono::milliseconds interval{200};

std::string lineOf(const app::ReelEvent& event)
{
  std::string line(wordOf(event.what));
  if (!event.reel.empty())
    line += " " + displayText(event.reel);
  if (event.what == app::ReelEvent::What::Renamed)
    line += " from " + displayText(event.from);
  return line + "\n";
}

/// Prints the event as a line, at once.
void report(const app::ReelEvent& event, bool json)
{
  print(json ? app::jsonLine(event) : lineOf(event));
  if (!flushOutput())
    throw app::Error(app::ErrorKind::Io, "watch: ended (its output cannot be written)");
}

/// Blocks the signals that end the command and waits for them, so that the command can clean up.
class EndSignals {
public:
  EndSignals()
  {
    sigemptyset(&set_);
    sigaddset(&set_, SIGINT);
    sigaddset(&set_, SIGTERM);
    sigaddset(&set_, SIGHUP);
    sigprocmask(SIG_BLOCK, &set_, nullptr);
  }
  /// Waits for this time at most. Returns whether a signal came.
  bool cameWithin(std::chrono::milliseconds time) const
  {
    timespec wait{};
    wait.tv_sec = time.count() / 1000;
    wait.tv_nsec = time.count() % 1000 * 1'000'000;
    return sigtimedwait(&set_, nullptr, &wait) > 0;
  }

private:
  sigset_t set_;
};

ExitCode run(const Options& options, const Globals& globals)
{
  std::optional<std::chrono::steady_clock::time_point> end;
  if (options.seconds) {
    const auto seconds = base::parseNumber(*options.seconds);
    if (!seconds)
      throw app::Error(app::ErrorKind::Invalid,
                       fmt::format("--for \"{}\": not a number of seconds", base::shortText(*options.seconds)));
    end = std::chrono::steady_clock::now() + std::chrono::seconds(*seconds);
  }
  const EndSignals signals;
  app::Session session(globals.project, app::Access::Read);
  app::Watcher watcher(session, options.reel, [&](const app::ReelEvent& event) { report(event, options.json); });
  if (!options.json)
    print("watching (end with Ctrl-C)\n");
  flushOutput();
  do {
    watcher.idle();
    if (signals.cameWithin(interval))
      return done;
    watcher.poll();
  } while (!end || std::chrono::steady_clock::now() < *end);
  return done;
}

} // namespace

void addWatch(CommandLine& line)
{
  const auto options = std::make_shared<Options>();
  Command command = line.add(
      {.name = "watch",
       .description = "Show changes to the reels when they are made",
       .examples = {"reeldb watch --for 1", "reeldb watch --reel A002 --for 1 --json"},
       .details = "Reports what any program stores in the project, without making it wait. Each change is a line:\n"
                  "  new REEL, changed REEL, gone REEL   the reel was made, changed or deleted\n"
                  "  renamed REEL from OLD               the reel OLD is now called REEL\n"
                  "  database                            the reels were read again\n"
                  "  record REEL, ours REEL              this process itself set a field of a reel, or of the reel of\n"
                  "                                      --reel; the lines above report changes by other processes\n"
                  "With --reel it reports only that reel, also under its new name after a renaming. After the reel is\n"
                  "deleted, it waits for another reel with the same name."},
      [options](const Globals& globals) { return run(*options, globals); });
  command.text("--reel", options->reel, "Report only this reel, which must exist").shownAs("ID");
  command.text("--for", options->seconds, "End after this number of seconds").shownAs("SECONDS");
  command.flag("--json", options->json, "Report as JSON, one object per line");
}

} // namespace reeldb::cli
