// SPDX-License-Identifier: Apache-2.0
#include <stdexcept>

#include "standalone/model/host_test.h"

namespace {

using namespace reeldb_tests;
using reelhost::Material;

class MaterialTest : public HostTest {
protected:
  MaterialTest() { openMemory(); }
  static Material clip(const std::string& reel)
  {
    Material material;
    material.reel = reel;
    material.name = "Clip \xC3\xA9";
    material.sourceFile = "A001.mov";
    material.sourceIn = "01:00:00:00";
    material.sourceOut = "01:00:10:00";
    material.recordIn = "10:00:00:00";
    material.recordOut = "10:00:10:00";
    material.tracks = "VA1A2";
    material.aliases = "A001\nA001_C002";
    material.videoChannels = 1;
    material.audioChannels = 2;
    material.frameRate = "29.97";
    material.dropFrame = true;
    material.ownName = "A001_C002_LONG";
    material.mayBeCut = true;
    material.sourceId = "060A2B34";
    material.furtherNames = "A001_C002\tcut\t";
    material.reelOfNames = "A001_C002";
    material.cameraRoll = "A001";
    material.soundOf = "A001_C002";
    return material;
  }
};

TEST_F(MaterialTest, AnImportIsReportedOnceItIsThere)
{
  RecordingListener listener;
  bool wasThere = false;
  listener.onEvent = [&](const std::string&) { wasThere = shotsOf("R1").count() == 1; };
  const Cookie log = reelhost::importMaterial(clip("R1"));
  EXPECT_EQ(listener.heard, std::vector<std::string>{"modified " + text(log) + " 59"});
  EXPECT_TRUE(wasThere);
}

TEST_F(MaterialTest, RateAndDropFrameThatTheListLacksAreNotKeysOfTheLog)
{
  Material material = clip("R1");
  material.frameRate.clear();
  material.dropFrame = false;
  const Cookie log = reelhost::importMaterial(material);
  EXPECT_EQ(reelhost::materialOf(log).frameRate, "");
  EXPECT_FALSE(reelhost::materialOf(log).dropFrame);
  EditInfo shot(log, codes::openAsUsual);
  EXPECT_EQ(shot->config().in(reelhost::frameRateKey), nullptr);
  EXPECT_EQ(shot->config().in(reelhost::dropFrameKey), nullptr);
  shot.i_close();
}

TEST_F(MaterialTest, EverythingOfAClipIsStored)
{
  const Cookie log = reelhost::importMaterial(clip("R1"));
  reelhost::commit();
  reopen();
  EXPECT_TRUE(reelhost::materialOf(log) == clip("R1"));
  EditInfo shot(log, codes::openAsUsual);
  EXPECT_TRUE(shot->isImported());
  shot.i_close();
  EXPECT_EQ(reelIdOf(log), "R1");
  EXPECT_EQ(fieldOf(log, "source_file"), "A001.mov");
}

TEST_F(MaterialTest, EmptyTextsLeaveNoKeys)
{
  const Cookie log = reelhost::importMaterial({});
  for (const char* key :
       {"reelid", "source_file", "source_in", "source_out", "record_in", "record_out", "tracks", "aliases"})
    EXPECT_EQ(fieldOf(log, key), "<absent>") << key;
  EXPECT_STREQ((*EditManager::getProjdb())[log]->get_field(EditManager::getProjdb()->findField("Type")), "Material");
}

TEST_F(MaterialTest, WhatAListenerThrowsPassesAndTheLogStays)
{
  RecordingListener first, second;
  first.onEvent = [](const std::string&) { throw std::runtime_error("no reel today"); };
  EXPECT_THROW(reelhost::importMaterial(clip("R1")), std::runtime_error);
  EXPECT_EQ(shotsOf("R1").count(), 1);
  EXPECT_EQ(second.heard.size(), 1u); // the others are notified anyway
}

TEST_F(MaterialTest, ImportItselfIsNotAHostCall)
{
  EXPECT_EQ(linesOf([&] { reelhost::importMaterial(clip("R1")); }), std::vector<std::string>{});
}

TEST_F(MaterialTest, MissingLogHasNoMaterial)
{
  EXPECT_EQ(reelhost::materialOf(Cookie()).name, "");
}

TEST_F(MaterialTest, ShotsAreAllLogsButReelsInOrder)
{
  CookieVec shots;
  shots.add(addLog(1, "R1"));
  reelhost::commit();
  reopen();
  addLog(9, "R1");
  shots.add(addLog(0, ""));
  shots.add(reelhost::importMaterial(clip("R2")));
  EXPECT_EQ(texts(reelhost::allShots()), texts(shots));
}

TEST_F(MaterialTest, ShotsOfAReelAreThoseWithItsIdentifierInOrder)
{
  CookieVec shots;
  shots.add(addLog(1, "a001"));
  addLog(9, "A001");
  shots.add(addLog(0, "A001"));
  addLog(1, "A0012");
  addLog(1, "");
  const Cookie late = addLog(1, "B002");
  shots.add(reelhost::importMaterial(clip("A001")));
  EXPECT_EQ(texts(reelhost::shotsOf("A001")), texts(shots));
  EXPECT_EQ(texts(reelhost::shotsOf("a001")), texts(shots));
  reelhost::commit();
  reopen();
  EXPECT_EQ(texts(reelhost::shotsOf("a001")), texts(shots));
  EXPECT_EQ(reelhost::shotsOf("B002").count(), 1);
  rename(late, "A002");
  EXPECT_EQ(reelhost::shotsOf("B002").count(), 0);
  EXPECT_EQ(reelhost::shotsOf("a002").count(), 1);
}

TEST_F(MaterialTest, ShotsOfAReelAreFoundWithoutAHostCall)
{
  addLog(1, "R1");
  EXPECT_EQ(linesOf([&] { reelhost::shotsOf("R1"); }), std::vector<std::string>{});
}

TEST_F(MaterialTest, EmptyIdentifierHasNoShots)
{
  addLog(1, "");
  EXPECT_EQ(reelhost::shotsOf("").count(), 0);
  EXPECT_EQ(reelhost::shotsOf("R1").count(), 0);
}

TEST_F(MaterialTest, NoProjectHasNoShots)
{
  reelhost::closeProject();
  EXPECT_EQ(reelhost::shotsOf("R1").count(), 0);
}

using Counts = std::unordered_map<std::string, std::int64_t>;

TEST_F(MaterialTest, ShotsAreCountedByIdentifierWithoutRegardToCase)
{
  addLog(1, "A001");
  addLog(1, "a001");
  addLog(0, "B\xC3\x89");
  addLog(1, "");
  addLog(9, "A001");
  const Counts wanted{{"a001", 2}, {"b\xC3\x89", 1}};
  EXPECT_EQ(reelhost::shotCounts(), wanted);
  reelhost::commit();
  reopen();
  EXPECT_EQ(reelhost::shotCounts(), wanted); // from the store
}

TEST_F(MaterialTest, WhatIsNotStoredYetIsCounted)
{
  addLog(1, "A001");
  const Cookie renamed = addLog(1, "A001"), deleted = addLog(1, "A001");
  reelhost::commit();
  reopen();
  addLog(1, "A001");
  rename(renamed, "B");
  CookieVec gone;
  gone.add(deleted);
  reelhost::deleteLogs(gone);
  EXPECT_EQ(reelhost::shotCounts(), (Counts{{"a001", 2}, {"b", 1}}));
}

} // namespace
