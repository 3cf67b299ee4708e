// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <map>
#include <utility>

#include "host/codes.h"
#include "model/project.h"
#include "model/step.h"
#include "reelhost/display_text.h"
#include "reelhost/history.h"

namespace reelhost::model {

namespace {

/// The events by their lines and shots.
std::map<std::pair<int, std::int64_t>, ListEvent> byPlace(const std::vector<ListEvent>& events)
{
  std::map<std::pair<int, std::int64_t>, ListEvent> places;
  for (const ListEvent& event : events)
    places.emplace(std::pair(event.line, event.shot), event);
  return places;
}

/// Takes the step from @p before to @p after back, in the events of one version of a list. Returns whether they are as
/// they were before, or the step did not touch them.
bool takeBackEvents(std::vector<ListEvent>& now, const std::vector<ListEvent>& before,
                    const std::vector<ListEvent>& after)
{
  auto events = byPlace(now);
  if (takeSteps(events, byPlace(after), byPlace(before)))
    return false;
  // Events of one line keep the order that they had.
  std::vector<ListEvent> ordered;
  for (const std::vector<ListEvent>* known : {&before, static_cast<const std::vector<ListEvent>*>(&now)})
    for (const ListEvent& event : *known)
      if (auto found = events.extract({event.line, event.shot}))
        ordered.push_back(std::move(found.mapped()));
  std::stable_sort(ordered.begin(), ordered.end(),
                   [](const ListEvent& a, const ListEvent& b) { return a.line < b.line; });
  now = std::move(ordered);
  return true;
}

/// The same for a list, whose number never changes.
bool takeBackValues(KeptList& now, const KeptList& before, const KeptList& after)
{
  const bool oneVersion = now.digest == before.digest && now.digest == after.digest;
  const bool done = (oneVersion ? takeBackEvents(now.events, before.events, after.events)
                                : takeStep(now.events, after.events, before.events)) &&
                    takeStep(now.digest, after.digest, before.digest) && takeStep(now.file, after.file, before.file) &&
                    takeStep(now.title, after.title, before.title) && takeStep(now.format, after.format, before.format);
  now.eventCount = static_cast<std::int64_t>(now.events.size());
  return done;
}

bool changes(const RevisionChanges& revision, const StoredLog& log)
{
  return std::any_of(revision.logs.begin(), revision.logs.end(),
                     [&](const LogChange& change) { return change.number == log.number; });
}

bool changes(const RevisionChanges& revision, const KeptList& list)
{
  return std::any_of(revision.lists.begin(), revision.lists.end(),
                     [&](const ListChange& change) { return change.number == list.number; });
}

template <class Record>
[[noreturn]] void refuse(History& history, const RecordChange<Record>& change, const Record& record, const char* what)
{
  const std::int64_t inTheWay = newestInTheWay(
      history, change.revision, [&](const RevisionChanges& revision) { return changes(revision, record); });
  throw Error(ErrorKind::Refused, displayText(nameOf(record)) + ": " + what + " since revision " +
                                      std::to_string(change.revision) + " (by revision " +
                                      std::to_string(inTheWay != 0 ? inTheWay : change.next) +
                                      ", take that one back first)");
}

} // namespace

void Project::refuseIfForgotten(bool forgotten, std::int64_t revision) const
{
  if (forgotten)
    throw Error(ErrorKind::Refused,
                subject() + ": revision " + std::to_string(revision) +
                    " cannot be taken back (project compact has removed what it deleted; undo REVISION takes an "
                    "earlier one back)");
}

void Project::planTakingBack(const LogChange& change, Plan& plan)
{
  refuseIfForgotten(change.forgotten, change.revision);
  const std::optional<StoredLog>& before = change.before;
  const std::optional<StoredLog>& after = change.after;
  if (!before && !after)
    return;
  Log* const log = find(cookieOf(before ? *before : *after));
  std::optional<StoredLog> now = log ? std::optional(log->toStored()) : std::nullopt;
  if (!before) {
    if (now && !isSame(*now, *after))
      refuse(requireHistory(), change, *now, "changed");
    if (now) {
      plan.inverse.deleted.push_back(change.number);
      plan.gone.push_back(log);
    }
  } else if (!after) {
    if (now && !isSame(*now, *before))
      refuse(requireHistory(), change, *now, "restored and changed");
    if (!now)
      plan.inverse.logs.push_back(*before);
  } else {
    if (!now)
      refuse(requireHistory(), change, *after, "deleted");
    const StoredLog found = *now;
    if (takeSteps(*now, *after, *before))
      refuse(requireHistory(), change, found, "changed");
    if (!isSame(*now, found)) {
      plan.inverse.logs.push_back(std::move(*now));
      ++plan.changed;
    }
  }
}

void Project::planTakingBack(const ListChange& change, Plan& plan)
{
  refuseIfForgotten(change.forgotten, change.revision);
  const std::optional<KeptList>& before = change.before;
  const std::optional<KeptList>& after = change.after;
  std::optional<KeptList> now;
  for (KeptList& list : lists())
    if (list.number == change.number) {
      list.events = eventsOf(list.number);
      now = std::move(list);
    }
  if (before && after) {
    if (!now)
      refuse(requireHistory(), change, *after, "removed");
    const KeptList found = *now;
    if (!takeBackValues(*now, *before, *after))
      refuse(requireHistory(), change, found, "changed");
    if (*now != found)
      plan.inverse.lists.push_back(std::move(*now));
  } else if (before) {
    if (now && *now != *before)
      refuse(requireHistory(), change, *now, "restored and changed");
    if (!now)
      plan.inverse.lists.push_back(*before);
  } else if (after && now) {
    if (*now != *after)
      refuse(requireHistory(), change, *now, "changed");
    plan.inverse.deletedLists.push_back(change.number);
  }
}

void Project::requireShots(const Plan& plan)
{
  if (plan.inverse.deleted.empty() && plan.inverse.lists.empty())
    return;
  std::set<std::int64_t> shots;
  for (const Log* log : others())
    shots.insert(log->number);
  for (const StoredLog& log : plan.inverse.logs)
    if (log.type != codes::reelLog)
      shots.insert(log.number);
  for (const std::int64_t number : plan.inverse.deleted)
    shots.erase(number);
  const auto require = [&](const KeptList& list, const std::vector<ListEvent>& events, const char* fact) {
    for (const ListEvent& event : events)
      if (event.shot != 0 && shots.count(event.shot) == 0)
        throw Error(ErrorKind::Refused, displayText(nameOf(list)) + ": line " + std::to_string(event.line) + fact);
  };
  for (const KeptList& list : plan.inverse.lists)
    require(list, list.events, " names a shot that is gone (import the list again)");
  if (plan.inverse.deleted.empty())
    return;
  const auto isPlanned = [&](std::int64_t number) {
    const std::vector<std::int64_t>& gone = plan.inverse.deletedLists;
    return std::find(gone.begin(), gone.end(), number) != gone.end() ||
           std::any_of(plan.inverse.lists.begin(), plan.inverse.lists.end(),
                       [number](const KeptList& list) { return list.number == number; });
  };
  for (const KeptList& list : lists())
    if (!isPlanned(list.number))
      require(list, eventsOf(list.number), " would lose its shot (remove this list first)");
}

void Project::planTakingBack(const RevisionChanges& changes, Plan& plan)
{
  for (const LogChange& change : changes.logs)
    planTakingBack(change, plan);
  for (const ListChange& change : changes.lists)
    planTakingBack(change, plan);
  requireShots(plan);
  if (!changes.optionsBefore)
    return;
  const Values found = valuesOf(blockOf(options_).fields());
  Values now = found;
  if (takeSteps(now, valuesOf(*changes.optionsAfter), valuesOf(*changes.optionsBefore)))
    throw Error(ErrorKind::Refused, subject() + ": an option of the project changed since revision " +
                                        std::to_string(plan.inverse.revision));
  for (const auto& [key, value] : now)
    if (valueIn(found, key) != value)
      plan.inverse.options.emplace_back(key, value);
  for (const auto& [key, value] : found)
    if (now.count(key) == 0)
      plan.inverse.unsetOptions.push_back(key);
  plan.options.assign(now.begin(), now.end());
}

// As when the project is read: no listener is notified, and no log waits to be stored.
void Project::apply(const Plan& plan)
{
  for (const StoredLog& stored : plan.inverse.logs) {
    if (Log* const log = find(cookieOf(stored))) {
      log->assign(stored);
      reelsReady_ = false;
      refreshIndex(*log);
    } else {
      add(StoredLog(stored));
    }
  }
  for (Log* const log : plan.gone)
    remove(*log);
  if (!plan.inverse.options.empty() || !plan.inverse.unsetOptions.empty())
    blockOf(options_).assign(plan.options);
}

TakenBack Project::takeBack(std::int64_t revision)
{
  if (hasChanges())
    throw Error(ErrorKind::Refused, subject() + ": cannot take a revision back (other changes are not stored yet)");
  useForChange();
  use(Access::Read);
  loadOthers();
  History& history = requireHistory();
  const std::map<std::int64_t, std::int64_t> takenBack = takenBackRevisions(history);
  if (const auto by = takenBack.find(revision); by != takenBack.end())
    throw Error(ErrorKind::Refused, subject() + ": revision " + std::to_string(revision) +
                                        " is taken back already (by revision " + std::to_string(by->second) + ")");
  Plan plan;
  plan.inverse.revision = revision;
  history.readRevisions([&](Revision&& read) {
    if (read.number == revision)
      plan.inverse.isRedo = read.takesBack != 0 && !read.isRedo;
    return read.number > revision;
  });
  planTakingBack(history.changesOf(revision), plan);
  apply(plan);
  TakenBack result;
  result.removed = static_cast<int>(plan.gone.size());
  result.changed = plan.changed;
  result.restored = static_cast<int>(plan.inverse.logs.size()) - plan.changed;
  result.lists = static_cast<int>(plan.inverse.lists.size() + plan.inverse.deletedLists.size());
  result.options = !plan.inverse.options.empty() || !plan.inverse.unsetOptions.empty();
  if (result.anything())
    inverse_ = std::move(plan.inverse);
  return result;
}

} // namespace reelhost::model

reelhost::TakenBack reelhost::takeBack(std::int64_t revision)
{
  return model::requireProject("undo").takeBack(revision);
}
