// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstring>

#include "host/text.h"

namespace {

/// The next character; EOF at the end and, for good, after an error. A stream is read by one thread at a time.
int read(FILE* file)
{
  return ferror_unlocked(file) ? EOF : getc_unlocked(file);
}

/// The same, but leaves the character unread.
int peek(FILE* file)
{
  const int c = read(file);
  return c == EOF ? EOF : std::ungetc(c, file);
}

/// Which characters end a piece of a file.
class Separators {
public:
  explicit Separators(const char* characters)
  {
    for (; *characters; ++characters)
      ends_[static_cast<unsigned char>(*characters)] = true;
  }
  bool contain(int c) const { return ends_[c]; }

private:
  bool ends_[UCHAR_MAX + 1] = {};
};

/// Where the first of the separators is, or the end. There are one or two of them, so a search for each is quicker than
/// a look at each character.
const char* findSeparator(const char* from, const char* end, const char* separators)
{
  for (; *separators && from != end; ++separators)
    if (const void* const found = std::memchr(from, *separators, static_cast<std::size_t>(end - from)))
      end = static_cast<const char*>(found);
  return end;
}

/// Puts characters at the end of a buffer, many at a time.
class Appender {
public:
  explicit Appender(GrowString& out) : out_(out)
  {
    if (*static_cast<const char*>(out)) // an empty one needs no memory yet
      out = "";
  }
  void put(char c)
  {
    if (c == '\0') { // ends a text, so it goes by itself
      flush();
      out_.append(c);
      return;
    }
    chunk_[used_++] = c;
    if (used_ == sizeof chunk_ - 1)
      flush();
  }
  void put(const char* from, const char* end)
  {
    while (from != end) {
      if (*from == '\0') {
        put(*from++);
        continue;
      }
      const std::size_t left = std::min(static_cast<std::size_t>(end - from), sizeof chunk_ - 1 - used_);
      const std::size_t length = strnlen(from, left);
      std::memcpy(chunk_ + used_, from, length);
      used_ += length;
      from += length;
      if (used_ == sizeof chunk_ - 1)
        flush();
    }
  }
  void flush()
  {
    chunk_[used_] = '\0';
    if (used_ > 0)
      out_.append(chunk_);
    used_ = 0;
  }

private:
  GrowString& out_;
  char chunk_[256];
  std::size_t used_ = 0;
};

void readPiece(FILE* file, const char* separators, bool joinCrLf, Appender& piece)
{
  if (ferror_unlocked(file))
    return; // for good, though the next character might be read
  const Separators ends(separators);
  int c = getc_unlocked(file);
  for (; c != EOF && !ends.contain(c); c = getc_unlocked(file))
    piece.put(static_cast<char>(c));
  if (c == '\r' && joinCrLf && peek(file) == '\n')
    static_cast<void>(getc_unlocked(file));
}

/// The same from memory; answers where the next piece begins. The text ends in a NUL that may be looked at.
const char* cutPiece(const char* from, const char* end, const char* separators, bool joinCrLf, Appender& piece)
{
  const char* const separator = findSeparator(from, end, separators);
  piece.put(from, separator);
  if (separator == end)
    return end;
  return separator + (*separator == '\r' && joinCrLf && separator[1] == '\n' ? 2 : 1);
}

} // namespace

ByteStream::ByteStream(FILE* file) : file_(file), pos_(nullptr), end_(nullptr) {}

ByteStream::ByteStream(GrowString& text) : file_(nullptr), pos_(text), end_(pos_ + std::strlen(pos_)) {}

// Holds the string, so that its text stays whatever the caller does with his.
ByteStream::ByteStream(const LightweightString<char>& text) : file_(nullptr), pos_(nullptr), end_(nullptr), held_(text)
{
  pos_ = held_.c_str();
  end_ = pos_ + held_.length();
}

// The file may be closed by now.
ByteStream::~ByteStream() {}

bool ByteStream::atEnd() const
{
  return file_ ? peek(file_) == EOF : pos_ == end_;
}

ByteStream& operator>>(ByteStream& in, GrowString& out)
{
  Appender piece(out);
  if (in.file_)
    readPiece(in.file_, in.separators, in.joinCrLf, piece);
  else
    in.pos_ = cutPiece(in.pos_, in.end_, in.separators, in.joinCrLf, piece);
  piece.flush();
  return in;
}
