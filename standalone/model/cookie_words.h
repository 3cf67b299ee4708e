// SPDX-License-Identifier: Apache-2.0
#ifndef REELHOST_MODEL_COOKIE_WORDS_H
#define REELHOST_MODEL_COOKIE_WORDS_H

#include <cstdint>
#include <cstring>
#include <type_traits>

#include "host/cookie.h"

namespace reelhost::model {

/// A Cookie as machine words, for comparing and hashing. The parts of a Cookie are private, but it starts with the
/// sixteen bytes of its UUID, followed by its tag and its kind.
struct CookieWords {
  std::uint64_t first, second;
  std::uint32_t rest; ///< tag and kind

  explicit CookieWords(const Cookie& cookie) : rest(0)
  {
    const auto* const bytes = reinterpret_cast<const unsigned char*>(&cookie);
    std::memcpy(&first, bytes, sizeof first);
    std::memcpy(&second, bytes + sizeof first, sizeof second);
    std::memcpy(&rest, bytes + sizeof first + sizeof second, 3);
  }

  bool operator==(const CookieWords&) const = default;
};

static_assert(std::is_standard_layout_v<Cookie> && sizeof(Cookie) == 20 && sizeof(Zr::UUID) == 16);

} // namespace reelhost::model

#endif
