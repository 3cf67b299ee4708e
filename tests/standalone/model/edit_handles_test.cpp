// SPDX-License-Identifier: Apache-2.0
#include <chrono>
#include <cstdlib>

#include "standalone/model/host_test.h"

namespace {

using namespace reeldb_tests;
using reelhost::openLogs;
using reelhost::openModifiers;

class EditHandles : public HostTest {
protected:
  EditHandles() { openMemory(); }
};

TEST_F(EditHandles, OpeningsAreCountedUntilTheyAreClosed)
{
  const Cookie log = addLog(9, "R1");
  EditPtr first, second;
  first.i_open(log, codes::openAsUsual);
  second = first.get();
  EXPECT_EQ(openLogs(), 2);
  {
    EditInfo info(log, codes::openAsUsual);
    EXPECT_EQ(openLogs(), 3);
    info.i_close();
  }
  second.i_close();
  second.i_close();
  EXPECT_EQ(openLogs(), 1);
  first.i_close();
  EXPECT_EQ(openLogs(), 0);
}

TEST_F(EditHandles, WhatDidNotOpenIsNotCounted)
{
  EditPtr handle;
  handle.i_open(Cookie(), codes::openAsUsual);
  EXPECT_EQ(openLogs(), 0);
  handle.i_close();
  handle = nullptr;
  EXPECT_EQ(openLogs(), 0);
}

// No store keeps such a log. A log that a fault left in memory cannot be opened.
TEST_F(EditHandles, InvalidCookieOpensNothingEvenBesideALogOfItsKind)
{
  reelhost::StoredLog log;
  log.number = 1;
  log.kind = 'I';
  log.type = 9;
  log.fields = {{"reelid", "R1"}};
  reelhost::Changes changes;
  changes.logs = {log};
  auto store = reelhost::makeMemoryStore(info());
  store->begin(reelhost::Access::Write, std::chrono::milliseconds(0));
  store->commit(changes);
  reelhost::openProject(std::move(store), reelhost::Access::Write);
  EXPECT_FALSE(opens(Cookie()));
  EditInfo asInfo(Cookie(), codes::openAsUsual);
  EXPECT_EQ(asInfo.get(), nullptr);
  asInfo.i_close();
  EXPECT_EQ((*EditManager::getProjdb())[Cookie()], nullptr);
}

// In a separate process, because the log is never closed.
TEST_F(EditHandles, AHandleDoesNotCloseByItself)
{
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const Cookie log = addLog(9, "R1");
  const auto openAndForget = [&] {
    {
      EditPtr handle;
      handle.i_open(log, codes::openAsUsual);
    }
    std::_Exit(openLogs() == 1 ? 0 : 1);
  };
  EXPECT_EXIT(openAndForget(), ::testing::ExitedWithCode(0), "");
}

TEST_F(EditHandles, ModifiersAreCounted)
{
  EXPECT_EQ(openModifiers(), 0);
  {
    const EditModifier modifier(EditManager::makeNewEdit(Cookie()));
    EXPECT_EQ(openModifiers(), 1);
  }
  EXPECT_EQ(openModifiers(), 0);
}

TEST_F(EditHandles, OnlyWhatWasSaidOfAChangeIsReported)
{
  RecordingListener listener;
  Cookie log;
  {
    const EditModifier modifier(EditManager::makeNewEdit(Cookie()));
    log = Cookie(modifier.get()->uuid(), modifier.get()->cookieTag(), modifier.get()->cookieKind());
  }
  EXPECT_TRUE(listener.heard.empty());
  withLog(log, [](Edit& edit) { edit.setChangeDescription(codes::madeOrImported, true); });
  EXPECT_TRUE(listener.heard.empty()); // the change has not ended
  {
    EditPtr handle;
    handle.i_open(log, codes::openAsUsual);
    {
      const EditModifier modifier(handle.get());
    }
    {
      const EditModifier modifier(handle.get());
    }
    handle.i_close();
  }
  EXPECT_EQ(listener.heard, std::vector<std::string>{"modified " + text(log) + " 59"});
}

TEST_F(EditHandles, ATypeThatIsNotTheIdentifierHasNoText)
{
  const Cookie log = addLog(9, "R1");
  EditInfo info(log, codes::openAsUsual);
  EXPECT_STREQ(info.getAttrib(LogAttributes::eLogAttribute(21)).c_str(), "");
  info.i_close();
}

// A client may close the project during an event of the library, while callers have logs open.
TEST_F(EditHandles, AnOpenLogOutlivesItsProject)
{
  const Cookie log = addLog(9, "R1");
  EditPtr handle;
  handle.i_open(log, codes::openAsUsual);
  reelhost::closeProject();
  EXPECT_STREQ(handle->config().in("reelid"), "R1");
  handle->set_reelid(0, "R2");
  handle->redetermineLogType();
  handle->setDirty(true);
  openMemory();
  EXPECT_STREQ(handle->config().in("reelid"), "R2");
  EXPECT_FALSE(reelhost::hasChanges());
  EXPECT_EQ(reels().count(), 0);
  handle.i_close();
}

TEST_F(EditHandles, AChangeThatEndsAfterItsProjectIsNotReported)
{
  RecordingListener listener;
  {
    const EditModifier modifier(EditManager::makeNewEdit(Cookie()));
    modifier.get()->setChangeDescription(codes::madeOrImported, true);
    openMemory();
  }
  EXPECT_EQ(listener.heard, (std::vector<std::string>{"exit", "entry"}));
}

} // namespace
