// SPDX-License-Identifier: Apache-2.0
//
// A timeline of any bytes: every text is clean, other line ends and encodings change nothing, and the clips can be
// written as a cut list from which the same clips are read.
#include <cstdint>

#include "lists/properties.h"
#include "support/bytes.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
  using namespace reeldb_fuzz;
  const std::string bytes = allOf(data, size);
  const std::optional<reeldb::lists::List> list = readList(bytes);
  if (!list || list->format != reeldb::lists::Format::Xmeml) // the others have targets of their own
    return 0;
  requireSoundTimeline(*list, bytes);
  requireSameInOtherForms(*list, bytes);
  requireTimelineComesBack(*list);
  return 0;
}
