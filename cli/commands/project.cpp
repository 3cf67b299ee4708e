// SPDX-License-Identifier: Apache-2.0
#include "commands/commands.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "app/json/json.h"
#include "app/projects.h"
#include "app/state.h"
#include "base/display_text.h"
#include "base/shell_word.h"
#include "text/counted.h"
#include "text/output.h"
#include "text/table.h"

namespace reeldb::cli {

namespace {

using base::displayText;

struct NewOptions {
  std::string name;
  std::optional<std::string> rate, from;
};

ExitCode makeNew(const NewOptions& options)
{
  if (options.from && options.rate)
    throw app::Error(app::ErrorKind::Invalid, "project new: --rate and --from given (the file has the rate)");
  const std::string rate = options.from ? app::makeProjectFrom(app::readStateFile(*options.from), options.name)
                                        : app::makeProject(options.name, options.rate.value_or(app::usualFrameRate));
  changesAreStored();
  print(fmt::format("project {} made ({} fps)\n", displayText(options.name), rate));
  if (options.name != app::defaultProject())
    print(fmt::format("next: reeldb -p {} import FILE...; default_project in facility.toml makes -p unnecessary\n",
                      base::shellWord(options.name)));
  return done;
}

struct ListOptions {
  bool json = false;
};

ExitCode list(const ListOptions& options)
{
  const std::vector<app::Project> projects = app::listProjects();
  Table table({{"PROJECT"}, {"RATE"}, {"DEFAULT"}, {.title = "FAULT", .optional = true}});
  ExitCode code = done;
  for (const app::Project& project : projects) {
    if (!project.fault.empty())
      code = unreadable;
    table.add({project.name, project.rate, project.isDefault ? "yes" : "", project.fault});
  }
  if (options.json)
    print(app::jsonText(projects));
  else
    table.printOr("no projects (reeldb project new NAME makes one)\n");
  return code;
}

struct RateOptions {
  std::optional<std::string> rate;
  bool json = false;
};

ExitCode rate(const RateOptions& options, const Globals& globals)
{
  app::Session session(globals.project, options.rate ? app::Access::Write : app::Access::Read);
  const app::ProjectRate result = options.rate ? app::changeRate(session, *options.rate) : app::rateOf(session);
  if (result.stored)
    changesAreStored();
  if (options.json)
    print(app::jsonText(result));
  else
    print(fmt::format("{}: {} fps{}\n", displayText(result.project), result.rate,
                      result.stored ? fmt::format(" (before: {})", result.before) : ""));
  return done;
}

struct CompactOptions {
  std::optional<std::string> before;
  bool json = false;
};

std::string removedForGood(const app::Compacted& compacted)
{
  std::vector<std::string> parts;
  if (compacted.gone > 0)
    parts.push_back(
        fmt::format("{} deleted {}", compacted.gone, compacted.gone == 1 ? "reel or shot" : "reels and shots"));
  if (compacted.lists > 0)
    parts.push_back(counted(compacted.lists, "list"));
  return parts.empty() ? "nothing to remove" : fmt::format("{} removed for good", fmt::join(parts, " and "));
}

ExitCode compact(const CompactOptions& options, const Globals& globals)
{
  app::Session session(globals.project, app::Access::Write);
  const app::Compacted compacted =
      options.before ? app::forgetHistory(session, *options.before) : app::compactProject(session);
  if (compacted.gone > 0 || compacted.lists > 0 || compacted.revisions.value_or(0) > 0)
    changesAreStored();
  if (options.json)
    print(app::jsonText(compacted));
  else if (compacted.revisions)
    print(*compacted.revisions == 0 ? "nothing to forget\n"
                                    : fmt::format("{} forgotten\n", counted(*compacted.revisions, "revision")));
  else
    print(fmt::format("{}\n", removedForGood(compacted)));
  return done;
}

struct BackupOptions {
  std::string file;
  bool json = false;
};

ExitCode backUp(const BackupOptions& options, const Globals& globals)
{
  const app::Backup backup = app::backUpProject(globals.project, options.file);
  if (options.json)
    print(app::jsonText(backup));
  else
    print(fmt::format("{}: backed up to {}\n", displayText(backup.project), displayText(backup.file)));
  return done;
}

struct CheckOptions {
  bool json = false;
};

ExitCode check(const CheckOptions& options, const Globals& globals)
{
  const app::ProjectCheck found = app::checkProject(globals.project);
  if (options.json)
    print(app::jsonText(found));
  else if (found.problems.empty())
    print(fmt::format("{}: sound\n", displayText(found.project)));
  else
    for (const std::string& problem : found.problems)
      print(fmt::format("{}: {}\n", displayText(found.project), displayText(problem)));
  return found.problems.empty() ? done : unreadable;
}

} // namespace

void addProject(CommandLine& line)
{
  const Command group = line.addGroup(
      "project", "Make, list, check, back up or compact projects, or change their frame rate", "reeldb project list");

  const auto newOptions = std::make_shared<NewOptions>();
  Command making =
      line.add(group,
               {.name = "new",
                .description = "Make a project",
                .examples = {"reeldb project new documentary", "reeldb project new promo --rate 29.97",
                             "reeldb project new copy --from documentary.json"},
                .details = "A frame rate is a name or a code of the facility, or another way to write it: 23.976 or\n"
                           "24000/1001 is 23.98. facility.toml can add frame rates, and it names the default project.\n"
                           "With --from, the project is the same as the one that reeldb export --json wrote to the\n"
                           "file, with an empty history."},
               [newOptions](const Globals&) { return makeNew(*newOptions); });
  making.text("NAME", newOptions->name, "Its name, and the name of its file").required().shownAs("");
  making.text("--rate", newOptions->rate, fmt::format("Its frame rate; {} by default", app::usualFrameRate))
      .shownAs("CODE|NAME");
  making.text("--from", newOptions->from, "Make it from this file of reeldb export --json").shownAs("FILE");

  const auto listOptions = std::make_shared<ListOptions>();
  Command listing = line.add(group,
                             {.name = "list",
                              .description = "List the projects of the facility",
                              .examples = {"reeldb project list", "reeldb project list --json"}},
                             [listOptions](const Globals&) { return list(*listOptions); });
  listing.json(listOptions->json);

  const auto checkOptions = std::make_shared<CheckOptions>();
  Command checking = line.add(
      group,
      {.name = "check",
       .description = "Check the whole file of a project for damage",
       .examples = {"reeldb project check"},
       .details = "Reports that the file is sound, or each fault; with faults the exit code is 3. Changes nothing."},
      [checkOptions](const Globals& globals) { return check(*checkOptions, globals); });
  checking.json(checkOptions->json);

  const auto rateOptions = std::make_shared<RateOptions>();
  Command rating =
      line.add(group,
               {.name = "rate",
                .description = "Show or change the frame rate of a project",
                .examples = {"reeldb project rate", "reeldb project rate 23.976"},
                .details = "Use it if the project was made with the wrong rate. Timecodes stay as they are,\n"
                           "and so do the rates that lists give for their shots."},
               [rateOptions](const Globals& globals) { return rate(*rateOptions, globals); });
  rating.text("RATE", rateOptions->rate, "Its frame rate from now on").shownAs("");
  rating.json(rateOptions->json);

  const auto compactOptions = std::make_shared<CompactOptions>();
  Command compacting = line.add(
      group,
      {.name = "compact",
       .description = "Remove deleted reels and shots and removed lists for good",
       .examples = {"reeldb project compact", "reeldb project compact --before 3",
                    "reeldb project compact --before 2026-11-01"},
       .details =
           "After that, neither reeldb undelete nor reeldb undo can bring them back. With --before, it removes the\n"
           "earlier part of the history instead, with the reels and shots that were deleted in it, and makes the\n"
           "file smaller."},
      [compactOptions](const Globals& globals) { return compact(*compactOptions, globals); });
  compacting.text("--before", compactOptions->before, "Forget the history before this revision or day")
      .shownAs("REVISION|DAY");
  compacting.json(compactOptions->json);

  const auto backupOptions = std::make_shared<BackupOptions>();
  Command backingUp =
      line.add(group,
               {.name = "backup",
                .description = "Copy a project to a new file, while others work in it",
                .examples = {"reeldb project backup before-conform.reels"},
                .details = "The copy is the project as its last commit left it, with its history. To use it, move "
                           "it\nto projects/NAME.reels."},
               [backupOptions](const Globals& globals) { return backUp(*backupOptions, globals); });
  backingUp.text("FILE", backupOptions->file, "The new file").required().shownAs("");
  backingUp.json(backupOptions->json);
}

} // namespace reeldb::cli
