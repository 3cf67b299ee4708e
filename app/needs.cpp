// SPDX-License-Identifier: Apache-2.0
#include "app/needs.h"

#include <algorithm>
#include <array>
#include <map>
#include <optional>
#include <string_view>
#include <tuple>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "app/host_errors.h"
#include "app/host_text.h"
#include "app/list_choice.h"
#include "app/project_names.h"
#include "app/reel_records.h"
#include "app/shot_logs.h"
#include "base/ascii.h"
#include "base/text_width.h"

namespace reeldb::app {

namespace {

std::vector<std::string> troublesOf(const std::optional<Reel>& reel)
{
  if (!reel)
    return {"missing"};
  std::vector<std::string> troubles;
  const auto add = [&](std::string trouble) { troubles.push_back(std::move(trouble)); };
  if (!reel->available)
    add("unavailable");
  if (!isListedType(reel->type))
    add("unknown type");
  return troubles;
}

class Needs {
public:
  /// Looks over the reels once: asking the library opens every log for every need.
  explicit Needs(Session& session)
  {
    for (const Cookie& log : session.manager().reelList)
      if (const std::string id = text(ReelDbRec(log).reelId()); !id.empty())
        reels_.try_emplace(base::fold(id), log);
  }

  /// The need of the reel. REQUIRES: the identifier is not empty.
  Need& addReel(const std::string& reelId)
  {
    const auto [found, first] = places_.emplace(base::fold(reelId), needs_.size());
    if (first)
      needs_.push_back(lookUp(reelId));
    return needs_[found->second];
  }
  /// Counts a shot of the reel. REQUIRES: the identifier is not empty.
  Need& addShot(const std::string& reelId)
  {
    Need& need = addReel(reelId);
    ++need.shots;
    return need;
  }
  std::vector<Need> take() { return std::move(needs_); }

private:
  Need lookUp(const std::string& reelId)
  {
    Need need{reelId, 0, std::nullopt, {}};
    if (const auto found = reels_.find(base::fold(reelId)); found != reels_.end()) {
      need.reel = readReel(ReelDbRec(found->second), {});
      need.id = need.reel->id;
    }
    need.troubles = troublesOf(need.reel);
    return need;
  }

  std::unordered_map<std::string, Cookie> reels_; ///< by folded identifier, as are the places
  std::map<std::string, std::size_t> places_;
  std::vector<Need> needs_;
};

/// Adds the reel that the name of a missing one may mean, once, if it exists.
void addCandidate(Need& need, Candidate candidate)
{
  const auto same = [&](const Candidate& other) { return base::sameName(other.reel, candidate.reel); };
  if (!candidate.isThere || std::any_of(need.candidates.begin(), need.candidates.end(), same))
    return;
  need.candidates.push_back(std::move(candidate));
  need.troubles = {"perhaps"};
}

/// Adds the existing reels that the identifiers of missing reels may mean.
void addCandidates(Session& session, std::vector<Need>& needs)
{
  std::optional<ReelNames> known; // gathered for the first missing reel
  for (Need& need : needs) {
    if (need.reel)
      continue;
    if (!known)
      known = knownNames(session);
    for (Candidate& candidate : known->find(need.id))
      addCandidate(need, std::move(candidate));
  }
}

/// The reels of the shots by the keys under which lists know them. A shot that lies in the reel of the key goes first.
std::unordered_map<std::string, std::string> reelsOfShots(const ProjectNames& names)
{
  std::unordered_map<std::string, std::string> reels, others;
  for (const KnownShot& known : names.shots()) {
    std::vector<std::string> keys = names.keysOf(known.shot);
    reels.emplace(std::move(keys.front()), known.shot.reel);
    for (std::size_t i = 1; i < keys.size(); ++i)
      others.emplace(std::move(keys[i]), known.shot.reel);
  }
  reels.insert(others.begin(), others.end());
  return reels;
}

/// Adds the existing reels that the names of missing reels may mean.
void addCandidates(Session& session, std::vector<Need>& needs, const ProjectNames& names)
{
  std::optional<ReelNames> known; // gathered for the first missing reel
  for (Need& need : needs) {
    if (need.reel)
      continue;
    if (!known)
      known = knownNames(session);
    for (const NamedReel& name : need.names) {
      for (const std::string& reel : name.perhaps)
        addCandidate(need, {reel, names.hasRecord(reel), {Reason::Form}});
      for (Candidate& candidate : known->find(name.name))
        addCandidate(need, std::move(candidate));
    }
  }
}

/// The kept list whose decisions hold for the file: the same bytes, or the only list with its file name.
std::optional<reelhost::KeptList> keptVersion(const ListFile& file, const reelhost::Digest& digest)
{
  if (auto same = listWith(digest))
    return same;
  std::optional<reelhost::KeptList> found;
  for (reelhost::KeptList& list : reelhost::keptLists())
    if (base::sameName(list.file, fileNameOf(file))) {
      if (found)
        return std::nullopt;
      found = std::move(list);
    }
  return found;
}

/// The place of its state among all states.
std::size_t rankOf(const Need& need)
{
  constexpr std::array<std::string_view, 4> troubles = {"missing", "perhaps", "unavailable", "unknown type"};
  return need.troubles.empty()
             ? troubles.size()
             : static_cast<std::size_t>(std::find(troubles.begin(), troubles.end(), need.troubles.front()) -
                                        troubles.begin());
}

} // namespace

std::string Need::state() const
{
  return troubles.empty() ? "ready" : fmt::format("{}", fmt::join(troubles, ", "));
}

std::vector<Need> needsOfClips(Session& session, const std::vector<std::string>& clips)
{
  return guarded([&] {
    Needs needs(session);
    const std::vector<Shot> shots = allShots(session);
    for (const std::string& name : clips) {
      bool found = false;
      for (const Shot& shot : shots) {
        if (!base::sameName(shot.clipName, name))
          continue;
        found = true;
        if (!shot.reel.empty())
          needs.addShot(shot.reel);
      }
      if (!found)
        throw Error(ErrorKind::NotFound, fmt::format("{}: no shot has this clip name", base::shortText(name)));
    }
    std::vector<Need> result = needs.take();
    if (result.empty())
      throw Error(ErrorKind::Refused, "reels-of: none of these shots has a reel");
    return result;
  });
}

std::vector<Need> needsOfReel(Session& session, const std::string& reel)
{
  return guarded([&] {
    Needs needs(session);
    for (const Shot& shot : shotsFrom(reelhost::shotsOf(reel)))
      needs.addShot(shot.reel);
    std::vector<Need> result = needs.take();
    if (result.empty())
      throw Error(ErrorKind::Refused,
                  fmt::format("{}: no shot was recorded from this reel",
                              base::shortText(text(requireReel(session.manager(), reel).reelId()))));
    return result;
  });
}

std::vector<Need> needsOfList(Session& session, const ListFile& file, lists::NameRules rules)
{
  return guarded([&] {
    Needs needs(session);
    ProjectNames names(session, rules);
    std::vector<lists::Clip> clips = file.list.clips;
    const reelhost::Digest digest = reelhost::digestOf(file.bytes);
    const auto kept = reelhost::keepsLists() ? keptVersion(file, digest) : std::nullopt;
    names.read(kept ? kept->number : 0, digest, clips);
    for (const lists::Clip& clip : clips)
      names.add(clip);
    names.settle();
    const std::unordered_map<std::string, std::string> there = reelsOfShots(names);
    std::unordered_set<std::string> met;
    for (lists::Clip& clip : clips) {
      NamedReel name = names.find(clip);
      clip.reel = name.reel;
      const auto shot = there.find(shotKey(clip));
      if (shot == there.end() && names.isDeleted(clip))
        continue; // an import leaves it out
      if (shot != there.end() && !base::sameName(shot->second, name.reel)) {
        needs.addShot(shot->second); // a person put it there, whatever its name says
        continue;
      }
      Need& need = needs.addShot(name.reel);
      if (met.insert(base::fold(name.name) + '\n' + name.sourceId).second)
        need.names.push_back(std::move(name));
    }
    std::vector<Need> result = needs.take();
    addCandidates(session, result, names);
    return result;
  });
}

std::vector<Need> needsOfProject(Session& session)
{
  return guarded([&] {
    Needs needs(session);
    for (const Cookie& log : session.manager().reelList)
      if (const std::string id = text(ReelDbRec(log).reelId()); !id.empty())
        needs.addReel(id);
    for (const Shot& shot : allShots(session))
      if (!shot.reel.empty())
        needs.addShot(shot.reel);
    std::vector<Need> result = needs.take();
    addCandidates(session, result);
    return result;
  });
}

std::vector<Need> needsOfEvents(Session& session, const std::vector<ListUse>& events)
{
  return guarded([&] {
    Needs needs(session);
    for (const ListUse& event : events)
      if (!event.reel.empty())
        needs.addShot(event.reel);
    std::vector<Need> result = needs.take();
    addCandidates(session, result);
    return result;
  });
}

bool comesFirst(const Need& a, const Need& b)
{
  const auto place = [](const Need& need) {
    const std::string shelf = need.reel ? need.reel->bin : std::string();
    return std::tuple(rankOf(need), need.state(), shelf.empty(), base::fold(shelf), base::fold(need.id), need.id);
  };
  return place(a) < place(b);
}

std::vector<std::pair<std::string, std::size_t>> countsOfStates(const std::vector<Need>& needs)
{
  std::map<std::pair<std::size_t, std::string>, std::size_t> counts;
  for (const Need& need : needs)
    ++counts[{rankOf(need), need.state()}];
  std::vector<std::pair<std::string, std::size_t>> result;
  result.reserve(counts.size());
  for (const auto& [state, count] : counts)
    result.emplace_back(state.second, count);
  return result;
}

bool isMissing(const Need& need)
{
  return !need.reel;
}

std::size_t readyCount(const std::vector<Need>& needs)
{
  return static_cast<std::size_t>(
      std::count_if(needs.begin(), needs.end(), [](const Need& need) { return need.troubles.empty(); }));
}

} // namespace reeldb::app
