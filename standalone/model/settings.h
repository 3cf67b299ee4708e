// SPDX-License-Identifier: Apache-2.0
#ifndef REELHOST_MODEL_SETTINGS_H
#define REELHOST_MODEL_SETTINGS_H

#include "reelhost/facility.h"

namespace reelhost::model {

/// The facility of the process; one without devices and settings when there is none or it cannot be read. Never throws
/// for a bad facility, so it may be called while libraries are loaded.
Facility& facilityOrNone();

} // namespace reelhost::model

#endif
