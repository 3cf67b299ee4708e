// SPDX-License-Identifier: Apache-2.0
//
// A row of a table or an object of JSON that is a clip: what such clips have in common.
#ifndef REELDB_LISTS_CLIP_ROW_H
#define REELDB_LISTS_CLIP_ROW_H

#include <optional>
#include <string>
#include <string_view>

#include "lists/collector.h"
#include "lists/list.h"

namespace reeldb::lists {

/// What a row says of a clip. Texts may be in any state, and are empty if the row does not say it.
struct ClipRow {
  int line = 0;
  std::string reel, clipName, sourceFile, tracks, sourceIn, sourceOut, recordIn, recordOut, frameRate;
  std::string cameraRoll, soundRoll, sourceId;
  bool dropFrame = false;
  std::vector<std::string> aliases;
  std::optional<int> videoChannels, audioChannels;
};

/// Takes the clip of the row, and the sound of a row that has a sound roll. @p text is the row as reports show it.
/// Returns the identifier of its source; empty if the row was rejected or has no source.
std::string takeRow(Collector& collector, ClipRow row, std::string_view text);

} // namespace reeldb::lists

#endif
