// SPDX-License-Identifier: Apache-2.0
#include "store/sqlite_reader.h"

#include <algorithm>
#include <limits>

#include "base/ascii.h"
#include "store/sqlite_columns.h"

namespace reelhost {

using sqlite::Database;
using sqlite::Statement;

namespace {

[[noreturn]] void failDamaged(const std::string& text)
{
  throw sqlite::Failure(sqlite::Cause::Damaged, text);
}

const char* conditionFor(LogSet set)
{
  switch (set) {
  case LogSet::Reels:
    return "type = 9 AND deletion IS NULL";
  case LogSet::Others:
    return "type <> 9 AND deletion IS NULL";
  case LogSet::LastDeletion:
    break;
  }
  return "deletion = (SELECT max(deletion) FROM logs WHERE deletion IS NOT NULL)";
}

/// The keys of logs that are not columns. They are read in ascending order of the logs' numbers.
class FieldRows {
public:
  explicit FieldRows(Database& database)
      : rows_(database, "SELECT log, key, value FROM fields WHERE log >= ?1 ORDER BY log, key")
  {
  }

  void appendTo(KeyValues& fields, std::int64_t number)
  {
    // Skips a few rows of other logs one by one; for more rows a new search is cheaper.
    for (int steps = 0; at_ < number; ++steps) {
      if (at_ == nowhere || steps == nearby) {
        rows_.reset();
        rows_.bind(1, number);
      }
      next();
    }
    for (; at_ == number; next())
      fields.emplace_back(rows_.text(1), rows_.text(2));
  }

private:
  void next() { at_ = rows_.step() ? rows_.integer(0) : std::numeric_limits<std::int64_t>::max(); }

  static constexpr std::int64_t nowhere = std::numeric_limits<std::int64_t>::min();
  static constexpr int nearby = 16;
  Statement rows_;
  std::int64_t at_ = nowhere; ///< the log of the statement's current row
};

StoredLog logIn(const Statement& row)
{
  StoredLog log;
  log.fields.reserve(shotTexts.size());
  log.number = row.integer(0);
  log.type = static_cast<int>(row.integer(1));
  const std::string_view uuid = row.text(2);
  const std::string_view kind = row.text(4);
  if (uuid.size() != log.uuid.size() || kind.size() != 1 || kind == "I")
    failDamaged("log " + std::to_string(log.number) + " has no valid identity");
  std::copy(uuid.begin(), uuid.end(), log.uuid.begin());
  log.tag = static_cast<std::uint16_t>(row.integer(3));
  log.kind = kind[0];
  log.imported = row.integer(5) != 0;
  log.entireMedium = row.integer(6) != 0;
  log.name = row.text(7);
  log.reelType = row.text(8);
  log.videoChannels = static_cast<int>(row.integer(9));
  log.audioChannels = static_cast<int>(row.integer(10));
  for (std::size_t i = 0; i < shotTexts.size(); ++i)
    if (const int column = firstTextColumn + static_cast<int>(i); !row.isNull(column))
      log.fields.emplace_back(shotTexts[i].key, row.text(column));
  return log;
}

} // namespace

ProjectInfo readInfo(Database& database)
{
  ProjectInfo info;
  bool named = false, identified = false;
  Statement rows(database, "SELECT key, value FROM project");
  while (rows.step()) {
    const std::string_view key = rows.text(0);
    const std::string_view value = rows.text(1);
    if (key == "name") {
      info.name = value;
      named = true;
    } else if (key == "uuid" && value.size() == info.uuid.size()) {
      std::copy(value.begin(), value.end(), info.uuid.begin());
      identified = true;
    } else if (key == "frame_rate") {
      info.frameRate = static_cast<int>(rows.integer(1));
    } else if (key == "output_frame_rate") {
      info.outputFrameRate = static_cast<int>(rows.integer(1));
    }
  }
  if (!named || !identified)
    failDamaged("the project has no name or no uuid");
  return info;
}

KeyValues readOptions(Database& database)
{
  KeyValues options;
  Statement rows(database, "SELECT key, value FROM options ORDER BY key");
  while (rows.step())
    options.emplace_back(rows.text(0), rows.text(1));
  return options;
}

std::int64_t lastNumber(Database& database)
{
  return database.integer("SELECT value FROM project WHERE key = 'last_number'");
}

void readLogs(Database& database, LogSet set, const std::function<void(StoredLog&&)>& sink)
{
  const std::string columns = listOf(logColumns(), [](const std::string& column) { return column; });
  Statement rows(database, "SELECT " + columns + " FROM logs WHERE " + conditionFor(set) + " ORDER BY number");
  FieldRows fields(database);
  while (rows.step()) {
    StoredLog log = logIn(rows);
    fields.appendTo(log.fields, log.number);
    sink(std::move(log));
  }
}

std::vector<std::pair<std::string, std::int64_t>> countOthersByReel(Database& database)
{
  std::vector<std::pair<std::string, std::int64_t>> counts;
  Statement rows(database, "SELECT reel_id, count(*) FROM logs WHERE type <> 9 AND deletion IS NULL "
                           "AND reel_id <> '' GROUP BY reel_id COLLATE NOCASE ORDER BY reel_id COLLATE NOCASE");
  while (rows.step())
    counts.emplace_back(reeldb::base::fold(rows.text(0)), rows.integer(1));
  return counts;
}

std::vector<std::int64_t> lastDeletion(Database& database)
{
  std::vector<std::int64_t> numbers;
  Statement rows(database, "SELECT number FROM logs WHERE " + std::string(conditionFor(LogSet::LastDeletion)) +
                               " ORDER BY number");
  while (rows.step())
    numbers.push_back(rows.integer(0));
  return numbers;
}

std::int64_t trashCount(Database& database)
{
  return database.integer("SELECT count(*) FROM logs WHERE deletion IS NOT NULL");
}

} // namespace reelhost
