// SPDX-License-Identifier: Apache-2.0
//
// The fields of a reel that a person may change. For the sources of this room.
#ifndef REELDB_APP_REEL_FIELD_H
#define REELDB_APP_REEL_FIELD_H

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "ReelDbRec.h"
#include "app/reel_fields.h"

namespace reeldb::app {

using Remarks = std::vector<std::string>;

/// Throws Error for an invalid value, and adds a remark for a doubtful one.
using Check = std::function<void(const std::string&, Remarks&)>;

struct ReelField {
  std::string name; ///< the main name of the field
  Check check;
  std::function<std::string(ReelDbRec&)> read;
  std::function<void(ReelDbRec&, const std::string&)> write; ///< the value has passed the check
  bool isFlag = false;
};

/// The value of a flag; empty if the text does not say it.
std::optional<bool> parseFlag(const std::string& value);
std::string flagWord(bool flag);

/// All fields but the user fields.
std::vector<ReelField> fixedFields();
ReelField userField(int number);
/// Whether the name means a field whatever the user fields are called.
bool meansField(const std::string& name);
/// The field of that name, if there is one. Throws Error if two user fields have it.
std::optional<ReelField> fieldNamed(const std::string& name);
/// The field of that name. Throws Error if no field has that name, or if two user fields have it.
ReelField findField(const std::string& name);
/// Throws Error if the value is not plain text, or is longer than the library can read back.
void requireStorable(const Assignment& assignment);

} // namespace reeldb::app

#endif
