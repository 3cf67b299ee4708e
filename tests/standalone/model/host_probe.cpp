// SPDX-License-Identifier: Apache-2.0
//
// Prints the host's results before main, where a library that is being loaded calls it: one result per line. Then, in
// main, prints the result of facility(), and of starting up without the library.
#include <cstdio>

#include "host/action.h"
#include "host/config.h"
#include "host/text.h"
#include "reelhost/host.h"

namespace {

__attribute__((constructor(101))) void askBeforeAnythingElse()
{
  static const char* const found = config_string("default_reel_type", "<default>");
  std::printf("%s\n", found);
  std::printf("%s\n", toUTF8(getDeviceDataDirectory(iSettings::eType(1))).c_str());
  co_pid();
  SystemCfg::theConfig().get("reel_userfield0");
}

} // namespace

int main()
{
  try {
    std::printf("%s\n", reelhost::facility().directory().c_str());
  } catch (const reelhost::Error& error) {
    std::printf("%s\n", error.what());
  }
  reelhost::startUp();
  std::printf("%d\n", co_pid());
}
