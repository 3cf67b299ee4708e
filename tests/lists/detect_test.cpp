// SPDX-License-Identifier: Apache-2.0
#include "lists/detect.h"

#include <string>

#include <gtest/gtest.h>

#include "support.h"

using namespace reeldb::lists;
using namespace reeldb::lists::test;

namespace {

TEST(FormatWord, IsThatOfTheFilesEnding)
{
  EXPECT_EQ(wordOf(Format::Edl), "edl");
  EXPECT_EQ(wordOf(Format::Ale), "ale");
}

TEST(Detect, AnEventLineMakesACutListWithoutTitleOrFcm)
{
  EXPECT_EQ(detectText(event("001", "R V C")), Format::Edl);
  EXPECT_EQ(detectText("A HEADER OF SOME KIND\n\n" + event("0001", "R V")), Format::Edl);
}

TEST(Detect, AListOfNothingButBadEventsIsACutList)
{
  EXPECT_EQ(detectText("001 R V C 01:99:00:00 01:00:00:00\n"), Format::Edl);
  EXPECT_EQ(detectText("TITLE: X\n001 R V C\n"), Format::Edl);
}

TEST(Detect, AnEmptyCutIsACutList)
{
  EXPECT_EQ(detectText("TITLE: X\n* NOTHING\n\n"), Format::Edl);
  EXPECT_EQ(detectText("title: X\n"), Format::Edl);
  EXPECT_EQ(detectText("* a note\n\n* another\n"), Format::Edl);
  EXPECT_EQ(detectText("|C:ResolveColorBlue |M:look here |D:1\n"), Format::Edl);
  EXPECT_EQ(detectText("FCM: NON-DROP FRAME\n"), Format::Edl);
}

TEST(Detect, HeadingOrColumnInFrontMakesALogFile)
{
  EXPECT_EQ(detectText("Heading\nFIELD_DELIM\tTABS\n"), Format::Ale);
  EXPECT_EQ(detectText("\n  Heading\tFIELD_DELIM\tTABS\n"), Format::Ale);
  EXPECT_EQ(detectText("Column\nName\n"), Format::Ale);
  EXPECT_EQ(detectText("HEADING\n"), Format::Ale);
}

TEST(Detect, OtherTextsAreNeither)
{
  for (const char* text : {"", "\n\n", "Title: an essay\nIt was a dark night.\n", "<?xml version=\"1.0\"?>\n<html/>\n",
                           "1\n00:00:01,000 --> 00:00:04,000\nHello\n", "{\"clips\": []}", "The Heading\n",
                           "001 apples\n", "Headings\n", "* a note\n001 apples\n", "-- \nfoo\n"})
    EXPECT_EQ(detectText(text), std::nullopt) << text;
}

TEST(Detect, BytesAreDecodedFirst)
{
  std::string utf16 = "\xFF\xFE";
  for (char c : std::string("TITLE: X\n")) {
    utf16 += c;
    utf16 += '\0';
  }
  EXPECT_EQ(detect(utf16), Format::Edl);
  EXPECT_EQ(detect("\xEF\xBB\xBFHeading\r"), Format::Ale);
  EXPECT_EQ(detect("nothing"), std::nullopt);
}

} // namespace
