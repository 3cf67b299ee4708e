// SPDX-License-Identifier: Apache-2.0
#include <fmt/format.h>

#include "commands/commands.h"
#include "text/counted.h"
#include "text/display_text.h"
#include "line/failure.h"
#include "text/output.h"
#include "app/project_file.h"
#include "app/session.h"
#include "text/shell_word.h"
#include "text/table.h"
#include "reelhost/store.h"

namespace reeldb::cli {

namespace {

struct NewOptions {
  std::string name;
  std::string rate = usualFrameRate;
};

ExitCode makeNew(const NewOptions& options)
{
  const reelhost::Facility& facility = requireFacility();
  makeProject(facility, options.name, options.rate);
  print(fmt::format("project {} made ({} fps)\n", displayText(options.name),
                    frameRateName(facility, *facility.frameRateCode(options.rate))));
  if (options.name != facility.defaultProject())
    print(fmt::format("next: reeldb -p {} import FILE...\n", shellWord(options.name)));
  return done;
}

struct ListOptions {
  bool json = false;
};

struct Project {
  std::string name, rate, fault;
  bool isDefault = false;
  int code = -1;
};

Project look(const reelhost::Facility& facility, const std::string& name)
{
  Project project;
  project.name = name;
  project.isDefault = name == facility.defaultProject();
  try {
    const auto store = reelhost::makeSqliteStore(facility.projectFile(name));
    store->begin(reelhost::Access::Read, {});
    project.code = store->info().frameRate;
    project.rate = frameRateName(facility, project.code);
    store->end();
  } catch (const reelhost::Error& error) {
    project.fault = error.what();
  }
  return project;
}

ExitCode list(const ListOptions& options)
{
  const reelhost::Facility& facility = requireFacility();
  Json json = Json::array();
  Table table({{"PROJECT"}, {"RATE"}, {"DEFAULT"}, {.title = "FAULT", .optional = true}});
  ExitCode code = done;
  for (const std::string& name : facility.projectNames()) {
    const Project project = look(facility, name);
    if (!project.fault.empty())
      code = unreadable;
    Json entry = {{"name", name}, {"default", project.isDefault}, {"rate", project.rate}, {"rate_code", project.code}};
    if (!project.fault.empty())
      entry["fault"] = project.fault;
    json.push_back(std::move(entry));
    table.add({name, project.rate, project.isDefault ? "yes" : "", project.fault});
  }
  if (options.json)
    printJson(json);
  else
    table.printOr("no projects (reeldb project new NAME makes one)\n");
  return code;
}

struct CompactOptions {
  bool json = false;
};

ExitCode compact(const CompactOptions& options, const Globals& globals)
{
  Session session(globals, reelhost::Access::Write);
  const int gone = reelhost::compact();
  session.commit();
  if (options.json)
    printJson({{"gone", gone}});
  else
    print(gone == 0 ? "nothing to remove\n" : fmt::format("{} removed for good\n", counted(gone, "deleted log")));
  return done;
}

struct CheckOptions {
  bool json = false;
};

ExitCode check(const CheckOptions& options, const Globals& globals)
{
  const reelhost::Facility& facility = requireFacility();
  const std::string name = requireProject(globals);
  const std::vector<std::string> problems = reelhost::makeSqliteStore(facility.projectFile(name))->check();
  if (options.json)
    printJson({{"project", name}, {"sound", problems.empty()}, {"problems", problems}});
  else if (problems.empty())
    print(fmt::format("{}: sound\n", displayText(name)));
  else
    for (const std::string& problem : problems)
      print(fmt::format("{}: {}\n", displayText(name), displayText(problem)));
  return problems.empty() ? done : unreadable;
}

} // namespace

void addProject(CommandLine& line)
{
  CLI::App& group = line.addGroup("project", "Make, list, check or compact projects", "reeldb project list");

  const auto newOptions = std::make_shared<NewOptions>();
  CLI::App& newApp = line.add(group,
                              {.name = "new",
                               .description = "Make a project",
                               .examples = {"reeldb project new documentary", "reeldb project new promo --rate 29.97"},
                               .details = "facility.toml may name further frame rates, and the default project."},
                              [newOptions](const Globals&) { return makeNew(*newOptions); });
  takeText(newApp, "NAME", newOptions->name, "Its name, which is also that of its file")->required()->type_name("");
  takeText(newApp, "--rate", newOptions->rate, fmt::format("Its frame rate; {} unless given", usualFrameRate))
      ->type_name("CODE|NAME");

  const auto listOptions = std::make_shared<ListOptions>();
  CLI::App& listApp = line.add(group,
                               {.name = "list",
                                .description = "List the projects of the facility",
                                .examples = {"reeldb project list", "reeldb project list --json"}},
                               [listOptions](const Globals&) { return list(*listOptions); });
  takeJson(listApp, listOptions->json);

  const auto checkOptions = std::make_shared<CheckOptions>();
  CLI::App& checkApp =
      line.add(group,
               {.name = "check",
                .description = "Look a project's file over from its first page to its last",
                .examples = {"reeldb project check"},
                .details = "Says that it is sound, or names each fault and ends with exit code 3. Changes nothing."},
               [checkOptions](const Globals& globals) { return check(*checkOptions, globals); });
  takeJson(checkApp, checkOptions->json);

  const auto compactOptions = std::make_shared<CompactOptions>();
  CLI::App& compactApp =
      line.add(group,
               {.name = "compact",
                .description = "Remove what was deleted for good",
                .examples = {"reeldb project compact"},
                .details = "Until then reeldb undelete brings deleted reels and shots back."},
               [compactOptions](const Globals& globals) { return compact(*compactOptions, globals); });
  takeJson(compactApp, compactOptions->json);
}

} // namespace reeldb::cli
