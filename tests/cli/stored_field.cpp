// SPDX-License-Identifier: Apache-2.0
#include "cli/stored_field.h"

#include <algorithm>
#include <stdexcept>

#include "reelhost/store.h"

namespace reeldb_tests {

namespace {

const std::string idKey = "reelid";

bool bears(const reelhost::StoredLog& log, const std::string& id)
{
  return std::find(log.fields.begin(), log.fields.end(), std::pair(idKey, id)) != log.fields.end();
}

} // namespace

void setStored(const std::filesystem::path& project, const std::string& id, const std::string& key,
               const std::string& text)
{
  const auto store = reelhost::makeSqliteStore(project);
  store->begin(reelhost::Access::Write, std::chrono::seconds(1));
  reelhost::Changes changes;
  const auto change = [&](reelhost::StoredLog&& log) {
    if (!bears(log, id))
      return;
    for (auto& [fieldKey, value] : log.fields)
      if (fieldKey == key)
        value = text;
    changes.logs.push_back(std::move(log));
  };
  store->readReels(change);
  store->readOthers(change);
  if (changes.logs.empty())
    throw std::runtime_error(id + ": no log bears it");
  store->commit(changes);
}

void respell(const std::filesystem::path& project, const std::string& from, const std::string& to)
{
  setStored(project, from, idKey, to);
}

} // namespace reeldb_tests
