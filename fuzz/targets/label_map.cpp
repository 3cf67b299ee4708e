// SPDX-License-Identifier: Apache-2.0
//
// A label map file of any bytes: either it has fourteen entries of known codes, which the library reads in the same
// way, and can be written and read again; or an error names the place of the fault.
#include <array>
#include <cstdint>
#include <string_view>

#include "host/device.h"
#include "reelhost/host.h"
#include "support/bytes.h"
#include "support/check.h"
#include "support/config_error.h"
#include "support/temp_folder.h"
#include "support/toml_text.h"

namespace {

using namespace reeldb_fuzz;
using Entries = std::vector<reelhost::LabelMapEntry>;

// The index of a word is its code, as in the description of label maps.
constexpr std::array<std::string_view, 10> sources = {"none",        "vitc", "vitc2", "9-pin ltc",   "9-pin vitc",
                                                      "9-pin timer", "ltc",  "rp188", "time of day", "1394"};
constexpr std::array<std::string_view, 11> formats = {
    "30 fps", "25 fps", "24 fps", "35mm feet+frames", "16mm feet+frames", "key number", "ink number", "frame count",
    "text",   "50 fps", "60 fps"};

/// A facility that contains only this label map. The process uses it from then on.
class Site {
public:
  Site()
  {
    folder_.write("facility.toml", "");
    reelhost::useFacility(reelhost::Facility::read(folder_.path()));
  }
  std::string write(const std::string& bytes) const { return folder_.write("labelmaps/map.toml", bytes); }

private:
  reeldb_tests::TempFolder folder_;
};

void requireSame(const Entries& got, const Entries& wanted, const char* what)
{
  requireEqual(got.size(), wanted.size(), what, "entries");
  for (std::size_t i = 0; i < wanted.size(); ++i) {
    requireEqual(got[i].inUse, wanted[i].inUse, what, "in use");
    requireEqual(got[i].source, wanted[i].source, what, "source");
    requireEqual(got[i].format, wanted[i].format, what, "format");
  }
}

/// The file as the library reads it.
Entries loaded(bool& good)
{
  LabelMappingSet set;
  good = set.load(L"map");
  Entries entries;
  for (const LabelMappingSet::Entry& entry : set.entries)
    entries.push_back({entry.inUse != 0, entry.source, entry.format});
  return entries;
}

std::string written(const Entries& entries)
{
  std::string text;
  for (const reelhost::LabelMapEntry& entry : entries)
    text += std::string("[[entry]]\nlabel = \"\"\nin_use = ") + (entry.inUse ? "true" : "false") +
            "\nsource = " + tomlText(std::string(sources.at(entry.source))) +
            "\nformat = " + tomlText(std::string(formats.at(entry.format))) + "\n";
  return text;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
  static const Site site;
  const std::string bytes = allOf(data, size);
  const std::string path = site.write(bytes);
  bool good = false;
  const Entries seen = loaded(good);
  Entries entries;
  try {
    entries = reelhost::readLabelMap(path);
  } catch (const reelhost::Error& error) {
    requireHelpful(error, path, bytes);
    require(!good, "the library has a map that cannot be read");
    requireSame(seen, Entries(14), "a map that cannot be read");
    return 0;
  }
  require(good, "the library has no map of a file that can be read");
  requireEqual(entries.size(), std::size_t{14}, "entries");
  for (const reelhost::LabelMapEntry& entry : entries) {
    require(entry.source < sources.size(), "source", entry.source, "has no word");
    require(entry.format < formats.size(), "format", entry.format, "has no word");
  }
  requireSame(seen, entries, "as the library sees it");
  requireSame(reelhost::readLabelMap(site.write(written(entries))), entries, "written and read again");
  return 0;
}
