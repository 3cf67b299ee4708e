// SPDX-License-Identifier: Apache-2.0
#include <climits>
#include <cstdio>
#include <cstring>
#include <utility>

#include "host/text.h"

namespace {

/// The next character. EOF at the end, and always after an error. One thread at a time reads a stream.
int read(FILE* file)
{
  return ferror_unlocked(file) ? EOF : getc_unlocked(file);
}

/// The same, without consuming the character.
int peek(FILE* file)
{
  const int c = read(file);
  return c == EOF ? EOF : std::ungetc(c, file);
}

/// The characters that end a piece of a file.
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

/// The position of the first separator, or the end. There are only one or two separators, so a search for each of them
/// is faster than a test of each character.
const char* findSeparator(const char* from, const char* end, const char* separators)
{
  for (; *separators && from != end; ++separators)
    if (const void* const found = std::memchr(from, *separators, static_cast<std::size_t>(end - from)))
      end = static_cast<const char*>(found);
  return end;
}

/// Passes the text before the next separator of a file to @p append, in parts, and consumes the separator.
template <class Append>
void readPiece(FILE* file, const char* separators, bool joinCrLf, const Append& append)
{
  if (ferror_unlocked(file))
    return; // the stream has ended, even if the next character could be read
  const Separators ends(separators);
  char chunk[256];
  std::size_t used = 0;
  int c = getc_unlocked(file);
  for (; c != EOF && !ends.contain(c); c = getc_unlocked(file)) {
    chunk[used++] = static_cast<char>(c);
    if (used == sizeof chunk)
      append(chunk, std::exchange(used, 0));
  }
  append(chunk, used);
  if (c == '\r' && joinCrLf && peek(file) == '\n')
    static_cast<void>(getc_unlocked(file));
}

/// The same from memory. Returns the start of the next piece. The text ends with a NUL that may be read.
template <class Append>
const char* cutPiece(const char* from, const char* end, const char* separators, bool joinCrLf, const Append& append)
{
  const char* const separator = findSeparator(from, end, separators);
  append(from, static_cast<std::size_t>(separator - from));
  if (separator == end)
    return end;
  return separator + (*separator == '\r' && joinCrLf && separator[1] == '\n' ? 2 : 1);
}

} // namespace

ByteStream::ByteStream(FILE* file) : file_(file), pos_(nullptr), end_(nullptr) {}

ByteStream::ByteStream(GrowString& text) : file_(nullptr), pos_(text), end_(pos_ + std::strlen(pos_)) {}

// Keeps a reference to the string, so that its text stays even if the caller changes the string.
ByteStream::ByteStream(const LightweightString<char>& text) : file_(nullptr), pos_(nullptr), end_(nullptr), held_(text)
{
  pos_ = held_.c_str();
  end_ = pos_ + held_.length();
}

// The caller may have closed the file already.
ByteStream::~ByteStream() {}

bool ByteStream::atEnd() const
{
  return file_ ? peek(file_) == EOF : pos_ == end_;
}

ByteStream& operator>>(ByteStream& in, GrowString& out)
{
  const auto append = [&out](const char* from, std::size_t count) {
    if (count) // an empty piece needs no memory
      out.put(out.length_, from, count);
  };
  if (out.length_)
    out = "";
  if (in.file_)
    readPiece(in.file_, in.separators, in.joinCrLf, append);
  else
    in.pos_ = cutPiece(in.pos_, in.end_, in.separators, in.joinCrLf, append);
  return in;
}
