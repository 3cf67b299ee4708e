// SPDX-License-Identifier: Apache-2.0
/// @file
/// The host's reference-counted strings. Reel identifiers and type names are narrow (bytes, UTF-8 by convention),
/// device and file names wide (one 32-bit code point each).
#ifndef REELDB_HOST_LWSTRING_H
#define REELDB_HOST_LWSTRING_H

#include <cstddef>

// Also in a host that is compiled with -fvisibility=hidden.
#pragma GCC visibility push(default)

static_assert(sizeof(wchar_t) == 4, "wide strings hold one code point per element");

/// A string that shares its text with its copies. A string without a body is empty, and behaves in every respect like
/// one of length zero. OS()->refCounts() counts the references, so a copy may be used on another thread; two threads
/// must not change one object at the same time. Throws std::bad_alloc when the allocator has no memory.
template <class CharT>
class LightweightString {
public:
  LightweightString();                  ///< empty, without a body
  LightweightString(const CharT* text); ///< copies the text; null or "" gives no body. Implicit by design.
  /// Copies @p len elements; null or a length of 0 gives no body. An embedded NUL truncates what c_str() callers see.
  LightweightString(const CharT* text, std::size_t len);
  LightweightString(const LightweightString& other);
  LightweightString(LightweightString&& other) noexcept; ///< takes the body; @p other becomes empty
  ~LightweightString();
  LightweightString& operator=(const LightweightString& other);
  LightweightString& operator=(LightweightString&& other) noexcept; ///< takes the body; a self-move changes nothing
  LightweightString& operator=(const CharT* text); ///< copies the text; reuses an unshared body that has room
  const CharT* c_str() const;                      ///< never null, NUL terminated; valid until the next change
  std::size_t length() const;                      ///< in elements; 0 without a body
  bool empty() const;
  /// The text, to be changed in place without changing its length. Detaches a shared body first, so no other string
  /// changes. Null without a body.
  CharT* writable();
  LightweightString& append(const CharT* text);             ///< null appends nothing; @p text may lie in this string
  LightweightString& append(const LightweightString& text); ///< @p text may be this string

private:
  struct Body; ///< the count, the length, the capacity, then the text
  Body* body_;
};

/// Concatenates the two texts.
template <class CharT>
LightweightString<CharT> operator+(const LightweightString<CharT>&, const LightweightString<CharT>&);
LightweightString<char> operator+(const char*, const LightweightString<char>&);          ///< null is an empty text
LightweightString<char> operator+(const LightweightString<char>&, const char*);          ///< null is an empty text
LightweightString<wchar_t> operator+(const LightweightString<wchar_t>&, const wchar_t*); ///< null is an empty text

/// Appends the decimal form of a number. A character is a number too: `s += 'x'` appends "120".
LightweightString<char>& operator+=(LightweightString<char>&, int);

// The host instantiates them.
/// @cond instantiations
extern template class LightweightString<char>;
extern template class LightweightString<wchar_t>;
extern template LightweightString<char> operator+(const LightweightString<char>&, const LightweightString<char>&);
extern template LightweightString<wchar_t> operator+(const LightweightString<wchar_t>&,
                                                     const LightweightString<wchar_t>&);
/// @endcond

#pragma GCC visibility pop

#endif
