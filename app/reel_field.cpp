// SPDX-License-Identifier: Apache-2.0
#include "app/reel_field.h"

#include <algorithm>
#include <optional>
#include <vector>

#include <fmt/format.h>

#include "app/device.h"
#include "text/display_text.h"
#include "line/failure.h"
#include "app/host_text.h"
#include "app/label_map.h"
#include "app/number.h"
#include "app/reel.h"
#include "app/session.h"

namespace reeldb::cli {

namespace {

std::optional<bool> parseFlag(const std::string& value)
{
  const std::string word = folded(value);
  if (word == "yes" || word == "true" || word == "on" || word == "1")
    return true;
  if (word == "no" || word == "false" || word == "off" || word == "0")
    return false;
  return std::nullopt;
}

ReelField flagField(const std::string& name, bool (ReelDbRec::*get)(), void (ReelDbRec::*put)(bool))
{
  return {name,
          [name](const std::string& value) {
            if (!parseFlag(value))
              throw Failure(usage, fmt::format("{}: \"{}\" is neither yes nor no", name, shortText(value)));
          },
          [get](ReelDbRec& reel) { return std::string(yesOrNo((reel.*get)())); },
          [put](ReelDbRec& reel, const std::string& value) { (reel.*put)(parseFlag(value).value()); }};
}

using Text = LightweightString<char>;

ReelField textField(const std::string& name, Text (ReelDbRec::*get)(), void (ReelDbRec::*put)(Text),
                    std::function<void(const std::string&)> check)
{
  return {name, std::move(check), [get](ReelDbRec& reel) { return text((reel.*get)()); },
          [put](ReelDbRec& reel, const std::string& value) { (reel.*put)(hostText(value)); }};
}

void anything(const std::string&) {}

/// The library reads one text of a field as none.
void checkNotNone(const std::string& field, const std::string& value, const std::string& none)
{
  if (value == none)
    complain(fmt::format("{}: \"{}\" stands for none", field, none));
}

void checkType(const std::string& value)
{
  if (!value.empty() && !isListedType(value))
    complain(fmt::format("{}: not in the reel type catalogue (stored all the same; reeldb types lists what is)",
                         shortText(value)));
}

void checkDevice(const std::string& value)
{
  const reelhost::Facility& facility = requireFacility();
  const auto& devices = facility.devices();
  if (!value.empty() && std::none_of(devices.begin(), devices.end(),
                                     [&value](const reelhost::DeviceSettings& device) { return device.name == value; }))
    throw Failure(refused, fmt::format("last-device: no device is called \"{}\" ({})", shortText(value),
                                       devicesThereAre(facility)));
}

/// The library stores any text, and looks for a file of that name when the reel is to be captured.
void checkLabelMap(const std::string& value)
{
  checkNotNone("label-mapping", value, "unknown");
  if (value.empty() || value == "unknown" || value == "Device default")
    return;
  const auto isAscii = [](char c) { return static_cast<unsigned char>(c) < 0x80; };
  if (const auto fault = labelMapFault(requireFacility(), value))
    complain(fmt::format("{}; stored all the same", fault->what()));
  else if (!std::all_of(value.begin(), value.end(), isAscii))
    complain(fmt::format("\"{}\": stored all the same, but a reel's label map is only found when its name is ASCII",
                         shortText(value)));
}

std::vector<ReelField> fixedFields()
{
  return {
      textField("type", &ReelDbRec::typeName, &ReelDbRec::typeName, checkType),
      flagField("available", &ReelDbRec::reelAvailable, &ReelDbRec::reelAvailable),
      flagField("inhibit", &ReelDbRec::recInhibit, &ReelDbRec::recInhibit),
      textField("label-mapping", &ReelDbRec::labelMapping, &ReelDbRec::labelMapping, checkLabelMap),
      textField("bin", &ReelDbRec::binName, &ReelDbRec::binName,
                [](const std::string& value) { checkNotNone("bin", value, "default"); }),
      {"last-device", checkDevice, [](ReelDbRec& reel) { return text(reel.lastDevice()); },
       [](ReelDbRec& reel, const std::string& value) { reel.lastDevice(wideHostText(value)); }},
  };
}

std::optional<ReelField> fixedField(const std::string& name)
{
  // JSON reports write the names with an underscore.
  std::string wanted = folded(name);
  std::replace(wanted.begin(), wanted.end(), '_', '-');
  for (ReelField& field : fixedFields())
    if (field.name == wanted)
      return std::move(field);
  return std::nullopt;
}

ReelField userField(int number)
{
  return {fmt::format("user-field.{}", number), anything,
          [number](ReelDbRec& reel) { return text(reel.userField(number)); },
          [number](ReelDbRec& reel, const std::string& value) { reel.userField(number, hostText(value)); }};
}

constexpr std::string_view numberPrefix = "user-field.";

bool isPrefixed(const std::string& name)
{
  return folded(name).compare(0, numberPrefix.size(), numberPrefix) == 0;
}

/// Whether the name is meant as the number of a user field.
bool isNumber(const std::string& name)
{
  return isPrefixed(name) || name.find_first_not_of("-0123456789") == std::string::npos;
}

/// The number of a user field that is named by number; nothing when the name is no such thing.
std::optional<int> numberOf(const std::string& name)
{
  if (!isNumber(name))
    return std::nullopt;
  const auto number = parseNumber(isPrefixed(name) ? name.substr(numberPrefix.size()) : name);
  if (!number || *number >= static_cast<int>(userFieldCount))
    throw Failure(usage, fmt::format("{}: no such user field (they are numbered from 0 to {})", shortText(name),
                                     userFieldCount - 1));
  return number;
}

std::optional<int> numberOfDisplayName(const std::string& name, ReelDbManager& manager)
{
  std::optional<int> found;
  for (int i = 0; i < static_cast<int>(userFieldCount); ++i) {
    if (folded(text(manager.userFieldName(i))) != folded(name))
      continue;
    if (found)
      throw Failure(refused, fmt::format("{}: two user fields are called that (say {} or {} instead)", shortText(name),
                                         userField(*found).name, userField(i).name));
    found = i;
  }
  return found;
}

} // namespace

std::vector<std::string> reelFieldNames()
{
  std::vector<std::string> names;
  for (const ReelField& field : fixedFields())
    names.push_back(field.name);
  for (int i = 0; i < static_cast<int>(userFieldCount); ++i)
    names.push_back(userField(i).name);
  return names;
}

bool isReservedFieldName(const std::string& name)
{
  return fixedField(name) || isNumber(name);
}

ReelField findReelField(const std::string& name, ReelDbManager& manager)
{
  if (auto field = fixedField(name))
    return *std::move(field);
  if (const auto number = numberOf(name))
    return userField(*number);
  if (const auto number = numberOfDisplayName(name, manager))
    return userField(*number);
  throw Failure(
      usage, fmt::format("{}: no such field (type, available, inhibit, label-mapping, bin, last-device, user-field.0 "
                         "to user-field.{}, or the name of a user field)",
                         shortText(name), userFieldCount - 1));
}

} // namespace reeldb::cli
