// SPDX-License-Identifier: Apache-2.0
//
// A project in an SQLite file. docs/formats/project.md describes the file.
#ifndef REELDB_STORE_SQLITE_STORE_H
#define REELDB_STORE_SQLITE_STORE_H

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "reelhost/feed.h"
#include "reelhost/history.h"
#include "store/file_watch.h"
#include "store/sqlite_schema.h"
#include "store/sqlite_session.h"

namespace reelhost {

class SqliteStore final : public Store, public History, public Feed, public Lists {
public:
  /// @p steps: the versions that this store knows; tests pass others.
  explicit SqliteStore(std::filesystem::path path, const SchemaSteps& steps = schemaSteps());

  std::string subject() const override;
  void begin(Access access, std::chrono::milliseconds busyTimeout) override;
  void end() noexcept override;
  ProjectInfo info() override;
  KeyValues options() override;
  std::int64_t nextNumber() override;
  void readReels(const std::function<void(StoredLog&&)>& sink) override;
  void readOthers(const std::function<void(StoredLog&&)>& sink) override;
  std::vector<std::pair<std::string, std::int64_t>> countOthersByReel() override;
  void commit(const Changes& changes) override;
  bool changedElsewhere() override;
  std::vector<std::string> check() override;

  History* history() override { return this; }
  int olderVersion() override;
  void readRevisions(const std::function<bool(Revision&&)>& sink) override;
  RevisionChanges changesOf(std::int64_t revision) override;
  void readChangesOfLog(std::int64_t number, const std::function<void(LogChange&&)>& sink) override;
  void readChangedLogs(const std::function<void(std::int64_t, std::int64_t, bool)>& sink) override;
  std::int64_t trashCount() override;
  std::int64_t removedListCount() override;
  void giveSpaceBack() override { session_.giveSpaceBack(); }

  Feed* feed() override { return this; }
  FeedPosition position() override;
  Delta since(const FeedPosition& before) override;
  int waitHandle() override { return watch().handle(); }
  std::string whyNoWaitHandle() override { return watch().whyNot(); }
  AskAgain readEvents() noexcept override { return watch_ ? watch_->readEvents() : std::nullopt; }

  Lists* lists() override { return this; }
  std::int64_t nextListNumber() override;
  void readListHeads(const std::function<void(KeptList&&)>& sink) override;
  std::vector<ListEvent> eventsOf(std::int64_t list) override;
  std::string listBytes(const Digest& digest) override;

private:
  /// Reads with @p work, which takes the database.
  template <class Work>
  auto read(Work work);
  bool keepsHistory() const { return session_.version() >= versionWithHistory; }

  FileWatch& watch();

  SqliteSession session_;
  FeedPosition stored_; ///< by the last commit
  std::optional<FileWatch> watch_;
};

} // namespace reelhost

#endif
