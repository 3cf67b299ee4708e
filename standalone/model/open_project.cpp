// SPDX-License-Identifier: Apache-2.0
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "base/number.h"
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

/// The open project, and closed projects that stay in memory while handles on their logs are open.
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

/// Closes the open project and makes @p project, which may be null, the open one.
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

// The new state is read before the old one is dropped, so the old one stays if reading fails.
void reload()
{
  openedProject->endUse();
  replaceProject(std::make_unique<Project>(openedProject->store(), openedProject->access(), Access::Read));
  openedProject->idle(); // the project waits as before
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
  model::notifyProjectEntry();
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
    model::notifyProjectExit();
  } catch (...) {
    // The project is closed anyway, and the exception cannot be reported.
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

Store& projectStoreToRead()
{
  return model::requireProject("project").storeToRead();
}

ProjectInfo currentInfo(Store& store)
{
  ProjectInfo info = store.info();
  for (const auto& [key, text] : store.options())
    if (const std::optional<int> code = reeldb::base::parseNumber(text); key == frameRateOption && code)
      info.frameRate = info.outputFrameRate = *code;
  return info;
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

bool reloadIfChangedElsewhere()
{
  if (!openedProject || !openedProject->changedElsewhere())
    return false;
  reload();
  return true;
}

ForeignChanges applyChangesFromElsewhere()
{
  ForeignChanges changes;
  if (!openedProject || !openedProject->changedElsewhere())
    return changes;
  if (model::logsAreHeld()) {
    changes.state = ForeignChanges::State::Later;
    return changes;
  }
  if (std::optional<ForeignChanges> applied = openedProject->applyFromElsewhere())
    return std::move(*applied);
  reload();
  changes.state = ForeignChanges::State::Applied;
  changes.reelSet = true;
  return changes;
}

} // namespace reelhost
