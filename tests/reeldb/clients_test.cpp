// SPDX-License-Identifier: Apache-2.0
#include "ReelDbClient.h"

#include <memory>
#include <new>
#include <stdexcept>
#include <type_traits>
#include <utility>

#include "support/counting_services.h"
#include "support/hosts_own.h"
#include "support/library_fixture.h"

namespace reeldb_tests {

namespace {

bool textsCanBeAssigned = true;

} // namespace

using Text = LightweightString<char>;

// The program's own operator replaces the host's. A host may need memory to assign a text.
Text& assign(Text* to, const Text& from) asm("_ZN17LightweightStringIcEaSERKS0_");

Text& assign(Text* to, const Text& from)
{
  static const auto hosts = hostsOwn<Text&(Text*, const Text&)>("_ZN17LightweightStringIcEaSERKS0_");
  if (!textsCanBeAssigned)
    throw std::bad_alloc();
  return hosts(to, from);
}

namespace {

using Client = RecordingClient;

class Clients : public LibraryTest {
protected:
  /// The registered clients, in order.
  std::vector<ArrayRec*> registered()
  {
    std::vector<ArrayRec*> all;
    for (unsigned i = 0; i < manager().clients.count(); ++i)
      all.push_back(manager().clients.at(i));
    return all;
  }

  Heard heard_;
};

using Registered = std::vector<ArrayRec*>;

/// Claims to equal everything.
class AlikeClient : public RecordingClient {
public:
  using RecordingClient::RecordingClient;
  int compare(const ArrayRec&) const override { return 0; }
  bool operator==(const ArrayRec&) const override { return true; }
  bool operator!=(const ArrayRec&) const override { return false; }
};

/// Sorts itself by its name, backwards.
class SortingClient : public RecordingClient {
public:
  SortingClient(Heard& heard, std::string name) : RecordingClient(heard, name), sortName(std::move(name)) {}
  int compare(const ArrayRec& other) const override
  {
    return static_cast<const SortingClient&>(other).sortName.compare(sortName);
  }
  const std::string sortName;
};

/// Stores the reel of interest itself, so that the manager does not get it.
class SecretiveClient : public RecordingClient {
public:
  using RecordingClient::RecordingClient;
  void setReelIdOfInterest(LightweightString<char> id) override { kept = id; }
  LightweightString<char> kept;
};

} // namespace

TEST_F(Clients, RegisterWhenMadeAndUnregisterWhenEnded)
{
  ASSERT_EQ(registered(), Registered{});
  {
    Client a(heard_);
    EXPECT_EQ(registered(), (Registered{&a}));
    auto b = std::make_unique<Client>(heard_, "b", "R1");
    Client c(heard_);
    EXPECT_EQ(registered(), (Registered{&a, b.get(), &c}));
    b.reset();
    EXPECT_EQ(registered(), (Registered{&a, &c}));
  }
  EXPECT_EQ(registered(), Registered{});
}

TEST_F(Clients, ThatCannotKeepTheirReelForLackOfMemoryAreNotRegistered)
{
  const LightweightString<char> id("R1");
  textsCanBeAssigned = false;
  try {
    const ReelDbClient a(id);
  } catch (const std::bad_alloc&) {
  }
  textsCanBeAssigned = true;
  EXPECT_EQ(registered(), Registered{});
}

TEST_F(Clients, MakingAndEndingOneMakesNoHostCallAndNotifiesNobody)
{
  Client a(heard_);
  EXPECT_EQ(operationsOf([&] { Client b(heard_, "", "R1"); }), Heard{});
  EXPECT_EQ(heard_, Heard{});
}

TEST_F(Clients, FollowNoReelAtFirst)
{
  Client a(heard_);
  manager().informReelDbRecChanged("R1");
  EXPECT_EQ(heard_, (Heard{"some(R1)"}));
}

TEST_F(Clients, FollowTheReelTheyAreMadeWith)
{
  Client a(heard_, "", "R1");
  manager().informReelDbRecChanged("R1");
  EXPECT_EQ(heard_, (Heard{"our()", "some(R1)"}));
}

TEST_F(Clients, FollowTheReelTheyAreGiven)
{
  Client a(heard_, "", "R1");
  a.setReelIdOfInterest("R2");
  manager().informReelDbRecChanged("R1");
  manager().informReelDbRecChanged("R2");
  EXPECT_EQ(heard_, (Heard{"some(R1)", "our()", "some(R2)"}));

  heard_.clear();
  a.setReelIdOfInterest("");
  manager().informReelDbRecChanged("R2");
  EXPECT_EQ(heard_, (Heard{"some(R2)"}));
}

TEST_F(Clients, KeepTheReelTheyAreGivenAgain)
{
  const LightweightString<char> id("R1");
  Client a(heard_);
  a.setReelIdOfInterest(id);
  const std::int64_t held = countsUp() - countsDown();

  a.setReelIdOfInterest(id);

  EXPECT_EQ(countsUp() - countsDown() - held, 0);
  manager().informReelDbRecChanged("R1");
  EXPECT_EQ(heard_, (Heard{"our()", "some(R1)"}));
}

TEST_F(Clients, ShareTheTextOfTheReelAndLetItGo)
{
  const auto held = [] { return countsUp() - countsDown(); };
  const LightweightString<char> id("R1");
  ReelDbClient first; // makes room among the clients
  const std::int64_t allocatedBefore = allocations(), heldBefore = held();
  std::int64_t allocatedThen, heldThen;
  {
    ReelDbClient a(id);
    allocatedThen = allocations();
    heldThen = held();
  }
  const std::int64_t heldAfter = held();

  EXPECT_EQ(allocatedThen - allocatedBefore, 0);
  EXPECT_EQ(heldThen - heldBefore, 1);
  EXPECT_EQ(heldAfter - heldBefore, 0);
}

TEST_F(Clients, WithTheirOwnPlaceForTheInterestNeverMatch)
{
  SecretiveClient a(heard_);
  a.setReelIdOfInterest("R1");

  manager().informReelDbRecChanged("R1");
  EXPECT_EQ(text(a.kept), "R1");
  EXPECT_EQ(heard_, (Heard{"some(R1)"}));

  a.ReelDbClient::setReelIdOfInterest("R1");
  heard_.clear();
  manager().informReelDbRecChanged("R1");
  EXPECT_EQ(heard_, (Heard{"our()", "some(R1)"}));
}

TEST_F(Clients, OfTheBaseClassDoNothing)
{
  ReelDbClient plain(LightweightString<char>("R1"));

  EXPECT_EQ(operationsOf([&] { manager().informReelDbRecChanged("R1"); }), Heard{});
  EXPECT_EQ(operationsOf([&] { manager().informReelDbChanged("R1"); }),
            (Heard{"EditManager::getProjdb", "projdb::search"}));
  EXPECT_EQ(registered(), (Registered{&plain}));
}

TEST_F(Clients, KeepTheirReelWhateverTheBaseClassIsNotifiedOf)
{
  Client a(heard_, "", "R1");
  a.ReelDbClient::reelDbChanged("R2");
  a.ReelDbClient::ourReelDbRecChanged();
  a.ReelDbClient::someReelDbRecChanged("R2");

  manager().informReelDbRecChanged("R1");
  EXPECT_EQ(heard_, (Heard{"our()", "some(R1)"}));
}

TEST_F(Clients, RegisteredTwiceAreNotifiedTwice)
{
  Client a(heard_, "a", "R1"), b(heard_, "b");
  manager().registerClient(&a);
  EXPECT_EQ(registered(), (Registered{&a, &b, &a}));

  manager().informReelDbChanged("R1");
  manager().informReelDbRecChanged("R1");
  EXPECT_EQ(heard_, (Heard{"a:dbC(R1)", "b:dbC(R1)", "a:dbC(R1)", "a:our()", "a:some(R1)", "b:some(R1)", "a:our()",
                           "a:some(R1)"}));

  manager().deRegisterClient(&a);
  EXPECT_EQ(registered(), (Registered{&b, &a})) << "the first entry goes, and only that one";
}

TEST_F(Clients, RegisteredTwiceLeaveOneEntryBehindWhenTheyEnd)
{
  ReelDbClient* const client = new ReelDbClient;
  manager().registerClient(client);
  delete client;
  EXPECT_EQ(registered(), Registered{client});
  manager().deRegisterClient(client);
  EXPECT_EQ(registered(), Registered{});
}

TEST_F(Clients, ThatAreNotRegisteredCanBeUnregistered)
{
  Client a(heard_, "a"), b(heard_, "b");
  manager().deRegisterClient(&a);
  ASSERT_EQ(registered(), (Registered{&b}));

  manager().deRegisterClient(&a);
  manager().deRegisterClient(nullptr);

  EXPECT_EQ(registered(), (Registered{&b}));
}

TEST_F(Clients, AreNotEndedByBeingUnregistered)
{
  auto a = std::make_unique<Client>(heard_, "a");
  manager().deRegisterClient(a.get());

  a->reelDbChanged("still here");
  EXPECT_EQ(heard_, (Heard{"a:dbC(still here)"}));
}

TEST_F(Clients, AreDistinguishedByAddressOnly)
{
  AlikeClient a(heard_, "a"), b(heard_, "b"), c(heard_, "c");
  EXPECT_EQ(registered(), (Registered{&a, &b, &c}));

  manager().deRegisterClient(&b);
  EXPECT_EQ(registered(), (Registered{&a, &c}));
  {
    AlikeClient d(heard_, "d");
    manager().deRegisterClient(&b);
    EXPECT_EQ(registered(), (Registered{&a, &c, &d}));
  }
  EXPECT_EQ(registered(), (Registered{&a, &c}));
}

TEST_F(Clients, StayInOrderOfRegistrationWhateverTheirAddresses)
{
  std::vector<std::unique_ptr<Client>> made;
  Registered inOrderMade;
  for (int i = 0; i < 40; ++i) {
    made.push_back(std::make_unique<Client>(heard_));
    inOrderMade.push_back(made.back().get());
    if (i % 7 == 3) { // an address that is used again
      inOrderMade.erase(inOrderMade.begin());
      made.erase(made.begin());
    }
  }
  EXPECT_EQ(registered(), inOrderMade);
}

TEST_F(Clients, TakeTheirPlaceInARegistryThatSomebodyMarkedSorted)
{
  ReelDbManager second;
  second.clients.sorted(true);
  SortingClient a(heard_, "a"), b(heard_, "b");
  second.registerClient(&a);
  second.registerClient(&b);

  second.informReelDbRecChanged("R1");

  EXPECT_EQ(heard_, (Heard{"b:some(R1)", "a:some(R1)"}));
}

// --- A second manager ----------------------------------------------------------------------------

TEST_F(Clients, GoToTheManagerOfTheProcess)
{
  ReelDbManager second;
  Client a(heard_, "a");
  EXPECT_EQ(second.clients.count(), 0U);
  EXPECT_EQ(registered(), (Registered{&a}));

  second.informReelDbChanged("R1");
  second.informReelDbRecChanged("R1");
  EXPECT_EQ(heard_, Heard{}) << "each manager notifies its own clients";
}

TEST_F(Clients, OfASecondManagerAreNotifiedByThatOneOnly)
{
  ReelDbManager second;
  Client a(heard_, "a");
  manager().deRegisterClient(&a);
  second.registerClient(&a);

  manager().informReelDbChanged("R1");
  manager().informReelDbRecChanged("R1");
  EXPECT_EQ(heard_, Heard{});

  second.informReelDbChanged("R2");
  second.informReelDbRecChanged("R3");
  EXPECT_EQ(heard_, (Heard{"a:dbC(R2)", "a:some(R3)"}));

  second.deRegisterClient(&a);
  EXPECT_EQ(second.clients.count(), 0U);
}

TEST_F(Clients, AreNotifiedOfRecordsOnlyByTheManagerOfTheProcess)
{
  addReel("R1");
  ReelDbManager second;
  second.buildReelList();
  Client ours(heard_, "ours", "R1"), theirs(heard_, "theirs");
  manager().deRegisterClient(&theirs);
  second.registerClient(&theirs);

  second.getReelInfo("R1").recInhibit(true);

  EXPECT_EQ(heard_, (Heard{"ours:our()", "ours:some(R1)"}));
  second.deRegisterClient(&theirs);
}

TEST_F(Clients, HoldOfASecondManagerIsItsOwn)
{
  ReelDbManager second;
  second.notifyHoldCount = 1;
  Client a(heard_);

  manager().informReelDbRecChanged("R1");

  EXPECT_EQ(heard_, (Heard{"some(R1)"}));
}

// --- Clients that end, or leave, while a notification pass is at them ----------------------------

namespace {

class ClientPasses : public LibraryTest {
protected:
  std::unique_ptr<Client> interested(const char* name) { return std::make_unique<Client>(heard_, name, "R1"); }
  void changeRecord() { manager().informReelDbRecChanged("R1"); }

  Heard heard_;
};

} // namespace

TEST_F(ClientPasses, ClientThatEndsInItsOwnHandlerIsNotCalledAgain)
{
  auto a = interested("a"), b = interested("b"), c = interested("c");
  a->onOur = [&] { a.reset(); };

  changeRecord();

  EXPECT_EQ(heard_, (Heard{"a:our()", "c:our()", "c:some(R1)"}));
  EXPECT_EQ(manager().clients.count(), 2U);
}

TEST_F(ClientPasses, LastClientThatEndsInItsOwnHandlerEndsThePass)
{
  auto a = interested("a");
  a->onOur = [&] { a.reset(); };

  changeRecord();

  EXPECT_EQ(heard_, (Heard{"a:our()"}));
  EXPECT_EQ(manager().clients.count(), 0U);
}

TEST_F(ClientPasses, ClientThatOnlyUnregistersInItsOwnHandlerIsStillNotifiedOfTheRest)
{
  auto a = interested("a"), b = interested("b"), c = interested("c");
  a->onOur = [&] { manager().deRegisterClient(a.get()); };

  changeRecord();

  EXPECT_EQ(heard_, (Heard{"a:our()", "a:some(R1)", "c:our()", "c:some(R1)"}));
}

TEST_F(ClientPasses, ClientInThePlaceOfAnEndedOneIsNotifiedInItsTurnOnly)
{
  auto a = interested("a");
  std::unique_ptr<Client> next;
  a->onOur = [&] {
    // The values that are needed after the end of a, which ends this handler, are copied.
    Heard& heard = heard_;
    std::unique_ptr<Client>& place = next;
    a.reset();
    place = std::make_unique<Client>(heard, "next", "R1"); // may get the address that has just become free
  };

  changeRecord();

  EXPECT_EQ(heard_, (Heard{"a:our()"})) << "the new one stands where the pass has been";
  changeRecord();
  EXPECT_EQ(heard_, (Heard{"a:our()", "next:our()", "next:some(R1)"}));
}

TEST_F(ClientPasses, AnotherClientEndingDoesNotCostTheCurrentOneItsCall)
{
  auto a = interested("a"), b = interested("b"), c = interested("c");
  a->onOur = [&] { c.reset(); };

  changeRecord();

  EXPECT_EQ(heard_, (Heard{"a:our()", "a:some(R1)", "b:our()", "b:some(R1)"}));
}

TEST_F(ClientPasses, ClientThatEndsInANestedPassIsNotCalledByTheOuterOne)
{
  auto a = interested("a"), b = interested("b");
  int depth = 0;
  a->onOur = [&] {
    if (++depth == 1)
      changeRecord();
    else
      a.reset();
  };

  changeRecord();

  EXPECT_EQ(heard_, (Heard{"a:our()", "a:our()"})) << "b stands where both passes have been";
}

TEST_F(ClientPasses, ClientEndedByAnotherInANestedPassIsNotCalledByTheOuterOne)
{
  auto a = interested("a"), b = interested("b"), c = interested("c");
  bool nested = false;
  a->onOur = [&] {
    if (!std::exchange(nested, true))
      changeRecord();
  };
  b->onSome = [&](const std::string&) { a.reset(); };

  changeRecord();

  // The end of a moves the others up, so the nested pass misses c, and the outer pass misses b.
  EXPECT_EQ(heard_, (Heard{"a:our()", "a:our()", "a:some(R1)", "b:our()", "b:some(R1)", "c:our()", "c:some(R1)"}));
}

TEST_F(ClientPasses, ClientThatEndsThreePassesDeepIsLeftByAllOfThem)
{
  auto a = interested("a");
  auto b = interested("b");
  int depth = 0;
  a->onOur = [&] {
    if (++depth < 3)
      changeRecord();
    else
      b.reset(), a.reset();
  };

  changeRecord();

  EXPECT_EQ(heard_, (Heard{"a:our()", "a:our()", "a:our()"}));
  EXPECT_EQ(manager().clients.count(), 0U);
}

TEST_F(ClientPasses, PassesAtDifferentClientsEachForgetTheirOwn)
{
  auto a = interested("a"), b = interested("b"), c = interested("c");
  bool nested = false;
  a->onOur = [&] {
    if (!std::exchange(nested, true))
      changeRecord();
  };
  b->onOur = [&] { b.reset(); }; // in the nested pass, while the outer pass is at a

  changeRecord();

  EXPECT_EQ(heard_, (Heard{"a:our()", "a:our()", "a:some(R1)", "b:our()", "a:some(R1)", "c:our()", "c:some(R1)"}));
}

TEST_F(ClientPasses, ReelSetChangeInsideARecordChangeLeavesTheEndedClientAlone)
{
  auto a = interested("a"), b = interested("b");
  a->onOur = [&] { manager().informReelDbChanged("R2"); };
  a->onDbChanged = [&](const std::string&) { a.reset(); };

  changeRecord();

  EXPECT_EQ(heard_, (Heard{"a:our()", "a:dbC(R2)"})) << "b stands where both passes have been";
}

TEST_F(ClientPasses, PassThatAnExceptionEndedIsForgotten)
{
  auto a = interested("a"), b = interested("b");
  a->onOur = [&] { throw std::domain_error("a handler"); };
  EXPECT_THROW(changeRecord(), std::domain_error);

  // No pass is left that could notice the end of a, or call b instead.
  a.reset();
  heard_.clear();
  changeRecord();
  EXPECT_EQ(heard_, (Heard{"b:our()", "b:some(R1)"}));
}

TEST_F(ClientPasses, ExceptionOfANestedPassLeavesTheOuterOneInPlace)
{
  auto a = interested("a"), b = interested("b"), c = interested("c");
  bool nested = false;
  a->onOur = [&] {
    if (std::exchange(nested, true))
      return;
    EXPECT_THROW(changeRecord(), std::domain_error);
    a.reset();
  };
  b->onSome = [](const std::string&) { throw std::domain_error("a handler"); };

  changeRecord();

  EXPECT_EQ(heard_, (Heard{"a:our()", "a:our()", "a:some(R1)", "b:our()", "b:some(R1)", "c:our()", "c:some(R1)"}));
}

TEST_F(ClientPasses, ClientsThatEndOutsideAnyPassNeedNone)
{
  auto a = interested("a");
  changeRecord();
  a.reset();
  EXPECT_EQ(manager().clients.count(), 0U);
  changeRecord();
  EXPECT_EQ(heard_, (Heard{"a:our()", "a:some(R1)"}));
}

static_assert(!std::is_copy_constructible_v<ReelDbClient> && !std::is_copy_assignable_v<ReelDbClient>,
              "a copy would not be registered");
static_assert(!std::is_convertible_v<LightweightString<char>, ReelDbClient>, "the constructor is explicit");

} // namespace reeldb_tests
