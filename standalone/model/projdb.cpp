// SPDX-License-Identifier: Apache-2.0
#include "host/projdb.h"

#include <cstring>

#include "base/ascii.h"
#include "host/codes.h"
#include "journal/host_call.h"
#include "model/log.h"
#include "model/log_types.h"
#include "model/project.h"
#include "model/search_attributes.h"

using reelhost::describeAll;
using reelhost::hostCall;
using reelhost::noArguments;
using reelhost::Script;
using reelhost::model::Log;
using reelhost::model::openedProject;
namespace scripted = reelhost::scripted;

class oledb {};

namespace {

// The columns of a row. 0 is not a column.
constexpr unsigned short noColumn = 0, typeColumn = 1, reelTypeColumn = 2;

// These objects refer to the project that is open when they are used; at most one project is open.
projdb database_{};
oledb tables_;

unsigned short columnOf(const char* name)
{
  if (!name)
    return noColumn;
  if (std::strcmp(name, "Type") == 0)
    return typeColumn;
  return std::strcmp(name, "Reel Type") == 0 ? reelTypeColumn : noColumn;
}

const char* fieldOf(const Log& log, unsigned short column)
{
  switch (column) {
  case typeColumn:
    return reelhost::model::textOf(log.type);
  case reelTypeColumn:
    return log.shownReelType.c_str();
  default:
    return nullptr;
  }
}

/// The identifier that all attributes require; empty if they do not require the same one.
LightweightString<char> reelIdIn(const reelhost::model::SearchAttributes& attributes)
{
  LightweightString<char> wanted;
  for (const auto& [attribute, value] : attributes) {
    const bool same = wanted.empty() || reeldb::base::sameName(wanted.c_str(), value.c_str());
    if (attribute != codes::reelIdAttribute || value.empty() || !same)
      return {};
    wanted = value;
  }
  return wanted;
}

std::string textOf(const projdb::SearchCriteria& criteria)
{
  std::string text = describeAll(criteria.first, criteria.second);
  for (const auto& [attribute, value] : reelhost::model::attributesIn(criteria.attributes))
    text += ", " + reelhost::describe(attribute) + ": " + reelhost::describe(value);
  return text;
}

} // namespace

const char* dbrecord::get_field(unsigned short column) const
{
  const Log& log = *impl->log;
  return hostCall(
      "dbrecord::get_field", [&] { return describeAll(log.cookie, column); }, [&] { return fieldOf(log, column); },
      [&]() -> std::optional<const char*> {
        if (column != typeColumn)
          return std::nullopt;
        const auto field = scripted::typeFieldOf(log.cookie);
        return field ? std::optional(field->text) : std::nullopt;
      });
}

CookieVec projdb::search(unsigned mask, unsigned maskOff)
{
  return hostCall(
      "projdb::search",
      [&] {
        char text[32];
        std::snprintf(text, sizeof text, "0x%X, 0x%X", mask, maskOff);
        return std::string(text);
      },
      [&] {
        const bool known = openedProject && mask == codes::reelSearchMask && maskOff == codes::reelSearchMaskOff;
        return known ? openedProject->reels() : CookieVec();
      },
      [] { return Script::the().maskSearchResult; });
}

CookieVec projdb::search(const SearchCriteria& criteria)
{
  return hostCall(
      "projdb::search", [&] { return textOf(criteria); },
      [&] {
        const LightweightString<char> id = reelIdIn(reelhost::model::attributesIn(criteria.attributes));
        const bool known =
            openedProject && criteria.first == codes::shotSearchFirst && criteria.second == codes::shotSearchSecond;
        return known && !id.empty() ? openedProject->othersWithReelId(id.c_str()) : CookieVec();
      },
      [] { return Script::the().attributeSearchResult; });
}

dbrecord* projdb::operator[](const Cookie& cookie)
{
  return hostCall(
      "projdb::operator[]", [&] { return describeAll(cookie); },
      [&]() -> dbrecord* {
        Log* const log = openedProject ? openedProject->find(cookie) : nullptr;
        return log ? &log->row : nullptr;
      },
      [&] { return scripted::hasNoRow(cookie) ? std::optional<dbrecord*>(nullptr) : std::nullopt; });
}

unsigned short projdb::findField(const char* name) const
{
  return hostCall(
      "projdb::findField", [&] { return describeAll(name); }, [&] { return columnOf(name); });
}

oledb* projdb::database()
{
  return &tables_;
}

projdb* EditManager::getProjdb()
{
  return hostCall(
      "EditManager::getProjdb", noArguments, [] { return openedProject ? &database_ : nullptr; },
      [] { return scripted::databaseIsGone() ? std::optional<projdb*>(nullptr) : std::nullopt; });
}
