// SPDX-License-Identifier: Apache-2.0
//
// One reel: typed access and attributes.
#include "faults/scene.h"

namespace reeldb_tests {

namespace {

constexpr const char* valueDiffered = "the value that was read differed, so clients are notified";

std::vector<Scenario> typedAccess()
{
  return {
      {.operation = "ReelDbRec::ReelDbRec()",
       .act = [](Scene& s) { s.answer = ReelDbRec().valid(); },
       .answer = "false",
       .noHostCall = "it only holds a Cookie"},
      {.operation = "ReelDbRec::ReelDbRec(Cookie)",
       .act = [](Scene& s) { s.answer = ReelDbRec(s.rec).valid(); },
       .answer = "true",
       .noHostCall = "it only holds a Cookie"},
      {.operation = "ReelDbRec::getIntValFromEdit(LightweightString<char>, int&)",
       .id = "cam",
       .value = "record_inhibit_flag",
       .act = [](Scene& s) { s.answer = s.rec.getIntValFromEdit(s.value, s.intOut); },
       .answer = "true out 1"},
      {.operation = "ReelDbRec::setIntValInEdit(LightweightString<char>, int)",
       .value = "key",
       .number = -5,
       .act = [](Scene& s) { s.rec.setIntValInEdit(s.value, s.number); },
       .changes = "R1: key - -> '-5'\n"},
      {.operation = "ReelDbRec::getStrpFieldValFromEdit(LightweightString<char>, strp_field&)",
       .value = "reelid",
       .act = [](Scene& s) { s.answer = s.rec.getStrpFieldValFromEdit(s.value, s.fieldOut); },
       .answer = "true out 'R1'"},
      {.operation = "ReelDbRec::setStrpFieldValInEdit(LightweightString<char>, LightweightString<char>)",
       .value = "key",
       .act = [](Scene& s) { s.rec.setStrpFieldValInEdit(s.value, s.id); },
       .changes = "R1: key - -> 'R1'\n"},
      {.operation = "ReelDbRec::getStringValFromEdit(LightweightString<char>, LightweightString<char>&)",
       .value = "profile_bin_name",
       .act = [](Scene& s) { s.answer = s.rec.getStringValFromEdit(s.value, s.textOut); },
       .answer = "true out 'Bin'"},
      {.operation = "ReelDbRec::setStringValInEdit(LightweightString<char>, LightweightString<char>)",
       .value = "key",
       .act = [](Scene& s) { s.rec.setStringValInEdit(s.value, s.id); },
       .changes = "R1: key - -> 'R1'\n"},
  };
}

std::vector<Scenario> attributes()
{
  constexpr const char* setTypeName = "ReelDbRec::typeName(LightweightString<char>)";
  constexpr auto typeName = [](Scene& s) { s.rec.typeName(s.value); };
  return {
      {.operation = "ReelDbRec::reelId()", .act = [](Scene& s) { s.answer = s.rec.reelId(); }, .answer = "'R1'"},
      {.operation = "ReelDbRec::reelId(LightweightString<char>)",
       .act = [](Scene& s) { s.rec.reelId(s.value); },
       .changes = "R1: reelid 'R1' -> 'X'\n",
       .doneByHalves = "an identifier that is set is not set again, so that the row is not refreshed either"},
      {.operation = "ReelDbRec::recInhibit()",
       .id = "cam",
       .act = [](Scene& s) { s.answer = s.rec.recInhibit(); },
       .answer = "true"},
      {.operation = "ReelDbRec::recInhibit(bool)",
       .act = [](Scene& s) { s.rec.recInhibit(true); },
       .changes = "R1: record_inhibit_flag - -> '1'\n",
       .heard = "some(R1)",
       .toldWithoutChange = valueDiffered},
      {.operation = "ReelDbRec::reelAvailable()",
       .act = [](Scene& s) { s.answer = s.rec.reelAvailable(); },
       .answer = "true"},
      {.operation = "ReelDbRec::reelAvailable(bool)",
       .act = [](Scene& s) { s.rec.reelAvailable(false); },
       .changes = "R1: reel_available_flag '1' -> '0'\n",
       .heard = "some(R1)",
       .toldWithoutChange = valueDiffered},
      {.operation = "ReelDbRec::reelAvailable(bool)",
       .situation = "unchanged",
       .act = [](Scene& s) { s.rec.reelAvailable(true); },
       .toldWithoutChange = valueDiffered},
      {.operation = "ReelDbRec::userField(int)",
       .number = 5,
       .act = [](Scene& s) { s.answer = s.rec.userField(s.number); },
       .answer = "'roll'"},
      {.operation = "ReelDbRec::userField(int, LightweightString<char>)",
       .number = 5,
       .act = [](Scene& s) { s.rec.userField(s.number, s.value); },
       .changes = "R1: reel_userfield5 'roll' -> 'X'\n",
       .heard = "some(R1)",
       .toldWithoutChange = valueDiffered},
      {.operation = "ReelDbRec::labelMapping()",
       .act = [](Scene& s) { s.answer = s.rec.labelMapping(); },
       .answer = "'fire'"},
      {.operation = "ReelDbRec::labelMapping(LightweightString<char>)",
       .act = [](Scene& s) { s.rec.labelMapping(s.value); },
       .changes = "R1: reel_labelmapping 'fire' -> 'X'\n",
       .heard = "some(R1)",
       .toldWithoutChange = valueDiffered},
      {.operation = "ReelDbRec::binName()", .act = [](Scene& s) { s.answer = s.rec.binName(); }, .answer = "'Bin'"},
      {.operation = "ReelDbRec::binName(LightweightString<char>)",
       .act = [](Scene& s) { s.rec.binName(s.value); },
       .changes = "R1: profile_bin_name 'Bin' -> 'X'\n",
       .heard = "some(R1)",
       .toldWithoutChange = valueDiffered},
      {.operation = "ReelDbRec::lastDevice()",
       .act = [](Scene& s) { s.answer = s.rec.lastDevice(); },
       .answer = "'Deck'"},
      {.operation = "ReelDbRec::lastDevice(LightweightString<wchar_t> const&)",
       .id = "CAM",
       .wide = L"Cam",
       .act = [](Scene& s) { s.rec.lastDevice(s.wide); },
       .changes = "CAM: audio '0' -> '2'\n"
                  "CAM: reel_last_device - -> 'Cam'\n"
                  "CAM: video '0' -> '1'\n",
       .heard = "some(CAM)",
       .toldWithoutChange = valueDiffered,
       .doneByHalves = "a device that is set is not set again, so that the channels stay as they are"},
      {.operation = "ReelDbRec::typeName()", .act = [](Scene& s) { s.answer = s.rec.typeName(); }, .answer = "'F2'"},
      {.operation = setTypeName,
       .situation = "a known type",
       .value = "F4",
       .act = typeName,
       .changes = "R1: audio '0' -> '4'\n"
                  "R1: reel_type - -> 'F4'\n"
                  "R1: row's type 'F2' -> 'F4'\n"
                  "R1: video '0' -> '1'\n",
       .heard = "some(R1)",
       .toldWithoutChange = valueDiffered,
       .doneByHalves = "a type that is set is not set again, so that the channels stay as they are"},
      {.operation = setTypeName,
       .situation = "an unknown type: the last device decides",
       .value = "nobody's",
       .act = typeName,
       .changes = "R1: audio '0' -> '4'\n"
                  "R1: reel_type - -> 'nobody's'\n"
                  "R1: row's type 'F2' -> 'nobody's'\n"
                  "R1: video '0' -> '1'\n",
       .heard = "some(R1)",
       .toldWithoutChange = valueDiffered,
       .doneByHalves = "a type that is set is not set again, so that the channels stay as they are"},
      {.operation = "ReelDbRec::updateNumChansInReel()",
       .situation = "the type decides",
       .act = [](Scene& s) { s.rec.updateNumChansInReel(); },
       .changes = "R1: audio '0' -> '2'\n"
                  "R1: video '0' -> '1'\n",
       .doneByHalves = "channels that are there are not added again, so that the row is not refreshed either"},
      {.operation = "ReelDbRec::updateNumChansInReel()",
       .situation = "the last device decides",
       .id = "R3",
       .act = [](Scene& s) { s.rec.updateNumChansInReel(); },
       .changes = "R3: audio '0' -> '4'\n"
                  "R3: video '0' -> '1'\n",
       .doneByHalves = "channels that are there are not added again, so that the row is not refreshed either"},
  };
}

} // namespace

std::vector<Scenario> recordScenarios()
{
  std::vector<Scenario> all = typedAccess();
  for (const Scenario& scenario : attributes())
    all.push_back(scenario);
  return all;
}

} // namespace reeldb_tests
