// SPDX-License-Identifier: Apache-2.0
#ifndef REELHOST_MODEL_EDIT_HANDLES_H
#define REELHOST_MODEL_EDIT_HANDLES_H

namespace reelhost::model {

/// Whether any handle on a log is open, so that the log must stay.
bool logsAreHeld();

} // namespace reelhost::model

#endif
