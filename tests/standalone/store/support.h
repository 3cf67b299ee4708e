// SPDX-License-Identifier: Apache-2.0
//
// Shared by the tests of the stores.
#ifndef REELDB_TESTS_STANDALONE_STORE_SUPPORT_H
#define REELDB_TESTS_STANDALONE_STORE_SUPPORT_H

#include <chrono>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include <sys/types.h>

#include "reelhost/history.h"
#include "support/temp_folder.h"

namespace store_tests {

using reeldb_tests::TempFolder;

/// A small file system that is mounted in a folder while the object lives. mounted() is false if mounting is not
/// allowed.
class TempMount {
public:
  explicit TempMount(const std::string& options);
  ~TempMount();
  bool mounted() const { return mounted_; }
  bool makeReadOnly();
  std::filesystem::path operator/(std::string_view name) const { return folder_.path() / name; }

private:
  TempFolder folder_;
  bool mounted_ = false;
};

std::string bytesOf(const std::filesystem::path& file);
void writeBytes(const std::filesystem::path& file, std::string_view bytes);
std::int64_t modificationTime(const std::filesystem::path& file);      ///< nanoseconds
std::vector<std::string> namesIn(const std::filesystem::path& folder); ///< sorted

/// Runs @p sql on the file with SQLite itself; fails the test on an error. Returns the first column of the last row.
std::string runSql(const std::filesystem::path& file, const std::string& sql);

constexpr std::chrono::milliseconds noPatience(0);
constexpr std::chrono::milliseconds muchPatience(30000);

reelhost::ProjectInfo exampleInfo();

/// A log whose values all follow from its number.
reelhost::StoredLog exampleLog(std::int64_t number, int type);

/// The bytes of a list of that number, and the list itself with an event for each of @p shots.
std::string exampleListBytes(std::int64_t number);
reelhost::KeptList exampleList(std::int64_t number, const std::vector<std::int64_t>& shots);
reelhost::Changes listChanges(std::vector<reelhost::KeptList> lists); ///< with the bytes of these lists
std::vector<reelhost::KeptList> listsOf(reelhost::Store& store);      ///< whole; begins and ends a use

/// The log as one text, for comparisons and for messages of failed tests.
std::string describe(const reelhost::StoredLog& log);
std::vector<std::string> reelsOf(reelhost::Store& store);    ///< all reels, described; begins and ends a use
std::vector<std::string> othersOf(reelhost::Store& store);   ///< likewise
std::vector<std::int64_t> numbersOf(reelhost::Store& store); ///< of all logs, reels first; begins and ends a use

/// The logs of the last deletion; a use of its own, as for the functions below.
std::vector<reelhost::StoredLog> deletedLogsOf(reelhost::Store& store);
reelhost::Inverse inverseOfLastDeletion(reelhost::Store& store);     ///< of nothing when there is no deletion
std::vector<reelhost::Revision> revisionsOf(reelhost::Store& store); ///< the oldest first
reelhost::RevisionChanges changesOf(reelhost::Store& store, std::int64_t revision);
std::int64_t trashCountOf(reelhost::Store& store);

/// begin for writing, commit.
void store(reelhost::Store& store, const reelhost::Changes& changes);
reelhost::Changes logChanges(std::vector<reelhost::StoredLog> logs);

/// The kind and the text of the Error that @p work throws: "Busy: x: held by another process"; "nothing" without one.
std::string errorOf(const std::function<void()>& work);

/// A separate process that runs @p work and then waits. The destructor kills and reaps it. An exception of the work
/// ends it with status 1.
class Child {
public:
  explicit Child(const std::function<void()>& work);
  ~Child();
  pid_t pid() const { return pid_; }
  void waitUntilDone(); ///< returns when the work is done; the process still lives
  int waitForExit();    ///< lets the process exit. Returns its status, -1 if it was killed
  void kill();          ///< SIGKILL, and reaps it

private:
  pid_t pid_ = -1;
  int done_ = -1;
  int release_ = -1;
  int keep_ = -1;
};

/// A process that stores @p changes and is killed before it closes the project, so that its write-ahead log stays.
void storeAndDie(const std::filesystem::path& file, const reelhost::Changes& changes);

} // namespace store_tests

#endif
