// SPDX-License-Identifier: Apache-2.0
#include "host/cookie.h"

#include <algorithm>
#include <charconv>
#include <cstring>

namespace Zr {

UUID::UUID() : bytes() {}

UUID::UUID(const UUID& other)
{
  std::memcpy(bytes, other.bytes, sizeof bytes);
}

UUID& UUID::operator=(const UUID& other)
{
  std::memmove(bytes, other.bytes, sizeof bytes);
  return *this;
}

int UUID::compare(const UUID& other) const
{
  const int order = std::memcmp(bytes, other.bytes, sizeof bytes);
  return (order > 0) - (order < 0);
}

} // namespace Zr

// --- The text form -------------------------------------------------------------------------------
// The kind, then the name that the bytes spell ("P0001000") or the bytes and the tag in hexadecimal digits
// ("E{000102030405060708090a0b0c0d0e0f.0001}"). Each Cookie has one text and each text one Cookie.

namespace {

constexpr std::size_t uuidSize = sizeof(Zr::UUID::bytes);
constexpr std::size_t longestText = 1 + 1 + 2 * uuidSize + 1 + 4 + 1;

using CookieText = char[longestText];

bool isLetterOrDigit(unsigned char c)
{
  return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

/// The length of the name in the bytes: letters and digits, then only NULs. 0 if the bytes are not a name.
std::size_t nameLength(const Zr::UUID& uuid)
{
  const unsigned char* const first = uuid.bytes;
  const unsigned char* const last = uuid.bytes + uuidSize;
  const unsigned char* const nameEnd = std::find_if_not(first, last, isLetterOrDigit);
  const bool restIsNul = std::all_of(nameEnd, last, [](unsigned char c) { return c == 0; });
  return restIsNul ? static_cast<std::size_t>(nameEnd - first) : 0;
}

/// Writes the text, without a NUL at its end, and returns its length.
std::size_t writeText(const Zr::UUID& uuid, std::uint16_t tag, char kind, CookieText& out)
{
  out[0] = kind;
  const std::size_t name = tag == 0 ? nameLength(uuid) : 0;
  if (name) {
    std::memcpy(out + 1, uuid.bytes, name);
    return 1 + name;
  }
  static constexpr char digits[] = "0123456789abcdef";
  char* p = out + 1;
  *p++ = '{';
  for (const unsigned char byte : uuid.bytes) {
    *p++ = digits[byte >> 4];
    *p++ = digits[byte & 15];
  }
  *p++ = '.';
  for (int shift = 12; shift >= 0; shift -= 4)
    *p++ = digits[(tag >> shift) & 15];
  *p++ = '}';
  return longestText;
}

/// Reads a text of writeText's form. Returns false if the form is certainly different.
bool readText(const char* text, std::size_t length, Zr::UUID& uuid, std::uint16_t& tag)
{
  if (length < 2)
    return false;
  if (text[1] != '{') {
    if (length - 1 > uuidSize)
      return false;
    std::memcpy(uuid.bytes, text + 1, length - 1);
    return true;
  }
  if (length != longestText)
    return false;
  const char* p = text + 2;
  for (unsigned char& byte : uuid.bytes) {
    std::from_chars(p, p + 2, byte, 16);
    p += 2;
  }
  std::from_chars(p + 1, p + 5, tag, 16);
  return true;
}

} // namespace

Cookie::Cookie() : tag_(0), kind_('I') {}

// The Cookie is valid only if its text form is exactly this text. That rejects all near misses.
Cookie::Cookie(const char* text, bool) : Cookie()
{
  const std::size_t length = text ? strnlen(text, longestText + 1) : 0;
  Zr::UUID uuid;
  std::uint16_t tag = 0;
  CookieText again;
  if (readText(text, length, uuid, tag) && writeText(uuid, tag, text[0], again) == length &&
      std::memcmp(text, again, length) == 0)
    *this = Cookie(uuid, tag, text[0]);
}

Cookie::Cookie(const Zr::UUID& uuid, std::uint16_t tag, char kind) : uuid_(uuid), tag_(tag), kind_(kind)
{
  if (!valid())
    invalidate(); // one invalid state, so that all invalid Cookies are equal
}

void Cookie::invalidate()
{
  *this = Cookie();
}

int Cookie::compare(const Cookie& other) const
{
  if (const int order = uuid_.compare(other.uuid_))
    return order;
  if (tag_ != other.tag_)
    return tag_ < other.tag_ ? -1 : 1;
  return (kind_ > other.kind_) - (kind_ < other.kind_);
}

LightweightString<char> Cookie::asString(bool) const
{
  CookieText text;
  const std::size_t length = writeText(uuid_, tag_, kind_, text);
  return LightweightString<char>(text, length);
}

IdStamp::IdStamp() : value_(0) {}

IdStamp::IdStamp(unsigned value) : value_(value) {}

IdStamp::IdStamp(const IdStamp& other) : value_(other.value_) {}

IdStamp& IdStamp::operator=(const IdStamp& other)
{
  value_ = other.value_;
  return *this;
}

bool IdStamp::valid() const
{
  return value_ != 0;
}
