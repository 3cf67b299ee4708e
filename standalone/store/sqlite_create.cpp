// SPDX-License-Identifier: Apache-2.0
#include <atomic>
#include <cerrno>
#include <cstdio>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "reelhost/display_text.h"
#include "reelhost/store.h"
#include "store/files.h"
#include "store/project_file.h"
#include "store/sqlite.h"
#include "store/sqlite_schema.h"

namespace reelhost {

namespace {

using sqlite::Database;
using sqlite::Statement;

/// Whether anything has the name, a link to nowhere included.
bool taken(const std::filesystem::path& path)
{
  struct stat status = {};
  return ::lstat(path.c_str(), &status) == 0;
}

/// A name beside @p path that nobody else uses.
std::filesystem::path nameBeside(const std::filesystem::path& path)
{
  static std::atomic<unsigned> counter{0};
  return folderOf(path) /
         ("." + path.filename().native() + ".new-" + std::to_string(::getpid()) + "-" + std::to_string(counter++));
}

void fill(Database& database, const ProjectInfo& info, const KeyValues& options)
{
  database.execute("PRAGMA synchronous = FULL");
  database.execute(("PRAGMA application_id = " + std::to_string(projectApplicationId)).c_str());
  database.execute("BEGIN");
  bringUpToDate(database, schemaSteps());
  const std::string_view uuid(reinterpret_cast<const char*>(info.uuid.data()), info.uuid.size());
  Statement put(database, "INSERT INTO project(key, value) VALUES(?1, ?2)");
  put.bind(1, "name").bind(2, info.name).run();
  put.bind(1, "uuid").bindBlob(2, uuid.data(), uuid.size()).run();
  put.bind(1, "frame_rate").bind(2, info.frameRate).run();
  put.bind(1, "output_frame_rate").bind(2, info.outputFrameRate).run();
  put.bind(1, "last_number").bind(2, 0).run();
  Statement option(database, "INSERT OR REPLACE INTO options(key, value) VALUES(?1, ?2)");
  for (const auto& [key, value] : options)
    option.bind(1, key).bind(2, value).run();
  database.execute("COMMIT");
  database.execute("PRAGMA journal_mode = WAL");
}

/// Gives the finished file its name, which nothing may have yet.
void publish(TemporaryFile& file, const std::filesystem::path& path)
{
  if (::link(file.path().c_str(), path.c_str()) == 0)
    return;
  if (errno != EEXIST) { // the file system knows no second names
    if (::renameat2(AT_FDCWD, file.path().c_str(), AT_FDCWD, path.c_str(), RENAME_NOREPLACE) == 0) {
      file.keep();
      return;
    }
  }
  if (errno == EEXIST)
    throw Error(ErrorKind::Refused, displayText(path.native()) + ": exists already");
  throwSystemError(ErrorKind::Io, path, "cannot be made", errno);
}

} // namespace

void createSqliteProject(const std::filesystem::path& path, const ProjectInfo& info, const KeyValues& options)
{
  if (taken(path))
    throw Error(ErrorKind::Refused, displayText(path.native()) + ": exists already");
  // The write-ahead log of an earlier project of this name would be taken for this one's.
  for (const char* ending : {"-wal", "-shm", "-journal"})
    if (const std::filesystem::path left = path.native() + ending; taken(left))
      throw Error(ErrorKind::Refused,
                  displayText(left.native()) + ": left over from another project (move it away first)");

  std::error_code error;
  const std::filesystem::path folder = std::filesystem::canonical(folderOf(path), error);
  if (error)
    throwSystemError(ErrorKind::Io, path, "cannot be made", error.value());
  TemporaryFile file(nameBeside(folder / path.filename()));
  if (file.path().native().size() > longestProjectPath)
    throw Error(ErrorKind::Io, displayText(path.native()) + ": cannot be made (its full path is too long)");
  TemporaryFile journal(file.path().native() + "-journal"), log(file.path().native() + "-wal"),
      index(file.path().native() + "-shm");
  if (const FileDescriptor made(::open(file.path().c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
      !made.valid())
    throwSystemError(ErrorKind::Io, path, "cannot be made", errno);
  try {
    Database database(file.path().native(), Database::Mode::ReadWrite);
    fill(database, info, options);
  } catch (const sqlite::Failure& failure) {
    throw Error(ErrorKind::Io, displayText(path.native()) + ": cannot be made (" + failure.what() + ")");
  }
  publish(file, path);
  syncFolder(folder);
}

} // namespace reelhost
