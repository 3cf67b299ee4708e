// SPDX-License-Identifier: Apache-2.0
#include "app/json/from_json.h"
#include "app/kept_lists.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "app/alias.h"
#include "app/conflict.h"
#include "app/deletion.h"
#include "app/devices.h"
#include "app/diff.h"
#include "app/error.h"
#include "app/export.h"
#include "app/import.h"
#include "app/label_maps.h"
#include "app/merge.h"
#include "app/names.h"
#include "app/names_check.h"
#include "app/needs.h"
#include "app/projects.h"
#include "app/reel_fields.h"
#include "app/rename.h"
#include "app/report.h"
#include "app/rolls.h"
#include "app/split.h"
#include "app/types.h"
#include "app/watch.h"

using namespace reeldb;
using namespace reeldb::app;

namespace {

// --- What each result looks like -----------------------------------------------------------------

Reel sampleReel()
{
  Reel reel;
  reel.id = "A001";
  reel.type = "Tape 2ch";
  reel.available = true;
  reel.labelMapping = "pal9pin";
  reel.bin = "Shelf 4";
  reel.lastDevice = "Deck A";
  reel.videoChannels = 1;
  reel.audioChannels = 2;
  reel.userFields[1] = "rain";
  reel.shots = 3;
  return reel;
}

constexpr const char* reelKeys =
    R"("id": "A001", "type": "Tape 2ch", "available": true, "inhibit": false, "label_mapping": "pal9pin",
       "bin": "Shelf 4", "last_device": "Deck A", "video_channels": 1, "audio_channels": 2,
       "user_fields": {"1": "rain"}, "shots": 3)";

Shot sampleShot()
{
  Shot shot;
  shot.reel = "A001";
  shot.clipName = "WIDE";
  shot.tracks = "V";
  shot.sourceIn = "01:00:00:00";
  shot.sourceOut = "01:00:01:00";
  shot.recordIn = "10:00:00:00";
  shot.recordOut = "10:00:01:00";
  shot.sourceFile = "a.mov";
  shot.aliases = {"A1", "A-1"};
  shot.videoChannels = 1;
  shot.frameRate = "29.97";
  shot.dropFrame = true;
  shot.ownName = "A001_X";
  shot.mayBeCut = true;
  shot.sourceId = "11";
  shot.furtherNames = {{"A001_X.mov", false, "12"}};
  shot.cameraRoll = "A";
  shot.soundOf = "P";
  return shot;
}

constexpr const char* shotObject =
    R"({"reel": "A001", "clip": "WIDE", "tracks": "V", "source_in": "01:00:00:00", "source_out": "01:00:01:00",
        "record_in": "10:00:00:00", "record_out": "10:00:01:00", "source_file": "a.mov", "aliases": ["A1", "A-1"],
        "video_channels": 1, "audio_channels": 0, "frame_rate": "29.97", "drop_frame": true, "own_name": "A001_X",
        "own_name_may_be_cut": true, "source_id": "11",
        "further_names": [{"name": "A001_X.mov", "may_be_cut": false, "source_id": "12"}], "camera_roll": "A",
        "sound_of": "P"})";

Candidate sampleCandidate()
{
  return {"A001", false, {Reason::Cut, Reason::OldName}};
}

constexpr const char* candidateKeys = R"("reel": "A001", "reasons": ["cut", "old-name"], "record": false)";

ImportReport sampleImport()
{
  ImportedList imported;
  imported.file = "cut.edl";
  imported.clips = 5;
  imported.shotsAdded = 1;
  imported.shotsThere = 4;
  imported.shotsRepeated = 3;
  imported.shotsLeftOut = 2;
  imported.created = {"A", "B"};
  imported.types = {{"Still", {"B"}}};
  imported.matched = {"C"};
  imported.list.title = "EVENING";
  imported.list.specials = {{"BL", "black", 2, {3, 5}}};
  imported.list.spellings = {{"A", "a"}};
  imported.list.ambiguous = {{"SHORT", "stands for several sources", {"SHORT_1", "SHORT_2"}, {"11", "12"}}};
  imported.list.warnings = {{6, "odd\tline", "looks odd"}};
  imported.list.rejected = {{7, "bad\tline", "no timecodes"}};
  imported.list.tally = {20, 1, 2, 3, 4};
  imported.list.timing.rates = {{"59.94", 8, "event"}};
  imported.list.timing.dropFrame = {"drop frame", 2, "FCM: DROP FRAME"};
  imported.list.timing.mostFrames = {"source in 01:00:00:56", 8, "event"};
  imported.list.timing.frames = 56;
  imported.reelsOfFiles = 2;
  imported.changes = {{9, "C", "bin", "1", "2"}, {9, "C", "type", "", "T"}};
  imported.list.unread = {"Colour"};
  imported.names = {
      {"SHORT", lists::NameEvidence::ReelNote, true, "11", "SHORT_1", lists::Match::Cut, {}, {}},
      {"C", lists::NameEvidence::ReelText, true, "", "C", lists::Match::Itself, {"C1", "C2"}, {"C1.mov"}}};
  imported.keeping = Keeping::NewVersion;
  imported.keptAs = 3;
  imported.difference.trimmed = {{sampleShot(), sampleShot()}};
  imported.earlier = 2;
  return {{imported},
          {{"a.pdf", "it is a PDF document"}},
          true,
          true,
          false,
          {"a remark is no part of it"},
          {"D"},
          {sampleShot()},
          {{"SHORT", "SHORT_1", 3}},
          {{"E", "Audio only", "Tape 2ch"}}};
}

/// A name of a list, and its object.
NamedReel sampleName()
{
  return {"a1", lists::NameEvidence::SourceFile, true, "11", "A001", lists::Match::SameName, {"A002"}, {"A1.mov"}};
}

constexpr const char* nameObject =
    R"({"name": "a1", "reel": "A001", "match": "same-name", "evidence": "source-file", "may_be_cut": true,
        "source_id": "11", "perhaps": ["A002"], "clip_names": ["A1.mov"]})";

const std::string importObject = R"({"dry_run": true, "stored": false, "files": [
    {"file": "cut.edl", "format": "edl", "title": "EVENING", "clips": 5, "shots_added": 1, "shots_there": 1,
     "shots_repeated": 3, "shots_left_out": 2, "created": ["A", "B"],
     "types": [{"type": "Still", "reels": ["B"]}], "matched": ["C"],
      "names": [
        {"name": "SHORT", "reel": "SHORT_1", "match": "cut", "evidence": "reel-note", "may_be_cut": true,
         "source_id": "11", "perhaps": [], "clip_names": []},
        {"name": "C", "reel": "C", "match": "itself", "evidence": "reel", "may_be_cut": true, "source_id": "",
         "perhaps": ["C1", "C2"], "clip_names": ["C1.mov"]}],
     "reel_changes": [{"line": 9, "reel": "C", "field": "bin", "from": "1", "to": "2"},
                      {"line": 9, "reel": "C", "field": "type", "from": "", "to": "T"}],
      "reels_of_files": 2,
     "special": [{"text": "BL", "reason": "black", "count": 2, "lines": [3, 5]}],
     "spellings": [{"reel": "A", "other": "a"}],
     "ambiguous": [{"reel": "SHORT", "reason": "stands for several sources", "names": ["SHORT_1", "SHORT_2"],
                    "source_ids": ["11", "12"]}],
     "unread": ["Colour"],
     "warnings": [{"line": 6, "text": "odd\tline", "reason": "looks odd"}],
     "rejected": [{"line": 7, "text": "bad\tline", "reason": "no timecodes"}],
     "lines": {"total": 20, "blank": 1, "headers": 2, "notes": 3, "statements": 4},
     "timing": {"frame_rates": [{"says": "59.94", "line": 8, "text": "event"}],
                "drop_frame": {"says": "drop frame", "line": 2, "text": "FCM: DROP FRAME"},
                "most_frames": {"says": "source in 01:00:00:56", "line": 8, "text": "event"}, "frames": 56},
     "kept": "new version", "list": 3,
     "difference": {"added": [], "gone": [], "trimmed": [{"from": )" +
                                 std::string(shotObject) + R"(, "to": )" + shotObject +
                                 R"(}], "changed": []}, "earlier_list": 2}],
     "reels_removed": ["D"], "shots_removed": [)" +
                                 shotObject +
                                 R"(], "moved": [{"from": "SHORT", "to": "SHORT_1", "shots": 3}], "type_changes": [
    {"reel": "E", "from": "Audio only", "to": "Tape 2ch"}],
    "skipped": [{"file": "a.pdf", "reason": "it is a PDF document"}],
    "totals": {"lists": 1, "lists_new": 0, "lists_replaced": 1, "lists_unchanged": 0, "clips": 5, "shots_added": 1,
               "shots_there": 1, "shots_repeated": 3, "reels_created": 2, "reels_changed": 1, "warnings": 1, "rejected": 1,
               "skipped": 1}})";

/// The result as that text, keys in that order; and the text read back is the same result again.
template <class T>
void expectJson(const T& result, const std::string& expected)
{
  const std::string text = jsonText(result);
  EXPECT_EQ(text, nlohmann::ordered_json::parse(expected).dump(2) + "\n");
  EXPECT_EQ(jsonText(fromJson<T>(text)), text);
}

std::string object(const std::string& keys)
{
  return "{" + keys + "}";
}

TEST(Json, Reel)
{
  expectJson(sampleReel(), object(reelKeys));
  EXPECT_EQ(fromJson<Reel>(jsonText(sampleReel())), sampleReel());
  expectJson(std::vector<Reel>{sampleReel(), sampleReel()}, "[{" + std::string(reelKeys) + "}, {" + reelKeys + "}]");
  expectJson(std::vector<Reel>(), "[]");
}

TEST(Json, ReelWithWhatTheLibrarySaysOfIt)
{
  expectJson(ReelDetails{sampleReel(), true, false},
             object(std::string(reelKeys) + R"(, "known_type": true, "live": false)"));
  expectJson(LiveReel{sampleReel(), true}, object(std::string(reelKeys) + R"(, "created": true)"));
  expectJson(CreatedReel{sampleReel(), {"a remark is no part of it"}}, object(reelKeys));
  expectJson(CopiedReel{"A001", "A002", true, sampleReel()},
             R"({"from": "A001", "to": "A002", "stored": true, "reel": {)" + std::string(reelKeys) + "}}");
}

TEST(Json, ChangedReelNamesFieldsAsReportsAlwaysHave)
{
  const ChangedReel changed{"A001", {{"label-map", "", "pal9pin"}, {"bin", "x", "x"}}, true, {}};
  expectJson(changed, R"({"id": "A001", "changed": [{"field": "label-mapping", "from": "", "to": "pal9pin"}],
                          "unchanged": [{"field": "bin", "value": "x"}]})");
  EXPECT_EQ(fromJson<ChangedReel>(jsonText(changed)).changes.front().field, "label-map");
}

TEST(Json, ConflictHasTheCommitIfItIsKnown)
{
  FieldConflict conflict{"A001", "bin", "Shelf 4", "", {}};
  expectJson(conflict, R"({"id": "A001", "field": "bin", "expected": "Shelf 4", "found": ""})");
  conflict.commit.emplace().revision = 7;
  EXPECT_EQ(nlohmann::json::parse(jsonText(conflict)).at("commit").at("revision"), 7);
  EXPECT_EQ(fromJson<FieldConflict>(jsonText(conflict)).commit->revision, 7);
}

TEST(Json, RenamedReel)
{
  expectJson(Renamed{"A001", "B001", false, true, {sampleShot()}, {}},
             R"({"from": "A001", "to": "B001", "dry_run": false, "stored": true, "shots": [)" +
                 std::string(shotObject) + "]}");
}

TEST(Json, JoinedAndPartedReels)
{
  const std::string moves = R"("moved": [{"from": "A", "to": "B", "shots": 2}]})";
  const std::vector<ReelMove> moved = {{"A", "B", 2}};
  expectJson(Merged{{"A"}, "B", false, true, {"A", "A1"}, {{"A", "type", "x", "y"}}, moved},
             R"({"from": ["A"], "into": "B", "dry_run": false, "stored": true, "names": ["A", "A1"],
                 "different": [{"reel": "A", "field": "type", "value": "x", "kept": "y"}], )" +
                 moves);
  expectJson(Split{"A", "B", true, false, moved},
             R"({"from": "A", "into": "B", "dry_run": true, "stored": false, )" + moves);
  expectJson(ReelAliases{"A", false, true, {{"A1", NameOrigin::Lists, lists::Match::Cut, "11", 3}}, moved},
             R"({"reel": "A", "dry_run": false, "stored": true,
                 "names": [{"name": "A1", "from": "lists", "match": "cut", "source_id": "11", "list": 3}], )" +
                 moves);
  std::string numbered(shotObject);
  numbered.insert(numbered.rfind('}'), R"(, "number": 7)");
  expectJson(ShotsMoved{"B", false, true, {{7, sampleShot()}}, moved},
             R"({"to": "B", "dry_run": false, "stored": true, "shots": [)" + numbered + "], " + moves);
  expectJson(ShotsDeleted{false, true, {{7, sampleShot()}}},
             R"({"dry_run": false, "stored": true, "shots": [)" + numbered + "]}");
}

KeptList sampleList()
{
  return {3, "cut.edl", "EVENING", "edl", 12};
}

constexpr const char* listObject =
    R"({"number": 3, "file": "cut.edl", "title": "EVENING", "format": "edl", "events": 12})";

TEST(Json, KeptLists)
{
  expectJson(std::vector<KeptList>{sampleList()}, "[" + std::string(listObject) + "]");
  expectJson(RemovedList{sampleList(), false, true, {"A001"}, {sampleShot()}},
             R"({"list": )" + std::string(listObject) +
                 R"(, "dry_run": false, "stored": true, "reels": ["A001"], "shots": [)" + shotObject + "]}");
}

TEST(Json, EventsOfAListSayWhatItsLinesSay)
{
  Shot clip = sampleShot();
  clip.line = 7;
  clip.event.number = "012";
  clip.event.part = 2;
  clip.event.reelText = "A001_";
  clip.event.reelField = 32;
  clip.event.transition = "D";
  clip.event.duration = "024";
  clip.event.speed = reeldb::lists::Speed{"-024.0", "01:00:00:00"};
  clip.event.sourceIds = {{"umid", "1"}};
  Shot black;
  black.special = "black";
  const std::string shot = shotObject;
  expectJson(ListEvents{sampleList(), {{clip, "B001"}, {black, ""}}},
             R"({"list": )" + std::string(listObject) + R"(, "events": [{"number": "012", "part": 2, "line": 7, )" +
                 shot.substr(1, shot.size() - 2) +
                 R"(, "special": "", "reel_text": "A001_", "reel_field": 32, "transition": "D", "duration": "024",
                     "speed": "-024.0", "speed_timecode": "01:00:00:00",
                     "source_ids": [{"kind": "umid", "id": "1"}], "reel_now": "B001"},
                    {"number": "", "part": 1, "line": 0, "reel": "", "clip": "", "tracks": "", "source_in": "",
                     "source_out": "", "record_in": "", "record_out": "", "source_file": "", "aliases": [],
                     "video_channels": 0, "audio_channels": 0, "frame_rate": "", "drop_frame": false,
                     "own_name": "", "own_name_may_be_cut": false, "source_id": "", "further_names": [],
                     "camera_roll": "", "sound_of": "",
                     "special": "black", "reel_text": "", "reel_field": 0, "transition": "", "duration": "",
                     "speed": null, "speed_timecode": null, "source_ids": [], "reel_now": ""}]})");
}

TEST(Json, ShotWithoutAnOwnNameHasThatOfItsReel)
{
  Shot shot;
  shot.reel = "A001";
  EXPECT_EQ(nlohmann::json::parse(jsonText(std::vector<Shot>{shot})).at(0).at("own_name"), "A001");
}

TEST(Json, CheckOfNames)
{
  expectJson(NamesCheck{{{"A", "B", 2}}, {sampleName()}, true, false, 3},
             R"({"applied": true, "stored": false, "moved": [{"from": "A", "to": "B", "shots": 2}], "names": [)" +
                 std::string(nameObject) + R"(], "shots_without_list": 3})");
}

TEST(Json, Rolls)
{
  expectJson(std::vector<NeededRoll>{{"A012", {"A012C001"}, 3, 1}},
             R"([{"roll": "A012", "reels": ["A012C001"], "shots": 3, "ready": 1}])");
  expectJson(std::vector<Roll>{{"A012", {"A012C001"}, 3}}, R"([{"roll": "A012", "reels": ["A012C001"], "shots": 3}])");
}

TEST(Json, Shots)
{
  expectJson(std::vector<Shot>{sampleShot()}, "[" + std::string(shotObject) + "]");
}

TEST(Json, ReportHasNeedsAndUses)
{
  ReelReport report{"main", "25", "2026-11-22T13:38:48Z", KeptList{1, "a.edl", "A", "edl", 2}, {}};
  report.reels.push_back({{"A001", 2, std::nullopt, {"missing"}}, {{*report.list, 2, {"WIDE"}}}});
  const std::string list = R"({"number": 1, "file": "a.edl", "title": "A", "format": "edl", "events": 2})";
  expectJson(report, R"({"project": "main", "frame_rate": "25", "time": "2026-11-22T13:38:48Z", "list": )" + list +
                         R"(, "reels": [{"need": {"id": "A001", "shots": 2, "state": "missing", "type": "", "bin": "",
                            "names": [], "candidates": [], "last_device": ""}, "uses": [{"list": )" +
                         list + R"(, "events": 2, "clips": ["WIDE"]}]}]})");
}

TEST(Json, NeedsSayTheStateInOneText)
{
  Reel away = sampleReel();
  away.available = false;
  expectJson(std::vector<Need>{{"A001", 2, sampleReel(), {}, {sampleName()}},
                               {"A002", 1, std::nullopt, {"missing"}},
                               {"A004", 1, std::nullopt, {"perhaps"}, {}, {sampleCandidate()}},
                               {"A003", 1, away, {"unavailable", "unknown type"}}},
             R"([{"id": "A001", "shots": 2, "state": "ready", "type": "Tape 2ch", "bin": "Shelf 4", "names": [)" +
                 std::string(nameObject) +
                 R"(], "candidates": [], "last_device": "Deck A"},
                 {"id": "A002", "shots": 1, "state": "missing", "type": "", "bin": "", "names": [], "candidates": [],
                  "last_device": ""},
                 {"id": "A004", "shots": 1, "state": "perhaps", "type": "", "bin": "", "names": [], "candidates": [{)" +
                 candidateKeys + R"(}], "last_device": ""},
                 {"id": "A003", "shots": 1, "state": "unavailable, unknown type", "type": "Tape 2ch",
                  "bin": "Shelf 4", "names": [], "candidates": [], "last_device": "Deck A"}])");
}

TEST(Json, NameMeaningHasTheOneReelOrNull)
{
  const std::string asList = R"(], "as_list": )" + std::string(nameObject) + "}";
  expectJson(NameMeaning{"a1", {sampleCandidate()}, {7}, sampleName()},
             R"({"name": "a1", "reel": "A001", "candidates": [{)" + std::string(candidateKeys) + R"(, "shots": 7})" +
                 asList);
  expectJson(NameMeaning{"a1", {sampleCandidate(), sampleCandidate()}, {7, 8}, sampleName()},
             R"({"name": "a1", "reel": null, "candidates": [{)" + std::string(candidateKeys) + R"(, "shots": 7}, {)" +
                 candidateKeys + R"(, "shots": 8})" + asList);
}

TEST(Json, Import)
{
  expectJson(sampleImport(), importObject);
  EXPECT_TRUE(fromJson<ImportReport>(importObject).changes);
}

TEST(Json, Differences)
{
  ListDiff diff;
  diff.files = {"cut.edl"};
  diff.newReels = {{"B1", {sampleCandidate()}, {"B12"}}};
  diff.names = {sampleName()};
  diff.moves = {{"A", "B", 2}};
  diff.spellings = {{"A", "a"}};
  diff.added = {sampleShot()};
  diff.rejected = {{"cut.edl", {7, "bad", "no timecodes"}}};
  diff.trimmed = {{sampleShot(), sampleShot()}};
  diff.versions = {3, std::nullopt};
  const std::string head = R"({"files": ["cut.edl"], "equal": false, "reels_new": [{"reel": "B1", "candidates": [{)" +
                           std::string(candidateKeys) + R"(}], "perhaps": ["B12"]}], "reels_gone": )";
  const std::string rest = R"(, "spellings": [{"reel": "A", "other": "a"}], "names": [)" + std::string(nameObject) +
                           R"(], "moved": [{"from": "A", "to": "B", "shots": 2}], "shots_added": [)" +
                           std::string(shotObject) + R"(], "shots_gone": [],
      "rejected": [{"file": "cut.edl", "line": 7, "text": "bad", "reason": "no timecodes"}],
      "shots_trimmed": [{"from": )" +
                           shotObject + R"(, "to": )" + shotObject +
                           R"(}], "shots_changed": [], "versions": [3, null]})";
  expectJson(diff, head + "null" + rest);
  diff.whole = true;
  diff.goneReels = {"C1"};
  expectJson(diff, head + R"(["C1"])" + rest);
}

TEST(Json, ProjectContentWithAndWithoutShots)
{
  ProjectContent content{"main", "25", {sampleReel()}, {{"A000"}}, false, {sampleShot()}};
  const std::string head =
      R"({"project": "main", "frame_rate": "25", "reels": [{)" + std::string(reelKeys) + R"(, "old_names": ["A000"]}])";
  expectJson(content, head + R"(, "shots": [)" + shotObject + "]}");
  content.reelsOnly = true;
  expectJson(content, head + "}");
}

TEST(Json, Deletions)
{
  DeletionPlan plan;
  plan.items = {{"A001", false, {sampleShot()}}, {"B002", true, {}}};
  plan.logs = {"E1", "E2"};
  EXPECT_EQ(jsonText(plan),
            nlohmann::ordered_json::parse(
                R"({"dry_run": false, "deleted": ["A001"], "shots": 1, "kept": ["B002"],
                    "reels": [{"id": "A001", "kept": false, "shots": [)" +
                std::string(shotObject) + R"(]}, {"id": "B002", "kept": true, "why": "--keep", "shots": []}]})")
                    .dump(2) +
                "\n");
  expectJson(Undeleted{{"A001"}, 2}, R"({"reels": ["A001"], "shots": 2})");
  expectJson(Compacted{3, 1}, R"({"gone": 3, "lists": 1})");
}

TEST(Json, TheFacility)
{
  expectJson(Device{1, "Deck A", "9-pin", "sdi", 4, {"Tape 2ch"}, "pal9pin", "A001"},
             R"({"number": 1, "name": "Deck A", "port": "9-pin", "input": "sdi", "audio_inputs": 4,
                 "tapes": ["Tape 2ch"], "label_map": "pal9pin", "last_reel": "A001"})");
  expectJson(std::vector<Verdict>{{sampleReel(), true, "the device accepts type \"Tape 2ch\""}},
             R"([{"id": "A001", "type": "Tape 2ch", "accepted": true,
                  "why": "the device accepts type \"Tape 2ch\""}])");
  expectJson(std::vector<LabelMap>{{"pal9pin", true, false, ""}, {"odd", false, false, "odd.toml:1: wrong"}},
             R"([{"name": "pal9pin", "uses_vitc": true, "fits_project": false},
                 {"name": "odd", "uses_vitc": null, "fits_project": null, "fault": "odd.toml:1: wrong"}])");
  expectJson(LabelMapCheck{{"pal9pin", true, false, ""}, "wrong rate", 1, "Deck A", true},
             R"({"name": "pal9pin", "uses_vitc": true, "fits_project": false, "why": "wrong rate", "device": 1,
                 "fits_device": true})");
  expectJson(NeededLabelMap{"A001", 1, "pal9pin", ""}, R"({"reel": "A001", "device": 1, "label_map": "pal9pin"})");
  expectJson(NeededLabelMap{std::nullopt, 1, "odd", "no such map"},
             R"({"device": 1, "label_map": "odd", "fault": "no such map"})");
  expectJson(std::vector<ReelType>{{"Tape 2ch", 1, 2, "VideoChannels=1"}},
             R"([{"name": "Tape 2ch", "video_channels": 1, "audio_channels": 2, "parameters": "VideoChannels=1"}])");
  expectJson(std::vector<UserField>{{0, "", "User field 1", "User field 1"}},
             R"([{"key": 0, "name": "User field 1", "stored": "", "default": "User field 1"}])");
  expectJson(std::vector<Project>{{"main", true, "25", 3, ""}, {"odd", false, "", -1, "damaged"}},
             R"([{"name": "main", "default": true, "rate": "25", "rate_code": 3},
                 {"name": "odd", "default": false, "rate": "", "rate_code": -1, "fault": "damaged"}])");
  expectJson(ProjectRate{"main", "23.98", 7, "25", true},
             R"({"project": "main", "rate": "23.98", "rate_code": 7, "before": "25", "stored": true})");
  expectJson(ProjectCheck{"main", {"page 3: damaged"}},
             R"({"project": "main", "sound": false, "problems": ["page 3: damaged"]})");
}

TEST(Json, EventsAreALineEach)
{
  EXPECT_EQ(jsonLine(ReelEvent{ReelEvent::What::Renamed, "B", "A"}),
            "{\"what\":\"renamed\",\"reel\":\"B\",\"from\":\"A\"}\n");
  EXPECT_EQ(jsonLine(ReelEvent{ReelEvent::What::New, "B", ""}), "{\"what\":\"new\",\"reel\":\"B\"}\n");
  EXPECT_EQ(jsonLine(ReelEvent{ReelEvent::What::Changed, "B", "", {{"bin", "", "x"}}}),
            "{\"what\":\"changed\",\"reel\":\"B\",\"fields\":[{\"field\":\"bin\",\"before\":\"\",\"after\":\"x\"}]}\n");
  ReelEvent known{ReelEvent::What::Gone, "B", ""};
  known.commit = CommitEntry{};
  known.commit->revision = 7;
  EXPECT_EQ(fromJson<ReelEvent>(jsonLine(known)).commit.value().revision, 7);
  EXPECT_EQ(fromJson<ReelEvent>("{\"what\":\"changed\",\"reel\":\"B\"}").fields.size(), 0u); // of earlier versions
  for (const ReelEvent::What what :
       {ReelEvent::What::New, ReelEvent::What::Changed, ReelEvent::What::Gone, ReelEvent::What::Database})
    EXPECT_EQ(fromJson<ReelEvent>(jsonLine(ReelEvent{what, "B", ""})).what, what);
}

// --- Bytes ---------------------------------------------------------------------------------------

TEST(JsonText, WhatSteersATerminalIsEscapedAndMeansTheSame)
{
  Reel reel;
  reel.id = "\x1b \x7f \xc2\x9b \xe2\x80\xae \xe2\x80\xa8 caf\xc3\xa9 \xf0\x9f\x8e\x9e";
  const std::string line = jsonLine(reel);
  EXPECT_EQ(line.substr(0, line.find("\",\"type")),
            "{\"id\":\"\\u001b \\u007f \\u009b \\u202e \\u2028 caf\xc3\xa9 \xf0\x9f\x8e\x9e");
  EXPECT_EQ(fromJson<Reel>(line).id, reel.id);
}

TEST(JsonText, BytesThatAreNotUtf8AreReplaced)
{
  Reel reel;
  reel.id = "a\xff";
  EXPECT_EQ(fromJson<Reel>(jsonLine(reel)).id, "a\xef\xbf\xbd");
}

// --- Texts that are not a report of this kind ----------------------------------------------------

template <class T>
void expectRefused(const std::string& text)
{
  try {
    fromJson<T>(text);
    ADD_FAILURE() << text << ": was read";
  } catch (const Error& error) {
    EXPECT_EQ(error.kind(), ErrorKind::Unreadable);
    EXPECT_EQ(std::string(error.what()).rfind("JSON: not of the expected form (", 0), 0u) << error.what();
  }
}

TEST(FromJson, TextThatIsNotJsonIsRefused)
{
  expectRefused<Reel>("");
  expectRefused<Reel>("{");
  expectRefused<Reel>("{\"id\": \"\xff\"}");
}

TEST(FromJson, MissingKeyOrAnotherTypeIsRefused)
{
  expectRefused<Compacted>("{}");
  expectRefused<Compacted>(R"({"gone": "three", "lists": 1})");
  expectRefused<Compacted>("[]");
  expectRefused<std::vector<Reel>>("{}");
}

TEST(FromJson, UnknownWordOrNumberOfAUserFieldIsRefused)
{
  expectRefused<ReelEvent>(R"({"what": "exploded", "reel": "A"})");
  std::string text = jsonText(sampleReel());
  text.replace(text.find("\"1\": \"rain\""), 3, "\"6\"");
  expectRefused<Reel>(text);
  text.replace(text.find("\"6\": \"rain\""), 3, "\"x\"");
  expectRefused<Reel>(text);
}

TEST(FromJson, UnknownKeysAreSkipped)
{
  EXPECT_EQ(fromJson<Compacted>(R"({"gone": 3, "lists": 0, "new": [1, 2]})").gone, 3);
}

} // namespace
