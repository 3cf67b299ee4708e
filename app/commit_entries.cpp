// SPDX-License-Identifier: Apache-2.0
#include "app/commit_entries.h"

#include <array>
#include <optional>
#include <string_view>
#include <utility>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "ReelDbRec.h"
#include "app/decisions.h"
#include "app/reel_records.h"
#include "base/time_text.h"

namespace reeldb::app {

namespace {

using Values = std::map<std::string, std::string>;

/// The name of a field by its key; empty for a key that people do not set.
std::string fieldName(const std::string& key)
{
  const std::array<std::pair<const char*, const char*>, 6> names = {{{TR_REEL_ID, "reel"},
                                                                     {TR_REEL_AVAILABLE_FLAG, "available"},
                                                                     {TR_REC_INHIBIT_FLAG, "inhibit"},
                                                                     {TR_LABEL_MAPPING, "label-map"},
                                                                     {TR_BIN_NAME, "bin"},
                                                                     {TR_LAST_DEVICE, "last-device"}}};
  for (const auto& [known, name] : names)
    if (key == known)
      return name;
  if (const std::string_view base = TR_USER_FIELD_BASE; key.compare(0, base.size(), base) == 0)
    return "user-field." + key.substr(base.size());
  return {};
}

Values valuesOf(const std::optional<reelhost::StoredLog>& log)
{
  Values values;
  if (!log)
    return values;
  for (const auto& [key, value] : log->fields)
    if (const std::string name = fieldName(key); !name.empty() && !value.empty())
      values[name] = name == "available" || name == "inhibit" ? (value == "1" ? "yes" : "no") : value;
  values["type"] = log->reelType;
  values["old-names"] = fmt::format("{}", fmt::join(oldNamesOf(*log), ", "));
  const Decisions decisions = decisionsOf(*log);
  std::vector<std::string> aliases = decisions.aliases;
  for (const NameInList& each : decisions.inLists)
    aliases.push_back(fmt::format("{} (list {})", each.name, each.list));
  values["aliases"] = fmt::format("{}", fmt::join(aliases, ", "));
  return values;
}

} // namespace

CommitEntry entryFrom(const reelhost::Revision& revision, const TakenBackRevisions& takenBack)
{
  CommitEntry entry;
  entry.revision = revision.number;
  entry.time = base::timeText(revision.origin.time);
  entry.program = revision.origin.program;
  entry.command = revision.origin.command;
  entry.user = revision.origin.user;
  entry.machine = revision.origin.machine;
  entry.folder = revision.origin.folder;
  entry.takesBack = revision.takesBack;
  entry.isRedo = revision.isRedo;
  const auto by = takenBack.find(revision.number);
  entry.takenBackBy = by == takenBack.end() ? 0 : by->second;
  entry.created = revision.created;
  entry.changed = revision.changed;
  entry.deleted = revision.deleted;
  entry.lists = revision.lists;
  entry.options = revision.setOptions;
  entry.elsewhere = revision.origin.elsewhere;
  return entry;
}

std::string idOf(const reelhost::StoredLog& log)
{
  for (const auto& [key, value] : log.fields)
    if (key == TR_REEL_ID)
      return value;
  return {};
}

std::vector<FieldStep> stepsOf(const reelhost::LogChange& change)
{
  const Values before = valuesOf(change.before), after = valuesOf(change.after);
  const bool isRenamed = change.before && change.after && idOf(*change.before) != idOf(*change.after);
  Values fields = before;
  fields.insert(after.begin(), after.end());
  const auto valueIn = [](const Values& values, const std::string& field) {
    const auto found = values.find(field);
    return found == values.end() ? std::string() : found->second;
  };
  std::vector<FieldStep> steps;
  if (isRenamed) // the old name is in the step of the identifier
    fields.erase("old-names");
  for (const auto& [field, any] : fields)
    if (FieldStep step{field, valueIn(before, field), valueIn(after, field)}; step.before != step.after)
      steps.push_back(std::move(step));
  return steps;
}

} // namespace reeldb::app
