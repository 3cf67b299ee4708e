// SPDX-License-Identifier: Apache-2.0
//
// Intercepts every call from the library to its host.
#ifndef REELDB_TESTS_FAULTS_LIBRARY_CALLS_H
#define REELDB_TESTS_FAULTS_LIBRARY_CALLS_H

#include <cstdint>
#include <set>
#include <string>

namespace reeldb_tests {

/// The exception that replaces a call. It has no base class and uses no memory.
struct LibraryCallFault {
  std::int64_t number;
  const char* callee; ///< mangled
};

/// The calls from the library to its host. If they cannot be intercepted on this processor or system, unavailable()
/// says why.
class LibraryCalls {
public:
  static LibraryCalls& the();
  const std::string& unavailable() const { return unavailable_; } ///< empty if calls are intercepted

  void failAt(std::int64_t n);   ///< the n-th call from now throws LibraryCallFault; it is not made
  void failFrom(std::int64_t n); ///< likewise, and all later calls
  void stop();                   ///< no call throws any more
  bool failed() const;           ///< whether a call has thrown

  /// The mangled names of the host's operations that could fail but are not intercepted.
  const std::set<std::string>& notLed() const { return notLed_; }

private:
  LibraryCalls();
  std::string unavailable_;
  std::set<std::string> notLed_;
};

} // namespace reeldb_tests

#endif
