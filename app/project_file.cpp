// SPDX-License-Identifier: Apache-2.0
#include "app/project_file.h"

#include <random>
#include <vector>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "text/display_text.h"
#include "line/failure.h"
#include "text/output.h"
#include "app/plain_text.h"
#include "reelhost/store.h"

namespace reeldb::cli {

namespace {

std::array<unsigned char, 16> newUuid()
{
  std::random_device source;
  std::array<unsigned char, 16> bytes{};
  for (unsigned char& byte : bytes)
    byte = static_cast<unsigned char>(source());
  // Marks it as a random one.
  bytes[6] = static_cast<unsigned char>((bytes[6] & 0x0F) | 0x40);
  bytes[8] = static_cast<unsigned char>((bytes[8] & 0x3F) | 0x80);
  return bytes;
}

} // namespace

void makeProject(const reelhost::Facility& facility, const std::string& name, const std::string& rate)
{
  const auto code = facility.frameRateCode(rate);
  if (!code) {
    std::vector<std::string> known;
    for (const auto& [rateName, rateCode] : facility.frameRates())
      known.push_back(fmt::format("{} (code {})", rateName, rateCode));
    throw Failure(usage, fmt::format("\"{}\": no such frame rate (this facility has: {})", shortText(rate),
                                     fmt::join(known, ", ")));
  }
  requirePlainText(name, fmt::format("\"{}\": no name for a project", shortText(name)));
  reelhost::ProjectInfo info;
  info.name = name;
  info.uuid = newUuid();
  info.frameRate = *code;
  info.outputFrameRate = *code;
  createSqliteProject(facility.projectFile(name), info,
                      {{"reeldb_defaultType", facility.configString("default_reel_type").value_or("")}});
  changesAreStored();
}

std::string frameRateName(const reelhost::Facility& facility, int code)
{
  for (const auto& [name, known] : facility.frameRates())
    if (known == code)
      return name;
  return std::to_string(code);
}

} // namespace reeldb::cli
