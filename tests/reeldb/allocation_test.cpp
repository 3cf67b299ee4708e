// SPDX-License-Identifier: Apache-2.0
//
// The allocation operators. The program defines its own OS(), so a case sees each request to the host. The operators
// are looked up in the library itself, because in a sanitizer build the program calls those of the sanitizer.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>
#include <stdexcept>
#include <string>
#include <utility>

#include "ReelDbVersion.h"
#include "host/os.h"

namespace {

/// Counts the calls. Refuses as many of them as the test demands.
class CountingAllocator final : public iAllocator {
public:
  void* allocate(std::size_t size) override
  {
    ++allocateCalls;
    lastSize = size;
    if (refusals > 0) {
      --refusals;
      return nullptr;
    }
    return std::malloc(size ? size : 1);
  }

  void release(void* p) override
  {
    ++releaseCalls;
    lastReleased = p;
    std::free(p);
  }

  std::atomic<std::int64_t> allocateCalls{0}, releaseCalls{0};
  std::atomic<int> refusals{0};
  std::atomic<std::size_t> lastSize{0};
  std::atomic<void*> lastReleased{nullptr};
};

class Counts final : public iRefCountService {
public:
  void incRef(int* address) override { ++std::atomic_ref(*address); }
  int decRef(int* address) override { return --std::atomic_ref(*address); }
};

class Services final : public iHostServices {
public:
  CountingAllocator& allocator() override { return allocator_; }
  iRefCountService& refCounts() override { return counts_; }

private:
  CountingAllocator allocator_;
  Counts counts_;
};

constinit Services services;

CountingAllocator& host()
{
  return services.allocator();
}

// --- Before main and after it --------------------------------------------------------------------

/// Whether the program's allocations arrive at the host.
bool programAllocatesAtTheHost();

/// Allocates and frees memory, and counts before and after. Returns whether both requests arrived.
bool hostSeesOne()
{
  const std::int64_t allocated = host().allocateCalls, released = host().releaseCalls;
  void* const p = ::operator new(321);
  const bool asked = host().allocateCalls == allocated + 1 && host().lastSize == 321;
  ::operator delete(p);
  return asked && host().releaseCalls == released + 1;
}

struct BeforeMain {
  BeforeMain() : seen(hostSeesOne()) {}
  bool seen;
} const beforeMain;

bool checkAtExit = false;

void atExit()
{
  if (!checkAtExit)
    return;
  const bool asExpected = hostSeesOne() == programAllocatesAtTheHost();
  _exit(asExpected ? 42 : 43);
}

/// Registered before any constructor of the program has run, so it runs after their destructors.
[[gnu::constructor(101)]] void registerAtExit()
{
  std::atexit(atExit);
}

// --- The library's own operators -----------------------------------------------------------------

void* ownSymbol(const char* name)
{
  static void* const library = dlopen(REELDB_SONAME, RTLD_NOLOAD | RTLD_NOW);
  void* const symbol = library ? dlsym(library, name) : nullptr;
  Dl_info where{};
  if (!symbol || !dladdr(symbol, &where) || !std::strstr(where.dli_fname, REELDB_SONAME))
    throw std::logic_error(std::string(name) + ": not found in " REELDB_SONAME);
  return symbol;
}

template <class Function>
Function* own(const char* name)
{
  return reinterpret_cast<Function*>(ownSymbol(name));
}

using New = void*(std::size_t);
using NewOrNull = void*(std::size_t, const std::nothrow_t&);
using Delete = void(void*);
using DeleteOfNewOrNull = void(void*, const std::nothrow_t&);

New* const plainNew = own<New>("_Znwm");
New* const arrayNew = own<New>("_Znam");
NewOrNull* const plainNewOrNull = own<NewOrNull>("_ZnwmRKSt9nothrow_t");
NewOrNull* const arrayNewOrNull = own<NewOrNull>("_ZnamRKSt9nothrow_t");
Delete* const plainDelete = own<Delete>("_ZdlPv");
Delete* const arrayDelete = own<Delete>("_ZdaPv");
DeleteOfNewOrNull* const plainDeleteOrNull = own<DeleteOfNewOrNull>("_ZdlPvRKSt9nothrow_t");
DeleteOfNewOrNull* const arrayDeleteOrNull = own<DeleteOfNewOrNull>("_ZdaPvRKSt9nothrow_t");

bool programAllocatesAtTheHost()
{
  return dlsym(RTLD_DEFAULT, "_Znwm") == ownSymbol("_Znwm");
}

/// The requests that arrived at the host while something ran.
struct Arrived {
  std::int64_t allocations, releases;
  bool operator==(const Arrived&) const = default;
};

template <class Action>
Arrived arrivedDuring(Action&& action)
{
  const std::int64_t allocated = host().allocateCalls, released = host().releaseCalls;
  std::forward<Action>(action)();
  return {host().allocateCalls - allocated, host().releaseCalls - released};
}

std::ostream& operator<<(std::ostream& out, const Arrived& arrived)
{
  return out << arrived.allocations << " allocations, " << arrived.releases << " releases";
}

constexpr Arrived oneAllocation{1, 0}, oneRelease{0, 1}, nothing{0, 0};

/// For calls of one operator by another, which in a sanitizer build are calls of the sanitizer's operators.
#define REQUIRE_PROGRAM_TO_ALLOCATE_AT_THE_HOST()                                                                      \
  if (!programAllocatesAtTheHost())                                                                                    \
  GTEST_SKIP() << "another operator new comes before the library's in this program"

int roomMade = 0;

/// Thrown by a new handler. It has no members, so throwing it needs no memory that the host could refuse.
struct NoRoomToMake {};

class Allocation : public ::testing::Test {
protected:
  ~Allocation() override
  {
    std::set_new_handler(nullptr);
    host().refusals = 0;
    roomMade = 0;
  }
};

} // namespace

iHostServices* OS()
{
  return &services;
}

TEST_F(Allocation, LibraryIsLinkedBeforeTheStandardLibrary)
{
  EXPECT_STREQ(reeldbDllVersionStr(), "14.0.0.0");
#ifndef REELDB_SANITIZED // a sanitizer's operators come first
  EXPECT_TRUE(programAllocatesAtTheHost());
#endif
}

TEST_F(Allocation, NewAllocatesAtTheHostAndDeleteReleasesThere)
{
  void* p = nullptr;
  EXPECT_EQ(arrivedDuring([&] { p = plainNew(1234); }), oneAllocation);
  EXPECT_EQ(host().lastSize, 1234U);
  ASSERT_NE(p, nullptr);
  std::memset(p, 0x55, 1234);
  EXPECT_EQ(arrivedDuring([&] { plainDelete(p); }), oneRelease);
  EXPECT_EQ(host().lastReleased, p);
}

TEST_F(Allocation, NothingIsAllocatedAsOneByte)
{
  void* const p = plainNew(0);
  EXPECT_EQ(host().lastSize, 1U);
  void* const q = plainNew(0);
  EXPECT_NE(p, nullptr);
  EXPECT_NE(p, q);
  plainDelete(p);
  plainDelete(q);
}

TEST_F(Allocation, DeleteOfNullDoesNothing)
{
  EXPECT_EQ(arrivedDuring([] {
              plainDelete(nullptr);
              arrayDelete(nullptr);
              plainDeleteOrNull(nullptr, std::nothrow);
              arrayDeleteOrNull(nullptr, std::nothrow);
            }),
            nothing);
}

TEST_F(Allocation, NewThrowsWhenTheHostHasNoMemory)
{
  host().refusals = 1;
  EXPECT_THROW(plainNew(8), std::bad_alloc);
  EXPECT_EQ(host().refusals, 0);
}

TEST_F(Allocation, NewCallsTheNewHandlerAndThenTheHostAgain)
{
  std::set_new_handler([] { ++roomMade; });
  host().refusals = 3;
  void* p = nullptr;
  EXPECT_EQ(arrivedDuring([&] { p = plainNew(8); }), (Arrived{4, 0}));
  EXPECT_EQ(roomMade, 3);
  EXPECT_NE(p, nullptr);
  plainDelete(p);
}

TEST_F(Allocation, NewGivesUpWhenTheNewHandlerTakesItselfAway)
{
  std::set_new_handler([] {
    ++roomMade;
    std::set_new_handler(nullptr);
  });
  host().refusals = 100;
  EXPECT_EQ(arrivedDuring([] { EXPECT_THROW(plainNew(8), std::bad_alloc); }), (Arrived{2, 0}));
  EXPECT_EQ(roomMade, 1);
}

TEST_F(Allocation, NewPassesTheExceptionOfTheNewHandler)
{
  std::set_new_handler([] { throw NoRoomToMake(); });
  host().refusals = 1;
  EXPECT_THROW(plainNew(8), NoRoomToMake);
}

TEST_F(Allocation, OtherFormsPairUpInEveryBuild)
{
  for (New* const form : {plainNew, arrayNew}) {
    char* const p = static_cast<char*>(form(64));
    std::memset(p, 0x55, 64);
    form == plainNew ? plainDelete(p) : arrayDelete(p);
  }
  for (NewOrNull* const form : {plainNewOrNull, arrayNewOrNull}) {
    void* const p = form(64, std::nothrow);
    ASSERT_NE(p, nullptr);
    std::memset(p, 0x55, 64);
    form == plainNewOrNull ? plainDeleteOrNull(p, std::nothrow) : arrayDeleteOrNull(p, std::nothrow);
  }
}

TEST_F(Allocation, OtherFormsForwardToThePlainOnes)
{
  REQUIRE_PROGRAM_TO_ALLOCATE_AT_THE_HOST();
  std::array<void*, 3> p{};
  const auto expectAllocation = [](std::size_t size, const auto& action) {
    EXPECT_EQ(arrivedDuring(action), oneAllocation);
    EXPECT_EQ(host().lastSize, size);
  };
  expectAllocation(101, [&] { p[0] = arrayNew(101); });
  expectAllocation(102, [&] { p[1] = plainNewOrNull(102, std::nothrow); });
  expectAllocation(103, [&] { p[2] = arrayNewOrNull(103, std::nothrow); });

  EXPECT_EQ(arrivedDuring([&] { arrayDelete(p[0]); }), oneRelease);
  EXPECT_EQ(host().lastReleased, p[0]);
  EXPECT_EQ(arrivedDuring([&] { plainDeleteOrNull(p[1], std::nothrow); }), oneRelease);
  EXPECT_EQ(host().lastReleased, p[1]);
  EXPECT_EQ(arrivedDuring([&] { arrayDeleteOrNull(p[2], std::nothrow); }), oneRelease);
  EXPECT_EQ(host().lastReleased, p[2]);
}

TEST_F(Allocation, ArrayFormThrowsAndNothrowFormsReturnNullWhenTheHostHasNoMemory)
{
  REQUIRE_PROGRAM_TO_ALLOCATE_AT_THE_HOST();
  host().refusals = 3;
  EXPECT_THROW(arrayNew(8), std::bad_alloc);
  EXPECT_EQ(plainNewOrNull(8, std::nothrow), nullptr);
  EXPECT_EQ(arrayNewOrNull(8, std::nothrow), nullptr);
  EXPECT_EQ(host().refusals, 0);
}

TEST_F(Allocation, NothrowFormsReturnNullWhateverTheNewHandlerThrows)
{
  REQUIRE_PROGRAM_TO_ALLOCATE_AT_THE_HOST();
  std::set_new_handler([] { throw NoRoomToMake(); });
  host().refusals = 2;
  EXPECT_EQ(plainNewOrNull(8, std::nothrow), nullptr);
  EXPECT_EQ(arrayNewOrNull(8, std::nothrow), nullptr);
}

TEST_F(Allocation, ProgramAndStandardLibraryAllocateAtTheHost)
{
  REQUIRE_PROGRAM_TO_ALLOCATE_AT_THE_HOST();
  EXPECT_TRUE(hostSeesOne());
  EXPECT_EQ((Arrived{1, 1}), arrivedDuring([] {
              std::string text;
              text.reserve(1000); // allocated inside the standard library
            }));
}

TEST_F(Allocation, SizedDeleteEndsAtTheHost)
{
  REQUIRE_PROGRAM_TO_ALLOCATE_AT_THE_HOST();
  void* const p = ::operator new(77);
  EXPECT_EQ(arrivedDuring([&] { ::operator delete(p, std::size_t(77)); }), oneRelease);
  EXPECT_EQ(host().lastReleased, p);
  void* const q = ::operator new[](77);
  EXPECT_EQ(arrivedDuring([&] { ::operator delete[](q, std::size_t(77)); }), oneRelease);
  EXPECT_EQ(host().lastReleased, q);
}

TEST_F(Allocation, AlignedFormsAreAPairOfTheirOwn)
{
  void* p = nullptr;
  EXPECT_EQ(arrivedDuring([&] {
              p = ::operator new(100, std::align_val_t(256));
              ASSERT_NE(p, nullptr);
              std::memset(p, 0x55, 100);
              ::operator delete(p, std::align_val_t(256));
            }),
            nothing);
  EXPECT_EQ(reinterpret_cast<std::uintptr_t>(p) % 256, 0U);
}

TEST_F(Allocation, WorksBeforeTheConstructorsOfTheProgram)
{
  EXPECT_EQ(programAllocatesAtTheHost(), beforeMain.seen);
}

TEST_F(Allocation, WorksAfterTheDestructorsOfTheProgram)
{
  EXPECT_EXIT(
      {
        checkAtExit = true;
        std::exit(0);
      },
      ::testing::ExitedWithCode(42), "");
}
