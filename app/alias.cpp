// SPDX-License-Identifier: Apache-2.0
#include "app/alias.h"

#include <unordered_set>

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

/// Throws Error if the name is the identifier of a reel, or another reel has it by decision.
void requireNoOthers(ReelDbManager& manager, const std::string& reel, const std::string& name)
{
  const std::string subject = base::shortText(name);
  if (base::sameName(name, reel))
    throw Error(ErrorKind::Invalid, fmt::format("{}: the identifier of the reel itself", subject));
  if (ReelDbRec other = manager.getReelInfo(hostText(name)); other.valid())
    throw Error(ErrorKind::Refused, fmt::format("{}: a reel has this name (reeldb merge joins two reels)", subject));
  for (const Cookie& log : manager.reelList) {
    ReelDbRec other(log);
    const std::string id = text(other.reelId());
    if (!base::sameName(id, reel) && (hasName(oldNamesOf(other), name) || hasName(decisionsOf(other).aliases, name)))
      throw Error(ErrorKind::Refused,
                  fmt::format("{}: already a name of {} (reeldb alias --remove takes it from there)", subject,
                              base::shortText(id)));
  }
}

void addAlias(ReelDbRec record, const std::string& name)
{
  Decisions decisions = decisionsOf(record);
  if (hasName(decisions.aliases, name) || hasName(oldNamesOf(record), name))
    return;
  decisions.aliases.push_back(name);
  keepDecisions(record, decisions);
}

/// The names of the reel, whose record is given. REQUIRES: the names are settled.
std::vector<ReelName> namesOfReel(ReelDbRec record, const ProjectNames& names)
{
  const std::string id = text(record.reelId());
  std::vector<ReelName> result;
  std::unordered_set<std::string> met = {base::fold(id) + '\n'};
  for (const std::string& name : oldNamesOf(record))
    result.push_back({name, NameOrigin::Renamed});
  const Decisions decisions = decisionsOf(record);
  for (const std::string& name : decisions.aliases)
    result.push_back({name, NameOrigin::Given});
  for (const ReelName& each : result)
    met.insert(base::fold(each.name) + '\n');
  for (const NameInList& each : decisions.inLists)
    result.push_back({each.name, NameOrigin::OneList, lists::Match::Decided, {}, each.list});
  for (const KnownShot& known : names.shots()) {
    if (!base::sameName(known.shot.reel, id))
      continue;
    for (const lists::SourceName& name : namesOf(known.shot))
      if (met.insert(base::fold(name.name) + '\n' + name.sourceId).second)
        if (const NamedReel found = names.find(name.name, name.sourceId); base::sameName(found.reel, id))
          result.push_back({name.name, NameOrigin::Lists, found.match, name.sourceId, 0});
  }
  return result;
}

} // namespace

std::string_view wordOf(NameOrigin origin)
{
  switch (origin) {
  case NameOrigin::Renamed:
    return "renamed";
  case NameOrigin::Given:
    return "alias";
  case NameOrigin::OneList:
    return "one-list";
  case NameOrigin::Lists:
    return "lists";
  }
  return "";
}

ReelAliases aliasesOf(Session& session, const std::string& reel)
{
  return guarded([&] {
    ReelAliases result;
    ReelDbRec record = requireReel(session.manager(), reel);
    result.reel = text(record.reelId());
    ProjectNames names(session);
    names.settle();
    result.names = namesOfReel(record, names);
    return result;
  });
}

ReelAliases changeAliases(Session& session, const std::string& reel, const std::vector<std::string>& names, bool remove,
                          bool dryRun)
{
  return guarded([&] {
    ReelAliases result;
    result.dryRun = dryRun;
    ReelDbRec record = requireReel(session.manager(), reel);
    result.reel = text(record.reelId());
    for (const std::string& asked : names) {
      const std::string name = checkedReelName(asked);
      if (remove) {
        if (!takeName(record, name))
          throw Error(ErrorKind::NotFound,
                      fmt::format("{}: not a name that a person gave to {} (reeldb split parts a name that lists give)",
                                  base::shortText(name), base::shortText(result.reel)));
        continue;
      }
      requireNoOthers(session.manager(), result.reel, name);
      addAlias(record, name);
    }
    ProjectNames known(session);
    known.settle();
    result.moves = known.moveShots();
    result.names = namesOfReel(record, known);
    result.stored = !dryRun && session.commit();
    return result;
  });
}

} // namespace reeldb::app
