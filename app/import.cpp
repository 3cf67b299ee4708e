// SPDX-License-Identifier: Apache-2.0
#include "app/import.h"

#include <algorithm>
#include <functional>
#include <optional>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "ReelDbClient.h"
#include "ReelDbManager.h"
#include "app/host_errors.h"
#include "app/host_text.h"
#include "app/projects.h"
#include "app/reel_records.h"
#include "app/shot_logs.h"
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

class Importer {
public:
  /// Reads the reels and the shots of the project.
  Importer(Session& session, std::size_t clips, const Progress& progress)
      : manager_(session.manager()), clips_(clips), progress_(progress), rate_(projectRate())
  {
    std::vector<LightweightString<char>> ids;
    manager_.getAllReelIds(ids, true);
    for (const LightweightString<char>& id : ids)
      addReel(text(id));
    for (const Shot& shot : allShots(session))
      shots_.insert(shotKey(shot));
  }

  ImportedList import(ListFile file)
  {
    ImportedList result;
    result.file = std::move(file.path);
    result.list = std::move(file.list);
    const CreatedReels listener([&](const std::string& id) {
      addReel(id);
      result.created.push_back(id);
    });
    std::unordered_set<std::string> met, metShots;
    for (const lists::Clip& clip : result.list.clips) {
      const bool missing = met.insert(base::fold(clip.reel)).second && !noteReel(clip.reel, result);
      std::string key = shotKey(clip);
      const bool repeated = !metShots.insert(key).second;
      const bool added = bringIn(clip, std::move(key));
      ++(added ? result.shotsAdded : result.shotsThere);
      result.shotsRepeated += repeated ? 1 : 0;
      // An existing shot may have lost its reel's record. The library is not notified of it, so the reel is created
      // here.
      if (missing && !added)
        manager_.createNewReel(hostText(clip.reel), noDevice);
      advance();
    }
    if (rate_)
      warnOfRate(result.list);
    result.clips = result.list.clips.size();
    result.list.clips.clear();
    return result;
  }

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

  /// Creates the clip's shot unless a shot with that key exists. Returns whether it was created.
  bool bringIn(const lists::Clip& clip, std::string key)
  {
    if (!shots_.insert(std::move(key)).second)
      return false;
    reelhost::importMaterial(materialFrom(clip));
    return true;
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
  std::optional<lists::FrameRate> rate_; ///< of the project
  /// The spelling of each reel by its folded identifier. It saves lookups, each of which opens every reel log.
  std::unordered_map<std::string, std::string> reels_;
  std::unordered_set<std::string> shots_; ///< the keys of the shots
};

} // namespace

bool ImportReport::rejectedLines() const
{
  return std::any_of(lists.begin(), lists.end(),
                     [](const ImportedList& imported) { return !imported.list.rejected.empty(); });
}

ImportReport importLists(Session& session, std::vector<ListFile> files, bool dryRun, const Progress& progress)
{
  return guarded([&] {
    std::size_t clips = 0;
    for (const ListFile& file : files)
      clips += file.list.clips.size();
    Importer importer(session, clips, progress);
    ImportReport report;
    report.dryRun = dryRun;
    for (ListFile& file : files) {
      report.lists.push_back(importer.import(std::move(file)));
      const ImportedList& imported = report.lists.back();
      report.changes = report.changes || imported.shotsAdded > 0 || !imported.created.empty();
      if (!imported.created.empty() && report.remarks.empty()) // all of them have the project's default type
        remarkOnUnlistedType(text(requireReel(session.manager(), imported.created.front()).typeName()), report.remarks);
    }
    report.stored = !dryRun && session.commit();
    return report;
  });
}

} // namespace reeldb::app
