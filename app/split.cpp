// SPDX-License-Identifier: Apache-2.0
#include "app/split.h"

#include <algorithm>
#include <map>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include <fmt/format.h>

#include "app/decisions.h"
#include "app/host_errors.h"
#include "app/host_text.h"
#include "app/kept_events.h"
#include "app/list_choice.h"
#include "app/project_names.h"
#include "app/reel_records.h"
#include "app/shot_logs.h"
#include "base/ascii.h"
#include "base/text_width.h"

namespace reeldb::app {

namespace {

constexpr int noDevice = -1;

class Splitter {
public:
  Splitter(Session& session, const std::string& reel, const std::string& newReel)
      : session_(session), manager_(session.manager()), record_(requireReel(manager_, reel)),
        from_(text(record_.reelId())), into_(checkedReelName(newReel))
  {
    if (ReelDbRec other = manager_.getReelInfo(hostText(into_)); other.valid())
      throw Error(ErrorKind::Refused, fmt::format("{}: a reel has this name (choose another name, or move single shots "
                                                  "there with reeldb shot move)",
                                                  base::shortText(text(other.reelId()))));
    requireNotGiven(manager_, into_, from_);
    for (const Cookie& log : reelhost::shotsOf(from_))
      shots_.push_back({log, shotFrom(reelhost::materialOf(log))});
    names_ = oldNamesOf(record_);
    const std::vector<std::string> aliases = decisionsOf(record_).aliases;
    names_.insert(names_.end(), aliases.begin(), aliases.end());
    names_.push_back(from_);
    decisions_.namesReel = decisions_.isApart = true;
  }

  Split run(const SplitBy& by)
  {
    for (const std::string& name : by.names)
      takeName(name);
    for (const std::string& list : by.lists)
      takeList(list);
    for (const auto& [number, log] : requireShots(by.shots))
      takeShot(number, log);
    keepGivenName(record_);
    ReelDbRec made = manager_.createNewReel(hostText(into_), noDevice);
    keepDecisions(made, decisions_);
    ProjectNames names(session_);
    names.settle();
    if (base::sameName(names.find(from_).reel, names.find(into_).reel))
      throw Error(ErrorKind::Refused, fmt::format("{}: in lists the same name as {} (choose another name)",
                                                  base::shortText(into_), base::shortText(from_)));
    Split result{from_, into_, false, false, names.moveShots()};
    if (moved_ > 0) {
      result.moves.push_back({from_, into_, moved_});
      manager_.informReelDbChanged("");
    }
    return result;
  }

private:
  bool liesByNames(const Shot& shot) const { return hasName(names_, reelByNames(shot)); }

  /// Lets all lists mean the new reel by the name.
  void takeName(const std::string& asked)
  {
    const std::string name = checkedReelName(asked);
    if (base::sameName(name, from_))
      throw Error(ErrorKind::Refused,
                  fmt::format("{}: the identifier of the reel itself (reeldb rename gives it another one)",
                              base::shortText(name)));
    const auto hasIt = [&](const KnownShot& known) {
      const std::vector<lists::SourceName> names = namesOf(known.shot);
      return liesByNames(known.shot) && std::any_of(names.begin(), names.end(), [&](const lists::SourceName& each) {
               return base::sameName(each.name, name);
             });
    };
    if (!app::takeName(record_, name) && std::none_of(shots_.begin(), shots_.end(), hasIt))
      throw Error(ErrorKind::NotFound,
                  fmt::format("{}: not a name of {} (reeldb alias {} lists its names)", base::shortText(name),
                              base::shortText(from_), base::shortText(from_)));
    if (!base::sameName(name, into_))
      decisions_.aliases.push_back(name);
  }

  /// Lets the list mean the new reel by each name of this one.
  void takeList(const std::string& asked)
  {
    reelhost::KeptList list = listNamed(asked);
    list.events = reelhost::eventsOfList(list.number);
    std::unordered_map<std::int64_t, std::size_t> byNumber;
    for (std::size_t i = 0; i < shots_.size(); ++i)
      if (liesByNames(shots_[i].shot))
        byNumber.emplace(reelhost::logNumber(shots_[i].log), i);
    bool isUsed = false;
    for (reelhost::ListEvent& event : list.events) {
      const auto found = byNumber.find(event.shot);
      if (found == byNumber.end())
        continue;
      isUsed = true;
      Shot clip = clipFrom(event);
      if (NameInList decided{list.number, ownNameOf(clip), into_};
          std::find(decisions_.inLists.begin(), decisions_.inLists.end(), decided) == decisions_.inLists.end())
        decisions_.inLists.push_back(std::move(decided));
      giveName(clip, into_);
      event = eventFrom(clip, event.shot);
      KnownShot& known = shots_[found->second]; // it has both names, and the move parts it
      if (addName(known.shot, {into_, false, clip.sourceId}))
        reelhost::changeMaterial(known.log, materialFrom(known.shot));
    }
    if (!isUsed)
      throw Error(ErrorKind::Refused, fmt::format("list {}: no event of it comes from {} by name (reeldb list-file "
                                                  "used-in {} shows the lists)",
                                                  list.number, base::shortText(from_), base::shortText(from_)));
    std::string bytes = reelhost::bytesOfList(list.digest);
    reelhost::keepList(std::move(list), std::move(bytes));
  }

  void takeShot(std::int64_t number, const Cookie& log)
  {
    Shot shot = shotFrom(reelhost::materialOf(log));
    if (!base::sameName(shot.reel, from_))
      throw Error(ErrorKind::Refused, fmt::format("shot {}: recorded from {}, not from {}", number,
                                                  base::shortText(shot.reel), base::shortText(from_)));
    putInto(shot, into_);
    reelhost::changeMaterial(log, materialFrom(shot));
    ++moved_;
  }

  Session& session_;
  ReelDbManager& manager_;
  ReelDbRec record_;
  std::string from_, into_;
  std::vector<KnownShot> shots_;   ///< of the reel, as it was
  std::vector<std::string> names_; ///< that people gave the reel
  Decisions decisions_;            ///< of the new reel
  std::size_t moved_ = 0;          ///< number of the shots that were chosen
};

} // namespace

Split splitReel(Session& session, const std::string& reel, const std::string& newReel, const SplitBy& by, bool dryRun)
{
  return guarded([&] {
    Split result = Splitter(session, reel, newReel).run(by);
    result.dryRun = dryRun;
    result.stored = !dryRun && session.commit();
    return result;
  });
}

ShotsMoved moveShots(Session& session, const std::vector<std::int64_t>& shots, const std::string& to, bool dryRun)
{
  return guarded([&] {
    ShotsMoved result;
    result.dryRun = dryRun;
    result.to = text(requireReel(session.manager(), to).reelId());
    std::unordered_set<std::string> there;
    for (const Cookie& log : reelhost::shotsOf(result.to))
      there.insert(shotKey(shotFrom(reelhost::materialOf(log))));
    std::map<std::string, std::size_t> moved;
    for (const auto& [number, log] : requireShots(shots)) {
      Shot shot = shotFrom(reelhost::materialOf(log));
      const std::string from = shot.reel;
      if (base::sameName(from, result.to))
        continue;
      putInto(shot, result.to);
      if (!there.insert(shotKey(shot)).second)
        throw Error(ErrorKind::Refused, fmt::format("shot {0}: {1} has the same shot (reeldb shot delete {0} deletes "
                                                    "this one)",
                                                    number, base::shortText(result.to)));
      reelhost::changeMaterial(log, materialFrom(shot));
      result.shots.push_back({number, std::move(shot)});
      ++moved[from];
    }
    for (const auto& [from, count] : moved)
      result.moves.push_back({from, result.to, count});
    if (!result.shots.empty())
      session.manager().informReelDbChanged("");
    result.stored = !dryRun && session.commit();
    return result;
  });
}

ShotsDeleted deleteShots(Session& session, const std::vector<std::int64_t>& shots, bool dryRun)
{
  return guarded([&] {
    ShotsDeleted result;
    result.dryRun = dryRun;
    ProjectNames names(session);
    names.settle();
    CookieVec logs;
    for (const auto& [number, log] : requireShots(shots)) {
      Shot shot = shotFrom(reelhost::materialOf(log));
      std::vector<std::string> reels = {shot.reel}; // under any of its names a list would bring it back
      for (const lists::SourceName& name : namesOf(shot))
        if (std::string reel = names.find(name.name, name.sourceId).reel; !hasName(reels, reel))
          reels.push_back(std::move(reel));
      for (const std::string& reel : reels)
        if (ReelDbRec record = session.manager().getReelInfo(hostText(reel)); record.valid()) {
          Decisions decisions = decisionsOf(record);
          if (std::string deleted = deletedShot(shot); !hasName(decisions.deletedShots, deleted))
            decisions.deletedShots.push_back(std::move(deleted));
          keepDecisions(record, decisions);
        }
      logs.add(log);
      result.shots.push_back({number, std::move(shot)});
    }
    if (!result.shots.empty()) {
      reelhost::deleteLogs(logs);
      session.manager().informReelDbChanged("");
    }
    result.stored = !dryRun && session.commit();
    return result;
  });
}

} // namespace reeldb::app
