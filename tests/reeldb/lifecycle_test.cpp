// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <iterator>
#include <memory>
#include <new>
#include <type_traits>

#include "host/config.h"
#include "host/projdb.h"
#include "support/library_fixture.h"

namespace reeldb_tests {

namespace {

using Client = RecordingClient;
using Texts = std::vector<std::string>;

constexpr const char* option = "reeldb_defaultType";

/// Each test calls the manager's events itself; get_project_cookie returns the test's value.
class Lifecycle : public LibraryTest {
protected:
  Lifecycle() { projectIs("PFIRST"); }

  ~Lifecycle() override { ReelDbManager::systemWideDefaultReelType_ = systemWideDefault_; }

  static Cookie project(const char* name) { return Cookie(name, false); }
  void projectIs(const char* name) { script().projectCookies = {project(name)}; }

  /// Opens a project with these options, which the manager has not entered.
  void openUnentered(const reelhost::KeyValues& options)
  {
    script().projectCookies = {project("P0001000")};
    enterProject("UNENTERED", options);
    manager().buildReelList();
    projectIs("PFIRST");
  }

  std::string storedDefaultType()
  {
    const char* const type = EditManager::ProjOpts().in(option);
    return type ? type : "<absent>";
  }

  Texts listed()
  {
    Texts all;
    for (const Cookie& reel : manager().reelList)
      all.push_back(text(reel));
    return all;
  }

  Texts marked(const ReelDbManager& of)
  {
    Texts all;
    for (unsigned i = 0; i < of.reelsInUse.count(); ++i)
      all.push_back(text(of.reelsInUse[i]));
    return all;
  }

  /// Every way to find a reel fails.
  void expectNothingIsFound(const char* id)
  {
    EXPECT_FALSE(manager().getCookieFromReelId(id).valid());
    EXPECT_FALSE(manager().getReelInfo(id).valid());
    EXPECT_FALSE(manager().doesReelExist(id));
    EXPECT_EQ(manager().checkReelValid(id), 1);
    EXPECT_FALSE(manager().representsLiveMaterial(id));
    std::vector<LightweightString<char>> ids;
    manager().getAllReelIds(ids, true);
    manager().getReelsCompatibleWithDevice(ids, 999);
    EXPECT_TRUE(ids.empty());
  }

  Heard heard_;
  const LightweightString<char> systemWideDefault_ = ReelDbManager::systemWideDefaultReelType_;
};

} // namespace

// --- Entry ---------------------------------------------------------------------------------------

TEST_F(Lifecycle, FirstEntryDoesItsStepsInOrder)
{
  openUnentered({});
  Client client(heard_);
  std::size_t callsBeforeTelling = 0;
  client.onDbChanged = [&](const std::string&) { callsBeforeTelling = journal().operations().size(); };

  const auto calls = operationsOf([&] { manager().handleProjectEntry(); });

  EXPECT_EQ(calls,
            (Texts{"get_project_cookie", "get_project_cookie", "EditManager::getProjdb", "projdb::search",
                   "EditManager::ProjOpts", "configb::in", "configb::set", "resetDevices", "get_project_cookie"}));
  EXPECT_EQ(callsBeforeTelling, 4U)
      << "clients are notified once the list is rebuilt, before the options are looked at";
  EXPECT_EQ(heard_, (Heard{"dbC()"}));
}

TEST_F(Lifecycle, SecondEntryOfTheSameProjectLeavesTheDevicesAlone)
{
  manager().handleProjectEntry();
  manager().reelInUse("R1", true);
  const Cookie reel = addLog(9, "R1");
  Client client(heard_);

  const auto calls = operationsOf([&] { manager().handleProjectEntry(); });

  EXPECT_EQ(calls, (Texts{"get_project_cookie", "get_project_cookie", "EditManager::getProjdb", "projdb::search",
                          "EditManager::ProjOpts", "configb::in"}));
  EXPECT_EQ(heard_, (Heard{"dbC()"}));
  EXPECT_EQ(listed(), (Texts{text(reel)}));
  EXPECT_EQ(marked(manager()), Texts{});
}

TEST_F(Lifecycle, EntryOfAnotherProjectResetsTheDevicesEachTime)
{
  journal().record(true);
  for (const char* const name : {"PONE", "PTWO", "PONE"}) {
    projectIs(name);
    manager().handleProjectEntry();
    EXPECT_EQ(text(manager().lastProject), name);
  }
  EXPECT_EQ(journal().count("resetDevices"), 3);
}

TEST_F(Lifecycle, EntryDecidesByTheProjectAtItsStartAndRemembersTheOneAtItsEnd)
{
  manager().lastProject = project("PONE");
  script().projectCookies = {project("PTWO"), project("PONE"), project("PTHREE")};
  EXPECT_EQ(countOf(operationsOf([&] { manager().handleProjectEntry(); }), "resetDevices"), 0)
      << "the second result is compared";
  EXPECT_EQ(text(manager().lastProject), "PONE");

  script().projectCookies = {project("PONE"), project("PTWO"), project("PTHREE")};
  EXPECT_EQ(countOf(operationsOf([&] { manager().handleProjectEntry(); }), "resetDevices"), 1);
  EXPECT_EQ(text(manager().lastProject), "PTHREE");
}

TEST_F(Lifecycle, EntryAsksForTheProjectAgainOnlyAfterTheDevicesAreReset)
{
  bool reset = false;
  int askedAfter = 0;
  script().before = [&](const std::string& operation, const std::string&) {
    reset = reset || operation == "resetDevices";
    askedAfter += reset && operation == "get_project_cookie" ? 1 : 0;
    if (operation == "resetDevices") {
      EXPECT_FALSE(manager().lastProject.valid()) << "not stored yet";
    }
  };

  manager().lastProject.invalidate();
  manager().handleProjectEntry();

  EXPECT_EQ(askedAfter, 1);
  EXPECT_EQ(text(manager().lastProject), "PFIRST");
}

TEST_F(Lifecycle, EntryWithoutAProjectDoesNotResetTheDevicesAtFirst)
{
  manager().lastProject.invalidate();
  script().projectCookies = {Cookie()};

  EXPECT_EQ(countOf(operationsOf([&] { manager().handleProjectEntry(); }), "resetDevices"), 0)
      << "no project is the last project that a new manager knows";
}

TEST_F(Lifecycle, PlaceholderProjectIsSkipped)
{
  openUnentered({});
  manager().handleProjectEntry();
  addReel("R1");
  manager().reelInUse("R1", true);
  openUnentered({});
  const Cookie listedReel = addReel("R2");
  addLog(9, "R3"); // in the project, not in the list
  Client client(heard_);
  projectIs("P0001000");

  EXPECT_EQ(operationsOf([&] { manager().handleProjectEntry(); }), (Texts{"get_project_cookie", "get_project_cookie"}));

  EXPECT_EQ(heard_, Heard{});
  EXPECT_EQ(storedDefaultType(), "<absent>");
  EXPECT_EQ(listed(), Texts{text(listedReel)});
  EXPECT_EQ(text(manager().lastProject), "PFIRST");
  EXPECT_EQ(marked(manager()), (Texts{"R1"}));
}

TEST_F(Lifecycle, PlaceholderIsRecognisedByTheFirstResultOnly)
{
  script().projectCookies = {project("P0001000"), project("PONE")};
  EXPECT_EQ(operationsOf([&] { manager().handleProjectEntry(); }).size(), 2U);

  script().projectCookies = {project("PONE"), project("P0001000")};
  EXPECT_LT(2U, operationsOf([&] { manager().handleProjectEntry(); }).size());
}

TEST_F(Lifecycle, ProjectsWithNamesLikeThePlaceholdersAreNotPlaceholders)
{
  for (const char* const name : {"P000100", "P00010000", "P0001001", "Q0001000"}) {
    projectIs(name);
    EXPECT_LT(2U, operationsOf([&] { manager().handleProjectEntry(); }).size()) << name;
  }
}

TEST_F(Lifecycle, ClientsAreNotifiedOfTheEntryWithTheListRebuiltAndTheMarksRemoved)
{
  openUnentered({});
  const Cookie reel = addLog(9, "R1");
  manager().reelInUse("R1", true);
  Client client(heard_);
  Texts list, marks{"not asked"};
  bool exists = false;
  client.onDbChanged = [&](const std::string&) {
    list = listed();
    marks = marked(manager());
    exists = manager().doesReelExist("r1");
  };

  manager().handleProjectEntry();

  EXPECT_EQ(list, (Texts{text(reel)}));
  EXPECT_EQ(marks, Texts{});
  EXPECT_TRUE(exists);
}

TEST_F(Lifecycle, ClientsAreNotifiedOfTheEntryBeforeTheDefaultTypeIsStoredAndTheDevicesAreReset)
{
  openUnentered({});
  ReelDbManager::systemWideDefaultReelType_ = "Tape lifecycle";
  Client client(heard_);
  std::string stored, typeOfNewReel = "not made";
  int resets = -1;
  client.onDbChanged = [&](const std::string& id) {
    if (!id.empty())
      return;
    resets = journal().count("resetDevices");
    stored = storedDefaultType();
    typeOfNewReel = text(manager().createNewReel("R1", -1).typeName());
  };

  journal().record(true);
  manager().handleProjectEntry();

  EXPECT_EQ(resets, 0);
  EXPECT_EQ(stored, "<absent>");
  EXPECT_EQ(typeOfNewReel, "");
  EXPECT_EQ(journal().count("resetDevices"), 1);
  EXPECT_EQ(storedDefaultType(), "Tape lifecycle");
}

TEST_F(Lifecycle, EntryStoresTheSystemWideTypeWhereTheProjectHasNoOption)
{
  openUnentered({});
  ReelDbManager::systemWideDefaultReelType_ = "Tape lifecycle";
  const auto lines = linesOf([&] { manager().handleProjectEntry(); });
  EXPECT_TRUE(inOrder(lines, {R"(configb::in("reeldb_defaultType") -> null)",
                              R"(configb::set("reeldb_defaultType", "Tape lifecycle", null))"}));
  EXPECT_EQ(storedDefaultType(), "Tape lifecycle");
}

TEST_F(Lifecycle, EntryStoresTheEmptyTypeWhereTheSystemHasNoneEither)
{
  openUnentered({});
  ReelDbManager::systemWideDefaultReelType_ = LightweightString<char>();
  manager().handleProjectEntry();
  EXPECT_EQ(storedDefaultType(), "");
}

TEST_F(Lifecycle, EntryKeepsTheTypeThatTheProjectHas)
{
  ReelDbManager::systemWideDefaultReelType_ = "Tape lifecycle";
  for (const char* const type : {"", "Tape of the project"}) {
    openUnentered({{option, type}});
    EXPECT_EQ(countOf(operationsOf([&] { manager().handleProjectEntry(); }), "configb::set"), 0) << type;
    EXPECT_EQ(storedDefaultType(), type);
  }
}

TEST_F(Lifecycle, HeldEntryDoesEverythingExceptNotify)
{
  openUnentered({});
  const Cookie reel = addLog(9, "R1");
  manager().reelInUse("R1", true);
  manager().notifyHoldCount = 1;
  Client client(heard_);

  const auto calls = operationsOf([&] { manager().handleProjectEntry(); });

  EXPECT_EQ(heard_, Heard{});
  EXPECT_EQ(listed(), (Texts{text(reel)}));
  EXPECT_EQ(marked(manager()), Texts{});
  EXPECT_EQ(storedDefaultType(), "");
  EXPECT_EQ(countOf(calls, "resetDevices"), 1);
  EXPECT_EQ(manager().notifyHoldCount, 1);
}

TEST_F(Lifecycle, EntryWithoutDatabaseKeepsTheListAndContinues)
{
  openUnentered({});
  const Texts reels{text(addReel("R1"))};
  addLog(9, "R2");
  Client client(heard_);
  script().noDatabase(true);

  const auto calls = operationsOf([&] { manager().handleProjectEntry(); });

  EXPECT_EQ(calls, (Texts{"get_project_cookie", "get_project_cookie", "EditManager::getProjdb", "EditManager::ProjOpts",
                          "configb::in", "configb::set", "resetDevices", "get_project_cookie"}));
  EXPECT_EQ(listed(), reels);
  EXPECT_EQ(heard_, (Heard{"dbC()"}));
}

TEST_F(Lifecycle, ExceptionDuringTheEntryPassesAndLeavesTheRestUndone)
{
  openUnentered({});
  const int steps = static_cast<int>(operationsOf([&] { manager().handleProjectEntry(); }).size());
  ASSERT_EQ(steps, 9);
  for (int step = 1; step <= steps; ++step) {
    openUnentered({});
    manager().lastProject.invalidate();
    script().throwAt(step);
    EXPECT_THROW(manager().handleProjectEntry(), reelhost::ScriptedFault) << step;
    script().throwAt(0);
    EXPECT_EQ(manager().notifyHoldCount, 0);
    EXPECT_FALSE(manager().lastProject.valid()) << step;
  }
}

// --- Exit ----------------------------------------------------------------------------------------

TEST_F(Lifecycle, ExitEmptiesTheListAndDoesNothingElse)
{
  manager().handleProjectEntry();
  addReel("R1");
  manager().reelInUse("R1", true);
  manager().setProjectDefaultReelType("Tape lifecycle");
  Client client(heard_);

  EXPECT_EQ(operationsOf([&] { manager().handleProjectExit(); }), Texts{});

  EXPECT_EQ(listed(), Texts{});
  EXPECT_EQ(heard_, Heard{});
  EXPECT_EQ(marked(manager()), (Texts{"R1"}));
  EXPECT_EQ(text(manager().lastProject), "PFIRST");
  EXPECT_EQ(storedDefaultType(), "Tape lifecycle");
}

TEST_F(Lifecycle, NothingIsFoundAfterAnExitUntilAnEntry)
{
  addReel("R1");
  manager().handleProjectExit();
  expectNothingIsFound("R1");

  manager().handleProjectEntry();
  EXPECT_TRUE(manager().doesReelExist("R1"));
}

TEST_F(Lifecycle, NothingIsFoundAfterAnExitUntilTheSetOfReelsChanges)
{
  addReel("R1");
  manager().handleProjectExit();
  manager().informReelDbRecChanged("R1");
  expectNothingIsFound("R1");

  manager().informReelDbChanged("R1");
  EXPECT_TRUE(manager().doesReelExist("R1"));
}

TEST_F(Lifecycle, ReentryOfTheSameProjectAfterAnExitLeavesTheDevicesAlone)
{
  manager().handleProjectEntry();
  manager().handleProjectExit();

  EXPECT_EQ(countOf(operationsOf([&] { manager().handleProjectEntry(); }), "resetDevices"), 0);
}

TEST_F(Lifecycle, ExitLeavesCopiesOfTheListWhole)
{
  addReel("R1");
  const CookieVec copy = manager().reelList;
  manager().handleProjectExit();
  EXPECT_EQ(copy.count(), 1);
}

// --- The reel list -------------------------------------------------------------------------------

TEST_F(Lifecycle, ReelListIsTheResultOfTheDatabaseInItsOrder)
{
  const Cookie b = addLog(9, "B"), a = addLog(9, "A"), c = addLog(9, "C");
  addLog(1, "S");
  manager().buildReelList();
  EXPECT_EQ(listed(), (Texts{text(b), text(a), text(c)}));

  CookieVec answer;
  for (const Cookie& reel : {c, a, c})
    answer.add(reel);
  script().maskSearchResult = answer;
  manager().buildReelList();
  EXPECT_EQ(listed(), (Texts{text(c), text(a), text(c)}));

  script().maskSearchResult = CookieVec();
  manager().buildReelList();
  EXPECT_EQ(listed(), Texts{});
}

TEST_F(Lifecycle, ReelListIsSearchedForWithTheMasksOfReelLogs)
{
  const auto lines = linesOf([&] { manager().buildReelList(); });
  ASSERT_EQ(lines.size(), 2U);
  EXPECT_EQ(lines[1].find("projdb::search(0x10040, 0xFFFEEF9F)"), 0U) << lines[1];
}

TEST_F(Lifecycle, ReelListStaysAsItWasWithoutADatabase)
{
  const Texts reels{text(addReel("R1"))};
  addLog(9, "R2");
  script().noDatabase(true);

  EXPECT_EQ(operationsOf([&] { manager().buildReelList(); }), (Texts{"EditManager::getProjdb"}));
  EXPECT_EQ(listed(), reels);
}

TEST_F(Lifecycle, ReelListStaysAsItWasWhenTheSearchThrows)
{
  const Texts reels{text(addReel("R1"))};
  addLog(9, "R2");
  script().throwAt(2);

  EXPECT_THROW(manager().buildReelList(), reelhost::ScriptedFault);
  EXPECT_EQ(listed(), reels);
}

TEST_F(Lifecycle, BuildingTheReelListNotifiesNobody)
{
  Client client(heard_);
  manager().buildReelList();
  EXPECT_EQ(heard_, Heard{});
}

// --- The default type ----------------------------------------------------------------------------

TEST_F(Lifecycle, DefaultTypeIsStoredAsItIs)
{
  Client client(heard_);
  for (const char* const type : {"Tape lifecycle", "", " no such type "}) {
    const auto lines = linesOf([&] { manager().setProjectDefaultReelType(type); });
    EXPECT_EQ(countOf(lines, "configb::set(\"reeldb_defaultType\", \"" + std::string(type) + "\", null)"), 1) << type;
    EXPECT_EQ(lines.size(), 2U);
    EXPECT_EQ(storedDefaultType(), type);
  }
  EXPECT_EQ(heard_, Heard{});
}

TEST_F(Lifecycle, DefaultTypeIsStoredAgainWhenItIsTheSame)
{
  manager().setProjectDefaultReelType("Tape lifecycle");
  EXPECT_EQ(countOf(operationsOf([&] { manager().setProjectDefaultReelType("Tape lifecycle"); }), "configb::set"), 1);
}

TEST_F(Lifecycle, DefaultTypeWithoutABodyIsStoredAsTheEmptyOne)
{
  manager().setProjectDefaultReelType("Tape lifecycle");
  manager().setProjectDefaultReelType(LightweightString<char>());
  EXPECT_EQ(storedDefaultType(), "");
}

// --- Managers ------------------------------------------------------------------------------------

TEST_F(Lifecycle, ThereIsOneManagerOfTheProcess)
{
  EXPECT_EQ(ReelDbManager::theReelDbManager(), ReelDbManager::theReelDbManager());
  EXPECT_EQ(ReelDbManager::theReelDbManager(), ReelDbManager::theReelDbManager_);
  ReelDbManager second;
  EXPECT_NE(&second, ReelDbManager::theReelDbManager());
}

TEST_F(Lifecycle, NewManagerHasReadNothing)
{
  addReel("R1");
  manager().reelInUse("R1", true);

  // In memory that was used before, so that members that are not set show.
  struct InPlace {
    void operator()(ReelDbManager* made) const { made->ReelDbManager::~ReelDbManager(); }
  };
  alignas(ReelDbManager) unsigned char place[sizeof(ReelDbManager)];
  std::fill(std::begin(place), std::end(place), static_cast<unsigned char>(0xAA));
  std::unique_ptr<ReelDbManager, InPlace> fresh;
  EXPECT_EQ(operationsOf([&] { fresh.reset(::new (place) ReelDbManager); }), Texts{});

  EXPECT_EQ(fresh->reelList.count(), 0);
  EXPECT_EQ(fresh->reelsInUse.count(), 0U);
  EXPECT_FALSE(fresh->lastProject.valid());
  EXPECT_EQ(fresh->notifyHoldCount, 0);
  EXPECT_EQ(fresh->clients.count(), 0U);
  fresh->reelInUse("B", true);
  fresh->reelInUse("A", true);
  EXPECT_EQ(marked(*fresh), (Texts{"A", "B"})) << "the marks are kept sorted";
}

TEST_F(Lifecycle, EndOfAManagerDoesNotNotifyItsClients)
{
  Client client(heard_, "", "R1");
  manager().deRegisterClient(&client);
  {
    ReelDbManager second;
    second.registerClient(&client);
    second.reelInUse("R1", true);
    EXPECT_EQ(second.clients.count(), 1U);
    journal().record(true);
  }
  EXPECT_EQ(journal().operations(), Texts{});
  EXPECT_EQ(heard_, Heard{});
  client.reelDbChanged("still here");
  EXPECT_EQ(heard_, (Heard{"dbC(still here)"}));
}

TEST_F(Lifecycle, HostNotifiesManagersOfTheProjectWhileTheyLive)
{
  reelhost::openProject(reelhost::makeMemoryStore({}), reelhost::Access::Write);
  addLog(9, "R1");
  Client client(heard_);
  {
    ReelDbManager second;
    projectIs("PTWO");
    enterProject("TWO");
    EXPECT_EQ(text(second.lastProject), "PTWO");
    EXPECT_EQ(text(manager().lastProject), "PTWO");
    addLog(9, "R2");
    second.buildReelList();
    EXPECT_EQ(second.reelList.count(), 1);
    reelhost::closeProject();
    EXPECT_EQ(second.reelList.count(), 0);
  }
  heard_.clear();
  enterProject("THREE");
  EXPECT_EQ(heard_, (Heard{"dbC()"})) << "a manager that is gone is not notified";
}

TEST_F(Lifecycle, SecondManagerKeepsItsOwnAffairs)
{
  addReel("R1");
  manager().handleProjectEntry();
  manager().reelInUse("R1", true);
  Client client(heard_);
  ReelDbManager second;
  EXPECT_FALSE(second.doesReelExist("R1")) << "its own list is empty";
  second.reelInUse("R9", true);
  projectIs("PTWO");

  second.handleProjectEntry();

  EXPECT_TRUE(second.doesReelExist("R1"));
  EXPECT_EQ(text(second.lastProject), "PTWO");
  EXPECT_EQ(marked(second), Texts{});
  EXPECT_EQ(text(manager().lastProject), "PFIRST");
  EXPECT_EQ(marked(manager()), (Texts{"R1"}));
  EXPECT_EQ(heard_, Heard{});

  second.handleProjectExit();
  EXPECT_FALSE(second.doesReelExist("R1"));
  EXPECT_TRUE(manager().doesReelExist("R1"));
}

static_assert(!std::is_copy_constructible_v<ReelDbManager> && !std::is_copy_assignable_v<ReelDbManager>,
              "the host would not know the copy");

} // namespace reeldb_tests
