// SPDX-License-Identifier: Apache-2.0
#ifndef REELHOST_FACILITY_STATE_FILE_H
#define REELHOST_FACILITY_STATE_FILE_H

#include <chrono>
#include <filesystem>
#include <map>
#include <string>

namespace reelhost {

/// The settings of a facility that commands change. Texts may hold any bytes.
struct State {
  std::map<std::string, std::string> system;
  std::map<unsigned, std::string> lastReel; ///< by device identity
};

/// The values of @p state, overridden by those of @p changes. Empty values without effect are left out: an empty last
/// reel, and an empty setting unless facility.toml has that setting, which the empty value then removes. @p configured
/// are the settings of facility.toml.
State merged(State state, const State& changes, const std::map<std::string, std::string>& configured);

/// state.toml of a facility. Only programs write it, so that they never change facility.toml.
class StateFile {
public:
  /// How long merge waits for another process that is merging; it takes some milliseconds.
  static constexpr std::chrono::milliseconds usualTimeout{10'000};

  /// @p configured are the settings of facility.toml, as for merged.
  explicit StateFile(std::filesystem::path facility, std::map<std::string, std::string> configured = {})
      : facility_(std::move(facility)), configured_(std::move(configured))
  {
  }

  /// Empty when there is no file. Throws Error: Unreadable ("PATH: damaged (...)"), Io.
  State read() const;
  /// Merges these values into the file as merged does, replaces the whole file, and returns all values. Processes that
  /// merge at the same time wait for each other. Throws Error: Busy after @p busyTimeout; Unreadable if the file is
  /// damaged; Refused if it would become too large to be read again; Io. The file is unchanged after Unreadable and
  /// Refused.
  State merge(const State& changes, std::chrono::milliseconds busyTimeout = usualTimeout) const;

private:
  std::filesystem::path file() const { return facility_ / "state.toml"; }
  std::filesystem::path facility_;
  std::map<std::string, std::string> configured_;
};

} // namespace reelhost

#endif
