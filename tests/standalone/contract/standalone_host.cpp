// SPDX-License-Identifier: Apache-2.0
//
// The standalone host, with each of its stores, for the host contract.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <optional>

#include "host/text.h"
#include "host_fixture.h"
#include "reelhost/host.h"
#include "reelhost/journal.h"
#include "reelhost/material.h"
#include "reelhost/notify_msg.h"
#include "standalone/model/forwarding_store.h"
#include "support/temp_folder.h"

namespace host_contract {

namespace {

reelhost::ProjectInfo infoFor(const std::string& name, int frameRate, int outputFrameRate)
{
  reelhost::ProjectInfo info;
  info.name = name;
  info.uuid.fill('0');
  std::copy_n(name.begin(), std::min(name.size(), info.uuid.size()), info.uuid.begin());
  info.frameRate = frameRate;
  info.outputFrameRate = outputFrameRate;
  return info;
}

// The words of label map files, each in the place of its code.
constexpr const char* sourceWords[] = {"none",        "vitc", "vitc2", "9-pin ltc",   "9-pin vitc",
                                       "9-pin timer", "ltc",  "rp188", "time of day", "1394"};
constexpr const char* formatWords[] = {
    "30 fps", "25 fps", "24 fps", "35mm feet+frames", "16mm feet+frames", "key number", "ink number", "frame count",
    "text",   "50 fps", "60 fps"};

/// What both stores have in common.
class StandaloneHost : public HostSetUp {
public:
  StandaloneHost()
  {
    reelhost::Script::the().reset();
    reelhost::Journal::the().record(false);
    reelhost::useFacility(reelhost::Facility());
    reelhost::startUp();
  }

  ~StandaloneHost() override
  {
    reelhost::closeProject();
    reelhost::runDeferredActions();
  }

  void openEmptyProject(const std::string& name, int frameRate, int outputFrameRate) override
  {
    make(infoFor(name, frameRate, outputFrameRate));
    reelhost::openProject(store(), reelhost::Access::Write);
  }

  void closeProject() override { reelhost::closeProject(); }

  void storeAndReopen() override
  {
    reelhost::commit();
    reelhost::closeProject();
    reelhost::openProject(store(), reelhost::Access::Write);
  }

  Cookie addLog(int type, const std::string& reelId) override
  {
    reelhost::StoredLog log;
    log.type = type;
    if (!reelId.empty())
      log.fields.emplace_back("reelid", reelId);
    return reelhost::addLog(log);
  }

  void addDevice(const Device& device) override
  {
    reelhost::DeviceSettings settings;
    settings.number = device.number;
    settings.id = device.id;
    settings.name = device.name;
    settings.portType = device.portType;
    settings.inputType = device.inputType;
    settings.audioInputs = device.audioInputs;
    settings.tapes = device.tapes;
    settings.labelMap = device.labelMap;
    reelhost::facility().devices().push_back(settings);
  }

  void renameDevice(unsigned id, const std::string& name) override { find(id).name = name; }
  std::string lastReelOf(unsigned deviceId) override { return find(deviceId).lastReel; }

  const NotifyMsg& messageAbout(unsigned deviceId) override { return message_.emplace(deviceId); }

  void addLabelMap(const std::string& name, const std::vector<LabelMappingSet::Entry>& entries) override
  {
    const std::filesystem::path folder = folder_.path() / "facility";
    if (!std::filesystem::exists(folder))
      reelhost::NewFacility(folder).keep();
    reelhost::useFacility(reelhost::Facility::read(folder));
    std::ofstream file(reelhost::facility().labelMapDirectory() / (name + ".toml"));
    for (const LabelMappingSet::Entry& entry : entries)
      file << "[[entry]]\nlabel = \"label\"\nin_use = " << (entry.inUse ? "true" : "false") << "\nsource = \""
           << sourceWords[entry.source] << "\"\nformat = \"" << formatWords[entry.format] << "\"\n";
  }

  std::wstring textOfResource(unsigned id) override
  {
    return fromUTF8(reelhost::facility().resourceText(id).c_str()).c_str();
  }

  void runDeferredActions() override { reelhost::runDeferredActions(); }

  std::optional<Cookie> importClip(const std::string& reelId) override
  {
    reelhost::Material clip;
    clip.reel = reelId;
    return reelhost::importMaterial(clip);
  }

  std::optional<int> openLogs() override { return static_cast<int>(reelhost::openLogs() + reelhost::openModifiers()); }

  std::optional<std::wstring> nameOf(const Cookie& log) override
  {
    return fromUTF8(reelhost::materialOf(log).name.c_str()).c_str();
  }

protected:
  virtual void make(const reelhost::ProjectInfo& info) = 0; ///< a new project
  virtual std::unique_ptr<reelhost::Store> store() = 0;     ///< the project that was made last

  reeldb_tests::TempFolder folder_;

private:
  static reelhost::DeviceSettings& find(unsigned id)
  {
    auto& devices = reelhost::facility().devices();
    return *std::find_if(devices.begin(), devices.end(), [id](const auto& device) { return device.id == id; });
  }

  std::optional<NotifyMsg> message_;
};

class InMemory : public StandaloneHost {
  void make(const reelhost::ProjectInfo& info) override { kept_ = reelhost::makeMemoryStore(info); }
  std::unique_ptr<reelhost::Store> store() override { return std::make_unique<reeldb_tests::ForwardingStore>(kept_); }
  std::shared_ptr<reelhost::Store> kept_;
};

class InAFile : public StandaloneHost {
  void make(const reelhost::ProjectInfo& info) override
  {
    file_ = folder_.path() / (std::to_string(++projects_) + ".reels");
    reelhost::createSqliteProject(file_, info, {});
  }
  std::unique_ptr<reelhost::Store> store() override { return reelhost::makeSqliteStore(file_); }
  std::filesystem::path file_;
  int projects_ = 0;
};

} // namespace

std::vector<Host> hosts()
{
  return {{"InMemory", [] { return std::make_unique<InMemory>(); }},
          {"InAFile", [] { return std::make_unique<InAFile>(); }}};
}

} // namespace host_contract
