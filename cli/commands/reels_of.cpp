// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <map>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "commands/commands.h"
#include "text/counted.h"
#include "text/display_text.h"
#include "line/failure.h"
#include "app/host_text.h"
#include "app/list_file.h"
#include "app/reel.h"
#include "app/session.h"
#include "app/shot.h"
#include "text/table.h"

namespace reeldb::cli {

namespace {

struct Options {
  std::vector<std::string> clips;
  std::optional<std::string> reel, file;
  bool json = false;
};

/// One reel that shots need.
struct Need {
  std::string id; ///< as its record spells it, or as the shots do when there is no record
  std::int64_t shots = 0;
  std::optional<Reel> reel;
};

/// Everything that stands in the way of using the reel; empty when nothing does.
std::vector<std::string> troubles(const Need& need)
{
  if (!need.reel)
    return {"missing"};
  std::vector<std::string> troubles;
  if (!need.reel->available)
    troubles.push_back("unavailable");
  if (!isListedType(need.reel->type))
    troubles.push_back("unknown type");
  return troubles;
}

std::string stateOf(const Need& need)
{
  const std::vector<std::string> found = troubles(need);
  return found.empty() ? "ready" : fmt::format("{}", fmt::join(found, ", "));
}

class Needs {
public:
  explicit Needs(ReelDbManager& manager) : manager_(manager) {}

  void addShot(const std::string& reelId)
  {
    if (reelId.empty())
      return;
    const auto [found, first] = places_.emplace(folded(reelId), needs_.size());
    if (first)
      needs_.push_back(lookUp(reelId));
    ++needs_[found->second].shots;
  }
  const std::vector<Need>& all() const { return needs_; }

private:
  Need lookUp(const std::string& reelId)
  {
    ReelDbRec record = manager_.getReelInfo(hostText(reelId));
    if (!record.valid())
      return {reelId, 0, std::nullopt};
    Reel reel = readReel(record, {});
    return {reel.id, 0, std::move(reel)};
  }

  ReelDbManager& manager_;
  std::map<std::string, std::size_t> places_;
  std::vector<Need> needs_;
};

/// The shots of the project that are called one of the names, letter case aside. Throws Failure for a name that none
/// has.
void addClips(const std::vector<std::string>& names, Needs& needs)
{
  const auto shots = materialOf(reelhost::allShots());
  for (const std::string& name : names) {
    bool found = false;
    for (const reelhost::Material& shot : shots) {
      if (folded(shot.name) != folded(name))
        continue;
      found = true;
      needs.addShot(shot.reel);
    }
    if (!found)
      throw Failure(refused, fmt::format("{}: no shot is called that", shortText(name)));
  }
}

Json toJson(const Need& need)
{
  return {{"id", need.id},
          {"shots", need.shots},
          {"state", stateOf(need)},
          {"type", need.reel ? need.reel->type : ""},
          {"bin", need.reel ? need.reel->bin : ""}};
}

void report(const Options& options, const std::vector<Need>& needs)
{
  Json json = Json::array();
  Table table({{"REEL"}, {.title = "SHOTS", .number = true}, {"STATE"}, {"TYPE"}, {.title = "BIN", .optional = true}});
  std::size_t ready = 0;
  for (const Need& need : needs) {
    json.push_back(toJson(need));
    const Json& entry = json.back();
    const std::string type = entry.at("type");
    table.add({need.id, std::to_string(need.shots), entry.at("state"), type.empty() ? "-" : type, entry.at("bin")});
    ready += troubles(need).empty();
  }
  if (options.json) {
    printJson(json);
    return;
  }
  if (!table.empty())
    table.print();
  print(fmt::format("{} needed, {} ready\n", counted(needs.size(), "reel"), ready));
}

/// What of the list is in no reel: sources that are none, or that nobody can tell, and lines that could not be read.
void tellTheRest(const std::string& file, const lists::List& list)
{
  for (const lists::Special& special : list.specials)
    complain(fmt::format("{}: {}: no reel ({}; {}, {} {})", file, special.text, special.reason,
                         counted(special.count, "clip"), special.lines.size() == 1 ? "line" : "lines",
                         fmt::join(special.lines, ", ")));
  for (const lists::Warning& line : list.warnings)
    complain(fmt::format("{}: line {}: {} ({})", file, line.line, line.reason, line.text));
  for (const lists::Rejected& line : list.rejected)
    complain(fmt::format("{}: line {} rejected: {} ({})", file, line.line, line.reason, line.text));
}

/// Says why there is no reel to tell of.
[[noreturn]] void tellNothingFound(const Options& options, Session& session)
{
  if (options.reel)
    throw Failure(refused, fmt::format("{}: no shot was recorded from it",
                                       shortText(text(session.requireReel(*options.reel).reelId()))));
  throw Failure(refused, options.file ? fmt::format("{}: no clip in it has a reel", *options.file)
                                      : "reels-of: none of these shots has a reel");
}

ExitCode run(const Options& options, const Globals& globals)
{
  const int sources = !options.clips.empty() + options.reel.has_value() + options.file.has_value();
  if (sources == 0)
    throw Failure(usage, "reels-of: say which shots: clip names, --reel ID or --file LIST");
  if (sources > 1)
    throw Failure(usage, "reels-of: only one of these at a time: clip names, --reel ID, --file LIST");
  if (std::find(options.clips.begin(), options.clips.end(), "") != options.clips.end())
    throw Failure(usage, "reels-of: \"\" is no name of a clip");
  if (options.reel && options.reel->empty())
    throw Failure(usage, "reels-of: \"\" is no reel");
  std::optional<lists::List> list;
  if (options.file)
    list = readListFile(*options.file);
  Session session(globals, reelhost::Access::Read);
  Needs needs(session.manager());
  if (list)
    for (const lists::Clip& clip : list->clips)
      needs.addShot(clip.reel);
  if (options.reel)
    for (const Cookie& shot : shotsOf(*options.reel))
      needs.addShot(reelhost::materialOf(shot).reel);
  addClips(options.clips, needs);
  if (!needs.all().empty())
    report(options, needs.all());
  if (list)
    tellTheRest(*options.file, *list);
  if (needs.all().empty())
    tellNothingFound(options, session);
  return list && !list->rejected.empty() ? incomplete : done;
}

} // namespace

void addReelsOf(CommandLine& line)
{
  const auto options = std::make_shared<Options>();
  CLI::App& app = line.add(
      {.name = "reels-of",
       .description = "List the reels that shots or a list need, and which of them are not ready",
       .examples = {"reeldb reels-of \"KITCHEN WIDE\"", "reeldb reels-of --reel A002",
                    "reeldb reels-of --file evening.edl --json"},
       .details =
           "A reel is missing (no record of it), unavailable, of unknown type, the last two perhaps at once, or\n"
           "ready. A list need not have been imported; what of it is in no reel is told on standard error."},
      [options](const Globals& globals) { return run(*options, globals); });
  takeTexts(app, "CLIP", options->clips, "Clip names of shots in the project")->type_name("");
  takeText(app, "--reel", options->reel, "The shots recorded from this reel")->type_name("ID");
  takeText(app, "--file", options->file, "The clips of this cut list or log file")->type_name("LIST");
  takeJson(app, options->json);
}

} // namespace reeldb::cli
