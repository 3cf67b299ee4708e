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
#include "app/selection.h"
#include "base/number.h"
#include "base/text_width.h"
#include "commands/tables.h"
#include "commands/where.h"
#include "text/counted.h"
#include "text/output.h"
#include "text/terminal.h"

namespace reeldb::cli {

namespace {

struct Options {
  std::optional<std::string> list, otherList;
  std::vector<std::string> reels, where;
  bool edl = false, ale = false, otio = false, csv = false, json = false;
  bool reelsOnly = false, history = false;
  std::optional<std::string> reelLength, file;
  bool force = false;

  app::Selection selection() const { return {reels, where}; }
  int formats() const { return edl + ale + otio + csv + json; }
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

void checkOptions(const Options& options)
{
  if (options.list && options.otherList)
    refuse("export: LIST and --list exclude each other");
  if (options.force && !options.file)
    refuse("export: --force needs -o FILE");
  const bool isList = options.list || options.otherList;
  if (const int formats = options.formats(); formats > 1 || (formats == 0 && (!isList || options.reelsOnly)))
    refuse(fmt::format("export: {} (use one of --edl, --ale, --otio, --csv, --json)",
                       formats == 0 ? "no format given" : "more than one format given"));
  if (options.reelLength && (isList ? options.ale || options.otio || options.csv || options.json : !options.edl))
    refuse("export: --reel-length needs --edl");
  if (options.reelsOnly && !options.csv && !options.json)
    refuse("export: --reels needs --csv or --json (lists contain shots)");
  if (options.history && (!options.json || options.reelsOnly || isList || !options.selection().empty()))
    refuse("export: --history needs --json and excludes --reels, --reel, --where and a list");
}

app::Written write(const Options& options, const app::ProjectContent& content, std::size_t reelLength)
{
  if (options.edl)
    return app::writeEdl(content, reelLength);
  if (options.ale)
    return app::writeAle(content);
  if (options.otio)
    return app::writeOtio(content);
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

app::Written listText(const Options& options, std::optional<std::size_t> reelLength, app::Session& session)
{
  if (options.csv)
    return app::writeEventsCsv(app::selectedEvents(session, *options.list, options.selection()));
  if (options.json) {
    const app::ListEvents found = app::selectedEvents(session, *options.list, options.selection());
    return {app::jsonText(found), found.events.size(), {}, {}};
  }
  app::ListForm form{{}, reelLength};
  if (options.edl || options.ale || options.otio)
    form.format = options.edl ? lists::Format::Edl : options.ale ? lists::Format::Ale : lists::Format::Otio;
  return app::exportList(session, *options.list, form, options.selection());
}

ExitCode writeProject(const Options& options, std::optional<std::size_t> reelLength, app::Session& session)
{
  app::Selection selection = options.selection();
  if (options.list) // its reels
    selection.where.push_back("list=" + std::to_string(app::requireList(session, *options.list).number));
  app::ProjectContent content = app::readContent(session);
  if (!selection.empty())
    app::restrictTo(session, content, selection);
  content.reelsOnly = options.reelsOnly;
  if (options.json && !options.reelsOnly && selection.empty())
    content.state = app::readState(session);
  if (options.history)
    content.history = app::readHistory(session, std::nullopt).commits;
  const app::Written written = write(options, content, reelLength.value_or(usualReelLength));
  return writeOut(options, written,
                  options.reelsOnly ? counted(content.reels.size(), "reel") : counted(written.shots, "shot"));
}

ExitCode run(Options options, const Globals& globals)
{
  checkOptions(options);
  if (options.otherList)
    options.list = options.otherList;
  const std::optional<std::size_t> reelLength = readReelLength(options);
  app::Session session(globals.project, app::Access::Read);
  if (!options.list || options.reelsOnly)
    return writeProject(options, reelLength, session);
  const app::Written written = listText(options, reelLength, session);
  return writeOut(options, written, counted(written.shots, "event"));
}

} // namespace

void addExport(CommandLine& line)
{
  const auto options = std::make_shared<Options>();
  Command command = line.add(
      {.name = "export",
       .description =
           "Write a list of the project, or its reels and shots, as a cut list, a log, a timeline, a table or JSON",
       .examples = {"reeldb export evening.edl", "reeldb export --otio --list evening.edl",
                    "reeldb export --edl --reel-length 32 -o cut.edl", "reeldb export --ale -o rushes-out.ale",
                    "reeldb export --csv --reels --where available=yes", "reeldb export --json -o main.json"},
       .details =
           "LIST is a list that was imported: its number, file name or title. Its events are written as they were\n"
           "imported, with transitions, speeds and repeated shots, but with the present names of reels, in the format\n"
           "of LIST; as a cut list if that format is only read. Without LIST, each shot of the project is written\n"
           "once: in a cut list as a cut, in OTIO as a clip of a collection.\n"
           "\n"
           "The reel names of a cut list have the length that the receiving system reads: three digits, 6 or 8\n"
           "capitals and digits, or 32 or 129 characters; those of LIST by default. They are unique, and notes\n"
           "at the head map them to the full names; reeldb import reads these notes, so an exported list or log\n"
           "gives the same reels and shots again. A table (RFC 4180) contains shots, reels or the events of LIST.\n"
           "JSON contains the whole project except its history; reeldb project new NAME --from FILE makes the same\n"
           "project from it. JSON of some reels contains these and their shots, and JSON of LIST is that of reeldb\n"
           "list-file show.\n"
           "A file is written completely or not at all. The command reports whatever a list cannot contain; if\n"
           "a shot is left out, the exit code is 4.\n"
           "\n"
           "--reel and --where take some of the reels, with their shots or events.\n" +
           std::string(whereRule)},
      [options](const Globals& globals) { return run(*options, globals); });
  command.text("LIST", options->list, "The list to write; without it, the project").shownAs("");
  command.text("--list", options->otherList, "The same as LIST").shownAs("LIST");
  command.flag("--edl", options->edl, "A cut list (CMX3600 EDL)");
  command.flag("--ale", options->ale, "A log exchange file (ALE)");
  command.flag("--otio", options->otio, "A timeline (OTIO)");
  command.flag("--csv", options->csv, "A table of the shots");
  command.flag("--json", options->json, "The whole project as JSON, for project new --from");
  command.flag("--reels", options->reelsOnly, "The reels without the shots, for --csv and --json");
  command.flag("--history", options->history, "Also the commits of the project, for --json");
  command.texts("--reel", options->reels, "Only this reel, or those of a pattern; may be given several times")
      .shownAs("ID")
      .oneEachTime();
  addWhere(command, options->where);
  command.text("--reel-length", options->reelLength, "Characters of a reel name: 3, 6, 8 (the default), 32 or 129")
      .shownAs("N");
  command.text("-o,--output", options->file, "The file to write; without it, standard output").shownAs("FILE");
  command.flag("--force", options->force, "Replace the file if it exists");
}

} // namespace reeldb::cli
