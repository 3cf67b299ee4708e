// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>
#include <unistd.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "host/text.h"
#include "support/ledger.h"
#include "support/temp_folder.h"

namespace {

using Pieces = std::vector<std::string>;

/// The expected pieces of a text: it is cut at each separator, without an empty piece after the last.
Pieces model(const std::string& text, const std::string& separators, bool joinCrLf)
{
  Pieces pieces;
  std::size_t start = 0;
  while (start < text.size()) {
    const std::size_t stop = text.find_first_of(separators, start);
    pieces.push_back(text.substr(start, stop == std::string::npos ? stop : stop - start));
    if (stop == std::string::npos)
      break;
    start = stop + (joinCrLf && text.compare(stop, 2, "\r\n") == 0 ? 2 : 1);
  }
  return pieces;
}

Pieces readAll(ByteStream& stream, const std::string& separators, bool joinCrLf)
{
  stream.separators = separators.c_str();
  stream.joinCrLf = joinCrLf;
  Pieces pieces;
  while (!stream.atEnd()) {
    GrowString piece;
    piece = "left over";
    EXPECT_EQ(&(stream >> piece), &stream);
    pieces.emplace_back(piece);
  }
  return pieces;
}

struct Close {
  void operator()(FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<FILE, Close>;

File fileOver(const std::string& text)
{
  File file(std::tmpfile());
  std::fwrite(text.data(), 1, text.size(), file.get());
  std::rewind(file.get());
  return file;
}

Pieces fromFile(const std::string& text, const std::string& separators, bool joinCrLf)
{
  static const File file = fileOver(""); // one file, rewritten: the exhaustive test needs some ten thousand
  std::rewind(file.get());
  EXPECT_EQ(ftruncate(fileno(file.get()), 0), 0);
  std::fwrite(text.data(), 1, text.size(), file.get());
  std::rewind(file.get());
  ByteStream stream(file.get());
  return readAll(stream, separators, joinCrLf);
}

Pieces fromBuffer(const std::string& text, const std::string& separators, bool joinCrLf)
{
  GrowString buffer;
  buffer = text.c_str();
  ByteStream stream(buffer);
  return readAll(stream, separators, joinCrLf);
}

Pieces fromString(const std::string& text, const std::string& separators, bool joinCrLf)
{
  ByteStream stream(LightweightString<char>(text.data(), text.size()));
  return readAll(stream, separators, joinCrLf);
}

const std::function<Pieces(const std::string&, const std::string&, bool)> sources[] = {fromFile, fromBuffer,
                                                                                       fromString};

} // namespace

TEST(ByteStream, LinesAndFields)
{
  const struct {
    const char* text;
    const char* separators;
    bool joinCrLf;
    Pieces expected;
  } table[] = {
      {"", ":", false, {}},
      {"a", ":", false, {"a"}},
      {"a:b", ":", false, {"a", "b"}},
      {"a:", ":", false, {"a"}}, // no empty piece behind the last separator
      {"a::", ":", false, {"a", ""}},
      {":", ":", false, {""}},
      {":a", ":", false, {"", "a"}},
      {"a b:c", ": ", false, {"a", "b", "c"}}, // separators stand alone, not as a sequence
      {"a:b", "", false, {"a:b"}},             // none by default
      {"a:b\r\nScratch\r\n", "\r\n", true, {"a:b", "Scratch"}},
      {"a:b\r\nScratch\r\n", "\r\n", false, {"a:b", "", "Scratch", ""}},
      {"a:1\n\n\nS\n", "\r\n", true, {"a:1", "", "", "S"}},
      {"\nScratch\n", "\r\n", true, {"", "Scratch"}},
      {"a:1\n\rS", "\r\n", true, {"a:1", "", "S"}}, // LF CR is two
      {"a\r\rb", "\r\n", true, {"a", "", "b"}},
      {"a\r", "\r\n", true, {"a"}},
      {"a\r\n\nb", "\r\n", true, {"a", "", "b"}}, // one LF belongs to the CR
      {"a\rb", "\r\n", true, {"a", "b"}},
      {"a\r\nb", "\n", true, {"a\r", "b"}},                // a CR that is not a separator is text
      {"a\r\nb", "\r", true, {"a", "b"}},                  // the LF goes with the CR
      {"\xFF\x80:\xE9", ":", false, {"\xFF\x80", "\xE9"}}, // no byte is read as the end
  };
  for (const auto& row : table) {
    EXPECT_EQ(model(row.text, row.separators, row.joinCrLf), row.expected) << testing::PrintToString(row.text);
    for (const auto& read : sources)
      EXPECT_EQ(read(row.text, row.separators, row.joinCrLf), row.expected) << testing::PrintToString(row.text);
  }
}

TEST(ByteStream, NewOneTakesCrAndLfAsTwo)
{
  ByteStream stream(LightweightString<char>("a\r\nb"));
  EXPECT_FALSE(stream.joinCrLf);
  stream.separators = "\r\n";
  GrowString piece;
  Pieces pieces;
  while (!stream.atEnd()) {
    stream >> piece;
    pieces.emplace_back(piece);
  }
  EXPECT_EQ(pieces, (Pieces{"a", "", "b"}));
}

TEST(ByteStream, EveryShortTextReadsAsTheModelSays)
{
  const std::string alphabet = "a:\r\n";
  std::vector<std::string> texts = {""};
  for (std::size_t i = 0; texts[i].size() < 5; ++i)
    for (const char c : alphabet)
      texts.push_back(texts[i] + c);
  ASSERT_EQ(texts.size(), 1U + 4 + 16 + 64 + 256 + 1024);
  for (const std::string& text : texts)
    for (const char* separators : {"", ":", "\r\n", "\n", "\r"})
      for (const bool joinCrLf : {false, true})
        for (const auto& read : sources)
          ASSERT_EQ(read(text, separators, joinCrLf), model(text, separators, joinCrLf))
              << testing::PrintToString(text) << " at " << testing::PrintToString(separators) << ' ' << joinCrLf;
}

TEST(ByteStream, ReadAtTheEndGivesTheEmptyText)
{
  const File file = fileOver("a");
  ByteStream fromFile(file.get()), fromString(LightweightString<char>("a"));
  for (ByteStream* stream : {&fromFile, &fromString}) {
    GrowString piece;
    *stream >> piece;
    EXPECT_STREQ(piece, "a");
    *stream >> piece;
    EXPECT_STREQ(piece, "");
    EXPECT_TRUE(stream->atEnd());
  }
}

TEST(ByteStream, AskingForTheEndReadsNothing)
{
  const File file = fileOver("ab");
  ByteStream stream(file.get());
  for (int i = 0; i < 3; ++i)
    EXPECT_FALSE(stream.atEnd());
  EXPECT_EQ(std::ftell(file.get()), 0);
  GrowString piece;
  stream >> piece;
  EXPECT_STREQ(piece, "ab");
}

TEST(ByteStream, NulIsTextAndNoSeparator)
{
  const File file = fileOver(std::string("a\0b:c", 5));
  ByteStream stream(file.get());
  stream.separators = ":";
  GrowString piece;
  stream >> piece;
  EXPECT_STREQ(piece, "a"); // up to the NUL, for code that reads the buffer as text
  EXPECT_STREQ(piece + 2, "b");
  stream >> piece;
  EXPECT_STREQ(piece, "c");

  ByteStream overString(LightweightString<char>("a\0b:c", 5));
  overString.separators = ":";
  overString >> piece;
  EXPECT_STREQ(piece + 2, "b");
  overString >> piece;
  EXPECT_STREQ(piece, "c");
}

TEST(ByteStream, SeparatorsCanBeAddedBetweenReads)
{
  ByteStream stream(LightweightString<char>("a:b c:d"));
  stream.separators = ":";
  GrowString piece;
  stream >> piece;
  EXPECT_STREQ(piece, "a");
  stream.separators.append(' ');
  stream >> piece;
  EXPECT_STREQ(piece, "b");
  stream.separators = "";
  stream >> piece;
  EXPECT_STREQ(piece, "c:d");
}

TEST(ByteStream, StringIsHeldAgainstChangesOfTheCaller)
{
  LightweightString<char> text("abc def");
  ByteStream stream(text);
  stream.separators = " ";
  toUpper(text);
  text = "x";
  text = LightweightString<char>();
  GrowString piece;
  stream >> piece;
  EXPECT_STREQ(piece, "abc");
  stream >> piece;
  EXPECT_STREQ(piece, "def");
}

TEST(ByteStream, DirectoryCannotBeReadAndIsAtItsEnd)
{
  const reeldb_tests::TempFolder folder;
  const File file(std::fopen(folder.path().c_str(), "r"));
  ASSERT_NE(file, nullptr);
  ByteStream stream(file.get());
  EXPECT_TRUE(stream.atEnd());
  GrowString piece;
  piece = "left over";
  stream >> piece;
  EXPECT_STREQ(piece, "");
}

TEST(ByteStream, AfterAReadErrorTheFileStaysAtItsEnd)
{
  // A file that gives "ab", then an error, then "c".
  struct Source {
    int reads = 0;
    static ssize_t read(void* cookie, char* buffer, std::size_t)
    {
      switch (static_cast<Source*>(cookie)->reads++) {
      case 0:
        buffer[0] = 'a';
        buffer[1] = 'b';
        return 2;
      case 1:
        errno = EIO;
        return -1;
      default:
        buffer[0] = 'c';
        return 1;
      }
    }
  } source;
  const File file(fopencookie(&source, "r", cookie_io_functions_t{&Source::read, nullptr, nullptr, nullptr}));
  ASSERT_NE(file, nullptr);
  ByteStream stream(file.get());
  GrowString piece;
  stream >> piece;
  EXPECT_STREQ(piece, "ab");
  EXPECT_TRUE(stream.atEnd());
  stream >> piece;
  EXPECT_STREQ(piece, "");
  EXPECT_EQ(source.reads, 2);
}

TEST(ByteStream, FileMayBeClosedBeforeTheStreamEnds)
{
  File file = fileOver("a\n");
  ByteStream stream(file.get());
  GrowString piece;
  stream >> piece;
  EXPECT_STREQ(piece, "a\n");
  file.reset();
}

TEST(ByteStream, WithoutMemoryNothingLeaks)
{
  const LightweightString<char> text("a text that is longer than a small buffer:b");
  EXPECT_EQ(failEachAllocation([&] {
              ByteStream stream(text);
              stream.separators = ":;";
              GrowString piece;
              stream >> piece;
            }),
            2); // the separators and the piece, each once
}
