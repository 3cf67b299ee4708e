// SPDX-License-Identifier: Apache-2.0
#include "store/sqlite_feed.h"

#include <algorithm>
#include <map>
#include <string_view>

#include "store/log_image.h"
#include "store/sqlite_history.h"
#include "store/sqlite_reader.h"

namespace reelhost {

using sqlite::Database;
using sqlite::Statement;

namespace {

FeedPosition positionIn(const Statement& row)
{
  FeedPosition position;
  position.revision = row.integer(0);
  const std::string_view token = row.text(1);
  std::copy_n(token.begin(), std::min(token.size(), position.token.size()), position.token.begin());
  position.otherWrites = row.integer(2);
  return position;
}

/// Whether the history of this project holds every revision after @p before, and nothing was written without one.
bool isKnown(Database& database, const FeedPosition& before)
{
  const FeedPosition now = newestPosition(database);
  if (now.revision == 0 || now.otherWrites != before.otherWrites)
    return false;
  if (before.revision == 0)
    return database.integer("SELECT min(number) FROM revisions") <= 1;
  Statement row(database, "SELECT number, token, ?2 FROM revisions WHERE number = ?1");
  row.bind(1, before.revision).bind(2, before.otherWrites);
  return row.step() && positionIn(row) == before;
}

/// The image that each log had at @p revision, of all logs that were changed or deleted after it. Null: there was no
/// such log.
using Images = std::map<std::int64_t, std::optional<std::string>>;

Images imagesAt(Database& database, std::int64_t revision)
{
  Images images;
  ChangeRows changes(database);
  Statement revisions(database, "SELECT number, first_new, last_new, logs FROM revisions WHERE number > ?1 "
                                "ORDER BY number");
  revisions.bind(1, revision);
  while (revisions.step()) {
    readNewLogs(database, revisions, 1, [&](std::int64_t number) { images.emplace(number, std::nullopt); });
    // The first change after the revision has what the log was at that time. Negative numbers are those of lists.
    for (const std::int64_t number : changedLogs(revisions, 3))
      if (number >= optionsNumber && images.count(number) == 0) {
        const Statement& row = changes.at(revisions.integer(0), number);
        images.emplace(number, row.isNull(0) ? std::nullopt : std::optional<std::string>(row.text(0)));
      }
  }
  return images;
}

GoneLog goneFrom(const StoredLog& log)
{
  return {log.number, log.uuid, log.tag, log.kind};
}

} // namespace

FeedPosition newestPosition(Database& database)
{
  // max() chooses the row of the token
  Statement row(database, "SELECT max(number), token, (SELECT value FROM project WHERE key = 'other_writes') "
                          "FROM revisions");
  return row.step() ? positionIn(row) : FeedPosition();
}

Delta changesSince(Database& database, const FeedPosition& before)
{
  Delta delta;
  if (!isKnown(database, before)) {
    delta.whole = true;
    return delta;
  }
  LogLookup logs(database);
  for (const auto& [number, image] : imagesAt(database, before.revision)) {
    if (number == optionsNumber) {
      delta.options = readOptions(database);
      continue;
    }
    if (std::optional<StoredLog> now = logs.find(number)) {
      if (!image || *image != imageOf(*now))
        delta.logs.push_back(std::move(*now));
      continue;
    }
    if (!image)
      continue; // created and deleted since
    const std::optional<StoredLog> was = logFrom(number, *image);
    if (!was) { // project compact has removed what it was
      delta = {};
      delta.whole = true;
      return delta;
    }
    delta.gone.push_back(goneFrom(*was));
  }
  return delta;
}

} // namespace reelhost
