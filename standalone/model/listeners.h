// SPDX-License-Identifier: Apache-2.0
//
// Notifies the project's listeners of events. Each event reaches every listener that existed when the event began and
// still exists at its turn. If listeners throw, the first exception is rethrown after all have been notified.
#ifndef REELHOST_MODEL_LISTENERS_H
#define REELHOST_MODEL_LISTENERS_H

#include "host/events.h"

namespace reelhost::model {

void notifyProjectEntry();
void notifyProjectExit();
void notifyLogModification(const Cookie& log, const EditModification& modification);
void notifyLogsModification(const CookieVec& logs);
void notifyLogsDeletion(const CookieVec& logs);

} // namespace reelhost::model

#endif
