// SPDX-License-Identifier: Apache-2.0
#include "store/sqlite_reader.h"

#include <algorithm>
#include <limits>

#include "base/ascii.h"
#include "store/sqlite_columns.h"
#include "store/sqlite_schema.h"

namespace reelhost {

using sqlite::Database;
using sqlite::failDamaged;
using sqlite::Statement;

namespace {

std::string conditionFor(LogSet set, std::int64_t version)
{
  return std::string(set == LogSet::Reels ? "type = 9" : "type <> 9") +
         (version < versionWithHistory ? " AND deletion IS NULL" : "");
}

std::string namesOfColumns()
{
  return listOf(logColumns(), [](const std::string& column) { return column; });
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
  // In a damaged file the stored number may be too small, and the next log would replace another.
  Statement row(database, "SELECT max(value, (SELECT ifnull(max(number), 0) FROM logs)) FROM project "
                          "WHERE key = 'last_number' AND typeof(value) = 'integer'");
  if (!row.step())
    failDamaged("the project has no last number");
  return row.integer(0);
}

void readLogs(Database& database, std::int64_t version, LogSet set, const std::function<void(StoredLog&&)>& sink)
{
  Statement rows(database,
                 "SELECT " + namesOfColumns() + " FROM logs WHERE " + conditionFor(set, version) + " ORDER BY number");
  FieldRows fields(database);
  while (rows.step()) {
    StoredLog log = logIn(rows);
    fields.appendTo(log.fields, log.number);
    sink(std::move(log));
  }
}

std::vector<std::pair<std::string, std::int64_t>> countOthersByReel(Database& database, std::int64_t version)
{
  std::vector<std::pair<std::string, std::int64_t>> counts;
  Statement rows(database, "SELECT reel_id, count(*) FROM logs WHERE " + conditionFor(LogSet::Others, version) +
                               " AND reel_id <> '' GROUP BY reel_id COLLATE NOCASE ORDER BY reel_id COLLATE NOCASE");
  while (rows.step())
    counts.emplace_back(reeldb::base::fold(rows.text(0)), rows.integer(1));
  return counts;
}

LogLookup::LogLookup(Database& database)
    : log_(database, "SELECT " + namesOfColumns() + " FROM logs WHERE number = ?1"),
      fields_(database, "SELECT key, value FROM fields WHERE log = ?1 ORDER BY key"),
      exists_(database, "SELECT 1 FROM logs WHERE number = ?1")
{
}

bool LogLookup::exists(std::int64_t number)
{
  exists_.bind(1, number);
  const bool found = exists_.step();
  exists_.reset();
  return found;
}

std::optional<StoredLog> LogLookup::find(std::int64_t number)
{
  std::optional<StoredLog> log;
  log_.bind(1, number);
  if (log_.step()) {
    log = logIn(log_);
    fields_.bind(1, number);
    while (fields_.step())
      log->fields.emplace_back(fields_.text(0), fields_.text(1));
    fields_.reset();
  }
  log_.reset();
  return log;
}

} // namespace reelhost
