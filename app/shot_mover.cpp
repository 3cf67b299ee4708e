// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <iterator>
#include <map>
#include <optional>
#include <set>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "ReelDbManager.h"
#include "app/host_text.h"
#include "app/kept_events.h"
#include "app/new_reel_types.h"
#include "app/project_names.h"
#include "app/reel_records.h"
#include "app/shot_logs.h"
#include "app/unused_shots.h"
#include "base/ascii.h"
#include "reelhost/host.h"

namespace reeldb::app {

namespace {

constexpr int noDevice = -1;

using Names = std::vector<lists::SourceName>;

} // namespace

/// Gives shots and records the reels that follow from all names. Which shots move is known before any of them does.
class ShotMover {
public:
  explicit ShotMover(ProjectNames& names) : names_(names), manager_(names.session_.manager()) {}

  std::vector<ReelMove> run()
  {
    keepAdopted();
    planMoves();
    planRenames();
    planRenamesOfAdopted();
    if (plan_.empty() && renames_.empty() && names_.merged_.empty())
      return {};
    if (std::any_of(plan_.begin(), plan_.end(), [](const Plan& plan) { return plan.parts.size() > 1; }))
      partPlans();
    for (std::size_t i = 0; i < shots().size(); ++i)
      if (!isPlanned_.contains(i) && !shots()[i].shot.reel.empty())
        byKey_.emplace(shotKey(shots()[i].shot), i);
    for (Plan& plan : plan_) {
      plan.from = shots()[plan.shot].shot.reel;
      if (plan.parts.size() > 1)
        takeTextsOf(plan.shot, plan.parts.front().reel);
      place(plan);
    }
    renameRecords();
    for (const Plan& plan : plan_)
      for (std::size_t part = 1; part < plan.parts.size(); ++part)
        partShot(plan, plan.parts[part]);
    for (const Plan& plan : plan_)
      for (const Part& part : plan.parts)
        if (names_.ids_.insert(base::fold(part.reel)).second) {
          const TypeOfNewReels type(manager_, typeOf(part.reel));
          manager_.createNewReel(hostText(part.reel), noDevice);
        }
    storeLists();
    removeEmptied();
    reelhost::deleteLogs(gone_);
    manager_.informReelDbChanged("");
    std::vector<ReelMove> moves;
    for (const auto& [reels, count] : moves_)
      moves.push_back({reels.first, reels.second, count});
    return moves;
  }

private:
  /// Names of a shot that are one reel.
  struct Part {
    std::string reel;
    Names names; ///< empty: the shot keeps its names, because a person put it into the reel
  };
  /// A shot that moves, or that is several shots.
  struct Plan {
    std::size_t shot;
    std::vector<Part> parts; ///< the shot itself becomes the first of them
    std::string from = {};   ///< the reel of the shot before anything moves
  };

  std::vector<KnownShot>& shots() { return names_.shots_; }

  const std::string& reelFor(const std::string& name, const std::string& sourceId)
  {
    const auto [known, isNew] = reels_.try_emplace(base::fold(name) + '\n' + sourceId);
    if (isNew)
      known->second = names_.find(name, sourceId).reel;
    return known->second;
  }

  /// Stores what is known of adopted shots now. Those that have to move follow.
  void keepAdopted()
  {
    for (const std::size_t place : names_.adopted_) {
      const KnownShot& known = shots()[place];
      reelhost::changeMaterial(known.log, materialFrom(known.shot));
    }
  }

  /// A record from which all shots go to one reel, which has no record, is that reel under an earlier name.
  void planRenamesOfAdopted()
  {
    if (names_.adopted_.empty())
      return;
    std::map<std::string, std::size_t> counts; // of shots, by folded reel
    for (const KnownShot& known : shots())
      ++counts[base::fold(known.shot.reel)];
    std::map<std::string, std::set<std::string>> targets;
    std::map<std::string, std::string> spellings;
    for (const Plan& plan : plan_) {
      const std::string from = base::fold(shots()[plan.shot].shot.reel);
      --counts[from];
      for (const Part& part : plan.parts) {
        targets[from].insert(base::fold(part.reel));
        spellings[base::fold(part.reel)] = part.reel;
      }
    }
    std::set<std::string> given;
    for (const ProjectNames::Record& record : names_.records_) {
      const std::string from = base::fold(record.id);
      const auto to = targets.find(from);
      if (to == targets.end() || to->second.size() != 1 || counts[from] != 0 || renames_.contains(from) ||
          record.decisions.namesReel || isMerged(record.id) || manager_.reelInUse(hostText(record.id)))
        continue;
      const std::string& reel = *to->second.begin();
      if (!names_.ids_.contains(reel) && given.insert(reel).second)
        renames_.emplace(from, std::pair(&record, spellings[reel]));
    }
  }

  void planMoves()
  {
    for (std::size_t i = 0; i < shots().size(); ++i) {
      const Shot& shot = shots()[i].shot;
      if (shot.reel.empty())
        continue;
      const auto isThere = [&](const std::string& name, const std::string& sourceId) {
        return base::sameName(reelFor(name, sourceId), shot.reel);
      };
      const std::vector<lists::SourceName>& further = shot.furtherNames;
      const bool leaves = isMerged(shot.reel);
      if (!leaves && isThere(ownNameOf(shot), shot.sourceId) &&
          std::all_of(further.begin(), further.end(),
                      [&](const auto& each) { return isThere(each.name, each.sourceId); }))
        continue;
      const bool byNames = names_.liesByNames(shot);
      if (!byNames && !leaves)
        continue;
      Plan& plan = plan_.emplace_back(Plan{i, {}});
      if (byNames)
        for (const lists::SourceName& name : namesOf(shot))
          partOf(plan, reelFor(name.name, name.sourceId)).names.push_back(name);
      else
        plan.parts.push_back({reelFor(shot.reel, {}), {}});
      isPlanned_.insert(i);
    }
  }

  bool isMerged(const std::string& reel) const { return names_.merged_.contains(base::fold(reel)); }

  static Part& partOf(Plan& plan, const std::string& reel)
  {
    const auto known = std::find_if(plan.parts.begin(), plan.parts.end(),
                                    [&](const Part& part) { return base::sameName(part.reel, reel); });
    return known == plan.parts.end() ? plan.parts.emplace_back(Part{reel, {}}) : *known;
  }

  /// The record of a short form takes the whole name, if no record has it.
  void planRenames()
  {
    for (const auto& [reel, records] : names_.recordsOf_) {
      if (names_.names_.contains(reel))
        continue;
      const ProjectNames::Record& record = names_.records_[records.front()];
      renames_.emplace(base::fold(record.id), std::pair(&record, names_.index_.find(record.id).reel));
    }
  }

  /// Leaves out the parts that no list has any more: a list may have been removed or replaced.
  void partPlans()
  {
    readLists();
    if (lists_.empty())
      return;
    for (Plan& plan : plan_) {
      if (plan.parts.size() < 2)
        continue;
      std::vector<Part> used;
      for (const Part& part : plan.parts)
        if (useOf(plan.shot, part.reel))
          used.push_back(part);
      if (!used.empty())
        plan.parts = std::move(used);
    }
  }

  void readLists()
  {
    if (std::exchange(haveLists_, true) || !reelhost::keepsLists())
      return;
    lists_ = reelhost::keptLists();
    for (std::size_t list = 0; list < lists_.size(); ++list) {
      lists_[list].events = reelhost::eventsOfList(lists_[list].number);
      for (std::size_t i = 0; i < lists_[list].events.size(); ++i)
        eventsOf_[lists_[list].events[i].shot].emplace_back(list, i);
    }
  }

  const std::string& reelFor(const reelhost::ListEvent& event)
  {
    const Shot clip = clipFrom(event);
    return reelFor(ownNameOf(clip), clip.sourceId);
  }

  /// The earliest use of the shot by events whose name is of the reel. Empty if there is none.
  std::optional<Shot> useOf(std::size_t shot, const std::string& reel)
  {
    std::optional<Shot> use;
    for (const auto& [list, i] : eventsOf_[reelhost::logNumber(shots()[shot].log)])
      if (const reelhost::ListEvent& event = lists_[list].events[i]; base::sameName(reelFor(event), reel)) {
        const Shot clip = clipFrom(event);
        if (use)
          takeUse(*use, clip);
        else
          use = clip;
      }
    return use;
  }

  /// Gives the shot, of which a part remains, the texts of that part.
  void takeTextsOf(std::size_t i, const std::string& reel)
  {
    const std::optional<Shot> use = useOf(i, reel);
    if (!use)
      return;
    Shot& shot = shots()[i].shot;
    for (std::string Shot::*const text :
         {&Shot::recordIn, &Shot::recordOut, &Shot::sourceFile, &Shot::cameraRoll, &Shot::soundOf})
      shot.*text = (*use).*text;
    shot.aliases = use->aliases;
  }

  /// Gives the shot the reel and the names of the first part. If the reel has that shot already, they become one.
  void place(const Plan& plan)
  {
    const std::size_t i = plan.shot;
    const Part& part = plan.parts.front();
    KnownShot& known = shots()[i];
    const std::string from = known.shot.reel;
    if (part.names.empty())
      putInto(known.shot, part.reel);
    else
      setReel(known.shot, part.reel, part.names);
    if (!base::sameName(from, part.reel)) {
      ++moves_[{from, part.reel}];
      left_.insert(base::fold(from));
    }
    const auto [same, isNew] = byKey_.emplace(shotKey(known.shot), i);
    if (!isNew && (isMerged(from) || isRemovable(known.log))) {
      giveUse(same->second, known.shot, part.names);
      moveEvents(i, same->second, plan.parts.size() == 1 ? std::string() : part.reel);
      gone_.add(known.log);
      isGone_.insert(i);
    } else {
      reelhost::changeMaterial(known.log, materialFrom(known.shot));
    }
  }

  /// Makes the part of a shot a shot of its own, with the texts of the list that has it.
  void partShot(const Plan& plan, const Part& part)
  {
    const std::size_t i = plan.shot;
    Shot shot = useOf(i, part.reel).value_or(shots()[i].shot);
    setReel(shot, part.reel, part.names);
    if (!base::sameName(plan.from, part.reel))
      ++moves_[{plan.from, part.reel}];
    const auto [same, isNew] = byKey_.emplace(shotKey(shot), shots().size());
    if (isNew) {
      const bool hasReel = names_.ids_.contains(base::fold(part.reel));
      const TypeOfNewReels type(manager_, hasReel ? std::string() : typeOf(part.reel));
      const Cookie log = reelhost::importMaterial(materialFrom(shot)); // the library creates the reel
      names_.ids_.insert(base::fold(part.reel));
      shots().push_back({log, std::move(shot)});
    } else {
      giveUse(same->second, shot, part.names);
    }
    moveEvents(i, same->second, part.reel);
  }

  /// The type of a reel that does not exist, by the shots that go there.
  std::string typeOf(const std::string& reel)
  {
    if (uses_.empty())
      for (const Plan& plan : plan_)
        for (const Part& part : plan.parts) {
          TypeEvidence& use = uses_[base::fold(part.reel)];
          use.add(shots()[plan.shot].shot);
          use.reel = part.reel;
        }
    return typeByRules(uses_.at(base::fold(reel)));
  }

  /// Lets the shot keep what another one said, which becomes one with it.
  void giveUse(std::size_t i, const Shot& other, const Names& further)
  {
    KnownShot& known = shots()[i];
    bool changes = takeUse(known.shot, other);
    for (const lists::SourceName& name : further)
      changes = addName(known.shot, name) || changes;
    if (changes)
      reelhost::changeMaterial(known.log, materialFrom(known.shot));
  }

  /// Lets the events of the shot that are of the reel, or all of them for the empty reel, name the other shot.
  void moveEvents(std::size_t from, std::size_t to, const std::string& reel)
  {
    readLists();
    for (const auto& [list, i] : eventsOf_[reelhost::logNumber(shots()[from].log)])
      if (reelhost::ListEvent& event = lists_[list].events[i]; reel.empty() || base::sameName(reelFor(event), reel)) {
        event.shot = reelhost::logNumber(shots()[to].log);
        isChanged_.insert(list);
      }
  }

  void storeLists()
  {
    for (const std::size_t list : isChanged_) {
      std::string bytes = reelhost::bytesOfList(lists_[list].digest);
      reelhost::keepList(std::move(lists_[list]), std::move(bytes));
    }
  }

  void renameRecords()
  {
    if (renames_.empty())
      return;
    for (const auto& [folded, rename] : renames_) {
      const auto& [record, to] = rename;
      manager_.changeReelId(hostText(record->id), hostText(to)); // its shots have gone before it
      moves_.try_emplace({record->id, to});
      names_.ids_.erase(folded);
      names_.ids_.insert(base::fold(to));
    }
    for (KnownShot& known : shots()) // what a person put there goes with the reel
      if (const auto renamed = renames_.find(base::fold(known.shot.reel)); renamed != renames_.end())
        known.shot.reel = renamed->second.second;
  }

  /// Deletes the records of reels that the moves left without a shot.
  void removeEmptied()
  {
    for (std::size_t i = 0; i < shots().size(); ++i)
      if (!isGone_.contains(i))
        left_.erase(base::fold(shots()[i].shot.reel));
    for (const ProjectNames::Record& record : names_.records_) {
      const std::string folded = base::fold(record.id);
      const bool isEmptied = left_.contains(folded) && !renames_.contains(folded) && record.decisions == Decisions{} &&
                             !manager_.reelInUse(hostText(record.id)) && isRemovable(record.log);
      if (!isEmptied && !isMerged(record.id))
        continue;
      gone_.add(record.log);
      names_.ids_.erase(folded);
    }
    std::vector<KnownShot> kept;
    for (std::size_t i = 0; i < shots().size(); ++i)
      if (!isGone_.contains(i))
        kept.push_back(std::move(shots()[i]));
    shots() = std::move(kept);
  }

  bool isRemovable(const Cookie& log)
  {
    if (!removable_)
      removable_ = madeByImports();
    return removable_->contains(reelhost::logNumber(log));
  }

  ProjectNames& names_;
  ReelDbManager& manager_;
  std::unordered_map<std::string, std::string> reels_; ///< of names that were asked for
  std::vector<Plan> plan_;
  std::unordered_set<std::size_t> isPlanned_, isGone_;
  std::map<std::string, std::pair<const ProjectNames::Record*, std::string>> renames_; ///< by folded identifier
  std::unordered_map<std::string, std::size_t> byKey_;                                 ///< shots that stay
  std::map<std::pair<std::string, std::string>, std::size_t> moves_;
  std::unordered_map<std::string, TypeEvidence> uses_; ///< of the reels of the plan, by folded identifier
  std::set<std::string> left_;                         ///< folded reels from which shots moved
  CookieVec gone_;
  std::optional<std::set<std::int64_t>> removable_;
  bool haveLists_ = false;
  std::vector<reelhost::KeptList> lists_;
  std::unordered_map<std::int64_t, std::vector<std::pair<std::size_t, std::size_t>>> eventsOf_; ///< list and event
  std::set<std::size_t> isChanged_;                                                             ///< lists
};

std::vector<ReelMove> ProjectNames::moveShots()
{
  return ShotMover(*this).run();
}

} // namespace reeldb::app
