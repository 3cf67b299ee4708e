// SPDX-License-Identifier: Apache-2.0
#include "app/list_diff.h"

#include <algorithm>
#include <optional>
#include <unordered_set>

#include "app/host_text.h"
#include "app/known_names.h"
#include "app/shot_key.h"

namespace reeldb::cli {

namespace {

lists::Format formatOf(const reelhost::Material& shot)
{
  return shot.recordIn.empty() && shot.recordOut.empty() ? lists::Format::Ale : lists::Format::Edl;
}

class Comparison {
public:
  Comparison(ReelDbManager& manager, bool whole) : manager_(manager), whole_(whole)
  {
    for (const Cookie& log : reelhost::allShots())
      shots_.push_back(reelhost::materialOf(log));
    for (const reelhost::Material& shot : shots_)
      there_.insert(shotKey(shot));
  }

  void add(const lists::List& list)
  {
    formats_.push_back(list.format);
    for (const lists::Clip& clip : list.clips) {
      addReel(clip.reel);
      const std::string key = shotKey(clip);
      if (listed_.insert(key).second && !there_.contains(key))
        diff_.added.push_back(material(clip));
    }
    for (const lists::Spelling& spelling : list.spellings)
      addSpelling({spellingOf(spelling.reel).value_or(spelling.reel), spelling.other});
  }

  ListDiff finish()
  {
    std::unordered_set<std::string> told;
    for (const reelhost::Material& shot : shots_) {
      if (shot.reel.empty() || std::find(formats_.begin(), formats_.end(), formatOf(shot)) == formats_.end())
        continue;
      const bool named = reels_.contains(folded(shot.reel));
      if ((named || whole_) && !listed_.contains(shotKey(shot)))
        diff_.missing.push_back(shot);
      if (!named && whole_ && told.insert(folded(shot.reel)).second)
        diff_.goneReels.push_back(spellingOf(shot.reel).value_or(shot.reel));
    }
    return std::move(diff_);
  }

private:
  std::optional<std::string> spellingOf(const std::string& id)
  {
    ReelDbRec record = manager_.getReelInfo(hostText(id));
    return record.valid() ? std::optional(text(record.reelId())) : std::nullopt;
  }

  void addReel(const std::string& id)
  {
    if (!reels_.insert(folded(id)).second)
      return;
    if (const auto spelling = spellingOf(id)) {
      addSpelling({*spelling, id});
      return;
    }
    if (!names_)
      names_ = knownNames(manager_);
    diff_.newReels.push_back({id, names_->find(id)});
  }

  void addSpelling(const lists::Spelling& spelling)
  {
    if (spelling.reel != spelling.other && spellings_.insert(spelling.reel + '\0' + spelling.other).second)
      diff_.spellings.push_back(spelling);
  }

  ReelDbManager& manager_;
  bool whole_;
  std::vector<reelhost::Material> shots_;          ///< of the project
  std::unordered_set<std::string> there_, listed_; ///< keys of shots
  std::unordered_set<std::string> reels_;          ///< that the lists name, folded
  std::unordered_set<std::string> spellings_;      ///< that are told
  std::vector<lists::Format> formats_;
  std::optional<ReelNames> names_; ///< gathered for the first new reel
  ListDiff diff_;
};

} // namespace

ListDiff compareLists(const std::vector<lists::List>& lists, ReelDbManager& manager, bool whole)
{
  Comparison comparison(manager, whole);
  for (const lists::List& list : lists)
    comparison.add(list);
  return comparison.finish();
}

} // namespace reeldb::cli
