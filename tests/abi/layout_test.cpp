// SPDX-License-Identifier: Apache-2.0
//
// What programs that were compiled against these headers rely on without a word: sizes, places of members, and which
// function stands where in a table of virtual functions.
#include <dlfcn.h>

#include <cstddef>
#include <cstring>
#include <new>
#include <type_traits>
#include <typeinfo>
#include <utility>
#include <vector>

#include "CreateNewReelAction.h"
#include "LabelMaps.h"
#include "MainThread.h"
#include "ReelDbVersion.h"
#include "ReelTypeManager.h"
#include "host/codes.h"
#include "host/events.h"
#include "host/projdb.h"
#include "host/text.h"
#include "support/library_fixture.h"

namespace reeldb_tests {

namespace {

// offsetof is conditional for classes with virtual functions; both compilers support it.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Winvalid-offsetof"

// --- Values of the boundary: a library and a host agree on these ---------------------------------
static_assert(sizeof(LightweightString<char>) == sizeof(void*) && sizeof(LightweightString<wchar_t>) == sizeof(void*));
static_assert(sizeof(Zr::UUID) == 16 && sizeof(Cookie) == 20 && alignof(Cookie) == 2);
static_assert(sizeof(CookieVec) == 16 && sizeof(Array) == 24 && sizeof(StringList) == sizeof(Array));
static_assert(sizeof(ArrayRec) == 16 && sizeof(ProjectListener) == sizeof(void*));
static_assert(sizeof(AssocList) == 16 && sizeof(AssocListRep::Entry) == 32);
static_assert(sizeof(LabelMappingSet) == 14 * 12 && offsetof(LabelMappingSet::Entry, source) == 4 &&
              offsetof(LabelMappingSet::Entry, format) == 8);
static_assert(sizeof(IdStamp) == 4 && sizeof(EditModification) == 4);

// --- Numbers of the boundary: each is compiled into libraries and hosts --------------------------
static_assert(codes::openAsUsual == 0 && codes::materialLog == 1 && codes::reelLog == 9);
static_assert(codes::reelIdAttribute == 20 && codes::madeOrImported == 59);
static_assert(codes::videoChannel == 1 && codes::audioChannel == 2 && codes::channelCountMask == 0xFFFF);
static_assert(codes::reelSearchMask == 0x10040 && codes::reelSearchMaskOff == 0xFFFEEF9F);
static_assert(codes::shotSearchFirst == 1 && codes::shotSearchSecond == 102350);
static_assert(codes::wordForReel == 10043 && codes::textBufferSize == 2048 && codes::longestText == 2047);
static_assert(codes::deviceData == 1 && codes::threadMask == 0xFFFF);
static_assert(codes::port9Pin == 0 && codes::port1394 == 1 && codes::portNamingReel == 2 && codes::noPort == 3);
static_assert(codes::compositeInput == 0 && codes::sVideoInput == 1 && codes::componentInput == 2);
static_assert(codes::sdiInput == 3 && codes::hdmiInput == 4 && codes::input1394 == 5 && codes::noVideoInput == 9);
static_assert(codes::noFrameRate == -1 && codes::rate25 == 3 && codes::rate2997 == 4 && codes::rate30 == 5);
static_assert(codes::rate24 == 6 && codes::rate2398 == 7 && codes::rate50 == 8);
static_assert(codes::rate5994 == 9 && codes::rate60 == 10);
static_assert(codes::fromVitc == 1 && codes::fromVitc2 == 2 && codes::from1394 == 9);
static_assert(codes::from9PinLtc == 3 && codes::from9PinVitc == 4 && codes::from9PinTimer == 5);
static_assert(codes::counts30Fps == 0 && codes::counts25Fps == 1 && codes::counts50Fps == 9 &&
              codes::counts60Fps == 10);

// --- The library's own classes -------------------------------------------------------------------
static_assert(sizeof(ReelDbClient) == sizeof(ArrayRec) + sizeof(LightweightString<char>));

static_assert(offsetof(ReelDbManager, reelList) == 8);
static_assert(offsetof(ReelDbManager, reelsInUse) == 24);
static_assert(offsetof(ReelDbManager, lastProject) == 48);
static_assert(offsetof(ReelDbManager, notifyHoldCount) == 68);
static_assert(offsetof(ReelDbManager, clients) == 72);
static_assert(sizeof(ReelDbManager) == 96);

static_assert(sizeof(ReelDbRec) == sizeof(Cookie) && alignof(ReelDbRec) == alignof(Cookie));
static_assert(!std::is_polymorphic_v<ReelDbRec> && std::is_base_of_v<Cookie, ReelDbRec>);
static_assert(sizeof(ReelTypeManager) == sizeof(AssocList) && !std::is_polymorphic_v<ReelTypeManager>);
static_assert(std::is_base_of_v<AssocList, ReelTypeManager>);
static_assert(sizeof(CreateNewReelAction) == 24 + sizeof(Zr::InternalRefCount));
static_assert(sizeof(Zr::InternalRefCount) == 16);

static_assert(offsetof(ReelType, name) == 0 && offsetof(ReelType, numVideoChans) == 8 &&
              offsetof(ReelType, numAudioChans) == 12 && sizeof(ReelType) == 16);

#pragma GCC diagnostic pop

// --- Inheritance ---------------------------------------------------------------------------------
static_assert(std::is_base_of_v<ProjectListener, ReelDbManager> && !std::has_virtual_destructor_v<ReelDbManager>);
static_assert(std::is_base_of_v<ArrayRec, ReelDbClient> && std::has_virtual_destructor_v<ReelDbClient>);
static_assert(std::is_base_of_v<iExecutableAction, CreateNewReelAction>);
static_assert(std::is_base_of_v<iObject, iExecutableAction> && std::is_base_of_v<Zr::InternalRefCount, iObject>);
static_assert(std::is_base_of_v<EditPtr, EditInfo> && std::is_base_of_v<Array, StringList>);

// --- Copies --------------------------------------------------------------------------------------
static_assert(!std::is_copy_constructible_v<ReelDbClient> && !std::is_copy_assignable_v<ReelDbClient>);
static_assert(!std::is_copy_constructible_v<ReelDbManager> && !std::is_copy_assignable_v<ReelDbManager>);
static_assert(!std::is_copy_constructible_v<ReelTypeManager> && !std::is_copy_assignable_v<ReelTypeManager>);
static_assert(!std::is_copy_constructible_v<EditModifier> && !std::is_move_constructible_v<EditModifier>);
static_assert(std::is_copy_constructible_v<ReelDbRec> && std::is_copy_assignable_v<ReelDbRec>);

// --- Shapes of declarations that callers depend on -----------------------------------------------
template <class T>
using Text = LightweightString<T>;
using Ids = std::vector<Text<char>>;

static_assert(std::is_same_v<decltype(theConfigurationManager()), ExtDeviceConfigurationManager&>);
static_assert(std::is_same_v<decltype(theReelTypeManager()), ReelTypeManager*>);
static_assert(std::is_same_v<decltype(&ReelDbManager::theReelDbManager), ReelDbManager* (*)()>);
static_assert(std::is_same_v<decltype(ReelDbManager::theReelDbManager_), ReelDbManager*>);
static_assert(std::is_same_v<decltype(ReelDbManager::systemWideDefaultReelType_), Text<char>>);
static_assert(std::is_same_v<decltype(reeldbDllVersionStr()), const char*>);
static_assert(std::is_same_v<decltype(glib_pid), int> && std::is_same_v<decltype(TR_BIN_NAME), const char*>);
static_assert(std::is_constructible_v<CreateNewReelAction, const Text<char>&, int>);
static_assert(std::is_convertible_v<Cookie, ReelDbRec> && std::is_default_constructible_v<ReelDbRec>);
static_assert(std::is_constructible_v<ReelDbClient, Text<char>> && !std::is_convertible_v<Text<char>, ReelDbClient>);
static_assert(std::is_same_v<decltype(EditManager::makeNewEdit(Cookie())), EditModifier>);
static_assert(std::is_same_v<decltype(std::declval<const configb&>().in("")), const char*>);

template <class R, class C, class... A>
using Member = R (C::*)(A...);
[[maybe_unused]] constexpr Member<void, ReelDbManager, Ids&, bool> allIds = &ReelDbManager::getAllReelIds;
[[maybe_unused]] constexpr Member<void, ReelDbManager, StringList&, bool> allIdsAsList = &ReelDbManager::getAllReelIds;
[[maybe_unused]] constexpr Member<ReelDbRec, ReelDbManager, const Text<char>&, int> create =
    &ReelDbManager::createNewReel;
[[maybe_unused]] constexpr Member<int, ReelDbManager, Text<char>> check = &ReelDbManager::checkReelValid;
[[maybe_unused]] constexpr Member<bool, ReelDbManager, Text<char>> isMarked = &ReelDbManager::reelInUse;
[[maybe_unused]] constexpr Member<void, ReelDbManager, Text<char>, bool> mark = &ReelDbManager::reelInUse;
[[maybe_unused]] constexpr Member<bool, ReelDbManager, const NotifyMsg&> deviceChange =
    &ReelDbManager::handleDeviceChange;
[[maybe_unused]] constexpr Member<ReelType, ReelTypeManager, const unsigned&> byIndex = &ReelTypeManager::type;
[[maybe_unused]] constexpr Member<ReelType, ReelTypeManager, const Text<char>&> byName = &ReelTypeManager::type;

// --- Reading objects as a compiled program would -------------------------------------------------

/// What lies at this offset in an object.
template <class T>
T at(const void* object, std::size_t offset)
{
  T value;
  std::memcpy(&value, static_cast<const char*>(object) + offset, sizeof value);
  return value;
}

/// The function in this slot of the object's (first) table of virtual functions.
void* slot(const void* object, std::size_t n)
{
  return at<void*>(at<void*>(object, 0), n * sizeof(void*));
}

/// Calls the function in a slot as a member function of the object.
template <class R = void, class... A>
R callSlot(void* object, std::size_t n, A... arguments)
{
  return reinterpret_cast<R (*)(void*, A...)>(slot(object, n))(object, arguments...);
}

class Layout : public LibraryTest {
protected:
  Heard heard_;
};

/// The host's function of this name. Unlike a class that is made from the same headers, it shows their order.
void* hosts(const char* mangled)
{
  void* const function = dlsym(RTLD_DEFAULT, mangled);
  EXPECT_NE(function, nullptr) << mangled;
  return function;
}

} // namespace

TEST_F(Layout, ClientHoldsItsReelBehindTheRecord)
{
  const LightweightString<char> id("R1");
  ReelDbClient client(id);
  EXPECT_EQ(at<void*>(&client, 8), nullptr) << "the host's own member";
  EXPECT_EQ(at<void*>(&id, 0), at<void*>(&client, 16)) << "copies share the text";
}

TEST_F(Layout, ActionHoldsIdentifierAndDevice)
{
  const LightweightString<char> id("R1");
  const Zr::Ptr<CreateNewReelAction> action(new CreateNewReelAction(id, 0x1234567));
  EXPECT_EQ(at<void*>(&id, 0), at<void*>(action.get(), 8));
  EXPECT_EQ(at<int>(action.get(), 16), 0x1234567);
  const void* const counted = static_cast<const Zr::InternalRefCount*>(action.get());
  EXPECT_EQ(static_cast<const char*>(counted) - reinterpret_cast<const char*>(action.get()), 24)
      << "the shared base comes last";
}

TEST_F(Layout, ManagerListensInTheOrderOfTheHost)
{
  ReelDbManager& listener = manager();
  EXPECT_EQ(slot(&listener, 0), hosts("_ZN15ProjectListener22handleLogsModificationERK9CookieVec"));
  EXPECT_EQ(slot(&listener, 2), hosts("_ZN15ProjectListener18handleLogsDeletionERK9CookieVec17LightweightStringIcE"));
  EXPECT_EQ(slot(&listener, 3), hosts("_ZN15ProjectListener16handleLogDirtiedERK6Cookie"));
  EXPECT_EQ(slot(&listener, 4), hosts("_ZN15ProjectListener16handleLogStorageERK6Cookieb"));

  script().projectCookies = {Cookie("PLAYOUT", false)};
  addLog(9, "R1");
  callSlot(&listener, 5);
  EXPECT_EQ(text(listener.lastProject), "PLAYOUT") << "entry";
  EXPECT_EQ(listener.reelList.count(), 1);

  const Cookie shot = addShot("R2");
  const EditModification imported(EditModificationType(59));
  callSlot<void, const Cookie&, const EditModification&>(&listener, 1, shot, imported);
  EXPECT_TRUE(listener.doesReelExist("R2")) << "modification";

  callSlot(&listener, 6);
  EXPECT_EQ(listener.reelList.count(), 0) << "exit";
}

TEST_F(Layout, ClientsHandlersFollowTheRecords)
{
  ReelDbClient client;
  EXPECT_EQ(slot(&client, 2), hosts("_ZNK8ArrayRec7compareERKS_"));
  EXPECT_EQ(slot(&client, 3), hosts("_ZNK8ArrayReceqERKS_"));
  EXPECT_EQ(slot(&client, 4), hosts("_ZNK8ArrayRecneERKS_"));
  EXPECT_EQ(slot(&client, 5), hosts("_ZNK8ArrayRec7printOnER10GrowString"));

  EXPECT_EQ(callSlot<int>(static_cast<ArrayRec*>(&client), 2, static_cast<const ArrayRec*>(&client)), 0);

  RecordingClient recording(heard_);
  callSlot(&recording, 6, LightweightString<char>("R1"));
  manager().informReelDbRecChanged("R1");
  EXPECT_EQ(heard_, (Heard{"our()", "some(R1)"})) << "setReelIdOfInterest";
  heard_.clear();
  callSlot(&recording, 7, LightweightString<char>("R2"));
  EXPECT_EQ(heard_, (Heard{"dbC(R2)"}));
  callSlot(&recording, 8);
  EXPECT_EQ(heard_, (Heard{"dbC(R2)", "our()"}));
  callSlot(&recording, 9, LightweightString<char>("R3"));
  EXPECT_EQ(heard_, (Heard{"dbC(R2)", "our()", "some(R3)"}));
}

TEST_F(Layout, ClientEndsThroughItsFirstTwoSlots)
{
  alignas(RecordingClient) unsigned char place[sizeof(RecordingClient)];
  RecordingClient* const kept = ::new (place) RecordingClient(heard_);
  ASSERT_EQ(manager().clients.count(), 1U);
  callSlot(kept, 0);
  EXPECT_EQ(manager().clients.count(), 0U) << "the destructor alone: the memory stays";

  ReelDbClient* const freed = new ReelDbClient;
  ASSERT_EQ(manager().clients.count(), 1U);
  callSlot(freed, 1);
  EXPECT_EQ(manager().clients.count(), 0U) << "the destructor and the memory";
}

TEST_F(Layout, ActionIsExecutedThroughItsThirdSlot)
{
  const Zr::Ptr<CreateNewReelAction> action(new CreateNewReelAction("R1", -1));
  EXPECT_FALSE(manager().doesReelExist("R1"));
  callSlot(action.get(), 2);
  EXPECT_TRUE(manager().doesReelExist("R1"));
}

TEST_F(Layout, ActionEndsThroughItsFirstTwoSlots)
{
  alignas(CreateNewReelAction) unsigned char place[sizeof(CreateNewReelAction)];
  CreateNewReelAction* const kept = ::new (place) CreateNewReelAction("R1", -1);
  callSlot(kept, 0);
  callSlot(new CreateNewReelAction("R1", -1), 1); // a leak or a double release shows under the address sanitizer
}

TEST_F(Layout, ExceptionsAndTypesAreKnownOnBothSides)
{
  ReelDbClient client;
  ArrayRec* const record = &client;
  EXPECT_EQ(&client, dynamic_cast<ReelDbClient*>(record));
  EXPECT_STREQ(typeid(*record).name(), "12ReelDbClient");
  ProjectListener* const listener = &manager();
  EXPECT_EQ(&manager(), dynamic_cast<ReelDbManager*>(listener));
}

} // namespace reeldb_tests
