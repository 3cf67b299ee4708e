// SPDX-License-Identifier: Apache-2.0
#include "lists/name_index.h"

#include <algorithm>
#include <functional>
#include <iterator>
#include <map>
#include <numeric>
#include <tuple>
#include <unordered_map>
#include <utility>

#include "base/ascii.h"
#include "lists/name_forms.h"
#include "lists/text.h"

namespace reeldb::lists {

namespace {

using Index = std::size_t;
using Indexes = std::vector<Index>;
/// Texts with what they belong to, sorted.
using Sorted = std::vector<std::pair<std::string, Index>>;

void removeRepeated(Indexes& indexes)
{
  std::sort(indexes.begin(), indexes.end());
  indexes.erase(std::unique(indexes.begin(), indexes.end()), indexes.end());
}

bool oneBeginsOther(std::string_view a, std::string_view b)
{
  return a.starts_with(b) || b.starts_with(a);
}

/// Whether a longer clip name agrees with a name, if a cut name begins both: one is the beginning of the other, endings
/// aside.
bool agrees(std::string_view clipName, std::string_view name, bool lettersOnly)
{
  const std::string_view clip = partsOf(clipName).stem;
  const std::string_view stem = partsOf(name).stem;
  return oneBeginsOther(nameForm(clip), nameForm(stem)) ||
         (lettersOnly && oneBeginsOther(lettersForm(clip), lettersForm(stem)));
}

} // namespace

std::string_view wordOf(Match match)
{
  switch (match) {
  case Match::Itself:
    return "itself";
  case Match::Decided:
    return "decided";
  case Match::SourceId:
    return "source-id";
  case Match::SameName:
    return "same-name";
  case Match::OtherEnding:
    return "other-ending";
  case Match::NoEnding:
    return "no-ending";
  case Match::Cut:
    return "cut";
  }
  return "";
}

/// Joins the sources of an index to reels. Every step looks at all sources before it joins any, so that the result does
/// not depend on their order.
class NameJoiner {
public:
  explicit NameJoiner(NameIndex& index) : index_(index)
  {
    makeSources();
    const std::size_t count = sources().size();
    parents_.resize(count);
    std::iota(parents_.begin(), parents_.end(), Index{0});
    anchors_.resize(count);
    for (Index i = 0; i < count; ++i) {
      const bool namesReel = nameOf(i).given && nameOf(i).sources.size() == 1;
      anchors_[i] = {namesReel ? std::optional(sources()[i].name) : std::nullopt, sources()[i].id, nameOf(i).whole};
    }
  }

  void run()
  {
    followDecisions();
    if (index_.rules_ == NameRules::All)
      joinEqual([this](Index source) { return sources()[source].id; }, Match::SourceId);
    joinEqual([this](Index source) { return nameOf(source).form; }, Match::SameName);
    if (index_.rules_ == NameRules::All) {
      joinEqual([this](Index source) { return endingKey(source); }, Match::OtherEnding);
      joinWithoutEnding();
      joinCut();
    }
    nameReels();
  }

private:
  using Name = NameIndex::Name;
  using Source = NameIndex::Source;

  /// What is known of the reel of a root.
  struct Anchor {
    std::optional<Index> target; ///< the name that a person decided
    std::string id;
    bool whole = false; ///< whether a name of it is whole
  };
  /// A short form, and the reel that it is taken for.
  struct Claim {
    Index source, reel;
  };

  std::vector<Source>& sources() { return index_.sources_; }
  const std::vector<Source>& sources() const { return index_.sources_; }
  const Name& nameOf(Index source) const { return index_.names_[index_.sources_[source].name]; }

  void makeSources()
  {
    for (Index i = 0; i < index_.names_.size(); ++i) {
      Name& name = index_.names_[i];
      const auto add = [&](std::string id) {
        name.sources.push_back(sources().size());
        Source source;
        source.name = i;
        source.id = std::move(id);
        sources().push_back(std::move(source));
      };
      if (name.ids.size() <= 1) {
        add(name.ids.empty() ? std::string() : *name.ids.begin());
        continue;
      }
      for (const std::string& id : name.ids)
        add(id);
      if (name.bare)
        add({});
    }
  }

  Index rootOf(Index source)
  {
    while (parents_[source] != source)
      source = parents_[source] = parents_[parents_[source]];
    return source;
  }

  Anchor& anchorOf(Index source) { return anchors_[rootOf(source)]; }

  void unite(Index a, Index b)
  {
    a = rootOf(a);
    b = rootOf(b);
    if (a == b)
      return;
    const Anchor& from = anchors_[b];
    Anchor& to = anchors_[a];
    if (!to.target)
      to.target = from.target;
    if (to.id.empty() || (!from.id.empty() && from.id < to.id))
      to.id = from.id;
    to.whole = to.whole || from.whole;
    parents_[b] = a;
  }

  /// Whether two reels are known to differ.
  bool differ(Index a, Index b)
  {
    const Anchor& one = anchorOf(a);
    const Anchor& other = anchorOf(b);
    return (one.target && other.target && one.target != other.target) ||
           (!one.id.empty() && !other.id.empty() && one.id != other.id);
  }

  void noteMatch(Index source, Match match)
  {
    if (sources()[source].match == Match::Itself)
      sources()[source].match = match;
  }

  /// The name at the end of a chain of decisions. A circle ends at its first name by their bytes.
  Index decidedReel(Index name) const
  {
    Indexes chain = {name};
    while (const auto next = index_.names_[chain.back()].target) {
      const auto met = std::find(chain.begin(), chain.end(), *next);
      if (met != chain.end())
        return *std::min_element(
            met, chain.end(), [&](Index a, Index b) { return index_.names_[a].spelling < index_.names_[b].spelling; });
      chain.push_back(*next);
    }
    return chain.back();
  }

  void followDecisions()
  {
    for (Index i = 0; i < index_.names_.size(); ++i) {
      const Name& name = index_.names_[i];
      if (!name.target)
        continue;
      const Index reel = decidedReel(i);
      Indexes members = name.sources;
      members.insert(members.end(), index_.names_[reel].sources.begin(), index_.names_[reel].sources.end());
      for (const Index source : members) {
        unite(members.front(), source);
        noteMatch(source, Match::Decided);
      }
      anchorOf(members.front()).target = reel;
    }
  }

  /// Joins the sources with equal keys, unless they are known to differ. A source without a key is left alone.
  template <class Key>
  void joinEqual(Key keyOf, Match match)
  {
    std::unordered_map<std::string, Index> firstOf;
    std::map<std::string, Indexes> groups; // of several sources: most keys have one
    for (Index i = 0; i < sources().size(); ++i) {
      std::string key = keyOf(i);
      if (key.empty())
        continue;
      const auto [first, isNew] = firstOf.try_emplace(std::move(key), i);
      if (isNew)
        continue;
      Indexes& group = groups[first->first];
      if (group.empty())
        group.push_back(first->second);
      group.push_back(i);
    }
    for (const auto& [key, group] : groups)
      joinGroup(group, match);
  }

  void joinGroup(const Indexes& group, Match match)
  {
    if (!anyDiffer(group)) {
      for (const Index source : group)
        noteMatch(source, match);
      for (const Index source : group)
        unite(group.front(), source);
      return;
    }
    // What is known to differ stays apart. The others may be any of these, but are one with each other.
    Indexes known, open;
    for (const Index source : group) {
      const Anchor& anchor = anchorOf(source);
      const bool isKnown = anchor.target || (match != Match::SourceId && !anchor.id.empty());
      (isKnown ? known : open).push_back(source);
    }
    for (const Index source : open) {
      Indexes& perhaps = sources()[source].perhaps;
      perhaps.insert(perhaps.end(), known.begin(), known.end());
    }
    for (const Index source : open)
      unite(open.front(), source);
  }

  bool anyDiffer(const Indexes& group)
  {
    std::optional<Index> target;
    std::string id;
    for (const Index source : group) {
      const Anchor& anchor = anchorOf(source);
      if ((target && anchor.target && *target != *anchor.target) ||
          (!id.empty() && !anchor.id.empty() && id != anchor.id))
        return true;
      target = target ? target : anchor.target;
      id = id.empty() ? anchor.id : id;
    }
    return false;
  }

  std::string endingKey(Index source) const
  {
    const NameParts parts = partsOf(nameOf(source).spelling);
    return parts.ending == Ending::None ? std::string()
                                        : nameForm(parts.stem) + '\n' + std::to_string(static_cast<int>(parts.ending));
  }

  /// Whether a person decided that the name is its own reel.
  bool isSetApart(Index source) const { return nameOf(source).target == sources()[source].name; }

  /// Keeps the reels that the source may be: each once, by one of its sources.
  Indexes reelsFor(Index source, const Indexes& found)
  {
    std::map<Index, Index> byRoot;
    for (const Index each : found)
      if (!isSetApart(each) && !differ(source, each))
        byRoot.try_emplace(rootOf(each), each);
    Indexes reels;
    for (const auto& [root, each] : byRoot)
      reels.push_back(each);
    return reels;
  }

  void joinWithoutEnding()
  {
    Sorted stems;
    for (Index i = 0; i < sources().size(); ++i)
      if (const NameParts parts = partsOf(nameOf(i).spelling); parts.ending != Ending::None)
        stems.emplace_back(nameForm(parts.stem), i);
    if (stems.empty())
      return;
    std::sort(stems.begin(), stems.end());
    std::vector<Claim> claims;
    for (Index i = 0; i < sources().size(); ++i) {
      const Name& name = nameOf(i);
      if (!name.whole || isSetApart(i) || partsOf(name.spelling).ending != Ending::None)
        continue;
      Indexes found;
      for (auto at = std::lower_bound(stems.begin(), stems.end(), std::pair(name.form, Index{0}));
           at != stems.end() && at->first == name.form; ++at)
        found.push_back(at->second);
      claim(i, reelsFor(i, found), claims);
    }
    accept(std::move(claims), Match::NoEnding);
  }

  /// Claims the reel if it is the only one. Else notes all of them as possible.
  void claim(Index source, const Indexes& reels, std::vector<Claim>& claims)
  {
    const auto isOwn = [&](Index reel) { return rootOf(reel) == rootOf(source); };
    if (reels.empty() || std::any_of(reels.begin(), reels.end(), isOwn))
      return;
    if (reels.size() == 1)
      claims.push_back({source, reels.front()});
    else
      doubt(source, reels);
  }

  void doubt(Index source, const Indexes& reels)
  {
    Indexes& perhaps = sources()[source].perhaps;
    perhaps.insert(perhaps.end(), reels.begin(), reels.end());
  }

  /// Joins cut names to the only reel that they may be, the longest first: a cut name follows a longer one.
  void joinCut()
  {
    std::map<std::size_t, Indexes, std::greater<>> byLength;
    for (Index i = 0; i < sources().size(); ++i)
      if (const Name& name = nameOf(i); !name.whole) {
        cutForms_.emplace_back(name.form, i);
        if (!name.target)
          byLength[length(name.spelling)].push_back(i);
      }
    if (byLength.empty())
      return;
    Sorted forms, letters;
    for (Index i = 0; i < sources().size(); ++i) {
      forms.emplace_back(nameOf(i).form, i);
      if (!isLettersOnly(nameOf(i).spelling)) // else both forms are one
        letters.emplace_back(lettersForm(nameOf(i).spelling), i);
    }
    std::sort(forms.begin(), forms.end());
    std::sort(letters.begin(), letters.end());
    std::sort(cutForms_.begin(), cutForms_.end());
    for (const auto& [characters, cut] : byLength) {
      std::vector<Claim> claims;
      for (const Index source : cut)
        if (!anchorOf(source).whole)
          claimCut(source, goingOn(source, characters, forms, letters), claims);
      accept(std::move(claims), Match::Cut);
    }
  }

  static void addRange(const Sorted& sorted, const std::string& start, Indexes& found)
  {
    for (auto at = std::lower_bound(sorted.begin(), sorted.end(), std::pair(start, Index{0}));
         at != sorted.end() && at->first.starts_with(start); ++at)
      if (at->first.size() > start.size())
        found.push_back(at->second);
  }

  /// The sources whose longer names begin with the cut name.
  Indexes goingOn(Index source, std::size_t characters, const Sorted& forms, const Sorted& letters) const
  {
    Indexes found;
    addRange(forms, nameOf(source).form, found);
    if (!isLettersOnly(nameOf(source).spelling))
      return found;
    Indexes more;
    addRange(letters, nameOf(source).form, more);
    for (const Index each : more) {
      // A name is cut one way by one list: the form that keeps the other characters comes first.
      const std::string kept(beginning(nameOf(each).form, characters));
      const auto rival = std::lower_bound(cutForms_.begin(), cutForms_.end(), std::pair(kept, Index{0}));
      if (rival == cutForms_.end() || rival->first != kept || kept == nameOf(source).form)
        found.push_back(each);
    }
    removeRepeated(found);
    return found;
  }

  void claimCut(Index source, const Indexes& found, std::vector<Claim>& claims)
  {
    const Indexes reels = reelsFor(source, found);
    const Name& name = nameOf(source);
    const auto contradicts = [&](const std::string& clipName) {
      return std::none_of(found.begin(), found.end(), [&](Index each) {
        return !differ(source, each) && agrees(clipName, nameOf(each).spelling, isLettersOnly(name.spelling));
      });
    };
    if (reels.size() == 1 && std::any_of(name.clipNames.begin(), name.clipNames.end(), contradicts))
      doubt(source, reels);
    else
      claim(source, reels, claims);
  }

  /// Joins all sources to the reels that they claim, but no two that are known to differ by way of a third: then those
  /// that are known by themselves are left out, and all of them if that is not enough.
  void accept(std::vector<Claim> claims, Match match)
  {
    for (const bool onlyOpen : {false, true}) {
      const std::vector<bool> faulty = inConflict(claims);
      std::vector<Claim> kept;
      for (std::size_t i = 0; i < claims.size(); ++i) {
        const Anchor& anchor = anchorOf(claims[i].source);
        if (faulty[i] && (onlyOpen || anchor.target || !anchor.id.empty()))
          doubt(claims[i].source, {claims[i].reel});
        else
          kept.push_back(claims[i]);
      }
      claims = std::move(kept);
    }
    for (const Claim& claim : claims) {
      noteMatch(claim.source, match);
      unite(claim.reel, claim.source);
    }
  }

  /// For each claim, whether all claims together join what is known to differ there.
  std::vector<bool> inConflict(const std::vector<Claim>& claims)
  {
    std::map<Index, Indexes> linked; ///< root: the claims that touch it
    for (std::size_t i = 0; i < claims.size(); ++i)
      for (const Index source : {claims[i].source, claims[i].reel})
        linked[rootOf(source)].push_back(i);
    std::vector<bool> faulty(claims.size()), met(claims.size());
    for (std::size_t first = 0; first < claims.size(); ++first) {
      if (met[first])
        continue;
      Indexes group = {first}, members;
      met[first] = true;
      for (std::size_t at = 0; at < group.size(); ++at)
        for (const Index source : {claims[group[at]].source, claims[group[at]].reel}) {
          members.push_back(source);
          for (const Index next : std::exchange(linked[rootOf(source)], {}))
            if (!met[next]) {
              met[next] = true;
              group.push_back(next);
            }
        }
      if (anyDiffer(members))
        for (const Index each : group)
          faulty[each] = true;
    }
    return faulty;
  }

  /// The name of a reel: the decided one, else a whole one without an ending, else a whole one, else any; of several
  /// the longest, and of these the first.
  void nameReels()
  {
    std::map<Index, Index> best;
    const auto rank = [&](Index source) {
      const Name& name = nameOf(source);
      const auto& target = anchorOf(source).target;
      const bool isTarget = target && *target == sources()[source].name;
      return std::tuple(!isTarget, !name.whole, partsOf(name.spelling).ending != Ending::None,
                        -static_cast<std::ptrdiff_t>(length(name.spelling)), std::cref(name.form).get(),
                        std::cref(name.spelling).get(), sources()[source].id);
    };
    for (Index i = 0; i < sources().size(); ++i) {
      const auto [entry, isNew] = best.try_emplace(rootOf(i), i);
      if (!isNew && rank(i) < rank(entry->second))
        entry->second = i;
    }
    for (Index i = 0; i < sources().size(); ++i) {
      sources()[i].reel = best.at(rootOf(i));
      if (sources()[i].reel != i)
        noteMatch(i, Match::NoEnding); // the reel is called by its name without the ending
    }
  }

  NameIndex& index_;
  Indexes parents_;
  std::vector<Anchor> anchors_; ///< by source; those of roots count
  Sorted cutForms_;
};

std::size_t NameIndex::indexOf(std::string_view name)
{
  const auto [entry, isNew] = byName_.try_emplace(base::fold(name), names_.size());
  if (isNew) {
    names_.emplace_back();
    names_.back().form = nameForm(name);
  }
  Name& known = names_[entry->second];
  if (known.spelling.empty() || name < known.spelling)
    known.spelling = std::string(name);
  return entry->second;
}

void NameIndex::add(const NameUse& use)
{
  if (use.name.empty())
    return;
  Name& name = names_[indexOf(use.name)];
  name.whole = name.whole || !use.mayBeCut;
  if (use.sourceId.empty())
    name.bare = true;
  else
    name.ids.insert(base::fold(use.sourceId));
  const std::string_view clipName = withoutAdditions(use.clipName);
  if (use.mayBeCut && isCutForm(use.name, clipName))
    name.clipNames.emplace(clipName);
}

void NameIndex::decide(std::string_view name, std::string_view reel)
{
  const std::size_t decided = indexOf(name);
  const std::size_t target = indexOf(reel);
  names_[decided].target = target;
  names_[target].whole = true;
}

void NameIndex::nameReel(std::string_view name)
{
  Name& given = names_[indexOf(name)];
  given.whole = true;
  given.given = true;
}

void NameIndex::settle()
{
  NameJoiner(*this).run();
}

std::string NameIndex::identifierOf(std::size_t source) const
{
  const Source& named = sources_[sources_[source].reel];
  const Name& name = names_[named.name];
  const bool isParted = name.sources.size() > 1 && !named.id.empty() && sources_[source].match != Match::Decided;
  return isParted ? name.spelling + " " + named.id : name.spelling;
}

std::vector<std::string> NameIndex::reelsOf(const std::vector<std::size_t>& sources, const std::string& own) const
{
  std::set<std::string> reels;
  for (const std::size_t source : sources)
    reels.insert(identifierOf(source));
  reels.erase(own);
  return {reels.begin(), reels.end()};
}

ReelOfName NameIndex::find(std::string_view name, std::string_view sourceId) const
{
  ReelOfName result;
  const auto found = byName_.find(base::fold(name));
  if (found == byName_.end()) {
    result.reel = std::string(name);
    return result;
  }
  const Name& known = names_[found->second];
  const std::string id = base::fold(sourceId);
  const auto own = std::find_if(known.sources.begin(), known.sources.end(), [&](std::size_t source) {
    return known.sources.size() == 1 || sources_[source].id == id;
  });
  if (own == known.sources.end()) { // several sources have the name, and the caller does not say which
    result.reel = known.spelling;
    result.perhaps = reelsOf(known.sources, {});
    return result;
  }
  const Source& source = sources_[*own];
  result.reel = identifierOf(*own);
  if (source.reel != *own)
    result.match = source.match;
  result.perhaps = reelsOf(source.perhaps, result.reel);
  result.clipNames.assign(known.clipNames.begin(), known.clipNames.end());
  return result;
}

} // namespace reeldb::lists
