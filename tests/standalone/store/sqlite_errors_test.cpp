// SPDX-License-Identifier: Apache-2.0
#include "store/sqlite_errors.h"

#include <gtest/gtest.h>

#include "standalone/store/support.h"

namespace {

using namespace reelhost;
using sqlite::Cause;

std::string errorOf(Cause cause, const std::string& holder = {})
{
  return store_tests::errorOf([&] { throw errorFrom(sqlite::Failure(cause, "why\n"), "P", "not stored", holder); });
}

TEST(ErrorFrom, LockNamesItsHolderWhereThereIsOne)
{
  EXPECT_EQ(errorOf(Cause::Busy), "Busy: P: held by another process");
  EXPECT_EQ(errorOf(Cause::Busy, "pid 7"), "Busy: P: held by another process (pid 7)");
}

TEST(ErrorFrom, CauseDecidesOnKindAndFact)
{
  EXPECT_EQ(errorOf(Cause::Damaged), "Unreadable: P: damaged (why\\n)");
  EXPECT_EQ(errorOf(Cause::ReadOnly), "ReadOnly: P: read-only (why\\n)");
  EXPECT_EQ(errorOf(Cause::Constraint), "Refused: P: not stored (why\\n)");
  for (const Cause cause : {Cause::CannotOpen, Cause::Full, Cause::Other})
    EXPECT_EQ(errorOf(cause), "Io: P: not stored (why\\n)");
}

} // namespace
