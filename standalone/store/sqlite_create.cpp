// SPDX-License-Identifier: Apache-2.0
#include <cerrno>
#include <chrono>

#include <sys/stat.h>

#include "reelhost/store.h"
#include "store/file_error.h"
#include "store/project_file.h"
#include "store/sqlite.h"
#include "store/sqlite_lists.h"
#include "store/sqlite_reader.h"
#include "store/sqlite_schema.h"
#include "store/sqlite_session.h"
#include "store/sqlite_writer.h"

namespace reelhost {

namespace {

using sqlite::Database;
using sqlite::Statement;
using sqlite::Transaction;

/// How long to wait for another process that has the project.
constexpr std::chrono::seconds patience(2);

/// All but the name.
void putProperties(Database& database, const ProjectInfo& info, const KeyValues& options)
{
  const std::string_view uuid(reinterpret_cast<const char*>(info.uuid.data()), info.uuid.size());
  Statement put(database, "INSERT OR REPLACE INTO project(key, value) VALUES(?1, ?2)");
  put.bind(1, "uuid").bindBlob(2, uuid.data(), uuid.size()).run();
  put.bind(1, "frame_rate").bind(2, info.frameRate).run();
  put.bind(1, "output_frame_rate").bind(2, info.outputFrameRate).run();
  database.execute("DELETE FROM options");
  Statement option(database, "INSERT OR REPLACE INTO options(key, value) VALUES(?1, ?2)");
  for (const auto& [key, value] : options)
    option.bind(1, key).bind(2, value).run();
}

void fill(Database& database, const ProjectInfo& info, const KeyValues& options, const Changes& content)
{
  database.execute("PRAGMA synchronous = FULL");
  database.execute(("PRAGMA application_id = " + std::to_string(projectApplicationId)).c_str());
  Transaction transaction(database, Transaction::Kind::Write);
  bringUpToDate(database, schemaSteps());
  Statement put(database, "INSERT INTO project(key, value) VALUES(?1, ?2)");
  put.bind(1, "name").bind(2, info.name).run();
  put.bind(1, "last_number").bind(2, 0).run();
  putProperties(database, info, options);
  if (!content.empty()) {
    writeChanges(database, content);
    // Nothing was there before, so there is nothing to take back.
    database.execute("DELETE FROM revisions; DELETE FROM changes");
  }
  transaction.commit();
  database.execute("PRAGMA journal_mode = WAL");
}

/// Makes the project file @p path, completely or not at all: @p fill writes the empty file whose place it is given.
template <class Fill>
void makeProjectFile(const std::filesystem::path& path, Fill fill)
{
  const auto isTaken = [&path](const std::filesystem::path& name) {
    struct stat status = {};
    if (::lstat(name.c_str(), &status) == 0)
      return true;
    if (errno == ENAMETOOLONG)
      throw base::FileError(path, "cannot be made", errno);
    return false;
  };
  if (isTaken(path))
    throw base::FileError(base::FileFault::Exists, path, "already exists");
  // SQLite would read the write-ahead log of an earlier project of this name as the log of this one.
  for (const char* ending : {"-wal", "-shm", "-journal"})
    if (const std::filesystem::path left = path.native() + ending; isTaken(left))
      throw base::FileError(base::FileFault::Exists, left, "left over from another project", "move it away first");

  std::error_code error;
  const std::filesystem::path folder = std::filesystem::canonical(base::folderOf(path), error);
  if (error)
    throw base::FileError(path, "cannot be made", error.value());
  base::TemporaryFile file = base::newFileBeside(folder / path.filename());
  const std::string place = file.path().native();
  if (place.size() > longestProjectPath)
    throw base::FileError(base::FileFault::System, path, "cannot be made", "its full path is too long");
  const base::TemporaryFile journal(place + "-journal"), log(place + "-wal"), index(place + "-shm");
  try {
    fill(place);
  } catch (const sqlite::Failure& failure) {
    throw base::FileError(base::FileFault::System, path, "cannot be made", failure.what());
  }
  base::nameNewFile(file, path);
  base::syncFolder(folder);
}

} // namespace

void createSqliteProject(const std::filesystem::path& path, const ProjectInfo& info, const KeyValues& options,
                         const Changes& content)
{
  withHostErrors([&] {
    makeProjectFile(path, [&](const std::string& place) {
      Database database(place, Database::Mode::ReadWrite);
      fill(database, info, options, content);
    });
  });
}

void fillSqliteProject(const std::filesystem::path& path, const ProjectInfo& info, const KeyValues& options,
                       const Changes& content)
{
  SqliteSession session(path, schemaSteps());
  session.beginWrite(patience);
  session.guarded("cannot be read", [&] {
    if (lastNumber(session.database()) != 0 || lastListNumber(session.database()) != 0)
      throw Error(ErrorKind::Refused, session.subject() + ": has had reels, shots or lists");
  });
  session.commit([&](Database& database) {
    putProperties(database, info, options);
    writeChanges(database, content);
  });
}

void backUpSqliteProject(const std::filesystem::path& project, const std::filesystem::path& copy)
{
  SqliteSession session(project, schemaSteps());
  session.beginRead(patience);
  withHostErrors([&] { makeProjectFile(copy, [&](const std::string& place) { session.database().copyTo(place); }); });
}

} // namespace reelhost
