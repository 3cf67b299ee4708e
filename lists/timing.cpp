// SPDX-License-Identifier: Apache-2.0
#include "lists/timing.h"

#include <algorithm>

namespace reeldb::lists {

std::optional<Warning> contradiction(const List& list, FrameRate project)
{
  const Timing& timing = list.timing;
  const std::string name = rateName(project);
  const auto other =
      std::find_if(timing.rates.begin(), timing.rates.end(), [&](const Proof& proof) { return proof.says != name; });
  if (other != timing.rates.end())
    return Warning{other->line, other->text, "frame rate " + other->says + " (the project has " + name + ")"};
  if (timing.mostFrames && timing.frames >= project.frames)
    return Warning{timing.mostFrames->line, timing.mostFrames->text,
                   timing.mostFrames->says + " counts more than the " + std::to_string(project.frames) +
                       " frames per second of the project (kept as it is)"};
  if (timing.dropFrame && !hasDropFrame(project))
    return Warning{timing.dropFrame->line, timing.dropFrame->text,
                   "drop frame (the project has " + name + " frames per second, without drop frame)"};
  return std::nullopt;
}

} // namespace reeldb::lists
