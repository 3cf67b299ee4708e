// SPDX-License-Identifier: Apache-2.0
#include "facility/toml_file.h"

#include <gtest/gtest.h>

#include "standalone/store/support.h"

namespace {

using namespace reelhost;
using namespace store_tests;

class TomlFileTest : public testing::Test {
protected:
  TomlFile read(std::string_view content) const
  {
    writeBytes(folder_ / "t.toml", content);
    return TomlFile(folder_ / "t.toml");
  }
  std::string errorFor(std::string_view content) const
  {
    return errorOf([&] { read(content); });
  }
  std::string subject() const { return (folder_ / "t.toml").native(); }

private:
  TempFolder folder_;
};

TEST_F(TomlFileTest, ValuesOfEveryKind)
{
  const TomlFile file =
      read("t = \"x\\ty\"\nn = 7\nf = true\nl = [\"a\", \"b\"]\nm = [1, 2]\n[s]\n[[a]]\nk = 1\n[[a]]\n");
  const TomlTable root(file, file.root(), "");
  EXPECT_EQ(root.anyText("t"), "x\ty");
  EXPECT_EQ(root.number("n", 7, 7), 7);
  EXPECT_EQ(root.flag("f"), true);
  EXPECT_EQ(root.texts("l"), (std::vector<std::string>{"a", "b"}));
  EXPECT_EQ(root.numbers("m", 1, 2), (std::vector<std::int64_t>{1, 2}));
  EXPECT_TRUE(root.isArray("m"));
  EXPECT_FALSE(root.isArray("n"));
  EXPECT_TRUE(root.table("s"));
  ASSERT_EQ(root.tables("a").size(), 2u);
  EXPECT_EQ(root.tables("a")[0].number("k", 0, 9), 1);
  EXPECT_EQ(root.keys(), (std::vector<std::string>{"t", "n", "f", "l", "m", "s", "a"}));
}

TEST_F(TomlFileTest, AbsentKeysHaveNoValue)
{
  const TomlFile file = read("");
  const TomlTable root(file, file.root(), "");
  EXPECT_EQ(root.text("x"), std::nullopt);
  EXPECT_EQ(root.anyText("x"), std::nullopt);
  EXPECT_EQ(root.number("x", 0, 1), std::nullopt);
  EXPECT_EQ(root.flag("x"), std::nullopt);
  EXPECT_TRUE(root.texts("x").empty());
  EXPECT_TRUE(root.numbers("x", 0, 1).empty());
  EXPECT_FALSE(root.table("x"));
  EXPECT_TRUE(root.tables("x").empty());
  EXPECT_TRUE(root.keys().empty());
}

TEST_F(TomlFileTest, FlagOfAnotherTypeIsAnError)
{
  const TomlFile file = read("\nf = 1\n");
  const TomlTable root(file, file.root(), "table");
  EXPECT_EQ(errorOf([&] { root.flag("f"); }),
            "Unreadable: " + subject() + ":2: table.f: true or false is needed (this is a whole number)");
}

TEST_F(TomlFileTest, KeysNestedWithoutEndAreRefusedBeforeTheyAreParsed)
{
  const auto nested = [](int dots) {
    std::string key;
    for (int i = 0; i < dots; ++i)
      key += "a.";
    return key + "a = 1\n";
  };
  EXPECT_EQ(errorFor(nested(10'000)), "nothing");
  EXPECT_EQ(errorFor(nested(10'001)),
            "Unreadable: " + subject() + ": too many dots (more than 10000; keys cannot be nested that deep)");
  EXPECT_EQ(errorFor(nested(400'000)),
            "Unreadable: " + subject() + ": too many dots (more than 10000; keys cannot be nested that deep)");
  EXPECT_EQ(errorFor("a = " + std::string(100'000, '[')).rfind("Unreadable: " + subject() + ":1: not valid TOML (", 0),
            0u);
}

TEST_F(TomlFileTest, LargeFileIsRefused)
{
  EXPECT_EQ(errorFor(std::string(TomlFile::largestSize, '\n')), "nothing");
  EXPECT_EQ(errorFor(std::string(TomlFile::largestSize + 1, '\n')),
            "Unreadable: " + subject() + ": too large (more than 1048576 bytes)");
}

TEST_F(TomlFileTest, LineEndsAndMarksOfOtherSystems)
{
  EXPECT_EQ(errorFor("\xEF\xBB\xBF"
                     "a = 1\r\nb = 2\r\n"),
            "nothing");
}

} // namespace
