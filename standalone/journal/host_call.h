// SPDX-License-Identifier: Apache-2.0
//
// Every host operation runs through hostCall, so that the journal can record it and the script can replace it. While
// journal and script are off, hostCall costs one predictable branch.
#ifndef REELHOST_JOURNAL_HOST_CALL_H
#define REELHOST_JOURNAL_HOST_CALL_H

#include <cxxabi.h>

#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>
#include <typeinfo>

#include "journal/call_record.h"
#include "journal/describe.h"
#include "journal/script_answers.h"
#include "journal/watch.h"

namespace reelhost {

/// The journal's text for an exception: "threw" and the type. Called while the exception is handled.
std::string threwWhat();

/// A result that the journal does not write.
template <class T>
struct Unwritten {
  T* object;
};

template <class T>
std::string describe(const Unwritten<T>&)
{
  return {};
}

/// The result of a script that does not replace the operation.
struct NoAnswer {};

template <class Real, class Answer>
std::invoke_result_t<Real> watchedCall(const char* operation, std::string arguments, bool mayThrow, const Real& real,
                                       const Answer& answer)
{
  using Result = std::invoke_result_t<Real>;
  const bool script = watched(Watcher::Script);
  CallRecord record(operation, arguments);
  try {
    if (script)
      scripted::meet(operation, arguments, mayThrow);
    if constexpr (std::is_void_v<Result>) {
      bool answered = false;
      if constexpr (!std::is_same_v<Answer, NoAnswer>)
        answered = script && answer();
      if (!answered)
        real();
      record.ended({});
    } else {
      std::optional<Result> result;
      if constexpr (!std::is_same_v<Answer, NoAnswer>)
        if (script)
          result = answer();
      if (!result)
        result.emplace(real());
      record.ended(describe(*result));
      return *std::move(result);
    }
  } catch (...) {
    record.ended(threwWhat());
    throw;
  }
}

/// Runs an operation that may throw. @p arguments returns the text of its arguments, and @p real does the work.
/// @p answer asks the script: it returns an optional result or, for an operation without a result, whether the script
/// replaced the operation.
template <class Arguments, class Real, class Answer = NoAnswer>
std::invoke_result_t<Real> hostCall(const char* operation, const Arguments& arguments, const Real& real,
                                    const Answer& answer = {})
{
  if (!watched()) [[likely]]
    return real();
  return watchedCall(operation, arguments(), true, real, answer);
}

/// The same for operations that never throw.
template <class Arguments, class Real>
void hostCallNoThrow(const char* operation, const Arguments& arguments, const Real& real) noexcept
{
  if (!watched()) [[likely]]
    return real();
  watchedCall(operation, arguments(), false, real, NoAnswer());
}

} // namespace reelhost

#endif
