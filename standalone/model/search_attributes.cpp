// SPDX-License-Identifier: Apache-2.0
#include "model/search_attributes.h"

#include "host/projdb.h"
#include "journal/host_call.h"

using reelhost::describeAll;
using reelhost::hostCall;
using reelhost::noArguments;
using reelhost::model::SearchAttributes;

struct LogAttributes::Map::Impl {
  SearchAttributes attributes;
};

namespace LogAttributes {

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
  return map.impl()->attributes;
}
