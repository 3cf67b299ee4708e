// SPDX-License-Identifier: Apache-2.0
#include "lists/own_json.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "base/base64.h"
#include "lists/clip_row.h"
#include "lists/collector.h"
#include "lists/json_tree.h"
#include "lists/reel_rows.h"
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
    Lines lines(text);
    for (std::string_view line; lines.next(line);) {
    }
    collector_.list().tally.lines = lines.number();
    return collector_.finish();
  }

private:
  void take(const JsonValue& value)
  {
    if (value.kind == Kind::Array)
      return takeAll(value);
    const auto isArray = [&](std::string_view name) { return value[name].kind == Kind::Array; };
    if (!value["state_version"].isNull() || isArray("reels") || isArray("shots") || isArray("lists"))
      return takeProject(value);
    if (value["reel"].kind == Kind::Text)
      return takeShot(value);
    if (value["id"].kind == Kind::Text)
      return takeReel(value);
    if (value["content"].kind != Kind::Null)
      return takeList(value);
    collector_.reject(value.line, textOf(value),
                      "neither a reel (with \"id\"), a shot (with \"reel\") nor a list (with \"content\")");
  }

  void takeAll(const JsonValue& array)
  {
    for (const JsonMember& member : array.members)
      take(member.value);
  }

  /// The reels and the lists of a whole project are part of its state.
  void takeProject(const JsonValue& project)
  {
    const bool isWhole = !project["state_version"].isNull();
    collector_.list().holdsProject = collector_.list().holdsProject || isWhole;
    for (const JsonMember& shot : project["shots"].members)
      takeShot(shot.value);
    if (isWhole)
      return;
    for (const JsonMember& reel : project["reels"].members)
      takeReel(reel.value);
    takeAll(project["lists"]);
  }

  void takeReel(const JsonValue& reel)
  {
    ReelRow row;
    row.line = reel.line;
    row.text = shortened(textOf(reel), shownBytes);
    row.reel = clean(reel["id"].text);
    for (const JsonMember& member : reel.members) {
      if (member.name == "aliases" || member.name == "old_names")
        takeNames(member.value, row);
      else if (member.name == "user_fields")
        for (const JsonMember& field : member.value.members)
          takeValue(field.name.size() == 1 && isDigit(field.name[0]) ? "user-field." + field.name : field.name,
                    field.value, row);
      else if (std::find(derived.begin(), derived.end(), member.name) == derived.end())
        takeValue(member.name, member.value, row);
    }
    reels_.add(std::move(row));
  }

  void takeNames(const JsonValue& names, ReelRow& row)
  {
    row.clearsAliases = row.clearsAliases || names.isNull();
    for (const JsonMember& name : names.members)
      if (name.value.kind == Kind::Text)
        row.aliases.push_back(clean(name.value.text));
  }

  /// As in tables, a text without a letter keeps what is there; null removes it.
  void takeValue(const std::string& name, const JsonValue& value, ReelRow& row)
  {
    const bool isText = value.kind == Kind::Text || value.kind == Kind::Number;
    const bool isFlag = value.kind == Kind::Bool;
    if (!value.isNull() && !isFlag && !(isText && !value.text.empty()))
      return;
    const std::size_t field = reels_.field(name);
    const auto isSame = [&](const ReelValue& other) { return other.field == field; };
    if (std::none_of(row.values.begin(), row.values.end(), isSame))
      row.values.push_back({field, isFlag ? (value.text == "true" ? "yes" : "no") : value.text});
  }

  /// A list as the state of a project has it: its events are read again from its bytes.
  void takeList(const JsonValue& list)
  {
    const JsonValue& content = list["content"];
    const std::optional<std::string> bytes =
        content.kind == Kind::Object ? base::fromBase64(content["bytes"].asText()) : std::optional(content.text);
    if (!bytes)
      return collector_.reject(list.line, textOf(list), "its content is not base64");
    collector_.list().lists.push_back({textIn(list, "file"), *bytes});
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

  /// What follows from other things, or from what reports say of them.
  static constexpr std::array<std::string_view, 6> derived = {"id",    "video_channels", "audio_channels",
                                                              "shots", "live",           "known_type"};

  Collector collector_{Format::Json};
  ReelRows reels_{collector_};
};

} // namespace

bool isOwnJson(std::string_view text)
{
  constexpr std::array<std::string_view, 6> keys = {"\"state_version\"", "\"reels\"", "\"shots\"",
                                                    "\"lists\"",         "\"reel\"",  "\"id\""};
  return (text.starts_with('{') || text.starts_with('[')) &&
         std::any_of(keys.begin(), keys.end(),
                     [&](std::string_view key) { return text.find(key) != std::string_view::npos; });
}

List readOwnJson(std::string_view text)
{
  return Reader().read(text);
}

} // namespace reeldb::lists
