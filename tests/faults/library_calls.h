// SPDX-License-Identifier: Apache-2.0
//
// Stands between the library and its host: every call that leaves the library comes by here.
#ifndef REELDB_TESTS_FAULTS_LIBRARY_CALLS_H
#define REELDB_TESTS_FAULTS_LIBRARY_CALLS_H

#include <cstdint>
#include <set>
#include <string>

namespace reeldb_tests {

/// What is thrown in the place of a call. It derives from nothing and holds no memory.
struct LibraryCallFault {
  std::int64_t number;
  const char* callee; ///< mangled
};

/// The calls by which the library asks its host for something. Where the processor or the system is another than the
/// one whose calls can be led this way, unavailable says so.
class LibraryCalls {
public:
  static LibraryCalls& the();
  const std::string& unavailable() const { return unavailable_; } ///< empty when it works

  void failAt(std::int64_t n);   ///< the n-th call from now throws LibraryCallFault; it is not made
  void failFrom(std::int64_t n); ///< so do all after it
  void stop();                   ///< no call throws any more
  bool failed() const;           ///< whether the armed one has come

  /// Operations of the host that could fail but are not led by here. Mangled.
  const std::set<std::string>& notLed() const { return notLed_; }

private:
  LibraryCalls();
  std::string unavailable_;
  std::set<std::string> notLed_;
};

} // namespace reeldb_tests

#endif
