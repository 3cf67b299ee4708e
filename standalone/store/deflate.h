// SPDX-License-Identifier: Apache-2.0
//
// Bytes in the zlib format. Any thread.
#ifndef REELDB_STORE_DEFLATE_H
#define REELDB_STORE_DEFLATE_H

#include <optional>
#include <string>
#include <string_view>

namespace reelhost {

std::string deflated(std::string_view bytes);
/// Empty if @p deflated is not whole, or not in the zlib format, or followed by anything.
std::optional<std::string> inflated(std::string_view deflated);

} // namespace reelhost

#endif
