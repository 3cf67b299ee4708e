// SPDX-License-Identifier: Apache-2.0
#include "model/config_block.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace {

using reelhost::KeyValues;
using reelhost::model::blockOf;
using reelhost::model::ConfigBlock;
using reelhost::model::ConfigOwner;
using reelhost::model::internKey;
using reelhost::model::Key;

class Owner : public ConfigOwner {
public:
  void configChanging(Key) override
  {
    if (refusing)
      throw std::runtime_error("no");
    ++changing;
  }
  void configChanged(Key key) override { changed.push_back(*key); }
  int changing = 0;
  std::vector<std::string> changed;
  bool refusing = false;
};

TEST(ConfigBlock, EqualKeysAreOneKey)
{
  EXPECT_EQ(internKey("some key"), internKey(std::string("some") + " key"));
  EXPECT_NE(internKey("some key"), internKey("Some key"));
  EXPECT_EQ(*reelhost::model::reelIdKey(), "reelid");
}

TEST(ConfigBlock, FieldsKeepTheOrderInWhichTheyWereFirstSet)
{
  ConfigBlock block;
  block.set("b", "1");
  block.set("a", "2");
  block.set("b", "3");
  EXPECT_EQ(block.fields(), (KeyValues{{"b", "3"}, {"a", "2"}}));
}

TEST(ConfigBlock, NullIsTheEmptyKeyAndTheEmptyText)
{
  ConfigBlock block;
  block.set(nullptr, nullptr);
  EXPECT_EQ(block.fields(), (KeyValues{{"", ""}}));
  ASSERT_NE(block.find(static_cast<const char*>(nullptr)), nullptr);
}

TEST(ConfigBlock, OwnerIsNotifiedOfChangesOnly)
{
  ConfigBlock block;
  Owner owner;
  block.setOwner(&owner);
  block.assign({{"a", "1"}});
  EXPECT_EQ(owner.changing, 0);
  block.set("a", "1");
  EXPECT_EQ(owner.changing, 0);
  block.set("a", "2");
  block.set("b", "");
  EXPECT_EQ(owner.changing, 2);
  EXPECT_EQ(owner.changed, (std::vector<std::string>{"a", "b"}));
}

TEST(ConfigBlock, AnOwnerThatThrowsPreventsTheChange)
{
  ConfigBlock block;
  Owner owner;
  block.assign({{"a", "1"}});
  block.setOwner(&owner);
  owner.refusing = true;
  EXPECT_THROW(block.set("a", "2"), std::runtime_error);
  EXPECT_THROW(block.set("b", "2"), std::runtime_error);
  EXPECT_EQ(block.fields(), (KeyValues{{"a", "1"}}));
}

TEST(ConfigBlock, AConfigbHasItsOwn)
{
  configb one, other;
  one.set("a", "1", nullptr);
  EXPECT_EQ(blockOf(one).fields(), (KeyValues{{"a", "1"}}));
  EXPECT_TRUE(blockOf(other).fields().empty());
}

TEST(ConfigBlock, AFieldWithoutTextIsSetAsTheEmptyText)
{
  configb block;
  block.set("a", strp_field());
  EXPECT_STREQ(block.in("a"), "");
}

TEST(ConfigBlock, NumbersMayBeSignedAndAreCutLikeWords)
{
  configb block;
  block.set("a", " +12x", nullptr);
  int number = 0;
  EXPECT_EQ(block.in("a", number), 0);
  EXPECT_EQ(number, 12);
}

} // namespace
