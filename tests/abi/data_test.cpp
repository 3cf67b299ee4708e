// SPDX-License-Identifier: Apache-2.0
//
// Data that a program and the library share. A program that is not made to be moved holds the library's variables in
// itself; the library must then use them there. Built twice, to be moved and not to be moved.
#include <dlfcn.h>

#include <utility>
#include <vector>

#include "MainThread.h"
#include "ReelDbRec.h"
#include "host/action.h"
#include "host/projdb.h"
#include "support/library_fixture.h"

namespace reeldb_tests {

namespace {
using Data = LibraryTest;

/// Sets a variable back when it ends.
template <class T>
class Kept {
public:
  explicit Kept(T& variable) : variable_(variable), value_(variable) {}
  ~Kept() { variable_ = value_; }
  Kept(const Kept&) = delete;
  Kept& operator=(const Kept&) = delete;

private:
  T& variable_;
  T value_;
};

} // namespace

#ifdef REELDB_DATA_IS_COPIED
TEST_F(Data, LiesInTheProgramItself)
{
  void* const library = dlopen(REELDB_SONAME, RTLD_NOLOAD | RTLD_NOW);
  ASSERT_NE(library, nullptr);
  EXPECT_NE(static_cast<void*>(&glib_pid), dlsym(library, "glib_pid"));
  EXPECT_NE(static_cast<void*>(&TR_BIN_NAME), dlsym(library, "TR_BIN_NAME"));
}
#endif

TEST_F(Data, MainThreadThatTheHostStoresIsSeenByTheProgram)
{
  EXPECT_EQ(co_pid() & 0xFFFF, glib_pid);
}

TEST_F(Data, MainThreadThatTheProgramStoresIsSeenByTheLibrary)
{
  const Kept restored(glib_pid);
  glib_pid = 0x7777;
  EXPECT_FALSE(manager().createNewReel("R1", -1).valid());
  EXPECT_FALSE(manager().doesReelExist("R1"));
  EXPECT_EQ(reelhost::deferredActions(), 1);

  glib_pid = co_pid() & 0xFFFF;
  EXPECT_TRUE(manager().createNewReel("R2", -1).valid());
  EXPECT_TRUE(manager().doesReelExist("R2"));
  EXPECT_EQ(reelhost::runDeferredActions(), 1);
  EXPECT_TRUE(manager().doesReelExist("R1"));
}

TEST_F(Data, FieldNamesThatTheProgramStoresAreSeenByTheLibrary)
{
  const Cookie reel = addReel("R1");
  ReelDbRec rec(reel);
  const Kept bin(TR_BIN_NAME), label(TR_LABEL_MAPPING), available(TR_REEL_AVAILABLE_FLAG), inhibit(TR_REC_INHIBIT_FLAG),
      base(TR_USER_FIELD_BASE), device(TR_LAST_DEVICE);
  TR_BIN_NAME = "other_bin";
  TR_LABEL_MAPPING = "other_label";
  TR_REEL_AVAILABLE_FLAG = "other_available";
  TR_REC_INHIBIT_FLAG = "other_inhibit";
  TR_USER_FIELD_BASE = "other_field";
  TR_LAST_DEVICE = "other_device";

  rec.binName("a bin");
  rec.labelMapping("a map");
  rec.reelAvailable(true);
  rec.recInhibit(true);
  rec.userField(3, "a text");
  rec.lastDevice(L"a device");

  EXPECT_EQ(configText(reel, "other_bin"), "a bin");
  EXPECT_EQ(configText(reel, "other_label"), "a map");
  EXPECT_EQ(configText(reel, "other_available"), "1");
  EXPECT_EQ(configText(reel, "other_inhibit"), "1");
  EXPECT_EQ(configText(reel, "other_field3"), "a text");
  EXPECT_EQ(configText(reel, "other_device"), "a device");
  EXPECT_EQ(text(rec.binName()), "a bin");
}

TEST_F(Data, IdentifierKeyThatTheProgramStoresIsSeenByTheLibrary)
{
  ReelDbRec rec = addReel("R1", {}, {{"other_id", "R9"}});
  const Kept restored(TR_REEL_ID);
  TR_REEL_ID = "other_id";
  EXPECT_EQ(text(rec.reelId()), "R9");
}

TEST_F(Data, FieldNamesAreTheLibrarysAtFirst)
{
  const std::vector<std::pair<const char*, const char*>> names{
      {TR_REEL_ID, "reelid"},
      {TR_REC_INHIBIT_FLAG, "record_inhibit_flag"},
      {TR_REEL_AVAILABLE_FLAG, "reel_available_flag"},
      {TR_USER_FIELD_BASE, "reel_userfield"},
      {TR_LABEL_MAPPING, "reel_labelmapping"},
      {TR_BIN_NAME, "profile_bin_name"},
      {TR_LAST_DEVICE, "reel_last_device"},
      {TR_REEL_TYPE_NAME, "reel_type"},
      {TR_REEL_LENGTH, "reel_length"},
  };
  for (const auto& [name, text] : names)
    EXPECT_STREQ(text, name);
}

TEST_F(Data, ObjectsAreOneOnBothSides)
{
  EXPECT_EQ(ReelDbManager::theReelDbManager(), ReelDbManager::theReelDbManager_);
  EXPECT_EQ(theReelTypeManager(), &theReelTypeManager_);
}

TEST_F(Data, DefaultTypeThatTheProgramStoresIsSeenByTheLibrary)
{
  const Kept restored(ReelDbManager::systemWideDefaultReelType_);
  ReelDbManager::systemWideDefaultReelType_ = "of the program";
  enterProject("WITHOUT", {});
  EXPECT_STREQ(EditManager::ProjOpts().in("reeldb_defaultType"), "of the program");
}

} // namespace reeldb_tests
