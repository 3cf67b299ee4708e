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
    throw app::Error(app::ErrorKind::Io, "watch: ended (nobody can read it)");
}

/// Blocks the signals that end the command, so that it can end in order, and waits for them.
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
  /// Waits a while; whether one came.
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
                       fmt::format("\"{}\": no number of seconds", base::shortText(*options.seconds)));
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
       .description = "Show changes to the reels as they are made",
       .examples = {"reeldb watch --for 1", "reeldb watch --reel A002 --for 1 --json"},
       .details =
           "Hears of what any program commits to the project, and keeps none of them waiting. A line each:\n"
           "  new REEL, changed REEL, gone REEL   what the change came to\n"
           "  renamed REEL from OLD               the reel is called REEL now\n"
           "  database                            the reels were read again\n"
           "  record REEL, ours REEL              a field of a reel, or of the reel of interest, was set by this\n"
           "                                      process; other processes are told by the lines above\n"
           "With --reel it tells of that reel alone, follows it when it is renamed, and waits for one of its\n"
           "name when it is gone."},
      [options](const Globals& globals) { return run(*options, globals); });
  command.text("--reel", options->reel, "The only reel of interest; it has to be there").shownAs("ID");
  command.text("--for", options->seconds, "End after so many seconds").shownAs("SECONDS");
  command.flag("--json", options->json, "Report as JSON, an object a line");
}

} // namespace reeldb::cli
