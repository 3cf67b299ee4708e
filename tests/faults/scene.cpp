// SPDX-License-Identifier: Apache-2.0
#include "faults/scene.h"

#include <algorithm>
#include <utility>

#include "MainThread.h"
#include "faults/answering_host.h"
#include "host/codes.h"
#include "host/edit.h"
#include "host/projdb.h"
#include "host/text.h"

namespace reeldb_tests {

namespace {

const char* const keys[] = {"reelid",
                            "record_inhibit_flag",
                            "reel_available_flag",
                            "reel_userfield0",
                            "reel_userfield1",
                            "reel_userfield2",
                            "reel_userfield3",
                            "reel_userfield4",
                            "reel_userfield5",
                            "reel_labelmapping",
                            "profile_bin_name",
                            "reel_last_device",
                            "reel_type",
                            "key"};

constexpr const char* typeRecords = "F2:VideoChannels=1 AudioChannels=2\r\n"
                                    "  New type :  AudioChannels=8 VideoChannels=1  \n"
                                    "Scratch\n"
                                    "\n"
                                    "F4::ignored\n"
                                    "Last:VideoChannels=3";

std::string quoted(const std::string& text)
{
  return "'" + text + "'";
}

std::string quoted(const Text& text)
{
  return quoted(std::string(text.c_str()));
}

std::string utf8(const Wide& text)
{
  return toUTF8(text).c_str();
}

std::string joined(const std::vector<std::string>& parts)
{
  std::string all;
  for (const std::string& part : parts)
    all += (all.empty() ? "" : ", ") + part;
  return '[' + all + ']';
}

} // namespace

std::ostream& operator<<(std::ostream& out, const Scenario& scenario)
{
  out << scenario.operation;
  return *scenario.situation ? out << ", " << scenario.situation : out;
}

Scene::Scene()
{
  forgetManager();
  folder_.write("facility.toml", "");
  typeFile = folder_.write("devicedata/reeltype.dat", typeRecords).c_str();
  facility_ = reelhost::Facility::read(folder_.path());
  facility_.devices() = {LibraryTest::device(1, "Deck"), LibraryTest::device(2, "Cam"), LibraryTest::device(3, "Feed")};
  auto& devices = facility_.devices();
  devices[0].audioInputs = 4;
  devices[0].tapes = {"F2", "Live"};
  devices[0].labelMap = "9pin";
  devices[1].portType = codes::portNamingReel;
  devices[1].audioInputs = 1;
  devices[1].tapes = {"Live"};
  devices[2].portType = codes::port1394;
  devices[2].inputType = codes::noVideoInput;
  devices[2].labelMap = "vitc";
  firstWatch_.emplace(ReportWatch::Place::First, [this] { return faultHappened && faultHappened(); });
}

Scene::~Scene()
{
  clear();
  reelhost::useFacility(reelhost::Facility());
}

void Scene::forgetManager()
{
  ReelDbManager* const gone = std::exchange(ReelDbManager::theReelDbManager_, nullptr);
  if (!gone)
    return;
  gone->ReelDbManager::~ReelDbManager();
  ::operator delete(gone);
}

void Scene::set(const Scenario& scenario, int hold)
{
  reelhost::useFacility(facility_);
  ReelTypeManager& types = *theReelTypeManager();
  types.add("F2", "VideoChannels=1 AudioChannels=2");
  types.add("Live", "VideoChannels=1");
  types.add("F4", "VideoChannels=1 AudioChannels=4");
  ReelDbManager::systemWideDefaultReelType_ = "F4";
  manager(); // is notified of the entry
  enterProject("FAULTS", {{"reeldb_defaultType", "F2"}});
  addLogs();
  anyReel.emplace();
  followsR1.emplace(Text("R1"));
  lastWatch_.emplace(ReportWatch::Place::Last, [this] { return faultHappened && faultHappened(); });
  manager().buildReelList();
  manager().reelInUse("cam", true);

  id = scenario.id;
  value = scenario.value;
  wide = scenario.wide;
  number = scenario.number;
  const auto named = logs_.find(scenario.id);
  rec = named == logs_.end() ? ReelDbRec() : ReelDbRec(named->second);
  if (scenario.arrange)
    scenario.arrange(*this);
  fill_ = scenario.fill;
  again();
  ReportWatch::forget();
  manager().notifyHoldCount = hold;
}

// The manager ignores the entry of the placeholder project, so the options stay unchanged.
void Scene::enterWithoutDefaultType()
{
  script().projectCookies = {Cookie("P0001000", false)};
  enterProject("FAULTS", {});
  script().projectCookies.clear();
  addLogs();
  manager().buildReelList();
}

void Scene::importClip(const char* reel)
{
  rec = ReelDbRec(logs_["clip"] = addShot(reel, "clip"));
}

void Scene::gather(int clients)
{
  while (crowd.size() < static_cast<std::size_t>(clients))
    crowd.push_back(std::make_unique<ReelDbClient>());
}

void Scene::setDefaultType(const char* type)
{
  EditManager::ProjOpts().set("reeldb_defaultType", type, nullptr);
}

void Scene::onAnotherThread()
{
  ++glib_pid;
}

void Scene::addLogs()
{
  const auto reel = [this](const char* name, const char* reelId, const char* type,
                           const reelhost::KeyValues& fields = {}) { logs_[name] = addLog(9, reelId, type, fields); };
  const auto shot = [this](const char* name, const char* reelId) { logs_[name] = addShot(reelId, name); };
  reel("R1", "R1", "F2",
       {{"reel_available_flag", "1"},
        {"reel_userfield0", "scene"},
        {"reel_userfield5", "roll"},
        {"reel_labelmapping", "fire"},
        {"profile_bin_name", "Bin"},
        {"reel_last_device", "Deck"}});
  reel("cam", "cam", "Live", {{"record_inhibit_flag", "1"}});
  reel("CAM", "CAM", "F2");
  shot("shot 1", "R1");
  reel("R2", "R2", "Unheard-of");
  shot("shot 2", "r1");
  shot("shot 3", "cam");
  reel("R3", "R3", "", {{"reel_last_device", "Deck"}});
  reel("nameless", "", "F2");
  shot("shot 4", "R1");
  shot("shot 5", "");
}

void Scene::clear()
{
  reelhost::startUp();
  reelhost::runDeferredActions();
  clearAnswers();
  script().reset();
  journal().clear();
  selection = CookieVec();
  logSet = CookieSet();
  action.reset();
  crowd.clear();
  followsR1.reset();
  anyReel.reset();
  lastWatch_.reset();
  faultHappened = nullptr;
  id = value = Text();
  wide = Wide();
  logs_.clear();
  reelhost::closeProject();
  forgetManager();
  theReelTypeManager()->rep()->discardAll();
  ReelDbManager::systemWideDefaultReelType_ = "";
  reelhost::useFacility(reelhost::Facility());
}

void Scene::clearAnswers()
{
  answer = std::monostate();
  intOut = 0;
  textOut = Text();
  fieldOut = strp_field();
  ids.clear();
  ids.shrink_to_fit();
  list.clear();
  made.reset();
  otherTypes.reset();
  forgetPrinted();
}

void Scene::again()
{
  clearAnswers();
  if (fill_)
    fill_(*this);
  forgetHeard();
}

void Scene::forgetHeard()
{
  anyReel->forget();
  followsR1->forget();
}

// --- The visible state ---------------------------------------------------------------------------

std::vector<Cookie> Scene::allLogs() const
{
  std::vector<Cookie> all;
  if (!reelhost::projectIsOpen())
    return all;
  const CookieVec reels = EditManager::getProjdb()->search(codes::reelSearchMask, codes::reelSearchMaskOff);
  const CookieVec others = reelhost::allShots();
  all.assign(reels.begin(), reels.end());
  all.insert(all.end(), others.begin(), others.end());
  std::sort(all.begin(), all.end(), [](const Cookie& a, const Cookie& b) { return text(a) < text(b); });
  return all;
}

std::string Scene::nameOf(const Cookie& log) const
{
  if (!log.valid())
    return "none";
  const auto known = [this](const Cookie& cookie) {
    return std::find_if(logs_.begin(), logs_.end(),
                        [&](const auto& entry) { return entry.second.compare(cookie) == 0; });
  };
  if (const auto found = known(log); found != logs_.end())
    return found->first;
  int fresh = 0;
  for (const Cookie& other : allLogs()) {
    fresh += known(other) == logs_.end();
    if (other.compare(log) == 0)
      return "new " + std::to_string(fresh);
  }
  return "unknown";
}

std::string Scene::withNames(std::string lines) const
{
  for (const auto& [name, log] : logs_)
    for (std::size_t at = 0; (at = lines.find(text(log))) != std::string::npos;)
      lines.replace(at, text(log).size(), name);
  return lines;
}

std::string Scene::described() const
{
  struct {
    const Scene& scene;
    std::string operator()(std::monostate) const { return {}; }
    std::string operator()(bool truth) const { return truth ? "true" : "false"; }
    std::string operator()(int n) const { return std::to_string(n); }
    std::string operator()(const Text& t) const { return quoted(t); }
    std::string operator()(const Wide& t) const { return quoted(utf8(t)); }
    std::string operator()(const Cookie& log) const { return scene.nameOf(log); }
    std::string operator()(const CookieVec& logs) const
    {
      std::vector<std::string> names;
      for (const Cookie& log : logs)
        names.push_back(scene.nameOf(log));
      return joined(names);
    }
  } const describe{*this};
  std::string all = std::visit(describe, answer);
  if (intOut)
    all += " out " + std::to_string(intOut);
  if (!textOut.empty())
    all += " out " + quoted(textOut);
  if (fieldOut.text())
    all += " out " + quoted(std::string(fieldOut.text()));
  std::vector<std::string> texts;
  for (const Text& one : ids)
    texts.push_back(one.c_str());
  for (unsigned i = 0; i < list.count(); ++i)
    texts.push_back(list[i].c_str());
  if (!texts.empty())
    all += joined(texts);
  if (const std::string printed = withNames(printedSoFar()); !printed.empty())
    all += " printed " + printed;
  return all;
}

std::string Scene::reelList()
{
  std::vector<std::string> names;
  for (const Cookie& reel : manager().reelList)
    names.push_back(nameOf(reel));
  return joined(names);
}

std::string Scene::reelsOfTheDatabase()
{
  std::vector<std::string> names;
  if (reelhost::projectIsOpen())
    for (const Cookie& reel : EditManager::getProjdb()->search(codes::reelSearchMask, codes::reelSearchMaskOff))
      names.push_back(nameOf(reel));
  return joined(names);
}

Scene::State Scene::state()
{
  State all;
  for (const Cookie& log : allLogs()) {
    const std::string name = nameOf(log) + ": ";
    EditPtr edit;
    edit.i_open(log, codes::openAsUsual);
    all[name + "log type"] = std::to_string(edit->getLogType());
    for (const char* key : keys)
      if (const char* const found = edit->config().in(key))
        all[name + key] = found;
    edit.i_close();
    all[name + "name"] = logName(log);
    all[name + "video"] = std::to_string(channels(log, 1));
    all[name + "audio"] = std::to_string(channels(log, 2));
    projdb& database = *EditManager::getProjdb();
    all[name + "row's type"] = database[log]->get_field(database.findField("Reel Type"));
  }
  if (const char* const type = EditManager::ProjOpts().in("reeldb_defaultType"))
    all["default type"] = type;
  std::vector<std::string> marks;
  for (unsigned i = 0; i < manager().reelsInUse.count(); ++i)
    marks.push_back(manager().reelsInUse[i].c_str());
  all["in use"] = joined(marks);
  all["devices reset for this project"] = manager().lastProject.compare(get_project_cookie()) == 0 ? "yes" : "no";
  all["reel list"] = reelList();
  all["clients"] = std::to_string(manager().clients.count());
  all["deferred"] = std::to_string(reelhost::deferredActions());
  for (const reelhost::DeviceSettings& one : reelhost::facility().devices())
    all["last reel of " + one.name] = one.lastReel;
  if (const std::string name = reelhost::facility().systemValue("reel_userfield1"); !name.empty())
    all["name of user field 1"] = name;
  const AssocListRep& types = *theReelTypeManager()->rep();
  for (unsigned i = 0; i < types.count(); ++i)
    all["type " + quoted(types.entry(i)->key)] = types.entry(i)->value.c_str();
  return all;
}

std::string Scene::difference(const State& before, const State& after)
{
  std::string lines;
  const auto in = [](const State& state, const std::string& key) {
    const auto found = state.find(key);
    return found == state.end() ? "-" : quoted(found->second);
  };
  State both = before;
  both.insert(after.begin(), after.end());
  for (const auto& [key, unused] : both)
    if (in(before, key) != in(after, key))
      lines += key + " " + in(before, key) + " -> " + in(after, key) + "\n";
  return lines;
}

} // namespace reeldb_tests
