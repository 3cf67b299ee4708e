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
#include "app/device_settings.h"
#include "app/facility.h"
#include "app/host_errors.h"
#include "app/host_text.h"
#include "app/label_maps.h"
#include "app/plain_text.h"
#include "app/reel_records.h"
#include "base/ascii.h"
#include "base/number.h"
#include "base/text_width.h"
#include "reelhost/conflict.h"
#include "reelhost/host.h"

namespace reeldb::app {

namespace {

using Remarks = std::vector<std::string>;

/// Throws Error for an invalid value, and adds a remark for a doubtful one.
using Check = std::function<void(const std::string&, Remarks&)>;

struct ReelField {
  std::string name; ///< the main name of the field
  Check check;
  std::function<std::string(ReelDbRec&)> read;
  std::function<void(ReelDbRec&, const std::string&)> write; ///< the value has passed the check
  bool isFlag = false;
};

std::optional<bool> parseFlag(const std::string& value)
{
  const std::string word = base::fold(value);
  if (word == "yes" || word == "true" || word == "on" || word == "1")
    return true;
  if (word == "no" || word == "false" || word == "off" || word == "0")
    return false;
  return std::nullopt;
}

std::string flagWord(bool flag)
{
  return flag ? "yes" : "no";
}

ReelField flagField(const std::string& name, bool (ReelDbRec::*get)(), void (ReelDbRec::*put)(bool))
{
  return {name,
          [name](const std::string& value, Remarks&) {
            if (!parseFlag(value))
              throw Error(ErrorKind::Invalid,
                          fmt::format("{}: \"{}\" is neither yes nor no", name, base::shortText(value)));
          },
          [get](ReelDbRec& reel) { return flagWord((reel.*get)()); },
          [put](ReelDbRec& reel, const std::string& value) { (reel.*put)(parseFlag(value).value()); }, true};
}

using Text = LightweightString<char>;

ReelField textField(const std::string& name, Text (ReelDbRec::*get)(), void (ReelDbRec::*put)(Text), Check check)
{
  return {name, std::move(check), [get](ReelDbRec& reel) { return text((reel.*get)()); },
          [put](ReelDbRec& reel, const std::string& value) { (reel.*put)(hostText(value)); }};
}

void anything(const std::string&, Remarks&) {}

/// Adds a remark if the library reads this value as no value.
void checkNotNone(const std::string& field, const std::string& value, const std::string& none, Remarks& remarks)
{
  if (value == none)
    remarks.push_back(fmt::format("{}: \"{}\" means no value", field, none));
}

void checkDevice(const std::string& value, Remarks&)
{
  const reelhost::Facility& facility = requireFacility();
  const auto& devices = facility.devices();
  if (!value.empty() && std::none_of(devices.begin(), devices.end(),
                                     [&value](const reelhost::DeviceSettings& device) { return device.name == value; }))
    throw Error(ErrorKind::Refused, fmt::format("last-device: no device has the name \"{}\" ({})",
                                                base::shortText(value), devicesThereAre(facility)));
}

/// The library stores any text. It looks for a label map of that name only when the reel is captured.
void checkLabelMap(const std::string& value, Remarks& remarks)
{
  checkNotNone("label-map", value, "unknown", remarks);
  if (value.empty() || value == "unknown" || value == "Device default")
    return;
  const auto isAscii = [](char c) { return static_cast<unsigned char>(c) < 0x80; };
  if (const auto fault = labelMapFault(value))
    remarks.push_back(fmt::format("{}; stored anyway", fault->what()));
  else if (!std::all_of(value.begin(), value.end(), isAscii))
    remarks.push_back(fmt::format("\"{}\": stored anyway, but a reel's label map is only found if its name is ASCII",
                                  base::shortText(value)));
}

std::vector<ReelField> fixedFields()
{
  return {
      textField("type", &ReelDbRec::typeName, &ReelDbRec::typeName, remarkOnUnlistedType),
      flagField("available", &ReelDbRec::reelAvailable, &ReelDbRec::reelAvailable),
      flagField("inhibit", &ReelDbRec::recInhibit, &ReelDbRec::recInhibit),
      textField("label-map", &ReelDbRec::labelMapping, &ReelDbRec::labelMapping, checkLabelMap),
      textField("bin", &ReelDbRec::binName, &ReelDbRec::binName,
                [](const std::string& value, Remarks& remarks) { checkNotNone("bin", value, "default", remarks); }),
      {"last-device", checkDevice, [](ReelDbRec& reel) { return text(reel.lastDevice()); },
       [](ReelDbRec& reel, const std::string& value) { reel.lastDevice(wideHostText(value)); }},
  };
}

std::optional<ReelField> fixedField(const std::string& name)
{
  // JSON reports have underscores in these names, and another name for one of the fields.
  std::string wanted = base::fold(name);
  std::replace(wanted.begin(), wanted.end(), '_', '-');
  if (wanted == "label-mapping")
    wanted = "label-map";
  for (ReelField& field : fixedFields())
    if (field.name == wanted)
      return std::move(field);
  return std::nullopt;
}

ReelField userField(int number)
{
  return {fmt::format("user-field.{}", number), anything,
          [number](ReelDbRec& reel) { return text(reel.userField(number)); },
          [number](ReelDbRec& reel, const std::string& value) { reel.userField(number, hostText(value)); }};
}

constexpr std::string_view numberPrefix = "user-field.";

bool isPrefixed(const std::string& name)
{
  return base::fold(name).compare(0, numberPrefix.size(), numberPrefix) == 0;
}

/// Whether the name is meant as the number of a user field.
bool isNumber(const std::string& name)
{
  return isPrefixed(name) || name.find_first_not_of("-0123456789") == std::string::npos;
}

/// The number in the name of a user field; empty if the name is not such a number.
std::optional<int> numberOf(const std::string& name)
{
  if (!isNumber(name))
    return std::nullopt;
  const auto number = base::parseNumber(isPrefixed(name) ? name.substr(numberPrefix.size()) : name);
  if (!number || *number >= static_cast<int>(userFieldCount))
    throw Error(ErrorKind::Invalid, fmt::format("{}: no such user field (they are numbered from 0 to {})",
                                                base::shortText(name), userFieldCount - 1));
  return number;
}

std::optional<int> numberOfDisplayName(const std::string& name)
{
  std::optional<int> found;
  for (int i = 0; i < static_cast<int>(userFieldCount); ++i) {
    if (!base::sameName(text(ReelDbManager::theReelDbManager()->userFieldName(i)), name))
      continue;
    if (found)
      throw Error(ErrorKind::Refused, fmt::format("{}: two user fields have this name (use {} or {} instead)",
                                                  base::shortText(name), userField(*found).name, userField(i).name));
    found = i;
  }
  return found;
}

bool meansField(const std::string& name)
{
  return fixedField(name) || isNumber(name);
}

/// The field of that name, if there is one. Throws Error if two user fields have it.
std::optional<ReelField> fieldNamed(const std::string& name)
{
  if (auto field = fixedField(name))
    return field;
  if (const auto number = numberOf(name))
    return userField(*number);
  if (const auto number = numberOfDisplayName(name))
    return userField(*number);
  return std::nullopt;
}

/// The field of that name. Throws Error if no field has that name, or if two user fields have it.
ReelField findField(const std::string& name)
{
  if (auto field = fieldNamed(name))
    return *std::move(field);
  throw Error(ErrorKind::Invalid,
              fmt::format("{}: no such field (type, available, inhibit, label-map, bin, last-device, user-field.0 "
                          "to user-field.{}, or the name of a user field)",
                          base::shortText(name), userFieldCount - 1));
}

/// Throws Error if the value is not plain text, or is longer than the library can read back.
void requireStorable(const Assignment& assignment)
{
  const std::string field = base::shortText(assignment.field);
  requirePlainText(assignment.value,
                   fmt::format("{}: \"{}\" cannot be stored", field, base::shortText(assignment.value)));
  if (assignment.value.size() > longestField)
    throw Error(ErrorKind::Refused,
                fmt::format("{}: value too long ({} bytes; at most {})", field, assignment.value.size(), longestField));
}

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
