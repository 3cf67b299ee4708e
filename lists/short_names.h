// SPDX-License-Identifier: Apache-2.0
//
// Reel names that fit into the reel field of a cut list and are unique per reel.
#ifndef REELDB_LISTS_SHORT_NAMES_H
#define REELDB_LISTS_SHORT_NAMES_H

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace reeldb::lists {

/// The reel fields in use: numbers of three digits, A-Z and 0-9 in 6 or 8 characters, and letters, digits and
/// "_.-&" in 32 or 129.
inline constexpr std::array<std::size_t, 5> kReelFields = {3, 6, 8, 32, 129};

/// What a field of letters leaves of an identifier before names are made distinct: what it does not know is left out or
/// replaced, and the rest is cut. Empty when nothing is left. Case is as it comes.
std::string fieldForm(std::string_view reel, std::size_t field);

/// A name for each reel, none like another in whatever case, and none of those that stand for no reel (BL, AX ...). The
/// same reels in the same order always get the same names. The identifiers are distinct, ASCII case aside; @p field is
/// one of kReelFields.
///
/// An identifier that fits keeps its spelling, upper case where the field wants it. Of any other, what the field cannot
/// hold is left out, or replaced by '_' in the wide fields, and the rest is cut when no other reel would be cut to the
/// same; else a number ends the name. A field of digits counts from 001. Nothing when there are more reels than names.
std::optional<std::vector<std::string>> shortReelNames(const std::vector<std::string>& reels, std::size_t field);

} // namespace reeldb::lists

#endif
