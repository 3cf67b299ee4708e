// SPDX-License-Identifier: Apache-2.0
#include "store/list_image.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>
#include <utility>

#include "store/deflate.h"
#include "store/image_texts.h"

namespace reelhost {

namespace {

// Texts that lie beside each other in a deflated text should be alike, so the events are kept by columns, and numbers
// that grow from event to event as differences. A column without any text is left out.

struct NumberColumn {
  const char* key;
  std::int64_t (*read)(const ListEvent&);
  void (*write)(ListEvent&, std::int64_t);
  bool grows;
};
constexpr std::array<NumberColumn, 8> numbers = {{
    {"shot", [](const ListEvent& event) { return event.shot; },
     [](ListEvent& event, std::int64_t number) { event.shot = number; }, true},
    {"line", [](const ListEvent& event) { return std::int64_t{event.line}; },
     [](ListEvent& event, std::int64_t number) { event.line = static_cast<int>(number); }, true},
    {"part", [](const ListEvent& event) { return std::int64_t{event.part} - 1; },
     [](ListEvent& event, std::int64_t number) { event.part = static_cast<int>(number + 1); }, false},
    {"reel_field", [](const ListEvent& event) { return std::int64_t{event.reelField}; },
     [](ListEvent& event, std::int64_t number) { event.reelField = static_cast<int>(number); }, true},
    {"video", [](const ListEvent& event) { return std::int64_t{event.clip.videoChannels}; },
     [](ListEvent& event, std::int64_t number) { event.clip.videoChannels = static_cast<int>(number); }, false},
    {"audio", [](const ListEvent& event) { return std::int64_t{event.clip.audioChannels}; },
     [](ListEvent& event, std::int64_t number) { event.clip.audioChannels = static_cast<int>(number); }, false},
    {dropFrameKey, [](const ListEvent& event) { return std::int64_t{event.clip.dropFrame}; },
     [](ListEvent& event, std::int64_t number) { event.clip.dropFrame = number != 0; }, false},
    {mayBeCutKey, [](const ListEvent& event) { return std::int64_t{event.clip.mayBeCut}; },
     [](ListEvent& event, std::int64_t number) { event.clip.mayBeCut = number != 0; }, false},
}};

struct TextColumn {
  const char* key;
  std::string ListEvent::*text;
};
constexpr std::array<TextColumn, 8> eventTexts = {{
    {"special", &ListEvent::special},
    {"number", &ListEvent::number},
    {"reel_text", &ListEvent::reelText},
    {"transition", &ListEvent::transition},
    {"duration", &ListEvent::duration},
    {"speed", &ListEvent::speed},
    {"speed_timecode", &ListEvent::speedTimecode},
    {"source_ids", &ListEvent::sourceIds},
}};
constexpr std::array<ShotText, 6> furtherTexts = {{
    {"name", &Material::name},
    {frameRateKey, &Material::frameRate},
    {ownNameKey, &Material::ownName},
    {sourceIdKey, &Material::sourceId},
    {cameraRollKey, &Material::cameraRoll},
    {soundOfKey, &Material::soundOf},
}};

/// Passes the key of each column of texts, and a function that returns the text of an event.
template <class Pass>
void forEachText(Pass pass)
{
  const auto passClip = [&](const ShotText& text) {
    pass(
        text.key, [text](auto& event) -> auto& { return event.clip.*text.text; });
  };
  for (const ShotText& text : shotTexts)
    passClip(text);
  for (const ShotText& text : furtherTexts)
    passClip(text);
  for (const TextColumn& text : eventTexts)
    pass(
        text.key, [text](auto& event) -> auto& { return event.*text.text; });
}

std::string numberText(std::int64_t number)
{
  return number == 0 ? std::string() : std::to_string(number);
}

std::optional<std::int64_t> numberFrom(std::string_view text)
{
  std::int64_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (!text.empty() && (error != std::errc() || end != text.data() + text.size()))
    return {};
  return number;
}

class Table {
public:
  explicit Table(const std::vector<ListEvent>& events) : events_(events)
  {
    appendText(text_, std::to_string(events.size()));
    firstColumn_ = text_.size();
  }

  /// @p read returns the text of one event.
  template <class Read>
  void add(const char* key, Read read)
  {
    const std::size_t start = text_.size();
    appendText(text_, key);
    const std::size_t first = text_.size();
    for (const ListEvent& event : events_)
      appendText(text_, read(event));
    if (text_.size() == first + events_.size() && start != firstColumn_)
      text_.resize(start);
  }

  const std::string& text() const { return text_; }

private:
  const std::vector<ListEvent>& events_;
  std::string text_;
  std::size_t firstColumn_ = 0; ///< is always there, so there are at least as many bytes as events
};

/// No list has more: each event is at least a line with its timecodes.
constexpr std::int64_t mostEvents = largestInflated / 128;
/// Far below the end of the type, so that a number and its neighbours can be calculated with.
constexpr std::int64_t largestNumber = std::numeric_limits<std::int64_t>::max() / 2;

/// Reads one column of numbers. Returns whether its texts are numbers that the events can have.
bool readNumbers(const NumberColumn& column, ImageTexts& texts, std::vector<ListEvent>& events)
{
  std::int64_t last = 0;
  for (ListEvent& event : events) {
    const std::optional<std::int64_t> number = numberFrom(texts.next());
    if (!number || __builtin_add_overflow(*number, column.grows ? last : 0, &last) || last > largestNumber ||
        last < -largestNumber)
      return false;
    column.write(event, last);
    if (column.read(event) != last) // it was cut to the size of an int
      return false;
  }
  return true;
}

/// Reads the column of that key. Returns whether it is one.
bool readColumn(std::string_view key, ImageTexts& texts, std::vector<ListEvent>& events)
{
  for (const NumberColumn& column : numbers)
    if (key == column.key)
      return readNumbers(column, texts, events);
  bool known = false;
  forEachText([&](const char* columnKey, auto textOf) {
    if (key != columnKey)
      return;
    known = true;
    for (ListEvent& event : events)
      textOf(event) = texts.next();
  });
  return known;
}

} // namespace

std::string packed(const std::vector<ListEvent>& events)
{
  Table table(events);
  for (const NumberColumn& column : numbers) {
    std::int64_t last = 0;
    table.add(column.key, [&](const ListEvent& event) {
      const std::int64_t number = column.read(event);
      return numberText(number - (column.grows ? std::exchange(last, number) : 0));
    });
  }
  forEachText([&](const char* key, auto textOf) {
    table.add(key, [&](const ListEvent& event) -> std::string_view { return textOf(event); });
  });
  return deflated(table.text());
}

std::optional<std::vector<ListEvent>> eventsFrom(std::string_view packed)
{
  const std::optional<std::string> table = inflated(packed);
  if (!table)
    return {};
  ImageTexts texts(*table);
  const std::optional<std::int64_t> count = numberFrom(texts.next());
  if (!count || *count < 0 || *count > mostEvents || static_cast<std::size_t>(*count) > table->size())
    return {};
  std::vector<ListEvent> events(static_cast<std::size_t>(*count));
  while (!texts.empty())
    if (!readColumn(texts.next(), texts, events) || texts.failed())
      return {};
  if (texts.failed())
    return {};
  return events;
}

std::string imageOf(const KeptList& list)
{
  std::string image(reinterpret_cast<const char*>(list.digest.data()), list.digest.size());
  for (const std::string* text : {&list.file, &list.title, &list.format})
    appendText(image, *text);
  return image + packed(list.events);
}

std::optional<KeptList> listFrom(std::int64_t number, std::string_view image)
{
  KeptList list;
  if (image.size() < list.digest.size())
    return {};
  list.number = number;
  std::copy_n(image.begin(), list.digest.size(), list.digest.begin());
  ImageTexts texts(image.substr(list.digest.size()));
  for (std::string* text : {&list.file, &list.title, &list.format})
    *text = texts.next();
  std::optional<std::vector<ListEvent>> events = eventsFrom(texts.rest());
  if (texts.failed() || !events)
    return {};
  list.events = std::move(*events);
  list.eventCount = static_cast<std::int64_t>(list.events.size());
  return list;
}

} // namespace reelhost
