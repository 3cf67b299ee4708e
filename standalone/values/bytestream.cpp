// SPDX-License-Identifier: Apache-2.0
#include <cstring>

#include "host/text.h"

namespace {

/// The next character; EOF at the end and, for good, after an error.
int read(FILE* file)
{
  return std::ferror(file) ? EOF : std::getc(file);
}

/// The same, but leaves the character unread.
int peek(FILE* file)
{
  const int c = read(file);
  return c == EOF ? EOF : std::ungetc(c, file);
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

  out = "";
  for (int c = next(); c != EOF; c = next()) {
    if (c != '\0' && std::strchr(in.separators, c)) {
      if (c == '\r' && in.joinCrLf && lineFeedFollows())
        next();
      break;
    }
    out.append(static_cast<char>(c));
  }
  return in;
}
