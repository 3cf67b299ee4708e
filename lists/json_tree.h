// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_LISTS_JSON_TREE_H
#define REELDB_LISTS_JSON_TREE_H

#include <string>
#include <string_view>
#include <vector>

namespace reeldb::lists {

struct JsonMember;

/// A value of a file of JSON. Members that the reader does not ask for are not in the tree.
struct JsonValue {
  enum class Kind { Null, Text, Number, Bool, Object, Array };

  Kind kind = Kind::Null;
  int line = 0;     ///< where it begins, counted from 1
  std::string text; ///< of a text; of a number all its digits, or NaN, Infinity or -Infinity; "true" or "false"
  std::vector<JsonMember> members; ///< of an object; of an array with empty names

  bool isNull() const { return kind == Kind::Null; }
  /// The first member of that name; a null value if there is none.
  const JsonValue& operator[](std::string_view name) const;
  /// The text of a text or a number; empty for anything else.
  std::string_view asText() const;
};

struct JsonMember {
  std::string name;
  JsonValue value;
};

/// Whether a reader asks for the members of that name. @p parent is the name of the member that holds the object; empty
/// for the outermost one.
using AsksFor = bool (*)(std::string_view name, std::string_view parent);

/// Reads the text of a file, which is JSON, but for NaN, Infinity and numbers of any length. Throws Error with @p
/// format in its text if the file is damaged or has more than mostLevels levels. Memory grows with what the tree keeps,
/// not with the file.
JsonValue parseJson(std::string_view text, std::string_view format, AsksFor asksFor);

/// The same for a text with any number of values one after another.
std::vector<JsonValue> parseJsonValues(std::string_view text, std::string_view format, AsksFor asksFor);

} // namespace reeldb::lists

#endif
