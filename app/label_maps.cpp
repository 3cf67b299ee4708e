// SPDX-License-Identifier: Apache-2.0
#include "app/label_maps.h"

#include <algorithm>
#include <filesystem>
#include <set>
#include <system_error>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "LabelMaps.h"
#include "app/device_settings.h"
#include "app/facility.h"
#include "app/host_errors.h"
#include "app/host_text.h"
#include "app/projects.h"
#include "app/reel_records.h"
#include "base/text_width.h"
#include "host/codes.h"
#include "reelhost/host.h"

namespace reeldb::app {

namespace {

namespace fs = std::filesystem;

constexpr const char* suffix = ".toml";

std::string mapsThereAre()
{
  const auto names = labelMapNames();
  return names.empty() ? "this facility has no label maps"
                       : fmt::format("this facility has: {}", fmt::join(names, ", "));
}

fs::path labelMapFile(const std::string& name)
{
  return requireFacility().labelMapDirectory() / (name + suffix);
}

/// Why the map does not fit the project: the project's frame rate, and the formats of the labels with other rates.
/// REQUIRES: the library reports that it does not fit, so the project's rate and some labels are of different families.
std::string whyNotThisProject(const std::string& map)
{
  const int rate = reelhost::projectInfo().frameRate;
  const bool isPal = rate == codes::rate25 || rate == codes::rate50;
  const auto isOfTheOther = [isPal](std::uint32_t format) {
    return isPal ? format == codes::counts30Fps || format == codes::counts60Fps
                 : format == codes::counts25Fps || format == codes::counts50Fps;
  };
  std::set<std::string> formats;
  for (const reelhost::LabelMapEntry& entry : reelhost::readLabelMap(labelMapFile(map)))
    if (entry.inUse && isOfTheOther(entry.format))
      formats.insert(reelhost::labelFormatWord(entry.format));
  return fmt::format("the project runs at {} fps, some labels of the map are {}", frameRateName(rate),
                     fmt::join(formats, ", "));
}

NeededLabelMap needed(std::optional<std::string> reel, int device, std::string map)
{
  const auto fault = labelMapFault(map);
  return {std::move(reel), device, std::move(map), fault ? fault->what() : ""};
}

} // namespace

std::vector<std::string> labelMapNames()
{
  std::vector<std::string> names;
  std::error_code none;
  for (const auto& entry : fs::directory_iterator(requireFacility().labelMapDirectory(), none))
    if (entry.path().extension() == suffix)
      names.push_back(entry.path().stem().string());
  std::sort(names.begin(), names.end());
  return names;
}

std::optional<Error> labelMapFault(const std::string& name)
{
  // A name that leads out of the folder does not name a file in it.
  const auto names = labelMapNames();
  if (std::find(names.begin(), names.end(), name) == names.end())
    return Error(ErrorKind::NotFound,
                 fmt::format("\"{}\": no such label map ({})", base::shortText(name), mapsThereAre()));
  try {
    reelhost::readLabelMap(labelMapFile(name));
    return std::nullopt;
  } catch (const reelhost::Error& error) {
    return Error(ErrorKind::Unreadable, error.what());
  }
}

std::vector<LabelMap> listLabelMaps(Session&)
{
  return guarded([] {
    std::vector<LabelMap> maps;
    for (const std::string& name : labelMapNames()) {
      LabelMap map{name, false, false, {}};
      if (const auto fault = labelMapFault(name)) {
        map.fault = fault->what();
      } else {
        const LightweightString<wchar_t> wide = wideHostText(name);
        map.usesVitc = map_file_uses_vitc(wide);
        map.fitsProject = map_file_is_compatible_with_project(wide);
      }
      maps.push_back(std::move(map));
    }
    return maps;
  });
}

LabelMapCheck checkLabelMap(Session&, const std::string& name, const std::optional<std::string>& device)
{
  return guarded([&] {
    const reelhost::DeviceSettings* const settings = device ? &requireDevice(*device) : nullptr;
    if (const auto fault = labelMapFault(name)) // it names the line; the library only reports that it failed
      throw *fault;
    const LightweightString<wchar_t> wide = wideHostText(name);
    LabelMapCheck check;
    check.map.name = name;
    check.map.fitsProject = map_file_is_compatible_with_project(wide);
    if (settings) {
      check.device = settings->number;
      check.deviceName = settings->name;
      check.fitsDevice = map_file_is_compatible_with_device(wide, IdStamp(settings->id)); // if not, this prints why
    }
    check.map.usesVitc = map_file_uses_vitc(wide);
    if (!check.map.fitsProject)
      check.why = whyNotThisProject(name);
    return check;
  });
}

NeededLabelMap labelMapForReel(Session& session, const std::string& reel, const std::string& device)
{
  return guarded([&] {
    const reelhost::DeviceSettings settings = requireDevice(device);
    const LightweightString<char> id = requireReel(session.manager(), reel).reelId();
    return needed(text(id), settings.number, text(get_required_label_map_name(id, IdStamp(settings.id))));
  });
}

NeededLabelMap labelMapForDevice(Session&, const std::string& device)
{
  return guarded([&] {
    const reelhost::DeviceSettings settings = requireDevice(device);
    return needed(std::nullopt, settings.number, text(get_device_label_map_name(IdStamp(settings.id))));
  });
}

} // namespace reeldb::app
