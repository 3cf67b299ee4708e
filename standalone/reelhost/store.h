// SPDX-License-Identifier: Apache-2.0
/// @file
/// Where projects are kept. The model asks for whole logs and hands back whole logs; how they are stored is the store's
/// business alone. Main thread only.
#ifndef REELHOST_STORE_H
#define REELHOST_STORE_H

#include <array>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "reelhost/error.h"

namespace reelhost {

/// Keys, each once, with a text each.
using KeyValues = std::vector<std::pair<std::string, std::string>>;

/// What a project is.
struct ProjectInfo {
  std::string name;                     ///< UTF-8
  std::array<unsigned char, 16> uuid{}; ///< what the project's Cookie is made of
  int frameRate = -1;                   ///< frame rate code of the project
  int outputFrameRate = -1;             ///< frame rate code of its output
};

/// One log, whole. All texts are UTF-8 or raw bytes as they were set; no text holds NUL.
struct StoredLog {
  std::int64_t number = 0;              ///< 1, 2, 3, ... in the order of creation; never given out twice
  std::array<unsigned char, 16> uuid{}; ///< with tag and kind: the log's Cookie
  std::uint16_t tag = 0;
  char kind = 'E';           ///< the Cookie's kind, not 'I'
  int type = 0;              ///< log type: 9 reel, 1 material, 0 not classified
  bool imported = false;     ///< whether it came in from elsewhere
  bool entireMedium = false; ///< whether it stands for the whole medium
  std::string name;          ///< display name
  int videoChannels = 0;
  int audioChannels = 0;
  std::string reelType; ///< what the row shows as "Reel Type"
  /// The configuration block, "reelid" included; each key once. Stores return it in one order, whatever the order it
  /// came in: the keys of shotTexts (reelhost/material.h), then all others by their bytes.
  KeyValues fields;
};

/// What one command changed. Stored in this order: undelete and compact, which speak of the trash as it was stored
/// before, then logs, deleted and options. A log in the trash that is written stays in the trash; a number in deleted
/// that is no log, or a log in the trash, is passed over.
struct Changes {
  std::vector<StoredLog> logs;       ///< new and changed logs, by number
  std::vector<std::int64_t> deleted; ///< logs that go to the trash, as one deletion
  bool undelete = false;             ///< the last deletion comes back out of the trash
  bool compact = false;              ///< the trash is emptied for good
  KeyValues options;                 ///< project options that were set
  bool empty() const { return logs.empty() && deleted.empty() && !undelete && !compact && options.empty(); }
};

/// What a project is used for.
enum class Access {
  Read, ///< nothing is stored
  Write ///< changes are stored, and nobody else writes meanwhile
};

/// Keeps one project. begin, then reading as often as wanted, then end or commit; and again. What throws Error in a use
/// leaves it begun, but for commit.
class Store {
public:
  virtual ~Store() = default; ///< ends a use that was begun, keeping no changes

  /// How messages name the project: the file's path, or "memory".
  virtual std::string subject() const = 0;

  /// Begins to use the project. Read: a snapshot that no other process can change, taken without any lock that keeps
  /// writers away. Write: nobody else can write from now on. Throws Error: NotFound, Unreadable, ReadOnly, Io, or Busy
  /// when another writer is still there after @p busyTimeout (the message says who). A use that goes on is ended first;
  /// after a throw none is begun. What throws because of the project leaves its file as it was.
  virtual void begin(Access access, std::chrono::milliseconds busyTimeout) = 0;
  /// Ends the use without keeping changes; does nothing when not begun. Never throws.
  virtual void end() noexcept = 0;

  /// @name Reading
  /// REQUIRES: begun. Throws Error: Unreadable when what is read is damaged, Io. What @p sink throws passes.
  /// @{

  virtual ProjectInfo info() = 0;
  virtual KeyValues options() = 0;       ///< ordered by key
  virtual std::int64_t nextNumber() = 0; ///< one more than any log ever had, those in the trash included
  /// All logs of type 9 by number, those in the trash excluded.
  virtual void readReels(const std::function<void(StoredLog&&)>& sink) = 0;
  /// All other logs by number, those in the trash excluded.
  virtual void readOthers(const std::function<void(StoredLog&&)>& sink) = 0;
  /// How many logs other than reel logs carry each identifier; identifiers with ASCII letters in lower case, ascending.
  /// Logs without an identifier, or with an empty one, are not counted.
  virtual std::vector<std::pair<std::string, std::int64_t>> countOthersByReel() = 0;
  /// Numbers of the logs in the last deletion that is still in the trash, ascending.
  virtual std::vector<std::int64_t> lastDeletion() = 0;
  virtual void readLastDeletion(const std::function<void(StoredLog&&)>& sink) = 0; ///< the same logs, by number
  virtual std::int64_t trashCount() = 0;                                           ///< logs in the trash

  /// @}

  /// Stores the changes, whole and durable, or throws and stores none of them; ends the use either way. Without any
  /// change nothing is written. Throws Error: Busy, ReadOnly, Refused, Unreadable, Io. REQUIRES: begun for writing; log
  /// numbers are positive, and no log is of kind 'I'.
  virtual void commit(const Changes& changes) = 0;

  /// Whether another process has committed since the last begin or the last true answer of this. Needs no begin; during
  /// a use the answer is false, for its snapshot stays what it is, and what others did meanwhile is told after end().
  /// Throws Error when that cannot be found out.
  virtual bool changedElsewhere() = 0;
  /// Looks the whole project over: one line for each thing that is wrong, none when nothing is. Needs no begin. Throws
  /// Error, not Unreadable, when it cannot look.
  virtual std::vector<std::string> check() = 0;
};

/// A project that lives as long as the store, empty at first but for @p options. Tests, benchmarks and dry runs use it.
std::unique_ptr<Store> makeMemoryStore(const ProjectInfo& info, const KeyValues& options = {});

/// The project in the SQLite file @p path. Nothing is read before begin, and no file need be there.
std::unique_ptr<Store> makeSqliteStore(const std::filesystem::path& path);

/// Makes the project file @p path, whole or not at all. Throws Error: Refused when it exists or when files of an
/// earlier project of this name lie beside it, Io.
void createSqliteProject(const std::filesystem::path& path, const ProjectInfo& info, const KeyValues& options);

} // namespace reelhost

#endif
