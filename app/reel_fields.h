// SPDX-License-Identifier: Apache-2.0
//
// Changing the fields of a reel, and the names of its user fields.
#ifndef REELDB_APP_REEL_FIELDS_H
#define REELDB_APP_REEL_FIELDS_H

#include <optional>
#include <string>
#include <vector>

#include "app/reels.h"
#include "app/session.h"

namespace reeldb::app {

/// A field by any of its names, and the text to store there; an empty text removes the value.
struct Assignment {
  std::string field, value;
};

struct FieldChange {
  std::string field;         ///< the main name of the field
  std::string before, after; ///< as the library reads them; equal if nothing changed
  bool changed() const { return before != after; }
};

struct ChangedReel {
  std::string id; ///< as the record spells it
  std::vector<FieldChange> changes;
  bool stored = false;              ///< false: there was nothing to change
  std::vector<std::string> remarks; ///< why a value is doubtful; each "subject: fact (cause)"
};

/// Changes fields of a reel and stores that. Every field and value is checked before anything is written. The fields
/// are type, available, inhibit, label-map, bin, last-device and user-field.N. A field also has its name in JSON
/// reports; a user field also has its number and its display name, ignoring letter case. @p expected: the values that
/// fields must have now. Throws Error: NotFound, Invalid for an invalid field or value, Refused; Conflict
/// (app/conflict.h) for the first field that has another value than expected. REQUIRES: a session for writing.
ChangedReel changeReel(Session& session, const std::string& id, const std::vector<Assignment>& assignments,
                       const std::vector<Assignment>& expected = {});

/// The same for several reels, which are stored in one commit, or not at all. Throws as changeReel does.
std::vector<ChangedReel> changeReels(Session& session, const std::vector<std::string>& ids,
                                     const std::vector<Assignment>& assignments,
                                     const std::vector<Assignment>& expected = {});

/// The names of the fields that changeReel takes, user fields by number.
std::vector<std::string> reelFieldNames();
/// The main name of the field that has this name for changeReel. Empty if no field has it. Throws Error: Invalid for a
/// number of no user field, Refused if two user fields have the name.
std::optional<std::string> reelFieldName(const std::string& name);

/// A user field of the facility.
struct UserField {
  int number = 0;
  std::string stored;      ///< the stored name; empty if no name is stored
  std::string display;     ///< the name that the library returns
  std::string defaultName; ///< the name if no name is stored; counts from 1
};

std::vector<UserField> listUserFields();

struct NamedUserFields {
  std::vector<UserField> fields; ///< all of them, afterwards
  bool stored = false;
};

/// Names user fields by their numbers and stores that in the facility; an empty name removes a name. Throws Error:
/// Invalid for an invalid number, Refused for a name that is blank, that another field has (ignoring letter case), or
/// that means another field to changeReel.
NamedUserFields nameUserFields(const std::vector<Assignment>& assignments);

} // namespace reeldb::app

#endif
