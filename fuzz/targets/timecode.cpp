// SPDX-License-Identifier: Apache-2.0
//
// A label, a rate and numbers of any bytes: what converts comes back the same, and what does not says why and changes
// nothing.
#include <algorithm>
#include <cstdint>

#include "lists/frame_rate.h"
#include "support/bytes.h"
#include "support/check.h"

namespace {

using namespace reeldb_fuzz;
using namespace reeldb::lists;

constexpr std::int64_t untouched = 4711;

std::int64_t number(Bytes& bytes)
{
  std::uint64_t bits = 0;
  for (int i = 0; i < 8; ++i)
    bits = bits << 8 | bytes.byte();
  return static_cast<std::int64_t>(bits);
}

/// The label with plain separators and two digits of frames, if they suffice: as labelOf() writes it, drop frame aside.
std::string plain(std::string label, const std::string& like)
{
  for (const std::size_t at : {2U, 5U, 8U})
    label[at] = like[at];
  if (label.size() > like.size())
    label.erase(9, 1);
  if (label.size() < like.size())
    label.insert(9, "0");
  return label;
}

void requireLabel(const std::string& label, Counting counting)
{
  std::int64_t frame = untouched;
  const std::string fault = frameOf(label, counting, frame);
  if (!fault.empty()) {
    requireEqual(frame, untouched, "frame of a label that is refused,", label);
    return;
  }
  require(frame >= 0 && frame < framesADay(counting), "frame", frame, "of", label, "is not in the day");
  std::string back;
  requireEqual(labelOf(frame, counting, back), std::string(), "why frame", frame, "has no label");
  requireEqual(back, plain(label, back), "label of", frame);
}

void requireFrame(std::int64_t frame, Counting counting)
{
  std::string label = "untouched";
  const std::string fault = labelOf(frame, counting, label);
  const bool isThere =
      frame >= 0 && (!counting.dropFrame || hasDropFrame(counting.rate)) && frame < framesADay(counting);
  requireEqual(fault.empty(), isThere, "whether frame", frame, "has a label");
  if (!isThere) {
    requireEqual(label, std::string("untouched"), "label of a frame that is refused");
    return;
  }
  std::int64_t back = untouched;
  requireEqual(frameOf(label, counting, back), std::string(), "why", label, "has no frame");
  requireEqual(back, frame, "frame of", label);
}

void requireTime(std::int64_t frames, FrameRate rate)
{
  Seconds seconds = {untouched, untouched};
  if (!secondsOf(frames, rate, seconds).empty()) {
    require(seconds == Seconds{untouched, untouched}, "a time that is refused was changed");
    return;
  }
  require(seconds.denominator > 0, "denominator", seconds.denominator);
  std::int64_t back = untouched;
  requireEqual(framesIn(seconds, rate, back), std::string(), "why the time of", frames, "frames has none");
  requireEqual(back, frames, "frames of the time of", frames);
}

void requireSeconds(Seconds seconds, FrameRate rate)
{
  std::int64_t frames = untouched;
  if (!framesIn(seconds, rate, frames).empty()) {
    requireEqual(frames, untouched, "frames of a time that is refused");
    return;
  }
  Seconds back;
  if (!secondsOf(frames, rate, back).empty())
    return;
  // The same fraction: back is in lowest terms, so both are multiples of it.
  requireEqual(seconds.denominator % back.denominator, std::int64_t{0}, "rest of the denominator");
  requireEqual(seconds.numerator / (seconds.denominator / back.denominator), back.numerator, "numerator");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
  Bytes bytes(data, size);
  const FrameRate rate = frameRates.at(bytes.below(static_cast<unsigned>(frameRates.size())));
  const Counting counting = {rate, bytes.flag()};
  const std::int64_t one = number(bytes), other = number(bytes);
  const std::string text = bytes.text(16);
  requireLabel(text, counting);
  requireFrame(one, counting);
  requireFrame(one % std::int64_t{11'000'000}, counting); // a few more than any day has
  requireTime(one, rate);
  requireSeconds({one, other}, rate);
  if (const std::optional<FrameRate> named = rateOf(text))
    require(rateOf(rateName(*named)) == named, "the name of", text, "is another rate's");
  return 0;
}
