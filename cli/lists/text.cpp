// SPDX-License-Identifier: Apache-2.0
#include "lists/text.h"

#include <algorithm>
#include <cstdint>
#include <iterator>

#include <utf8.h>

namespace reeldb::lists {
namespace {

constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
constexpr std::string_view kUtf16LittleMark = "\xFF\xFE";
constexpr std::string_view kUtf16BigMark = "\xFE\xFF";
constexpr std::uint32_t kReplacement = 0xFFFD;

char toUpper(char c)
{
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

std::string fromLatin1(std::string_view bytes)
{
  std::string text;
  text.reserve(bytes.size() + bytes.size() / 8);
  for (char c : bytes)
    utf8::append(static_cast<std::uint32_t>(static_cast<unsigned char>(c)), std::back_inserter(text));
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
        point = kReplacement;
      }
    }
    utf8::append(point, std::back_inserter(text));
  }
  if (at < bytes.size())
    utf8::append(kReplacement, std::back_inserter(text));
  return text;
}

} // namespace

std::string decode(std::string_view bytes)
{
  std::string text;
  if (bytes.starts_with(kUtf16LittleMark) || bytes.starts_with(kUtf16BigMark)) {
    text = fromUtf16(bytes.substr(2), bytes.starts_with(kUtf16BigMark));
  } else {
    if (bytes.starts_with(kUtf8Mark))
      bytes.remove_prefix(kUtf8Mark.size());
    text = utf8::is_valid(bytes.begin(), bytes.end()) ? std::string(bytes) : fromLatin1(bytes);
  }
  // The end mark and NUL count as blanks, so padding of any mix goes here.
  text.resize(trimRight(text).size());
  return text;
}

bool Lines::next(std::string_view& line)
{
  if (rest_.empty())
    return false;
  const std::size_t end = std::min(rest_.find_first_of("\r\n"), rest_.size());
  line = rest_.substr(0, end);
  rest_.remove_prefix(end);
  if (rest_.starts_with("\r\n"))
    rest_.remove_prefix(2);
  else if (!rest_.empty())
    rest_.remove_prefix(1);
  ++number_;
  return true;
}

bool isBlank(char c)
{
  const auto byte = static_cast<unsigned char>(c);
  return byte <= 0x20 || byte == 0x7F;
}

bool isDigit(char c)
{
  return c >= '0' && c <= '9';
}

bool isLetter(char c)
{
  return toUpper(c) >= 'A' && toUpper(c) <= 'Z';
}

std::string_view trimLeft(std::string_view text)
{
  while (!text.empty() && isBlank(text.front()))
    text.remove_prefix(1);
  return text;
}

std::string_view trimRight(std::string_view text)
{
  while (!text.empty() && isBlank(text.back()))
    text.remove_suffix(1);
  return text;
}

std::string_view trim(std::string_view text)
{
  return trimLeft(trimRight(text));
}

std::string clean(std::string_view text)
{
  std::string result;
  result.reserve(text.size());
  for (std::size_t at = 0; at < text.size(); ++at) {
    // C1 controls are 0xC2 0x80 to 0xC2 0x9F.
    const bool c1 = text[at] == '\xC2' && at + 1 < text.size() && static_cast<unsigned char>(text[at + 1]) < 0xA0;
    if (c1)
      ++at;
    result += c1 || isBlank(text[at]) ? ' ' : text[at];
  }
  const std::string_view trimmed = trim(result);
  return trimmed.size() == result.size() ? result : std::string(trimmed);
}

std::string inQuotes(std::string_view text)
{
  constexpr std::size_t kShownBytes = 40;
  return "'" + shortened(text, kShownBytes) + "'";
}

std::string shortened(std::string_view text, std::size_t bytes)
{
  if (text.size() <= bytes)
    return clean(text);
  std::size_t end = bytes;
  while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80)
    --end;
  return clean(text.substr(0, end)) + "...";
}

std::string_view takeFirst(std::string_view& text)
{
  text = trimLeft(text);
  const auto end = std::find_if(text.begin(), text.end(), isBlank);
  const auto size = static_cast<std::size_t>(end - text.begin());
  const std::string_view token = text.substr(0, size);
  text = trimLeft(text.substr(size));
  return token;
}

std::string_view takeLast(std::string_view& text)
{
  text = trimRight(text);
  const auto start = std::find_if(text.rbegin(), text.rend(), isBlank);
  const auto size = static_cast<std::size_t>(start - text.rbegin());
  const std::string_view token = text.substr(text.size() - size);
  text = trimRight(text.substr(0, text.size() - size));
  return token;
}

std::string fold(std::string_view text)
{
  std::string result(text);
  std::transform(result.begin(), result.end(), result.begin(), toUpper);
  return result;
}

bool sameName(std::string_view a, std::string_view b)
{
  return a.size() == b.size() &&
         std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) { return toUpper(x) == toUpper(y); });
}

bool startsWithName(std::string_view text, std::string_view start)
{
  return text.size() >= start.size() && sameName(text.substr(0, start.size()), start);
}

std::size_t length(std::string_view text)
{
  // Every byte but the continuation bytes starts a code point.
  return static_cast<std::size_t>(
      std::count_if(text.begin(), text.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }));
}

} // namespace reeldb::lists
