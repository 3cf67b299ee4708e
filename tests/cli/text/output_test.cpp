// SPDX-License-Identifier: Apache-2.0
#include "text/output.h"

#include <gtest/gtest.h>

using namespace reeldb::cli;

namespace {

TEST(JsonText, IsIndentedAndKeepsTheOrderOfItsKeys)
{
  EXPECT_EQ(jsonText({{"b", 1}, {"a", {2, "x"}}}), "{\n  \"b\": 1,\n  \"a\": [\n    2,\n    \"x\"\n  ]\n}\n");
}

TEST(JsonLine, IsOneLine)
{
  EXPECT_EQ(jsonLine({{"b", "x\ny"}, {"a", 2}}), "{\"b\":\"x\\ny\",\"a\":2}\n");
}

TEST(JsonText, WhatSteersATerminalIsEscapedAndMeansTheSame)
{
  const std::string text = "\x1b \x7f \xc2\x9b \xe2\x80\xae \xe2\x80\xa8 caf\xc3\xa9 \xf0\x9f\x8e\x9e";
  const std::string written = jsonLine(text);
  EXPECT_EQ(written, "\"\\u001b \\u007f \\u009b \\u202e \\u2028 caf\xc3\xa9 \xf0\x9f\x8e\x9e\"\n");
  EXPECT_EQ(Json::parse(written), Json(text));
}

TEST(JsonText, BytesThatAreNoUtf8AreReplaced)
{
  EXPECT_EQ(jsonLine("a\xff"), "\"a\xef\xbf\xbd\"\n");
}

} // namespace
