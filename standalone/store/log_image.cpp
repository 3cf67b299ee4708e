// SPDX-License-Identifier: Apache-2.0
#include "store/log_image.h"

#include <algorithm>
#include <charconv>
#include <climits>
#include <system_error>

#include "store/log_fields.h"

namespace reelhost {

namespace {

/// A text ends at its first NUL, as it does for all readers of a log.
void append(std::string& image, std::string_view text)
{
  image.append(text.substr(0, text.find('\0'))).push_back('\0');
}

/// Takes the texts off the front of an image. After a failure every further text is empty.
class Texts {
public:
  explicit Texts(std::string_view image) : rest_(image) {}

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

  bool failed() const { return failed_; }

private:
  std::string_view rest_;
  bool failed_ = false;
};

} // namespace

std::string imageOf(const StoredLog& log)
{
  std::string image(reinterpret_cast<const char*>(log.uuid.data()), log.uuid.size());
  append(image, std::string_view(&log.kind, 1));
  for (const int number : {static_cast<int>(log.tag), log.type, log.imported ? 1 : 0, log.entireMedium ? 1 : 0})
    append(image, std::to_string(number));
  append(image, log.name);
  append(image, log.reelType);
  append(image, std::to_string(log.videoChannels));
  append(image, std::to_string(log.audioChannels));
  return image + imageOf(arranged(log.fields));
}

std::optional<StoredLog> logFrom(std::int64_t number, std::string_view image)
{
  StoredLog log;
  if (image.size() < log.uuid.size())
    return {};
  log.number = number;
  std::copy_n(image.begin(), log.uuid.size(), log.uuid.begin());
  Texts texts(image.substr(log.uuid.size()));
  const std::string_view kind = texts.next();
  log.kind = kind.size() == 1 ? kind[0] : 'I';
  log.tag = static_cast<std::uint16_t>(texts.number(0, 65535));
  log.type = texts.number();
  log.imported = texts.number(0, 1) != 0;
  log.entireMedium = texts.number(0, 1) != 0;
  log.name = texts.next();
  log.reelType = texts.next();
  log.videoChannels = texts.number();
  log.audioChannels = texts.number();
  log.fields = texts.pairs();
  if (texts.failed() || log.kind == 'I')
    return {};
  return log;
}

std::string imageOf(const KeyValues& values)
{
  std::string image;
  for (const auto& [key, value] : values) {
    append(image, key);
    append(image, value);
  }
  return image;
}

std::optional<KeyValues> valuesFrom(std::string_view image)
{
  Texts texts(image);
  KeyValues values = texts.pairs();
  if (texts.failed())
    return {};
  return values;
}

} // namespace reelhost
