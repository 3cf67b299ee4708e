// SPDX-License-Identifier: Apache-2.0
//
// tests/base/display_text_test.cpp has the cases of the rules. These cases check that the host exports the functions.
#include "reelhost/display_text.h"

#include <gtest/gtest.h>

using namespace reelhost;

namespace {

TEST(DisplayText, HostEscapesAsBaseDoes)
{
  EXPECT_EQ(displayText("a\x1b\xc2\x9b\xe2\x80\xae\xff\\"), "a\\x1b\\u009b\\u202e\\xff\\");
  EXPECT_TRUE(isShownEscaped(0x202E));
  EXPECT_FALSE(isShownEscaped('a'));
}

TEST(TextFlaw, HostFindsTheFlawsThatBaseFinds)
{
  EXPECT_EQ(textFlaw("M\xc3\x9cLLER"), "");
  EXPECT_EQ(textFlaw("\xff"), "it is not UTF-8");
  EXPECT_EQ(textFlaw("\x1b"), "it holds a control character");
  EXPECT_TRUE(holdsControlCharacter("\xc2\x9b"));
  EXPECT_FALSE(holdsControlCharacter("\xff"));
}

} // namespace
