// SPDX-License-Identifier: Apache-2.0
#include "app/shots_made_before.h"

#include <algorithm>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

#include "app/shot_logs.h"
#include "base/ascii.h"
#include "reelhost/host.h"

namespace reeldb::app {

namespace {

using Clips = std::unordered_multimap<std::string_view, const lists::Clip*>;

bool isSameRange(const Shot& shot, const lists::Clip& clip)
{
  return shot.sourceIn == clip.sourceIn && shot.sourceOut == clip.sourceOut && shot.tracks == clip.tracks;
}

/// The names that a shot or clip has for its source, folded.
std::unordered_set<std::string> sourceNames(const Shot& shot)
{
  std::unordered_set<std::string> names = {base::fold(shot.reel), base::fold(ownNameOf(shot)),
                                           base::fold(shot.sourceFile), base::fold(shot.event.reelText)};
  for (const std::string& alias : shot.aliases)
    names.insert(base::fold(alias));
  names.erase(std::string());
  return names;
}

bool haveOneName(const Shot& shot, const lists::Clip& clip)
{
  const std::unordered_set<std::string> names = sourceNames(shot), others = sourceNames(clip);
  return std::any_of(names.begin(), names.end(), [&](const std::string& name) { return others.contains(name); });
}

/// Whether the clip says what the shot says of its source, and no more.
bool saysTheSame(const Shot& shot, const lists::Clip& clip)
{
  return base::sameName(shot.reel, ownNameOf(clip)) && !clip.mayBeCut && clip.sourceId.empty() &&
         clip.cameraRoll.empty();
}

} // namespace

bool isNameless(const Shot& shot)
{
  return !shot.reel.empty() && shot.ownName.empty() && shot.furtherNames.empty() && shot.sourceId.empty();
}

std::vector<std::size_t> withoutList(const std::vector<KnownShot>& shots, const std::vector<std::size_t>& places)
{
  std::unordered_set<std::int64_t> used;
  if (!places.empty() && reelhost::keepsLists())
    for (const reelhost::KeptList& list : reelhost::keptLists())
      for (const reelhost::ListEvent& event : reelhost::eventsOfList(list.number))
        used.insert(event.shot);
  std::vector<std::size_t> free;
  std::copy_if(places.begin(), places.end(), std::back_inserter(free),
               [&](std::size_t place) { return !used.contains(reelhost::logNumber(shots[place].log)); });
  return free;
}

std::vector<std::pair<std::size_t, const lists::Clip*>> shotsMadeBefore(const std::vector<KnownShot>& shots,
                                                                        const std::vector<const lists::Clip*>& clips)
{
  Clips byName;
  for (const lists::Clip* clip : clips)
    byName.emplace(clip->clipName, clip);
  const auto eachClipOf = [&](const Shot& shot, const auto& visit) {
    const auto [begin, end] = byName.equal_range(shot.clipName);
    for (auto at = begin; at != end; ++at)
      if (isSameRange(shot, *at->second) && visit(*at->second))
        return;
  };
  std::vector<std::size_t> open;
  std::unordered_set<const lists::Clip*> taken;
  for (std::size_t i = 0; i < shots.size(); ++i) {
    if (!isNameless(shots[i].shot))
      continue;
    bool isOpen = false, isSame = false;
    eachClipOf(shots[i].shot, [&](const lists::Clip& clip) {
      isSame = saysTheSame(shots[i].shot, clip) && taken.insert(&clip).second;
      isOpen = isOpen || haveOneName(shots[i].shot, clip);
      return isSame;
    });
    if (isOpen && !isSame)
      open.push_back(i);
  }
  std::vector<std::pair<std::size_t, const lists::Clip*>> result;
  for (const std::size_t i : withoutList(shots, open))
    eachClipOf(shots[i].shot, [&](const lists::Clip& clip) {
      if (!haveOneName(shots[i].shot, clip) || !taken.insert(&clip).second)
        return false;
      result.emplace_back(i, &clip);
      return true;
    });
  return result;
}

} // namespace reeldb::app
