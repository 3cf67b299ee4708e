// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <map>
#include <utility>

#include "host/codes.h"
#include "model/project.h"
#include "model/stored_log.h"
#include "reelhost/display_text.h"
#include "reelhost/history.h"
#include "reelhost/material.h"

namespace reelhost::model {

namespace {

/// Takes the step from @p before to @p after back, if @p now is still as it was after the step. Returns whether @p now
/// is as it was before, or the step did not touch it.
template <class T>
bool takeBackValue(T& now, const T& before, const T& after)
{
  if (before == after)
    return true;
  if (now == after)
    now = before;
  return now == before;
}

std::optional<std::string> valueIn(const Values& values, const std::string& key)
{
  const auto found = values.find(key);
  return found == values.end() ? std::nullopt : std::optional(found->second);
}

bool takeBackValues(Values& now, const Values& before, const Values& after)
{
  Values keys = before;
  keys.insert(after.begin(), after.end());
  return std::all_of(keys.begin(), keys.end(), [&](const auto& entry) {
    const std::string& key = entry.first;
    std::optional<std::string> value = valueIn(now, key);
    if (!takeBackValue(value, valueIn(before, key), valueIn(after, key)))
      return false;
    now.erase(key);
    if (value)
      now.emplace(key, std::move(*value));
    return true;
  });
}

/// The same for a log, whose number and identity never change.
bool takeBackValues(StoredLog& now, const StoredLog& before, const StoredLog& after)
{
  Values fields = valuesOf(now.fields);
  const bool done = takeBackValue(now.type, before.type, after.type) &&
                    takeBackValue(now.imported, before.imported, after.imported) &&
                    takeBackValue(now.entireMedium, before.entireMedium, after.entireMedium) &&
                    takeBackValue(now.name, before.name, after.name) &&
                    takeBackValue(now.reelType, before.reelType, after.reelType) &&
                    takeBackValue(now.videoChannels, before.videoChannels, after.videoChannels) &&
                    takeBackValue(now.audioChannels, before.audioChannels, after.audioChannels) &&
                    takeBackValues(fields, valuesOf(before.fields), valuesOf(after.fields));
  now.fields.assign(fields.begin(), fields.end());
  return done;
}

/// How messages refer to the log: a reel by its identifier, another log by its name, or else by its reel.
std::string nameOf(const StoredLog& log)
{
  const std::string id = valueIn(valuesOf(log.fields), shotTexts.front().key).value_or("");
  const bool isReel = log.type == codes::reelLog;
  for (const std::string& name : {isReel ? id : log.name, isReel ? log.name : id})
    if (!name.empty())
      return displayText(name);
  return "log " + std::to_string(log.number);
}

[[noreturn]] void refuse(const LogChange& change, const StoredLog& log, const char* what)
{
  throw Error(ErrorKind::Refused, nameOf(log) + ": " + what + " since revision " + std::to_string(change.revision) +
                                      " (by revision " + std::to_string(change.next) + ", take that one back first)");
}

} // namespace

void Project::planTakingBack(const LogChange& change, Plan& plan)
{
  if (change.forgotten)
    throw Error(ErrorKind::Refused, subject() + ": revision " + std::to_string(change.revision) +
                                        " cannot be taken back (project compact has removed what it deleted)");
  const std::optional<StoredLog>& before = change.before;
  const std::optional<StoredLog>& after = change.after;
  if (!before && !after)
    return;
  Log* const log = find(cookieOf(before ? *before : *after));
  std::optional<StoredLog> now = log ? std::optional(log->toStored()) : std::nullopt;
  if (!before) {
    if (now && !isSame(*now, *after))
      refuse(change, *now, "changed");
    if (now) {
      plan.inverse.deleted.push_back(change.number);
      plan.gone.push_back(log);
    }
  } else if (!after) {
    if (now && !isSame(*now, *before))
      refuse(change, *now, "restored and changed");
    if (!now)
      plan.inverse.logs.push_back(*before);
  } else {
    if (!now)
      refuse(change, *after, "deleted");
    const StoredLog found = *now;
    if (!takeBackValues(*now, *before, *after))
      refuse(change, found, "changed");
    if (!isSame(*now, found)) {
      plan.inverse.logs.push_back(std::move(*now));
      ++plan.changed;
    }
  }
}

void Project::planTakingBack(const RevisionChanges& changes, Plan& plan)
{
  for (const LogChange& change : changes.logs)
    planTakingBack(change, plan);
  if (!changes.optionsBefore)
    return;
  const Values found = valuesOf(blockOf(options_).fields());
  Values now = found;
  if (!takeBackValues(now, valuesOf(*changes.optionsBefore), valuesOf(*changes.optionsAfter)))
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
