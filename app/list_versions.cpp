// SPDX-License-Identifier: Apache-2.0
#include "app/list_versions.h"

#include <algorithm>
#include <map>
#include <string>
#include <tuple>
#include <unordered_map>

#include "app/shot_logs.h"
#include "base/ascii.h"

namespace reeldb::app {

namespace {

using Places = std::vector<std::optional<std::size_t>>;

std::string keyWithRecord(const Shot& shot)
{
  return shotKey(shot) + '\0' + shot.recordIn + '\0' + shot.recordOut;
}

/// Joins clips of both versions that have one key, in their order, unless they are joined already.
void join(const std::vector<Shot>& before, const std::vector<Shot>& after, std::string (*keyOf)(const Shot&),
          std::vector<bool>& taken, Places& places)
{
  std::unordered_map<std::string, std::vector<std::size_t>> free; // the last one first
  for (std::size_t i = before.size(); i-- > 0;)
    if (!taken[i])
      free[keyOf(before[i])].push_back(i);
  for (std::size_t i = 0; i < after.size(); ++i) {
    if (places[i])
      continue;
    const auto found = free.find(keyOf(after[i]));
    if (found == free.end() || found->second.empty())
      continue;
    places[i] = found->second.back();
    taken[found->second.back()] = true;
    found->second.pop_back();
  }
}

std::vector<Shot> withSource(const std::vector<Shot>& clips)
{
  std::vector<Shot> found;
  std::copy_if(clips.begin(), clips.end(), std::back_inserter(found),
               [](const Shot& clip) { return clip.special.empty(); });
  return found;
}

/// Whether the same shot stands in the cut as before.
bool isUsedTheSame(const Shot& a, const Shot& b)
{
  const auto use = [](const Shot& shot) {
    return std::tie(shot.recordIn, shot.recordOut, shot.event.transition, shot.event.duration, shot.event.speed);
  };
  return use(a) == use(b);
}

/// What the clips of a trimmed pair have in common.
std::string trimKey(const Shot& shot)
{
  return base::fold(shot.reel) + '\0' + shot.clipName + '\0' + shot.tracks;
}

/// Takes the pairs of a gone and an added clip that are one trimmed clip out of both.
void takeTrimmed(VersionDifference& result)
{
  struct Same {
    std::vector<std::size_t> gone, added;
  };
  std::map<std::string, Same> byKey;
  for (std::size_t i = 0; i < result.gone.size(); ++i)
    byKey[trimKey(result.gone[i])].gone.push_back(i);
  for (std::size_t i = 0; i < result.added.size(); ++i)
    byKey[trimKey(result.added[i])].added.push_back(i);
  std::vector<bool> notGone(result.gone.size()), notAdded(result.added.size());
  for (std::size_t i = 0; i < result.added.size(); ++i) {
    const Same& same = byKey[trimKey(result.added[i])];
    if (same.gone.size() != 1 || same.added.size() != 1)
      continue;
    result.trimmed.push_back({result.gone[same.gone.front()], result.added[i]});
    notGone[same.gone.front()] = notAdded[i] = true;
  }
  const auto remove = [](std::vector<Shot>& shots, const std::vector<bool>& taken) {
    std::vector<Shot> rest;
    for (std::size_t i = 0; i < shots.size(); ++i)
      if (!taken[i])
        rest.push_back(std::move(shots[i]));
    shots = std::move(rest);
  };
  remove(result.gone, notGone);
  remove(result.added, notAdded);
}

} // namespace

Places sameShots(const std::vector<Shot>& before, const std::vector<Shot>& after)
{
  Places places(after.size());
  std::vector<bool> taken(before.size());
  join(before, after, keyWithRecord, taken, places);
  join(before, after, shotKey, taken, places);
  return places;
}

VersionDifference difference(const std::vector<Shot>& allBefore, const std::vector<Shot>& allAfter)
{
  const std::vector<Shot> before = withSource(allBefore), after = withSource(allAfter);
  VersionDifference result;
  const Places places = sameShots(before, after);
  std::vector<bool> stays(before.size());
  for (std::size_t i = 0; i < after.size(); ++i) {
    if (!places[i]) {
      result.added.push_back(after[i]);
      continue;
    }
    stays[*places[i]] = true;
    if (!isUsedTheSame(before[*places[i]], after[i]))
      result.changed.push_back({before[*places[i]], after[i]});
  }
  for (std::size_t i = 0; i < before.size(); ++i)
    if (!stays[i])
      result.gone.push_back(before[i]);
  takeTrimmed(result);
  return result;
}

} // namespace reeldb::app
