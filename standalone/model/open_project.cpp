// SPDX-License-Identifier: Apache-2.0
#include <memory>
#include <utility>
#include <vector>

#include "model/edit_handles.h"
#include "model/listeners.h"
#include "model/project.h"
#include "model/settings.h"
#include "reelhost/host.h"

namespace reelhost {

using model::openedProject;
using model::Project;

namespace {

constinit std::chrono::milliseconds busyTimeout_ = std::chrono::seconds(2);

/// The project that is open, and those that are closed but for a handle that somebody still holds on one of their logs.
struct Projects {
  std::unique_ptr<Project> open;
  std::vector<std::unique_ptr<Project>> closed;
  bool isClosing = false;
};

Projects& projects()
{
  static Projects& instance = *new Projects;
  return instance;
}

/// Puts @p project, which may be null, in the place of the open one.
void replaceProject(std::unique_ptr<Project> project)
{
  Projects& p = projects();
  openedProject = project.get();
  if (p.open) {
    p.open->close();
    p.closed.push_back(std::move(p.open));
  }
  p.open = std::move(project);
  if (!model::logsAreHeld())
    p.closed.clear();
}

} // namespace

std::chrono::milliseconds model::busyTimeout()
{
  return busyTimeout_;
}

void setBusyTimeout(std::chrono::milliseconds busyTimeout)
{
  busyTimeout_ = busyTimeout;
}

void openProject(std::unique_ptr<Store> store, Access access)
{
  closeProject();
  replaceProject(std::make_unique<Project>(std::move(store), access, access));
  model::tellProjectEntry();
}

void openProject(const std::string& name, Access access)
{
  openProject(makeSqliteStore(facility().projectFile(name)), access);
}

void closeProject() noexcept
{
  Projects& p = projects();
  if (!p.open || p.isClosing)
    return;
  p.isClosing = true;
  try {
    model::tellProjectExit();
  } catch (...) {
    // The project is closed nevertheless, and the failure cannot be reported.
  }
  p.isClosing = false;
  replaceProject(nullptr);
  model::facilityOrNone().dropState();
}

bool projectIsOpen()
{
  return openedProject != nullptr;
}

const ProjectInfo& projectInfo()
{
  return model::requireProject("project").info();
}

Store& projectStore()
{
  return *model::requireProject("project").store();
}

bool hasChanges()
{
  return (openedProject && openedProject->hasChanges()) || model::facilityOrNone().stateChanged();
}

bool commit()
{
  const bool stored = openedProject && openedProject->commit();
  Facility& facility = model::facilityOrNone();
  if (!facility.stateChanged())
    return stored;
  facility.saveState();
  return true;
}

void idle()
{
  if (openedProject)
    openedProject->idle();
}

// The new state is read before the old one goes: when it cannot be read, the old one stays.
bool reloadIfChangedElsewhere()
{
  if (!openedProject || !openedProject->changedElsewhere())
    return false;
  openedProject->letGo();
  replaceProject(std::make_unique<Project>(openedProject->store(), openedProject->access(), Access::Read));
  openedProject->idle(); // who waited goes on waiting
  return true;
}

} // namespace reelhost
