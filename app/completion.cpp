// SPDX-License-Identifier: Apache-2.0
#include "app/completion.h"

#include "app/devices.h"
#include "app/kept_lists.h"
#include "app/label_maps.h"
#include "app/projects.h"
#include "app/reel_fields.h"
#include "app/reels.h"
#include "app/session.h"
#include "app/types.h"

namespace reeldb::app {

namespace {

std::vector<Choice> reels(const std::optional<std::string>& project)
{
  Session session(project, Access::Read);
  std::vector<Choice> result;
  for (const Reel& reel : listReels(session))
    result.push_back({reel.id, reel.type});
  return result;
}

std::vector<Choice> lists(const std::optional<std::string>& project)
{
  Session session(project, Access::Read);
  std::vector<Choice> result;
  for (const KeptList& list : keptLists(session))
    result.push_back({list.file, list.title});
  return result;
}

std::vector<Choice> deviceNumbers()
{
  std::vector<Choice> result;
  for (const Device& device : listDevices())
    result.push_back({std::to_string(device.number), device.name});
  return result;
}

std::vector<Choice> rates()
{
  std::vector<Choice> result;
  for (const FrameRate& rate : frameRates())
    result.push_back({rate.name, "code " + std::to_string(rate.code)});
  return result;
}

std::vector<Choice> userFields()
{
  std::vector<Choice> result;
  for (const UserField& field : listUserFields())
    result.push_back({std::to_string(field.number) + '=', field.display});
  return result;
}

std::vector<Choice> plain(const std::vector<std::string>& names)
{
  std::vector<Choice> result;
  result.reserve(names.size());
  for (const std::string& name : names)
    result.push_back({name, ""});
  return result;
}

std::vector<std::string> typeNames()
{
  std::vector<std::string> names;
  for (const ReelType& type : listTypes().types)
    names.push_back(type.name);
  return names;
}

std::vector<std::string> deviceNames()
{
  std::vector<std::string> names;
  for (const Device& device : listDevices())
    names.push_back(device.name);
  return names;
}

std::vector<std::string> fieldValues(const std::string& field)
{
  if (field == "type")
    return typeNames();
  if (field == "available" || field == "inhibit")
    return {"yes", "no"};
  if (field == "label-map")
    return labelMapNames();
  if (field == "last-device")
    return deviceNames();
  return {};
}

/// The names of fields, or the possible values of the typed field.
std::vector<Choice> assignments(const std::string& typed)
{
  const std::size_t equals = typed.find('=');
  std::vector<std::string> names;
  if (equals == std::string::npos) {
    names = reelFieldNames();
    for (std::string& name : names)
      name += '=';
  } else {
    names = fieldValues(typed.substr(0, equals));
    for (std::string& name : names)
      name.insert(0, typed, 0, equals + 1);
  }
  return plain(names);
}

} // namespace

std::vector<Choice> choices(ValueKind kind, const std::string& typed, const std::optional<std::string>& project)
{
  switch (kind) {
  case ValueKind::Reel:
    return reels(project);
  case ValueKind::Device:
    return deviceNumbers();
  case ValueKind::Project:
    return plain(projectNames());
  case ValueKind::LabelMap:
    return plain(labelMapNames());
  case ValueKind::ListFile:
    return lists(project);
  case ValueKind::FrameRate:
    return rates();
  case ValueKind::Field:
    return assignments(typed);
  case ValueKind::UserField:
    return userFields();
  case ValueKind::ReelType:
    return plain(typeNames());
  case ValueKind::Group:
    return {{"roll", "by camera roll"}};
  case ValueKind::Match:
    return {{"all", "all rules of names"}, {"exact", "only the same name, and old names"}};
  case ValueKind::NameSource:
    return {{"list", "the list, by its evidence"}, {"clip", "also clip names without an ending"}};
  case ValueKind::Other:
  case ValueKind::File:
  case ValueKind::Folder:
    break;
  }
  return {};
}

} // namespace reeldb::app
