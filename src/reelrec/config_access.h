// SPDX-License-Identifier: Apache-2.0
//
// The configuration block's `in` has overloads of opposite meaning: with a key alone non-null is "present", with an
// out-argument 0 is "read". Each meaning is spelt out once, here.
#ifndef REELDB_REELREC_CONFIG_ACCESS_H
#define REELDB_REELREC_CONFIG_ACCESS_H

#include "host/config.h"

namespace reeldb {

inline bool hasKey(const configb& block, const char* key)
{
  return block.in(key) != nullptr;
}

/// The text of a key; without a body when the key is absent.
inline LightweightString<char> textOf(const configb& block, const char* key)
{
  return block.in(key);
}

/// Reads a value in any of its forms; whether it was there. @p out holds whatever the host left in it.
template <class Out>
bool readValue(const configb& block, const char* key, Out&& out)
{
  return block.in(key, out) == 0;
}

inline void writeText(configb& block, const char* key, const char* text)
{
  block.set(key, text, nullptr);
}

} // namespace reeldb

#endif
