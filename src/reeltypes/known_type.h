// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_REELTYPES_KNOWN_TYPE_H
#define REELDB_REELTYPES_KNOWN_TYPE_H

#include "ReelTypeManager.h"

namespace reeldb {

/// Whether the catalogue holds this type name. Does not add the name.
inline bool isKnownType(const LightweightString<char>& name)
{
  return static_cast<bool>(theReelTypeManager()->rep()->find(name));
}

} // namespace reeldb

#endif
