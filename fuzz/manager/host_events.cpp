// SPDX-License-Identifier: Apache-2.0
//
// Operations of the host and its user.
#include <algorithm>

#include "ReelTypeManager.h"
#include "host/codes.h"
#include "manager/driver.h"
#include "manager/vocabulary.h"
#include "models/reel_types.h"
#include "reelhost/host.h"
#include "support/own_host.h"

namespace reeldb_fuzz {

namespace {

/// The result of the action; empty if it is refused.
template <class Action>
std::optional<int> unlessRefused(const Action& action)
{
  try {
    return action();
  } catch (const reelhost::Error& error) {
    require(error.kind() == reelhost::ErrorKind::Refused, error.what());
    return {};
  }
}

} // namespace

void Driver::import()
{
  if (!world_.open)
    return;
  reelhost::Material material;
  material.reel = anyText();
  material.name = anyText();
  with(material.reel, material.name);
  const Number made = number(reelhost::importMaterial(material));
  same(made, world_.import(material.reel, material.name), "log made");
}

/// Another module makes a log. The manager is not notified.
void Driver::addLog()
{
  if (!world_.open)
    return;
  constexpr int types[] = {codes::reelLog, codes::materialLog, 0, 3};
  ModelLog log;
  log.type = types[bytes_.below(4)];
  log.imported = bytes_.flag();
  const bool hasId = bytes_.flag();
  if (hasId)
    log.fields["reelid"] = anyText();
  log.reelType = anyText();
  with(log.type, log.imported, hasId ? log.fields["reelid"] : "none", log.reelType);
  reelhost::StoredLog stored;
  stored.type = log.type;
  stored.imported = log.imported;
  stored.reelType = log.reelType;
  stored.fields.assign(log.fields.begin(), log.fields.end());
  same(number(reelhost::addLog(stored)), world_.addLog(log), "log made");
}

void Driver::eraseLogs()
{
  if (!world_.open)
    return;
  const Numbers logs = someLogs();
  with(logs);
  same(reelhost::deleteLogs(cookies(logs)), world_.erase(logs), "logs deleted");
}

void Driver::commit()
{
  reelhost::commit();
  world_.commit();
  same(reelhost::hasChanges(), false, "whether anything is left to commit");
  if (world_.open)
    compareStored();
}

/// After a commit, the store contains exactly the current logs.
void Driver::compareStored()
{
  std::map<Number, reelhost::StoredLog> stored;
  const auto take = [&](reelhost::StoredLog&& log) {
    const auto at = static_cast<Number>(log.number);
    stored[at] = std::move(log);
  };
  reelhost::projectStore().readReels(take);
  reelhost::projectStore().readOthers(take);
  for (Number log = 1; log <= static_cast<Number>(world_.logs.size()); ++log) {
    const ModelLog* const wanted = world_.find(log);
    same(stored.count(log) != 0, wanted != nullptr, "existence of stored log", log);
    if (!wanted)
      continue;
    const reelhost::StoredLog& got = stored[log];
    same(got.type, wanted->type, "log type of stored log", log);
    same(got.imported, wanted->imported, "imported of stored log", log);
    same(got.name, wanted->name, "name of stored log", log);
    same(got.reelType, wanted->reelType, "type of stored log", log);
    same(got.videoChannels, wanted->video, "video channels of stored log", log);
    same(got.audioChannels, wanted->audio, "audio channels of stored log", log);
    Texts fields, wantedFields;
    for (const auto& [key, value] : got.fields)
      fields.push_back(key + "=" + value);
    for (const auto& [key, value] : wanted->fields)
      wantedFields.push_back(key + "=" + value);
    std::sort(fields.begin(), fields.end());
    std::sort(wantedFields.begin(), wantedFields.end());
    same(fields, wantedFields, "fields of stored log", log);
  }
}

void Driver::undelete()
{
  if (!world_.open)
    return;
  const std::optional<int> came = unlessRefused([] { return reelhost::undelete(); });
  same(came.value_or(-1), world_.undelete().value_or(-1), "logs that came back");
}

void Driver::runDeferred()
{
  const int count = reelhost::runDeferredActions();
  same(count, world_.runDeferred(), "actions run");
}

void Driver::enterProject()
{
  constexpr const char* projects[] = {"ONE", "TWO", "P0001000"};
  const std::string project = projects[bytes_.below(3)];
  const bool withDefaultType = bytes_.flag();
  with(project, withDefaultType);
  open(project, withDefaultType);
}

void Driver::leaveProject()
{
  reelhost::closeProject();
  world_.leave();
}

void Driver::loseDatabase()
{
  ownHost().databaseIsGone = world_.databaseGone = bytes_.flag();
  with(world_.databaseGone);
}

void Driver::changeHold()
{
  const int change = anyHold(bytes_);
  with(change);
  manager_.notifyHoldCount += change;
  world_.hold += change;
}

void Driver::addType()
{
  const std::string name = anyText(), params = anyParams(bytes_);
  with(name, params);
  theReelTypeManager()->add(name.c_str(), params.c_str());
  world_.addType(chopped(name), chopped(params));
}

void Driver::addClient()
{
  ModelClient client;
  client.interest = anyText();
  client.habit = Habit(bytes_.below(5));
  if (client.habit == Habit::CreatesWhenListChanges)
    client.makes = anyText();
  with(client.interest, static_cast<int>(client.habit), client.makes);
  same(newListener(client), world_.newClient(client), "number of the client");
}

/// A client must not be registered any more when it ends, and it removes only one registration itself.
void Driver::endClient()
{
  const int client = anyClient();
  with(client);
  if (client == 0)
    return;
  while (std::count(world_.clients.begin(), world_.clients.end(), client) > 1) {
    manager_.deRegisterClient(listeners_.at(client).get());
    world_.deRegisterClient(client);
  }
  listeners_.erase(client);
  world_.endClient(client);
}

/// Only a client that merely listens may be registered twice, because others may end or unregister during a
/// notification.
void Driver::registerClient()
{
  const int client = anyClient();
  with(client);
  if (client == 0)
    return;
  const bool registered = std::count(world_.clients.begin(), world_.clients.end(), client) != 0;
  if (registered && world_.people.at(client).habit != Habit::Listens)
    return;
  manager_.registerClient(listeners_.at(client).get());
  world_.registerClient(client);
}

void Driver::deRegisterClient()
{
  const int client = anyClient();
  with(client);
  if (client == 0)
    return;
  manager_.deRegisterClient(listeners_.at(client).get());
  world_.deRegisterClient(client);
}

void Driver::follow()
{
  const int client = anyClient();
  const std::string id = anyText();
  with(client, id);
  if (client == 0)
    return;
  listeners_.at(client)->setReelIdOfInterest(id.c_str());
  world_.people.at(client).interest = id;
}

} // namespace reeldb_fuzz
