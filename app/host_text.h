// SPDX-License-Identifier: Apache-2.0
//
// Converts between the host's strings and the standard library's. For the sources of this room.
#ifndef REELDB_APP_HOST_TEXT_H
#define REELDB_APP_HOST_TEXT_H

#include <string>

#include "host/lwstring.h"
#include "host/text.h"

namespace reeldb::app {

inline std::string text(const LightweightString<char>& s)
{
  return std::string(s.c_str(), s.length());
}
inline std::string text(const LightweightString<wchar_t>& s)
{
  return text(toUTF8(s));
}
inline LightweightString<char> hostText(const std::string& s)
{
  return LightweightString<char>(s.c_str());
}
inline LightweightString<wchar_t> wideHostText(const std::string& s)
{
  return fromUTF8(hostText(s));
}

} // namespace reeldb::app

#endif
