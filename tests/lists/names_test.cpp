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

TEST(PaddedField, TheNarrowestThatHoldsTheColumn)
{
  EXPECT_EQ(paddedField(0), 0u);
  EXPECT_EQ(paddedField(1), 6u);
  EXPECT_EQ(paddedField(6), 6u);
  EXPECT_EQ(paddedField(7), 8u);
  EXPECT_EQ(paddedField(16), 16u);
  EXPECT_EQ(paddedField(30), 32u);
  EXPECT_EQ(paddedField(129), 129u);
  EXPECT_EQ(paddedField(130), 0u);
}

TEST(FillsField, ATextOfTheWholeWidth)
{
  Event event;
  event.reelText = "R\u00C9EL56";
  event.reelField = 6;
  EXPECT_TRUE(fillsField(event));
  event.reelField = 8;
  EXPECT_FALSE(fillsField(event));
  event.reelField = 0;
  EXPECT_FALSE(fillsField(event));
}

TEST(IsAuxiliary, AxInAnyCaseAlone)
{
  EXPECT_TRUE(isAuxiliary("AX"));
  EXPECT_TRUE(isAuxiliary("aX"));
  EXPECT_FALSE(isAuxiliary("AX1"));
  EXPECT_FALSE(isAuxiliary(""));
}

} // namespace
