// SPDX-License-Identifier: Apache-2.0
/// @file
/// The journal records every host operation of the database, logs, configuration, devices, project, text resources,
/// printing and deferral, with its arguments and its result. The script replaces results of the host, or makes its
/// operations fail. Both are off by default and then cost one predictable branch per call. Memory, counts, strings and
/// containers are not journaled.
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
  std::string result;       ///< empty for an operation without a result; "threw TYPE" if the operation threw
  std::string line() const; ///< the whole call, without a line end
};

/// The calls of host operations, in the order in which they began. Any thread.
class Journal {
public:
  static Journal& the();                  ///< the journal of the process; never destroyed
  void record(bool on);                   ///< starts or stops recording calls in memory; a start clears the record
  void traceTo(std::FILE* file);          ///< writes each call as a line when it returns; null stops that. Borrowed
  void clear();                           ///< clears the record
  std::vector<Call> calls() const;        ///< a copy of the record; a call that has not returned yet has no result
  std::vector<std::string> lines() const; ///< Call::line of each recorded call
  std::vector<std::string> operations() const;
  int count(std::string_view operation) const;
};

/// Thrown by the host operation that the script selects.
class ScriptedFault : public std::runtime_error {
public:
  using std::runtime_error::runtime_error; ///< the text names the operation and the number of the call
};

/// Replaces results of host operations. Change it only while no other thread calls host operations.
class Script {
public:
  static Script& the(); ///< the script of the process. From the first call on, every operation consults it
  void reset();         ///< removes all replacements; all counts are 0

  /// Called before each journaled operation. If it throws, the exception replaces the operation. It must not throw for
  /// EditPtr::i_close and destructors, which cannot throw.
  std::function<void(const std::string& operation, const std::string& arguments)> before;

  /// The n-th operation that may throw (from 1, counted from now) throws ScriptedFault. 0: no operation.
  void throwAt(std::int64_t n);
  std::int64_t throwingCalls() const; ///< the number of such operations since throwAt or reset
  bool faultHappened() const;         ///< whether the operation of throwAt was called since then

  void failOpen(const Cookie& log);    ///< every opening of this log yields no Edit (also as EditInfo)
  void failOpenNumber(std::int64_t n); ///< the n-th opening from now yields no Edit. 0: no opening.
  std::int64_t openings() const;       ///< since failOpenNumber or reset
  void noDatabase(bool gone);          ///< getProjdb returns null
  void noDatabaseAt(std::int64_t n);   ///< only the n-th getProjdb from now returns null. 0: no call.

  std::optional<CookieVec> maskSearchResult;                  ///< the result of `projdb::search(unsigned, unsigned)`
  std::optional<CookieVec> attributeSearchResult;             ///< the result of `projdb::search(const SearchCriteria&)`
  void attribute(const Cookie& log, const std::string& text); ///< what getAttrib returns for an open log
  void typeField(const Cookie& log,
                 std::optional<std::string> text); ///< the row's "Type" text; nullopt: the row has no type
  void noRow(const Cookie& log);                   ///< the log has no row: projdb::operator[] null, views show nothing

  /// Replaces `configb::in(key, int&)`.
  struct IntAnswer {
    int status;               ///< the result; 0: success
    std::optional<int> value; ///< written to the argument, if set
  };
  /// Replaces `configb::in(key, char*)`.
  struct TextAnswer {
    int status;                      ///< the result; 0: success
    std::optional<std::string> text; ///< written to the buffer, if set, cut to 2,047 bytes
  };
  std::map<std::string, IntAnswer> configInt;   ///< for `configb::in(key, int&)`, by key
  std::map<std::string, TextAnswer> configText; ///< for `configb::in(key, char*)`, by key
  bool configBufferWasZero = true; ///< whether every buffer passed to `configb::in(key, char*)` held 2,048 zero bytes

  /// The operation after which a view shows a new reel type.
  enum class ViewFollows {
    OnReelType, ///< Edit::reelType; the library relies on this
    OnUpdate    ///< EditManager::updateProjdbRec
  };
  ViewFollows viewFollows = ViewFollows::OnReelType; ///< when the view's "Reel Type" cell takes a new type

  std::optional<std::wstring> resourceText; ///< the text of every resource
  std::function<int()> coPid;               ///< called in place of co_pid
  std::vector<Cookie> projectCookies;       ///< results of get_project_cookie in turn; the last one repeats
  std::optional<int> frameRate,             ///< result of Zr::CurrentProject::getFrameRate
      outputFrameRate;                      ///< result of Zr::CurrentProject::getOutputImageZRFrameRate
  std::map<std::wstring, std::vector<LabelMappingSet::Entry>> labelMaps; ///< loaded instead of files when not empty
  bool swallowDeferred = false;                                          ///< defer drops its action
};

/// @name Balances, which are always counted
/// Main thread only.
/// @{

std::int64_t openLogs();      ///< openings not closed yet (i_open, EditInfo and EditPtr::operator=(Edit*) with a log)
std::int64_t openModifiers(); ///< living EditModifiers
int deferredActions();        ///< actions that wait

/// @}

} // namespace reelhost

#endif
