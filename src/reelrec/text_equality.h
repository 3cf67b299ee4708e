// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_REELREC_TEXT_EQUALITY_H
#define REELDB_REELREC_TEXT_EQUALITY_H

#include <cstring>
#include <cwchar>

#include "host/lwstring.h"

namespace reeldb {

/// Compares with letter case. A string without a body equals the empty text.
inline bool sameText(const LightweightString<char>& a, const LightweightString<char>& b)
{
  return std::strcmp(a.c_str(), b.c_str()) == 0;
}

inline bool sameText(const LightweightString<wchar_t>& a, const LightweightString<wchar_t>& b)
{
  return std::wcscmp(a.c_str(), b.c_str()) == 0;
}

} // namespace reeldb

#endif
