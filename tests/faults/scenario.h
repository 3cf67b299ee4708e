// SPDX-License-Identifier: Apache-2.0
//
// The operations of the library, each in a situation in which it has work to do.
#ifndef REELDB_TESTS_FAULTS_SCENARIO_H
#define REELDB_TESTS_FAULTS_SCENARIO_H

#include <ostream>
#include <vector>

namespace reeldb_tests {

class Scene;

/// One operation in one situation.
struct Scenario {
  const char* operation;      ///< its demangled name in the list of exported names
  const char* situation = ""; ///< what is special in this scenario

  const char* id = "R1"; ///< the scene has `id`, and `rec`, the record of that reel
  const char* value = "X";
  const wchar_t* wide = L"X";
  int number = 1;
  void (*arrange)(Scene&) = nullptr; ///< prepares the scene further
  void (*fill)(Scene&) = nullptr;    ///< fills the out-arguments before
  void (*act)(Scene&) = nullptr;

  // The results when nothing fails
  const char* answer = "";  ///< Scene::described
  const char* changes = ""; ///< one line per value of the project that changes
  const char* heard = "";   ///< the notifications of every client

  // Reasons for exceptions from the general rules. Null: there is no exception.
  const char* callerTells = nullptr;       ///< the caller decides what clients are notified of, true or not
  const char* toldWithoutChange = nullptr; ///< clients are notified of a change even if the log did not open for it
  const char* doneByHalves = nullptr;      ///< running the operation again does not complete what a fault prevented
  const char* changesWhenTold = nullptr;   ///< it has other results while notifications are held
  const char* noHostCall = nullptr;        ///< it uses only values and memory of the host
  const char* withoutMemory = nullptr;     ///< the result without memory, where other operations throw
};

std::ostream& operator<<(std::ostream& out, const Scenario& scenario);

std::vector<Scenario> managerScenarios();
std::vector<Scenario> changeScenarios(); ///< of the manager: what changes reels
std::vector<Scenario> recordScenarios();
std::vector<Scenario> otherScenarios(); ///< reel types, clients, label maps, memory, version
std::vector<Scenario> allScenarios();

} // namespace reeldb_tests

#endif
