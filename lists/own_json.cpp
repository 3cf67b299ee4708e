// SPDX-License-Identifier: Apache-2.0
#include "lists/own_json.h"

#include <algorithm>
#include <charconv>
#include <string>
#include <utility>
#include <vector>

#include "lists/clip_row.h"
#include "lists/collector.h"
#include "lists/json_tree.h"
#include "lists/text.h"
#include "lists/timeline.h"

namespace reeldb::lists {
namespace {

using Kind = JsonValue::Kind;

/// All but what only the state of a project has.
bool asksFor(std::string_view name, std::string_view parent)
{
  return name != "events" && !(parent.empty() && (name == "logs" || name == "history" || name == "options"));
}

/// The text of a member; empty for anything but a text.
std::string textIn(const JsonValue& object, std::string_view name)
{
  const JsonValue& value = object[name];
  return value.kind == Kind::Text ? value.text : std::string();
}

std::optional<int> numberIn(const JsonValue& object, std::string_view name)
{
  const std::string_view digits = object[name].asText();
  int number = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  if (digits.empty() || error != std::errc() || end != digits.data() + digits.size() || number < 0)
    return std::nullopt;
  return number;
}

std::vector<std::string> textsIn(const JsonValue& object, std::string_view name)
{
  std::vector<std::string> texts;
  for (const JsonMember& member : object[name].members)
    if (member.value.kind == Kind::Text)
      texts.push_back(member.value.text);
  return texts;
}

class Reader {
public:
  List read(std::string_view text)
  {
    for (const JsonValue& value : parseJsonValues(text, "JSON", asksFor))
      take(value);
    List& list = collector_.list();
    list.tally.lines = static_cast<int>(std::count(text.begin(), text.end(), '\n')) + 1;
    return collector_.finish();
  }

private:
  void take(const JsonValue& value)
  {
    collector_.list().holdsProject = collector_.list().holdsProject || !value["state_version"].isNull();
    for (const JsonMember& shot : value["shots"].members)
      takeShot(shot.value);
  }

  void takeShot(const JsonValue& shot)
  {
    ClipRow row;
    row.line = shot.line;
    row.reel = textIn(shot, "reel");
    row.clipName = textIn(shot, "clip");
    row.tracks = textIn(shot, "tracks");
    row.sourceIn = textIn(shot, "source_in");
    row.sourceOut = textIn(shot, "source_out");
    row.recordIn = textIn(shot, "record_in");
    row.recordOut = textIn(shot, "record_out");
    row.sourceFile = textIn(shot, "source_file");
    row.frameRate = textIn(shot, "frame_rate");
    row.dropFrame = shot["drop_frame"].text == "true";
    row.cameraRoll = textIn(shot, "camera_roll");
    row.sourceId = textIn(shot, "source_id");
    row.aliases = textsIn(shot, "aliases");
    row.aliases.push_back(textIn(shot, "own_name"));
    row.videoChannels = numberIn(shot, "video_channels");
    row.audioChannels = numberIn(shot, "audio_channels");
    takeRow(collector_, std::move(row), textOf(shot));
  }

  /// What reports show of an object.
  static std::string textOf(const JsonValue& object)
  {
    std::string text = "{";
    for (const JsonMember& member : object.members) {
      if (member.value.asText().empty() || text.size() > shownBytes)
        continue;
      text += (text.size() == 1 ? "" : ", ") + member.name + ": " + std::string(member.value.asText());
    }
    return text + "}";
  }

  Collector collector_{Format::Json};
};

} // namespace

bool isOwnJson(std::string_view text)
{
  return text.starts_with('{') && text.find("\"state_version\"") != std::string_view::npos;
}

List readOwnJson(std::string_view text)
{
  return Reader().read(text);
}

} // namespace reeldb::lists
