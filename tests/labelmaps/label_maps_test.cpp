// SPDX-License-Identifier: Apache-2.0
#include "LabelMaps.h"

#include "host/codes.h"
#include "host/text.h"
#include "support/library_fixture.h"

namespace reeldb_tests {

namespace {

using Entry = LabelMappingSet::Entry;
using Texts = std::vector<std::string>;

constexpr std::uint32_t sourceNobodyTests = 6;
constexpr std::uint32_t formatNobodyTests = 5;
constexpr int someVideoInput = 3;

/// The result of the test of a map against a device, and its prints.
struct Verdict {
  bool fits;
  Texts printed;
  bool operator==(const Verdict&) const = default;
};

const Verdict accepted{true, {}};

Verdict rejected(const std::string& line)
{
  return {false, {line}};
}

std::ostream& operator<<(std::ostream& out, const Verdict& verdict)
{
  out << (verdict.fits ? "fits" : "does not fit");
  for (const std::string& line : verdict.printed)
    out << "; printed " << line;
  return out;
}

class LabelMaps : public LibraryTest {
protected:
  /// A map "M" in which only these entries, from the first on, are set.
  void map(std::vector<Entry> entries)
  {
    entries.resize(LabelMappingSet::numEntries, Entry{0, 0, 0});
    script().labelMaps = {{L"M", entries}};
  }

  static Entry from(std::uint32_t source) { return {1, source, formatNobodyTests}; }
  static Entry unusedFrom(std::uint32_t source) { return {0, source, formatNobodyTests}; }
  static Entry ofFormat(std::uint32_t format) { return {1, sourceNobodyTests, format}; }

  /// The only device, "D", and what the functions take to name it.
  IdStamp theDevice(int portType, int inputType = someVideoInput, const std::string& configuredMap = {})
  {
    reelhost::DeviceSettings settings = device(1, "D");
    settings.portType = portType;
    settings.inputType = inputType;
    settings.labelMap = configuredMap;
    setDevices({settings});
    return IdStamp(settings.id);
  }

  bool fitsProject(int rate)
  {
    script().frameRate = rate;
    return map_file_is_compatible_with_project(L"M");
  }

  std::string defaultName(int portType, int rate)
  {
    const IdStamp id = theDevice(portType);
    script().outputFrameRate = rate;
    return text(toUTF8(get_device_label_map_name(id)));
  }

  Verdict verdictOn(const IdStamp& id)
  {
    Verdict verdict{};
    verdict.printed = printedBy([&] { verdict.fits = map_file_is_compatible_with_device(L"M", id); });
    return verdict;
  }

  /// The host calls as the journal's lines; how many bytes vorn_printf says it printed is left out.
  Texts callsOf(const std::function<void()>& action)
  {
    Texts lines = linesOf(action);
    for (std::string& line : lines)
      if (line.compare(0, 11, "vorn_printf") == 0)
        line.erase(line.rfind(')') + 1);
    return lines;
  }

  std::string required(const char* reelId, const IdStamp& id)
  {
    return text(toUTF8(get_required_label_map_name(reelId, id)));
  }
};

// --- Does the map use VITC? ----------------------------------------------------------------------

TEST_F(LabelMaps, SourcesOneAndTwoAreVitc)
{
  for (std::uint32_t source : {1u, 2u}) {
    map({from(source)});
    EXPECT_TRUE(map_file_uses_vitc(L"M")) << source;
  }
}

TEST_F(LabelMaps, NoOtherSourceIsVitc)
{
  for (std::uint32_t source : {0u, 3u, 4u, 5u, 6u, 9u, 0x101u, 0xFFFFFFFFu}) {
    map({from(source)});
    EXPECT_FALSE(map_file_uses_vitc(L"M")) << source;
  }
}

TEST_F(LabelMaps, VitcIsFoundInEachOfTheFourteenEntries)
{
  for (std::size_t i = 0; i < LabelMappingSet::numEntries; ++i) {
    std::vector<Entry> entries(LabelMappingSet::numEntries, from(3));
    entries[i] = from(2);
    map(entries);
    EXPECT_TRUE(map_file_uses_vitc(L"M")) << i;
  }
}

TEST_F(LabelMaps, VitcEntryNotInUseDoesNotCount)
{
  map({unusedFrom(1), from(3), unusedFrom(2)});
  EXPECT_FALSE(map_file_uses_vitc(L"M"));
}

TEST_F(LabelMaps, AnyFlagButZeroIsInUse)
{
  map({Entry{255, 1, formatNobodyTests}});
  EXPECT_TRUE(map_file_uses_vitc(L"M"));
}

TEST_F(LabelMaps, MapThatCannotBeLoadedUsesNoVitcAndPrintsNothing)
{
  map({from(1)});
  bool usesVitc = true;
  EXPECT_EQ(printedBy([&] { usesVitc = map_file_uses_vitc(L"gone"); }), Texts{});
  EXPECT_FALSE(usesVitc);
}

TEST_F(LabelMaps, VitcTestLoadsTheMapAndMakesNoOtherCall)
{
  map({from(1)});
  EXPECT_EQ(callsOf([] { map_file_uses_vitc(L"M"); }), Texts{"LabelMappingSet::load(\"M\") -> true"});
}

TEST_F(LabelMaps, EachCallLoadsTheMapAgain)
{
  map({from(1)});
  EXPECT_TRUE(map_file_uses_vitc(L"M"));
  map({from(3)});
  EXPECT_FALSE(map_file_uses_vitc(L"M"));
}

// --- Does the map fit the project? ---------------------------------------------------------------

TEST_F(LabelMaps, PalRatesRejectFormatsZeroAndTen)
{
  for (int rate : {3, 8})
    for (std::uint32_t format = 0; format <= 11; ++format) {
      map({ofFormat(format)});
      EXPECT_EQ(fitsProject(rate), format != 0 && format != 10) << "rate " << rate << ", format " << format;
    }
}

TEST_F(LabelMaps, NtscRatesRejectFormatsOneAndNine)
{
  for (int rate : {4, 9})
    for (std::uint32_t format = 0; format <= 11; ++format) {
      map({ofFormat(format)});
      EXPECT_EQ(fitsProject(rate), format != 1 && format != 9) << "rate " << rate << ", format " << format;
    }
}

TEST_F(LabelMaps, EveryOtherRateAcceptsEveryFormat)
{
  for (int rate : {-1, 0, 1, 2, 5, 6, 7, 10, 11})
    for (std::uint32_t format = 0; format <= 11; ++format) {
      map({ofFormat(format)});
      EXPECT_TRUE(fitsProject(rate)) << "rate " << rate << ", format " << format;
    }
}

TEST_F(LabelMaps, ConflictIsFoundInEachOfTheFourteenEntries)
{
  for (std::size_t i = 0; i < LabelMappingSet::numEntries; ++i) {
    std::vector<Entry> entries(LabelMappingSet::numEntries, ofFormat(formatNobodyTests));
    entries[i] = ofFormat(10);
    map(entries);
    EXPECT_FALSE(fitsProject(3)) << i;
  }
}

TEST_F(LabelMaps, ConflictingEntryNotInUseIsIgnored)
{
  map({Entry{0, 1, 0}, Entry{0, 1, 10}, ofFormat(1)});
  EXPECT_TRUE(fitsProject(3));
}

TEST_F(LabelMaps, ProjectTestPrintsNothing)
{
  map({ofFormat(0)});
  EXPECT_EQ(printedBy([this] { EXPECT_FALSE(fitsProject(3)); }), Texts{});
}

TEST_F(LabelMaps, ProjectTestTakesTheRateBeforeItLoadsTheMap)
{
  map({ofFormat(0)});
  script().frameRate = 8;
  EXPECT_EQ(callsOf([] { map_file_is_compatible_with_project(L"M"); }),
            (Texts{"Zr::CurrentProject::getFrameRate(0) -> 8", "LabelMappingSet::load(\"M\") -> true"}));
}

TEST_F(LabelMaps, MapThatCannotBeLoadedFitsTheProject)
{
  map({ofFormat(0)});
  script().frameRate = 3;
  bool fits = false;
  EXPECT_EQ(callsOf([&] { fits = map_file_is_compatible_with_project(L"gone"); }),
            (Texts{"Zr::CurrentProject::getFrameRate(0) -> 3", "LabelMappingSet::load(\"gone\") -> false"}));
  EXPECT_TRUE(fits);
}

TEST_F(LabelMaps, ProjectTestUsesTheProjectsRateNotTheOutputs)
{
  map({ofFormat(10)});
  script().outputFrameRate = 3;
  EXPECT_TRUE(fitsProject(4));
}

// --- Does the map fit the device? ----------------------------------------------------------------

TEST_F(LabelMaps, MapThatCannotBeLoadedFitsNoDeviceAndSaysSo)
{
  map({});
  EXPECT_EQ(callsOf([] { EXPECT_FALSE(map_file_is_compatible_with_device(L"gone", IdStamp(101))); }),
            (Texts{"LabelMappingSet::load(\"gone\") -> false",
                   "vorn_printf(\"Invalid label mapping file name <gone>\\n\")"}));
}

TEST_F(LabelMaps, Port1394RejectsEverySourceButNine)
{
  const IdStamp id = theDevice(1);
  for (std::uint32_t source = 0; source <= 12; ++source) {
    map({from(source)});
    EXPECT_EQ(verdictOn(id),
              source == 9 ? accepted : rejected("\"Label map <M> not compatible with 1394 device <D>\\n\""))
        << source;
  }
}

TEST_F(LabelMaps, Port1394RejectsOneOtherEntryAmongThose1394)
{
  for (std::size_t i = 0; i < LabelMappingSet::numEntries; ++i) {
    std::vector<Entry> entries(LabelMappingSet::numEntries, from(9));
    entries[i] = from(4);
    map(entries);
    EXPECT_FALSE(verdictOn(theDevice(1)).fits) << i;
  }
}

TEST_F(LabelMaps, Port1394AcceptsAMapWithoutEntriesInUse)
{
  map({unusedFrom(1), unusedFrom(3)});
  EXPECT_EQ(verdictOn(theDevice(1)), accepted);
}

TEST_F(LabelMaps, Port9PinRejectsA1394Label)
{
  map({from(3), from(9)});
  EXPECT_EQ(verdictOn(theDevice(0)),
            rejected("\"Label map <M> requires 1394 labels - device <D> is not controllable via 1394\\n\""));
}

TEST_F(LabelMaps, OtherPortsAreNotTestedFor1394Labels)
{
  map({from(9)});
  for (int port : {-1, 2, 3, 7})
    EXPECT_EQ(verdictOn(theDevice(port, codes::noVideoInput)), accepted) << port;
}

TEST_F(LabelMaps, Source1394NotInUseCountsAsNone)
{
  map({unusedFrom(9), from(4)});
  EXPECT_EQ(verdictOn(theDevice(0)), accepted);
}

TEST_F(LabelMaps, VitcNeedsAVideoInputOnEveryPortBut1394)
{
  for (int port : {-1, 0, 2, 3})
    for (std::uint32_t source : {1u, 2u}) {
      map({from(source)});
      EXPECT_EQ(verdictOn(theDevice(port, codes::noVideoInput)),
                rejected("\"Label map <M> requires VITC - device <D> has no video input\\n\""))
          << "port " << port << ", source " << source;
      EXPECT_EQ(verdictOn(theDevice(port, someVideoInput)), accepted) << "port " << port << ", source " << source;
    }
}

TEST_F(LabelMaps, DeviceWithoutVideoInputIsFineForAMapWithoutVitcInUse)
{
  map({unusedFrom(1), from(5)});
  EXPECT_EQ(verdictOn(theDevice(0, codes::noVideoInput)), accepted);
}

TEST_F(LabelMaps, Vitc1394DeviceIsWarnedAboutThe1394LabelsFirst)
{
  map({from(1)});
  EXPECT_EQ(verdictOn(theDevice(1, codes::noVideoInput)),
            rejected("\"Label map <M> not compatible with 1394 device <D>\\n\""));
}

TEST_F(LabelMaps, Port9PinAcceptsIts9PinLabels)
{
  for (std::uint32_t source : {3u, 4u, 5u}) {
    map({from(source)});
    EXPECT_EQ(verdictOn(theDevice(0)), accepted) << source;
  }
}

TEST_F(LabelMaps, OtherPortsReject9PinLabels)
{
  for (int port : {-1, 2, 3})
    for (std::uint32_t source : {3u, 4u, 5u}) {
      map({from(source)});
      EXPECT_EQ(verdictOn(theDevice(port)),
                rejected("\"Label map <M> requires 9-PIN labels - device <D> is not controllable via 9-PIN\\n\""))
          << "port " << port << ", source " << source;
    }
}

TEST_F(LabelMaps, OtherPortsAcceptSourcesThatNeedNoPort)
{
  for (std::uint32_t source : {0u, 6u, 7u, 8u, 10u}) {
    map({from(source)});
    EXPECT_EQ(verdictOn(theDevice(2)), accepted) << source;
  }
}

TEST_F(LabelMaps, Source9PinNotInUseCountsAsNone)
{
  map({unusedFrom(3), unusedFrom(4), unusedFrom(5), from(9)});
  EXPECT_EQ(verdictOn(theDevice(2)), accepted);
}

TEST_F(LabelMaps, VitcAnd9PinTogetherAreTestedInThatOrder)
{
  map({from(3), from(1)});
  const Verdict needsVideo = rejected("\"Label map <M> requires VITC - device <D> has no video input\\n\"");
  EXPECT_EQ(verdictOn(theDevice(0, codes::noVideoInput)), needsVideo);
  EXPECT_EQ(verdictOn(theDevice(0, someVideoInput)), accepted);
  EXPECT_EQ(verdictOn(theDevice(2, codes::noVideoInput)), needsVideo);
  EXPECT_EQ(verdictOn(theDevice(2, someVideoInput)),
            rejected("\"Label map <M> requires 9-PIN labels - device <D> is not controllable via 9-PIN\\n\""));
}

TEST_F(LabelMaps, NamesArePrintedAsUtf8MapFirst)
{
  script().labelMaps = {{L"M\u00e4p", std::vector<Entry>(LabelMappingSet::numEntries, from(9))}};
  reelhost::DeviceSettings settings = device(1, "D\xc3\xa9");
  settings.portType = 0;
  setDevices({settings});
  std::string printed;
  script().before = [&](const std::string& operation, const std::string& arguments) {
    if (operation == "vorn_printf")
      printed += arguments;
  };
  EXPECT_FALSE(map_file_is_compatible_with_device(L"M\u00e4p", IdStamp(settings.id)));
  EXPECT_EQ(printed,
            "\"Label map <M\xc3\xa4p> requires 1394 labels - device <D\xc3\xa9> is not controllable via 1394\\n\"");
}

TEST_F(LabelMaps, PercentSignsInNamesArePrintedAsTheyAre)
{
  EXPECT_EQ(printedBy([] { map_file_is_compatible_with_device(L"100%s", IdStamp(101)); }),
            Texts{"\"Invalid label mapping file name <100%s>\\n\""});
}

const std::string loaded = "LabelMappingSet::load(\"M\") -> true";
const std::string portAsked = "ExtDeviceConfig::getPortType(\"D\") -> ";
const std::string inputAsked = "ExtDeviceConfig::getInputType(\"D\") -> ";
const std::string nameAsked = "ExtDeviceConfig::getTextName(\"D\") -> \"D\"";
const Texts deviceAsked = {"theConfigurationManager()",
                           "ExtDeviceConfigurationManager::getConfig(IdStamp 101) -> \"D\""};

Texts after(Texts first, const Texts& rest)
{
  first.insert(first.end(), rest.begin(), rest.end());
  return first;
}

TEST_F(LabelMaps, HostCallsOfAMapThatIsAccepted)
{
  map({from(9)});
  const Texts begin = after({loaded}, deviceAsked);
  EXPECT_EQ(callsOf([id = theDevice(1)] { map_file_is_compatible_with_device(L"M", id); }),
            after(begin, {portAsked + "1", portAsked + "1", portAsked + "1"}));
  EXPECT_EQ(callsOf([id = theDevice(2)] { map_file_is_compatible_with_device(L"M", id); }),
            after(begin, {portAsked + "2", portAsked + "2", portAsked + "2"}));
  map({from(1), from(2)});
  EXPECT_EQ(callsOf([id = theDevice(0)] { map_file_is_compatible_with_device(L"M", id); }),
            after(begin, {portAsked + "0", portAsked + "0", inputAsked + "3", portAsked + "0"}));
}

TEST_F(LabelMaps, HostCallsEndWithTheFirstRejection)
{
  const Texts begin = after({loaded}, deviceAsked);
  map({from(1), from(3), from(9)});
  EXPECT_EQ(callsOf([id = theDevice(1, codes::noVideoInput)] { map_file_is_compatible_with_device(L"M", id); }),
            after(begin, {portAsked + "1", nameAsked,
                          "vorn_printf(\"Label map <M> not compatible with 1394 device <D>\\n\")"}));
  EXPECT_EQ(callsOf([id = theDevice(0, codes::noVideoInput)] { map_file_is_compatible_with_device(L"M", id); }),
            after(begin, {portAsked + "0", portAsked + "0", nameAsked,
                          "vorn_printf(\"Label map <M> requires 1394 labels - device <D> is not controllable via "
                          "1394\\n\")"}));
  EXPECT_EQ(callsOf([id = theDevice(2, codes::noVideoInput)] { map_file_is_compatible_with_device(L"M", id); }),
            after(begin, {portAsked + "2", portAsked + "2", inputAsked + "9", nameAsked,
                          "vorn_printf(\"Label map <M> requires VITC - device <D> has no video input\\n\")"}));
  EXPECT_EQ(callsOf([id = theDevice(2)] { map_file_is_compatible_with_device(L"M", id); }),
            after(begin, {portAsked + "2", portAsked + "2", inputAsked + "3", portAsked + "2", nameAsked,
                          "vorn_printf(\"Label map <M> requires 9-PIN labels - device <D> is not controllable via "
                          "9-PIN\\n\")"}));
}

// --- Which map does a device use? ----------------------------------------------------------------

TEST_F(LabelMaps, DefaultsFor9PinPorts)
{
  for (int rate : {3, 8})
    EXPECT_EQ(defaultName(0, rate), "pal9pin") << rate;
  for (int rate : {4, 5, 9, 10})
    EXPECT_EQ(defaultName(0, rate), "nts9pin") << rate;
  for (int rate : {-2, -1, 0, 1, 2, 6, 7, 11, 100})
    EXPECT_EQ(defaultName(0, rate), "24f9pin") << rate;
}

TEST_F(LabelMaps, DefaultsFor1394Ports)
{
  for (int rate : {3, 8})
    EXPECT_EQ(defaultName(1, rate), "pal1394") << rate;
  for (int rate : {4, 5, 9, 10})
    EXPECT_EQ(defaultName(1, rate), "ntsc1394") << rate;
  for (int rate : {-2, -1, 0, 1, 2, 6, 7, 11, 100})
    EXPECT_EQ(defaultName(1, rate), "24f1394") << rate;
}

TEST_F(LabelMaps, DefaultsForAllOtherPorts)
{
  for (int port : {-1, 2, 3, 9}) {
    for (int rate : {3, 8})
      EXPECT_EQ(defaultName(port, rate), "paltofd") << port << ", " << rate;
    for (int rate : {4, 5, 9, 10})
      EXPECT_EQ(defaultName(port, rate), "ntstofd") << port << ", " << rate;
    for (int rate : {-2, -1, 0, 1, 2, 6, 7, 11, 100})
      EXPECT_EQ(defaultName(port, rate), "24ftofd") << port << ", " << rate;
  }
}

TEST_F(LabelMaps, DefaultFollowsTheOutputsRateNotTheProjects)
{
  script().frameRate = 3;
  EXPECT_EQ(defaultName(0, 4), "nts9pin");
}

TEST_F(LabelMaps, UnknownDeviceGetsTheDefaultOfADeviceWithoutPort)
{
  setDevices({});
  script().outputFrameRate = 3;
  EXPECT_EQ(text(toUTF8(get_device_label_map_name(IdStamp()))), "paltofd");
  EXPECT_EQ(text(toUTF8(get_device_label_map_name(IdStamp(999)))), "paltofd");
}

TEST_F(LabelMaps, CompatibleConfiguredMapIsReturned)
{
  map({from(3)});
  const IdStamp id = theDevice(0, someVideoInput, "M");
  EXPECT_EQ(printedBy([&] { EXPECT_EQ(text(toUTF8(get_device_label_map_name(id))), "M"); }), Texts{});
}

TEST_F(LabelMaps, IncompatibleConfiguredMapPrintsOneLineAndGivesTheDefault)
{
  map({from(3)});
  const IdStamp id = theDevice(1, someVideoInput, "M");
  script().outputFrameRate = 9;
  EXPECT_EQ(printedBy([&] { EXPECT_EQ(text(toUTF8(get_device_label_map_name(id))), "ntsc1394"); }),
            Texts{"\"Label map <M> not compatible with 1394 device <D>\\n\""});
}

TEST_F(LabelMaps, MissingConfiguredMapPrintsOneLineAndGivesTheDefault)
{
  map({});
  const IdStamp id = theDevice(0, someVideoInput, "gone");
  script().outputFrameRate = 3;
  EXPECT_EQ(printedBy([&] { EXPECT_EQ(text(toUTF8(get_device_label_map_name(id))), "pal9pin"); }),
            Texts{"\"Invalid label mapping file name <gone>\\n\""});
}

const std::string outputRateAsked = "Zr::CurrentProject::getOutputImageZRFrameRate() -> ";

TEST_F(LabelMaps, HostCallsOfADefault)
{
  const IdStamp id = theDevice(1);
  script().outputFrameRate = 5;
  EXPECT_EQ(
      linesOf([&] { get_device_label_map_name(id); }),
      after(deviceAsked, {"ExtDeviceConfig::getLabelMapping(\"D\") -> \"\"", portAsked + "1", outputRateAsked + "5"}));
}

TEST_F(LabelMaps, HostCallsOfAConfiguredMap)
{
  map({from(3)});
  const Texts begin = after(deviceAsked, {"ExtDeviceConfig::getLabelMapping(\"D\") -> \"M\"", loaded});
  EXPECT_EQ(callsOf([id = theDevice(0, someVideoInput, "M")] { get_device_label_map_name(id); }),
            after(after(begin, deviceAsked), {portAsked + "0", portAsked + "0", portAsked + "0"}));
  script().outputFrameRate = 5;
  EXPECT_EQ(callsOf([id = theDevice(1, someVideoInput, "M")] { get_device_label_map_name(id); }),
            after(after(begin, deviceAsked),
                  {portAsked + "1", nameAsked, "vorn_printf(\"Label map <M> not compatible with 1394 device <D>\\n\")",
                   portAsked + "1", outputRateAsked + "5"}));
}

TEST_F(LabelMaps, DefaultMapItselfIsNotTested)
{
  script().labelMaps = {{L"pal9pin", std::vector<Entry>(LabelMappingSet::numEntries, from(9))}};
  EXPECT_EQ(printedBy([this] { EXPECT_EQ(defaultName(0, 3), "pal9pin"); }), Texts{});
}

// --- Which map does a reel on a device use? ------------------------------------------------------

TEST_F(LabelMaps, ReelsOwnMapIsReturnedUntested)
{
  addReel("R1", {}, {{"reel_labelmapping", "no such map"}});
  const IdStamp id = theDevice(0, someVideoInput, "M");
  EXPECT_EQ(operationsOf([&] { EXPECT_EQ(required("R1", id), "no such map"); }),
            (Texts{"EditInfo::EditInfo", "EditInfo::getAttrib", "EditPtr::i_close", // the lookup
                   "EditPtr::i_open", "configb::in", "EditPtr::i_close"}));
}

TEST_F(LabelMaps, ReelIsFoundWithoutRegardToCase)
{
  addReel("r1", {}, {{"reel_labelmapping", "own"}});
  EXPECT_EQ(required("R1", theDevice(0)), "own");
}

TEST_F(LabelMaps, TextsThatStandForNoMapGiveTheDevicesMap)
{
  const IdStamp id = theDevice(0);
  script().outputFrameRate = 8;
  addReel("absent");
  addReel("empty", {}, {{"reel_labelmapping", ""}});
  addReel("default", {}, {{"reel_labelmapping", "Device default"}});
  addReel("unknown", {}, {{"reel_labelmapping", "unknown"}});
  for (const char* reel : {"absent", "empty", "default", "unknown"})
    EXPECT_EQ(required(reel, id), "pal9pin") << reel;
}

TEST_F(LabelMaps, TextsThatOnlyLookLikeDeviceDefaultAreNamesOfMaps)
{
  const IdStamp id = theDevice(0);
  int number = 0;
  for (const char* mapping : {"device default", "Device default ", " Device default", "Device Default", "Unknown"}) {
    const std::string reel = "R" + std::to_string(++number);
    addReel(reel, {}, {{"reel_labelmapping", mapping}});
    EXPECT_EQ(required(reel.c_str(), id), mapping);
  }
}

TEST_F(LabelMaps, UnknownOrEmptyReelGivesTheDevicesMap)
{
  map({from(3)});
  const IdStamp id = theDevice(0, someVideoInput, "M");
  EXPECT_EQ(required("no such reel", id), "M");
  EXPECT_EQ(required("", id), "M");
}

TEST_F(LabelMaps, UnknownReelOpensNoLog)
{
  const IdStamp id = theDevice(0);
  const Texts forDevice = callsOf([&] { get_device_label_map_name(id); });
  EXPECT_EQ(callsOf([&] { get_required_label_map_name("no such reel", id); }), forDevice)
      << "an empty list of reels is no reason to ask for anything but the device";
}

TEST_F(LabelMaps, IncompatibleDeviceMapPrintsItsLineForAReelToo)
{
  map({from(9)});
  const IdStamp id = theDevice(0, someVideoInput, "M");
  script().outputFrameRate = 3;
  addReel("R1");
  EXPECT_EQ(printedBy([&] { EXPECT_EQ(required("R1", id), "pal9pin"); }),
            Texts{"\"Label map <M> requires 1394 labels - device <D> is not controllable via 1394\\n\""});
}

TEST_F(LabelMaps, ReelsOwnMapIsWidenedByteByByte)
{
  addReel("R1", {}, {{"reel_labelmapping", "\xc3\xa9"}});
  const LightweightString<wchar_t> name = get_required_label_map_name("R1", theDevice(0));
  EXPECT_EQ(std::wstring(name.c_str()), L"\u00c3\u00a9");
}

TEST_F(LabelMaps, ReelsAreThoseOfTheProcesssManager)
{
  addReel("R1", {}, {{"reel_labelmapping", "own"}});
  ReelDbManager other;
  other.reelList.clear();
  EXPECT_EQ(required("R1", theDevice(0)), "own");
}

} // namespace

} // namespace reeldb_tests
