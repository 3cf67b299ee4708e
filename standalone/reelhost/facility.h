// SPDX-License-Identifier: Apache-2.0
/// @file
/// A facility: the folder with the site's configuration, its devices, its reel types, its label maps and its projects.
/// Texts are UTF-8. Main thread only.
#ifndef REELHOST_FACILITY_H
#define REELHOST_FACILITY_H

#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/codes.h"
#include "reelhost/error.h"

namespace reelhost {

struct State; ///< what the state file holds; the host's own

/// One external device as the facility describes it.
struct DeviceSettings {
  int number = -1;                     ///< the index that getConfig(int) takes; not negative
  unsigned id = 0;                     ///< the device's identity, not 0; stays when name or number change
  std::string name;                    ///< display name, UTF-8
  int portType = codes::noPort;        ///< codes::port9Pin and its neighbours
  int inputType = codes::noVideoInput; ///< the words and the other codes are in docs/formats/facility.md
  int audioInputs = 0;
  std::vector<std::string> tapes; ///< reel types the device accepts
  std::string labelMap;           ///< configured label map, may be empty
  std::string lastReel;           ///< from the state file; may be empty
};

/// facility.toml and the state file beside it, read; a value. Hand-written files are never written; what commands
/// change goes to the state file.
class Facility {
public:
  Facility(); ///< no facility: no devices, no projects, built-in texts and frame rates
  /// Reads the folder's files. Throws Error: Unreadable for an unknown key or a wrong type in facility.toml or the
  /// state file, with file, line and key, and for a record of devicedata/reeltype.dat that would end the process while
  /// the library is loaded, with file and line; NotFound for a folder without facility.toml; Io for what the system
  /// refuses to read.
  static Facility read(const std::filesystem::path& dir);
  /// What the folder's files say and hardly mean, "PATH:LINE: FACT" each, in the order of the lines: numbers of
  /// channels in devicedata/reeltype.dat that are no numbers, or more than a reel can have. As of read().
  const std::vector<std::string>& remarks() const { return remarks_; }

  const std::filesystem::path& directory() const { return directory_; } ///< absolute; empty without a facility
  std::filesystem::path deviceDataDirectory() const;                    ///< ends in '/'
  std::filesystem::path labelMapDirectory() const;                      ///< where NAME.toml is the label map NAME
  std::filesystem::path projectDirectory() const;                       ///< where NAME.reels is the project NAME
  /// Throws Error (Refused) for a name that is no plain file name: one that is empty, longer than 200 bytes, begins
  /// with a dot, or holds a slash or a control character.
  static void requireProjectName(const std::string& name);
  /// The file of the project, which need not be there. Throws Error (Refused) for what requireProjectName() refuses,
  /// and where links lead out of the facility: nothing beyond it is written.
  std::filesystem::path projectFile(const std::string& name) const;
  /// The names of the project files that are there, sorted by their bytes; none when the folder cannot be read.
  std::vector<std::string> projectNames() const;
  /// The project of who names none; empty when the facility names none.
  const std::string& defaultProject() const { return defaultProject_; }

  std::optional<std::string> configString(const std::string& key) const; ///< "default_reel_type" and the like, if set
  const std::string& resourceText(unsigned id) const; ///< codes::wordForReel is "Reel"; empty: there is no such text
  /// Names and codes of the frame rates, in the order of the file.
  const std::vector<std::pair<std::string, int>>& frameRates() const { return frameRates_; }
  /// The code of a frame rate. A name comes before a code; both must be known.
  std::optional<int> frameRateCode(const std::string& nameOrCode) const;

  const std::vector<DeviceSettings>& devices() const { return devices_; } ///< in the order of the file
  std::vector<DeviceSettings>& devices() { return devices_; }             ///< changes last as long as this object

  std::string systemValue(const std::string& key) const; ///< what is pending, else stored; empty: nothing is
  void setSystemValue(const std::string& key, const std::string& value); ///< pending until saveState
  void setLastReel(unsigned deviceId, const std::string& reel);          ///< pending until saveState
  bool stateChanged() const; ///< whether a pending value differs from what is stored
  /// Merges the pending values into the state file, replaces it by rename, and takes over what other processes have
  /// stored meanwhile. Without a facility the values last as long as this object. Throws Error: Busy when another
  /// process is merging and does not come to an end, Unreadable when the file is damaged (it then stays as it is),
  /// Refused when a key is not UTF-8 or the file would become too large to be read again, Io. Nothing is stored then,
  /// and the values are still pending.
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
  std::vector<std::string> remarks_;
};

/// A facility in the making: all of it, or nothing. What was made goes again with the owner, files and folders, unless
/// keep() was called; what was there stays in any case.
class NewFacility {
public:
  /// Makes a facility in @p dir: facility.toml, devicedata/reeltype.dat, labelmaps/ with the nine default maps,
  /// projects/. Throws Error: Refused when there is one already or when one of these files exists; Io. Nothing is left
  /// of it then. Never overwrites a file.
  explicit NewFacility(const std::filesystem::path& dir);
  ~NewFacility(); ///< takes away what was made and not kept; folders only when nobody has put something there
  NewFacility(const NewFacility&) = delete; ///< not copied: what was made goes once
  NewFacility& operator=(const NewFacility&) = delete;
  void keep(); ///< from here on all that was made stays

private:
  class Made;
  std::unique_ptr<Made> made_;
};

/// One entry of a label map file; docs/formats/labelmap.md has the words for the codes.
struct LabelMapEntry {
  bool inUse = false;
  unsigned source = 0; ///< code of where the label is read, 0 to 9
  unsigned format = 0; ///< code of what it counts, 0 to 10
};
/// Reads a label map file: always fourteen entries. Throws Error (NotFound, Unreadable, Io) that names file, line and
/// what is wrong.
std::vector<LabelMapEntry> readLabelMap(const std::filesystem::path& file);
/// The word for a format code in label map files; the number itself when there is none.
std::string labelFormatWord(unsigned code);

/// The word for a port type in facility.toml; the number itself when there is none.
std::string portWord(int code);
/// The word for an input type in facility.toml; the number itself when there is none.
std::string inputWord(int code);

} // namespace reelhost

#endif
