// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <charconv>
#include <climits>
#include <cstring>
#include <iterator>
#include <limits>
#include <new>

#include "host/os.h"
#include "host/text.h"

namespace {

/// Texts of one character, which separators often have. They need no allocation and are never written to.
class SingleCharacters {
public:
  constexpr SingleCharacters()
  {
    for (std::size_t i = 0; i < std::size(texts_); ++i)
      texts_[i][0] = static_cast<char>(i);
  }
  char* of(char c) { return texts_[static_cast<unsigned char>(c)]; }

private:
  char texts_[UCHAR_MAX + 1][2] = {};
};

constinit SingleCharacters singleCharacters;

} // namespace

void GrowString::put(std::size_t at, const char* from, std::size_t count)
{
  const std::size_t needed = at + count + 1;
  if (capacity_ == 0 && needed == 2) {
    text_ = singleCharacters.of(at == 0 ? *from : *text_);
    length_ = 1;
    return;
  }
  char* const previous = text_;
  const std::size_t owned = capacity_;
  if (needed > capacity_) {
    const std::size_t larger = std::max({needed, 2 * capacity_, std::size_t{32}});
    char* fresh = static_cast<char*>(OS()->allocator().allocate(larger));
    if (!fresh)
      throw std::bad_alloc();
    if (at)
      std::memcpy(fresh, text_, at);
    text_ = fresh;
    capacity_ = larger;
  }
  if (count)
    std::memmove(text_ + at, from, count);
  length_ = at + count;
  text_[length_] = '\0';
  if (previous != text_ && owned)
    OS()->allocator().release(previous);
}

GrowString::GrowString() : text_(nullptr), length_(0), capacity_(0) {}

GrowString::GrowString(const GrowString& other) : GrowString()
{
  *this = other;
}

GrowString::~GrowString()
{
  if (capacity_)
    OS()->allocator().release(text_);
}

GrowString& GrowString::operator=(const GrowString& other)
{
  put(0, other.text_, other.length_);
  return *this;
}

GrowString& GrowString::operator=(const char* text)
{
  put(0, text, text ? std::strlen(text) : 0);
  return *this;
}

void GrowString::append(const char* text)
{
  if (text)
    put(length_, text, std::strlen(text));
}

void GrowString::append(char c)
{
  put(length_, &c, 1);
}

GrowString& GrowString::operator<<(unsigned number)
{
  char digits[std::numeric_limits<unsigned>::digits10 + 1];
  const char* const end = std::to_chars(digits, digits + sizeof digits, number).ptr;
  put(length_, digits, static_cast<std::size_t>(end - digits));
  return *this;
}

GrowString::operator const char*() const
{
  return text_ ? text_ : "";
}
