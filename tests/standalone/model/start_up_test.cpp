// SPDX-License-Identifier: Apache-2.0
#include <locale.h>

#include <gtest/gtest.h>

#include "reelhost/host.h"

namespace {

TEST(StartUp, GivesTheThreadALocaleOfItsOwn)
{
  uselocale(LC_GLOBAL_LOCALE);
  reelhost::startUp();
  EXPECT_NE(uselocale(nullptr), LC_GLOBAL_LOCALE);
}

} // namespace
