// SPDX-License-Identifier: Apache-2.0
//
// docs/label-map-defaults.md lists results of the library. This test makes the document and compares.
#include <cstdlib>
#include <fstream>
#include <sstream>

#include "LabelMaps.h"
#include "host/text.h"
#include "labelmaps/facility_folder.h"
#include "support/library_fixture.h"

namespace reeldb_tests {

namespace {

constexpr const char* file = REELDB_DOCS "/label-map-defaults.md";
constexpr int lowestRate = -1;
constexpr int highestRate = 11;
constexpr int portTypes = 4;
constexpr int rateFamilies[] = {3, 4, 2}; // 25, 29.97 and 24 frames a second
constexpr const char* maps[] = {"pal9pin", "nts9pin", "24f9pin", "pal1394", "ntsc1394",
                                "24f1394", "paltofd", "ntstofd", "24ftofd"};

constexpr const char* head = R"(# Default label maps

The result of `get_device_label_map_name` for a device without a configured label map, by the frame rate code of the
project's output and the port type of the device. A device whose configured map does not fit it gets the same result.
All port types other than 0 and 1 give the same maps; codes that are not in the table give the maps of code 0.

<!-- Written by the test labelmaps_test; renew it with: REELDB_RENEW=1 labelmaps_test -->

| Frame rate code | 9-pin port (0) | 1394 port (1) | device-named (2) | no port (3) |
|---|---|---|---|---|
)";

constexpr const char* configured = R"(
## Devices with a configured map

The result of the same function, and of `reeldb label-map for --device N`, for a device that is configured with one of
the default maps that `reeldb init` writes, in projects of each family of frame rates. It is the configured map if that
fits the device, whatever the project's rate is; otherwise it is the map of the table above.

| Configured map | 9-pin, 25 | 9-pin, 29.97 | 9-pin, 24 | 1394, 25 | 1394, 29.97 | 1394, 24 | no port, 25 | no port, 29.97 | no port, 24 |
|---|---|---|---|---|---|---|---|---|---|
)";

class DefaultsDocument : public LibraryTest {
protected:
  std::string answer(int portType, int rate, const std::string& map = {})
  {
    reelhost::DeviceSettings settings = device(1, "Deck");
    settings.portType = portType;
    settings.labelMap = map;
    setDevices({settings});
    script().outputFrameRate = rate;
    return text(toUTF8(get_device_label_map_name(IdStamp(settings.id))));
  }

  std::string document()
  {
    std::ostringstream out;
    out << head;
    for (int rate = lowestRate; rate <= highestRate; ++rate) {
      out << "| " << rate;
      for (int portType = 0; portType < portTypes; ++portType)
        out << " | `" << answer(portType, rate) << "`";
      out << " |\n";
    }
    out << configured;
    for (const char* const map : maps) {
      out << "| `" << map << '`';
      for (const int portType : {0, 1, 3})
        for (const int rate : rateFamilies)
          out << " | `" << answer(portType, rate, map) << '`';
      out << " |\n";
    }
    return out.str();
  }

private:
  const FacilityFolder facility_;
};

TEST_F(DefaultsDocument, StatesTheResultsOfTheLibrary)
{
  const std::string wanted = document();
  if (std::getenv("REELDB_RENEW"))
    std::ofstream(file, std::ios::binary) << wanted;
  std::ifstream in(file, std::ios::binary);
  ASSERT_TRUE(in) << file << ": not there (run labelmaps_test with REELDB_RENEW=1 to write it)";
  std::ostringstream have;
  have << in.rdbuf();
  EXPECT_EQ(have.str(), wanted) << file << ": out of date (run labelmaps_test with REELDB_RENEW=1 to renew it)";
}

} // namespace

} // namespace reeldb_tests
