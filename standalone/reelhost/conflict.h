// SPDX-License-Identifier: Apache-2.0
/// @file
/// The error of changes that exclude each other: one that waits to be stored here, and one that another process stored.
#ifndef REELHOST_CONFLICT_H
#define REELHOST_CONFLICT_H

#include <optional>
#include <string>
#include <utility>

#include "reelhost/error.h"
#include "reelhost/history.h"

namespace reelhost {

/// Two changes that exclude each other.
struct Meeting {
  std::string subject; ///< the identifier of the reel, the name of another log, or the file of a list
  std::string field;   ///< the key of the value; empty: the reel, log or list as a whole
  std::optional<std::string> here, stored; ///< the value here and the stored one; empty: there is no such value
  Revision revision;                       ///< that stored it
};

/// Who made the commit, when and how: "by jo on edit3 at 2026-11-22T13:38:48Z, revision 12: reeldb set A001 bin=x". Fit
/// to be shown.
std::string describeCommit(const Revision& revision);

/// An Error (Conflict) that says which values meet. what() names the reel, the field, both values, who and when.
class Conflict : public Error {
public:
  Conflict(Meeting meeting, const std::string& what) : Error(ErrorKind::Conflict, what), meeting_(std::move(meeting)) {}
  const Meeting& meeting() const { return meeting_; }

private:
  Meeting meeting_;
};

} // namespace reelhost

#endif
