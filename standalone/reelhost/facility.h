// SPDX-License-Identifier: Apache-2.0
//
// A facility: the folder with the site's configuration, its devices, its reel types, its label maps and its projects.
#ifndef REELHOST_FACILITY_H
#define REELHOST_FACILITY_H

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "reelhost/error.h"

namespace reelhost {

/// One external device as the facility describes it.
struct DeviceSettings {
  int number = -1;                ///< the index that getConfig(int) takes; not negative
  unsigned id = 0;                ///< the device's identity, not 0; stays when name or number change
  std::string name;               ///< display name, UTF-8
  int portType = 3;               ///< 0 "9-pin", 1 "1394", 2 "device-named", 3 "none"
  int inputType = 9;              ///< 9 "none"; the words and the other codes are in docs/formats/facility.md
  int audioInputs = 0;            ///< connected audio inputs
  std::vector<std::string> tapes; ///< reel types the device accepts
  std::string labelMap;           ///< configured label map, may be empty
  std::string lastReel;           ///< from the state file; may be empty
};

/// facility.toml and the state file beside it, read. Unknown keys and wrong types throw Error (Unreadable) with file,
/// line and key. Hand-written files are never written; what commands change goes to the state file.
class Facility {
public:
  Facility(); ///< no facility: no devices, no projects, built-in texts and frame rates
  static Facility read(const std::filesystem::path& dir);

  const std::filesystem::path& directory() const { return directory_; } ///< empty without a facility
  std::filesystem::path deviceDataDirectory() const;                    ///< ends in '/'
  std::filesystem::path labelMapDirectory() const;
  std::filesystem::path projectDirectory() const;
  std::filesystem::path
  projectFile(const std::string& name) const;    ///< throws Error (Refused) for a name that is no plain file name
  std::vector<std::string> projectNames() const; ///< sorted
  const std::string& defaultProject() const { return defaultProject_; }

  std::optional<std::string> configString(const std::string& key) const; ///< "default_reel_type" and the like
  const std::string& resourceText(unsigned id) const;                    ///< text of a resource, UTF-8; 10043 is "Reel"
  const std::vector<std::pair<std::string, int>>& frameRates() const
  {
    return frameRates_;
  } ///< names and codes, in order
  std::optional<int> frameRateCode(const std::string& nameOrCode) const;

  const std::vector<DeviceSettings>& devices() const { return devices_; }
  std::vector<DeviceSettings>& devices() { return devices_; }

  std::string systemValue(const std::string& key) const;                 ///< empty when nothing is stored
  void setSystemValue(const std::string& key, const std::string& value); ///< pending until saveState
  void setLastReel(unsigned deviceId, const std::string& reel);          ///< pending until saveState
  bool stateChanged() const;
  /// Merges the pending values into the state file and replaces it by rename. Throws Error (Io).
  void saveState();
  void dropState(); ///< forgets the pending values

private:
  friend class FacilityReader;
  std::filesystem::path directory_;
  std::string defaultProject_;
  std::map<std::string, std::string> config_, system_, pendingSystem_;
  std::map<unsigned, std::string> texts_, pendingLastReel_;
  std::vector<std::pair<std::string, int>> frameRates_;
  std::vector<DeviceSettings> devices_;
};

/// The nearest folder from @p start upwards that holds a facility.toml.
std::optional<std::filesystem::path> findFacility(const std::filesystem::path& start);

/// Makes a facility in @p dir: facility.toml, devicedata/reeltype.dat, labelmaps/ with the nine default maps,
/// projects/. Throws Error (Refused) when there is one already; never overwrites a file.
void createFacility(const std::filesystem::path& dir);

/// One entry of a label map file.
struct LabelMapEntry {
  bool inUse = false;
  unsigned source = 0;
  unsigned format = 0;
};
/// Reads labelmaps/NAME.toml. Throws Error (NotFound, Unreadable) that names file, line and what is wrong.
std::vector<LabelMapEntry> readLabelMap(const std::filesystem::path& file);

} // namespace reelhost

#endif
