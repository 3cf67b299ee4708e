// SPDX-License-Identifier: Apache-2.0
//
// Bytes as text: base64 according to RFC 4648, with padding and without line ends.
#ifndef REELDB_BASE_BASE64_H
#define REELDB_BASE_BASE64_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace reeldb::base {

inline constexpr std::string_view base64Digits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

inline std::string toBase64(std::string_view bytes)
{
  std::string text;
  text.reserve((bytes.size() + 2) / 3 * 4);
  for (std::size_t at = 0; at < bytes.size(); at += 3) {
    const std::string_view group = bytes.substr(at, 3);
    std::uint32_t bits = 0;
    for (std::size_t i = 0; i < 3; ++i)
      bits = bits << 8U | (i < group.size() ? static_cast<unsigned char>(group[i]) : 0U);
    for (std::size_t i = 0; i < 4; ++i)
      text += i <= group.size() ? base64Digits[bits >> (18 - 6 * i) & 63U] : '=';
  }
  return text;
}

/// The bytes of a text that toBase64() returns; empty for any other text.
inline std::optional<std::string> fromBase64(std::string_view text)
{
  std::string bytes;
  std::uint32_t bits = 0;
  for (std::size_t at = 0; at < text.size(); ++at) {
    const std::size_t digit = base64Digits.find(text[at]);
    if (digit == std::string_view::npos)
      break;
    bits = bits << 6U | static_cast<std::uint32_t>(digit);
    if (at % 4 != 0)
      bytes += static_cast<char>(bits >> (6 - 2 * (at % 4)) & 0xFFU);
  }
  // Whatever does not follow the rules gives another text.
  if (toBase64(bytes) != text)
    return std::nullopt;
  return bytes;
}

} // namespace reeldb::base

#endif
