// SPDX-License-Identifier: Apache-2.0
//
// One reel as commands show it.
#ifndef REELDB_CLI_REEL_H
#define REELDB_CLI_REEL_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "ReelDbRec.h"
#include "text/output.h"

class ReelDbManager;

namespace reeldb::cli {

/// The user fields of a reel are numbered from 0; these are the ones that are copied with it.
inline constexpr std::size_t userFieldCount = 6;

struct Reel {
  std::string id;
  std::string type;
  bool available = false;
  bool inhibit = false;
  std::string labelMapping;
  std::string bin;
  std::string lastDevice;
  int videoChannels = 0; ///< the log's own, whatever the type says
  int audioChannels = 0;
  std::array<std::string, userFieldCount> userFields;
  std::int64_t shots = 0; ///< other logs that carry the identifier, letter case aside
};

/// How many shots each reel has, as reelhost::shotCounts tells.
using ShotCounts = std::unordered_map<std::string, std::int64_t>;

Reel readReel(ReelDbRec record, const ShotCounts& shots);

/// All reels of the project in its order; those without an identifier are left out, as the library does in its lists.
std::vector<Reel> readReels(const ReelDbManager& manager, const ShotCounts& shots);

Json toJson(const Reel& reel);

/// Whether the reel type catalogue lists the name. Asking adds nothing to it.
bool isListedType(const std::string& type);

std::string_view yesOrNo(bool value);

} // namespace reeldb::cli

#endif
