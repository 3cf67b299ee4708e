// SPDX-License-Identifier: Apache-2.0
//
// Bytes in the zlib format. Any thread.
#ifndef REELDB_STORE_DEFLATE_H
#define REELDB_STORE_DEFLATE_H

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace reelhost {

std::string deflated(std::string_view bytes);
/// More than any list becomes: a few bytes of a hostile file must not use up the memory.
constexpr std::size_t largestInflated = std::size_t{512} << 20;
/// Empty if @p deflated is not whole, or not in the zlib format, or followed by anything, or if it is more than
/// @p largest bytes.
std::optional<std::string> inflated(std::string_view deflated, std::size_t largest = largestInflated);

} // namespace reelhost

#endif
