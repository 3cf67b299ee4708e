// SPDX-License-Identifier: Apache-2.0
#include "app/completion_values.h"

#include "ReelTypeManager.h"
#include "app/host_text.h"
#include "app/label_map.h"
#include "app/reel.h"
#include "app/reel_field.h"
#include "app/session.h"

namespace reeldb::cli {

namespace {

using Words = std::vector<CompletionWord>;

Words reels(const std::optional<std::string>& project)
{
  Globals globals;
  globals.project = project;
  Session session(globals, reelhost::Access::Read);
  Words words;
  for (const Reel& reel : readReels(session.manager(), {}))
    words.push_back({reel.id, reel.type});
  return words;
}

Words deviceNumbers()
{
  Words words;
  for (const reelhost::DeviceSettings& device : requireFacility().devices())
    words.push_back({std::to_string(device.number), device.name});
  return words;
}

Words plain(const std::vector<std::string>& names)
{
  Words words;
  for (const std::string& name : names)
    words.push_back({name, ""});
  return words;
}

Words frameRates()
{
  Words words;
  for (const auto& [name, code] : requireFacility().frameRates())
    words.push_back({name, "code " + std::to_string(code)});
  return words;
}

std::vector<std::string> typeNames()
{
  std::vector<std::string> names;
  for (AssocListIter it(*theReelTypeManager()); const AssocListRep::Entry* entry = *it; ++it)
    names.push_back(text(entry->key));
  return names;
}

std::vector<std::string> deviceNames()
{
  std::vector<std::string> names;
  for (const reelhost::DeviceSettings& device : requireFacility().devices())
    names.push_back(device.name);
  return names;
}

std::vector<std::string> fieldValues(const std::string& field)
{
  if (field == "type")
    return typeNames();
  if (field == "available" || field == "inhibit")
    return {"yes", "no"};
  if (field == "label-mapping")
    return labelMapNames(requireFacility());
  if (field == "last-device")
    return deviceNames();
  return {};
}

/// The names of fields, or what the field that is typed may be set to.
Words assignments(const std::string& typed)
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
      name = typed.substr(0, equals + 1) + name;
  }
  return plain(names);
}

} // namespace

Words completionValues(const Completion& completion)
{
  switch (completion.value) {
  case ValueKind::Reel:
    return reels(completion.project);
  case ValueKind::Device:
    return deviceNumbers();
  case ValueKind::Project:
    return plain(requireFacility().projectNames());
  case ValueKind::LabelMap:
    return plain(labelMapNames(requireFacility()));
  case ValueKind::FrameRate:
    return frameRates();
  case ValueKind::Field:
    return assignments(completion.typed);
  case ValueKind::Other:
  case ValueKind::File:
  case ValueKind::Folder:
    break;
  }
  return {};
}

} // namespace reeldb::cli
