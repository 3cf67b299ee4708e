// SPDX-License-Identifier: Apache-2.0
//
// Splits the bytes of a fuzzer, from the front, into numbers and texts. Behind the end, numbers are 0 and texts empty.
#ifndef REELDB_FUZZ_SUPPORT_BYTES_H
#define REELDB_FUZZ_SUPPORT_BYTES_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>

namespace reeldb_fuzz {

class Bytes {
public:
  Bytes(const std::uint8_t* data, std::size_t size) : at_(data), end_(data + size) {}

  bool empty() const { return at_ == end_; }

  unsigned byte() { return empty() ? 0U : *at_++; }

  /// A number below @p count.
  unsigned below(unsigned count) { return byte() % count; }

  bool flag() { return (byte() & 1U) != 0; }

  /// A text of at most @p length bytes. It ends before a NUL, as the library's texts do.
  std::string text(std::size_t length)
  {
    const auto* const first = at_;
    at_ += std::min(length, static_cast<std::size_t>(end_ - at_));
    return std::string(first, std::find(first, at_, std::uint8_t{0}));
  }

private:
  const std::uint8_t* at_;
  const std::uint8_t* end_;
};

/// All of a fuzzer's bytes.
inline std::string allOf(const std::uint8_t* data, std::size_t size)
{
  return std::string(data, data + size);
}

/// The text up to the first NUL, where the library's texts end.
inline std::string upToNul(const std::string& text)
{
  return text.substr(0, text.find('\0'));
}

} // namespace reeldb_fuzz

#endif
