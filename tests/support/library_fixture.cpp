// SPDX-License-Identifier: Apache-2.0
#include "support/library_fixture.h"

#include <algorithm>

#include "host/codes.h"
#include "host/edit.h"
#include "host/projdb.h"
#include "host/text.h"

namespace reeldb_tests {

namespace {

reelhost::ProjectInfo projectNamed(const std::string& name)
{
  reelhost::ProjectInfo info;
  info.name = name;
  std::fill(info.uuid.begin(), info.uuid.end(), static_cast<unsigned char>('0'));
  std::copy_n(name.begin(), std::min(name.size(), info.uuid.size()), info.uuid.begin());
  info.frameRate = 3;
  info.outputFrameRate = 3;
  return info;
}

} // namespace

LibraryTest::LibraryTest()
{
  script().reset();
  journal().record(false);
  reelhost::startUp();
  reelhost::useFacility(reelhost::Facility());
  manager().notifyHoldCount = 0;
  manager().lastProject.invalidate();
  enterProject("TEST");
}

LibraryTest::~LibraryTest()
{
  script().reset();
  journal().record(false);
  reelhost::runDeferredActions();
  reelhost::closeProject();
  manager().notifyHoldCount = 0;
  EXPECT_EQ(reelhost::openLogs(), 0) << "a log was left open";
  EXPECT_EQ(reelhost::openModifiers(), 0) << "a modification was left open";
}

void LibraryTest::enterProject(const std::string& name, const reelhost::KeyValues& options)
{
  reelhost::openProject(reelhost::makeMemoryStore(projectNamed(name), options), reelhost::Access::Write);
}

Cookie LibraryTest::addReel(const std::string& id, const std::string& type, const reelhost::KeyValues& fields)
{
  const Cookie cookie = addLog(codes::reelLog, id, type, fields);
  manager().buildReelList();
  return cookie;
}

Cookie LibraryTest::addShot(const std::string& reel, const std::string& name, bool imported)
{
  return addLog(codes::materialLog, reel, {}, {}, imported, name);
}

Cookie LibraryTest::addLog(int type, const std::string& id, const std::string& reelType,
                           const reelhost::KeyValues& fields, bool imported, const std::string& name)
{
  reelhost::StoredLog log;
  log.type = type;
  log.imported = imported;
  log.name = name;
  log.reelType = reelType;
  if (!id.empty())
    log.fields.emplace_back("reelid", id);
  log.fields.insert(log.fields.end(), fields.begin(), fields.end());
  return reelhost::addLog(log);
}

void LibraryTest::setDevices(std::vector<reelhost::DeviceSettings> devices)
{
  reelhost::facility().devices() = std::move(devices);
}

reelhost::DeviceSettings LibraryTest::device(int number, const std::string& name)
{
  reelhost::DeviceSettings settings;
  settings.number = number;
  settings.id = static_cast<unsigned>(number) + 100;
  settings.name = name;
  settings.portType = codes::port9Pin;
  settings.inputType = 3;
  return settings;
}

std::string LibraryTest::configText(const Cookie& log, const char* key)
{
  EditPtr edit;
  edit.i_open(log, codes::openAsUsual);
  const char* const text = edit ? edit->config().in(key) : nullptr;
  const std::string result = text ? text : "<absent>";
  edit.i_close();
  return result;
}

int LibraryTest::channels(const Cookie& log, int type)
{
  EditPtr edit;
  edit.i_open(log, codes::openAsUsual);
  const int count = edit ? edit->getNumChans(EditChanType(type)) : -1;
  edit.i_close();
  return count;
}

std::string LibraryTest::logName(const Cookie& log)
{
  return reelhost::materialOf(log).name;
}

std::vector<std::string> LibraryTest::linesOf(const std::function<void()>& action)
{
  journal().record(true);
  action();
  std::vector<std::string> lines = journal().lines();
  journal().record(false);
  return lines;
}

std::vector<std::string> LibraryTest::operationsOf(const std::function<void()>& action)
{
  journal().record(true);
  action();
  std::vector<std::string> operations = journal().operations();
  journal().record(false);
  return operations;
}

std::vector<std::string> LibraryTest::printedBy(const std::function<void()>& action)
{
  journal().record(true);
  action();
  std::vector<std::string> printed;
  for (const reelhost::Call& call : journal().calls())
    if (call.operation == "vorn_printf")
      printed.push_back(call.arguments);
  journal().record(false);
  return printed;
}

int countOf(const std::vector<std::string>& lines, const std::string& what)
{
  return static_cast<int>(std::count(lines.begin(), lines.end(), what));
}

::testing::AssertionResult inOrder(const std::vector<std::string>& lines, const std::vector<std::string>& wanted)
{
  auto at = lines.begin();
  for (const std::string& line : wanted) {
    at = std::find(at, lines.end(), line);
    if (at == lines.end()) {
      ::testing::AssertionResult failure = ::testing::AssertionFailure() << "not found in order: " << line << "\nin:";
      for (const std::string& have : lines)
        failure << "\n  " << have;
      return failure;
    }
    ++at;
  }
  return ::testing::AssertionSuccess();
}

} // namespace reeldb_tests
