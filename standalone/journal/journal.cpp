// SPDX-License-Identifier: Apache-2.0
#include "reelhost/journal.h"

#include <algorithm>
#include <atomic>
#include <mutex>

#include "journal/call_record.h"
#include "journal/watch.h"

namespace reelhost {

constinit std::atomic<unsigned> watchers = 0;

void watch(Watcher who, bool on)
{
  if (on)
    watchers.fetch_or(static_cast<unsigned>(who), std::memory_order_relaxed);
  else
    watchers.fetch_and(~static_cast<unsigned>(who), std::memory_order_relaxed);
}

namespace {

/// The recorded calls, in the order in which they began, so that a call made inside another one follows it.
struct Kept {
  std::mutex mutex;
  bool recording = false;
  std::FILE* trace = nullptr;
  std::vector<Call> calls;
  std::uint64_t firstNumber = 0; ///< the number of calls[0]; earlier calls are no longer recorded
};

// Never destroyed, because the library may call the host while the process ends.
Kept& kept()
{
  static Kept& instance = *new Kept;
  return instance;
}

void forget(Kept& k)
{
  k.firstNumber += k.calls.size();
  k.calls.clear();
}

} // namespace

std::string Call::line() const
{
  std::string text = operation + '(' + arguments + ')';
  if (!result.empty())
    text += " -> " + result;
  return text;
}

// --- One call ------------------------------------------------------------------------------------

CallRecord::CallRecord(const char* operation, std::string arguments) : number_(0), isKept_(false)
{
  call_.operation = operation;
  call_.arguments = std::move(arguments);
  Kept& k = kept();
  const std::lock_guard lock(k.mutex);
  if (!k.recording)
    return;
  number_ = k.firstNumber + k.calls.size();
  isKept_ = true;
  k.calls.push_back(call_);
}

void CallRecord::ended(std::string result)
{
  call_.result = std::move(result);
  Kept& k = kept();
  const std::lock_guard lock(k.mutex);
  if (k.trace)
    std::fputs((call_.line() + '\n').c_str(), k.trace);
  if (isKept_ && number_ >= k.firstNumber)
    k.calls[number_ - k.firstNumber].result = call_.result;
}

// --- For tests -----------------------------------------------------------------------------------

Journal& Journal::the()
{
  static Journal journal;
  return journal;
}

void Journal::record(bool on)
{
  Kept& k = kept();
  const std::lock_guard lock(k.mutex);
  if (on)
    forget(k);
  k.recording = on;
  watch(Watcher::Record, on);
}

void Journal::traceTo(std::FILE* file)
{
  Kept& k = kept();
  const std::lock_guard lock(k.mutex);
  k.trace = file;
  watch(Watcher::Trace, file != nullptr);
}

void Journal::clear()
{
  Kept& k = kept();
  const std::lock_guard lock(k.mutex);
  forget(k);
}

std::vector<Call> Journal::calls() const
{
  Kept& k = kept();
  const std::lock_guard lock(k.mutex);
  return k.calls;
}

std::vector<std::string> Journal::lines() const
{
  std::vector<std::string> lines;
  for (const Call& call : calls())
    lines.push_back(call.line());
  return lines;
}

std::vector<std::string> Journal::operations() const
{
  std::vector<std::string> operations;
  for (const Call& call : calls())
    operations.push_back(call.operation);
  return operations;
}

int Journal::count(std::string_view operation) const
{
  const std::vector<Call> all = calls();
  return static_cast<int>(
      std::count_if(all.begin(), all.end(), [&](const Call& call) { return call.operation == operation; }));
}

} // namespace reelhost
