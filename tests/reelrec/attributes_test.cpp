// SPDX-License-Identifier: Apache-2.0
//
// The attributes of a reel: what their getters read, when their setters write, and whom they notify in which order.
#include <climits>
#include <functional>
#include <ostream>
#include <utility>

#include "host/text.h"
#include "reelrec/field_answer.h"
#include "reelrec/record_fixture.h"

namespace reeldb_tests {
namespace {

using Text = LightweightString<char>;
using Wide = LightweightString<wchar_t>;

const std::string eAcute = "\xC3\xA9";

class Attributes : public RecordTest {
protected:
  /// The reel "R1" with these fields.
  ReelDbRec reelWith(const reelhost::KeyValues& fields, const std::string& type = {})
  {
    reel = addReel("R1", type, fields);
    heard.clear();
    return reel;
  }

  /// The steps of a setter that finds a difference: it reads, writes, and notifies with the identifier read again.
  Steps changed(const Steps& read, const std::string& key, const std::string& value) const
  {
    return joined({read, write(reel, key, value), readId(reel), {some("R1")}});
  }

  Cookie reel;
};

// --- Identifier ----------------------------------------------------------------------------------

TEST_F(Attributes, IdIsTheField)
{
  ReelDbRec rec = reelWith({});
  EXPECT_EQ(text(rec.reelId()), "R1");
  EXPECT_EQ(stepsOf([&] { rec.reelId(); }), readId(reel));
}

TEST_F(Attributes, IdThatIsAbsentIsEmpty)
{
  ReelDbRec rec = addReel("");
  EXPECT_EQ(rec.reelId().c_str(), Text().c_str());
}

TEST_F(Attributes, IdOfALogThatDoesNotOpenIsEmpty)
{
  ReelDbRec rec = reelWith({});
  script().failOpen(reel);
  EXPECT_EQ(text(rec.reelId()), "");
  EXPECT_EQ(stepsOf([&] { rec.reelId(); }), failedOpen(reel));
  ReelDbRec none;
  EXPECT_EQ(text(none.reelId()), "");
}

TEST_F(Attributes, IdIsReadFromTheFieldNotFromTheAttribute)
{
  ReelDbRec rec = reelWith({});
  script().attribute(reel, "other");
  EXPECT_EQ(text(rec.reelId()), "R1");
}

TEST_F(Attributes, IdIsTheTextOfAFieldThatWasReadAndHoldsOne)
{
  ReelDbRec rec = reelWith({});
  {
    const FieldAnswer textOnFailure(1, "left behind");
    EXPECT_EQ(text(rec.reelId()), "");
  }
  {
    const FieldAnswer successWithoutText(0, nullptr);
    EXPECT_EQ(text(rec.reelId()), "");
  }
  {
    const FieldAnswer successWithText(0, "returned");
    EXPECT_EQ(text(rec.reelId()), "returned");
  }
  EXPECT_EQ(text(rec.reelId()), "R1");
}

TEST_F(Attributes, IdIsCutAt2047Bytes)
{
  for (const std::size_t length : {2046u, 2047u, 2048u, 5000u}) {
    ReelDbRec rec = addReel(std::string(length, 'r'));
    EXPECT_EQ(text(rec.reelId()), std::string(std::min<std::size_t>(length, 2047), 'r'));
  }
}

TEST_F(Attributes, NewIdIsWrittenAndItsRowRefreshedAndNobodyNotified)
{
  ReelDbRec rec = reelWith({});
  EXPECT_EQ(stepsOf([&] { rec.reelId("R2"); }),
            joined({readId(reel), {open(reel), setReelId(reel, "R2"), update(reel), close(reel)}}));
  EXPECT_EQ(text(rec.reelId()), "R2");
  EXPECT_EQ(configText(reel, "reelid"), "R2");
  EXPECT_EQ(heard, Heard());
}

TEST_F(Attributes, EqualIdIsNotWritten)
{
  ReelDbRec rec = reelWith({});
  EXPECT_EQ(stepsOf([&] { rec.reelId("R1"); }), readId(reel));
  ReelDbRec nameless = addReel("");
  EXPECT_EQ(stepsOf([&] { nameless.reelId({}); }), readId(nameless));
  EXPECT_EQ(stepsOf([&] { nameless.reelId(""); }), readId(nameless));
}

TEST_F(Attributes, IdThatDiffersInCaseIsWritten)
{
  ReelDbRec rec = reelWith({});
  rec.reelId("r1");
  EXPECT_EQ(configText(reel, "reelid"), "r1");
}

TEST_F(Attributes, NullIdIsWrittenAsTheEmptyText)
{
  ReelDbRec rec = reelWith({});
  EXPECT_TRUE(inOrder(stepsOf([&] { rec.reelId({}); }), {setReelId(reel, "")}));
  EXPECT_EQ(configText(reel, "reelid"), "");
}

TEST_F(Attributes, IdOfAnEmptyRecordIsNotWritten)
{
  ReelDbRec none;
  EXPECT_EQ(stepsOf([&] { none.reelId("X"); }), failedOpen(Cookie()));
  EXPECT_EQ(stepsOf([&] { none.reelId({}); }), failedOpen(Cookie()));
}

TEST_F(Attributes, IdOfALogThatDoesNotOpenIsNotWritten)
{
  ReelDbRec rec = reelWith({});
  script().failOpen(reel);
  EXPECT_EQ(stepsOf([&] { rec.reelId("X"); }), joined({failedOpen(reel), failedOpen(reel)}));
  script().reset();
  script().failOpenNumber(2);
  EXPECT_EQ(stepsOf([&] { rec.reelId("X"); }), joined({readId(reel), failedOpen(reel)}));
  EXPECT_EQ(configText(reel, "reelid"), "R1");
}

TEST_F(Attributes, LongIdIsComparedAsItReads)
{
  const std::string stored(5000, 'r');
  ReelDbRec rec = addReel(stored);
  // What reads as 2,047 bytes differs from the whole text and equals its beginning.
  EXPECT_TRUE(inOrder(stepsOf([&] { rec.reelId(stored.c_str()); }), {setReelId(rec, stored)}));
  EXPECT_EQ(stepsOf([&] { rec.reelId(stored.substr(0, 2047).c_str()); }), readId(rec));
}

// --- Flags ---------------------------------------------------------------------------------------

struct Flag {
  const char* key;
  bool (ReelDbRec::*get)();
  void (ReelDbRec::*set)(bool);
  const char* name;
};

void PrintTo(const Flag& flag, std::ostream* out)
{
  *out << flag.key;
}

class AttributeFlags : public Attributes, public ::testing::WithParamInterface<Flag> {
protected:
  bool get(ReelDbRec rec) { return (rec.*GetParam().get)(); }
  void set(ReelDbRec rec, bool value) { (rec.*GetParam().set)(value); }
  const std::string key = GetParam().key;
};

INSTANTIATE_TEST_SUITE_P(Both, AttributeFlags,
                         ::testing::Values(Flag{"record_inhibit_flag", &ReelDbRec::recInhibit, &ReelDbRec::recInhibit,
                                                "RecInhibit"},
                                           Flag{"reel_available_flag", &ReelDbRec::reelAvailable,
                                                &ReelDbRec::reelAvailable, "ReelAvailable"}),
                         [](const auto& tested) { return tested.param.name; });

TEST_P(AttributeFlags, AnyNumberButZeroIsTrue)
{
  for (const char* stored : {"1", "2", "-1", "2147483647"})
    EXPECT_TRUE(get(reelWith({{key, stored}}))) << stored;
  for (const char* stored : {"0", "-0", "", "no"})
    EXPECT_FALSE(get(reelWith({{key, stored}}))) << stored;
}

TEST_P(AttributeFlags, AbsentKeyIsFalse)
{
  EXPECT_FALSE(get(reelWith({})));
}

TEST_P(AttributeFlags, LogThatDoesNotOpenIsFalse)
{
  const ReelDbRec rec = reelWith({{key, "1"}});
  script().failOpen(reel);
  EXPECT_FALSE(get(rec));
  EXPECT_FALSE(get(ReelDbRec()));
}

TEST_P(AttributeFlags, NumberThatTheHostLeftCountsWhateverItReturned)
{
  const ReelDbRec rec = reelWith({});
  script().configInt[key] = {1, 7};
  EXPECT_TRUE(get(rec));
  script().configInt[key] = {1, 0};
  EXPECT_FALSE(get(rec));
  script().configInt[key] = {0, std::nullopt};
  EXPECT_FALSE(get(rec));
}

TEST_P(AttributeFlags, TheOtherFlagIsAnotherKey)
{
  ReelDbRec rec = reelWith({{key, "1"}});
  EXPECT_NE(rec.recInhibit(), rec.reelAvailable());
}

TEST_P(AttributeFlags, SettingAnAbsentFlagStoresOneAndNotifies)
{
  const ReelDbRec rec = reelWith({});
  EXPECT_EQ(stepsOf([&] { set(rec, true); }), changed(readInt(reel, key), key, "1"));
  EXPECT_EQ(heard, (Heard{"some(R1)"}));
  EXPECT_EQ(configText(reel, key.c_str()), "1");
  EXPECT_TRUE(get(rec));
}

TEST_P(AttributeFlags, ClearingASetFlagStoresZeroAndNotifies)
{
  const ReelDbRec rec = reelWith({{key, "1"}});
  EXPECT_EQ(stepsOf([&] { set(rec, false); }), changed(readInt(reel, key), key, "0"));
  EXPECT_EQ(heard, (Heard{"some(R1)"}));
  EXPECT_FALSE(get(rec));
}

TEST_P(AttributeFlags, EqualFlagIsNeitherWrittenNorNotified)
{
  const ReelDbRec set1 = reelWith({{key, "5"}});
  EXPECT_EQ(stepsOf([&] { set(set1, true); }), readInt(reel, key));
  EXPECT_EQ(configText(reel, key.c_str()), "5");
  const ReelDbRec absent = reelWith({});
  EXPECT_EQ(stepsOf([&] { set(absent, false); }), readInt(reel, key));
  EXPECT_EQ(configText(reel, key.c_str()), "<absent>");
  EXPECT_EQ(heard, Heard());
}

TEST_P(AttributeFlags, SetFlagOfALogThatDoesNotOpenNotifiesNobody)
{
  const ReelDbRec rec = reelWith({});
  script().failOpen(reel);
  EXPECT_EQ(stepsOf([&] { set(rec, true); }), joined({failedOpen(reel), failedOpen(reel), failedOpen(reel)}));
  EXPECT_EQ(stepsOf([&] { set(rec, false); }), failedOpen(reel));
  EXPECT_EQ(heard, Heard());
}

TEST_P(AttributeFlags, WriteThatDoesNotOpenIsNotifiedAnyway)
{
  const ReelDbRec rec = reelWith({});
  script().failOpenNumber(2);
  EXPECT_EQ(stepsOf([&] { set(rec, true); }),
            joined({readInt(reel, key), failedOpen(reel), readId(reel), {some("R1")}}));
  EXPECT_EQ(configText(reel, key.c_str()), "<absent>");
}

TEST_P(AttributeFlags, ReelWithoutIdIsWrittenAndNobodyNotified)
{
  const ReelDbRec rec = addReel("");
  EXPECT_EQ(stepsOf([&] { set(rec, true); }), joined({readInt(rec, key), write(rec, key, "1"), readId(rec)}));
}

TEST_P(AttributeFlags, ClientOfThisReelReceivesBothCalls)
{
  const ReelDbRec rec = reelWith({});
  RecordingClient ours(heard, "ours", "R1"), theirs(heard, "theirs", "r1");
  set(rec, true);
  EXPECT_EQ(heard, (Heard{"some(R1)", "ours:our()", "ours:some(R1)", "theirs:some(R1)"}));
}

TEST_P(AttributeFlags, HandlersRunWithTheLogClosedAndTheFlagStored)
{
  const ReelDbRec rec = reelWith({});
  int calls = 0;
  client.onSome = [&](const std::string&) {
    ++calls;
    EXPECT_EQ(reelhost::openLogs(), 0);
    EXPECT_TRUE(get(rec));
  };
  set(rec, true);
  EXPECT_EQ(calls, 1);
}

// --- Texts with one word that means no value -----------------------------------------------------

struct Named {
  const char* key;
  const char* nothing;
  const char* othersNothing;
  Text (ReelDbRec::*get)();
  void (ReelDbRec::*set)(Text);
  const char* name;
};

void PrintTo(const Named& named, std::ostream* out)
{
  *out << named.key;
}

class AttributeTexts : public Attributes, public ::testing::WithParamInterface<Named> {
protected:
  std::string get(ReelDbRec rec) { return (rec.*GetParam().get)().c_str(); }
  void set(ReelDbRec rec, const char* value) { (rec.*GetParam().set)(value); }
  const std::string key = GetParam().key, nothing = GetParam().nothing;
};

INSTANTIATE_TEST_SUITE_P(Both, AttributeTexts,
                         ::testing::Values(Named{"reel_labelmapping", "unknown", "default", &ReelDbRec::labelMapping,
                                                 &ReelDbRec::labelMapping, "LabelMapping"},
                                           Named{"profile_bin_name", "default", "unknown", &ReelDbRec::binName,
                                                 &ReelDbRec::binName, "BinName"}),
                         [](const auto& tested) { return tested.param.name; });

TEST_P(AttributeTexts, StoredTextIsRead)
{
  const ReelDbRec rec = reelWith({{key, "caf\xC3\xA9 1"}});
  EXPECT_EQ(get(rec), "caf\xC3\xA9 1");
  EXPECT_EQ(stepsOf([&] { get(rec); }), readText(reel, key));
}

TEST_P(AttributeTexts, AbsentKeyOrUnopenedLogIsEmpty)
{
  const ReelDbRec rec = reelWith({});
  EXPECT_EQ(get(rec), "");
  const ReelDbRec unopened = reelWith({{key, "x"}});
  script().failOpen(reel);
  EXPECT_EQ(get(unopened), "");
  EXPECT_EQ(get(ReelDbRec()), "");
}

TEST_P(AttributeTexts, TheWordForNothingReadsAsEmpty)
{
  EXPECT_EQ(get(reelWith({{key, nothing}})), "");
}

TEST_P(AttributeTexts, OnlyExactlyThatWordDoes)
{
  std::string inCapitals = nothing;
  inCapitals[0] = static_cast<char>(inCapitals[0] - 'a' + 'A');
  for (const std::string& stored :
       {inCapitals, nothing + " ", " " + nothing, nothing + "2", std::string(GetParam().othersNothing)})
    EXPECT_EQ(get(reelWith({{key, stored}})), stored);
}

TEST_P(AttributeTexts, NewTextIsWrittenAndNotified)
{
  const ReelDbRec rec = reelWith({});
  EXPECT_EQ(stepsOf([&] { set(rec, "text"); }), changed(readText(reel, key), key, "text"));
  EXPECT_EQ(heard, (Heard{"some(R1)"}));
  EXPECT_EQ(get(rec), "text");
}

TEST_P(AttributeTexts, EqualTextIsNeitherWrittenNorNotified)
{
  const ReelDbRec rec = reelWith({{key, "text"}});
  EXPECT_EQ(stepsOf([&] { set(rec, "text"); }), readText(reel, key));
  EXPECT_EQ(heard, Heard());
}

TEST_P(AttributeTexts, TextThatDiffersInCaseIsWritten)
{
  const ReelDbRec rec = reelWith({{key, "text"}});
  set(rec, "Text");
  EXPECT_EQ(get(rec), "Text");
  EXPECT_EQ(heard, (Heard{"some(R1)"}));
}

TEST_P(AttributeTexts, EmptyTextReplacesAText)
{
  const ReelDbRec rec = reelWith({{key, "text"}});
  EXPECT_EQ(stepsOf([&] { set(rec, ""); }), changed(readText(reel, key), key, ""));
  EXPECT_EQ(configText(reel, key.c_str()), "");
}

TEST_P(AttributeTexts, EmptyTextOnAnAbsentKeyIsNotWritten)
{
  const ReelDbRec rec = reelWith({});
  EXPECT_EQ(stepsOf([&] { set(rec, nullptr); }), readText(reel, key));
  EXPECT_EQ(configText(reel, key.c_str()), "<absent>");
}

TEST_P(AttributeTexts, EmptyTextOnTheWordForNothingIsNotWritten)
{
  const ReelDbRec rec = reelWith({{key, nothing}});
  EXPECT_EQ(stepsOf([&] { set(rec, ""); }), readText(reel, key));
  EXPECT_EQ(heard, Heard());
  EXPECT_EQ(configText(reel, key.c_str()), nothing);
}

TEST_P(AttributeTexts, TheWordForNothingIsWrittenAgainAndNotified)
{
  const ReelDbRec rec = reelWith({{key, nothing}});
  EXPECT_EQ(stepsOf([&] { set(rec, nothing.c_str()); }), changed(readText(reel, key), key, nothing));
  EXPECT_EQ(heard, (Heard{"some(R1)"}));
}

TEST_P(AttributeTexts, TheWordForNothingOnAnAbsentKeyIsWritten)
{
  const ReelDbRec rec = reelWith({});
  set(rec, nothing.c_str());
  EXPECT_EQ(configText(reel, key.c_str()), nothing);
  EXPECT_EQ(get(rec), "");
  EXPECT_EQ(heard, (Heard{"some(R1)"}));
}

TEST_P(AttributeTexts, TextOnALogThatDoesNotOpenNotifiesNobody)
{
  const ReelDbRec rec = reelWith({});
  script().failOpen(reel);
  EXPECT_EQ(stepsOf([&] { set(rec, "text"); }), joined({failedOpen(reel), failedOpen(reel), failedOpen(reel)}));
  EXPECT_EQ(stepsOf([&] { set(rec, ""); }), failedOpen(reel));
}

// --- User fields ---------------------------------------------------------------------------------

TEST_F(Attributes, UserFieldKeyIsTheNumberInDecimal)
{
  ReelDbRec rec = reelWith({{"reel_userfield0", "zero"},
                            {"reel_userfield3", "three"},
                            {"reel_userfield10", "ten"},
                            {"reel_userfield-1", "minus one"},
                            {"reel_userfield2147483647", "most"},
                            {"reel_userfield-2147483648", "least"},
                            {"reel_userfield", "none"}});
  EXPECT_EQ(text(rec.userField(0)), "zero");
  EXPECT_EQ(text(rec.userField(3)), "three");
  EXPECT_EQ(text(rec.userField(10)), "ten");
  EXPECT_EQ(text(rec.userField(-1)), "minus one");
  EXPECT_EQ(text(rec.userField(INT_MAX)), "most");
  EXPECT_EQ(text(rec.userField(INT_MIN)), "least");
  EXPECT_EQ(text(rec.userField(1)), "");
  EXPECT_EQ(stepsOf([&] { rec.userField(3); }), readText(reel, "reel_userfield3"));
}

TEST_F(Attributes, UserFieldOfALogThatDoesNotOpenIsEmpty)
{
  ReelDbRec rec = reelWith({{"reel_userfield0", "zero"}});
  script().failOpen(reel);
  EXPECT_EQ(text(rec.userField(0)), "");
}

TEST_F(Attributes, UserFieldHasNoWordForNothing)
{
  ReelDbRec rec = reelWith({{"reel_userfield0", "unknown"}, {"reel_userfield1", "default"}});
  EXPECT_EQ(text(rec.userField(0)), "unknown");
  EXPECT_EQ(text(rec.userField(1)), "default");
}

TEST_F(Attributes, NewUserFieldIsWrittenAndNotified)
{
  ReelDbRec rec = reelWith({});
  for (const int n : {0, 5, -1, INT_MAX, INT_MIN}) {
    const std::string key = "reel_userfield" + std::to_string(n);
    EXPECT_EQ(stepsOf([&] { rec.userField(n, "text"); }), changed(readText(reel, key), key, "text"));
    EXPECT_EQ(configText(reel, key.c_str()), "text");
  }
  EXPECT_EQ(countOf(heard, "some(R1)"), 5);
}

TEST_F(Attributes, EqualUserFieldIsNeitherWrittenNorNotified)
{
  ReelDbRec rec = reelWith({{"reel_userfield2", "text"}});
  EXPECT_EQ(stepsOf([&] { rec.userField(2, "text"); }), readText(reel, "reel_userfield2"));
  EXPECT_EQ(stepsOf([&] { rec.userField(3, {}); }), readText(reel, "reel_userfield3"));
  EXPECT_EQ(stepsOf([&] { rec.userField(3, ""); }), readText(reel, "reel_userfield3"));
  EXPECT_EQ(heard, Heard());
}

TEST_F(Attributes, UserFieldThatDiffersInCaseIsWrittenAndNotified)
{
  ReelDbRec rec = reelWith({{"reel_userfield2", "text"}});
  rec.userField(2, "Text");
  EXPECT_EQ(configText(reel, "reel_userfield2"), "Text");
  EXPECT_EQ(heard, (Heard{"some(R1)"}));
}

TEST_F(Attributes, EmptyUserFieldReplacesAText)
{
  ReelDbRec rec = reelWith({{"reel_userfield2", "text"}});
  EXPECT_EQ(stepsOf([&] { rec.userField(2, {}); }), changed(readText(reel, "reel_userfield2"), "reel_userfield2", ""));
  EXPECT_EQ(configText(reel, "reel_userfield2"), "");
}

TEST_F(Attributes, LongUserFieldIsComparedAsItReads)
{
  const std::string longText(3000, 'u');
  ReelDbRec rec = reelWith({{"reel_userfield2", longText}});
  EXPECT_EQ(stepsOf([&] { rec.userField(2, longText.substr(0, 2047).c_str()); }), readText(reel, "reel_userfield2"));
  EXPECT_EQ(stepsOf([&] { rec.userField(2, longText.c_str()); }),
            changed(readText(reel, "reel_userfield2"), "reel_userfield2", longText));
}

TEST_F(Attributes, UserFieldOnALogThatDoesNotOpenNotifiesNobody)
{
  ReelDbRec rec = reelWith({});
  script().failOpen(reel);
  EXPECT_EQ(stepsOf([&] { rec.userField(0, "x"); }), joined({failedOpen(reel), failedOpen(reel), failedOpen(reel)}));
  EXPECT_EQ(stepsOf([&] { rec.userField(0, ""); }), failedOpen(reel));
}

// --- Notification --------------------------------------------------------------------------------

TEST_F(Attributes, ChangeIsNotifiedWithTheIdReadAfterIt)
{
  // A label mapping in the place of the identifier: the notification has the identifier as it is after the write.
  const char* const original = TR_LABEL_MAPPING;
  ReelDbRec rec = reelWith({});
  TR_LABEL_MAPPING = "reelid";
  rec.labelMapping("R2");
  TR_LABEL_MAPPING = original;
  EXPECT_EQ(heard, (Heard{"some(R2)"}));
}

TEST_F(Attributes, ChangeGoesToTheManagerOfTheProcess)
{
  ReelDbManager other;
  Heard othersHeard;
  ReelDbRec rec = reelWith({});
  {
    RecordingClient clientOfOther(othersHeard);
    manager().deRegisterClient(&clientOfOther);
    other.registerClient(&clientOfOther);
    rec.recInhibit(true);
    other.deRegisterClient(&clientOfOther);
  }
  EXPECT_EQ(heard, (Heard{"some(R1)"}));
  EXPECT_EQ(othersHeard, Heard());
}

TEST_F(Attributes, HeldNotificationIsNotSentButTheFieldIsWritten)
{
  ReelDbRec rec = reelWith({});
  manager().notifyHoldCount = 1;
  rec.recInhibit(true);
  EXPECT_EQ(heard, Heard());
  EXPECT_TRUE(rec.recInhibit());
}

TEST_F(Attributes, HandlerMayChangeAnotherField)
{
  ReelDbRec rec = reelWith({});
  client.onSome = [&](const std::string&) { rec.binName("from the handler"); };
  rec.recInhibit(true);
  EXPECT_EQ(heard, (Heard{"some(R1)", "some(R1)"}));
  EXPECT_EQ(text(rec.binName()), "from the handler");
}

TEST_F(Attributes, ExceptionOfAHandlerPassesWithEveryLogClosed)
{
  struct Mine {
    int number;
  };
  ReelDbRec rec = reelWith({}, "attributes test: old");
  client.onSome = [](const std::string&) { throw Mine{42}; };
  const std::function<void()> changes[] = {[&] { rec.recInhibit(true); },
                                           [&] { rec.reelAvailable(true); },
                                           [&] { rec.userField(0, "x"); },
                                           [&] { rec.labelMapping("map"); },
                                           [&] { rec.binName("bin"); },
                                           [&] { rec.lastDevice(L"device"); },
                                           [&] { rec.typeName("attributes test: new"); }};
  for (const auto& change : changes) {
    int caught = 0;
    try {
      change();
    } catch (const Mine& mine) {
      caught = mine.number;
    }
    EXPECT_EQ(caught, 42);
    EXPECT_EQ(reelhost::openLogs(), 0);
  }
}

// --- Last device ---------------------------------------------------------------------------------

TEST_F(Attributes, LastDeviceIsReadAsUtf8)
{
  ReelDbRec rec = reelWith({{"reel_last_device", eAcute + " \xE4\xB8\xAD \xF0\x9D\x84\x9E"}});
  EXPECT_STREQ(rec.lastDevice().c_str(), L"\x00E9 \x4E2D \x1D11E");
  EXPECT_EQ(stepsOf([&] { rec.lastDevice(); }), readText(reel, "reel_last_device"));
}

TEST_F(Attributes, LastDeviceThatIsNotUtf8IsStillRead)
{
  ReelDbRec rec = reelWith({{"reel_last_device", "a\xFF-\xC3"}});
  EXPECT_STREQ(rec.lastDevice().c_str(), L"a\xFFFD-\xFFFD");
}

TEST_F(Attributes, LastDeviceThatIsAbsentOrUnopenedIsEmpty)
{
  ReelDbRec rec = reelWith({});
  EXPECT_TRUE(rec.lastDevice().empty());
  rec = reelWith({{"reel_last_device", "Deck"}});
  script().failOpen(reel);
  EXPECT_TRUE(rec.lastDevice().empty());
  EXPECT_TRUE(ReelDbRec().lastDevice().empty());
}

TEST_F(Attributes, NewLastDeviceIsWrittenThenNotifiedThenGivesTheChannels)
{
  reelhost::DeviceSettings deck = device(4, eAcute + "ck");
  deck.audioInputs = 2;
  setDevices({deck});
  ReelDbRec rec = reelWith({});
  const Steps adds = {addChannel(reel, 2), addChannel(reel, 2), addChannel(reel, 1)};
  EXPECT_EQ(stepsOf([&] { rec.lastDevice(fromUTF8((eAcute + "ck").c_str())); }),
            joined({changed(readText(reel, "reel_last_device"), "reel_last_device", eAcute + "ck"),
                    channelsByDevice(reel, eAcute + "ck", 4, adds)}));
  EXPECT_EQ(configText(reel, "reel_last_device"), eAcute + "ck");
  EXPECT_EQ(channels(reel, 2), 2);
  EXPECT_EQ(channels(reel, 1), 1);
}

TEST_F(Attributes, HandlersOfANewLastDeviceRunWithTheLogClosedBeforeTheChannels)
{
  setDevices({device(4, "Deck")});
  ReelDbRec rec = reelWith({});
  int calls = 0;
  client.onSome = [&](const std::string&) {
    ++calls;
    EXPECT_EQ(reelhost::openLogs(), 0);
    EXPECT_EQ(channels(reel, 1), 0);
    EXPECT_STREQ(rec.lastDevice().c_str(), L"Deck");
  };
  rec.lastDevice(L"Deck");
  EXPECT_EQ(calls, 1);
  EXPECT_EQ(channels(reel, 1), 1);
}

TEST_F(Attributes, EqualLastDeviceDoesNothing)
{
  setDevices({device(4, "Deck")});
  ReelDbRec rec = reelWith({{"reel_last_device", "Deck"}});
  EXPECT_EQ(stepsOf([&] { rec.lastDevice(L"Deck"); }), readText(reel, "reel_last_device"));
  ReelDbRec without = reelWith({});
  EXPECT_EQ(stepsOf([&] { without.lastDevice(Wide()); }), readText(reel, "reel_last_device"));
  EXPECT_EQ(stepsOf([&] { without.lastDevice(L""); }), readText(reel, "reel_last_device"));
  EXPECT_EQ(heard, Heard());
}

TEST_F(Attributes, LastDeviceThatDiffersInCaseIsWritten)
{
  ReelDbRec rec = reelWith({{"reel_last_device", "Deck"}});
  rec.lastDevice(L"deck");
  EXPECT_EQ(configText(reel, "reel_last_device"), "deck");
}

TEST_F(Attributes, EmptyLastDeviceReplacesAName)
{
  ReelDbRec rec = reelWith({{"reel_last_device", "Deck"}});
  rec.lastDevice(Wide());
  EXPECT_EQ(configText(reel, "reel_last_device"), "");
  EXPECT_EQ(heard, (Heard{"some(R1)"}));
}

TEST_F(Attributes, LastDeviceOfALogThatDoesNotOpenNotifiesNobody)
{
  ReelDbRec rec = reelWith({});
  script().failOpen(reel);
  // Comparison, write, identifier, channels.
  EXPECT_EQ(stepsOf([&] { rec.lastDevice(L"Deck"); }),
            joined({failedOpen(reel), failedOpen(reel), failedOpen(reel), failedOpen(reel)}));
  EXPECT_EQ(stepsOf([&] { rec.lastDevice(Wide()); }), failedOpen(reel));
}

// --- Type ----------------------------------------------------------------------------------------

TEST_F(Attributes, TypeIsReadFromTheRow)
{
  ReelDbRec rec = reelWith({{"reel_type", "from the log"}}, "from the row");
  EXPECT_EQ(text(rec.typeName()), "from the row");
  EXPECT_EQ(stepsOf([&] { rec.typeName(); }), readType(reel));
}

TEST_F(Attributes, TypeWithoutCellOrRowOrDatabaseIsEmpty)
{
  ReelDbRec rec = reelWith({{"reel_type", "from the log"}});
  EXPECT_EQ(rec.typeName().c_str(), Text().c_str());
  rec = reelWith({}, "attributes test: type");
  script().noRow(reel);
  EXPECT_EQ(text(rec.typeName()), "");
  Steps withoutRow = readType(reel);
  withoutRow.erase(withoutRow.begin() + 4);
  EXPECT_EQ(stepsOf([&] { rec.typeName(); }), withoutRow);
  script().reset();
  script().noDatabase(true);
  EXPECT_EQ(text(rec.typeName()), "");
  EXPECT_EQ(stepsOf([&] { rec.typeName(); }), (Steps{readType(reel)[0]}));
}

TEST_F(Attributes, TypeOfALogThatDoesNotOpenIsThatOfItsRow)
{
  ReelDbRec rec = reelWith({}, "attributes test: type");
  script().failOpen(reel);
  EXPECT_EQ(text(rec.typeName()), "attributes test: type");
}

TEST_F(Attributes, TypeOfAnEmptyRecordIsEmpty)
{
  EXPECT_EQ(text(ReelDbRec().typeName()), "");
}

TEST_F(Attributes, NewTypeIsWrittenGivesTheChannelsAndIsThenNotified)
{
  theReelTypeManager()->add("attributes test: 2a1v", "VideoChannels=1 AudioChannels=2");
  ReelDbRec rec = reelWith({}, "attributes test: old");
  EXPECT_EQ(stepsOf([&] { rec.typeName("attributes test: 2a1v"); }),
            joined({readType(reel),
                    {open(reel), setReelType(reel, "attributes test: 2a1v"), dirty(reel)},
                    channelsByType(reel, {addChannel(reel, 2), addChannel(reel, 2), addChannel(reel, 1)}),
                    readId(reel),
                    {some("R1"), close(reel)}}));
  EXPECT_EQ(text(rec.typeName()), "attributes test: 2a1v");
}

TEST_F(Attributes, HandlersOfANewTypeRunWithTheLogOpenAndTheChannelsThere)
{
  theReelTypeManager()->add("attributes test: 2ch", "VideoChannels=1 AudioChannels=2");
  ReelDbRec rec = reelWith({}, "attributes test: old");
  int calls = 0;
  client.onSome = [&](const std::string&) {
    ++calls;
    EXPECT_EQ(reelhost::openLogs(), 1);
    EXPECT_EQ(channels(reel, 2), 2);
    EXPECT_EQ(channels(reel, 1), 1);
    EXPECT_EQ(text(rec.typeName()), "attributes test: 2ch");
  };
  rec.typeName("attributes test: 2ch");
  EXPECT_EQ(calls, 1);
  EXPECT_EQ(heard, (Heard{"some(R1)"}));
}

TEST_F(Attributes, EqualTypeDoesNothing)
{
  ReelDbRec rec = reelWith({}, "attributes test: type");
  EXPECT_EQ(stepsOf([&] { rec.typeName("attributes test: type"); }), readType(reel));
  ReelDbRec without = reelWith({});
  EXPECT_EQ(stepsOf([&] { without.typeName({}); }), readType(reel));
  EXPECT_EQ(stepsOf([&] { without.typeName(""); }), readType(reel));
  EXPECT_EQ(heard, Heard());
}

TEST_F(Attributes, TypeThatDiffersInCaseIsWritten)
{
  ReelDbRec rec = reelWith({}, "attributes test: dv");
  rec.typeName("attributes test: DV");
  EXPECT_EQ(text(rec.typeName()), "attributes test: DV");
  EXPECT_EQ(heard, (Heard{"some(R1)"}));
}

TEST_F(Attributes, EmptyTypeReplacesAType)
{
  ReelDbRec rec = reelWith({}, "attributes test: type");
  EXPECT_TRUE(inOrder(stepsOf([&] { rec.typeName({}); }), {setReelType(reel, ""), dirty(reel), some("R1")}));
  EXPECT_EQ(text(rec.typeName()), "");
}

TEST_F(Attributes, NewTypeWithoutNewChannelsRefreshesNoRow)
{
  theReelTypeManager()->add("attributes test: bare", "");
  ReelDbRec rec = reelWith({}, "attributes test: type");
  EXPECT_EQ(countOf(stepsOf([&] { rec.typeName("attributes test: bare"); }), update(reel)), 0);
}

TEST_F(Attributes, TypeThatTheRowLearnsLaterIsWrittenEachTime)
{
  script().viewFollows = reelhost::Script::ViewFollows::OnUpdate;
  theReelTypeManager()->add("attributes test: bare", "");
  ReelDbRec rec = reelWith({}, "attributes test: type");
  rec.typeName("attributes test: bare");
  EXPECT_EQ(text(rec.typeName()), "attributes test: type");
  rec.typeName("attributes test: bare");
  EXPECT_EQ(heard, (Heard{"some(R1)", "some(R1)"}));
}

TEST_F(Attributes, TypeOfALogThatDoesNotOpenNotifiesNobodyButReadsTheId)
{
  ReelDbRec rec = reelWith({}, "attributes test: type");
  script().failOpen(reel);
  EXPECT_EQ(stepsOf([&] { rec.typeName("attributes test: new"); }),
            joined({readType(reel), {open(reel)}, failedOpen(reel), {closeUnopened()}}));
  EXPECT_EQ(text(rec.typeName()), "attributes test: type");
  EXPECT_EQ(heard, Heard());
}

TEST_F(Attributes, TypeThatCannotBeWrittenIsNotifiedAnyway)
{
  ReelDbRec rec = reelWith({}, "attributes test: type");
  script().failOpenNumber(1);
  EXPECT_EQ(stepsOf([&] { rec.typeName("attributes test: new"); }),
            joined({readType(reel), {open(reel)}, readId(reel), {some("R1"), closeUnopened()}}));
  EXPECT_EQ(text(rec.typeName()), "attributes test: type");
}

TEST_F(Attributes, TypeOfAnEmptyRecordIsNotWritten)
{
  const Cookie none;
  ReelDbRec rec;
  const Steps steps = stepsOf([&] { rec.typeName("attributes test: type"); });
  EXPECT_TRUE(inOrder(steps, joined({{open(none)}, failedOpen(none), {closeUnopened()}})));
  EXPECT_EQ(heard, Heard());
}

TEST_F(Attributes, TypeWithoutADatabaseIsWrittenEachTime)
{
  ReelDbRec rec = reelWith({}, "attributes test: type");
  script().noDatabase(true);
  EXPECT_TRUE(inOrder(stepsOf([&] { rec.typeName("attributes test: type"); }),
                      {setReelType(reel, "attributes test: type"), dirty(reel), some("R1"), close(reel)}));
  EXPECT_EQ(stepsOf([&] { rec.typeName({}); }), (Steps{readType(reel)[0]}));
}

TEST_F(Attributes, SetterLeavesTheCallersTextAlone)
{
  ReelDbRec rec = reelWith({});
  const Text given = "text", other = given;
  rec.userField(0, given);
  rec.binName(given);
  rec.labelMapping(given);
  rec.reelId(given);
  EXPECT_STREQ(given.c_str(), "text");
  EXPECT_EQ(given.c_str(), other.c_str());
}

} // namespace
} // namespace reeldb_tests
