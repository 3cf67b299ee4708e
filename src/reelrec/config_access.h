// SPDX-License-Identifier: Apache-2.0
//
// The overloads of configb::in have opposite results: with a key alone, non-null means "present"; with an out-argument,
// 0 means "read". Only this file tests these results.
#ifndef REELDB_REELREC_CONFIG_ACCESS_H
#define REELDB_REELREC_CONFIG_ACCESS_H

#include "host/config.h"

namespace reeldb {

inline bool hasKey(const configb& block, const char* key)
{
  return block.in(key) != nullptr;
}

/// The text of a key; without a body if the key is absent.
inline LightweightString<char> textOf(const configb& block, const char* key)
{
  return block.in(key);
}

/// Reads a value of any type. Returns whether the key was there. @p out holds the value that the host left in it.
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
