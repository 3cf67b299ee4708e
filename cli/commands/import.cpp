// SPDX-License-Identifier: Apache-2.0
#include <algorithm>

#include <fmt/format.h>

#include "commands/commands.h"
#include "text/display_text.h"
#include "line/failure.h"
#include "text/import_report.h"
#include "app/importer.h"
#include "app/list_file.h"
#include "app/session.h"
#include "text/terminal.h"

namespace reeldb::cli {

namespace {

struct Options {
  std::vector<std::string> files;
  bool dryRun = false;
  bool json = false;
};

constexpr std::size_t usualColumns = 100;

void report(const Options& options, const std::vector<Imported>& all, bool stored, bool changes)
{
  if (options.json) {
    Json json;
    json["dry_run"] = options.dryRun;
    json["stored"] = stored;
    json["files"] = Json::array();
    for (const Imported& imported : all)
      json["files"].push_back(toJson(imported));
    printJson(json);
    return;
  }
  const Mood mood = options.dryRun ? Mood::Conditional : Mood::Fact;
  for (const Imported& imported : all)
    print(toText(imported, terminalColumns(stdout).value_or(usualColumns), mood));
  if (!changes)
    print(options.dryRun ? "dry run: there would be nothing new\n" : "nothing new: the project stays as it was\n");
  else if (!stored)
    print("dry run: the project stays as it was\n");
}

/// All files, before any is brought in: one that cannot be read leaves the project alone. Each that cannot is named.
std::vector<lists::List> readAll(const std::vector<std::string>& files)
{
  std::vector<lists::List> lists;
  std::vector<Failure> failures;
  for (const std::string& file : files) {
    try {
      lists.push_back(readListFile(file));
    } catch (const Failure& failure) {
      failures.push_back(failure);
    }
  }
  if (failures.empty())
    return lists;
  if (files.size() == 1)
    throw failures.front();
  for (const Failure& failure : failures)
    complain(failure.what());
  const bool damaged = std::any_of(failures.begin(), failures.end(),
                                   [](const Failure& failure) { return failure.code() == unreadable; });
  throw Failure(
      damaged ? unreadable : refused,
      fmt::format("import: nothing brought in ({} of {} files cannot be read)", failures.size(), files.size()));
}

ExitCode run(const Options& options, const Globals& globals)
{
  std::vector<lists::List> lists = readAll(options.files);
  std::size_t clips = 0;
  bool rejected = false;
  for (const lists::List& list : lists) {
    clips += list.clips.size();
    rejected = rejected || !list.rejected.empty();
  }
  Session session(globals, options.dryRun ? reelhost::Access::Read : reelhost::Access::Write);
  std::vector<Imported> all;
  {
    Progress progress("importing", clips);
    Importer importer(session.manager());
    for (std::size_t i = 0; i < lists.size(); ++i)
      all.push_back(importer.import(options.files[i], std::move(lists[i]), progress));
  }
  bool changes = false;
  for (const Imported& imported : all)
    changes = changes || imported.shotsAdded > 0 || !imported.created.empty();
  const bool stored = !options.dryRun && session.commit();
  report(options, all, stored, changes);
  return rejected ? incomplete : done;
}

} // namespace

void addImport(CommandLine& line)
{
  const auto options = std::make_shared<Options>();
  CLI::App& app = line.add(
      {.name = "import",
       .description = "Bring in cut lists and log files, and make a reel for every source in them",
       .examples = {"reeldb import evening.edl", "reeldb import --dry-run evening.edl rushes.ale",
                    "reeldb import --json rushes.ale"},
       .details =
           "Reads cut lists (CMX3600 EDL) and log exchange files (ALE), told apart by what is in them. Every clip\n"
           "becomes a shot; one with the same reel, clip name, source in, source out and tracks as another is\n"
           "not added again, so the same file twice changes nothing. A bad line costs that line: it is reported\n"
           "with its number, and the exit code is 4. A line that is odd but can be read is kept, with a warning.\n"
           "A file that cannot be read costs the import: nothing is brought in, of none of the files."},
      [options](const Globals& globals) { return run(*options, globals); });
  takeTexts(app, "FILE", options->files, "The files")->required()->type_name("");
  takeFlag(app, "--dry-run", options->dryRun, "Report what would happen and change nothing");
  takeJson(app, options->json);
}

} // namespace reeldb::cli
