// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <cstdio>
#include <unordered_map>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "commands/commands.h"
#include "lists/short_names.h"
#include "lists/write.h"
#include "text/counted.h"
#include "text/csv.h"
#include "text/display_text.h"
#include "line/failure.h"
#include "app/host_text.h"
#include "app/number.h"
#include "app/old_names.h"
#include "app/output_file.h"
#include "app/project_file.h"
#include "app/reel.h"
#include "app/session.h"
#include "app/shot.h"
#include "app/shot_key.h"
#include "text/terminal.h"

namespace reeldb::cli {

namespace {

struct Options {
  bool edl = false, ale = false, csv = false, json = false;
  bool reelsOnly = false;
  std::optional<std::string> reelLength, file;
  bool force = false;
};

constexpr std::size_t usualReelLength = 8;

/// The project, as it is written.
struct Content {
  std::string project;
  std::string rate;
  std::vector<Reel> reels;
  std::vector<std::vector<std::string>> oldNames; ///< of each reel
  std::vector<reelhost::Material> shots;
};

Content readContent(Session& session)
{
  Content content;
  content.project = reelhost::projectInfo().name;
  content.rate = frameRateName(requireFacility(), reelhost::projectInfo().frameRate);
  // By record, not by name: of two reels that differ in case a lookup finds the first.
  const ShotCounts shots = reelhost::shotCounts();
  for (const Cookie& log : session.manager().reelList) {
    const ReelDbRec record(log);
    Reel reel = readReel(record, shots);
    if (reel.id.empty())
      continue;
    content.reels.push_back(std::move(reel));
    content.oldNames.push_back(oldNamesOf(record));
  }
  content.shots = materialOf(reelhost::allShots());
  return content;
}

/// The shots, with reels spelled as their records are.
std::vector<lists::Clip> clipsOf(const Content& content)
{
  std::unordered_map<std::string, std::string> spellings;
  for (const Reel& reel : content.reels)
    spellings.try_emplace(folded(reel.id), reel.id);
  std::vector<lists::Clip> clips;
  for (const reelhost::Material& shot : content.shots) {
    clips.push_back(clipOf(shot));
    if (const auto found = spellings.find(folded(shot.reel)); found != spellings.end())
      clips.back().reel = found->second;
  }
  return clips;
}

std::string reelsCsv(const Content& content)
{
  std::vector<std::string> titles = {"id",  "type",        "available",      "inhibit",       "label_mapping",
                                     "bin", "last_device", "video_channels", "audio_channels"};
  for (std::size_t i = 0; i < userFieldCount; ++i)
    titles.push_back(fmt::format("user_field_{}", i));
  titles.insert(titles.end(), {"shots", "old_names"});
  std::string text = csvRow(titles);
  for (std::size_t i = 0; i < content.reels.size(); ++i) {
    const Reel& reel = content.reels[i];
    std::vector<std::string> row = {reel.id,
                                    reel.type,
                                    std::string(yesOrNo(reel.available)),
                                    std::string(yesOrNo(reel.inhibit)),
                                    reel.labelMapping,
                                    reel.bin,
                                    reel.lastDevice,
                                    std::to_string(reel.videoChannels),
                                    std::to_string(reel.audioChannels)};
    row.insert(row.end(), reel.userFields.begin(), reel.userFields.end());
    row.push_back(std::to_string(reel.shots));
    row.push_back(fmt::format("{}", fmt::join(content.oldNames[i], "\n")));
    text += csvRow(row);
  }
  return text;
}

std::string shotsCsv(const Content& content)
{
  std::string text = csvRow({"reel", "clip", "tracks", "source_in", "source_out", "record_in", "record_out",
                             "source_file", "aliases", "video_channels", "audio_channels"});
  for (const reelhost::Material& shot : content.shots)
    text +=
        csvRow({shot.reel, shot.name, shot.tracks, shot.sourceIn, shot.sourceOut, shot.recordIn, shot.recordOut,
                shot.sourceFile, shot.aliases, std::to_string(shot.videoChannels), std::to_string(shot.audioChannels)});
  return text;
}

std::string contentJson(const Content& content, bool reelsOnly)
{
  Json json = {{"project", content.project}, {"frame_rate", content.rate}};
  json["reels"] = Json::array();
  for (std::size_t i = 0; i < content.reels.size(); ++i) {
    json["reels"].push_back(toJson(content.reels[i]));
    json["reels"].back()["old_names"] = content.oldNames[i];
  }
  if (!reelsOnly)
    json["shots"] = toJson(content.shots);
  return jsonText(json);
}

std::size_t readReelLength(const Options& options)
{
  if (!options.reelLength)
    return usualReelLength;
  const auto& fields = lists::kReelFields;
  const auto number = parseNumber(*options.reelLength);
  const auto found = std::find(fields.begin(), fields.end(), static_cast<std::size_t>(number.value_or(0)));
  if (found == fields.end())
    throw Failure(usage, fmt::format("{}: no length of a reel field (there are {})", shortText(*options.reelLength),
                                     fmt::join(fields, ", ")));
  return *found;
}

void checkOptions(const Options& options)
{
  if (options.edl + options.ale + options.csv + options.json != 1)
    throw Failure(usage, "export: say which format: one of --edl, --ale, --csv, --json");
  if (options.reelLength && !options.edl)
    throw Failure(usage, "export: --reel-length is for --edl");
  if (options.reelsOnly && (options.edl || options.ale))
    throw Failure(usage, "export: --reels is for --csv and --json (lists are of shots)");
  if (options.force && !options.file)
    throw Failure(usage, "export: --force is for -o FILE");
}

/// Reels that no shot speaks of are in no list.
void tellShotless(const Content& content)
{
  const auto count =
      std::count_if(content.reels.begin(), content.reels.end(), [](const Reel& reel) { return reel.shots == 0; });
  if (count > 0)
    complain(fmt::format("{} without a shot: not in the list", counted(count, "reel")));
}

lists::Written writeList(const Options& options, const Content& content, std::size_t reelLength)
{
  try {
    return options.edl ? lists::writeEdl(content.project, clipsOf(content), reelLength)
                       : lists::writeAle(content.rate, clipsOf(content));
  } catch (const lists::Error& error) {
    throw Failure(refused, fmt::format("export: nothing written ({})", error.what()));
  }
}

/// A terminal gets no control characters, whatever the project holds.
void printBytes(const std::string& text)
{
  if (!isTerminal(stdout))
    return print(text);
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t end = std::min(text.find('\n', at), text.size());
    print(displayText(text.substr(at, end - at)) + "\n");
    at = end + 1;
  }
}

ExitCode run(const Options& options, const Globals& globals)
{
  checkOptions(options);
  const std::size_t reelLength = readReelLength(options);
  Session session(globals, reelhost::Access::Read);
  const Content content = readContent(session);
  std::string text;
  std::size_t shots = content.shots.size();
  std::vector<std::string> remarks, leftOut;
  if (options.edl || options.ale) {
    lists::Written written = writeList(options, content, reelLength);
    text = std::move(written.text);
    shots = written.clips;
    remarks = std::move(written.remarks);
    leftOut = std::move(written.leftOut);
  } else {
    text = options.json        ? contentJson(content, options.reelsOnly)
           : options.reelsOnly ? reelsCsv(content)
                               : shotsCsv(content);
  }
  if (options.file) {
    writeOutputFile(*options.file, text, options.force);
    print(fmt::format("{}: {}\n", displayText(*options.file),
                      options.reelsOnly ? counted(content.reels.size(), "reel") : counted(shots, "shot")));
  } else {
    printBytes(text);
  }
  if (options.edl || options.ale)
    tellShotless(content);
  for (const std::vector<std::string>* messages : {&remarks, &leftOut})
    for (const std::string& message : *messages)
      complain(message);
  return leftOut.empty() ? done : incomplete;
}

} // namespace

void addExport(CommandLine& line)
{
  const auto options = std::make_shared<Options>();
  CLI::App& app = line.add(
      {.name = "export",
       .description = "Write the reels and shots of the project as a cut list, a log file, a table or JSON",
       .examples = {"reeldb export --edl --reel-length 32 -o cut.edl", "reeldb export --ale -o rushes-out.ale",
                    "reeldb export --csv --reels", "reeldb export --json"},
       .details = "A cut list has an event for each shot. Its reel names fit the field of the device it is for: three\n"
                  "digits, 6 or 8 capitals and digits, 32 or 129 characters. No two reels share one, and notes at the\n"
                  "head say which reel each stands for; reeldb import reads them, so that a list or log comes back\n"
                  "as the same reels and shots. A table (RFC 4180) is of shots, or of reels. A file is written whole\n"
                  "or not at all. What a list cannot hold is told; a shot that is left out makes the exit code 4."},
      [options](const Globals& globals) { return run(*options, globals); });
  takeFlag(app, "--edl", options->edl, "A cut list (CMX3600 EDL)");
  takeFlag(app, "--ale", options->ale, "A log exchange file (ALE)");
  takeFlag(app, "--csv", options->csv, "A table of the shots");
  takeFlag(app, "--json", options->json, "Reels and shots as JSON");
  takeFlag(app, "--reels", options->reelsOnly, "The reels alone, for --csv and --json");
  takeText(app, "--reel-length", options->reelLength, "Characters of a reel name: 3, 6, 8 (the default), 32 or 129")
      ->type_name("N");
  takeText(app, "-o,--output", options->file, "The file to write; without it, standard output")->type_name("FILE");
  takeFlag(app, "--force", options->force, "Replace the file if it is there");
}

} // namespace reeldb::cli
