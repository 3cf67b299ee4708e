// SPDX-License-Identifier: Apache-2.0
#include "cli/command_fixture.h"

#include <fstream>
#include <iomanip>
#include <sstream>

namespace reeldb_tests {

const char* const reeldbProgram = REELDB_PROGRAM;

ProcessResult CommandTest::reeldb(const Words& words, const ProcessSetting& setting)
{
  Words line = {reeldbProgram};
  line.insert(line.end(), words.begin(), words.end());
  return runProcess(line, setting);
}

std::string CommandTest::output(const Words& words, int code)
{
  const ProcessResult result = reeldb(words);
  EXPECT_EQ(result.code, code) << result.err;
  EXPECT_EQ(result.err, "");
  return result.out;
}

Json CommandTest::json(const Words& words, int code)
{
  return Json::parse(output(words, code));
}

std::string CommandTest::readFile(const std::string& name) const
{
  std::ifstream file(path(name), std::ios::binary);
  EXPECT_TRUE(file) << name;
  std::ostringstream bytes;
  bytes << file.rdbuf();
  return bytes.str();
}

void FacilityTest::SetUp()
{
  ASSERT_EQ(reeldb({"init"}).code, 0);
  dir_.write("devicedata/reeltype.dat", "Tape 2ch:VideoChannels=1 AudioChannels=2\n"
                                        "Tape 4ch:VideoChannels=1 AudioChannels=4\n"
                                        "Audio only:AudioChannels=8\n"
                                        "Live:VideoChannels=1\n");
}

void FacilityTest::expectRefusal(const Words& words, const std::string& message, int code)
{
  const std::string before = readFile("projects/main.reels");
  const ProcessResult result = reeldb(words);
  EXPECT_EQ(result.code, code) << message;
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.err, "reeldb: " + message + "\n");
  EXPECT_EQ(readFile("projects/main.reels"), before);
}

Json FacilityTest::reel(const std::string& id)
{
  for (const Json& entry : json({"list", "--json"}))
    if (entry.at("id") == id)
      return entry;
  return nullptr;
}

Words FacilityTest::reelIds()
{
  Words ids;
  for (const Json& entry : json({"list", "--json"}))
    ids.push_back(entry.at("id"));
  return ids;
}

std::string numbered(const std::string& name, std::size_t number)
{
  std::ostringstream text;
  text << name << number;
  return text.str();
}

std::string event(int number, const std::string& reel, const std::string& tracks, const std::string& in,
                  const std::string& out)
{
  std::ostringstream line;
  line << std::setw(3) << std::setfill('0') << number << "  " << reel << "  " << tracks << "  C  " << in << ' ' << out
       << " 01:00:00:00 01:00:01:00\n";
  return line.str();
}

} // namespace reeldb_tests
