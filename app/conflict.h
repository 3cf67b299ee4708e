// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_APP_CONFLICT_H
#define REELDB_APP_CONFLICT_H

#include <optional>
#include <string>
#include <utility>

#include "app/error.h"
#include "app/history.h"

namespace reeldb::app {

/// A field that is not as the caller expected.
struct FieldConflict {
  std::string id;                    ///< as the record spells it
  std::string field;                 ///< the main name of the field
  std::string expected, found;       ///< as the library reads them
  std::optional<CommitEntry> commit; ///< the last commit that changed the field; empty: unknown
};

/// An Error (Conflict): nothing is stored. what() names the reel, the field, both values, and who made the commit.
class Conflict : public Error {
public:
  Conflict(FieldConflict conflict, const std::string& what)
      : Error(ErrorKind::Conflict, what), conflict_(std::move(conflict))
  {
  }
  const FieldConflict& conflict() const { return conflict_; }

private:
  FieldConflict conflict_;
};

} // namespace reeldb::app

#endif
