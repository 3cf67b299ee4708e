// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <cwchar>
#include <filesystem>
#include <string>

#include "host/device.h"
#include "host/text.h"
#include "journal/host_call.h"
#include "model/settings.h"

using reelhost::describeAll;
using reelhost::hostCall;
using reelhost::Script;

namespace {

/// Whether the name cannot lead out of the folder of label maps.
bool isPlain(const std::string& name)
{
  return !name.empty() && name.find('/') == std::string::npos && name != "." && name != "..";
}

/// Reads the map's file. Returns false, and leaves the entries unchanged, if it cannot be read.
bool readEntries(const std::string& name, LabelMappingSet::Entry (&entries)[LabelMappingSet::numEntries])
{
  const reelhost::Facility& facility = reelhost::model::facilityOrNone();
  if (facility.directory().empty() || !isPlain(name))
    return false;
  try {
    const std::vector<reelhost::LabelMapEntry> read =
        reelhost::readLabelMap(facility.labelMapDirectory() / (name + ".toml"));
    if (read.size() != std::size(entries))
      return false;
    std::transform(read.begin(), read.end(), entries, [](const reelhost::LabelMapEntry& entry) {
      return LabelMappingSet::Entry{static_cast<std::uint8_t>(entry.inUse), entry.source, entry.format};
    });
    return true;
  } catch (const reelhost::Error&) {
    return false;
  }
}

} // namespace

LabelMappingSet::LabelMappingSet() : entries() {}

bool LabelMappingSet::load(const LightweightString<wchar_t>& name)
{
  const auto reset = [&] { std::fill(std::begin(entries), std::end(entries), Entry{}); };
  return hostCall(
      "LabelMappingSet::load", [&] { return describeAll(name); },
      [&] {
        reset();
        return readEntries(toUTF8(name).c_str(), entries);
      },
      [&]() -> std::optional<bool> {
        const auto& maps = Script::the().labelMaps;
        if (maps.empty())
          return std::nullopt;
        reset();
        const auto found = maps.find(name.c_str());
        if (found == maps.end())
          return false;
        std::copy_n(found->second.begin(), std::min(found->second.size(), std::size(entries)), entries);
        return true;
      });
}
