// SPDX-License-Identifier: Apache-2.0
#include <csignal>
#include <cstdlib>
#include <stdexcept>
#include <string>

#include <gtest/gtest-spi.h>

#include "host_fixture.h"

namespace {

/// A set-up by somebody who forgot everything that may be left out.
class Bare : public host_contract::HostSetUp {
public:
  void openEmptyProject(const std::string&, int, int) override {}
  void closeProject() override {}
  Cookie addLog(int, const std::string&) override { return {}; }
  std::wstring textOfResource(unsigned) override { return {}; }
  void runDeferredActions() override {}
};

template <class Call>
std::string refusalOf(const Call& call)
{
  try {
    call();
  } catch (const std::logic_error& e) {
    return e.what();
  }
  return "nothing thrown";
}

// A host that says nothing is taken to have everything: what it then lacks is a failure and never a skipped case.
TEST(SetUp, SaysOfNothingThatItIsLacking)
{
  Bare bare;
  for (const auto ability :
       {host_contract::Ability::Storage, host_contract::Ability::Devices, host_contract::Ability::LabelMaps})
    EXPECT_EQ(bare.lacks(ability), "");
}

TEST(SetUp, WhatIsMissingIsNamedWhenACaseNeedsIt)
{
  Bare bare;
  const std::string why = ": neither is it in the set-up, nor does lacks() say that it need not be";
  EXPECT_EQ(refusalOf([&] { bare.storeAndReopen(); }), "storeAndReopen" + why);
  EXPECT_EQ(refusalOf([&] { bare.addDevice({}); }), "addDevice" + why);
  EXPECT_EQ(refusalOf([&] { bare.renameDevice(1, ""); }), "renameDevice" + why);
  EXPECT_EQ(refusalOf([&] { bare.lastReelOf(1); }), "lastReelOf" + why);
  EXPECT_EQ(refusalOf([&] { bare.messageAbout(1); }), "messageAbout" + why);
  EXPECT_EQ(refusalOf([&] { bare.addLabelMap("m", {}); }), "addLabelMap" + why);
}

// A set-up that was written before these hooks were there still compiles; what it cannot show is skipped.
TEST(SetUp, TheOptionalHooksAreLeftOutByDefault)
{
  Bare bare;
  EXPECT_FALSE(bare.importClip("A001"));
  EXPECT_FALSE(bare.openLogs());
  EXPECT_FALSE(bare.nameOf(Cookie()));
}

// --- What a failure says -------------------------------------------------------------------------

/// The failures of @p work.
template <class Work>
std::string failuresOf(const Work& work)
{
  ::testing::TestPartResultArray results;
  {
    const ::testing::ScopedFakeTestPartResultReporter reporter(
        ::testing::ScopedFakeTestPartResultReporter::INTERCEPT_ONLY_CURRENT_THREAD, &results);
    work();
  }
  std::string text;
  for (int i = 0; i < results.size(); ++i)
    text += std::string(results.GetTestPartResult(i).message()) + "\n";
  return text;
}

constexpr const char* quoted = "host/x.h says: \"It holds.\"";

TEST(Promise, AFailureQuotesWhatWasPromised)
{
  const std::string text = failuresOf([] {
    PROMISE("host/x.h", "It holds.");
    ADD_FAILURE() << "no";
  });
  EXPECT_NE(text.find(quoted), std::string::npos) << text;
}

TEST(Promise, AnExceptionQuotesWhatWasPromised)
{
  const std::string text = failuresOf([] {
    try {
      PROMISE("host/x.h", "It holds.");
      throw std::runtime_error("no");
    } catch (const std::runtime_error&) {
    }
  });
  EXPECT_NE(text.find("an exception left the case"), std::string::npos) << text;
  EXPECT_NE(text.find(quoted), std::string::npos) << text;
}

TEST(Promise, AFaultThatEndsTheProgramQuotesWhatWasPromised)
{
  EXPECT_EXIT(
      {
        PROMISE("host/x.h", "It holds.");
        std::abort();
      },
      ::testing::KilledBySignal(SIGABRT), quoted);
}

TEST(Promise, NothingIsQuotedWhenAllIsWell)
{
  EXPECT_EQ(failuresOf([] { PROMISE("host/x.h", "It holds."); }), "");
}

} // namespace
