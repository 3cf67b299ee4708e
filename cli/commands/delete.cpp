// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <fmt/format.h>
#include <optional>

#include "commands/commands.h"
#include "module/ask.h"
#include "module/counted.h"
#include "module/display_text.h"
#include "module/failure.h"
#include "module/host_text.h"
#include "module/session.h"
#include "module/shot.h"
#include "module/table.h"

namespace reeldb::cli {

namespace {

struct Options {
  std::vector<std::string> ids, keep;
  bool yes = false;
  bool dryRun = false;
  bool json = false;
};

struct Deletion {
  CookieVec logs;                 ///< reels, each followed by its shots
  std::vector<std::string> reels; ///< identifiers of those that go
  std::vector<std::string> kept;  ///< and of those that were asked for, but are kept back
  std::size_t shots = 0;
};

/// Marks the reels to keep in the records' own spelling: a mark counts letter for letter.
void markKept(Session& session, const std::vector<std::string>& ids)
{
  for (const std::string& id : ids)
    session.manager().reelInUse(session.requireReel(id).reelId(), true);
}

CookieVec select(Session& session, const std::vector<std::string>& ids)
{
  CookieVec selection;
  for (const std::string& id : ids) {
    const ReelDbRec reel = session.requireReel(id);
    bool there = false;
    for (const Cookie& other : selection)
      there = there || other.compare(reel) == 0;
    if (!there)
      selection.add(reel);
  }
  return selection;
}

Deletion plan(Session& session, const Options& options)
{
  markKept(session, options.keep);
  const CookieVec selection = select(session, options.ids);
  Deletion deletion;
  for (const Cookie& log : selection) {
    const LightweightString<char> id = ReelDbRec(log).reelId();
    (session.manager().reelInUse(id) ? deletion.kept : deletion.reels).push_back(text(id));
  }
  deletion.logs = session.manager().buildSetOfReelsAndAssociatedShots(selection);
  deletion.shots = static_cast<std::size_t>(deletion.logs.count()) - deletion.reels.size();
  return deletion;
}

void show(const Deletion& deletion)
{
  if (!deletion.reels.empty()) {
    Table table({{"REEL"}, {.title = "SHOTS", .number = true}});
    for (const std::string& id : deletion.reels)
      table.add({id, std::to_string(shotsOf(id).count())});
    table.print();
  }
  for (const std::string& id : deletion.kept)
    print(fmt::format("{}: kept, with its shots\n", displayText(id)));
}

std::string sizeOf(const Deletion& deletion)
{
  return counted(deletion.reels.size(), "reel") + " and " + counted(deletion.shots, "shot");
}

bool sameLogs(const CookieVec& a, const CookieVec& b)
{
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](const Cookie& x, const Cookie& y) { return x.compare(y) == 0; });
}

/// Shows what would go and asks. The project is only read meanwhile: nobody is kept waiting for the answer.
Deletion confirmed(const Options& options, const Globals& globals)
{
  Session session(globals, reelhost::Access::Read);
  Deletion deletion = plan(session, options);
  if (!options.json)
    show(deletion);
  if (!deletion.reels.empty() && !ask(fmt::format("delete {}?", sizeOf(deletion))))
    throw Failure(refused, "delete: not confirmed, nothing deleted");
  return deletion;
}

ExitCode run(const Options& options, const Globals& globals)
{
  std::optional<Deletion> agreed;
  if (!options.yes && !options.dryRun)
    agreed = confirmed(options, globals);
  Session session(globals, options.dryRun ? reelhost::Access::Read : reelhost::Access::Write);
  const Deletion deletion = plan(session, options);
  if (agreed && !sameLogs(agreed->logs, deletion.logs))
    throw Failure(refused, "delete: nothing deleted (the project was changed while the answer was awaited)");
  if (!agreed && !options.json)
    show(deletion);
  const std::string what = sizeOf(deletion);
  const bool any = !deletion.reels.empty();
  if (any && !options.dryRun) {
    reelhost::deleteLogs(deletion.logs);
    session.manager().informReelDbChanged("");
    session.commit();
  }
  if (options.json)
    printJson(
        {{"dry_run", options.dryRun}, {"deleted", deletion.reels}, {"shots", deletion.shots}, {"kept", deletion.kept}});
  else if (!any)
    print("nothing deleted\n");
  else if (options.dryRun)
    print(fmt::format("dry run: {} would go, the project stays as it was\n", what));
  else
    print(fmt::format("{} deleted (reeldb undelete brings them back)\n", what));
  return any ? done : refused;
}

} // namespace

void addDelete(CommandLine& line)
{
  const auto options = std::make_shared<Options>();
  CLI::App& app = line.add({.name = "delete",
                            .description = "Delete reels and the shots recorded from them",
                            .examples = {"reeldb delete --dry-run A001 A002 --keep A002", "reeldb delete A001 --yes"},
                            .details = "Shows what would go and asks. A reel that is kept stays, and so do its shots."},
                           [options](const Globals& globals) { return run(*options, globals); });
  takeTexts(app, "ID", options->ids, "The reels")->required()->type_name("");
  takeTexts(app, "--keep", options->keep, "A reel to keep; may be given several times")
      ->type_name("ID")
      ->allow_extra_args(false); // one reel each time: those that follow are to be deleted
  takeFlag(app, "--yes,-y", options->yes, "Do not ask");
  takeFlag(app, "--dry-run", options->dryRun, "Show what would go and delete nothing");
  takeJson(app, options->json);
}

} // namespace reeldb::cli
