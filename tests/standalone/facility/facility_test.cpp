// SPDX-License-Identifier: Apache-2.0
#include "reelhost/facility.h"

#include <gtest/gtest.h>

#include "standalone/store/support.h"

namespace {

using namespace reelhost;
using namespace store_tests;
namespace fs = std::filesystem;

const char twoDevices[] = "[system]\nreel_userfield0 = \"Scene\"\n"
                          "[[device]]\nnumber = 0\nid = 5\nname = \"Deck\"\n"
                          "[[device]]\nnumber = 1\nid = 6\nname = \"Camera\"\n";

class FacilityTest : public testing::Test {
protected:
  FacilityTest() { writeBytes(folder_ / "facility.toml", twoDevices); }
  Facility read() const { return Facility::read(folder_.path()); }
  fs::path folder() const { return folder_.path(); }

private:
  TempFolder folder_;
};

TEST(FacilityWithoutFiles, HasBuiltInTextsAndFrameRatesOnly)
{
  const Facility facility;
  EXPECT_EQ(facility.directory(), "");
  EXPECT_EQ(facility.defaultProject(), "");
  EXPECT_TRUE(facility.projectNames().empty());
  EXPECT_TRUE(facility.devices().empty());
  EXPECT_EQ(facility.resourceText(10043), "Reel");
  EXPECT_EQ(facility.resourceText(10042), "");
  EXPECT_EQ(facility.frameRates(),
            (std::vector<std::pair<std::string, int>>{
                {"25", 3}, {"29.97", 4}, {"30", 5}, {"24", 6}, {"23.98", 7}, {"50", 8}, {"59.94", 9}, {"60", 10}}));
}

TEST(FacilityWithoutFiles, KeepsStateAsLongAsItLives)
{
  Facility facility;
  facility.devices().push_back({.number = 0, .id = 5, .name = "D", .tapes = {}, .labelMap = {}, .lastReel = {}});
  facility.setSystemValue("k", "v");
  facility.setLastReel(5, "R1");
  EXPECT_TRUE(facility.stateChanged());
  facility.saveState();
  EXPECT_FALSE(facility.stateChanged());
  EXPECT_EQ(facility.systemValue("k"), "v");
  EXPECT_EQ(facility.devices()[0].lastReel, "R1");
}

TEST(FrameRateCode, NamesComeBeforeCodesAndBothMustBeKnown)
{
  const Facility facility;
  EXPECT_EQ(facility.frameRateCode("25"), 3);
  EXPECT_EQ(facility.frameRateCode("59.94"), 9);
  EXPECT_EQ(facility.frameRateCode("24"), 6);
  EXPECT_EQ(facility.frameRateCode("3"), 3);
  EXPECT_EQ(facility.frameRateCode("10"), 10);
  for (const char* unknown : {"48", "2", "11", "", "25 ", " 3", "+3", "-1", "3.0", "0x3", "99999999999", "PAL"})
    EXPECT_EQ(facility.frameRateCode(unknown), std::nullopt) << unknown;
}

TEST_F(FacilityTest, FoldersLieInTheFacility)
{
  const Facility facility = read();
  EXPECT_EQ(facility.deviceDataDirectory().native(), folder().native() + "/devicedata/");
  EXPECT_EQ(facility.labelMapDirectory().native(), folder().native() + "/labelmaps");
  EXPECT_EQ(facility.projectDirectory().native(), folder().native() + "/projects");
}

TEST_F(FacilityTest, PendingValuesAreSeenAndDropped)
{
  Facility facility = read();
  facility.setSystemValue("reel_userfield0", "Take");
  facility.setSystemValue("new", "x");
  facility.setLastReel(5, "R1");
  facility.devices()[0].lastReel = "R1";
  EXPECT_EQ(facility.systemValue("reel_userfield0"), "Take");
  EXPECT_EQ(facility.systemValue("new"), "x");
  EXPECT_TRUE(facility.stateChanged());
  facility.dropState();
  EXPECT_FALSE(facility.stateChanged());
  EXPECT_EQ(facility.systemValue("reel_userfield0"), "Scene");
  EXPECT_EQ(facility.systemValue("new"), "");
  EXPECT_EQ(facility.devices()[0].lastReel, "");
  EXPECT_FALSE(fs::exists(folder() / "state.toml"));
}

TEST_F(FacilityTest, SettingTheStoredValueIsNotAChange)
{
  Facility facility = read();
  facility.setSystemValue("reel_userfield0", "Scene");
  facility.setSystemValue("absent", "");
  facility.setLastReel(5, "");
  EXPECT_FALSE(facility.stateChanged());
  facility.setSystemValue("reel_userfield0", "Take");
  facility.setLastReel(5, "R1");
  EXPECT_TRUE(facility.stateChanged());
  facility.setSystemValue("reel_userfield0", "Scene");
  facility.setLastReel(5, "");
  EXPECT_FALSE(facility.stateChanged());
  EXPECT_EQ(facility.systemValue("reel_userfield0"), "Scene");
}

TEST_F(FacilityTest, SavedValuesAreThereForTheNextProcessAndTheFacilityFileIsNotTouched)
{
  {
    Facility facility = read();
    facility.setSystemValue("reel_userfield0", "");
    facility.setSystemValue("b", "2");
    facility.setLastReel(6, "Camera live feed");
    facility.saveState();
    EXPECT_FALSE(facility.stateChanged());
    EXPECT_EQ(facility.devices()[1].lastReel, "Camera live feed");
  }
  Facility facility = read();
  EXPECT_EQ(facility.systemValue("reel_userfield0"), "");
  EXPECT_EQ(facility.systemValue("b"), "2");
  EXPECT_EQ(facility.devices()[0].lastReel, "");
  EXPECT_EQ(facility.devices()[1].lastReel, "Camera live feed");
  facility.setLastReel(6, "other");
  facility.devices()[1].lastReel = "other";
  facility.dropState();
  EXPECT_EQ(facility.devices()[1].lastReel, "Camera live feed");
  EXPECT_EQ(bytesOf(folder() / "facility.toml"), twoDevices);
}

TEST_F(FacilityTest, SavingTakesOverWhatAnotherProcessStored)
{
  Facility first = read(), second = read();
  first.setSystemValue("a", "first");
  first.setLastReel(5, "R1");
  first.saveState();
  second.setSystemValue("b", "second");
  second.setLastReel(6, "R2");
  second.saveState();
  EXPECT_EQ(second.systemValue("a"), "first");
  EXPECT_EQ(second.devices()[0].lastReel, "R1");
  EXPECT_EQ(second.devices()[1].lastReel, "R2");
  const Facility third = read();
  EXPECT_EQ(third.systemValue("a"), "first");
  EXPECT_EQ(third.systemValue("b"), "second");
}

TEST_F(FacilityTest, ValueThatIsTakenAwayLeavesNothingBehind)
{
  Facility facility = read();
  facility.setSystemValue("a", "1");
  facility.setSystemValue("reel_userfield0", "Take");
  facility.setLastReel(5, "R1");
  facility.saveState();
  facility.setSystemValue("a", "");
  facility.setSystemValue("reel_userfield0", "");
  facility.setLastReel(5, "");
  facility.saveState();
  EXPECT_EQ(facility.systemValue("a"), "");
  EXPECT_EQ(facility.systemValue("reel_userfield0"), "");
  EXPECT_EQ(facility.devices()[0].lastReel, "");
  // Only the value that facility.toml has would come back without an entry.
  const std::string state = bytesOf(folder() / "state.toml");
  EXPECT_NE(state.find("[system]\nreel_userfield0 = \"\"\n"), std::string::npos) << state;
  EXPECT_EQ(state.find("R1"), std::string::npos) << state;
  EXPECT_EQ(state.find("5 ="), std::string::npos) << state;
  EXPECT_EQ(state.find("a ="), std::string::npos) << state;
}

TEST_F(FacilityTest, SavingForgetsWhatAnotherProcessTookAway)
{
  Facility first = read();
  first.setSystemValue("a", "1");
  first.setLastReel(5, "R1");
  first.saveState();
  Facility second = read();
  second.setSystemValue("a", "");
  second.setLastReel(5, "");
  second.saveState();
  first.setSystemValue("b", "2");
  first.saveState();
  EXPECT_EQ(first.systemValue("a"), "");
  EXPECT_EQ(first.devices()[0].lastReel, "");
}

TEST_F(FacilityTest, WithoutAFacilityValuesLastAsLongAsTheObject)
{
  Facility none;
  none.setSystemValue("a", "1");
  none.saveState();
  none.setSystemValue("b", "2");
  none.saveState();
  EXPECT_EQ(none.systemValue("a"), "1");
  EXPECT_EQ(none.systemValue("b"), "2");
}

TEST_F(FacilityTest, SavingWithoutChangesMakesNoFile)
{
  Facility facility = read();
  facility.saveState();
  EXPECT_EQ(namesIn(folder()), std::vector<std::string>{"facility.toml"});
}

TEST_F(FacilityTest, ValuesThatCouldNotBeSavedStayPending)
{
  Facility facility = read();
  facility.setSystemValue("a", "1");
  fs::create_directory(folder() / "state.lock");
  EXPECT_EQ(errorOf([&] { facility.saveState(); }),
            "Io: " + (folder() / "state.lock").native() + ": cannot be opened (Is a directory)");
  EXPECT_TRUE(facility.stateChanged());
  fs::remove(folder() / "state.lock");
  facility.saveState();
  EXPECT_EQ(read().systemValue("a"), "1");
}

} // namespace
