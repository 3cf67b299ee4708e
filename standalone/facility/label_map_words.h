// SPDX-License-Identifier: Apache-2.0
#ifndef REELHOST_FACILITY_LABEL_MAP_WORDS_H
#define REELHOST_FACILITY_LABEL_MAP_WORDS_H

#include <optional>
#include <string>
#include <string_view>

namespace reelhost {

/// The codes of the words in label map files; docs/formats/labelmap.md lists them.
std::optional<unsigned> labelSourceCode(std::string_view word);
std::optional<unsigned> labelFormatCode(std::string_view word);
std::string labelSourceWords(); ///< all words for sources, comma separated
std::string labelFormatWords();

} // namespace reelhost

#endif
