// SPDX-License-Identifier: Apache-2.0
//
// The facility of the process. For the sources of this room.
#ifndef REELDB_APP_FACILITY_H
#define REELDB_APP_FACILITY_H

#include "reelhost/facility.h"

namespace reeldb::app {

/// The facility of the process. Throws Error: Refused if there is no facility, else the reason why it cannot be read.
reelhost::Facility& requireFacility();

} // namespace reeldb::app

#endif
