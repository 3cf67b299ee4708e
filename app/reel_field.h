// SPDX-License-Identifier: Apache-2.0
//
// The fields of a reel that `set` knows, by name.
#ifndef REELDB_CLI_REEL_FIELD_H
#define REELDB_CLI_REEL_FIELD_H

#include <functional>
#include <string>
#include <vector>

#include "ReelDbManager.h"
#include "ReelDbRec.h"

namespace reeldb::cli {

struct ReelField {
  std::string name; ///< the one name of the field, whatever it was called on the command line
  std::function<void(const std::string&)> check; ///< throws Failure for a value that cannot be, warns of a doubtful one
  std::function<std::string(ReelDbRec&)> read;
  std::function<void(ReelDbRec&, const std::string&)> write; ///< the value has passed the check
};

/// The field of that name: one of the fixed names, a user field by its number, or by its display name, letter case
/// aside. Throws Failure when there is none, or when two user fields are called that.
ReelField findReelField(const std::string& name, ReelDbManager& manager);

/// The fixed names, then those of the user fields by number.
std::vector<std::string> reelFieldNames();

/// Whether findReelField takes the name for a fixed field or a number, so that no user field is found by it.
bool isReservedFieldName(const std::string& name);

} // namespace reeldb::cli

#endif
