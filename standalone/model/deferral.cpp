// SPDX-License-Identifier: Apache-2.0
#include <cstdint>
#include <deque>
#include <mutex>
#include <optional>

#include "host/action.h"
#include "journal/host_call.h"
#include "model/thread_numbers.h"
#include "reelhost/host.h"
#include "reelhost/journal.h"

using reelhost::describeAll;
using reelhost::hostCall;
using reelhost::noArguments;
using reelhost::Script;

namespace {

using Action = Zr::Ptr<iExecutableAction>;

/// The waiting actions, in order. Any thread adds actions; the main thread removes and runs them.
class Queue {
public:
  void put(const Action& action)
  {
    const std::lock_guard lock(mutex_);
    actions_.push_back({++last_, action});
  }

  std::uint64_t last()
  {
    const std::lock_guard lock(mutex_);
    return last_;
  }

  /// The next action if its number is not above @p last, else null.
  Action take(std::uint64_t last)
  {
    const std::lock_guard lock(mutex_);
    if (actions_.empty() || actions_.front().number > last)
      return {};
    const Action action = actions_.front().action;
    actions_.pop_front();
    return action;
  }

  int count()
  {
    const std::lock_guard lock(mutex_);
    return static_cast<int>(actions_.size());
  }

private:
  struct Waiting {
    std::uint64_t number;
    Action action;
  };
  std::mutex mutex_;
  std::deque<Waiting> actions_;
  std::uint64_t last_ = 0;
};

Queue& queue()
{
  static Queue& instance = *new Queue;
  return instance;
}

int threadNumber()
{
  static constinit reelhost::model::ThreadNumbers numbers;
  thread_local int own = 0;
  if (own == 0)
    own = numbers.next();
  return own;
}

} // namespace

void defer(const Zr::Ptr<iExecutableAction>& action)
{
  hostCall(
      "defer", [&] { return describeAll(action); },
      [&] {
        if (action)
          queue().put(action);
      },
      [] { return Script::the().swallowDeferred; });
}

int co_pid()
{
  return hostCall("co_pid", noArguments, threadNumber, []() -> std::optional<int> {
    const auto& scripted = Script::the().coPid;
    return scripted ? std::optional(scripted()) : std::nullopt;
  });
}

namespace reelhost {

// An action is removed before it runs, so that an exception loses no other action.
int runDeferredActions()
{
  const std::uint64_t last = queue().last();
  int count = 0;
  while (const Action action = queue().take(last)) {
    ++count;
    action->execute();
  }
  return count;
}

int deferredActions()
{
  return queue().count();
}

} // namespace reelhost
