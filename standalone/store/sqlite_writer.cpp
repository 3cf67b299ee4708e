// SPDX-License-Identifier: Apache-2.0
#include "store/sqlite_writer.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <utility>
#include <vector>

#include "store/deflate.h"
#include "store/list_image.h"
#include "store/log_fields.h"
#include "store/log_image.h"
#include "store/revisions.h"
#include "store/sqlite_columns.h"
#include "store/sqlite_history.h"
#include "store/sqlite_lists.h"
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

/// The value, or null for the one that means unknown.
Statement& bindKnown(Statement& put, int parameter, std::string_view text)
{
  return text.empty() ? put.bindNull(parameter) : put.bind(parameter, text);
}
Statement& bindKnown(Statement& put, int parameter, std::int64_t number)
{
  return number == 0 ? put.bindNull(parameter) : put.bind(parameter, number);
}

void putNumber(Database& database, const char* key, std::int64_t number)
{
  Statement(database, "INSERT OR REPLACE INTO project(key, value) VALUES(?1, ?2)").bind(1, key).bind(2, number).run();
}

/// Keeps bytes that are not kept yet.
void keepBytes(Database& database, const std::map<Digest, std::string>& all)
{
  for (const auto& [digest, bytes] : all) {
    Statement there(database, "SELECT 1 FROM list_bytes WHERE digest = ?1");
    if (there.bindBlob(1, digest.data(), digest.size()).step())
      continue;
    const std::string stored = deflated(bytes);
    Statement put(database, "INSERT INTO list_bytes(digest, bytes) VALUES(?1, ?2)");
    put.bindBlob(1, digest.data(), digest.size()).bindBlob(2, stored.data(), stored.size()).run();
  }
}

/// Whether both have the same content, whatever their counts of events say.
bool isSame(const KeptList& a, const KeptList& b)
{
  return a.digest == b.digest && a.file == b.file && a.title == b.title && a.format == b.format && a.events == b.events;
}

/// Writes the changes of one revision, each together with what was there before, and then the row of the revision. What
/// changes nothing is not written.
class RevisionWriter {
public:
  explicit RevisionWriter(Database& database)
      : database_(database), number_(database.integer("SELECT max(number) FROM revisions") + 1),
        lastBefore_(lastNumber(database)), last_(lastBefore_)
  {
  }

  void writeLogs(const std::vector<StoredLog>& logs)
  {
    if (logs.empty())
      return;
    Statement put(database_, sqlToStoreLog());
    Statement dropFields(database_, "DELETE FROM fields WHERE log = ?1");
    Statement putField(database_, "INSERT OR REPLACE INTO fields(log, key, value) VALUES(?1, ?2, ?3)");
    for (const StoredLog& log : logs) {
      if (log.number <= lastBefore_) {
        if (!keepBefore(log))
          continue;
        dropFields.bind(1, log.number).run();
      } else {
        firstNew_ = std::min(firstNew_, log.number);
        ++created_;
      }
      bind(put, log);
      put.run();
      for (const auto& [key, value] : log.fields)
        if (leadingPlace(key) == shotTexts.size())
          putField.bind(1, log.number).bind(2, key).bind(3, value).run();
      last_ = std::max(last_, log.number);
    }
    if (last_ != lastBefore_)
      putNumber(database_, "last_number", last_);
  }

  void deleteLogs(const std::vector<std::int64_t>& numbers)
  {
    if (numbers.empty())
      return;
    Statement drop(database_, "DELETE FROM logs WHERE number = ?1");
    for (const std::int64_t number : numbers)
      if (const std::optional<StoredLog> log = lookup().find(number)) {
        keep(number, imageOf(*log));
        drop.bind(1, number).run();
        ++deleted_;
      }
  }

  void setOptions(const KeyValues& options, const std::vector<std::string>& unset)
  {
    if (options.empty() && unset.empty())
      return;
    const std::string before = imageOf(readOptions(database_));
    Statement put(database_, "INSERT OR REPLACE INTO options(key, value) VALUES(?1, ?2)");
    for (const auto& [key, value] : options)
      put.bind(1, key).bind(2, value).run();
    Statement drop(database_, "DELETE FROM options WHERE key = ?1");
    for (const std::string& key : unset)
      drop.bind(1, key).run();
    if (imageOf(readOptions(database_)) != before) {
      keep(optionsNumber, before);
      setsOptions_ = true;
    }
  }

  void writeLists(const std::vector<KeptList>& lists, const std::map<Digest, std::string>& bytes)
  {
    keepBytes(database_, bytes);
    for (const KeptList& list : lists) {
      if (const std::optional<KeptList> before = findList(database_, list.number)) {
        if (isSame(*before, list))
          continue;
        keep(logNumberOfList(list.number), imageOf(*before));
      } else {
        keepNone(logNumberOfList(list.number));
      }
      Statement put(database_, "INSERT OR REPLACE INTO lists(number, digest, file, title, format, event_count, events) "
                               "VALUES(?1, ?2, ?3, ?4, ?5, ?6, ?7)");
      const std::string events = packed(list.events);
      put.bind(1, list.number).bindBlob(2, list.digest.data(), list.digest.size()).bind(3, list.file);
      put.bind(4, list.title).bind(5, list.format).bind(6, static_cast<std::int64_t>(list.events.size()));
      put.bindBlob(7, events.data(), events.size()).run();
      changesLists_ = true;
      if (list.number > lastListNumber(database_))
        putNumber(database_, "last_list", list.number);
    }
  }

  void deleteLists(const std::vector<std::int64_t>& numbers)
  {
    for (const std::int64_t number : numbers)
      if (const std::optional<KeptList> list = findList(database_, number)) {
        keep(logNumberOfList(number), imageOf(*list));
        Statement(database_, "DELETE FROM lists WHERE number = ?1").bind(1, number).run();
        changesLists_ = true;
      }
  }

  /// @p always: even if nothing was changed.
  void finish(const Origin& origin, const Inverse& inverse, bool always = false)
  {
    if (!always && created_ + changed_ + deleted_ == 0 && !setsOptions_ && !changesLists_)
      return;
    Statement put(database_, "INSERT INTO revisions VALUES(?1, randomblob(16), ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9, ?10, "
                             "?11, ?12, ?13, ?14, ?15, ?16)");
    std::string elsewhere;
    for (const std::string& line : origin.elsewhere)
      elsewhere += (elsewhere.empty() ? "" : "\n") + line;
    const std::string_view command = std::string_view(origin.command).substr(0, longestCommand);
    bindKnown(put.bind(1, number_), 2, origin.time);
    bindKnown(put, 3, origin.program);
    bindKnown(put, 4, command);
    bindKnown(put, 5, origin.user);
    bindKnown(put, 6, origin.machine);
    bindKnown(put, 7, origin.folder);
    bindKnown(put, 8, elsewhere);
    bindKnown(put, 9, inverse.revision).bind(10, inverse.isRedo ? 1 : 0);
    const bool hasNew = last_ != lastBefore_;
    bindKnown(put, 11, hasNew ? firstNew_ : 0);
    bindKnown(put, 12, hasNew ? last_ : 0);
    const std::string numbers = textOfNumbers(std::move(kept_));
    put.bind(13, numbers).bind(14, created_).bind(15, changed_).bind(16, deleted_).run();
  }

private:
  /// Keeps what @p log was before. Returns whether it was anything else.
  bool keepBefore(const StoredLog& log)
  {
    const std::optional<StoredLog> before = lookup().find(log.number);
    if (!before) {
      keepNone(log.number);
      ++created_;
      return true;
    }
    const std::string image = imageOf(*before);
    if (image == imageOf(log))
      return false;
    keep(log.number, image);
    ++changed_;
    return true;
  }

  void keep(std::int64_t number, const std::string& image)
  {
    // The image of a log or a list is never empty, which would mean that it was removed. That of no options is.
    changeRow(number).bindBlob(3, image.data(), image.size()).run();
  }
  void keepNone(std::int64_t number) { changeRow(number).bindNull(3).run(); }

  LogLookup& lookup()
  {
    if (!lookup_)
      lookup_.emplace(database_);
    return *lookup_;
  }
  Statement& changeRow(std::int64_t number)
  {
    if (!changeRow_)
      changeRow_.emplace(database_, "INSERT INTO changes(revision, log, before) VALUES(?1, ?2, ?3)");
    kept_.push_back(number);
    return changeRow_->bind(1, number_).bind(2, number);
  }

  Database& database_;
  const std::int64_t number_, lastBefore_;
  std::int64_t last_, firstNew_ = std::numeric_limits<std::int64_t>::max();
  std::int64_t created_ = 0, changed_ = 0, deleted_ = 0;
  bool setsOptions_ = false, changesLists_ = false;
  std::optional<LogLookup> lookup_;
  std::optional<Statement> changeRow_;
  std::vector<std::int64_t> kept_;
};

void removeForGood(Database& database, const Changes& changes)
{
  if (changes.compact)
    database.execute("UPDATE changes SET before = x'' WHERE log <> 0 AND length(before) > 0 AND "
                     "log NOT IN (SELECT number FROM logs) AND -log NOT IN (SELECT number FROM lists)");
  if (changes.forgetBefore != 0) // the revision that is being written has changes already, but no row
    for (const char* sql :
         {"DELETE FROM changes WHERE revision < ?1 AND revision <= (SELECT max(number) FROM revisions)",
          "DELETE FROM revisions WHERE number < ?1"})
      Statement(database, sql).bind(1, changes.forgetBefore).run();
  if (changes.compact || changes.forgetBefore != 0) // the image of a list begins with its digest
    database.execute("DELETE FROM list_bytes WHERE digest NOT IN (SELECT digest FROM lists) AND digest NOT IN "
                     "(SELECT substr(before, 1, 32) FROM changes WHERE log < 0 AND length(before) > 0)");
}

} // namespace

void writeChanges(Database& database, const Changes& changes)
{
  writeRevisions(
      changes, [&] { return RevisionWriter(database); }, [&] { removeForGood(database, changes); });
  if (changes.reservedLogs > lastNumber(database))
    putNumber(database, "last_number", changes.reservedLogs);
  if (changes.reservedLists > lastListNumber(database))
    putNumber(database, "last_list", changes.reservedLists);
}

} // namespace reelhost
