// SPDX-License-Identifier: Apache-2.0
#include "commands/commands.h"

#include <algorithm>
#include <cstdio>

#include <fmt/ranges.h>

#include <fmt/format.h>

#include "app/export.h"
#include "app/json/json.h"
#include "app/list_export.h"
#include "app/list_files.h"
#include "base/number.h"
#include "base/text_width.h"
#include "commands/tables.h"
#include "text/counted.h"
#include "text/output.h"
#include "text/terminal.h"

namespace reeldb::cli {

namespace {

struct Options {
  std::optional<std::string> list;
  bool edl = false, ale = false, csv = false, json = false;
  bool reelsOnly = false, history = false;
  std::optional<std::string> reelLength, file;
  bool force = false;
};

constexpr std::size_t usualReelLength = 8; // of a cut list of the project; a list of its own has its own

[[noreturn]] void refuse(const std::string& what)
{
  throw app::Error(app::ErrorKind::Invalid, what);
}

std::optional<std::size_t> readReelLength(const Options& options)
{
  if (!options.reelLength)
    return std::nullopt;
  const std::vector<std::size_t>& lengths = app::reelLengths();
  const auto number = base::parseNumber(*options.reelLength);
  const auto found = std::find(lengths.begin(), lengths.end(), static_cast<std::size_t>(number.value_or(0)));
  if (found == lengths.end())
    refuse(fmt::format("--reel-length {}: invalid (use one of {})", base::shortText(*options.reelLength),
                       fmt::join(lengths, ", ")));
  return *found;
}

/// An export of a list needs no format: it has its own.
void checkListOptions(const Options& options)
{
  if (options.csv || options.json || options.reelsOnly || options.history)
    refuse("export LIST: only --edl and --ale choose its format (reeldb list-file show LIST --json shows it as JSON)");
  if (options.edl && options.ale)
    refuse("export LIST: --edl and --ale exclude each other");
  if (options.reelLength && options.ale)
    refuse("export: --reel-length needs --edl");
}

void checkOptions(const Options& options)
{
  if (options.force && !options.file)
    refuse("export: --force needs -o FILE");
  if (options.list)
    return checkListOptions(options);
  if (const int formats = options.edl + options.ale + options.csv + options.json; formats != 1)
    refuse(fmt::format("export: {} (use one of --edl, --ale, --csv, --json)",
                       formats == 0 ? "no format given" : "more than one format given"));
  if (options.reelLength && !options.edl)
    refuse("export: --reel-length needs --edl");
  if (options.reelsOnly && (options.edl || options.ale))
    refuse("export: --reels needs --csv or --json (lists contain shots)");
  if (options.history && (!options.json || options.reelsOnly))
    refuse("export: --history needs --json and excludes --reels");
}

app::Written write(const Options& options, const app::ProjectContent& content, std::size_t reelLength)
{
  if (options.edl)
    return app::writeEdl(content, reelLength);
  if (options.ale)
    return app::writeAle(content);
  if (options.json)
    return {app::jsonText(content), content.shots.size(), {}, {}};
  return options.reelsOnly ? app::writeReelsCsv(content) : app::writeShotsCsv(content);
}

/// Writes to the file or standard output, and complains of what it is not. @p what is in the file: "3 shots".
ExitCode writeOut(const Options& options, const app::Written& written, const std::string& what)
{
  if (options.file) {
    app::writeOutputFile(*options.file, written.text, options.force);
    print(fmt::format("{}: {}\n", base::displayText(*options.file), what));
  } else {
    printBytes(written.text);
  }
  complainOf(written.remarks);
  complainOf(written.leftOut);
  return written.leftOut.empty() ? done : incomplete;
}

ExitCode writeList(const Options& options, std::optional<std::size_t> reelLength, const Globals& globals)
{
  app::ListForm form{{}, reelLength};
  if (options.edl || options.ale)
    form.format = options.edl ? lists::Format::Edl : lists::Format::Ale;
  app::Session session(globals.project, app::Access::Read);
  const app::Written written = app::exportList(session, *options.list, form);
  return writeOut(options, written, counted(written.shots, "event"));
}

ExitCode run(const Options& options, const Globals& globals)
{
  checkOptions(options);
  const std::optional<std::size_t> reelLength = readReelLength(options);
  if (options.list)
    return writeList(options, reelLength, globals);
  app::Session session(globals.project, app::Access::Read);
  app::ProjectContent content = app::readContent(session);
  content.reelsOnly = options.reelsOnly;
  if (options.json && !options.reelsOnly)
    content.state = app::readState(session);
  if (options.history)
    content.history = app::readHistory(session, std::nullopt).commits;
  const app::Written written = write(options, content, reelLength.value_or(usualReelLength));
  return writeOut(options, written,
                  options.reelsOnly ? counted(content.reels.size(), "reel") : counted(written.shots, "shot"));
}

} // namespace

void addExport(CommandLine& line)
{
  const auto options = std::make_shared<Options>();
  Command command = line.add(
      {.name = "export",
       .description = "Write a list of the project, or its reels and shots, as a cut list, a log file, a table or JSON",
       .examples = {"reeldb export evening.edl", "reeldb export --edl --reel-length 32 -o cut.edl",
                    "reeldb export --ale -o rushes-out.ale", "reeldb export --csv --reels",
                    "reeldb export --json -o main.json"},
       .details =
           "LIST is a list that was imported: its number, file name or title. Its events are written as they were\n"
           "imported, with transitions, speeds and repeated shots, but with the present names of reels. Without\n"
           "LIST, a cut list has one event for each shot of the project, a cut.\n"
           "\n"
           "The reel names of a cut list have the length that the receiving system reads: three digits, 6 or 8\n"
           "capitals and digits, or 32 or 129 characters; those of LIST by default. They are unique, and notes\n"
           "at the head map them to the full names; reeldb import reads these notes, so an exported list or log\n"
           "gives the same reels and shots again. A table (RFC 4180) contains shots or reels. JSON contains the\n"
           "whole project except its history; reeldb project new NAME --from FILE makes the same project from it.\n"
           "A file is written completely or not at all. The command reports whatever a list cannot contain; if\n"
           "a shot is left out, the exit code is 4."},
      [options](const Globals& globals) { return run(*options, globals); });
  command.text("LIST", options->list, "The list to write; without it, the project").shownAs("");
  command.flag("--edl", options->edl, "A cut list (CMX3600 EDL)");
  command.flag("--ale", options->ale, "A log exchange file (ALE)");
  command.flag("--csv", options->csv, "A table of the shots");
  command.flag("--json", options->json, "The whole project as JSON, for project new --from");
  command.flag("--reels", options->reelsOnly, "The reels without the shots, for --csv and --json");
  command.flag("--history", options->history, "Also the commits of the project, for --json");
  command.text("--reel-length", options->reelLength, "Characters of a reel name: 3, 6, 8 (the default), 32 or 129")
      .shownAs("N");
  command.text("-o,--output", options->file, "The file to write; without it, standard output").shownAs("FILE");
  command.flag("--force", options->force, "Replace the file if it exists");
}

} // namespace reeldb::cli
