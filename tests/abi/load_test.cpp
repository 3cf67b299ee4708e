// SPDX-License-Identifier: Apache-2.0
//
// What the library does while it is loaded. The program defines the two host operations that the library then calls.
// They run before any constructor of the program, so they store their notes in plain data.
#include <gtest/gtest.h>

#include <cstdio>

#include "MainThread.h"
#include "ReelDbManager.h"
#include "ReelDbRec.h"
#include "ReelTypeManager.h"
#include "host/config.h"

namespace {

constinit char asked[4][80] = {};
constinit int askedCount = 0;
constinit char siteType[] = "Tape of the site";

char* nextLine()
{
  return asked[askedCount < 4 ? askedCount++ : 3];
}

} // namespace

const char* config_string(const char* key, const char* defaultValue)
{
  std::snprintf(nextLine(), sizeof asked[0], "config_string(%s, '%s')", key, defaultValue);
  return siteType;
}

LightweightString<wchar_t> getDeviceDataDirectory(iSettings::eType type)
{
  std::snprintf(nextLine(), sizeof asked[0], "getDeviceDataDirectory(%d)", static_cast<int>(type));
  return REELDB_TEST_DATA_DIRECTORY;
}

TEST(Load, ReadsTheDefaultTypeAndThenTheFolderOfTheTypeFile)
{
  ASSERT_EQ(askedCount, 2);
  EXPECT_STREQ(asked[0], "config_string(default_reel_type, '')");
  EXPECT_STREQ(asked[1], "getDeviceDataDirectory(1)");
}

TEST(Load, KeepsTheDefaultTypeAsTextOfItsOwn)
{
  EXPECT_STREQ(ReelDbManager::systemWideDefaultReelType_.c_str(), "Tape of the site");
  EXPECT_NE(siteType, ReelDbManager::systemWideDefaultReelType_.c_str());
}

TEST(Load, ReadsTheTypeFileOfThatFolder)
{
  ASSERT_EQ(theReelTypeManager_.rep()->count(), 2U);
  EXPECT_STREQ(theReelTypeManager_.rep()->entry(0)->key.c_str(), "Tape of the test");
  EXPECT_STREQ(theReelTypeManager_.rep()->entry(0)->value.c_str(), "VideoChannels=1 AudioChannels=2");
  EXPECT_STREQ(theReelTypeManager_.rep()->entry(1)->key.c_str(), "Disc of the test");
}

TEST(Load, MakesNoManagerAndSetsNoMainThread)
{
  EXPECT_EQ(ReelDbManager::theReelDbManager_, nullptr);
  EXPECT_EQ(glib_pid, 0);
  EXPECT_STREQ(TR_REEL_ID, "reelid");
}
