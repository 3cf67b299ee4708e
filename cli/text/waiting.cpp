// SPDX-License-Identifier: Apache-2.0
#include "text/waiting.h"

#include <array>
#include <csignal>
#include <ctime>

#include <poll.h>
#include <sys/signalfd.h>
#include <unistd.h>

namespace reeldb::cli {

Waiting::Waiting()
{
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGINT);
  sigaddset(&signals, SIGTERM);
  sigaddset(&signals, SIGHUP);
  sigprocmask(SIG_BLOCK, &signals, nullptr);
  signals_ = ::signalfd(-1, &signals, SFD_CLOEXEC);
}

Waiting::~Waiting()
{
  ::close(signals_);
}

bool Waiting::endedBySignal(int descriptor, std::optional<std::chrono::microseconds> time) const
{
  std::array<pollfd, 2> sources = {pollfd{signals_, POLLIN, 0}, pollfd{descriptor, POLLIN, 0}};
  timespec limit{};
  if (time) {
    limit.tv_sec = time->count() / 1'000'000;
    limit.tv_nsec = time->count() % 1'000'000 * 1'000;
  }
  ::ppoll(sources.data(), sources.size(), time ? &limit : nullptr, nullptr);
  return sources[0].revents != 0;
}

} // namespace reeldb::cli
