// SPDX-License-Identifier: Apache-2.0
//
// Lets everything that can fail beneath an operation fail in turn, and looks at what is left each time.
#ifndef REELDB_TESTS_FAULTS_SWEEP_H
#define REELDB_TESTS_FAULTS_SWEEP_H

#include "faults/fault_kinds.h"
#include "faults/scene.h"

namespace reeldb_tests {

class Sweep : public Scene {
protected:
  /// Has the process make what it makes once and keeps.
  void warmUp(FaultKind& kind);

  /// Runs the scenario without a fault and compares what comes of it with what the scenario says. Answers how often it
  /// opened a log.
  int runClean(const Scenario& scenario, int hold);

  /// Runs the scenario again and again, each time in a project of its own: the first time what can fail first fails,
  /// then what can fail next, until a run meets no fault. Every time
  /// - the exception comes out as it was thrown, unless the host's own report of a new log met it or the host could do
  ///   without what it was refused;
  /// - every log that was opened is closed, and every modification ended;
  /// - the notification hold is as it was, and while notifications are held nobody hears anything;
  /// - nobody hears of a change that was not made, but for what the scenario gives a reason for, and who hears of the
  ///   set of reels finds the database's in the manager's list;
  /// - the manager's list is the one of before or the database's, and every lookup agrees with it;
  /// - the operation can be run again, and then all is as if it had been run once, but for what the scenario gives a
  ///   reason for; other operations work;
  /// - in the end nobody holds any text, list or memory that was not held before.
  /// Answers how many faults there were; stops at the first that leaves something behind.
  int failEach(const Scenario& scenario, FaultKind& kind, int hold);

private:
  struct Run {
    const Scenario& scenario;
    FaultKind& kind;
    int hold;
  };
  struct Outcome {
    State before, after;
    std::exception_ptr thrown;
    std::string answer;
  };
  Outcome act(const Run& run, std::int64_t n);
  bool failOne(const Run& run, std::int64_t n);
  void checkException(const Run& run, const Outcome& outcome);
  void checkLogs(const Run& run);
  void checkNotices(const Run& run, const Outcome& outcome);
  void checkFollower(const std::vector<std::string>& all, bool mayMissTheLast);
  void checkList(const Outcome& outcome);
  void checkClients();
  void runAgain(const Run& run, const Outcome& outcome);
  void useTheManager();

  // Of the run without a fault
  std::string cleanAnswer_, cleanChanges_;
};

} // namespace reeldb_tests

#endif
