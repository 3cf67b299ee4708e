// SPDX-License-Identifier: Apache-2.0
//
// Reading the reel type file, storing a definition, trimming, and splitting a parameter token.
#include <csignal>
#include <filesystem>
#include <iterator>
#include <optional>
#include <ostream>
#include <utility>

#include "host/text.h"
#include "support/counting_services.h"
#include "support/hosts_own.h"
#include "support/library_fixture.h"
#include "support/temp_folder.h"

namespace reeldb_tests {
namespace {

int openFiles()
{
  const std::filesystem::directory_iterator files("/proc/self/fd");
  return static_cast<int>(std::distance(begin(files), end(files)));
}

/// The streams that the library made on files, and how many files were open when the last stream ended.
struct Streams {
  int onFiles = 0;
  std::optional<int> openFilesAtEnd;
  bool watched = false; ///< counting needs memory, which a stream that fails for lack of memory does not have
} streams;

} // namespace

// The program's own functions replace the host's.
void makeStream(ByteStream* stream, FILE* file) asm("_ZN10ByteStreamC1EP8_IO_FILE");
void endStream(ByteStream* stream) asm("_ZN10ByteStreamD1Ev");

void makeStream(ByteStream* stream, FILE* file)
{
  ++streams.onFiles;
  hostsOwn<void(ByteStream*, FILE*)>("_ZN10ByteStreamC1EP8_IO_FILE")(stream, file);
}

void endStream(ByteStream* stream)
{
  if (streams.watched)
    streams.openFilesAtEnd = openFiles();
  hostsOwn<void(ByteStream*)>("_ZN10ByteStreamD1Ev")(stream);
}

namespace {

using Entries = std::vector<std::pair<std::string, std::string>>;
using Printed = std::vector<std::string>;

/// Each test has its own catalogue, which is empty at the start.
class TypeFile : public LibraryTest {
protected:
  TypeFile() { catalogue.rep()->discardAll(); }

  /// Loads a file with these bytes. Returns the prints of the catalogue.
  Printed load(const std::string& bytes)
  {
    const std::string path = dir.write("reeltype.dat", bytes);
    return printedBy([&] { catalogue.load(path.c_str()); });
  }

  Entries entries()
  {
    Entries all;
    for (unsigned i = 0; i < catalogue.rep()->count(); ++i)
      all.emplace_back(catalogue.at(i).key.c_str(), catalogue.at(i).value.c_str());
    return all;
  }

  std::string chopped(const std::string& given) { return catalogue.chopSpaces(given.c_str()).c_str(); }

  /// The journal's line for the warning about a record.
  static std::string warning(const std::string& name, int line)
  {
    return "\"ReelTypeList Warning: " + name + ": no parameters. Line " + std::to_string(line) + "\\n\"";
  }

  TempFolder dir;
  ReelTypeManager catalogue;
};

using TypeFileDeathTest = TypeFile;

// --- Files ---------------------------------------------------------------------------------------

TEST_F(TypeFile, MissingFileChangesNothingAndPrintsNothing)
{
  load("Tape 2ch:VideoChannels=1\n");
  const std::string path = (dir.path() / "no such file").string();
  EXPECT_EQ(printedBy([&] { catalogue.load(path.c_str()); }), Printed());
  EXPECT_EQ(entries(), (Entries{{"Tape 2ch", "VideoChannels=1"}}));
}

TEST_F(TypeFile, EmptyPathChangesNothingAndPrintsNothing)
{
  EXPECT_EQ(printedBy([&] { catalogue.load({}); }), Printed());
  EXPECT_EQ(entries(), Entries());
}

TEST_F(TypeFile, FolderInPlaceOfTheFileIsAnEmptyFile)
{
  EXPECT_EQ(printedBy([&] { catalogue.load(dir.path().c_str()); }), Printed());
  EXPECT_EQ(entries(), Entries());
}

TEST_F(TypeFile, EmptyFileHasNoRecordsAndPrintsNothing)
{
  EXPECT_EQ(load(""), Printed());
  EXPECT_EQ(entries(), Entries());
}

TEST_F(TypeFile, EmptyLinesAreSkippedInSilence)
{
  EXPECT_EQ(load("\n\r\n\r\r\n\n"), Printed());
  EXPECT_EQ(entries(), Entries());
}

TEST_F(TypeFile, MarksOtherThanColonAndLineBreakEndNothing)
{
  EXPECT_EQ(load("a~b;c|d:X=1~Y=2;\tZ=3\n"), Printed());
  EXPECT_EQ(entries(), (Entries{{"a~b;c|d", "X=1~Y=2;\tZ=3"}}));
}

TEST_F(TypeFile, NumberSignBeginsNoComment)
{
  EXPECT_EQ(load("#a:A=1\nb:#B=2 C=3#4\n"), Printed());
  EXPECT_EQ(entries(), (Entries{{"#a", "A=1"}, {"b", "#B=2 C=3#4"}}));
}

TEST_F(TypeFile, ByteOrderMarkBelongsToTheFirstName)
{
  EXPECT_EQ(load("\xEF\xBB\xBF"
                 "a:A=1\nb:B=2\n"),
            Printed());
  EXPECT_EQ(entries(), (Entries{{"\xEF\xBB\xBF"
                                 "a",
                                 "A=1"},
                                {"b", "B=2"}}));
}

TEST_F(TypeFile, LinesAndTypesMayBeOfAnyNumber)
{
  constexpr int count = 70'000;
  std::string bytes;
  for (int i = 0; i < count; ++i)
    bytes += "\nt" + std::to_string(i) + ":A=1";
  EXPECT_EQ(load(bytes + "\nbare"), Printed{warning("bare", count + 2)});
  ASSERT_EQ(catalogue.rep()->count(), static_cast<unsigned>(count));
  EXPECT_STREQ(catalogue.at(count - 1).key.c_str(), "t69999");
}

TEST_F(TypeFile, LastLineWithoutLineBreakCounts)
{
  EXPECT_EQ(load("a:A=1\nb:B=2"), Printed());
  EXPECT_EQ(entries(), (Entries{{"a", "A=1"}, {"b", "B=2"}}));
}

TEST_F(TypeFile, LinesOfEveryKindAreTreatedEachOnItsOwn)
{
  EXPECT_EQ(load("Tape 2ch:VideoChannels=1 AudioChannels=2\n"
                 "  Tape 4ch  :  VideoChannels=1 AudioChannels=4  \n"
                 "Audio only:AudioChannels=8\n"
                 "Scratch\n"
                 "Film 35:VideoChannels=1:AudioChannels=2\n"
                 "Tape 2ch:VideoChannels=2 AudioChannels=2\n"
                 "\n"),
            (Printed{warning("Scratch", 4)}));
  EXPECT_EQ(entries(), (Entries{{"Tape 2ch", "VideoChannels=2 AudioChannels=2"},
                                {"Tape 4ch", "VideoChannels=1 AudioChannels=4"},
                                {"Audio only", "AudioChannels=8"},
                                {"Film 35", "VideoChannels=1"}}));
  EXPECT_EQ(catalogue.numVideoChans("Tape 2ch"), 2);
  EXPECT_EQ(catalogue.numAudioChans("Tape 2ch"), 2);
  EXPECT_EQ(catalogue.numVideoChans("Tape 4ch"), 1);
  EXPECT_EQ(catalogue.numAudioChans("Tape 4ch"), 4);
  EXPECT_EQ(catalogue.numVideoChans("Audio only"), 0);
  EXPECT_EQ(catalogue.numAudioChans("Audio only"), 8);
  EXPECT_EQ(catalogue.numVideoChans("Film 35"), 1);
  EXPECT_EQ(catalogue.numAudioChans("Film 35"), 0);
}

TEST_F(TypeFile, BlanksAroundNameAndParametersMakeNoOtherType)
{
  load("  Tape 4ch  :  VideoChannels=1 AudioChannels=4  \n");
  const Entries trimmed = entries();
  catalogue.rep()->discardAll();
  load("Tape 4ch:VideoChannels=1 AudioChannels=4\n");
  EXPECT_EQ(entries(), trimmed);
}

TEST_F(TypeFile, BytesBeyondAsciiPassThrough)
{
  EXPECT_EQ(load("\xC3\x89t\xC3\xA9\xA0:\x85"
                 "A=1\n"),
            Printed());
  EXPECT_EQ(entries(), (Entries{{"\xC3\x89t\xC3\xA9\xA0", "\x85"
                                                          "A=1"}}));
}

TEST_F(TypeFile, SecondFileAddsNamesAndReplacesParametersInPlace)
{
  load("z:A=1\na:A=2\nm:A=3\n");
  load("b:A=4\na:B=5\n");
  EXPECT_EQ(entries(), (Entries{{"z", "A=1"}, {"a", "B=5"}, {"m", "A=3"}, {"b", "A=4"}}));
}

TEST_F(TypeFile, NamesThatDifferInCaseAreTwoTypes)
{
  load("dv:A=1\nDV:A=2\n");
  EXPECT_EQ(entries(), (Entries{{"dv", "A=1"}, {"DV", "A=2"}}));
}

TEST_F(TypeFile, FileIsClosedAfterReading)
{
  const int before = openFiles();
  load("a:A=1\nScratch\n");
  EXPECT_EQ(openFiles(), before);
}

TEST_F(TypeFile, FileIsClosedBeforeTheStreamOnItEnds)
{
  const int before = openFiles();
  streams = {0, {}, true};
  load("a:A=1\n");
  streams.watched = false;
  EXPECT_EQ(streams.onFiles, 1);
  EXPECT_EQ(streams.openFilesAtEnd, before);
}

TEST_F(TypeFile, FileThatCannotBeOpenedGetsNoStream)
{
  streams = {};
  catalogue.load((dir.path() / "no such file").c_str());
  EXPECT_EQ(streams.onFiles, 0);
}

TEST_F(TypeFile, FileIsClosedWhenMemoryRunsOut)
{
  const std::string path = dir.write("reeltype.dat", "a:A=1\nb:B=2\n");
  const LightweightString<char> given = path.c_str();
  const int before = openFiles();
  bool ranOut = true;
  int failures = 0;
  for (std::int64_t n = 1; ranOut; ++n, ++failures) {
    ranOut = false;
    failAllocation(n);
    try {
      catalogue.load(given);
    } catch (const std::bad_alloc&) {
      ranOut = true;
    }
    failAllocation(0);
    ASSERT_EQ(openFiles(), before) << "with allocation " << n << " failing";
  }
  EXPECT_GT(failures, 5);
  EXPECT_EQ(entries(), (Entries{{"a", "A=1"}, {"b", "B=2"}}));
}

// --- Records -------------------------------------------------------------------------------------

TEST_F(TypeFile, RecordWithoutColonWarns)
{
  EXPECT_EQ(load("a:A=1\nb:A=1\nc:A=1\nScratch\n"), (Printed{warning("Scratch", 4)}));
  EXPECT_EQ(entries(), (Entries{{"a", "A=1"}, {"b", "A=1"}, {"c", "A=1"}}));
}

TEST_F(TypeFile, WarningShowsTheNameUntrimmed)
{
  EXPECT_EQ(load("   \n \tS \n"), (Printed{warning("   ", 1), warning(" \\tS ", 2)}));
  EXPECT_EQ(entries(), Entries());
}

TEST_F(TypeFile, WarningTakesAPercentSignAsItIs)
{
  const std::string path = dir.write("reeltype.dat", "%s%n%d\n");
  EXPECT_EQ(printedBy([&] { catalogue.load(path.c_str()); }), (Printed{warning("%s%n%d", 1)}));
}

TEST_F(TypeFile, ColonAtTheEndOfTheRecordWarns)
{
  EXPECT_EQ(load("Tape:\n"), (Printed{warning("Tape", 1)}));
  EXPECT_EQ(load("Tape:"), (Printed{warning("Tape", 1)}));
  EXPECT_EQ(load(":\n"), (Printed{warning("", 1)}));
  EXPECT_EQ(entries(), Entries());
}

TEST_F(TypeFile, WarnedRecordLeavesATypeOfThatNameAlone)
{
  load("Tape:A=1\n");
  load("Tape\nTape:\n");
  EXPECT_EQ(entries(), (Entries{{"Tape", "A=1"}}));
}

TEST_F(TypeFile, EmptyNameIsAType)
{
  EXPECT_EQ(load(":VideoChannels=1\n"), Printed());
  EXPECT_EQ(entries(), (Entries{{"", "VideoChannels=1"}}));
  EXPECT_EQ(catalogue.numVideoChans(""), 1);
}

TEST_F(TypeFile, NameOfBlanksOnlyIsTheEmptyName)
{
  EXPECT_EQ(load("  \t :VideoChannels=1\n"), Printed());
  EXPECT_EQ(entries(), (Entries{{"", "VideoChannels=1"}}));
}

TEST_F(TypeFile, EmptyParameterFieldIsStored)
{
  EXPECT_EQ(load("Tape::\nOther: \n"), Printed());
  EXPECT_EQ(entries(), (Entries{{"Tape", ""}, {"Other", ""}}));
}

TEST_F(TypeFile, EmptyParameterFieldReplacesParameters)
{
  load("Tape 2ch:VideoChannels=1\n");
  EXPECT_EQ(load("Tape 2ch::x\n"), Printed());
  EXPECT_EQ(entries(), (Entries{{"Tape 2ch", ""}}));
  int value = 77;
  EXPECT_FALSE(catalogue.getReelParam("Tape 2ch", "VideoChannels", value));
  EXPECT_EQ(value, 77);
}

TEST_F(TypeFile, TextAfterASecondColonIsIgnored)
{
  load("Film 35:VideoChannels=1:AudioChannels=2\n");
  EXPECT_EQ(entries(), (Entries{{"Film 35", "VideoChannels=1"}}));
}

// --- Line numbers --------------------------------------------------------------------------------

struct Lines {
  const char* bytes;
  int line; ///< the line of the only record without parameters, "S"
};

void PrintTo(const Lines& lines, std::ostream* out)
{
  *out << ::testing::PrintToString(std::string(lines.bytes));
}

class TypeFileLines : public TypeFile, public ::testing::WithParamInterface<Lines> {};

TEST_P(TypeFileLines, WarningCountsLinesAsAnEditorDoes)
{
  EXPECT_EQ(load(GetParam().bytes), (Printed{warning("S", GetParam().line)}));
}

INSTANTIATE_TEST_SUITE_P(LineEnds, TypeFileLines,
                         ::testing::Values(Lines{"S", 1}, Lines{"S\n", 1}, Lines{"S\r\n", 1}, Lines{"a:b\nS\n", 2},
                                           Lines{"a:b\rS\r", 2}, Lines{"a:b\r\nS\r\n", 2}, Lines{"a:1\n\n\nS\n", 4},
                                           Lines{"a:1\r\n\r\n\r\nS\r\n", 4}, Lines{"a:1\r\r\rS\r", 4},
                                           Lines{"\nS\n", 2}, Lines{"a:1\n\rS", 3}, Lines{"\r\r\nS", 3},
                                           Lines{"a:1\n\n\n\n\n\n\n\n\nS", 10}));

TEST_F(TypeFile, EveryRecordCountsWhateverBecameOfIt)
{
  EXPECT_EQ(load("S1\na:A=1\n\nS4\n:x\nS6\n"), (Printed{warning("S1", 1), warning("S4", 4), warning("S6", 6)}));
}

TEST_F(TypeFile, EachFileCountsFromOne)
{
  load("a:A=1\nS\n");
  EXPECT_EQ(load("S\n"), (Printed{warning("S", 1)}));
}

// --- add -----------------------------------------------------------------------------------------

TEST_F(TypeFile, AddTrimsBoth)
{
  catalogue.add(" \t\n\v\f\rName of it \r\n", "\tA=1  B=2 \v");
  EXPECT_EQ(entries(), (Entries{{"Name of it", "A=1  B=2"}}));
}

TEST_F(TypeFile, AddLeavesTheCallersTextsAlone)
{
  const LightweightString<char> name = " Name ", params = " A=1 ";
  catalogue.add(name, params);
  EXPECT_STREQ(name.c_str(), " Name ");
  EXPECT_STREQ(params.c_str(), " A=1 ");
}

TEST_F(TypeFile, AddOfNothingIsTheEmptyNameWithoutParameters)
{
  catalogue.add({}, {});
  EXPECT_EQ(entries(), (Entries{{"", ""}}));
}

TEST_F(TypeFile, ReplacedParametersLeaveAHeldCopyAlone)
{
  catalogue.add("Tape", "A=1");
  const LightweightString<char> held = catalogue["Tape"].value;
  catalogue.add("Tape", "B=2");
  EXPECT_STREQ(held.c_str(), "A=1");
  EXPECT_STREQ(catalogue["Tape"].value.c_str(), "B=2");
}

TEST_F(TypeFile, ReplacedParametersStayInTheirBodyWhenTheyFit)
{
  catalogue.add("Tape", "VideoChannels=1");
  const char* const body = catalogue["Tape"].value.c_str();
  catalogue.add("Tape", "VideoChannels=2");
  EXPECT_EQ(catalogue["Tape"].value.c_str(), body);
  EXPECT_STREQ(body, "VideoChannels=2");
}

// --- chopSpaces ----------------------------------------------------------------------------------

TEST_F(TypeFile, ChopTakesWhiteSpaceAtBothEndsOnly)
{
  EXPECT_EQ(chopped("a"), "a");
  EXPECT_EQ(chopped("  a b  "), "a b");
  EXPECT_EQ(chopped("\t\n\v\f\r a\t\tb \r\f\v\n\t"), "a\t\tb");
  EXPECT_EQ(chopped("x "), "x");
  EXPECT_EQ(chopped(" x"), "x");
}

TEST_F(TypeFile, ChopOfWhiteSpaceOnlyIsEmpty)
{
  EXPECT_EQ(chopped(""), "");
  EXPECT_EQ(chopped(" "), "");
  EXPECT_EQ(chopped(" \t\r\n\v\f"), "");
  EXPECT_EQ(catalogue.chopSpaces("   ").length(), 0u);
}

TEST_F(TypeFile, ChopKeepsNoBreakSpacesAndControlBytes)
{
  EXPECT_EQ(chopped("\xC2\xA0x\x1F\x7F"), "\xC2\xA0x\x1F\x7F");
  EXPECT_EQ(chopped("\x85x\xA0"), "\x85x\xA0");
}

TEST_F(TypeFile, ChopGivesALengthThatFitsTheText)
{
  const LightweightString<char> result = catalogue.chopSpaces("  ab  ");
  EXPECT_EQ(result.length(), 2u);
  EXPECT_EQ(result.c_str()[2], '\0');
}

TEST_F(TypeFile, ChopLeavesAStringThatSharesTheBodyAlone)
{
  const LightweightString<char> given = " a ";
  const LightweightString<char> result = catalogue.chopSpaces(given);
  EXPECT_STREQ(given.c_str(), " a ");
  EXPECT_STREQ(result.c_str(), "a");
}

// --- Limits --------------------------------------------------------------------------------------

const std::string longest(2047, 'x');
const std::string blanks(5000, ' ');

TEST_F(TypeFile, FieldsOf2047BytesAreStored)
{
  EXPECT_EQ(load(longest + std::string(":") + std::string(2047, 'y') + "\n"), Printed());
  EXPECT_EQ(entries(), (Entries{{longest, std::string(2047, 'y')}}));
}

TEST_F(TypeFile, LeadingWhiteSpaceDoesNotCountTowardsTheLimit)
{
  EXPECT_EQ(load(blanks + longest + ":" + blanks + longest + "\n"), Printed());
  EXPECT_EQ(entries(), (Entries{{longest, longest}}));
}

TEST_F(TypeFile, FieldsOfWhiteSpaceOnlyMayBeOfAnyLength)
{
  EXPECT_EQ(load(blanks + ":" + blanks + "\n"), Printed());
  EXPECT_EQ(entries(), (Entries{{"", ""}}));
  EXPECT_EQ(chopped(blanks), "");
}

TEST_F(TypeFile, TextAfterASecondColonMayBeOfAnyLength)
{
  EXPECT_EQ(load("a:A=1:" + longest + longest + "\n"), Printed());
  EXPECT_EQ(entries(), (Entries{{"a", "A=1"}}));
}

TEST_F(TypeFile, TrailingWhiteSpaceMayFillTheFieldUpToTheLimit)
{
  EXPECT_EQ(load(std::string("n") + std::string(2046, ' ') + ":p" + std::string(2046, ' ') + "\n"), Printed());
  EXPECT_EQ(entries(), (Entries{{"n", "p"}}));
}

TEST_F(TypeFile, LongestWarningIsPrinted)
{
  const std::string atLine1(2001, 'w');
  EXPECT_EQ(load(atLine1 + "\n"), (Printed{warning(atLine1, 1)}));
  const std::string atLine10(2000, 'w');
  EXPECT_EQ(load("\n\n\n\n\n\n\n\n\n" + atLine10 + "\n"), (Printed{warning(atLine10, 10)}));
}

#define EXPECT_ABORT(statement) EXPECT_EXIT(statement, ::testing::KilledBySignal(SIGABRT), "")

TEST_F(TypeFileDeathTest, NameOf2048BytesAborts)
{
  EXPECT_ABORT(load(longest + "x:A=1\n"));
  EXPECT_ABORT(load(" " + longest + "x:A=1\n"));
}

TEST_F(TypeFileDeathTest, TrailingWhiteSpaceCountsTowardsTheLimit)
{
  EXPECT_ABORT(load(std::string("n") + std::string(2047, ' ') + ":A=1\n"));
  EXPECT_ABORT(load(std::string("n:p") + std::string(2047, ' ') + "\n"));
}

TEST_F(TypeFileDeathTest, ParameterFieldOf2048BytesAborts)
{
  EXPECT_ABORT(load("n:" + longest + "x\n"));
  EXPECT_ABORT(load("n: " + longest + "x:y\n"));
}

TEST_F(TypeFileDeathTest, WarningThatDoesNotFitAborts)
{
  EXPECT_ABORT(load(std::string(2002, 'w') + "\n"));
  EXPECT_ABORT(load(std::string("\n\n\n\n\n\n\n\n\n") + std::string(2001, 'w') + "\n"));
}

TEST_F(TypeFileDeathTest, WarningCountsTheLeadingWhiteSpaceOfTheName)
{
  EXPECT_ABORT(load(std::string(2001, ' ') + "w\n"));
}

TEST_F(TypeFileDeathTest, ChopOf2048BytesAborts)
{
  EXPECT_EQ(chopped(" " + longest + ""), longest);
  EXPECT_ABORT(chopped(longest + "x"));
  EXPECT_ABORT(chopped(std::string("x") + std::string(2047, ' ')));
}

TEST_F(TypeFileDeathTest, AddOf2048BytesAborts)
{
  EXPECT_ABORT(catalogue.add((longest + "x").c_str(), "A=1"));
  EXPECT_ABORT(catalogue.add("n", (longest + "x").c_str()));
}

// --- parseParamToken -----------------------------------------------------------------------------

struct Token {
  const char* token;
  const char* name;
  bool found;
  int value;
};

void PrintTo(const Token& token, std::ostream* out)
{
  *out << ::testing::PrintToString(std::string(token.token)) << " asked for "
       << ::testing::PrintToString(std::string(token.name));
}

constexpr int untouched = -987;

class TypeFileToken : public TypeFile, public ::testing::WithParamInterface<Token> {};

TEST_P(TypeFileToken, GivesItsValueOrNone)
{
  const Token& given = GetParam();
  int value = untouched;
  EXPECT_EQ(catalogue.parseParamToken(given.token, given.name, value), given.found) << given.token;
  EXPECT_EQ(value, given.found ? given.value : untouched) << given.token;
}

INSTANTIATE_TEST_SUITE_P(NameInAnyCaseAndAnywhere, TypeFileToken,
                         ::testing::Values(Token{"VideoChannels=2", "VideoChannels", true, 2},
                                           Token{"videochannels=2", "VideoChannels", true, 2},
                                           Token{"VIDEOCHANNELS=2", "videochannels", true, 2},
                                           Token{"MaxVideoChannels=2", "VideoChannels", true, 2},
                                           Token{"XVideoChannelsY=6", "videochannels", true, 6},
                                           Token{"A=7VideoChannels", "VideoChannels", true, 7},
                                           Token{"5=VideoChannels", "VideoChannels", true, 0},
                                           Token{"=VideoChannels", "VideoChannels", true, 0}, Token{"A=5", "", true, 5},
                                           Token{"=5", "", true, 5}, Token{"VideoChannels=2", "Channels=2", true, 2},
                                           Token{"\xC3\xA9=4", "\xC3\xA9", true, 4}));

INSTANTIATE_TEST_SUITE_P(ValueAsFarAsItIsANumber, TypeFileToken,
                         ::testing::Values(Token{"VideoChannels=2=5", "VideoChannels", true, 2},
                                           Token{"VideoChannels=x", "VideoChannels", true, 0},
                                           Token{"VideoChannels==2", "VideoChannels", true, 0},
                                           Token{"VideoChannels=-3", "VideoChannels", true, -3},
                                           Token{"VideoChannels=+4", "VideoChannels", true, 4},
                                           Token{"VideoChannels=0x10", "VideoChannels", true, 0},
                                           Token{"VideoChannels=010", "VideoChannels", true, 10},
                                           Token{"VideoChannels=12abc", "VideoChannels", true, 12},
                                           Token{"VideoChannels=\t9", "VideoChannels", true, 9},
                                           Token{"VideoChannels=2.9", "VideoChannels", true, 2},
                                           Token{"VideoChannels=2147483647", "VideoChannels", true, 2147483647},
                                           Token{"VideoChannels=-2147483648", "VideoChannels", true, -2147483647 - 1}));

INSTANTIATE_TEST_SUITE_P(BlankIsASeparatorToo, TypeFileToken,
                         ::testing::Values(Token{"VideoChannels 2", "VideoChannels", true, 2},
                                           Token{"VideoChannels = 2", "VideoChannels", true, 0},
                                           Token{"VideoChannels=2 ", "VideoChannels", true, 2},
                                           Token{"VideoChannels=2 7", "VideoChannels", true, 2},
                                           Token{" VideoChannels=2", "VideoChannels", true, 0}));

INSTANTIATE_TEST_SUITE_P(WithoutAValue, TypeFileToken,
                         ::testing::Values(Token{"VideoChannels", "VideoChannels", false, 0},
                                           Token{"VideoChannels=", "VideoChannels", false, 0},
                                           Token{"VideoChannels ", "VideoChannels", false, 0},
                                           Token{"AudioChannels=2", "VideoChannels", false, 0},
                                           Token{"VideoChannel=2", "VideoChannels", false, 0},
                                           Token{"", "VideoChannels", false, 0}, Token{"", "", false, 0},
                                           Token{"A", "", false, 0}, Token{"=", "", false, 0},
                                           // Letters beyond ASCII have no case in this locale.
                                           Token{"\xC3\x89=4", "\xC3\xA9", false, 0}));

TEST_F(TypeFile, TokenAndNameOfTheCallerKeepTheirCase)
{
  const LightweightString<char> token = "videoChannels=2", name = "VideoChannels";
  int value = 0;
  EXPECT_TRUE(catalogue.parseParamToken(token, name, value));
  EXPECT_STREQ(token.c_str(), "videoChannels=2");
  EXPECT_STREQ(name.c_str(), "VideoChannels");
}

// --- errMsg --------------------------------------------------------------------------------------

TEST_F(TypeFile, MessageIsPrintedLetterForLetter)
{
  EXPECT_EQ(printedBy([&] { catalogue.errMsg("100% of %s\n"); }), (Printed{"\"100% of %s\\n\""}));
  EXPECT_EQ(printedBy([&] { catalogue.errMsg(""); }), (Printed{"\"\""}));
}

} // namespace
} // namespace reeldb_tests
