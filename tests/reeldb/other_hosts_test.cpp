// SPDX-License-Identifier: Apache-2.0
//
// Results that another host may return, but the standalone host never returns. It is a separate program, which replaces
// those operations of the host; each case chooses their results.
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <map>
#include <optional>
#include <utility>

#include "LabelMaps.h"
#include "host/codes.h"
#include "host/os.h"
#include "host/projdb.h"
#include "host/text.h"
#include "support/hosts_own.h"
#include "support/library_fixture.h"

namespace {

struct OtherHost {
  std::optional<Cookie> openedInPlaceOfInvalid;             ///< the log that the invalid Cookie opens
  bool nullCell = false;                                    ///< whether rows have no text in the column "Reel Type"
  std::optional<std::pair<std::uint16_t, char>> tagAndKind; ///< the tag and kind of every log
  std::map<std::string, std::wstring> fileNames;            ///< by the text of the Cookie
  bool emptyTextsHaveBodies = false;                        ///< for attributes, settings and label maps of devices
};

OtherHost& other()
{
  static OtherHost& host = *new OtherHost;
  return host;
}

/// While it is not null, records in order: closes of logs, readings of their tags, ends of text fields and of device
/// configurations, identifiers that logs get, and trimmings.
std::vector<std::string>* noted = nullptr;

void note(const char* what)
{
  if (noted)
    noted->push_back(what);
}

/// A text that has a body of length 0. It is made by hand, because the host makes no such body.
template <class CharT>
LightweightString<CharT> emptyWithBody()
{
  struct Body {
    int refs = 1;
    std::uint32_t length = 0, capacity = 0;
    CharT text = 0;
  };
  void* const body = ::new (OS()->allocator().allocate(sizeof(Body))) Body;
  LightweightString<CharT> text;
  std::memcpy(static_cast<void*>(&text), &body, sizeof body);
  return text;
}

template <class CharT>
LightweightString<CharT> chosen(const LightweightString<CharT>& text)
{
  return other().emptyTextsHaveBodies && text.empty() ? emptyWithBody<CharT>() : text;
}

const Cookie& opened(const Cookie& cookie)
{
  return !cookie.valid() && other().openedInPlaceOfInvalid ? *other().openedInPlaceOfInvalid : cookie;
}

} // namespace

using reeldb_tests::hostsOwn;

void EditPtr::i_open(const Cookie& cookie, eEditOpenBehaviour behaviour)
{
  using Open = void(EditPtr*, const Cookie&, eEditOpenBehaviour);
  hostsOwn<Open>("_ZN7EditPtr6i_openERK6Cookie18eEditOpenBehaviour")(this, opened(cookie), behaviour);
}

void EditPtr::i_close()
{
  note("close");
  hostsOwn<void(EditPtr*)>("_ZN7EditPtr7i_closeEv")(this);
}

EditInfo::EditInfo(const Cookie& cookie, eEditOpenBehaviour behaviour)
{
  using Open = void(EditInfo*, const Cookie&, eEditOpenBehaviour);
  hostsOwn<Open>("_ZN8EditInfoC1ERK6Cookie18eEditOpenBehaviour")(this, opened(cookie), behaviour);
}

LightweightString<char> EditInfo::getAttrib(LogAttributes::eLogAttribute attribute) const
{
  using Get = LightweightString<char>(const EditInfo*, LogAttributes::eLogAttribute);
  return chosen(hostsOwn<Get>("_ZNK8EditInfo9getAttribEN13LogAttributes13eLogAttributeE")(this, attribute));
}

LightweightString<char> SystemCfg::get(const LightweightString<char>& key) const
{
  using Get = LightweightString<char>(const SystemCfg*, const LightweightString<char>&);
  return chosen(hostsOwn<Get>("_ZNK9SystemCfg3getERK17LightweightStringIcE")(this, key));
}

LightweightString<wchar_t> ExtDeviceConfig::getLabelMapping() const
{
  using Get = LightweightString<wchar_t>(const ExtDeviceConfig*);
  return chosen(hostsOwn<Get>("_ZNK15ExtDeviceConfig15getLabelMappingEv")(this));
}

const char* ODBViewRep::cellText(int row, const char* column) const
{
  if (other().nullCell)
    return nullptr;
  using Cell = const char*(const ODBViewRep*, int, const char*);
  return hostsOwn<Cell>("_ZNK10ODBViewRep8cellTextEiPKc")(this, row, column);
}

std::uint16_t Edit::cookieTag() const
{
  note("cookieTag");
  if (other().tagAndKind)
    return other().tagAndKind->first;
  return hostsOwn<std::uint16_t(const Edit*)>("_ZNK4Edit9cookieTagEv")(this);
}

char Edit::cookieKind() const
{
  if (other().tagAndKind)
    return other().tagAndKind->second;
  return hostsOwn<char(const Edit*)>("_ZNK4Edit10cookieKindEv")(this);
}

LightweightString<wchar_t> getFilenameForCookie(const Cookie& cookie, Cookie second)
{
  const auto chosen = other().fileNames.find(cookie.asString(false).c_str());
  if (chosen != other().fileNames.end())
    return chosen->second.c_str();
  using Name = LightweightString<wchar_t>(const Cookie&, Cookie);
  return hostsOwn<Name>("_Z20getFilenameForCookieRK6CookieS_")(cookie, second);
}

strp_field::~strp_field()
{
  note("~strp_field");
  OS()->allocator().release(text_); // as the host does
}

ExtDeviceConfig::~ExtDeviceConfig()
{
  note("~ExtDeviceConfig");
  hostsOwn<void(ExtDeviceConfig*)>("_ZN15ExtDeviceConfigD1Ev")(this);
}

void Edit::set_reelid(int place, const char* id)
{
  note("set_reelid");
  hostsOwn<void(Edit*, int, const char*)>("_ZN4Edit10set_reelidEiPKc")(this, place, id);
}

void trimTrailingSpaces(LightweightString<char>& text)
{
  note("trimTrailingSpaces");
  hostsOwn<void(LightweightString<char>&)>("_Z18trimTrailingSpacesR17LightweightStringIcE")(text);
}

namespace reeldb_tests {

namespace {

using Texts = std::vector<std::string>;

class OtherHosts : public LibraryTest {
protected:
  ~OtherHosts() override
  {
    other() = {};
    noted = nullptr;
  }

  /// The records of the steps of @p action.
  static Texts notedBy(const std::function<void()>& action)
  {
    Texts notes;
    noted = &notes;
    action();
    noted = nullptr;
    return notes;
  }

  Texts idsListed()
  {
    std::vector<LightweightString<char>> ids;
    manager().getAllReelIds(ids, true);
    Texts result;
    for (const LightweightString<char>& id : ids)
      result.push_back(text(id));
    return result;
  }
};

// --- Records -------------------------------------------------------------------------------------

TEST_F(OtherHosts, NullCellOfARowThatExistsIsTheEmptyType)
{
  ReelDbRec rec(addReel("R1", "Tape"));
  other().nullCell = true;
  EXPECT_EQ(linesOf([&] { EXPECT_TRUE(rec.typeName().empty()); }).size(), 5u) << "the row is there";
  EXPECT_EQ(manager().checkReelValid("R1"), 4);
}

TEST_F(OtherHosts, FieldThatIsWrittenEndsBeforeTheLogIsClosed)
{
  ReelDbRec rec(addReel("R1"));
  EXPECT_EQ(notedBy([&] { rec.setStrpFieldValInEdit("key", "text"); }), (Texts{"~strp_field", "close"}));
}

// A host that opens a log by the invalid Cookie may have a row for it, too. The row's type does not count.
TEST_F(OtherHosts, EmptyRecordWhoseLogOpensFollowsTheDeviceWithoutReadingTheType)
{
  theReelTypeManager()->add("other hosts: 3v3a", "VideoChannels=3 AudioChannels=3");
  reelhost::DeviceSettings deck = device(4, "Deck");
  deck.audioInputs = 2;
  setDevices({deck});
  const Cookie reel = addReel("R1", "other hosts: 3v3a", {{"reel_last_device", "Deck"}});
  other().openedInPlaceOfInvalid = reel;
  ReelDbRec rec;
  const Texts operations = operationsOf([&] { rec.updateNumChansInReel(); });
  other().openedInPlaceOfInvalid.reset();
  EXPECT_EQ(countOf(operations, "ODBViewRep::ODBViewRep"), 0);
  EXPECT_EQ(countOf(operations, "EditManager::getProjdb"), 0);
  EXPECT_EQ(countOf(operations, "ExtDeviceConfigurationManager::getConfig"), 1);
  EXPECT_EQ(channels(reel, codes::videoChannel), 1);
  EXPECT_EQ(channels(reel, codes::audioChannel), 2);
}

// --- Lookup --------------------------------------------------------------------------------------

TEST_F(OtherHosts, InvalidCookieInTheReelListThatMatchesIsNotAReelAndEndsTheSearch)
{
  const Cookie hidden = addLog(codes::materialLog, "A");
  const Cookie reel = addReel("A");
  CookieVec answer;
  answer.add(Cookie());
  answer.add(reel);
  script().maskSearchResult = answer;
  manager().buildReelList();
  EXPECT_TRUE(manager().doesReelExist("A")) << "the invalid Cookie opens nothing";
  other().openedInPlaceOfInvalid = hidden;
  const Texts operations = operationsOf([&] { EXPECT_FALSE(manager().doesReelExist("a")); });
  EXPECT_EQ(countOf(operations, "EditInfo::EditInfo"), 1) << "the reel behind it is not looked at";
  EXPECT_FALSE(manager().getReelInfo("A").valid());
  EXPECT_EQ(manager().checkReelValid("A"), 1);
}

TEST_F(OtherHosts, InvalidCookieInTheReelListWhoseLogOpensIsListedAndOfferedToNoDevice)
{
  const Cookie hidden = addLog(codes::materialLog, "A");
  CookieVec answer;
  answer.add(Cookie());
  script().maskSearchResult = answer;
  manager().buildReelList();
  other().openedInPlaceOfInvalid = hidden;
  EXPECT_EQ(idsListed(), Texts{"A"});
  std::vector<LightweightString<char>> offered;
  manager().getReelsCompatibleWithDevice(offered, 4);
  EXPECT_EQ(offered.size(), 0u);
}

// --- Empty texts ---------------------------------------------------------------------------------

TEST_F(OtherHosts, EmptyTextWithABodyIsTakenAsOneWithout)
{
  const LightweightString<char> none, body = emptyWithBody<char>();
  const LightweightString<wchar_t> wideNone, wideBody = emptyWithBody<wchar_t>();
  ASSERT_NE(std::memcmp(&none, &body, sizeof body), 0);
  ASSERT_TRUE(body.empty() && wideBody.empty());
  setDevices({device(4, "Deck")});
  addReel("R1", "", {{"profile_bin_name", "default"}});
  addReel("");
  const Cookie bare = addShot("");

  using Narrow = LightweightString<char>;
  using Wide = LightweightString<wchar_t>;
  const std::vector<std::pair<const char*, std::function<void(const Narrow&, const Wide&)>>> uses = {
      {"lookup", [&](const Narrow& id, const Wide&) { EXPECT_FALSE(manager().doesReelExist(id)); }},
      {"creation", [&](const Narrow& id, const Wide&) { EXPECT_FALSE(manager().createNewReel(id, -1).valid()); }},
      {"trimming", [&](const Narrow& id, const Wide&) { manager().trimLeadingTrailingSpaces(id); }},
      {"renaming", [&](const Narrow& id, const Wide&) { manager().changeReelId(id, "R2"); }},
      {"copying", [&](const Narrow& id, const Wide&) { manager().copyReelInfo("R1", id); }},
      {"news of a record", [&](const Narrow& id, const Wide&) { manager().informReelDbRecChanged(id); }},
      {"fields", [&](const Narrow& value, const Wide&) { ReelDbRec(manager().getReelInfo("R1")).binName(value); }},
      {"types", [&](const Narrow& value, const Wide&) { ReelDbRec(manager().getReelInfo("R1")).typeName(value); }},
      {"devices", [&](const Narrow&, const Wide& name) { ReelDbRec(manager().getReelInfo("R1")).lastDevice(name); }},
      {"keys", [&](const Narrow& key, const Wide&) { ReelDbRec(manager().getReelInfo("R1")).setIntValInEdit(key, 1); }},
      {"label maps", [&](const Narrow& id, const Wide&) { get_required_label_map_name(id, IdStamp(104)); }},
  };
  for (const auto& use : uses)
    EXPECT_EQ(linesOf([&] { use.second(body, wideBody); }), linesOf([&] { use.second(none, wideNone); })) << use.first;

  CookieVec shots;
  shots.add(bare);
  const auto askHost = [&] {
    EXPECT_EQ(idsListed(), Texts{"R1"});
    EXPECT_EQ(manager().getReelsReferenced(shots).count(), 0);
    EXPECT_EQ(text(manager().userFieldName(0)), "User field 1");
    EXPECT_EQ(text(toUTF8(get_device_label_map_name(IdStamp(104)))), "pal9pin");
  };
  const Texts calls = linesOf(askHost);
  other().emptyTextsHaveBodies = true;
  EXPECT_EQ(linesOf(askHost), calls);
}

// --- Creation ------------------------------------------------------------------------------------

TEST_F(OtherHosts, RecordOfANewReelHasTheTagAndTheKindOfItsLog)
{
  other().tagAndKind = {std::uint16_t{0x1234}, 'M'};
  const ReelDbRec rec = manager().createNewReel("R1", -1);
  const std::string name = text(rec);
  EXPECT_EQ(name.front(), 'M');
  EXPECT_NE(name.find(".1234}"), std::string::npos) << name;
}

// A host may give a log another Cookie together with its type.
TEST_F(OtherHosts, CookieOfANewReelIsReadAfterItsLogWasWritten)
{
  const Texts notes = notedBy([&] { manager().createNewReel("R1", -1); });
  const auto written = std::find(notes.begin(), notes.end(), "set_reelid");
  const auto read = std::find(notes.begin(), notes.end(), "cookieTag");
  ASSERT_LT(written, read);
  ASSERT_NE(read, notes.end());
  EXPECT_EQ(std::count(written, read, "close"), 5) << "one close for each of the five changes";
}

TEST_F(OtherHosts, ConfigurationOfTheDeviceEndsBeforeTheLogOfANewReelIsWritten)
{
  setDevices({device(4, "Deck")});
  const Texts notes = notedBy([&] { manager().createNewReel("R1", 4); });
  const auto written = std::find(notes.begin(), notes.end(), "set_reelid");
  ASSERT_NE(written, notes.end());
  EXPECT_NE(std::find(notes.begin(), written, "~ExtDeviceConfig"), written);
  EXPECT_EQ(std::find(written, notes.end(), "~ExtDeviceConfig"), notes.end());
}

TEST_F(OtherHosts, EveryTrimmingEndsInTheHosts)
{
  for (const char* id : {"", "R1", " R1", "R1 ", "  "})
    EXPECT_EQ(notedBy([&] { manager().trimLeadingTrailingSpaces(id); }), Texts{"trimTrailingSpaces"}) << id;
}

// --- Renaming ------------------------------------------------------------------------------------

TEST_F(OtherHosts, LineOfARenamedShotNamesItsFileInUtf8)
{
  addReel("R1");
  const Cookie shot = addShot("R1");
  other().fileNames[text(shot)] = L"\u00e9\U0001F3AC";
  const Texts printed = printedBy([&] { manager().changeReelId("R1", "R2"); });
  ASSERT_EQ(printed.size(), 1u);
  EXPECT_EQ(printed[0].find("\"Shot: \xC3\xA9\xF0\x9F\x8E\xAC  Changing reel from R1 to R2\\n\""), 0u) << printed[0];
}

} // namespace

} // namespace reeldb_tests
