// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_LISTS_OTIO_TREE_H
#define REELDB_LISTS_OTIO_TREE_H

#include <string>
#include <string_view>
#include <vector>

namespace reeldb::lists {

struct OtioMember;

/// A value of an OTIO file. Members that no reader asks for are not in the tree.
struct OtioValue {
  enum class Kind { Null, Text, Number, Bool, Object, Array };

  Kind kind = Kind::Null;
  int line = 0;     ///< where it begins, counted from 1
  std::string text; ///< of a text; of a number all its digits, or NaN, Infinity or -Infinity; "true" or "false"
  std::vector<OtioMember> members; ///< of an object; of an array with empty names

  bool isNull() const { return kind == Kind::Null; }
  /// The first member of that name; a null value if there is none.
  const OtioValue& operator[](std::string_view name) const;
  /// The text of a text or a number; empty for anything else.
  std::string_view asText() const;
};

struct OtioMember {
  std::string name;
  OtioValue value;
};

/// Reads the text of a file, which is JSON, but for NaN, Infinity and numbers of any length. Throws Error if it is
/// damaged or has more than mostLevels levels. Memory grows with what the tree keeps, not with the file.
OtioValue parseOtio(std::string_view text);

} // namespace reeldb::lists

#endif
