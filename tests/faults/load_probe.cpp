// SPDX-License-Identifier: Apache-2.0
//
// A program in which the host calls of the library fail while it is loaded, as the environment says: DEFAULT_TYPE and
// DATA_DIRECTORY are results (no DEFAULT_TYPE: null), THROW_IN names the host call that throws, FAIL_ALLOCATION is the
// number of the failing allocation, counted from the library's first host call. It prints the catalogue of the library.
// Its exit code is 3 if the failing allocation was not reached.
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "ReelDbManager.h"
#include "ReelTypeManager.h"
#include "host/text.h"
#include "support/counting_services.h"

namespace {

/// Has no members, so that throwing it allocates no memory for them.
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
