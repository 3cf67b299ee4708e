// SPDX-License-Identifier: Apache-2.0
#include "commands/commands.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "app/json/json.h"
#include "app/kept_lists.h"
#include "app/list_files.h"
#include "base/display_text.h"
#include "commands/names_text.h"
#include "commands/tables.h"
#include "text/counted.h"
#include "text/output.h"
#include "text/table.h"

namespace reeldb::cli {

namespace {

using base::displayText;

std::string headText(const app::KeptList& list)
{
  return displayText(fmt::format("list {}: {} ({}){}", list.number, list.file, list.format,
                                 list.title.empty() ? "" : ", " + list.title));
}

void printEvents(const std::vector<app::ListUse>& events, std::size_t indent = 0)
{
  Table table({{"EVENT"},
               {"REEL"},
               {.title = "NOW", .optional = true},
               {.title = "CLIP", .optional = true},
               {"TRACKS"},
               {"TRANSITION"},
               {"SOURCE IN"},
               {"SOURCE OUT"},
               {.title = "RECORD IN", .optional = true},
               {.title = "RECORD OUT", .optional = true},
               {.title = "RATE", .optional = true},
               {.title = "SPEED", .optional = true}});
  for (const auto& [clip, reel] : events) {
    const lists::Event& event = clip.event;
    table.add({event.number, clip.reel, reel == clip.reel ? "" : reel, clip.clipName, clip.tracks,
               event.duration.empty() ? event.transition : event.transition + " " + event.duration, clip.sourceIn,
               clip.sourceOut, clip.recordIn, clip.recordOut, rateText(clip),
               event.speed ? event.speed->framesPerSecond : ""});
  }
  table.print(indent);
}

// --- list ----------------------------------------------------------------------------------------

struct ListOptions {
  bool json = false;
};

ExitCode list(const ListOptions& options, const Globals& globals)
{
  app::Session session(globals.project, app::Access::Read);
  const std::vector<app::KeptList> lists = app::keptLists(session);
  if (options.json) {
    print(app::jsonText(lists));
    return done;
  }
  Table table({{.title = "LIST", .number = true},
               {"FILE"},
               {"FORMAT"},
               {.title = "EVENTS", .number = true},
               {.title = "TITLE", .optional = true}});
  for (const app::KeptList& one : lists)
    table.add({std::to_string(one.number), one.file, one.format, std::to_string(one.events), one.title});
  table.printOr("no lists (reeldb import keeps those that it imports)\n");
  return done;
}

// --- show ----------------------------------------------------------------------------------------

struct ShowOptions {
  std::string list;
  bool original = false, force = false, json = false;
  std::optional<std::string> file;
};

ExitCode show(const ShowOptions& options, const Globals& globals)
{
  if ((options.file || options.force) && !options.original)
    throw app::Error(app::ErrorKind::Invalid, "list-file show: -o and --force need --original");
  if (options.force && !options.file)
    throw app::Error(app::ErrorKind::Invalid, "list-file show: --force needs -o FILE");
  if (options.original && options.json)
    throw app::Error(app::ErrorKind::Invalid, "list-file show: --original and --json exclude each other");
  app::Session session(globals.project, app::Access::Read);
  if (options.original) {
    const std::string bytes = app::originalOf(session, options.list);
    if (options.file)
      app::writeOutputFile(*options.file, bytes, options.force);
    else
      print(bytes);
    return done;
  }
  const app::ListEvents found = app::eventsOf(session, options.list);
  if (options.json) {
    print(app::jsonText(found));
    return done;
  }
  print(headText(found.list) + "\n");
  if (!found.events.empty())
    printEvents(found.events);
  print(counted(found.events.size(), "event") + "\n");
  return done;
}

// --- used-in -------------------------------------------------------------------------------------

struct UsedInOptions {
  std::string reel;
  bool json = false;
};

ExitCode usedIn(const UsedInOptions& options, const Globals& globals)
{
  app::Session session(globals.project, app::Access::Read);
  const std::vector<app::ListEvents> lists = app::listsUsing(session, options.reel);
  if (options.json)
    print(app::jsonText(lists));
  else if (lists.empty())
    print(fmt::format("no list uses {}\n", displayText(options.reel)));
  else
    for (const app::ListEvents& found : lists) {
      constexpr std::size_t indent = 2;
      print(fmt::format("{}: {}\n", headText(found.list), counted(found.events.size(), "event")));
      printEvents(found.events, indent);
    }
  return lists.empty() ? refused : done;
}

// --- remove --------------------------------------------------------------------------------------

struct RemoveOptions {
  std::string list;
  bool dryRun = false, json = false;
};

ExitCode remove(const RemoveOptions& options, const Globals& globals)
{
  app::Session session(globals.project, options.dryRun ? app::Access::Read : app::Access::Write);
  const app::RemovedList removed = app::removeList(session, options.list, options.dryRun);
  if (removed.stored)
    changesAreStored();
  if (options.json) {
    print(app::jsonText(removed));
    return done;
  }
  print(fmt::format("{}: {}\n", headText(removed.list), options.dryRun ? "would be removed" : "removed"));
  print(headedNames(countedReelsAndShots(removed.reels.size(), removed.shots.size()) + " that only this list used",
                    removed.reels));
  print(options.dryRun ? "dry run: the project stays as it was\n" : "reeldb undo brings all of it back\n");
  return done;
}

} // namespace

void addListFile(CommandLine& line)
{
  const Command group =
      line.addGroup("list-file", "List, show or remove the lists that were imported", "reeldb list-file list");

  const auto listOptions = std::make_shared<ListOptions>();
  Command listing = line.add(group,
                             {.name = "list",
                              .description = "List the lists that the project keeps",
                              .examples = {"reeldb list-file list", "reeldb list-file list --json"}},
                             [listOptions](const Globals& globals) { return list(*listOptions, globals); });
  listing.json(listOptions->json);

  const auto showOptions = std::make_shared<ShowOptions>();
  Command showing = line.add(
      group,
      {.name = "show",
       .description = "Show the events of a list, or its bytes",
       .examples = {"reeldb list-file show evening.edl", "reeldb list-file show evening.edl --original"},
       .details =
           "Shows the texts of the list. If reels have other names now, a further column shows these. --original\n"
           "writes the file as it was imported, byte for byte."},
      [showOptions](const Globals& globals) { return show(*showOptions, globals); });
  showing.text("LIST", showOptions->list, "The list: its number, its file name or its title").required().shownAs("");
  showing.flag("--original", showOptions->original, "Write the bytes of its file");
  showing.text("--output,-o", showOptions->file, "Write the bytes to this file instead of standard output")
      .shownAs("FILE");
  showing.flag("--force", showOptions->force, "Replace an existing file");
  showing.json(showOptions->json);

  const auto usedInOptions = std::make_shared<UsedInOptions>();
  Command using_ = line.add(group,
                            {.name = "used-in",
                             .description = "List the lists that use a reel, with the events that come from it",
                             .examples = {"reeldb list-file used-in A001", "reeldb list-file used-in A001 --json"},
                             .details = "The exit code is 1 if no list uses it."},
                            [usedInOptions](const Globals& globals) { return usedIn(*usedInOptions, globals); });
  using_.text("ID", usedInOptions->reel, "The reel").required().shownAs("");
  using_.json(usedInOptions->json);

  const auto removeOptions = std::make_shared<RemoveOptions>();
  Command removing = line.add(
      group,
      {.name = "remove",
       .description = "Remove a list, with the shots and reels that only it uses",
       .examples = {"reeldb list-file remove --dry-run evening.edl", "reeldb list-file remove evening.edl"},
       .details =
           "Removes the list with its events, each shot that no other list uses, and each reel that has no shot\n"
           "left. Shots and reels that another command than import made or changed stay, and so do those that\n"
           "are older than the history of the project. reeldb undo brings all of it back."},
      [removeOptions](const Globals& globals) { return remove(*removeOptions, globals); });
  removing.text("LIST", removeOptions->list, "The list: its number, its file name or its title").required().shownAs("");
  removing.flag("--dry-run", removeOptions->dryRun, "Show what would be removed, and remove nothing");
  removing.json(removeOptions->json);
}

} // namespace reeldb::cli
