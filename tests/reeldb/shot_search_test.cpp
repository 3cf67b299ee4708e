// SPDX-License-Identifier: Apache-2.0
//
// Which logs count as a reel's shots: seen through the operation that collects them.
#include "reeldb/changes_fixture.h"

namespace reeldb_tests {

namespace {

class ShotSearch : public ChangesTest {
protected:
  Lines shotsOf(const Cookie& reel)
  {
    CookieVec out;
    manager().addShotsFromReel(reel, out);
    return texts(out);
  }
};

TEST_F(ShotSearch, DatabaseIsAskedForTheReelsIdentifier)
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

TEST_F(ShotSearch, NearMatchesAreComparedAgainAndLeftOut)
{
  const Cookie reel = addReel("A001");
  const Cookie longer = addShot("A0011");
  const Cookie shorter = addShot("A00");
  const Cookie none = addShot("");
  const Cookie empty = addShot("x");
  const Cookie match = addShot("a001");
  script().attribute(empty, "");
  script().attributeSearchResult = cookies({longer, match, shorter, none, empty, Cookie()});
  EXPECT_EQ(shotsOf(reel), Lines{text(match)});
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

TEST_F(ShotSearch, AnyKindOfLogTheSearchAnswersCountsTheReelItselfToo)
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
  EXPECT_EQ(shotsOf(reel), Lines{}) << "this host answers nothing for an empty identifier";
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

TEST_F(ShotSearch, EachHostCallMayThrow)
{
  Cookie reel, shot;
  const int failed = failEachHostCall(
      [&] {
        reel = addReel("A001");
        shot = addShot("A001");
      },
      [&] { shotsOf(reel); }, [&] { EXPECT_EQ(shotsOf(reel), Lines{text(shot)}); });
  EXPECT_EQ(failed, 9);
}

} // namespace

} // namespace reeldb_tests
