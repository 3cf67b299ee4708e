// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_CLI_PROJECT_FILE_H
#define REELDB_CLI_PROJECT_FILE_H

#include <string>

#include "reelhost/facility.h"

namespace reeldb::cli {

/// The frame rate of a new project when nobody says another, as the facility names it.
inline constexpr const char* usualFrameRate = "25";

/// Makes the project in the facility, with everything that entering it would otherwise store: a new project is never
/// changed by those who only read it. Throws Failure for a rate that the facility does not know and for a
/// name that cannot be shown, reelhost::Error for one that is no plain file name or is taken.
void makeProject(const reelhost::Facility& facility, const std::string& name, const std::string& rate);

/// The facility's name of a frame rate code, or the code itself.
std::string frameRateName(const reelhost::Facility& facility, int code);

} // namespace reeldb::cli

#endif
