// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_FUZZ_SUPPORT_TOML_TEXT_H
#define REELDB_FUZZ_SUPPORT_TOML_TEXT_H

#include <string>

namespace reeldb_fuzz {

/// A text without control characters, as TOML writes it.
inline std::string tomlText(const std::string& text)
{
  std::string quoted = "\"";
  for (const char c : text)
    quoted += c == '"' || c == '\\' ? std::string("\\") + c : std::string(1, c);
  return quoted + '"';
}

} // namespace reeldb_fuzz

#endif
