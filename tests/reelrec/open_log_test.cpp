// SPDX-License-Identifier: Apache-2.0
//
// Opening and closing logs: one close for each open, on every path.
#include "reelrec/open_log.h"

#include "host/codes.h"
#include "reelrec/record_fixture.h"

namespace reeldb_tests {
namespace {

using reeldb::LogCloser;
using reeldb::OpenLog;
using reeldb::reelAttribute;

class OpenLogs : public RecordTest {
protected:
  static std::string openInfo(const Cookie& log) { return "EditInfo::EditInfo(" + text(log) + ", 0)"; }
  static std::string attribute(const Cookie& log) { return "EditInfo::getAttrib(" + text(log) + ", 20)"; }
  static std::string adopt(const Cookie& log) { return "EditPtr::operator=(" + text(log) + ")"; }
};

TEST_F(OpenLogs, IsOpenForAsLongAsItLives)
{
  const Cookie reel = addReel("R1");
  {
    const OpenLog log(reel);
    EXPECT_TRUE(log);
    EXPECT_EQ(reelhost::openLogs(), 1);
    EXPECT_EQ(log->getLogType(), 9);
  }
  EXPECT_EQ(reelhost::openLogs(), 0);
  EXPECT_EQ(stepsOf([&] { const OpenLog log(reel); }), (Steps{open(reel), close(reel)}));
}

TEST_F(OpenLogs, ThatDoesNotOpenIsFalseAndClosedOnce)
{
  const Cookie reel = addReel("R1");
  script().failOpen(reel);
  EXPECT_EQ(stepsOf([&] {
              const OpenLog log(reel);
              EXPECT_FALSE(log);
            }),
            failedOpen(reel));
  EXPECT_EQ(stepsOf([&] {
              const OpenLog log((Cookie()));
              EXPECT_FALSE(log);
            }),
            failedOpen(Cookie()));
}

TEST_F(OpenLogs, OfOneLogMayBeNested)
{
  const Cookie reel = addReel("R1");
  const OpenLog outer(reel);
  {
    const OpenLog inner(reel);
    EXPECT_EQ(reelhost::openLogs(), 2);
    inner->config().set("k", "v", nullptr);
  }
  EXPECT_EQ(reelhost::openLogs(), 1);
  ASSERT_TRUE(outer);
  EXPECT_STREQ(outer->config().in("k"), "v");
}

TEST_F(OpenLogs, TakesHoldOfALogThatIsOpenAlready)
{
  const Cookie reel = addReel("R1");
  const OpenLog outer(reel);
  Edit* const edit = outer.operator->();
  const Steps steps = stepsOf([&] {
    const OpenLog adopted(edit);
    EXPECT_TRUE(adopted);
    EXPECT_EQ(adopted.operator->(), edit);
    EXPECT_EQ(reelhost::openLogs(), 2);
  });
  EXPECT_EQ(reelhost::openLogs(), 1);
  EXPECT_EQ(steps, (Steps{adopt(reel), close(reel)}));
}

TEST_F(OpenLogs, IsClosedWhenSomethingThrows)
{
  const Cookie reel = addReel("R1");
  EXPECT_EQ(stepsOf([&] {
              try {
                const OpenLog log(reel);
                throw 17;
              } catch (const int) {
              }
            }),
            (Steps{open(reel), close(reel)}));
  EXPECT_EQ(reelhost::openLogs(), 0);
}

TEST_F(OpenLogs, OpeningThatThrowsIsClosedAndTheExceptionPasses)
{
  const Cookie reel = addReel("R1");
  const Steps steps = stepsOf([&] {
    script().throwAt(1);
    EXPECT_THROW(const OpenLog log(reel), reelhost::ScriptedFault);
  });
  EXPECT_EQ(steps, failedOpen(reel));
}

TEST_F(OpenLogs, TakingHoldThatThrowsIsClosedAndTheExceptionPasses)
{
  const Cookie reel = addReel("R1");
  const OpenLog outer(reel);
  Edit* const edit = outer.operator->();
  const Steps steps = stepsOf([&] {
    script().throwAt(1);
    EXPECT_THROW(const OpenLog log(edit), reelhost::ScriptedFault);
  });
  EXPECT_EQ(steps, (Steps{adopt(reel), closeUnopened()}));
  EXPECT_EQ(reelhost::openLogs(), 1);
}

TEST_F(OpenLogs, CloserClosesTheHandleItWasGiven)
{
  const Cookie reel = addReel("R1");
  EditPtr handle;
  {
    const LogCloser closer(handle);
    handle.i_open(reel, codes::openAsUsual);
    EXPECT_EQ(reelhost::openLogs(), 1);
  }
  EXPECT_EQ(reelhost::openLogs(), 0);
  EXPECT_FALSE(handle);
}

// --- The attribute -------------------------------------------------------------------------------

TEST_F(OpenLogs, AttributeIsTheReelId)
{
  const Cookie reel = addReel("R1");
  EXPECT_EQ(text(reelAttribute(reel)), "R1");
  EXPECT_EQ(text(reelAttribute(addReel(""))), "");
  script().attribute(reel, "other");
  EXPECT_EQ(text(reelAttribute(reel)), "other");
  EXPECT_EQ(reelhost::openLogs(), 0);
}

TEST_F(OpenLogs, AttributeOpensReadsAndCloses)
{
  const Cookie reel = addReel("R1");
  const Steps steps = stepsOf([&] { reelAttribute(reel); });
  EXPECT_EQ(steps, (Steps{openInfo(reel), attribute(reel), close(reel)}));
}

TEST_F(OpenLogs, AttributeOfALogThatDoesNotOpenIsEmptyAndTheLogClosed)
{
  const Cookie reel = addReel("R1");
  script().failOpen(reel);
  EXPECT_EQ(text(reelAttribute(reel)), "");
  EXPECT_EQ(text(reelAttribute(Cookie())), "");
  EXPECT_EQ(stepsOf([&] { reelAttribute(reel); }), (Steps{openInfo(reel), "EditInfo::getAttrib(20)", closeUnopened()}));
}

} // namespace
} // namespace reeldb_tests
