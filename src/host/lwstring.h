// SPDX-License-Identifier: Apache-2.0
//
// The host's reference-counted strings. Reel identifiers and type names are narrow (bytes, UTF-8 by convention), device
// and file names wide (one 32-bit code point each).
#ifndef REELDB_HOST_LWSTRING_H
#define REELDB_HOST_LWSTRING_H

#include <cstddef>

static_assert(sizeof(wchar_t) == 4, "wide strings hold one code point per element");

/// A string whose text is shared by all its copies. A string without a body is empty; a null body and a length of zero
/// are alike in every respect. Counts go through OS()->refCounts(), so a copy may travel to another thread; one object
/// must not be changed by two threads at once. Throws std::bad_alloc when the allocator has no memory.
template <class CharT>
class LightweightString {
public:
  LightweightString();                  ///< empty, without a body
  LightweightString(const CharT* text); ///< copies the text; null or "" gives no body. Implicit by design.
  LightweightString(const CharT* text, std::size_t len);
  LightweightString(const LightweightString& other); ///< shares the body
  LightweightString(LightweightString&& other) noexcept;
  ~LightweightString();
  LightweightString& operator=(const LightweightString& other); ///< self-assignment does nothing
  LightweightString& operator=(LightweightString&& other) noexcept;
  LightweightString& operator=(const CharT* text); ///< reuses an unshared body that has room
  const CharT* c_str() const;                      ///< never null, NUL terminated; "" without a body
  std::size_t length() const;                      ///< in elements; 0 without a body
  bool empty() const;
  CharT* writable(); ///< the text for changing in place; detaches a shared body. Null without a body.
  LightweightString& append(const CharT* text);
  LightweightString& append(const LightweightString& text);

private:
  struct Body; ///< the count, the length, the capacity, then the text
  Body* body_;
};

template <class CharT>
LightweightString<CharT> operator+(const LightweightString<CharT>&, const LightweightString<CharT>&);
LightweightString<char> operator+(const char*, const LightweightString<char>&);
LightweightString<char> operator+(const LightweightString<char>&, const char*);
LightweightString<wchar_t> operator+(const LightweightString<wchar_t>&, const wchar_t*);

/// Appends the decimal form of a number. A character is a number too: `s += 'x'` appends "120".
LightweightString<char>& operator+=(LightweightString<char>&, int);

extern template class LightweightString<char>;
extern template class LightweightString<wchar_t>;
extern template LightweightString<char> operator+(const LightweightString<char>&, const LightweightString<char>&);
extern template LightweightString<wchar_t> operator+(const LightweightString<wchar_t>&,
                                                     const LightweightString<wchar_t>&);

#endif
