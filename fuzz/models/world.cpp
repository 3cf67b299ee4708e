// SPDX-License-Identifier: Apache-2.0
#include "models/world.h"

#include <algorithm>
#include <cstdio>

#include "host/codes.h"
#include "models/reel_types.h"

namespace reeldb_fuzz {

using reelhost::DeviceSettings;

std::string foldedId(const std::string& id)
{
  std::string folded = id;
  for (char& c : folded)
    if (c >= 'A' && c <= 'Z')
      c = static_cast<char>(c - 'A' + 'a');
  return folded;
}

std::string trimmedId(const std::string& id)
{
  const std::size_t first = id.find_first_not_of(' ');
  return first == std::string::npos ? std::string() : id.substr(first, id.find_last_not_of(' ') - first + 1);
}

std::string byteWise(const std::string& text)
{
  std::string wide;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 0x80) {
      wide += c;
    } else {
      wide += static_cast<char>(0xC0 | byte >> 6);
      wide += static_cast<char>(0x80 | (byte & 0x3F));
    }
  }
  return wide;
}

namespace {

std::string numbered(const char* format, Number number)
{
  char text[16];
  std::snprintf(text, sizeof text, format, number);
  return text;
}

} // namespace

World::World(std::vector<DeviceSettings> d, std::string systemWideType)
    : devices(std::move(d)), systemWideType_(std::move(systemWideType))
{
}

// --- The host's part -----------------------------------------------------------------------------

void World::enter(const std::string& name, const std::optional<std::string>& defaultTypeOption)
{
  leave();
  open = true;
  project = name;
  logs.clear();
  bin_.clear();
  deleted_.clear();
  undeleted_ = false;
  stored_.clear();
  defaultType = defaultTypeOption;
  handleEntry();
}

void World::leave()
{
  if (!open)
    return;
  reels.clear();
  open = false;
  project.clear();
  system = committed_.system;
  for (DeviceSettings& device : devices)
    device.lastReel = committed_.lastReels[device.id];
}

bool World::exists(Number log) const
{
  return open && log >= 1 && log <= static_cast<Number>(logs.size()) && !logs[static_cast<std::size_t>(log) - 1].gone;
}

ModelLog* World::find(Number log)
{
  return exists(log) ? &logs[static_cast<std::size_t>(log) - 1] : nullptr;
}

Number World::addLog(const ModelLog& log)
{
  logs.push_back(log);
  return static_cast<Number>(logs.size());
}

Number World::import(const std::string& reel, const std::string& name)
{
  ModelLog log;
  log.type = codes::materialLog;
  log.imported = true;
  log.name = name;
  if (!reel.empty())
    log.fields["reelid"] = reel;
  const Number number = addLog(log);
  handleModification(number, codes::madeOrImported);
  return number;
}

int World::erase(const Numbers& which)
{
  int count = 0;
  for (const Number number : which)
    if (ModelLog* const log = find(number)) {
      log->gone = true;
      deleted_.insert(number);
      ++count;
    }
  return count;
}

bool World::isAsStored(std::size_t at) const
{
  ModelLog log = logs[at];
  log.gone = stored_[at].gone;
  return log == stored_[at];
}

void World::commit()
{
  committed_.system = system;
  for (const DeviceSettings& device : devices)
    committed_.lastReels[device.id] = device.lastReel;
  if (!open)
    return;
  undeleted_ = false;
  // A commit that also creates logs is more than a deletion, unless it deletes what it writes: that is stored first.
  const bool createsLogs = logs.size() > stored_.size();
  const bool deletesWhatItWrites = std::any_of(deleted_.begin(), deleted_.end(), [this](Number number) {
    const auto at = static_cast<std::size_t>(number) - 1;
    return at >= stored_.size() || !isAsStored(at);
  });
  if (!deleted_.empty() && (!createsLogs || deletesWhatItWrites))
    bin_.emplace_back(deleted_.begin(), deleted_.end());
  deleted_.clear();
  stored_ = logs;
}

std::optional<int> World::undelete()
{
  if (!deleted_.empty() || undeleted_)
    return {};
  if (bin_.empty())
    return 0;
  for (const Number number : bin_.back())
    logs[static_cast<std::size_t>(number) - 1].gone = false;
  const int count = static_cast<int>(bin_.back().size());
  bin_.pop_back();
  undeleted_ = true;
  return count;
}

int World::runDeferred()
{
  const int count = static_cast<int>(deferred.size());
  for (int i = 0; i < count; ++i) {
    const auto [id, device] = deferred.front();
    deferred.pop_front();
    create(id, device);
  }
  return count;
}

// --- Clients -------------------------------------------------------------------------------------

int World::newClient(const ModelClient& client)
{
  people[++lastClient_] = client;
  registerClient(lastClient_);
  return lastClient_;
}

void World::endClient(int client)
{
  deRegisterClient(client);
  people.erase(client);
}

void World::registerClient(int client)
{
  clients.push_back(client);
}

void World::deRegisterClient(int client)
{
  const auto found = std::find(clients.begin(), clients.end(), client);
  if (found != clients.end())
    clients.erase(found);
}

void World::hear(int client, const std::string& what)
{
  heard.push_back(std::to_string(client) + ":" + what);
}

std::string World::seenOf(Number reel)
{
  const ModelLog* const log = find(reel);
  return typeName(reel) + " " + std::to_string(log ? log->audio : 0) + " " +
         std::to_string(flag(reel, "reel_available_flag"));
}

void World::informChanged(const std::string& changed)
{
  buildList();
  if (hold != 0)
    return;
  for (std::size_t i = 0; i < clients.size(); ++i) {
    const int client = clients[i];
    hear(client, "list(" + changed + ")");
    ModelClient& person = people.at(client);
    if (person.habit == Habit::LeavesWhenListChanges) {
      deRegisterClient(client);
    } else if (person.habit == Habit::CreatesWhenListChanges && !person.done) {
      person.done = true;
      create(person.makes, -1);
    }
  }
}

void World::informRecord(const std::string& changed)
{
  if (changed.empty() || hold != 0)
    return;
  for (std::size_t i = 0; i < clients.size(); ++i) {
    const int client = clients[i];
    if (people.at(client).interest == changed) {
      hear(client, "our");
      if (people.at(client).habit == Habit::EndsWhenItsReelChanges) {
        endClient(client);
        continue;
      }
    }
    hear(client, "some(" + changed + ") sees " + seenOf(lookUp(changed)));
    if (ModelClient& person = people.at(client); person.habit == Habit::BringsOneWhenRecChanges && !person.done) {
      person.done = true;
      newClient({changed, Habit::Listens, {}});
    }
  }
}

// --- One record ----------------------------------------------------------------------------------

std::string World::text(Number log, const std::string& key) const
{
  if (!exists(log))
    return {};
  const auto& fields = logs[static_cast<std::size_t>(log) - 1].fields;
  const auto found = fields.find(key);
  return found == fields.end() ? std::string() : found->second;
}

std::string World::id(Number log) const
{
  return text(log, "reelid");
}

std::string World::typeName(Number log) const
{
  return databaseThere() && exists(log) ? logs[static_cast<std::size_t>(log) - 1].reelType : std::string();
}

bool World::flag(Number log, const std::string& key) const
{
  return leadingNumber(text(log, key)) != 0;
}

std::string World::textUnless(Number log, const std::string& key, const std::string& nothing) const
{
  const std::string stored = text(log, key);
  return stored == nothing ? std::string() : stored;
}

void World::store(Number log, const std::string& key, const std::string& value)
{
  if (ModelLog* const found = find(log))
    found->fields[key] = value;
}

void World::setId(Number log, const std::string& value)
{
  if (value != id(log))
    store(log, "reelid", value);
}

void World::setTypeName(Number log, const std::string& value)
{
  if (value == typeName(log))
    return;
  if (ModelLog* const found = find(log)) {
    found->reelType = value;
    found->fields["reel_type"] = value;
    updateChannels(log);
  }
  notify(log);
}

void World::setFlag(Number log, const std::string& key, bool value)
{
  if (value == flag(log, key))
    return;
  store(log, key, value ? "1" : "0");
  notify(log);
}

void World::setText(Number log, const std::string& key, const std::string& value, const std::string& nothing)
{
  if (value == (nothing.empty() ? text(log, key) : textUnless(log, key, nothing)))
    return;
  store(log, key, value);
  notify(log);
}

void World::setLastDevice(Number log, const std::string& value)
{
  if (value == text(log, "reel_last_device"))
    return;
  store(log, "reel_last_device", value);
  notify(log);
  updateChannels(log);
}

void World::updateChannels(Number number)
{
  ModelLog* const log = find(number);
  if (!log)
    return;
  const std::string type = typeName(number);
  int audio = 0, video = 0;
  if (!type.empty() && isKnownType(type)) {
    audio = channelsOf(type, "AudioChannels");
    video = channelsOf(type, "VideoChannels");
  } else {
    const DeviceSettings& device = deviceNamed(text(number, "reel_last_device"));
    audio = device.audioInputs;
    video = device.inputType == codes::noVideoInput ? 0 : 1;
  }
  log->audio = std::max(log->audio, audio);
  log->video = std::max(log->video, video);
}

// --- The catalogue -------------------------------------------------------------------------------

bool World::isKnownType(const std::string& name) const
{
  return std::any_of(types.begin(), types.end(), [&](const auto& type) { return type.first == name; });
}

void World::addType(const std::string& name, const std::string& params)
{
  for (auto& [known, value] : types)
    if (known == name) {
      value = params;
      return;
    }
  types.emplace_back(name, params);
}

int World::channelsOf(const std::string& type, const std::string& param)
{
  if (!isKnownType(type))
    addType(type, {});
  for (const auto& [known, params] : types)
    if (known == type)
      return valueInParams(params, param).value_or(0);
  return 0;
}

// --- The manager ---------------------------------------------------------------------------------

void World::handleEntry()
{
  if (project == "P0001000")
    return;
  inUse.clear();
  informChanged("");
  if (!defaultType && open)
    defaultType = systemWideType_;
  if (project != lastProject) {
    ++resets;
    lastProject = project;
  }
}

void World::buildList()
{
  if (!databaseThere())
    return;
  reels.clear();
  for (Number log = 1; log <= static_cast<Number>(logs.size()); ++log)
    if (isReel(log))
      reels.push_back(log);
}

Number World::lookUp(const std::string& wanted) const
{
  if (wanted.empty())
    return 0;
  for (const Number reel : reels)
    if (foldedId(id(reel)) == foldedId(wanted))
      return reel;
  return 0;
}

int World::validity(const std::string& wanted) const
{
  const Number reel = lookUp(wanted);
  return reel == 0 ? 1 : isKnownType(typeName(reel)) ? 0 : 4;
}

bool World::isLive(const std::string& wanted) const
{
  return typeName(lookUp(wanted)) == "Live";
}

Texts World::allIds(bool includeLive) const
{
  Texts ids;
  for (const Number reel : reels)
    if (const std::string own = id(reel); !own.empty() && (includeLive || !isLive(own)))
      ids.push_back(own);
  return ids;
}

Texts World::compatibleIds(int device) const
{
  const Texts& tapes = deviceOf(device).tapes;
  Texts ids;
  for (const Number reel : reels)
    if (const std::string type = typeName(reel);
        !isKnownType(type) || std::find(tapes.begin(), tapes.end(), type) != tapes.end())
      ids.push_back(id(reel));
  return ids;
}

Number World::create(const std::string& requested, int deviceNumber)
{
  if (offMain) {
    deferred.emplace_back(requested, deviceNumber);
    return 0;
  }
  const std::string trimmed = trimmedId(requested);
  if (lookUp(requested) != 0 || requested.find('*') != std::string::npos || trimmed.empty() || !open)
    return 0;

  ModelLog log;
  log.type = codes::reelLog;
  log.name = "Reel " + byteWise(trimmed);
  std::string stored = trimmed;
  if (const DeviceSettings& device = deviceOf(deviceNumber); deviceNumber >= 0) {
    log.audio = device.audioInputs;
    if (device.portType == codes::portNamingReel) {
      stored = device.name;
      if (device.name == trimmed)
        log.name = byteWise(trimmed);
    }
  }
  log.fields["reelid"] = stored;
  const Number reel = addLog(log);
  setFlag(reel, "reel_available_flag", true);
  setTypeName(reel, defaultType.value_or(""));
  informChanged(stored);
  return reel;
}

void World::handleModification(Number number, int modification)
{
  const ModelLog* const log = find(number);
  if (modification == codes::madeOrImported && log && log->type == codes::materialLog && log->imported)
    create(id(number), -1);
}

Numbers World::shotsOf(const std::string& wanted) const
{
  Numbers shots;
  for (Number log = 1; log <= static_cast<Number>(logs.size()); ++log)
    if (exists(log) && !isReel(log) && !wanted.empty() && foldedId(id(log)) == foldedId(wanted))
      shots.push_back(log);
  return shots;
}

void World::rename(const std::string& from, const std::string& to)
{
  const Number reel = lookUp(from);
  if (reel == 0)
    return;
  setId(reel, to);
  find(reel)->name = "Reel " + byteWise(to);
  informRecord(from);
  if (!databaseThere())
    return;
  for (const Number shot : shotsOf(from)) {
    store(shot, "reelid", to);
    printed.push_back("Shot: " + numbered("E%07d", shot) + "  Changing reel from " + from + " to " + to + "\n");
  }
  informChanged("");
}

void World::copy(const std::string& from, const std::string& to)
{
  ++hold;
  const Number source = lookUp(from), target = lookUp(to);
  if (target != 0) {
    setTypeName(target, typeName(source));
    setFlag(target, "reel_available_flag", flag(source, "reel_available_flag"));
    setFlag(target, "record_inhibit_flag", flag(source, "record_inhibit_flag"));
    setText(target, "reel_labelmapping", textUnless(source, "reel_labelmapping", "unknown"), "unknown");
    for (int i = 0; i < 6; ++i)
      setText(target, "reel_userfield" + std::to_string(i), text(source, "reel_userfield" + std::to_string(i)));
  }
  if (hold > 0)
    --hold;
  informRecord(to);
}

bool World::isReel(Number log) const
{
  return exists(log) && logs[static_cast<std::size_t>(log) - 1].type == codes::reelLog;
}

std::map<std::string, std::int64_t> World::shotCounts() const
{
  std::map<std::string, std::int64_t> counts;
  for (Number log = 1; log <= static_cast<Number>(logs.size()); ++log)
    if (exists(log) && !isReel(log) && !id(log).empty())
      ++counts[foldedId(id(log))];
  return counts;
}

Numbers World::referenced(const Numbers& shots) const
{
  Numbers found;
  for (const Number shot : shots)
    if (const Number reel = lookUp(id(shot)); reel != 0)
      found.push_back(reel);
  return found;
}

void World::addShots(Number reel, Numbers& out)
{
  if (!databaseThere())
    return;
  const std::string own = id(reel);
  for (const Number shot : shotsOf(own)) {
    out.push_back(shot);
    printed.push_back("Preparing to delete: " + prefix + numbered("%08d", shot) + " from Reel: " + own + "\n");
  }
}

Numbers World::doomed(const Numbers& selection)
{
  Numbers all;
  for (const Number log : selection) {
    if (!isReel(log))
      continue;
    if (inUse.count(id(log)) != 0) {
      printed.push_back("Couldn't delete reel: " + id(log) + " because it was marked as in use.\n");
      continue;
    }
    all.push_back(log);
    addShots(log, all);
  }
  return all;
}

void World::checkLive(int number)
{
  const DeviceSettings device = deviceOf(number);
  if (std::find(device.tapes.begin(), device.tapes.end(), "Live") == device.tapes.end())
    return;
  const std::string name = device.name + " live feed";
  if (lookUp(name) != 0)
    return;
  const Number reel = create(name, -1);
  setTypeName(reel, "Live");
  setLastDevice(reel, device.name);
  for (DeviceSettings& known : devices)
    if (known.id == device.id)
      known.lastReel = name;
}

std::string World::userFieldName(int n) const
{
  const auto stored = system.find("reel_userfield" + std::to_string(n));
  if (stored != system.end() && !stored->second.empty())
    return stored->second;
  return "User field " + std::to_string(n + 1LL);
}

const DeviceSettings& World::deviceOf(int number) const
{
  static const DeviceSettings none;
  const auto found = std::find_if(devices.begin(), devices.end(),
                                  [&](const DeviceSettings& d) { return number >= 0 && d.number == number; });
  return found == devices.end() ? none : *found;
}

const DeviceSettings& World::deviceNamed(const std::string& name) const
{
  const auto found =
      std::find_if(devices.begin(), devices.end(), [&](const DeviceSettings& d) { return d.name == name; });
  return deviceOf(found == devices.end() ? -1 : found->number);
}

} // namespace reeldb_fuzz
