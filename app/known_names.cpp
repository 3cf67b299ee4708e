// SPDX-License-Identifier: Apache-2.0
#include "app/known_names.h"

#include "app/host_text.h"
#include "app/old_names.h"
#include "app/shot.h"

namespace reeldb::cli {

namespace {

std::string_view phraseOf(Reason reason)
{
  switch (reason) {
  case Reason::Exact:
    return "exact";
  case Reason::Case:
    return "differs in case";
  case Reason::Cut:
    return "cut form";
  case Reason::Alias:
    return "other name in a list";
  case Reason::OldName:
    return "old name";
  }
  return "";
}

} // namespace

ReelNames knownNames(const ReelDbManager& manager)
{
  ReelNames names;
  for (const Cookie& log : manager.reelList) {
    ReelDbRec record(log);
    if (const std::string id = text(record.reelId()); !id.empty())
      names.addReel(id, oldNamesOf(record));
  }
  for (const Cookie& log : reelhost::allShots()) {
    const reelhost::Material shot = reelhost::materialOf(log);
    if (!shot.reel.empty())
      for (const std::string& alias : aliasesOf(shot))
        names.addAlias(alias, shot.reel);
  }
  return names;
}

Json toJson(const std::vector<Candidate>& candidates)
{
  Json json = Json::array();
  for (const Candidate& candidate : candidates) {
    Json reasons = Json::array();
    for (const Reason reason : candidate.reasons)
      reasons.push_back(wordOf(reason));
    json.push_back({{"reel", candidate.reel}, {"reasons", std::move(reasons)}, {"record", candidate.isThere}});
  }
  return json;
}

std::string reasonsText(const Candidate& candidate)
{
  std::string result;
  for (const Reason reason : candidate.reasons) {
    result += result.empty() ? "" : ", ";
    result += phraseOf(reason);
  }
  return candidate.isThere ? result : result + " (no record of the reel)";
}

} // namespace reeldb::cli
