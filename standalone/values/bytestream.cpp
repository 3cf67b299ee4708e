// SPDX-License-Identifier: Apache-2.0
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

/// Which characters end a piece.
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
  const auto next = [&in]() -> int {
    if (in.file_)
      return getc_unlocked(in.file_);
    return in.pos_ == in.end_ ? EOF : static_cast<unsigned char>(*in.pos_++);
  };
  // A text in memory ends in a NUL that may be looked at.
  const auto lineFeedFollows = [&in] { return (in.file_ ? peek(in.file_) : *in.pos_) == '\n'; };

  Appender piece(out);
  if (in.file_ && ferror_unlocked(in.file_))
    return in; // for good, though the next character might be read
  const Separators separators(in.separators);
  int c = next();
  for (; c != EOF && !separators.contain(c); c = next())
    piece.put(static_cast<char>(c));
  if (c == '\r' && in.joinCrLf && lineFeedFollows())
    next();
  piece.flush();
  return in;
}
