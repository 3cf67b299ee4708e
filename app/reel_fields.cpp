// SPDX-License-Identifier: Apache-2.0
#include "app/reel_fields.h"

#include <algorithm>
#include <functional>
#include <map>
#include <optional>
#include <unordered_map>

#include <fmt/format.h>

#include "app/commit_entries.h"
#include "app/conflict.h"
#include "app/facility.h"
#include "app/host_errors.h"
#include "app/host_text.h"
#include "app/plain_text.h"
#include "app/reel_field.h"
#include "app/reel_records.h"
#include "base/ascii.h"
#include "base/number.h"
#include "base/text_width.h"
#include "reelhost/conflict.h"
#include "reelhost/host.h"

namespace reeldb::app {

namespace {

struct Wanted {
  ReelField field;
  std::string value;
};

std::vector<Wanted> checkAssignments(const std::vector<Assignment>& assignments, Remarks& remarks)
{
  std::vector<Wanted> result;
  for (const Assignment& assignment : assignments) {
    requireStorable(assignment);
    ReelField field = findField(assignment.field);
    field.check(assignment.value, remarks);
    for (const Wanted& other : result)
      if (other.field.name == field.name)
        throw Error(ErrorKind::Invalid, fmt::format("{}: given twice", field.name));
    result.push_back({std::move(field), assignment.value});
  }
  return result;
}

/// Sets the fields of the reel, in memory.
ChangedReel changed(ReelDbRec& reel, const std::vector<Wanted>& fields)
{
  ChangedReel result;
  result.id = text(reel.reelId());
  for (const Wanted& wanted : fields) {
    FieldChange change{wanted.field.name, wanted.field.read(reel), {}};
    wanted.field.write(reel, wanted.value);
    change.after = wanted.field.read(reel);
    result.changes.push_back(std::move(change));
  }
  return result;
}

/// The last commit that changed the field; empty if the history does not say which.
std::optional<reelhost::Revision> lastChangeOf(const ReelDbRec& reel, const std::string& field)
{
  reelhost::History* const history = reelhost::projectStoreToRead().history();
  std::int64_t number = 0;
  std::optional<reelhost::Revision> last;
  if (!history)
    return last;
  history->readChangesOfLog(reelhost::logNumber(reel), [&](const reelhost::LogChange& change) {
    for (const FieldStep& step : stepsOf(change))
      if (step.field == field)
        number = change.revision;
  });
  history->readRevisions([&](reelhost::Revision&& revision) {
    const bool isLater = revision.number > number;
    if (revision.number == number)
      last = std::move(revision);
    return isLater;
  });
  return last;
}

/// Throws Error if a field of the reel has another value.
void requireExpected(ReelDbRec& reel, const std::vector<Assignment>& expected)
{
  const auto shown = [](const std::string& value) {
    return value.empty() ? std::string("empty") : fmt::format("\"{}\"", base::shortText(value));
  };
  for (const Assignment& assignment : expected) {
    const ReelField field = findField(assignment.field);
    const std::optional<bool> flag = field.isFlag ? parseFlag(assignment.value) : std::nullopt;
    Remarks none;
    if (field.isFlag)
      field.check(assignment.value, none);
    FieldConflict conflict{
        text(reel.reelId()), field.name, flag ? flagWord(*flag) : assignment.value, field.read(reel), {}};
    if (conflict.found == conflict.expected)
      continue;
    std::string what = fmt::format("{}: {} is {}, not {}", conflict.id, conflict.field, shown(conflict.found),
                                   shown(conflict.expected));
    if (const auto revision = lastChangeOf(reel, field.name)) {
      what += fmt::format(" (changed {})", reelhost::describeCommit(*revision));
      conflict.commit = entryFrom(*revision, {});
    }
    throw Conflict(std::move(conflict), what);
  }
}

std::string systemKey(int number)
{
  return "reel_userfield" + std::to_string(number);
}

/// The numbers and names to store. Everything is checked before anything is changed.
std::map<int, std::string> checkNames(const std::vector<Assignment>& assignments)
{
  std::map<int, std::string> names;
  for (const Assignment& assignment : assignments) {
    requireStorable(assignment);
    const auto number = base::parseNumber(assignment.field);
    if (!number || *number >= static_cast<int>(userFieldCount))
      throw Error(ErrorKind::Invalid, fmt::format("{}: no such user field (they are numbered from 0 to {})",
                                                  base::shortText(assignment.field), userFieldCount - 1));
    if (!names.emplace(*number, assignment.value).second)
      throw Error(ErrorKind::Invalid, fmt::format("{}: given twice", *number));
  }
  return names;
}

/// Throws Error if changeReel would find another field by the name.
void requireUnmistakable(const std::map<int, std::string>& names, const std::vector<UserField>& fields)
{
  const auto nameOf = [&names](const UserField& field) {
    const auto wanted = names.find(field.number);
    if (wanted == names.end())
      return field.display;
    return wanted->second.empty() ? field.defaultName : wanted->second;
  };
  for (const auto& [number, name] : names) {
    const std::string wanted = nameOf(fields.at(static_cast<std::size_t>(number)));
    const std::string fact = fmt::format("\"{}\": not a valid name for user field {}", base::shortText(wanted), number);
    if (wanted.find_first_not_of(' ') == std::string::npos)
      throw Error(ErrorKind::Refused, fact + " (it is blank)");
    if (meansField(wanted))
      throw Error(ErrorKind::Refused, fact + " (reeldb set uses it for another field)");
    for (const UserField& other : fields)
      if (other.number != number && base::sameName(nameOf(other), wanted))
        throw Error(ErrorKind::Refused, fmt::format("{} (user field {} has this name)", fact, other.number));
  }
}

} // namespace

ChangedReel changeReel(Session& session, const std::string& id, const std::vector<Assignment>& assignments,
                       const std::vector<Assignment>& expected)
{
  return guarded([&] {
    ReelDbRec reel = requireReel(session.manager(), id);
    requireExpected(reel, expected);
    std::vector<std::string> remarks;
    ChangedReel result = changed(reel, checkAssignments(assignments, remarks));
    result.remarks = std::move(remarks);
    result.stored = session.commit();
    return result;
  });
}

std::vector<ChangedReel> changeReels(Session& session, const std::vector<std::string>& ids,
                                     const std::vector<Assignment>& assignments,
                                     const std::vector<Assignment>& expected)
{
  return guarded([&] {
    // Looks over the reels once: asking the library opens every log for every reel.
    std::unordered_map<std::string, Cookie> logs;
    for (const Cookie& log : session.manager().reelList)
      if (const std::string id = text(ReelDbRec(log).reelId()); !id.empty())
        logs.try_emplace(base::fold(id), log);
    std::vector<ReelDbRec> reels;
    reels.reserve(ids.size());
    for (const std::string& id : ids) {
      const auto found = logs.find(base::fold(id));
      reels.push_back(found == logs.end() ? requireReel(session.manager(), id) : ReelDbRec(found->second));
      requireExpected(reels.back(), expected);
    }
    std::vector<std::string> remarks;
    const std::vector<Wanted> wanted = checkAssignments(assignments, remarks);
    std::vector<ChangedReel> result;
    result.reserve(reels.size());
    for (ReelDbRec& reel : reels)
      result.push_back(changed(reel, wanted));
    if (!result.empty())
      result.front().remarks = std::move(remarks);
    const bool stored = session.commit();
    for (ChangedReel& one : result)
      one.stored = stored && std::any_of(one.changes.begin(), one.changes.end(), std::mem_fn(&FieldChange::changed));
    return result;
  });
}

std::optional<std::string> reelFieldName(const std::string& name)
{
  const std::optional<ReelField> field = fieldNamed(name);
  return field ? std::optional(field->name) : std::nullopt;
}

std::vector<std::string> reelFieldNames()
{
  std::vector<std::string> names;
  for (const ReelField& field : fixedFields())
    names.push_back(field.name);
  for (int i = 0; i < static_cast<int>(userFieldCount); ++i)
    names.push_back(userField(i).name);
  return names;
}

std::vector<UserField> listUserFields()
{
  const reelhost::Facility& facility = requireFacility();
  const auto display = userFieldNames();
  std::vector<UserField> fields;
  fields.reserve(userFieldCount);
  for (int i = 0; i < static_cast<int>(userFieldCount); ++i)
    fields.push_back({i, facility.systemValue(systemKey(i)), display[static_cast<std::size_t>(i)],
                      fmt::format("User field {}", i + 1)});
  return fields;
}

NamedUserFields nameUserFields(const std::vector<Assignment>& assignments)
{
  return guarded([&] {
    reelhost::Facility& facility = requireFacility();
    const std::map<int, std::string> names = checkNames(assignments);
    requireUnmistakable(names, listUserFields());
    for (const auto& [number, name] : names)
      if (facility.systemValue(systemKey(number)) != name)
        ReelDbManager::theReelDbManager()->userFieldName(number, hostText(name));
    NamedUserFields result;
    result.stored = facility.stateChanged();
    facility.saveState();
    result.fields = listUserFields();
    return result;
  });
}

} // namespace reeldb::app
