// SPDX-License-Identifier: Apache-2.0
#include "facility/type_file_check.h"

#include <climits>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "reelhost/facility.h"
#include "standalone/store/support.h"

namespace {

using namespace reelhost;
using namespace store_tests;
namespace fs = std::filesystem;
using Lines = std::vector<std::string>;

const std::string longName = "the name is longer than 2047 bytes";
const std::string longParameters = "the parameters are longer than 2047 bytes";
const std::string longWarning = "the record has no parameters and is too long for the library's warning";

std::string text(std::size_t length)
{
  return std::string(length, 'n');
}

class TypeFileCheckTest : public testing::Test {
protected:
  fs::path file() const { return folder_ / "reeltype.dat"; }
  Lines remarksOn(const std::string& bytes) const
  {
    writeBytes(file(), bytes);
    return checkTypeFile(file()).remarks;
  }
  void expectGood(const std::string& bytes) const { EXPECT_EQ(remarksOn(bytes), Lines{}); }
  void expectRefusal(const std::string& bytes, int line, const std::string& fact) const
  {
    EXPECT_EQ(errorOf([&] { remarksOn(bytes); }),
              "Unreadable: " + file().native() + ":" + std::to_string(line) + ": " + fact);
  }
  void expectRemark(const std::string& parameters, const std::string& remark) const
  {
    EXPECT_EQ(remarksOn("ok:VideoChannels=65535 AudioChannels=0\n\nodd:" + parameters + "\n"),
              Lines{file().native() + ":3: " + remark})
        << parameters;
  }

private:
  TempFolder folder_;
};

TEST_F(TypeFileCheckTest, MissingFileHasNoRemarks)
{
  EXPECT_EQ(checkTypeFile(file()).remarks, Lines{});
  EXPECT_EQ(checkTypeFile(file() / "below").remarks, Lines{});
}

TEST_F(TypeFileCheckTest, NamesAreThoseThatTheLibraryReads)
{
  writeBytes(file(), "Tape 2ch:VideoChannels=1\n\nnothing\n \tDisc : AudioChannels=8\nFilm::x\n");
  EXPECT_EQ(checkTypeFile(file()).names, (Lines{"Tape 2ch", "Disc", "Film"}));
}

TEST_F(TypeFileCheckTest, EmptyFileAndEmptyLinesAreGood)
{
  expectGood("");
  expectGood("\n\r\n\r\r\n\n");
}

TEST_F(TypeFileCheckTest, NameOf2047BytesIsGood)
{
  expectGood(text(2047) + ":VideoChannels=1\n");
}

TEST_F(TypeFileCheckTest, NameOf2048BytesIsRefused)
{
  expectRefusal(text(2048) + ":VideoChannels=1\n", 1, longName);
}

TEST_F(TypeFileCheckTest, LeadingWhiteSpaceOfANameDoesNotCount)
{
  expectGood(" \t\v\f" + text(2047) + ":VideoChannels=1\n");
}

TEST_F(TypeFileCheckTest, TrailingWhiteSpaceOfANameCounts)
{
  expectRefusal(text(2040) + std::string(8, ' ') + ":VideoChannels=1\n", 1, longName);
}

TEST_F(TypeFileCheckTest, NameOfWhiteSpaceAloneIsGoodAtAnyLength)
{
  expectGood(std::string(9000, ' ') + ":VideoChannels=1\n");
}

TEST_F(TypeFileCheckTest, ParametersOf2047BytesAreGood)
{
  expectGood("a:" + text(2047) + "\n");
  expectGood("a: \t" + text(2047) + "\n");
}

TEST_F(TypeFileCheckTest, ParametersOf2048BytesAreRefused)
{
  expectRefusal("a:1\nb:" + text(2048) + "\n", 2, longParameters);
}

TEST_F(TypeFileCheckTest, NameIsRefusedBeforeParameters)
{
  expectRefusal(text(2048) + ":" + text(2048) + "\n", 1, longName);
}

TEST_F(TypeFileCheckTest, TextBehindASecondColonDoesNotCount)
{
  expectGood("a:1:" + text(5000) + "\n");
}

TEST_F(TypeFileCheckTest, ParametersOfWhiteSpaceAloneAreGoodAtAnyLength)
{
  expectGood("a:" + std::string(9000, '\t') + "\n");
}

TEST_F(TypeFileCheckTest, WarningThatJustFitsIsGood)
{
  expectGood(text(2001) + "\n"); // 45 characters of the warning, the name and one digit make 2,047
}

TEST_F(TypeFileCheckTest, WarningOneByteLongerIsRefused)
{
  expectRefusal(text(2002) + "\n", 1, longWarning);
}

TEST_F(TypeFileCheckTest, DigitsOfTheLineNumberCount)
{
  const std::string bytes(9, '\n');
  expectGood(bytes + text(2000));
  expectRefusal(bytes + text(2001), 10, longWarning);
}

TEST_F(TypeFileCheckTest, WarningCountsTheNameUntrimmed)
{
  expectRefusal(std::string(3000, ' ') + "\n", 1, longWarning);
}

TEST_F(TypeFileCheckTest, ColonAtTheEndIsARecordWithoutParameters)
{
  expectGood(text(2001) + ":\n");
  expectRefusal(text(2002) + ":\n", 1, longWarning);
}

TEST_F(TypeFileCheckTest, ColonAtTheStartIsARecordWithoutAName)
{
  expectGood(":" + text(2047) + "\n");
  expectRefusal(":" + text(2048) + "\n", 1, longParameters);
}

TEST_F(TypeFileCheckTest, LinesAreCountedAsAnEditorDoes)
{
  expectRefusal("a:1\r\nb:1\r\n" + text(2048) + ":1\r\n", 3, longName);
  expectRefusal("a:1\rb:1\r" + text(2048) + ":1\r", 3, longName);
  expectRefusal("a:1\n\r" + text(2048) + ":1", 3, longName);
  expectRefusal("\n\n" + text(2048) + ":1", 3, longName);
}

TEST_F(TypeFileCheckTest, TextBehindANulDoesNotCount)
{
  const std::string nul(1, '\0');
  expectGood("a:1" + nul + text(5000) + "\n");
  expectGood(nul + text(5000) + ":1\n");
  expectGood(text(2001) + nul + text(5000) + ":1\n");
  expectRefusal("a:1" + nul + "b\n" + text(2048) + ":1\n", 2, longName);
}

TEST_F(TypeFileCheckTest, AnythingButARegularFileIsRefusedWithoutWaiting)
{
  ASSERT_EQ(::mkfifo(file().c_str(), 0600), 0);
  EXPECT_EQ(errorOf([&] { checkTypeFile(file()); }),
            "Unreadable: " + file().native() + ": not a regular file (a named pipe)");
  fs::remove(file());
  fs::create_directory(file());
  EXPECT_EQ(errorOf([&] { checkTypeFile(file()); }),
            "Unreadable: " + file().native() + ": not a regular file (a folder)");
}

TEST_F(TypeFileCheckTest, FileOfMoreThan64MiBIsRefused)
{
  expectGood("a:1\n");
  fs::resize_file(file(), (std::uintmax_t{64} << 20) + 1);
  EXPECT_EQ(errorOf([&] { checkTypeFile(file()); }),
            "Unreadable: " + file().native() + ": too large (more than 67108864 bytes)");
}

TEST_F(TypeFileCheckTest, FileThatLeadsNowhereButToItselfIsAnError)
{
  fs::create_symlink(file(), file());
  EXPECT_EQ(errorOf([&] { checkTypeFile(file()); }),
            "Io: " + file().native() + ": cannot be opened (Too many levels of symbolic links)");
}

TEST_F(TypeFileCheckTest, ValueThatIsNotANumberIsWarnedAbout)
{
  expectRemark("VideoChannels=1 AudioChannels=x", "AudioChannels: \"x\" is not a number (read as 0)");
  expectRemark("VideoChannels=2x AudioChannels=3", "VideoChannels: \"2x\" is not a number (read as 2)");
  expectRemark("videochannels==4", "VideoChannels: \"\" is not a number (read as 0)");
  expectRemark("VideoChannels=0x10", "VideoChannels: \"0x10\" is not a number (read as 0)");
  expectRemark("VideoChannels=\x1b", "VideoChannels: \"\\x1b\" is not a number (read as 0)");
}

TEST_F(TypeFileCheckTest, NumberThatNoReelCanHaveIsWarnedAbout)
{
  expectRemark("VideoChannels=65536", "VideoChannels: 65536 is too many (at most 65535; no reel can get this type)");
  expectRemark("AudioChannels=70000:AudioChannels=x",
               "AudioChannels: 70000 is too many (at most 65535; no reel can get this type)");
  expectRemark("AudioChannels=4294967297", "AudioChannels: 4294967297 is too many (at most 65535; read as 1)");
  expectRemark("AudioChannels=99999999999999999999",
               "AudioChannels: 99999999999999999999 is too many (at most 65535; read as -1)");
  expectRemark("AudioChannels=-3", "AudioChannels: -3 is not a number of channels (no channels are added)");
}

TEST_F(TypeFileCheckTest, ParameterWithoutANumberIsWarnedAbout)
{
  const std::string none = ": no number directly after the \"=\" (no channels are added)";
  expectRemark("VideoChannels = 2 AudioChannels=1", "VideoChannels" + none);
  expectRemark("audiochannels =2", "AudioChannels" + none);
  expectRemark("AudioChannels=", "AudioChannels" + none);
}

TEST_F(TypeFileCheckTest, OnlyTheTokenThatTheLibraryReadsIsLookedAt)
{
  expectGood("a:VideoChannels VideoChannels= MaxVideoChannels=2 VideoChannels=x AudioChannels=1=x\n");
  expectGood("a:Depth=ten  VideoChannels=1 \t\nb:VideoChannels=+1 AudioChannels=\t7\n");
  expectGood("VideoChannels=x\n:\n");
}

TEST_F(TypeFileCheckTest, WhiteSpaceBehindTheLastNumberIsNotPartOfIt)
{
  expectGood("a:VideoChannels=1\t\v\nb:\tAudioChannels=2\t \r\n");
}

TEST_F(TypeFileCheckTest, BothNumbersOfEveryRecordAreWarnedAboutInOrder)
{
  const std::string path = file().native();
  EXPECT_EQ(remarksOn("a:VideoChannels=x AudioChannels=y\r\nb:AudioChannels=z"),
            (Lines{path + ":1: VideoChannels: \"x\" is not a number (read as 0)",
                   path + ":1: AudioChannels: \"y\" is not a number (read as 0)",
                   path + ":2: AudioChannels: \"z\" is not a number (read as 0)"}));
}

class FacilityTypes : public testing::Test {
protected:
  FacilityTypes() { NewFacility(facility_.path()).keep(); }
  fs::path dir() const { return facility_.path(); }
  fs::path file() const { return dir() / "devicedata" / "reeltype.dat"; }

private:
  TempFolder facility_;
};

TEST_F(FacilityTypes, BadTypeFileIsRefusedWithTheFacility)
{
  EXPECT_EQ(Facility::read(dir()).remarks(), Lines{});
  writeBytes(file(), "a:1\n" + text(3000) + ":1\n");
  EXPECT_EQ(errorOf([&] { Facility::read(dir()); }), "Unreadable: " + file().native() + ":2: " + longName);
}

TEST_F(FacilityTypes, RemarksComeWithTheFacility)
{
  writeBytes(file(), "a:VideoChannels=2x\n");
  EXPECT_EQ(Facility::read(dir()).remarks(),
            Lines{file().native() + ":1: VideoChannels: \"2x\" is not a number (read as 2)"});
}

TEST_F(FacilityTypes, FacilityWithoutATypeFileIsGood)
{
  fs::remove_all(dir() / "devicedata");
  EXPECT_EQ(Facility::read(dir()).remarks(), Lines{});
}

TEST_F(TypeFileCheckTest, ByteOrderMarkIsWarnedAboutWhereItIsPartOfAName)
{
  const std::string mark = "\xEF\xBB\xBF";
  const Lines remark = {file().native() + ":1: a byte order mark is part of the name (store the file without it)"};
  EXPECT_EQ(remarksOn(mark + "a:VideoChannels=1\n"), remark);
  EXPECT_EQ(remarksOn(mark + "no parameters\n"), remark);
  expectGood("a:VideoChannels=1\n" + mark + "b:VideoChannels=1\n");
  expectGood("a" + mark + ":VideoChannels=1\n");
  expectGood("\xEF\xBB"
             "a:VideoChannels=1\n");
}

} // namespace
