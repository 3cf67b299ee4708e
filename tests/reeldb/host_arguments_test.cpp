// SPDX-License-Identifier: Apache-2.0
//
// Arguments that the library passes to the host and that the standalone host ignores. The program replaces the
// operations that take them, so a case sees them. It is a separate program because the replacements apply to all of it.
#include <cstring>
#include <utility>

#include "MainThread.h"
#include "host/action.h"
#include "host/codes.h"
#include "host/events.h"
#include "host/projdb.h"
#include "journal/watch.h"
#include "support/hosts_own.h"
#include "support/library_fixture.h"

namespace {

struct Passed {
  Zr::Ptr<iExecutableAction> deferred;
  std::vector<std::pair<std::string, bool>> readTexts; ///< the texts from which Cookies were made
  std::vector<bool> writtenTexts;
  std::vector<const oledb*> viewed;
  int partsOfTexts = 0; ///< texts made of the first characters of another
};

Passed& passed()
{
  static Passed& arguments = *new Passed;
  return arguments;
}

} // namespace

void defer(const Zr::Ptr<iExecutableAction>& action)
{
  passed().deferred = action;
}

Cookie::Cookie(const char* text, bool flag) : tag_(0), kind_('I')
{
  passed().readTexts.emplace_back(text, flag);
  reeldb_tests::hostsOwn<void(Cookie*, const char*, bool)>("_ZN6CookieC1EPKcb")(this, text, flag);
}

LightweightString<char> Cookie::asString(bool flag) const
{
  passed().writtenTexts.push_back(flag);
  return reeldb_tests::hostsOwn<LightweightString<char>(const Cookie*, bool)>("_ZNK6Cookie8asStringEb")(this, flag);
}

void makeText(LightweightString<char>* text, const char* from,
              std::size_t length) asm("_ZN17LightweightStringIcEC1EPKcm");

void makeText(LightweightString<char>* text, const char* from, std::size_t length)
{
  ++passed().partsOfTexts;
  using Make = void(LightweightString<char>*, const char*, std::size_t);
  reeldb_tests::hostsOwn<Make>("_ZN17LightweightStringIcEC1EPKcm")(text, from, length);
}

// The host's constructor constructs the object again. It must not fail here, or the base would be destroyed twice.
ODBViewRep::ODBViewRep(oledb* database) : impl_(nullptr)
{
  passed().viewed.push_back(database);
  reeldb_tests::hostsOwn<void(ODBViewRep*, oledb*)>("_ZN10ODBViewRepC1EP5oledb")(this, database);
}

namespace reeldb_tests {

namespace {

class HostArguments : public LibraryTest {
protected:
  ~HostArguments() override { passed() = {}; }

  /// The device of the deferred action, at the place where compiled programs read it.
  static int deferredDevice()
  {
    int device = 0;
    if (const iExecutableAction* const action = passed().deferred.get())
      std::memcpy(&device, reinterpret_cast<const char*>(action) + 16, sizeof device);
    return device;
  }
};

TEST_F(HostArguments, CreationDeferredForImportedMaterialIsForNoDevice)
{
  const Cookie shot = addShot("R1");
  script().coPid = [] { return glib_pid + 1; };
  manager().handleLogModification(shot, EditModification(codes::madeOrImported));
  EXPECT_EQ(deferredDevice(), -1);
}

TEST_F(HostArguments, CreationDeferredForALiveSourceIsForNoDevice)
{
  reelhost::DeviceSettings camera = device(4, "Cam 2");
  camera.tapes = {"Live"};
  setDevices({camera});
  script().coPid = [] { return glib_pid + 1; };
  manager().checkLiveDeviceMedia(4);
  EXPECT_EQ(deferredDevice(), -1);
}

TEST_F(HostArguments, PlaceholderProjectIsReadFromItsTextWithFalse)
{
  passed().readTexts.clear();
  manager().handleProjectEntry();
  EXPECT_EQ(passed().readTexts, (std::vector<std::pair<std::string, bool>>{{"P0001000", false}}));
}

TEST_F(HostArguments, EmptyIdentifierIsTrimmedWithoutMakingAnother)
{
  const LightweightString<char> empty, id("R1");
  passed().partsOfTexts = 0;
  manager().trimLeadingTrailingSpaces(empty);
  EXPECT_EQ(passed().partsOfTexts, 0);
  manager().trimLeadingTrailingSpaces(id);
  EXPECT_EQ(passed().partsOfTexts, 1);
}

TEST_F(HostArguments, TypeIsReadInAViewOnTheTablesOfTheProjectsDatabase)
{
  ReelDbRec reel = addReel("R1");
  passed().viewed.clear();
  reel.typeName();
  ASSERT_EQ(passed().viewed.size(), 1u);
  EXPECT_NE(passed().viewed[0], nullptr);
  EXPECT_EQ(passed().viewed[0], EditManager::getProjdb()->database());
}

TEST_F(HostArguments, ShotIsPrintedByItsTextWithFalse)
{
  const Cookie reel = addReel("R1");
  addShot("R1");
  CookieVec shots;
  reelhost::watch(reelhost::Watcher::Script, false); // a watched host writes Cookies as text
  passed().writtenTexts.clear();
  manager().addShotsFromReel(reel, shots);
  EXPECT_EQ(shots.count(), 1);
  EXPECT_EQ(passed().writtenTexts, std::vector<bool>{false});
}

} // namespace

} // namespace reeldb_tests
