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

struct State; ///< the content of the state file; private to the host

/// One external device as the facility describes it.
struct DeviceSettings {
  int number = -1;                     ///< the index that getConfig(int) takes; not negative
  unsigned id = 0;                     ///< the device's identity, not 0; independent of name and number
  std::string name;                    ///< display name, UTF-8
  int portType = codes::noPort;        ///< codes::port9Pin and its neighbours
  int inputType = codes::noVideoInput; ///< docs/formats/facility.md lists the words and the other codes
  int audioInputs = 0;
  std::vector<std::string> tapes; ///< reel types the device accepts
  std::string labelMap;           ///< configured label map, may be empty
  std::string lastReel;           ///< from the state file; may be empty
};

/// Which type a new reel gets. Every condition that is given must hold; there is at least one.
struct TypeRule {
  std::string type; ///< a type of devicedata/reeltype.dat
  std::string name; ///< a pattern for the identifier: '*' is any text, '?' any character; may be empty
  std::vector<std::string> extensions;                                ///< of the file, without the dot; may be empty
  enum class Tracks { Any, Audio, Video, Both } tracks = Tracks::Any; ///< those that its shots use
};

/// The content of facility.toml and of the state file beside it; a value. The host never writes the hand-written files;
/// changes by commands go to the state file.
class Facility {
public:
  Facility(); ///< no facility: no devices, no projects, built-in texts and frame rates
  /// Reads the folder's files. Throws Error: Unreadable for an unknown key or a wrong type in facility.toml or the
  /// state file, with file, line and key; Unreadable for a record of devicedata/reeltype.dat that would end the process
  /// while the library is loaded, with file and line; NotFound for a folder without facility.toml; Io if the system
  /// refuses to read a file.
  static Facility read(const std::filesystem::path& dir);
  /// Probable mistakes in the folder's files, each as "PATH:LINE: FACT", in the order of the lines: channel counts in
  /// devicedata/reeltype.dat that are not numbers, or are more than a reel can have. read() finds them.
  const std::vector<std::string>& remarks() const { return remarks_; }

  const std::filesystem::path& directory() const { return directory_; } ///< absolute; empty without a facility
  std::filesystem::path deviceDataDirectory() const;                    ///< ends in '/'
  std::filesystem::path labelMapDirectory() const;                      ///< NAME.toml in it is the label map NAME
  std::filesystem::path projectDirectory() const;                       ///< NAME.reels in it is the project NAME
  /// Throws Error (Refused) if the name is not a plain file name: if it is empty, is longer than 200 bytes, begins with
  /// a dot, or holds a slash or a control character.
  static void requireProjectName(const std::string& name);
  /// The file of the project, which need not exist. Throws Error (Refused) for a name that requireProjectName()
  /// refuses, and if links lead out of the facility, because nothing outside it is written.
  std::filesystem::path projectFile(const std::string& name) const;
  /// The names of the existing project files, sorted by their bytes. Empty if the folder cannot be read.
  std::vector<std::string> projectNames() const;
  /// The project to use when the caller names no project. Empty if the facility sets no default.
  const std::string& defaultProject() const { return defaultProject_; }

  std::optional<std::string> configString(const std::string& key) const; ///< "default_reel_type", for example
  const std::string& resourceText(unsigned id) const; ///< codes::wordForReel is "Reel"; empty if there is no such text
  /// Names and codes of the frame rates, in the order of the file.
  const std::vector<std::pair<std::string, int>>& frameRates() const { return frameRates_; }
  /// The code of a frame rate, by name or else by code. Empty if neither is known.
  std::optional<int> frameRateCode(const std::string& nameOrCode) const;

  /// Whether the history of a project keeps who made a commit, on which machine and in which folder. Unless
  /// facility.toml says otherwise, it does.
  bool keepsNames() const { return keepsNames_; }

  /// The rules for the types of new reels, in the order of the file: the first one that fits decides.
  const std::vector<TypeRule>& typeRules() const { return typeRules_; }

  const std::vector<DeviceSettings>& devices() const { return devices_; } ///< in the order of the file
  std::vector<DeviceSettings>& devices() { return devices_; }             ///< changes are never stored

  std::string systemValue(const std::string& key) const; ///< the pending value, else the stored one, else empty
  void setSystemValue(const std::string& key, const std::string& value); ///< pending until saveState
  void setLastReel(unsigned deviceId, const std::string& reel);          ///< pending until saveState
  bool stateChanged() const;                       ///< whether a pending value differs from the stored one
  std::vector<std::string> pendingChanges() const; ///< the pending values as texts, each "subject: fact"
  /// Merges the pending values into the state file, replaces the file by rename, and takes over values that other
  /// processes have stored meanwhile. Without a facility the values last as long as this object. Throws Error: Busy if
  /// another process is merging and does not finish, Unreadable if the file is damaged (it then stays as it is),
  /// Refused if a key is not UTF-8 or the file would become too large to be read again, Io. After a throw nothing is
  /// stored, and the values are still pending.
  void saveState();
  void dropState(); ///< discards the pending values; the devices have their stored last reels again

private:
  friend class FacilityReader;
  std::string storedLastReel(unsigned deviceId) const;
  void take(const State& state); ///< replaces the stored values, which override facility.toml
  std::filesystem::path directory_;
  std::string defaultProject_;
  bool keepsNames_ = true;
  std::map<std::string, std::string> config_;
  std::map<std::string, std::string> configuredSystem_; ///< from facility.toml
  std::map<std::string, std::string> system_, pendingSystem_;
  std::map<unsigned, std::string> texts_, storedLastReel_, pendingLastReel_;
  std::vector<std::pair<std::string, int>> frameRates_;
  std::vector<TypeRule> typeRules_;
  std::vector<DeviceSettings> devices_;
  std::vector<std::string> remarks_;
};

/// Creates a facility, completely or not at all. The destructor removes the new files and folders unless keep() was
/// called. It never removes what existed before.
class NewFacility {
public:
  /// Creates a facility in @p dir: facility.toml, devicedata/reeltype.dat, labelmaps/ with the nine default maps,
  /// projects/. Throws Error: Refused if there is a facility already or if one of these files exists; Io. After a throw
  /// nothing of the new facility is left. Never overwrites a file.
  explicit NewFacility(const std::filesystem::path& dir);
  ~NewFacility(); ///< unless kept: removes the new files, and the new folders that hold nothing else
  NewFacility(const NewFacility&) = delete; ///< the files are removed once
  NewFacility& operator=(const NewFacility&) = delete;
  void keep(); ///< keeps the files and folders

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
/// Reads a label map file; returns always fourteen entries. Throws Error (NotFound, Unreadable, Io) with file, line and
/// cause.
std::vector<LabelMapEntry> readLabelMap(const std::filesystem::path& file);
/// The word for a format code in label map files; the number itself if the code has no word.
std::string labelFormatWord(unsigned code);

/// The word for a port type in facility.toml; the number itself if the code has no word.
std::string portWord(int code);
/// The word for an input type in facility.toml; the number itself if the code has no word.
std::string inputWord(int code);

} // namespace reelhost

#endif
