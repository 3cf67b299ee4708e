// SPDX-License-Identifier: Apache-2.0
//
// A program in which what the library asks for while it is loaded goes wrong, as its environment says:
// DEFAULT_TYPE and DATA_DIRECTORY are the answers (no DEFAULT_TYPE: null), THROW_IN names the host call that throws,
// FAIL_ALLOCATION counts the allocations from the library's first question on. It prints what the library then holds;
// its exit code is 3 while the allocation that is to fail is still to come.
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "ReelDbManager.h"
#include "ReelTypeManager.h"
#include "host/text.h"
#include "support/counting_services.h"

namespace {

/// Holds nothing, so that throwing it asks for no memory.
struct LoadFault {};

void meet(const char* operation)
{
  const char* const chosen = std::getenv("THROW_IN");
  if (chosen && std::strcmp(chosen, operation) == 0)
    throw LoadFault();
}

} // namespace

const char* config_string(const char*, const char*)
{
  if (const char* const n = std::getenv("FAIL_ALLOCATION"))
    reeldb_tests::failAllocation(std::atoll(n));
  meet("config_string");
  return std::getenv("DEFAULT_TYPE");
}

LightweightString<wchar_t> getDeviceDataDirectory(iSettings::eType)
{
  meet("getDeviceDataDirectory");
  return fromUTF8(std::getenv("DATA_DIRECTORY"));
}

int vorn_printf(const char* format, ...)
{
  meet("vorn_printf");
  std::va_list arguments;
  va_start(arguments, format);
  const int length = std::vfprintf(stderr, format, arguments);
  va_end(arguments);
  return length;
}

int main()
{
  const bool isStillToCome = reeldb_tests::allocationWillFail();
  reeldb_tests::failAllocation(0);
  std::printf("%s\n", ReelDbManager::systemWideDefaultReelType_.c_str());
  const AssocListRep& types = *theReelTypeManager()->rep();
  for (unsigned i = 0; i < types.count(); ++i)
    std::printf("%s|%s\n", types.entry(i)->key.c_str(), types.entry(i)->value.c_str());
  return isStillToCome ? 3 : 0;
}
