// SPDX-License-Identifier: Apache-2.0
#include "lists/own_name.h"

#include <gtest/gtest.h>

using namespace reeldb::lists;

namespace {

/// The best name as text: "NAME reel-note", and " cut" behind it if it may be cut.
std::string best(const NameTexts& texts)
{
  const OwnName name = ownNames(texts).front();
  return name.name + " " + std::string(wordOf(name.evidence)) + (name.mayBeCut ? " cut" : "");
}

/// The texts of a clip in a list with eight characters of reel.
NameTexts clipOf(std::string_view reel)
{
  NameTexts texts;
  texts.reel = reel;
  texts.field = 8;
  return texts;
}

TEST(OwnNames, ReelTextMayBeCutIfItFillsItsField)
{
  EXPECT_EQ(best(clipOf("A001C001")), "A001C001 reel cut");
  EXPECT_EQ(best(clipOf("A001C00")), "A001C00 reel");
}

TEST(OwnNames, SourceFileOfWhichTheReelTextIsAForm)
{
  NameTexts texts = clipOf("BOONE_SM");
  texts.sourceFile = "BOONE SMITH ON CAMERA";
  EXPECT_EQ(best(texts), "BOONE SMITH ON CAMERA source-file");
  texts.sourceFile = "/media/day 1/BOONE SMITH.MOV";
  EXPECT_EQ(best(texts), "BOONE SMITH.MOV source-file");
  texts.sourceFile = "boone.sm";
  EXPECT_EQ(best(texts), "BOONE_SM source-file") << "the same name, so the reel text is whole";
  texts.sourceFile = "BOONE_SM.MOV";
  EXPECT_EQ(best(texts), "BOONE_SM source-file") << "a reel is not called by the ending of its file";
}

TEST(OwnNames, OtherSourceFilesDecideNothing)
{
  NameTexts texts = clipOf("SR007");
  for (const char* file : {"A012C001_1CTJ.MOV", "SR007 DAY 3", "SR007*", "AX", "BL"}) {
    texts.sourceFile = file;
    EXPECT_EQ(best(texts), "SR007 reel") << file;
  }
}

TEST(OwnNames, SourceFileOfTheRowComesNext)
{
  NameTexts texts = clipOf("B008C011");
  texts.rowName = "B008C011_140312_";
  texts.rowField = 16;
  EXPECT_EQ(best(texts), "B008C011_140312_ source-table cut");
  texts.rowSourceFile = "B008C011_140312_C603";
  EXPECT_EQ(best(texts), "B008C011_140312_C603 source-file");
  texts.sourceFile = "B008C011_140312_C604";
  EXPECT_EQ(best(texts), "B008C011_140312_C604 source-file");
}

TEST(OwnNames, RowNameWithANoteIsWhole)
{
  NameTexts texts = clipOf("B008C011");
  texts.rowName = "TAPE_OF_16_CHARS";
  texts.rowField = 16;
  texts.rowSourceFile = "another";
  EXPECT_EQ(best(texts), "TAPE_OF_16_CHARS source-table");
}

TEST(OwnNames, ReplacedReelComesBeforeTheNotes)
{
  NameTexts texts = clipOf("A001C001");
  texts.reelNote = "A001C001_LONG";
  EXPECT_EQ(best(texts), "A001C001_LONG reel-note");
  texts.replacedReel = "A001-C001";
  EXPECT_EQ(best(texts), "A001-C001 replaced-reel");
}

TEST(OwnNames, ReelNoteAndClipNameNeedACutReelText)
{
  NameTexts texts = clipOf("A001");
  texts.reelNote = texts.clipName = "A001_LONG.MOV";
  EXPECT_EQ(best(texts), "A001 reel");
  texts.reel = "B001C001";
  EXPECT_EQ(best(texts), "B001C001 reel cut");
}

TEST(OwnNames, ClipNameWithTheEndingOfAFile)
{
  NameTexts texts = clipOf("A001C001");
  texts.clipName = "A001C001_F701.mov.NEW.01";
  EXPECT_EQ(best(texts), "A001C001_F701.mov clip-name");
  texts.clipName = "A001C001 take 2";
  EXPECT_EQ(best(texts), "A001C001 reel cut");
  texts.anyClipName = true;
  EXPECT_EQ(best(texts), "A001C001 take 2 clip-name");
  texts.clipName = "A001C001-4*";
  EXPECT_EQ(best(texts), "A001C001 reel cut") << "a star names no reel";
}

TEST(OwnNames, NextBestNamesFollowInOrder)
{
  NameTexts texts = clipOf("A001C001");
  texts.sourceFile = "A001C001_F701.MOV";
  texts.rowName = "A001C001_F701";
  texts.rowField = 16;
  texts.clipName = "A001C001_F7.MOV";
  std::string all;
  for (const OwnName& name : ownNames(texts))
    all += name.name + "|";
  EXPECT_EQ(all, "A001C001_F701.MOV|A001C001_F701|A001C001_F7.MOV|A001C001|");
}

TEST(OwnNameWithoutTape, FileWithoutFoldersElseClipName)
{
  EXPECT_EQ(ownNameWithoutTape("/a/b.mov", "c").name, "b.mov");
  EXPECT_EQ(ownNameWithoutTape("AX", "c.SUB.01").name, "c");
  EXPECT_EQ(ownNameWithoutTape("", "ax").name, "");
  EXPECT_EQ(ownNameWithoutTape("", "").name, "");
}

} // namespace
