// SPDX-License-Identifier: Apache-2.0
#ifndef REELHOST_FACILITY_STATE_FILE_H
#define REELHOST_FACILITY_STATE_FILE_H

#include <chrono>
#include <filesystem>
#include <map>
#include <string>

namespace reelhost {

/// What commands change about a facility. Texts may hold any bytes.
struct State {
  std::map<std::string, std::string> system;
  std::map<unsigned, std::string> lastReel; ///< by device identity
};

/// The values of @p changes over those of @p state, without the empty ones that say nothing: an empty last reel is
/// none, and an empty setting counts only where facility.toml, whose settings are @p configured, has one that it takes
/// away.
State merged(State state, const State& changes, const std::map<std::string, std::string>& configured);

/// state.toml of a facility: written by programs, never by hand, so that facility.toml can be left alone.
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
  /// Puts these values over those in the file as merged does, replaces it whole, and answers them all. Processes that
  /// merge at the same time wait for each other. Throws Error: Busy after @p busyTimeout; Unreadable when the file is
  /// damaged, and Refused when it would become too large to be read again, and leaves it as it is then; Io.
  State merge(const State& changes, std::chrono::milliseconds busyTimeout = usualTimeout) const;

private:
  std::filesystem::path file() const { return facility_ / "state.toml"; }
  std::filesystem::path facility_;
  std::map<std::string, std::string> configured_;
};

} // namespace reelhost

#endif
