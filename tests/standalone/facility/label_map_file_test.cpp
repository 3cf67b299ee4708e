// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "reelhost/facility.h"
#include "standalone/store/support.h"

namespace {

using namespace reelhost;
using namespace store_tests;
namespace fs = std::filesystem;

std::string entry(const std::string& inUse, const std::string& source, const std::string& format)
{
  return "[[entry]]\nlabel = \"L\"\nin_use = " + inUse + "\nsource = " + source + "\nformat = " + format + "\n";
}

/// @p count entries of five lines each.
std::string entries(int count)
{
  std::string out;
  for (int i = 0; i < count; ++i)
    out += entry("false", "\"none\"", "\"text\"");
  return out;
}

class LabelMapFile : public testing::Test {
protected:
  fs::path file() const { return folder_ / "map.toml"; }
  std::vector<LabelMapEntry> read(const std::string& content) const
  {
    writeBytes(file(), content);
    return readLabelMap(file());
  }
  std::string errorFor(const std::string& content) const
  {
    return errorOf([&] { read(content); });
  }

private:
  TempFolder folder_;
};

TEST_F(LabelMapFile, FourteenEntriesInTheOrderOfTheFile)
{
  const auto map = read(entry("true", "\"vitc\"", "\"25 fps\"") + entry("false", "\"1394\"", "\"60 fps\"") +
                        entries(11) + entry("true", "\"9-pin timer\"", "\"frame count\""));
  ASSERT_EQ(map.size(), 14u);
  EXPECT_TRUE(map[0].inUse);
  EXPECT_EQ(map[0].source, 1u);
  EXPECT_EQ(map[0].format, 1u);
  EXPECT_FALSE(map[1].inUse);
  EXPECT_EQ(map[1].source, 9u);
  EXPECT_EQ(map[1].format, 10u);
  EXPECT_FALSE(map[2].inUse);
  EXPECT_EQ(map[2].source, 0u);
  EXPECT_EQ(map[2].format, 8u);
  EXPECT_TRUE(map[13].inUse);
  EXPECT_EQ(map[13].source, 5u);
  EXPECT_EQ(map[13].format, 7u);
}

TEST_F(LabelMapFile, EveryErrorNamesFileLineAndReason)
{
  const std::string sources = "none, vitc, vitc2, 9-pin ltc, 9-pin vitc, 9-pin timer, ltc, rp188, time of day, 1394";
  const std::string formats =
      "30 fps, 25 fps, 24 fps, 35mm feet+frames, 16mm feet+frames, key number, ink number, frame "
      "count, text, 50 fps, 60 fps";
  const std::pair<std::string, std::string> cases[] = {
      {"", ":1: a label map has 14 entries (this one has 0)"},
      {entries(13), ":1: a label map has 14 entries (this one has 13)"},
      {entries(15), ":71: entry: one too many (a label map has 14 entries)"},
      {entries(13) + "[[entry]]\n", ":66: entry.label: missing"},
      {entries(13) + "[[entry]]\nlabel = \"x\"\n", ":66: entry.in_use: missing"},
      {entries(13) + "[[entry]]\nlabel = \"x\"\nin_use = true\n", ":66: entry.source: missing"},
      {entries(13) + "[[entry]]\nlabel = \"x\"\nin_use = true\nsource = \"ltc\"\n", ":66: entry.format: missing"},
      {entries(2) + entry("1", "\"ltc\"", "\"text\""),
       ":13: entry.in_use: true or false is needed (this is a whole number)"},
      {entry("true", "9", "\"text\""), ":4: entry.source: a text is needed (this is a whole number)"},
      {entry("true", "\"LTC\"", "\"text\""), ":4: entry.source: \"LTC\" is unknown (known: " + sources + ")"},
      {entry("true", "\"\"", "\"text\""), ":4: entry.source: \"\" is unknown (known: " + sources + ")"},
      {entry("true", "\"ltc\"", "\"25\""), ":5: entry.format: \"25\" is unknown (known: " + formats + ")"},
      {entry("true", "\"ltc\"", "[]"), ":5: entry.format: a text is needed (this is an array)"},
      {"[[entry]]\nlabel = 5\n", ":2: entry.label: a text is needed (this is a whole number)"},
      {"[[entry]]\nlabel = \"a\"\ninuse = true\n",
       ":3: entry.inuse: unknown key (known: label, in_use, source, format)"},
      {"version = 1\n" + entries(14), ":1: version: unknown key (known: entry)"},
      {"[entry]\nlabel = \"a\"\n", ":1: entry: tables [[entry]] are needed (this is a table)"},
      {"[[entry]\n", ":1: not valid TOML (Error while parsing table header: expected ']', saw '\\n')"},
  };
  for (const auto& [content, message] : cases)
    EXPECT_EQ(errorFor(content), "Unreadable: " + file().native() + message) << content;
}

TEST_F(LabelMapFile, MissingFileIsNotFound)
{
  EXPECT_EQ(errorOf([&] { readLabelMap(file()); }),
            "NotFound: " + file().native() + ": cannot be opened (No such file or directory)");
}

TEST_F(LabelMapFile, NamedPipeIsRefusedWithoutWaiting)
{
  ASSERT_EQ(::mkfifo(file().c_str(), 0600), 0);
  EXPECT_EQ(errorOf([&] { readLabelMap(file()); }),
            "Unreadable: " + file().native() + ": not a regular file (a named pipe)");
}

} // namespace
