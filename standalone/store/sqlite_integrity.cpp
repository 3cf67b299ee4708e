// SPDX-License-Identifier: Apache-2.0
#include "store/sqlite_integrity.h"

#include <algorithm>
#include <map>
#include <set>
#include <unordered_set>

#include "reelhost/display_text.h"
#include "store/deflate.h"
#include "store/list_image.h"
#include "store/log_image.h"
#include "store/project_file.h"
#include "store/sqlite_history.h"
#include "store/sqlite_lists.h"
#include "store/sqlite_schema.h"

namespace reelhost {

using sqlite::Database;
using sqlite::Statement;

namespace {

/// The lines of an integrity check without their headings; empty if there is no fault.
std::vector<std::string> problemsFrom(Database& database, const char* sql)
{
  std::vector<std::string> problems;
  Statement rows(database, sql);
  while (rows.step()) {
    std::string_view text = rows.text(0);
    while (!text.empty()) {
      const std::size_t end = std::min(text.find('\n'), text.size());
      const std::string_view line = text.substr(0, end);
      if (line != "ok" && line.substr(0, 3) != "***")
        problems.push_back(displayText(line));
      text.remove_prefix(std::min(end + 1, text.size()));
    }
  }
  return problems;
}

void addProblemsOfHistory(Database& database, std::vector<std::string>& problems)
{
  const auto add = [&](std::int64_t revision, const std::string& what) {
    problems.push_back("revision " + std::to_string(revision) + ": " + what);
  };
  const auto addEach = [&](const char* sql, const char* what) {
    Statement rows(database, sql);
    while (rows.step())
      add(rows.integer(0), what);
  };
  std::map<std::int64_t, std::set<std::int64_t>> changes;
  for (Statement rows(database, "SELECT revision, log FROM changes"); rows.step();)
    changes[rows.integer(0)].insert(rows.integer(1));
  for (Statement rows(database, "SELECT number, logs FROM revisions ORDER BY number"); rows.step();) {
    const std::optional<std::vector<std::int64_t>> numbers = numbersFrom(rows.text(1));
    const std::set<std::int64_t> kept = std::move(changes[rows.integer(0)]);
    changes.erase(rows.integer(0));
    if (!numbers || kept != std::set<std::int64_t>(numbers->begin(), numbers->end()))
      add(rows.integer(0), "other changes than it says");
  }
  for (const auto& [revision, logs] : changes)
    add(revision, "changes without a revision");
  addEach("SELECT number FROM revisions WHERE takes_back >= number ORDER BY number", "takes back a later revision");
  addEach("SELECT number FROM revisions WHERE last_new > (SELECT value FROM project WHERE key = 'last_number') "
          "OR last_new < first_new OR first_new < 1 ORDER BY number",
          "new logs with numbers that were not given out");
  addEach("SELECT number FROM revisions WHERE is_redo NOT IN (0, 1) ORDER BY number", "is_redo is neither 0 nor 1");
  addEach(
      "SELECT number FROM (SELECT number, created, changed, deleted, "
      "ifnull(sign(first_new), 0) AS least, ifnull(last_new - first_new + 1, 0) AS most, "
      "count(log) FILTER (WHERE log > 0 AND before IS NULL) AS restored, "
      "count(log) FILTER (WHERE log > 0 AND before IS NOT NULL) AS others "
      "FROM revisions LEFT JOIN changes ON revision = number GROUP BY number) "
      "WHERE created NOT BETWEEN least + restored AND most + restored OR changed + deleted <> others ORDER BY number",
      "other numbers of created, changed and deleted logs than its changes have");
  addEach("SELECT max(number) FROM revisions GROUP BY token HAVING count(*) > 1", "the token of another revision");
  Statement images(database, "SELECT revision, log, before FROM changes WHERE length(before) > 0 OR log = 0");
  while (images.step()) {
    const std::int64_t log = images.integer(1);
    if (log < optionsNumber && !listFrom(-log, images.text(2)))
      add(images.integer(0), "no image of list " + std::to_string(-log));
    else if (log == optionsNumber ? !valuesFrom(images.text(2)) : log > optionsNumber && !logFrom(log, images.text(2)))
      add(images.integer(0), "no image of log " + std::to_string(log));
  }
}

void addProblemsOfLists(Database& database, std::vector<std::string>& problems)
{
  const auto add = [&](std::int64_t list, const std::string& what) {
    problems.push_back("list " + std::to_string(list) + ": " + what);
  };
  std::unordered_set<std::int64_t> shots;
  for (Statement rows(database, "SELECT number FROM logs WHERE type <> 9"); rows.step();)
    shots.insert(rows.integer(0));
  Statement lists(database, "SELECT number, events, event_count, "
                            "EXISTS(SELECT 1 FROM list_bytes WHERE list_bytes.digest = lists.digest), "
                            "number > ifnull((SELECT value FROM project WHERE key = 'last_list'), 0) "
                            "FROM lists ORDER BY number");
  while (lists.step()) {
    const std::int64_t list = lists.integer(0);
    const std::optional<std::vector<ListEvent>> events = eventsFrom(lists.text(1));
    if (!events)
      add(list, "no valid events");
    else if (static_cast<std::int64_t>(events->size()) != lists.integer(2))
      add(list, "another number of events than it says");
    if (events)
      for (const ListEvent& event : *events)
        if (event.shot != 0 && shots.count(event.shot) == 0)
          add(list, "an event without its shot (line " + std::to_string(event.line) + ", log " +
                        std::to_string(event.shot) + ")");
    if (lists.integer(3) == 0)
      add(list, "its bytes are missing");
    if (lists.integer(4) != 0)
      add(list, "a number that was never given to a list");
  }
  const auto isDigestOf = [](std::string_view digest, const std::string& bytes) {
    return textOf(digestOf(bytes)) == digest;
  };
  int broken = 0;
  for (Statement rows(database, "SELECT digest, bytes FROM list_bytes"); rows.step();)
    if (const auto bytes = inflated(rows.text(1)); !bytes || !isDigestOf(rows.text(0), *bytes))
      ++broken;
  if (broken != 0)
    problems.push_back("lists: " + std::to_string(broken) + " with other bytes than those that were stored");
}

} // namespace

std::string missingBytes(Database& database, const std::filesystem::path& path)
{
  const std::int64_t expected = readFileStart(database.readStart(100)).bytes;
  const std::int64_t there = database.fileSize();
  if (there >= expected || inspectProjectFile(path).logSize > 0)
    return {};
  return std::to_string(there) + " of " + std::to_string(expected) + " bytes";
}

std::string quickCheck(Database& database)
{
  const std::vector<std::string> problems = problemsFrom(database, "PRAGMA quick_check(1)");
  return problems.empty() ? std::string() : problems.front();
}

std::vector<std::string> integrityProblems(Database& database, std::int64_t version)
{
  std::vector<std::string> problems = problemsFrom(database, "PRAGMA integrity_check");
  const auto add = [&](const char* sql, const char* what) {
    Statement rows(database, sql);
    while (rows.step())
      problems.push_back("log " + std::to_string(rows.integer(0)) + ": " + what);
  };
  add("SELECT DISTINCT log FROM fields WHERE log NOT IN (SELECT number FROM logs)", "fields without a log");
  add("SELECT number FROM logs WHERE number > (SELECT value FROM project WHERE key = 'last_number')",
      "a number that was never given to a log");
  add("SELECT number FROM logs WHERE kind = 'I' ORDER BY number", "no valid identity (its kind is 'I')");
  add("SELECT max(number) FROM logs GROUP BY uuid, tag, kind HAVING count(*) > 1", "the identity of another log");
  if (version >= versionWithHistory) {
    addProblemsOfHistory(database, problems);
    addProblemsOfLists(database, problems);
  }
  return problems;
}

} // namespace reelhost
