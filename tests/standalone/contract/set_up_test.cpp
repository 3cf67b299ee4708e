// SPDX-License-Identifier: Apache-2.0
#include <stdexcept>
#include <string>

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

} // namespace
