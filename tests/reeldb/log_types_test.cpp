// SPDX-License-Identifier: Apache-2.0
//
// What is a reel: seen through the operations that tell reels from other logs.
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

  /// What is left of these logs, and whether any was removed.
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

// --- Where the type comes from -------------------------------------------------------------------

TEST_F(LogTypes, RowsTypeDecidesWithoutOpeningTheLog)
{
  const Cookie reel = addReel("A001");
  const Cookie shot = addShot("A001");
  EXPECT_EQ(listing(linesOf([&] { EXPECT_TRUE(isReel(reel)); }), {{reel, "reel"}}),
            listing(join({columnLookup, rowRead("reel", "\"Reel\"", "9")})));
  EXPECT_EQ(listing(linesOf([&] { EXPECT_FALSE(isReel(shot)); }), {{shot, "shot"}}),
            listing(join({columnLookup, rowRead("shot", "\"Material\"", "1")})));
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

TEST_F(LogTypes, RowWithoutATypeIsNoReelAndTheLogIsNotAsked)
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

TEST_F(LogTypes, LogThatDoesNotOpenIsNoReelAndIsClosedAllTheSame)
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

TEST_F(LogTypes, OtherTypesAreNoReels)
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

// --- Host calls that fail ------------------------------------------------------------------------

TEST_F(LogTypes, EachHostCallMayThrow)
{
  Cookie reel, shot;
  const int failed = failEachHostCall(
      [&] {
        reel = addReel("A001");
        shot = addShot("A001");
        script().noRow(shot);
      },
      [&] {
        containsReels({shot, reel});
      },
      [&] {
        EXPECT_TRUE(containsReels({shot, reel}));
      });
  EXPECT_EQ(failed, 8);
}

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

} // namespace

} // namespace reeldb_tests
