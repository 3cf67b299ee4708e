// SPDX-License-Identifier: Apache-2.0
#include <algorithm>

#include "MainThread.h"
#include "ReelDbRec.h"
#include "host/codes.h"
#include "reeldb/changes_fixture.h"

namespace reeldb_tests {

namespace {

class LiveMedia : public ChangesTest {
protected:
  static constexpr int camera = 4;

  /// The facility's only device, a live source unless other tapes are given.
  void setCamera(const std::string& name, std::vector<std::string> tapes = {"Tape", "Live"}, int audioInputs = 0)
  {
    reelhost::DeviceSettings settings = device(camera, name);
    settings.portType = codes::portNamingReel;
    settings.inputType = codes::noVideoInput;
    settings.audioInputs = audioInputs;
    settings.tapes = std::move(tapes);
    setDevices({settings});
  }

  void check() { manager().checkLiveDeviceMedia(camera); }
  Cookie onlyReel()
  {
    EXPECT_EQ(manager().reelList.count(), 1);
    return manager().reelList.empty() ? Cookie() : manager().reelList[0];
  }
  std::string lastReel() { return reelhost::facility().devices().at(0).lastReel; }
  std::string mediaName(const char* device) { return text(manager().getLiveDeviceMediaName(device)); }
};

TEST_F(LiveMedia, NameIsTheDevicesAndLiveFeed)
{
  EXPECT_EQ(mediaName("Cam 2"), "Cam 2 live feed");
  EXPECT_EQ(mediaName(""), " live feed");
  EXPECT_EQ(mediaName(nullptr), " live feed");
  EXPECT_EQ(mediaName(" Cam "), " Cam  live feed");
}

TEST_F(LiveMedia, NamingLeavesTheCallersStringAlone)
{
  const LightweightString<char> device = "Cam 2";
  manager().getLiveDeviceMediaName(device);
  EXPECT_EQ(text(device), "Cam 2");
}

TEST_F(LiveMedia, LiveSourceGetsItsReel)
{
  setCamera("Cam 2");
  check();
  ASSERT_EQ(reelIds(), Lines{"Cam 2 live feed"});
  ReelDbRec reel = manager().getReelInfo("Cam 2 live feed");
  EXPECT_EQ(text(reel.typeName()), "Live");
  EXPECT_EQ(configText(reel, TR_LAST_DEVICE), "Cam 2");
  EXPECT_EQ(logName(reel), "[reel] Cam 2 live feed") << "this device names its reels, but not this one";
  EXPECT_EQ(lastReel(), "Cam 2 live feed");
  EXPECT_TRUE(manager().representsLiveMaterial("Cam 2 live feed"));
}

TEST_F(LiveMedia, NameIsUtf8)
{
  setCamera("Cam\xc3\xa9ra");
  check();
  EXPECT_EQ(reelIds(), Lines{"Cam\xc3\xa9ra live feed"});
  EXPECT_EQ(configText(onlyReel(), TR_LAST_DEVICE), "Cam\xc3\xa9ra");
}

TEST_F(LiveMedia, DeviceThatAcceptsLiveInNoOrAnotherSpellingGetsNothing)
{
  const std::vector<std::vector<std::string>> lists = {{},        {"Tape"},  {"live"},     {"LIVE"},
                                                       {"Live "}, {" Live"}, {"Live feed"}};
  for (const std::vector<std::string>& tapes : lists) {
    setCamera("Cam 2", tapes);
    const Lines operations = operationsOf([this] { check(); });
    EXPECT_EQ(operations, (Lines{"theConfigurationManager", "ExtDeviceConfigurationManager::getConfig",
                                 "ExtDeviceConfig::getTapeList"}));
  }
  EXPECT_EQ(reelIds(), Lines{});
  EXPECT_EQ(lastReel(), "");
}

TEST_F(LiveMedia, UnknownDeviceGetsNothing)
{
  setCamera("Cam 2");
  manager().checkLiveDeviceMedia(999);
  manager().checkLiveDeviceMedia(-1);
  EXPECT_EQ(reelIds(), Lines{});
}

TEST_F(LiveMedia, ChannelsComeFromTheDeviceAsTheLastOneOfTheReel)
{
  setCamera("Cam 2", {"Live"}, 4);
  const Lines operations = operationsOf([this] { check(); });
  const auto lookup =
      std::find(operations.begin(), operations.end(), "ExtDeviceConfigurationManager::findConfigForName");
  ASSERT_NE(lookup, operations.end());
  EXPECT_EQ(std::count(operations.begin(), lookup, "Edit::addChan"), 0) << "the creation itself adds none";
  EXPECT_EQ(channels(onlyReel(), 2), 4);
}

TEST_F(LiveMedia, SecondCheckChangesNothing)
{
  setCamera("Cam 2");
  check();
  ReelDbRec reel = manager().getReelInfo("Cam 2 live feed");
  reel.typeName("Tape");
  reel.lastDevice(L"Deck");
  reelhost::facility().devices().at(0).lastReel = "other";
  const RecordingClient client(heard_);
  const Lines lines = linesOf([this] { check(); });
  EXPECT_EQ(listing(lines, {{reel, "reel"}}),
            listing(join({{"theConfigurationManager()", "ExtDeviceConfigurationManager::getConfig(4) -> \"Cam 2\"",
                           "ExtDeviceConfig::getTapeList(\"Cam 2\") -> [\"Tape\", \"Live\"]",
                           "ExtDeviceConfig::getTextName(\"Cam 2\") -> \"Cam 2\""},
                          attributeRead("reel", "Cam 2 live feed")})));
  EXPECT_EQ(text(reel.typeName()), "Tape");
  EXPECT_EQ(lastReel(), "other");
  EXPECT_EQ(heard_, Heard{});
}

TEST_F(LiveMedia, ReelOfThatNameInAnotherCaseIsEnough)
{
  addReel("CAM 2 LIVE FEED");
  setCamera("Cam 2");
  check();
  EXPECT_EQ(reelIds(), Lines{"CAM 2 LIVE FEED"});
  EXPECT_EQ(lastReel(), "");
}

TEST_F(LiveMedia, OtherManagerMakesTheReelThatItsOwnListLacksAndListsItItself)
{
  addReel("Cam 2 live feed");
  setCamera("Cam 2");
  const RecordingClient client(heard_);
  ReelDbManager other;
  other.checkLiveDeviceMedia(camera);
  EXPECT_EQ(other.reelList.count(), 2);
  EXPECT_EQ(manager().reelList.count(), 1);
  EXPECT_EQ(countOf(heard_, "dbC(Cam 2 live feed)"), 0) << "each manager notifies its own clients of a new reel";
}

TEST_F(LiveMedia, OtherManagerMakesNoReelThatItsOwnListHolds)
{
  ReelDbManager other;
  addLog(9, "Cam 2 live feed");
  other.buildReelList();
  setCamera("Cam 2");
  other.checkLiveDeviceMedia(camera);
  manager().buildReelList();
  EXPECT_EQ(reelIds(), Lines{"Cam 2 live feed"});
  EXPECT_EQ(lastReel(), "");
}

TEST_F(LiveMedia, ClientsAreNotifiedOfTheCreationThenOfTypeAndDevice)
{
  setCamera("Cam 2");
  RecordingClient client(heard_);
  std::vector<std::string> types;
  client.onSome = [&](const std::string& id) { types.push_back(text(manager().getReelInfo(id.c_str()).typeName())); };
  check();
  const std::string some = "some(Cam 2 live feed)";
  EXPECT_EQ(heard_, (Heard{some, "dbC(Cam 2 live feed)", some, some}));
  EXPECT_EQ(types, (Lines{"", "Live", "Live"}));
}

TEST_F(LiveMedia, HostCallsAfterTheCreation)
{
  setCamera("Cam 2");
  const Lines all = linesOf([this] { check(); });
  const Cookie reel = onlyReel();
  const auto listed = [&](Lines::const_iterator first, Lines::const_iterator last) {
    return listing(Lines(first, last), {{reel, "reel"}, {Cookie(), "none"}});
  };
  ASSERT_GT(all.size(), 6U);
  EXPECT_EQ(listed(all.begin(), all.begin() + 6),
            listing({"theConfigurationManager()", "ExtDeviceConfigurationManager::getConfig(4) -> \"Cam 2\"",
                     "ExtDeviceConfig::getTapeList(\"Cam 2\") -> [\"Tape\", \"Live\"]",
                     "ExtDeviceConfig::getTextName(\"Cam 2\") -> \"Cam 2\"", mainThread(),
                     "EditManager::makeNewEdit(none) -> reel"}));

  const auto created = std::find(all.begin(), all.end(), "EditModifier::~EditModifier(" + text(reel) + ")");
  ASSERT_NE(created, all.end());
  const auto lastDeviceRead = [](const std::string& outcome) {
    return withLog("reel", {"configb::in(\"reel_last_device\", char*) -> " + outcome});
  };
  const auto channelsOf = [](const Lines& device) {
    return withLog("reel", join({typeRead("reel", "Live"),
                                 device,
                                 {"Edit::getNumChans(reel, 2) -> 0", "Edit::getNumChans(reel, 1) -> 0"}}));
  };
  const auto settings = [](const std::string& name, const std::string& number) {
    return Lines{"theConfigurationManager()",
                 "ExtDeviceConfigurationManager::findConfigForName(" + quoted(name) + ") -> " + number,
                 "theConfigurationManager()",
                 "ExtDeviceConfigurationManager::getConfig(" + number + ") -> " + quoted(name),
                 "ExtDeviceConfig::getNumConnectedAudioInputs(" + quoted(name) + ") -> 0",
                 "ExtDeviceConfig::getInputType(" + quoted(name) + ") -> 9"};
  };
  EXPECT_EQ(listed(created, all.end()),
            listing(join(
                {{"EditModifier::~EditModifier(reel)"},
                 withLog("reel", {"Edit::getLogType(reel) -> 9"}),
                 typeRead("reel", ""),
                 withLog("reel", join({{"Edit::reelType(reel, \"Live\")", "Edit::setDirty(reel, true)"},
                                       channelsOf(join({lastDeviceRead("1"), settings("", "-1")})),
                                       idRead("reel", "Cam 2 live feed")})),
                 {"ExtDeviceConfig::getTextName(\"Cam 2\") -> \"Cam 2\""},
                 lastDeviceRead("1"),
                 withLog("reel", {"configb::set(\"reel_last_device\", \"Cam 2\", null)", "Edit::setDirty(reel, true)"}),
                 idRead("reel", "Cam 2 live feed"),
                 channelsOf(join({lastDeviceRead("0 \"Cam 2\""), settings("Cam 2", "4")})),
                 {"ExtDeviceConfig::setLastReel(\"Cam 2\", \"Cam 2 live feed\")", "theConfigurationManager()",
                  "ExtDeviceConfigurationManager::storeDevice(\"Cam 2\", false)"}})));
}

// --- If the creation makes no reel ---------------------------------------------------------------

/// The steps with the invalid record and the device if the creation made no reel.
Lines goneOnWithoutAReel()
{
  const Lines notOpened = {"EditPtr::i_open", "EditPtr::i_close"};
  const Lines emptyView = {"EditManager::getProjdb", "ODBViewRep::ODBViewRep", "ODBViewRep::displayRecordsAt",
                           "ODBViewRep::numRows", "ODBView::~ODBView"};
  return join(
      {emptyView,
       {"EditPtr::i_open"}, // for the type; the identifier is read while it is held
       notOpened,
       {"EditPtr::i_close", "ExtDeviceConfig::getTextName"},
       notOpened, // the last device: read, written, the identifier, the channels
       notOpened,
       notOpened,
       notOpened,
       {"ExtDeviceConfig::setLastReel", "theConfigurationManager", "ExtDeviceConfigurationManager::storeDevice"}});
}

TEST_F(LiveMedia, OnAnotherThreadTheReelIsDeferredAndTheDeviceRemembersIt)
{
  setCamera("Cam 2");
  manager().setProjectDefaultReelType("no such type");
  const RecordingClient client(heard_);
  script().coPid = [] { return glib_pid + 1; };
  const Lines operations = operationsOf([this] { check(); });
  script().coPid = nullptr;
  EXPECT_EQ(operations, join({{"theConfigurationManager", "ExtDeviceConfigurationManager::getConfig",
                               "ExtDeviceConfig::getTapeList", "ExtDeviceConfig::getTextName", "co_pid", "defer"},
                              goneOnWithoutAReel()}));
  EXPECT_EQ(lastReel(), "Cam 2 live feed");
  EXPECT_EQ(heard_, Heard{});
  EXPECT_EQ(reelIds(), Lines{});

  EXPECT_EQ(reelhost::runDeferredActions(), 1);
  ReelDbRec reel = manager().getReelInfo("Cam 2 live feed");
  EXPECT_EQ(text(reel.typeName()), "no such type") << "the deferred reel is one like any other";
  EXPECT_EQ(configText(reel, TR_LAST_DEVICE), "<absent>");
}

TEST_F(LiveMedia, DeviceNameWithAStarGetsNoReelButIsStoredAtEachCheck)
{
  setCamera("C*m");
  for (int i = 0; i < 2; ++i) {
    const Lines operations = operationsOf([this] { check(); });
    EXPECT_EQ(operations, join({{"theConfigurationManager", "ExtDeviceConfigurationManager::getConfig",
                                 "ExtDeviceConfig::getTapeList", "ExtDeviceConfig::getTextName", "co_pid"},
                                goneOnWithoutAReel()}));
  }
  EXPECT_EQ(reelIds(), Lines{});
  EXPECT_EQ(lastReel(), "C*m live feed");
}

TEST_F(LiveMedia, NameWithALeadingBlankMakesAReelAtEachCheck)
{
  setCamera(" Cam");
  check();
  check();
  EXPECT_EQ(reelIds(), (Lines{"Cam live feed", "Cam live feed"}));
  EXPECT_EQ(lastReel(), " Cam live feed");
}

TEST_F(LiveMedia, NamelessDeviceMakesAReelAtEachCheck)
{
  setCamera("");
  check();
  check();
  EXPECT_EQ(reelIds(), (Lines{"live feed", "live feed"}));
  EXPECT_EQ(lastReel(), " live feed");
}

} // namespace

} // namespace reeldb_tests
