// SPDX-License-Identifier: Apache-2.0
//
// The subjects of measurements: projects of a given size, and the bare loops of host calls with which the library's
// operations are compared. A bare loop makes exactly the host calls of the operation and does nothing else.
#ifndef REELDB_BENCH_SUBJECTS_H
#define REELDB_BENCH_SUBJECTS_H

#include <string>
#include <vector>

#include "ReelDbManager.h"
#include "reelhost/store.h"

namespace reeldb_bench {

/// "A000001_C" and so on: all have the same length, so none is a prefix of another.
std::string reelName(int n);

/// Opens a project in memory with these numbers of reels, and of shots per reel, and lets the manager list the reels.
void openProjectInMemory(int reels, int shotsPerReel);
/// Writes the same project to a file.
void writeProject(const std::string& file, int reels, int shotsPerReel);

/// Scans for an identifier that no reel has.
bool bareScan(const CookieVec& reels, const char* id);
void bareIdentifiers(const CookieVec& reels, std::vector<LightweightString<char>>& out);
void bareCompatible(const CookieVec& reels, int device, std::vector<LightweightString<char>>& out);
void bareReferenced(const CookieVec& reels, const CookieVec& shots, CookieVec& out);

} // namespace reeldb_bench

#endif
