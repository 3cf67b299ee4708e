// SPDX-License-Identifier: Apache-2.0
#include "model/listeners.h"

#include <memory>
#include <stdexcept>

#include "standalone/model/host_test.h"

namespace {

using namespace reeldb_tests;
using Texts = std::vector<std::string>;

class ListenersTest : public HostTest {};

TEST_F(ListenersTest, FirstExceptionIsRethrownWhenAllHaveBeenNotified)
{
  RecordingListener first, second, third;
  first.onEvent = [](const std::string&) { throw std::out_of_range("first"); };
  second.onEvent = [](const std::string&) { throw std::runtime_error("second"); };
  EXPECT_THROW(reelhost::model::notifyProjectEntry(), std::out_of_range);
  EXPECT_EQ(third.heard, Texts{"entry"});
  first.onEvent = second.onEvent = nullptr;
  reelhost::model::notifyProjectExit();
  EXPECT_EQ(third.heard, (Texts{"entry", "exit"}));
}

// Places that became free during nested events are removed at the end of the outer event.
TEST_F(ListenersTest, EventsInsideEventsReachThoseThatExist)
{
  RecordingListener first, last;
  auto going = std::make_unique<RecordingListener>();
  first.onEvent = [&](const std::string& event) {
    if (event != "entry")
      return;
    going.reset();
    reelhost::model::notifyProjectExit();
  };
  reelhost::model::notifyProjectEntry();
  EXPECT_EQ(first.heard, (Texts{"entry", "exit"}));
  EXPECT_EQ(last.heard, (Texts{"exit", "entry"}));
}

TEST_F(ListenersTest, TheOtherEventsDoNothing)
{
  class Plain : public ProjectListener {
  } plain;
  ProjectListener& listener = plain;
  listener.handleLogsModification(CookieVec());
  listener.handleLogModification(Cookie(), EditModification(codes::madeOrImported));
  listener.handleLogsDeletion(CookieVec(), "");
  listener.handleLogDirtied(Cookie());
  listener.handleLogStorage(Cookie(), true);
  listener.handleProjectEntry();
  listener.handleProjectExit();
}

} // namespace
