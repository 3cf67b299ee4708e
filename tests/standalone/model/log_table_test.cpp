// SPDX-License-Identifier: Apache-2.0
#include "model/log_table.h"

#include <deque>

#include "model/project.h"
#include "standalone/model/host_test.h"

namespace {

using reelhost::StoredLog;
using reelhost::model::CookieWords;
using reelhost::model::Log;
using reelhost::model::LogTable;

class LogTableTest : public reeldb_tests::HostTest {
protected:
  LogTableTest() { openMemory(); }

  Log& make(std::uint32_t number, std::uint16_t tag = 0)
  {
    StoredLog stored;
    stored.number = number;
    stored.tag = tag;
    std::copy_n(reinterpret_cast<const unsigned char*>(&number), sizeof number, stored.uuid.begin() + 12);
    return logs_.emplace_back(*reelhost::model::openedProject, std::move(stored));
  }

private:
  std::deque<Log> logs_;
};

TEST_F(LogTableTest, AnEmptyTableFindsNothing)
{
  EXPECT_EQ(LogTable().find(CookieWords(Cookie())), nullptr);
}

TEST_F(LogTableTest, EveryLogIsFoundWhileOthersComeAndGo)
{
  LogTable table;
  std::vector<Log*> logs;
  for (std::uint32_t i = 0; i < 5000; ++i) {
    logs.push_back(&make(i));
    table.insert(*logs.back());
  }
  for (Log* log : logs)
    ASSERT_EQ(table.find(CookieWords(log->cookie)), log);
  for (std::size_t i = 0; i < logs.size(); i += 3)
    table.erase(*logs[i]);
  for (std::size_t i = 0; i < logs.size(); ++i)
    ASSERT_EQ(table.find(logs[i]->words), i % 3 ? logs[i] : nullptr) << i;
  for (std::size_t i = 0; i < logs.size(); i += 3)
    table.insert(*logs[i]);
  for (Log* log : logs) {
    ASSERT_EQ(table.find(log->words), log);
    ASSERT_FALSE(log->isGone) << log->number;
  }
}

// Half of all places are taken, in one run. Removing a log must not hide those behind it, also around the end.
TEST_F(LogTableTest, TakingALogOutHidesNoOther)
{
  for (std::uint32_t first = 0; first < 200; ++first) {
    LogTable table;
    std::vector<Log*> logs;
    for (std::uint32_t i = 0; i < 8; ++i) {
      logs.push_back(&make(1000 * first + i));
      table.insert(*logs.back());
    }
    while (!logs.empty()) {
      table.erase(*logs.back());
      ASSERT_EQ(table.find(logs.back()->words), nullptr);
      logs.pop_back();
      for (Log* log : logs)
        ASSERT_EQ(table.find(log->words), log);
    }
  }
}

TEST_F(LogTableTest, ATagMakesAnotherLog)
{
  LogTable table;
  Log& plain = make(1);
  Log& tagged = make(1, 7);
  table.insert(plain);
  EXPECT_EQ(table.find(tagged.words), nullptr);
  table.insert(tagged);
  EXPECT_EQ(table.find(plain.words), &plain);
  EXPECT_EQ(table.find(tagged.words), &tagged);
}

TEST_F(LogTableTest, TheOrderOfOpeningIsRemembered)
{
  LogTable table;
  Log &first = make(1), &between = make(2), &last = make(3);
  for (Log* log : {&first, &between, &last})
    table.insert(*log);
  EXPECT_EQ(first.follower, &between) << "the one made after it, as long as nobody opens another";
  for (Log* log : {&first, &last, &last, &first})
    EXPECT_EQ(table.find(log->words), log);
  EXPECT_EQ(first.follower, &last);
  EXPECT_EQ(last.follower, &first) << "opening one again is no step";
  EXPECT_EQ(table.find(between.words), &between);
  EXPECT_EQ(first.follower, &between);
}

TEST_F(LogTableTest, ALogThatIsGoneIsNotFoundWhereItWasExpected)
{
  LogTable table;
  Log &first = make(1), &second = make(2);
  for (Log* log : {&first, &second})
    table.insert(*log);
  EXPECT_EQ(table.find(first.words), &first);
  table.erase(second);
  EXPECT_EQ(table.find(second.words), nullptr) << "expected next";
  table.erase(first);
  EXPECT_EQ(table.find(first.words), nullptr) << "found last";
}

TEST_F(LogTableTest, TakingOutALogThatIsNotInItChangesNothing)
{
  LogTable table;
  Log& in = make(1);
  table.insert(in);
  table.erase(make(2));
  EXPECT_EQ(table.find(in.words), &in);
}

} // namespace
