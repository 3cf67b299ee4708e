// SPDX-License-Identifier: Apache-2.0
#include "app/import.h"

#include <algorithm>
#include <functional>
#include <optional>
#include <set>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "ReelDbClient.h"
#include "ReelDbManager.h"
#include "app/host_errors.h"
#include "app/host_text.h"
#include "app/kept_events.h"
#include "app/list_choice.h"
#include "app/list_versions.h"
#include "app/projects.h"
#include "app/reel_records.h"
#include "app/shot_logs.h"
#include "app/unused_shots.h"
#include "base/ascii.h"
#include "lists/timing.h"
#include "reelhost/host.h"

namespace reeldb::app {

namespace {

constexpr int noDevice = -1;

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

class Importer {
public:
  /// Reads the reels and the shots of the project.
  Importer(Session& session, std::size_t clips, const Progress& progress, const Replacing& replacing)
      : manager_(session.manager()), clips_(clips), progress_(progress), replacing_(replacing), rate_(projectRate())
  {
    std::vector<LightweightString<char>> ids;
    manager_.getAllReelIds(ids, true);
    for (const LightweightString<char>& id : ids)
      addReel(text(id));
    for (const Cookie& log : reelhost::allShots())
      shots_.emplace(shotKey(shotFrom(reelhost::materialOf(log))), reelhost::logNumber(log));
  }

  ImportedList import(ListFile file)
  {
    ImportedList result;
    result.file = file.path;
    const CreatedReels listener([&](const std::string& id) {
      addReel(id);
      result.created.push_back(id);
    });
    const reelhost::Digest digest = reelhost::digestOf(file.bytes);
    const KeptVersion before = keptVersionOf(file, digest, replacing_);
    if (before.list.number == 0)
      noteEarlier(file, result);
    const std::string name = fileNameOf(file);
    result.list = std::move(file.list);
    const auto places = sameShots(before.clips, result.list.clips);
    std::vector<std::int64_t> shots; // of the clips
    std::unordered_set<std::string> met, metShots;
    for (std::size_t i = 0; i < result.list.clips.size(); ++i) {
      const lists::Clip& clip = result.list.clips[i];
      const std::int64_t known = places[i] ? before.shots[*places[i]] : 0;
      const std::string reel = known == 0 ? clip.reel : reelOf(known);
      const bool missing = met.insert(base::fold(reel)).second && !reel.empty() && !noteReel(reel, result);
      std::string key = shotKey(clip);
      const bool repeated = !metShots.insert(key).second;
      const auto [shot, added] = known == 0 ? bringIn(clip, std::move(key)) : std::pair(known, false);
      shots.push_back(shot);
      ++(added ? result.shotsAdded : result.shotsThere);
      result.shotsRepeated += repeated ? 1 : 0;
      // An existing shot may have lost its reel's record. The library is not notified of it, so the reel is created
      // here.
      if (missing && !added)
        manager_.createNewReel(hostText(reel), noDevice);
      advance();
    }
    if (reelhost::keepsLists())
      keep(name, digest, std::move(file.bytes), before, shots, result);
    if (rate_)
      warnOfRate(result.list);
    result.clips = result.list.clips.size();
    result.list.clips.clear();
    result.list.specialClips.clear();
    return result;
  }

  /// The shots of the versions that gave their place to another.
  const std::set<std::int64_t>& replacedShots() const { return replacedShots_; }

private:
  void addReel(const std::string& id) { reels_.try_emplace(base::fold(id), id); }

  /// Adds an existing reel, and its spelling if it differs, to the result. Returns whether the reel exists.
  bool noteReel(const std::string& id, ImportedList& result)
  {
    const auto found = reels_.find(base::fold(id));
    if (found == reels_.end())
      return false;
    const std::string& spelling = found->second;
    if (spelling != id)
      result.list.spellings.push_back({spelling, id});
    result.matched.push_back(spelling);
    return true;
  }

  /// Creates the clip's shot unless a shot with that key exists. Returns the number of the shot, and whether it was
  /// created.
  std::pair<std::int64_t, bool> bringIn(const lists::Clip& clip, std::string key)
  {
    const auto [shot, isNew] = shots_.emplace(std::move(key), 0);
    if (isNew)
      shot->second = reelhost::logNumber(reelhost::importMaterial(materialFrom(clip)));
    return {shot->second, isNew};
  }

  /// The reel of a shot that existed before the import.
  const std::string& reelOf(std::int64_t shot)
  {
    if (reelOfShot_.empty())
      for (const Cookie& log : reelhost::allShots())
        reelOfShot_.emplace(reelhost::logNumber(log), reelhost::materialOf(log).reel);
    return reelOfShot_[shot];
  }

  /// Notes a kept list of which this one seems to be another version.
  static void noteEarlier(const ListFile& file, ImportedList& result)
  {
    for (const reelhost::KeptList& list : reelhost::keptLists())
      if (base::sameName(list.file, fileNameOf(file)) || (!list.title.empty() && list.title == file.list.title))
        result.earlier = list.number;
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
    list.format = formatWord(result.list.format);
    for (std::size_t i = 0; i < shots.size(); ++i)
      list.events.push_back(eventFrom(result.list.clips[i], shots[i]));
    for (const lists::Clip& clip : result.list.specialClips)
      list.events.push_back(eventFrom(clip, 0));
    std::stable_sort(list.events.begin(), list.events.end(),
                     [](const auto& one, const auto& other) { return one.line < other.line; });
    result.keptAs = list.number;
    if (list.number != 0 && before.list.events == list.events && before.list.digest == digest) {
      result.keeping = Keeping::Unchanged;
      return;
    }
    result.keeping = list.number == 0 ? Keeping::New : Keeping::NewVersion;
    if (result.keeping == Keeping::NewVersion) {
      result.difference = difference(before.clips, result.list.clips);
      replacedShots_.insert(before.shots.begin(), before.shots.end());
    }
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
  std::size_t clips_, done_ = 0;
  const Progress& progress_;
  const Replacing& replacing_;
  std::optional<lists::FrameRate> rate_; ///< of the project
  /// The spelling of each reel by its folded identifier. It saves lookups, each of which opens every reel log.
  std::unordered_map<std::string, std::string> reels_;
  std::unordered_map<std::string, std::int64_t> shots_;      ///< the numbers of the shots by their keys
  std::unordered_map<std::int64_t, std::string> reelOfShot_; ///< filled when it is needed
  std::set<std::int64_t> replacedShots_;                     ///< of versions that gave their place to another
};

} // namespace

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
  return shotsAdded > 0 || !created.empty() || keeping == Keeping::New || keeping == Keeping::NewVersion;
}

bool ImportReport::rejectedLines() const
{
  return std::any_of(lists.begin(), lists.end(),
                     [](const ImportedList& imported) { return !imported.list.rejected.empty(); });
}

ImportReport importLists(Session& session, std::vector<ListFile> files, bool dryRun, const Progress& progress,
                         const Replacing& replacing)
{
  return guarded([&] {
    if (replacing.byName || replacing.list)
      requireKeepsLists();
    if (replacing.list && files.size() != 1)
      throw Error(ErrorKind::Invalid, "import: one list cannot be replaced by several files");
    std::size_t clips = 0;
    for (const ListFile& file : files)
      clips += file.list.clips.size();
    Importer importer(session, clips, progress, replacing);
    ImportReport report;
    report.dryRun = dryRun;
    for (ListFile& file : files) {
      report.lists.push_back(importer.import(std::move(file)));
      const ImportedList& imported = report.lists.back();
      report.changes = report.changes || imported.changesProject();
      if (!imported.created.empty() && report.remarks.empty()) // all of them have the project's default type
        remarkOnUnlistedType(text(requireReel(session.manager(), imported.created.front()).typeName()), report.remarks);
    }
    if (!importer.replacedShots().empty()) {
      UnusedShots unused = deleteUnused(session, importer.replacedShots());
      report.shotsRemoved = std::move(unused.shots);
      report.reelsRemoved = std::move(unused.reels);
    }
    report.stored = !dryRun && session.commit();
    return report;
  });
}

} // namespace reeldb::app
