// SPDX-License-Identifier: Apache-2.0
#ifndef REELHOST_FACILITY_RESOURCES_H
#define REELHOST_FACILITY_RESOURCES_H

namespace reelhost {

/// The resource that stands before the identifier in the name of a reel's log.
constexpr unsigned wordForReel = 10043;

} // namespace reelhost

#endif
