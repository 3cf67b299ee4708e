// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_REELDB_LOG_NAME_H
#define REELDB_REELDB_LOG_NAME_H

#include "host/codes.h"
#include "host/text.h"

namespace reeldb {

/// The name of a reel's log: the host's word for a reel, a blank, the identifier.
inline LightweightString<wchar_t> reelLogName(const LightweightString<char>& reelId)
{
  const LightweightString<wchar_t> word = paddedResourceStrW(codes::wordForReel, nullptr, L" ", ResStrFmt(0));
  return word + Zr::WStringFromAscii(reelId.c_str());
}

} // namespace reeldb

#endif
