// SPDX-License-Identifier: Apache-2.0
#include "host/text.h"

#include "standalone/model/host_test.h"

namespace {

using namespace reeldb_tests;

class TextsTest : public HostTest {};

TEST_F(TextsTest, ThePrintGoesToStandardErrorAndNowhereElse)
{
  ::testing::internal::CaptureStderr();
  ::testing::internal::CaptureStdout();
  EXPECT_EQ(vorn_printf("Shot: %s  Changing reel from %s to %s\n", "E0000001", "a", "b"), 42);
  EXPECT_EQ(vorn_printf("%s", ""), 0);
  EXPECT_EQ(::testing::internal::GetCapturedStdout(), "");
  EXPECT_EQ(::testing::internal::GetCapturedStderr(), "Shot: E0000001  Changing reel from a to b\n");
}

TEST_F(TextsTest, WhatMustNotReachATerminalIsPrintedEscapedButTheLineEndThatEndsTheMessage)
{
  ::testing::internal::CaptureStderr();
  EXPECT_EQ(vorn_printf("from %s to %s\n", "a\x1b[2J\nb", "caf\xC3\xA9\xFF"), 23);
  EXPECT_EQ(vorn_printf("%s", "no line end\n\n"), 13);
  EXPECT_EQ(vorn_printf("%s", "\n"), 1);
  EXPECT_EQ(::testing::internal::GetCapturedStderr(), "from a\\x1b[2J\\nb to caf\xC3\xA9\\xff\nno line end\\n\n\n");
}

TEST_F(TextsTest, APrintMayBeLong)
{
  const std::string text(100000, 'x');
  ::testing::internal::CaptureStderr();
  vorn_printf("%s\n", text.c_str());
  EXPECT_EQ(::testing::internal::GetCapturedStderr(), text + "\n");
}

TEST_F(TextsTest, PrintsGoToTheSinkAndNowhereElse)
{
  std::vector<std::string> printed;
  ::testing::internal::CaptureStderr();
  ::testing::internal::CaptureStdout();
  reelhost::printTo([&](std::string_view text) { printed.emplace_back(text); });
  EXPECT_EQ(vorn_printf("from %s to %s\n", "a\x1b[2J\nb", "c"), 18);
  EXPECT_EQ(vorn_printf("%s", "no line end"), 11);
  reelhost::printTo({});
  EXPECT_EQ(vorn_printf("%s\n", "as before"), 10);
  EXPECT_EQ(printed, (std::vector<std::string>{"from a\\x1b[2J\\nb to c\n", "no line end"}));
  EXPECT_EQ(::testing::internal::GetCapturedStdout(), "");
  EXPECT_EQ(::testing::internal::GetCapturedStderr(), "as before\n");
}

TEST_F(TextsTest, WhatASinkThrowsPasses)
{
  reelhost::printTo([](std::string_view) { throw std::runtime_error("no paper"); });
  EXPECT_THROW(vorn_printf("%s\n", "text"), std::runtime_error);
  reelhost::printTo({});
}

TEST_F(TextsTest, SinkMayNameAnother)
{
  std::vector<std::string> printed;
  reelhost::printTo([&](std::string_view) {
    reelhost::printTo([&](std::string_view text) { printed.emplace_back(text); });
    printed.emplace_back("first");
  });
  vorn_printf("%s", "one");
  vorn_printf("%s", "two");
  reelhost::printTo({});
  EXPECT_EQ(printed, (std::vector<std::string>{"first", "two"}));
}

TEST_F(TextsTest, TheBuiltInTextOfAReelsNameIsReel)
{
  EXPECT_EQ(std::wstring(paddedResourceStrW(10043, nullptr, L" ", ResStrFmt(0)).c_str()), L"Reel ");
}

TEST_F(TextsTest, AnUnknownResourceIsItsPaddingAlone)
{
  EXPECT_EQ(std::wstring(paddedResourceStrW(1, L"<", L">", ResStrFmt(0)).c_str()), L"<>");
}

} // namespace
