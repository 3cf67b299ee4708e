// SPDX-License-Identifier: Apache-2.0
//
// How the library handles a device's message. The program replaces the two host operations that the library calls, so a
// case sees each of their calls. It is a separate program because the replacements apply to all of it.
#include <vector>

#include "reelhost/notify_msg.h"
#include "support/library_fixture.h"

namespace {

struct Asked {
  std::vector<const NotifyMsg*> parsed;
  std::vector<unsigned> tested;
  unsigned device = 0;
};

Asked& asked()
{
  static Asked calls;
  return calls;
}

} // namespace

IdStamp ExtDeviceConfigurationManager::DeviceChangedMsgParser(const NotifyMsg& msg)
{
  asked().parsed.push_back(&msg);
  return IdStamp(asked().device);
}

bool IdStamp::valid() const
{
  asked().tested.push_back(value_);
  return value_ != 0;
}

namespace reeldb_tests {

namespace {
using DeviceChange = LibraryTest;
} // namespace

TEST_F(DeviceChange, IsDecodedTestedAndOtherwiseIgnored)
{
  addReel("R1");
  manager().reelInUse("R1", true);
  Heard heard;
  RecordingClient client(heard);
  for (const unsigned device : {0U, 5U}) {
    asked() = {};
    asked().device = device;
    const NotifyMsg message(device);
    bool answer = false;

    EXPECT_EQ(operationsOf([&] { answer = manager().handleDeviceChange(message); }), Heard{});

    EXPECT_TRUE(answer) << device;
    EXPECT_EQ(asked().parsed, (std::vector<const NotifyMsg*>{&message}));
    EXPECT_EQ(asked().tested, (std::vector<unsigned>{device}));
    EXPECT_EQ(manager().reelList.count(), 1);
    EXPECT_TRUE(manager().reelInUse("R1"));
    EXPECT_EQ(heard, Heard{});
  }
}

} // namespace reeldb_tests
