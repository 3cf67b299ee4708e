// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <charconv>
#include <cstring>
#include <limits>
#include <new>

#include "host/os.h"
#include "host/text.h"

namespace {

/// Writes @p count characters at @p at, where the text then ends; a buffer that is too small is replaced by a larger
/// one. @p from may lie in the buffer.
void put(char*& text, std::size_t& length, std::size_t& capacity, std::size_t at, const char* from, std::size_t count)
{
  const std::size_t needed = at + count + 1;
  char* const previous = text;
  if (needed > capacity) {
    const std::size_t larger = std::max({needed, 2 * capacity, std::size_t{32}});
    char* fresh = static_cast<char*>(OS()->allocator().allocate(larger));
    if (!fresh)
      throw std::bad_alloc();
    if (at)
      std::memcpy(fresh, text, at);
    text = fresh;
    capacity = larger;
  }
  if (count)
    std::memmove(text + at, from, count);
  length = at + count;
  text[length] = '\0';
  if (previous != text)
    OS()->allocator().release(previous);
}

} // namespace

GrowString::GrowString() : text_(nullptr), length_(0), capacity_(0) {}

GrowString::GrowString(const GrowString& other) : GrowString()
{
  *this = other;
}

GrowString::~GrowString()
{
  OS()->allocator().release(text_);
}

GrowString& GrowString::operator=(const GrowString& other)
{
  put(text_, length_, capacity_, 0, other.text_, other.length_);
  return *this;
}

GrowString& GrowString::operator=(const char* text)
{
  put(text_, length_, capacity_, 0, text, text ? std::strlen(text) : 0);
  return *this;
}

void GrowString::append(const char* text)
{
  if (text)
    put(text_, length_, capacity_, length_, text, std::strlen(text));
}

void GrowString::append(char c)
{
  put(text_, length_, capacity_, length_, &c, 1);
}

GrowString& GrowString::operator<<(unsigned number)
{
  char digits[std::numeric_limits<unsigned>::digits10 + 1];
  const char* const end = std::to_chars(digits, digits + sizeof digits, number).ptr;
  put(text_, length_, capacity_, length_, digits, static_cast<std::size_t>(end - digits));
  return *this;
}

GrowString::operator const char*() const
{
  return text_ ? text_ : "";
}
