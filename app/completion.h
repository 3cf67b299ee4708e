// SPDX-License-Identifier: Apache-2.0
//
// The possible values of an argument: for faces that offer choices while it is typed.
#ifndef REELDB_APP_COMPLETION_H
#define REELDB_APP_COMPLETION_H

#include <optional>
#include <string>
#include <vector>

namespace reeldb::app {

/// The kind of thing that a value names.
enum class ValueKind {
  Other,
  Reel,
  Device,
  Project,
  LabelMap,
  ListFile,
  FrameRate,
  Field,
  UserField,
  Match,
  NameSource,
  ReelType,
  Group,
  File,
  Folder
};

struct Choice {
  std::string word;
  std::string description; ///< one line; may be empty
};

/// The values of that kind in the facility and its project. They do not depend on @p typed, except for an assignment
/// "field=value", where @p typed decides which half is completed. Empty for files and folders, which a shell completes.
/// Throws Error if they cannot be read.
std::vector<Choice> choices(ValueKind kind, const std::string& typed, const std::optional<std::string>& project);

} // namespace reeldb::app

#endif
