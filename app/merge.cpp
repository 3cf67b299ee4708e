// SPDX-License-Identifier: Apache-2.0
#include "app/merge.h"

#include <algorithm>
#include <set>
#include <unordered_map>
#include <utility>

#include <fmt/format.h>

#include "app/decisions.h"
#include "app/host_errors.h"
#include "app/host_text.h"
#include "app/project_names.h"
#include "app/reel_records.h"
#include "app/shot_logs.h"
#include "base/ascii.h"
#include "base/text_width.h"

namespace reeldb::app {

namespace {

/// A reel that is joined, and what its shots say.
struct Joined {
  ReelDbRec record;
  std::string id;
  std::vector<std::string> names; ///< the identifier first, then all other names that mean this reel
  std::set<std::string> sourceIds;
};

void addName(std::vector<std::string>& names, const std::string& name)
{
  if (!hasName(names, name))
    names.push_back(name);
}

Joined joinedReel(ReelDbRec record)
{
  Joined reel{record, text(record.reelId()), {}, {}};
  reel.names.push_back(reel.id);
  for (const std::string& name : oldNamesOf(record))
    addName(reel.names, name);
  for (const std::string& name : decisionsOf(record).aliases)
    addName(reel.names, name);
  return reel;
}

/// Adds the whole names and the source ids of the shots that lie in the reels by their names. A short form follows the
/// whole names by itself.
void addNamesOfShots(std::vector<Joined>& reels)
{
  std::unordered_map<std::string, Joined*> byId;
  for (Joined& reel : reels)
    byId.emplace(base::fold(reel.id), &reel);
  for (const Cookie& log : reelhost::allShots()) {
    const Shot shot = shotFrom(reelhost::materialOf(log));
    const auto found = byId.find(base::fold(shot.reel));
    if (found == byId.end())
      continue;
    Joined& reel = *found->second;
    const std::string put = shot.reelOfNames.empty() ? ownNameOf(shot) : shot.reelOfNames;
    if (!hasName(reel.names, put))
      continue; // a person put it there
    for (const lists::SourceName& name : namesOf(shot)) {
      if (!name.mayBeCut)
        addName(reel.names, name.name);
      if (!name.sourceId.empty())
        reel.sourceIds.insert(name.sourceId);
    }
  }
}

void requireSameSource(const Joined& from, const Joined& into)
{
  const auto isOther = [&](const std::string& id) { return !into.sourceIds.contains(id); };
  const auto other = std::find_if(from.sourceIds.begin(), from.sourceIds.end(), isOther);
  if (into.sourceIds.empty() || other == from.sourceIds.end())
    return;
  throw Error(ErrorKind::Refused,
              fmt::format("{}: another source than {} (lists have the ids {} and {}; --force joins them nevertheless)",
                          base::shortText(from.id), base::shortText(into.id), base::shortText(*other),
                          base::shortText(*into.sourceIds.begin())));
}

void addDifferences(const Reel& from, const Reel& into, std::vector<LostField>& different)
{
  const auto add = [&](const std::string& field, const std::string& value, const std::string& kept) {
    if (value != kept)
      different.push_back({from.id, field, value, kept});
  };
  const auto yesOrNo = [](bool value) { return value ? "yes" : "no"; };
  add("type", from.type, into.type);
  add("available", yesOrNo(from.available), yesOrNo(into.available));
  add("inhibit", yesOrNo(from.inhibit), yesOrNo(into.inhibit));
  add("label-map", from.labelMapping, into.labelMapping);
  add("bin", from.bin, into.bin);
  add("last-device", from.lastDevice, into.lastDevice);
  for (std::size_t i = 0; i < userFieldCount; ++i)
    add(fmt::format("user-field.{}", i), from.userFields[i], into.userFields[i]);
}

} // namespace

Merged mergeReels(Session& session, const std::vector<std::string>& from, const std::string& into, bool force,
                  bool dryRun)
{
  return guarded([&] {
    ReelDbManager& manager = session.manager();
    Merged result;
    result.dryRun = dryRun;
    std::vector<Joined> reels = {joinedReel(requireReel(manager, into))};
    result.into = reels.front().id;
    for (const std::string& id : from) {
      Joined reel = joinedReel(requireReel(manager, id));
      if (base::sameName(reel.id, result.into))
        throw Error(ErrorKind::Invalid, fmt::format("{}: the reel that remains", base::shortText(reel.id)));
      if (manager.reelInUse(hostText(reel.id)))
        throw Error(ErrorKind::Refused, fmt::format("{}: in use (eject it first, or join the other reels with it)",
                                                    base::shortText(reel.id)));
      if (hasName(result.from, reel.id))
        continue;
      result.from.push_back(reel.id);
      reels.push_back(std::move(reel));
    }
    addNamesOfShots(reels);
    const Joined& target = reels.front();
    Decisions decisions = decisionsOf(target.record);
    decisions.namesReel = true;
    const Reel fields = readReel(target.record, {});
    for (std::size_t i = 1; i < reels.size(); ++i) {
      const Joined& reel = reels[i];
      if (!force)
        requireSameSource(reel, target);
      addDifferences(readReel(reel.record, {}), fields, result.different);
      for (const std::string& name : reel.names)
        if (!base::sameName(name, result.into))
          addName(result.names, name);
      const Decisions others = decisionsOf(reel.record);
      decisions.inLists.insert(decisions.inLists.end(), others.inLists.begin(), others.inLists.end());
      decisions.deletedShots.insert(decisions.deletedShots.end(), others.deletedShots.begin(),
                                    others.deletedShots.end());
    }
    for (const Cookie& log : manager.reelList) // the last decision counts
      for (const std::string& name : result.names)
        if (ReelDbRec record(log); !hasName(result.from, text(record.reelId())) && record.compare(target.record) != 0)
          takeName(record, name);
    const std::vector<std::string> oldNames = oldNamesOf(target.record);
    for (const std::string& name : result.names)
      if (!hasName(oldNames, name))
        addName(decisions.aliases, name);
    keepDecisions(target.record, decisions);
    ProjectNames names(session, lists::NameRules::All, result.from);
    names.settle();
    result.moves = names.moveShots();
    result.stored = !dryRun && session.commit();
    return result;
  });
}

} // namespace reeldb::app
