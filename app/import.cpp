// SPDX-License-Identifier: Apache-2.0
#include "app/import.h"

#include <algorithm>
#include <functional>
#include <optional>
#include <set>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include <fmt/format.h>

#include "ReelDbClient.h"
#include "ReelDbManager.h"
#include "app/decisions.h"
#include "app/host_errors.h"
#include "app/host_text.h"
#include "app/kept_events.h"
#include "app/list_choice.h"
#include "app/list_versions.h"
#include "app/new_reel_types.h"
#include "app/project_names.h"
#include "app/projects.h"
#include "app/reel_fields.h"
#include "app/reel_records.h"
#include "app/reel_rows.h"
#include "app/shot_logs.h"
#include "app/shots_made_before.h"
#include "app/unused_shots.h"
#include "base/ascii.h"
#include "base/text_width.h"
#include "lists/name_forms.h"
#include "lists/names.h"
#include "lists/sheet.h"
#include "lists/timing.h"
#include "reelhost/host.h"

namespace reeldb::app {

namespace {

constexpr int noDevice = -1;

/// What an import decides of a name in one of its files, by the place of the file.
struct Decided {
  std::size_t file = 0;
  std::string name, reel;

  bool operator==(const Decided&) const = default;
};

/// In the place of the number of a shot: the clip has none, because a person deleted it.
constexpr std::int64_t leftOut = -1;

/// Receives the reels that the library creates.
class CreatedReels : public ReelDbClient {
public:
  using Receive = std::function<void(std::string id)>;
  explicit CreatedReels(Receive receive) : receive_(std::move(receive)) {}
  void reelDbChanged(LightweightString<char> id) override
  {
    if (!id.empty())
      receive_(text(id));
  }

private:
  Receive receive_;
};

/// What the project keeps of a list.
struct KeptVersion {
  reelhost::KeptList list;         ///< number 0: nothing
  std::vector<Shot> clips;         ///< those with a shot
  std::vector<std::int64_t> shots; ///< of these clips
};

/// The kept list that the file's list takes the place of, or that has its bytes.
std::optional<reelhost::KeptList> listReplacedBy(const ListFile& file, const reelhost::Digest& digest,
                                                 const Replacing& replacing)
{
  if (replacing.list)
    return listNamed(*replacing.list);
  return replacing.byName ? versionOf(file, digest) : listWith(digest);
}

KeptVersion keptVersionOf(const ListFile& file, const reelhost::Digest& digest, const Replacing& replacing)
{
  KeptVersion version;
  std::optional<reelhost::KeptList> list = listReplacedBy(file, digest, replacing);
  if (!list)
    return version;
  version.list = std::move(*list);
  version.list.events = reelhost::eventsOfList(version.list.number);
  for (const reelhost::ListEvent& event : version.list.events)
    if (event.shot != 0) {
      version.clips.push_back(clipFrom(event));
      version.shots.push_back(event.shot);
    }
  return version;
}

/// Whether its format also has reels: a table or JSON, which this program writes of the project.
bool isOfReels(const lists::List& list)
{
  return list.format == lists::Format::Sheet || list.format == lists::Format::Json;
}

class Importer {
public:
  /// Reads the names of the project and of the lists, and moves the shots that get another reel by them.
  Importer(Session& session, std::vector<ListFile>& files, const Progress& progress, const Replacing& replacing,
           const Treatment& treatment)
      : manager_(session.manager()), progress_(progress), replacing_(replacing), type_(treatment.type),
        others_(treatment.others), rate_(projectRate()), names_(session, treatment.rules)
  {
    if (names_.readsLists() || !others_.empty())
      for (std::size_t i = 0; i < files.size(); ++i)
        readAsDecided(files[i], i);
    requireOthersMet();
    for (const Cookie& log : manager_.reelList)
      lastBefore_ = std::max(lastBefore_, reelhost::logNumber(log));
    for (const KnownShot& known : names_.shots())
      lastBefore_ = std::max(lastBefore_, reelhost::logNumber(known.log));
    for (const ListFile& file : files) {
      clips_ += file.list.clips.size();
      for (const lists::Clip& clip : file.list.clips)
        names_.add(clip);
    }
    if (treatment.rules == lists::NameRules::All) {
      std::vector<const lists::Clip*> clips;
      for (const ListFile& file : files)
        for (const lists::Clip& clip : file.list.clips)
          clips.push_back(&clip);
      for (const auto& [place, clip] : shotsMadeBefore(names_.shots(), clips))
        names_.adopt(place, *clip);
    }
    names_.settle();
    requireOthersApart();
    usesBefore_ = names_.uses();
    if (treatment.rules == lists::NameRules::All)
      moves_ = names_.moveShots();
    std::vector<LightweightString<char>> ids;
    manager_.getAllReelIds(ids, true);
    for (const LightweightString<char>& id : ids)
      addReel(text(id));
    shots_ = names_.takeShots();
    byKey_.reserve(shots_.size());
    std::vector<std::pair<std::string, std::size_t>> otherKeys; // a shot that lies in the reel of the key goes first
    for (std::size_t i = 0; i < shots_.size(); ++i) {
      std::vector<std::string> keys = names_.keysOf(shots_[i].shot);
      byKey_.emplace(std::move(keys.front()), i);
      for (std::size_t other = 1; other < keys.size(); ++other)
        otherKeys.emplace_back(std::move(keys[other]), i);
    }
    byKey_.insert(otherKeys.begin(), otherKeys.end());
    for (const ListFile& file : files)
      for (const lists::Clip& clip : file.list.clips)
        noteUseOfNewReel(clip);
  }

  const std::vector<ReelMove>& moves() const { return moves_; }

  ImportedList import(ListFile file)
  {
    ImportedList result;
    result.file = file.path;
    const CreatedReels listener([&](const std::string& id) {
      addReel(id);
      result.created.push_back(id);
      noteType(id, result);
    });
    const reelhost::Digest digest = reelhost::digestOf(file.bytes);
    KeptVersion before = keptVersionOf(file, digest, replacing_);
    for (Shot& clip : before.clips)
      clip.reel = names_.find(clip).reel;
    if (before.list.number == 0) {
      noteEarlier(file, result);
      result.replacesNothing = replacing_.byName;
    }
    const std::string name = fileNameOf(file);
    result.list = std::move(file.list);
    const std::vector<Shot> clips = namedClips(result);
    const auto places = sameShots(before.clips, clips);
    std::vector<std::int64_t> shots; // of the clips
    std::unordered_set<std::string> met, metShots;
    for (std::size_t i = 0; i < clips.size(); ++i) {
      const Shot& clip = clips[i];
      const std::int64_t known = places[i] ? before.shots[*places[i]] : 0;
      std::string key = shotKey(clip);
      const auto same = known == 0 ? byKey_.find(key) : byKey_.end();
      if (known == 0 && same == byKey_.end() && names_.isDeleted(clip)) {
        shots.push_back(leftOut);
        ++result.shotsLeftOut;
        advance();
        continue;
      }
      const std::string reel = known != 0             ? shots_[placeOf(known)].shot.reel
                               : same != byKey_.end() ? shots_[same->second].shot.reel
                                                      : clip.reel;
      const bool missing = met.insert(base::fold(reel)).second && !reel.empty() && !noteReel(reel, result);
      const bool repeated = !metShots.insert(key).second;
      const auto [shot, added] =
          known == 0 ? bringIn(clip, std::move(key), isOfReels(result.list)) : std::pair(known, false);
      if (known != 0 && before.list.digest != digest)
        noteUse(placeOf(known), clip);
      shots.push_back(shot);
      ++(added ? result.shotsAdded : result.shotsThere);
      result.shotsRepeated += repeated ? 1 : 0;
      // An existing shot may have lost its reel's record. The library is not notified of it, so the reel is created
      // here.
      if (missing && !added) {
        const TypeOfNewReels type(manager_, newType_ = typeOf(reel));
        manager_.createNewReel(hostText(reel), noDevice);
      }
      advance();
    }
    if (reelhost::keepsLists() && isKept(result, before))
      keep(name, digest, std::move(file.bytes), before, shots, result);
    keepOthers(imported_++, result.keptAs);
    if (names_.readsLists() && result.keeping == Keeping::New)
      keepForList(manager_, result.keptAs, digest);
    if (result.keeping == Keeping::NewVersion) {
      std::vector<Shot> brought;
      for (std::size_t i = 0; i < clips.size(); ++i)
        if (shots[i] != leftOut)
          brought.push_back(clips[i]);
      result.difference = difference(before.clips, brought);
      replacedShots_.insert(before.shots.begin(), before.shots.end());
    }
    if (rate_)
      warnOfRate(result.list);
    result.clips = result.list.clips.size();
    result.list.clips.clear();
    result.list.specialClips.clear();
    return result;
  }

  /// The shots of the versions that gave their place to another.
  const std::set<std::int64_t>& replacedShots() const { return replacedShots_; }
  /// The highest number of a log before the import, which makes logs with higher ones.
  std::int64_t lastBefore() const { return lastBefore_; }

  /// Gives the reels that imports alone made and changed the types that follow from all of their shots.
  std::vector<TypeChange> changeTypes()
  {
    const std::vector<Retyped> retyped = reelsToRetype();
    CookieVec records;
    for (const Retyped& each : retyped)
      records.add(each.log);
    if (retyped.empty())
      return {};
    reelhost::deleteLogs(records);
    std::vector<TypeChange> changes;
    for (const Retyped& each : retyped) {
      const TypeOfNewReels type(manager_, each.type);
      ReelDbRec record = manager_.createNewReel(hostText(each.reel), noDevice);
      keepDecisions(record, each.decisions);
      changes.push_back({each.reel, each.before, text(record.typeName())});
    }
    manager_.informReelDbChanged("");
    return changes;
  }

private:
  /// A reel that gets another type.
  struct Retyped {
    Cookie log;
    std::string reel, before, type; ///< an empty type: the project's default
    Decisions decisions;
  };

  /// The uses of the reels by the shots that are there now, by folded identifier.
  std::unordered_map<std::string, TypeEvidence> usesNow() const
  {
    std::unordered_map<std::string, TypeEvidence> uses;
    for (const KnownShot& known : shots_)
      if (!known.shot.reel.empty() && reelhost::logNumber(known.log) != 0) // it may have been of a replaced version
        uses[base::fold(known.shot.reel)].add(known.shot);
    return uses;
  }

  std::vector<Retyped> reelsToRetype()
  {
    std::vector<Retyped> retyped;
    if (!usesChange_ && moves_.empty())
      return retyped;
    const std::string defaultType = defaultTypeOfProject();
    const auto isTypeOf = [&](const TypeEvidence& use, const std::string& type) {
      const std::string byRules = typeByRules(use);
      return type == (byRules.empty() ? defaultType : byRules);
    };
    std::unordered_map<std::string, TypeEvidence> uses = usesNow();
    std::optional<std::set<std::int64_t>> made;
    for (const Cookie& log : manager_.reelList) {
      ReelDbRec record(log);
      const std::string id = text(record.reelId());
      const auto now = uses.find(base::fold(id));
      if (now == uses.end())
        continue;
      now->second.reel = id;
      const std::int64_t number = reelhost::logNumber(log);
      const bool isNew = number > lastBefore_;
      const auto before = usesBefore_.find(number);
      if (isNew ? type_.has_value() : before == usesBefore_.end() || before->second == now->second)
        continue;
      std::string type = text(record.typeName());
      if (isTypeOf(now->second, type) || !(isNew || isTypeOf(before->second, type)) || manager_.reelInUse(hostText(id)))
        continue;
      if (!made)
        made = madeByImports();
      if (isNew || made->contains(number))
        retyped.push_back({log, id, std::move(type), typeByRules(now->second), decisionsOf(record)});
    }
    return retyped;
  }

  /// Lets the clips name their sources as a person decided, and as this import does.
  void readAsDecided(ListFile& file, std::size_t place)
  {
    const reelhost::Digest digest = reelhost::digestOf(file.bytes);
    const std::optional<reelhost::KeptList> kept =
        reelhost::keepsLists() ? listReplacedBy(file, digest, replacing_) : std::nullopt;
    names_.read(kept ? kept->number : 0, digest, file.list.clips);
    for (lists::Clip& clip : file.list.clips) {
      const OtherReel* const other = otherReelOf(clip);
      if (!other)
        continue;
      if (kept)
        throw Error(ErrorKind::Refused,
                    fmt::format("{}: list {} of the project already (reeldb split --list {} parts it)",
                                base::shortText(file.path), kept->number, kept->number));
      const Decided decided{place, ownNameOf(clip), other->reel};
      if (std::find(decided_.begin(), decided_.end(), decided) == decided_.end())
        decided_.push_back(decided);
      giveName(clip, other->reel);
    }
  }

  const OtherReel* otherReelOf(const lists::Clip& clip) const
  {
    const auto found = std::find_if(others_.begin(), others_.end(), [&](const OtherReel& other) {
      return base::sameName(other.name, ownNameOf(clip)) || base::sameName(other.name, clip.event.reelText);
    });
    return found == others_.end() ? nullptr : &*found;
  }

  /// Throws Error unless each of the other reels is new, and clips have its name.
  void requireOthersMet()
  {
    if (!others_.empty())
      requireKeepsLists();
    for (const OtherReel& other : others_) {
      if (names_.hasRecord(other.reel))
        throw Error(ErrorKind::Refused, fmt::format("{}: a reel has this name (choose another name for the new reel)",
                                                    base::shortText(other.reel)));
      requireNotGiven(manager_, other.reel);
      if (std::none_of(decided_.begin(), decided_.end(),
                       [&](const Decided& decided) { return base::sameName(decided.reel, other.reel); }))
        throw Error(ErrorKind::Refused,
                    fmt::format("{}: no clip of the lists has this reel", base::shortText(other.name)));
      names_.setApart(other.reel);
    }
  }

  /// Throws Error if other lists would mean a new reel by the name that it had.
  void requireOthersApart() const
  {
    for (const Decided& decided : decided_)
      if (lists::isSameName(decided.name, decided.reel) || base::sameName(names_.find(decided.name).reel, decided.reel))
        throw Error(ErrorKind::Refused, fmt::format("{}: in lists the same name as {} (choose another name)",
                                                    base::shortText(decided.reel), base::shortText(decided.name)));
  }

  /// Keeps what this import decided for the list of that place.
  void keepOthers(std::size_t place, std::int64_t list)
  {
    for (const Decided& each : decided_) {
      if (each.file != place)
        continue;
      ReelDbRec record = requireReel(manager_, each.reel);
      Decisions decisions = decisionsOf(record);
      decisions.isApart = true;
      decisions.inLists.push_back({list, each.name, each.reel});
      keepDecisions(record, decisions);
    }
  }

  /// The clips as the shots that they become, with the reels of their names, which the result gets.
  std::vector<Shot> namedClips(ImportedList& result) const
  {
    std::vector<Shot> shots;
    std::unordered_set<std::string> met, ofFiles;
    for (const lists::Clip& clip : result.list.clips) {
      NamedReel name = names_.find(clip);
      if (isNamedByFile(clip) && ofFiles.insert(base::fold(name.reel)).second)
        ++result.reelsOfFiles;
      shots.push_back(namedShot(clip, name.reel));
      if (name.reel != name.name && base::sameName(name.reel, name.name))
        noteSpelling(name, result);
      if (met.insert(base::fold(name.name) + '\n' + name.sourceId).second)
        result.names.push_back(std::move(name));
    }
    return shots;
  }

  /// Whether the list says no reel of the clip, but a file.
  static bool isNamedByFile(const lists::Clip& clip)
  {
    return clip.evidence == lists::NameEvidence::SourceFile &&
           (clip.event.reelText.empty() || lists::isAuxiliary(clip.event.reelText));
  }

  static void noteSpelling(const NamedReel& name, ImportedList& result)
  {
    const auto same = [&](const lists::Spelling& known) { return known.reel == name.reel && known.other == name.name; };
    std::vector<lists::Spelling>& spellings = result.list.spellings;
    if (std::none_of(spellings.begin(), spellings.end(), same))
      spellings.push_back({name.reel, name.name});
  }

  static Shot namedShot(const lists::Clip& clip, const std::string& reel)
  {
    Shot shot = clip;
    setReel(shot, reel, namesOf(clip));
    return shot;
  }

  void addReel(const std::string& id) { reels_.try_emplace(base::fold(id), id); }

  /// Notes what the clip says of its reel, if that has to be created.
  void noteUseOfNewReel(const lists::Clip& clip)
  {
    const std::string reel = names_.find(clip).reel;
    if (reels_.contains(base::fold(reel)))
      return;
    TypeEvidence& use = uses_[base::fold(reel)];
    use.add(namedShot(clip, reel));
    use.reel = reel;
  }

  /// The type of a reel if the library creates it. Empty for a reel that exists, and for the project's default.
  std::string typeOf(const std::string& reel) const
  {
    const auto use = uses_.find(base::fold(reel));
    if (use == uses_.end() || reels_.contains(use->first))
      return {};
    return type_ ? *type_ : typeByRules(use->second);
  }

  void noteType(const std::string& id, ImportedList& result) const
  {
    if (newType_.empty())
      return;
    const auto known = std::find_if(result.types.begin(), result.types.end(),
                                    [&](const TypedReels& typed) { return typed.type == newType_; });
    (known == result.types.end() ? result.types.emplace_back(TypedReels{newType_, {}}) : *known).reels.push_back(id);
  }

  /// Adds an existing reel to the result. Returns whether the reel exists.
  bool noteReel(const std::string& id, ImportedList& result)
  {
    const auto found = reels_.find(base::fold(id));
    if (found == reels_.end())
      return false;
    result.matched.push_back(found->second);
    return true;
  }

  /// Creates the clip's shot unless a shot with that key exists. Returns the number of the shot, and whether it was
  /// created. A table or JSON says nothing further of a shot that exists: it may have been written from the project.
  std::pair<std::int64_t, bool> bringIn(const Shot& clip, std::string key, bool ofReels)
  {
    const auto [place, isNew] = byKey_.emplace(std::move(key), shots_.size());
    if (isNew) {
      const TypeOfNewReels type(manager_, newType_ = typeOf(clip.reel));
      shots_.push_back({reelhost::importMaterial(materialFrom(clip)), clip});
      usesChange_ = true;
      if (!byNumber_.empty())
        byNumber_.emplace(reelhost::logNumber(shots_.back().log), place->second);
    } else if (!ofReels) {
      noteUse(place->second, clip);
    }
    return {reelhost::logNumber(shots_[place->second].log), isNew};
  }

  /// Lets the shot keep what a further use of it says, also the name of its source: the names of one shot may be two
  /// reels later.
  void noteUse(std::size_t place, const Shot& clip)
  {
    KnownShot& known = shots_[place];
    bool changes = takeUse(known.shot, clip);
    if (names_.find(ownNameOf(clip), clip.sourceId).match != lists::Match::Decided) // else the reel keeps that name
      changes = addName(known.shot, {ownNameOf(clip), clip.mayBeCut, clip.sourceId}) || changes;
    if (changes)
      reelhost::changeMaterial(known.log, materialFrom(known.shot));
    usesChange_ = usesChange_ || changes;
  }

  /// The place of a shot that existed before this list.
  std::size_t placeOf(std::int64_t shot)
  {
    if (byNumber_.empty())
      for (std::size_t i = 0; i < shots_.size(); ++i)
        byNumber_.emplace(reelhost::logNumber(shots_[i].log), i);
    return byNumber_.at(shot);
  }

  /// Notes a kept list of which this one seems to be another version.
  static void noteEarlier(const ListFile& file, ImportedList& result)
  {
    for (const reelhost::KeptList& list : reelhost::keptLists())
      if (base::sameName(list.file, fileNameOf(file)) || (!list.title.empty() && list.title == file.list.title))
        result.earlier = list.number;
  }

  /// Whether the project keeps the list. Tables and JSON are kept if they bring clips: what this program wrote of the
  /// project itself comes back and changes nothing.
  static bool isKept(ImportedList& result, const KeptVersion& before)
  {
    if (!isOfReels(result.list) || before.list.number != 0 || result.shotsAdded > 0)
      return true;
    result.earlier.reset();
    result.replacesNothing = false;
    return false;
  }

  /// Keeps the list, whose clips are these shots, unless it is kept as it is.
  void keep(const std::string& name, const reelhost::Digest& digest, std::string bytes, const KeptVersion& before,
            const std::vector<std::int64_t>& shots, ImportedList& result)
  {
    reelhost::KeptList list;
    list.number = before.list.number;
    list.digest = digest;
    list.file = name;
    list.title = result.list.title;
    list.format = lists::wordOf(result.list.format);
    for (std::size_t i = 0; i < shots.size(); ++i)
      if (shots[i] != leftOut)
        list.events.push_back(eventFrom(result.list.clips[i], shots[i]));
    for (const lists::Clip& clip : result.list.specialClips)
      list.events.push_back(eventFrom(clip, 0));
    const auto isBefore = [](const auto& one, const auto& other) { return one.line < other.line; };
    if (!std::is_sorted(list.events.begin(), list.events.end(), isBefore)) // the sort moves each event several times
      std::stable_sort(list.events.begin(), list.events.end(), isBefore);
    result.keptAs = list.number;
    if (list.number != 0 && before.list.events == list.events && before.list.digest == digest) {
      result.keeping = Keeping::Unchanged;
      return;
    }
    result.keeping = list.number == 0 ? Keeping::New : Keeping::NewVersion;
    result.keptAs = reelhost::keepList(std::move(list), std::move(bytes));
  }

  /// Adds the warning that the list contradicts the project, if it does.
  void warnOfRate(lists::List& list) const
  {
    const auto warning = lists::contradiction(list, *rate_);
    if (!warning)
      return;
    const auto isBefore = [](const lists::Warning& one, const lists::Warning& other) { return one.line < other.line; };
    list.warnings.insert(std::upper_bound(list.warnings.begin(), list.warnings.end(), *warning, isBefore), *warning);
  }

  void advance()
  {
    ++done_;
    if (progress_ && !progress_(done_, clips_))
      throw Error(ErrorKind::Cancelled, "import: cancelled, nothing imported");
  }

  ReelDbManager& manager_;
  std::size_t clips_ = 0, done_ = 0;
  const Progress& progress_;
  const Replacing& replacing_;
  std::optional<std::string> type_;                    ///< chosen for all new reels
  std::unordered_map<std::string, TypeEvidence> uses_; ///< of the reels that the lists may need, by folded identifier
  std::unordered_map<std::int64_t, TypeEvidence>
      usesBefore_;      ///< of the reels of the project, by the numbers of their logs
  std::string newType_; ///< of the reel that is being created; empty: the project's default
  const std::vector<OtherReel>& others_;
  std::vector<Decided> decided_;
  std::size_t imported_ = 0;             ///< number of files
  std::optional<lists::FrameRate> rate_; ///< of the project
  ProjectNames names_;
  std::vector<ReelMove> moves_;
  /// The spelling of each reel by its folded identifier. It saves lookups, each of which opens every reel log.
  std::unordered_map<std::string, std::string> reels_;
  std::vector<KnownShot> shots_;
  std::unordered_map<std::string, std::size_t> byKey_;     ///< the places of the shots by their keys
  std::unordered_map<std::int64_t, std::size_t> byNumber_; ///< by their numbers; filled when it is needed
  bool usesChange_ = false;                                ///< whether shots are new or have further names
  std::set<std::int64_t> replacedShots_;                   ///< of versions that gave their place to another
  std::int64_t lastBefore_ = 0;                            ///< the highest number of a log before the import
};

/// The first of the created reels with the project's default type.
std::optional<std::string> reelOfDefaultType(const ImportedList& imported)
{
  std::unordered_set<std::string> typed;
  for (const TypedReels& some : imported.types)
    typed.insert(some.reels.begin(), some.reels.end());
  const auto found = std::find_if(imported.created.begin(), imported.created.end(),
                                  [&](const std::string& id) { return !typed.contains(id); });
  return found == imported.created.end() ? std::nullopt : std::optional(*found);
}

/// The same with checked identifiers, and with the only name of the files where none is given.
std::vector<OtherReel> checkedReels(std::vector<OtherReel> others, const std::vector<ListFile>& files)
{
  for (OtherReel& other : others) {
    other.reel = checkedReelName(other.reel);
    if (!other.name.empty())
      continue;
    for (const ListFile& file : files)
      for (const lists::Clip& clip : file.list.clips) {
        if (!other.name.empty() && !base::sameName(other.name, ownNameOf(clip)))
          throw Error(ErrorKind::Invalid, fmt::format("{0}: the lists have several reels (say which: --as-new {1}={0})",
                                                      base::shortText(other.reel), base::shortText(other.name)));
        other.name = ownNameOf(clip);
      }
  }
  return others;
}

/// Whether anything but rows of reels may be in it.
bool isListOfClips(const ListFile& file)
{
  return !isOfReels(file.list) || !file.list.clips.empty() || !file.list.specialClips.empty();
}

void importClips(Session& session, std::vector<ListFile>& files, const Progress& progress, const Replacing& replacing,
                 const Treatment& treatment, ImportReport& report)
{
  Importer importer(session, files, progress, replacing, treatment);
  report.moves = importer.moves();
  report.changes = !report.moves.empty();
  for (ListFile& file : files) {
    report.lists.push_back(importer.import(std::move(file)));
    if (const auto reel = reelOfDefaultType(report.lists.back()); reel && report.remarks.empty())
      remarkOnUnlistedType(text(requireReel(session.manager(), *reel).typeName()), report.remarks);
  }
  if (!importer.replacedShots().empty()) {
    UnusedShots unused = deleteUnused(session, importer.replacedShots(), importer.lastBefore());
    report.shotsRemoved = std::move(unused.shots);
    report.reelsRemoved = std::move(unused.reels);
  }
  report.typeChanges = importer.changeTypes();
}

/// Gives reels the fields of the rows that the lists of the report have.
void importReels(Session& session, const Treatment& treatment, ImportReport& report)
{
  if (std::all_of(report.lists.begin(), report.lists.end(),
                  [](const ImportedList& imported) { return imported.list.reels.empty(); }))
    return;
  ReelRows rows(session, treatment);
  for (ImportedList& imported : report.lists)
    rows.import(imported);
  const std::vector<ReelMove> moves = rows.moveShots();
  report.moves.insert(report.moves.end(), moves.begin(), moves.end());
  report.remarks.insert(report.remarks.end(), rows.remarks().begin(), rows.remarks().end());
}

} // namespace

void requireMeanings(const lists::TitleMap& titles)
{
  for (const auto& [title, meaning] : titles)
    if (!lists::isSheetTitle(meaning) && !reelFieldName(meaning))
      throw Error(ErrorKind::Invalid,
                  fmt::format("import: --map {}={}: \"{}\" is neither a column that tables have nor a field of a reel",
                              base::shortText(title), base::shortText(meaning), base::shortText(meaning)));
}

std::string_view wordOf(Keeping keeping)
{
  switch (keeping) {
  case Keeping::NotKept:
    return "no";
  case Keeping::New:
    return "new";
  case Keeping::Unchanged:
    return "unchanged";
  case Keeping::NewVersion:
    return "new version";
  }
  return "";
}

bool ImportedList::changesProject() const
{
  return shotsAdded > 0 || !created.empty() || !changes.empty() || keeping == Keeping::New ||
         keeping == Keeping::NewVersion;
}

ImportTotals ImportReport::totals() const
{
  ImportTotals totals;
  totals.lists = lists.size();
  totals.skipped = skipped.size();
  for (const ImportedList& imported : lists) {
    totals.listsNew += imported.keeping == Keeping::New ? 1 : 0;
    totals.listsReplaced += imported.keeping == Keeping::NewVersion ? 1 : 0;
    totals.listsUnchanged += imported.keeping == Keeping::Unchanged ? 1 : 0;
    totals.clips += imported.clips;
    totals.shotsAdded += imported.shotsAdded;
    totals.shotsThere += imported.shotsThere - imported.shotsRepeated;
    totals.shotsRepeated += imported.shotsRepeated;
    totals.reelsCreated += imported.created.size();
    std::unordered_set<std::string_view> changed;
    for (const RowChange& change : imported.changes)
      changed.insert(change.reel);
    totals.reelsChanged += changed.size();
    totals.warnings += imported.list.warnings.size();
    totals.rejected += imported.list.rejected.size();
  }
  return totals;
}

bool ImportReport::isIncomplete() const
{
  return !skipped.empty() || std::any_of(lists.begin(), lists.end(),
                                         [](const ImportedList& imported) { return !imported.list.rejected.empty(); });
}

ImportReport importLists(Session& session, std::vector<ListFile> files, bool dryRun, const Progress& progress,
                         const Replacing& replacing, const Treatment& asked)
{
  return guarded([&] {
    Treatment treatment = asked;
    treatment.others = checkedReels(asked.others, files);
    if (replacing.byName || replacing.list)
      requireKeepsLists();
    if (replacing.list && files.size() != 1)
      throw Error(ErrorKind::Invalid, "import: one list cannot be replaced by several files");
    if (treatment.type && !isListedType(*treatment.type))
      throw Error(ErrorKind::NotFound, fmt::format("{}: no such reel type (reeldb type list shows the catalogue)",
                                                   base::shortText(*treatment.type)));
    ImportReport report;
    report.dryRun = dryRun;
    if (std::any_of(files.begin(), files.end(), isListOfClips))
      importClips(session, files, progress, replacing, treatment, report);
    else
      for (ListFile& file : files) {
        ImportedList& imported = report.lists.emplace_back();
        imported.file = file.path;
        imported.list = std::move(file.list);
      }
    importReels(session, treatment, report);
    for (const ImportedList& imported : report.lists)
      report.changes = report.changes || imported.changesProject();
    report.stored = !dryRun && session.commit();
    return report;
  });
}

} // namespace reeldb::app
