// SPDX-License-Identifier: Apache-2.0
//
// The reel types of the facility.
#ifndef REELDB_APP_TYPES_H
#define REELDB_APP_TYPES_H

#include <string>
#include <vector>

namespace reeldb::app {

struct ReelType {
  std::string name;
  int videoChannels = 0; ///< the value of the parameter; it may be negative
  int audioChannels = 0;
  std::string parameters;
};

struct ReelTypes {
  std::vector<ReelType> types;      ///< in the order of the file devicedata/reeltype.dat
  std::vector<std::string> remarks; ///< why there are no types; "subject: fact (cause)"
};

/// The catalogue of the process, which the library reads once. Throws Error if there is no facility.
ReelTypes listTypes();

} // namespace reeldb::app

#endif
