// SPDX-License-Identifier: Apache-2.0
//
// The library before its first use. It is a separate program, because a process has only one first use.
#include <cstdio>
#include <cstdlib>
#include <ostream>

#include "CreateNewReelAction.h"
#include "LabelMaps.h"
#include "MainThread.h"
#include "support/library_fixture.h"

namespace reeldb_tests {

namespace {

/// Ends the process, with exit code 0 if the manager was made by @p use and not before. There is a project with the
/// reel R1, and no manager was notified of it.
[[noreturn]] void exitAfterFirst(const std::function<void(const Cookie& reel)>& use)
{
  reelhost::useFacility(reelhost::Facility());
  reelhost::openProject(reelhost::makeMemoryStore({}, {}), reelhost::Access::Write);
  reelhost::StoredLog log;
  log.type = 9;
  log.fields = {{"reelid", "R1"}};
  const Cookie reel = reelhost::addLog(log);
  const bool madeBefore = ReelDbManager::theReelDbManager_ != nullptr;
  use(reel);
  const bool made = ReelDbManager::theReelDbManager_ != nullptr;
  std::fprintf(stderr, "made before: %d, made: %d\n", madeBefore, made);
  std::_Exit(!madeBefore && made ? 0 : 1);
}

/// The operations that make the manager if it does not exist.
struct Use {
  const char* name;
  void (*use)(const Cookie& reel);
};

void PrintTo(const Use& use, std::ostream* out)
{
  *out << use.name;
}

const Use firstUses[] = {
    {"Setter", [](const Cookie& reel) { ReelDbRec(reel).recInhibit(true); }},
    {"SetterOfAnEmptyRecord", [](const Cookie&) { ReelDbRec().recInhibit(true); }},
    {"Action", [](const Cookie&) { Zr::Ptr<CreateNewReelAction>(new CreateNewReelAction("R2", -1))->execute(); }},
    {"LabelMapOfAReel", [](const Cookie&) { get_required_label_map_name("R1", IdStamp()); }},
    {"Client", [](const Cookie&) { const ReelDbClient client; }},
};

class First : public ::testing::TestWithParam<Use> {};

} // namespace

// Each in a separate process, because the manager stays.
TEST_P(First, MakesTheManager)
{
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(exitAfterFirst(GetParam().use), ::testing::ExitedWithCode(0), "made before: 0, made: 1");
}

INSTANTIATE_TEST_SUITE_P(Uses, First, ::testing::ValuesIn(firstUses),
                         [](const auto& each) { return std::string(each.param.name); });

// The host decides which thread is the main one; the library only reads it.
TEST(FirstUse, LibraryLeavesTheNumberOfTheMainThreadToTheHost)
{
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const auto useAll = [] {
    reelhost::useFacility(reelhost::Facility());
    reelhost::openProject(reelhost::makeMemoryStore({}, {}), reelhost::Access::Write);
    const ReelDbClient client;
    ReelDbManager::theReelDbManager()->handleProjectEntry();
    ReelDbManager::theReelDbManager()->createNewReel("R1", -1);
    ReelDbManager::theReelDbManager()->checkLiveDeviceMedia(1);
    std::fprintf(stderr, "glib_pid: %d\n", glib_pid);
    std::_Exit(glib_pid == 0 ? 0 : 1);
  };
  EXPECT_EXIT(useAll(), ::testing::ExitedWithCode(0), "glib_pid: 0\n");
}

TEST(FirstUse, ShotsWithoutAnIdentifierMakeNoManager)
{
  reelhost::useFacility(reelhost::Facility());
  reelhost::openProject(reelhost::makeMemoryStore({}, {}), reelhost::Access::Write);
  reelhost::StoredLog reel;
  reel.type = 9;
  reelhost::addLog(reel);
  CookieVec shots;
  shots.add(reelhost::importMaterial({}));

  ReelDbManager own;
  own.buildReelList();
  ASSERT_EQ(own.reelList.count(), 1);
  EXPECT_EQ(own.getReelsReferenced(shots).count(), 0);
  EXPECT_EQ(ReelDbManager::theReelDbManager_, nullptr);
  reelhost::closeProject();
}

TEST(FirstUse, FirstClientMakesTheManagerWhichThenListensToTheHost)
{
  EXPECT_EQ(ReelDbManager::theReelDbManager_, nullptr);
  EXPECT_EQ(glib_pid, 0);

  reelhost::startUp();
  EXPECT_NE(glib_pid, 0);
  reelhost::useFacility(reelhost::Facility());
  reelhost::openProject(reelhost::makeMemoryStore({}, {{"reeldb_defaultType", ""}}), reelhost::Access::Write);
  reelhost::StoredLog log;
  log.type = 9;
  log.fields = {{"reelid", "R1"}};
  reelhost::addLog(log);
  EXPECT_EQ(ReelDbManager::theReelDbManager_, nullptr) << "the host makes none";

  Heard heard;
  reelhost::Journal& journal = reelhost::Journal::the();
  journal.record(true);
  RecordingClient client(heard);
  EXPECT_TRUE(journal.operations().empty()) << "a manager reads nothing when it is made";
  journal.record(false);

  ReelDbManager* const manager = ReelDbManager::theReelDbManager_;
  ASSERT_NE(manager, nullptr);
  EXPECT_EQ(ReelDbManager::theReelDbManager(), manager);
  EXPECT_EQ(manager->clients.count(), 1U);
  EXPECT_EQ(manager->reelList.count(), 0);
  EXPECT_FALSE(manager->lastProject.valid());
  EXPECT_FALSE(manager->doesReelExist("R1"));

  manager->informReelDbChanged("R1");
  EXPECT_EQ(heard, (Heard{"dbC(R1)"}));
  EXPECT_TRUE(manager->doesReelExist("R1"));

  reelhost::openProject(reelhost::makeMemoryStore({}), reelhost::Access::Write);
  EXPECT_EQ(heard, (Heard{"dbC(R1)", "dbC()"}));
  EXPECT_FALSE(manager->doesReelExist("R1"));
  reelhost::closeProject();
}

} // namespace reeldb_tests
