// SPDX-License-Identifier: Apache-2.0
/// @file
/// A shot as applications see it, and the keys of its texts in its log. Any thread.
#ifndef REELHOST_MATERIAL_H
#define REELHOST_MATERIAL_H

#include <array>
#include <string>
#include <tuple>

namespace reelhost {

/// A clip of imported material: one shot. All texts UTF-8; timecodes as written.
struct Material {
  std::string reel;         ///< reel identifier; empty: no reel
  std::string name;         ///< clip name
  std::string sourceFile,   ///< file the clip comes from
      sourceIn,             ///< timecode of its start on the reel
      sourceOut,            ///< timecode of its end on the reel
      recordIn,             ///< timecode of its start in the cut
      recordOut,            ///< timecode of its end in the cut
      tracks;               ///< the tracks it is on
  std::string aliases;      ///< other names of the reel, one per line
  int videoChannels = 0,    ///< number of video channels
      audioChannels = 0;    ///< number of audio channels
  std::string frameRate;    ///< frames per second of its timecodes, such as "23.98"; empty if the list does not say
  bool dropFrame = false;   ///< whether the list says that its timecodes are drop frame
  std::string ownName;      ///< the name that the list gave the source; empty: the reel identifier
  bool mayBeCut = false;    ///< whether that name may be the beginning of a longer one
  std::string sourceId;     ///< the list's id of the source
  std::string furtherNames; ///< what other lists call the source of a shot, one name per line: the name, a tab, "cut"
                            ///< if it may be the beginning of a longer one, a tab, the list's id of the source
  std::string reelOfNames;  ///< the reel that the names gave a shot; empty: its own name
  std::string cameraRoll;   ///< the camera roll of its reel
  std::string soundOf;      ///< for sound with a roll of its own, the name of its picture's source

  friend bool operator==(const Material& a, const Material& b)
  {
    return std::tie(a.reel, a.name, a.sourceFile, a.sourceIn, a.sourceOut, a.recordIn, a.recordOut, a.tracks, a.aliases,
                    a.videoChannels, a.audioChannels, a.frameRate, a.dropFrame, a.ownName, a.mayBeCut, a.sourceId,
                    a.furtherNames, a.reelOfNames, a.cameraRoll, a.soundOf) ==
           std::tie(b.reel, b.name, b.sourceFile, b.sourceIn, b.sourceOut, b.recordIn, b.recordOut, b.tracks, b.aliases,
                    b.videoChannels, b.audioChannels, b.frameRate, b.dropFrame, b.ownName, b.mayBeCut, b.sourceId,
                    b.furtherNames, b.reelOfNames, b.cameraRoll, b.soundOf);
  }
  friend bool operator!=(const Material& a, const Material& b) { return !(a == b); }
};

/// One text of a shot.
struct ShotText {
  const char* key;             ///< its key in the log's configuration block, UTF-8
  std::string Material::*text; ///< its member in a Material
};

/// The texts of a shot that are in its log's configuration block, the reel identifier first. Stores return these keys
/// in this order, before all other keys.
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

/// The keys of frameRate and dropFrame, which logs have only if the list says so. To stores they are like any other
/// key.
inline constexpr const char* frameRateKey = "frame_rate";
inline constexpr const char* dropFrameKey = "drop_frame"; ///< its text is "yes"
/// The keys of the texts below dropFrame, likewise.
inline constexpr const char* ownNameKey = "own_name";
inline constexpr const char* mayBeCutKey = "own_name_may_be_cut"; ///< its text is "yes"
inline constexpr const char* sourceIdKey = "source_id";
inline constexpr const char* furtherNamesKey = "further_names";
inline constexpr const char* reelOfNamesKey = "reel_of_names";
inline constexpr const char* cameraRollKey = "camera_roll";
inline constexpr const char* soundOfKey = "sound_of";

} // namespace reelhost

#endif
