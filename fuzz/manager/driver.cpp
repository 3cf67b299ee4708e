// SPDX-License-Identifier: Apache-2.0
#include "manager/driver.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <iterator>

#include "MainThread.h"
#include "ReelTypeManager.h"
#include "manager/vocabulary.h"
#include "reelhost/host.h"
#include "reelhost/journal.h"
#include "support/own_host.h"

namespace reeldb_fuzz {

namespace {

constexpr char systemWideType[] = "House";

} // namespace

const std::vector<Driver::Operation>& Driver::operations()
{
  static const std::vector<Operation> all = {
      {"create", &Driver::createReel},
      {"create off the main thread", &Driver::createReelOffThread},
      {"rename", &Driver::renameReel},
      {"copy", &Driver::copyReel},
      {"check live media", &Driver::checkLiveMedia},
      {"check live media off the main thread", &Driver::checkLiveMediaOffThread},
      {"set default type", &Driver::setDefaultType},
      {"mark in use", &Driver::markInUse},
      {"name user field", &Driver::nameUserField},
      {"modify log", &Driver::modifyLog},
      {"inform list changed", &Driver::informListChanged},
      {"inform record changed", &Driver::informRecordChanged},
      {"enter again", &Driver::enterAgain},
      {"set type name", &Driver::setTypeName},
      {"set flag", &Driver::setFlag},
      {"set label mapping", &Driver::setLabelMapping},
      {"set bin name", &Driver::setBinName},
      {"set user field", &Driver::setUserField},
      {"set last device", &Driver::setLastDevice},
      {"set id", &Driver::setId},
      {"update channels", &Driver::updateChannels},
      {"store int", &Driver::storeInt},
      {"store text", &Driver::storeText},
      {"store field", &Driver::storeField},
      {"read values", &Driver::readValues},
      {"look up", &Driver::lookUp},
      {"list", &Driver::list},
      {"list for device", &Driver::listForDevice},
      {"ask user field name", &Driver::askUserFieldName},
      {"sort out reels", &Driver::sortOutReels},
      {"ask referenced", &Driver::askReferenced},
      {"add shots", &Driver::addShots},
      {"ask doomed", &Driver::askDoomed},
      {"ask type", &Driver::askType},
      {"compare all", &Driver::compareAll},
      {"import", &Driver::import},
      {"add log", &Driver::addLog},
      {"erase logs", &Driver::eraseLogs},
      {"commit", &Driver::commit},
      {"undelete", &Driver::undelete},
      {"run deferred", &Driver::runDeferred},
      {"enter project", &Driver::enterProject},
      {"leave project", &Driver::leaveProject},
      {"lose database", &Driver::loseDatabase},
      {"change hold", &Driver::changeHold},
      {"add type", &Driver::addType},
      {"add client", &Driver::addClient},
      {"end client", &Driver::endClient},
      {"register client", &Driver::registerClient},
      {"deregister client", &Driver::deRegisterClient},
      {"follow", &Driver::follow},
  };
  return all;
}

// Resets everything in the process that an earlier run may have changed.
Driver::Driver(Bytes bytes)
    : bytes_(bytes), manager_(*ReelDbManager::theReelDbManager()), world_(allDevices(), systemWideType)
{
  glib_pid = 1;
  ownHost() = OwnHost();
  reelhost::useFacility(reelhost::Facility());
  reelhost::facility().devices() = allDevices();
  manager_.reelList.clear();
  manager_.reelsInUse.clear();
  manager_.lastProject.invalidate();
  manager_.notifyHoldCount = 0;
  ReelDbManager::systemWideDefaultReelType_ = systemWideType;
  theReelTypeManager()->rep()->discardAll();
  for (const auto& [name, params] : firstTypes()) {
    theReelTypeManager()->add(name.c_str(), params.c_str());
    world_.addType(name, params);
  }
}

Driver::~Driver()
{
  manager_.clients.clear(); // a client that is registered twice removes only one registration itself
  listeners_.clear();
  ownHost() = OwnHost();
  reelhost::closeProject();
  reelhost::runDeferredActions(); // without a project they do nothing
}

void Driver::run()
{
  trace_.push_back("begin(");
  open("ONE", true);
  compareStep();
  while (!bytes_.empty()) {
    const Operation& operation = operations()[bytes_.below(static_cast<unsigned>(operations().size()))];
    trace_.push_back(std::string(operation.name) + "(");
    (this->*operation.carryOut)();
    compareStep();
  }
  trace_.push_back("end(");
  compareAll();
}

std::string Driver::traced() const
{
  std::string text;
  for (const std::string& step : trace_)
    text += step + ")\n";
  return text;
}

/// After every operation.
void Driver::compareStep()
{
  same(heard_, world_.heard, "heard");
  same(ownHost().printed, world_.printed, "printed");
  heard_.clear();
  world_.heard.clear();
  ownHost().printed.clear();
  world_.printed.clear();
  same(numbers(manager_.reelList), world_.reels, "reel list");
  same(manager_.notifyHoldCount, world_.hold, "notification hold count");
  same(manager_.clients.count(), static_cast<unsigned>(world_.clients.size()), "clients registered");
  same(ownHost().deviceResets, world_.resets, "device resets");
  same(reelhost::deferredActions(), static_cast<int>(world_.deferred.size()), "deferred actions");
  same(reelhost::openLogs(), 0, "logs open");
  same(reelhost::openModifiers(), 0, "modifications open");
}

void Driver::open(const std::string& project, bool withDefaultType)
{
  // The placeholder project is known by its Cookie "P0001000": a kind, and the bytes that spell the rest.
  const std::string name = project[0] == 'P' ? project.substr(1) : project;
  reelhost::ProjectInfo info;
  std::copy(name.begin(), name.end(), info.uuid.begin());
  reelhost::KeyValues options;
  std::optional<std::string> type;
  if (withDefaultType) {
    type = "Tape 2ch";
    options.emplace_back("reeldb_defaultType", *type);
  }
  reelhost::openProject(reelhost::makeMemoryStore(info, options), reelhost::Access::Write);
  world_.enter(project, type);

  // A log that is neither a reel nor a shot shows the prefix of the project's log names.
  const std::string first = text(reelhost::addLog({}).asString(false));
  world_.prefix = first.substr(0, first.size() - 8);
  same(first, text(cookie(world_.addLog({})).asString(false)), "first log");
}

std::string Driver::anyText()
{
  return reeldb_fuzz::anyText(bytes_);
}

/// The number of an existing or deleted log, 0, or the number after the last.
Number Driver::anyLog()
{
  return static_cast<Number>(bytes_.below(static_cast<unsigned>(world_.logs.size()) + 2));
}

Numbers Driver::someLogs()
{
  Numbers logs(bytes_.below(8)); // from none up to enough for duplicates and different orders of the few logs of a run
  for (Number& log : logs)
    log = anyLog();
  return logs;
}

int Driver::anyClient()
{
  if (world_.people.empty())
    return 0;
  return std::next(world_.people.begin(), bytes_.below(static_cast<unsigned>(world_.people.size())))->first;
}

Cookie Driver::cookie(Number log) const
{
  if (log == 0)
    return {};
  char digits[16];
  std::snprintf(digits, sizeof digits, "%08d", log);
  return Cookie((world_.prefix + digits).c_str(), false);
}

Number Driver::number(const Cookie& log) const
{
  if (!log.valid())
    return 0;
  const std::string name = text(log.asString(false));
  const std::size_t digits = world_.prefix.size();
  return name.compare(0, digits, world_.prefix) == 0 ? std::atoi(name.c_str() + digits) : -1;
}

CookieVec Driver::cookies(const Numbers& logs) const
{
  CookieVec all;
  for (const Number log : logs)
    all.add(cookie(log));
  return all;
}

Numbers Driver::numbers(const CookieVec& logs) const
{
  Numbers all;
  for (const Cookie& log : logs)
    all.push_back(number(log));
  return all;
}

Texts Driver::texts(const std::vector<LightweightString<char>>& list)
{
  Texts all;
  for (const LightweightString<char>& each : list)
    all.push_back(text(each));
  return all;
}

Texts Driver::texts(const StringList& list)
{
  Texts all;
  for (unsigned i = 0; i < list.count(); ++i)
    all.push_back(text(list[i]));
  return all;
}

} // namespace reeldb_fuzz
