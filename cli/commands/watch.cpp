// SPDX-License-Identifier: Apache-2.0
#include <cerrno>
#include <chrono>
#include <csignal>
#include <ctime>
#include <map>

#include <fmt/format.h>

#include "ReelDbClient.h"
#include "commands/commands.h"
#include "text/display_text.h"
#include "line/failure.h"
#include "app/host_text.h"
#include "app/number.h"
#include "app/reel.h"
#include "app/session.h"

namespace reeldb::cli {

namespace {

struct Options {
  std::optional<std::string> reel;
  std::optional<std::string> seconds;
  bool json = false;
};

constexpr std::chrono::milliseconds interval{200};

struct Known {
  std::string id;
  Json state;
};

/// All that is known of the reels, by log, to tell what became of them: an identifier may change.
using Snapshot = std::map<std::string, Known>;

std::string nameOf(const Cookie& log)
{
  return log.asString(false).c_str();
}

Snapshot lookAt(const ReelDbManager& manager)
{
  Snapshot snapshot;
  const ShotCounts shots = reelhost::shotCounts();
  for (const Cookie& log : manager.reelList) {
    const Reel reel = readReel(ReelDbRec(log), shots);
    Json state = toJson(reel);
    state.erase("id");
    if (!reel.id.empty())
      snapshot[nameOf(log)] = {reel.id, std::move(state)};
  }
  return snapshot;
}

/// Prints every notification as a line, at once. With a reel of interest it tells of that one alone, also when it is
/// renamed; once it is gone, of the next reel that bears its identifier.
class Watcher : public ReelDbClient {
public:
  Watcher(const Options& options, Session& session)
      : json_(options.json), reel_(options.reel), manager_(session.manager()), known_(lookAt(manager_))
  {
    if (!reel_)
      return;
    ReelDbRec record = session.requireReel(*reel_);
    follow(nameOf(record), text(record.reelId()));
  }

  void reelDbChanged(LightweightString<char> id) override
  {
    Snapshot now = lookAt(manager_);
    for (const auto& [log, before] : known_)
      if (!now.count(log))
        tellGone(log, before.id);
    for (const auto& [log, reel] : now) {
      const auto before = known_.find(log);
      if (before == known_.end())
        tell("new", log, reel.id);
      else if (before->second.id != reel.id)
        tellRenamed(log, before->second.id, reel.id);
      if (before != known_.end() && before->second.state != reel.state)
        tell("changed", log, reel.id);
    }
    known_ = std::move(now);
    if (!reel_)
      say("database", text(id));
  }
  void ourReelDbRecChanged() override { say("ours", reel_.value_or("")); }
  void someReelDbRecChanged(LightweightString<char> id) override
  {
    if (!reel_ || bearsItsName(text(id)))
      say("record", text(id));
  }

private:
  bool bearsItsName(const std::string& reel) const { return folded(reel) == folded(*reel_); }

  /// A log that bears the identifier of a reel of interest that is gone becomes the one of interest.
  bool isOfInterest(const std::string& log, const std::string& reel)
  {
    if (!reel_)
      return true;
    if (log_.empty() && bearsItsName(reel))
      follow(log, reel);
    return log == log_;
  }

  void follow(const std::string& log, const std::string& reel)
  {
    log_ = log;
    reel_ = reel;
    setReelIdOfInterest(hostText(reel)); // letter for letter
  }

  void tell(const char* what, const std::string& log, const std::string& reel)
  {
    if (isOfInterest(log, reel))
      say(what, reel);
  }

  void tellGone(const std::string& log, const std::string& reel)
  {
    tell("gone", log, reel);
    if (log == log_)
      log_.clear();
  }

  void tellRenamed(const std::string& log, const std::string& before, const std::string& after)
  {
    if (!isOfInterest(log, after))
      return;
    if (reel_)
      follow(log, after);
    say({{"what", "renamed"}, {"reel", after}, {"from", before}},
        fmt::format("renamed {} from {}", displayText(after), displayText(before)));
  }

  void say(const char* what, const std::string& reel)
  {
    say({{"what", what}, {"reel", reel}}, fmt::format("{}{}", what, reel.empty() ? "" : " " + displayText(reel)));
  }
  void say(const Json& json, const std::string& line)
  {
    print(json_ ? jsonLine(json) : line + "\n");
    if (!flushOutput())
      throw Failure(unreadable, "watch: ended (nobody can read it)");
  }

  const bool json_;
  std::optional<std::string> reel_; ///< of interest, as its record spells it
  std::string log_;                 ///< the log of that reel; empty while there is none
  ReelDbManager& manager_;
  Snapshot known_;
};

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
    const auto seconds = parseNumber(*options.seconds);
    if (!seconds)
      throw Failure(usage, fmt::format("\"{}\": no number of seconds", shortText(*options.seconds)));
    end = std::chrono::steady_clock::now() + std::chrono::seconds(*seconds);
  }
  const EndSignals signals;
  Session session(globals, reelhost::Access::Read);
  const Watcher watcher(options, session);
  if (!options.json)
    print("watching (end with Ctrl-C)\n");
  flushOutput();
  do {
    reelhost::idle();
    if (signals.cameWithin(interval))
      return done;
    if (reelhost::reloadIfChangedElsewhere())
      session.manager().informReelDbChanged("");
  } while (!end || std::chrono::steady_clock::now() < *end);
  return done;
}

} // namespace

void addWatch(CommandLine& line)
{
  const auto options = std::make_shared<Options>();
  CLI::App& app = line.add(
      {.name = "watch",
       .description = "Show changes to the reels as they are made",
       .examples = {"reeldb watch --for 1", "reeldb watch --reel A002 --for 1 --json"},
       .details =
           "Hears of what any program commits to the project, and keeps none of them waiting. A line each:\n"
           "  new REEL, changed REEL, gone REEL   what the change came to\n"
           "  renamed REEL from OLD               the reel is called REEL now\n"
           "  database                            the reels were read anew\n"
           "  record REEL, ours REEL              a field of a reel, or of the reel of interest, was set by this\n"
           "                                      process; other processes are told by the lines above\n"
           "With --reel it tells of that reel alone, follows it when it is renamed, and waits for one of its\n"
           "name when it is gone."},
      [options](const Globals& globals) { return run(*options, globals); });
  takeText(app, "--reel", options->reel, "The only reel of interest; it has to be there")->type_name("ID");
  takeText(app, "--for", options->seconds, "End after so many seconds")->type_name("SECONDS");
  takeFlag(app, "--json", options->json, "Report as JSON, an object a line");
}

} // namespace reeldb::cli
