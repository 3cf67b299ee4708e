// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_REELDB_IDENTIFIER_H
#define REELDB_REELDB_IDENTIFIER_H

#include <strings.h>

#include "host/codes.h"
#include "host/lwstring.h"
#include "host/text.h"

namespace reeldb {

/// Whether two identifiers name the same reel; letter case is ignored. The empty identifier equals only itself.
inline bool sameReelId(const LightweightString<char>& a, const LightweightString<char>& b)
{
  return strcasecmp(a.c_str(), b.c_str()) == 0;
}

/// The name of a reel's log: the host's word for a reel, a blank, the identifier.
inline LightweightString<wchar_t> reelLogName(const LightweightString<char>& reelId)
{
  const LightweightString<wchar_t> word = paddedResourceStrW(codes::wordForReel, nullptr, L" ", ResStrFmt(0));
  return word + Zr::WStringFromAscii(reelId.c_str());
}

/// Whether a reel's type makes it a live feed, and a device's tape list makes the device a live source.
inline constexpr const char* liveType = "Live";

} // namespace reeldb

#endif
