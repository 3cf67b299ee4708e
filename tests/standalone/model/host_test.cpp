// SPDX-License-Identifier: Apache-2.0
#include "standalone/model/host_test.h"

#include <algorithm>

#include "standalone/model/forwarding_store.h"

namespace reeldb_tests {

using namespace reelhost;

HostTest::HostTest()
{
  Script::the().reset();
  Journal::the().record(false);
  Journal::the().clear();
  useFacility(Facility());
  startUp();
}

HostTest::~HostTest()
{
  Script::the().reset();
  Journal::the().record(false);
  closeProject();
  runDeferredActions();
  EXPECT_EQ(openLogs(), 0) << "a log was left open";
  EXPECT_EQ(openModifiers(), 0) << "a modification was left open";
}

ProjectInfo HostTest::info(const std::string& name)
{
  ProjectInfo info;
  info.name = name;
  info.uuid.fill('0');
  std::copy_n(name.begin(), std::min(name.size(), info.uuid.size()), info.uuid.begin());
  info.frameRate = 3;
  info.outputFrameRate = 4;
  return info;
}

void HostTest::openMemory()
{
  kept_ = makeMemoryStore(info());
  reopen();
}

void HostTest::reopen(Access access)
{
  openProject(std::make_unique<ForwardingStore>(kept_), access);
}

Cookie HostTest::addLog(int type, const std::string& reelId, const std::string& name)
{
  StoredLog log;
  log.type = type;
  log.name = name;
  if (!reelId.empty())
    log.fields.emplace_back("reelid", reelId);
  return reelhost::addLog(log);
}

std::string HostTest::text(const Cookie& log)
{
  return log.asString(false).c_str();
}

std::vector<std::string> HostTest::texts(const CookieVec& logs)
{
  std::vector<std::string> all;
  std::transform(logs.begin(), logs.end(), std::back_inserter(all), text);
  return all;
}

std::string HostTest::reelIdOf(const Cookie& log)
{
  EditInfo info(log, codes::openAsUsual);
  const std::string id = info.getAttrib(codes::reelIdAttribute).c_str();
  info.i_close();
  return id;
}

std::string HostTest::fieldOf(const Cookie& log, const char* key)
{
  std::string field = "<not open>";
  withLog(log, [&](Edit& edit) {
    const char* const found = edit.config().in(key);
    field = found ? found : "<absent>";
  });
  return field;
}

bool HostTest::opens(const Cookie& log)
{
  EditPtr edit;
  edit.i_open(log, codes::openAsUsual);
  const bool opened = edit.get() != nullptr;
  edit.i_close();
  return opened;
}

void HostTest::withLog(const Cookie& log, const std::function<void(Edit&)>& work)
{
  EditPtr edit;
  edit.i_open(log, codes::openAsUsual);
  struct Closer {
    EditPtr& handle;
    ~Closer() { handle.i_close(); }
  } const closer{edit};
  ASSERT_NE(edit.get(), nullptr) << text(log) << " does not open";
  work(*edit.get());
}

void HostTest::rename(const Cookie& log, const char* reelId)
{
  withLog(log, [&](Edit& edit) { edit.set_reelid(0, reelId); });
}

CookieVec HostTest::reels()
{
  return EditManager::getProjdb()->search(codes::reelSearchMask, codes::reelSearchMaskOff);
}

CookieVec HostTest::shotsOf(const char* reelId)
{
  projdb::SearchCriteria criteria;
  criteria.first = codes::shotSearchFirst;
  criteria.second = codes::shotSearchSecond;
  criteria.attributes.add(codes::reelIdAttribute, reelId);
  return EditManager::getProjdb()->search(criteria);
}

std::string HostTest::typeNameOf(const Cookie& log)
{
  const ODBView view(new ODBViewRep(EditManager::getProjdb()->database()));
  view->displayRecordsAt(std::vector<Cookie>(1, log), 0);
  if (view->numRows() == 0)
    return "<no row>";
  const char* const cell = view->cellText(0, "Reel Type");
  return cell ? cell : "<null>";
}

std::string HostTest::errorOf(const std::function<void()>& work)
{
  static const char* const kinds[] = {"NotFound", "Refused", "ReadOnly", "Busy", "Unreadable", "Io", "Conflict"};
  try {
    work();
  } catch (const Error& error) {
    return std::string(kinds[static_cast<int>(error.kind())]) + ": " + error.what();
  }
  return "none";
}

std::vector<std::string> HostTest::linesOf(const std::function<void()>& work)
{
  Journal::the().record(true);
  work();
  std::vector<std::string> lines = Journal::the().lines();
  Journal::the().record(false);
  return lines;
}

} // namespace reeldb_tests
