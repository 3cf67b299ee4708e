// SPDX-License-Identifier: Apache-2.0
//
// The library, loaded by hand into a program with a host, used and unloaded again. A program may unload it only if it
// has made no manager, because the host would still notify the manager of the project.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "ReelDbManager.h"
#include "ReelTypeManager.h"
#include "reelhost/facility.h"
#include "reelhost/host.h"
#include "support/counting_services.h"
#include "support/temp_folder.h"

namespace {

/// The host's memory and counts that are still in use.
std::int64_t inUse()
{
  return reeldb_tests::memoryInUse();
}

bool isLoaded()
{
  void* const library = dlopen(REELDB_LIBRARY, RTLD_NOLOAD | RTLD_NOW);
  if (library)
    dlclose(library);
  return library;
}

template <class T>
T* find(void* library, const char* name)
{
  T* const symbol = reinterpret_cast<T*>(dlsym(library, name));
  EXPECT_NE(symbol, nullptr) << name;
  return symbol;
}

} // namespace

TEST(Unload, ReleasesEverythingAndCanBeLoadedAgain)
{
  const reeldb_tests::TempFolder folder;
  const std::filesystem::path site = folder / "site";
  reelhost::NewFacility(site).keep();
  ASSERT_EQ(setenv("REELDB_FACILITY", site.c_str(), 1), 0);
  ASSERT_EQ(reelhost::facility().directory(), site);
  ASSERT_FALSE(isLoaded());

  for (int round = 0; round < 3; ++round) {
    const std::int64_t before = inUse();
    void* const library = dlopen(REELDB_LIBRARY, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(library, nullptr) << dlerror();

    EXPECT_STREQ(find<const char*()>(library, "_Z19reeldbDllVersionStrv")(), "14.0.0.0");
    const auto* const catalogue = find<ReelTypeManager>(library, "theReelTypeManager_");
    EXPECT_LT(0U, catalogue->rep()->count()) << "the facility's types are read";
    EXPECT_EQ(*find<ReelDbManager*>(library, "_ZN13ReelDbManager17theReelDbManager_E"), nullptr);
    EXPECT_LT(before, inUse());

    EXPECT_EQ(dlclose(library), 0);
    EXPECT_FALSE(isLoaded()) << "something keeps the library";
    EXPECT_EQ(inUse(), before) << "types or texts were left behind";
  }
}
