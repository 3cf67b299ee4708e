// SPDX-License-Identifier: Apache-2.0
#include "commands/commands.h"

#include <algorithm>

#include <fmt/format.h>

#include "app/import.h"
#include "app/json/json.h"
#include "app/state.h"
#include "base/text_width.h"
#include "commands/import_report.h"
#include "commands/name_options.h"
#include "commands/tables.h"
#include "text/output.h"
#include "text/progress.h"
#include "text/terminal.h"

namespace reeldb::cli {

namespace {

struct Options {
  std::vector<std::string> files;
  app::Replacing replacing;
  NameOptions names;
  std::optional<std::string> type;
  std::vector<std::string> asNew, titles;
  bool recursive = false;
  bool skipsUnreadable = false;
  bool quiet = false;
  bool dryRun = false;
  bool json = false;
};

void show(const Options& options, const app::ImportReport& report)
{
  if (options.json) {
    print(app::jsonText(report));
    return;
  }
  const Mood mood = options.dryRun ? Mood::Conditional : Mood::Fact;
  const std::size_t columns = textColumns(stdout);
  if (!options.quiet)
    print(toText(report.moves, mood));
  for (const app::ImportedList& imported : report.lists)
    print(options.quiet ? rejectedText(imported, mood) : toText(imported, columns, mood));
  if (!options.quiet) {
    print(toText(report.typeChanges, mood));
    print(removedText(report, columns, mood));
  }
  if (options.quiet || report.lists.size() + report.skipped.size() > 1)
    print(totalsText(report.totals(), mood));
  if (!report.changes)
    print(options.dryRun ? "dry run: there would be nothing new\n" : "nothing new: the project stays as it was\n");
  else if (!report.stored)
    print("dry run: the project stays as it was\n");
}

/// "TITLE=MEANING". A title may have an equals sign, a meaning has none.
lists::TitleMap titleMap(const std::vector<std::string>& words)
{
  lists::TitleMap titles;
  for (const std::string& word : words) {
    const std::size_t equals = word.rfind('=');
    if (equals == std::string::npos || equals == 0)
      throw app::Error(app::ErrorKind::Invalid, fmt::format("import: --map {}: not a title and what it means (use "
                                                            "TITLE=FIELD, such as \"Tape No=reel\")",
                                                            base::shortText(word)));
    titles.emplace_back(word.substr(0, equals), word.substr(equals + 1));
  }
  app::requireMeanings(titles);
  return titles;
}

/// Reads all files before any is imported, so that an unreadable file leaves the project unchanged. Reports each
/// unreadable file, and skips it if the options say so.
app::ListFiles readAll(const Options& options)
{
  lists::ReadOptions reading = options.names.reading();
  reading.titles = titleMap(options.titles);
  app::ListFiles files =
      app::readListFiles(options.files, reading, options.recursive ? app::Folders::AllFiles : app::Folders::Files);
  const std::vector<app::UnreadFile>& failures = files.failures;
  const std::size_t all = files.read.size() + failures.size();
  if (failures.empty())
    return files;
  if (all == 1)
    throw failures.front().error;
  for (const app::UnreadFile& failure : failures)
    complain(failure.error.what());
  if (options.skipsUnreadable && !files.read.empty())
    return files;
  const auto damaged = std::find_if(failures.begin(), failures.end(), [](const app::UnreadFile& failure) {
    return exitCodeOf(failure.error.kind()) == unreadable;
  });
  const std::string_view advice = files.read.empty() ? "" : "; --skip-unreadable imports the others";
  throw app::Error(
      damaged == failures.end() ? failures.front().error.kind() : damaged->error.kind(),
      fmt::format("import: nothing imported ({} of {} files cannot be read{})", failures.size(), all, advice));
}

/// "NAME=REEL", or the reel alone.
std::vector<app::OtherReel> otherReels(const std::vector<std::string>& words)
{
  std::vector<app::OtherReel> reels;
  for (const std::string& word : words) {
    const std::size_t equals = word.find('=');
    reels.push_back(equals == std::string::npos ? app::OtherReel{{}, word}
                                                : app::OtherReel{word.substr(0, equals), word.substr(equals + 1)});
    if (equals == 0)
      throw app::Error(
          app::ErrorKind::Invalid,
          fmt::format("import: --as-new {}: no name before the equals sign (use NAME=REEL)", base::shortText(word)));
  }
  return reels;
}

/// Throws Error unless the file is alone and the options ask for nothing that only lists have.
void requireAlone(const Options& options, const app::ListFiles& files, const app::ListFile& project)
{
  const std::string subject = base::shortText(project.path);
  if (files.read.size() + files.failures.size() > 1)
    throw app::Error(app::ErrorKind::Refused,
                     fmt::format("{}: a whole project, which is imported alone; nothing imported", subject));
  if (options.replacing.byName || options.replacing.list || options.type || !options.asNew.empty())
    throw app::Error(app::ErrorKind::Invalid,
                     fmt::format("{}: a whole project (--replace, --as, --type and --as-new are for lists)", subject));
}

ExitCode run(const Options& options, const Globals& globals)
{
  const app::Treatment treatment{options.names.rules(), options.type, otherReels(options.asNew)};
  app::ListFiles files = readAll(options);
  if (const auto project = std::find_if(files.read.begin(), files.read.end(), app::isState);
      project != files.read.end()) {
    requireAlone(options, files, *project);
    const app::ImportReport report = app::importState(globals.project, *project, options.dryRun);
    if (report.stored)
      changesAreStored();
    show(options, report);
    return done;
  }
  app::Session session(globals.project, options.dryRun ? app::Access::Read : app::Access::Write);
  app::ImportReport report = [&] {
    ProgressBar bar("importing");
    const app::Progress show = [&](std::size_t done, std::size_t total) {
      bar.show(done, total);
      return true;
    };
    return app::importLists(session, std::move(files.read), options.dryRun, show, options.replacing, treatment);
  }();
  for (const app::UnreadFile& failure : files.failures)
    report.skipped.push_back({failure.path, failure.reason()});
  if (report.stored)
    changesAreStored();
  complainOf(report.remarks);
  show(options, report);
  return report.isIncomplete() ? incomplete : done;
}

} // namespace

void addImport(CommandLine& line)
{
  const auto options = std::make_shared<Options>();
  Command command = line.add(
      {.name = "import",
       .description = "Import cut lists, log files, timelines and tables, and make a reel for every source in them",
       .examples = {"reeldb import evening.edl", "reeldb import --dry-run evening.edl rushes.ale",
                    "reeldb import --replace evening.edl", "reeldb import --type \"Tape 4ch\" evening.edl",
                    "reeldb import --match exact --names clip evening.edl", "reeldb import --json rushes.ale",
                    "reeldb import day2.edl --as-new A001=A001_DAY2",
                    "reeldb import --recursive --skip-unreadable -q lists", "reeldb import - < evening.edl",
                    "reeldb import --dry-run shelves.csv --map \"Tape No=reel\"",
                    "reeldb import -p fresh documentary.json"},
       .details =
           "Reads cut lists (CMX3600 EDL), log exchange files (ALE) and timelines (OTIO, xmeml, FCPXML); their\n"
           "content shows which they are. Every clip becomes a shot. A source without a reel name is named by its\n"
           "file. A shot that has the same reel, clip name, source in, source out and tracks as another is not added\n"
           "again, so importing a file twice changes nothing. A line that cannot be read is left out and reported\n"
           "with its number; the exit code is then 4. A line that is odd but can be read is imported, with a warning.\n"
           "If a list has another frame rate than the project, the line that proves it is reported.\n"
           "\n"
           "A folder stands for the files in it, with --recursive also for those in its folders; names that begin\n"
           "with a dot are ignored. - is standard input. If a file cannot be read, nothing of any file is imported;\n"
           "with --skip-unreadable the others are, and the exit code is 4. The report of several files ends with\n"
           "totals. All files are one import, which one undo takes back.\n"
           "\n"
           "A table (CSV or TSV) has a row of titles, one of them for the reel: reel, tape, tape name, reel name, "
           "tapeid or\n"
           "roll. Its rows give reels fields: type or format; shelf, bin or location; available; aliases; user fields "
           "by\n"
           "their names; the fields of reeldb set. With in and out (or start and end) its rows are clips. --map names\n"
           "other titles. An empty cell keeps what is there, - removes it. Reels that do not exist are made. JSON has "
           "the\n"
           "same in objects as reeldb list --json and shots --json write them, also one object per line.\n"
           "\n"
           "The JSON that reeldb export --json writes is a whole project. A project that has never had a reel, a shot "
           "or\n"
           "a list becomes the same project under its own name; any other refuses the file.\n"
           "\n"
           "The project keeps each list. --replace replaces the kept list that has the same file name, or else the\n"
           "same title; --as replaces LIST. The report counts the shots that were added, are gone, were trimmed, or\n"
           "are elsewhere in the cut. Shots that only the old version used are deleted, and so are reels that have\n"
           "no shot left, unless another command than import made or changed them.\n"
           "\n"
           "A new reel gets the type that --type names, else the one that a rule of facility.toml or a built-in rule\n"
           "gives it by its name, its extension and the tracks, else the default type of the project.\n"
           "\n"
           "--match exact takes a name for a reel only if it is the same name or an old name of the reel. --names "
           "clip\n"
           "takes a clip name that begins with a cut name for the whole name, even if it has no ending of a file.\n"
           "A later import without --match exact may join the reels that it kept apart.\n"
           "\n"
           "--as-new A001=A001_DAY2 says that A001 in these lists is another tape than in the project: they make the\n"
           "new reel A001_DAY2. The new name alone is enough if the lists have only one reel. New versions of the\n"
           "lists mean it, too. reeldb split --list parts a list that was imported before."},
      [options](const Globals& globals) { return run(*options, globals); });
  command.texts("FILE", options->files, "The files and folders; - is standard input").required().shownAs("");
  command.flag("-r,--recursive", options->recursive, "Also import the files in the folders of a folder");
  command.flag("--skip-unreadable", options->skipsUnreadable, "Leave out files that cannot be read");
  command.flag("--replace", options->replacing.byName, "Replace the earlier version of the list");
  command.text("--as", options->replacing.list, "Replace this list of the project").shownAs("LIST");
  addNameOptions(command, options->names);
  command.text("--type", options->type, "The type of the reels that are made").shownAs("TYPE");
  command.texts("--as-new", options->asNew, "A reel of these lists that is another tape; may be given several times")
      .shownAs("NAME=REEL")
      .oneEachTime();
  command.texts("--map", options->titles, "What a title of a table means; may be given several times")
      .shownAs("TITLE=FIELD")
      .oneEachTime();
  command.flag("-q,--quiet", options->quiet, "Report only rejected lines and the totals");
  command.flag("--dry-run", options->dryRun, "Report what would happen, and change nothing");
  command.json(options->json);
}

} // namespace reeldb::cli
