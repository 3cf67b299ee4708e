// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <fmt/format.h>
#include <optional>

#include "commands/commands.h"
#include "text/ask.h"
#include "text/counted.h"
#include "text/display_text.h"
#include "line/failure.h"
#include "app/host_text.h"
#include "app/session.h"
#include "app/shot.h"

namespace reeldb::cli {

namespace {

struct Options {
  std::vector<std::string> ids, keep;
  bool yes = false;
  bool dryRun = false;
  bool json = false;
};

/// A reel that was asked for, and what becomes of it.
struct Fate {
  std::string id;
  bool kept = false;
  std::vector<reelhost::Material> shots; ///< recorded from it; they go or stay with it
};

struct Deletion {
  CookieVec selection; ///< the reels that were asked for, each once
  std::vector<Fate> fates;
  CookieVec logs; ///< what goes: reels, each followed by its shots

  bool any() const { return !logs.empty(); }
  std::size_t reels() const
  {
    return static_cast<std::size_t>(
        std::count_if(fates.begin(), fates.end(), [](const Fate& fate) { return !fate.kept; }));
  }
  std::size_t shots() const { return static_cast<std::size_t>(logs.count()) - reels(); }
};

constexpr const char* whyKept = "--keep";

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

/// What a deletion would come to. The library tells of each log as one that is about to go, so it is only asked when
/// they go.
Deletion plan(Session& session, const Options& options)
{
  markKept(session, options.keep);
  Deletion deletion;
  deletion.selection = select(session, options.ids);
  for (const Cookie& log : deletion.selection) {
    const LightweightString<char> id = ReelDbRec(log).reelId();
    const CookieVec shots = shotsOf(text(id));
    const bool kept = session.manager().reelInUse(id);
    deletion.fates.push_back({text(id), kept, materialOf(shots)});
    if (kept)
      continue;
    deletion.logs.add(log);
    for (const Cookie& shot : shots)
      deletion.logs.add(shot);
  }
  return deletion;
}

void carryOut(Session& session, const Deletion& deletion)
{
  reelhost::deleteLogs(session.manager().buildSetOfReelsAndAssociatedShots(deletion.selection));
  session.manager().informReelDbChanged("");
  session.commit();
}

void show(const Fate& fate)
{
  constexpr std::size_t mostLines = 20; // of a reel of a thousand shots the first ones tell which reel it is
  const std::string reel = displayText(fate.id);
  const std::string shots = counted(fate.shots.size(), "shot");
  if (fate.kept) {
    print(fmt::format("{}: kept, with its {} ({})\n", reel, shots, whyKept));
    return;
  }
  print(fmt::format("{}: {}\n", reel, shots));
  const std::size_t lines = std::min(fate.shots.size(), mostLines);
  if (lines > 0)
    printShots({fate.shots.begin(), fate.shots.begin() + static_cast<std::ptrdiff_t>(lines)}, 2);
  if (lines < fate.shots.size())
    print(fmt::format("  and {} more (--json lists all)\n", fate.shots.size() - lines));
}

void show(const Deletion& deletion)
{
  for (const Fate& fate : deletion.fates)
    show(fate);
}

Json toJson(const Deletion& deletion, bool dryRun)
{
  Json json = {{"dry_run", dryRun}};
  json["deleted"] = Json::array();
  json["shots"] = deletion.shots();
  json["kept"] = Json::array();
  json["reels"] = Json::array();
  for (const Fate& fate : deletion.fates) {
    json[fate.kept ? "kept" : "deleted"].push_back(fate.id);
    Json reel = {{"id", fate.id}, {"kept", fate.kept}};
    if (fate.kept)
      reel["why"] = whyKept;
    reel["shots"] = cli::toJson(fate.shots);
    json["reels"].push_back(std::move(reel));
  }
  return json;
}

std::string sizeOf(const Deletion& deletion)
{
  return counted(deletion.reels(), "reel") + " and " + counted(deletion.shots(), "shot");
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
  if (deletion.any() && !ask(fmt::format("delete {}?", sizeOf(deletion))))
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
  const bool any = deletion.any();
  if (any && !options.dryRun)
    carryOut(session, deletion);
  if (options.json)
    printJson(toJson(deletion, options.dryRun));
  else if (!any)
    print(options.dryRun ? "dry run: nothing would go\n" : "nothing deleted\n");
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
  CLI::App& app = line.add(
      {.name = "delete",
       .description = "Delete reels and the shots recorded from them",
       .examples = {"reeldb delete --dry-run A001 A002 --keep A002", "reeldb delete A001 --yes"},
       .details = "Shows the reels and shots that would go and asks. A reel that is kept stays, and so do its\n"
                  "shots."},
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
