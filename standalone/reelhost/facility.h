// SPDX-License-Identifier: Apache-2.0
//
// A facility: the folder with the site's configuration, its devices, its reel types, its label maps and its projects.
#ifndef REELHOST_FACILITY_H
#define REELHOST_FACILITY_H

#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "reelhost/error.h"

namespace reelhost {

struct State;

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
/// line and key; a folder without the file throws Error (NotFound). Hand-written files are never written; what commands
/// change goes to the state file.
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
  const std::string& defaultProject() const { return defaultProject_; } ///< empty when the facility names none

  std::optional<std::string> configString(const std::string& key) const; ///< "default_reel_type" and the like
  const std::string& resourceText(unsigned id) const;                    ///< text of a resource, UTF-8; 10043 is "Reel"
  const std::vector<std::pair<std::string, int>>& frameRates() const
  {
    return frameRates_;
  } ///< names and codes, in order
  std::optional<int>
  frameRateCode(const std::string& nameOrCode) const; ///< a name comes before a code; both must be known

  const std::vector<DeviceSettings>& devices() const { return devices_; }
  std::vector<DeviceSettings>& devices() { return devices_; }

  std::string systemValue(const std::string& key) const;                 ///< empty when nothing is stored
  void setSystemValue(const std::string& key, const std::string& value); ///< pending until saveState
  void setLastReel(unsigned deviceId, const std::string& reel);          ///< pending until saveState
  bool stateChanged() const; ///< whether a pending value differs from what is stored
  /// Merges the pending values into the state file, replaces it by rename, and takes over what other processes have
  /// stored meanwhile. Without a facility the values last as long as this object. Throws Error: Busy when another
  /// process is merging and does not come to an end, Unreadable when the file is damaged (it then stays as it is), Io.
  void saveState();
  void dropState(); ///< forgets the pending values; the devices have their stored last reels again

private:
  friend class FacilityReader;
  std::string storedLastReel(unsigned deviceId) const;
  void take(const State& state); ///< these and no other values go before facility.toml
  std::filesystem::path directory_;
  std::string defaultProject_;
  std::map<std::string, std::string> config_;
  std::map<std::string, std::string> configuredSystem_; ///< of facility.toml
  std::map<std::string, std::string> system_, pendingSystem_;
  std::map<unsigned, std::string> texts_, storedLastReel_, pendingLastReel_;
  std::vector<std::pair<std::string, int>> frameRates_;
  std::vector<DeviceSettings> devices_;
};

/// The nearest folder from @p start upwards that holds a facility.toml.
std::optional<std::filesystem::path> findFacility(const std::filesystem::path& start);

/// A facility in the making: all of it, or nothing. What was made goes again with the owner, files and folders, unless
/// keep() was called; what was there stays in any case.
class NewFacility {
public:
  /// Makes a facility in @p dir: facility.toml, devicedata/reeltype.dat, labelmaps/ with the nine default maps,
  /// projects/. Throws Error: Refused when there is one already or when one of these files exists; Io. Nothing is left
  /// of it then. Never overwrites a file.
  explicit NewFacility(const std::filesystem::path& dir);
  ~NewFacility();
  NewFacility(const NewFacility&) = delete;
  NewFacility& operator=(const NewFacility&) = delete;
  void keep();

private:
  class Made;
  std::unique_ptr<Made> made_;
};

/// Makes a facility, as above, and keeps it.
void createFacility(const std::filesystem::path& dir);

/// One entry of a label map file.
struct LabelMapEntry {
  bool inUse = false;
  unsigned source = 0;
  unsigned format = 0;
};
/// Reads a label map file: always fourteen entries. Throws Error (NotFound, Unreadable, Io) that names file, line and
/// what is wrong.
std::vector<LabelMapEntry> readLabelMap(const std::filesystem::path& file);
/// The word for a format code in label map files; the number itself when there is none.
std::string labelFormatWord(unsigned code);

} // namespace reelhost

#endif
