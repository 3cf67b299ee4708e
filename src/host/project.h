// SPDX-License-Identifier: Apache-2.0
/// @file
/// Properties of the current project. Main thread only.
#ifndef REELDB_HOST_PROJECT_H
#define REELDB_HOST_PROJECT_H

namespace Zr {
/// Properties of the project that is open.
namespace CurrentProject {
/// Which state of the project. The library passes 0 alone.
enum Revision : int {};
int getFrameRate(Revision);      ///< the frame rate code; called with 0; -1 when there is no project
int getOutputImageZRFrameRate(); ///< the output's frame rate code; -1 when there is no project
} // namespace CurrentProject
} // namespace Zr

#endif
