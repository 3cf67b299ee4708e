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
            "not a cut list, a log file or a timeline (it has no event line and no Heading or Column)");
  EXPECT_EQ(failure(std::string_view("\x7F"
                                     "ELF\0\0x",
                                     7)),
            "not a cut list, a log file or a timeline (it holds binary data)");
}

TEST(Read, OtherFormatsAreNamed)
{
  const auto fact = [](std::string_view bytes) {
    const std::string all = failure(bytes);
    const std::string start = "not a cut list, a log file or a timeline (";
    return all.rfind(start, 0) == 0 ? all.substr(start.size(), all.size() - start.size() - 1) : all;
  };
  EXPECT_EQ(fact("\xEF\xBB\xBF<?xml version=\"1.0\"?>\n<html>"), "it is XML without a list: 'html'");
  EXPECT_EQ(fact("PK\x03\x04..."),
            "it is a zip archive; import the content.otio of an .otioz file, and a spreadsheet as CSV");
  EXPECT_EQ(fact("%PDF-1.7\n"), "it is a PDF document");
  EXPECT_EQ(fact("<?xml version=\"1.0\"?>\n<hashlist version=\"1.1\">"), "it is XML: a media hash list (MHL)");
  EXPECT_EQ(fact("[1]"), "it is JSON without reels, shots or lists");
  EXPECT_EQ(fact(std::string_view("\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1\0\0", 10)),
            "it is a compound file, as AAF files are");
  for (const char* table : {"number,type,bin\n1,Tape 2ch,3\n", "number;type;bin", "number\ttype\tbin\n"})
    EXPECT_EQ(fact(table), "it looks like a table without a column for the reel; --map TITLE=reel names one");
  EXPECT_EQ(fact("Dear Anna, here they are."), "it has no event line and no Heading or Column");
}

TEST(Read, ControlCharacterOfLatin1IsWarnedOfOnce)
{
  const List list = read(event("001", "CAF\x83 V C") + event("002", "B002 V C") + "* FROM CLIP NAME: Anna\x92s\n");
  ASSERT_EQ(list.warnings.size(), 1u);
  EXPECT_EQ(list.warnings[0].line, 1);
  EXPECT_EQ(list.warnings[0].text.substr(0, 16), "001  CAF\\u0083 V");
  EXPECT_EQ(list.warnings[0].reason,
            "holds \\u0083, a control character (the file may be Windows-1252 or MacRoman; save it as UTF-8)");
  EXPECT_EQ(list.clips.size(), 2u);
  EXPECT_TRUE(read(event("001", "M\xDCLLER\xA0 V C")).warnings.empty());
  EXPECT_TRUE(read(event("001", "M\xC3\x9CLLER V C")).warnings.empty());
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
