// SPDX-License-Identifier: Apache-2.0
//
// Shared by the tests of operations that change a project.
#ifndef REELDB_TESTS_REELDB_CHANGES_FIXTURE_H
#define REELDB_TESTS_REELDB_CHANGES_FIXTURE_H

#include "support/library_fixture.h"

namespace reeldb_tests {

using Lines = std::vector<std::string>;

/// The host's word for a reel is "[reel]" here, so that no test depends on the text of a particular host.
class ChangesTest : public LibraryTest {
protected:
  ChangesTest();

  /// The text of each lookup by identifier of the reels of the project, in list order.
  Lines reelIds();
  /// UTF-8 text of each Cookie, in order.
  static Lines texts(const CookieVec& logs);
  static CookieVec cookies(std::initializer_list<Cookie> logs);
  /// The journal's lines as one text, with the names of the test for these Cookies. The number of bytes that
  /// vorn_printf returns is left out.
  static std::string listing(Lines lines, const std::vector<std::pair<Cookie, std::string>>& names = {});
  /// The journal's line for a thread that counts as the main thread.
  static std::string mainThread();
  /// The identifier as the log's attribute shows it.
  static std::string attributeOf(const Cookie& log);

  /// Lets every host call of an operation fail in turn, each time in a newly prepared project. Each time, the fault
  /// must come out as it was thrown, every log and modifier must be closed, and the notification hold must be as
  /// before. @p afterwards then checks that the manager still works. Faults inside the host's own report of a new log
  /// stay with the host. Returns the number of host calls that failed.
  int failEachHostCall(const std::function<void()>& prepare, const std::function<void()>& operation,
                       const std::function<void()>& afterwards);

  Heard heard_;
};

/// The lists, one after the other.
Lines join(std::initializer_list<Lines> parts);

// Journal lines of frequent steps of the library. @p log is the name of the log in `listing`.

std::string quoted(const std::string& text);                         ///< in double quotes
Lines attributeRead(const std::string& log, const std::string& id);  ///< the identifier, as lookups read it
Lines withLog(const std::string& log, const Lines& inside);          ///< between an opening and its close
Lines withNewLog(const std::string& log, const std::string& change); ///< one change of a log that is open already
Lines idRead(const std::string& log, const std::string& id);         ///< the identifier, as records read it
Lines typeRead(const std::string& log, const std::string& type);     ///< the type, from the database's view
Lines rebuild(int reels);                                            ///< of the reel list
Lines shotSearch(const std::string& id, const std::string& result);

} // namespace reeldb_tests

#endif
