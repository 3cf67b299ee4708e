// SPDX-License-Identifier: Apache-2.0
#include "lists/names.h"

#include <gtest/gtest.h>

using namespace reeldb::lists;

namespace {

TEST(PlaceholderReason, FourWordsInAnyCase)
{
  EXPECT_EQ(placeholderReason("BL"), "black");
  EXPECT_EQ(placeholderReason("black"), "black");
  EXPECT_EQ(placeholderReason("Bars"), "colour bars");
  EXPECT_EQ(placeholderReason("gen"), "generated");
}

TEST(PlaceholderReason, EverythingElseMayBeAReel)
{
  for (const char* name : {"", "BLACK1", "BARS.MOV", "GENERAL", "AX", "B L", "A*"})
    EXPECT_EQ(placeholderReason(name), "") << name;
}

TEST(SpecialReason, AStarAnywhere)
{
  EXPECT_EQ(specialReason("TITLES*2"), "a star denotes internally generated material");
  EXPECT_EQ(specialReason("*"), "a star denotes internally generated material");
  EXPECT_EQ(specialReason("BL"), "black");
  EXPECT_EQ(specialReason("TITLES2"), "");
}

TEST(IsAuxiliary, AxInAnyCaseAlone)
{
  EXPECT_TRUE(isAuxiliary("AX"));
  EXPECT_TRUE(isAuxiliary("aX"));
  EXPECT_FALSE(isAuxiliary("AX1"));
  EXPECT_FALSE(isAuxiliary(""));
}

} // namespace
