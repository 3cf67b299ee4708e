// SPDX-License-Identifier: Apache-2.0
#include "facility/state_file.h"

#include <memory>
#include <random>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "base/files.h"
#include "facility/toml_file.h"
#include "standalone/store/support.h"

namespace {

using namespace reelhost;
using namespace store_tests;
namespace fs = std::filesystem;

class StateFileTest : public testing::Test {
protected:
  StateFile state() const { return StateFile(folder_.path()); }
  fs::path file() const { return folder_ / "state.toml"; }
  fs::path folder() const { return folder_.path(); }
  const char* const stays = "; the state file is damaged and stays as it is (move it away to start a new one)";

private:
  TempFolder folder_;
};

TEST_F(StateFileTest, NoFileIsAnEmptyState)
{
  EXPECT_TRUE(state().read().system.empty());
  EXPECT_TRUE(state().read().lastReel.empty());
  EXPECT_TRUE(namesIn(folder()).empty());
}

TEST_F(StateFileTest, MergeAddsAndReplacesAndKeepsTheRest)
{
  state().merge({{{"a", "1"}, {"b", "2"}}, {{5, "R1"}, {6, "R2"}}});
  const State all = state().merge({{{"b", "3"}, {"c", "4"}}, {{6, "R4"}, {4294967295u, "R3"}}});
  EXPECT_EQ(all.system, (std::map<std::string, std::string>{{"a", "1"}, {"b", "3"}, {"c", "4"}}));
  EXPECT_EQ(all.lastReel, (std::map<unsigned, std::string>{{5, "R1"}, {6, "R4"}, {4294967295u, "R3"}}));
  EXPECT_EQ(state().read().system, all.system);
  EXPECT_EQ(state().read().lastReel, all.lastReel);
  EXPECT_EQ(namesIn(folder()), (std::vector<std::string>{"state.lock", "state.toml"}));
}

TEST_F(StateFileTest, EmptyValueIsKeptOnlyWhereItTakesAwayAConfiguredOne)
{
  const StateFile over(folder(), {{"a", "configured"}, {"b", ""}});
  const State all = over.merge({{{"a", ""}, {"b", ""}, {"c", ""}, {"d", "1"}}, {{5, "R1"}, {6, ""}}});
  EXPECT_EQ(all.system, (std::map<std::string, std::string>{{"a", ""}, {"d", "1"}}));
  EXPECT_EQ(all.lastReel, (std::map<unsigned, std::string>{{5, "R1"}}));
  EXPECT_EQ(state().read().system, all.system);
  EXPECT_EQ(state().read().lastReel, all.lastReel);
  over.merge({{{"d", ""}}, {{5, ""}}});
  EXPECT_EQ(state().read().system, (std::map<std::string, std::string>{{"a", ""}}));
  EXPECT_TRUE(state().read().lastReel.empty());
}

TEST_F(StateFileTest, EmptyValuesOfAnOlderFileGoWithTheNextChange)
{
  writeBytes(file(), "[system]\na = \"\"\nb = \"1\"\n[last_reel]\n5 = \"\"\n");
  EXPECT_EQ(state().read().system, (std::map<std::string, std::string>{{"a", ""}, {"b", "1"}}));
  const State all = state().merge({{{"c", "2"}}, {}});
  EXPECT_EQ(all.system, (std::map<std::string, std::string>{{"b", "1"}, {"c", "2"}}));
  EXPECT_TRUE(all.lastReel.empty());
}

TEST_F(StateFileTest, FileReadsAsWritten)
{
  state().merge({{{"reel_userfield0", "Scene \"A\""}}, {{5, "R1"}}});
  EXPECT_EQ(bytesOf(file()), "# Written by reeldb. Its values override those of facility.toml. Do not edit it while a "
                             "command runs.\n\n[last_reel]\n5 = \"R1\"\n\n[system]\nreel_userfield0 = \"Scene "
                             "\\\"A\\\"\"\n");
}

TEST_F(StateFileTest, TextsOfAnyBytesComeBackUnchanged)
{
  std::string every;
  for (int byte = 1; byte < 256; ++byte)
    every.push_back(static_cast<char>(byte));
  const std::string odd =
      "\xC3\xA9 \xE2\x80\xA8 \xC2\x85 \xEF\xBB\xBF \xF0\x9F\x98\x80 \xEF\xBF\xBF '''\"\"\"\\ \x7F\r\n\t";
  const State changes = {{{"every", every}, {odd, odd}, {"", "of the empty key"}, {"a.b", "\xED\xA0\x80"}},
                         {{1, every}, {2, odd}, {3, "\xC0\x80"}, {4, "\xF4\x90\x80\x80"}}};
  state().merge(changes);
  EXPECT_EQ(state().read().system, changes.system);
  EXPECT_EQ(state().read().lastReel, changes.lastReel);
}

TEST_F(StateFileTest, RandomTextsComeBackUnchanged)
{
  std::mt19937 random(3);
  State all;
  for (int round = 0; round < 100; ++round) {
    std::string bytes, text;
    for (auto i = 1 + random() % 29; i > 0; --i)
      bytes.push_back(static_cast<char>(1 + random() % 255));
    for (auto i = 1 + random() % 29; i > 0; --i) {
      const auto point = 1 + random() % 0x7FF; // two bytes at most
      if (point < 0x80)
        text.push_back(static_cast<char>(point));
      else
        text.append(1, static_cast<char>(0xC0 | point >> 6)).append(1, static_cast<char>(0x80 | (point & 0x3F)));
    }
    const State changes = {{{text, bytes}}, {{static_cast<unsigned>(1 + random() % 50), text}}};
    all.system[text] = bytes;
    all.lastReel[changes.lastReel.begin()->first] = text;
    state().merge(changes);
  }
  EXPECT_EQ(state().read().system, all.system);
  EXPECT_EQ(state().read().lastReel, all.lastReel);
}

TEST_F(StateFileTest, KeyThatIsNotUtf8IsRefused)
{
  EXPECT_EQ(errorOf([&] {
              state().merge({{{"k\xFF", "v"}}, {}});
            }),
            "Refused: " + file().native() + ": \"k\\xff\" is not a valid key (not UTF-8)");
  EXPECT_TRUE(namesIn(folder()).empty());
}

TEST_F(StateFileTest, SameValuesLeaveTheFileAlone)
{
  state().merge({{{"a", "1"}}, {}});
  struct stat before = {}, after = {};
  ASSERT_EQ(::stat(file().c_str(), &before), 0);
  state().merge({{{"a", "1"}}, {}});
  ASSERT_EQ(::stat(file().c_str(), &after), 0);
  EXPECT_EQ(before.st_ino, after.st_ino);
}

TEST_F(StateFileTest, DamagedFileIsAnErrorAndIsNotOverwritten)
{
  const std::pair<const char*, const char*> cases[] = {
      {"[system]\nk = \n", ":2: not valid TOML (Error while parsing key-value pair: expected value, saw '\\n')"},
      {"[systen]\n", ":1: systen: unknown key (known: system, last_reel)"},
      {"[system]\nk = 1\n", ":2: system.k: a text is needed (this is a whole number)"},
      {"[system]\nk = [\"a\"]\n", ":2: system.k: a whole number is needed (this is a text)"},
      {"[system]\nk = [0]\n", ":2: system.k: 0 is out of range (1 to 255)"},
      {"[system]\nk = [256]\n", ":2: system.k: 256 is out of range (1 to 255)"},
      {"[last_reel]\n0 = \"R\"\n", ":2: last_reel.0: not a device identity"},
      {"[last_reel]\nx1 = \"R\"\n", ":2: last_reel.x1: not a device identity"},
      {"[last_reel]\n1x = \"R\"\n", ":2: last_reel.1x: not a device identity"},
      {"[last_reel]\n4294967296 = \"R\"\n", ":2: last_reel.4294967296: not a device identity"},
      {"last_reel = 1\n", ":1: last_reel: a table is needed (this is a whole number)"},
  };
  for (const auto& [content, message] : cases) {
    writeBytes(file(), content);
    const std::string expected = "Unreadable: " + file().native() + message + stays;
    EXPECT_EQ(errorOf([&] { state().read(); }), expected);
    EXPECT_EQ(errorOf([&] { state().merge({{{"a", "1"}}, {}}); }), expected);
    EXPECT_EQ(bytesOf(file()), content);
  }
}

TEST_F(StateFileTest, AnythingButARegularFileIsRefused)
{
  ASSERT_EQ(::mkfifo(file().c_str(), 0600), 0);
  EXPECT_EQ(errorOf([&] {
              state().merge({{{"a", "1"}}, {}});
            }),
            "Unreadable: " + file().native() + ": not a regular file (a named pipe)" + stays);
  EXPECT_TRUE(fs::is_fifo(file()));
}

TEST_F(StateFileTest, LinkToNowhereIsAnErrorAndStays)
{
  fs::create_symlink("nowhere", file());
  EXPECT_EQ(errorOf([&] { state().read(); }),
            "NotFound: " + file().native() + ": cannot be opened (No such file or directory)");
  EXPECT_TRUE(fs::is_symlink(file()));
}

TEST_F(StateFileTest, LockFileThatIsALinkIsNotFollowed)
{
  fs::create_symlink(folder() / "elsewhere", folder() / "state.lock");
  EXPECT_EQ(errorOf([&] {
              state().merge({{{"a", "1"}}, {}});
            }),
            "Io: " + (folder() / "state.lock").native() + ": cannot be opened (Too many levels of symbolic links)");
  EXPECT_FALSE(fs::exists(folder() / "elsewhere"));
}

TEST_F(StateFileTest, MergeWaitsForTheLockAndThenGivesUp)
{
  const reeldb::base::FileDescriptor lock(
      ::open((folder() / "state.lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
  ASSERT_EQ(::flock(lock.get(), LOCK_EX), 0);
  EXPECT_EQ(errorOf([&] {
              state().merge({{{"a", "1"}}, {}}, std::chrono::milliseconds(50));
            }),
            "Busy: " + (folder() / "state.lock").native() + ": held by another process");
  EXPECT_FALSE(fs::exists(file()));
  ::flock(lock.get(), LOCK_UN);
  state().merge({{{"a", "1"}}, {}}, std::chrono::milliseconds(0));
  EXPECT_TRUE(fs::exists(file()));
}

TEST_F(StateFileTest, LeftoverOfAKilledProcessIsIgnored)
{
  writeBytes(folder() / ".state.toml.new", "half");
  state().merge({{{"a", "1"}}, {}});
  EXPECT_EQ(state().read().system.at("a"), "1");
  EXPECT_FALSE(fs::exists(folder() / ".state.toml.new"));
}

TEST_F(StateFileTest, ProcessesMergingAtTheSameTimeLoseNothing)
{
  constexpr int processes = 4, merges = 25;
  std::vector<std::unique_ptr<Child>> children;
  for (int p = 0; p < processes; ++p)
    children.push_back(std::make_unique<Child>([&, p] {
      for (int i = 0; i < merges; ++i)
        state().merge({{{std::to_string(p) + "." + std::to_string(i), "x"}}, {}});
    }));
  for (const auto& child : children)
    EXPECT_EQ(child->waitForExit(), 0);
  EXPECT_EQ(state().read().system.size(), static_cast<std::size_t>(processes * merges));
}

TEST_F(StateFileTest, KilledAtAnyMomentTheFileIsWhole)
{
  std::mt19937 random(5);
  std::size_t before = state().merge({{{"first", "x"}}, {}}).system.size();
  for (int round = 0; round < 25; ++round) {
    Child writer([&] {
      for (int i = 0;; ++i)
        state().merge({{{std::to_string(round) + "." + std::to_string(i), std::string(200, 'v')}}, {}});
    });
    ::usleep(static_cast<useconds_t>(random() % 20'000));
    writer.kill();
    const std::size_t now = state().read().system.size();
    EXPECT_GE(now, before);
    before = now;
  }
}

TEST_F(StateFileTest, ValueThatCouldNotBeReadAgainIsRefused)
{
  state().merge({{{"a", "1"}}, {}});
  const std::string content = bytesOf(file());
  EXPECT_EQ(errorOf([&] {
              state().merge({{{"b", std::string(TomlFile::largestSize, 'x')}}, {}});
            }).rfind("Refused: " + file().native() + ": would become too large to be read again (", 0),
            0u);
  EXPECT_EQ(errorOf([&] {
              state().merge({{{"b", std::string(20'000, '.')}}, {}});
            }).rfind("Refused: " + file().native() + ": would become too large to be read again (", 0),
            0u);
  EXPECT_EQ(bytesOf(file()), content);
}

TEST_F(StateFileTest, DiskFullKeepsTheOldFile)
{
  const TempMount mount("size=64k");
  if (!mount.mounted())
    GTEST_SKIP() << "mounting a file system is not allowed here";
  const StateFile small(mount / "");
  small.merge({{{"a", "1"}}, {}});
  EXPECT_EQ(errorOf([&] {
              small.merge({{{"b", std::string(100'000, 'x')}}, {}});
            }),
            "Io: " + (mount / "state.toml").native() + ": cannot be written (No space left on device)");
  EXPECT_EQ(small.read().system, (std::map<std::string, std::string>{{"a", "1"}}));
  EXPECT_EQ(namesIn(mount / ""), (std::vector<std::string>{"state.lock", "state.toml"}));
}

} // namespace
