// SPDX-License-Identifier: Apache-2.0
// A host that keeps one project in memory: what an application does with it. Main thread only.
#ifndef MINIMAL_HOST_H
#define MINIMAL_HOST_H

#include <string>

#include "host/cookie.h"

namespace minimal_host {

void startUp(); ///< makes the calling thread the main thread; before that no reel is made

/// A new, empty project, entered; a project that is open is left first. The name makes it this project or another.
void enterProject(const std::string& name, int frameRate, int outputFrameRate);
void leaveProject(); ///< the project is gone; does nothing without one

/// A log that another module of the application made: type 9 a reel, 1 material, 0 neither. REQUIRES: a project is
/// open.
Cookie addLog(int type, const std::string& reelId);
/// A clip that comes in from outside; the library makes the reel it names. REQUIRES: a project is open.
Cookie importClip(const std::string& reelId);

int openLogs();                         ///< openings of logs that are not closed, and changes that have not ended
std::wstring nameOf(const Cookie& log); ///< REQUIRES: there is such a log

void runDeferred(); ///< what other threads left for the main thread; called when that comes back to the application

} // namespace minimal_host

#endif
