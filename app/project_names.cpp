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

std::string keyInList(const std::string& list, const std::string& name)
{
  return list + '\t' + base::fold(name);
}

} // namespace

ProjectNames::ProjectNames(Session& session, lists::NameRules rules, const std::vector<std::string>& merged)
    : session_(session), index_(rules)
{
  for (const std::string& id : merged)
    merged_.insert(base::fold(id));
  for (const Cookie& log : session.manager().reelList) {
    ReelDbRec record(log);
    if (std::string id = text(record.reelId());
        !id.empty() && ids_.insert(base::fold(id)).second && byId_.emplace(base::fold(id), records_.size()).second)
      records_.push_back({std::move(id), log, oldNamesOf(record), decisionsOf(record)});
  }
  for (const Cookie& log : reelhost::allShots())
    shots_.push_back({log, shotFrom(reelhost::materialOf(log))});
  for (const std::string& id : merged_)
    ids_.erase(id);
  decideNames();
}

void ProjectNames::decideNames()
{
  std::unordered_map<std::string, std::vector<const Record*>> reels;
  for (const Record& record : records_) {
    if (merged_.contains(base::fold(record.id)))
      continue;
    for (const std::vector<std::string>* const names : {&record.oldNames, &record.decisions.aliases})
      for (const std::string& name : *names)
        reels[base::fold(name)].push_back(&record);
    if (record.decisions.namesReel)
      index_.nameReel(record.id);
    if (record.decisions.isApart)
      index_.decide(record.id, record.id);
    for (const NameInList& each : record.decisions.inLists)
      inLists_.insert_or_assign(keyInList(each.list != 0 ? std::to_string(each.list) : each.bytes, each.name),
                                each.reel);
  }
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
  const auto add = [&](const std::string& name, bool mayBeCut, const std::string& sourceId) {
    index_.add({name, mayBeCut, sourceId, shot.clipName});
    // A reel text that lacks nothing but the ending of its file is a name, too.
    if (lists::isShortForm(shot.reel, false, name))
      index_.add({shot.reel});
  };
  add(ownNameOf(shot), shot.mayBeCut, shot.sourceId);
  for (const lists::SourceName& name : shot.furtherNames)
    add(name.name, name.mayBeCut, name.sourceId);
}

void ProjectNames::add(const std::string& name)
{
  const bool fills = lists::fillsField(name, lists::paddedField(lists::length(name)));
  index_.add({name, fills});
}

void ProjectNames::adopt(std::size_t place, const lists::Clip& clip)
{
  Shot& shot = shots_[place].shot;
  shot.reelOfNames = shot.reel;
  shot.ownName = ownNameOf(clip);
  shot.mayBeCut = clip.mayBeCut;
  shot.sourceId = clip.sourceId;
  shot.sourceFile = clip.sourceFile;
  shot.aliases = clip.aliases;
  shot.cameraRoll = clip.cameraRoll;
  shot.soundOf = clip.soundOf;
  adopted_.push_back(place);
}

void ProjectNames::assumeCut(std::size_t place)
{
  Shot& shot = shots_[place].shot;
  if (!lists::fillsField(shot.reel, lists::paddedField(lists::length(shot.reel))))
    return;
  shot.ownName = shot.reel;
  shot.mayBeCut = true;
}

void ProjectNames::addNamesOfProject()
{
  std::unordered_set<std::string> said; // folded names that shots have, and the identifiers that are made of them
  for (const KnownShot& known : shots_) {
    if (known.shot.reel.empty())
      continue;
    addNames(known.shot);
    for (const lists::SourceName& name : namesOf(known.shot)) {
      said.insert(base::fold(name.name));
      if (!name.sourceId.empty())
        said.insert(base::fold(name.name + " " + name.sourceId));
    }
  }
  std::unordered_set<std::string> left; // folded reels that adopted shots may leave
  for (const std::size_t place : adopted_)
    left.insert(base::fold(shots_[place].shot.reel));
  for (const Record& record : records_)
    if (!said.contains(base::fold(record.id)) && !left.contains(base::fold(record.id)))
      index_.add({record.id});
}

void ProjectNames::settle()
{
  addNamesOfProject();
  index_.settle();
  for (std::size_t i = 0; i < records_.size(); ++i)
    if (!merged_.contains(base::fold(records_[i].id)))
      recordsOf_[base::fold(index_.find(records_[i].id).reel)].push_back(i);
  for (const auto& [reel, records] : recordsOf_) {
    const auto keeper = keeperOf(reel, records);
    if (keeper)
      names_[reel] = records_[*keeper].id;
  }
}

std::optional<std::size_t> ProjectNames::keeperOf(const std::string& reel, const std::vector<std::size_t>& records)
{
  const auto isWhole = [&](std::size_t i) { return index_.find(records_[i].id).match != Match::Cut; };
  const auto isUsed = [&](std::size_t i) { return session_.manager().reelInUse(hostText(records_[i].id)); };
  const auto isNamed = [&](std::size_t i) { return base::fold(records_[i].id) == reel; };
  const auto first = [&](const auto& is) -> std::optional<std::size_t> {
    const auto found = std::find_if(records.begin(), records.end(), is);
    return found == records.end() ? std::nullopt : std::optional(*found);
  };
  if (records.size() == 1 && isWhole(records.front()))
    return records.front();
  if (const auto used = first(isUsed))
    return used;
  if (const auto named = first(isNamed))
    return named;
  return first(isWhole);
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

bool ProjectNames::liesByNames(const Shot& shot) const
{
  const std::string& put = reelByNames(shot);
  if (base::sameName(put, shot.reel))
    return true;
  const NamedReel found = find(put);
  return found.match == Match::Decided && base::sameName(found.reel, shot.reel);
}

std::vector<std::string> ProjectNames::keysOf(const Shot& shot) const
{
  std::vector<std::string> keys = {shotKey(shot)};
  if (!shot.reel.empty() && !liesByNames(shot)) {
    Shot byName = shot;
    for (const lists::SourceName& name : namesOf(shot)) {
      byName.reel = find(name.name, name.sourceId).reel;
      keys.push_back(shotKey(byName));
    }
  }
  return keys;
}

bool ProjectNames::isDeleted(const Shot& shot) const
{
  const auto record = byId_.find(base::fold(shot.reel));
  if (record == byId_.end())
    return false;
  const std::vector<std::string>& deleted = records_[record->second].decisions.deletedShots;
  return !deleted.empty() && std::find(deleted.begin(), deleted.end(), deletedShot(shot)) != deleted.end();
}

void ProjectNames::read(std::int64_t list, const reelhost::Digest& bytes, std::vector<lists::Clip>& clips) const
{
  if (inLists_.empty())
    return;
  const std::string key = list != 0 ? std::to_string(list) : hexOf(bytes);
  for (lists::Clip& clip : clips)
    if (const auto decided = inLists_.find(keyInList(key, ownNameOf(clip))); decided != inLists_.end())
      giveName(clip, decided->second);
}

std::unordered_map<std::int64_t, TypeEvidence> ProjectNames::uses() const
{
  std::unordered_map<std::int64_t, TypeEvidence> uses;
  for (const Record& record : records_)
    uses[reelhost::logNumber(record.log)].reel = record.id;
  for (const KnownShot& known : shots_)
    if (const auto record = byId_.find(base::fold(known.shot.reel)); record != byId_.end())
      uses[reelhost::logNumber(records_[record->second].log)].add(known.shot);
  return uses;
}

bool ProjectNames::hasRecord(const std::string& id) const
{
  return ids_.contains(base::fold(id));
}

} // namespace reeldb::app
