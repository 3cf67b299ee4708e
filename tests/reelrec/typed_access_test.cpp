// SPDX-License-Identifier: Apache-2.0
//
// The record object and its six accessors: values, out-arguments, and the host calls each makes.
#include <climits>
#include <type_traits>

#include "host/projdb.h"
#include "reelrec/config_access.h"
#include "reelrec/field_answer.h"
#include "reelrec/record_fixture.h"
#include "reelrec/text_equality.h"

namespace reeldb_tests {
namespace {

using Text = LightweightString<char>;

static_assert(std::is_base_of_v<Cookie, ReelDbRec>);
static_assert(sizeof(ReelDbRec) == sizeof(Cookie));
static_assert(!std::is_polymorphic_v<ReelDbRec>);
static_assert(std::is_convertible_v<Cookie, ReelDbRec>);
static_assert(std::is_copy_constructible_v<ReelDbRec> && std::is_copy_assignable_v<ReelDbRec>);

using TypedAccess = RecordTest;

/// A text whose body is its own and has room for @p room bytes.
Text withRoom(const char* text, std::size_t room)
{
  Text result = std::string(room, '-').c_str();
  result = text;
  return result;
}

/// Whether a string is empty because it has no body.
bool hasNoBody(const Text& text)
{
  return text.c_str() == Text().c_str();
}

// --- The record ----------------------------------------------------------------------------------

TEST_F(TypedAccess, NewRecordNamesNoLog)
{
  const ReelDbRec rec;
  EXPECT_FALSE(rec.valid());
  EXPECT_EQ(rec.kind(), 'I');
  EXPECT_EQ(rec.compare(Cookie()), 0);
}

TEST_F(TypedAccess, RecordOfACookieIsThatCookie)
{
  const Cookie reel = addReel("R1");
  const ReelDbRec rec(reel);
  EXPECT_TRUE(rec.valid());
  EXPECT_EQ(rec.compare(reel), 0);
  EXPECT_EQ(rec.kind(), reel.kind());
  EXPECT_EQ(text(rec), text(reel));
}

TEST_F(TypedAccess, CopyNamesTheSameReel)
{
  ReelDbRec rec = addReel("R1");
  ReelDbRec copy = rec;
  rec.setStringValInEdit("k", "v");
  Text out;
  EXPECT_TRUE(copy.getStringValFromEdit("k", out));
  EXPECT_STREQ(out.c_str(), "v");
}

TEST_F(TypedAccess, MakingARecordMakesNoHostCall)
{
  const Cookie reel = addReel("R1");
  EXPECT_EQ(stepsOf([&] { const ReelDbRec empty, rec(reel), copy(rec); }), Steps());
}

// --- Integers ------------------------------------------------------------------------------------

TEST_F(TypedAccess, StoredOneReadsAsOne)
{
  ReelDbRec rec = addReel("R1", {}, {{"n", "1"}});
  int out = 77;
  EXPECT_TRUE(rec.getIntValFromEdit("n", out));
  EXPECT_EQ(out, 1);
}

TEST_F(TypedAccess, MissingNumberLeavesThePreset)
{
  ReelDbRec rec = addReel("R1");
  int out = 77;
  EXPECT_FALSE(rec.getIntValFromEdit("n", out));
  EXPECT_EQ(out, 77);
}

TEST_F(TypedAccess, NumberIsWhatTheHostLeftInIt)
{
  ReelDbRec rec = addReel("R1", {}, {{"n", "1"}});
  script().configInt["n"] = {1, 7};
  int out = 77;
  EXPECT_FALSE(rec.getIntValFromEdit("n", out));
  EXPECT_EQ(out, 7);

  script().configInt["n"] = {0, std::nullopt};
  out = 78;
  EXPECT_TRUE(rec.getIntValFromEdit("n", out));
  EXPECT_EQ(out, 78);

  script().configInt["n"] = {-1, std::nullopt};
  EXPECT_FALSE(rec.getIntValFromEdit("n", out));
  EXPECT_EQ(out, 78);
}

TEST_F(TypedAccess, NumberOfALogThatDoesNotOpenIsLeftAlone)
{
  const Cookie reel = addReel("R1", {}, {{"n", "1"}});
  ReelDbRec rec = reel;
  script().failOpen(reel);
  int out = 77;
  EXPECT_EQ(stepsOf([&] { EXPECT_FALSE(rec.getIntValFromEdit("n", out)); }), failedOpen(reel));
  EXPECT_EQ(out, 77);
}

TEST_F(TypedAccess, ReadingANumberOpensReadsAndCloses)
{
  const Cookie reel = addReel("R1", {}, {{"n", "1"}});
  ReelDbRec rec = reel;
  int out = 0;
  EXPECT_EQ(stepsOf([&] {
              rec.getIntValFromEdit("n", out);
              rec.getIntValFromEdit("n", out);
            }),
            joined({readInt(reel, "n"), readInt(reel, "n")}));
}

TEST_F(TypedAccess, NumbersAreStoredAsDecimalText)
{
  const Cookie reel = addReel("R1");
  ReelDbRec rec = reel;
  const std::pair<int, const char*> cases[] = {
      {0, "0"}, {1, "1"}, {-5, "-5"}, {INT_MAX, "2147483647"}, {INT_MIN, "-2147483648"}};
  for (const auto& [value, stored] : cases) {
    rec.setIntValInEdit("n", value);
    EXPECT_EQ(configText(reel, "n"), stored);
    int out = 77;
    EXPECT_TRUE(rec.getIntValFromEdit("n", out));
    EXPECT_EQ(out, value);
  }
}

TEST_F(TypedAccess, WritingANumberOpensSetsMarksAndCloses)
{
  const Cookie reel = addReel("R1");
  ReelDbRec rec = reel;
  EXPECT_EQ(stepsOf([&] { rec.setIntValInEdit("n", INT_MIN); }), write(reel, "n", "-2147483648"));
}

TEST_F(TypedAccess, WritingANumberToALogThatDoesNotOpenDoesNothing)
{
  const Cookie reel = addReel("R1", {}, {{"n", "1"}});
  ReelDbRec rec = reel;
  script().failOpen(reel);
  EXPECT_EQ(stepsOf([&] { rec.setIntValInEdit("n", 2); }), failedOpen(reel));
  script().reset();
  EXPECT_EQ(configText(reel, "n"), "1");
}

// --- Fields --------------------------------------------------------------------------------------

TEST_F(TypedAccess, PresentFieldIsRead)
{
  ReelDbRec rec = addReel("R1", {}, {{"f", "text"}, {"e", ""}});
  strp_field out;
  EXPECT_TRUE(rec.getStrpFieldValFromEdit("f", out));
  EXPECT_STREQ(out.text(), "text");
  EXPECT_TRUE(rec.getStrpFieldValFromEdit("e", out));
  EXPECT_STREQ(out.text(), "");
}

TEST_F(TypedAccess, MissingFieldLeavesTheFieldAsItWas)
{
  ReelDbRec rec = addReel("R1");
  strp_field out, empty;
  out.set("old");
  EXPECT_FALSE(rec.getStrpFieldValFromEdit("f", out));
  EXPECT_STREQ(out.text(), "old");
  EXPECT_FALSE(rec.getStrpFieldValFromEdit("f", empty));
  EXPECT_EQ(empty.text(), nullptr);
}

TEST_F(TypedAccess, FieldIsWhatTheHostLeftInIt)
{
  ReelDbRec rec = addReel("R1", {}, {{"f", "text"}});
  strp_field out;
  {
    const FieldAnswer written(1, "written");
    EXPECT_FALSE(rec.getStrpFieldValFromEdit("f", out));
    EXPECT_STREQ(out.text(), "written");
  }
  {
    const FieldAnswer nothing(0, nullptr);
    EXPECT_TRUE(rec.getStrpFieldValFromEdit("f", out));
    EXPECT_STREQ(out.text(), "written");
  }
  {
    const FieldAnswer negative(-1, nullptr);
    EXPECT_FALSE(rec.getStrpFieldValFromEdit("f", out));
  }
}

TEST_F(TypedAccess, FieldOfALogThatDoesNotOpenIsLeftAlone)
{
  const Cookie reel = addReel("R1", {}, {{"f", "text"}});
  ReelDbRec rec = reel;
  script().failOpen(reel);
  strp_field out;
  out.set("old");
  EXPECT_EQ(stepsOf([&] { EXPECT_FALSE(rec.getStrpFieldValFromEdit("f", out)); }), failedOpen(reel));
  EXPECT_STREQ(out.text(), "old");
}

TEST_F(TypedAccess, ReadingAFieldOpensReadsAndCloses)
{
  const Cookie reel = addReel("R1");
  ReelDbRec rec = reel;
  strp_field out;
  EXPECT_EQ(stepsOf([&] { rec.getStrpFieldValFromEdit("f", out); }), (Steps{open(reel), inField("f"), close(reel)}));
}

TEST_F(TypedAccess, WritingAFieldOpensSetsMarksAndCloses)
{
  const Cookie reel = addReel("R1");
  ReelDbRec rec = reel;
  EXPECT_EQ(stepsOf([&] { rec.setStrpFieldValInEdit("f", "text"); }),
            (Steps{open(reel), setField("f", "text"), dirty(reel), close(reel)}));
  EXPECT_EQ(configText(reel, "f"), "text");
}

TEST_F(TypedAccess, WritingANullFieldWritesTheEmptyText)
{
  const Cookie reel = addReel("R1", {}, {{"f", "text"}});
  ReelDbRec rec = reel;
  EXPECT_EQ(stepsOf([&] { rec.setStrpFieldValInEdit("f", {}); }),
            (Steps{open(reel), setField("f", ""), dirty(reel), close(reel)}));
  EXPECT_EQ(configText(reel, "f"), "");
}

TEST_F(TypedAccess, WritingAFieldToALogThatDoesNotOpenDoesNothing)
{
  const Cookie reel = addReel("R1", {}, {{"f", "text"}});
  ReelDbRec rec = reel;
  script().failOpen(reel);
  EXPECT_EQ(stepsOf([&] { rec.setStrpFieldValInEdit("f", "new"); }), failedOpen(reel));
  script().reset();
  EXPECT_EQ(configText(reel, "f"), "text");
}

// --- Strings -------------------------------------------------------------------------------------

TEST_F(TypedAccess, PresentStringIsRead)
{
  ReelDbRec rec = addReel("R1", {}, {{"s", "caf\xC3\xA9"}});
  Text out = "old and longer than the new text";
  EXPECT_TRUE(rec.getStringValFromEdit("s", out));
  EXPECT_STREQ(out.c_str(), "caf\xC3\xA9");
  EXPECT_EQ(out.length(), 5u);
}

TEST_F(TypedAccess, MissingStringClearsTheOldText)
{
  ReelDbRec rec = addReel("R1");
  Text out = "old";
  EXPECT_FALSE(rec.getStringValFromEdit("s", out));
  EXPECT_TRUE(hasNoBody(out));
}

TEST_F(TypedAccess, PresentEmptyStringIsFoundAndEmpty)
{
  ReelDbRec rec = addReel("R1", {}, {{"s", ""}});
  Text out = "old";
  EXPECT_TRUE(rec.getStringValFromEdit("s", out));
  EXPECT_TRUE(hasNoBody(out));
}

TEST_F(TypedAccess, StringOfALogThatDoesNotOpenIsLeftAlone)
{
  const Cookie reel = addReel("R1", {}, {{"s", "text"}});
  ReelDbRec rec = reel;
  script().failOpen(reel);
  Text out = "old";
  EXPECT_EQ(stepsOf([&] { EXPECT_FALSE(rec.getStringValFromEdit("s", out)); }), failedOpen(reel));
  EXPECT_STREQ(out.c_str(), "old");
}

TEST_F(TypedAccess, StringIsWhatTheHostWroteWhateverItReturned)
{
  ReelDbRec rec = addReel("R1", {}, {{"s", "text"}});
  script().configText["s"] = {1, "written"};
  Text out = "old";
  EXPECT_FALSE(rec.getStringValFromEdit("s", out));
  EXPECT_STREQ(out.c_str(), "written");

  script().configText["s"] = {0, std::nullopt};
  EXPECT_TRUE(rec.getStringValFromEdit("s", out));
  EXPECT_TRUE(hasNoBody(out));

  script().configText["s"] = {-1, "again"};
  EXPECT_FALSE(rec.getStringValFromEdit("s", out));
  EXPECT_STREQ(out.c_str(), "again");
}

TEST_F(TypedAccess, BufferIsZeroThroughout)
{
  ReelDbRec rec = addReel("R1", {}, {{"s", std::string(3000, 'x')}});
  Text out;
  rec.getStringValFromEdit("s", out);
  rec.getStringValFromEdit("t", out);
  EXPECT_TRUE(script().configBufferWasZero);
}

TEST_F(TypedAccess, AtMost2047BytesAreRead)
{
  for (const std::size_t length : {2046u, 2047u, 2048u, 3000u}) {
    ReelDbRec rec = addReel("R1", {}, {{"s", std::string(length, 'x')}});
    Text out;
    EXPECT_TRUE(rec.getStringValFromEdit("s", out));
    EXPECT_EQ(text(out), std::string(std::min<std::size_t>(length, 2047), 'x'));
  }
}

TEST_F(TypedAccess, AStringThatSharedTheOldTextKeepsIt)
{
  ReelDbRec rec = addReel("R1", {}, {{"s", "new"}});
  Text out = "old text", other = out;
  rec.getStringValFromEdit("s", out);
  EXPECT_STREQ(out.c_str(), "new");
  EXPECT_STREQ(other.c_str(), "old text");

  Text cleared = other;
  rec.getStringValFromEdit("missing", cleared);
  EXPECT_STREQ(cleared.c_str(), "");
  EXPECT_STREQ(other.c_str(), "old text");
}

TEST_F(TypedAccess, UnsharedTextWithRoomIsOverwrittenInPlace)
{
  ReelDbRec rec = addReel("R1", {}, {{"s", "new"}});
  Text out = withRoom("old", 100);
  const char* const body = out.c_str();
  rec.getStringValFromEdit("s", out);
  EXPECT_STREQ(out.c_str(), "new");
  EXPECT_EQ(out.c_str(), body);
}

TEST_F(TypedAccess, ReadingAStringOpensReadsAndCloses)
{
  const Cookie reel = addReel("R1");
  ReelDbRec rec = reel;
  Text out;
  EXPECT_EQ(stepsOf([&] { rec.getStringValFromEdit("s", out); }), readText(reel, "s"));
}

TEST_F(TypedAccess, WritingAStringOpensSetsMarksAndCloses)
{
  const Cookie reel = addReel("R1");
  ReelDbRec rec = reel;
  EXPECT_EQ(stepsOf([&] { rec.setStringValInEdit("s", "text"); }), write(reel, "s", "text"));
  EXPECT_EQ(configText(reel, "s"), "text");
}

TEST_F(TypedAccess, WritingAnEqualStringWritesAgain)
{
  const Cookie reel = addReel("R1", {}, {{"s", "text"}, {"n", "1"}});
  ReelDbRec rec = reel;
  EXPECT_EQ(stepsOf([&] {
              rec.setStringValInEdit("s", "text");
              rec.setIntValInEdit("n", 1);
            }),
            joined({write(reel, "s", "text"), write(reel, "n", "1")}));
}

TEST_F(TypedAccess, WritingANullStringWritesTheEmptyText)
{
  const Cookie reel = addReel("R1", {}, {{"s", "text"}});
  ReelDbRec rec = reel;
  EXPECT_EQ(stepsOf([&] { rec.setStringValInEdit("s", {}); }), write(reel, "s", ""));
  EXPECT_EQ(configText(reel, "s"), "");
}

TEST_F(TypedAccess, WritingAStringToALogThatDoesNotOpenDoesNothing)
{
  const Cookie reel = addReel("R1", {}, {{"s", "text"}});
  ReelDbRec rec = reel;
  script().failOpen(reel);
  EXPECT_EQ(stepsOf([&] { rec.setStringValInEdit("s", "new"); }), failedOpen(reel));
  script().reset();
  EXPECT_EQ(configText(reel, "s"), "text");
}

TEST_F(TypedAccess, LongStringIsStoredWhole)
{
  const Cookie reel = addReel("R1");
  ReelDbRec rec = reel;
  rec.setStringValInEdit("s", std::string(5000, 'x').c_str());
  EXPECT_EQ(configText(reel, "s"), std::string(5000, 'x'));
}

// --- All accessors -------------------------------------------------------------------------------

TEST_F(TypedAccess, NullKeyIsTheEmptyKey)
{
  const Cookie reel = addReel("R1");
  ReelDbRec rec = reel;
  EXPECT_EQ(stepsOf([&] { rec.setStringValInEdit(static_cast<const char*>(nullptr), "5"); }), write(reel, "", "5"));
  EXPECT_EQ(configText(reel, ""), "5");
  int number = 0;
  strp_field field;
  Text string;
  EXPECT_TRUE(rec.getIntValFromEdit({}, number));
  EXPECT_TRUE(rec.getStrpFieldValFromEdit({}, field));
  EXPECT_TRUE(rec.getStringValFromEdit({}, string));
  EXPECT_EQ(number, 5);
  EXPECT_STREQ(field.text(), "5");
  EXPECT_STREQ(string.c_str(), "5");
  rec.setIntValInEdit({}, 6);
  EXPECT_EQ(configText(reel, ""), "6");
  rec.setStrpFieldValInEdit({}, "7");
  EXPECT_EQ(configText(reel, ""), "7");
}

TEST_F(TypedAccess, AnEmptyRecordReadsAndWritesNothing)
{
  ReelDbRec rec;
  const Cookie none;
  int number = 77;
  strp_field field;
  field.set("old");
  Text string = "old";
  EXPECT_EQ(stepsOf([&] {
              EXPECT_FALSE(rec.getIntValFromEdit("k", number));
              EXPECT_FALSE(rec.getStrpFieldValFromEdit("k", field));
              EXPECT_FALSE(rec.getStringValFromEdit("k", string));
              rec.setIntValInEdit("k", 1);
              rec.setStrpFieldValInEdit("k", "v");
              rec.setStringValInEdit("k", "v");
            }),
            joined({failedOpen(none), failedOpen(none), failedOpen(none), failedOpen(none), failedOpen(none),
                    failedOpen(none)}));
  EXPECT_EQ(number, 77);
  EXPECT_STREQ(field.text(), "old");
  EXPECT_STREQ(string.c_str(), "old");
  EXPECT_FALSE(rec.valid());
}

TEST_F(TypedAccess, WritingNotifiesNobodyAndKeepsTheCookie)
{
  const Cookie reel = addReel("R1");
  ReelDbRec rec = reel;
  heard.clear();
  rec.setIntValInEdit(TR_REC_INHIBIT_FLAG, 1);
  rec.setStrpFieldValInEdit(TR_REEL_ID, "R2");
  rec.setStringValInEdit(TR_BIN_NAME, "bin");
  EXPECT_EQ(heard, Heard());
  EXPECT_EQ(rec.compare(reel), 0);
}

TEST_F(TypedAccess, OutArgumentsKeepTheirValuesWhenAHostCallThrows)
{
  ReelDbRec rec = addReel("R1", {}, {{"k", "1"}});
  int number = 77;
  strp_field field;
  field.set("old");
  Text string = "old";
  for (std::int64_t n = 1; n <= 2; ++n) {
    script().throwAt(n);
    EXPECT_THROW(rec.getIntValFromEdit("k", number), reelhost::ScriptedFault);
    script().throwAt(n);
    EXPECT_THROW(rec.getStrpFieldValFromEdit("k", field), reelhost::ScriptedFault);
    script().throwAt(n);
    EXPECT_THROW(rec.getStringValFromEdit("k", string), reelhost::ScriptedFault);
  }
  EXPECT_EQ(number, 77);
  EXPECT_STREQ(field.text(), "old");
  EXPECT_STREQ(string.c_str(), "old");
}

TEST_F(TypedAccess, AThrowingOpenIsClosedToo)
{
  const Cookie reel = addReel("R1");
  ReelDbRec rec = reel;
  int number = 0;
  script().throwAt(1);
  EXPECT_EQ(stepsOf([&] { EXPECT_THROW(rec.getIntValFromEdit("k", number), reelhost::ScriptedFault); }),
            failedOpen(reel));
}

// --- The two meanings of configb::in -------------------------------------------------------------

TEST_F(TypedAccess, PresenceAndTextOfAKeyAreDistinguished)
{
  configb& options = EditManager::ProjOpts();
  options.set("present", "text", nullptr);
  options.set("empty", "", nullptr);
  EXPECT_TRUE(reeldb::hasKey(options, "present"));
  EXPECT_TRUE(reeldb::hasKey(options, "empty"));
  EXPECT_FALSE(reeldb::hasKey(options, "absent"));
  EXPECT_STREQ(reeldb::textOf(options, "present").c_str(), "text");
  EXPECT_TRUE(hasNoBody(reeldb::textOf(options, "empty")));
  EXPECT_TRUE(hasNoBody(reeldb::textOf(options, "absent")));
}

TEST_F(TypedAccess, EqualTextsAreEqualLetterForLetter)
{
  using Wide = LightweightString<wchar_t>;
  EXPECT_TRUE(reeldb::sameText(Text(), Text("")));
  EXPECT_TRUE(reeldb::sameText(withRoom("", 10), Text()));
  EXPECT_TRUE(reeldb::sameText(Text("a"), Text("a")));
  EXPECT_FALSE(reeldb::sameText(Text("a"), Text("A")));
  EXPECT_FALSE(reeldb::sameText(Text("a"), Text("ab")));
  EXPECT_FALSE(reeldb::sameText(Text(), Text("a")));
  EXPECT_TRUE(reeldb::sameText(Wide(), Wide(L"")));
  EXPECT_TRUE(reeldb::sameText(Wide(L"\x4E2D"), Wide(L"\x4E2D")));
  EXPECT_FALSE(reeldb::sameText(Wide(L"a"), Wide(L"A")));
  EXPECT_FALSE(reeldb::sameText(Wide(L"a"), Wide(L"ab")));
  EXPECT_FALSE(reeldb::sameText(Wide(), Wide(L"a")));
}

} // namespace
} // namespace reeldb_tests
