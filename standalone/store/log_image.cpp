// SPDX-License-Identifier: Apache-2.0
#include "store/log_image.h"

#include <algorithm>

#include "store/image_texts.h"
#include "store/log_fields.h"

namespace reelhost {

std::string imageOf(const StoredLog& log)
{
  std::string image(reinterpret_cast<const char*>(log.uuid.data()), log.uuid.size());
  appendText(image, std::string_view(&log.kind, 1));
  for (const int number : {static_cast<int>(log.tag), log.type, log.imported ? 1 : 0, log.entireMedium ? 1 : 0})
    appendText(image, std::to_string(number));
  appendText(image, log.name);
  appendText(image, log.reelType);
  appendText(image, std::to_string(log.videoChannels));
  appendText(image, std::to_string(log.audioChannels));
  return image + imageOf(arranged(log.fields));
}

std::optional<StoredLog> logFrom(std::int64_t number, std::string_view image)
{
  StoredLog log;
  if (image.size() < log.uuid.size())
    return {};
  log.number = number;
  std::copy_n(image.begin(), log.uuid.size(), log.uuid.begin());
  ImageTexts texts(image.substr(log.uuid.size()));
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
    appendText(image, key);
    appendText(image, value);
  }
  return image;
}

std::optional<KeyValues> valuesFrom(std::string_view image)
{
  ImageTexts texts(image);
  KeyValues values = texts.pairs();
  if (texts.failed())
    return {};
  return values;
}

} // namespace reelhost
