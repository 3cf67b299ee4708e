// SPDX-License-Identifier: Apache-2.0
#include <set>

#include <fmt/ranges.h>

#include <fmt/format.h>

#include "commands/commands.h"
#include "text/counted.h"
#include "text/display_text.h"
#include "line/failure.h"
#include "app/host_text.h"
#include "app/reel.h"
#include "app/session.h"

namespace reeldb::cli {

namespace {

struct Options {
  bool json = false;
};

std::set<std::string> logsOf(const ReelDbManager& manager)
{
  std::set<std::string> logs;
  for (const Cookie& log : manager.reelList)
    logs.insert(log.asString(false).c_str());
  return logs;
}

/// Throws Failure when a reel that comes back bears an identifier that another has by now: one of them could not be
/// found any more.
void requireFreeIdentifiers(ReelDbManager& manager, const std::set<std::string>& before)
{
  std::set<std::string> taken;
  std::vector<std::string> back;
  for (const Cookie& log : manager.reelList) {
    std::string id = text(ReelDbRec(log).reelId());
    if (before.count(log.asString(false).c_str()))
      taken.insert(folded(id));
    else
      back.push_back(std::move(id));
  }
  for (const std::string& id : back)
    if (taken.count(folded(id)))
      throw Failure(
          refused,
          fmt::format("undelete: {}: another reel is called that by now, nothing brought back (rename it first)", id));
}

ExitCode run(const Options& options, const Globals& globals)
{
  Session session(globals, reelhost::Access::Write);
  const std::set<std::string> before = logsOf(session.manager());
  const int count = reelhost::undelete();
  if (count == 0)
    throw Failure(refused, "undelete: there is no deletion to bring back");
  session.manager().informReelDbChanged("");
  requireFreeIdentifiers(session.manager(), before);
  std::vector<std::string> reels;
  for (const Cookie& log : session.manager().reelList)
    if (!before.count(log.asString(false).c_str()))
      reels.push_back(readReel(ReelDbRec(log), {}).id);
  session.commit();
  const std::size_t shots = static_cast<std::size_t>(count) - reels.size();
  if (options.json)
    printJson({{"reels", reels}, {"shots", shots}});
  else
    print(fmt::format("{} and {} brought back{}\n", counted(reels.size(), "reel"), counted(shots, "shot"),
                      reels.empty() ? "" : displayText(fmt::format(": {}", fmt::join(reels, ", ")))));
  return done;
}

} // namespace

void addUndelete(CommandLine& line)
{
  const auto options = std::make_shared<Options>();
  CLI::App& app =
      line.add({.name = "undelete",
                .description = "Bring the last deletion back",
                .examples = {"reeldb undelete"},
                .details = "Deleted reels and shots are kept until reeldb project compact. Said again, it brings back\n"
                           "the deletion before."},
               [options](const Globals& globals) { return run(*options, globals); });
  takeJson(app, options->json);
}

} // namespace reeldb::cli
