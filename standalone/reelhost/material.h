// SPDX-License-Identifier: Apache-2.0
/// @file
/// A shot as applications see it, and the keys under which its log keeps its texts. Any thread.
#ifndef REELHOST_MATERIAL_H
#define REELHOST_MATERIAL_H

#include <array>
#include <string>

namespace reelhost {

/// A clip of imported material: one shot. All texts UTF-8; timecodes as written.
struct Material {
  std::string reel;       ///< reel identifier; empty: none
  std::string name;       ///< clip name
  std::string sourceFile, ///< file the clip comes from
      sourceIn,           ///< timecode of its start on the reel
      sourceOut,          ///< timecode of its end on the reel
      recordIn,           ///< timecode of its start in the cut
      recordOut,          ///< timecode of its end in the cut
      tracks;             ///< which tracks it is on
  std::string aliases;    ///< other names of the reel, one a line
  int videoChannels = 0,  ///< how many
      audioChannels = 0;  ///< how many
};

/// One text of a shot.
struct ShotText {
  const char* key;             ///< of the log's configuration block, UTF-8
  std::string Material::*text; ///< where a Material has it
};

/// The texts of a shot that its log keeps in the configuration block, the reel identifier first. Stores return these
/// keys in this order, before all others.
inline constexpr std::array<ShotText, 8> shotTexts = {{
    {"reelid", &Material::reel},
    {"source_file", &Material::sourceFile},
    {"source_in", &Material::sourceIn},
    {"source_out", &Material::sourceOut},
    {"record_in", &Material::recordIn},
    {"record_out", &Material::recordOut},
    {"tracks", &Material::tracks},
    {"aliases", &Material::aliases},
}};

} // namespace reelhost

#endif
