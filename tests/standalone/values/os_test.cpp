// SPDX-License-Identifier: Apache-2.0
#include "host/os.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <thread>
#include <vector>

#include "host/containers.h"
#include "host/cookie.h"
#include "host/lwstring.h"

namespace {

/// Uses each service. Returns whether all worked.
bool valuesWork()
{
  void* p = OS()->allocator().allocate(24);
  if (!p)
    return false;
  std::memset(p, 0xAA, 24);
  OS()->allocator().release(p);

  LightweightString<char> text("A001");
  const LightweightString<char> copy = text;
  text += 7;
  CookieVec logs;
  logs.add(Cookie("P0001000", false));
  AssocList list(new AssocListRep(false));
  list["Tape"].value = "x";
  StringList names;
  names.add(copy);
  return text.length() == 5 && logs.count() == 1 && list.rep()->find("Tape") && list.at(1).key.empty() &&
         names.contains("A001");
}

bool workedBeforeConstructors = false;

/// Runs before any constructor of this program and of the shared libraries.
void beforeConstructors()
{
  workedBeforeConstructors = valuesWork();
}
__attribute__((section(".preinit_array"), used)) void (*const preinit)() = beforeConstructors;

/// Lives around main.
struct Around {
  bool worked = valuesWork();
  LightweightString<char> text = "made before main";
  CookieVec logs;
  Around() { logs.add(Cookie("E1", false)); }
  ~Around()
  {
    text.append(", changed after main");
    logs.add(logs[0]);
    if (!valuesWork() || std::strcmp(text.c_str(), "made before main, changed after main") != 0 || logs.count() != 2)
      std::_Exit(99);
  }
};
Around around;

} // namespace

TEST(HostServices, BeforeAnyConstructorTheyWork)
{
  EXPECT_TRUE(workedBeforeConstructors);
}

TEST(HostServices, InAConstructorBeforeMainTheyWork)
{
  EXPECT_TRUE(around.worked);
  EXPECT_STREQ(around.text.c_str(), "made before main");
  EXPECT_EQ(around.logs.count(), 1);
}

TEST(HostServices, AtExitAndInDestructorsAfterMainTheyWork)
{
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  const auto leave = [] {
    std::atexit([] {
      std::fputs(valuesWork() ? "worked at exit" : "failed at exit", stderr);
      std::fflush(stderr);
    });
    std::exit(0); // runs ~Around too, which leaves with 99 when something fails
  };
  EXPECT_EXIT(leave(), testing::ExitedWithCode(0), "worked at exit");
}

TEST(HostServices, EveryCallGivesTheSameObject)
{
  ASSERT_NE(OS(), nullptr);
  EXPECT_EQ(OS(), OS());
}

TEST(Allocator, AnySizeIsAlignedForAnyObject)
{
  for (const std::size_t size : {0U, 1U, 7U, 16U, 100U, 5000U}) {
    void* p = OS()->allocator().allocate(size);
    ASSERT_NE(p, nullptr) << size;
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(p) % alignof(std::max_align_t), 0U) << size;
    std::memset(p, 0x5A, size);
    OS()->allocator().release(p);
  }
}

TEST(Allocator, MemoryIsThatOfMallocAndFree)
{
  std::free(OS()->allocator().allocate(10));
  OS()->allocator().release(std::malloc(10));
}

TEST(RefCounts, UpAndDownGiveWhatRemains)
{
  int count = 1;
  OS()->refCounts().incRef(&count);
  EXPECT_EQ(count, 2);
  EXPECT_EQ(OS()->refCounts().decRef(&count), 1);
  EXPECT_EQ(OS()->refCounts().decRef(&count), 0);
  EXPECT_EQ(count, 0);
}

TEST(RefCounts, ManyThreadsLoseNoCount)
{
  constexpr int threads = 4, rounds = 20000;
  int count = 1;
  std::vector<std::thread> running;
  for (int t = 0; t < threads; ++t)
    running.emplace_back([&count] {
      for (int i = 0; i < rounds; ++i) {
        OS()->refCounts().incRef(&count);
        OS()->allocator().release(OS()->allocator().allocate(8));
        if (i % 2)
          OS()->refCounts().decRef(&count);
      }
    });
  for (std::thread& thread : running)
    thread.join();
  EXPECT_EQ(count, 1 + threads * rounds / 2);
}
