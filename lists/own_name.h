// SPDX-License-Identifier: Apache-2.0
//
// The name of a clip's source. A list names a source in several places, and none of them is right everywhere.
// docs/formats/names.md says why this order.
#ifndef REELDB_LISTS_OWN_NAME_H
#define REELDB_LISTS_OWN_NAME_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "lists/list.h"

namespace reeldb::lists {

/// What a list says of the source of one clip. Texts are clean UTF-8 and outlive the call; a text that the list does
/// not give is empty.
struct NameTexts {
  std::string_view reel;          ///< the text in the place of the reel, never empty
  std::size_t field = 0;          ///< the field of that text; 0 if the format has none
  std::string_view sourceFile;    ///< a name or a path
  std::string_view rowSourceFile; ///< the source file noted below the source table's row
  std::string_view rowName;       ///< the longer name of that row
  std::size_t rowField = 0;       ///< the field of that name
  std::string_view replacedReel;  ///< the reel that the text replaces
  std::string_view reelNote;      ///< REEL
  std::string_view clipName;
  bool anyClipName = false; ///< whether a clip name need not have the ending of a media file
};

struct OwnName {
  std::string name;
  NameEvidence evidence = NameEvidence::ReelText;
  bool mayBeCut = false; ///< whether the name fills its field and nothing proves it whole
  std::string file = {}; ///< the source file, if it is the same name with an ending; else empty
};

/// The names of the source, the best one first. The last one is the reel text. Time is linear in the lengths.
std::vector<OwnName> ownNames(const NameTexts& texts);

/// The name of a source without a tape: its file without the folders, else its clip name. Empty if it has neither.
OwnName ownNameWithoutTape(std::string_view sourceFile, std::string_view clipName);

} // namespace reeldb::lists

#endif
