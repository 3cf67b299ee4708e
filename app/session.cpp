// SPDX-License-Identifier: Apache-2.0
#include "app/session.h"

#include <cstdlib>
#include <filesystem>
#include <system_error>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "ReelDbManager.h"
#include "app/facility.h"
#include "app/host_errors.h"
#include "app/notice.h"
#include "base/text_width.h"
#include "reelhost/history.h"
#include "reelhost/host.h"

namespace reeldb::app {

namespace {

std::string workingFolder()
{
  std::error_code error;
  const std::filesystem::path folder = std::filesystem::current_path(error);
  return error ? fmt::format("the working folder ({})", error.message()) : folder.native();
}

std::string projectsThereAre(const reelhost::Facility& facility)
{
  const auto names = facility.projectNames();
  return names.empty() ? "this facility has no projects; reeldb project new NAME makes one"
                       : fmt::format("this facility has: {}", fmt::join(names, ", "));
}

/// Of the open project's file, if it is older than this program.
int olderVersion()
{
  reelhost::History* const history = reelhost::projectStore().history();
  return history ? history->olderVersion() : 0;
}

} // namespace

reelhost::Facility& requireFacility()
{
  return guarded([]() -> reelhost::Facility& {
    reelhost::Facility& facility = reelhost::facility();
    if (facility.directory().empty())
      throw Error(ErrorKind::Refused,
                  fmt::format("{}: not in a facility (facility.toml not found here or above; reeldb init "
                              "makes one, -C DIR or REELDB_FACILITY names one)",
                              workingFolder()));
    return facility;
  });
}

std::string chosenProject(const std::optional<std::string>& asked)
{
  return guarded([&] {
    const reelhost::Facility& facility = requireFacility();
    const char* const variable = std::getenv(projectVariable);
    const bool fromVariable = !asked && variable && *variable;
    std::string name = fromVariable ? variable : asked.value_or(facility.defaultProject());
    if (name.empty())
      throw Error(ErrorKind::Refused, fmt::format("no project chosen (choose one with -p PROJECT or {}; {})",
                                                  projectVariable, projectsThereAre(facility)));
    std::error_code none;
    if (!std::filesystem::exists(facility.projectFile(name), none)) {
      const std::string source = fromVariable ? std::string(projectVariable) : "default_project in facility.toml";
      throw Error(ErrorKind::NotFound, fmt::format("{}: no such project ({}{})", base::shortText(name),
                                                   asked ? std::string() : fmt::format("{} names it; ", source),
                                                   projectsThereAre(facility)));
    }
    return name;
  });
}

Session::Session(const std::optional<std::string>& project, Access access)
{
  guarded([&] {
    const std::string name = chosenProject(project);
    manager(); // before the project is entered, so that it is notified of that
    reelhost::openProject(name, access == Access::Write ? reelhost::Access::Write : reelhost::Access::Read);
  });
}

Session::~Session()
{
  reelhost::closeProject();
}

ReelDbManager& Session::manager()
{
  return *ReelDbManager::theReelDbManager();
}

bool Session::commit()
{
  return guarded([] {
    reelhost::runDeferredActions();
    const int version = olderVersion();
    const bool stored = reelhost::commit();
    if (version != 0 && olderVersion() == 0)
      notice(fmt::format("{}: brought up to date from version {} (older programs cannot open it any more)",
                         reelhost::projectInfo().name, version));
    return stored;
  });
}

} // namespace reeldb::app
