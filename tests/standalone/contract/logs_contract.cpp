// SPDX-License-Identifier: Apache-2.0
#include <stdexcept>
#include <string>
#include <vector>

#include "host/events.h"
#include "host/projdb.h"
#include "host_fixture.h"

namespace {

HOST_CONTRACT(Logs);

CookieVec reelLogs()
{
  return EditManager::getProjdb()->search(codes::reelSearchMask, codes::reelSearchMaskOff);
}

void makeReel(Edit& edit, const char* id)
{
  edit.set_reelid(0, id);
  edit.set_entire_medium(1);
  edit.make_original(false, false);
  edit.setName(L"Reel", false);
  edit.redetermineLogType();
}

/// Hears of modified logs.
class Listener final : public ProjectListener {
public:
  void handleLogModification(const Cookie& log, const EditModification& modification) override
  {
    heard.emplace_back(log, modification.type());
    if (failing)
      throw std::runtime_error("no time");
  }
  std::vector<std::pair<Cookie, EditModificationType>> heard;
  bool failing = false;
};

TEST_P(Logs, WithoutAProjectNoLogIsMade)
{
  PROMISE("host/projdb.h", "Creates an empty log and holds it open; its Edit is null if that fails.");
  const EditModifier modifier(EditManager::makeNewEdit(Cookie()));
  EXPECT_EQ(modifier.get(), nullptr);
}

// The manager rebuilds its list, and tells its clients, before the modifier ends.
TEST_P(Logs, ANewLogIsThereBeforeItsModifierEnds)
{
  PROMISE("host/edit.h",
          "The host commits the change when the EditModifier ends; the log is in the project before that.");
  host().openEmptyProject("A");
  const EditModifier modifier(EditManager::makeNewEdit(Cookie()));
  ASSERT_NE(modifier.get(), nullptr);
  const Cookie cookie = cookieOf(*modifier.get());
  EXPECT_TRUE(cookie.valid());
  EXPECT_TRUE(opens(cookie));
  EXPECT_NE((*EditManager::getProjdb())[cookie], nullptr);
  EXPECT_EQ(reelLogs().count(), 0);
  makeReel(*modifier.get(), "R1");
  ASSERT_EQ(reelLogs().count(), 1);
  EXPECT_EQ(reelLogs()[0].compare(cookie), 0);
  EXPECT_EQ(reelIdOf(cookie), "R1");
}

TEST_P(Logs, TheEndOfAModificationReportsWhatWasSaidOfIt)
{
  PROMISE("host/edit.h", "Ends the change and reports to the listeners what setChangeDescription set");
  host().openEmptyProject("A");
  Listener listener;
  Cookie cookie;
  {
    const EditModifier modifier(EditManager::makeNewEdit(Cookie()));
    cookie = cookieOf(*modifier.get());
    makeReel(*modifier.get(), "R1");
    modifier.get()->setChangeDescription(codes::madeOrImported, true);
    EXPECT_TRUE(listener.heard.empty());
  }
  ASSERT_EQ(listener.heard.size(), 1u);
  EXPECT_EQ(listener.heard[0].first.compare(cookie), 0);
  EXPECT_EQ(listener.heard[0].second, codes::madeOrImported);
}

TEST_P(Logs, WhatListenersThrowDoesNotLeaveTheModifier)
{
  PROMISE("host/edit.h", "Never throws, even if a listener does.");
  host().openEmptyProject("A");
  Listener listener;
  listener.failing = true;
  {
    const EditModifier modifier(EditManager::makeNewEdit(Cookie()));
    modifier.get()->setChangeDescription(codes::madeOrImported, true);
  }
  EXPECT_EQ(listener.heard.size(), 1u);
}

TEST_P(Logs, ANewLogIsEmpty)
{
  PROMISE("host/projdb.h", "Creates an empty log and holds it open; its Edit is null if that fails.");
  host().openEmptyProject("A");
  const EditModifier modifier(EditManager::makeNewEdit(Cookie()));
  Edit& edit = *modifier.get();
  EXPECT_EQ(edit.getNumChans(codes::videoChannel) & codes::channelCountMask, 0);
  EXPECT_EQ(edit.getNumChans(codes::audioChannel) & codes::channelCountMask, 0);
  EXPECT_EQ(edit.config().in("reelid"), nullptr);
  EXPECT_NE(edit.getLogType(), 9);
  EXPECT_FALSE(edit.isImported());
  EXPECT_EQ(reelIdOf(cookieOf(edit)), "");
}

TEST_P(Logs, WhatNamesNoLogDoesNotOpen)
{
  PROMISE("host/edit.h", "get() is null afterwards if the log cannot be opened: there is no such log, no project is "
                         "open, or the Cookie is invalid.");
  host().openEmptyProject("A");
  Zr::UUID uuid;
  uuid.bytes[3] = 99;
  EXPECT_FALSE(opens(Cookie()));
  EXPECT_FALSE(opens(Cookie(uuid, 0, 'E')));
  EXPECT_EQ(reelIdOf(Cookie()), "");
}

TEST_P(Logs, WithoutAProjectNothingOpens)
{
  PROMISE("host/edit.h", "get() is null afterwards if the log cannot be opened: there is no such log, no project is "
                         "open, or the Cookie is invalid.");
  host().openEmptyProject("A");
  const Cookie log = host().addLog(codes::reelLog, "R1");
  host().closeProject();
  EXPECT_FALSE(opens(log));
  EXPECT_EQ(reelIdOf(log), "");
}

TEST_P(Logs, AllOpeningsOfALogShareOneEdit)
{
  PROMISE("host/edit.h", "All openings of one log share one Edit.");
  host().openEmptyProject("A");
  const Cookie log = host().addLog(codes::reelLog, "R1");
  EditPtr outer, inner;
  outer.i_open(log, codes::openAsUsual);
  inner.i_open(log, codes::openAsUsual);
  ASSERT_NE(outer.get(), nullptr);
  EXPECT_EQ(outer.get(), inner.get());
  EXPECT_EQ(outer.operator->(), outer.get());
  inner.i_close();
  EXPECT_EQ(inner.get(), nullptr);
  EXPECT_FALSE(inner);
  EXPECT_STREQ(outer->config().in("reelid"), "R1");
  outer.i_close();
  outer.i_close(); // an empty handle is closed without harm
}

// A creation closes the new log after each of its changes and goes on with the modifier's Edit, also while none is
// open.
TEST_P(Logs, AHandleTakesHoldOfAnOpenLogWhichTheModifierKeepsBeyondItsClose)
{
  PROMISE("host/edit.h",
          "The host owns the Edit; it ends with the last i_close or with its EditModifier, whichever is later.");
  host().openEmptyProject("A");
  const EditModifier modifier(EditManager::makeNewEdit(Cookie()));
  ASSERT_NE(modifier.get(), nullptr);
  const Cookie cookie = cookieOf(*modifier.get());
  for (const char* id : {"R1", "R2"}) {
    EditPtr handle;
    handle = modifier.get();
    ASSERT_EQ(handle.get(), modifier.get());
    handle->set_reelid(0, id);
    handle.i_close();
    EXPECT_EQ(handle.get(), nullptr);
    EXPECT_EQ(cookieOf(*modifier.get()).compare(cookie), 0);
    EXPECT_EQ(reelIdOf(cookie), id);
  }
}

TEST_P(Logs, TheIdentifierIsOneValueInAllItsForms)
{
  PROMISE("host/edit.h", "codes::reelIdAttribute and the key \"reelid\" of config() are the same value.");
  host().openEmptyProject("A");
  const Cookie log = host().addLog(codes::reelLog, "R1");
  const auto expect = [&](const char* id) {
    withLog(log, [&](Edit& edit) {
      EXPECT_STREQ(edit.config().in("reelid"), id);
      strp_field field;
      edit.get_reelid(field, 0, -1);
      EXPECT_STREQ(field.text(), id);
    });
    EXPECT_EQ(reelIdOf(log), id);
  };
  expect("R1");
  withLog(log, [](Edit& edit) { edit.set_reelid(0, "R2"); });
  expect("R2");
  withLog(log, [](Edit& edit) { edit.config().set("reelid", "R3", nullptr); });
  expect("R3");
  withLog(log, [](Edit& edit) { edit.set_reelid(0, ""); });
  expect("");
}

TEST_P(Logs, AReadIdentifierStaysWhenTheLogChanges)
{
  PROMISE("host/lwstring.h", "A string that shares its text with its copies.");
  host().openEmptyProject("A");
  const Cookie log = host().addLog(codes::reelLog, "R1");
  EditInfo info(log, codes::openAsUsual);
  const LightweightString<char> id = info.getAttrib(codes::reelIdAttribute);
  info->set_reelid(0, "R2");
  EXPECT_STREQ(id.c_str(), "R1");
  EXPECT_STREQ(info.getAttrib(codes::reelIdAttribute).c_str(), "R2");
  info.i_close();
}

TEST_P(Logs, ChangesAreSeenByOtherOpeningsAtOnce)
{
  PROMISE("host/edit.h", "A change takes effect at once, in every opening and in the database");
  host().openEmptyProject("A");
  const Cookie log = host().addLog(codes::reelLog, "R1");
  withLog(log, [&](Edit& edit) {
    edit.config().set("key", "x", nullptr);
    edit.addChan(codes::audioChannel, nullptr, false, EditChanSubType(0), false, -1.0);
    edit.addChan(codes::audioChannel, nullptr, false, EditChanSubType(0), false, -1.0);
    edit.addChan(codes::videoChannel, nullptr, false, EditChanSubType(0), false, -1.0);
    withLog(log, [](Edit& other) {
      EXPECT_STREQ(other.config().in("key"), "x");
      EXPECT_EQ(other.getNumChans(codes::audioChannel) & codes::channelCountMask, 2);
      EXPECT_EQ(other.getNumChans(codes::videoChannel) & codes::channelCountMask, 1);
    });
  });
}

TEST_P(Logs, TheTypeIsWhatWasSetWhenItIsDetermined)
{
  PROMISE(
      "host/edit.h",
      "It is one after set_entire_medium(1) and make_original(false, false), and never without set_entire_medium(1).");
  host().openEmptyProject("A");
  const EditModifier modifier(EditManager::makeNewEdit(Cookie()));
  Edit& edit = *modifier.get();
  edit.set_entire_medium(1);
  edit.make_original(false, false);
  EXPECT_NE(edit.getLogType(), 9);
  edit.redetermineLogType();
  EXPECT_EQ(edit.getLogType(), 9);
}

TEST_P(Logs, OtherModulesLogsHaveTheirTypes)
{
  PROMISE("host/edit.h", "the type that redetermineLogType set, or the stored one");
  host().openEmptyProject("A");
  withLog(host().addLog(codes::reelLog, "R1"), [](Edit& edit) { EXPECT_EQ(edit.getLogType(), 9); });
  withLog(host().addLog(codes::materialLog, "R1"), [](Edit& edit) { EXPECT_EQ(edit.getLogType(), 1); });
}

// The library marks logs dirty for some changes and not for others: all of them count.
TEST_P(Logs, ChangesAreStoredWhetherMarkedOrNot)
{
  PROMISE("host/edit.h", "and is stored whether or not the log is marked dirty.");
  HOST_NEEDS(Storage);
  host().openEmptyProject("A");
  Cookie fresh;
  {
    const EditModifier modifier(EditManager::makeNewEdit(Cookie()));
    fresh = cookieOf(*modifier.get());
    makeReel(*modifier.get(), "NEW");
  }
  const Cookie log = host().addLog(codes::reelLog, "OLD");
  const Cookie shot = host().addLog(codes::materialLog, "OLD");
  host().storeAndReopen();
  withLog(log, [](Edit& edit) {
    edit.set_reelid(0, "RENAMED");
    edit.addChan(codes::audioChannel, nullptr, false, EditChanSubType(0), false, -1.0);
    edit.reelType("Tape");
  });
  withLog(shot, [](Edit& edit) { edit.config().set("key", "x", nullptr); });
  host().storeAndReopen();
  EXPECT_EQ(textsOf(reelLogs()),
            (std::vector<std::string>{fresh.asString(false).c_str(), log.asString(false).c_str()}));
  EXPECT_EQ(reelIdOf(fresh), "NEW");
  EXPECT_EQ(reelIdOf(log), "RENAMED");
  withLog(log, [](Edit& edit) { EXPECT_EQ(edit.getNumChans(codes::audioChannel) & codes::channelCountMask, 1); });
  withLog(shot, [](Edit& edit) { EXPECT_STREQ(edit.config().in("key"), "x"); });
}

TEST_P(Logs, EachHasAFileNameOfItsOwn)
{
  PROMISE("host/projdb.h", "The file name of a log, unique among logs; empty for an unknown log.");
  host().openEmptyProject("A");
  const Cookie first = host().addLog(codes::materialLog, "R1"), second = host().addLog(codes::materialLog, "R1");
  const std::wstring name = getFilenameForCookie(first, Cookie()).c_str();
  EXPECT_FALSE(name.empty());
  EXPECT_NE(name, getFilenameForCookie(second, Cookie()).c_str());
}

} // namespace
