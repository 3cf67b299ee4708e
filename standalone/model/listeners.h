// SPDX-License-Identifier: Apache-2.0
//
// Tells the project's listeners what happened. Each event reaches every listener that was there when it began and is
// still there when its turn comes; what a listener throws passes on when all have been told, the first of it only.
#ifndef REELHOST_MODEL_LISTENERS_H
#define REELHOST_MODEL_LISTENERS_H

#include "host/events.h"

namespace reelhost::model {

void tellProjectEntry();
void tellProjectExit();
void tellLogModification(const Cookie& log, const EditModification& modification);
void tellLogsDeletion(const CookieVec& logs);

} // namespace reelhost::model

#endif
