// SPDX-License-Identifier: Apache-2.0
#include "LabelMaps.h"

#include <algorithm>
#include <iterator>

#include "ReelDbManager.h"
#include "host/codes.h"
#include "host/device.h"
#include "host/project.h"
#include "host/text.h"
#include "reelrec/text_equality.h"

namespace {

using Entry = LabelMappingSet::Entry;

bool readsVitc(const Entry& e)
{
  return e.source == codes::fromVitc || e.source == codes::fromVitc2;
}

bool reads9Pin(const Entry& e)
{
  return e.source >= codes::from9PinLtc && e.source <= codes::from9PinTimer;
}

bool reads1394(const Entry& e)
{
  return e.source == codes::from1394;
}

/// Whether any entry in use matches.
template <class Test>
bool anyInUse(const LabelMappingSet& map, Test test)
{
  return std::any_of(std::begin(map.entries), std::end(map.entries),
                     [&](const Entry& e) { return e.inUse != 0 && test(e); });
}

bool conflictsWithRate(std::uint32_t format, int rate)
{
  switch (rate) {
  case codes::rate25:
  case codes::rate50:
    return format == codes::counts30Fps || format == codes::counts60Fps;
  case codes::rate2997:
  case codes::rate5994:
    return format == codes::counts25Fps || format == codes::counts50Fps;
  default:
    return false;
  }
}

/// What a rejection names: the map, then the device.
struct Names {
  Names(const LightweightString<wchar_t>& mapName, const ExtDeviceConfig& config)
      : map(toUTF8(mapName)), device(toUTF8(config.getTextName()))
  {
  }
  const LightweightString<char> map, device;
};

enum class Family { Pal, Ntsc, Frame24 };

Family familyOf(int rate)
{
  switch (rate) {
  case codes::rate25:
  case codes::rate50:
    return Family::Pal;
  case codes::rate2997:
  case codes::rate30:
  case codes::rate5994:
  case codes::rate60:
    return Family::Ntsc;
  default:
    return Family::Frame24;
  }
}

/// The names are used whole; "ntsc1394" has one letter more than its neighbours on purpose.
const wchar_t* defaultMap(int port, Family family)
{
  static constexpr const wchar_t* names[][3] = {
      {L"pal9pin", L"nts9pin", L"24f9pin"},
      {L"pal1394", L"ntsc1394", L"24f1394"},
      {L"paltofd", L"ntstofd", L"24ftofd"},
  };
  const int row = port == codes::port9Pin ? 0 : port == codes::port1394 ? 1 : 2;
  return names[row][static_cast<int>(family)];
}

} // namespace

bool map_file_uses_vitc(const LightweightString<wchar_t>& mapName)
{
  LabelMappingSet map;
  return map.load(mapName) && anyInUse(map, readsVitc);
}

bool map_file_is_compatible_with_project(const LightweightString<wchar_t>& mapName)
{
  const int rate = Zr::CurrentProject::getFrameRate(Zr::CurrentProject::Revision(0));
  LabelMappingSet map;
  // A map that cannot be read counts as compatible with the project.
  return !map.load(mapName) || !anyInUse(map, [rate](const Entry& e) { return conflictsWithRate(e.format, rate); });
}

bool map_file_is_compatible_with_device(const LightweightString<wchar_t>& mapName, const IdStamp& device)
{
  LabelMappingSet map;
  if (!map.load(mapName)) {
    vorn_printf("Invalid label mapping file name <%s>\n", toUTF8(mapName).c_str());
    return false;
  }
  const ExtDeviceConfig config = theConfigurationManager().getConfig(device);
  if (config.getPortType() == codes::port1394 && anyInUse(map, [](const Entry& e) { return !reads1394(e); })) {
    const Names names(mapName, config);
    vorn_printf("Label map <%s> not compatible with 1394 device <%s>\n", names.map.c_str(), names.device.c_str());
    return false;
  }
  if (config.getPortType() == codes::port9Pin && anyInUse(map, reads1394)) {
    const Names names(mapName, config);
    vorn_printf("Label map <%s> requires 1394 labels - device <%s> is not controllable via 1394\n", names.map.c_str(),
                names.device.c_str());
    return false;
  }
  if (anyInUse(map, readsVitc) && config.getInputType() == codes::noVideoInput) {
    const Names names(mapName, config);
    vorn_printf("Label map <%s> requires VITC - device <%s> has no video input\n", names.map.c_str(),
                names.device.c_str());
    return false;
  }
  if (config.getPortType() != codes::port9Pin && anyInUse(map, reads9Pin)) {
    const Names names(mapName, config);
    vorn_printf("Label map <%s> requires 9-PIN labels - device <%s> is not controllable via 9-PIN\n", names.map.c_str(),
                names.device.c_str());
    return false;
  }
  return true;
}

LightweightString<wchar_t> get_device_label_map_name(const IdStamp& device)
{
  const ExtDeviceConfig config = theConfigurationManager().getConfig(device);
  const LightweightString<wchar_t> configured = config.getLabelMapping();
  if (!configured.empty() && map_file_is_compatible_with_device(configured, device))
    return configured; // NOLINT(performance-no-automatic-move): a copy shares the text
  const int port = config.getPortType();
  return defaultMap(port, familyOf(Zr::CurrentProject::getOutputImageZRFrameRate()));
}

LightweightString<wchar_t> get_required_label_map_name(LightweightString<char> reelId, const IdStamp& device)
{
  ReelDbRec rec = ReelDbManager::theReelDbManager()->getReelInfo(reelId);
  if (rec.valid()) {
    const LightweightString<char> mapping = rec.labelMapping();
    if (!mapping.empty() && !reeldb::sameText(mapping, "Device default"))
      return Zr::WStringFromAscii(mapping.c_str());
  }
  return get_device_label_map_name(device);
}
