// SPDX-License-Identifier: Apache-2.0
//
// A project in an SQLite file. docs/formats/project.md says what is in it.
#ifndef REELDB_STORE_SQLITE_STORE_H
#define REELDB_STORE_SQLITE_STORE_H

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "reelhost/store.h"
#include "store/project_file.h"
#include "store/sqlite.h"
#include "store/sqlite_schema.h"

namespace reelhost {

/// The connection stays open between uses, for changedElsewhere; a use is one transaction on it.
class SqliteStore final : public Store {
public:
  /// @p steps: the versions this store knows; tests give others.
  explicit SqliteStore(std::filesystem::path path, const SchemaSteps& steps = schemaSteps());
  ~SqliteStore() override;

  std::string subject() const override;
  void begin(Access access, std::chrono::milliseconds patience) override;
  void end() noexcept override;
  ProjectInfo info() override;
  KeyValues options() override;
  std::int64_t nextNumber() override;
  void readReels(const std::function<void(StoredLog&&)>& sink) override;
  void readOthers(const std::function<void(StoredLog&&)>& sink) override;
  std::vector<std::pair<std::string, std::int64_t>> countOthersByReel() override;
  std::vector<std::int64_t> lastDeletion() override;
  void readLastDeletion(const std::function<void(StoredLog&&)>& sink) override;
  std::int64_t binCount() override;
  void commit(const Changes& changes) override;
  bool changedElsewhere() override;
  std::vector<std::string> check() override;

private:
  enum class Use { None, Read, Write };
  enum class Look { Start, WholeFile }; ///< how much of a file is looked at before it is used
  /// What changedElsewhere compares: the version that SQLite counts, or time and size of a file that is read as it
  /// lies.
  using Seen = std::pair<std::int64_t, std::int64_t>;
  static constexpr Seen changed = {-1, -1}; ///< equals nothing that can be seen

  void beginUse(Access access, std::chrono::milliseconds patience, Look look);
  void use(const ProjectFile& file, sqlite::Database::Mode mode, Access access, std::chrono::milliseconds patience,
           Look look);
  void greet(const ProjectFile& file, sqlite::Database::Mode mode);
  void startUse(Access access);
  void refuseUnknown(std::int64_t version) const;
  void lookOver();
  std::string cutShort();
  void upgrade();
  void endUse() noexcept;
  void close() noexcept;
  std::int64_t lastNumber();
  void readLogs(const char* condition, const std::function<void(StoredLog&&)>& sink);
  void write(const Changes& changes);
  void writeLogs(const std::vector<StoredLog>& logs);
  void shareAgain() noexcept;
  Seen seenNow();
  std::vector<std::string> examine();
  /// Runs @p work; a Failure of SQLite leaves it as the Error that errorFor makes of it.
  template <class Work>
  auto guarded(const char* fact, Work work) -> decltype(work());
  [[noreturn]] void refuse(ErrorKind kind, const std::string& fact) const;
  Error errorFor(const char* fact, const sqlite::Failure& failure);

  std::filesystem::path path_;
  const SchemaSteps& steps_;
  std::optional<sqlite::Database> database_; ///< open since the first begin that came so far
  sqlite::Database::Mode mode_ = sqlite::Database::Mode::ReadWrite;
  ProjectFile file_;      ///< as it was when it was opened
  bool lookedAt_ = false; ///< whether the open file was looked over
  Use use_ = Use::None;
  std::optional<Seen> seen_; ///< empty before the first begin
};

} // namespace reelhost

#endif
