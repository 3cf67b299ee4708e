// SPDX-License-Identifier: Apache-2.0
//
// Clients that end, or leave, while a notification pass is at them.
#include <memory>
#include <stdexcept>
#include <utility>

#include "support/library_fixture.h"

namespace reeldb_tests {

namespace {

using Client = RecordingClient;

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
  EXPECT_EQ(2U, manager().clients.count());
}

TEST_F(ClientPasses, LastClientThatEndsInItsOwnHandlerEndsThePass)
{
  auto a = interested("a");
  a->onOur = [&] { a.reset(); };

  changeRecord();

  EXPECT_EQ(heard_, (Heard{"a:our()"}));
  EXPECT_EQ(0U, manager().clients.count());
}

TEST_F(ClientPasses, ClientThatOnlyUnregistersInItsOwnHandlerIsStillToldTheRest)
{
  auto a = interested("a"), b = interested("b"), c = interested("c");
  a->onOur = [&] { manager().deRegisterClient(a.get()); };

  changeRecord();

  EXPECT_EQ(heard_, (Heard{"a:our()", "a:some(R1)", "c:our()", "c:some(R1)"}));
}

TEST_F(ClientPasses, ClientPutInThePlaceOfOneThatEndedIsToldInItsTurnOnly)
{
  auto a = interested("a");
  std::unique_ptr<Client> next;
  a->onOur = [&] {
    // What is needed after the end of a, and with it of this handler, is kept beside it.
    Heard& heard = heard_;
    std::unique_ptr<Client>& place = next;
    a.reset();
    place = std::make_unique<Client>(heard, "next", "R1"); // may well get the address that has just become free
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

  // The end of a moves the others up: the nested pass misses c, the outer one b.
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
  EXPECT_EQ(0U, manager().clients.count());
}

TEST_F(ClientPasses, PassesAtDifferentClientsEachForgetTheirOwn)
{
  auto a = interested("a"), b = interested("b"), c = interested("c");
  bool nested = false;
  a->onOur = [&] {
    if (!std::exchange(nested, true))
      changeRecord();
  };
  b->onOur = [&] { b.reset(); }; // in the nested pass; the outer one is at a

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

  // No pass is left that would take note of the end of a, or call b on its behalf.
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
  EXPECT_EQ(0U, manager().clients.count());
  changeRecord();
  EXPECT_EQ(heard_, (Heard{"a:our()", "a:some(R1)"}));
}

} // namespace reeldb_tests
