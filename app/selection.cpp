// SPDX-License-Identifier: Apache-2.0
#include "app/selection.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include <fmt/format.h>

#include "app/host_errors.h"
#include "app/kept_lists.h"
#include "app/reel_fields.h"
#include "app/reel_records.h"
#include "app/rolls.h"
#include "base/ascii.h"
#include "base/pattern.h"
#include "base/text_width.h"

namespace reeldb::app {

namespace {

using Value = std::function<std::string(const Reel&)>;
using Holds = std::function<bool(const Reel&)>;

std::string word(bool flag)
{
  return flag ? "yes" : "no";
}

/// The value of the field that has this main name. Throws std::out_of_range if no field has it.
Value valueOfField(const std::string& name)
{
  static const std::unordered_map<std::string, Value> values = [] {
    std::unordered_map<std::string, Value> all = {
        {"type", [](const Reel& reel) { return reel.type; }},
        {"available", [](const Reel& reel) { return word(reel.available); }},
        {"inhibit", [](const Reel& reel) { return word(reel.inhibit); }},
        {"label-map", [](const Reel& reel) { return reel.labelMapping; }},
        {"bin", [](const Reel& reel) { return reel.bin; }},
        {"last-device", [](const Reel& reel) { return reel.lastDevice; }},
        {"name", [](const Reel& reel) { return reel.id; }},
        {"shelf", [](const Reel& reel) { return reel.bin; }},
        {"shots", [](const Reel& reel) { return std::to_string(reel.shots); }},
        {"unused", [](const Reel& reel) { return word(reel.shots == 0); }},
    };
    for (std::size_t i = 0; i < userFieldCount; ++i)
      all[fmt::format("user-field.{}", i)] = [i](const Reel& reel) { return reel.userFields[i]; };
    return all;
  }();
  return values.at(name);
}

/// The value of a field by any of its names. A user field goes before the names that only a selection has.
Value valueOf(const std::string& field)
{
  if (const std::optional<std::string> name = reelFieldName(field))
    return valueOfField(*name);
  const std::string name = base::fold(field);
  if (name == "name" || name == "shelf" || name == "shots" || name == "unused")
    return valueOfField(name);
  throw Error(
      ErrorKind::Invalid,
      fmt::format("{}: no such field (name, type, available, inhibit, label-map, shelf, last-device, user-field.0 "
                  "to user-field.{}, the name of a user field, shots, unused, roll, list)",
                  base::shortText(field), userFieldCount - 1));
}

Holds isAmong(std::unordered_set<std::string> reels)
{
  return [reels = std::move(reels)](const Reel& reel) { return reels.count(base::fold(reel.id)) != 0; };
}

Holds isOfRoll(Session& session, const std::string& pattern)
{
  std::unordered_set<std::string> reels;
  for (const Roll& roll : reelsByRoll(session))
    if (base::matches(roll.name, pattern))
      for (const std::string& reel : roll.reels)
        reels.insert(base::fold(reel));
  return isAmong(std::move(reels));
}

Holds isOfList(Session& session, const std::string& list)
{
  std::unordered_set<std::string> reels;
  for (const ListUse& use : eventsOf(session, list).events)
    reels.insert(base::fold(use.reel));
  return isAmong(std::move(reels));
}

Holds conditionOf(Session& session, const std::string& text)
{
  const std::size_t equals = text.find('=');
  const bool isNot = equals != std::string::npos && equals != 0 && text[equals - 1] == '!';
  const std::string field = text.substr(0, equals == std::string::npos ? equals : equals - (isNot ? 1 : 0));
  if (equals == std::string::npos && !base::sameName(field, "unused"))
    throw Error(ErrorKind::Invalid, fmt::format("\"{}\": not a condition (use FIELD=VALUE, FIELD!=VALUE or unused)",
                                                base::shortText(text)));
  std::string value = equals == std::string::npos ? "yes" : text.substr(equals + 1);
  Holds holds;
  if (base::sameName(field, "roll") && !reelFieldName(field))
    holds = isOfRoll(session, value);
  else if (base::sameName(field, "list") && !reelFieldName(field))
    holds = isOfList(session, value);
  else
    holds = [read = valueOf(field), value](const Reel& reel) { return base::matches(read(reel), value); };
  return isNot ? [holds](const Reel& reel) { return !holds(reel); } : holds;
}

/// The places of the named reels, in the order of the names, each once.
std::vector<std::size_t> placesOf(Session& session, const std::vector<Reel>& reels,
                                  const std::vector<std::string>& names)
{
  std::unordered_map<std::string, std::size_t> byName;
  for (std::size_t i = 0; i < reels.size(); ++i)
    byName.emplace(base::fold(reels[i].id), i);
  std::vector<std::size_t> places;
  std::vector<bool> taken(reels.size());
  const auto take = [&](std::size_t place) {
    if (!taken[place])
      places.push_back(place);
    taken[place] = true;
  };
  for (const std::string& name : names) {
    if (const auto found = byName.find(base::fold(name)); found != byName.end()) {
      take(found->second);
      continue;
    }
    if (!base::isPattern(name))
      requireReel(session.manager(), name); // throws
    bool matched = false;
    for (std::size_t i = 0; i < reels.size(); ++i)
      if (base::matches(reels[i].id, name)) {
        matched = true;
        take(i);
      }
    if (!matched)
      throw Error(ErrorKind::NotFound, fmt::format("{}: no reel matches", base::shortText(name)));
  }
  return places;
}

} // namespace

bool Selection::isOneName() const
{
  return where.empty() && reels.size() == 1 && !base::isPattern(reels.front());
}

std::vector<Reel> selectReels(Session& session, const Selection& selection)
{
  return guarded([&] {
    std::vector<Holds> conditions;
    for (const std::string& text : selection.where)
      conditions.push_back(conditionOf(session, text));
    std::vector<Reel> all = listReels(session);
    std::vector<Reel> named;
    if (!selection.reels.empty()) {
      for (const std::size_t place : placesOf(session, all, selection.reels))
        named.push_back(std::move(all[place]));
      all = std::move(named);
    }
    std::erase_if(all, [&](const Reel& reel) {
      return std::any_of(conditions.begin(), conditions.end(), [&](const Holds& holds) { return !holds(reel); });
    });
    return all;
  });
}

std::vector<std::string> requireSelected(Session& session, const Selection& selection)
{
  std::vector<std::string> ids;
  for (const Reel& reel : selectReels(session, selection))
    ids.push_back(reel.id);
  if (ids.empty())
    throw Error(ErrorKind::NotFound, "no reel matches all conditions (reeldb list --where shows those that match one)");
  return ids;
}

void sortReels(std::vector<Reel>& reels, const std::vector<std::string>& fields)
{
  struct Key {
    Value read;
    bool isDescending;
  };
  std::vector<Key> keys;
  for (const std::string& field : fields) {
    const bool isDescending = !field.empty() && field.front() == '-';
    keys.push_back({valueOf(isDescending ? field.substr(1) : field), isDescending});
  }
  std::vector<std::pair<std::vector<std::string>, std::size_t>> order;
  for (std::size_t i = 0; i < reels.size(); ++i) {
    std::vector<std::string> values;
    values.reserve(keys.size());
    for (const Key& key : keys)
      values.push_back(base::fold(key.read(reels[i])));
    order.emplace_back(std::move(values), i);
  }
  std::stable_sort(order.begin(), order.end(), [&](const auto& a, const auto& b) {
    for (std::size_t i = 0; i < keys.size(); ++i) {
      const std::string &one = a.first[i], &other = b.first[i];
      if (one.empty() != other.empty())
        return other.empty();
      // Runs of digits count as numbers: "shelf 2" is before "shelf 10".
      if (const int difference = ::strverscmp(one.c_str(), other.c_str()); difference != 0)
        return keys[i].isDescending ? difference > 0 : difference < 0;
    }
    return false;
  });
  std::vector<Reel> sorted;
  sorted.reserve(reels.size());
  for (const auto& [values, place] : order)
    sorted.push_back(std::move(reels[place]));
  reels = std::move(sorted);
}

} // namespace reeldb::app
