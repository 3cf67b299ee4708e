// SPDX-License-Identifier: Apache-2.0
//
// A reel type file of any bytes: the catalogue contains the file's types in their order; the library warns about every
// other record, with its line; nothing else is printed; and the types can be written and read again.
#include <cstdint>

#include "ReelTypeManager.h"
#include "models/reel_types.h"
#include "support/bytes.h"
#include "support/check.h"
#include "support/own_host.h"
#include "support/temp_folder.h"

namespace {

using namespace reeldb_fuzz;
using Types = std::vector<std::pair<std::string, std::string>>;

/// An empty catalogue, separate from the process's.
class Catalogue {
public:
  Catalogue() { types_.rep()->discardAll(); }

  void load(const std::string& bytes)
  {
    static const reeldb_tests::TempFolder folder;
    const std::string path = folder.write("reeltype.dat", bytes);
    types_.load(path.c_str());
  }

  Types all()
  {
    Types all;
    for (unsigned i = 0; i < types_.rep()->count(); ++i)
      all.emplace_back(types_.at(i).key.c_str(), types_.at(i).value.c_str());
    return all;
  }

  ReelTypeManager* operator->() { return &types_; }

private:
  ReelTypeManager types_;
};

void requireTypes(const Types& got, const Types& wanted, const char* when)
{
  requireEqual(got.size(), wanted.size(), when, "the number of types");
  for (std::size_t i = 0; i < got.size(); ++i) {
    requireEqual(got[i].first, wanted[i].first, when, "the name of type", i);
    requireEqual(got[i].second, wanted[i].second, when, "the parameters of type", i);
  }
}

void requireQueries(Catalogue& catalogue, const Types& types)
{
  StringList names;
  catalogue->getAllReelTypes(names);
  requireEqual(names.count(), types.size(), "the number of names listed");
  for (unsigned i = 0; i < names.count(); ++i) {
    const auto& [name, params] = types[i];
    const int video = valueInParams(params, "VideoChannels").value_or(0);
    const int audio = valueInParams(params, "AudioChannels").value_or(0);
    requireEqual(std::string(names[i].c_str()), name, "a name listed");
    for (const ReelType& type : {catalogue->type(i), catalogue->type(LightweightString<char>(name.c_str()))}) {
      requireEqual(std::string(type.name.c_str()), name, "the name of a type");
      requireEqual(type.numVideoChans, video, "the number of video channels of", name);
      requireEqual(type.numAudioChans, audio, "the number of audio channels of", name);
    }
  }
}

/// A file with these types. A second colon ends the parameters, because otherwise a type without any would be no type.
std::string written(const Types& types)
{
  std::string bytes;
  for (const auto& [name, params] : types)
    bytes += name + ":" + params + ":\n";
  return bytes;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
  const std::string bytes = allOf(data, size);
  const TypeFile wanted = typeFileOf(bytes);
  // The library ends the process for a text that is too long. Other tests check that to the byte; here it would hide
  // the rest of the file.
  if (wanted.endsProcess)
    return 0;

  Catalogue catalogue;
  ownHost().printed.clear();
  catalogue.load(bytes);
  requireEqual(ownHost().printed, wanted.warnings, "warnings");
  requireTypes(catalogue.all(), wanted.types, "after loading");

  catalogue.load(bytes);
  requireTypes(catalogue.all(), wanted.types, "after loading again");
  requireQueries(catalogue, wanted.types);
  requireTypes(catalogue.all(), wanted.types, "after asking");

  Catalogue again;
  ownHost().printed.clear();
  again.load(written(wanted.types));
  requireTypes(again.all(), wanted.types, "written and read again");
  requireEqual(ownHost().printed, std::vector<std::string>(), "warnings about what was written");
  return 0;
}
