// SPDX-License-Identifier: Apache-2.0
#ifndef REELHOST_FACILITY_READER_H
#define REELHOST_FACILITY_READER_H

#include <filesystem>

#include "facility/toml_file.h"
#include "reelhost/facility.h"

namespace reelhost {

/// Fills a Facility from facility.toml and the state file beside it.
class FacilityReader {
public:
  explicit FacilityReader(const std::filesystem::path& dir);
  Facility take() { return std::move(facility_); }

private:
  void readFacility(const TomlTable& table);
  void readTexts(const TomlTable& table);
  void readFrameRates(const TomlTable& table);
  void readSystem(const TomlTable& table);
  void readDevice(const TomlTable& table);
  void readTypeRule(const TomlTable& table, const std::vector<std::string>& types);
  void readState();

  Facility facility_;
};

} // namespace reelhost

#endif
