// SPDX-License-Identifier: Apache-2.0
//
// A step of a value from what it was to what it became, taken in a value that may have changed since. Taking a revision
// back takes its step in the other direction; applying a commit of others to changes made here takes their step.
#ifndef REELHOST_MODEL_STEP_H
#define REELHOST_MODEL_STEP_H

#include <optional>
#include <string>
#include <utility>

#include "model/stored_log.h"

namespace reelhost::model {

/// Takes the step if @p now is as it was before the step. Returns whether @p now is as it is after the step, or the
/// step did not touch it.
template <class T>
bool takeStep(T& now, const T& from, const T& to)
{
  if (from == to)
    return true;
  if (now == from)
    now = to;
  return now == to;
}

template <class Map>
std::optional<typename Map::mapped_type> valueIn(const Map& values, const typename Map::key_type& key)
{
  const auto found = values.find(key);
  return found == values.end() ? std::nullopt : std::optional(found->second);
}

/// Takes the step in each value of a map. Returns the first key whose value is in the way; empty if none is.
template <class Map>
std::optional<typename Map::key_type> takeSteps(Map& now, const Map& from, const Map& to)
{
  Map keys = from;
  keys.insert(to.begin(), to.end());
  for (const auto& [key, any] : keys) {
    auto value = valueIn(now, key);
    if (!takeStep(value, valueIn(from, key), valueIn(to, key)))
      return key;
    now.erase(key);
    if (value)
      now.emplace(key, std::move(*value));
  }
  return std::nullopt;
}

/// The same for a log, whose number and identity never change. Returns the key, or the name of another value.
std::optional<std::string> takeSteps(StoredLog& now, const StoredLog& from, const StoredLog& to);

/// The value with this key or name.
std::optional<std::string> valueIn(const StoredLog& log, const std::string& name);

std::string idOf(const StoredLog& log); ///< the reel identifier; empty if there is none
/// How messages refer to a log: a reel by its identifier, another log by its name, or else by its reel.
std::string nameOf(const StoredLog& log);
std::string nameOf(const KeptList& list);

} // namespace reelhost::model

#endif
