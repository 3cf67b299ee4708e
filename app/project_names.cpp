// SPDX-License-Identifier: Apache-2.0
#include "app/project_names.h"

#include <algorithm>
#include <utility>

#include "ReelDbManager.h"
#include "app/host_text.h"
#include "app/reel_records.h"
#include "app/shot_logs.h"
#include "base/ascii.h"
#include "lists/name_forms.h"
#include "lists/names.h"
#include "lists/text.h"

namespace reeldb::app {

namespace {

using lists::Match;

constexpr int noDevice = -1;

const std::string& ownNameOf(const Shot& shot)
{
  return shot.ownName.empty() ? shot.reel : shot.ownName;
}

void noteMove(std::vector<ReelMove>& moves, const std::string& from, const std::string& to, std::size_t shots)
{
  const auto same = [&](const ReelMove& move) { return move.from == from && move.to == to; };
  const auto known = std::find_if(moves.begin(), moves.end(), same);
  if (known == moves.end())
    moves.push_back({from, to, shots});
  else
    known->shots += shots;
}

} // namespace

ProjectNames::ProjectNames(Session& session) : session_(session)
{
  for (const Cookie& log : session.manager().reelList) {
    const ReelDbRec record(log);
    if (std::string id = text(ReelDbRec(log).reelId()); !id.empty() && ids_.insert(base::fold(id)).second)
      records_.push_back({std::move(id), log, oldNamesOf(record)});
  }
  std::unordered_set<std::string> cut; // folded identifiers that are names of shots that may be cut
  for (const Cookie& log : reelhost::allShots()) {
    Shot shot = shotFrom(reelhost::materialOf(log));
    if (!shot.reel.empty()) {
      addNames(shot);
      if (shot.mayBeCut)
        cut.insert(base::fold(ownNameOf(shot)));
    }
    shots_.push_back({log, std::move(shot)});
  }
  for (const Record& record : records_)
    if (!cut.contains(base::fold(record.id)))
      index_.add({record.id});
  decideOldNames();
}

void ProjectNames::decideOldNames()
{
  std::unordered_map<std::string, std::vector<const Record*>> reels;
  for (const Record& record : records_)
    for (const std::string& name : record.oldNames)
      reels[base::fold(name)].push_back(&record);
  for (const auto& [name, records] : reels)
    if (records.size() == 1 && !ids_.contains(name))
      index_.decide(name, records.front()->id);
}

void ProjectNames::add(const lists::Clip& clip)
{
  addNames(clip);
}

void ProjectNames::addNames(const Shot& shot)
{
  index_.add({ownNameOf(shot), shot.mayBeCut, shot.sourceId, shot.clipName});
  // A reel text that lacks nothing but the ending of its file is a name, too.
  if (lists::isShortForm(shot.reel, false, shot.ownName))
    index_.add({shot.reel});
}

void ProjectNames::add(const std::string& name)
{
  const bool fills = lists::fillsField(name, lists::paddedField(lists::length(name)));
  index_.add({name, fills});
}

void ProjectNames::settle()
{
  index_.settle();
  for (std::size_t i = 0; i < records_.size(); ++i)
    recordsOf_[base::fold(index_.find(records_[i].id).reel)].push_back(i);
  for (const auto& [reel, records] : recordsOf_) {
    // A reel keeps the spelling that came first, unless that is a short form.
    const auto isWhole = [&](std::size_t record) { return index_.find(records_[record].id).match != Match::Cut; };
    const auto keeper = std::find_if(records.begin(), records.end(), isWhole);
    if (keeper != records.end())
      names_[reel] = records_[*keeper].id;
  }
}

std::string ProjectNames::spelt(const std::string& reel) const
{
  const auto known = names_.find(base::fold(reel));
  return known == names_.end() ? reel : known->second;
}

NamedReel ProjectNames::named(const std::string& name, const lists::ReelOfName& found) const
{
  NamedReel result;
  result.name = name;
  result.reel = spelt(found.reel);
  result.match = found.match;
  if (result.match == Match::Itself && !base::sameName(name, result.reel))
    result.match = lists::isSameName(name, result.reel) ? Match::SameName
                   : lists::partsOf(name).ending == lists::Ending::None ||
                           lists::partsOf(result.reel).ending == lists::Ending::None
                       ? Match::NoEnding
                       : Match::OtherEnding;
  for (const std::string& reel : found.perhaps)
    result.perhaps.push_back(spelt(reel));
  if (result.match == Match::Itself)
    result.clipNames = found.clipNames;
  return result;
}

NamedReel ProjectNames::find(const std::string& name, const std::string& sourceId) const
{
  return named(name, index_.find(name, sourceId));
}

NamedReel ProjectNames::find(const lists::Clip& clip) const
{
  NamedReel result = find(ownNameOf(clip), clip.sourceId);
  result.evidence = clip.evidence;
  result.mayBeCut = clip.mayBeCut;
  result.sourceId = clip.sourceId;
  return result;
}

bool ProjectNames::hasRecord(const std::string& id) const
{
  return ids_.contains(base::fold(id));
}

std::vector<ReelMove> ProjectNames::moveShots()
{
  std::vector<ReelMove> moves;
  std::vector<std::pair<std::string, const std::vector<std::size_t>*>> reels;
  for (const auto& [reel, records] : recordsOf_)
    reels.emplace_back(reel, &records);
  std::sort(reels.begin(), reels.end()); // so that the order of changes does not depend on the table
  CookieVec gone;
  for (const auto& [reel, records] : reels) {
    const bool isNamed = names_.contains(reel);
    const std::string name = isNamed ? names_.at(reel) : index_.find(records_[records->front()].id).reel;
    bool hasReel = isNamed;
    for (const std::size_t i : *records) {
      const Record& record = records_[i];
      if (index_.find(record.id).match != Match::Cut || session_.manager().reelInUse(hostText(record.id)))
        continue;
      if (std::exchange(hasReel, true)) {
        joinReel(record, name, moves);
        gone.add(record.log);
      } else {
        renameReel(record, name, moves);
      }
    }
  }
  partShots(moves);
  if (gone.count() > 0)
    reelhost::deleteLogs(gone);
  if (!moves.empty())
    session_.manager().informReelDbChanged("");
  return moves;
}

void ProjectNames::renameReel(const Record& record, const std::string& to, std::vector<ReelMove>& moves)
{
  // The shots go first, each with the name that its list gave it: the library then renames the record alone.
  joinReel(record, to, moves);
  session_.manager().changeReelId(hostText(record.id), hostText(to));
  ids_.insert(base::fold(to));
}

void ProjectNames::joinReel(const Record& record, const std::string& to, std::vector<ReelMove>& moves)
{
  std::size_t moved = 0;
  for (KnownShot& known : shots_) {
    if (!base::sameName(known.shot.reel, record.id))
      continue;
    if (known.shot.ownName.empty())
      known.shot.ownName = known.shot.reel;
    known.shot.reel = to;
    reelhost::changeMaterial(known.log, materialFrom(known.shot));
    ++moved;
  }
  ids_.erase(base::fold(record.id));
  noteMove(moves, record.id, to, moved);
}

void ProjectNames::partShots(std::vector<ReelMove>& moves)
{
  for (KnownShot& known : shots_) {
    Shot& shot = known.shot;
    if (shot.ownName.empty() || base::sameName(shot.ownName, shot.reel))
      continue;
    const NamedReel found = find(shot.ownName, shot.sourceId);
    if (base::sameName(found.reel, shot.reel))
      continue;
    // A shot that lies elsewhere for another reason was put there by a person.
    const auto holds = [](const std::vector<std::string>& reels, const std::string& reel) {
      return std::any_of(reels.begin(), reels.end(),
                         [&](const std::string& each) { return base::sameName(each, reel); });
    };
    if (!holds(found.perhaps, shot.reel) && !holds(find(shot.reel).perhaps, found.reel))
      continue;
    noteMove(moves, shot.reel, found.reel, 1);
    shot.reel = found.reel;
    reelhost::changeMaterial(known.log, materialFrom(shot));
    if (ids_.insert(base::fold(found.reel)).second)
      session_.manager().createNewReel(hostText(found.reel), noDevice);
  }
}

} // namespace reeldb::app
