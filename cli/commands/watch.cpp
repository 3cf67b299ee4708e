// SPDX-License-Identifier: Apache-2.0
#include "commands/commands.h"

#include <algorithm>
#include <chrono>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "app/json/json.h"
#include "app/watch.h"
#include "base/number.h"
#include "base/text_width.h"
#include "commands/tables.h"
#include "text/output.h"
#include "text/waiting.h"

namespace reeldb::cli {

namespace {

using base::displayText;

struct Options {
  std::optional<std::string> reel;
  std::optional<std::string> seconds;
  std::optional<std::string> since;
  bool follow = false;
  bool all = false;
  bool json = false;
};

/// How often to ask where the system does not report what others write.
constexpr std::chrono::milliseconds interval{200};

using Deadline = std::optional<std::chrono::steady_clock::time_point>;

/// " (revision 4, root on vm: reeldb set R1 bin=x)"; empty if the commit is unknown.
std::string originOf(const app::WatchedCommit& watched)
{
  if (const auto& forgotten = watched.forgotten)
    return fmt::format(" (revisions {} to {}, forgotten before they were reported)", forgotten->first, forgotten->last);
  const std::optional<app::CommitEntry>& commit = watched.commit;
  if (!commit)
    return {};
  std::string origin = fmt::format(" (revision {}", commit->revision);
  if (!commit->user.empty())
    origin.append(", ").append(displayText(commit->user)).append(" on ").append(displayText(commit->machine));
  if (!commit->command.empty())
    origin.append(": ").append(displayText(commit->command));
  return origin + ")";
}

std::string changeOf(const app::ReelEvent& event)
{
  std::string text(wordOf(event.what));
  text.append(" ").append(displayText(event.reel));
  if (event.what == app::ReelEvent::What::Renamed)
    text.append(" from ").append(displayText(event.from));
  for (const app::FieldStep& step : event.fields)
    text.append(&step == &event.fields.front() ? ": " : ", ")
        .append(displayText(fmt::format("{}: {} (was {})", step.field, orDash(step.after), orDash(step.before))));
  return text;
}

/// "12 new reels, 1 reel gone, 60 new shots"; "no reel changed" for a commit such as project compact makes
std::string totalsOf(const app::WatchedCommit& commit)
{
  using What = app::ReelEvent::What;
  std::vector<std::string> parts;
  const auto add = [&](std::size_t count, std::string_view form) {
    if (count != 0)
      parts.push_back(fmt::format(fmt::runtime(form), fmt::arg("n", count), fmt::arg("s", count == 1 ? "" : "s")));
  };
  const auto reels = [&](What what) {
    return static_cast<std::size_t>(std::count_if(commit.reels.begin(), commit.reels.end(),
                                                  [what](const app::ReelEvent& event) { return event.what == what; }));
  };
  add(reels(What::New), "{n} new reel{s}");
  add(reels(What::Gone), "{n} reel{s} gone");
  add(reels(What::Renamed), "{n} reel{s} renamed");
  add(reels(What::Changed), "{n} reel{s} changed");
  add(static_cast<std::size_t>(commit.shotsNew), "{n} new shot{s}");
  add(static_cast<std::size_t>(commit.shotsGone), "{n} shot{s} gone");
  add(static_cast<std::size_t>(commit.shotsChanged), "{n} shot{s} changed");
  if (commit.commit) {
    add(static_cast<std::size_t>(commit.commit->lists), "{n} list{s} changed");
    if (commit.commit->options)
      parts.emplace_back("options of the project changed");
    if (parts.empty() && commit.commit->created + commit.commit->changed + commit.commit->deleted != 0)
      parts.push_back(fmt::format("{} new, {} changed, {} deleted (since removed for good)", commit.commit->created,
                                  commit.commit->changed, commit.commit->deleted));
  }
  return parts.empty() ? "no reel changed" : fmt::format("{}", fmt::join(parts, ", "));
}

std::string linesOf(const app::WatchedCommit& commit, const Options& options)
{
  std::string lines;
  const auto add = [&](const std::string& text) { lines.append(text).append(originOf(commit)).append("\n"); };
  if (!commit.reels.empty() && (options.all || options.reel || commit.reels.size() == 1))
    for (const app::ReelEvent& event : commit.reels)
      add(changeOf(event));
  else
    add(totalsOf(commit));
  return lines;
}

std::string jsonLinesOf(const app::WatchedCommit& commit, const Options& options)
{
  std::string lines;
  for (const app::ReelEvent& event : commit.reels)
    lines += app::jsonLine(event);
  if (options.reel)
    return lines;
  app::ReelEvent whole;
  whole.commit = commit.commit;
  whole.forgotten = commit.forgotten;
  return lines + app::jsonLine(whole);
}

/// Prints the commit at once.
void report(const app::WatchedCommit& commit, const Options& options)
{
  print(options.json ? jsonLinesOf(commit, options) : linesOf(commit, options));
  if (!flushOutput())
    throw app::Error(app::ErrorKind::Io, "watch: ended (its output cannot be written)");
}

/// Waits for a commit and reports it, again and again, until the deadline or a signal.
void follow(app::Watcher& watcher, const Waiting& waiting, const Deadline& end)
{
  using std::chrono::microseconds;
  const int handle = watcher.waitHandle();
  if (handle < 0)
    complainOf({fmt::format("{}; asking {} times a second instead", watcher.whyNoHandle(),
                            std::chrono::seconds(1) / interval)});
  std::optional<microseconds> pause(0); // without a value: until somebody writes
  for (;;) {
    if (pause) { // also while somebody writes: there may be an earlier commit
      watcher.idle();
      watcher.poll();
      watcher.idle();
    }
    if (handle < 0)
      pause = interval;
    else if (pause && pause->count() == 0)
      pause.reset();
    std::optional<microseconds> time = pause;
    if (end) {
      const auto left =
          std::chrono::duration_cast<microseconds>(*end - std::chrono::steady_clock::now()) + microseconds(1);
      if (left <= microseconds(0))
        return;
      time = std::min(left, time.value_or(left));
    }
    if (waiting.endedBySignal(pause && handle >= 0 ? -1 : handle, time))
      return;
    if (handle >= 0)
      pause = watcher.readEvents();
  }
}

ExitCode run(const Options& options, const Globals& globals)
{
  Deadline end;
  if (options.seconds) {
    const auto seconds = base::parseNumber(*options.seconds);
    if (!seconds)
      throw app::Error(app::ErrorKind::Invalid,
                       fmt::format("--for \"{}\": not a number of seconds", base::shortText(*options.seconds)));
    end = std::chrono::steady_clock::now() + std::chrono::seconds(*seconds);
  }
  std::optional<int> since;
  if (options.since) {
    since = base::parseNumber(*options.since);
    if (!since)
      throw app::Error(
          app::ErrorKind::Invalid,
          fmt::format("--since \"{}\": not a revision (reeldb history lists them)", base::shortText(*options.since)));
  }
  const Waiting waiting;
  app::Session session(globals.project, app::Access::Read);
  app::Watcher watcher(session, options.reel, [&](const app::WatchedCommit& commit) { report(commit, options); });
  if (!since)
    watcher.requireReelOfInterest();
  const bool follows = !since || options.follow || end;
  if (!options.json && follows)
    print("watching (end with Ctrl-C)\n");
  flushOutput();
  if (since)
    watcher.reportSince(*since);
  if (follows)
    follow(watcher, waiting, end);
  return done;
}

} // namespace

void addWatch(CommandLine& line)
{
  const auto options = std::make_shared<Options>();
  Command command = line.add(
      {.name = "watch",
       .description = "Show changes to the reels when they are made",
       .examples = {"reeldb watch --for 1", "reeldb watch --reel A002 --for 1 --json", "reeldb watch --since 0"},
       .details =
           "Reports what any program stores in the project, at once and without making it wait. A commit that\n"
           "changes one reel is a line, with its revision, who made it and by which command:\n"
           "  new REEL, gone REEL                 the reel was made or came back, or was deleted\n"
           "  changed REEL: FIELD: NEW (was OLD)  its fields and other names, and the number of its shots\n"
           "  renamed REEL from OLD               the reel OLD is now called REEL\n"
           "Any other commit, such as an import, is a line of totals; --all reports each reel instead. What a program\n"
           "without the history writes is reported together, without revision and values.\n"
           "With --reel it reports only that reel, also under its new name after a renaming. After the reel is\n"
           "deleted, it waits for another reel with the same name.\n"
           "\n"
           "--since reports the commits after a revision and ends; with --follow or --for it goes on. A script\n"
           "that stores the last revision it has seen misses no commit: if the history no longer has one of them,\n"
           "that is an error. What is not in the history, such as a file that was restored from a copy, --since\n"
           "cannot know. --json reports each reel as an object per line, and then an object whose \"what\" is\n"
           "\"database\" for the commit."},
      [options](const Globals& globals) { return run(*options, globals); });
  command.text("--reel", options->reel, "Report only this reel, which must exist").shownAs("ID");
  command.text("--for", options->seconds, "End after this number of seconds").shownAs("SECONDS");
  command.text("--since", options->since, "Report the commits after this revision; 0: all").shownAs("REVISION");
  command.flag("--follow", options->follow, "With --since: go on, and report what is stored from now on");
  command.flag("--all", options->all, "Report each reel of a commit that changes several");
  command.flag("--json", options->json, "Report as JSON, one object per line");
}

} // namespace reeldb::cli
