// SPDX-License-Identifier: Apache-2.0
#include <cstdlib>
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

/// Is notified of modified logs.
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

// The manager rebuilds its list, and notifies its clients, before the modifier ends.
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

TEST_P(Logs, TheEndOfAModificationOfWhichNothingWasSaidIsNotReported)
{
  PROMISE("host/edit.h", "without that call it reports nothing.");
  host().openEmptyProject("A");
  Listener listener;
  {
    const EditModifier modifier(EditManager::makeNewEdit(Cookie()));
    makeReel(*modifier.get(), "R1");
  }
  EXPECT_TRUE(listener.heard.empty());
}

// An exception that leaves a destructor ends the process: it is tried in one of its own.
TEST_P(Logs, WhatListenersThrowDoesNotLeaveTheModifier)
{
  PROMISE("host/edit.h", "Never throws, even if a listener does.");
  host().openEmptyProject("A");
  Listener listener;
  listener.failing = true;
  const auto endAModification = [&] {
    {
      const EditModifier modifier(EditManager::makeNewEdit(Cookie()));
      modifier.get()->setChangeDescription(codes::madeOrImported, true);
    }
    std::_Exit(listener.heard.size() == 1 ? 0 : 1);
  };
  EXPECT_EXIT(endAModification(), ::testing::ExitedWithCode(0), "");
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

// A setter of an empty record opens what its Cookie names: it must not write to the first log there is.
TEST_P(Logs, AnInvalidCookieOpensNoneOfTheLogsThatAreThere)
{
  PROMISE("host/edit.h", "there is no such log, no project is open, or the Cookie is invalid.");
  host().openEmptyProject("A");
  host().addLog(codes::reelLog, "R1");
  host().addLog(codes::materialLog, "R1");
  EXPECT_FALSE(opens(Cookie()));
  EXPECT_EQ(reelIdOf(Cookie()), "");
  EXPECT_EQ((*EditManager::getProjdb())[Cookie()], nullptr);
}

TEST_P(Logs, ALogIsNamedByTheCookieOfItsEdit)
{
  PROMISE("host/edit.h", "the log's Cookie consists of this and the next two");
  host().openEmptyProject("A");
  const Cookie log = host().addLog(codes::reelLog, "R1");
  withLog(log, [&](Edit& edit) {
    EXPECT_EQ(cookieOf(edit).compare(log), 0);
    EXPECT_NE(edit.cookieKind(), 'I');
  });
}

TEST_P(Logs, AnImportedClipIsMarkedAsImported)
{
  PROMISE("host/edit.h", "whether the log was imported");
  host().openEmptyProject("A");
  SET_UP_GIVES(clip, importClip, "A001");
  withLog(*clip, [](Edit& edit) {
    EXPECT_TRUE(edit.isImported());
    EXPECT_EQ(edit.getLogType(), codes::materialLog);
  });
}

TEST_P(Logs, AnImportIsReported)
{
  PROMISE("host/events.h", "The log was created, imported or modified; it is in the project already.");
  host().openEmptyProject("A");
  Listener listener;
  SET_UP_GIVES(clip, importClip, "");
  ASSERT_EQ(listener.heard.size(), 1u);
  EXPECT_EQ(listener.heard[0].first.compare(*clip), 0);
  EXPECT_EQ(listener.heard[0].second, codes::madeOrImported);
}

TEST_P(Logs, EachOpeningIsClosedOnce)
{
  PROMISE("host/edit.h", "pair every i_open with an i_close, even if the log could not be opened.");
  host().openEmptyProject("A");
  const Cookie log = host().addLog(codes::reelLog, "R1");
  SET_UP_GIVES(before, openLogs);
  const auto held = [&] { return *host().openLogs() - *before; };
  EditPtr first, again, none;
  first.i_open(log, codes::openAsUsual);
  EXPECT_EQ(held(), 1);
  again = first.get();
  EXPECT_EQ(held(), 2);
  none.i_open(Cookie(), codes::openAsUsual);
  none.i_close();
  EXPECT_EQ(held(), 2);
  EditInfo info(log, codes::openAsUsual);
  EXPECT_EQ(held(), 3);
  info.i_close();
  again.i_close();
  EXPECT_EQ(held(), 1);
  again.i_close(); // empty by now
  EXPECT_EQ(held(), 1);
  first.i_close();
  EXPECT_EQ(held(), 0);
}

TEST_P(Logs, AssigningNoLogOpensNone)
{
  PROMISE("host/edit.h", "One more opening of a log that is open already; null: no opening.");
  host().openEmptyProject("A");
  EditPtr handle;
  handle = nullptr;
  EXPECT_EQ(handle.get(), nullptr);
  handle.i_close();
}

TEST_P(Logs, AModifierHoldsItsLogUntilItEnds)
{
  PROMISE("host/edit.h", "Holds a new log open for change.");
  host().openEmptyProject("A");
  SET_UP_GIVES(before, openLogs);
  {
    const EditModifier modifier(EditManager::makeNewEdit(Cookie()));
    EXPECT_GT(*host().openLogs(), *before);
    EditPtr handle;
    handle = modifier.get();
    handle.i_close();
    EXPECT_GT(*host().openLogs(), *before);
  }
  EXPECT_EQ(*host().openLogs(), *before);
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

TEST_P(Logs, WithoutAnIdentifierAFieldIsLeftAlone)
{
  PROMISE("host/edit.h", "@p out is unchanged if the log has no identifier.");
  host().openEmptyProject("A");
  withLog(host().addLog(codes::materialLog, ""), [](Edit& edit) {
    strp_field field;
    edit.get_reelid(field, 0, -1);
    EXPECT_EQ(field.text(), nullptr);
    field.set("old");
    edit.get_reelid(field, 0, -1);
    EXPECT_STREQ(field.text(), "old");
  });
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

TEST_P(Logs, WithoutTheEntireMediumALogIsNotAReel)
{
  PROMISE("host/edit.h", "and never without set_entire_medium(1).");
  host().openEmptyProject("A");
  const EditModifier modifier(EditManager::makeNewEdit(Cookie()));
  modifier.get()->redetermineLogType();
  EXPECT_NE(modifier.get()->getLogType(), codes::reelLog);
  modifier.get()->make_original(false, false);
  modifier.get()->set_reelid(0, "R1");
  modifier.get()->redetermineLogType();
  EXPECT_NE(modifier.get()->getLogType(), codes::reelLog);
  withLog(host().addLog(codes::materialLog, "R1"), [](Edit& shot) {
    shot.redetermineLogType();
    EXPECT_NE(shot.getLogType(), codes::reelLog);
  });
  EXPECT_EQ(reelLogs().count(), 0);
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
  withLog(shot, [](Edit& edit) {
    edit.config().set("key", "x", nullptr);
    edit.setDirty(true);
  });
  host().storeAndReopen();
  EXPECT_EQ(textsOf(reelLogs()),
            (std::vector<std::string>{fresh.asString(false).c_str(), log.asString(false).c_str()}));
  EXPECT_EQ(reelIdOf(fresh), "NEW");
  EXPECT_EQ(reelIdOf(log), "RENAMED");
  withLog(log, [](Edit& edit) { EXPECT_EQ(edit.getNumChans(codes::audioChannel) & codes::channelCountMask, 1); });
  withLog(shot, [](Edit& edit) { EXPECT_STREQ(edit.config().in("key"), "x"); });
}

TEST_P(Logs, ANameIsSetAtOnce)
{
  PROMISE("host/edit.h", "sets the display name; called with false");
  host().openEmptyProject("A");
  const Cookie log = host().addLog(codes::reelLog, "R1");
  withLog(log, [](Edit& edit) { edit.setName(L"Reel \u00e9", false); });
  SET_UP_GIVES(name, nameOf, log);
  EXPECT_EQ(*name, L"Reel \u00e9");
}

TEST_P(Logs, ANameIsStored)
{
  PROMISE("host/edit.h", "and is stored whether or not the log is marked dirty.");
  HOST_NEEDS(Storage);
  host().openEmptyProject("A");
  const Cookie log = host().addLog(codes::reelLog, "R1");
  host().storeAndReopen();
  withLog(log, [](Edit& edit) { edit.setName(L"Reel \u00e9", false); });
  host().storeAndReopen();
  SET_UP_GIVES(name, nameOf, log);
  EXPECT_EQ(*name, L"Reel \u00e9");
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
