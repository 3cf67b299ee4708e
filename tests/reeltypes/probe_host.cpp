// SPDX-License-Identifier: Apache-2.0
//
// Replaces the host operations that the library calls while it is loaded, and prints the calls. The data directory is
// the text of PROBE_DIRECTORY. With PROBE_PARAMETERS set, it reads the channels of a type with these parameters while
// the catalogue is being made.
#include <cstdio>
#include <cstdlib>

#include "ReelTypeManager.h"
#include "host/config.h"
#include "host/text.h"

const char* config_string(const char* key, const char* defaultValue)
{
  std::printf("config_string(%s,%s)\n", key, defaultValue);
  return defaultValue;
}

LightweightString<wchar_t> getDeviceDataDirectory(iSettings::eType type)
{
  std::printf("getDeviceDataDirectory(%d)\n", static_cast<int>(type));
  if (const char* const params = std::getenv("PROBE_PARAMETERS")) {
    theReelTypeManager()->add("early", params);
    std::printf("%d video, %d audio\n", theReelTypeManager()->numVideoChans("early"),
                theReelTypeManager()->numAudioChans("early"));
  }
  return fromUTF8(std::getenv("PROBE_DIRECTORY"));
}
