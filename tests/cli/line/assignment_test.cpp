// SPDX-License-Identifier: Apache-2.0
#include "line/assignment.h"

#include <gtest/gtest.h>

#include "app/error.h"

using namespace reeldb::cli;

namespace {

TEST(ParseAssignment, FirstEqualsSignDivides)
{
  const reeldb::app::Assignment assignment = parseAssignment("bin=a=b", "A=B");
  EXPECT_EQ(assignment.field, "bin");
  EXPECT_EQ(assignment.value, "a=b");
}

TEST(ParseAssignment, ValueMayBeEmpty)
{
  EXPECT_EQ(parseAssignment("bin=", "A=B").value, "");
}

bool isInvalid(const std::string& argument)
{
  try {
    parseAssignment(argument, "A=B");
    return false;
  } catch (const reeldb::app::Error& error) {
    return error.kind() == reeldb::app::ErrorKind::Invalid;
  }
}

TEST(ParseAssignment, NoEqualsSignOrNoFieldIsInvalid)
{
  EXPECT_TRUE(isInvalid("bin"));
  EXPECT_TRUE(isInvalid("=x"));
  EXPECT_TRUE(isInvalid(""));
}

} // namespace
