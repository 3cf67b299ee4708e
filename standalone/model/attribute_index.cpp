// SPDX-License-Identifier: Apache-2.0
#include "model/attribute_index.h"

#include "host/codes.h"

#include <algorithm>

#include "base/ascii.h"

namespace reelhost::model {

namespace {

bool byNumber(const Log* a, const Log* b)
{
  return a->number < b->number;
}

} // namespace

void AttributeIndex::refresh(Log& log)
{
  take(log);
  if (log.isGone || log.type == codes::reelLog || log.reelId.empty())
    return;
  auto& [key, group] = *logs_.try_emplace(reeldb::base::fold(log.reelId.c_str())).first;
  group.insert(std::upper_bound(group.begin(), group.end(), &log, byNumber), &log);
  log.indexedUnder = &key;
}

void AttributeIndex::take(Log& log)
{
  if (!log.indexedUnder)
    return;
  const auto found = logs_.find(*log.indexedUnder);
  std::vector<Log*>& group = found->second;
  group.erase(std::lower_bound(group.begin(), group.end(), &log, byNumber));
  if (group.empty())
    logs_.erase(found);
  log.indexedUnder = nullptr;
}

const std::vector<Log*>& AttributeIndex::find(std::string_view id) const
{
  static const auto& none = *new std::vector<Log*>;
  const auto found = logs_.find(reeldb::base::fold(id));
  return found == logs_.end() ? none : found->second;
}

} // namespace reelhost::model
