// SPDX-License-Identifier: Apache-2.0
#include <fmt/format.h>

#include "commands/commands.h"
#include "text/counted.h"
#include "text/display_text.h"
#include "app/known_names.h"
#include "app/list_diff.h"
#include "app/list_file.h"
#include "app/session.h"
#include "app/shot.h"
#include "text/table.h"

namespace reeldb::cli {

namespace {

struct Options {
  std::vector<std::string> files;
  bool gone = false;
  bool json = false;
};

std::string newReelText(const NewReel& reel)
{
  std::string result = "  " + displayText(reel.id);
  for (std::size_t i = 0; i < reel.candidates.size(); ++i)
    result += fmt::format("{}{}: {}", i == 0 ? " (perhaps " : "; or ", displayText(reel.candidates[i].reel),
                          reasonsText(reel.candidates[i]));
  return result + (reel.candidates.empty() ? "\n" : ")\n");
}

void printShotsOf(const std::string& heading, const std::vector<reelhost::Material>& shots)
{
  constexpr std::size_t indent = 2;
  if (shots.empty())
    return;
  print(fmt::format("{} {}:\n", counted(shots.size(), "shot"), heading));
  Table table({{"REEL"},
               {"CLIP"},
               {"TRACKS"},
               {"SOURCE IN"},
               {"SOURCE OUT"},
               {.title = "RECORD IN", .optional = true},
               {.title = "RECORD OUT", .optional = true}});
  for (const reelhost::Material& shot : shots)
    table.add({shot.reel, shot.name.empty() ? "-" : shot.name, shot.tracks, shot.sourceIn, shot.sourceOut,
               shot.recordIn, shot.recordOut});
  table.print(indent);
}

void printDiff(const ListDiff& diff)
{
  if (!diff.newReels.empty())
    print(fmt::format("{} new:\n", counted(diff.newReels.size(), "reel")));
  for (const NewReel& reel : diff.newReels)
    print(newReelText(reel));
  if (!diff.goneReels.empty())
    print(fmt::format("{} gone:\n", counted(diff.goneReels.size(), "reel")));
  for (const std::string& reel : diff.goneReels)
    print(fmt::format("  {}\n", displayText(reel)));
  if (!diff.spellings.empty())
    print("same reel, other spelling:\n");
  for (const lists::Spelling& spelling : diff.spellings)
    print(fmt::format("  {} is {}\n", displayText(spelling.other), displayText(spelling.reel)));
  printShotsOf("added", diff.added);
  printShotsOf("no longer there", diff.missing);
  if (diff.empty())
    print("no differences\n");
}

Json rejectedJson(const std::vector<std::string>& files, const std::vector<lists::List>& lists)
{
  Json json = Json::array();
  for (std::size_t i = 0; i < lists.size(); ++i)
    for (const lists::Rejected& line : lists[i].rejected)
      json.push_back({{"file", files[i]}, {"line", line.line}, {"text", line.text}, {"reason", line.reason}});
  return json;
}

Json diffJson(const ListDiff& diff, const Options& options)
{
  Json json;
  json["files"] = options.files;
  json["equal"] = diff.empty();
  json["reels_new"] = Json::array();
  for (const NewReel& reel : diff.newReels)
    json["reels_new"].push_back({{"reel", reel.id}, {"candidates", toJson(reel.candidates)}});
  json["reels_gone"] = options.gone ? Json(diff.goneReels) : Json(nullptr);
  json["spellings"] = Json::array();
  for (const lists::Spelling& spelling : diff.spellings)
    json["spellings"].push_back({{"reel", spelling.reel}, {"other", spelling.other}});
  json["shots_added"] = toJson(diff.added);
  json["shots_gone"] = toJson(diff.missing);
  return json;
}

ExitCode run(const Options& options, const Globals& globals)
{
  std::vector<lists::List> lists;
  for (const std::string& file : options.files)
    lists.push_back(readListFile(file));
  Session session(globals, reelhost::Access::Read);
  const ListDiff diff = compareLists(lists, session.manager(), options.gone);
  const Json rejected = rejectedJson(options.files, lists);
  if (options.json) {
    Json json = diffJson(diff, options);
    json["rejected"] = rejected;
    printJson(json);
    return rejected.empty() ? done : incomplete;
  }
  printDiff(diff);
  for (const Json& line : rejected)
    complain(fmt::format("{}: line {} rejected: {} ({})", line.at("file").get<std::string>(),
                         line.at("line").get<int>(), line.at("reason").get<std::string>(),
                         line.at("text").get<std::string>()));
  return rejected.empty() ? done : incomplete;
}

} // namespace

void addDiff(CommandLine& line)
{
  const auto options = std::make_shared<Options>();
  CLI::App& app = line.add(
      {.name = "diff",
       .description = "Tell what a new version of a cut list or log file changes against the project",
       .examples = {"reeldb diff evening.edl", "reeldb diff --gone evening.edl", "reeldb diff --json rushes.ale"},
       .details =
           "Several files are taken together. Told are reels that an import would make (and which reels they may be\n"
           "after all, see reeldb which), reels in other spelling, shots it would add, and shots of the lists'\n"
           "reels that are in the project but no longer in the lists. A cut list is compared with the shots of\n"
           "cut lists, a log file with those of log files. --gone takes the files for all there is: reels that none\n"
           "of them names are gone, with their shots. Nothing is changed; the exit code is 0 with differences and\n"
           "without, 4 when lines were rejected."},
      [options](const Globals& globals) { return run(*options, globals); });
  takeTexts(app, "FILE", options->files, "The lists")->required()->type_name("");
  takeFlag(app, "--gone", options->gone, "Also tell of reels that none of the files names");
  takeJson(app, options->json);
}

} // namespace reeldb::cli
