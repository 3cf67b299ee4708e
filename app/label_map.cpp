// SPDX-License-Identifier: Apache-2.0
#include "app/label_map.h"

#include <algorithm>
#include <system_error>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "text/display_text.h"
#include "app/session.h"

namespace reeldb::cli {

namespace {

namespace fs = std::filesystem;

constexpr const char* suffix = ".toml";

std::string mapsThereAre(const reelhost::Facility& facility)
{
  const auto names = labelMapNames(facility);
  return names.empty() ? "this facility has none" : fmt::format("this facility has: {}", fmt::join(names, ", "));
}

} // namespace

std::vector<std::string> labelMapNames(const reelhost::Facility& facility)
{
  std::vector<std::string> names;
  std::error_code none;
  for (const auto& entry : fs::directory_iterator(facility.labelMapDirectory(), none))
    if (entry.path().extension() == suffix)
      names.push_back(entry.path().stem().string());
  std::sort(names.begin(), names.end());
  return names;
}

fs::path labelMapFile(const reelhost::Facility& facility, const std::string& name)
{
  return facility.labelMapDirectory() / (name + suffix);
}

std::optional<Failure> labelMapFault(const reelhost::Facility& facility, const std::string& name)
{
  // A name that leads out of the folder names nothing in it.
  const auto names = labelMapNames(facility);
  if (std::find(names.begin(), names.end(), name) == names.end())
    return Failure(refused, fmt::format("\"{}\": no such label map ({})", shortText(name), mapsThereAre(facility)));
  try {
    reelhost::readLabelMap(labelMapFile(facility, name));
    return std::nullopt;
  } catch (const reelhost::Error& error) {
    return Failure(unreadable, error.what());
  }
}

void answerLabelMap(Json report, const std::string& map, bool asJson)
{
  const auto fault = labelMapFault(requireFacility(), map);
  if (fault)
    report["fault"] = fault->what();
  if (asJson)
    printJson(report);
  else
    print(displayText(map) + "\n");
  if (fault)
    complain(fault->what());
}

} // namespace reeldb::cli
