// SPDX-License-Identifier: Apache-2.0
//
// All host operations that the library needs and that reeldb::host-values does not have. Read it from top to bottom, or
// copy it and replace the project below by your application. docs/embedding.md states the promises of each operation.
#include "minimal_host.h"

#include <strings.h>

#include <algorithm>
#include <atomic>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

#include "MainThread.h"
#include "host/action.h"
#include "host/codes.h"
#include "host/device.h"
#include "host/events.h"
#include "host/projdb.h"
#include "host/project.h"
#include "host/text.h"

// Weak, so that this host can be linked with -z defs, and loaded where the library is not.
extern int glib_pid __attribute__((weak)); // NOLINT(readability-redundant-declaration): adds the attribute

using Text = LightweightString<char>;
using WideText = LightweightString<wchar_t>;

// --- 1. The state: one project, its logs, and what belongs to no project -------------------------
//
// A log is the Edit that the library sees, the row it has in the database, and what both show. They are one object, so
// a change is visible everywhere at once: in other openings of the log, in views, in searches.

struct dbrecord::Impl {
  const Edit::Impl& log;
};

struct Edit::Impl {
  Zr::UUID uuid;
  Cookie cookie{uuid, 0, 'E'};
  eLogType type{}; // a reel, material, or neither
  bool imported = false, entireMedium = false, original = true;
  WideText name;
  Text reelType;
  int videoChannels = 0, audioChannels = 0;
  configb config;
  EditModificationType change{}; // the description of the change, once it is set
  Edit edit{this};
  dbrecord::Impl rowOfThis{*this};
  dbrecord row{&rowOfThis};

  explicit Impl(const Zr::UUID& id) : uuid(id) {}
  const char* reelId() const { return config.in("reelid"); } // the same value, however it is read or set
};

class oledb {};

namespace {

using Log = Edit::Impl;

struct Project {
  Cookie cookie;
  int frameRate, outputFrameRate;
  configb options;
  std::vector<std::unique_ptr<Log>> logs; // in the order in which they were made

  Log* add() {
    static unsigned last = 0; // never used twice, so that the Cookie of a deleted log never belongs to another
    const unsigned number = ++last;
    Zr::UUID uuid;
    std::memcpy(uuid.bytes, &number, sizeof number);
    return logs.emplace_back(std::make_unique<Log>(uuid)).get();
  }
};

struct State {
  std::unique_ptr<Project> project;
  std::unique_ptr<configb> noOptions;
  std::map<std::string, std::string> systemSettings;
  std::vector<ProjectListener*> listeners;
  int openLogs = 0; // openings that are not closed, and modifiers that have not ended
  std::mutex mutex; // for the deferred actions
  std::vector<Zr::Ptr<iExecutableAction>> deferred;
};

/// Made on first use and never destroyed, because listeners register before main() and unregister after it.
State& state() {
  static State& instance = *new State;
  return instance;
}

// Objects without content: the host is called through them.
projdb database{};
oledb tables;
SystemCfg systemCfg;
ExtDeviceConfigurationManager configurations;

Log* findLog(const Cookie& cookie) {
  if (state().project)
    for (const auto& log : state().project->logs)
      if (log->cookie.compare(cookie) == 0)
        return log.get();
  return nullptr;
}

template <class Wanted> CookieVec logsWhere(const Wanted& wanted) {
  CookieVec found;
  for (const auto& log : state().project->logs)
    if (wanted(*log))
      found.add(log->cookie);
  return found;
}

// --- 2. Events: the host notifies, the library listens -------------------------------------------
/// Notifies every existing listener, except those that others end meanwhile.
template <class Event> void notify(const Event& event) {
  const std::vector<ProjectListener*> told = state().listeners;
  for (ProjectListener* listener : told)
    if (const auto& there = state().listeners; std::find(there.begin(), there.end(), listener) != there.end())
      event(*listener);
}

void tellOfModification(const Log& log, EditModificationType type) {
  notify([&](ProjectListener& listener) { listener.handleLogModification(log.cookie, EditModification(type)); });
}

} // namespace

ProjectListener::ProjectListener() { state().listeners.push_back(this); }
ProjectListener::~ProjectListener() {
  auto& listeners = state().listeners;
  listeners.erase(std::remove(listeners.begin(), listeners.end(), this), listeners.end());
}
void ProjectListener::handleLogsModification(const CookieVec&) {}
void ProjectListener::handleLogModification(const Cookie&, const EditModification&) {}
void ProjectListener::handleLogsDeletion(const CookieVec&, Text) {}
void ProjectListener::handleLogDirtied(const Cookie&) {}
void ProjectListener::handleLogStorage(const Cookie&, bool) {}
void ProjectListener::handleProjectEntry() {}
void ProjectListener::handleProjectExit() {}

void minimal_host::enterProject(const std::string& name, int frameRate, int outputFrameRate) {
  leaveProject();
  Zr::UUID uuid;
  std::copy_n(name.begin(), std::min(name.size(), sizeof uuid.bytes), uuid.bytes);
  state().project.reset(new Project{Cookie(uuid, 0, 'P'), frameRate, outputFrameRate, {}, {}});
  notify([](ProjectListener& listener) { listener.handleProjectEntry(); }); // the listeners can already use the project
}
void minimal_host::leaveProject() {
  if (state().project)
    notify([](ProjectListener& listener) { listener.handleProjectExit(); });
  state().project.reset();
}
Cookie minimal_host::addLog(int type, const std::string& reelId) {
  Log* const log = state().project->add();
  log->type = eLogType(type);
  if (!reelId.empty())
    log->config.set("reelid", reelId.c_str(), nullptr);
  return log->cookie;
}
int minimal_host::openLogs() { return state().openLogs; }
std::wstring minimal_host::nameOf(const Cookie& log) { return findLog(log)->name.c_str(); }
Cookie minimal_host::importClip(const std::string& reelId) {
  Log* const clip = findLog(addLog(codes::materialLog, reelId));
  clip->imported = true;
  tellOfModification(*clip, codes::madeOrImported);
  return clip->cookie;
}

// --- 3. Threads: any thread can defer actions to the main thread ---------------------------------
int co_pid() {
  static std::atomic<int> last{
      0}; // small numbers, because 16 bits of the system's own do not differ between all threads
  thread_local const int own = ++last;
  return own;
}
void minimal_host::startUp() {
  if (&glib_pid)
    glib_pid = co_pid() & codes::threadMask; // masked, as the library compares it
}

void defer(const Zr::Ptr<iExecutableAction>& action) {
  const std::lock_guard lock(state().mutex);
  state().deferred.push_back(action);
}
void minimal_host::runDeferred() {
  std::unique_lock lock(state().mutex);
  const auto actions = std::exchange(state().deferred, {});
  lock.unlock();
  for (const auto& action : actions) // without the lock, because an action may defer another
    action->execute();
}

// --- 4. Settings ---------------------------------------------------------------------------------
// The library calls these two while it is loaded, before any constructor of the program.
const char* config_string(const char*, const char* defaultValue) { return defaultValue; }
WideText getDeviceDataDirectory(iSettings::eType) { return L"/etc/minimal-host/"; } // where reeltype.dat may be

SystemCfg& SystemCfg::theConfig() { return systemCfg; }
Text SystemCfg::get(const Text& key) const { return state().systemSettings[key.c_str()].c_str(); }
void SystemCfg::set(const Text& key, const Text& value) { state().systemSettings[key.c_str()] = value.c_str(); }

/// If the key is there, the first form of in() returns non-null, and the others return 0. Without the key they return
/// null and 1.
struct configb::Impl {
  std::map<std::string, std::string> texts;
};
configb::configb() : impl_(new Impl) {}
configb::~configb() { delete impl_; }
const char* configb::in(const char* key) const {
  const auto found = impl_->texts.find(key);
  return found == impl_->texts.end() ? nullptr : found->second.c_str();
}
int configb::in(const char* key, char* buffer) const {
  if (in(key))
    std::snprintf(buffer, codes::textBufferSize, "%s", in(key));
  return in(key) ? 0 : 1;
}
int configb::in(const char* key, int& value) const {
  if (in(key))
    value = static_cast<int>(std::strtol(in(key), nullptr, 10));
  return in(key) ? 0 : 1;
}
int configb::in(const char* key, strp_field& value) const {
  if (in(key))
    value.set(in(key));
  return in(key) ? 0 : 1;
}
void configb::set(const char* key, const char* value, const char*) {
  impl_->texts[key] = std::string(value ? value : ""); // a copy, because the value may be a text of this block
}
void configb::set(const char* key, const strp_field& value) { set(key, value.text(), nullptr); }

// --- 5. Logs -------------------------------------------------------------------------------------
configb& Edit::config() { return impl->config; }
const Zr::UUID& Edit::uuid() const { return impl->uuid; }
std::uint16_t Edit::cookieTag() const { return 0; }
char Edit::cookieKind() const { return 'E'; }
eLogType Edit::getLogType() const { return impl->type; }
bool Edit::isImported() const { return impl->imported; }
void Edit::get_reelid(strp_field& out, int, int) const { impl->config.in("reelid", out); }
void Edit::set_reelid(int, const char* id) { impl->config.set("reelid", id, nullptr); }
void Edit::setName(const WideText& name, bool) { impl->name = name; }
void Edit::reelType(const Text& type) { impl->reelType = type; }
void Edit::set_entire_medium(int entire) { impl->entireMedium = entire != 0; }
void Edit::make_original(bool original, bool) { impl->original = original; }
void Edit::redetermineLogType() {
  const bool reel = impl->entireMedium && !impl->original;
  impl->type = reel ? codes::reelLog : impl->imported ? codes::materialLog : eLogType{};
}
void Edit::setChangeDescription(EditModificationType type, bool) { impl->change = type; }
void Edit::setDirty(bool) {} // a host that stores its logs notes here that this one has to be stored
int Edit::getNumChans(EditChanType type) const {
  return type == codes::videoChannel ? impl->videoChannels : impl->audioChannels;
}
void Edit::addChan(EditChanType type, Zr::Ptr<Cel>, bool, EditChanSubType, bool, double) {
  ++(type == codes::videoChannel ? impl->videoChannels : impl->audioChannels);
}
eLogType Edit::getLogTypeFromString(const Text& text) {
  if (std::strcmp(text.c_str(), "Reel") == 0)
    return codes::reelLog;
  return std::strcmp(text.c_str(), "Material") == 0 ? codes::materialLog : eLogType{};
}

// A handle never closes by itself. A host that stores its logs counts the openings of each log, and releases the log
// when the last is closed. Here one count of all is enough for the contract to check that each is closed.
EditPtr::EditPtr() : edit_(nullptr) {}
EditPtr::~EditPtr() {}
void EditPtr::i_open(const Cookie& cookie, eEditOpenBehaviour) {
  Log* const log = findLog(cookie);
  *this = log ? &log->edit : nullptr;
}
void EditPtr::i_close() { state().openLogs -= std::exchange(edit_, nullptr) ? 1 : 0; }
EditPtr& EditPtr::operator=(Edit* edit) {
  state().openLogs += edit ? 1 : 0;
  edit_ = edit;
  return *this;
}
Edit* EditPtr::get() const { return edit_; }
Edit* EditPtr::operator->() const { return edit_; }
EditPtr::operator bool() const { return edit_ != nullptr; }
EditInfo::EditInfo(const Cookie& cookie, eEditOpenBehaviour behaviour) { i_open(cookie, behaviour); }
Text EditInfo::getAttrib(LogAttributes::eLogAttribute attribute) const {
  if (!edit_) // also called if the log did not open
    return Text();
  return attribute == codes::reelIdAttribute ? edit_->impl->reelId() : nullptr;
}

// A new log is in the project from its start, so the end of its modifier only has to report it.
EditModifier::EditModifier(Edit* edit) : edit_(edit) { state().openLogs += edit ? 1 : 0; }
EditModifier::~EditModifier() {
  state().openLogs -= edit_ ? 1 : 0;
  try {
    if (edit_ && edit_->impl->change != 0)
      tellOfModification(*edit_->impl, edit_->impl->change);
  } catch (...) { // a listener failed, but a destructor cannot report that
  }
}
Edit* EditModifier::get() const { return edit_; }

// --- 6. The database -----------------------------------------------------------------------------
projdb* EditManager::getProjdb() { return state().project ? &database : nullptr; }
EditModifier EditManager::makeNewEdit(const Cookie&) {
  return EditModifier(state().project ? &state().project->add()->edit : nullptr);
}
void EditManager::updateProjdbRec(const Cookie&) {} // a row shows the log itself
configb& EditManager::ProjOpts() {
  state().noOptions.reset(new configb); // options set without a project are dropped
  return state().project ? state().project->options : *state().noOptions;
}
Cookie get_project_cookie() { return state().project ? state().project->cookie : Cookie(); }
WideText getFilenameForCookie(const Cookie& log, Cookie) {
  return findLog(log) ? fromUTF8(log.asString(false)) : WideText();
}
int Zr::CurrentProject::getFrameRate(Revision) {
  return state().project ? state().project->frameRate : codes::noFrameRate;
}
int Zr::CurrentProject::getOutputImageZRFrameRate() {
  return state().project ? state().project->outputFrameRate : codes::noFrameRate;
}

// All reels, in their order. The library passes no other numbers.
CookieVec projdb::search(unsigned, unsigned) {
  return logsWhere([](const Log& log) { return log.type == codes::reelLog; });
}

/// The conditions of a search.
struct LogAttributes::Map::Impl {
  Text reelId;
};
LogAttributes::Map::Map() : impl_(new Impl) {}
LogAttributes::Map::Map(const Map& other) : impl_(new Impl(*other.impl_)) {}
LogAttributes::Map& LogAttributes::Map::operator=(const Map& other) {
  *impl_ = *other.impl_;
  return *this;
}
LogAttributes::Map::~Map() { delete impl_; }
void LogAttributes::Map::add(eLogAttribute, Text value) {
  impl_->reelId = value;
} // the library uses no other attribute
projdb::SearchCriteria::SearchCriteria() : first(0), second(0) {}

// The shots of a reel. All found logs are deleted with the reel. So a reel itself is never found, and the empty
// identifier, which every log without a reel has, finds nothing.
CookieVec projdb::search(const SearchCriteria& criteria) {
  const Text& id = criteria.attributes.impl()->reelId;
  return logsWhere([&](const Log& log) {
    return !id.empty() && log.type != codes::reelLog && log.reelId() && strcasecmp(log.reelId(), id.c_str()) == 0;
  });
}

dbrecord* projdb::operator[](const Cookie& cookie) {
  Log* const log = findLog(cookie);
  return log ? &log->row : nullptr;
}
unsigned short projdb::findField(const char* name) const { return std::strcmp(name, "Type") == 0 ? 1 : 0; }
const char* dbrecord::get_field(unsigned short column) const {
  return column != 1                            ? nullptr
         : impl->log.type == codes::reelLog     ? "Reel"
         : impl->log.type == codes::materialLog ? "Material"
                                                : "Edit";
}

/// A view keeps copies of its texts. Copies share their body, so each costs only a reference count.
struct ODBViewRep::Impl {
  std::vector<Text> reelTypes;
};
oledb* projdb::database() { return &tables; }
ODBViewRep::ODBViewRep(oledb*) : impl_(new Impl) {}
ODBViewRep::~ODBViewRep() { delete impl_; }
void ODBViewRep::displayRecordsAt(const std::vector<Cookie>& logs, int) {
  impl_->reelTypes.clear();
  for (const Cookie& cookie : logs)
    if (const Log* const log = findLog(cookie))
      impl_->reelTypes.push_back(log->reelType);
}
int ODBViewRep::numRows() const { return static_cast<int>(impl_->reelTypes.size()); }
const char* ODBViewRep::cellText(int row, const char* column) const {
  const bool shown = row >= 0 && row < numRows() && std::strcmp(column, "Reel Type") == 0;
  return shown ? impl_->reelTypes[static_cast<std::size_t>(row)].c_str() : nullptr;
}
ODBView::ODBView(ODBViewRep* rep) : rep_(rep) {}
ODBView::~ODBView() {}
ODBViewRep* ODBView::operator->() const { return rep_.get(); }

// --- 7. Texts ------------------------------------------------------------------------------------
int vorn_printf(const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  const int length = std::vfprintf(stderr, format, arguments);
  va_end(arguments);
  return length;
}
WideText paddedResourceStrW(ResId, const wchar_t* before, const wchar_t* after, ResStrFmt) {
  return WideText(before) + WideText(L"Reel") +
         WideText(after); // the library uses only one text, for the names of reels
}

// --- 8. Devices: this host has no devices, so all results are empty ------------------------------
ExtDeviceConfig::ExtDeviceConfig() : impl_(nullptr) {}
ExtDeviceConfig::ExtDeviceConfig(const ExtDeviceConfig&) : impl_(nullptr) {}
ExtDeviceConfig& ExtDeviceConfig::operator=(const ExtDeviceConfig&) { return *this; }
ExtDeviceConfig::~ExtDeviceConfig() {}
StringList ExtDeviceConfig::getTapeList() const { return StringList(); }
WideText ExtDeviceConfig::getTextName() const { return WideText(); }
int ExtDeviceConfig::getPortType() const { return codes::noPort; }
int ExtDeviceConfig::getInputType() const {
  return codes::noVideoInput; // with any other number, reels without a device would get a channel
}
int ExtDeviceConfig::getNumConnectedAudioInputs() const { return 0; }
WideText ExtDeviceConfig::getLabelMapping() const { return WideText(); }
void ExtDeviceConfig::setLastReel(Text) {}
ExtDeviceConfig ExtDeviceConfigurationManager::getConfig(int) const { return ExtDeviceConfig(); }
ExtDeviceConfig ExtDeviceConfigurationManager::getConfig(IdStamp) const { return ExtDeviceConfig(); }
int ExtDeviceConfigurationManager::findConfigForName(const WideText&) const { return -1; }
void ExtDeviceConfigurationManager::storeDevice(const ExtDeviceConfig&, bool) {}
IdStamp ExtDeviceConfigurationManager::DeviceChangedMsgParser(const NotifyMsg&) { return IdStamp(); }
ExtDeviceConfigurationManager& theConfigurationManager() { return configurations; }
void resetDevices() {}
LabelMappingSet::LabelMappingSet() : entries() {}
bool LabelMappingSet::load(const WideText&) { // this host has no label maps either
  std::fill(entries, entries + numEntries, Entry());
  return false;
}
