// SPDX-License-Identifier: Apache-2.0
#include "store/sqlite_lists.h"

#include <algorithm>

#include "store/deflate.h"
#include "store/list_image.h"

namespace reelhost {

using sqlite::Database;
using sqlite::failDamaged;
using sqlite::Statement;

namespace {

std::vector<ListEvent> eventsIn(const Statement& row, int column, std::int64_t list)
{
  std::optional<std::vector<ListEvent>> events = eventsFrom(row.text(column));
  if (!events)
    failDamaged("list " + std::to_string(list) + " has no valid events");
  return std::move(*events);
}

/// The columns of a statement that begins with headColumns.
KeptList headIn(const Statement& row)
{
  KeptList list;
  list.number = row.integer(0);
  const std::string_view digest = row.text(1);
  if (digest.size() != list.digest.size())
    failDamaged("list " + std::to_string(list.number) + " has no valid digest");
  std::copy(digest.begin(), digest.end(), list.digest.begin());
  list.file = row.text(2);
  list.title = row.text(3);
  list.format = row.text(4);
  list.eventCount = row.integer(5);
  return list;
}

} // namespace

std::int64_t lastListNumber(Database& database)
{
  return database.integer("SELECT value FROM project WHERE key = 'last_list'");
}

void readListHeads(Database& database, const std::function<void(KeptList&&)>& sink)
{
  Statement rows(database, "SELECT number, digest, file, title, format, event_count FROM lists ORDER BY number");
  while (rows.step())
    sink(headIn(rows));
}

std::optional<std::vector<ListEvent>> eventsOf(Database& database, std::int64_t list)
{
  Statement row(database, "SELECT events FROM lists WHERE number = ?1");
  row.bind(1, list);
  if (!row.step())
    return {};
  return eventsIn(row, 0, list);
}

std::optional<KeptList> findList(Database& database, std::int64_t number)
{
  Statement row(database,
                "SELECT number, digest, file, title, format, event_count, events FROM lists WHERE number = ?1");
  row.bind(1, number);
  if (!row.step())
    return {};
  KeptList list = headIn(row);
  list.events = eventsIn(row, 6, number);
  return list;
}

std::optional<std::string> listBytes(Database& database, const Digest& digest)
{
  Statement row(database, "SELECT bytes FROM list_bytes WHERE digest = ?1");
  row.bindBlob(1, digest.data(), digest.size());
  if (!row.step())
    return {};
  std::optional<std::string> bytes = inflated(row.text(0));
  if (!bytes || digestOf(*bytes) != digest)
    failDamaged("the bytes of a list are not those that were stored");
  return bytes;
}

} // namespace reelhost
