// SPDX-License-Identifier: Apache-2.0
//
// The texts that images are made of, each followed by a byte 0. Any thread.
#ifndef REELDB_STORE_IMAGE_TEXTS_H
#define REELDB_STORE_IMAGE_TEXTS_H

#include <charconv>
#include <climits>
#include <string>
#include <string_view>
#include <system_error>

#include "reelhost/store.h"

namespace reelhost {

/// A text ends at its first NUL, as it does for all readers of a log.
inline void appendText(std::string& image, std::string_view text)
{
  image.append(text.substr(0, text.find('\0'))).push_back('\0');
}

/// Takes the texts off the front of an image. After a failure every further text is empty.
class ImageTexts {
public:
  explicit ImageTexts(std::string_view image) : rest_(image) {}

  std::string_view next()
  {
    const std::size_t end = rest_.find('\0');
    if (end == std::string_view::npos) {
      failed_ = true;
      rest_ = {};
      return {};
    }
    const std::string_view text = rest_.substr(0, end);
    rest_.remove_prefix(end + 1);
    return text;
  }

  int number(int lowest = INT_MIN, int highest = INT_MAX)
  {
    const std::string_view text = next();
    int value = lowest;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size() || value < lowest || value > highest)
      failed_ = true;
    return value;
  }

  KeyValues pairs()
  {
    KeyValues values;
    while (!failed_ && !rest_.empty()) {
      const std::string_view key = next();
      values.emplace_back(key, next());
    }
    return values;
  }

  bool empty() const { return rest_.empty(); }
  std::string_view rest() const { return rest_; }
  bool failed() const { return failed_; }

private:
  std::string_view rest_;
  bool failed_ = false;
};

} // namespace reelhost

#endif
