// SPDX-License-Identifier: Apache-2.0
#include "host/text.h"

#include <utf8.h>

#include <algorithm>
#include <iterator>
#include <string>

namespace {

constexpr char32_t replacement = 0xFFFD;

/// Whether UTF-8 can encode the value: it is a Unicode code point and not a surrogate.
bool isScalar(char32_t value)
{
  return value <= 0x10FFFF && (value < 0xD800 || value > 0xDFFF);
}

} // namespace

LightweightString<char> toUTF8(const LightweightString<wchar_t>& wide)
{
  std::string bytes;
  bytes.reserve(wide.length());
  for (std::size_t i = 0; i < wide.length(); ++i) {
    const char32_t value = static_cast<char32_t>(wide.c_str()[i]);
    utf8::unchecked::append(isScalar(value) ? value : replacement, std::back_inserter(bytes));
  }
  return LightweightString<char>(bytes.data(), bytes.size());
}

LightweightString<wchar_t> fromUTF8(const LightweightString<char>& bytes)
{
  std::wstring wide;
  wide.reserve(bytes.length());
  const char* pos = bytes.c_str();
  const char* const end = pos + bytes.length();
  while (pos != end) {
    const char* const bad = utf8::find_invalid(pos, end);
    utf8::unchecked::utf8to32(pos, bad, std::back_inserter(wide));
    pos = bad;
    if (pos != end) { // skip only one byte: the next ones may be well-formed again
      wide.push_back(static_cast<wchar_t>(replacement));
      ++pos;
    }
  }
  return LightweightString<wchar_t>(wide.data(), wide.size());
}

void toUpper(LightweightString<char>& text)
{
  char* const first = text.writable();
  std::transform(first, first + text.length(), first,
                 [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; });
}

void trimTrailingSpaces(LightweightString<char>& text)
{
  std::size_t length = text.length();
  while (length && text.c_str()[length - 1] == ' ')
    --length;
  if (length != text.length())
    text = LightweightString<char>(text.c_str(), length);
}

namespace Zr {

LightweightString<wchar_t> WStringFromAscii(const char* text)
{
  std::wstring wide;
  for (; text && *text; ++text)
    wide.push_back(static_cast<unsigned char>(*text));
  return LightweightString<wchar_t>(wide.data(), wide.size());
}

} // namespace Zr
