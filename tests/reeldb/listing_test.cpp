// SPDX-License-Identifier: Apache-2.0
#include <functional>

#include "reeldb/reel_list_fixture.h"

namespace reeldb_tests {

namespace {

using Texts = std::vector<std::string>;
using Ids = std::vector<LightweightString<char>>;

constexpr int deck = 7;

class Listing : public ReelListTest {
protected:
  Listing() { deckAccepts({}); }

  /// Device 7 is a deck that accepts these reel types.
  void deckAccepts(const std::vector<std::string>& types)
  {
    reelhost::DeviceSettings settings = device(deck, "deck");
    settings.tapes = types;
    setDevices({settings});
  }

  void define(const char* type) { theReelTypeManager()->add(type, "VideoChannels=1"); }
  static bool isListedType(const char* type) { return static_cast<bool>(theReelTypeManager()->rep()->find(type)); }

  static Texts texts(const Ids& ids)
  {
    Texts all;
    for (const LightweightString<char>& id : ids)
      all.push_back(text(id));
    return all;
  }

  static Texts texts(const StringList& ids)
  {
    Texts all;
    for (unsigned i = 0; i < ids.count(); ++i)
      all.push_back(text(ids[i]));
    return all;
  }

  Texts all(bool includeLive)
  {
    Ids ids;
    manager().getAllReelIds(ids, includeLive);
    return texts(ids);
  }

  Texts compatible(int device = deck)
  {
    Ids ids;
    manager().getReelsCompatibleWithDevice(ids, device);
    return texts(ids);
  }

  int callsOf(const char* operation, const std::function<void()>& action)
  {
    return countOf(operationsOf(action), operation);
  }
};

} // namespace

// --- All reels -----------------------------------------------------------------------------------

TEST_F(Listing, AllReelsComeInTheOrderOfTheListWithTheirOwnSpelling)
{
  for (const char* const id : {"Zulu", "alpha", " Mike ", "*", "caf\xC3\xA9"})
    addReel(id);
  EXPECT_EQ(all(true), (Texts{"Zulu", "alpha", " Mike ", "*", "caf\xC3\xA9"}));
  EXPECT_EQ(all(false), (Texts{"Zulu", "alpha", " Mike ", "*", "caf\xC3\xA9"}));
}

TEST_F(Listing, ReelsOfTypeLiveAreLeftOutOnRequest)
{
  addReel("A", "Live");
  addReel("B", "live");
  addReel("C", "Live feed");
  addReel("D");
  addReel("E", "Live");
  EXPECT_EQ(all(true), (Texts{"A", "B", "C", "D", "E"}));
  EXPECT_EQ(all(false), (Texts{"B", "C", "D"}));
}

TEST_F(Listing, ReelsWithoutIdentifierAreLeftOut)
{
  addReel("");
  addReel("A");
  addReel("", "Live", {{"reelid", ""}});
  EXPECT_EQ(all(true), (Texts{"A"}));
  EXPECT_EQ(all(false), (Texts{"A"}));
}

TEST_F(Listing, DuplicatesStay)
{
  addReel("A");
  addReel("A");
  addReel("a");
  EXPECT_EQ(all(true), (Texts{"A", "A", "a"}));
  EXPECT_EQ(all(false), (Texts{"A", "A", "a"}));
}

TEST_F(Listing, OfTwoThatDifferInCaseOnlyTheFirstDecidesForBothWhetherTheyAreLive)
{
  addReel("cam", "Live");
  addReel("CAM", "listing tape");
  EXPECT_EQ(all(false), Texts{});
  EXPECT_EQ(all(true), (Texts{"cam", "CAM"}));

  enterProject("SWAPPED");
  addReel("cam", "listing tape");
  addReel("CAM", "Live");
  EXPECT_EQ(all(false), (Texts{"cam", "CAM"}));
}

TEST_F(Listing, AllReelsAreListedByTheAttribute)
{
  const Cookie reel = addReel("stored");
  script().attribute(reel, "shown");
  EXPECT_EQ(all(true), (Texts{"shown"}));
  EXPECT_EQ(all(false), (Texts{"shown"}));
}

TEST_F(Listing, ReelThatDoesNotOpenIsLeftOut)
{
  addReel("A");
  script().failOpen(addReel("B"));
  addReel("C");
  EXPECT_EQ(all(true), (Texts{"A", "C"}));
  EXPECT_EQ(all(false), (Texts{"A", "C"}));
}

TEST_F(Listing, ReelThatIsNotFoundAgainIsNotLiveThoughItsTypeIsAskedFor)
{
  addReel("A", "Live");
  script().failOpenNumber(2);
  EXPECT_EQ(callsOf("ODBViewRep::ODBViewRep", [&] { EXPECT_EQ(all(false), (Texts{"A"})); }), 1);
}

TEST_F(Listing, WithoutDatabaseNoReelIsLive)
{
  addReel("A", "Live");
  script().noDatabase(true);
  EXPECT_EQ(all(false), (Texts{"A"}));
}

TEST_F(Listing, InvalidCookiesAreOpenedAndLeftOut)
{
  CookieVec answer;
  answer.add(Cookie());
  answer.add(addReel("A"));
  script().maskSearchResult = answer;
  manager().buildReelList();
  EXPECT_EQ(callsOf("EditInfo::EditInfo", [&] { EXPECT_EQ(all(true), (Texts{"A"})); }), 2);
}

TEST_F(Listing, AllReelsAreAppendedToAVector)
{
  addReel("A");
  Ids ids{"before"};
  manager().getAllReelIds(ids, true);
  manager().getAllReelIds(ids, false);
  EXPECT_EQ(texts(ids), (Texts{"before", "A", "A"}));
}

TEST_F(Listing, AllReelsTakeThePlaceOfWhatAStringListHeld)
{
  addReel("B");
  addReel("A", "Live");
  addReel("B");
  StringList ids;
  ids.add("before");
  manager().getAllReelIds(ids, true);
  EXPECT_EQ(texts(ids), (Texts{"B", "A", "B"}));
  manager().getAllReelIds(ids, false);
  EXPECT_EQ(texts(ids), (Texts{"B", "B"}));

  manager().handleProjectExit();
  manager().getAllReelIds(ids, true);
  EXPECT_EQ(texts(ids), Texts{});
}

TEST_F(Listing, SortedStringListSortsWhatItIsGiven)
{
  for (const char* const id : {"c", "a", "b"})
    addReel(id);
  StringList ids;
  ids.sorted(true);
  manager().getAllReelIds(ids, true);
  EXPECT_EQ(texts(ids), (Texts{"a", "b", "c"}));
  manager().getReelsCompatibleWithDevice(ids, deck);
  EXPECT_EQ(texts(ids), (Texts{"a", "b", "c"}));
}

TEST_F(Listing, EmptyListIsListedWithoutAskingTheHost)
{
  EXPECT_EQ(operationsOf([&] {
              EXPECT_EQ(all(true), Texts{});
              EXPECT_EQ(all(false), Texts{});
              StringList ids;
              manager().getAllReelIds(ids, false);
            }),
            Texts{});
}

TEST_F(Listing, AllReelsTakeOneOpenEach)
{
  for (int i = 0; i < 5; ++i)
    addReel(numbered("R", i));
  EXPECT_EQ(operationsOf([&] { all(true); }).size(), 3U * 5U);
  EXPECT_EQ(callsOf("EditInfo::EditInfo", [&] { all(true); }), 5);
}

TEST_F(Listing, AllReelsButLiveOnesTakeAlsoALookupEach)
{
  for (const int n : {1, 2, 5, 12}) {
    enterProject(numbered("OF", n));
    for (int i = 0; i < n; ++i)
      addReel(numbered("R", i), i % 2 ? "Live" : "");
    const auto calls = operationsOf([&] { all(false); });
    EXPECT_EQ(countOf(calls, "EditInfo::EditInfo"), n + n * (n + 1) / 2);
    EXPECT_EQ(countOf(calls, "EditPtr::i_close"), n + n * (n + 1) / 2);
    EXPECT_EQ(countOf(calls, "ODBViewRep::displayRecordsAt"), n);
    EXPECT_EQ(countOf(calls, "EditPtr::i_open"), 0);
  }
}

TEST_F(Listing, ReelsAreThoseListedWhenItBegan)
{
  for (const char* const id : {"A", "B", "C"})
    addReel(id);
  script().before = [&](const std::string& operation, const std::string&) {
    if (operation == "EditInfo::getAttrib" || operation == "ODBViewRep::displayRecordsAt")
      manager().handleProjectExit(); // a host may call the library meanwhile
  };
  EXPECT_EQ(all(true), (Texts{"A", "B", "C"}));
  manager().buildReelList();
  EXPECT_EQ(compatible(), (Texts{"A", "B", "C"}));
  EXPECT_EQ(manager().reelList.count(), 0);
}

TEST_F(Listing, ReelsAreThoseListedWhenItBeganAlsoWhenTheListIsRebuiltUnderneath)
{
  for (const char* const id : {"A", "B", "C"})
    addReel(id);
  for (const char* const operation : {"EditInfo::getAttrib", "ODBViewRep::displayRecordsAt"}) {
    script().maskSearchResult.reset();
    script().before = nullptr;
    manager().buildReelList();
    holdReelListOnlyInTheManager();
    script().before = [&](const std::string& called, const std::string&) {
      if (called == operation)
        replaceReelList();
    };
    EXPECT_EQ((Texts{"A", "B", "C"}), std::string(operation) == "EditInfo::getAttrib" ? all(true) : compatible());
    EXPECT_FALSE(manager().reelList[0].valid());
  }
}

TEST_F(Listing, IsOfOneManagersListAlone)
{
  addReel("A", "Live");
  addReel("B");
  ReelDbManager second;
  second.buildReelList();
  manager().handleProjectExit();
  EXPECT_EQ(all(true), Texts{});
  EXPECT_EQ(compatible(), Texts{});

  Ids ids;
  second.getAllReelIds(ids, false);
  EXPECT_EQ(texts(ids), (Texts{"B"}));
  second.getReelsCompatibleWithDevice(ids, deck);
  EXPECT_EQ(texts(ids), (Texts{"B", "A", "B"}));
}

// --- Reels for a device --------------------------------------------------------------------------

TEST_F(Listing, DeviceGetsTheReelsOfTypesItAcceptsAndOfTypesNobodyDefined)
{
  define("listing dv");
  define("listing beta");
  addReel("A", "listing dv");
  addReel("B", "listing beta");
  addReel("C", "listing unknown");
  addReel("D");
  addReel("E", "listing dv");
  deckAccepts({"listing other", "listing dv"});
  EXPECT_EQ(compatible(), (Texts{"A", "C", "D", "E"}));

  deckAccepts({"listing beta", "listing dv"});
  EXPECT_EQ(compatible(), (Texts{"A", "B", "C", "D", "E"}));

  deckAccepts({});
  EXPECT_EQ(compatible(), (Texts{"C", "D"}));
}

TEST_F(Listing, TypesOfADeviceAreCompareLetterForLetter)
{
  define("listing dv");
  addReel("A", "listing dv");
  deckAccepts({"Listing dv", "listing dv ", "listing", "LISTING DV"});
  EXPECT_EQ(compatible(), Texts{});
}

TEST_F(Listing, DeviceMayAcceptTypesNobodyDefined)
{
  addReel("A", "listing unknown");
  deckAccepts({"listing unknown"});
  EXPECT_EQ(compatible(), (Texts{"A"}));
  EXPECT_FALSE(isListedType("listing unknown")) << "asking adds nothing";
}

TEST_F(Listing, ReelIsNoLongerForEveryDeviceOnceTheChannelsOfItsTypeWereRead)
{
  addReel("A", "listing asked for");
  EXPECT_EQ(compatible(), (Texts{"A"}));
  EXPECT_EQ(theReelTypeManager()->numVideoChans("listing asked for"), 0);
  EXPECT_EQ(compatible(), Texts{});
}

TEST_F(Listing, UnknownDeviceGetsTheReelsOfTypesNobodyDefined)
{
  define("listing dv");
  addReel("A", "listing dv");
  addReel("B", "listing unknown");
  addReel("C");
  for (const int device : {999, -1, 0})
    EXPECT_EQ(compatible(device), (Texts{"B", "C"})) << device;
}

TEST_F(Listing, LiveReelsAreReelsLikeOthersToADevice)
{
  addReel("A", "Live");
  EXPECT_EQ(compatible(), (Texts{"A"}));
}

TEST_F(Listing, WithoutDatabaseEveryReelIsForEveryDevice)
{
  define("listing dv");
  addReel("A", "listing dv");
  script().noDatabase(true);
  EXPECT_EQ(compatible(), (Texts{"A"}));
}

TEST_F(Listing, ReelsForADeviceAreListedByTheStoredKeyAlsoWhenItIsEmpty)
{
  const Cookie shown = addReel("stored");
  addReel("");
  script().attribute(shown, "shown");
  EXPECT_EQ(compatible(), (Texts{"stored", ""}));
}

TEST_F(Listing, ReelsForADeviceThatDoNotOpenAreListedWithoutIdentifier)
{
  define("listing dv");
  script().failOpen(addReel("A", "listing dv"));
  script().failOpen(addReel("B"));
  EXPECT_EQ(compatible(), (Texts{""})) << "the type is known from the database, the identifier is not";
}

TEST_F(Listing, TypeOfAReelForADeviceIsItsOwn)
{
  define("listing dv");
  addReel("cam", "listing dv");
  addReel("CAM", "listing unknown");
  EXPECT_EQ(compatible(), (Texts{"CAM"}));
  EXPECT_EQ(callsOf("EditInfo::EditInfo", [&] { compatible(); }), 0) << "no reel is looked up by identifier";
}

TEST_F(Listing, InvalidCookiesAreNotForADevice)
{
  CookieVec answer;
  answer.add(Cookie());
  answer.add(addReel("A"));
  answer.add(Cookie());
  script().maskSearchResult = answer;
  manager().buildReelList();

  const auto calls = operationsOf([&] { EXPECT_EQ(compatible(), (Texts{"A"})); });
  EXPECT_EQ(countOf(calls, "ODBViewRep::displayRecordsAt"), 1);
  EXPECT_EQ(countOf(calls, "EditPtr::i_open"), 1);
}

TEST_F(Listing, ReelsForADeviceAreAppendedToAVector)
{
  addReel("A");
  Ids ids{"before"};
  manager().getReelsCompatibleWithDevice(ids, deck);
  manager().getReelsCompatibleWithDevice(ids, deck);
  EXPECT_EQ(texts(ids), (Texts{"before", "A", "A"}));
}

TEST_F(Listing, ReelsForADeviceTakeThePlaceOfWhatAStringListHeld)
{
  define("listing dv");
  addReel("B");
  addReel("X", "listing dv");
  addReel("A");
  addReel("B");
  StringList ids;
  ids.add("before");
  manager().getReelsCompatibleWithDevice(ids, deck);
  EXPECT_EQ(texts(ids), (Texts{"B", "A", "B"}));

  manager().handleProjectExit();
  manager().getReelsCompatibleWithDevice(ids, deck);
  EXPECT_EQ(texts(ids), Texts{});
}

TEST_F(Listing, ConfigurationOfTheDeviceIsFetchedFirstAndOnceAlsoForNoReels)
{
  const Texts fetched = {"theConfigurationManager()", "ExtDeviceConfigurationManager::getConfig(7) -> \"deck\""};
  EXPECT_EQ(linesOf([&] { compatible(); }), fetched);

  for (const char* const id : {"A", "B", "C"})
    addReel(id);
  const auto lines = linesOf([&] { compatible(); });
  EXPECT_EQ(Texts(lines.begin(), lines.begin() + 2), fetched);
  const auto calls = operationsOf([&] { compatible(); });
  EXPECT_EQ(countOf(calls, "ExtDeviceConfigurationManager::getConfig"), 1);
  EXPECT_EQ(countOf(calls, "ODBViewRep::displayRecordsAt"), 3);
  EXPECT_EQ(countOf(calls, "EditPtr::i_open"), 3);
}

TEST_F(Listing, StringListIsEmptyAfterAHostCallThatThrew)
{
  addReel("A");
  const auto leftAfterFault = [&](const std::function<void(StringList&)>& list) {
    StringList ids;
    ids.add("before");
    script().throwAt(1);
    EXPECT_THROW(list(ids), reelhost::ScriptedFault);
    script().throwAt(0);
    return texts(ids);
  };
  EXPECT_EQ(leftAfterFault([&](StringList& ids) { manager().getAllReelIds(ids, true); }), Texts{});
  EXPECT_EQ(leftAfterFault([&](StringList& ids) { manager().getReelsCompatibleWithDevice(ids, deck); }), Texts{});
}

} // namespace reeldb_tests
