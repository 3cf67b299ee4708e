// SPDX-License-Identifier: Apache-2.0
#include "lists/encoding.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iterator>

#include <utf8.h>

namespace reeldb::lists {
namespace {

constexpr std::string_view utf8Mark = "\xEF\xBB\xBF";
constexpr std::string_view utf16LittleMark = "\xFF\xFE";
constexpr std::string_view utf16BigMark = "\xFE\xFF";
constexpr std::uint32_t replacement = 0xFFFD;

/// The number of ASCII characters before the first other one, or some fewer. Most lists have no other.
std::size_t asciiBytes(std::string_view text)
{
  constexpr std::uint64_t highBits = 0x8080808080808080U;
  std::size_t at = 0;
  for (std::uint64_t bytes = 0; text.size() - at >= sizeof bytes; at += sizeof bytes) {
    std::memcpy(&bytes, text.data() + at, sizeof bytes);
    if ((bytes & highBits) != 0)
      break;
  }
  return at;
}

std::string fromLatin1(std::string_view bytes)
{
  std::string text;
  text.reserve(bytes.size() + bytes.size() / 8);
  for (char c : bytes)
    utf8::append(std::uint32_t{static_cast<unsigned char>(c)}, std::back_inserter(text));
  return text;
}

/// Half a surrogate pair and half a code unit become U+FFFD.
std::string fromUtf16(std::string_view bytes, bool bigEndian)
{
  auto unit = [&](std::size_t at) {
    auto high = static_cast<unsigned char>(bytes[at + (bigEndian ? 0 : 1)]);
    auto low = static_cast<unsigned char>(bytes[at + (bigEndian ? 1 : 0)]);
    return static_cast<std::uint32_t>(high << 8 | low);
  };
  std::string text;
  text.reserve(bytes.size());
  std::size_t at = 0;
  for (; at + 1 < bytes.size(); at += 2) {
    std::uint32_t point = unit(at);
    if (point >= 0xD800 && point <= 0xDFFF) {
      const bool first = point < 0xDC00 && at + 3 < bytes.size();
      const std::uint32_t second = first ? unit(at + 2) : 0;
      if (second >= 0xDC00 && second <= 0xDFFF) {
        point = 0x10000 + ((point - 0xD800) << 10) + (second - 0xDC00);
        at += 2;
      } else {
        point = replacement;
      }
    }
    utf8::append(point, std::back_inserter(text));
  }
  if (at < bytes.size())
    utf8::append(replacement, std::back_inserter(text));
  return text;
}

} // namespace

std::string_view decode(std::string_view bytes, std::string& converted)
{
  std::string_view text = bytes;
  if (bytes.starts_with(utf16LittleMark) || bytes.starts_with(utf16BigMark)) {
    text = converted = fromUtf16(bytes.substr(2), bytes.starts_with(utf16BigMark));
  } else {
    if (text.starts_with(utf8Mark))
      text.remove_prefix(utf8Mark.size());
    const std::string_view rest = text.substr(asciiBytes(text));
    if (!utf8::is_valid(rest.begin(), rest.end()))
      text = converted = fromLatin1(text);
  }
  // The blanks of the last line stay: tabs may delimit empty cells, and a blank may end a wrapped note.
  constexpr std::string_view padding("\0\x1A\f \t\r\n", 7);
  const std::size_t end = text.find_last_not_of(padding);
  return end == std::string_view::npos ? std::string_view() : text.substr(0, text.find_first_not_of(" \t", end + 1));
}

std::string decode(std::string_view bytes)
{
  std::string converted;
  return std::string(decode(bytes, converted));
}

bool isUnmarkedUtf16(std::string_view bytes)
{
  // In UTF-16, each letter, digit and line end at the start of a list has a zero byte beside it.
  constexpr std::size_t looked = 64;
  const std::string_view start = bytes.substr(0, std::min(bytes.size(), looked) & ~std::size_t{1});
  std::array<std::size_t, 2> zeros = {};
  for (std::size_t i = 0; i < start.size(); ++i)
    zeros[i % 2] += start[i] == '\0' ? 1 : 0;
  return !start.empty() &&
         ((zeros[0] == start.size() / 2 && zeros[1] == 0) || (zeros[1] == start.size() / 2 && zeros[0] == 0));
}

} // namespace reeldb::lists
