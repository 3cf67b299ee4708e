// SPDX-License-Identifier: Apache-2.0
//
// Reported: after "AudioChannels=2147483647" in the reel type file, a command that gave a reel this type ran for 24
// seconds, and then the reel seemed to have other channels. The library counts channels in 16 bits and adds the missing
// ones one by one, so from 65,535 on it started again at 0. Since then the host refuses the 65,536th channel of a kind,
// and a type with more cannot be applied.
#include "support/library_fixture.h"

namespace reeldb_tests {
namespace {

class EndlessChannels : public LibraryTest {
protected:
  void SetUp() override
  {
    LibraryTest::SetUp();
    theReelTypeManager()->add("endless channels: most", "VideoChannels=0 AudioChannels=65535");
    theReelTypeManager()->add("endless channels: more", "VideoChannels=0 AudioChannels=2147483647");
  }
};

TEST_F(EndlessChannels, TypeWithTheMostChannelsIsApplied)
{
  const Cookie reel = addReel("R1");
  ReelDbRec(reel).typeName("endless channels: most");
  EXPECT_EQ(channels(reel, codes::audioChannel), 65535);
}

TEST_F(EndlessChannels, TypeWithMoreChannelsIsRefused)
{
  const Cookie reel = addReel("R1");
  try {
    ReelDbRec(reel).typeName("endless channels: more");
    FAIL() << "the type was applied";
  } catch (const reelhost::Error& error) {
    EXPECT_EQ(error.kind(), reelhost::ErrorKind::Refused);
    EXPECT_STREQ(error.what(), "R1: too many audio channels (at most 65535; its type or its device requires more)");
  }
}

} // namespace
} // namespace reeldb_tests
