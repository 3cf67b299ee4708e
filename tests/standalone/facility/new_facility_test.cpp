// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <array>
#include <fstream>

#include <gtest/gtest.h>

#include "reelhost/facility.h"
#include "standalone/store/support.h"

namespace {

using namespace reelhost;
using namespace store_tests;
namespace fs = std::filesystem;

const std::vector<std::string> labelMapFiles = {"24f1394.toml", "24f9pin.toml",  "24ftofd.toml",
                                                "nts9pin.toml", "ntsc1394.toml", "ntstofd.toml",
                                                "pal1394.toml", "pal9pin.toml",  "paltofd.toml"};

TEST(NewFacilityTest, MakesEverythingButTheProject)
{
  const TempFolder folder;
  NewFacility(folder / "site").keep();
  EXPECT_EQ(namesIn(folder / "site"),
            (std::vector<std::string>{"devicedata", "facility.toml", "labelmaps", "projects"}));
  EXPECT_EQ(namesIn(folder / "site/devicedata"), std::vector<std::string>{"reeltype.dat"});
  EXPECT_EQ(namesIn(folder / "site/labelmaps"), labelMapFiles);
  EXPECT_TRUE(namesIn(folder / "site/projects").empty());
}

TEST(NewFacilityTest, TheFacilityIsReadAndHasADeckAndACamera)
{
  const TempFolder folder;
  NewFacility(folder.path()).keep();
  const Facility facility = Facility::read(folder.path());
  EXPECT_EQ(facility.defaultProject(), "main");
  EXPECT_EQ(facility.configString("default_reel_type"), "Tape 2ch");
  EXPECT_EQ(facility.resourceText(10043), "Reel");
  EXPECT_EQ(facility.frameRates(), Facility().frameRates());
  ASSERT_EQ(facility.devices().size(), 2u);
  const DeviceSettings& deck = facility.devices()[0];
  EXPECT_EQ(deck.portType, 0);
  EXPECT_NE(deck.inputType, 9);
  EXPECT_EQ(deck.audioInputs, 4);
  EXPECT_FALSE(deck.tapes.empty());
  EXPECT_EQ(std::count(deck.tapes.begin(), deck.tapes.end(), "Live"), 0);
  const DeviceSettings& camera = facility.devices()[1];
  EXPECT_EQ(camera.portType, 1);
  EXPECT_EQ(std::count(camera.tapes.begin(), camera.tapes.end(), "Live"), 1);
}

TEST(NewFacilityTest, ReelTypesAreLinesOfNameAndParametersAndCoverTheDevices)
{
  const TempFolder folder;
  NewFacility(folder.path()).keep();
  std::ifstream file(folder / "devicedata/reeltype.dat");
  std::vector<std::string> names;
  for (std::string line; std::getline(file, line);) {
    const std::size_t colon = line.find(':');
    ASSERT_NE(colon, std::string::npos) << line;
    EXPECT_EQ(line.find("VideoChannels="), colon + 1) << line;
    EXPECT_NE(line.find(" AudioChannels="), std::string::npos) << line;
    EXPECT_EQ(line.find(':', colon + 1), std::string::npos) << line;
    names.push_back(line.substr(0, colon));
  }
  EXPECT_EQ(names, (std::vector<std::string>{"Tape 2ch", "Tape 4ch", "Tape 8ch", "Audio only", "Film 35", "Disc",
                                             "Live", "Sound file", "Still", "File"}));
  const Facility facility = Facility::read(folder.path());
  for (const DeviceSettings& device : facility.devices())
    for (const std::string& tape : device.tapes)
      EXPECT_EQ(std::count(names.begin(), names.end(), tape), 1) << tape;
}

TEST(NewFacilityTest, EveryDefaultLabelMapFitsItsPortAndFamily)
{
  const TempFolder folder;
  NewFacility(folder.path()).keep();
  for (const std::string& name : labelMapFiles) {
    const std::vector<LabelMapEntry> entries = readLabelMap(folder / "labelmaps" / name);
    ASSERT_EQ(entries.size(), 14u) << name;
    const bool over9Pin = name.find("9pin") != std::string::npos;
    const bool over1394 = name.find("1394") != std::string::npos;
    int inUse = 0;
    for (const LabelMapEntry& entry : entries) {
      if (!entry.inUse)
        continue;
      ++inUse;
      EXPECT_EQ(entry.source == 9, over1394) << name;
      EXPECT_EQ(entry.source >= 3 && entry.source <= 5, over9Pin) << name;
      EXPECT_NE(entry.source, 1u) << name; // the device may be without video
      EXPECT_NE(entry.source, 2u) << name;
      if (name.rfind("pal", 0) == 0) {
        EXPECT_EQ(entry.format, 1u) << name; // 25 fps
      } else if (name.rfind("nts", 0) == 0) {
        EXPECT_EQ(entry.format, 0u) << name; // 30 fps
      } else {
        EXPECT_EQ(entry.format, 2u) << name; // 24 fps
      }
    }
    EXPECT_GT(inUse, 0) << name;
  }
}

TEST(NewFacilityTest, FacilityThatIsThereIsRefusedAndStays)
{
  const TempFolder folder;
  writeBytes(folder / "facility.toml", "mine");
  EXPECT_EQ(errorOf([&] { NewFacility(folder.path()).keep(); }),
            "Refused: " + folder.path().native() + ": is already a facility (it has a facility.toml)");
  EXPECT_EQ(namesIn(folder.path()), std::vector<std::string>{"facility.toml"});
  EXPECT_EQ(bytesOf(folder / "facility.toml"), "mine");
  fs::remove(folder / "facility.toml");
  fs::create_symlink("nowhere", folder / "facility.toml");
  EXPECT_EQ(errorOf([&] { NewFacility(folder.path()).keep(); }),
            "Refused: " + folder.path().native() + ": is already a facility (it has a facility.toml)");
}

TEST(NewFacilityTest, AnyOfItsFilesThatIsThereIsRefusedAndNothingIsMade)
{
  const TempFolder folder;
  fs::create_directory(folder / "labelmaps");
  writeBytes(folder / "labelmaps/ntstofd.toml", "mine");
  EXPECT_EQ(errorOf([&] { NewFacility(folder.path()).keep(); }),
            "Refused: " + (folder / "labelmaps/ntstofd.toml").native() + ": already exists");
  EXPECT_EQ(namesIn(folder.path()), std::vector<std::string>{"labelmaps"});
  EXPECT_EQ(bytesOf(folder / "labelmaps/ntstofd.toml"), "mine");
}

TEST(NewFacilityTest, FolderWithOtherThingsInItIsFine)
{
  const TempFolder folder;
  writeBytes(folder / "notes.txt", "mine");
  fs::create_directory(folder / "projects");
  writeBytes(folder / "projects/a.reels", "mine");
  NewFacility(folder.path()).keep();
  EXPECT_EQ(bytesOf(folder / "notes.txt"), "mine");
  EXPECT_EQ(bytesOf(folder / "projects/a.reels"), "mine");
}

TEST(NewFacilityTest, FolderThatCannotBeMadeIsAnError)
{
  const TempFolder folder;
  writeBytes(folder / "file", "");
  EXPECT_EQ(errorOf([&] { NewFacility(folder / "file").keep(); }).rfind("Io: " + (folder / "file").native(), 0), 0u);
}

TEST(NewFacilityTest, FailureTakesBackTheFoldersThatWereMadeAndNoOthers)
{
  const TempFolder folder;
  fs::create_directory(folder / "a");
  fs::create_directory(folder / "a/b");
  writeBytes(folder / "a/b/labelmaps", "mine");
  EXPECT_EQ(errorOf([&] { NewFacility(folder / "a/b").keep(); }),
            "Io: " + (folder / "a/b/labelmaps").native() + ": cannot be made (File exists)");
  EXPECT_EQ(namesIn(folder / "a/b"), std::vector<std::string>{"labelmaps"});
  EXPECT_EQ(bytesOf(folder / "a/b/labelmaps"), "mine");
}

TEST(NewFacilityTest, WhatIsNotKeptIsGoneAgain)
{
  const TempFolder folder;
  fs::create_directory(folder / "site");
  fs::create_directory(folder / "site/labelmaps");
  writeBytes(folder / "site/labelmaps/mine.toml", "mine");
  {
    const NewFacility inPlace(folder / "site");
    const NewFacility below(folder / "new/er/site/");
    EXPECT_TRUE(fs::exists(folder / "site/facility.toml"));
    EXPECT_TRUE(fs::exists(folder / "new/er/site/facility.toml"));
    writeBytes(folder / "new/theirs", "");
  }
  EXPECT_EQ(namesIn(folder / "site"), std::vector<std::string>{"labelmaps"});
  EXPECT_EQ(namesIn(folder / "site/labelmaps"), std::vector<std::string>{"mine.toml"});
  EXPECT_EQ(namesIn(folder / "new"), std::vector<std::string>{"theirs"});
}

TEST(NewFacilityTest, DiskFullLeavesNothing)
{
  const TempMount mount("size=12k");
  if (!mount.mounted())
    GTEST_SKIP() << "mounting a file system is not allowed here";
  const std::string error = errorOf([&] { NewFacility(mount / "").keep(); });
  EXPECT_EQ(error.rfind("Io: ", 0), 0u) << error;
  EXPECT_NE(error.find("(No space left on device)"), std::string::npos) << error;
  EXPECT_TRUE(namesIn(mount / "").empty());
}

} // namespace
