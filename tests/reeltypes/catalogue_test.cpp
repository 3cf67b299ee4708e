// SPDX-License-Identifier: Apache-2.0
//
// Lookups in the catalogue: parameters, channel counts, types by position and by name, all names.
#include <cstddef>
#include <new>
#include <ostream>
#include <type_traits>

#include "reeltypes/known_type.h"
#include "support/counting_services.h"
#include "support/hosts_own.h"
#include "support/ledger.h"
#include "support/library_fixture.h"

namespace reeldb_tests {
namespace {

bool flagOfTheBody = true; // the flag of the last body that was made
bool listFails = false;
std::vector<std::string>* upperCased = nullptr; ///< records the converted texts while it is not null

} // namespace
} // namespace reeldb_tests

// The program's own functions replace the host's. New lists are marked, to show how the library treats the mark.
AssocListRep::AssocListRep(bool flag) : impl_(nullptr)
{
  reeldb_tests::flagOfTheBody = flag;
  reeldb_tests::hostsOwn<void(AssocListRep*, bool)>("_ZN12AssocListRepC1Eb")(this, flag);
}

AssocList::AssocList(AssocListRep* rep) : rep_(reeldb_tests::listFails ? throw std::bad_alloc() : rep), flag_(true) {}

void toUpper(LightweightString<char>& text)
{
  if (reeldb_tests::upperCased)
    reeldb_tests::upperCased->push_back(text.c_str());
  reeldb_tests::hostsOwn<void(LightweightString<char>&)>("_Z7toUpperR17LightweightStringIcE")(text);
}

namespace reeldb_tests {
namespace {

using Names = std::vector<std::string>;

static_assert(std::is_same_v<decltype(theReelTypeManager_), ReelTypeManager>);
static_assert(std::is_base_of_v<AssocList, ReelTypeManager>);
static_assert(!std::is_polymorphic_v<ReelTypeManager>);
static_assert(!std::is_copy_constructible_v<ReelTypeManager> && !std::is_copy_assignable_v<ReelTypeManager>);
static_assert(sizeof(ReelTypeManager) == sizeof(AssocList));
static_assert(offsetof(ReelType, name) < offsetof(ReelType, numVideoChans));
static_assert(offsetof(ReelType, numVideoChans) < offsetof(ReelType, numAudioChans));
static_assert(std::is_same_v<decltype(ReelType::numVideoChans), int>);
static_assert(std::is_same_v<decltype(ReelType::numAudioChans), int>);

/// The list's mark, which is visible only in a derived class.
struct Mark : ReelTypeManager {
  static bool of(const ReelTypeManager& catalogue) { return catalogue.*&Mark::flag_; }
};

/// Each test has its own catalogue, which is empty at the start.
class Catalogue : public LibraryTest {
protected:
  Catalogue() { catalogue.rep()->discardAll(); }

  /// Stores a parameter string untrimmed.
  void put(const char* name, const char* params) { catalogue[name].value = params; }

  Names names() const
  {
    Names all;
    for (unsigned i = 0; i < catalogue.rep()->count(); ++i)
      all.push_back(catalogue.at(i).key.c_str());
    return all;
  }

  bool known(const char* name) const { return static_cast<bool>(catalogue.rep()->find(name)); }

  static Names texts(const StringList& list)
  {
    Names all;
    for (unsigned i = 0; i < list.count(); ++i)
      all.push_back(list[i].c_str());
    return all;
  }

  ReelTypeManager catalogue;
};

// --- The one catalogue ---------------------------------------------------------------------------

TEST_F(Catalogue, TheOneIsTheExportedObject)
{
  EXPECT_EQ(theReelTypeManager(), &theReelTypeManager_);
  EXPECT_EQ(theReelTypeManager(), theReelTypeManager());
}

TEST_F(Catalogue, ListIsNotMarked)
{
  EXPECT_FALSE(Mark::of(catalogue));
}

TEST_F(Catalogue, BodyOfTheListIsMadeWithFalse)
{
  EXPECT_FALSE(flagOfTheBody);
}

TEST_F(Catalogue, BodyIsReleasedWhenTheListCannotBeMade)
{
  NEEDS_ROUTED_NEW;
  const Ledger ledger;
  listFails = true;
  EXPECT_THROW(ReelTypeManager(), std::bad_alloc);
  listFails = false;
  EXPECT_EQ(ledger.open(), 0);
}

TEST_F(Catalogue, IsAFindOrCreateListByExactName)
{
  put("dv", "A=1");
  EXPECT_TRUE(known("dv"));
  EXPECT_FALSE(known("DV"));
  EXPECT_EQ(names(), (Names{"dv"}));
}

TEST_F(Catalogue, AskingWhetherATypeIsKnownAddsNothing)
{
  const unsigned before = theReelTypeManager()->rep()->count();
  EXPECT_FALSE(reeldb::isKnownType("catalogue test: never made"));
  EXPECT_EQ(theReelTypeManager()->rep()->count(), before);
  theReelTypeManager()->add("catalogue test: made", "");
  EXPECT_TRUE(reeldb::isKnownType("catalogue test: made"));
  EXPECT_FALSE(reeldb::isKnownType("Catalogue test: made"));
}

TEST_F(Catalogue, EndOfACatalogueDiscardsItsTypes)
{
  Zr::Ptr<AssocListRep> rep;
  {
    ReelTypeManager shortLived;
    shortLived.add("Tape", "A=1");
    rep = shortLived.rep();
    ASSERT_GE(rep->count(), 1u);
  }
  EXPECT_EQ(rep->count(), 0u);
  EXPECT_FALSE(rep->find("Tape"));
}

TEST_F(Catalogue, EndOfACatalogueLeavesAHeldTypeAlone)
{
  Zr::Ptr<AssocListRep::Entry> held;
  {
    ReelTypeManager shortLived;
    shortLived.add("Tape", "A=1");
    held = shortLived.rep()->find("Tape");
  }
  ASSERT_TRUE(held);
  EXPECT_STREQ(held->key.c_str(), "Tape");
  EXPECT_STREQ(held->value.c_str(), "A=1");
}

// --- getReelParam --------------------------------------------------------------------------------

struct Question {
  const char* params;
  const char* name;
  bool found;
  int value;
};

void PrintTo(const Question& asked, std::ostream* out)
{
  *out << ::testing::PrintToString(std::string(asked.params)) << " asked for "
       << ::testing::PrintToString(std::string(asked.name));
}

class CatalogueParam : public Catalogue, public ::testing::WithParamInterface<Question> {};

TEST_P(CatalogueParam, FirstTokenWithNameAndValueDecides)
{
  const Question& asked = GetParam();
  put("T", asked.params);
  int value = -987;
  EXPECT_EQ(catalogue.getReelParam("T", asked.name, value), asked.found) << asked.params;
  EXPECT_EQ(value, asked.found ? asked.value : -987) << asked.params;
  EXPECT_STREQ(catalogue["T"].value.c_str(), asked.params);
}

INSTANTIATE_TEST_SUITE_P(Tokens, CatalogueParam,
                         ::testing::Values(Question{"VideoChannels=1 AudioChannels=2", "VideoChannels", true, 1},
                                           Question{"VideoChannels=1 AudioChannels=2", "AudioChannels", true, 2},
                                           Question{"VideoChannels=1 AudioChannels=2", "audiochannels", true, 2},
                                           Question{"VideoChannels=1 AudioChannels=2", "Audio", true, 2},
                                           Question{"VideoChannels=1", "AudioChannels", false, 0},
                                           Question{"AudioChannels=8 VideoChannels=1", "Channels", true, 8},
                                           Question{"VideoChannels VideoChannels=3", "VideoChannels", true, 3},
                                           Question{"VideoChannels= VideoChannels=3", "VideoChannels", true, 3},
                                           Question{"VideoChannels=x VideoChannels=3", "VideoChannels", true, 0},
                                           Question{"VideoChannels=2 VideoChannels=3", "VideoChannels", true, 2},
                                           Question{"VideoChannels=2 VideoChannels", "VideoChannels", true, 2},
                                           Question{"VideoChannels", "VideoChannels", false, 0},
                                           Question{"A=1 VideoChannels", "VideoChannels", false, 0}));

INSTANTIATE_TEST_SUITE_P(Blanks, CatalogueParam,
                         ::testing::Values(Question{"VideoChannels = 2", "VideoChannels", false, 0},
                                           Question{"A=1  B=2", "B", true, 2}, Question{" A=1", "A", true, 1},
                                           Question{"A=1 ", "B", false, 0}, Question{"A=1 ", "A", true, 1},
                                           Question{"VideoChannels=1\tAudioChannels=2", "AudioChannels", true, 1},
                                           Question{"VideoChannels=1\nAudioChannels=2", "AudioChannels", true, 1},
                                           Question{"VideoChannels=1,AudioChannels=2", "AudioChannels", true, 1}));

INSTANTIATE_TEST_SUITE_P(EmptyParametersAndNames, CatalogueParam,
                         ::testing::Values(Question{"", "VideoChannels", false, 0}, Question{"", "", false, 0},
                                           Question{"A B=4 C=5", "", true, 4}, Question{"  B=4", "", true, 4},
                                           Question{"A B", "", false, 0}));

TEST_F(Catalogue, ParamOfAnUnknownTypeAddsTheTypeWithoutParameters)
{
  put("Tape", "A=1");
  int value = -987;
  EXPECT_FALSE(catalogue.getReelParam("Unknown", "A", value));
  EXPECT_EQ(value, -987);
  EXPECT_EQ(names(), (Names{"Tape", "Unknown"}));
  ASSERT_TRUE(known("Unknown"));
  EXPECT_STREQ(catalogue["Unknown"].value.c_str(), "");
  EXPECT_FALSE(known("never asked for"));
}

TEST_F(Catalogue, ParamOfAKnownTypeAddsNothing)
{
  put("Tape", "A=1");
  int value = 0;
  catalogue.getReelParam("Tape", "A", value);
  catalogue.getReelParam("Tape", "B", value);
  EXPECT_EQ(names(), (Names{"Tape"}));
}

TEST_F(Catalogue, ParamTakesTheTypeNameUntrimmed)
{
  put("Tape 2ch", "VideoChannels=1");
  EXPECT_EQ(catalogue.numVideoChans(" Tape 2ch"), 0);
  EXPECT_EQ(catalogue.numVideoChans("Tape 2ch "), 0);
  EXPECT_EQ(names(), (Names{"Tape 2ch", " Tape 2ch", "Tape 2ch "}));
}

TEST_F(Catalogue, ParamLeavesTheCallersTextsAlone)
{
  put("tape", "videochannels=1");
  const LightweightString<char> type = "tape", param = "VideoChannels", params = catalogue["tape"].value;
  int value = 0;
  EXPECT_TRUE(catalogue.getReelParam(type, param, value));
  EXPECT_STREQ(type.c_str(), "tape");
  EXPECT_STREQ(param.c_str(), "VideoChannels");
  EXPECT_STREQ(params.c_str(), "videochannels=1");
}

TEST_F(Catalogue, ParamPrintsNothing)
{
  EXPECT_EQ(linesOf([&] {
              int value = 0;
              catalogue.getReelParam("Unknown", "A", value);
              catalogue.numAudioChans("Unknown too");
            }),
            Names());
}

// --- Channel counts ------------------------------------------------------------------------------

TEST_F(Catalogue, CountsAreThoseOfTheirOwnParameter)
{
  put("Tape", "AudioChannels=4 VideoChannels=1");
  EXPECT_EQ(catalogue.numVideoChans("Tape"), 1);
  EXPECT_EQ(catalogue.numAudioChans("Tape"), 4);
}

TEST_F(Catalogue, CountsOfATypeWithoutTheParameterAreZero)
{
  put("Picture", "VideoChannels=1");
  put("Sound", "AudioChannels=8");
  put("Bare", "VideoChannels= AudioChannels");
  EXPECT_EQ(catalogue.numAudioChans("Picture"), 0);
  EXPECT_EQ(catalogue.numVideoChans("Sound"), 0);
  EXPECT_EQ(catalogue.numVideoChans("Bare"), 0);
  EXPECT_EQ(catalogue.numAudioChans("Bare"), 0);
  int value = -987;
  EXPECT_FALSE(catalogue.getReelParam("Picture", "AudioChannels", value));
  EXPECT_EQ(value, -987);
}

TEST_F(Catalogue, CountsOfAnUnknownTypeAreZeroAndAddIt)
{
  EXPECT_EQ(catalogue.numVideoChans("Unknown"), 0);
  EXPECT_TRUE(known("Unknown"));
  EXPECT_EQ(catalogue.numAudioChans("Other"), 0);
  EXPECT_TRUE(known("Other"));
  StringList list;
  catalogue.getAllReelTypes(list);
  EXPECT_EQ(texts(list), (Names{"Unknown", "Other"}));
}

TEST_F(Catalogue, NegativeCountIsReturnedAsItStands)
{
  put("Tape", "VideoChannels=-3 AudioChannels=-1");
  EXPECT_EQ(catalogue.numVideoChans("Tape"), -3);
  EXPECT_EQ(catalogue.numAudioChans("Tape"), -1);
}

TEST_F(Catalogue, CountsAreTheSameWhenAskedAgain)
{
  put("Tape", "VideoChannels=1 AudioChannels=2");
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(catalogue.numVideoChans("Tape"), 1);
    EXPECT_EQ(catalogue.numAudioChans("Tape"), 2);
  }
}

// --- type ----------------------------------------------------------------------------------------

TEST_F(Catalogue, TypeByNameHasNameAndCounts)
{
  put("Tape 2ch", "VideoChannels=1 AudioChannels=2");
  const ReelType type = catalogue.type(LightweightString<char>("Tape 2ch"));
  EXPECT_STREQ(type.name.c_str(), "Tape 2ch");
  EXPECT_EQ(type.numVideoChans, 1);
  EXPECT_EQ(type.numAudioChans, 2);
}

TEST_F(Catalogue, TypeReadsTheAudioChannelsFirst)
{
  put("Tape", "Q=1");
  const Names asked = {"Q=1", "AudioChannels", "Q=1", "VideoChannels"};
  Names texts;
  upperCased = &texts;
  catalogue.type(LightweightString<char>("Tape"));
  EXPECT_EQ(texts, asked);
  texts.clear();
  catalogue.type(0u);
  upperCased = nullptr;
  EXPECT_EQ(texts, asked);
}

TEST_F(Catalogue, TypeByNameSharesTheGivenText)
{
  const LightweightString<char> name = " tape ";
  EXPECT_EQ(catalogue.type(name).name.c_str(), name.c_str());
}

TEST_F(Catalogue, TypeByUnknownNameHasNoChannelsAndIsAdded)
{
  const ReelType type = catalogue.type(LightweightString<char>(" Unknown"));
  EXPECT_STREQ(type.name.c_str(), " Unknown");
  EXPECT_EQ(type.numVideoChans, 0);
  EXPECT_EQ(type.numAudioChans, 0);
  EXPECT_EQ(names(), (Names{" Unknown"}));
}

TEST_F(Catalogue, TypeByPositionFollowsTheOrderOfAllNames)
{
  catalogue.add("z", "VideoChannels=1");
  catalogue.add("a", "AudioChannels=2");
  catalogue.add("m", "VideoChannels=3 AudioChannels=4");
  catalogue.add("z", "VideoChannels=5"); // keeps its place
  StringList list;
  catalogue.getAllReelTypes(list);
  ASSERT_EQ(texts(list), (Names{"z", "a", "m"}));
  const int video[] = {5, 0, 3}, audio[] = {0, 2, 4};
  for (unsigned i = 0; i < 3; ++i) {
    const ReelType type = catalogue.type(i);
    EXPECT_STREQ(type.name.c_str(), list[i].c_str());
    EXPECT_EQ(type.numVideoChans, video[i]) << i;
    EXPECT_EQ(type.numAudioChans, audio[i]) << i;
  }
}

TEST_F(Catalogue, TypeZeroIsAPosition)
{
  put("Tape", "VideoChannels=1");
  EXPECT_STREQ(catalogue.type(0).name.c_str(), "Tape");
  EXPECT_EQ(names(), (Names{"Tape"}));
}

TEST_F(Catalogue, TypeByPositionHasATextOfItsOwn)
{
  put("Tape", "");
  EXPECT_NE(catalogue.type(0).name.c_str(), catalogue.at(0).key.c_str());
}

TEST_F(Catalogue, PositionBeyondTheEndIsTheEmptyTypeWhichIsAdded)
{
  put("Tape", "VideoChannels=1 AudioChannels=2");
  const ReelType type = catalogue.type(99);
  EXPECT_STREQ(type.name.c_str(), "");
  EXPECT_EQ(type.numVideoChans, 0);
  EXPECT_EQ(type.numAudioChans, 0);
  EXPECT_EQ(names(), (Names{"Tape", ""}));
}

TEST_F(Catalogue, PositionBeyondTheEndHasTheCountsOfTheEmptyName)
{
  put("Tape", "");
  put("", "VideoChannels=6 AudioChannels=7");
  const ReelType type = catalogue.type(2);
  EXPECT_EQ(type.numVideoChans, 6);
  EXPECT_EQ(type.numAudioChans, 7);
}

// --- getAllReelTypes -----------------------------------------------------------------------------

TEST_F(Catalogue, EmptyCatalogueHasNoNames)
{
  StringList list;
  catalogue.getAllReelTypes(list);
  EXPECT_EQ(list.count(), 0u);
  EXPECT_EQ(catalogue.numVideoChans("anything"), 0);
}

TEST_F(Catalogue, AllNamesAreInTheOrderTheyWereMade)
{
  catalogue.add("z", "A=1");
  catalogue.add("a", "");
  catalogue.add("", "A=1");
  catalogue.add("m", "A=1");
  StringList list;
  catalogue.getAllReelTypes(list);
  EXPECT_EQ(texts(list), (Names{"z", "a", "", "m"}));
  EXPECT_TRUE(list.contains("m"));
  EXPECT_FALSE(list.contains("M"));
}

TEST_F(Catalogue, AllNamesAreAppendedToWhatTheListHolds)
{
  put("a", "");
  put("b", "");
  StringList list;
  list.add("first");
  list.add("a");
  catalogue.getAllReelTypes(list);
  EXPECT_EQ(texts(list), (Names{"first", "a", "a", "b"}));
  catalogue.getAllReelTypes(list);
  EXPECT_EQ(texts(list), (Names{"first", "a", "a", "b", "a", "b"}));
}

TEST_F(Catalogue, AllNamesGoToTheEndOfASortedList)
{
  put("c", "");
  put("a", "");
  StringList list;
  list.sorted(true);
  list.add("b");
  catalogue.getAllReelTypes(list);
  EXPECT_EQ(texts(list), (Names{"b", "c", "a"}));
}

TEST_F(Catalogue, AllNamesAreTextsOfTheirOwn)
{
  put("Tape", "");
  StringList list;
  catalogue.getAllReelTypes(list);
  EXPECT_NE(list[0].c_str(), catalogue.at(0).key.c_str());
  catalogue.rep()->discardAll();
  EXPECT_EQ(texts(list), (Names{"Tape"}));
}

TEST_F(Catalogue, AllNamesAreTakenOverByTheList)
{
  put("a", "");
  put("b", "");
  StringList list;
  catalogue.getAllReelTypes(list);
  list.remove("a");
  EXPECT_EQ(texts(list), (Names{"b"}));
  list.clear();
  EXPECT_EQ(list.count(), 0u);
}

TEST_F(Catalogue, AllNamesWithoutMemoryGiveAWholeListSoFar)
{
  for (const char* name : {"a", "b", "c", "d", "e", "f", "g", "h", "i", "j"})
    put(name, "");
  const Names all = names();
  bool ranOut = true;
  int failures = 0;
  for (std::int64_t n = 1; ranOut; ++n, ++failures) {
    ranOut = false;
    const std::int64_t held = memoryInUse();
    {
      StringList list;
      failAllocation(n);
      try {
        catalogue.getAllReelTypes(list);
      } catch (const std::bad_alloc&) {
        ranOut = true;
      }
      failAllocation(0);
      const Names got = texts(list);
      ASSERT_LE(got.size(), all.size());
      EXPECT_EQ(got, Names(all.begin(), all.begin() + static_cast<std::ptrdiff_t>(got.size())));
      EXPECT_EQ(got.size() < all.size(), ranOut);
    }
    EXPECT_EQ(memoryInUse(), held) << "with allocation " << n << " failing";
  }
  EXPECT_GE(failures, 10);
}

// --- StringRec -----------------------------------------------------------------------------------

TEST_F(Catalogue, WithoutAListEndsQuietly)
{
  class Emptied : public ReelTypeManager {
  public:
    Emptied() { rep_ = nullptr; }
    bool hasList() const { return rep_.get() != nullptr; }
  };
  const std::int64_t used = memoryInUse(), holders = furtherHolders();
  {
    const Emptied emptied;
    EXPECT_FALSE(emptied.hasList());
  }
  EXPECT_EQ(memoryInUse(), used);
  EXPECT_EQ(furtherHolders(), holders);
}

TEST(ElementOfAStringList, ComparesByteByByte)
{
  const StringRec upper("Tape"), lower("tape"), same("Tape"), empty(""), none((LightweightString<char>()));
  const ArrayRec& asRecord = upper;
  EXPECT_LT(asRecord.compare(lower), 0);
  EXPECT_GT(lower.compare(asRecord), 0);
  EXPECT_EQ(asRecord.compare(same), 0);
  EXPECT_GT(asRecord.compare(empty), 0);
  EXPECT_EQ(empty.compare(none), 0);
  EXPECT_EQ(none.compare(empty), 0);
}

TEST(ElementOfAStringList, EqualityFollowsTheComparison)
{
  const StringRec upper("Tape"), lower("tape"), same("Tape");
  const ArrayRec& asRecord = upper;
  EXPECT_TRUE(asRecord == same);
  EXPECT_FALSE(asRecord != same);
  EXPECT_FALSE(asRecord == lower);
  EXPECT_TRUE(asRecord != lower);
}

TEST(ElementOfAStringList, PrintsItsTextBehindWhatIsThere)
{
  GrowString out;
  out.append("names: ");
  const StringRec tape("Tape"), empty("");
  static_cast<const ArrayRec&>(tape).printOn(out);
  static_cast<const ArrayRec&>(empty).printOn(out);
  EXPECT_STREQ(out, "names: Tape");
}

TEST(ElementOfAStringList, SharesTheTextItIsGiven)
{
  const LightweightString<char> text = "Tape";
  EXPECT_EQ(StringRec(text).text().c_str(), text.c_str());
}

} // namespace
} // namespace reeldb_tests
