// SPDX-License-Identifier: Apache-2.0
#include "model/search_attributes.h"

#include "host/projdb.h"
#include "journal/host_call.h"

using reelhost::describeAll;
using reelhost::hostCall;
using reelhost::noArguments;
using reelhost::model::SearchAttributes;

/// Gives the rest of the host access, through attributesIn, to the values that only members of Map can reach.
struct LogAttributes::Map::Impl {
  SearchAttributes attributes;

  static const SearchAttributes& of(const Map& map) { return map.impl_->attributes; }
  friend const SearchAttributes& attributesBehind(const Map& map) { return of(map); }
};

namespace LogAttributes {

const SearchAttributes& attributesBehind(const Map& map);

Map::Map() : impl_(new Impl) {}

Map::Map(const Map& other) : impl_(new Impl(*other.impl_)) {}

Map& Map::operator=(const Map& other)
{
  *impl_ = *other.impl_;
  return *this;
}

Map::~Map()
{
  delete impl_;
}

void Map::add(eLogAttribute attribute, LightweightString<char> value)
{
  hostCall(
      "LogAttributes::Map::add", [&] { return describeAll(attribute, value); },
      [&] { impl_->attributes.emplace_back(attribute, value); });
}

} // namespace LogAttributes

projdb::SearchCriteria::SearchCriteria() : first(0), second(0)
{
  hostCall("projdb::SearchCriteria::SearchCriteria", noArguments, [] {});
}

const SearchAttributes& reelhost::model::attributesIn(const LogAttributes::Map& map)
{
  return LogAttributes::attributesBehind(map);
}
