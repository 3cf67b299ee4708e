// SPDX-License-Identifier: Apache-2.0
//
// The operations of the library, each in a situation in which it has something to do.
#ifndef REELDB_TESTS_FAULTS_SCENARIO_H
#define REELDB_TESTS_FAULTS_SCENARIO_H

#include <ostream>
#include <vector>

namespace reeldb_tests {

class Scene;

/// One operation in one situation.
struct Scenario {
  const char* operation;      ///< as the list of exported names has it, demangled
  const char* situation = ""; ///< what is special about it

  const char* id = "R1"; ///< what is made of these is ready in the scene: `id`, and `rec`, the record of that reel
  const char* value = "X";
  const wchar_t* wide = L"X";
  int number = 1;
  void (*arrange)(Scene&) = nullptr; ///< what else there is before
  void (*fill)(Scene&) = nullptr;    ///< what the out-arguments hold before
  void (*act)(Scene&) = nullptr;

  // What comes of it when nothing fails
  const char* answer = "";  ///< Scene::described
  const char* changes = ""; ///< a line for each value of the project that changes
  const char* heard = "";   ///< what every client hears

  // Why an operation may do what others may not. Null: it may not.
  const char* callerTells = nullptr;       ///< clients hear what the caller says, true or not
  const char* toldWithoutChange = nullptr; ///< clients hear of a change that a log which did not open has prevented
  const char* doneByHalves = nullptr;      ///< the same operation once more does not make good what a fault prevented
  const char* changesWhenTold = nullptr;   ///< while notifications are held, other things come of it
  const char* noHostCall = nullptr;        ///< it asks nothing of the host but values and memory
  const char* withoutMemory = nullptr;     ///< what it answers where others throw: without memory
};

std::ostream& operator<<(std::ostream& out, const Scenario& scenario);

std::vector<Scenario> managerScenarios();
std::vector<Scenario> changeScenarios(); ///< of the manager: what changes reels
std::vector<Scenario> recordScenarios();
std::vector<Scenario> otherScenarios(); ///< reel types, clients, label maps, memory, version
std::vector<Scenario> allScenarios();

} // namespace reeldb_tests

#endif
