// SPDX-License-Identifier: Apache-2.0
#include "host/lwstring.h"

#include <algorithm>
#include <atomic>
#include <charconv>
#include <cstdint>
#include <limits>
#include <new>
#include <string>

#include "host/os.h"

template <class CharT>
struct LightweightString<CharT>::Body {
  using Traits = std::char_traits<CharT>;

  // The head is small, so that it and a short text fit into one cache line.
  int refs;
  std::uint32_t length, capacity; // in elements, without the NUL; the text follows

  CharT* text() { return reinterpret_cast<CharT*>(this + 1); }

  static constexpr std::size_t most = std::numeric_limits<std::uint32_t>::max() - 1;

  /// A body with one owner and an empty text.
  static Body* make(std::size_t capacity)
  {
    if (capacity > most)
      throw std::bad_alloc();
    void* memory = OS()->allocator().allocate(sizeof(Body) + (capacity + 1) * sizeof(CharT));
    if (!memory)
      throw std::bad_alloc();
    Body* body = ::new (memory) Body{1, 0, static_cast<std::uint32_t>(capacity)};
    body->text()[0] = CharT();
    return body;
  }

  static Body* share(Body* body)
  {
    if (body)
      OS()->refCounts().incRef(&body->refs);
    return body;
  }

  static void drop(Body* body)
  {
    if (body && OS()->refCounts().decRef(&body->refs) == 0)
      OS()->allocator().release(body);
  }

  /// Whether another string shares this body. The load acquires, so that the reads of a former owner come before the
  /// writes of this string.
  bool shared() { return std::atomic_ref(refs).load(std::memory_order_acquire) != 1; }

  /// Writes @p count elements at @p at, and ends the text there. They may be elements of this body. REQUIRES: room.
  void write(std::size_t at, const CharT* from, std::size_t count)
  {
    Traits::move(text() + at, from, count);
    length = static_cast<std::uint32_t>(at + count);
    text()[length] = CharT();
  }

  /// The same in @p body if it is unshared and has room, else in a new body that replaces it. @p body may be null, and
  /// @p from may point into it.
  static void put(Body*& body, std::size_t at, const CharT* from, std::size_t count)
  {
    const bool own = body && !body->shared();
    const std::size_t needed = at + count;
    if (own && needed <= body->capacity) {
      body->write(at, from, count);
      return;
    }
    Body* fresh = make(own ? std::max(needed, std::min<std::size_t>(2 * std::size_t{body->capacity}, most)) : needed);
    if (at)
      fresh->write(0, body->text(), at);
    fresh->write(at, from, count);
    drop(body);
    body = fresh;
  }
};

template <class CharT>
LightweightString<CharT>::LightweightString() : body_(nullptr)
{
}

template <class CharT>
LightweightString<CharT>::LightweightString(const CharT* text)
    : LightweightString(text, text ? Body::Traits::length(text) : 0)
{
}

template <class CharT>
LightweightString<CharT>::LightweightString(const CharT* text, std::size_t len) : body_(nullptr)
{
  if (text && len)
    Body::put(body_, 0, text, len);
}

template <class CharT>
LightweightString<CharT>::LightweightString(const LightweightString& other) : body_(Body::share(other.body_))
{
}

template <class CharT>
LightweightString<CharT>::LightweightString(LightweightString&& other) noexcept : body_(other.body_)
{
  other.body_ = nullptr;
}

template <class CharT>
LightweightString<CharT>::~LightweightString()
{
  Body::drop(body_);
}

template <class CharT>
LightweightString<CharT>& LightweightString<CharT>::operator=(const LightweightString& other)
{
  if (body_ != other.body_) {
    Body* previous = body_;
    body_ = Body::share(other.body_);
    Body::drop(previous);
  }
  return *this;
}

template <class CharT>
LightweightString<CharT>& LightweightString<CharT>::operator=(LightweightString&& other) noexcept
{
  Body* body = other.body_;
  other.body_ = nullptr; // before the assignment, so that a string that is moved to itself keeps its text
  Body::drop(body_);
  body_ = body;
  return *this;
}

template <class CharT>
LightweightString<CharT>& LightweightString<CharT>::operator=(const CharT* text)
{
  if (text && *text) {
    Body::put(body_, 0, text, Body::Traits::length(text));
  } else {
    Body::drop(body_);
    body_ = nullptr;
  }
  return *this;
}

template <class CharT>
const CharT* LightweightString<CharT>::c_str() const
{
  static constexpr CharT none[1] = {};
  return body_ ? body_->text() : none;
}

template <class CharT>
std::size_t LightweightString<CharT>::length() const
{
  return body_ ? body_->length : 0;
}

template <class CharT>
bool LightweightString<CharT>::empty() const
{
  return length() == 0;
}

template <class CharT>
CharT* LightweightString<CharT>::writable()
{
  if (!body_)
    return nullptr;
  if (body_->shared())
    Body::put(body_, 0, body_->text(), body_->length);
  return body_->text();
}

template <class CharT>
LightweightString<CharT>& LightweightString<CharT>::append(const CharT* text)
{
  if (text && *text)
    Body::put(body_, length(), text, Body::Traits::length(text));
  return *this;
}

template <class CharT>
LightweightString<CharT>& LightweightString<CharT>::append(const LightweightString& text)
{
  if (empty())
    *this = text;
  else if (!text.empty())
    Body::put(body_, length(), text.c_str(), text.length());
  return *this;
}

// The copy shares the left text. Appending to it then allocates the only new body.
template <class CharT>
LightweightString<CharT> operator+(const LightweightString<CharT>& left, const LightweightString<CharT>& right)
{
  LightweightString<CharT> sum(left);
  sum.append(right);
  return sum;
}

LightweightString<char> operator+(const char* left, const LightweightString<char>& right)
{
  return LightweightString<char>(left) + right;
}

LightweightString<char> operator+(const LightweightString<char>& left, const char* right)
{
  LightweightString<char> sum(left);
  sum.append(right);
  return sum;
}

LightweightString<wchar_t> operator+(const LightweightString<wchar_t>& left, const wchar_t* right)
{
  LightweightString<wchar_t> sum(left);
  sum.append(right);
  return sum;
}

LightweightString<char>& operator+=(LightweightString<char>& text, int number)
{
  char digits[std::numeric_limits<int>::digits10 + 3]; // the sign, one digit more, the NUL
  *std::to_chars(digits, digits + sizeof digits - 1, number).ptr = '\0';
  return text.append(digits);
}

template class LightweightString<char>;
template class LightweightString<wchar_t>;
template LightweightString<char> operator+(const LightweightString<char>&, const LightweightString<char>&);
template LightweightString<wchar_t> operator+(const LightweightString<wchar_t>&, const LightweightString<wchar_t>&);
