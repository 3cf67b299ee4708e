// SPDX-License-Identifier: Apache-2.0
//
// Compares names of sources as lists write them: cut to a field, with other characters in place of blanks and points,
// with and without the ending of a media file.
//
// Names are UTF-8; bytes that are not UTF-8 are compared as they are. Letters and digits are those of ASCII. Other
// characters of ASCII all count as equal; a character beyond ASCII is equal only to itself. Widths are in characters.
// Every function takes time linear in the lengths of its names. Views returned look into the argument.
#ifndef REELDB_LISTS_NAME_FORMS_H
#define REELDB_LISTS_NAME_FORMS_H

#include <cstddef>
#include <string>
#include <string_view>

namespace reeldb::lists {

/// The field of the second name in a row of a source table.
inline constexpr std::size_t rowNameField = 16;

/// Whether the name has as many characters as the field; false for a field of 0. Such a name may be the beginning of a
/// longer one.
bool fillsField(std::string_view name, std::size_t field);

/// The form in which names are the same: letters in lower case, '_' for each other character of ASCII.
std::string nameForm(std::string_view name);

/// The name form without the '_'.
std::string lettersForm(std::string_view name);

/// Whether all characters are letters and digits; false for an empty name.
bool isLettersOnly(std::string_view name);

/// Whether both have one name form.
bool isSameName(std::string_view a, std::string_view b);

/// Whether the name is longer than @p cut and begins with it: in the name form, or, if @p cut is of letters and digits
/// alone, with the other characters of the name left out. REQUIRES: @p cut fills the field of its list.
bool isCutForm(std::string_view cut, std::string_view name);

/// What a media file's extension says of its content.
enum class Ending { None, Sound, Still, File };

struct NameParts {
  std::string_view stem; ///< the name without its ending
  Ending ending = Ending::None;
};

/// Parts a name from its ending: the extension of a media file (".mov"), a range of frames (".[1-96]"), or both in
/// either order. A range makes any ending that of a file. A name that would have no stem has no ending.
NameParts partsOf(std::string_view name);

/// Whether the name is a short form of the longer one: it fills its field and is a cut form, or it has no ending and is
/// the same name as the longer one without its ending.
bool isShortForm(std::string_view name, bool fills, std::string_view longer);

/// A clip name without what editing systems add behind it (".NEW.01", ".COPY.02", ".SUB.01", ".SYNC.01"), however
/// often they did.
std::string_view withoutAdditions(std::string_view clipName);

/// The name behind the last slash or backslash of a path; the whole text if it has no such name.
std::string_view fileName(std::string_view path);

} // namespace reeldb::lists

#endif
