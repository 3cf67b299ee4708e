// SPDX-License-Identifier: Apache-2.0
#include "subjects.h"

#include <fmt/core.h>
#include <strings.h>

#include <algorithm>
#include <filesystem>

#include "ReelTypeManager.h"
#include "host/codes.h"
#include "host/device.h"
#include "host/edit.h"
#include "host/projdb.h"
#include "reelhost/host.h"

namespace reeldb_bench {

namespace {

using reelhost::Changes;
using reelhost::ProjectInfo;
using reelhost::StoredLog;

ProjectInfo benchProject()
{
  ProjectInfo info;
  info.name = "bench";
  std::fill(info.uuid.begin(), info.uuid.end(), static_cast<unsigned char>('B'));
  info.frameRate = info.outputFrameRate = 3;
  return info;
}

const reelhost::KeyValues options = {{"reeldb_defaultType", ""}};

void nameUuid(StoredLog& log)
{
  const std::string text = fmt::format("BENCHBEN{:08d}", log.number);
  std::copy_n(text.begin(), log.uuid.size(), log.uuid.begin());
}

/// Reels first, then their shots in turn.
Changes contents(int reels, int shotsPerReel)
{
  Changes changes;
  changes.logs.reserve(static_cast<std::size_t>(reels) * static_cast<std::size_t>(shotsPerReel + 1));
  for (int i = 0; i < reels; ++i) {
    StoredLog log;
    log.number = i + 1;
    nameUuid(log);
    log.type = 9;
    log.entireMedium = true;
    log.name = "Reel " + reelName(i);
    log.reelType = "Bench tape";
    log.fields = {{"reelid", reelName(i)}, {"reel_available_flag", "1"}};
    changes.logs.push_back(std::move(log));
  }
  for (int i = 0; i < reels * shotsPerReel; ++i) {
    StoredLog log;
    log.number = reels + i + 1;
    nameUuid(log);
    log.type = 1;
    log.imported = true;
    log.name = fmt::format("shot {}", i);
    log.videoChannels = 1;
    log.fields = {
        {"reelid", reelName(i % reels)}, {"source_in", "01:00:00:00"}, {"source_out", "01:00:05:00"}, {"tracks", "V"}};
    changes.logs.push_back(std::move(log));
  }
  return changes;
}

void store(reelhost::Store& store, int reels, int shotsPerReel)
{
  store.begin(reelhost::Access::Write, std::chrono::seconds(5));
  store.commit(contents(reels, shotsPerReel));
}

class Closer {
public:
  explicit Closer(EditPtr& handle) : handle_(handle) {}
  ~Closer() { handle_.i_close(); }
  Closer(const Closer&) = delete;
  Closer& operator=(const Closer&) = delete;

private:
  EditPtr& handle_;
};

LightweightString<char> attribute(const Cookie& log)
{
  EditInfo info(log, codes::openAsUsual);
  const Closer closer(info);
  return info.getAttrib(codes::reelIdAttribute);
}

} // namespace

std::string reelName(int n)
{
  return fmt::format("A{:06d}_C", n);
}

void openProjectInMemory(int reels, int shotsPerReel)
{
  ReelDbManager::theReelDbManager();
  auto project = reelhost::makeMemoryStore(benchProject(), options);
  store(*project, reels, shotsPerReel);
  reelhost::openProject(std::move(project), reelhost::Access::Write);
}

void writeProject(const std::string& file, int reels, int shotsPerReel)
{
  std::filesystem::remove(file);
  reelhost::createSqliteProject(file, benchProject(), options);
  store(*reelhost::makeSqliteStore(file), reels, shotsPerReel);
}

bool bareScan(const CookieVec& reels, const char* id)
{
  const CookieVec list = reels; // NOLINT(performance-unnecessary-copy-initialization): the library copies it, too
  for (const Cookie& reel : list) {
    const LightweightString<char> have = attribute(reel);
    if (!have.empty() && strcasecmp(have.c_str(), id) == 0)
      return true;
  }
  return false;
}

void bareIdentifiers(const CookieVec& reels, std::vector<LightweightString<char>>& out)
{
  for (const Cookie& reel : reels)
    out.push_back(attribute(reel));
}

void bareCompatible(const CookieVec& reels, int device, std::vector<LightweightString<char>>& out)
{
  const ExtDeviceConfig config = theConfigurationManager().getConfig(device);
  for (const Cookie& reel : reels) {
    LightweightString<char> type;
    {
      const Zr::Ptr<ODBViewRep> rep(new ODBViewRep(EditManager::getProjdb()->database()));
      const ODBView view(rep.get());
      view->displayRecordsAt(std::vector<Cookie>(1, reel), 0);
      if (view->numRows() > 0)
        type = view->cellText(0, "Reel Type");
    }
    if (!config.getTapeList().contains(type) && theReelTypeManager()->rep()->find(type))
      continue;
    EditPtr log;
    const Closer closer(log);
    log.i_open(reel, codes::openAsUsual);
    strp_field field;
    log->config().in("reelid", field);
    out.push_back(field.text());
  }
}

void bareReferenced(const CookieVec& reels, const CookieVec& shots, CookieVec& out)
{
  for (const Cookie& shot : shots) {
    const LightweightString<char> id = attribute(shot);
    for (const Cookie& reel : reels)
      if (strcasecmp(attribute(reel).c_str(), id.c_str()) == 0) {
        out.add(reel);
        break;
      }
  }
}

} // namespace reeldb_bench
