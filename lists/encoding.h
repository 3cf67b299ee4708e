// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_LISTS_ENCODING_H
#define REELDB_LISTS_ENCODING_H

#include <string>
#include <string_view>

namespace reeldb::lists {

/// The bytes as UTF-8, without byte order mark and without padding at the end: end marks (0x1A), NUL, line ends, and
/// the blanks among these.
///
/// A byte order mark decides between UTF-8 and UTF-16. If any bytes are not UTF-8, all bytes are read as Latin-1.
std::string decode(std::string_view bytes);

/// The same without a copy if the bytes are UTF-8: it views the bytes then, else @p converted, which it fills.
std::string_view decode(std::string_view bytes, std::string& converted);

/// Whether the bytes are plain text in UTF-16, in either byte order, without a byte order mark.
bool isUnmarkedUtf16(std::string_view bytes);

} // namespace reeldb::lists

#endif
