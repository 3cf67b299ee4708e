// SPDX-License-Identifier: Apache-2.0
#include "app/plain_text.h"

#include <gtest/gtest.h>

using namespace reeldb::app;

namespace {

std::string refusalOf(const std::string& text)
{
  try {
    requirePlainText(text, "x: no name");
    return "";
  } catch (const Error& error) {
    EXPECT_EQ(error.kind(), ErrorKind::Invalid);
    return error.what();
  }
}

TEST(RequirePlainText, TextThatCanBeShownPasses)
{
  EXPECT_EQ(refusalOf(""), "");
  EXPECT_EQ(refusalOf(" caf\xc3\xa9 *"), "");
}

TEST(RequirePlainText, AnyOtherIsAUsageErrorWithTheCause)
{
  EXPECT_EQ(refusalOf("a\tb"), "x: no name (it holds a control character)");
  EXPECT_EQ(refusalOf("a\xff"), "x: no name (it is not UTF-8)");
}

} // namespace
