// SPDX-License-Identifier: Apache-2.0
#include <stdexcept>

#include "ReelDbRec.h"
#include "reeldb/changes_fixture.h"

namespace reeldb_tests {

namespace {

class LogTypes : public ChangesTest {
protected:
  bool containsReels(std::initializer_list<Cookie> logs)
  {
    CookieSet set;
    for (const Cookie& log : logs)
      set.insert(log);
    return manager().doesCookieSetContainReels(set);
  }

  bool isReel(const Cookie& log) { return containsReels({log}); }

  /// The logs that are left, and whether any was removed.
  struct Removal {
    Lines left;
    bool removed;
    bool operator==(const Removal&) const = default;
  };
  Removal removeReels(std::initializer_list<Cookie> logs)
  {
    CookieVec v = cookies(logs);
    const bool removed = manager().removeReelsFromCookieSet(v);
    return {texts(v), removed};
  }

  static Lines rowRead(const std::string& log, const std::string& type, const std::string& number)
  {
    return {"projdb::operator[](" + log + ") -> row", "dbrecord::get_field(" + log + ", 1) -> " + type,
            "Edit::getLogTypeFromString(" + (type == "null" ? "\"\"" : type) + ") -> " + number};
  }

  const Lines columnLookup = {"EditManager::getProjdb() -> database", "projdb::findField(\"Type\") -> 1"};
};

// --- What is a reel: where the type comes from ---------------------------------------------------

TEST_F(LogTypes, RowsTypeDecidesWithoutOpeningTheLog)
{
  const Cookie reel = addReel("A001");
  const Cookie shot = addShot("A001");
  EXPECT_EQ(listing(linesOf([&] { EXPECT_TRUE(isReel(reel)); }), {{reel, "reel"}}),
            listing(join({columnLookup, rowRead("reel", "\"Reel\"", "9")})));
  EXPECT_EQ(listing(linesOf([&] { EXPECT_FALSE(isReel(shot)); }), {{shot, "shot"}}),
            listing(join({columnLookup, rowRead("shot", "\"Material\"", "1")})));
}

TEST_F(LogTypes, LogThatIsInTheSetTwiceIsReadTwice)
{
  const Cookie reel = addReel("A001");
  const Lines lines = linesOf([&] { EXPECT_EQ(removeReels({reel, reel}), (Removal{{}, true})); });
  const Lines row = rowRead("reel", "\"Reel\"", "9");
  EXPECT_EQ(listing(lines, {{reel, "reel"}}), listing(join({columnLookup, row, row})));
}

TEST_F(LogTypes, RowsTypeWinsOverTheLogsOwn)
{
  const Cookie reel = addReel("A001");
  const Cookie shot = addShot("A001");
  script().typeField(reel, "Material");
  script().typeField(shot, "Reel");
  EXPECT_FALSE(isReel(reel));
  EXPECT_TRUE(isReel(shot));
}

TEST_F(LogTypes, RowWithoutATypeIsNotAReelAndTheLogIsNotOpened)
{
  const Cookie reel = addReel("A001");
  script().typeField(reel, std::nullopt);
  EXPECT_EQ(listing(linesOf([&] { EXPECT_FALSE(isReel(reel)); }), {{reel, "reel"}}),
            listing(join({columnLookup, rowRead("reel", "null", "0")})));
}

TEST_F(LogTypes, LogWithoutARowIsOpenedForItsType)
{
  const Cookie reel = addReel("A001");
  const Cookie shot = addShot("A001");
  script().noRow(reel);
  script().noRow(shot);
  EXPECT_EQ(
      listing(linesOf([&] { EXPECT_TRUE(isReel(reel)); }), {{reel, "reel"}}),
      listing(join(
          {columnLookup, {"projdb::operator[](reel) -> null"}, withLog("reel", {"Edit::getLogType(reel) -> 9"})})));
  EXPECT_FALSE(isReel(shot));
}

TEST_F(LogTypes, WithoutADatabaseLogsAreOpenedForTheirTypeAndNoColumnIsLookedUp)
{
  const Cookie reel = addReel("A001");
  const Cookie shot = addShot("A001");
  script().noDatabase(true);
  EXPECT_EQ(listing(linesOf([&] { EXPECT_TRUE(isReel(reel)); }), {{reel, "reel"}}),
            listing(join({{"EditManager::getProjdb() -> null"}, withLog("reel", {"Edit::getLogType(reel) -> 9"})})));
  EXPECT_FALSE(isReel(shot));
}

TEST_F(LogTypes, LogThatDoesNotOpenIsNotAReelAndIsClosedAnyway)
{
  const Cookie reel = addReel("A001");
  script().noRow(reel);
  script().failOpen(reel);
  EXPECT_EQ(listing(linesOf([&] { EXPECT_FALSE(isReel(reel)); }), {{reel, "reel"}}),
            listing(join({columnLookup,
                          {"projdb::operator[](reel) -> null", "EditPtr::i_open(reel, 0) -> not opened",
                           "EditPtr::i_close()"}})));
}

TEST_F(LogTypes, LogThatDoesNotOpenButHasARowIsAReel)
{
  const Cookie reel = addReel("A001");
  script().failOpen(reel);
  EXPECT_TRUE(isReel(reel));
}

TEST_F(LogTypes, OtherTypesAreNotReels)
{
  for (int type : {0, 1, 2, 8, 10}) {
    const Cookie log = addLog(type, "A001");
    EXPECT_FALSE(isReel(log)) << type;
    script().noRow(log);
    EXPECT_FALSE(isReel(log)) << type << ", by the log itself";
  }
}

TEST_F(LogTypes, InvalidCookieIsLookedForLikeAnyOther)
{
  const Lines lines = linesOf([this] { EXPECT_FALSE(isReel(Cookie())); });
  EXPECT_EQ(listing(lines, {{Cookie(), "none"}}),
            listing(join({columnLookup,
                          {"projdb::operator[](none) -> null", "EditPtr::i_open(none, 0) -> not opened",
                           "EditPtr::i_close()"}})));
}

// --- Does a set contain reels? -------------------------------------------------------------------

TEST_F(LogTypes, SetContainsReelsWhenOneMemberIsAReel)
{
  const Cookie shot = addShot("A001");
  const Cookie reel = addReel("A001");
  EXPECT_TRUE(containsReels({shot, reel}));
  EXPECT_TRUE(containsReels({reel, shot}));
  EXPECT_FALSE(containsReels({shot}));
}

TEST_F(LogTypes, EmptySetContainsNoReelsAndStillLooksTheColumnUp)
{
  EXPECT_EQ(linesOf([&] { EXPECT_FALSE(containsReels({})); }), columnLookup);
}

TEST_F(LogTypes, WalkEndsAtTheFirstReelAndTheColumnIsLookedUpOnce)
{
  const Cookie shot = addShot("A001");
  const Cookie first = addReel("A001");
  const Cookie second = addReel("A002");
  const Lines lines = linesOf([&] { containsReels({shot, first, second}); });
  EXPECT_EQ(listing(lines, {{shot, "shot"}, {first, "first"}}),
            listing(join({columnLookup, rowRead("shot", "\"Material\"", "1"), rowRead("first", "\"Reel\"", "9")})));
}

// --- Removing reels ------------------------------------------------------------------------------

TEST_F(LogTypes, AdjacentReelsAreAllRemovedAndShotsKeepTheirOrder)
{
  const Cookie a = addReel("A001");
  const Cookie b = addReel("B001");
  const Cookie c = addReel("C001");
  const Cookie s = addShot("A001");
  const Cookie t = addShot("B001");
  EXPECT_EQ(removeReels({a, b, s}), (Removal{{text(s)}, true}));
  EXPECT_EQ(removeReels({t, a, b, s, c}), (Removal{{text(t), text(s)}, true}));
  EXPECT_EQ(removeReels({s, a, b, c}), (Removal{{text(s)}, true}));
  EXPECT_EQ(removeReels({a}), (Removal{{}, true}));
}

TEST_F(LogTypes, WithoutReelsNothingIsRemoved)
{
  const Cookie s = addShot("A001");
  EXPECT_EQ(removeReels({s}), (Removal{{text(s)}, false}));
  EXPECT_EQ(removeReels({}), (Removal{{}, false}));
  EXPECT_EQ(removeReels({s, Cookie(), s}), (Removal{{text(s), text(Cookie()), text(s)}, false}));
}

TEST_F(LogTypes, ReelsThatAreListedTwiceAreRemovedTwice)
{
  const Cookie a = addReel("A001");
  const Cookie s = addShot("A001");
  EXPECT_EQ(removeReels({a, s, a, s, a}), (Removal{{text(s), text(s)}, true}));
}

TEST_F(LogTypes, OtherHoldersOfTheVectorKeepTheirReels)
{
  const Cookie a = addReel("A001");
  const Cookie s = addShot("A001");
  CookieVec v = cookies({a, s});
  const CookieVec copy = v;
  EXPECT_TRUE(manager().removeReelsFromCookieSet(v));
  EXPECT_EQ(texts(v), Lines{text(s)});
  EXPECT_EQ(texts(copy), (Lines{text(a), text(s)}));
}

TEST_F(LogTypes, RemovalLooksTheColumnUpOnceAndAtEachLogOnce)
{
  const Cookie a = addReel("A001");
  const Cookie s = addShot("A001");
  const Lines lines = linesOf([&] { removeReels({a, s}); });
  EXPECT_EQ(listing(lines, {{a, "a"}, {s, "s"}}),
            listing(join({columnLookup, rowRead("a", "\"Reel\"", "9"), rowRead("s", "\"Material\"", "1")})));
  EXPECT_EQ(linesOf([&] { removeReels({}); }), columnLookup);
}

// --- What is a reel: host calls that fail --------------------------------------------------------

TEST_F(LogTypes, FailedRemovalLeavesEachLogThatWasNotYetSeen)
{
  Cookie a, b, s;
  const int failed = failEachHostCall(
      [&] {
        a = addReel("A001");
        b = addReel("B001");
        s = addShot("A001");
      },
      [&] {
        CookieVec v = cookies({a, b, s});
        try {
          manager().removeReelsFromCookieSet(v);
        } catch (...) {
          EXPECT_EQ(v[v.count() - 1].compare(s), 0);
          throw;
        }
      },
      [&] {
        EXPECT_EQ(removeReels({a, s}), (Removal{{text(s)}, true}));
      });
  EXPECT_EQ(failed, 11);
}

// --- Which logs count as a reel's shots ----------------------------------------------------------

class ShotSearch : public ChangesTest {
protected:
  Lines shotsOf(const Cookie& reel)
  {
    CookieVec out;
    manager().addShotsFromReel(reel, out);
    return texts(out);
  }
};

TEST_F(ShotSearch, DatabaseIsSearchedForTheReelsIdentifier)
{
  const Cookie reel = addReel("A001");
  const Cookie shot = addShot("a001");
  const Lines lines = linesOf([&] { EXPECT_EQ(shotsOf(reel), Lines{text(shot)}); });
  EXPECT_EQ(listing(lines, {{reel, "reel"}, {shot, "shot"}}),
            listing(join({idRead("reel", "A001"),
                          {"EditManager::getProjdb() -> database"},
                          shotSearch("A001", "1 log"),
                          attributeRead("shot", "a001"),
                          {"vorn_printf(\"Preparing to delete: shot from Reel: A001\\n\")"}})));
}

TEST_F(ShotSearch, NearMatchesAreComparedAgainAndLeftOutInSilence)
{
  const Cookie reel = addReel("A001");
  const Cookie longer = addShot("A0011");
  const Cookie shorter = addShot("A00");
  const Cookie none = addShot("");
  const Cookie empty = addShot("x");
  const Cookie match = addShot("a001");
  script().attribute(empty, "");
  script().attributeSearchResult = cookies({longer, match, shorter, none, empty, Cookie()});
  EXPECT_EQ(printedBy([&] { EXPECT_EQ(shotsOf(reel), Lines{text(match)}); }),
            Lines{"\"Preparing to delete: " + text(match) + " from Reel: A001\\n\""});
}

TEST_F(ShotSearch, MatchesKeepTheOrderOfTheSearch)
{
  const Cookie reel = addReel("A001");
  const Cookie one = addShot("A001");
  const Cookie two = addShot("A001");
  script().attributeSearchResult = cookies({two, one, two});
  EXPECT_EQ(shotsOf(reel), (Lines{text(two), text(one), text(two)}));
}

TEST_F(ShotSearch, OnlyAsciiLettersAreComparedWithoutCase)
{
  const Cookie reel = addReel("\xc3\x89");
  const Cookie lower = addShot("\xc3\xa9");
  script().attributeSearchResult = cookies({lower});
  EXPECT_EQ(shotsOf(reel), Lines{});
}

TEST_F(ShotSearch, AnyKindOfLogTheSearchReturnsCountsTheReelItselfToo)
{
  const Cookie reel = addReel("A001");
  const Cookie other = addLog(2, "A001");
  script().attributeSearchResult = cookies({reel, other});
  EXPECT_EQ(shotsOf(reel), (Lines{text(reel), text(other)}));
}

TEST_F(ShotSearch, AttributeDecidesNotTheConfiguration)
{
  const Cookie reel = addReel("A001");
  const Cookie shot = addShot("A001");
  script().attribute(shot, "A002");
  EXPECT_EQ(shotsOf(reel), Lines{});
}

TEST_F(ShotSearch, EmptyIdentifierMatchesLogsWithoutOne)
{
  const Cookie reel = addReel("");
  const Cookie none = addShot("");
  const Cookie some = addShot("A001");
  EXPECT_EQ(shotsOf(reel), Lines{}) << "this host returns nothing for an empty identifier";
  script().attributeSearchResult = cookies({none, some});
  EXPECT_EQ(shotsOf(reel), Lines{text(none)});
}

TEST_F(ShotSearch, ReelThatDoesNotOpenIsSearchedForByTheEmptyIdentifier)
{
  const Cookie reel = addReel("A001");
  const Cookie none = addShot("");
  script().failOpen(reel);
  script().attributeSearchResult = cookies({none});
  EXPECT_EQ(shotsOf(reel), Lines{text(none)});
}

class Shots : public ChangesTest {
protected:
  Lines referenced(std::initializer_list<Cookie> shots) { return texts(manager().getReelsReferenced(cookies(shots))); }

  Lines doomed(std::initializer_list<Cookie> selection)
  {
    return texts(manager().buildSetOfReelsAndAssociatedShots(cookies(selection)));
  }

  static std::string preparing(const Cookie& shot, const std::string& id)
  {
    return "\"Preparing to delete: " + text(shot) + " from Reel: " + id + "\\n\"";
  }

  static std::string keptBack(const std::string& id)
  {
    return "\"Couldn't delete reel: " + id + " because it was marked as in use.\\n\"";
  }
};

// --- The reels that shots name -------------------------------------------------------------------

TEST_F(Shots, ReelIsNamedOncePerShotInTheOrderOfTheShots)
{
  const Cookie a = addReel("A001");
  const Cookie b = addReel("B001");
  const Cookie ofA = addShot("A001");
  const Cookie ofB = addShot("B001");
  const Cookie alsoOfA = addShot("a001");
  EXPECT_EQ(referenced({ofB, ofA, alsoOfA}), (Lines{text(b), text(a), text(a)}));
}

TEST_F(Shots, ShotsWithoutAKnownReelAreSkipped)
{
  const Cookie a = addReel("A001");
  const Cookie none = addShot("");
  const Cookie unknown = addShot("gone");
  const Cookie closed = addShot("A001");
  const Cookie ofA = addShot("A001");
  script().failOpen(closed);
  EXPECT_EQ(referenced({none, unknown, closed, Cookie(), ofA}), Lines{text(a)});
}

TEST_F(Shots, WithoutReelsNoShotIsLookedAt)
{
  const Cookie shot = addShot("A001");
  EXPECT_EQ(linesOf([&] { EXPECT_EQ(referenced({shot}), Lines{}); }), Lines{});
}

TEST_F(Shots, WithoutShotsNoReelIsLookedAt)
{
  addReel("A001");
  EXPECT_EQ(linesOf([&] { EXPECT_EQ(referenced({}), Lines{}); }), Lines{});
}

TEST_F(Shots, HostCallsOfTheReelsReferenced)
{
  const Cookie a = addReel("A001");
  const Cookie b = addReel("B001");
  const Cookie ofB = addShot("b001");
  const Cookie none = addShot("");
  const Lines lines = linesOf([&] { referenced({ofB, none}); });
  EXPECT_EQ(listing(lines, {{a, "a"}, {b, "b"}, {ofB, "ofB"}, {none, "none"}}),
            listing(join({attributeRead("ofB", "b001"), attributeRead("a", "A001"), attributeRead("b", "B001"),
                          attributeRead("none", "")})));
}

TEST_F(Shots, OtherManagerHasItsOwnListButLooksReelsUpInTheProcesssManager)
{
  const Cookie a = addReel("A001");
  const Cookie shot = addShot("A001");
  ReelDbManager other;
  EXPECT_EQ(other.getReelsReferenced(cookies({shot})).count(), 0) << "its own list is empty";
  other.reelList = cookies({Cookie("X1", false)});
  EXPECT_EQ(texts(other.getReelsReferenced(cookies({shot}))), Lines{text(a)});
}

// --- The shots of a reel -------------------------------------------------------------------------

TEST_F(Shots, ShotsOfTheReelAreAppendedInAnyCaseAndPrinted)
{
  const Cookie reel = addReel("A001");
  const Cookie one = addShot("A001");
  addShot("A002");
  const Cookie two = addShot("a001");
  const Cookie before = addShot("");
  CookieVec out = cookies({before});
  EXPECT_EQ(printedBy([&] { manager().addShotsFromReel(reel, out); }),
            (Lines{preparing(one, "A001"), preparing(two, "A001")}));
  EXPECT_EQ(texts(out), (Lines{text(before), text(one), text(two)}));
}

TEST_F(Shots, ShotIsInTheSetAlreadyWhenItsPrintFails)
{
  const Cookie reel = addReel("A001");
  const Cookie shot = addShot("A001");
  script().before = [](const std::string& operation, const std::string&) {
    if (operation == "vorn_printf")
      throw reelhost::ScriptedFault("print");
  };
  CookieVec out;
  EXPECT_THROW(manager().addShotsFromReel(reel, out), reelhost::ScriptedFault);
  script().before = nullptr;
  EXPECT_EQ(texts(out), Lines{text(shot)});
}

TEST_F(Shots, PercentSignsArePrintedAsTheyAre)
{
  const Cookie reel = addReel("100%s");
  const Cookie shot = addShot("100%s");
  CookieVec out;
  EXPECT_EQ(printedBy([&] { manager().addShotsFromReel(reel, out); }), Lines{preparing(shot, "100%s")});
  manager().reelInUse("100%s", true);
  EXPECT_EQ(printedBy([&] { doomed({reel}); }), Lines{keptBack("100%s")});
}

TEST_F(Shots, InvalidReelHasNoShotsAndMakesNoHostCall)
{
  CookieVec out;
  EXPECT_EQ(linesOf([&] { manager().addShotsFromReel(Cookie(), out); }), Lines{});
  EXPECT_EQ(out.count(), 0);
}

TEST_F(Shots, WithoutADatabaseOnlyTheIdentifierIsRead)
{
  const Cookie reel = addReel("A001");
  addShot("A001");
  script().noDatabase(true);
  CookieVec out;
  const Lines lines = linesOf([&] { manager().addShotsFromReel(reel, out); });
  EXPECT_EQ(listing(lines, {{reel, "reel"}}),
            listing(join({idRead("reel", "A001"), {"EditManager::getProjdb() -> null"}})));
  EXPECT_EQ(out.count(), 0);
}

// --- The logs to delete with a selection ---------------------------------------------------------

TEST_F(Shots, EachSelectedReelIsFollowedByItsShots)
{
  const Cookie a = addReel("A001");
  const Cookie b = addReel("B001");
  const Cookie c = addReel("C001");
  const Cookie ofA = addShot("A001");
  const Cookie ofB = addShot("b001");
  const Cookie ofC = addShot("C001");
  const Cookie alsoOfB = addShot("B001");
  Lines printed = printedBy([&] {
    EXPECT_EQ(doomed({b, a}), (Lines{text(b), text(ofB), text(alsoOfB), text(a), text(ofA)}));
  });
  EXPECT_EQ(printed, (Lines{preparing(ofB, "B001"), preparing(alsoOfB, "B001"), preparing(ofA, "A001")}));
  EXPECT_EQ(doomed({c, c}), (Lines{text(c), text(ofC), text(c), text(ofC)})) << "nothing is left out the second time";
}

TEST_F(Shots, SelectedShotsAreNotCarriedOver)
{
  const Cookie a = addReel("A001");
  const Cookie shot = addShot("B001");
  const Cookie other = addLog(2, "A001");
  EXPECT_EQ(doomed({shot, other, a, Cookie()}), (Lines{text(a), text(other)})) << "the other log is there as A001's";
}

TEST_F(Shots, ReelInUseIsKeptBackWithItsShotsAndTheOthersGo)
{
  const Cookie a = addReel("A001");
  const Cookie b = addReel("B001");
  addShot("A001");
  const Cookie ofB = addShot("B001");
  manager().reelInUse("A001", true);
  EXPECT_EQ(printedBy([&] {
              EXPECT_EQ(doomed({a, b}), (Lines{text(b), text(ofB)}));
            }),
            (Lines{keptBack("A001"), preparing(ofB, "B001")}));
}

TEST_F(Shots, OnlyAReelInUseGivesNothing)
{
  const Cookie a = addReel("A001");
  manager().reelInUse("A001", true);
  EXPECT_EQ(printedBy([&] { EXPECT_EQ(doomed({a}), Lines{}); }), Lines{keptBack("A001")});
}

TEST_F(Shots, MarkInAnotherCaseKeepsNothingBack)
{
  const Cookie a = addReel("A001");
  manager().reelInUse("a001", true);
  EXPECT_EQ(doomed({a}), Lines{text(a)});
}

TEST_F(Shots, MarksAreThoseOfTheCalledManager)
{
  const Cookie a = addReel("A001");
  manager().reelInUse("A001", true);
  ReelDbManager other;
  EXPECT_EQ(texts(other.buildSetOfReelsAndAssociatedShots(cookies({a}))), Lines{text(a)});
}

TEST_F(Shots, ReelThatDoesNotOpenGoesAlone)
{
  const Cookie a = addReel("A001");
  addShot("A001");
  addShot("");
  script().failOpen(a);
  EXPECT_EQ(printedBy([&] { EXPECT_EQ(doomed({a}), Lines{text(a)}); }), Lines{});
}

TEST_F(Shots, EmptySelectionGivesNothingAndLooksTheColumnUp)
{
  addReel("A001");
  EXPECT_EQ(linesOf([&] { EXPECT_EQ(doomed({}), Lines{}); }),
            (Lines{"EditManager::getProjdb() -> database", "projdb::findField(\"Type\") -> 1"}));
}

TEST_F(Shots, CallersSelectionIsLeftAlone)
{
  const Cookie a = addReel("A001");
  addShot("A001");
  const CookieVec selection = cookies({a});
  manager().buildSetOfReelsAndAssociatedShots(selection);
  EXPECT_EQ(texts(selection), Lines{text(a)});
}

TEST_F(Shots, WithoutADatabaseTheReelsGoWithoutShots)
{
  const Cookie a = addReel("A001");
  const Cookie shot = addShot("A001");
  script().noDatabase(true);
  EXPECT_EQ(doomed({shot, a}), Lines{text(a)});
}

TEST_F(Shots, NobodyIsNotified)
{
  const Cookie a = addReel("A001");
  addShot("A001");
  const RecordingClient client(heard_);
  doomed({a});
  EXPECT_EQ(heard_, Heard{});
}

TEST_F(Shots, HostCallsOfADeletionSet)
{
  const Cookie reel = addReel("A001");
  const Cookie used = addReel("B001");
  const Cookie shot = addShot("a001");
  manager().reelInUse("B001", true);
  const Lines lines = linesOf([&] { doomed({shot, used, reel}); });
  const auto typed = [](const std::string& log, const std::string& type, const std::string& number) {
    return Lines{"projdb::operator[](" + log + ") -> row", "dbrecord::get_field(" + log + ", 1) -> " + quoted(type),
                 "Edit::getLogTypeFromString(" + quoted(type) + ") -> " + number};
  };
  EXPECT_EQ(listing(lines, {{reel, "reel"}, {used, "used"}, {shot, "shot"}}),
            listing(join({{"EditManager::getProjdb() -> database", "projdb::findField(\"Type\") -> 1"},
                          typed("shot", "Material", "1"),
                          typed("used", "Reel", "9"),
                          idRead("used", "B001"),
                          {"vorn_printf(\"Couldn't delete reel: B001 because it was marked as in use.\\n\")"},
                          typed("reel", "Reel", "9"),
                          idRead("reel", "A001"),
                          idRead("reel", "A001"),
                          {"EditManager::getProjdb() -> database"},
                          shotSearch("A001", "1 log"),
                          attributeRead("shot", "a001"),
                          {"vorn_printf(\"Preparing to delete: shot from Reel: A001\\n\")"}})));
}

} // namespace

} // namespace reeldb_tests
