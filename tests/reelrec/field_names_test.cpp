// SPDX-License-Identifier: Apache-2.0
//
// The exported field names: their texts, and that every access reads the pointer again.
#include <type_traits>

#include "reelrec/record_fixture.h"

namespace reeldb_tests {
namespace {

static_assert(std::is_same_v<decltype(TR_REEL_ID), const char*>);
static_assert(std::is_same_v<decltype(TR_REC_INHIBIT_FLAG), const char*>);
static_assert(std::is_same_v<decltype(TR_REEL_AVAILABLE_FLAG), const char*>);
static_assert(std::is_same_v<decltype(TR_USER_FIELD_BASE), const char*>);
static_assert(std::is_same_v<decltype(TR_LABEL_MAPPING), const char*>);
static_assert(std::is_same_v<decltype(TR_BIN_NAME), const char*>);
static_assert(std::is_same_v<decltype(TR_LAST_DEVICE), const char*>);
static_assert(std::is_same_v<decltype(TR_REEL_TYPE_NAME), const char*>);
static_assert(std::is_same_v<decltype(TR_REEL_LENGTH), const char*>);

/// Replaces a field name while it lives.
class Renamed {
public:
  Renamed(const char*& name, const char* other) : name_(name), original_(name) { name_ = other; }
  ~Renamed() { name_ = original_; }
  Renamed(const Renamed&) = delete;
  Renamed& operator=(const Renamed&) = delete;

private:
  const char*& name_;
  const char* original_;
};

using FieldNames = RecordTest;

TEST_F(FieldNames, AreTheKeysOtherModulesUse)
{
  EXPECT_STREQ(TR_REEL_ID, "reelid");
  EXPECT_STREQ(TR_REC_INHIBIT_FLAG, "record_inhibit_flag");
  EXPECT_STREQ(TR_REEL_AVAILABLE_FLAG, "reel_available_flag");
  EXPECT_STREQ(TR_USER_FIELD_BASE, "reel_userfield");
  EXPECT_STREQ(TR_LABEL_MAPPING, "reel_labelmapping");
  EXPECT_STREQ(TR_BIN_NAME, "profile_bin_name");
  EXPECT_STREQ(TR_LAST_DEVICE, "reel_last_device");
  EXPECT_STREQ(TR_REEL_TYPE_NAME, "reel_type");
  EXPECT_STREQ(TR_REEL_LENGTH, "reel_length");
}

TEST_F(FieldNames, ChangedNameIsReadAtTheNextAccess)
{
  ReelDbRec rec = addReel("R1", {}, {{"other", "X"}, {"flag", "1"}, {"base0", "U"}});
  {
    const Renamed renamed(TR_REEL_ID, "other");
    EXPECT_EQ(text(rec.reelId()), "X");
  }
  EXPECT_EQ(text(rec.reelId()), "R1");
  {
    const Renamed renamed(TR_REC_INHIBIT_FLAG, "flag");
    EXPECT_TRUE(rec.recInhibit());
    EXPECT_FALSE(rec.reelAvailable());
  }
  EXPECT_FALSE(rec.recInhibit());
  {
    const Renamed renamed(TR_REEL_AVAILABLE_FLAG, "flag");
    EXPECT_TRUE(rec.reelAvailable());
    EXPECT_FALSE(rec.recInhibit());
  }
  EXPECT_FALSE(rec.reelAvailable());
  {
    const Renamed renamed(TR_USER_FIELD_BASE, "base");
    EXPECT_EQ(text(rec.userField(0)), "U");
  }
  EXPECT_EQ(text(rec.userField(0)), "");
  {
    const Renamed renamed(TR_LABEL_MAPPING, "other");
    EXPECT_EQ(text(rec.labelMapping()), "X");
  }
  EXPECT_EQ(text(rec.labelMapping()), "");
  {
    const Renamed renamed(TR_BIN_NAME, "other");
    EXPECT_EQ(text(rec.binName()), "X");
  }
  EXPECT_EQ(text(rec.binName()), "");
  {
    const Renamed renamed(TR_LAST_DEVICE, "other");
    EXPECT_STREQ(rec.lastDevice().c_str(), L"X");
  }
  EXPECT_STREQ(rec.lastDevice().c_str(), L"");
}

TEST_F(FieldNames, ChangedNameIsWrittenAtTheNextAccess)
{
  const Cookie reel = addReel("R1");
  ReelDbRec rec = reel;
  const Renamed inhibit(TR_REC_INHIBIT_FLAG, "i"), available(TR_REEL_AVAILABLE_FLAG, "a"),
      base(TR_USER_FIELD_BASE, "u"), mapping(TR_LABEL_MAPPING, "l"), bin(TR_BIN_NAME, "b"), device(TR_LAST_DEVICE, "d");
  rec.recInhibit(true);
  rec.reelAvailable(true);
  rec.userField(3, "user");
  rec.labelMapping("map");
  rec.binName("bin");
  rec.lastDevice(L"device");
  EXPECT_EQ(configText(reel, "i"), "1");
  EXPECT_EQ(configText(reel, "a"), "1");
  EXPECT_EQ(configText(reel, "u3"), "user");
  EXPECT_EQ(configText(reel, "l"), "map");
  EXPECT_EQ(configText(reel, "b"), "bin");
  EXPECT_EQ(configText(reel, "d"), "device");
  for (const char* key : {"record_inhibit_flag", "reel_available_flag", "reel_userfield3", "reel_labelmapping",
                          "profile_bin_name", "reel_last_device"})
    EXPECT_EQ(configText(reel, key), "<absent>") << key;
}

TEST_F(FieldNames, NullNameIsTheEmptyKey)
{
  const Cookie reel = addReel("R1");
  ReelDbRec rec = reel;
  {
    const Renamed renamed(TR_BIN_NAME, nullptr);
    rec.binName("bin");
    EXPECT_EQ(text(rec.binName()), "bin");
    EXPECT_EQ(configText(reel, ""), "bin");
  }
  {
    const Renamed renamed(TR_USER_FIELD_BASE, nullptr);
    rec.userField(4, "user");
    EXPECT_EQ(text(rec.userField(4)), "user");
    EXPECT_EQ(configText(reel, "4"), "user");
  }
  {
    const Renamed renamed(TR_REEL_AVAILABLE_FLAG, nullptr);
    rec.reelAvailable(true);
    EXPECT_TRUE(rec.reelAvailable());
    EXPECT_EQ(configText(reel, ""), "1");
  }
  {
    const Renamed renamed(TR_REEL_ID, nullptr);
    EXPECT_EQ(text(rec.reelId()), "1");
  }
}

TEST_F(FieldNames, TypeAndLengthKeysAreNotUsed)
{
  const Cookie reel = addReel("R1", "field names test: type", {{"zz type", "wrong"}, {"zz length", "wrong"}});
  ReelDbRec rec = reel;
  const Renamed type(TR_REEL_TYPE_NAME, "zz type"), length(TR_REEL_LENGTH, "zz length");
  const Steps steps = stepsOf([&] {
    EXPECT_EQ(text(rec.typeName()), "field names test: type");
    rec.typeName("field names test: other");
    rec.updateNumChansInReel();
    EXPECT_EQ(text(rec.typeName()), "field names test: other");
  });
  for (const std::string& step : steps)
    EXPECT_EQ(step.find("zz "), std::string::npos) << step;
  EXPECT_EQ(configText(reel, "zz type"), "wrong");
  EXPECT_EQ(configText(reel, "zz length"), "wrong");
}

} // namespace
} // namespace reeldb_tests
