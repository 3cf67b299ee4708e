// SPDX-License-Identifier: Apache-2.0
#include "commands/commands.h"

#include <algorithm>
#include <functional>

#include <fmt/format.h>

#include "app/json/json.h"
#include "app/reel_fields.h"
#include "app/reels.h"
#include "app/rolls.h"
#include "app/selection.h"
#include "base/ascii.h"
#include "base/text_width.h"
#include "commands/tables.h"
#include "commands/where.h"
#include "text/counted.h"
#include "text/output.h"
#include "text/table.h"

namespace reeldb::cli {

namespace {

struct Options {
  std::vector<std::string> ids, where, sort, columns;
  std::optional<std::string> by;
  bool noHeader = false;
  bool json = false;
};

/// A column of the table, and the text of a reel in it.
struct ReelColumn {
  std::string field; ///< its name for --columns
  Column column;
  std::function<std::string(const app::Reel&)> text;
};

std::vector<ReelColumn> allColumns()
{
  using app::Reel;
  std::vector<ReelColumn> columns = {
      {"name", {"REEL"}, [](const Reel& reel) { return reel.id; }},
      {"type", {"TYPE"}, [](const Reel& reel) { return orDash(reel.type); }},
      {"available", {"AVAILABLE"}, [](const Reel& reel) { return std::string(yesOrNo(reel.available)); }},
      {"inhibit", {"INHIBIT"}, [](const Reel& reel) { return std::string(yesOrNo(reel.inhibit)); }},
      {"shots", {.title = "SHOTS", .number = true}, [](const Reel& reel) { return std::to_string(reel.shots); }},
      {"video",
       {.title = "VIDEO", .number = true},
       [](const Reel& reel) { return std::to_string(reel.videoChannels); }},
      {"audio",
       {.title = "AUDIO", .number = true},
       [](const Reel& reel) { return std::to_string(reel.audioChannels); }},
      {"last-device", {.title = "LAST DEVICE", .optional = true}, [](const Reel& reel) { return reel.lastDevice; }},
      {"label-map", {.title = "LABEL MAP", .optional = true}, [](const Reel& reel) { return reel.labelMapping; }},
      {"bin", {.title = "BIN", .optional = true}, [](const Reel& reel) { return reel.bin; }}};
  const auto names = app::userFieldNames();
  for (std::size_t i = 0; i < names.size(); ++i)
    columns.push_back({fmt::format("user-field.{}", i), {.title = names[i], .optional = true}, [i](const Reel& reel) {
                         return reel.userFields[i];
                       }});
  return columns;
}

/// The columns of these fields, or all if there are no fields. A column that was asked for is shown even if it is
/// empty.
std::vector<ReelColumn> columnsOf(const std::vector<std::string>& fields)
{
  std::vector<ReelColumn> all = allColumns();
  if (fields.empty())
    return all;
  std::vector<ReelColumn> columns;
  for (const std::string& field : fields) {
    std::string name = app::reelFieldName(field).value_or(base::fold(field));
    if (name == "shelf")
      name = "bin";
    const auto found =
        std::find_if(all.begin(), all.end(), [&](const ReelColumn& column) { return column.field == name; });
    if (found == all.end())
      throw app::Error(
          app::ErrorKind::Invalid,
          fmt::format("--columns {}: no such column (name, type, available, inhibit, shots, video, audio, "
                      "last-device, label-map, shelf, user-field.0 to user-field.{}, or the name of a user "
                      "field)",
                      base::shortText(field), app::userFieldCount - 1));
    columns.push_back(*found);
    columns.back().column.optional = false;
  }
  return columns;
}

void printTable(const std::vector<app::Reel>& reels, const Options& options)
{
  const std::vector<ReelColumn> shown = columnsOf(options.columns);
  std::vector<Column> columns;
  columns.reserve(shown.size());
  for (const ReelColumn& column : shown)
    columns.push_back(column.column);
  Table table(std::move(columns));
  if (options.noHeader)
    table.hideTitles();
  for (const app::Reel& reel : reels) {
    std::vector<std::string> row;
    row.reserve(shown.size());
    for (const ReelColumn& column : shown)
      row.push_back(column.text(reel));
    table.add(std::move(row));
  }
  table.print();
  if (!options.noHeader)
    print(counted(reels.size(), "reel") + "\n");
}

void printTable(const std::vector<app::Roll>& rolls)
{
  Table table({{"ROLL"}, {.title = "REELS", .number = true}, {.title = "SHOTS", .number = true}});
  for (const app::Roll& roll : rolls)
    table.add({orDash(roll.name), std::to_string(roll.reels.size()), std::to_string(roll.shots)});
  table.print();
  const bool hasOthers = !rolls.empty() && rolls.back().name.empty();
  print(counted(rolls.size() - (hasOthers ? 1 : 0), "roll") + "\n");
}

ExitCode byRoll(const Options& options, app::Session& session)
{
  const std::vector<app::Roll> rolls = app::reelsByRoll(session);
  if (options.json)
    print(app::jsonText(rolls));
  else
    printTable(rolls);
  return done;
}

/// Throws app::Error if options exclude each other.
void checkOptions(const Options& options)
{
  const auto refuse = [](const char* what) { throw app::Error(app::ErrorKind::Invalid, what); };
  const bool selects = !options.ids.empty() || !options.where.empty();
  if (options.by && (selects || !options.sort.empty() || !options.columns.empty() || options.noHeader))
    refuse("list: --by excludes all other options but --json");
  if (options.json && (!options.columns.empty() || options.noHeader))
    refuse("list: --json excludes --columns and --no-header (it has all fields)");
}

ExitCode run(const Options& options, const Globals& globals)
{
  checkOptions(options);
  requireGroup(options.by);
  app::Session session(globals.project, app::Access::Read);
  if (options.by)
    return byRoll(options, session);
  const app::Selection selection{options.ids, options.where};
  std::vector<app::Reel> reels = selection.empty() ? app::listReels(session) : app::selectReels(session, selection);
  if (!options.sort.empty())
    app::sortReels(reels, options.sort);
  if (options.json)
    print(app::jsonText(reels));
  else if (reels.empty() && selection.empty())
    print(options.noHeader ? "" : "no reels yet (reeldb import FILE makes them, or reeldb create ID)\n");
  else if (reels.empty())
    print(options.noHeader ? "" : "no reel matches\n");
  else
    printTable(reels, options);
  return done;
}

} // namespace

void addList(CommandLine& line)
{
  const auto options = std::make_shared<Options>();
  Command command = line.add(
      {.name = "list",
       .description = "List the reels of the project",
       .examples = {"reeldb list", "reeldb list \"A0*\" --where available=no --sort shelf --sort -shots",
                    "reeldb list --where available=yes --columns name --no-header", "reeldb list --by roll",
                    "reeldb list --json"},
       .details =
           "VIDEO and AUDIO are the numbers of channels that the reel has, whatever its type says. SHOTS counts\n"
           "the shots with the reel's identifier, ignoring letter case.\n"
           "\n"
           "--sort takes a field, in the other direction with a minus in front; given several times, the first counts\n"
           "most. Numbers in a text count as numbers, and reels without a value come last. --columns takes a column\n"
           "and may be given several times.\n"
           "\n" +
           std::string(whereRule) +
           "\n\n"
           "--by roll counts the reels of each camera roll instead: those whose identifier begins with the camera\n"
           "roll of a log, or is that of a camera clip (A012C003 is of A012). Reels of no roll are on the last line."},
      [options](const Globals& globals) { return run(*options, globals); });
  command.texts("ID", options->ids, "Only these reels").shownAs("");
  addWhere(command, options->where);
  command.texts("--sort", options->sort, "Sort by this field; may be given several times")
      .shownAs("FIELD")
      .oneEachTime();
  command.texts("--columns", options->columns, "Show this column; may be given several times")
      .shownAs("FIELD")
      .oneEachTime();
  command.flag("--no-header", options->noHeader, "Only the rows: no titles and no count");
  command.text("--by", options->by, "Group the reels: roll").shownAs("GROUP");
  command.json(options->json);
}

} // namespace reeldb::cli
