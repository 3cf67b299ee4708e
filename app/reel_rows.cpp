// SPDX-License-Identifier: Apache-2.0
#include "app/reel_rows.h"

#include <algorithm>
#include <utility>

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <utf8.h>

#include "app/decisions.h"
#include "app/host_text.h"
#include "app/new_reel_types.h"
#include "app/reel_records.h"
#include "base/ascii.h"
#include "base/text_width.h"

namespace reeldb::app {

namespace {

constexpr int noDevice = -1;

constexpr std::string_view replacementCharacter = "\xEF\xBF\xBD";

/// Whether the text is how a report shows the value.
bool isShown(const std::string& value, const std::string& text)
{
  return value == text ||
         (text.find(replacementCharacter) != std::string::npos && utf8::replace_invalid(value) == text);
}

/// The text in one line, without outer blanks.
std::string oneLine(std::string text)
{
  std::replace_if(
      text.begin(), text.end(), [](char c) { return c == '\t' || c == '\n' || c == '\r'; }, ' ');
  const std::size_t first = text.find_first_not_of(' ');
  return first == std::string::npos ? std::string() : text.substr(first, text.find_last_not_of(' ') - first + 1);
}

/// The field that a title means; empty if there is no such field. A number does not count as a title.
std::optional<ReelField> fieldOf(const std::string& title)
{
  if (title.find_first_not_of("-0123456789") == std::string::npos)
    return std::nullopt;
  try {
    return fieldNamed(title);
  } catch (const Error& error) {
    if (error.kind() == ErrorKind::Invalid) // a number of no user field
      return std::nullopt;
    throw;
  }
}

std::string joined(const std::vector<std::string>& names)
{
  return fmt::format("{}", fmt::join(names, ", "));
}

} // namespace

ReelRows::ReelRows(Session& session, const Treatment& treatment)
    : session_(session), manager_(session.manager()), treatment_(treatment)
{
  for (const Cookie& log : manager_.reelList)
    if (const std::string id = text(ReelDbRec(log).reelId()); !id.empty())
      logs_.try_emplace(base::fold(id), log);
}

void ReelRows::import(ImportedList& result)
{
  lists::List& list = result.list;
  fields_.clear();
  for (const std::string& title : list.fields)
    fields_.push_back(fieldOf(title));
  isUnread_.assign(list.fields.size(), false);
  for (const lists::ReelRow& row : list.reels) {
    try {
      importRow(row, result);
    } catch (const Error& error) {
      list.rejected.push_back({row.line, row.text, error.what()});
    }
  }
  std::stable_sort(list.rejected.begin(), list.rejected.end(),
                   [](const lists::Rejected& one, const lists::Rejected& other) { return one.line < other.line; });
  for (std::size_t i = 0; i < list.fields.size(); ++i)
    if (isUnread_[i])
      list.unread.push_back(list.fields[i]);
  list.reels.clear();
}

std::optional<ReelDbRec> ReelRows::find(const std::string& name)
{
  if (const auto known = logs_.find(base::fold(name)); known != logs_.end())
    return ReelDbRec(known->second);
  if (!names_)
    names_.emplace(session_, treatment_.rules).settle();
  const auto known = logs_.find(base::fold(names_->find(name).reel));
  return known == logs_.end() ? std::nullopt : std::optional(ReelDbRec(known->second));
}

std::vector<ReelRows::Wanted> ReelRows::wantedOf(const lists::ReelRow& row, std::optional<ReelDbRec>& reel)
{
  std::vector<Wanted> wanted;
  std::vector<std::string> remarks;
  for (const lists::ReelValue& value : row.values) {
    if (!fields_[value.field]) {
      isUnread_[value.field] = isUnread_[value.field] || !value.text.empty();
      continue;
    }
    const ReelField& field = *fields_[value.field];
    std::string text = oneLine(value.text);
    const auto flag = field.isFlag ? parseFlag(text) : std::nullopt;
    if (flag)
      text = flagWord(*flag);
    std::optional<std::string> before = reel ? std::optional(field.read(*reel)) : std::nullopt;
    if (before && (isShown(*before, value.text) || *before == text))
      continue;
    requireStorable({field.name, text});
    field.check(text, remarks);
    const auto isSame = [&](const Wanted& other) { return other.field->name == field.name; };
    if (std::any_of(wanted.begin(), wanted.end(), isSame))
      throw Error(ErrorKind::Invalid, fmt::format("{}: in two columns", field.name));
    wanted.push_back({&field, std::move(text), std::move(before)});
  }
  for (std::string& remark : remarks) // a row that was rejected has none
    if (std::find(remarks_.begin(), remarks_.end(), remark) == remarks_.end())
      remarks_.push_back(std::move(remark));
  return wanted;
}

std::vector<std::string> ReelRows::newAliasesOf(const lists::ReelRow& row, const std::string& id)
{
  std::vector<std::string> aliases;
  if (row.aliases.empty())
    return aliases;
  if (!knowsOtherNames_)
    for (const Cookie& log : manager_.reelList) {
      const ReelDbRec other(log);
      const std::string reel = text(ReelDbRec(log).reelId());
      for (const std::string& name : oldNamesOf(other))
        otherNames_.try_emplace(base::fold(name), reel);
      for (const std::string& name : decisionsOf(other).aliases)
        otherNames_.try_emplace(base::fold(name), reel);
    }
  knowsOtherNames_ = true;
  for (const std::string& asked : row.aliases) {
    const std::string name = checkedReelName(asked);
    if (base::sameName(name, id) || hasName(aliases, name))
      continue;
    if (logs_.contains(base::fold(name)))
      throw Error(ErrorKind::Refused,
                  fmt::format("{}: a reel has this name (reeldb merge joins two reels)", base::shortText(name)));
    const auto known = otherNames_.find(base::fold(name));
    if (known == otherNames_.end())
      aliases.push_back(name);
    else if (!base::sameName(known->second, id))
      throw Error(ErrorKind::Refused,
                  fmt::format("{}: already a name of {} (reeldb alias --remove takes it from there)",
                              base::shortText(name), base::shortText(known->second)));
  }
  return aliases;
}

ReelDbRec ReelRows::create(const std::string& name, const std::vector<Wanted>& wanted, ImportedList& result)
{
  const std::string id = checkedReelName(name);
  requireNotGiven(manager_, id);
  std::string type = treatment_.type.value_or(typeByRules({.reel = id, .names = {}}));
  for (const Wanted& each : wanted)
    if (each.field->name == "type" && isListedType(each.value))
      type = each.value;
  const TypeOfNewReels ofType(manager_, type);
  ReelDbRec reel = manager_.createNewReel(hostText(id), noDevice);
  if (!reel.valid())
    throw Error(ErrorKind::Refused, fmt::format("{}: no reel made", base::shortText(id)));
  keepGivenName(reel);
  logs_.try_emplace(base::fold(id), reel);
  result.created.push_back(id);
  if (!type.empty()) {
    const auto known = std::find_if(result.types.begin(), result.types.end(),
                                    [&](const TypedReels& typed) { return typed.type == type; });
    (known == result.types.end() ? result.types.emplace_back(TypedReels{type, {}}) : *known).reels.push_back(id);
  }
  return reel;
}

void ReelRows::importRow(const lists::ReelRow& row, ImportedList& result)
{
  std::optional<ReelDbRec> reel = find(row.reel);
  const std::vector<Wanted> wanted = wantedOf(row, reel);
  std::string id = reel ? text(reel->reelId()) : row.reel;
  const std::vector<std::string> aliases = newAliasesOf(row, id);
  if (!reel) {
    reel = create(row.reel, wanted, result);
    id = text(reel->reelId());
  } else if (result.clips == 0) { // the reels of clips are there already
    result.matched.push_back(id);
  }
  for (const Wanted& each : wanted) {
    RowChange change{row.line, id, each.field->name, each.before ? *each.before : each.field->read(*reel), {}};
    if (change.before == each.value)
      continue;
    each.field->write(*reel, each.value);
    change.after = each.field->read(*reel);
    if (change.after != change.before)
      result.changes.push_back(std::move(change));
  }
  if (!aliases.empty() || row.clearsAliases)
    giveAliases(*reel, id, aliases, row, result);
}

void ReelRows::giveAliases(ReelDbRec& reel, const std::string& id, const std::vector<std::string>& aliases,
                           const lists::ReelRow& row, ImportedList& result)
{
  Decisions decisions = decisionsOf(reel);
  RowChange change{row.line, id, "aliases", joined(decisions.aliases), {}};
  if (row.clearsAliases)
    decisions.aliases.clear();
  decisions.aliases.insert(decisions.aliases.end(), aliases.begin(), aliases.end());
  change.after = joined(decisions.aliases);
  if (change.after == change.before)
    return;
  keepDecisions(reel, decisions);
  for (const std::string& alias : aliases)
    otherNames_.try_emplace(base::fold(alias), change.reel);
  result.changes.push_back(std::move(change));
  changesNames_ = true;
}

std::vector<ReelMove> ReelRows::moveShots()
{
  if (!changesNames_ || treatment_.rules == lists::NameRules::Exact)
    return {};
  ProjectNames names(session_, treatment_.rules);
  names.settle();
  return names.moveShots();
}

} // namespace reeldb::app
