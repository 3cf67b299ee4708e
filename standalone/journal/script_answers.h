// SPDX-License-Identifier: Apache-2.0
//
// The questions of host operations to the script. Called only while the script is in use.
#ifndef REELHOST_JOURNAL_SCRIPT_ANSWERS_H
#define REELHOST_JOURNAL_SCRIPT_ANSWERS_H

#include <optional>
#include <string>

#include "host/cookie.h"
#include "reelhost/journal.h"

namespace reelhost::scripted {

/// Lets the script replace an operation: throws what Script::before throws, or the armed fault.
void meet(const char* operation, const std::string& arguments, bool mayThrow);

bool openingFails(const Cookie& log); ///< counts one opening
bool databaseIsGone();                ///< counts one request for the database
bool hasNoRow(const Cookie& log);
std::optional<std::string> attributeOf(const Cookie& log);

struct TypeField {
  const char* text; ///< null: the row has no type
};
std::optional<TypeField> typeFieldOf(const Cookie& log); ///< the text stays until the script changes
std::optional<Cookie> nextProjectCookie();

} // namespace reelhost::scripted

#endif
