// SPDX-License-Identifier: Apache-2.0
#include "lists/list.h"

#include <string>

#include <gtest/gtest.h>

#include "support.h"

using namespace reeldb::lists;
using namespace reeldb::lists::test;

namespace {

std::string failure(std::string_view bytes)
{
  try {
    read(bytes);
  } catch (const Error& error) {
    return error.what();
  }
  return "read";
}

TEST(Read, NothingIsAnError)
{
  EXPECT_EQ(failure(""), "holds no text");
  EXPECT_EQ(failure("\r\n \t\n"), "holds no text");
  EXPECT_EQ(failure(std::string_view("\xEF\xBB\xBF\x1A\0", 5)), "holds no text");
}

TEST(Read, NeitherFormatIsAnError)
{
  EXPECT_EQ(failure("hello\n"),
            "neither a cut list (EDL) nor a log file (ALE) (it has no event line and no Heading or Column)");
  EXPECT_EQ(failure(std::string_view("\x7F"
                                     "ELF\0\0x",
                                     7)),
            "neither a cut list (EDL) nor a log file (ALE) (it holds binary data)");
}

TEST(Read, Utf16WithoutAMarkSaysWhatToDo)
{
  std::string bytes;
  for (char c : "TITLE: X\n" + event("001", "R V C")) {
    bytes += c;
    bytes += '\0';
  }
  EXPECT_EQ(failure(bytes), "UTF-16 without a byte order mark (save it as UTF-8)");
}

TEST(Read, DetectsTheFormatByTheContent)
{
  EXPECT_EQ(read(event("001", "R V C")).format, Format::Edl);
  EXPECT_EQ(read("Column\nName\tTape\nData\na\tT1\n").format, Format::Ale);
}

TEST(Read, Utf16ListsGiveUtf8)
{
  std::string bytes = "\xFE\xFF";
  for (char c : "TITLE: K\xFC\n" + event("001", "K\xFC V C")) {
    bytes += '\0';
    bytes += c;
  }
  const List list = read(bytes);
  EXPECT_EQ(list.title, "K\xC3\xBC");
  EXPECT_EQ(reels(list), Strings{"K\xC3\xBC"});
}

TEST(Read, Latin1ListsGiveUtf8)
{
  EXPECT_EQ(reels(read(event("001", "M\xDCLLER V C"))), Strings{"M\xC3\x9CLLER"});
}

TEST(Read, CrOnlyLinesAndAPaddedEndAreNormal)
{
  std::string text = "TITLE: X\n" + event("001", "R1 V C") + "* FROM CLIP NAME: a\n\n" + event("002", "R2 V C");
  for (char& c : text)
    c = c == '\n' ? '\r' : c;
  const List list = read("\xEF\xBB\xBF" + text + std::string("\x1A\x1A\0\0", 4));
  EXPECT_EQ(reels(list), (Strings{"R1", "R2"}));
  EXPECT_EQ(list.clips[0].clipName, "a");
  EXPECT_EQ(list.clips[1].line, 5);
  EXPECT_TRUE(list.rejected.empty());
  EXPECT_EQ(accountedLines(list), list.tally.lines);
}

} // namespace
