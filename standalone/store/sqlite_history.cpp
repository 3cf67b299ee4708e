// SPDX-License-Identifier: Apache-2.0
#include "store/sqlite_history.h"

#include <algorithm>
#include <map>
#include <string>
#include <utility>

#include "store/log_image.h"
#include "store/sqlite_reader.h"

namespace reelhost {

using sqlite::Database;
using sqlite::Statement;

namespace {

[[noreturn]] void failDamaged(std::int64_t revision, std::int64_t log)
{
  throw sqlite::Failure(sqlite::Cause::Damaged,
                        "revision " + std::to_string(revision) + ": no image of log " + std::to_string(log));
}

/// The columns before, revision and log of a row of changes.
struct Before {
  Before(const Statement& row, int firstColumn)
  {
    const std::int64_t revision = row.integer(firstColumn + 1), number = row.integer(firstColumn + 2);
    if (row.isNull(firstColumn))
      return;
    const std::string_view image = row.text(firstColumn);
    forgotten = image.empty();
    if (!forgotten && !(log = logFrom(number, image)))
      failDamaged(revision, number);
  }
  std::optional<StoredLog> log;
  bool forgotten = false;
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
                 "EXISTS(SELECT 1 FROM changes WHERE revision = number AND log = 0) "
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
  std::map<std::int64_t, LogChange> changes;
  const auto change = [&](std::int64_t number) -> LogChange& {
    LogChange& log = changes[number];
    log.revision = revision;
    log.number = number;
    return log;
  };
  if (!row.isNull(0))
    for (std::int64_t number = row.integer(0); number <= row.integer(1); ++number)
      change(number);

  RevisionChanges result;
  Statement rows(database, "SELECT before, revision, log FROM changes WHERE revision >= ?1 ORDER BY revision, log");
  rows.bind(1, revision);
  while (rows.step()) {
    const std::int64_t at = rows.integer(1), number = rows.integer(2);
    if (number == optionsNumber) {
      if (at == revision)
        result.optionsBefore = optionsIn(rows, 0, at);
      else if (result.optionsBefore && !result.optionsAfter)
        result.optionsAfter = optionsIn(rows, 0, at);
    } else if (at == revision) {
      Before before(rows, 0);
      change(number).before = std::move(before.log);
      change(number).forgotten = before.forgotten;
    } else if (const auto found = changes.find(number); found != changes.end() && found->second.next == 0) {
      Before before(rows, 0);
      found->second.after = std::move(before.log);
      found->second.next = at;
    }
  }
  LogLookup logs(database);
  for (auto& [number, log] : changes) {
    if (log.next == 0)
      log.after = logs.find(number);
    log.isThere = log.next == 0 ? log.after.has_value() : logs.exists(number);
    result.logs.push_back(std::move(log));
  }
  if (result.optionsBefore && !result.optionsAfter)
    result.optionsAfter = readOptions(database);
  return result;
}

void readChangesOfLog(Database& database, std::int64_t number, const std::function<void(LogChange&&)>& sink)
{
  LogLookup logs(database);
  const bool isThere = logs.exists(number);
  std::optional<LogChange> last;
  const auto pass = [&](std::int64_t revision, Before&& before) {
    if (last) {
      last->after = before.log;
      last->next = revision;
      sink(std::move(*last));
    }
    last = LogChange{revision, number, std::move(before.log), {}, before.forgotten, 0, isThere};
  };
  Statement rows(database, "SELECT before, revision, log FROM changes WHERE log = ?1 "
                           "UNION ALL SELECT NULL, number, ?1 FROM revisions WHERE ?1 BETWEEN first_new AND last_new "
                           "ORDER BY revision");
  rows.bind(1, number);
  while (rows.step())
    pass(rows.integer(1), Before(rows, 0));
  if (!last)
    return;
  last->after = logs.find(number);
  sink(std::move(*last));
}

std::int64_t trashCount(Database& database)
{
  return database.integer("SELECT count(DISTINCT log) FROM changes WHERE log <> 0 AND length(before) > 0 AND "
                          "log NOT IN (SELECT number FROM logs)");
}

} // namespace reelhost
