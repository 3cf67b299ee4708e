// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_TESTS_STANDALONE_MODEL_FORWARDING_STORE_H
#define REELDB_TESTS_STANDALONE_MODEL_FORWARDING_STORE_H

#include <memory>
#include <utility>
#include <vector>

#include "reelhost/store.h"

namespace reeldb_tests {

/// Forwards every call to another store, which stays when a project that uses this one is closed. A test overrides the
/// calls that it counts or lets fail.
class ForwardingStore : public reelhost::Store {
public:
  using Sink = std::function<void(reelhost::StoredLog&&)>;

  explicit ForwardingStore(std::shared_ptr<reelhost::Store> to) : to_(std::move(to)) {}
  std::string subject() const override { return to_->subject(); }
  void begin(reelhost::Access access, std::chrono::milliseconds busyTimeout) override
  {
    to_->begin(access, busyTimeout);
  }
  void end() noexcept override { to_->end(); }
  reelhost::ProjectInfo info() override { return to_->info(); }
  reelhost::KeyValues options() override { return to_->options(); }
  std::int64_t nextNumber() override { return to_->nextNumber(); }
  void readReels(const Sink& sink) override { to_->readReels(sink); }
  void readOthers(const Sink& sink) override { to_->readOthers(sink); }
  std::vector<std::pair<std::string, std::int64_t>> countOthersByReel() override { return to_->countOthersByReel(); }
  reelhost::History* history() override { return to_->history(); }
  reelhost::Feed* feed() override { return to_->feed(); }
  reelhost::Lists* lists() override { return to_->lists(); }
  void commit(const reelhost::Changes& changes) override { to_->commit(changes); }
  bool changedElsewhere() override { return to_->changedElsewhere(); }
  std::vector<std::string> check() override { return to_->check(); }

private:
  std::shared_ptr<reelhost::Store> to_;
};

} // namespace reeldb_tests

#endif
