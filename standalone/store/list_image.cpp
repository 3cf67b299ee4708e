// SPDX-License-Identifier: Apache-2.0
#include "store/list_image.h"

#include <algorithm>
#include <array>
#include <charconv>

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
};
constexpr std::array<NumberColumn, 2> growing = {{
    {"shot", [](const ListEvent& event) { return event.shot; },
     [](ListEvent& event, std::int64_t number) { event.shot = number; }},
    {"line", [](const ListEvent& event) { return static_cast<std::int64_t>(event.line); },
     [](ListEvent& event, std::int64_t number) { event.line = static_cast<int>(number); }},
}};
constexpr std::array<NumberColumn, 3> small = {{
    {"video", [](const ListEvent& event) { return static_cast<std::int64_t>(event.clip.videoChannels); },
     [](ListEvent& event, std::int64_t number) { event.clip.videoChannels = static_cast<int>(number); }},
    {"audio", [](const ListEvent& event) { return static_cast<std::int64_t>(event.clip.audioChannels); },
     [](ListEvent& event, std::int64_t number) { event.clip.audioChannels = static_cast<int>(number); }},
    {dropFrameKey, [](const ListEvent& event) { return std::int64_t{event.clip.dropFrame}; },
     [](ListEvent& event, std::int64_t number) { event.clip.dropFrame = number != 0; }},
}};
constexpr std::array<ShotText, 2> furtherTexts = {{{"name", &Material::name}, {frameRateKey, &Material::frameRate}}};

/// Passes each text of an event, with its key.
template <class Pass>
void forEachText(Pass pass)
{
  for (const ShotText& text : shotTexts)
    pass(text);
  for (const ShotText& text : furtherTexts)
    pass(text);
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
    if (text_.size() == first + events_.size())
      text_.resize(start);
  }

  const std::string& text() const { return text_; }

private:
  const std::vector<ListEvent>& events_;
  std::string text_;
};

/// Reads one column of numbers. Returns whether its texts are numbers.
bool readNumbers(const NumberColumn& column, bool grows, ImageTexts& texts, std::vector<ListEvent>& events)
{
  std::int64_t last = 0;
  for (ListEvent& event : events) {
    const std::optional<std::int64_t> number = numberFrom(texts.next());
    if (!number)
      return false;
    last = *number + (grows ? last : 0);
    column.write(event, last);
  }
  return true;
}

/// Reads the column of that key. Returns whether it is one.
bool readColumn(std::string_view key, ImageTexts& texts, std::vector<ListEvent>& events)
{
  const auto isIt = [&](const auto& column) { return key == column.key; };
  if (const auto column = std::find_if(growing.begin(), growing.end(), isIt); column != growing.end())
    return readNumbers(*column, true, texts, events);
  if (const auto column = std::find_if(small.begin(), small.end(), isIt); column != small.end())
    return readNumbers(*column, false, texts, events);
  bool known = false;
  forEachText([&](const ShotText& text) {
    if (!isIt(text))
      return;
    known = true;
    for (ListEvent& event : events)
      event.clip.*text.text = texts.next();
  });
  return known;
}

} // namespace

std::string packed(const std::vector<ListEvent>& events)
{
  Table table(events);
  for (const NumberColumn& column : growing) {
    std::int64_t last = 0;
    table.add(column.key, [&](const ListEvent& event) {
      const std::int64_t number = column.read(event);
      return numberText(number - std::exchange(last, number));
    });
  }
  for (const NumberColumn& column : small)
    table.add(column.key, [&](const ListEvent& event) { return numberText(column.read(event)); });
  forEachText([&](const ShotText& text) {
    table.add(text.key, [&](const ListEvent& event) -> std::string_view { return event.clip.*text.text; });
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
  // Each event has a number for its shot, so there are not more events than bytes.
  if (!count || *count < 0 || static_cast<std::size_t>(*count) > table->size())
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
