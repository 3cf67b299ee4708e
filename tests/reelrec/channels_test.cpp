// SPDX-License-Identifier: Apache-2.0
//
// Channels follow the reel's type, else its last device, and only ever grow.
#include <climits>

#include "host/codes.h"
#include "host/edit.h"
#include "reelrec/record_fixture.h"

namespace reeldb_tests {
namespace {

class Channels : public RecordTest {
protected:
  /// A reel with these numbers of channels, and its log.
  ReelDbRec reelWith(int video, int audio, const std::string& type, const reelhost::KeyValues& fields = {})
  {
    reelhost::StoredLog log;
    log.type = 9;
    log.reelType = type;
    log.videoChannels = video;
    log.audioChannels = audio;
    log.fields = fields;
    log.fields.emplace_back("reelid", "R1");
    reel = reelhost::addLog(log);
    manager().buildReelList();
    return reel;
  }

  Steps byType(const Steps& adds) const { return channelsByType(reel, adds); }
  Steps byDevice(const std::string& name, int number, const Steps& adds) const
  {
    return channelsByDevice(reel, name, number, adds);
  }

  void setDeck(int inputType, int audioInputs)
  {
    reelhost::DeviceSettings deck = device(4, "Deck");
    deck.inputType = inputType;
    deck.audioInputs = audioInputs;
    setDevices({device(1, "Other"), deck});
  }

  static void define(const char* type, const char* params) { theReelTypeManager()->add(type, params); }

  std::pair<int, int> videoAndAudio() { return {channels(reel, 1), channels(reel, 2)}; }

  const reelhost::KeyValues onDeck = {{"reel_last_device", "Deck"}};
  Cookie reel;
};

using Pair = std::pair<int, int>;

// --- By type -------------------------------------------------------------------------------------

TEST_F(Channels, MissingAudioOfTheTypeIsAddedAndTheRowRefreshedOnce)
{
  define("channels test: 1v4a", "VideoChannels=1 AudioChannels=4");
  ReelDbRec rec = reelWith(1, 2, "channels test: 1v4a");
  EXPECT_EQ(stepsOf([&] { rec.updateNumChansInReel(); }), byType({addChannel(reel, 2), addChannel(reel, 2)}));
  EXPECT_EQ(videoAndAudio(), Pair(1, 4));
}

TEST_F(Channels, MissingVideoOfTheTypeIsAddedAndTheRowRefreshedOnce)
{
  define("channels test: 2v1a", "VideoChannels=2 AudioChannels=1");
  ReelDbRec rec = reelWith(1, 1, "channels test: 2v1a");
  EXPECT_EQ(stepsOf([&] { rec.updateNumChansInReel(); }), byType({addChannel(reel, 1)}));
  EXPECT_EQ(videoAndAudio(), Pair(2, 1));
}

TEST_F(Channels, AudioIsAddedBeforeVideo)
{
  define("channels test: 2v2a", "VideoChannels=2 AudioChannels=2");
  ReelDbRec rec = reelWith(0, 0, "channels test: 2v2a");
  EXPECT_EQ(stepsOf([&] { rec.updateNumChansInReel(); }),
            byType({addChannel(reel, 2), addChannel(reel, 2), addChannel(reel, 1), addChannel(reel, 1)}));
  EXPECT_EQ(videoAndAudio(), Pair(2, 2));
}

TEST_F(Channels, AudioIsThatOfTheTypeAsReadTheSecondTimeAndVideoThatOfTheThird)
{
  define("channels test: read once", "VideoChannels=1 AudioChannels=1");
  define("channels test: read twice", "VideoChannels=2 AudioChannels=3");
  define("channels test: read thrice", "VideoChannels=4 AudioChannels=5");
  ReelDbRec rec = reelWith(0, 0, "channels test: before");
  const char* const types[] = {"channels test: read once", "channels test: read twice", "channels test: read thrice"};
  const char* const* next = types;
  script().before = [&](const std::string& operation, const std::string&) {
    if (operation != "ODBViewRep::displayRecordsAt" || next == std::end(types))
      return;
    EditPtr log;
    log.i_open(reel, codes::openAsUsual);
    log->reelType(*next++);
    log.i_close();
  };
  rec.updateNumChansInReel();
  EXPECT_EQ(next, std::end(types));
  EXPECT_EQ(videoAndAudio(), Pair(4, 3));
}

TEST_F(Channels, WantedChannelsThatAreThereChangeNothing)
{
  define("channels test: 1v2a", "VideoChannels=1 AudioChannels=2");
  ReelDbRec rec = reelWith(1, 2, "channels test: 1v2a");
  EXPECT_EQ(stepsOf([&] { rec.updateNumChansInReel(); }), byType({}));
}

TEST_F(Channels, SurplusChannelsStay)
{
  define("channels test: 0v1a", "AudioChannels=1");
  ReelDbRec rec = reelWith(3, 2, "channels test: 0v1a");
  EXPECT_EQ(stepsOf([&] { rec.updateNumChansInReel(); }), byType({}));
  EXPECT_EQ(videoAndAudio(), Pair(3, 2));
}

TEST_F(Channels, SurplusOfOneKindDoesNotKeepTheOtherFromBeingAdded)
{
  define("channels test: 1v1a", "VideoChannels=1 AudioChannels=1");
  ReelDbRec tooMuchAudio = reelWith(0, 5, "channels test: 1v1a");
  EXPECT_EQ(stepsOf([&] { tooMuchAudio.updateNumChansInReel(); }), byType({addChannel(reel, 1)}));
  ReelDbRec tooMuchVideo = reelWith(5, 0, "channels test: 1v1a");
  EXPECT_EQ(stepsOf([&] { tooMuchVideo.updateNumChansInReel(); }), byType({addChannel(reel, 2)}));
}

TEST_F(Channels, SecondUpdateAddsNothingMore)
{
  define("channels test: again", "VideoChannels=1 AudioChannels=3");
  ReelDbRec rec = reelWith(0, 0, "channels test: again");
  rec.updateNumChansInReel();
  EXPECT_EQ(stepsOf([&] { rec.updateNumChansInReel(); }), byType({}));
}

TEST_F(Channels, NegativeAndHugeNegativeCountsWantNone)
{
  define("channels test: minus", "VideoChannels=-1 AudioChannels=-2147483648");
  ReelDbRec rec = reelWith(0, 2, "channels test: minus");
  EXPECT_EQ(stepsOf([&] { rec.updateNumChansInReel(); }), byType({}));
}

TEST_F(Channels, PresentCountIsItsLow16Bits)
{
  define("channels test: low", "VideoChannels=2 AudioChannels=2");
  ReelDbRec rec = reelWith(0x10000 + 2, 0x20000 + 1, "channels test: low");
  EXPECT_EQ(stepsOf([&] { rec.updateNumChansInReel(); }), byType({addChannel(reel, 2)}));

  define("channels test: high", "VideoChannels=65534 AudioChannels=65535");
  ReelDbRec other = reelWith(0xFFFF, 0x1FFFF, "channels test: high");
  EXPECT_EQ(stepsOf([&] { other.updateNumChansInReel(); }), byType({}));

  define("channels test: negative", "VideoChannels=2 AudioChannels=2");
  ReelDbRec negative = reelWith(-0x10000, INT_MIN + 1, "channels test: negative"); // 0xFFFF0000 and 0x80000001
  EXPECT_EQ(stepsOf([&] { negative.updateNumChansInReel(); }),
            byType({addChannel(reel, 2), addChannel(reel, 1), addChannel(reel, 1)}));
}

TEST_F(Channels, TypeOfTheCatalogueWinsOverTheDevice)
{
  setDeck(3, 8);
  define("channels test: wins", "AudioChannels=1");
  ReelDbRec rec = reelWith(0, 0, "channels test: wins", onDeck);
  EXPECT_EQ(stepsOf([&] { rec.updateNumChansInReel(); }), byType({addChannel(reel, 2)}));
  EXPECT_EQ(videoAndAudio(), Pair(0, 1));
}

TEST_F(Channels, TypeOfTheCatalogueWithoutParametersWantsNone)
{
  setDeck(3, 8);
  define("channels test: bare", "");
  ReelDbRec rec = reelWith(0, 0, "channels test: bare", onDeck);
  EXPECT_EQ(stepsOf([&] { rec.updateNumChansInReel(); }), byType({}));
}

TEST_F(Channels, TypeThatAQuestionAddedToTheCatalogueWantsNone)
{
  setDeck(3, 2);
  ReelDbRec rec = reelWith(0, 0, "channels test: asked for", onDeck);
  theReelTypeManager()->numVideoChans("channels test: asked for");
  rec.updateNumChansInReel();
  EXPECT_EQ(videoAndAudio(), Pair(0, 0));
}

// --- By device -----------------------------------------------------------------------------------

TEST_F(Channels, UnknownTypeUsesTheLastDeviceAndIsNotAddedToTheCatalogue)
{
  setDeck(3, 2);
  ReelDbRec rec = reelWith(0, 0, "channels test: unknown", onDeck);
  const unsigned types = theReelTypeManager()->rep()->count();
  EXPECT_EQ(stepsOf([&] { rec.updateNumChansInReel(); }),
            byDevice("Deck", 4, {addChannel(reel, 2), addChannel(reel, 2), addChannel(reel, 1)}));
  EXPECT_EQ(theReelTypeManager()->rep()->count(), types);
  EXPECT_EQ(videoAndAudio(), Pair(1, 2));
}

TEST_F(Channels, TypeNameIsNotTrimmedNorFoldedForTheCatalogue)
{
  setDeck(9, 1);
  define("channels test: exact", "AudioChannels=5");
  for (const char* type : {" channels test: exact", "channels test: exact ", "Channels test: exact"}) {
    ReelDbRec rec = reelWith(0, 0, type, onDeck);
    rec.updateNumChansInReel();
    EXPECT_EQ(videoAndAudio(), Pair(0, 1)) << type;
  }
}

TEST_F(Channels, EmptyTypeUsesTheLastDeviceEvenIfTheCatalogueHasTheEmptyName)
{
  setDeck(3, 1);
  define("", "VideoChannels=7 AudioChannels=7");
  ReelDbRec rec = reelWith(0, 0, "", onDeck);
  EXPECT_EQ(stepsOf([&] { rec.updateNumChansInReel(); }),
            byDevice("Deck", 4, {addChannel(reel, 2), addChannel(reel, 1)}));
  define("", "");
}

TEST_F(Channels, InputType9IsTheOnlyOneWithoutVideo)
{
  for (const int inputType : {-1, 0, 1, 2, 3, 8, 10}) {
    setDeck(inputType, 0);
    ReelDbRec rec = reelWith(0, 0, "", onDeck);
    rec.updateNumChansInReel();
    EXPECT_EQ(videoAndAudio(), Pair(1, 0)) << inputType;
  }
  setDeck(9, 0);
  ReelDbRec rec = reelWith(0, 0, "", onDeck);
  EXPECT_EQ(stepsOf([&] { rec.updateNumChansInReel(); }), byDevice("Deck", 4, {}));
}

TEST_F(Channels, DeviceWithoutVideoStillGivesItsAudio)
{
  setDeck(9, 3);
  ReelDbRec rec = reelWith(0, 1, "", onDeck);
  rec.updateNumChansInReel();
  EXPECT_EQ(videoAndAudio(), Pair(0, 3));
}

TEST_F(Channels, ChannelsThatTheDeviceDoesNotHaveStay)
{
  setDeck(9, 1);
  ReelDbRec rec = reelWith(2, 3, "", onDeck);
  EXPECT_EQ(stepsOf([&] { rec.updateNumChansInReel(); }), byDevice("Deck", 4, {}));
  EXPECT_EQ(videoAndAudio(), Pair(2, 3));
}

TEST_F(Channels, DeviceThatIsNotConfiguredIsReadAnyway)
{
  setDeck(3, 2);
  ReelDbRec rec = reelWith(0, 0, "", {{"reel_last_device", "gone"}});
  EXPECT_EQ(stepsOf([&] { rec.updateNumChansInReel(); }), byDevice("gone", -1, {}));
}

TEST_F(Channels, ReelWithoutLastDeviceAsksForTheEmptyName)
{
  setDeck(3, 2);
  ReelDbRec rec = reelWith(0, 0, "");
  EXPECT_EQ(stepsOf([&] { rec.updateNumChansInReel(); }), byDevice("", -1, {}));
}

TEST_F(Channels, WithoutADatabaseTheLastDeviceIsUsed)
{
  setDeck(3, 1);
  define("channels test: no database", "AudioChannels=5");
  ReelDbRec rec = reelWith(0, 0, "channels test: no database", onDeck);
  script().noDatabase(true);
  rec.updateNumChansInReel();
  EXPECT_EQ(videoAndAudio(), Pair(1, 1));
}

// --- Failures ------------------------------------------------------------------------------------

TEST_F(Channels, LogThatDoesNotOpenIsClosedAndLeftAlone)
{
  define("channels test: closed", "AudioChannels=5");
  ReelDbRec rec = reelWith(0, 0, "channels test: closed");
  script().failOpen(reel);
  EXPECT_EQ(stepsOf([&] { rec.updateNumChansInReel(); }), failedOpen(reel));
}

TEST_F(Channels, EmptyRecordIsLeftAlone)
{
  ReelDbRec rec;
  EXPECT_EQ(stepsOf([&] { rec.updateNumChansInReel(); }), failedOpen(Cookie()));
}

TEST_F(Channels, UpdateNotifiesNobodyAndMarksNothing)
{
  define("channels test: quiet", "AudioChannels=1");
  ReelDbRec rec = reelWith(0, 0, "channels test: quiet");
  heard.clear();
  EXPECT_EQ(countOf(stepsOf([&] { rec.updateNumChansInReel(); }), dirty(reel)), 0);
  EXPECT_EQ(heard, Heard());
}

TEST_F(Channels, ChannelsThatWereAddedBeforeAFaultStay)
{
  define("channels test: half", "AudioChannels=3");
  ReelDbRec rec = reelWith(0, 0, "channels test: half");
  int adds = 0;
  script().before = [&](const std::string& operation, const std::string&) {
    if (operation == "Edit::addChan" && ++adds == 3)
      throw 17;
  };
  int caught = 0;
  const Steps steps = stepsOf([&] {
    try {
      rec.updateNumChansInReel();
    } catch (const int number) {
      caught = number;
    }
  });
  script().before = nullptr;
  EXPECT_EQ(caught, 17);
  EXPECT_EQ(steps.back(), close(reel));
  EXPECT_EQ(countOf(steps, update(reel)), 0);
  EXPECT_EQ(videoAndAudio(), Pair(0, 2));
}

} // namespace
} // namespace reeldb_tests
