// SPDX-License-Identifier: Apache-2.0
//
// A process that is killed in the middle of an import leaves all of it or nothing.
#include <chrono>
#include <csignal>
#include <random>
#include <thread>

#include "cli/command_fixture.h"

using namespace reeldb_tests;

namespace {

class ImportKilled : public FacilityTest {};

TEST_F(ImportKilled, LeavesNoneOrAll)
{
  constexpr std::size_t reels = 400;
  std::string list;
  for (std::size_t i = 0; i < 2000; ++i)
    list += event(static_cast<int>(i % 999) + 1, numbered("T", i % reels), "V", numbered("01:00:00:", 10 + i / 400),
                  "01:00:01:00");
  dir_.write("list.edl", list);

  // How long a whole import takes here, so that the kills fall all over it.
  output({"project", "new", "whole"});
  const auto begin = std::chrono::steady_clock::now();
  output({"-p", "whole", "import", "list.edl"});
  const auto whole = std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now() - begin);

  const unsigned seed = static_cast<unsigned>(testing::UnitTest::GetInstance()->random_seed());
  std::mt19937 random(seed);
  std::uniform_int_distribution<std::int64_t> delays(0, whole.count() * 11 / 10);
  int none = 0, all = 0;
  for (std::size_t round = 0; round < 40; ++round) {
    const std::string project = numbered("p", round);
    output({"project", "new", project});
    RunningProcess process({reeldbProgram, "-p", project, "import", "list.edl"}, setting_);
    std::this_thread::sleep_for(std::chrono::microseconds(delays(random)));
    process.signal(SIGKILL);
    process.wait();

    const Json listed = json({"-p", project, "list", "--json"});
    std::int64_t shots = 0;
    for (const Json& reel : listed)
      shots += reel.at("shots").get<std::int64_t>();
    ASSERT_TRUE((listed.empty() && shots == 0) || (listed.size() == reels && shots == 2000))
        << listed.size() << " reels, " << shots << " shots, seed " << seed << ", round " << round;
    ++(listed.empty() ? none : all);
    // The project can be written again.
    ASSERT_EQ(json({"-p", project, "import", "--json", "list.edl"}).at("files").at(0).at("shots_added"),
              listed.empty() ? 2000 : 0);
  }
  EXPECT_GT(none, 0) << "no kill came in time";
}

} // namespace
