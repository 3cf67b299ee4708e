// SPDX-License-Identifier: Apache-2.0
#ifndef REELHOST_VALUES_HOLDERS_H
#define REELHOST_VALUES_HOLDERS_H

namespace reelhost {

/// Tells that a shared body was made, with a count that begins at one: no incRef speaks of its first holder. Any
/// thread.
void countFirstHolder();

} // namespace reelhost

#endif
