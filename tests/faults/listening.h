// SPDX-License-Identifier: Apache-2.0
//
// Listeners that record notifications while something fails. They allocate no memory meanwhile.
#ifndef REELDB_TESTS_FAULTS_LISTENING_H
#define REELDB_TESTS_FAULTS_LISTENING_H

#include <array>
#include <functional>
#include <string>
#include <vector>

#include "ReelDbClient.h"
#include "host/events.h"

class ReelDbManager;

namespace reeldb_tests {

/// A client that records its notifications.
class Listening : public ReelDbClient {
public:
  Listening() = default;
  explicit Listening(const LightweightString<char>& interest) : ReelDbClient(interest) {}

  void reelDbChanged(LightweightString<char> id) override { keep("dbC", id); }
  void ourReelDbRecChanged() override { keep("our", {}); }
  void someReelDbRecChanged(LightweightString<char> id) override { keep("some", id); }

  /// "dbC(R1)", "our()", "some(R1)", in order.
  std::vector<std::string> heard() const;
  void forget() { count_ = 0; }

  void (*inHandler)(ReelDbManager&) = nullptr; ///< called in each handler

private:
  struct Notice {
    const char* kind;
    std::array<char, 28> id;
  };
  void keep(const char* kind, const LightweightString<char>& id);

  std::array<Notice, 40> notices_;
  std::size_t count_ = 0;
};

/// Detects whether a fault happened while the host reported a change to its listeners, because the host does not pass
/// on such a fault. One listener is made before the manager, and so is notified before it, and one after it.
class ReportWatch final : public ProjectListener {
public:
  enum class Place { First, Last };
  ReportWatch(Place place, std::function<bool()> faultHappened);
  void handleLogModification(const Cookie&, const EditModification&) override;

  static void forget();
  static bool faultHappenedInReport();

private:
  Place place_;
  std::function<bool()> faultHappened_;
};

} // namespace reeldb_tests

#endif
