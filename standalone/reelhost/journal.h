// SPDX-License-Identifier: Apache-2.0
/// @file
/// The journal: every host operation of the database, logs, configuration, devices, project, text resources, printing
/// and deferral, with its arguments and its result. And the script: answers and faults put in place of the host's own.
/// Both are off by default and then cost one predictable branch a call. Memory, counts, strings and containers are not
/// journaled.
#ifndef REELHOST_JOURNAL_H
#define REELHOST_JOURNAL_H

#include <cstdint>
#include <cstdio>
#include <functional>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "host/cookie.h"
#include "host/device.h"

namespace reelhost {

/// One host operation. As a line: `Edit::set_reelid(E..., 0, "R1")` or, with a result, `co_pid() -> 1`.
struct Call {
  /// As declared: "EditPtr::i_open", "configb::set", "vorn_printf", "EditModifier::~EditModifier".
  std::string operation;
  std::string arguments;    ///< comma separated; texts in double quotes with escapes, Cookies in their text form
  std::string result;       ///< empty when there is none; "threw TYPE" when the operation threw
  std::string line() const; ///< the whole call, without a line end
};

/// The calls of host operations, in the order in which they began. Any thread.
class Journal {
public:
  static Journal& the();                  ///< the one there is, until the process ends
  void record(bool on);                   ///< keeps calls in memory from now on; turning on forgets what was kept
  void traceTo(std::FILE* file);          ///< writes each call as a line when it returns; null: no longer. Borrowed
  void clear();                           ///< forgets what was kept
  std::vector<Call> calls() const;        ///< a copy of what was kept; a call that has not returned yet has no result
  std::vector<std::string> lines() const; ///< the same calls as Call::line writes them
  std::vector<std::string> operations() const;
  int count(std::string_view operation) const;
};

/// Thrown by the host operation that the script chose.
class ScriptedFault : public std::runtime_error {
public:
  using std::runtime_error::runtime_error; ///< says which operation and which call
};

/// What the host answers instead of the truth. reset() returns everything to normal. Written while no other thread
/// calls host operations.
class Script {
public:
  static Script& the(); ///< the one there is. From the first call on every operation asks it
  void reset();         ///< answers the truth again, and counts from 0

  /// Called before each journaled operation is carried out; what it throws takes the place of the operation (not for
  /// EditPtr::i_close and destructors, which cannot throw: there it must not throw).
  std::function<void(const std::string& operation, const std::string& arguments)> before;

  /// The n-th operation that may throw (from 1, counted from now) throws ScriptedFault. 0: none.
  void throwAt(std::int64_t n);
  std::int64_t throwingCalls() const; ///< how many such operations were seen since throwAt or reset
  bool faultHappened() const;         ///< whether throwAt's operation came since then

  void failOpen(const Cookie& log);    ///< every opening of this log yields no Edit (also as EditInfo)
  void failOpenNumber(std::int64_t n); ///< the n-th opening from now yields no Edit. 0: none.
  std::int64_t openings() const;       ///< since failOpenNumber or reset
  void noDatabase(bool gone);          ///< getProjdb answers null
  void noDatabaseAt(std::int64_t n);   ///< only the n-th getProjdb from now answers null. 0: none.

  std::optional<CookieVec> maskSearchResult;                  ///< the answer of `projdb::search(unsigned, unsigned)`
  std::optional<CookieVec> attributeSearchResult;             ///< the answer of `projdb::search(const SearchCriteria&)`
  void attribute(const Cookie& log, const std::string& text); ///< what getAttrib returns of an open log
  void typeField(const Cookie& log,
                 std::optional<std::string> text); ///< the row's "Type" text; nullopt: the row holds none
  void noRow(const Cookie& log);                   ///< no row: projdb::operator[] null, views show nothing

  /// What `configb::in(key, int&)` does.
  struct IntAnswer {
    int status;               ///< what it answers; 0: success
    std::optional<int> value; ///< written when there is one
  };
  /// What `configb::in(key, char*)` does.
  struct TextAnswer {
    int status;                      ///< what it answers; 0: success
    std::optional<std::string> text; ///< written when there is one, cut to 2,047 bytes
  };
  std::map<std::string, IntAnswer> configInt;   ///< of `configb::in(key, int&)`, by key
  std::map<std::string, TextAnswer> configText; ///< of `configb::in(key, char*)`, by key
  bool configBufferWasZero = true; ///< whether every buffer handed to `configb::in(key, char*)` held 2,048 zero bytes

  /// After which operation a view shows a new reel type.
  enum class ViewFollows {
    OnReelType, ///< Edit::reelType, which is what the library relies on
    OnUpdate    ///< EditManager::updateProjdbRec
  };
  ViewFollows viewFollows = ViewFollows::OnReelType; ///< when the view's "Reel Type" cell takes a new type

  std::optional<std::wstring> resourceText; ///< the text of every resource
  std::function<int()> coPid;               ///< answers co_pid
  std::vector<Cookie> projectCookies;       ///< answers of get_project_cookie in turn; the last one repeats
  std::optional<int> frameRate,             ///< answers Zr::CurrentProject::getFrameRate
      outputFrameRate;                      ///< answers Zr::CurrentProject::getOutputImageZRFrameRate
  std::map<std::wstring, std::vector<LabelMappingSet::Entry>> labelMaps; ///< loaded instead of files when not empty
  bool swallowDeferred = false;                                          ///< defer drops its action
};

/// @name Balances: always counted
/// Main thread only.
/// @{

std::int64_t openLogs();      ///< openings not closed yet (i_open, EditInfo and EditPtr::operator=(Edit*) with a log)
std::int64_t openModifiers(); ///< EditModifiers alive
int deferredActions();        ///< actions waiting

/// @}

} // namespace reelhost

#endif
