// SPDX-License-Identifier: Apache-2.0
#include <stdexcept>
#include <thread>

#include "host/action.h"
#include "host/device.h"
#include "host/project.h"
#include "host/text.h"
#include "standalone/model/host_test.h"

namespace {

using namespace reeldb_tests;
using reelhost::Script;
using reelhost::ScriptedFault;
using Texts = std::vector<std::string>;

class ScriptTest : public HostTest {
protected:
  ScriptTest() { openMemory(); }
  Script& script() { return Script::the(); }
};

// --- Faults --------------------------------------------------------------------------------------

/// Work with many host calls, some of them inside others.
void work(const Cookie& log)
{
  EditPtr handle;
  struct Closer {
    EditPtr& handle;
    ~Closer() { handle.i_close(); }
  } const closer{handle};
  handle.i_open(log, codes::openAsUsual);
  handle->set_reelid(0, "X");
  handle->config().set("k", "v", nullptr);
  const EditModifier modifier(EditManager::makeNewEdit(Cookie()));
  modifier.get()->setChangeDescription(codes::madeOrImported, true);
  const ODBView view(new ODBViewRep(EditManager::getProjdb()->database()));
  view->displayRecordsAt({log}, 0);
  view->cellText(0, "Reel Type");
}

TEST_F(ScriptTest, EveryCallThatMayThrowCanBeMadeToThrow)
{
  const Cookie log = addLog(9, "R1");
  script().throwAt(0);
  work(log);
  const std::int64_t calls = script().throwingCalls();
  EXPECT_EQ(calls, 9); // i_open, set_reelid, set, makeNewEdit, setChangeDescription, getProjdb, view, display, cell
  for (std::int64_t n = 1; n <= calls; ++n) {
    script().throwAt(n);
    EXPECT_THROW(work(log), ScriptedFault) << n;
    EXPECT_TRUE(script().faultHappened());
    EXPECT_EQ(script().throwingCalls(), n);
    EXPECT_EQ(reelhost::openLogs(), 0) << n;
    EXPECT_EQ(reelhost::openModifiers(), 0) << n;
  }
  script().throwAt(calls + 1);
  work(log);
  EXPECT_FALSE(script().faultHappened());
}

TEST_F(ScriptTest, AFaultComesOnceAndInPlaceOfTheCall)
{
  const Cookie log = addLog(9, "R1");
  withLog(log, [&](Edit& edit) {
    script().throwAt(1);
    EXPECT_THROW(edit.set_reelid(0, "X"), ScriptedFault);
    EXPECT_STREQ(edit.config().in("reelid"), "R1");
    edit.set_reelid(0, "Y");
  });
  EXPECT_EQ(reelIdOf(log), "Y");
  script().throwAt(1);
  try {
    get_project_cookie();
    ADD_FAILURE() << "nothing was thrown";
  } catch (const ScriptedFault& fault) {
    EXPECT_STREQ(fault.what(), "get_project_cookie: scripted fault (call 1)");
  }
}

TEST_F(ScriptTest, ClosingAndEndingNeitherThrowNorCount)
{
  const Cookie log = addLog(9, "R1");
  EditPtr handle;
  handle.i_open(log, codes::openAsUsual);
  script().throwAt(1);
  handle.i_close();
  {
    const EditModifier modifier(nullptr);
  }
  EXPECT_EQ(script().throwingCalls(), 0);
  EXPECT_FALSE(script().faultHappened());
}

TEST_F(ScriptTest, AnOpeningThatThrowsIsNotOpen)
{
  const Cookie log = addLog(9, "R1");
  script().throwAt(1);
  EXPECT_THROW(EditInfo(log, codes::openAsUsual), ScriptedFault);
  EXPECT_EQ(reelhost::openLogs(), 0);
}

TEST_F(ScriptTest, BeforeSeesEachCallAndMayThrowInItsPlace)
{
  const Cookie log = addLog(9, "R1");
  Texts seen;
  script().before = [&](const std::string& operation, const std::string& arguments) {
    seen.push_back(operation + "(" + arguments + ")");
    get_project_cookie(); // a call by the test itself is not counted
    if (operation == "Edit::set_reelid")
      throw std::out_of_range("scripted");
  };
  EXPECT_THROW(rename(log, "X"), std::out_of_range);
  EXPECT_EQ(seen, (Texts{"EditPtr::i_open(" + text(log) + ", 0)", "Edit::set_reelid(" + text(log) + ", 0, \"X\")",
                         "EditPtr::i_close(" + text(log) + ")"}));
  script().before = nullptr;
  EXPECT_EQ(reelIdOf(log), "R1");
}

// --- Openings ------------------------------------------------------------------------------------

TEST_F(ScriptTest, ALogCanBeKeptFromOpening)
{
  const Cookie log = addLog(9, "R1"), other = addLog(9, "R2");
  script().failOpen(log);
  EXPECT_FALSE(opens(log));
  EXPECT_EQ(reelIdOf(log), "");
  EXPECT_TRUE(opens(other));
  EXPECT_EQ(typeNameOf(log), ""); // it still has its row
  script().reset();
  EXPECT_TRUE(opens(log));
}

TEST_F(ScriptTest, OneOpeningCanBeMadeToFail)
{
  const Cookie log = addLog(9, "R1");
  script().failOpenNumber(2);
  EXPECT_TRUE(opens(log));
  EXPECT_EQ(reelIdOf(log), "");
  EXPECT_TRUE(opens(log));
  opens(Cookie()); // counts as well
  EXPECT_EQ(script().openings(), 4);
  script().failOpenNumber(0);
  EXPECT_EQ(script().openings(), 0);
}

// --- The database --------------------------------------------------------------------------------

TEST_F(ScriptTest, TheDatabaseCanGoAway)
{
  script().noDatabase(true);
  EXPECT_EQ(EditManager::getProjdb(), nullptr);
  script().noDatabase(false);
  EXPECT_NE(EditManager::getProjdb(), nullptr);
  script().noDatabaseAt(2);
  EXPECT_NE(EditManager::getProjdb(), nullptr);
  EXPECT_EQ(EditManager::getProjdb(), nullptr);
  EXPECT_NE(EditManager::getProjdb(), nullptr);
}

TEST_F(ScriptTest, ResultsOfSearchesCanBeReplaced)
{
  const Cookie reel = addLog(9, "R1");
  CookieVec none, one;
  one.add(reel);
  one.add(Cookie());
  script().maskSearchResult = none;
  script().attributeSearchResult = one;
  EXPECT_EQ(reels().count(), 0);
  EXPECT_EQ(texts(shotsOf("whatever")), texts(one));
  script().reset();
  EXPECT_EQ(reels().count(), 1);
  EXPECT_EQ(shotsOf("whatever").count(), 0);
}

TEST_F(ScriptTest, AnAttributeCanDifferFromTheField)
{
  const Cookie log = addLog(9, "R1");
  script().attribute(log, "OTHER");
  EXPECT_EQ(reelIdOf(log), "OTHER");
  EXPECT_EQ(fieldOf(log, "reelid"), "R1");
  script().failOpen(log);
  EXPECT_EQ(reelIdOf(log), "");
}

TEST_F(ScriptTest, ARowCanHoldAnotherTypeOrNone)
{
  const Cookie first = addLog(9, "R1"), second = addLog(9, "R2");
  projdb& database = *EditManager::getProjdb();
  const unsigned short type = database.findField("Type"), reelType = database.findField("Reel Type");
  script().typeField(first, "Material");
  script().typeField(second, std::nullopt);
  EXPECT_STREQ(database[first]->get_field(type), "Material");
  EXPECT_EQ(database[second]->get_field(type), nullptr);
  EXPECT_STREQ(database[second]->get_field(reelType), "");
}

TEST_F(ScriptTest, ARowCanBeMissing)
{
  const Cookie first = addLog(9, "R1"), second = addLog(9, "R2");
  script().noRow(first);
  EXPECT_EQ((*EditManager::getProjdb())[first], nullptr);
  EXPECT_NE((*EditManager::getProjdb())[second], nullptr);
  EXPECT_EQ(typeNameOf(first), "<no row>");
  EXPECT_EQ(typeNameOf(second), "");
  EXPECT_TRUE(opens(first));
}

TEST_F(ScriptTest, TheViewCanFollowWithTheRowAlone)
{
  const Cookie log = addLog(9, "R1");
  script().viewFollows = Script::ViewFollows::OnUpdate;
  withLog(log, [](Edit& edit) { edit.reelType("Tape"); });
  EXPECT_EQ(typeNameOf(log), "");
  EditManager::updateProjdbRec(log);
  EXPECT_EQ(typeNameOf(log), "Tape");
  script().viewFollows = Script::ViewFollows::OnReelType;
  withLog(log, [](Edit& edit) { edit.reelType("Disc"); });
  EXPECT_EQ(typeNameOf(log), "Disc");
}

// --- Configuration -------------------------------------------------------------------------------

TEST_F(ScriptTest, NumbersOfTheConfigurationCanBeReplaced)
{
  configb block;
  block.set("flag", "0", nullptr);
  script().configInt["flag"] = {5, 7};
  script().configInt["other"] = {0, std::nullopt};
  int number = 1;
  EXPECT_EQ(block.in("flag", number), 5);
  EXPECT_EQ(number, 7);
  EXPECT_EQ(block.in("other", number), 0);
  EXPECT_EQ(number, 7);
  EXPECT_STREQ(block.in("flag"), "0");
}

TEST_F(ScriptTest, TextsOfTheConfigurationCanBeReplaced)
{
  configb block;
  script().configText["a"] = {1, "left behind"};
  script().configText["b"] = {0, std::nullopt};
  char buffer[2048] = {};
  EXPECT_EQ(block.in("b", buffer), 0);
  EXPECT_STREQ(buffer, "");
  EXPECT_EQ(block.in("a", buffer), 1);
  EXPECT_STREQ(buffer, "left behind");
}

TEST_F(ScriptTest, BuffersAreLookedAt)
{
  configb block;
  char buffer[2048] = {};
  block.in("a", buffer);
  EXPECT_TRUE(script().configBufferWasZero);
  buffer[2047] = 'x';
  block.in("a", buffer);
  EXPECT_FALSE(script().configBufferWasZero);
  buffer[2047] = 0;
  block.in("a", buffer);
  EXPECT_FALSE(script().configBufferWasZero); // one is enough
}

// --- The rest ------------------------------------------------------------------------------------

TEST_F(ScriptTest, TextsThreadsAndRatesCanBeReplaced)
{
  script().resourceText = L"<10043>";
  EXPECT_EQ(std::wstring(paddedResourceStrW(10043, L"a", L" ", ResStrFmt(0)).c_str()), L"a<10043> ");
  EXPECT_EQ(std::wstring(paddedResourceStrW(1, nullptr, nullptr, ResStrFmt(0)).c_str()), L"<10043>");
  script().coPid = [] { return 0x12345; };
  EXPECT_EQ(co_pid(), 0x12345);
  script().frameRate = 8;
  script().outputFrameRate = 9;
  EXPECT_EQ(Zr::CurrentProject::getFrameRate(Zr::CurrentProject::Revision(0)), 8);
  EXPECT_EQ(Zr::CurrentProject::getOutputImageZRFrameRate(), 9);
  script().reset();
  EXPECT_EQ(Zr::CurrentProject::getFrameRate(Zr::CurrentProject::Revision(0)), 3);
  EXPECT_NE(co_pid(), 0x12345);
}

TEST_F(ScriptTest, ProjectsCanBeReplacedInTurn)
{
  const Cookie first("P0001000", false), second("P0001001", false);
  script().projectCookies = {first, second};
  EXPECT_EQ(get_project_cookie().compare(first), 0);
  EXPECT_EQ(get_project_cookie().compare(second), 0);
  EXPECT_EQ(get_project_cookie().compare(second), 0);
  script().projectCookies = {Cookie()};
  EXPECT_FALSE(get_project_cookie().valid());
}

TEST_F(ScriptTest, LabelMapsCanBeReplaced)
{
  LabelMappingSet map;
  map.entries[5].inUse = 1;
  script().labelMaps[L"mine"] = {{1, 9, 10}};
  EXPECT_TRUE(map.load(L"mine"));
  EXPECT_EQ(map.entries[0].source, 9u);
  EXPECT_EQ(map.entries[0].format, 10u);
  EXPECT_EQ(map.entries[5].inUse, 0);
  EXPECT_FALSE(map.load(L"other"));
  EXPECT_EQ(map.entries[0].source, 0u);
}

TEST_F(ScriptTest, DeferredActionsCanBeSwallowed)
{
  class Action : public iExecutableAction {
    void execute() override { ADD_FAILURE() << "was to be swallowed"; }
  };
  script().swallowDeferred = true;
  defer(new Action);
  EXPECT_EQ(reelhost::deferredActions(), 0);
  EXPECT_EQ(reelhost::runDeferredActions(), 0);
}

TEST_F(ScriptTest, WorkersMeetTheScriptToo)
{
  script().throwAt(1);
  bool thrown = false;
  std::thread worker([&] {
    try {
      co_pid();
    } catch (const ScriptedFault&) {
      thrown = true;
    }
  });
  worker.join();
  EXPECT_TRUE(thrown);
}

} // namespace
