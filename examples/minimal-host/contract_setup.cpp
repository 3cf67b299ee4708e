// SPDX-License-Identifier: Apache-2.0
//
// How the host contract sets up the minimal host. Writing this, and linking it with the suite, is all there is to
// trying a host.
#include "host_fixture.h"
#include "minimal_host.h"

namespace host_contract {

namespace {

class MinimalHost : public HostSetUp {
public:
  MinimalHost() { minimal_host::startUp(); }
  ~MinimalHost() override {
    minimal_host::leaveProject();
    minimal_host::runDeferred();
  }

  void openEmptyProject(const std::string& name, int frameRate, int outputFrameRate) override {
    minimal_host::enterProject(name, frameRate, outputFrameRate);
  }
  void closeProject() override { minimal_host::leaveProject(); }
  Cookie addLog(int type, const std::string& reelId) override { return minimal_host::addLog(type, reelId); }
  std::wstring textOfResource(unsigned) override { return L"Reel"; }
  void runDeferredActions() override { minimal_host::runDeferred(); }
  std::optional<Cookie> importClip(const std::string& reelId) override { return minimal_host::importClip(reelId); }
  std::optional<int> openLogs() override { return minimal_host::openLogs(); }
  std::optional<std::wstring> nameOf(const Cookie& log) override { return minimal_host::nameOf(log); }

  std::string lacks(Ability ability) const override {
    switch (ability) {
    case Ability::Storage:
      return "it keeps its project in memory";
    case Ability::Devices:
      return "it has no devices";
    case Ability::LabelMaps:
      return "it has no label maps";
    }
    return {};
  }
};

} // namespace

std::vector<Host> hosts() {
  return {{"Minimal", [] { return std::make_unique<MinimalHost>(); }}};
}

} // namespace host_contract
