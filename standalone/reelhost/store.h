// SPDX-License-Identifier: Apache-2.0
/// @file
/// The storage of projects. The model reads and writes whole logs; only the store knows how they are stored. Main
/// thread only.
#ifndef REELHOST_STORE_H
#define REELHOST_STORE_H

#include <array>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "reelhost/error.h"
#include "reelhost/lists.h"

namespace reelhost {

/// Unique keys with one text per key.
using KeyValues = std::vector<std::pair<std::string, std::string>>;

/// The properties of a project.
struct ProjectInfo {
  std::string name;                     ///< UTF-8
  std::array<unsigned char, 16> uuid{}; ///< the uuid of the project's Cookie
  int frameRate = -1;                   ///< frame rate code of the project
  int outputFrameRate = -1;             ///< frame rate code of its output
};

/// One whole log. All texts are UTF-8 or raw bytes as they were set; no text holds NUL.
struct StoredLog {
  std::int64_t number = 0;              ///< 1, 2, 3, ... in the order of creation; never used twice
  std::array<unsigned char, 16> uuid{}; ///< uuid, tag and kind form the log's Cookie
  std::uint16_t tag = 0;
  char kind = 'E';           ///< the Cookie's kind, not 'I'
  int type = 0;              ///< log type: 9 reel, 1 material, 0 not classified
  bool imported = false;     ///< whether it was imported
  bool entireMedium = false; ///< whether it represents the whole medium
  std::string name;          ///< display name
  int videoChannels = 0;
  int audioChannels = 0;
  std::string reelType; ///< the row's text in the column "Reel Type"
  /// The configuration block, "reelid" included; each key once. Stores accept any order and return one order: the keys
  /// of shotTexts (reelhost/material.h), then all others by their bytes.
  KeyValues fields;
};

/// Who made a commit, and how. A text is empty if it is unknown or not to be kept.
struct Origin {
  std::int64_t time = 0;              ///< seconds since 1970; 0: unknown
  std::string program;                ///< its name and version
  std::string command;                ///< its command line, at most longestCommand bytes
  std::string user, machine;          ///< who ran it, and where
  std::string folder;                 ///< the working folder
  std::vector<std::string> elsewhere; ///< what the commit changed beside the project; each "subject: fact"
};
inline constexpr std::size_t longestCommand = 2047;

/// What takes an earlier revision back.
struct Inverse {
  std::int64_t revision = 0; ///< the revision that is taken back; 0: no revision is
  bool isRedo = false;       ///< whether that revision took another one back, so that its changes are made again
  std::vector<StoredLog> logs;
  std::vector<std::int64_t> deleted;
  KeyValues options;
  std::vector<std::string> unsetOptions; ///< the options that the revision set first
  std::vector<KeptList> lists = {};
  std::vector<std::int64_t> deletedLists = {};
};

/// The changes of one command. They are stored in this order: inverse, logs, compact and forgetBefore, deleted, lists,
/// deletedLists, options; if a log is both written and deleted, the options come before the deletions. A written log or
/// list replaces the one of its number, or brings it back if it was deleted. A number in deleted or deletedLists is
/// ignored if there is no such log or list. A store that keeps no lists ignores the lists and their bytes.
///
/// A store that keeps a history gives each commit a revision. The inverse has a revision of its own, and so have the
/// deletions if one of the deleted logs is also written: the last revision says what the log was when it was deleted.
struct Changes {
  Inverse inverse;
  std::vector<StoredLog> logs;       ///< new and changed logs, by number
  std::vector<std::int64_t> deleted; ///< logs to delete, as one deletion
  bool compact = false;              ///< removes for good what the history keeps of deleted logs
  std::int64_t forgetBefore = 0;     ///< removes all revisions below this number from the history
  KeyValues options;                 ///< project options that were set
  std::vector<KeptList> lists;       ///< new and changed lists, by number
  std::vector<std::int64_t> deletedLists;
  std::map<Digest, std::string> listBytes; ///< the bytes of lists by their digests, unless they are stored already
  /// The highest numbers of a log and of a list that a later commit may use and no other process is given. That is not
  /// a change of the project and has no revision. 0: none are reserved.
  std::int64_t reservedLogs = 0, reservedLists = 0;
  Origin origin;
  bool empty() const
  {
    return inverse.revision == 0 && logs.empty() && deleted.empty() && !compact && forgetBefore == 0 &&
           options.empty() && lists.empty() && deletedLists.empty() && reservedLogs == 0 && reservedLists == 0;
  }
};

/// How a project is used.
enum class Access {
  Read, ///< nothing is stored
  Write ///< changes are stored; no other process can write meanwhile
};

class Feed;
class History;

/// Keeps one project. One use is begin, any number of reads, then end or commit; uses can be repeated. After an Error
/// the use goes on, except after an Error of commit.
class Store {
public:
  virtual ~Store() = default; ///< ends the current use and discards its changes

  /// The history of the project, which lives as long as the store. Null if this store keeps no history: what is deleted
  /// is then gone for good.
  virtual History* history() { return nullptr; }
  /// What others change in the project, revision by revision; lives as long as the store. Null if this store does not
  /// know that: the project is then read again after each change by others.
  virtual Feed* feed() { return nullptr; }
  /// The lists of the project, which live as long as the store. Null if this store keeps no lists.
  virtual Lists* lists() { return nullptr; }

  /// The project's name in messages: the file's path, or "memory".
  virtual std::string subject() const = 0;

  /// Begins a use of the project. Read: takes a snapshot that no other process can change, without a lock that blocks
  /// writers. Write: no other process can write from now on. Throws Error: NotFound, Unreadable, ReadOnly, Io, or Busy
  /// if another writer still holds the project after @p busyTimeout (the message names it). Ends the current use first;
  /// after a throw no use is begun. After an error in the project its file is unchanged.
  virtual void begin(Access access, std::chrono::milliseconds busyTimeout) = 0;
  /// Ends the use and discards its changes; does nothing if no use was begun. Never throws.
  virtual void end() noexcept = 0;

  /// @name Reading
  /// REQUIRES: a use was begun. Throws Error: Unreadable if the data are damaged, Io. Exceptions of @p sink pass
  /// through.
  /// @{

  virtual ProjectInfo info() = 0;
  virtual KeyValues options() = 0;       ///< ordered by key
  virtual std::int64_t nextNumber() = 0; ///< one more than the highest number ever used
  /// Reads all logs of type 9, by number.
  virtual void readReels(const std::function<void(StoredLog&&)>& sink) = 0;
  /// Reads all other logs, by number.
  virtual void readOthers(const std::function<void(StoredLog&&)>& sink) = 0;
  /// The number of logs other than reel logs for each identifier. Identifiers have ASCII letters in lower case and are
  /// ascending. Logs without an identifier, or with an empty one, are not counted.
  virtual std::vector<std::pair<std::string, std::int64_t>> countOthersByReel() = 0;

  /// @}

  /// Stores all changes durably, or throws and stores none of them; ends the use either way. Writes nothing if there is
  /// no change. Throws Error: Busy, ReadOnly, Refused, Unreadable, Io. REQUIRES: a use was begun for writing; log
  /// numbers are positive, no log is of kind 'I', the bytes of a new list are stored or in @p changes, and no list is
  /// both written and deleted.
  virtual void commit(const Changes& changes) = 0;

  /// Whether another process has committed since the last begin, or since this function last returned true. Needs no
  /// begin. Returns false during a use, whose snapshot does not change; commits made meanwhile are reported after
  /// end(). Throws Error if that cannot be determined.
  virtual bool changedElsewhere() = 0;
  /// Checks the whole project and returns one line per fault. Needs no begin. Throws Error, but never Unreadable, if it
  /// cannot check.
  virtual std::vector<std::string> check() = 0;
};

/// A project that lives as long as the store. It has @p options and nothing else. Tests, benchmarks and dry runs use
/// it.
std::unique_ptr<Store> makeMemoryStore(const ProjectInfo& info, const KeyValues& options = {});

/// The project in the SQLite file @p path. Reads nothing before begin; the file need not exist.
std::unique_ptr<Store> makeSqliteStore(const std::filesystem::path& path);

/// Copies the project in the SQLite file @p project, as its last commit left it, to the new file @p copy. Others may
/// read and write it meanwhile. Throws Error as Store::begin does for reading; Refused if @p copy exists, Io.
void backUpSqliteProject(const std::filesystem::path& project, const std::filesystem::path& copy);

/// Creates the project file @p path, completely or not at all, with what @p content adds to an empty project. Its
/// history is empty. Throws Error: Refused if it exists or if files of an earlier project of this name lie beside it,
/// Io.
void createSqliteProject(const std::filesystem::path& path, const ProjectInfo& info, const KeyValues& options,
                         const Changes& content = {});

/// Gives an existing project file the content and the properties of another project, all but the name, in one
/// transaction, and replaces its options. The logs and lists are one revision, which can be taken back; properties and
/// options then stay. Throws Error: Refused if the project has ever had a log or a list; and as Store::begin does for
/// writing.
void fillSqliteProject(const std::filesystem::path& path, const ProjectInfo& info, const KeyValues& options,
                       const Changes& content);

} // namespace reelhost

#endif
