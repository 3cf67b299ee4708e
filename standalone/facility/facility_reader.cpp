// SPDX-License-Identifier: Apache-2.0
#include "facility/facility_reader.h"

#include <algorithm>
#include <array>
#include <climits>

#include "facility/state_file.h"
#include "facility/type_file_check.h"
#include "host/codes.h"
#include "reelhost/display_text.h"

namespace reelhost {

namespace {

struct Word {
  std::string_view word;
  int code;
};

constexpr std::array<Word, 4> portWords = {{{"9-pin", codes::port9Pin},
                                            {"1394", codes::port1394},
                                            {"device-named", codes::portNamingReel},
                                            {"none", codes::noPort}}};
constexpr std::array<Word, 7> inputWords = {{{"composite", codes::compositeInput},
                                             {"s-video", codes::sVideoInput},
                                             {"component", codes::componentInput},
                                             {"sdi", codes::sdiInput},
                                             {"hdmi", codes::hdmiInput},
                                             {"1394", codes::input1394},
                                             {"none", codes::noVideoInput}}};

constexpr std::array<Word, 3> trackWords = {{{"audio", static_cast<int>(TypeRule::Tracks::Audio)},
                                             {"video", static_cast<int>(TypeRule::Tracks::Video)},
                                             {"both", static_cast<int>(TypeRule::Tracks::Both)}}};

// A device number is an index into a list that people write by hand, and no deck has more audio inputs.
constexpr std::int64_t largestDeviceNumber = 9999;
constexpr std::int64_t mostAudioInputs = 1024;

bool isBlank(const std::string& text)
{
  return text.find_first_not_of(' ') == std::string::npos;
}

template <std::size_t N>
int codeOf(const TomlTable& table, std::string_view key, const std::array<Word, N>& words, int otherwise)
{
  const std::optional<std::string> text = table.text(key);
  if (!text)
    return otherwise;
  std::string known;
  for (const Word& word : words) {
    if (word.word == *text)
      return word.code;
    known += (known.empty() ? "" : ", ") + std::string(word.word);
  }
  table.fail(key, '"' + displayText(*text) + "\" is unknown (known: " + known + ")");
}

template <std::size_t N>
std::string wordFor(int code, const std::array<Word, N>& words)
{
  const auto found = std::find_if(words.begin(), words.end(), [code](const Word& word) { return word.code == code; });
  return found == words.end() ? std::to_string(code) : std::string(found->word);
}

/// Throws Error (NotFound) if the folder is not a facility.
void requireFacilityFile(const std::filesystem::path& dir)
{
  const auto refuse = [&](const std::string& cause) {
    throw Error(ErrorKind::NotFound, displayText(dir.native()) + ": not a facility (" + cause + ")");
  };
  std::error_code error;
  if (std::filesystem::exists(dir / "facility.toml", error) || error)
    return; // if it cannot be read, reading it reports why
  if (!std::filesystem::exists(dir, error))
    refuse("no such folder");
  if (!std::filesystem::is_directory(dir, error))
    refuse("not a folder");
  refuse("facility.toml not found");
}

} // namespace

FacilityReader::FacilityReader(const std::filesystem::path& dir)
{
  requireFacilityFile(dir);
  facility_.directory_ = dir;
  const TomlFile file(dir / "facility.toml");
  const TomlTable root(file, file.root(), "");
  root.allowOnly({"facility", "texts", "frame_rates", "system", "device", "history", "type_rule"});
  if (const auto table = root.table("facility"))
    readFacility(*table);
  if (const auto table = root.table("texts"))
    readTexts(*table);
  if (const auto table = root.table("frame_rates"))
    readFrameRates(*table);
  if (const auto table = root.table("system"))
    readSystem(*table);
  for (const TomlTable& table : root.tables("device"))
    readDevice(table);
  if (const auto table = root.table("history")) {
    table->allowOnly({"names"});
    facility_.keepsNames_ = table->flag("names").value_or(true);
  }
  readState();
  CheckedTypes types = checkTypeFile(facility_.deviceDataDirectory() / "reeltype.dat");
  for (const TomlTable& table : root.tables("type_rule"))
    readTypeRule(table, types.names);
  facility_.remarks_ = std::move(types.remarks);
}

void FacilityReader::readFacility(const TomlTable& table)
{
  table.allowOnly({"name", "default_project", "default_reel_type"});
  table.text("name");
  if (const auto name = table.text("default_project")) {
    try {
      Facility::requireProjectName(*name);
    } catch (const Error& e) {
      table.fail("default_project", e.what());
    }
    facility_.defaultProject_ = *name;
  }
  if (const auto type = table.text("default_reel_type"))
    facility_.config_["default_reel_type"] = *type;
}

void FacilityReader::readTexts(const TomlTable& table)
{
  table.allowOnly({"reel"});
  if (const auto text = table.text("reel"))
    facility_.texts_[codes::wordForReel] = *text;
}

void FacilityReader::readFrameRates(const TomlTable& table)
{
  facility_.frameRates_.clear();
  for (const std::string& name : table.keys()) {
    const std::int64_t code = *table.number(name, 0, 255);
    if (isBlank(name))
      table.fail(name, "a frame rate needs a name");
    if (holdsControlCharacter(name))
      table.fail(name, "the name of a frame rate holds a control character");
    facility_.frameRates_.emplace_back(name, static_cast<int>(code));
  }
}

void FacilityReader::readSystem(const TomlTable& table)
{
  for (const std::string& key : table.keys())
    facility_.configuredSystem_[key] = *table.text(key);
}

void FacilityReader::readDevice(const TomlTable& table)
{
  table.allowOnly({"number", "id", "name", "port", "input", "audio_inputs", "tapes", "label_map"});
  DeviceSettings device;
  const auto number = table.number("number", 0, largestDeviceNumber);
  if (!number)
    table.fail("number", "a device needs one");
  device.number = static_cast<int>(*number);
  const auto id = table.number("id", 1, UINT_MAX); // 0 means no device
  if (!id)
    table.fail("id", "a device needs one");
  device.id = static_cast<unsigned>(*id);
  const auto name = table.text("name");
  if (!name || isBlank(*name))
    table.fail("name", "a device needs one");
  device.name = *name;
  device.portType = codeOf(table, "port", portWords, device.portType);
  device.inputType = codeOf(table, "input", inputWords, device.inputType);
  device.audioInputs = static_cast<int>(table.number("audio_inputs", 0, mostAudioInputs).value_or(0));
  device.tapes = table.texts("tapes");
  if (std::any_of(device.tapes.begin(), device.tapes.end(), isBlank))
    table.fail("tapes", "a reel type without a name");
  device.labelMap = table.text("label_map").value_or("");
  for (const DeviceSettings& other : facility_.devices_) {
    if (other.number == device.number)
      table.fail("number", std::to_string(device.number) + " is taken (by device \"" + other.name + "\")");
    if (other.id == device.id)
      table.fail("id", std::to_string(device.id) + " is taken (by device \"" + other.name + "\")");
    if (other.name == device.name)
      table.fail("name", '"' + device.name + "\" is taken (by device " + std::to_string(other.number) + ")");
  }
  facility_.devices_.push_back(std::move(device));
}

void FacilityReader::readTypeRule(const TomlTable& table, const std::vector<std::string>& types)
{
  table.allowOnly({"type", "name", "extensions", "tracks"});
  TypeRule rule;
  rule.type = table.text("type").value_or("");
  if (rule.type.empty())
    table.fail("type", "a rule needs one");
  if (std::find(types.begin(), types.end(), rule.type) == types.end())
    table.fail("type", '"' + displayText(rule.type) + "\" is not a type of devicedata/reeltype.dat");
  rule.name = table.text("name").value_or("");
  rule.extensions = table.texts("extensions");
  for (const std::string& extension : rule.extensions)
    if (isBlank(extension) || extension.front() == '.')
      table.fail("extensions", '"' + displayText(extension) + "\" is not an extension (write it without the dot)");
  rule.tracks = static_cast<TypeRule::Tracks>(codeOf(table, "tracks", trackWords, 0));
  if (rule.name.empty() && rule.extensions.empty() && rule.tracks == TypeRule::Tracks::Any)
    table.fail("a rule needs a name, extensions or tracks");
  facility_.typeRules_.push_back(std::move(rule));
}

void FacilityReader::readState()
{
  facility_.take(StateFile(facility_.directory_).read());
}

Facility Facility::read(const std::filesystem::path& dir)
{
  std::filesystem::path folder = std::filesystem::absolute(dir).lexically_normal(); // messages show the whole path
  if (!folder.has_filename() && folder != folder.root_path())
    folder = folder.parent_path();
  return FacilityReader(folder).take();
}

std::string portWord(int code)
{
  return wordFor(code, portWords);
}

std::string inputWord(int code)
{
  return wordFor(code, inputWords);
}

} // namespace reelhost
