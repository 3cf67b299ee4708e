// SPDX-License-Identifier: Apache-2.0
#include "app/names.h"

#include <algorithm>
#include <array>
#include <map>

#include <fmt/format.h>

#include "app/decisions.h"
#include "app/host_errors.h"
#include "app/host_text.h"
#include "app/project_names.h"
#include "app/reel_records.h"
#include "app/shot_logs.h"
#include "base/ascii.h"
#include "base/text_width.h"
#include "lists/edl_line.h"
#include "lists/names.h"
#include "lists/short_names.h"
#include "lists/text.h"

namespace reeldb::app {

namespace {

/// The widths of reel fields to which lists cut names.
constexpr std::array<std::size_t, 4> cutLengths = {6, 8, 32, lists::reelLength};

/// The name cut to @p characters, without blanks at the end; empty if the name is not longer.
std::string_view cutForm(std::string_view name, std::size_t characters)
{
  for (std::size_t at = 0; at < name.size(); ++at) {
    const bool startsCharacter = (static_cast<unsigned char>(name[at]) & 0xC0) != 0x80;
    if (startsCharacter && characters-- == 0)
      return lists::trimRight(name.substr(0, at));
  }
  return {};
}

/// The meaning of the name in lists if it is not a reel there; empty if it may be a reel.
std::string_view meaningInLists(const std::string& name)
{
  return lists::isAuxiliary(name) ? "a source without a tape" : lists::specialReason(name);
}

} // namespace

std::string_view wordOf(Reason reason)
{
  switch (reason) {
  case Reason::Exact:
    return "exact";
  case Reason::Case:
    return "case";
  case Reason::Given:
    return "given";
  case Reason::Cut:
    return "cut";
  case Reason::Alias:
    return "alias";
  case Reason::OldName:
    return "old-name";
  case Reason::Form:
    return "form";
  }
  return "";
}

void ReelNames::addReel(const std::string& id, const std::vector<std::string>& oldNames,
                        const std::vector<std::string>& given)
{
  const std::size_t entry = entries_.size();
  entries_.push_back({id, true});
  const std::string folded = base::fold(id);
  byId_.try_emplace(folded, entry);
  link(folded, entry, Reason::Case);
  linkCuts(id, entry, Reason::Cut);
  for (const std::string& name : given)
    link(base::fold(name), entry, Reason::Given);
  for (const std::string& name : oldNames) {
    link(base::fold(name), entry, Reason::OldName);
    linkCuts(name, entry, Reason::OldName);
  }
}

void ReelNames::linkCuts(const std::string& name, std::size_t entry, Reason reason)
{
  const std::string whole = base::fold(name);
  for (const std::size_t length : cutLengths) {
    if (const std::string_view cut = cutForm(name, length); !cut.empty())
      link(base::fold(cut), entry, reason);
    const std::string form = base::fold(lists::fieldForm(name, length));
    if (!form.empty() && form != whole)
      link(form, entry, reason);
  }
}

void ReelNames::addAlias(const std::string& name, const std::string& reel)
{
  const auto [found, isNew] = byId_.try_emplace(base::fold(reel), entries_.size());
  if (isNew)
    entries_.push_back({reel, false});
  link(base::fold(name), found->second, Reason::Alias);
}

void ReelNames::link(const std::string& foldedName, std::size_t entry, Reason reason)
{
  if (reason > Reason::Cut && foldedName == base::fold(entries_[entry].id)) // the reel has this old name again
    return;
  std::vector<Link>& links = byName_[foldedName];
  // The shots of a reel follow each other, and most have the same names.
  const auto same = [&](const Link& link) { return link.entry == entry && link.reason == reason; };
  if (links.empty() || !same(links.back()))
    links.push_back({entry, reason});
}

std::vector<Candidate> ReelNames::find(std::string_view name) const
{
  std::string wanted(lists::trim(name));
  auto found = byName_.find(base::fold(wanted));
  if (found == byName_.end()) { // lists read a tab as a blank
    wanted = lists::clean(name);
    found = byName_.find(base::fold(wanted));
  }
  if (found == byName_.end())
    return {};
  std::map<std::size_t, std::vector<Reason>> reasons;
  for (const auto& [entry, reason] : found->second)
    reasons[entry].push_back(reason == Reason::Case && entries_[entry].id == wanted ? Reason::Exact : reason);
  std::vector<Candidate> candidates;
  for (auto& [entry, why] : reasons) {
    std::sort(why.begin(), why.end());
    why.erase(std::unique(why.begin(), why.end()), why.end());
    candidates.push_back({entries_[entry].id, entries_[entry].isThere, std::move(why)});
  }
  std::stable_sort(candidates.begin(), candidates.end(),
                   [](const Candidate& a, const Candidate& b) { return a.reasons.front() < b.reasons.front(); });
  return candidates;
}

const Candidate* theOne(const std::vector<Candidate>& candidates)
{
  const bool single = candidates.size() == 1 ||
                      (candidates.size() > 1 && candidates[0].reasons.front() < candidates[1].reasons.front());
  return single ? &candidates.front() : nullptr;
}

ReelNames knownNames(Session& session)
{
  return guarded([&] {
    ReelNames names;
    for (const Cookie& log : session.manager().reelList) {
      ReelDbRec record(log);
      if (const std::string id = text(record.reelId()); !id.empty())
        names.addReel(id, oldNamesOf(record), decisionsOf(record).aliases);
    }
    for (const Shot& shot : allShots(session))
      if (!shot.reel.empty())
        for (const std::string& alias : shot.aliases)
          names.addAlias(alias, shot.reel);
    return names;
  });
}

NameMeaning whichReel(Session& session, const std::string& name)
{
  return guarded([&] {
    NameMeaning meaning{name, knownNames(session).find(name), {}};
    ProjectNames names(session);
    names.add(name);
    names.settle();
    meaning.asList = names.find(name);
    if (meaning.candidates.empty() && names.hasRecord(meaning.asList.reel))
      meaning.candidates.push_back({meaning.asList.reel, true, {Reason::Form}});
    if (meaning.candidates.empty()) {
      const std::string subject = base::shortText(name);
      if (const std::string_view inLists = meaningInLists(name); !inLists.empty())
        throw Error(ErrorKind::NotFound,
                    fmt::format("{}: no reel has this name (its meaning in lists: {})", subject, inLists));
      requireReel(session.manager(), name); // throws, and lists similar names
      throw Error(ErrorKind::NotFound, fmt::format("{}: no reel has this name", subject));
    }
    const ShotCounts shots = reelhost::shotCounts();
    for (const Candidate& candidate : meaning.candidates) {
      const auto count = shots.find(base::fold(candidate.reel));
      meaning.shots.push_back(count == shots.end() ? 0 : count->second);
    }
    return meaning;
  });
}

} // namespace reeldb::app
