// SPDX-License-Identifier: Apache-2.0
#include "store/sqlite_history.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <map>
#include <system_error>
#include <utility>

#include "reelhost/display_text.h"
#include "store/list_image.h"
#include "store/log_image.h"
#include "store/sqlite_lists.h"
#include "store/sqlite_reader.h"

namespace reelhost {

using sqlite::Database;
using sqlite::Statement;

namespace {

[[noreturn]] void failDamaged(std::int64_t revision, std::int64_t log)
{
  throw sqlite::Failure(sqlite::Cause::Damaged,
                        "revision " + std::to_string(revision) + ": no image of " +
                            (log < 0 ? "list " + std::to_string(-log) : "log " + std::to_string(log)));
}

/// The columns before, revision and log of a row of changes. @p recordFrom reads an image.
template <class Record>
struct Before {
  template <class RecordFrom>
  Before(const Statement& row, int firstColumn, RecordFrom recordFrom)
  {
    const std::int64_t revision = row.integer(firstColumn + 1), log = row.integer(firstColumn + 2);
    if (row.isNull(firstColumn))
      return;
    const std::string_view image = row.text(firstColumn);
    forgotten = image.empty();
    if (!forgotten && !(record = recordFrom(std::abs(log), image)))
      failDamaged(revision, log);
  }
  std::optional<Record> record;
  bool forgotten = false;
};

/// The changes of logs, or of lists, that one revision made.
template <class Record>
class Changed {
public:
  Changed(std::int64_t revision, std::optional<Record> (*recordFrom)(std::int64_t, std::string_view))
      : revision_(revision), recordFrom_(recordFrom)
  {
  }

  RecordChange<Record>& change(std::int64_t log)
  {
    RecordChange<Record>& change = changes_[log];
    change.revision = revision_;
    change.number = std::abs(log);
    return change;
  }

  /// Takes the columns before, revision and log of a row of this revision.
  void take(const Statement& row)
  {
    Before<Record> before(row, 0, recordFrom_);
    RecordChange<Record>& change = this->change(row.integer(2));
    change.before = std::move(before.record);
    change.forgotten = before.forgotten;
  }

  /// @p find returns what is there now, and @p exists whether anything is.
  template <class Find, class Exists>
  std::vector<RecordChange<Record>> finish(ChangeRows& rows, Find find, Exists exists)
  {
    std::vector<RecordChange<Record>> result;
    for (auto& [log, change] : changes_) {
      if (const Statement* const next = rows.after(revision_, log)) {
        change.after = std::move(Before<Record>(*next, 0, recordFrom_).record);
        change.next = next->integer(1);
        change.isThere = exists(change.number);
      } else {
        change.after = find(change.number);
        change.isThere = change.after.has_value();
      }
      result.push_back(std::move(change));
    }
    return result;
  }

private:
  const std::int64_t revision_;
  std::optional<Record> (*const recordFrom_)(std::int64_t, std::string_view);
  std::map<std::int64_t, RecordChange<Record>> changes_; ///< by log number, which is negative for a list
};

KeyValues optionsIn(const Statement& row, int column, std::int64_t revision)
{
  std::optional<KeyValues> options = valuesFrom(row.text(column));
  if (!options)
    failDamaged(revision, optionsNumber);
  return std::move(*options);
}

std::vector<std::string> linesOf(std::string_view text)
{
  std::vector<std::string> lines;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    lines.emplace_back(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return lines;
}

} // namespace

std::string textOfNumbers(std::vector<std::int64_t> numbers)
{
  std::sort(numbers.begin(), numbers.end());
  std::string text;
  for (const std::int64_t number : numbers) {
    if (!text.empty())
      text += ',';
    text += std::to_string(number);
  }
  return text;
}

std::optional<std::vector<std::int64_t>> numbersFrom(std::string_view text)
{
  std::vector<std::int64_t> numbers;
  const char* const end = text.data() + text.size();
  for (const char* at = text.data(); at != end;) {
    const auto [after, error] = std::from_chars(at, end, numbers.emplace_back());
    if (error != std::errc() || (after != end && (*after != ',' || after + 1 == end)))
      return {};
    at = after == end ? end : after + 1;
  }
  return numbers;
}

std::vector<std::int64_t> changedLogs(const Statement& row, int column)
{
  std::optional<std::vector<std::int64_t>> numbers = numbersFrom(row.text(column));
  if (!numbers)
    sqlite::failDamaged("changed logs " + displayText(row.text(column).substr(0, 100)) + ": not numbers");
  return std::move(*numbers);
}

ChangeRows::ChangeRows(Database& database)
    : rows_(database, "SELECT before, revision, log FROM changes WHERE log = ?1 AND revision >= ?2 "
                      "ORDER BY revision LIMIT 1")
{
}

const Statement& ChangeRows::at(std::int64_t revision, std::int64_t log)
{
  const Statement* const row = after(revision - 1, log);
  if (row == nullptr || row->integer(1) != revision)
    failDamaged(revision, log);
  return *row;
}

const Statement* ChangeRows::after(std::int64_t revision, std::int64_t log)
{
  rows_.reset();
  return rows_.bind(1, log).bind(2, revision + 1).step() ? &rows_ : nullptr;
}

void readNewLogs(Database& database, const Statement& row, int column, const std::function<void(std::int64_t)>& sink)
{
  if (row.isNull(column))
    return;
  const std::int64_t first = row.integer(column), last = row.integer(column + 1);
  if (first < 1 || last < first || last > lastNumber(database))
    sqlite::failDamaged("new logs " + std::to_string(first) + " to " + std::to_string(last) +
                        ": numbers that were not given out");
  // Each step is a search in two indexes: a log may have many changes, and a damaged range many numbers.
  Statement next(database, "SELECT min(number) FROM (SELECT min(number) AS number FROM logs WHERE number BETWEEN ?1 "
                           "AND ?2 UNION ALL SELECT min(log) FROM changes WHERE log BETWEEN ?1 AND ?2)");
  next.bind(2, last);
  for (std::int64_t number = first; next.bind(1, number).step() && !next.isNull(0); ++number) {
    number = next.integer(0);
    sink(number);
    next.reset();
  }
}

void readRevisions(Database& database, const std::function<bool(Revision&&)>& sink)
{
  Statement rows(database,
                 "SELECT number, token, time, program, command, user, machine, folder, elsewhere, takes_back, "
                 "is_redo, created, changed, deleted, logs FROM revisions ORDER BY number DESC");
  while (rows.step()) {
    Revision revision;
    revision.number = rows.integer(0);
    const std::string_view token = rows.text(1);
    std::copy_n(token.begin(), std::min(token.size(), revision.token.size()), revision.token.begin());
    revision.origin.time = rows.integer(2);
    revision.origin.program = rows.text(3);
    revision.origin.command = rows.text(4);
    revision.origin.user = rows.text(5);
    revision.origin.machine = rows.text(6);
    revision.origin.folder = rows.text(7);
    revision.origin.elsewhere = linesOf(rows.text(8));
    revision.takesBack = rows.integer(9);
    revision.isRedo = rows.integer(10) != 0;
    revision.created = rows.integer(11);
    revision.changed = rows.integer(12);
    revision.deleted = rows.integer(13);
    for (const std::int64_t log : changedLogs(rows, 14)) {
      if (log > optionsNumber)
        break;
      if (log == optionsNumber)
        revision.setOptions = true;
      else
        ++revision.lists;
    }
    if (!sink(std::move(revision)))
      return;
  }
}

std::optional<RevisionChanges> changesOf(Database& database, std::int64_t revision)
{
  Statement row(database, "SELECT first_new, last_new, logs FROM revisions WHERE number = ?1");
  row.bind(1, revision);
  if (!row.step())
    return {};
  Changed<StoredLog> logs(revision, logFrom);
  Changed<KeptList> lists(revision, listFrom);
  readNewLogs(database, row, 0, [&](std::int64_t number) { logs.change(number); });

  RevisionChanges result;
  ChangeRows rows(database);
  for (const std::int64_t number : changedLogs(row, 2)) {
    const Statement& change = rows.at(revision, number);
    if (number > optionsNumber)
      logs.take(change);
    else if (number < optionsNumber)
      lists.take(change);
    else
      result.optionsBefore = optionsIn(change, 0, revision);
  }
  LogLookup lookup(database);
  result.logs = logs.finish(
      rows, [&](std::int64_t number) { return lookup.find(number); },
      [&](std::int64_t number) { return lookup.exists(number); });
  const auto list = [&](std::int64_t number) { return findList(database, number); };
  result.lists = lists.finish(rows, list, [&](std::int64_t number) { return list(number).has_value(); });
  std::reverse(result.lists.begin(), result.lists.end()); // by number
  if (result.optionsBefore) {
    const Statement* const later = rows.after(revision, optionsNumber);
    result.optionsAfter = later ? optionsIn(*later, 0, later->integer(1)) : readOptions(database);
  }
  return result;
}

void readChangesOfLog(Database& database, std::int64_t number, const std::function<void(LogChange&&)>& sink)
{
  LogLookup logs(database);
  const bool isThere = logs.exists(number);
  std::optional<LogChange> last;
  const auto pass = [&](std::int64_t revision, Before<StoredLog>&& before) {
    if (last) {
      last->after = before.record;
      last->next = revision;
      sink(std::move(*last));
    }
    last = LogChange{revision, number, std::move(before.record), {}, before.forgotten, 0, isThere};
  };
  Statement rows(database, "SELECT before, revision, log FROM changes WHERE log = ?1 "
                           "UNION ALL SELECT NULL, number, ?1 FROM revisions WHERE ?1 BETWEEN first_new AND last_new "
                           "ORDER BY revision");
  rows.bind(1, number);
  while (rows.step())
    pass(rows.integer(1), Before<StoredLog>(rows, 0, logFrom));
  if (!last)
    return;
  last->after = logs.find(number);
  sink(std::move(*last));
}

void readChangedLogs(Database& database, const std::function<void(std::int64_t, std::int64_t, bool)>& sink)
{
  Statement revisions(database, "SELECT number, first_new, last_new, logs FROM revisions");
  while (revisions.step()) {
    for (const std::int64_t log : changedLogs(revisions, 3))
      if (log > optionsNumber)
        sink(revisions.integer(0), log, false);
    readNewLogs(database, revisions, 1, [&](std::int64_t log) { sink(revisions.integer(0), log, true); });
  }
}

std::int64_t trashCount(Database& database)
{
  return database.integer("SELECT count(DISTINCT log) FROM changes WHERE log > 0 AND length(before) > 0 AND "
                          "log NOT IN (SELECT number FROM logs)");
}

std::int64_t removedListCount(Database& database)
{
  return database.integer("SELECT count(DISTINCT log) FROM changes WHERE log < 0 AND length(before) > 0 AND "
                          "-log NOT IN (SELECT number FROM lists)");
}

} // namespace reelhost
