// SPDX-License-Identifier: Apache-2.0
#include "faults/fault_kinds.h"

#include <array>

#include "host/codes.h"
#include "host/edit.h"
#include "host/os.h"
#include "host/projdb.h"
#include "support/library_fixture.h"

namespace reeldb_tests {

namespace {

class FaultKinds : public LibraryTest {
protected:
  /// What comes of four attempts, of which the last is made when the fault is gone: "x" each that failed, "+" the
  /// others. An attempt says whether it was met without a fault.
  template <class Attempt>
  std::string attempts(FaultKind& kind, const Attempt& attempt)
  {
    std::array<char, 4> met{}; // nothing that asks for memory
    kind.arm(1);
    for (char& one : met) {
      if (&one == &met.back())
        kind.disarm();
      try {
        one = attempt() ? '+' : 'x';
      } catch (...) {
        one = 'x';
      }
    }
    EXPECT_TRUE(kind.happened());
    return {met.begin(), met.end()};
  }

  template <class Kind, class Attempt>
  void expectOnceAndStaying(const Attempt& attempt)
  {
    Kind once(Fault::Once), staying(Fault::Stays);
    if (const std::string why = once.unavailable(); !why.empty())
      GTEST_SKIP() << why;
    EXPECT_EQ(attempts(once, attempt), "x+++");
    EXPECT_EQ(attempts(staying, attempt), "xxx+");
  }
};

TEST_F(FaultKinds, HostCallThrowsOnceOrUntilItIsDisarmed)
{
  expectOnceAndStaying<HostCallThrows>([] { return EditManager::getProjdb() != nullptr; });
}

TEST_F(FaultKinds, ClosingALogDoesNotThrowWhileEveryHostCallDoes)
{
  EditPtr edit;
  edit.i_open(addLog(9, "A"), codes::openAsUsual);
  HostCallThrows kind(Fault::Stays);
  kind.arm(1);
  EXPECT_THROW(EditManager::getProjdb(), std::exception);
  EXPECT_NO_THROW(edit.i_close());
  kind.disarm();
}

TEST_F(FaultKinds, LogRefusesToOpenOnceOrUntilItIsDisarmed)
{
  const Cookie log = addLog(9, "A");
  expectOnceAndStaying<OpeningRefused>([&] {
    EditPtr edit;
    edit.i_open(log, codes::openAsUsual);
    const bool opened = static_cast<bool>(edit);
    edit.i_close();
    return opened;
  });
}

TEST_F(FaultKinds, AllocationFailsOnceOrUntilItIsDisarmed)
{
  expectOnceAndStaying<AllocationFails>([] {
    void* const p = OS()->allocator().allocate(8);
    OS()->allocator().release(p);
    return p != nullptr;
  });
}

TEST_F(FaultKinds, CallFromTheLibraryThrowsOnceOrUntilItIsDisarmed)
{
  expectOnceAndStaying<LibraryCallThrows>([this] { return manager().getCookieFromReelId("A").compare({}) == 0; });
}

} // namespace

} // namespace reeldb_tests
