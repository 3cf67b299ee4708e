// SPDX-License-Identifier: Apache-2.0
#include "store/sqlite_history.h"

#include <algorithm>
#include <cstdlib>
#include <map>
#include <string>
#include <utility>

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

  RecordChange<Record>& change(std::int64_t number)
  {
    RecordChange<Record>& change = changes_[number];
    change.revision = revision_;
    change.number = number;
    return change;
  }

  /// Takes the columns before, revision and log of a row of this revision or of a later one, in their order.
  void take(const Statement& row)
  {
    const std::int64_t at = row.integer(1), number = std::abs(row.integer(2));
    if (at == revision_) {
      Before<Record> before(row, 0, recordFrom_);
      change(number).before = std::move(before.record);
      change(number).forgotten = before.forgotten;
    } else if (const auto found = changes_.find(number); found != changes_.end() && found->second.next == 0) {
      found->second.after = std::move(Before<Record>(row, 0, recordFrom_).record);
      found->second.next = at;
    }
  }

  /// @p find returns what is there now, and @p exists whether anything is.
  template <class Find, class Exists>
  std::vector<RecordChange<Record>> finish(Find find, Exists exists)
  {
    std::vector<RecordChange<Record>> result;
    for (auto& [number, change] : changes_) {
      if (change.next == 0)
        change.after = find(number);
      change.isThere = change.next == 0 ? change.after.has_value() : exists(number);
      result.push_back(std::move(change));
    }
    return result;
  }

private:
  const std::int64_t revision_;
  std::optional<Record> (*const recordFrom_)(std::int64_t, std::string_view);
  std::map<std::int64_t, RecordChange<Record>> changes_;
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

void readRevisions(Database& database, const std::function<bool(Revision&&)>& sink)
{
  Statement rows(database,
                 "SELECT number, token, time, program, command, user, machine, folder, elsewhere, takes_back, "
                 "is_redo, created, changed, deleted, "
                 "EXISTS(SELECT 1 FROM changes WHERE revision = number AND log = 0), "
                 "(SELECT count(*) FROM changes WHERE revision = number AND log < 0) "
                 "FROM revisions ORDER BY number DESC");
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
    revision.setOptions = rows.integer(14) != 0;
    revision.lists = rows.integer(15);
    if (!sink(std::move(revision)))
      return;
  }
}

std::optional<RevisionChanges> changesOf(Database& database, std::int64_t revision)
{
  Statement row(database, "SELECT first_new, last_new FROM revisions WHERE number = ?1");
  row.bind(1, revision);
  if (!row.step())
    return {};
  Changed<StoredLog> logs(revision, logFrom);
  Changed<KeptList> lists(revision, listFrom);
  if (!row.isNull(0))
    for (std::int64_t number = row.integer(0); number <= row.integer(1); ++number)
      logs.change(number);

  RevisionChanges result;
  Statement rows(database, "SELECT before, revision, log FROM changes WHERE revision >= ?1 ORDER BY revision, log");
  rows.bind(1, revision);
  while (rows.step()) {
    const std::int64_t at = rows.integer(1), number = rows.integer(2);
    if (number > optionsNumber)
      logs.take(rows);
    else if (number < optionsNumber)
      lists.take(rows);
    else if (at == revision)
      result.optionsBefore = optionsIn(rows, 0, at);
    else if (result.optionsBefore && !result.optionsAfter)
      result.optionsAfter = optionsIn(rows, 0, at);
  }
  LogLookup lookup(database);
  result.logs = logs.finish([&](std::int64_t number) { return lookup.find(number); },
                            [&](std::int64_t number) { return lookup.exists(number); });
  const auto list = [&](std::int64_t number) { return findList(database, number); };
  result.lists = lists.finish(list, [&](std::int64_t number) { return list(number).has_value(); });
  if (result.optionsBefore && !result.optionsAfter)
    result.optionsAfter = readOptions(database);
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

void readChangedLogs(Database& database, const std::function<void(std::int64_t, std::int64_t)>& sink)
{
  Statement rows(database, "SELECT revision, log FROM changes WHERE log > 0");
  while (rows.step())
    sink(rows.integer(0), rows.integer(1));
  Statement ranges(database, "SELECT number, first_new, last_new FROM revisions WHERE first_new IS NOT NULL");
  while (ranges.step())
    for (std::int64_t log = ranges.integer(1); log <= ranges.integer(2); ++log)
      sink(ranges.integer(0), log);
}

std::int64_t trashCount(Database& database)
{
  return database.integer("SELECT count(DISTINCT log) FROM changes WHERE log > 0 AND length(before) > 0 AND "
                          "log NOT IN (SELECT number FROM logs)");
}

} // namespace reelhost
