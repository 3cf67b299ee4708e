// SPDX-License-Identifier: Apache-2.0
#include "module/session.h"

#include <filesystem>
#include <system_error>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "module/display_text.h"
#include "module/failure.h"
#include "module/host_text.h"

namespace reeldb::cli {

namespace {

std::string projectsThereAre(const reelhost::Facility& facility)
{
  const auto names = facility.projectNames();
  return names.empty() ? "this facility has none; reeldb project new NAME makes one"
                       : fmt::format("this facility has: {}", fmt::join(names, ", "));
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
    throw Failure(refused, fmt::format("{}: no such reel", id.empty() ? "\"\"" : shortText(id)));
  return reel;
}

bool Session::commit()
{
  reelhost::runDeferredActions();
  return reelhost::hasChanges() && reelhost::commit();
}

} // namespace reeldb::cli
