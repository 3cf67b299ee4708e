// SPDX-License-Identifier: Apache-2.0
#include "model/settings.h"

#include <cstdlib>
#include <optional>
#include <set>
#include <string>
#include <utility>

#include "host/config.h"
#include "host/text.h"
#include "journal/host_call.h"
#include "reelhost/display_text.h"
#include "reelhost/host.h"

using reelhost::describeAll;
using reelhost::hostCall;
using reelhost::noArguments;

namespace reelhost {

namespace {

/// The source of settings. The library reads settings while it is loaded, before any constructor of the program runs.
struct Source {
  Facility facility;          ///< an empty one if there is no facility
  std::optional<Error> error; ///< why the facility named by the environment cannot be used

  Source()
  {
    const char* const named = std::getenv("REELDB_FACILITY");
    if (!named || !*named)
      return;
    try {
      facility = Facility::read(named);
    } catch (const Error& e) {
      error = e;
    } catch (const std::exception& e) {
      error = Error(ErrorKind::Unreadable, displayText(named) + ": cannot be read (" + e.what() + ")");
    }
  }
};

Source& source()
{
  static Source& instance = *new Source;
  return instance;
}

} // namespace

Facility& facility()
{
  if (source().error)
    throw *source().error;
  return model::facilityOrNone();
}

void useFacility(Facility facility)
{
  Source& s = source();
  s.facility = std::move(facility);
  s.error.reset();
}

Facility& model::facilityOrNone()
{
  return source().facility;
}

} // namespace reelhost

namespace {

/// A text that stays until the process ends.
const char* kept(const std::string& text)
{
  static auto& texts = *new std::set<std::string>;
  return texts.insert(text).first->c_str();
}

// No file can exist below a device. So without a facility the library reads no type file: neither one of the working
// folder, nor one that was refused and could end the process.
constexpr wchar_t nowhere[] = L"/dev/null/";

LightweightString<wchar_t> deviceDataDirectory()
{
  const reelhost::Facility& facility = reelhost::model::facilityOrNone();
  return facility.directory().empty() ? nowhere : fromUTF8(facility.deviceDataDirectory().c_str());
}

} // namespace

const char* config_string(const char* key, const char* defaultValue)
{
  return hostCall(
      "config_string", [&] { return describeAll(key, defaultValue); },
      [&] {
        const auto text = reelhost::model::facilityOrNone().configString(key ? key : "");
        return text ? kept(*text) : defaultValue;
      });
}

LightweightString<wchar_t> getDeviceDataDirectory(iSettings::eType type)
{
  return hostCall(
      "getDeviceDataDirectory", [&] { return describeAll(type); }, deviceDataDirectory);
}

SystemCfg& SystemCfg::theConfig()
{
  static SystemCfg config;
  hostCall("SystemCfg::theConfig", noArguments, [] {});
  return config;
}

LightweightString<char> SystemCfg::get(const LightweightString<char>& key) const
{
  return hostCall(
      "SystemCfg::get", [&] { return describeAll(key); },
      [&] { return LightweightString<char>(reelhost::model::facilityOrNone().systemValue(key.c_str()).c_str()); });
}

void SystemCfg::set(const LightweightString<char>& key, const LightweightString<char>& value)
{
  hostCall(
      "SystemCfg::set", [&] { return describeAll(key, value); },
      [&] { reelhost::model::facilityOrNone().setSystemValue(key.c_str(), value.c_str()); });
}
