// SPDX-License-Identifier: Apache-2.0
#include <memory>
#include <string>
#include <vector>

#include "host/events.h"
#include "host/projdb.h"
#include "host/project.h"
#include "host_fixture.h"

namespace {

HOST_CONTRACT(Project);

using Events = std::vector<std::string>;

class Listener final : public ProjectListener {
public:
  Listener(Events& events, std::string name) : events_(events), name_(std::move(name)) {}
  void handleProjectEntry() override
  {
    events_.push_back(name_ + " entry");
    if (onEntry)
      onEntry(); // may end this listener
  }
  void handleProjectExit() override
  {
    events_.push_back(name_ + " exit");
    if (onExit)
      onExit();
  }

  std::function<void()> onEntry, onExit;

private:
  Events& events_;
  std::string name_;
};

TEST_P(Project, HasACookieOfItsOwn)
{
  PROMISE("host/projdb.h", "A project has the same Cookie each time it is opened. Invalid without a project.");
  EXPECT_FALSE(get_project_cookie().valid());
  host().openEmptyProject("A");
  const Cookie first = get_project_cookie();
  EXPECT_TRUE(first.valid());
  EXPECT_NE(first.compare(Cookie("P0001000", false)), 0);
  host().openEmptyProject("B");
  EXPECT_NE(get_project_cookie().compare(first), 0);
  host().openEmptyProject("A");
  EXPECT_EQ(get_project_cookie().compare(first), 0);
  host().closeProject();
  EXPECT_FALSE(get_project_cookie().valid());
}

TEST_P(Project, KeepsItsCookieWhenItIsStored)
{
  PROMISE("host/projdb.h", "A project has the same Cookie each time it is opened.");
  HOST_NEEDS(Storage);
  host().openEmptyProject("A");
  const Cookie first = get_project_cookie();
  host().storeAndReopen();
  EXPECT_EQ(get_project_cookie().compare(first), 0);
}

TEST_P(Project, HasTwoFrameRates)
{
  PROMISE("host/project.h", "Without a project, both rates are codes::noFrameRate.");
  EXPECT_EQ(Zr::CurrentProject::getFrameRate(Zr::CurrentProject::Revision(0)), -1);
  EXPECT_EQ(Zr::CurrentProject::getOutputImageZRFrameRate(), -1);
  host().openEmptyProject("A", 3, 9);
  EXPECT_EQ(Zr::CurrentProject::getFrameRate(Zr::CurrentProject::Revision(0)), 3);
  EXPECT_EQ(Zr::CurrentProject::getOutputImageZRFrameRate(), 9);
}

TEST_P(Project, OptionsAreStored)
{
  PROMISE("host/projdb.h", "The current project's options.");
  HOST_NEEDS(Storage);
  host().openEmptyProject("A");
  EditManager::ProjOpts().set("contract_option", "Tape", nullptr);
  host().storeAndReopen();
  EXPECT_STREQ(EditManager::ProjOpts().in("contract_option"), "Tape");
}

TEST_P(Project, OptionsAreItsOwn)
{
  PROMISE("host/projdb.h", "The current project's options.");
  host().openEmptyProject("A");
  EXPECT_EQ(EditManager::ProjOpts().in("contract_option"), nullptr);
  EditManager::ProjOpts().set("contract_option", "Tape", nullptr);
  EXPECT_STREQ(EditManager::ProjOpts().in("contract_option"), "Tape");
  host().openEmptyProject("B");
  EXPECT_EQ(EditManager::ProjOpts().in("contract_option"), nullptr);
}

TEST_P(Project, WithoutOneOptionsAreEmpty)
{
  PROMISE("host/projdb.h", "Without a project, an empty block each time: what was set in it is gone at the next call.");
  EXPECT_EQ(EditManager::ProjOpts().in("contract_option"), nullptr);
  EditManager::ProjOpts().set("contract_option", "Tape", nullptr);
  EXPECT_EQ(EditManager::ProjOpts().in("contract_option"), nullptr);
}

TEST_P(Project, TheDeviceLayerMayBeReset)
{
  PROMISE("host/device.h", "Called when another project is entered.");
  host().openEmptyProject("A");
  resetDevices();
}

TEST_P(Project, ListenersAreNotifiedOfEntryAndExitFromTheirConstructionOn)
{
  PROMISE("host/events.h", "A new listener receives the next event; a destroyed one receives no more.");
  Events events;
  {
    Listener listener(events, "a");
    host().openEmptyProject("A");
    EXPECT_EQ(events, Events{"a entry"});
    host().closeProject();
    EXPECT_EQ(events, (Events{"a entry", "a exit"}));
  }
  host().openEmptyProject("A");
  EXPECT_EQ(events.size(), 2u);
}

TEST_P(Project, AtEntryTheProjectIsThere)
{
  PROMISE("host/events.h", "a project was entered and is open");
  Events events;
  Listener listener(events, "a");
  bool seen = false;
  listener.onEntry = [&] { seen = EditManager::getProjdb() != nullptr && get_project_cookie().valid(); };
  host().openEmptyProject("A");
  EXPECT_TRUE(seen);
}

TEST_P(Project, AtExitTheProjectIsStillThere)
{
  PROMISE("host/events.h", "the project is about to be left and is still open");
  Events events;
  Listener listener(events, "a");
  host().openEmptyProject("A");
  const Cookie log = host().addLog(codes::reelLog, "R1"), project = get_project_cookie();
  int exits = 0;
  listener.onExit = [&] {
    ++exits;
    EXPECT_NE(EditManager::getProjdb(), nullptr);
    EXPECT_EQ(get_project_cookie().compare(project), 0);
    EXPECT_TRUE(opens(log));
  };
  host().openEmptyProject("B"); // the project that is open is left first
  EXPECT_EQ(exits, 1);
  EXPECT_EQ(events, (Events{"a entry", "a exit", "a entry"}));
}

TEST_P(Project, AListenerMayEndItselfOrAnotherDuringAnEvent)
{
  PROMISE("host/events.h", "Listeners may be created and destroyed during an event.");
  Events events;
  auto first = std::make_unique<Listener>(events, "first");
  auto second = std::make_unique<Listener>(events, "second");
  const Listener third(events, "third");
  first->onEntry = [&] {
    second.reset();
    first.reset();
  };
  host().openEmptyProject("A");
  EXPECT_EQ(events, (Events{"first entry", "third entry"}));
}

TEST_P(Project, AListenerMadeDuringAnEventIsNotifiedOfTheNext)
{
  PROMISE("host/events.h", "A new listener receives the next event; a destroyed one receives no more.");
  Events events;
  Listener first(events, "first");
  std::vector<std::unique_ptr<Listener>> more;
  first.onEntry = [&] {
    if (more.empty())
      for (int i = 0; i < 100; ++i)
        more.push_back(std::make_unique<Listener>(events, "more"));
  };
  host().openEmptyProject("A");
  events.clear();
  host().closeProject();
  EXPECT_EQ(events.size(), 101u);
}

} // namespace
