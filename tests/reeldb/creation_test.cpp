// SPDX-License-Identifier: Apache-2.0
#include <stdexcept>

#include "MainThread.h"
#include "host/codes.h"
#include "host/edit.h"
#include "host/projdb.h"
#include "host/text.h"
#include "reeldb/changes_fixture.h"

namespace reeldb_tests {

namespace {

class Creation : public ChangesTest {
protected:
  ReelDbRec create(const char* id, int device = -1) { return manager().createNewReel(id, device); }
  std::string trimmed(const char* s) { return text(manager().trimLeadingTrailingSpaces(s)); }

  /// The facility's only device, number 7.
  static constexpr int deck = 7;
  void setDeck(const std::string& name, int portType, int audioInputs)
  {
    reelhost::DeviceSettings settings = device(deck, name);
    settings.portType = portType;
    settings.audioInputs = audioInputs;
    setDevices({settings});
  }

  /// A project without the option of the default reel type.
  void enterProjectWithoutDefaultType()
  {
    const Cookie placeholder("P0001000", false);
    script().projectCookies = {placeholder};
    enterProject("BARE", {});
    script().projectCookies.clear();
    ASSERT_EQ(EditManager::ProjOpts().in("reeldb_defaultType"), nullptr);
  }

  /// Adds a type to the catalogue. The catalogue outlives the test, so each test uses names of its own.
  static void addType(const char* name, const char* params) { theReelTypeManager()->add(name, params); }
};

// --- Trimming ------------------------------------------------------------------------------------

TEST_F(Creation, TrimTakesBlanksFromBothEnds)
{
  EXPECT_EQ(trimmed("  R1  "), "R1");
  EXPECT_EQ(trimmed("R1  "), "R1");
  EXPECT_EQ(trimmed("  R1"), "R1");
  EXPECT_EQ(trimmed("R1"), "R1");
}

TEST_F(Creation, TrimKeepsBlanksInside)
{
  EXPECT_EQ(trimmed(" R 1  a "), "R 1  a");
}

TEST_F(Creation, TrimOfNothingOrBlanksOnlyIsEmpty)
{
  EXPECT_EQ(trimmed(""), "");
  EXPECT_EQ(trimmed(nullptr), "");
  EXPECT_EQ(trimmed(" "), "");
  EXPECT_EQ(trimmed("     "), "");
}

TEST_F(Creation, TrimKeepsAllOtherWhiteSpace)
{
  EXPECT_EQ(trimmed("\tR1\t"), "\tR1\t");
  EXPECT_EQ(trimmed(" \t "), "\t");
  EXPECT_EQ(trimmed("\n R1\r"), "\n R1\r");
}

TEST_F(Creation, TrimKeepsMarks)
{
  EXPECT_EQ(trimmed(" ~R1~ "), "~R1~");
  EXPECT_EQ(trimmed("_R1."), "_R1.");
}

TEST_F(Creation, TrimLeavesTheCallersStringAlone)
{
  const LightweightString<char> blanks = "  R1  ";
  const LightweightString<char> plain = "R1";
  EXPECT_EQ(text(manager().trimLeadingTrailingSpaces(blanks)), "R1");
  EXPECT_EQ(text(blanks), "  R1  ");
  const LightweightString<char> result = manager().trimLeadingTrailingSpaces(plain);
  EXPECT_NE(result.c_str(), plain.c_str()) << "the result is a text of its own, also when nothing was cut";
}

// --- Properties of a new reel --------------------------------------------------------------------

TEST_F(Creation, NewReelIsThereUnderItsTrimmedIdentifier)
{
  ReelDbRec reel = create("  R1  ");
  ASSERT_TRUE(reel.valid());
  EXPECT_EQ(configText(reel, "reelid"), "R1");
  EXPECT_EQ(text(reel.reelId()), "R1");
  EXPECT_EQ(attributeOf(reel), "R1");
  EXPECT_EQ(reelIds(), Lines{"R1"});
  EXPECT_EQ(manager().getReelInfo("R1").compare(reel), 0);
}

TEST_F(Creation, NewReelIsAReelLogNamedAfterTheHostsWord)
{
  const ReelDbRec reel = create(" R1 ");
  EXPECT_EQ(logName(reel), "[reel] R1");
  EditPtr log;
  log.i_open(reel, codes::openAsUsual);
  EXPECT_EQ(log->getLogType(), eLogType(9));
  log.i_close();
}

TEST_F(Creation, NewReelIsAvailableAndHasNoOtherField)
{
  ReelDbRec reel = create("R1");
  EXPECT_EQ(configText(reel, TR_REEL_AVAILABLE_FLAG), "1");
  EXPECT_EQ(configText(reel, TR_REC_INHIBIT_FLAG), "<absent>");
  EXPECT_EQ(configText(reel, TR_LABEL_MAPPING), "<absent>");
  EXPECT_EQ(text(reel.typeName()), "");
}

TEST_F(Creation, NameWidensTheIdentifierByteByByte)
{
  const ReelDbRec reel = create("\xc3\xa9");
  EXPECT_EQ(configText(reel, "reelid"), "\xc3\xa9");
  EXPECT_EQ(logName(reel), "[reel] \xc3\x83\xc2\xa9");
}

TEST_F(Creation, TabIsALegalIdentifier)
{
  EXPECT_TRUE(create("\t").valid());
  EXPECT_TRUE(create(" R1\t ").valid());
  EXPECT_EQ(reelIds(), (Lines{"\t", "R1\t"}));
}

// --- Identifiers that make no reel ---------------------------------------------------------------

TEST_F(Creation, EmptyOrBlankIdentifierMakesNothing)
{
  const RecordingClient client(heard_);
  for (const char* id : {"", " ", "    "}) {
    const Lines operations = operationsOf([&] { EXPECT_FALSE(create(id).valid()); });
    EXPECT_EQ(operations, Lines{"co_pid"}) << '"' << id << '"';
  }
  EXPECT_EQ(heard_, Heard{});
}

TEST_F(Creation, ExistingIdentifierMakesNothingAndLeavesTheReelAlone)
{
  const Cookie old = addReel("R1", "Tape", {{"reel_available_flag", "0"}, {"reel_labelmapping", "map"}});
  const RecordingClient client(heard_);
  for (const char* id : {"R1", "r1"})
    EXPECT_FALSE(create(id).valid()) << id;
  EXPECT_EQ(heard_, Heard{});
  EXPECT_EQ(reelIds(), Lines{"R1"});
  EXPECT_EQ(configText(old, TR_REEL_AVAILABLE_FLAG), "0");
  EXPECT_EQ(configText(old, TR_LABEL_MAPPING), "map");
  EXPECT_EQ(text(ReelDbRec(old).typeName()), "Tape");
}

TEST_F(Creation, ExistenceIsTestedBeforeTheBlanksAreCut)
{
  addReel("R1");
  EXPECT_TRUE(create(" R1").valid());
  EXPECT_TRUE(create("R1 ").valid());
  EXPECT_EQ(reelIds(), (Lines{"R1", "R1", "R1"}));
}

TEST_F(Creation, StarMeansGeneratedMaterialAndMakesNothing)
{
  const Cookie other = addReel("R0");
  const RecordingClient client(heard_);
  for (const char* id : {"*", "A*B", "A*", "  *"}) {
    const Lines lines = linesOf([&] { EXPECT_FALSE(create(id).valid()); });
    EXPECT_EQ(listing(lines, {{other, "other"}}), listing(join({{mainThread()}, attributeRead("other", "R0")})))
        << id << ": looked up first";
  }
  EXPECT_EQ(heard_, Heard{});
}

TEST_F(Creation, WithoutAProjectNothingIsMadeAndNobodyIsNotified)
{
  reelhost::closeProject();
  const RecordingClient client(heard_);
  EXPECT_FALSE(create("R1").valid());
  EXPECT_EQ(heard_, Heard{});
}

TEST_F(Creation, LongIdentifierIsStoredWhole)
{
  const std::string id(5000, 'x');
  const RecordingClient client(heard_);
  const ReelDbRec reel = create(id.c_str());
  EXPECT_EQ(configText(reel, "reelid"), id);
  EXPECT_EQ(heard_, (Heard{"some(" + id.substr(0, 2047) + ")", "dbC(" + id + ")"}));
  EXPECT_FALSE(create(id.c_str()).valid());
}

TEST_F(Creation, WithoutADatabaseTheReelIsMadeButNotListed)
{
  script().noDatabase(true);
  const RecordingClient client(heard_);
  EXPECT_TRUE(create("R1").valid());
  EXPECT_EQ(heard_, (Heard{"some(R1)", "dbC(R1)"}));
  EXPECT_EQ(reelIds(), Lines{});
}

// --- Devices -------------------------------------------------------------------------------------

TEST_F(Creation, NoDeviceMeansNoDeviceIsAskedAndNoChannelAdded)
{
  setDeck("Deck", 2, 4);
  for (int none : {-1, -2, -2147483647 - 1}) {
    const std::string id = "R" + std::to_string(none);
    ReelDbRec reel;
    const Lines operations = operationsOf([&] { reel = create(id.c_str(), none); });
    EXPECT_EQ(countOf(operations, "ExtDeviceConfigurationManager::getConfig"), 0) << none;
    EXPECT_EQ(countOf(operations, "Edit::addChan"), 0) << none;
    EXPECT_EQ(channels(reel, 2), 0) << none;
    EXPECT_EQ(logName(reel), "[reel] " + id);
  }
}

TEST_F(Creation, DeviceNumberZeroIsADevice)
{
  reelhost::DeviceSettings settings = device(0, "Deck");
  settings.audioInputs = 1;
  setDevices({settings});
  EXPECT_EQ(channels(create("R1", 0), 2), 1);
}

TEST_F(Creation, EachAudioInputOfTheDeviceGivesAChannel)
{
  setDeck("Deck", 0, 4);
  const ReelDbRec reel = create("R1", deck);
  EXPECT_EQ(channels(reel, 2), 4);
  EXPECT_EQ(channels(reel, 1), 0);
}

TEST_F(Creation, NoOrNegativeNumberOfInputsGivesNoChannel)
{
  for (int inputs : {0, -3}) {
    setDeck("Deck", 0, inputs);
    const std::string id = "R" + std::to_string(inputs);
    EXPECT_EQ(channels(create(id.c_str(), deck), 2), 0) << inputs;
  }
}

TEST_F(Creation, UnknownDeviceGivesAPlainReel)
{
  const ReelDbRec reel = create("R1", 999);
  EXPECT_EQ(configText(reel, "reelid"), "R1");
  EXPECT_EQ(logName(reel), "[reel] R1");
  EXPECT_EQ(channels(reel, 2), 0);
}

TEST_F(Creation, DevicesThatDoNotNameReelsKeepTheIdentifier)
{
  const RecordingClient client(heard_);
  for (int port : {-1, 0, 1, 3}) {
    heard_.clear();
    setDeck("Deck", port, 0);
    const std::string id = "R" + std::to_string(port);
    const ReelDbRec reel = create((" " + id).c_str(), deck);
    EXPECT_EQ(configText(reel, "reelid"), id);
    EXPECT_EQ(logName(reel), "[reel] " + id);
    EXPECT_EQ(heard_, (Heard{"some(" + id + ")", "dbC(" + id + ")"}));
  }
}

TEST_F(Creation, DeviceThatNamesTheReelGivesItsNameToTheReelButNotToTheLog)
{
  setDeck("CAM", 2, 0);
  const RecordingClient client(heard_);
  ReelDbRec reel = create(" R1 ", deck);
  EXPECT_EQ(configText(reel, "reelid"), "CAM");
  EXPECT_EQ(text(reel.reelId()), "CAM");
  EXPECT_EQ(logName(reel), "[reel] R1");
  EXPECT_EQ(heard_, (Heard{"some(CAM)", "dbC(CAM)"}));
  EXPECT_FALSE(manager().doesReelExist("R1"));
}

TEST_F(Creation, DeviceOfTheVeryNameAskedForGivesALogNameWithoutTheHostsWord)
{
  setDeck("CAM", 2, 0);
  const ReelDbRec reel = create(" CAM ", deck);
  EXPECT_EQ(configText(reel, "reelid"), "CAM");
  EXPECT_EQ(logName(reel), "CAM");
}

TEST_F(Creation, DeviceNameIsComparedLetterForLetter)
{
  setDeck("CAM", 2, 0);
  const ReelDbRec reel = create("cam", deck);
  EXPECT_EQ(configText(reel, "reelid"), "CAM");
  EXPECT_EQ(logName(reel), "[reel] cam");
}

TEST_F(Creation, DeviceNameIsNotTrimmed)
{
  setDeck(" CAM ", 2, 0);
  const ReelDbRec reel = create(" CAM ", deck);
  EXPECT_EQ(configText(reel, "reelid"), " CAM ");
  EXPECT_EQ(logName(reel), "[reel] CAM");
}

TEST_F(Creation, DeviceNameIsStoredAsUtf8AndWidenedByteByByteInTheLogName)
{
  setDeck("Cam\xc3\xa9", 2, 0);
  const ReelDbRec reel = create("Cam\xc3\xa9", deck);
  EXPECT_EQ(configText(reel, "reelid"), "Cam\xc3\xa9");
  EXPECT_EQ(logName(reel), "Cam\xc3\x83\xc2\xa9");
}

TEST_F(Creation, DeviceNameIsNeitherTestedForExistenceNorForStars)
{
  setDeck("C*M", 2, 0);
  EXPECT_TRUE(create("R1", deck).valid());
  EXPECT_TRUE(create("R2", deck).valid());
  EXPECT_EQ(reelIds(), (Lines{"C*M", "C*M"}));
}

TEST_F(Creation, NamelessDeviceThatNamesReelsStoresTheEmptyIdentifier)
{
  setDeck("", 2, 0);
  const RecordingClient client(heard_);
  const ReelDbRec reel = create("R1", deck);
  ASSERT_TRUE(reel.valid());
  EXPECT_EQ(configText(reel, "reelid"), "");
  EXPECT_EQ(logName(reel), "[reel] R1");
  EXPECT_EQ(heard_, Heard{"dbC()"}) << "a record without identifier has no client to notify";
}

// --- The project's default type ------------------------------------------------------------------

TEST_F(Creation, NewReelGetsTheProjectsDefaultType)
{
  enterProject("TYPED", {{"reeldb_defaultType", "no such type"}});
  EXPECT_EQ(text(create("R1").typeName()), "no such type");
}

TEST_F(Creation, ProjectWithoutADefaultTypeGivesAnEmptyType)
{
  enterProjectWithoutDefaultType();
  const RecordingClient client(heard_);
  ReelDbRec reel = create("R1");
  ASSERT_TRUE(reel.valid());
  EXPECT_EQ(text(reel.typeName()), "");
  EXPECT_EQ(heard_, (Heard{"some(R1)", "dbC(R1)"}));
}

TEST_F(Creation, KnownDefaultTypeGivesItsChannelsAlsoWithoutADevice)
{
  addType("creation 1V 2A", "VideoChannels=1 AudioChannels=2");
  enterProject("TYPED", {{"reeldb_defaultType", "creation 1V 2A"}});
  const ReelDbRec reel = create("R1");
  EXPECT_EQ(channels(reel, 2), 2);
  EXPECT_EQ(channels(reel, 1), 1);
}

TEST_F(Creation, DevicesChannelsBeyondTheTypesStay)
{
  addType("creation 1V 3A", "VideoChannels=1 AudioChannels=3");
  enterProject("TYPED", {{"reeldb_defaultType", "creation 1V 3A"}});
  setDeck("Deck", 0, 4);
  const ReelDbRec more = create("R1", deck);
  EXPECT_EQ(channels(more, 2), 4);
  EXPECT_EQ(channels(more, 1), 1);
  setDeck("Deck", 0, 2);
  EXPECT_EQ(channels(create("R2", deck), 2), 3);
}

// --- The host calls, from first to last ----------------------------------------------------------

/// The changes of the log itself, each between an opening and a close of its own.
Lines logWritten(const std::string& id, const std::string& name)
{
  return join({withNewLog("new", "Edit::set_reelid(new, 0, " + quoted(id) + ")"),
               withNewLog("new", "Edit::set_entire_medium(new, 1)"),
               withNewLog("new", "Edit::make_original(new, false, false)"),
               withNewLog("new", "Edit::setName(new, " + quoted(name) + ", false)"),
               withNewLog("new", "Edit::redetermineLogType(new)")});
}

/// The fields of the record, with an empty default type.
Lines fieldsWritten(const std::string& id)
{
  return join({withLog("new", {"configb::in(\"reel_labelmapping\", char*) -> 1"}),
               withLog("new", {"configb::in(\"record_inhibit_flag\", int&) -> 1"}),
               withLog("new", {"configb::in(\"reel_available_flag\", int&) -> 1"}),
               withLog("new", {"configb::set(\"reel_available_flag\", \"1\", null)", "Edit::setDirty(new, true)"}),
               idRead("new", id),
               {"EditManager::ProjOpts()", "configb::in(\"reeldb_defaultType\") -> \"\""},
               typeRead("new", "")});
}

/// The steps that end a creation. At the end of the modifier, the host reports the new log.
Lines announced(int reels)
{
  return join({withNewLog("new", "Edit::setChangeDescription(new, 59, true)"),
               rebuild(reels),
               {"EditModifier::~EditModifier(new)"},
               withLog("new", {"Edit::getLogType(new) -> 9"})});
}

const std::string hostsWord = "paddedResourceStrW(10043, null, \" \", 0) -> \"[reel] \"";

TEST_F(Creation, HostCallsWithoutADevice)
{
  const Cookie old = addReel("R0");
  ReelDbRec reel;
  const Lines lines = linesOf([&] { reel = create(" R1 "); });
  EXPECT_EQ(listing(lines, {{old, "old"}, {reel, "new"}, {Cookie(), "none"}}),
            listing(join({{mainThread()},
                          attributeRead("old", "R0"),
                          {"EditManager::makeNewEdit(none) -> new", hostsWord},
                          logWritten("R1", "[reel] R1"),
                          fieldsWritten("R1"),
                          announced(2)})));
}

TEST_F(Creation, HostCallsWithADevice)
{
  setDeck("Deck", 0, 2);
  ReelDbRec reel;
  const Lines lines = linesOf([&] { reel = create(" R1 ", deck); });
  const std::string addChannel = "Edit::addChan(new, 2, null, false, 0, false, -1.0)";
  EXPECT_EQ(listing(lines, {{reel, "new"}, {Cookie(), "none"}}),
            listing(join({{mainThread(), "EditManager::makeNewEdit(none) -> new", "theConfigurationManager()",
                           "ExtDeviceConfigurationManager::getConfig(7) -> \"Deck\"",
                           "ExtDeviceConfig::getNumConnectedAudioInputs(\"Deck\") -> 2"},
                          withNewLog("new", addChannel),
                          withNewLog("new", addChannel),
                          {"ExtDeviceConfig::getPortType(\"Deck\") -> 0", hostsWord},
                          logWritten("R1", "[reel] R1"),
                          fieldsWritten("R1"),
                          announced(1)})));
}

TEST_F(Creation, HostCallsWithADeviceThatNamesTheReel)
{
  setDeck("CAM", 2, 1);
  ReelDbRec reel;
  const Lines lines = linesOf([&] { reel = create(" R1 ", deck); });
  EXPECT_EQ(
      listing(lines, {{reel, "new"}, {Cookie(), "none"}}),
      listing(join({{mainThread(), "EditManager::makeNewEdit(none) -> new", "theConfigurationManager()",
                     "ExtDeviceConfigurationManager::getConfig(7) -> \"CAM\"",
                     "ExtDeviceConfig::getNumConnectedAudioInputs(\"CAM\") -> 1"},
                    withNewLog("new", "Edit::addChan(new, 2, null, false, 0, false, -1.0)"),
                    {"ExtDeviceConfig::getPortType(\"CAM\") -> 2", "ExtDeviceConfig::getTextName(\"CAM\") -> \"CAM\"",
                     "ExtDeviceConfig::getTextName(\"CAM\") -> \"CAM\"", hostsWord},
                    logWritten("CAM", "[reel] R1"),
                    fieldsWritten("CAM"),
                    announced(1)})));
}

TEST_F(Creation, HostsWordIsNotAskedForWhenTheDeviceHasTheVeryName)
{
  setDeck("CAM", 2, 0);
  const Lines operations = operationsOf([this] { create("CAM", deck); });
  EXPECT_EQ(countOf(operations, "paddedResourceStrW"), 0);
}

TEST_F(Creation, UnknownDefaultTypeAsksForTheDeviceOfNoName)
{
  enterProject("TYPED", {{"reeldb_defaultType", "no such type"}});
  const Lines lines = linesOf([this] { create("R1"); });
  EXPECT_TRUE(inOrder(lines, {"configb::in(\"reeldb_defaultType\") -> \"no such type\"", "theConfigurationManager()",
                              "ExtDeviceConfigurationManager::findConfigForName(\"\") -> -1",
                              "theConfigurationManager()", "ExtDeviceConfigurationManager::getConfig(-1) -> \"\""}));
  const Lines operations = operationsOf([this] { create("R2"); });
  EXPECT_EQ(countOf(operations, "Edit::addChan"), 0);
}

// --- What clients receive and see ----------------------------------------------------------------

TEST_F(Creation, ClientsAreNotifiedOfTheFlagAndThenOfTheReel)
{
  const RecordingClient client(heard_, "", "R1");
  create(" R1 ");
  EXPECT_EQ(heard_, (Heard{"our()", "some(R1)", "dbC(R1)"}));
}

TEST_F(Creation, ClientsAreAlsoNotifiedOfADefaultType)
{
  enterProject("TYPED", {{"reeldb_defaultType", "no such type"}});
  const RecordingClient client(heard_);
  create("R1");
  EXPECT_EQ(heard_, (Heard{"some(R1)", "some(R1)", "dbC(R1)"}));
}

TEST_F(Creation, RefusedCreationNotifiesNobody)
{
  addReel("R1");
  const RecordingClient client(heard_);
  create("R1");
  create("*");
  create("");
  EXPECT_EQ(heard_, Heard{});
}

TEST_F(Creation, ReelJoinsTheListOnlyForTheLastNotice)
{
  RecordingClient client(heard_);
  std::vector<bool> listed;
  client.onSome = [&](const std::string& id) { listed.push_back(manager().doesReelExist(id.c_str())); };
  client.onDbChanged = client.onSome;
  create("R1");
  EXPECT_EQ(listed, (std::vector<bool>{false, true}));
}

TEST_F(Creation, ModifierIsHeldUntilEverybodyIsNotified)
{
  RecordingClient client(heard_);
  std::vector<std::int64_t> held;
  client.onSome = [&](const std::string&) { held.push_back(reelhost::openModifiers()); };
  client.onDbChanged = client.onSome;
  create("R1");
  EXPECT_EQ(held, (std::vector<std::int64_t>{1, 1}));
  EXPECT_EQ(reelhost::openModifiers(), 0);
}

TEST_F(Creation, NoLogIsHeldOpenWhileTheReelIsAnnounced)
{
  RecordingClient client(heard_);
  std::int64_t open = -1;
  client.onDbChanged = [&](const std::string&) { open = reelhost::openLogs(); };
  create("R1");
  EXPECT_EQ(open, 0);
}

TEST_F(Creation, ReelIsWholeWhenItIsAnnounced)
{
  enterProject("TYPED", {{"reeldb_defaultType", "no such type"}});
  RecordingClient client(heard_);
  std::string type, name, available;
  client.onDbChanged = [&](const std::string& id) {
    ReelDbRec reel = manager().getReelInfo(id.c_str());
    type = text(reel.typeName());
    name = logName(reel);
    available = configText(reel, TR_REEL_AVAILABLE_FLAG);
  };
  create("R1");
  EXPECT_EQ(type, "no such type");
  EXPECT_EQ(name, "[reel] R1");
  EXPECT_EQ(available, "1");
}

TEST_F(Creation, DefaultTypeIsReadAfterTheFlagsNoticeSoAHandlerMayChangeIt)
{
  RecordingClient client(heard_);
  client.onSome = [&](const std::string&) { manager().setProjectDefaultReelType("changed meanwhile"); };
  EXPECT_EQ(text(create("R1").typeName()), "changed meanwhile");
}

TEST_F(Creation, HeldNotificationsStayUnsentButTheListIsRebuilt)
{
  const RecordingClient client(heard_);
  manager().notifyHoldCount = 1;
  EXPECT_TRUE(create("R1").valid());
  manager().notifyHoldCount = 0;
  EXPECT_EQ(heard_, Heard{});
  EXPECT_EQ(reelIds(), Lines{"R1"});
}

TEST_F(Creation, HandlerMayCreateAnotherReelWhichIsAnnouncedInFullFirst)
{
  RecordingClient first(heard_, "first");
  const RecordingClient second(heard_, "second");
  first.onDbChanged = [&](const std::string& id) {
    if (id == "a") {
      EXPECT_TRUE(create("b").valid());
    }
  };
  EXPECT_TRUE(create("a").valid());
  EXPECT_EQ(heard_, (Heard{"first:some(a)", "second:some(a)", "first:dbC(a)", "first:some(b)", "second:some(b)",
                           "first:dbC(b)", "second:dbC(b)", "second:dbC(a)"}));
  EXPECT_EQ(reelIds(), (Lines{"a", "b"}));
}

TEST_F(Creation, OtherManagerNotifiesItsOwnClientsOfTheReelAndTheRecordThoseOfTheProcess)
{
  const RecordingClient client(heard_);
  ReelDbManager other;
  EXPECT_TRUE(other.createNewReel("R1", -1).valid());
  EXPECT_EQ(heard_, Heard{"some(R1)"});
  EXPECT_EQ(other.reelList.count(), 1);
  EXPECT_EQ(manager().reelList.count(), 0);
}

// --- When the host fails -------------------------------------------------------------------------

TEST_F(Creation, ExceptionOfAHandlerPassesAndLeavesTheNewLogBehind)
{
  RecordingClient client(heard_);
  client.onDbChanged = [](const std::string&) { throw std::logic_error("of the handler"); };
  try {
    create("R1");
    ADD_FAILURE() << "nothing was thrown";
  } catch (const std::logic_error& e) {
    EXPECT_STREQ(e.what(), "of the handler");
  }
  EXPECT_EQ(reelhost::openModifiers(), 0);
  EXPECT_EQ(reelIds(), Lines{"R1"});
}

TEST_F(Creation, EachOpeningMayFailAndTheReelIsStillAnnounced)
{
  const RecordingClient client(heard_);
  for (std::int64_t n = 1, openings = n; n <= openings; ++n) {
    enterProject("OPEN" + std::to_string(n), {{"reeldb_defaultType", "no such type"}});
    heard_.clear();
    script().failOpenNumber(n);
    EXPECT_TRUE(create("R1").valid()) << n;
    openings = script().openings();
    EXPECT_EQ(heard_.back(), "dbC(R1)") << n;
    EXPECT_EQ(reelhost::openLogs(), 0) << n;
    ASSERT_LT(n, 100);
  }
}

// --- Log modifications ---------------------------------------------------------------------------

class LogModification : public Creation {
protected:
  void report(const Cookie& log, int type = 59)
  {
    manager().handleLogModification(log, EditModification(EditModificationType(type)));
  }
};

TEST_F(LogModification, ImportedMaterialGetsItsReel)
{
  setDeck("CAM", 2, 4);
  const Cookie shot = addShot(" R1 ");
  report(shot);
  EXPECT_EQ(reelIds(), Lines{"R1"});
  EXPECT_EQ(channels(manager().getCookieFromReelId("R1"), 2), 0);
}

TEST_F(LogModification, OtherTypesAreIgnoredWithoutAHostCall)
{
  const Cookie shot = addShot("R1");
  for (int type : {0, 1, 58, 60, -59})
    EXPECT_EQ(linesOf([&] { report(shot, type); }), Lines{}) << type;
  EXPECT_EQ(reelIds(), Lines{});
}

TEST_F(LogModification, MaterialThatWasNotImportedGetsNoReel)
{
  const Cookie shot = addShot("R1", "shot", false);
  EXPECT_EQ(operationsOf([&] { report(shot); }),
            (Lines{"EditPtr::i_open", "Edit::getLogType", "Edit::isImported", "EditPtr::i_close"}));
  EXPECT_EQ(reelIds(), Lines{});
}

TEST_F(LogModification, LogsOfOtherTypesAreNotAskedWhetherTheyWereImported)
{
  for (int type : {0, 2, 9}) {
    const Cookie log = addLog(type, "R1", {}, {}, true);
    EXPECT_EQ(operationsOf([&] { report(log); }), (Lines{"EditPtr::i_open", "Edit::getLogType", "EditPtr::i_close"}))
        << type;
  }
}

TEST_F(LogModification, LogThatDoesNotOpenIsClosedAndNothingElse)
{
  const Cookie shot = addShot("R1");
  script().failOpen(shot);
  EXPECT_EQ(operationsOf([&] { report(shot); }), (Lines{"EditPtr::i_open", "EditPtr::i_close"}));
}

TEST_F(LogModification, MaterialWithoutAnIdentifierGetsNoReel)
{
  const Cookie shot = addShot("");
  report(shot);
  EXPECT_EQ(reelIds(), Lines{});
}

TEST_F(LogModification, MaterialOfAnExistingReelOrOfGeneratedMaterialGetsNoReel)
{
  addReel("R1");
  report(addShot("r1"));
  report(addShot("BARS*"));
  EXPECT_EQ(reelIds(), Lines{"R1"});
}

TEST_F(LogModification, IdentifierWithABlankAtItsEndMakesAReelAtEachReport)
{
  const Cookie shot = addShot("R1 ");
  report(shot);
  report(shot);
  EXPECT_EQ(reelIds(), (Lines{"R1", "R1"}));
}

TEST_F(LogModification, MaterialStaysOpenWhileItsReelIsMade)
{
  const Cookie shot = addShot("R1");
  RecordingClient client(heard_);
  std::int64_t open = -1;
  client.onDbChanged = [&](const std::string&) { open = reelhost::openLogs(); };
  report(shot);
  EXPECT_EQ(heard_, (Heard{"some(R1)", "dbC(R1)"}));
  EXPECT_EQ(open, 1);
}

TEST_F(LogModification, CreationGoesToTheManagerOfTheProcess)
{
  const Cookie shot = addShot("R1");
  const RecordingClient client(heard_);
  ReelDbManager other;
  other.handleLogModification(shot, EditModification(codes::madeOrImported));
  EXPECT_EQ(heard_, (Heard{"some(R1)", "dbC(R1)"}));
  EXPECT_EQ(other.reelList.count(), 0);
  EXPECT_EQ(reelIds(), Lines{"R1"});
}

TEST_F(LogModification, ImportReportedByTheHostMakesOneReelAndNoFurtherOneForTheReelsOwnLog)
{
  const RecordingClient client(heard_);
  reelhost::Material material;
  material.reel = "R1";
  const Lines operations = operationsOf([&] { reelhost::importMaterial(material); });
  EXPECT_EQ(countOf(operations, "EditManager::makeNewEdit"), 1);
  EXPECT_EQ(reelIds(), Lines{"R1"});
  EXPECT_EQ(heard_, (Heard{"some(R1)", "dbC(R1)"}));
  reelhost::importMaterial(material);
  EXPECT_EQ(reelIds(), Lines{"R1"});
}

TEST_F(LogModification, HostCallsForImportedMaterial)
{
  const Cookie shot = addShot(" R1 ");
  const Lines lines = linesOf([&] { report(shot); });
  const Cookie reel = manager().getCookieFromReelId("R1");
  ASSERT_TRUE(reel.valid());
  EXPECT_EQ(listing(lines, {{shot, "shot"}, {reel, "new"}, {Cookie(), "none"}}),
            listing(withLog("shot", join({{"Edit::getLogType(shot) -> 1", "Edit::isImported(shot) -> true",
                                           "Edit::get_reelid(shot, strp_field&, 0, -1) -> \" R1 \"", mainThread(),
                                           "EditManager::makeNewEdit(none) -> new", hostsWord},
                                          logWritten("R1", "[reel] R1"),
                                          fieldsWritten("R1"),
                                          announced(1)}))));
}

TEST_F(LogModification, OnAnotherThreadTheCreationIsDeferred)
{
  const Cookie shot = addShot("R1");
  script().coPid = [] { return glib_pid + 1; };
  EXPECT_EQ(operationsOf([&] { report(shot); }), (Lines{"EditPtr::i_open", "Edit::getLogType", "Edit::isImported",
                                                        "Edit::get_reelid", "co_pid", "defer", "EditPtr::i_close"}));
  EXPECT_EQ(reelIds(), Lines{});
  script().coPid = nullptr;
  EXPECT_EQ(reelhost::runDeferredActions(), 1);
  EXPECT_EQ(reelIds(), Lines{"R1"});
}

TEST_F(LogModification, ExceptionOfTheCreationPassesWithTheMaterialClosed)
{
  const Cookie shot = addShot("R1");
  RecordingClient client(heard_);
  client.onDbChanged = [](const std::string&) { throw std::logic_error("of the handler"); };
  EXPECT_THROW(report(shot), std::logic_error);
  EXPECT_EQ(reelhost::openLogs(), 0);
  EXPECT_EQ(reelhost::openModifiers(), 0);
}

} // namespace

} // namespace reeldb_tests
