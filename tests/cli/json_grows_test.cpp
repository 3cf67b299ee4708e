// SPDX-License-Identifier: Apache-2.0
//
// JSON only grows: reports-14.json holds what the first commands of version 14 reported. Since then, keys may be added,
// but no key may be removed, and no value may change. The texts of "reason" and "why" are sentences for people: only
// their wording may change. The file is never renewed; a new report may be added.
#include <fstream>

#include "cli/command_fixture.h"

namespace reeldb_tests {
namespace {

class JsonGrows : public CommandTest {
protected:
  static bool isSentence(std::string_view key) { return key == "reason" || key == "why"; }

  /// Fails for each place where today's report lacks a key of the earlier one or has another value.
  static void expectGrown(const Json& before, const Json& today, const std::string& place)
  {
    if (before.is_object() && today.is_object()) {
      for (const auto& [key, value] : before.items()) {
        const std::string deeper = place + "." + key;
        if (!today.contains(key))
          ADD_FAILURE() << deeper << ": is gone";
        else if (isSentence(key) && value.is_string())
          EXPECT_EQ(value.get<std::string>().empty(), today.at(key).get<std::string>().empty()) << deeper;
        else
          expectGrown(value, today.at(key), deeper);
      }
    } else if (before.is_array() && today.is_array()) {
      EXPECT_EQ(before.size(), today.size()) << place;
      for (std::size_t i = 0; i < std::min(before.size(), today.size()); ++i)
        expectGrown(before.at(i), today.at(i), place + "[" + std::to_string(i) + "]");
    } else {
      EXPECT_EQ(before, today) << place;
    }
  }
};

TEST_F(JsonGrows, EveryReportOfVersion14IsInThatOfToday)
{
  std::ifstream file(REELDB_REPORTS);
  const Json kept = Json::parse(file);
  for (const auto& [name, text] : kept.at("files").items())
    dir_.write(name, text.get<std::string>());
  std::string types; // those that a facility had then
  for (const Json& type : kept.at("reports").at("types"))
    types += type.at("name").get<std::string>() + ":" + type.at("parameters").get<std::string>() + "\n";
  std::size_t compared = 0;
  for (const Json& step : kept.at("steps")) {
    const ProcessResult result = reeldb(step.at("words").get<Words>());
    if (step.at("words").at(0) == "init")
      dir_.write("devicedata/reeltype.dat", types);
    // Since then, a difference makes the exit code of diff 1.
    const bool isDiff = step.at("words").at(0) == "diff";
    EXPECT_TRUE(result.code == step.value("code", isDiff ? 1 : 0) || result.code == 4) << step << result.err;
    if (!step.contains("name"))
      continue;
    const std::string name = step.at("name");
    expectGrown(kept.at("reports").at(name), Json::parse(result.out), name);
    ++compared;
  }
  EXPECT_EQ(compared, kept.at("reports").size());
}

} // namespace
} // namespace reeldb_tests
