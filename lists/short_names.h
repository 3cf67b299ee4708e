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
inline constexpr std::array<std::size_t, 5> reelFields = {3, 6, 8, 32, 129};

/// The form of an identifier in a field of letters, before names are made distinct: characters that the field does not
/// allow are left out or replaced, and the result is cut to its length. Empty if no character is left. Keeps the case.
std::string fieldForm(std::string_view reel, std::size_t field);

/// A unique name for each reel, ignoring case, and different from the names that mean no reel (BL, AX ...). The same
/// reels in the same order always get the same names. REQUIRES: the identifiers are distinct, ignoring ASCII case;
/// @p field is one of reelFields.
///
/// An identifier that fits keeps its spelling, in upper case where the field requires that. In any other, characters
/// that the field does not allow are left out, or replaced by '_' in the wide fields. The result is cut if no other
/// reel would be cut to the same name; else a number ends the name. A field of digits counts from 001. Empty if there
/// are more reels than names.
std::optional<std::vector<std::string>> shortReelNames(const std::vector<std::string>& reels, std::size_t field);

} // namespace reeldb::lists

#endif
