// SPDX-License-Identifier: Apache-2.0
//
// The types of reels that the library creates for imported shots. For the sources of this room.
#ifndef REELDB_APP_NEW_REEL_TYPES_H
#define REELDB_APP_NEW_REEL_TYPES_H

#include <optional>
#include <set>
#include <string>

#include "ReelDbManager.h"
#include "app/shots.h"

namespace reeldb::app {

/// What the shots of a reel say of it, in whatever order they came.
struct TypeEvidence {
  std::string reel;            ///< the identifier
  std::set<std::string> names; ///< others, as lists give them
  bool audio = false, video = false;

  void add(const Shot& shot);
  bool operator==(const TypeEvidence&) const = default;
};

/// The type of a reel that imports make, by the rules of the facility and the built-in ones. Empty if none fits: the
/// project's default.
std::string typeByRules(const TypeEvidence& use);

std::string defaultTypeOfProject();

/// Gives the reels that the library creates meanwhile a type: it takes the project's default type for that time, in
/// memory. The library adds channels to a reel and removes none, so the type has to be there before the reel.
class TypeOfNewReels {
public:
  /// An empty type leaves the default type as it is.
  TypeOfNewReels(ReelDbManager& manager, const std::string& type);
  ~TypeOfNewReels(); ///< puts the default type back
  TypeOfNewReels(const TypeOfNewReels&) = delete;
  TypeOfNewReels& operator=(const TypeOfNewReels&) = delete;

private:
  ReelDbManager& manager_;
  std::optional<std::string> default_; ///< to be put back
};

} // namespace reeldb::app

#endif
