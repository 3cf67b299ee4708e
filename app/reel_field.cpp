// SPDX-License-Identifier: Apache-2.0
#include "app/reel_field.h"

#include <algorithm>

#include <fmt/format.h>

#include "ReelDbManager.h"
#include "app/device_settings.h"
#include "app/facility.h"
#include "app/host_text.h"
#include "app/label_maps.h"
#include "app/plain_text.h"
#include "app/reel_records.h"
#include "base/ascii.h"
#include "base/number.h"
#include "base/text_width.h"
#include "reelhost/host.h"

namespace reeldb::app {

namespace {

ReelField flagField(const std::string& name, bool (ReelDbRec::*get)(), void (ReelDbRec::*put)(bool))
{
  return {name,
          [name](const std::string& value, Remarks&) {
            if (!parseFlag(value))
              throw Error(ErrorKind::Invalid,
                          fmt::format("{}: \"{}\" is neither yes nor no", name, base::shortText(value)));
          },
          [get](ReelDbRec& reel) { return flagWord((reel.*get)()); },
          [put](ReelDbRec& reel, const std::string& value) { (reel.*put)(parseFlag(value).value()); }, true};
}

using Text = LightweightString<char>;

ReelField textField(const std::string& name, Text (ReelDbRec::*get)(), void (ReelDbRec::*put)(Text), Check check)
{
  return {name, std::move(check), [get](ReelDbRec& reel) { return text((reel.*get)()); },
          [put](ReelDbRec& reel, const std::string& value) { (reel.*put)(hostText(value)); }};
}

void anything(const std::string&, Remarks&) {}

/// Adds a remark if the library reads this value as no value.
void checkNotNone(const std::string& field, const std::string& value, const std::string& none, Remarks& remarks)
{
  if (value == none)
    remarks.push_back(fmt::format("{}: \"{}\" means no value", field, none));
}

void checkDevice(const std::string& value, Remarks&)
{
  const reelhost::Facility& facility = requireFacility();
  const auto& devices = facility.devices();
  if (!value.empty() && std::none_of(devices.begin(), devices.end(),
                                     [&value](const reelhost::DeviceSettings& device) { return device.name == value; }))
    throw Error(ErrorKind::Refused, fmt::format("last-device: no device has the name \"{}\" ({})",
                                                base::shortText(value), devicesThereAre(facility)));
}

/// The library stores any text. It looks for a label map of that name only when the reel is captured.
void checkMapName(const std::string& value, Remarks& remarks)
{
  checkNotNone("label-map", value, "unknown", remarks);
  if (value.empty() || value == "unknown" || value == "Device default")
    return;
  const auto isAscii = [](char c) { return static_cast<unsigned char>(c) < 0x80; };
  if (const auto fault = labelMapFault(value))
    remarks.push_back(fmt::format("{}; stored anyway", fault->what()));
  else if (!std::all_of(value.begin(), value.end(), isAscii))
    remarks.push_back(fmt::format("\"{}\": stored anyway, but a reel's label map is only found if its name is ASCII",
                                  base::shortText(value)));
}

std::optional<ReelField> fixedField(const std::string& name)
{
  // JSON reports have underscores in these names, and another name for one of the fields.
  std::string wanted = base::fold(name);
  std::replace(wanted.begin(), wanted.end(), '_', '-');
  if (wanted == "label-mapping")
    wanted = "label-map";
  for (ReelField& field : fixedFields())
    if (field.name == wanted)
      return std::move(field);
  return std::nullopt;
}

constexpr std::string_view numberPrefix = "user-field.";

bool isPrefixed(const std::string& name)
{
  return base::fold(name).compare(0, numberPrefix.size(), numberPrefix) == 0;
}

/// Whether the name is meant as the number of a user field.
bool isNumber(const std::string& name)
{
  return isPrefixed(name) || name.find_first_not_of("-0123456789") == std::string::npos;
}

/// The number in the name of a user field; empty if the name is not such a number.
std::optional<int> numberOf(const std::string& name)
{
  if (!isNumber(name))
    return std::nullopt;
  const auto number = base::parseNumber(isPrefixed(name) ? name.substr(numberPrefix.size()) : name);
  if (!number || *number >= static_cast<int>(userFieldCount))
    throw Error(ErrorKind::Invalid, fmt::format("{}: no such user field (they are numbered from 0 to {})",
                                                base::shortText(name), userFieldCount - 1));
  return number;
}

std::optional<int> numberOfDisplayName(const std::string& name)
{
  std::optional<int> found;
  for (int i = 0; i < static_cast<int>(userFieldCount); ++i) {
    if (!base::sameName(text(ReelDbManager::theReelDbManager()->userFieldName(i)), name))
      continue;
    if (found)
      throw Error(ErrorKind::Refused, fmt::format("{}: two user fields have this name (use {} or {} instead)",
                                                  base::shortText(name), userField(*found).name, userField(i).name));
    found = i;
  }
  return found;
}

} // namespace

std::optional<bool> parseFlag(const std::string& value)
{
  const std::string word = base::fold(value);
  if (word == "yes" || word == "true" || word == "on" || word == "1")
    return true;
  if (word == "no" || word == "false" || word == "off" || word == "0")
    return false;
  return std::nullopt;
}

std::string flagWord(bool flag)
{
  return flag ? "yes" : "no";
}

std::vector<ReelField> fixedFields()
{
  return {
      textField("type", &ReelDbRec::typeName, &ReelDbRec::typeName, remarkOnUnlistedType),
      flagField("available", &ReelDbRec::reelAvailable, &ReelDbRec::reelAvailable),
      flagField("inhibit", &ReelDbRec::recInhibit, &ReelDbRec::recInhibit),
      textField("label-map", &ReelDbRec::labelMapping, &ReelDbRec::labelMapping, checkMapName),
      textField("bin", &ReelDbRec::binName, &ReelDbRec::binName,
                [](const std::string& value, Remarks& remarks) { checkNotNone("bin", value, "default", remarks); }),
      {"last-device", checkDevice, [](ReelDbRec& reel) { return text(reel.lastDevice()); },
       [](ReelDbRec& reel, const std::string& value) { reel.lastDevice(wideHostText(value)); }},
  };
}

ReelField userField(int number)
{
  return {fmt::format("user-field.{}", number), anything,
          [number](ReelDbRec& reel) { return text(reel.userField(number)); },
          [number](ReelDbRec& reel, const std::string& value) { reel.userField(number, hostText(value)); }};
}

bool meansField(const std::string& name)
{
  return fixedField(name) || isNumber(name);
}

std::optional<ReelField> fieldNamed(const std::string& name)
{
  if (auto field = fixedField(name))
    return field;
  if (const auto number = numberOf(name))
    return userField(*number);
  if (const auto number = numberOfDisplayName(name))
    return userField(*number);
  return std::nullopt;
}

ReelField findField(const std::string& name)
{
  if (auto field = fieldNamed(name))
    return *std::move(field);
  throw Error(ErrorKind::Invalid,
              fmt::format("{}: no such field (type, available, inhibit, label-map, bin, last-device, user-field.0 "
                          "to user-field.{}, or the name of a user field)",
                          base::shortText(name), userFieldCount - 1));
}

void requireStorable(const Assignment& assignment)
{
  const std::string field = base::shortText(assignment.field);
  requirePlainText(assignment.value,
                   fmt::format("{}: \"{}\" cannot be stored", field, base::shortText(assignment.value)));
  if (assignment.value.size() > longestField)
    throw Error(ErrorKind::Refused,
                fmt::format("{}: value too long ({} bytes; at most {})", field, assignment.value.size(), longestField));
}

} // namespace reeldb::app
