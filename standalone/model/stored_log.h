// SPDX-License-Identifier: Apache-2.0
//
// Comparing whole logs as the store keeps them.
#ifndef REELHOST_MODEL_STORED_LOG_H
#define REELHOST_MODEL_STORED_LOG_H

#include <algorithm>
#include <array>
#include <map>
#include <string>

#include "host/cookie.h"
#include "reelhost/store.h"

namespace reelhost::model {

using Values = std::map<std::string, std::string>;

inline Values valuesOf(const KeyValues& values)
{
  return Values(values.begin(), values.end());
}

/// Whether the logs, which have one identity, have the same values, in whatever order of their fields.
inline bool isSame(const StoredLog& a, const StoredLog& b)
{
  return a.type == b.type && a.imported == b.imported && a.entireMedium == b.entireMedium && a.name == b.name &&
         a.reelType == b.reelType && a.videoChannels == b.videoChannels && a.audioChannels == b.audioChannels &&
         valuesOf(a.fields) == valuesOf(b.fields);
}

inline Cookie cookieOf(const std::array<unsigned char, 16>& bytes, std::uint16_t tag, char kind)
{
  Zr::UUID uuid;
  std::copy(bytes.begin(), bytes.end(), uuid.bytes);
  return Cookie(uuid, tag, kind);
}

inline Cookie cookieOf(const StoredLog& log)
{
  return cookieOf(log.uuid, log.tag, log.kind);
}

} // namespace reelhost::model

#endif
