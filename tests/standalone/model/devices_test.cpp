// SPDX-License-Identifier: Apache-2.0
#include "host/device.h"

#include <fstream>
#include <iterator>

#include "host/text.h"
#include "standalone/model/host_test.h"
#include "support/temp_folder.h"

namespace {

using namespace reeldb_tests;
using reelhost::Facility;

/// A new facility, with the two devices that every new facility has.
class DevicesTest : public HostTest {
protected:
  DevicesTest()
  {
    reelhost::NewFacility(directory()).keep();
    useStored();
  }
  void useStored() { reelhost::useFacility(Facility::read(directory())); }
  std::filesystem::path directory() const { return folder_.path() / "facility"; }

  static void store(int number, const char* lastReel)
  {
    ExtDeviceConfig config = theConfigurationManager().getConfig(number);
    config.setLastReel(lastReel);
    theConfigurationManager().storeDevice(config, false);
  }
  static std::string lastReel() { return reelhost::facility().devices().at(0).lastReel; }

private:
  TempFolder folder_;
};

TEST_F(DevicesTest, AreTheFacilitys)
{
  const ExtDeviceConfig deck = theConfigurationManager().getConfig(0);
  EXPECT_EQ(std::wstring(deck.getTextName().c_str()), L"Deck 1");
  EXPECT_EQ(deck.getPortType(), 0);
  EXPECT_EQ(deck.getInputType(), 3);
  EXPECT_EQ(deck.getNumConnectedAudioInputs(), 4);
  EXPECT_TRUE(theConfigurationManager().getConfig(1).getTapeList().contains("Live"));
}

TEST_F(DevicesTest, ALastReelCountsAtOnceAndIsStoredByTheCommit)
{
  openMemory();
  store(0, "Deck 1 live feed");
  EXPECT_EQ(lastReel(), "Deck 1 live feed");
  EXPECT_TRUE(reelhost::hasChanges());
  EXPECT_EQ(Facility::read(directory()).devices().at(0).lastReel, "");
  EXPECT_TRUE(reelhost::commit());
  EXPECT_FALSE(reelhost::hasChanges());
  EXPECT_EQ(Facility::read(directory()).devices().at(0).lastReel, "Deck 1 live feed");
}

TEST_F(DevicesTest, ALastReelThatIsNotCommittedIsDroppedWithTheProject)
{
  openMemory();
  store(0, "A");
  reelhost::commit();
  store(0, "B");
  reelhost::closeProject();
  EXPECT_EQ(lastReel(), "A");
  EXPECT_FALSE(reelhost::hasChanges());
}

TEST_F(DevicesTest, SystemSettingsAreStoredWithoutAProjectToo)
{
  SystemCfg::theConfig().set("reel_userfield0", "Scene");
  EXPECT_TRUE(reelhost::hasChanges());
  EXPECT_TRUE(reelhost::commit());
  useStored();
  EXPECT_STREQ(SystemCfg::theConfig().get("reel_userfield0").c_str(), "Scene");
}

// The settings can change while the project is open for reading, because they do not belong to it.
TEST_F(DevicesTest, SettingsAreStoredWhileAProjectIsRead)
{
  openMemory();
  reelhost::commit();
  reopen(reelhost::Access::Read);
  SystemCfg::theConfig().set("reel_userfield0", "Scene");
  EXPECT_TRUE(reelhost::commit());
  useStored();
  EXPECT_STREQ(SystemCfg::theConfig().get("reel_userfield0").c_str(), "Scene");
}

TEST_F(DevicesTest, SettingsOfTheFacilityAreReadByKey)
{
  EXPECT_STREQ(config_string("default_reel_type", ""), "Tape 2ch");
  EXPECT_STREQ(config_string("other", "default"), "default");
  EXPECT_EQ(std::wstring(getDeviceDataDirectory(iSettings::eType(1)).c_str()),
            (directory() / "devicedata" / "").wstring());
}

TEST_F(DevicesTest, ASettingStaysWhereItIs)
{
  const char* const text = config_string("default_reel_type", "");
  reelhost::useFacility(Facility());
  EXPECT_STREQ(text, "Tape 2ch");
  EXPECT_STREQ(config_string("default_reel_type", ""), "");
}

TEST_F(DevicesTest, TheNineLabelMapsOfANewFacilityAreLoaded)
{
  for (const wchar_t* name :
       {L"pal9pin", L"pal1394", L"paltofd", L"nts9pin", L"ntsc1394", L"ntstofd", L"24f9pin", L"24f1394", L"24ftofd"}) {
    LabelMappingSet map;
    EXPECT_TRUE(map.load(name)) << toUTF8(name).c_str();
    EXPECT_NE(map.entries[0].inUse, 0) << toUTF8(name).c_str();
  }
}

TEST_F(DevicesTest, ALabelMapWithAnErrorInItIsNotLoaded)
{
  std::ofstream(directory() / "labelmaps" / "bad.toml") << "[[entry]]\nsource = 5\n";
  LabelMappingSet map;
  map.entries[0].source = 3;
  EXPECT_FALSE(map.load(L"bad"));
  EXPECT_EQ(map.entries[0].source, 0u);
}

TEST_F(DevicesTest, ALabelMapIsNeverLookedForElsewhere)
{
  const std::filesystem::path map = directory() / "labelmaps" / "pal9pin.toml";
  std::filesystem::copy(map, directory() / "outside.toml");
  std::filesystem::create_directory(directory() / "labelmaps" / "sub");
  std::filesystem::copy(map, directory() / "labelmaps" / "sub" / "inside.toml");
  EXPECT_FALSE(LabelMappingSet().load(L"../outside"));
  EXPECT_FALSE(LabelMappingSet().load(L"sub/inside"));
  EXPECT_FALSE(LabelMappingSet().load((directory() / "outside").wstring().c_str()));
  EXPECT_FALSE(LabelMappingSet().load(L""));
}

TEST_F(DevicesTest, AProjectIsOpenedByName)
{
  reelhost::createSqliteProject(reelhost::facility().projectFile("main"), info("MAIN"), {});
  RecordingListener listener;
  reelhost::openProject("main", reelhost::Access::Read);
  EXPECT_EQ(reelhost::projectInfo().name, "MAIN");
  EXPECT_EQ(listener.heard, std::vector<std::string>{"entry"}) << "it is opened once";
  EXPECT_EQ(errorOf([] { reelhost::openProject("none", reelhost::Access::Read); }).substr(0, 9), "NotFound:");
  EXPECT_FALSE(reelhost::projectIsOpen());
}

} // namespace
