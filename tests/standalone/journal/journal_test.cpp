// SPDX-License-Identifier: Apache-2.0
#include "reelhost/journal.h"

#include <cstdio>
#include <thread>

#include "host/action.h"
#include "host/device.h"
#include "host/project.h"
#include "host/text.h"
#include "reelhost/notify_msg.h"
#include "standalone/model/host_test.h"

namespace {

using namespace reeldb_tests;
using reelhost::Call;
using reelhost::Journal;
using Texts = std::vector<std::string>;

class JournalTest : public HostTest {
protected:
  JournalTest() { openMemory(); }
};

TEST_F(JournalTest, ACallIsALine)
{
  EXPECT_EQ((Call{"co_pid", "", "1"}).line(), "co_pid() -> 1");
  EXPECT_EQ((Call{"configb::set", "\"a\", \"b\", null", ""}).line(), "configb::set(\"a\", \"b\", null)");
}

TEST_F(JournalTest, IsOffUntilItIsTurnedOn)
{
  co_pid();
  EXPECT_TRUE(Journal::the().calls().empty());
  Journal::the().record(true);
  co_pid();
  EXPECT_EQ(Journal::the().count("co_pid"), 1);
  Journal::the().record(false);
  co_pid();
  EXPECT_EQ(Journal::the().count("co_pid"), 1); // what was kept stays
  Journal::the().record(true);
  EXPECT_EQ(Journal::the().count("co_pid"), 0); // and is forgotten when it is turned on again
}

TEST_F(JournalTest, ClearForgetsAndGoesOn)
{
  Journal::the().record(true);
  co_pid();
  Journal::the().clear();
  EXPECT_TRUE(Journal::the().lines().empty());
  get_project_cookie();
  EXPECT_EQ(Journal::the().operations(), Texts{"get_project_cookie"});
  EXPECT_EQ(Journal::the().lines(), Texts{"get_project_cookie() -> PTEST000000000000"});
}

TEST_F(JournalTest, CallsMadeInsideACallFollowIt)
{
  RecordingListener listener;
  listener.onEvent = [](const std::string&) { get_project_cookie(); };
  Texts lines = linesOf([] {
    const EditModifier modifier(EditManager::makeNewEdit(Cookie()));
    modifier.get()->setChangeDescription(codes::madeOrImported, true);
  });
  ASSERT_EQ(lines.size(), 4u);
  EXPECT_EQ(lines[2].substr(0, 30), "EditModifier::~EditModifier(E" + lines[2].substr(29, 1));
  EXPECT_EQ(lines[3], "get_project_cookie() -> PTEST000000000000");
}

TEST_F(JournalTest, ClearInsideACallLosesThatCallAlone)
{
  RecordingListener listener;
  listener.onEvent = [](const std::string&) {
    Journal::the().clear();
    co_pid();
  };
  const Texts lines = linesOf([] {
    {
      const EditModifier modifier(EditManager::makeNewEdit(Cookie()));
      modifier.get()->setChangeDescription(codes::madeOrImported, true);
    }
    get_project_cookie();
  });
  ASSERT_EQ(lines.size(), 2u);
  EXPECT_EQ(lines[0].substr(0, 9), "co_pid() ");
  EXPECT_EQ(lines[1], "get_project_cookie() -> PTEST000000000000");
}

TEST_F(JournalTest, ATraceIsWrittenAsCallsReturn)
{
  std::FILE* const file = std::tmpfile();
  ASSERT_NE(file, nullptr);
  Journal::the().traceTo(file);
  EditPtr handle;
  handle.i_open(Cookie("Enothing", false), codes::openAsUsual);
  handle.i_close();
  Journal::the().traceTo(nullptr);
  co_pid();
  EXPECT_TRUE(Journal::the().calls().empty()); // tracing keeps nothing
  std::rewind(file);
  char text[200] = {};
  EXPECT_GT(std::fread(text, 1, sizeof text - 1, file), 0u);
  std::fclose(file);
  EXPECT_STREQ(text, "EditPtr::i_open(Enothing, 0) -> not opened\nEditPtr::i_close()\n");
}

TEST_F(JournalTest, WorkersMayCallWhileItIsRead)
{
  Journal::the().record(true);
  std::thread worker([] {
    for (int i = 0; i < 1000; ++i)
      co_pid();
  });
  while (Journal::the().count("co_pid") < 1000)
    std::this_thread::yield();
  worker.join();
  EXPECT_EQ(Journal::the().lines().size(), 1000u);
}

TEST_F(JournalTest, WhatACallThrewIsItsResult)
{
  reelhost::Script::the().throwAt(1);
  const Texts lines = linesOf([] { EXPECT_THROW(get_project_cookie(), reelhost::ScriptedFault); });
  EXPECT_EQ(lines, Texts{"get_project_cookie() -> threw reelhost::ScriptedFault"});
}

/// The lines of calls of all operations, with REEL for the Cookie of the reel and SHOT for that of the shot.
class EveryCall : public JournalTest {
protected:
  Texts lines(const std::function<void()>& work)
  {
    Texts all = linesOf(work);
    for (std::string& line : all)
      for (const auto& [cookie, name] : {std::pair(reel_, "REEL"), std::pair(shot_, "SHOT")})
        for (std::size_t at; (at = line.find(text(cookie))) != std::string::npos;)
          line.replace(at, text(cookie).size(), name);
    return all;
  }
  const Cookie reel_ = addLog(9, "R1");
  const Cookie shot_ = addLog(1, "R1");
};

TEST_F(EveryCall, OfLogsIsWritten)
{
  EXPECT_EQ(lines([&] {
              EditPtr handle, other;
              handle.i_open(reel_, codes::openAsUsual);
              other = handle.get();
              other.i_close();
              other.i_close();
              Edit& edit = *handle.get();
              edit.getLogType();
              edit.isImported();
              strp_field field;
              edit.get_reelid(field, 0, -1);
              edit.set_reelid(0, "R\"2");
              edit.setName(L"Reel \u00e9", false);
              edit.set_entire_medium(1);
              edit.make_original(false, false);
              edit.redetermineLogType();
              edit.setChangeDescription(codes::madeOrImported, true);
              edit.setDirty(true);
              edit.reelType("Tape");
              edit.getNumChans(codes::audioChannel);
              edit.addChan(codes::audioChannel, nullptr, false, EditChanSubType(0), false, -1.0);
              handle.i_close();
              EditInfo info(reel_, codes::openAsUsual);
              info.getAttrib(codes::reelIdAttribute);
              info.i_close();
              info.getAttrib(codes::reelIdAttribute);
              Edit::getLogTypeFromString("Reel");
              {
                const EditModifier none(nullptr);
              }
            }),
            (Texts{
                "EditPtr::i_open(REEL, 0) -> opened",
                "EditPtr::operator=(REEL)",
                "EditPtr::i_close(REEL)",
                "EditPtr::i_close()",
                "Edit::getLogType(REEL) -> 9",
                "Edit::isImported(REEL) -> false",
                "Edit::get_reelid(REEL, strp_field&, 0, -1) -> \"R1\"",
                "Edit::set_reelid(REEL, 0, \"R\\\"2\")",
                "Edit::setName(REEL, \"Reel \xC3\xA9\", false)",
                "Edit::set_entire_medium(REEL, 1)",
                "Edit::make_original(REEL, false, false)",
                "Edit::redetermineLogType(REEL)",
                "Edit::setChangeDescription(REEL, 59, true)",
                "Edit::setDirty(REEL, true)",
                "Edit::reelType(REEL, \"Tape\")",
                "Edit::getNumChans(REEL, 2) -> 0",
                "Edit::addChan(REEL, 2, null, false, 0, false, -1.0)",
                "EditPtr::i_close(REEL)",
                "EditInfo::EditInfo(REEL, 0) -> opened",
                "EditInfo::getAttrib(REEL, 20) -> \"R\\\"2\"",
                "EditPtr::i_close(REEL)",
                "EditInfo::getAttrib(20) -> \"\"",
                "Edit::getLogTypeFromString(\"Reel\") -> 9",
                "EditModifier::~EditModifier()",
            }));
}

TEST_F(EveryCall, OfTheDatabaseIsWritten)
{
  EXPECT_EQ(lines([&] {
              projdb& database = *EditManager::getProjdb();
              database.search(0x10040, 0xFFFEEF9F);
              shotsOf("R1");
              const unsigned short type = database.findField("Type");
              database[shot_]->get_field(type);
              EXPECT_EQ(database[Cookie("Enothing", false)], nullptr);
              EditManager::updateProjdbRec(shot_);
              typeNameOf(reel_);
              EditManager::ProjOpts();
              get_project_cookie();
              getFilenameForCookie(shot_, Cookie("P0001000", false));
              Zr::CurrentProject::getFrameRate(Zr::CurrentProject::Revision(0));
              Zr::CurrentProject::getOutputImageZRFrameRate();
              reelhost::closeProject();
              EXPECT_EQ(EditManager::getProjdb(), nullptr);
              EditManager::makeNewEdit(Cookie("Enothing", false));
            }),
            (Texts{
                "EditManager::getProjdb() -> database",
                "projdb::search(0x10040, 0xFFFEEF9F) -> 1 log",
                "projdb::SearchCriteria::SearchCriteria()",
                "LogAttributes::Map::add(20, \"R1\")",
                "EditManager::getProjdb() -> database",
                "projdb::search(1, 102350, 20: \"R1\") -> 1 log",
                "projdb::findField(\"Type\") -> 1",
                "projdb::operator[](SHOT) -> row",
                "dbrecord::get_field(SHOT, 1) -> \"Material\"",
                "projdb::operator[](Enothing) -> null",
                "EditManager::updateProjdbRec(SHOT)",
                "EditManager::getProjdb() -> database",
                "ODBViewRep::ODBViewRep()",
                "ODBViewRep::displayRecordsAt([REEL], 0)",
                "ODBViewRep::numRows() -> 1",
                "ODBViewRep::cellText(0, \"Reel Type\") -> \"\"",
                "ODBView::~ODBView()",
                "EditManager::ProjOpts()",
                "get_project_cookie() -> PTEST000000000000",
                "getFilenameForCookie(SHOT, P0001000) -> \"E0000002\"",
                "Zr::CurrentProject::getFrameRate(0) -> 3",
                "Zr::CurrentProject::getOutputImageZRFrameRate() -> 4",
                "EditManager::getProjdb() -> null",
                "EditManager::makeNewEdit(Enothing) -> null",
                "EditModifier::~EditModifier()",
            }));
}

TEST_F(EveryCall, OfTheConfigurationIsWritten)
{
  EXPECT_EQ(lines([&] {
              configb block;
              strp_field field;
              field.set("f");
              char buffer[2048] = {};
              int number = 0;
              block.set("a", "1", nullptr);
              block.set("b", field);
              block.in("a");
              block.in("c");
              block.in("a", buffer);
              block.in("c", buffer);
              block.in("a", number);
              block.in("c", number);
              block.in("b", field);
              block.in("c", field);
              config_string("no_such_key", "default");
              SystemCfg::theConfig().set("key", "value");
              SystemCfg::theConfig().get("key");
              getDeviceDataDirectory(iSettings::eType(1));
            }),
            (Texts{
                "configb::set(\"a\", \"1\", null)",
                "configb::set(\"b\", \"f\")",
                "configb::in(\"a\") -> \"1\"",
                "configb::in(\"c\") -> null",
                "configb::in(\"a\", char*) -> 0 \"1\"",
                "configb::in(\"c\", char*) -> 1",
                "configb::in(\"a\", int&) -> 0 1",
                "configb::in(\"c\", int&) -> 1",
                "configb::in(\"b\", strp_field&) -> 0 \"f\"",
                "configb::in(\"c\", strp_field&) -> 1",
                "config_string(\"no_such_key\", \"default\") -> \"default\"",
                "SystemCfg::theConfig()",
                "SystemCfg::set(\"key\", \"value\")",
                "SystemCfg::theConfig()",
                "SystemCfg::get(\"key\") -> \"value\"",
                "getDeviceDataDirectory(1) -> \"/dev/null/\"",
            }));
}

TEST_F(EveryCall, OfDevicesIsWritten)
{
  reelhost::DeviceSettings deck;
  deck.number = 3;
  deck.id = 42;
  deck.name = "Deck";
  deck.portType = 0;
  deck.tapes = {"Live"};
  reelhost::facility().devices() = {deck};
  EXPECT_EQ(lines([&] {
              ExtDeviceConfigurationManager& manager = theConfigurationManager();
              ExtDeviceConfig config = manager.getConfig(3);
              manager.getConfig(IdStamp(42));
              manager.findConfigForName(L"Deck");
              config.getTapeList();
              config.getTextName();
              config.getPortType();
              config.getInputType();
              config.getNumConnectedAudioInputs();
              config.getLabelMapping();
              config.setLastReel("R1");
              manager.storeDevice(config, false);
              ExtDeviceConfigurationManager::DeviceChangedMsgParser(NotifyMsg(42));
              resetDevices();
              LabelMappingSet().load(L"none");
            }),
            (Texts{
                "theConfigurationManager()",
                "ExtDeviceConfigurationManager::getConfig(3) -> \"Deck\"",
                "ExtDeviceConfigurationManager::getConfig(IdStamp 42) -> \"Deck\"",
                "ExtDeviceConfigurationManager::findConfigForName(\"Deck\") -> 3",
                "ExtDeviceConfig::getTapeList(\"Deck\") -> [\"Live\"]",
                "ExtDeviceConfig::getTextName(\"Deck\") -> \"Deck\"",
                "ExtDeviceConfig::getPortType(\"Deck\") -> 0",
                "ExtDeviceConfig::getInputType(\"Deck\") -> 9",
                "ExtDeviceConfig::getNumConnectedAudioInputs(\"Deck\") -> 0",
                "ExtDeviceConfig::getLabelMapping(\"Deck\") -> \"\"",
                "ExtDeviceConfig::setLastReel(\"Deck\", \"R1\")",
                "ExtDeviceConfigurationManager::storeDevice(\"Deck\", false)",
                "ExtDeviceConfigurationManager::DeviceChangedMsgParser(42) -> IdStamp 42",
                "resetDevices()",
                "LabelMappingSet::load(\"none\") -> false",
            }));
}

TEST_F(EveryCall, OfTextsAndThreadsIsWritten)
{
  ::testing::internal::CaptureStderr();
  const Texts written = lines([&] {
    paddedResourceStrW(10043, nullptr, L" ", ResStrFmt(0));
    vorn_printf("%s %d\n", "a", 1);
    defer(nullptr);
  });
  ::testing::internal::GetCapturedStderr();
  EXPECT_EQ(written, (Texts{
                         "paddedResourceStrW(10043, null, \" \", 0) -> \"Reel \"",
                         "vorn_printf(\"a 1\\n\") -> 4",
                         "defer(null)",
                     }));
}

} // namespace
