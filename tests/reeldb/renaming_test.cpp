// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <stdexcept>

#include "ReelDbRec.h"
#include "host/projdb.h"
#include "host/text.h"
#include "reeldb/changes_fixture.h"

namespace reeldb_tests {

namespace {

class Renaming : public ChangesTest {
protected:
  void rename(const char* oldId, const char* newId) { manager().changeReelId(oldId, newId); }

  /// The print for a shot that follows its reel.
  static std::string renamed(const Cookie& shot, const std::string& oldId, const std::string& newId)
  {
    const std::string file = toUTF8(getFilenameForCookie(shot, Cookie())).c_str();
    return "\"Shot: " + file + "  Changing reel from " + oldId + " to " + newId + "\\n\"";
  }
};

TEST_F(Renaming, ReelAndAllItsShotsTakeTheNewIdentifier)
{
  const Cookie reel = addReel("A001");
  const Cookie other = addReel("A002");
  const Cookie shots[] = {addShot("a001", "one"), addShot("a001", "two"), addShot("a001", "three")};
  const Cookie foreign = addShot("A002", "four");
  const RecordingClient client(heard_);
  Lines wanted;
  for (const Cookie& shot : shots)
    wanted.push_back(renamed(shot, "A001", "B001"));

  EXPECT_EQ(printedBy([this] { rename("A001", "B001"); }), wanted);

  EXPECT_EQ(heard_, (Heard{"some(A001)", "dbC()"}));
  EXPECT_EQ(attributeOf(reel), "B001");
  EXPECT_EQ(logName(reel), "[reel] B001");
  EXPECT_EQ(attributeOf(other), "A002");
  for (const Cookie& shot : shots)
    EXPECT_EQ(attributeOf(shot), "B001");
  EXPECT_EQ(attributeOf(foreign), "A002");
  EXPECT_EQ(logName(shots[0]), "one") << "a shot keeps its name";
  EXPECT_EQ(reelIds(), (Lines{"B001", "A002"}));
}

TEST_F(Renaming, SearchFindsTheShotsUnderTheNewIdentifierFromThenOn)
{
  const Cookie reel = addReel("A001");
  const Cookie shot = addShot("A001");
  rename("A001", "B001");
  CookieVec found;
  manager().addShotsFromReel(reel, found);
  EXPECT_EQ(texts(found), Lines{text(shot)});
}

TEST_F(Renaming, UnknownReelChangesNothingAlsoWhenShotsCarryItsIdentifier)
{
  addReel("A002");
  const Cookie shot = addShot("A001");
  const RecordingClient client(heard_);
  const Lines operations = operationsOf([this] { rename("A001", "B001"); });
  EXPECT_EQ(operations, (Lines{"EditInfo::EditInfo", "EditInfo::getAttrib", "EditPtr::i_close"}));
  EXPECT_EQ(heard_, Heard{});
  EXPECT_EQ(attributeOf(shot), "A001");
}

TEST_F(Renaming, EmptyOldIdentifierMakesNoHostCall)
{
  addReel("");
  addReel("A001");
  EXPECT_EQ(linesOf([this] { rename("", "B001"); }), Lines{});
}

TEST_F(Renaming, ReelWithoutShotsIsAnnouncedAnyway)
{
  addReel("A001");
  const RecordingClient client(heard_, "", "A001");
  EXPECT_EQ(printedBy([this] { rename("A001", "B001"); }), Lines{});
  EXPECT_EQ(heard_, (Heard{"our()", "some(A001)", "dbC()"}));
}

TEST_F(Renaming, OldIdentifierIsPassedOnAsItWasGiven)
{
  addReel("A001");
  const Cookie shot = addShot("A001");
  const RecordingClient client(heard_);
  EXPECT_EQ(printedBy([this] { rename("a001", "B001"); }), Lines{renamed(shot, "a001", "B001")});
  EXPECT_EQ(heard_, (Heard{"some(a001)", "dbC()"}));
}

TEST_F(Renaming, NewIdentifierIsTakenAsItIs)
{
  addReel("taken");
  for (const char* newId : {"taken", " B001 ", "B*", ""}) {
    const Cookie reel = addReel("A001");
    const Cookie shot = addShot("A001");
    rename("A001", newId);
    EXPECT_EQ(configText(reel, "reelid"), newId);
    EXPECT_EQ(logName(reel), std::string("[reel] ") + newId);
    EXPECT_EQ(configText(shot, "reelid"), newId);
  }
  EXPECT_EQ(reelIds(), (Lines{"taken", "taken", " B001 ", "B*"}));
}

TEST_F(Renaming, NewIdentifierIsWidenedByteByByteInTheLogName)
{
  const Cookie reel = addReel("A001");
  rename("A001", "\xc3\xa9");
  EXPECT_EQ(logName(reel), "[reel] \xc3\x83\xc2\xa9");
}

TEST_F(Renaming, ChangeOfCaseOnlyReachesReelAndShots)
{
  const Cookie reel = addReel("a001");
  const Cookie shot = addShot("A001");
  EXPECT_EQ(printedBy([this] { rename("a001", "A001"); }), Lines{renamed(shot, "a001", "A001")});
  EXPECT_EQ(configText(reel, "reelid"), "A001");
  EXPECT_EQ(configText(shot, "reelid"), "A001");
}

TEST_F(Renaming, SearchThatReturnsTheReelItselfMakesItAShotOfACaseOnlyChange)
{
  const Cookie reel = addReel("a001");
  script().attributeSearchResult = cookies({reel});
  EXPECT_EQ(printedBy([this] { rename("a001", "A001"); }), Lines{renamed(reel, "a001", "A001")});
}

TEST_F(Renaming, SearchThatReturnsTheReelItselfMakesNoDifferenceToOtherChanges)
{
  const Cookie reel = addReel("A001");
  script().attributeSearchResult = cookies({reel});
  EXPECT_EQ(printedBy([this] { rename("A001", "B001"); }), Lines{});
  EXPECT_EQ(configText(reel, "reelid"), "B001");
}

TEST_F(Renaming, SameIdentifierAgainRewritesNameAndShots)
{
  const Cookie reel = addReel("A001");
  const Cookie shot = addShot("a001");
  const RecordingClient client(heard_);
  const Lines operations = operationsOf([this] { rename("A001", "A001"); });
  EXPECT_EQ(countOf(operations, "Edit::set_reelid"), 1) << "the shot's, not the reel's";
  EXPECT_EQ(printedBy([this] { rename("A001", "A001"); }), Lines{renamed(shot, "A001", "A001")});
  EXPECT_EQ(logName(reel), "[reel] A001");
  EXPECT_EQ(configText(shot, "reelid"), "A001");
  EXPECT_EQ(heard_, (Heard{"some(A001)", "dbC()", "some(A001)", "dbC()"}));
}

TEST_F(Renaming, NearMatchesAreSkippedInSilence)
{
  addReel("A001");
  const Cookie longer = addShot("A0012");
  const Cookie second = addShot("A001");
  const Cookie none = addShot("");
  const Cookie first = addShot("a001");
  script().attributeSearchResult = cookies({longer, first, none, second});
  EXPECT_EQ(printedBy([this] { rename("A001", "B001"); }),
            (Lines{renamed(first, "A001", "B001"), renamed(second, "A001", "B001")}));
  EXPECT_EQ(configText(longer, "reelid"), "A0012");
  EXPECT_EQ(configText(none, "reelid"), "<absent>");
}

TEST_F(Renaming, PercentSignsArePrintedAsTheyAre)
{
  addReel("100%s");
  const Cookie shot = addShot("100%s", "50%d");
  EXPECT_EQ(printedBy([this] { rename("100%s", "%n"); }), Lines{renamed(shot, "100%s", "%n")});
}

TEST_F(Renaming, NothingMarksALogDirty)
{
  addReel("A001");
  addShot("A001");
  EXPECT_EQ(countOf(operationsOf([this] { rename("A001", "B001"); }), "Edit::setDirty"), 0);
}

TEST_F(Renaming, ReelIsRenamedWhenTheFirstNoticeArrives)
{
  const Cookie reel = addReel("A001");
  RecordingClient client(heard_);
  bool oldKnown = true;
  bool newKnown = false;
  std::string name;
  client.onSome = [&](const std::string&) {
    oldKnown = manager().doesReelExist("A001");
    newKnown = manager().doesReelExist("B001");
    name = logName(reel);
  };
  rename("A001", "B001");
  EXPECT_EQ(name, "[reel] B001");
  EXPECT_FALSE(oldKnown);
  EXPECT_TRUE(newKnown);
}

TEST_F(Renaming, ShotsFollowBetweenTheTwoNotices)
{
  addReel("A001");
  const Cookie shot = addShot("A001");
  RecordingClient client(heard_);
  client.onSome = [&](const std::string&) { EXPECT_EQ(configText(shot, "reelid"), "A001"); };
  client.onDbChanged = [&](const std::string&) { EXPECT_EQ(configText(shot, "reelid"), "B001"); };
  rename("A001", "B001");
  EXPECT_EQ(heard_.size(), 2U);
}

TEST_F(Renaming, ShotThatTheFirstNoticeAddsFollows)
{
  addReel("A001");
  addShot("A001");
  RecordingClient client(heard_);
  Cookie added;
  client.onSome = [&](const std::string&) { added = addShot("A001", "late"); };
  EXPECT_EQ(printedBy([this] { rename("A001", "B001"); }).size(), 2U);
  EXPECT_EQ(configText(added, "reelid"), "B001");
}

TEST_F(Renaming, DatabaseIsFetchedAfterTheFirstNotice)
{
  addReel("A001");
  RecordingClient client(heard_);
  client.onSome = [&](const std::string&) { script().noDatabase(true); };
  rename("A001", "B001");
  EXPECT_EQ(heard_, Heard{"some(A001)"}) << "it ends where there is no database";
}

TEST_F(Renaming, ReelStaysOpenUntilEverybodyIsNotified)
{
  addReel("A001");
  addShot("A001");
  RecordingClient client(heard_);
  std::vector<std::int64_t> open;
  const auto note = [&](const std::string&) { open.push_back(reelhost::openLogs()); };
  client.onSome = note;
  client.onDbChanged = note;
  script().before = [&](const std::string& operation, const std::string&) {
    if (operation == "vorn_printf")
      note({});
  };
  rename("A001", "B001");
  script().before = nullptr;
  EXPECT_EQ(open, (std::vector<std::int64_t>{1, 2, 1})) << "the shot is open as well while its line is printed";
}

TEST_F(Renaming, HeldNotificationsStayUnsentButTheListIsRebuilt)
{
  addReel("A001");
  addLog(9, "A002");
  const RecordingClient client(heard_);
  manager().notifyHoldCount = 1;
  rename("A001", "B001");
  EXPECT_EQ(manager().notifyHoldCount, 1);
  manager().notifyHoldCount = 0;
  EXPECT_EQ(heard_, Heard{});
  EXPECT_EQ(reelIds(), (Lines{"B001", "A002"}));
}

TEST_F(Renaming, OtherManagerRenamesTheReelsOfItsOwnListAndNotifiesItsOwnClients)
{
  const Cookie reel = addReel("A001");
  const RecordingClient client(heard_);
  ReelDbManager other;
  other.changeReelId("A001", "B001");
  EXPECT_EQ(configText(reel, "reelid"), "A001");
  other.buildReelList();
  other.changeReelId("A001", "B001");
  EXPECT_EQ(configText(reel, "reelid"), "B001");
  EXPECT_EQ(heard_, Heard{});
}

TEST_F(Renaming, WithoutADatabaseItEndsAfterTheFirstNotice)
{
  const Cookie reel = addReel("A001");
  const Cookie shot = addShot("A001");
  const RecordingClient client(heard_);
  script().noDatabaseAt(1);
  const Lines operations = operationsOf([this] { rename("A001", "B001"); });
  EXPECT_EQ(countOf(operations, "EditManager::getProjdb"), 1);
  EXPECT_EQ(countOf(operations, "projdb::search"), 0);
  EXPECT_EQ(heard_, Heard{"some(A001)"});
  EXPECT_EQ(configText(reel, "reelid"), "B001");
  EXPECT_EQ(logName(reel), "[reel] B001");
  EXPECT_EQ(configText(shot, "reelid"), "A001");
  EXPECT_EQ(operations.back(), "EditPtr::i_close");
}

// The openings of a rename of the only reel: the lookup, the identifier read, the identifier written, the name, and for
// each shot one to read its attribute and one to change it.

TEST_F(Renaming, ReelThatDoesNotOpenForItsNameKeepsItAndTheRestContinues)
{
  const Cookie reel = addReel("A001");
  const Cookie shot = addShot("A001");
  const RecordingClient client(heard_);
  script().failOpenNumber(4);
  rename("A001", "B001");
  EXPECT_EQ(configText(reel, "reelid"), "B001");
  EXPECT_EQ(logName(reel), "");
  EXPECT_EQ(configText(shot, "reelid"), "B001");
  EXPECT_EQ(heard_, (Heard{"some(A001)", "dbC()"}));
}

TEST_F(Renaming, ReelThatDoesNotOpenForItsNameIsClosedOnceAfterEverythingElse)
{
  addReel("A001");
  addShot("A001");
  const std::string closed = "EditPtr::i_close()";
  RecordingClient client(heard_);
  std::vector<int> closedWhenTold;
  client.onSome =
      client.onDbChanged = [&](const std::string&) { closedWhenTold.push_back(countOf(journal().lines(), closed)); };
  script().failOpenNumber(4);
  const Lines lines = linesOf([this] { rename("A001", "B001"); });
  EXPECT_EQ(closedWhenTold, (std::vector<int>{0, 0}));
  EXPECT_EQ(countOf(lines, closed), 1);
  EXPECT_EQ(lines.back(), closed);
}

TEST_F(Renaming, ReelThatDoesNotOpenForItsIdentifierKeepsItAndTheRestContinues)
{
  const Cookie reel = addReel("A001");
  const Cookie shot = addShot("A001");
  script().failOpenNumber(3);
  rename("A001", "B001");
  EXPECT_EQ(configText(reel, "reelid"), "A001");
  EXPECT_EQ(logName(reel), "[reel] B001");
  EXPECT_EQ(configText(shot, "reelid"), "B001");
}

TEST_F(Renaming, ShotThatDoesNotOpenKeepsItsReelWithoutAMessage)
{
  addReel("A001");
  const Cookie closed = addShot("A001", "closed");
  const Cookie fine = addShot("A001", "fine");
  const RecordingClient client(heard_);
  script().failOpenNumber(6);
  EXPECT_EQ(printedBy([this] { rename("A001", "B001"); }), Lines{renamed(fine, "A001", "B001")});
  EXPECT_EQ(configText(closed, "reelid"), "A001");
  EXPECT_EQ(configText(fine, "reelid"), "B001");
  EXPECT_EQ(heard_, (Heard{"some(A001)", "dbC()"}));
}

TEST_F(Renaming, HostCalls)
{
  const Cookie other = addReel("A000");
  const Cookie reel = addReel("a001");
  const Cookie shot = addShot("A001", "clip");
  const Cookie near = addShot("A0012");
  script().attributeSearchResult = cookies({shot, near});
  const Lines lines = linesOf([this] { rename("A001", "B001"); });
  const std::string file = toUTF8(getFilenameForCookie(shot, Cookie())).c_str();
  EXPECT_EQ(
      listing(lines, {{other, "other"}, {reel, "reel"}, {shot, "shot"}, {near, "near"}, {Cookie(), "none"}}),
      listing(join({attributeRead("other", "A000"), attributeRead("reel", "a001"), idRead("reel", "a001"),
                    withLog("reel", {"Edit::set_reelid(reel, 0, \"B001\")", "EditManager::updateProjdbRec(reel)"}),
                    withLog("reel", join({{"paddedResourceStrW(10043, null, \" \", 0) -> \"[reel] \"",
                                           "Edit::setName(reel, \"[reel] B001\", false)",
                                           "EditManager::getProjdb() -> database"},
                                          shotSearch("A001", "2 logs"),
                                          attributeRead("shot", "A001"),
                                          withLog("shot", {"Edit::set_reelid(shot, 0, \"B001\")",
                                                           "EditManager::updateProjdbRec(shot)",
                                                           "getFilenameForCookie(shot, none) -> " + quoted(file),
                                                           "vorn_printf(" + renamed(shot, "A001", "B001") + ")"}),
                                          attributeRead("near", "A0012"),
                                          rebuild(2)}))}),
              {{shot, "shot"}}));
}

TEST_F(Renaming, ExceptionOfAHandlerPassesWithTheReelClosed)
{
  for (bool atFirstNotice : {true, false}) {
    addReel("A001");
    RecordingClient client(heard_);
    const auto fail = [](const std::string&) { throw std::logic_error("of the handler"); };
    (atFirstNotice ? client.onSome : client.onDbChanged) = fail;
    EXPECT_THROW(rename("A001", "B001"), std::logic_error);
    EXPECT_EQ(reelhost::openLogs(), 0);
  }
}

// --- Copying -------------------------------------------------------------------------------------

class Copying : public ChangesTest {
protected:
  void copy(const char* fromId, const char* toId) { manager().copyReelInfo(fromId, toId); }

  /// A reel in which every field is set.
  Cookie addFullReel(const char* id, const std::string& type)
  {
    reelhost::KeyValues fields = {{TR_REC_INHIBIT_FLAG, "1"},
                                  {TR_REEL_AVAILABLE_FLAG, "1"},
                                  {TR_LABEL_MAPPING, "map"},
                                  {TR_BIN_NAME, "bin"},
                                  {TR_LAST_DEVICE, "Deck"}};
    for (int i = 0; i < 7; ++i)
      fields.emplace_back(TR_USER_FIELD_BASE + std::to_string(i), "field " + std::to_string(i));
    return addReel(id, type, fields);
  }

  std::string userField(const Cookie& reel, int n)
  {
    return configText(reel, (TR_USER_FIELD_BASE + std::to_string(n)).c_str());
  }
};

TEST_F(Copying, TypeFlagsMappingAndSixUserFieldsAreCopied)
{
  addFullReel("from", "Tape");
  const Cookie to = addReel("to");
  copy("from", "to");
  EXPECT_EQ(text(ReelDbRec(to).typeName()), "Tape");
  EXPECT_EQ(configText(to, TR_REEL_AVAILABLE_FLAG), "1");
  EXPECT_EQ(configText(to, TR_REC_INHIBIT_FLAG), "1");
  EXPECT_EQ(configText(to, TR_LABEL_MAPPING), "map");
  for (int i = 0; i < 6; ++i)
    EXPECT_EQ(userField(to, i), "field " + std::to_string(i));
}

TEST_F(Copying, NothingElseIsCopied)
{
  addFullReel("from", "Tape");
  const Cookie to = addReel("to");
  copy("from", "to");
  EXPECT_EQ(configText(to, "reelid"), "to");
  EXPECT_EQ(logName(to), "");
  EXPECT_EQ(configText(to, TR_BIN_NAME), "<absent>");
  EXPECT_EQ(configText(to, TR_LAST_DEVICE), "<absent>");
  EXPECT_EQ(userField(to, 6), "<absent>");
  EXPECT_EQ(userField(to, -1), "<absent>");
}

TEST_F(Copying, SourceIsLeftAlone)
{
  const Cookie from = addFullReel("from", "Tape");
  addReel("to");
  copy("from", "to");
  EXPECT_EQ(text(ReelDbRec(from).typeName()), "Tape");
  EXPECT_EQ(userField(from, 5), "field 5");
  EXPECT_EQ(configText(from, TR_REC_INHIBIT_FLAG), "1");
}

TEST_F(Copying, FieldsTheSourceLacksAreEmptied)
{
  addReel("from");
  const Cookie to = addFullReel("to", "Tape");
  copy("from", "to");
  EXPECT_EQ(text(ReelDbRec(to).typeName()), "");
  EXPECT_EQ(configText(to, TR_REEL_AVAILABLE_FLAG), "0");
  EXPECT_EQ(configText(to, TR_REC_INHIBIT_FLAG), "0");
  EXPECT_EQ(configText(to, TR_LABEL_MAPPING), "");
  for (int i = 0; i < 6; ++i)
    EXPECT_EQ(userField(to, i), "");
  EXPECT_EQ(userField(to, 6), "field 6");
}

TEST_F(Copying, MappingThatMeansNoValueIsCopiedAsTheEmptyText)
{
  addReel("from", {}, {{TR_LABEL_MAPPING, "unknown"}});
  const Cookie to = addFullReel("to", "Tape");
  copy("from", "to");
  EXPECT_EQ(configText(to, TR_LABEL_MAPPING), "");
}

TEST_F(Copying, ClientsAreNotifiedOnceAfterAllFieldsWereCopied)
{
  addFullReel("from", "Tape");
  const Cookie to = addReel("to");
  RecordingClient client(heard_, "", "to");
  std::string lastField, type;
  client.onSome = [&](const std::string&) {
    lastField = userField(to, 5);
    type = text(ReelDbRec(to).typeName());
  };
  copy("from", "to");
  EXPECT_EQ(heard_, (Heard{"our()", "some(to)"}));
  EXPECT_EQ(lastField, "field 5");
  EXPECT_EQ(type, "Tape");
}

TEST_F(Copying, TargetIsAnnouncedAsItWasNamed)
{
  addFullReel("from", "Tape");
  const Cookie to = addReel("to");
  const RecordingClient client(heard_);
  copy("FROM", "TO");
  EXPECT_EQ(heard_, Heard{"some(TO)"});
  EXPECT_EQ(configText(to, TR_LABEL_MAPPING), "map");
}

TEST_F(Copying, UnknownTargetCopiesNothingButIsAnnounced)
{
  addFullReel("from", "Tape");
  const RecordingClient client(heard_);
  const Lines operations = operationsOf([this] { copy("from", "gone"); });
  EXPECT_EQ(operations, (Lines{"EditInfo::EditInfo", "EditInfo::getAttrib", "EditPtr::i_close", //
                               "EditInfo::EditInfo", "EditInfo::getAttrib", "EditPtr::i_close"}));
  EXPECT_EQ(heard_, Heard{"some(gone)"});
  EXPECT_EQ(manager().notifyHoldCount, 0);
}

TEST_F(Copying, EmptyTargetCopiesNothingAndNotifiesNobody)
{
  addFullReel("from", "Tape");
  const RecordingClient client(heard_);
  copy("from", "");
  EXPECT_EQ(heard_, Heard{});
  EXPECT_EQ(manager().notifyHoldCount, 0);
}

TEST_F(Copying, UnknownOrEmptySourceEmptiesTheTarget)
{
  for (const char* source : {"gone", ""}) {
    enterProject(std::string("COPY") + source);
    const Cookie to = addFullReel("to", "Tape");
    const RecordingClient client(heard_);
    heard_.clear();
    copy(source, "to");
    EXPECT_EQ(text(ReelDbRec(to).typeName()), "");
    EXPECT_EQ(configText(to, TR_REEL_AVAILABLE_FLAG), "0");
    EXPECT_EQ(configText(to, TR_REC_INHIBIT_FLAG), "0");
    EXPECT_EQ(configText(to, TR_LABEL_MAPPING), "");
    for (int i = 0; i < 6; ++i)
      EXPECT_EQ(userField(to, i), "");
    EXPECT_EQ(heard_, Heard{"some(to)"});
  }
}

TEST_F(Copying, OtherManagerCopiesTheReelsOfItsOwnList)
{
  addFullReel("from", "Tape");
  const Cookie to = addReel("to");
  ReelDbManager other;
  other.copyReelInfo("from", "to");
  EXPECT_EQ(configText(to, TR_LABEL_MAPPING), "<absent>");
  other.buildReelList();
  other.copyReelInfo("from", "to");
  EXPECT_EQ(configText(to, TR_LABEL_MAPPING), "map");
}

TEST_F(Copying, EmptiedTypeMakesTheLastDeviceDecideTheChannels)
{
  reelhost::DeviceSettings deck = device(1, "Deck");
  deck.audioInputs = 2;
  setDevices({deck});
  const Cookie to = addFullReel("to", "Tape");
  copy("gone", "to");
  EXPECT_EQ(channels(to, 2), 2);
  EXPECT_EQ(channels(to, 1), 1);
}

TEST_F(Copying, CopiedTypeBringsItsChannels)
{
  theReelTypeManager()->add("copying 1V 3A", "VideoChannels=1 AudioChannels=3");
  addReel("from", "copying 1V 3A");
  const Cookie to = addReel("to");
  copy("from", "to");
  EXPECT_EQ(channels(to, 2), 3);
  EXPECT_EQ(channels(to, 1), 1);
}

TEST_F(Copying, ReelOntoItselfWritesNothingAndIsAnnounced)
{
  addFullReel("R1", "Tape");
  const RecordingClient client(heard_);
  const Lines operations = operationsOf([this] { copy("R1", "r1"); });
  EXPECT_EQ(countOf(operations, "configb::set"), 0);
  EXPECT_EQ(countOf(operations, "Edit::reelType"), 0);
  EXPECT_EQ(heard_, Heard{"some(r1)"});
}

/// The journal lines for reading a field of each kind, and for writing one, followed by reading the identifier.
Lines flagRead(const std::string& log, const std::string& key, const std::string& outcome)
{
  return withLog(log, {"configb::in(" + quoted(key) + ", int&) -> " + outcome});
}

Lines textRead(const std::string& log, const std::string& key, const std::string& outcome)
{
  return withLog(log, {"configb::in(" + quoted(key) + ", char*) -> " + outcome});
}

Lines written(const std::string& log, const std::string& key, const std::string& value)
{
  return join({withLog(log, {"configb::set(" + quoted(key) + ", " + quoted(value) + ", null)",
                             "Edit::setDirty(" + log + ", true)"}),
               idRead(log, log)});
}

TEST_F(Copying, HostCalls)
{
  const Cookie from = addFullReel("from", "Tape");
  const Cookie to = addReel("to");
  const Lines lines = linesOf([this] { copy("from", "to"); });

  const Lines channelsOfNoDevice = withLog(
      "to", join({typeRead("to", "Tape"),
                  textRead("to", "reel_last_device", "1"),
                  {"theConfigurationManager()", "ExtDeviceConfigurationManager::findConfigForName(\"\") -> -1",
                   "theConfigurationManager()", "ExtDeviceConfigurationManager::getConfig(-1) -> \"\"",
                   "ExtDeviceConfig::getNumConnectedAudioInputs(\"\") -> 0", "ExtDeviceConfig::getInputType(\"\") -> 9",
                   "Edit::getNumChans(to, 2) -> 0", "Edit::getNumChans(to, 1) -> 0"}}));
  Lines wanted = join({attributeRead("from", "from"), attributeRead("from", "from"), attributeRead("to", "to"),
                       typeRead("from", "Tape"), typeRead("to", ""),
                       withLog("to", join({{"Edit::reelType(to, \"Tape\")", "Edit::setDirty(to, true)"},
                                           channelsOfNoDevice,
                                           idRead("to", "to")})),
                       flagRead("from", "reel_available_flag", "0 1"), flagRead("to", "reel_available_flag", "1"),
                       written("to", "reel_available_flag", "1"), flagRead("from", "record_inhibit_flag", "0 1"),
                       flagRead("to", "record_inhibit_flag", "1"), written("to", "record_inhibit_flag", "1"),
                       textRead("from", "reel_labelmapping", "0 \"map\""), textRead("to", "reel_labelmapping", "1"),
                       written("to", "reel_labelmapping", "map")});
  for (int i = 0; i < 6; ++i) {
    const std::string key = "reel_userfield" + std::to_string(i);
    const std::string value = "field " + std::to_string(i);
    wanted = join(
        {wanted, textRead("from", key, "0 " + quoted(value)), textRead("to", key, "1"), written("to", key, value)});
  }
  EXPECT_EQ(listing(lines, {{from, "from"}, {to, "to"}}), listing(wanted));
}

// --- The hold ------------------------------------------------------------------------------------

class CopyingHold : public Copying {
protected:
  CopyingHold()
  {
    addFullReel("from", "Tape");
    addReel("to");
    manager().notifyHoldCount = 0;
  }

  /// Copies with the hold count at @p outer. Returns the count during the copy, which is the same at each host call
  /// from the first lookup on.
  int countDuring(int outer)
  {
    manager().notifyHoldCount = outer;
    std::vector<int> seen;
    Lines operations;
    script().before = [&](const std::string& operation, const std::string&) {
      operations.push_back(operation);
      seen.push_back(manager().notifyHoldCount);
    };
    copy("from", "to");
    script().before = nullptr;
    EXPECT_EQ(operations.at(0), "EditInfo::EditInfo");
    EXPECT_EQ(countOf(operations, "configb::set") + countOf(operations, "Edit::reelType"), 10)
        << "the type, two flags, the mapping and six fields are written";
    EXPECT_EQ(std::count(seen.begin(), seen.end(), seen.at(0)), static_cast<std::ptrdiff_t>(seen.size()));
    return seen.at(0);
  }

  Heard tenFieldNotices() { return Heard(10, "some(to)"); }
};

TEST_F(CopyingHold, NotificationsAreHeldForTheCopyAloneWhenNobodyHoldsThem)
{
  const RecordingClient client(heard_);
  EXPECT_EQ(countDuring(0), 1);
  EXPECT_EQ(manager().notifyHoldCount, 0);
  EXPECT_EQ(heard_, Heard{"some(to)"});
}

TEST_F(CopyingHold, OuterHoldKeepsTheLastNoticeBackToo)
{
  const RecordingClient client(heard_);
  EXPECT_EQ(countDuring(1), 2);
  EXPECT_EQ(manager().notifyHoldCount, 1);
  EXPECT_EQ(heard_, Heard{});
}

TEST_F(CopyingHold, CountBelowZeroIsRaisedAndNotLoweredAgain)
{
  const RecordingClient client(heard_);
  EXPECT_EQ(countDuring(-1), 0);
  EXPECT_EQ(manager().notifyHoldCount, 0);
  Heard wanted = tenFieldNotices();
  wanted.push_back("some(to)");
  EXPECT_EQ(heard_, wanted);
}

TEST_F(CopyingHold, CountFurtherBelowZeroKeepsEverythingBack)
{
  const RecordingClient client(heard_);
  EXPECT_EQ(countDuring(-2), -1);
  EXPECT_EQ(manager().notifyHoldCount, -1);
  manager().notifyHoldCount = 0;
  EXPECT_EQ(heard_, Heard{});
}

TEST_F(CopyingHold, FailedCopyReleasesTheHoldAndNotifiesNobody)
{
  const RecordingClient client(heard_);
  for (int outer : {0, 1}) {
    manager().notifyHoldCount = outer;
    script().before = [](const std::string& operation, const std::string&) {
      if (operation == "configb::set")
        throw std::logic_error("of the host");
    };
    EXPECT_THROW(copy("from", "to"), std::logic_error);
    script().before = nullptr;
    EXPECT_EQ(manager().notifyHoldCount, outer);
    EXPECT_EQ(reelhost::openLogs(), 0);
  }
  manager().notifyHoldCount = 0;
  EXPECT_EQ(heard_, Heard{});
}

TEST_F(Copying, EachHostCallMayThrow)
{
  const RecordingClient client(heard_);
  Cookie to;
  const int failed = failEachHostCall(
      [&] {
        addFullReel("from", "Tape");
        to = addReel("to");
        heard_.clear();
      },
      [this] {
        copy("from", "to");
        heard_.push_back("done");
      },
      [&] {
        if (heard_ != Heard{"some(to)", "done"}) {
          EXPECT_EQ(heard_, Heard{}) << "a copy that failed notifies nobody";
        }
        heard_.clear();
        copy("from", "to");
        EXPECT_EQ(heard_, Heard{"some(to)"});
        EXPECT_EQ(userField(to, 5), "field 5");
      });
  EXPECT_GT(failed, 100);
}

} // namespace

} // namespace reeldb_tests
