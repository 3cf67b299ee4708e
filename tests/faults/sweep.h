// SPDX-License-Identifier: Apache-2.0
//
// Lets everything that can fail in an operation fail in turn, and checks the state each time.
#ifndef REELDB_TESTS_FAULTS_SWEEP_H
#define REELDB_TESTS_FAULTS_SWEEP_H

#include "faults/fault_kinds.h"
#include "faults/scene.h"

namespace reeldb_tests {

class Sweep : public Scene {
protected:
  /// Makes what the process makes only once and keeps.
  void warmUp(FaultKind& kind);

  /// Runs the scenario without a fault and compares the results with those of the scenario. Returns the number of logs
  /// that it opened.
  int runClean(const Scenario& scenario, int hold);

  /// Runs the scenario repeatedly, each time in a new project. In the first run the first possible fault happens, in
  /// the next run the second, and so on until a run has no fault. After each run
  /// - the exception is the one that was thrown, unless the host kept it to itself in its report of a new log, or could
  ///   do without what it was refused;
  /// - every opened log is closed, and every modification ended;
  /// - the notification hold is unchanged, and while notifications are held, nobody was notified;
  /// - nobody was notified of a change that was not made, unless the scenario gives a reason, and a client that was
  ///   notified of the set of reels finds the reels of the database in the manager's list;
  /// - the manager's list is unchanged or equals the database's, and every lookup agrees with it;
  /// - the operation can be run again, and then the state is as if it had run once, unless the scenario gives a reason;
  ///   other operations work;
  /// - in the end no texts, lists or memory are held that were not held before.
  /// Returns the number of faults. Stops at the first fault after which something is left.
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

  // The results of the run without a fault
  std::string cleanAnswer_, cleanChanges_;
};

} // namespace reeldb_tests

#endif
