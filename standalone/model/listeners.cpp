// SPDX-License-Identifier: Apache-2.0
#include "model/listeners.h"

#include <algorithm>
#include <exception>
#include <vector>

namespace {

/// The listeners in the order of registration. A listener that unregisters during an event leaves its place empty.
struct Listeners {
  std::vector<ProjectListener*> list;
  int events = 0; ///< number of events in progress

  void add(ProjectListener* listener) { list.push_back(listener); }

  void remove(ProjectListener* listener)
  {
    std::replace(list.begin(), list.end(), listener, static_cast<ProjectListener*>(nullptr));
    tidy();
  }

  template <class Event>
  void notify(const Event& event)
  {
    ++events;
    std::exception_ptr first;
    const std::size_t count = list.size();
    for (std::size_t i = 0; i < count; ++i) {
      try {
        if (list[i])
          event(*list[i]);
      } catch (...) {
        if (!first)
          first = std::current_exception();
      }
    }
    --events;
    tidy();
    if (first)
      std::rethrow_exception(first);
  }

  void tidy()
  {
    if (events == 0)
      list.erase(std::remove(list.begin(), list.end(), nullptr), list.end());
  }
};

Listeners& listeners()
{
  static Listeners& instance = *new Listeners;
  return instance;
}

} // namespace

ProjectListener::ProjectListener()
{
  listeners().add(this);
}

ProjectListener::~ProjectListener()
{
  listeners().remove(this);
}

void ProjectListener::handleLogsModification(const CookieVec&) {}
void ProjectListener::handleLogModification(const Cookie&, const EditModification&) {}
void ProjectListener::handleLogsDeletion(const CookieVec&, LightweightString<char>) {}
void ProjectListener::handleLogDirtied(const Cookie&) {}
void ProjectListener::handleLogStorage(const Cookie&, bool) {}
void ProjectListener::handleProjectEntry() {}
void ProjectListener::handleProjectExit() {}

namespace reelhost::model {

void notifyProjectEntry()
{
  listeners().notify([](ProjectListener& listener) { listener.handleProjectEntry(); });
}

void notifyProjectExit()
{
  listeners().notify([](ProjectListener& listener) { listener.handleProjectExit(); });
}

void notifyLogModification(const Cookie& log, const EditModification& modification)
{
  listeners().notify([&](ProjectListener& listener) { listener.handleLogModification(log, modification); });
}

void notifyLogsModification(const CookieVec& logs)
{
  listeners().notify([&](ProjectListener& listener) { listener.handleLogsModification(logs); });
}

void notifyLogsDeletion(const CookieVec& logs)
{
  listeners().notify([&](ProjectListener& listener) { listener.handleLogsDeletion(logs, {}); });
}

} // namespace reelhost::model
