// SPDX-License-Identifier: Apache-2.0
//
// JSON of this program of any bytes: every text is clean, each reel has one row, and the same text in UTF-16 and with
// other line ends is the same list.
#include <cstdint>

#include "lists/properties.h"
#include "support/bytes.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
  using namespace reeldb_fuzz;
  const std::string bytes = allOf(data, size);
  const std::optional<reeldb::lists::List> list = readList(bytes);
  if (!list || list->format != reeldb::lists::Format::Json) // the others have targets of their own
    return 0;
  requireSoundTable(*list, bytes);
  requireSameInOtherForms(*list, bytes);
  return 0;
}
