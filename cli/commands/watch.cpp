// SPDX-License-Identifier: Apache-2.0
#include <cerrno>
#include <chrono>
#include <csignal>
#include <ctime>
#include <map>

#include <fmt/format.h>

#include "ReelDbClient.h"
#include "commands/commands.h"
#include "module/display_text.h"
#include "module/failure.h"
#include "module/host_text.h"
#include "module/number.h"
#include "module/reel.h"
#include "module/session.h"

namespace reeldb::cli {

namespace {

struct Options {
  std::optional<std::string> reel;
  std::optional<std::string> seconds;
  bool json = false;
};

constexpr std::chrono::milliseconds interval{200};

/// All that is known of the reels, to tell what became of them.
using Snapshot = std::map<std::string, Json>;

Snapshot lookAt(const ReelDbManager& manager)
{
  Snapshot snapshot;
  for (const Reel& reel : readReels(manager, reelhost::shotCounts()))
    snapshot.emplace(reel.id, toJson(reel));
  return snapshot;
}

/// Prints every notification as a line, at once.
class Watcher : public ReelDbClient {
public:
  Watcher(const Options& options, Session& session)
      : ReelDbClient(options.reel ? hostText(*options.reel) : LightweightString<char>()), options_(options),
        manager_(session.manager()), known_(lookAt(manager_))
  {
  }

  void reelDbChanged(LightweightString<char> id) override
  {
    Snapshot now = lookAt(manager_);
    for (const auto& [reel, state] : now) {
      const auto before = known_.find(reel);
      if (before == known_.end())
        tell("new", reel);
      else if (before->second != state)
        tell("changed", reel);
    }
    for (const auto& [reel, state] : known_)
      if (!now.count(reel))
        tell("gone", reel);
    known_ = std::move(now);
    tell("database", text(id));
  }
  void ourReelDbRecChanged() override { tell("ours", options_.reel.value_or("")); }
  void someReelDbRecChanged(LightweightString<char> id) override { tell("record", text(id)); }

private:
  void tell(const char* what, const std::string& reel)
  {
    const bool ofInterest = !options_.reel || reel.empty() || folded(reel) == folded(*options_.reel);
    if (!ofInterest)
      return;
    if (options_.json)
      print(Json({{"what", what}, {"reel", reel}}).dump(-1, ' ', false, Json::error_handler_t::replace) + "\n");
    else
      print(fmt::format("{}{}\n", what, reel.empty() ? "" : " " + displayText(reel)));
    if (!flushOutput())
      throw Failure(unreadable, "watch: nobody listens");
  }

  const Options& options_;
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
       .details = "Hears of what any program commits to the project, and keeps none of them waiting. A line each:\n"
                  "  new REEL, changed REEL, gone REEL   what the change came to\n"
                  "  database                            the reels were read anew\n"
                  "  record REEL, ours REEL              a field of a reel, or of the reel of interest, was set"},
      [options](const Globals& globals) { return run(*options, globals); });
  takeText(app, "--reel", options->reel, "The only reel of interest")->type_name("ID");
  takeText(app, "--for", options->seconds, "End after so many seconds")->type_name("SECONDS");
  takeFlag(app, "--json", options->json, "Report as JSON, an object a line");
}

} // namespace reeldb::cli
