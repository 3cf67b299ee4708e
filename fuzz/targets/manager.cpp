// SPDX-License-Identifier: Apache-2.0
//
// A sequence of operations on the manager, its records, its clients and the project. The result of each is compared
// with a model.
#include <cstdint>

#include "manager/driver.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
  reeldb_fuzz::Driver(reeldb_fuzz::Bytes(data, size)).run();
  return 0;
}
