// SPDX-License-Identifier: Apache-2.0
#include "text/table.h"

#include <gtest/gtest.h>

using namespace reeldb::cli;

namespace {

TEST(Table, TextIsAlignedLeftAndNumbersRight)
{
  Table table({{"NAME"}, {.title = "N", .number = true}, {"X"}});
  table.add({"a", "1", "x"});
  table.add({"long name", "100", ""});
  EXPECT_EQ(table.text(std::nullopt, false), "NAME         N  X\n"
                                             "a            1  x\n"
                                             "long name  100\n");
}

TEST(Table, OptionalColumnIsLeftOutUnlessUsed)
{
  Table table({{"NAME"}, {.title = "BIN", .optional = true}});
  table.add({"a", ""});
  EXPECT_EQ(table.text(std::nullopt, false), "NAME\na\n");
  table.add({"b", "shelf"});
  EXPECT_EQ(table.text(std::nullopt, false), "NAME  BIN\na\nb     shelf\n");
}

TEST(Table, CellsAreMadeFitForATerminal)
{
  Table table({{"NA\xffME"}});
  table.add({"a\x1b\n"});
  EXPECT_EQ(table.text(std::nullopt, false), "NA\\xffME\na\\x1b\\n\n");
}

TEST(Table, LinesStandBehindTheIndentWhichATerminalHasToHoldToo)
{
  Table table({{"N"}, {"TEXT"}});
  table.add({"1", "twelve chars"});
  EXPECT_EQ(table.text(std::nullopt, false, 2), "  N  TEXT\n  1  twelve chars\n");
  EXPECT_EQ(table.text(17, false, 2), "  N  TEXT\n  1  twelve chars\n");
  EXPECT_EQ(table.text(16, false, 2), "  N  TEXT\n  1  twelve\n     chars\n");
  EXPECT_EQ(table.text(1, false, 2), "  N  TEXT\n  1  twelve\n     chars\n");
}

TEST(Table, TitlesAreBoldWithColours)
{
  Table table({{"NAME"}});
  table.add({"a"});
  EXPECT_EQ(table.text(std::nullopt, true), "\x1b[1mNAME\x1b[0m\na\n");
}

TEST(Table, NarrowTerminalWrapsTheWidestColumnFirstAndNeverTheFirst)
{
  Table table({{"NAME"}, {"A"}, {"B"}, {.title = "N", .number = true}});
  table.add({std::string(20, 'n'), std::string(30, 'a'), std::string(12, 'b'), "1234567890"});
  const std::string lines = table.text(60, false).substr(61);
  const std::string part(12, 'a');
  EXPECT_EQ(lines, std::string(20, 'n') + "  " + part + "  " + std::string(12, 'b') + "  1234567890\n" +
                       std::string(22, ' ') + part + "\n" + std::string(22, ' ') + "aaaaaa\n");
}

TEST(Table, TitleThatIsWrappedIsBoldOnEachLine)
{
  Table table({{"NAME"}, {"LAST DEVICE"}});
  table.add({"a", "b"});
  EXPECT_EQ(table.text(14, true), "\x1b[1mNAME  LAST\x1b[0m\n\x1b[1m      DEVICE\x1b[0m\na     b\n");
}

TEST(Table, RowWithoutATerminalIsOneLine)
{
  Table table({{"NAME"}, {"A"}});
  table.add({"n", std::string(500, 'a') + " b"});
  EXPECT_EQ(table.text(std::nullopt, false), "NAME  A\nn     " + std::string(500, 'a') + " b\n");
}

TEST(Table, ColumnKeepsEightColumns)
{
  Table table({{"NAME"}, {"A"}});
  table.add({std::string(20, 'n'), std::string(30, 'a')});
  EXPECT_NE(table.text(10, false).find(std::string(20, 'n') + "  aaaaaaaa\n"), std::string::npos);
}

TEST(Table, MissingCellsAreEmpty)
{
  Table table({{"A"}, {"B"}});
  table.add({"a"});
  EXPECT_EQ(table.text(std::nullopt, false), "A  B\na\n");
}

} // namespace
