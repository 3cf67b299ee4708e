// SPDX-License-Identifier: Apache-2.0
#include "line/assignment.h"

#include <gtest/gtest.h>

#include "line/failure.h"

using namespace reeldb::cli;

namespace {

TEST(ParseAssignment, FirstEqualsSignDivides)
{
  const Assignment assignment = parseAssignment("bin=a=b");
  EXPECT_EQ(assignment.field, "bin");
  EXPECT_EQ(assignment.value, "a=b");
}

TEST(ParseAssignment, ValueMayBeEmpty)
{
  EXPECT_EQ(parseAssignment("bin=").value, "");
}

ExitCode codeOf(const std::string& argument)
{
  try {
    parseAssignment(argument);
    return done;
  } catch (const Failure& failure) {
    return failure.code();
  }
}

TEST(ParseAssignment, NoEqualsSignOrNoFieldIsAUsageError)
{
  EXPECT_EQ(codeOf("bin"), usage);
  EXPECT_EQ(codeOf("=x"), usage);
  EXPECT_EQ(codeOf(""), usage);
}

TEST(ParseAssignment, ValueThatCannotBeHandedOnIsAUsageError)
{
  EXPECT_EQ(codeOf("bin=\x1b"), usage);
  EXPECT_EQ(codeOf("bin=\xff"), usage);
  EXPECT_EQ(codeOf("bin=caf\xc3\xa9"), done);
}

TEST(ParseAssignment, ValueOf2047BytesPassesAndOf2048IsRefused)
{
  EXPECT_EQ(codeOf("bin=" + std::string(2047, 'x')), done);
  EXPECT_EQ(codeOf("bin=" + std::string(2048, 'x')), refused);
}

} // namespace
