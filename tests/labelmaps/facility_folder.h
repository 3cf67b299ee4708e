// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_TESTS_LABELMAPS_FACILITY_FOLDER_H
#define REELDB_TESTS_LABELMAPS_FACILITY_FOLDER_H

#include "reelhost/facility.h"
#include "reelhost/host.h"
#include "support/temp_folder.h"

namespace reeldb_tests {

/// A facility on disk with the usual label maps, which the process uses for as long as this lives.
class FacilityFolder {
public:
  FacilityFolder()
  {
    reelhost::NewFacility(folder_.path()).keep();
    reelhost::useFacility(reelhost::Facility::read(folder_.path()));
  }
  ~FacilityFolder() { reelhost::useFacility(reelhost::Facility()); }
  FacilityFolder(const FacilityFolder&) = delete;
  FacilityFolder& operator=(const FacilityFolder&) = delete;

  const std::filesystem::path& path() const { return folder_.path(); }

private:
  TempFolder folder_;
};

} // namespace reeldb_tests

#endif
