// SPDX-License-Identifier: Apache-2.0
#include "app/session.h"

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <vector>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "text/display_text.h"
#include "line/failure.h"
#include "app/host_text.h"
#include "text/output.h"
#include "app/reel.h"
#include "app/similar.h"

namespace reeldb::cli {

namespace {

std::string projectsThereAre(const reelhost::Facility& facility)
{
  const auto names = facility.projectNames();
  return names.empty() ? "this facility has none; reeldb project new NAME makes one"
                       : fmt::format("this facility has: {}", fmt::join(names, ", "));
}

std::string noSuchReel(const ReelDbManager& manager, const std::string& id)
{
  constexpr std::size_t most = 5; // of a whole project of them nobody reads the rest
  std::vector<std::string> all;
  for (const Reel& reel : readReels(manager, {}))
    all.push_back(reel.id);
  std::vector<std::string> similar = similarNames(id, all);
  const bool more = similar.size() > most;
  similar.resize(std::min(most, similar.size()));
  const bool needsQuotes = id.empty() || id.front() == ' ' || id.back() == ' ';
  std::string message = fmt::format("{0}{1}{0}: no such reel", needsQuotes ? "\"" : "", shortText(id));
  if (!similar.empty())
    message += fmt::format(" (but there {} {}{})", similar.size() == 1 ? "is" : "are", fmt::join(similar, ", "),
                           more ? ", ..." : "");
  return message;
}

} // namespace

reelhost::Facility& requireFacility()
{
  reelhost::Facility& facility = reelhost::facility();
  if (facility.directory().empty())
    throw Failure(refused, "no facility (-C DIR or REELDB_FACILITY names one; reeldb init makes one)");
  return facility;
}

std::string requireProject(const Globals& globals)
{
  const reelhost::Facility& facility = requireFacility();
  const std::string name = globals.project.value_or(facility.defaultProject());
  if (name.empty())
    throw Failure(refused, fmt::format("no project chosen (-p names one; {})", projectsThereAre(facility)));
  std::error_code none;
  if (!std::filesystem::exists(facility.projectFile(name), none))
    throw Failure(refused, fmt::format("{}: no such project ({})", shortText(name), projectsThereAre(facility)));
  return name;
}

Session::Session(const Globals& globals, reelhost::Access access)
{
  const std::string project = requireProject(globals);
  manager(); // before the project is entered, so that it hears of that
  reelhost::openProject(project, access);
}

Session::~Session()
{
  reelhost::closeProject();
}

ReelDbRec Session::requireReel(const std::string& id)
{
  const ReelDbRec reel = manager().getReelInfo(hostText(id));
  if (!reel.valid())
    throw Failure(refused, noSuchReel(manager(), id));
  return reel;
}

bool Session::commit()
{
  reelhost::runDeferredActions();
  const bool stored = reelhost::hasChanges() && reelhost::commit();
  if (stored)
    changesAreStored();
  return stored;
}

} // namespace reeldb::cli
