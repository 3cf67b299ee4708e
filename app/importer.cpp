// SPDX-License-Identifier: Apache-2.0
#include "app/importer.h"

#include <functional>
#include <utility>
#include <vector>

#include "ReelDbClient.h"
#include "app/host_text.h"
#include "app/shot_key.h"
#include "reelhost/host.h"

namespace reeldb::cli {

namespace {

constexpr int noDevice = -1;

/// Hears which reels the library makes.
class CreatedReels : public ReelDbClient {
public:
  using Hear = std::function<void(std::string id)>;
  explicit CreatedReels(Hear hear) : hear_(std::move(hear)) {}
  void reelDbChanged(LightweightString<char> id) override
  {
    if (!id.empty())
      hear_(text(id));
  }

private:
  Hear hear_;
};

} // namespace

Importer::Importer(ReelDbManager& manager) : manager_(manager)
{
  std::vector<LightweightString<char>> ids;
  manager_.getAllReelIds(ids, true);
  for (const LightweightString<char>& id : ids)
    addReel(text(id));
  for (const Cookie& log : reelhost::allShots())
    shots_.insert(shotKey(reelhost::materialOf(log)));
}

Imported Importer::import(std::string file, lists::List list, Progress& progress)
{
  Imported result;
  result.file = std::move(file);
  result.list = std::move(list);
  const CreatedReels listener([&](const std::string& id) {
    addReel(id);
    result.created.push_back(id);
  });
  std::unordered_set<std::string> met, metShots;
  for (const lists::Clip& clip : result.list.clips) {
    const bool missing = met.insert(folded(clip.reel)).second && !noteReel(clip.reel, result);
    std::string key = shotKey(clip);
    const bool repeated = !metShots.insert(key).second;
    const bool added = bringIn(clip, std::move(key));
    ++(added ? result.shotsAdded : result.shotsThere);
    result.shotsRepeated += repeated ? 1 : 0;
    // A shot that is there already may have outlived its reel's record, and of that shot the library hears nothing.
    if (missing && !added)
      manager_.createNewReel(hostText(clip.reel), noDevice);
    progress.advance();
  }
  return result;
}

void Importer::addReel(const std::string& id)
{
  reels_.try_emplace(folded(id), id);
}

bool Importer::noteReel(const std::string& id, Imported& result)
{
  const auto found = reels_.find(folded(id));
  if (found == reels_.end())
    return false;
  const std::string& spelling = found->second;
  if (spelling != id)
    result.list.spellings.push_back({spelling, id});
  result.matched.push_back(spelling);
  return true;
}

bool Importer::bringIn(const lists::Clip& clip, std::string key)
{
  if (!shots_.insert(std::move(key)).second)
    return false;
  reelhost::importMaterial(material(clip));
  return true;
}

} // namespace reeldb::cli
