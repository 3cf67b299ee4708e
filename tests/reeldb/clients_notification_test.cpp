// SPDX-License-Identifier: Apache-2.0
#include <memory>
#include <stdexcept>
#include <utility>

#include "support/library_fixture.h"

namespace reeldb_tests {

namespace {

using Client = RecordingClient;

class Notification : public LibraryTest {
protected:
  Heard heard_;
};

} // namespace

// --- The set of reels ----------------------------------------------------------------------------

TEST_F(Notification, ReelSetChangeWithoutClientsStillRebuildsTheList)
{
  const Cookie reel = addLog(9, "R1");
  ASSERT_EQ(manager().reelList.count(), 0);
  ASSERT_EQ(manager().clients.count(), 0U);

  const auto calls = operationsOf([&] { manager().informReelDbChanged("R1"); });

  EXPECT_EQ(calls, (Heard{"EditManager::getProjdb", "projdb::search"}));
  ASSERT_EQ(manager().reelList.count(), 1);
  EXPECT_EQ(text(reel), text(manager().reelList[0]));
}

TEST_F(Notification, ReelSetChangeNotifiesEveryClientInOrderOfRegistration)
{
  Client a(heard_, "a"), b(heard_, "b"), c(heard_, "c");

  manager().informReelDbChanged("R1");

  EXPECT_EQ(heard_, (Heard{"a:dbC(R1)", "b:dbC(R1)", "c:dbC(R1)"}));
}

TEST_F(Notification, ReelSetChangeRebuildsBeforeItNotifies)
{
  addLog(9, "R1");
  Client a(heard_);
  int reelsSeen = -1;
  std::size_t callsBefore = 0;
  a.onDbChanged = [&](const std::string&) {
    reelsSeen = manager().reelList.count();
    callsBefore = journal().operations().size();
  };

  const auto calls = operationsOf([&] { manager().informReelDbChanged("R1"); });

  EXPECT_EQ(reelsSeen, 1);
  EXPECT_EQ(callsBefore, 2U);
  EXPECT_EQ(calls.size(), 2U);
}

TEST_F(Notification, ReelSetChangeOfTheWholeDatabaseNotifiesWithTheEmptyIdentifier)
{
  Client a(heard_);

  manager().informReelDbChanged("");

  EXPECT_EQ(heard_, (Heard{"dbC()"}));
}

TEST_F(Notification, ReelSetChangeDoesNotDistinguishTheReelOfInterest)
{
  Client a(heard_, "", "R1");

  manager().informReelDbChanged("R1");

  EXPECT_EQ(heard_, (Heard{"dbC(R1)"}));
}

TEST_F(Notification, HeldReelSetChangeRebuildsAndNotifiesNobody)
{
  for (const int hold : {1, 2, -1}) {
    Client a(heard_, "", "R1");
    addLog(9, "R1");
    const int before = manager().reelList.count();
    manager().notifyHoldCount = hold;

    const auto calls = operationsOf([&] { manager().informReelDbChanged("R1"); });

    EXPECT_EQ(calls, (Heard{"EditManager::getProjdb", "projdb::search"})) << hold;
    EXPECT_EQ(manager().reelList.count(), before + 1) << hold;
    EXPECT_EQ(heard_, Heard{}) << hold;
    EXPECT_EQ(manager().notifyHoldCount, hold);
  }
}

TEST_F(Notification, ReelSetChangeWithoutDatabaseKeepsTheListAndNotifies)
{
  addReel("R1");
  Client a(heard_);
  script().noDatabase(true);

  const auto calls = operationsOf([&] { manager().informReelDbChanged("R1"); });

  EXPECT_EQ(calls, (Heard{"EditManager::getProjdb"}));
  EXPECT_EQ(manager().reelList.count(), 1);
  EXPECT_EQ(heard_, (Heard{"dbC(R1)"}));
}

// --- One record ----------------------------------------------------------------------------------

TEST_F(Notification, RecordChangeNotifiesEveryClientAndTheInterestedOneFirst)
{
  Client a(heard_, "a", "R1"), b(heard_, "b"), c(heard_, "c", "R1"), d(heard_, "d", "R2");

  manager().informReelDbRecChanged("R1");

  EXPECT_EQ(heard_, (Heard{"a:our()", "a:some(R1)", "b:some(R1)", "c:our()", "c:some(R1)", "d:some(R1)"}));
}

TEST_F(Notification, RecordChangeOfTheEmptyIdentifierNotifiesNobody)
{
  Client a(heard_), b(heard_, "", "");

  manager().informReelDbRecChanged("");
  manager().informReelDbRecChanged(LightweightString<char>());

  EXPECT_EQ(heard_, Heard{});
}

TEST_F(Notification, RecordChangeMakesNoHostCall)
{
  addLog(9, "R1");
  Client a(heard_, "", "R1");

  EXPECT_EQ(operationsOf([&] { manager().informReelDbRecChanged("R1"); }), Heard{});
  EXPECT_EQ(manager().reelList.count(), 0) << "the list is not rebuilt";
  EXPECT_EQ(heard_, (Heard{"our()", "some(R1)"}));
}

TEST_F(Notification, HeldRecordChangeNotifiesNobody)
{
  Client a(heard_, "", "R1");
  for (const int hold : {1, 2, -1}) {
    manager().notifyHoldCount = hold;
    manager().informReelDbRecChanged("R1");
    EXPECT_EQ(heard_, Heard{}) << hold;
  }
}

TEST_F(Notification, ReelOfInterestIsMatchedLetterForLetter)
{
  Client a(heard_, "", "ABC");

  manager().informReelDbRecChanged("ABC");
  manager().informReelDbRecChanged("abc");
  manager().informReelDbRecChanged("AB");
  manager().informReelDbRecChanged("ABC ");

  EXPECT_EQ(heard_, (Heard{"our()", "some(ABC)", "some(abc)", "some(AB)", "some(ABC )"}));
}

TEST_F(Notification, ReelOfInterestIsReadWhenItsClientIsVisited)
{
  Client a(heard_, "a"), b(heard_, "b");
  a.onSome = [&](const std::string& id) { b.setReelIdOfInterest(id.c_str()); };

  manager().informReelDbRecChanged("R1");

  EXPECT_EQ(heard_, (Heard{"a:some(R1)", "b:our()", "b:some(R1)"}));
}

// --- Handlers that change the state during a notification: the same for both kinds of change -----

namespace {

enum class Kind { ReelSet, Record };

class Reentrancy : public Notification, public ::testing::WithParamInterface<Kind> {
protected:
  void inform(const char* id)
  {
    if (GetParam() == Kind::ReelSet)
      manager().informReelDbChanged(id);
    else
      manager().informReelDbRecChanged(id);
  }

  /// What the client does at its first notification.
  void once(Client& client, std::function<void()> action)
  {
    auto handler = [done = std::make_shared<bool>(false), action = std::move(action)](const std::string&) {
      if (!std::exchange(*done, true))
        action();
    };
    client.onDbChanged = handler;
    client.onSome = handler;
  }

  static std::string told(const char* client, const char* id)
  {
    return std::string(client) + (GetParam() == Kind::ReelSet ? ":dbC(" : ":some(") + id + ")";
  }

  Heard tellings(std::initializer_list<const char*> clients, const char* id = "R1")
  {
    Heard wanted;
    for (const char* const client : clients)
      wanted.push_back(told(client, id));
    return wanted;
  }
};

} // namespace

INSTANTIATE_TEST_SUITE_P(Of, Reentrancy, ::testing::Values(Kind::ReelSet, Kind::Record),
                         [](const auto& suite) { return suite.param == Kind::ReelSet ? "ReelSet" : "Record"; });

TEST_P(Reentrancy, ClientMadeInAHandlerIsNotifiedInTheSamePass)
{
  Client a(heard_, "a"), b(heard_, "b");
  std::unique_ptr<Client> c;
  once(a, [&] { c = std::make_unique<Client>(heard_, "c"); });

  inform("R1");

  EXPECT_EQ(heard_, tellings({"a", "b", "c"}));
}

TEST_P(Reentrancy, ClientMadeInTheLastHandlerIsNotifiedInTheSamePass)
{
  Client a(heard_, "a");
  std::unique_ptr<Client> b;
  once(a, [&] { b = std::make_unique<Client>(heard_, "b"); });

  inform("R1");

  EXPECT_EQ(heard_, tellings({"a", "b"}));
}

TEST_P(Reentrancy, ClientThatUnregistersItselfMakesTheNextOneMissThePass)
{
  Client a(heard_, "a"), b(heard_, "b"), c(heard_, "c");
  once(a, [&] { manager().deRegisterClient(&a); });

  inform("R1");
  EXPECT_EQ(heard_, tellings({"a", "c"}));

  heard_.clear();
  inform("R1");
  EXPECT_EQ(heard_, tellings({"b", "c"}));
}

TEST_P(Reentrancy, ClientThatUnregistersAnEarlierOneMakesTheNextOneMissThePass)
{
  Client a(heard_, "a"), b(heard_, "b"), c(heard_, "c"), d(heard_, "d");
  once(b, [&] { manager().deRegisterClient(&a); });

  inform("R1");

  EXPECT_EQ(heard_, tellings({"a", "b", "d"}));
}

TEST_P(Reentrancy, ClientUnregisteredBeforeItsTurnIsNotNotified)
{
  Client a(heard_, "a"), b(heard_, "b"), c(heard_, "c"), d(heard_, "d");
  once(a, [&] { manager().deRegisterClient(&c); });

  inform("R1");

  EXPECT_EQ(heard_, tellings({"a", "b", "d"}));
}

TEST_P(Reentrancy, ClientEndedBeforeItsTurnIsNotNotified)
{
  Client a(heard_, "a");
  auto b = std::make_unique<Client>(heard_, "b");
  Client c(heard_, "c");
  once(a, [&] { b.reset(); });

  inform("R1");

  EXPECT_EQ(heard_, tellings({"a", "c"}));
}

TEST_P(Reentrancy, ClientThatEndsItselfMakesTheNextOneMissThePass)
{
  auto a = std::make_unique<Client>(heard_, "a");
  Client b(heard_, "b"), c(heard_, "c");
  once(*a, [&] { a.reset(); });

  inform("R1");
  EXPECT_EQ(heard_, tellings({"a", "c"}));

  heard_.clear();
  inform("R1");
  EXPECT_EQ(heard_, tellings({"b", "c"}));
}

TEST_P(Reentrancy, ClientThatUnregistersEverybodyEndsThePass)
{
  Client a(heard_, "a"), b(heard_, "b"), c(heard_, "c");
  once(b, [&] {
    for (Client* const client : {&a, &b, &c})
      manager().deRegisterClient(client);
  });

  inform("R1");

  EXPECT_EQ(heard_, tellings({"a", "b"}));
  EXPECT_EQ(manager().clients.count(), 0U);
}

TEST_P(Reentrancy, ClientThatRegistersAgainIsNotifiedTwiceInOnePass)
{
  Client a(heard_, "a"), b(heard_, "b");
  once(a, [&] { manager().registerClient(&a); });

  inform("R1");
  manager().deRegisterClient(&a);

  EXPECT_EQ(heard_, tellings({"a", "b", "a"}));
}

TEST_P(Reentrancy, NotificationCausedByAHandlerReachesAllBeforeThePassContinues)
{
  Client a(heard_, "a"), b(heard_, "b");
  once(a, [&] { inform("R2"); });

  inform("R1");

  EXPECT_EQ(heard_, (Heard{told("a", "R1"), told("a", "R2"), told("b", "R2"), told("b", "R1")}));
}

TEST_P(Reentrancy, HoldBegunInAHandlerStopsLaterPassesOnly)
{
  Client a(heard_, "a"), b(heard_, "b");
  once(a, [&] {
    manager().notifyHoldCount = 1;
    inform("R2");
  });

  inform("R1");

  EXPECT_EQ(heard_, tellings({"a", "b"}));
}

TEST_P(Reentrancy, HoldEndedInAHandlerLetsTheNestedNotificationThrough)
{
  Client a(heard_, "a"), b(heard_, "b");
  once(a, [&] {
    manager().notifyHoldCount = 1;
    manager().notifyHoldCount = 0;
    inform("R2");
  });

  inform("R1");

  EXPECT_EQ(heard_.size(), 4U);
}

TEST_P(Reentrancy, ExceptionOfAHandlerEndsThePassAndTheNextOneIsWhole)
{
  Client a(heard_, "a"), b(heard_, "b");
  once(a, [&] { throw std::domain_error("a handler"); });

  EXPECT_THROW(inform("R1"), std::domain_error);
  EXPECT_EQ(heard_, tellings({"a"}));
  EXPECT_EQ(manager().notifyHoldCount, 0);

  heard_.clear();
  inform("R2");
  EXPECT_EQ(heard_, tellings({"a", "b"}, "R2"));
}

// --- Handlers that make reels --------------------------------------------------------------------

TEST_F(Notification, ReelMadeWhileTheReelSetIsNotifiedIsNotifiedFirst)
{
  Client a(heard_, "a"), b(heard_, "b");
  bool found = false;
  a.onDbChanged = [&](const std::string& id) {
    if (id == "R1")
      found = manager().createNewReel("R2", -1).valid() && manager().doesReelExist("R2");
  };

  manager().informReelDbChanged("R1");

  EXPECT_TRUE(found);
  EXPECT_EQ(heard_, (Heard{"a:dbC(R1)", "a:some(R2)", "b:some(R2)", "a:dbC(R2)", "b:dbC(R2)", "b:dbC(R1)"}));
}

TEST_F(Notification, ReelMadeWhileAnotherIsBeingMadeIsWhole)
{
  Client a(heard_, "a"), b(heard_, "b");
  a.onSome = [&](const std::string& id) {
    if (id == "R1")
      manager().createNewReel("R2", -1);
  };

  manager().createNewReel("R1", -1);

  EXPECT_EQ(heard_, (Heard{"a:some(R1)", "a:some(R2)", "b:some(R2)", "a:dbC(R2)", "b:dbC(R2)", "b:some(R1)",
                           "a:dbC(R1)", "b:dbC(R1)"}));
  EXPECT_TRUE(manager().doesReelExist("R1"));
  EXPECT_TRUE(manager().doesReelExist("R2"));
}

TEST_F(Notification, FieldWrittenInAHandlerIsNotifiedBeforeThePassContinues)
{
  ReelDbRec rec = addReel("R1");
  Client a(heard_, "a", "R1"), b(heard_, "b");
  a.onDbChanged = [&](const std::string&) { rec.recInhibit(true); };

  manager().informReelDbChanged("");

  EXPECT_EQ(heard_, (Heard{"a:dbC()", "a:our()", "a:some(R1)", "b:some(R1)", "b:dbC()"}));
}

} // namespace reeldb_tests
