// SPDX-License-Identifier: Apache-2.0
//
// The library at work on the host. The other cases try one operation each; what they leave open, such as a report that
// the host forgets, is seen here by what the library then does.
#include <string>
#include <thread>
#include <vector>

#include "MainThread.h"
#include "ReelDbClient.h"
#include "ReelDbManager.h"
#include "ReelTypeManager.h"
#include "host/action.h"
#include "host/projdb.h"
#include "host_fixture.h"

namespace {

HOST_CONTRACT(Library);

using host_contract::Device;
using Text = LightweightString<char>;
using Texts = std::vector<std::string>;

ReelDbManager& manager()
{
  return *ReelDbManager::theReelDbManager();
}

/// Enters an empty project whose new reels have no type, whatever the host's own settings are. The manager is there
/// before: it is a listener from its first use on.
void enterProject(host_contract::HostSetUp& host)
{
  manager();
  host.openEmptyProject("A");
  manager().setProjectDefaultReelType("");
}

Texts reels()
{
  std::vector<Text> ids;
  manager().getAllReelIds(ids, true);
  Texts texts;
  for (const Text& id : ids)
    texts.push_back(id.c_str());
  return texts;
}

ReelDbRec reel(const char* id)
{
  return manager().getReelInfo(id);
}

struct Channels {
  int video = 0, audio = 0;
  bool operator==(const Channels& other) const { return video == other.video && audio == other.audio; }
};

std::ostream& operator<<(std::ostream& out, const Channels& channels)
{
  return out << channels.video << " video, " << channels.audio << " audio";
}

Channels channelsOf(const Edit& edit)
{
  return {edit.getNumChans(codes::videoChannel) & codes::channelCountMask,
          edit.getNumChans(codes::audioChannel) & codes::channelCountMask};
}

Device deck()
{
  Device device;
  device.number = 3;
  device.id = 42;
  device.name = "Deck";
  device.inputType = codes::sdiInput;
  device.audioInputs = 4;
  device.tapes = {"Live"};
  return device;
}

/// Is notified of reels, and looks each up at once.
class Client final : public ReelDbClient {
public:
  void reelDbChanged(Text id) override
  {
    changed.push_back(id.c_str());
    if (!id.empty())
      found.push_back(manager().doesReelExist(id));
  }
  Texts changed;
  std::vector<bool> found;
};

// --- The start-up --------------------------------------------------------------------------------

TEST_P(Library, TheStartUpNamedTheMainThread)
{
  PROMISE("MainThread.h", "The host stores `co_pid() & codes::threadMask` of its main thread here before any thread "
                          "creates a reel");
  EXPECT_EQ(glib_pid, co_pid() & codes::threadMask);
}

// Seen only where the library is initialized before the host: see NAME_reversed in reeldb_add_host_contract.
TEST_P(Library, ASettingWasReadAtLoadAsItIsNow)
{
  PROMISE("host/config.h", "Callable while loading, when possibly no constructor of the host has run.");
  PROMISE("host/config.h", "while it is loaded, so the host returns the same text then as later.");
  EXPECT_STREQ(ReelDbManager::systemWideDefaultReelType_.c_str(), config_string("default_reel_type", ""));
}

// --- Reels ---------------------------------------------------------------------------------------

TEST_P(Library, AReelIsMadeOnTheMainThreadAtOnce)
{
  PROMISE("MainThread.h", "The host stores `co_pid() & codes::threadMask` of its main thread here before any thread "
                          "creates a reel");
  PROMISE("host/edit.h", "a search for reels then finds it if it is a reel.");
  enterProject(host());
  Client client;
  ReelDbRec made = manager().createNewReel(" A001 ", -1);
  EXPECT_TRUE(made.valid());
  EXPECT_STREQ(made.reelId().c_str(), "A001");
  EXPECT_TRUE(made.reelAvailable());
  EXPECT_FALSE(made.recInhibit());
  EXPECT_EQ(reels(), Texts{"A001"});
  EXPECT_EQ(client.changed, Texts{"A001"});
  EXPECT_EQ(client.found, std::vector<bool>{true});
  EXPECT_FALSE(manager().createNewReel("a001", -1).valid()); // the same reel
  EXPECT_EQ(reels(), Texts{"A001"});
}

TEST_P(Library, AReelIsNamedByItsIdentifier)
{
  PROMISE("host/edit.h", "sets the display name; called with false");
  enterProject(host());
  const std::wstring word = host().textOfResource(codes::wordForReel);
  const ReelDbRec made = manager().createNewReel("A001", -1);
  ASSERT_TRUE(made.valid());
  SET_UP_GIVES(name, nameOf, made);
  EXPECT_EQ(*name, word + L" A001");
  manager().changeReelId("A001", "B002");
  EXPECT_EQ(host().nameOf(made), word + L" B002");
}

TEST_P(Library, AReelOfADeviceHasItsAudioChannels)
{
  PROMISE("host/device.h", "not negative; a new reel gets one channel per input");
  HOST_NEEDS(Devices);
  host().addDevice(deck());
  enterProject(host());
  const ReelDbRec made = manager().createNewReel("A001", 3);
  ASSERT_TRUE(made.valid());
  withLog(made, [](Edit& edit) { EXPECT_EQ(channelsOf(edit).audio, 4); });
}

TEST_P(Library, AnImportMakesTheReelOfItsClip)
{
  PROMISE("host/edit.h", "whether the log was imported");
  PROMISE("host/events.h", "The log was created, imported or modified; it is in the project already.");
  enterProject(host());
  SET_UP_GIVES(clip, importClip, "B002");
  EXPECT_EQ(reels(), Texts{"B002"});
  host().importClip("b002");
  EXPECT_EQ(reels(), Texts{"B002"});
  EXPECT_EQ(textsOf(manager().getReelsReferenced([&] {
              CookieVec shots;
              shots.add(*clip);
              return shots;
            }())),
            Texts{reel("B002").asString(false).c_str()});
}

// A log that is not imported is no reason for a reel, also if it is reported.
TEST_P(Library, ANewLogThatIsNotImportedMakesNoReel)
{
  PROMISE("host/edit.h", "whether the log was imported");
  enterProject(host());
  {
    const EditModifier modifier(EditManager::makeNewEdit(Cookie()));
    modifier.get()->set_reelid(0, "A001");
    modifier.get()->setChangeDescription(codes::madeOrImported, true);
  }
  EXPECT_EQ(reels(), Texts{});
}

TEST_P(Library, AReelThatAWorkerWantsIsMadeOnTheMainThread)
{
  PROMISE("host/action.h", "Queues the action for the main thread, behind the actions that already wait.");
  PROMISE("MainThread.h", "The host stores `co_pid() & codes::threadMask` of its main thread here before any thread "
                          "creates a reel");
  enterProject(host());
  std::thread worker([] {
    manager().createNewReel("C003", -1);
    manager().createNewReel("D004", -1);
  });
  worker.join();
  EXPECT_EQ(reels(), Texts{});
  host().runDeferredActions();
  EXPECT_EQ(reels(), (Texts{"C003", "D004"}));
}

TEST_P(Library, ADeviceWithALiveFeedGetsItsReel)
{
  PROMISE("host/device.h", "the reel types the device accepts, \"Live\" for a live feed");
  HOST_NEEDS(Devices);
  host().addDevice(deck());
  enterProject(host());
  manager().checkLiveDeviceMedia(3);
  EXPECT_EQ(reels(), Texts{"Deck live feed"});
  EXPECT_TRUE(manager().representsLiveMaterial("Deck live feed"));
  EXPECT_EQ(std::wstring(reel("Deck live feed").lastDevice().c_str()), L"Deck");
  EXPECT_EQ(host().lastReelOf(42), "Deck live feed");
  manager().checkLiveDeviceMedia(3);
  EXPECT_EQ(reels().size(), 1u);
}

TEST_P(Library, AReelOfADeviceHasItsChannels)
{
  PROMISE("host/device.h", "The number of the device with exactly this display name; -1 for an unknown or empty name.");
  HOST_NEEDS(Devices);
  host().addDevice(deck());
  enterProject(host());
  ReelDbRec made = manager().createNewReel("A001", -1);
  withLog(made, [](Edit& edit) { EXPECT_EQ(channelsOf(edit), (Channels{0, 0})); });
  made.lastDevice(L"Deck");
  withLog(made, [](Edit& edit) { EXPECT_EQ(channelsOf(edit), (Channels{1, 4})); });
}

TEST_P(Library, AReelWithoutADeviceHasNoChannels)
{
  PROMISE("host/device.h", "belongs to no device: without inputs, port, tapes and name");
  enterProject(host());
  const ReelDbRec made = manager().createNewReel("A001", 999);
  ASSERT_TRUE(made.valid());
  withLog(made, [](Edit& edit) { EXPECT_EQ(channelsOf(edit), (Channels{0, 0})); });
}

TEST_P(Library, ATypeGivesAReelItsChannels)
{
  PROMISE("host/edit.h", "the reel type; the column \"Reel Type\" shows it at once");
  enterProject(host());
  theReelTypeManager()->add("Contract tape", "VideoChannels=1 AudioChannels=3");
  ReelDbRec made = manager().createNewReel("A001", -1);
  made.typeName("Contract tape");
  EXPECT_STREQ(made.typeName().c_str(), "Contract tape");
  withLog(made, [](Edit& edit) { EXPECT_EQ(channelsOf(edit), (Channels{1, 3})); });
  EXPECT_EQ(manager().checkReelValid("A001"), 0);
}

TEST_P(Library, ANewReelHasTheTypeOfTheProject)
{
  PROMISE("host/projdb.h", "The current project's options.");
  enterProject(host());
  manager().setProjectDefaultReelType("Contract type");
  EXPECT_STREQ(manager().createNewReel("A001", -1).typeName().c_str(), "Contract type");
}

TEST_P(Library, TheFieldsOfAReelAreReadBack)
{
  PROMISE("host/config.h", "Every opening of the log sees the change at once.");
  enterProject(host());
  ReelDbRec made = manager().createNewReel("A001", -1);
  made.userField(2, "Scene 5");
  made.labelMapping("pal9pin");
  made.recInhibit(true);
  made.reelAvailable(false);
  ReelDbRec again = reel("a001");
  EXPECT_STREQ(again.userField(2).c_str(), "Scene 5");
  EXPECT_STREQ(again.labelMapping().c_str(), "pal9pin");
  EXPECT_TRUE(again.recInhibit());
  EXPECT_FALSE(again.reelAvailable());
}

TEST_P(Library, AnEmptyRecordWritesNowhere)
{
  PROMISE("host/edit.h", "there is no such log, no project is open, or the Cookie is invalid.");
  enterProject(host());
  ReelDbRec first = manager().createNewReel("A001", -1), empty;
  empty.recInhibit(true);
  empty.reelAvailable(false);
  empty.userField(0, "x");
  empty.reelId("Z999");
  empty.typeName("Contract type");
  EXPECT_FALSE(empty.recInhibit());
  EXPECT_FALSE(first.recInhibit());
  EXPECT_TRUE(first.reelAvailable());
  EXPECT_STREQ(first.userField(0).c_str(), "");
  EXPECT_STREQ(first.typeName().c_str(), "");
  EXPECT_EQ(reels(), Texts{"A001"});
}

// --- Shots ---------------------------------------------------------------------------------------

TEST_P(Library, ARenamedReelTakesItsShotsWithIt)
{
  PROMISE("host/projdb.h", "No match may be missing.");
  enterProject(host());
  manager().createNewReel("A001", -1);
  manager().createNewReel("A002", -1);
  const Cookie shot = host().addLog(codes::materialLog, "A001"), lower = host().addLog(codes::materialLog, "a001"),
               untyped = host().addLog(0, "A001"), other = host().addLog(codes::materialLog, "A002"),
               nameless = host().addLog(codes::materialLog, "");
  manager().changeReelId("A001", "B001");
  EXPECT_EQ(reels(), (Texts{"B001", "A002"}));
  for (const Cookie& renamed : {shot, lower, untyped})
    EXPECT_EQ(reelIdOf(renamed), "B001");
  EXPECT_EQ(reelIdOf(other), "A002");
  EXPECT_EQ(reelIdOf(nameless), "");
  CookieVec shots;
  manager().addShotsFromReel(reel("b001"), shots);
  EXPECT_EQ(shots.count(), 3);
}

TEST_P(Library, WithAReelGoItsShotsAndNothingElse)
{
  PROMISE("host/projdb.h", "every log that is not a reel log.");
  PROMISE("host/projdb.h", "An empty value finds nothing.");
  enterProject(host());
  const Cookie gone = manager().createNewReel("A001", -1), used = manager().createNewReel("A002", -1);
  const Cookie shot = host().addLog(codes::materialLog, "a001");
  const Cookie selected = host().addLog(codes::materialLog, "");
  host().addLog(codes::materialLog, "A002");
  host().addLog(0, "");
  const Cookie nameless = host().addLog(codes::reelLog, "");
  manager().reelInUse("A002", true);
  CookieVec selection;
  for (const Cookie& log : {gone, used, selected, nameless})
    selection.add(log);
  const CookieVec doomed = manager().buildSetOfReelsAndAssociatedShots(selection);
  EXPECT_EQ(textsOf(doomed),
            (Texts{gone.asString(false).c_str(), shot.asString(false).c_str(), nameless.asString(false).c_str()}));
}

TEST_P(Library, ReelsAreDistinguishedFromShotsByTheirRows)
{
  PROMISE("host/edit.h", "The log type for the text of a row's field \"Type\".");
  enterProject(host());
  const Cookie shot = host().addLog(codes::materialLog, "A001");
  CookieVec logs;
  logs.add(manager().createNewReel("A001", -1));
  logs.add(shot);
  EXPECT_TRUE(manager().removeReelsFromCookieSet(logs));
  EXPECT_EQ(textsOf(logs), Texts{shot.asString(false).c_str()});
  EXPECT_FALSE(manager().removeReelsFromCookieSet(logs));
}

// --- Projects ------------------------------------------------------------------------------------

TEST_P(Library, TheListOfReelsFollowsTheProject)
{
  PROMISE("host/events.h", "a project was entered and is open");
  PROMISE("host/events.h", "the project is about to be left and is still open");
  enterProject(host());
  manager().createNewReel("A001", -1);
  host().openEmptyProject("B");
  EXPECT_EQ(reels(), Texts{});
  manager().createNewReel("B001", -1);
  EXPECT_EQ(reels(), Texts{"B001"});
  host().closeProject();
  EXPECT_EQ(manager().reelList.count(), 0);
  EXPECT_FALSE(manager().createNewReel("C001", -1).valid());
}

TEST_P(Library, StoredReelsAreThereAgain)
{
  PROMISE("host/edit.h", "and is stored whether or not the log is marked dirty.");
  HOST_NEEDS(Storage);
  enterProject(host());
  ReelDbRec made = manager().createNewReel("A001", -1);
  made.userField(0, "Scene 5");
  made.typeName("Contract type");
  const Cookie shot = host().addLog(codes::materialLog, "A001");
  host().storeAndReopen();
  EXPECT_EQ(reels(), Texts{"A001"});
  manager().changeReelId("A001", "B002");
  host().storeAndReopen();
  EXPECT_EQ(reels(), Texts{"B002"});
  EXPECT_EQ(reelIdOf(shot), "B002");
  EXPECT_STREQ(reel("B002").userField(0).c_str(), "Scene 5");
  EXPECT_STREQ(reel("B002").typeName().c_str(), "Contract type");
}

TEST_P(Library, NamesOfUserFieldsAreThoseOfTheSite)
{
  PROMISE("host/config.h", "Sets the text of the key at once; the empty text removes the key.");
  manager();
  EXPECT_STREQ(manager().userFieldName(4).c_str(), "User field 5");
  manager().userFieldName(4, "Scene");
  EXPECT_STREQ(manager().userFieldName(4).c_str(), "Scene");
  manager().userFieldName(4, "");
  EXPECT_STREQ(manager().userFieldName(4).c_str(), "User field 5");
}

} // namespace
