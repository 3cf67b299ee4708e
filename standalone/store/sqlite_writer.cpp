// SPDX-License-Identifier: Apache-2.0
#include "store/sqlite_writer.h"

#include <algorithm>

#include "store/log_fields.h"
#include "store/sqlite_columns.h"
#include "store/sqlite_reader.h"

namespace reelhost {

using sqlite::Database;
using sqlite::Statement;

namespace {

/// The statement that stores a log and replaces a stored log of the same number.
std::string sqlToStoreLog()
{
  std::vector<std::string> columns = logColumns();
  std::string sql = "INSERT INTO logs(" + listOf(columns, [](const std::string& column) { return column; }) +
                    ") VALUES(" + listOf(columns, [](const std::string&) { return "?"; });
  columns.erase(columns.begin());
  return sql + ") ON CONFLICT(number) DO UPDATE SET " +
         listOf(columns, [](const std::string& column) { return column + " = excluded." + column; });
}

void bind(Statement& put, const StoredLog& log)
{
  put.bind(1, log.number).bind(2, log.type).bindBlob(3, log.uuid.data(), log.uuid.size());
  put.bind(4, log.tag).bind(5, std::string_view(&log.kind, 1)).bind(6, log.imported ? 1 : 0);
  put.bind(7, log.entireMedium ? 1 : 0).bind(8, log.name).bind(9, log.reelType);
  put.bind(10, log.videoChannels).bind(11, log.audioChannels);
  const auto parameter = [](std::size_t place) { return firstTextColumn + static_cast<int>(place) + 1; };
  for (std::size_t place = 0; place < shotTexts.size(); ++place)
    put.bindNull(parameter(place));
  for (const auto& [key, value] : log.fields)
    if (const std::size_t place = leadingPlace(key); place < shotTexts.size())
      put.bind(parameter(place), value);
}

void writeLogs(Database& database, const std::vector<StoredLog>& logs)
{
  Statement put(database, sqlToStoreLog());
  Statement dropFields(database, "DELETE FROM fields WHERE log = ?1");
  Statement putField(database, "INSERT OR REPLACE INTO fields(log, key, value) VALUES(?1, ?2, ?3)");
  const std::int64_t lastBefore = lastNumber(database);
  std::int64_t last = lastBefore;
  for (const StoredLog& log : logs) {
    bind(put, log);
    put.run();
    if (log.number <= lastBefore)
      dropFields.bind(1, log.number).run();
    for (const auto& [key, value] : log.fields)
      if (leadingPlace(key) == shotTexts.size())
        putField.bind(1, log.number).bind(2, key).bind(3, value).run();
    last = std::max(last, log.number);
  }
  if (last != lastBefore)
    Statement(database, "UPDATE project SET value = ?1 WHERE key = 'last_number'").bind(1, last).run();
}

} // namespace

void writeChanges(Database& database, const Changes& changes)
{
  if (changes.undelete)
    database.execute("UPDATE logs SET deletion = NULL "
                     "WHERE deletion = (SELECT max(deletion) FROM logs WHERE deletion IS NOT NULL)");
  if (changes.compact)
    database.execute("DELETE FROM logs WHERE deletion IS NOT NULL");
  if (!changes.logs.empty())
    writeLogs(database, changes.logs);
  if (!changes.deleted.empty()) {
    const std::int64_t deletion = database.integer("SELECT max(deletion) FROM logs WHERE deletion IS NOT NULL") + 1;
    Statement remove(database, "UPDATE logs SET deletion = ?1 WHERE number = ?2 AND deletion IS NULL");
    for (const std::int64_t number : changes.deleted)
      remove.bind(1, deletion).bind(2, number).run();
  }
  Statement option(database, "INSERT OR REPLACE INTO options(key, value) VALUES(?1, ?2)");
  for (const auto& [key, value] : changes.options)
    option.bind(1, key).bind(2, value).run();
}

} // namespace reelhost
