// SPDX-License-Identifier: Apache-2.0
#include "host_check/compare.h"

#include <gtest/gtest.h>

using host_check::unmet;

using Texts = std::vector<std::string>;

TEST(Compare, WhatIsOfferedIsNotUnmet)
{
  EXPECT_TRUE(unmet({"_Z6co_pidv"}, {"_Z6co_pidv", "_Z2OSv"}).empty());
  EXPECT_TRUE(unmet({}, {"_Z6co_pidv"}).empty());
}

TEST(Compare, ANameNobodyOffersHasNoOthers)
{
  const auto result = unmet({"_Z6co_pidv"}, {"_Z2OSv"});
  ASSERT_EQ(result.size(), 1u);
  EXPECT_EQ(result[0].symbol, "_Z6co_pidv");
  EXPECT_TRUE(result[0].others.empty());
}

TEST(Compare, SameNameWithOtherParametersOrConstIsReported)
{
  // Edit::isImported() const is asked; there are isImported(), isImported(int) and notImported() const.
  const auto result = unmet({"_ZNK4Edit10isImportedEv"},
                            {"_ZN4Edit10isImportedEv", "_ZN4Edit10isImportedEi", "_ZNK4Edit11notImportedEv"});
  ASSERT_EQ(result.size(), 1u);
  EXPECT_EQ(result[0].others, (Texts{"_ZN4Edit10isImportedEi", "_ZN4Edit10isImportedEv"}));
}

TEST(Compare, AnOverloadThatIsThereDoesNotStandForTheOther)
{
  const auto result = unmet({"_ZNK7configb2inEPKc", "_ZNK7configb2inEPKcRi"}, {"_ZNK7configb2inEPKc"});
  ASSERT_EQ(result.size(), 1u);
  EXPECT_EQ(result[0].symbol, "_ZNK7configb2inEPKcRi");
  EXPECT_EQ(result[0].others, Texts{"_ZNK7configb2inEPKc"});
}

TEST(Compare, TheOrderIsThatOfTheWrittenNames)
{
  const auto result = unmet({"_ZN5Array3addEP8ArrayRec", "_ZN10GrowStringC1Ev", "_Z6co_pidv"}, {});
  ASSERT_EQ(result.size(), 3u);
  EXPECT_EQ(result[0].symbol, "_ZN5Array3addEP8ArrayRec");
  EXPECT_EQ(result[1].symbol, "_ZN10GrowStringC1Ev");
  EXPECT_EQ(result[2].symbol, "_Z6co_pidv");
}
