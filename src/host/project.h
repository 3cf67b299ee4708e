// SPDX-License-Identifier: Apache-2.0
/// @file
/// Properties of the current project. Main thread only. Without a project, both rates are codes::noFrameRate.
#ifndef REELDB_HOST_PROJECT_H
#define REELDB_HOST_PROJECT_H

// Also in a host that is compiled with -fvisibility=hidden.
#pragma GCC visibility push(default)

namespace Zr {
/// Properties of the project that is open.
namespace CurrentProject {
/// Which state of the project. The library passes only 0.
enum Revision : int {};
int getFrameRate(Revision);      ///< codes::rate25 or one of its neighbours; called with 0
int getOutputImageZRFrameRate(); ///< likewise, of the output
} // namespace CurrentProject
} // namespace Zr

#pragma GCC visibility pop

#endif
