// SPDX-License-Identifier: Apache-2.0
#include "base/shell_word.h"

#include <gtest/gtest.h>

using namespace reeldb::base;

namespace {

TEST(ShellWord, TextThatMeansNothingToAShellStays)
{
  EXPECT_EQ(shellWord("docu-film_2.1"), "docu-film_2.1");
  EXPECT_EQ(shellWord("a/b=c,d:e@f+g%h"), "a/b=c,d:e@f+g%h");
  EXPECT_EQ(shellWord("caf\xc3\xa9"), "caf\xc3\xa9");
}

TEST(ShellWord, AllElseStandsInQuotes)
{
  EXPECT_EQ(shellWord(""), "''");
  EXPECT_EQ(shellWord("a b"), "'a b'");
  EXPECT_EQ(shellWord("it's"), "'it'\\''s'");
  EXPECT_EQ(shellWord("$HOME \"x\" `y` \\"), "'$HOME \"x\" `y` \\'");
  for (const char* text : {"*", "?", "~", "a;b", "a&b", "a|b", "(a", "<a", "!a", "#a", "{a", "[a"})
    EXPECT_EQ(shellWord(text), "'" + std::string(text) + "'");
}

TEST(ShellWord, WhatCannotBeShownIsWrittenWithEscapes)
{
  EXPECT_EQ(shellWord("a\x1b b\n"), "$'a\\x1b b\\n'");
  EXPECT_EQ(shellWord("\xff'\\"), "$'\\xff\\'\\\\'");
}

} // namespace
