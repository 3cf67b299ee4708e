// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_TESTS_STANDALONE_MODEL_ELSEWHERE_H
#define REELDB_TESTS_STANDALONE_MODEL_ELSEWHERE_H

#include <cstdint>
#include <filesystem>
#include <memory>
#include <utility>
#include <vector>

#include "reelhost/store.h"

namespace reeldb_tests {

/// Commits to a project file by a connection of its own, or to a store, as another process would.
class Elsewhere {
public:
  explicit Elsewhere(const std::filesystem::path& file) : store_(reelhost::makeSqliteStore(file)) {}
  explicit Elsewhere(std::shared_ptr<reelhost::Store> store) : store_(std::move(store)) {}

  void commit(const reelhost::Changes& changes)
  {
    store_->begin(reelhost::Access::Write, patience);
    store_->commit(changes);
  }
  void commitLogs(std::vector<reelhost::StoredLog> logs)
  {
    reelhost::Changes changes;
    changes.logs = std::move(logs);
    commit(changes);
  }
  void remove(std::vector<std::int64_t> numbers)
  {
    reelhost::Changes changes;
    changes.deleted = std::move(numbers);
    commit(changes);
  }
  /// The log with this number as it is stored; number 0 if there is no such log.
  reelhost::StoredLog stored(std::int64_t number)
  {
    reelhost::StoredLog found;
    const auto take = [&](reelhost::StoredLog&& log) {
      if (log.number == number)
        found = std::move(log);
    };
    read([&](reelhost::Store& store) {
      store.readReels(take);
      store.readOthers(take);
    });
    return found;
  }
  /// Reads with @p work, which takes the store.
  template <class Work>
  void read(Work work)
  {
    store_->begin(reelhost::Access::Read, patience);
    work(*store_);
    store_->end();
  }

private:
  static constexpr std::chrono::seconds patience{5};
  std::shared_ptr<reelhost::Store> store_;
};

} // namespace reeldb_tests

#endif
