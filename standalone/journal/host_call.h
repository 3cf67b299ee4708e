// SPDX-License-Identifier: Apache-2.0
//
// The one way through which host operations are carried out, so that the journal sees them and the script can answer in
// their place. While nobody watches, an operation costs one predictable branch more than its own work.
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

/// What to write of an exception: "threw" and the type. Called while it is handled.
std::string threwWhat();

/// The result of an operation whose outcome says nothing: not written.
template <class T>
struct Unwritten {
  T* object;
};

template <class T>
std::string describe(const Unwritten<T>&)
{
  return {};
}

/// The answer of a script that has none.
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

/// Carries out an operation that may throw. @p arguments gives the text of its arguments, @p real does the work, and
/// @p answer is the script's: an optional result, or for an operation without a result whether it took its place.
template <class Arguments, class Real, class Answer = NoAnswer>
std::invoke_result_t<Real> hostCall(const char* operation, const Arguments& arguments, const Real& real,
                                    const Answer& answer = {})
{
  if (!watched()) [[likely]]
    return real();
  return watchedCall(operation, arguments(), true, real, answer);
}

/// The same for the operations that never throw.
template <class Arguments, class Real>
void hostCallNoThrow(const char* operation, const Arguments& arguments, const Real& real) noexcept
{
  if (!watched()) [[likely]]
    return real();
  watchedCall(operation, arguments(), false, real, NoAnswer());
}

} // namespace reelhost

#endif
