// SPDX-License-Identifier: Apache-2.0
//
// The same questions asked of label map files, in a facility on disk.
#include <fstream>

#include "LabelMaps.h"
#include "host/text.h"
#include "labelmaps/facility_folder.h"
#include "support/library_fixture.h"

namespace reeldb_tests {

namespace {

class LabelMapFiles : public LibraryTest {
protected:
  /// Writes a map file whose first entry is the one given; the others, thirteen as a rule, are not in use.
  void writeMap(const std::string& name, const std::string& source, const std::string& format, int others = 13)
  {
    std::ofstream out(facility_.path() / "labelmaps" / (name + ".toml"));
    out << entry("first", true, source, format);
    for (int i = 0; i < others; ++i)
      out << entry("other", false, "none", "text");
  }

  /// The only device, with a video input.
  IdStamp theDevice(int portType)
  {
    reelhost::DeviceSettings settings = device(1, "D");
    settings.portType = portType;
    setDevices({settings});
    return IdStamp(settings.id);
  }

private:
  static std::string entry(const std::string& label, bool inUse, const std::string& source, const std::string& format)
  {
    return "[[entry]]\nlabel = \"" + label + "\"\nin_use = " + (inUse ? "true" : "false") + "\nsource = \"" + source +
           "\"\nformat = \"" + format + "\"\n";
  }

  const FacilityFolder facility_;
};

TEST_F(LabelMapFiles, WordsOfTheFileDecide)
{
  writeMap("mine", "vitc", "25 fps");
  EXPECT_TRUE(map_file_uses_vitc(L"mine"));
  script().frameRate = 3;
  EXPECT_TRUE(map_file_is_compatible_with_project(L"mine"));
  script().frameRate = 4;
  EXPECT_FALSE(map_file_is_compatible_with_project(L"mine"));
  EXPECT_TRUE(map_file_is_compatible_with_device(L"mine", theDevice(0)));
  EXPECT_FALSE(map_file_is_compatible_with_device(L"mine", theDevice(1)));

  writeMap("mine", "9-pin ltc", "30 fps");
  EXPECT_FALSE(map_file_uses_vitc(L"mine")) << "the file is read again";
  EXPECT_TRUE(map_file_is_compatible_with_project(L"mine"));
  EXPECT_FALSE(map_file_is_compatible_with_device(L"mine", theDevice(2)));
}

TEST_F(LabelMapFiles, MissingFileIsNotLoaded)
{
  script().frameRate = 3;
  EXPECT_FALSE(map_file_uses_vitc(L"gone"));
  EXPECT_TRUE(map_file_is_compatible_with_project(L"gone"));
  EXPECT_EQ(printedBy([id = theDevice(0)] { EXPECT_FALSE(map_file_is_compatible_with_device(L"gone", id)); }),
            std::vector<std::string>{"\"Invalid label mapping file name <gone>\\n\""});
}

TEST_F(LabelMapFiles, FileWithAnErrorIsNotLoadedAtAll)
{
  script().frameRate = 3;
  writeMap("unknown word", "vitc", "31 fps");
  writeMap("too short", "vitc", "30 fps", 12);
  for (const wchar_t* name : {L"unknown word", L"too short"}) {
    EXPECT_FALSE(map_file_uses_vitc(name));
    EXPECT_TRUE(map_file_is_compatible_with_project(name));
    EXPECT_FALSE(map_file_is_compatible_with_device(name, theDevice(0)));
  }
}

TEST_F(LabelMapFiles, DefaultMapOfEachPortAndRateFitsBoth)
{
  for (int port : {0, 1, 2})
    for (int rate : {3, 4, 5, 6, 7, 8, 9, 10}) {
      const IdStamp id = theDevice(port);
      script().frameRate = rate;
      script().outputFrameRate = rate;
      const LightweightString<wchar_t> name = get_device_label_map_name(id);
      EXPECT_TRUE(map_file_is_compatible_with_project(name)) << text(toUTF8(name)) << " at rate " << rate;
      EXPECT_EQ(printedBy([&] { EXPECT_TRUE(map_file_is_compatible_with_device(name, id)); }),
                std::vector<std::string>{});
    }
}

TEST_F(LabelMapFiles, DeviceWithAConfiguredFileUsesIt)
{
  writeMap("mine", "9-pin vitc", "25 fps");
  reelhost::DeviceSettings settings = device(1, "D");
  settings.labelMap = "mine";
  setDevices({settings});
  addReel("R1", {}, {{"reel_labelmapping", "Device default"}});
  EXPECT_EQ(text(toUTF8(get_required_label_map_name("R1", IdStamp(settings.id)))), "mine");
}

} // namespace

} // namespace reeldb_tests
