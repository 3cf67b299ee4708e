// SPDX-License-Identifier: Apache-2.0
/// @file
/// Text conversions, the host's text resources, debug output, and the byte stream that reads files and parameters.
/// The library calls them on the main thread and on the thread that loads it. Functions that need memory throw
/// std::bad_alloc when there is none.
#ifndef REELDB_HOST_TEXT_H
#define REELDB_HOST_TEXT_H

#include <cstddef>
#include <cstdint>
#include <cstdio>

#include "lwstring.h"

// Also in a host that is compiled with -fvisibility=hidden.
#pragma GCC visibility push(default)

/// Wide to UTF-8. A value outside Unicode, or a surrogate, becomes U+FFFD.
LightweightString<char> toUTF8(const LightweightString<wchar_t>&);
/// UTF-8 to wide. Each byte that is not part of a well-formed sequence becomes U+FFFD.
LightweightString<wchar_t> fromUTF8(const LightweightString<char>&);
/// Upper-cases the ASCII letters in place; detaches a shared body first, so no other string changes.
void toUpper(LightweightString<char>&);
/// Removes trailing blanks (0x20 only) in place; detaches a shared body first.
void trimTrailingSpaces(LightweightString<char>&);

namespace Zr {
/// Widens byte by byte (0x00 to 0xFF); nothing is decoded. Null gives the empty string.
LightweightString<wchar_t> WStringFromAscii(const char*);
} // namespace Zr

using ResId = unsigned int; ///< identifies a text resource of the host
/// The format of a text resource. The library passes only 0.
enum ResStrFmt : int {};

/// The text resource @p id in the user's language, between @p before and @p after; either may be null. An unknown
/// resource has the empty text. Main thread only.
LightweightString<wchar_t> paddedResourceStrW(ResId id, const wchar_t* before, const wchar_t* after, ResStrFmt);

/// Prints to the host's debug output like printf. Returns the number of bytes, or a negative number on failure. The
/// library's messages end in a newline; the library ignores the result.
int vorn_printf(const char* format, ...)
#ifdef __GNUC__
    __attribute__((format(printf, 1, 2)))
#endif
    ;

class ByteStream;

/// A growable character buffer, in memory of OS()->allocator().
class GrowString {
public:
  GrowString();
  GrowString(const GrowString&);
  ~GrowString();
  GrowString& operator=(const GrowString&);
  GrowString& operator=(const char*); ///< replaces the text; null gives the empty text
  void append(const char*);           ///< null appends nothing; may lie in this buffer
  void append(char);
  GrowString& operator<<(unsigned); ///< appends the decimal form
  operator const char*() const;     ///< never null, NUL terminated; valid until the next change

  friend ByteStream& operator>>(ByteStream&, GrowString&);

private:
  /// Writes @p count characters at @p at, where the text then ends. They may lie in this buffer.
  void put(std::size_t at, const char* from, std::size_t count);

  char* text_;                    ///< null until the first text
  std::size_t length_, capacity_; ///< capacity 0: the buffer does not own the text
};

/// Reads pieces of text between separator characters.
class ByteStream {
public:
  explicit ByteStream(FILE*);       ///< borrows the file and never closes it; a read error counts as the end
  explicit ByteStream(GrowString&); ///< borrows the buffer, which must not change while it is read
  explicit ByteStream(const LightweightString<char>&); ///< shares the text; the caller's string may change or end
  ~ByteStream();                                       ///< does not use the file, which may be closed already
  ByteStream(const ByteStream&) = delete;              ///< a stream has one read position
  ByteStream& operator=(const ByteStream&) = delete;

  GrowString separators; ///< empty by default; each of its characters is a separator
  bool joinCrLf = false; ///< whether a CR directly followed by LF counts as one separator
  bool atEnd() const;    ///< whether no unread character remains; true from the start for an empty text

  friend ByteStream& operator>>(ByteStream&, GrowString&);

private:
  FILE* file_;
  const char* pos_;
  const char* end_;
  LightweightString<char> held_;
};

/// Replaces the text of the buffer with the characters up to the next separator or the end. Consumes that one
/// separator. At the end of the stream the text becomes empty.
ByteStream& operator>>(ByteStream&, GrowString&);

#pragma GCC visibility pop

#endif
