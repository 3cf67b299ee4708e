// SPDX-License-Identifier: Apache-2.0
#ifndef REELHOST_MODEL_SETTINGS_H
#define REELHOST_MODEL_SETTINGS_H

#include "reelhost/facility.h"

namespace reelhost::model {

/// The facility of the process, or an empty one if there is no facility or it cannot be read. Never throws for a bad
/// facility, so it may be called while libraries are loaded.
Facility& facilityOrNone();

} // namespace reelhost::model

#endif
