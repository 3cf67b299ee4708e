// SPDX-License-Identifier: Apache-2.0
#include "app/names_check.h"

#include <unordered_set>

#include "app/host_errors.h"
#include "app/project_names.h"
#include "app/shot_logs.h"
#include "app/shots_made_before.h"
#include "base/ascii.h"

namespace reeldb::app {

NamesCheck checkNames(Session& session, bool apply)
{
  return guarded([&] {
    ProjectNames names(session);
    std::vector<std::size_t> nameless;
    for (std::size_t i = 0; i < names.shots().size(); ++i)
      if (isNameless(names.shots()[i].shot))
        nameless.push_back(i);
    NamesCheck check;
    for (const std::size_t place : withoutList(names.shots(), nameless)) {
      names.assumeCut(place);
      ++check.shotsWithoutList;
    }
    names.settle();
    check.applied = apply;
    std::unordered_set<std::string> met;
    for (const KnownShot& known : names.shots())
      for (const lists::SourceName& name : namesOf(known.shot)) {
        if (name.name.empty() || !met.insert(base::fold(name.name) + '\n' + name.sourceId).second)
          continue;
        NamedReel found = names.find(name.name, name.sourceId);
        found.mayBeCut = name.mayBeCut;
        found.sourceId = name.sourceId;
        if (!found.perhaps.empty())
          check.names.push_back(std::move(found));
      }
    check.moves = names.moveShots();
    check.stored = apply && session.commit();
    return check;
  });
}

} // namespace reeldb::app
