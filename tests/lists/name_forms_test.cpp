// SPDX-License-Identifier: Apache-2.0
#include "lists/name_forms.h"

#include <gtest/gtest.h>

using namespace reeldb::lists;

namespace {

TEST(FillsField, OfTheFieldsWidthInCharacters)
{
  EXPECT_TRUE(fillsField("A001C001", 8));
  EXPECT_FALSE(fillsField("A001C00", 8));
  EXPECT_FALSE(fillsField("A001C0011", 8));
  EXPECT_TRUE(fillsField("M\xC3\xBCLLER", 6));
  EXPECT_FALSE(fillsField("", 0));
}

TEST(SameName, CaseAndOtherCharactersAside)
{
  EXPECT_TRUE(isSameName("BOONE SMITH", "boone_smith"));
  EXPECT_TRUE(isSameName("A.1", "A-1"));
  EXPECT_FALSE(isSameName("A.1", "A1"));
  EXPECT_FALSE(isSameName("Z677_13.", "Z677_13A"));
}

TEST(SameName, CharactersBeyondAsciiAreEqualOnlyToThemselves)
{
  EXPECT_TRUE(isSameName("M\xC3\xBCLLER", "m\xC3\xBCller"));
  EXPECT_FALSE(isSameName("M\xC3\xBCLLER", "M\xC3\xA4LLER"));
  EXPECT_FALSE(isSameName("M\xC3\xBCLLER", "M_LLER"));
}

TEST(CutForm, BeginsCharacterByCharacter)
{
  EXPECT_TRUE(isCutForm("BOONE_SM", "Boone Smith on camera"));
  EXPECT_TRUE(isCutForm("10_sec_m", "10 sec.mov"));
  EXPECT_FALSE(isCutForm("Z677_13.", "Z677_13A"));
  EXPECT_FALSE(isCutForm("Z677_13.", "Z677_1.3A"));
}

TEST(CutForm, OfLettersAloneLeavesOtherCharactersOut)
{
  EXPECT_TRUE(isCutForm("BOONESMI", "BOONE SMITH"));
  EXPECT_FALSE(isCutForm("BOONE_MI", "BOONE S MITH"));
}

TEST(CutForm, IsShorter)
{
  EXPECT_FALSE(isCutForm("A001C001", "A001C001"));
  EXPECT_FALSE(isCutForm("A001C001", "A001-C001"));
  EXPECT_FALSE(isCutForm("", "A"));
}

TEST(PartsOf, KindsOfEndings)
{
  EXPECT_EQ(partsOf("A.wav").ending, Ending::Sound);
  EXPECT_EQ(partsOf("A.PSD").ending, Ending::Still);
  EXPECT_EQ(partsOf("A.Mov").ending, Ending::File);
  EXPECT_EQ(partsOf("A.Mov").stem, "A");
}

TEST(PartsOf, FrameRangesAreEndings)
{
  for (const char* name : {"A.[1-96]", "A.[1-96].dpx", "A.png.[0001-0096]"}) {
    EXPECT_EQ(partsOf(name).ending, Ending::File) << name;
    EXPECT_EQ(partsOf(name).stem, "A") << name;
  }
}

TEST(PartsOf, OtherPointsAreNoEndings)
{
  for (const char* name : {"A", "A.", "A.1", "Z677_13.", "A.[1]", "A.[x-2]", ".mov", "A_MOV", "A.B.C", "STILL.29", ""})
    EXPECT_EQ(partsOf(name).ending, Ending::None) << name;
  EXPECT_EQ(partsOf("A.1").stem, "A.1");
}

TEST(ShortForm, CutOnlyIfTheFieldIsFull)
{
  EXPECT_TRUE(isShortForm("A001C001", true, "A001C001_F701"));
  EXPECT_FALSE(isShortForm("A001C001", false, "A001C001_F701"));
}

TEST(ShortForm, WithoutTheEnding)
{
  EXPECT_TRUE(isShortForm("BOONE_SMITH", false, "Boone Smith.mov"));
  EXPECT_FALSE(isShortForm("BOONE_SMITH", false, "Boone Smith.1"));
  EXPECT_FALSE(isShortForm("X.WAV", false, "X.MOV"));
  EXPECT_FALSE(isShortForm("X.WAV", false, "X.WAV.MOV"));
}

TEST(WithoutAdditions, RemovesThemHoweverOften)
{
  EXPECT_EQ(withoutAdditions("ACC112 WARBIRDS.NEW.01"), "ACC112 WARBIRDS");
  EXPECT_EQ(withoutAdditions("A.mov.Copy.02.sub.01"), "A.mov");
}

TEST(WithoutAdditions, KeepsOtherNames)
{
  for (const char* name : {"A.01", "A.NEW", "NEW.01", ".NEW.01", "A.NEWER.01", "A.NEW.X1", ""})
    EXPECT_EQ(withoutAdditions(name), name);
}

TEST(FileName, BehindTheLastSlash)
{
  EXPECT_EQ(fileName("/a/b c/D.mov"), "D.mov");
  EXPECT_EQ(fileName("C:\\a\\D.mov"), "D.mov");
  EXPECT_EQ(fileName("D.mov"), "D.mov");
  EXPECT_EQ(fileName("a/"), "a/");
  EXPECT_EQ(fileName("a/ D.mov"), "D.mov");
}

} // namespace
