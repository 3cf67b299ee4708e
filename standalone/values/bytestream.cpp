// SPDX-License-Identifier: Apache-2.0
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

/// Puts characters at the end of a buffer, many at a time.
class Appender {
public:
  explicit Appender(GrowString& out) : out_(out) { out_ = ""; }
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

/// Whether the character is one of these. There are hardly ever more than two.
bool isOneOf(const char* separators, int c)
{
  for (; *separators; ++separators)
    if (static_cast<unsigned char>(*separators) == c)
      return true;
  return false;
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
  const auto next = [&in]() -> int {
    if (in.file_)
      return read(in.file_);
    return in.pos_ == in.end_ ? EOF : static_cast<unsigned char>(*in.pos_++);
  };
  // A text in memory ends in a NUL that may be looked at.
  const auto lineFeedFollows = [&in] { return (in.file_ ? peek(in.file_) : *in.pos_) == '\n'; };

  const char* const separators = in.separators;
  Appender piece(out);
  for (int c = next(); c != EOF; c = next()) {
    if (isOneOf(separators, c)) {
      if (c == '\r' && in.joinCrLf && lineFeedFollows())
        next();
      break;
    }
    piece.put(static_cast<char>(c));
  }
  piece.flush();
  return in;
}
