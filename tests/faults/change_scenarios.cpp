// SPDX-License-Identifier: Apache-2.0
//
// The manager: creation, renaming and copying, shots, live devices.
#include "faults/scene.h"

namespace reeldb_tests {

namespace {

/// While it lives, no project database is open. A call of Script::the() would make the host watched from then on, even
/// for faults that must not be watched.
class WithoutDatabase {
public:
  explicit WithoutDatabase(Scene& s) : script_(s.hostScript) { script_.noDatabase(true); }
  ~WithoutDatabase() { script_.noDatabase(false); }
  WithoutDatabase(const WithoutDatabase&) = delete;
  WithoutDatabase& operator=(const WithoutDatabase&) = delete;

private:
  reelhost::Script& script_;
};

constexpr const char* halfMadeReelStays = "a reel that was made half stays";

std::vector<Scenario> creation()
{
  constexpr const char* createNewReel = "ReelDbManager::createNewReel(LightweightString<char> const&, int)";
  constexpr auto create = [](Scene& s) { s.answer = Cookie(s.manager().createNewReel(s.id, s.number)); };
  return {
      {.operation = createNewReel,
       .id = " R9 ",
       .number = -1,
       .act = create,
       .answer = "new 1",
       .changes = "new 1: audio - -> '2'\n"
                  "new 1: log type - -> '9'\n"
                  "new 1: name - -> 'Reel R9'\n"
                  "new 1: reel_available_flag - -> '1'\n"
                  "new 1: reel_type - -> 'F2'\n"
                  "new 1: reelid - -> 'R9'\n"
                  "new 1: row's type - -> 'F2'\n"
                  "new 1: video - -> '1'\n"
                  "reel list '[R1, cam, CAM, R2, R3, nameless]' -> '[R1, cam, CAM, R2, R3, nameless, new 1]'\n",
       .heard = "some(R9) some(R9) dbC(R9)",
       .doneByHalves = halfMadeReelStays},
      {.operation = createNewReel,
       .situation = "with a device",
       .id = "R9",
       .number = 1,
       .act = create,
       .answer = "new 1",
       .changes = "new 1: audio - -> '4'\n"
                  "new 1: log type - -> '9'\n"
                  "new 1: name - -> 'Reel R9'\n"
                  "new 1: reel_available_flag - -> '1'\n"
                  "new 1: reel_type - -> 'F2'\n"
                  "new 1: reelid - -> 'R9'\n"
                  "new 1: row's type - -> 'F2'\n"
                  "new 1: video - -> '1'\n"
                  "reel list '[R1, cam, CAM, R2, R3, nameless]' -> '[R1, cam, CAM, R2, R3, nameless, new 1]'\n",
       .heard = "some(R9) some(R9) dbC(R9)",
       .doneByHalves = halfMadeReelStays},
      {.operation = createNewReel,
       .situation = "with a device that names the reel",
       .id = "R9",
       .number = 2,
       .act = create,
       .answer = "new 1",
       .changes = "new 1: audio - -> '2'\n"
                  "new 1: log type - -> '9'\n"
                  "new 1: name - -> 'Reel R9'\n"
                  "new 1: reel_available_flag - -> '1'\n"
                  "new 1: reel_type - -> 'F2'\n"
                  "new 1: reelid - -> 'Cam'\n"
                  "new 1: row's type - -> 'F2'\n"
                  "new 1: video - -> '1'\n"
                  "reel list '[R1, cam, CAM, R2, R3, nameless]' -> '[R1, cam, CAM, R2, R3, nameless, new 1]'\n",
       .heard = "some(Cam) some(Cam) dbC(Cam)",
       .doneByHalves = halfMadeReelStays},
      {.operation = createNewReel,
       .situation = "a client asks the manager in its handler",
       .id = "R9",
       .number = -1,
       .arrange = [](Scene& s) { s.followsR1->inHandler = [](ReelDbManager& m) { m.representsLiveMaterial("CAM"); }; },
       .act = create,
       .answer = "new 1",
       .changes = "new 1: audio - -> '2'\n"
                  "new 1: log type - -> '9'\n"
                  "new 1: name - -> 'Reel R9'\n"
                  "new 1: reel_available_flag - -> '1'\n"
                  "new 1: reel_type - -> 'F2'\n"
                  "new 1: reelid - -> 'R9'\n"
                  "new 1: row's type - -> 'F2'\n"
                  "new 1: video - -> '1'\n"
                  "reel list '[R1, cam, CAM, R2, R3, nameless]' -> '[R1, cam, CAM, R2, R3, nameless, new 1]'\n",
       .heard = "some(R9) some(R9) dbC(R9)",
       .doneByHalves = halfMadeReelStays},
      {.operation = createNewReel,
       .situation = "the reel is there",
       .id = "r3",
       .number = -1,
       .act = create,
       .answer = "none",
       .doneByHalves = "a reel that was not found for a log that did not open is made a second time"},
      {.operation = createNewReel,
       .situation = "on another thread",
       .id = "R9",
       .number = -1,
       .arrange = [](Scene& s) { s.onAnotherThread(); },
       .act = create,
       .answer = "none",
       .changes = "deferred '0' -> '1'\n"},
      {.operation = "ReelDbManager::trimLeadingTrailingSpaces(LightweightString<char>)",
       .id = "  A B  ",
       .act = [](Scene& s) { s.answer = s.manager().trimLeadingTrailingSpaces(s.id); },
       .answer = "'A B'",
       .noHostCall = "only the text is looked at"},
      {.operation = "CreateNewReelAction::CreateNewReelAction(LightweightString<char> const&, int)",
       .act =
           [](Scene& s) {
             const CreateNewReelAction action(s.id, -1);
             s.answer = true;
           },
       .answer = "true",
       .noHostCall = "it only keeps what it is given"},
      {.operation = "CreateNewReelAction::execute()",
       .id = "R9",
       .arrange = [](Scene& s) { s.action.emplace(s.id, -1); },
       .act = [](Scene& s) { s.action->execute(); },
       .changes = "new 1: audio - -> '2'\n"
                  "new 1: log type - -> '9'\n"
                  "new 1: name - -> 'Reel R9'\n"
                  "new 1: reel_available_flag - -> '1'\n"
                  "new 1: reel_type - -> 'F2'\n"
                  "new 1: reelid - -> 'R9'\n"
                  "new 1: row's type - -> 'F2'\n"
                  "new 1: video - -> '1'\n"
                  "reel list '[R1, cam, CAM, R2, R3, nameless]' -> '[R1, cam, CAM, R2, R3, nameless, new 1]'\n",
       .heard = "some(R9) some(R9) dbC(R9)",
       .doneByHalves = halfMadeReelStays},
  };
}

std::vector<Scenario> renaming()
{
  constexpr const char* changeReelId = "ReelDbManager::changeReelId(LightweightString<char>, LightweightString<char>)";
  constexpr const char* copyReelInfo = "ReelDbManager::copyReelInfo(LightweightString<char>, LightweightString<char>)";
  constexpr auto rename = [](Scene& s) { s.manager().changeReelId(s.id, s.value); };
  constexpr auto copy = [](Scene& s) { s.manager().copyReelInfo(s.id, s.value); };
  constexpr const char* nobodyOfThatName = "once the reel has its new name nobody is found under the old one";
  return {
      {.operation = changeReelId,
       .value = "B1",
       .act = rename,
       .answer = " printed Shot: E0000004  Changing reel from R1 to B1\n"
                 "Shot: E0000006  Changing reel from R1 to B1\n"
                 "Shot: E0000010  Changing reel from R1 to B1\n",
       .changes = "R1: name '' -> 'Reel B1'\n"
                  "R1: reelid 'R1' -> 'B1'\n"
                  "shot 1: reelid 'R1' -> 'B1'\n"
                  "shot 2: reelid 'r1' -> 'B1'\n"
                  "shot 4: reelid 'R1' -> 'B1'\n",
       .heard = "some(R1) dbC()",
       .toldWithoutChange = "clients are notified of the old name, whatever came of it",
       .doneByHalves = nobodyOfThatName},
      {.operation = changeReelId, .situation = "no such reel", .id = "nobody", .value = "B1", .act = rename},
      {.operation = changeReelId,
       .situation = "letter case alone",
       .value = "r1",
       .act = rename,
       .answer = " printed Shot: E0000004  Changing reel from R1 to r1\n"
                 "Shot: E0000006  Changing reel from R1 to r1\n"
                 "Shot: E0000010  Changing reel from R1 to r1\n",
       .changes = "R1: name '' -> 'Reel r1'\n"
                  "R1: reelid 'R1' -> 'r1'\n"
                  "shot 1: reelid 'R1' -> 'r1'\n"
                  "shot 4: reelid 'R1' -> 'r1'\n",
       .heard = "some(R1) dbC()",
       .toldWithoutChange = "clients are notified of the old name, whatever came of it",
       .doneByHalves = "clients are notified before the shots get the new spelling"},
      {.operation = copyReelInfo,
       .value = "R3",
       .act = copy,
       .changes = "R3: audio '0' -> '2'\n"
                  "R3: reel_available_flag - -> '1'\n"
                  "R3: reel_labelmapping - -> 'fire'\n"
                  "R3: reel_type - -> 'F2'\n"
                  "R3: reel_userfield0 - -> 'scene'\n"
                  "R3: reel_userfield5 - -> 'roll'\n"
                  "R3: row's type '' -> 'F2'\n"
                  "R3: video '0' -> '1'\n",
       .heard = "some(R3)",
       .toldWithoutChange = "clients are notified of the target, whatever came of it",
       .doneByHalves = "a type that was set half is taken for set"},
      {.operation = copyReelInfo,
       .situation = "from nowhere",
       .id = "nobody",
       .value = "R1",
       .act = copy,
       .changes = "R1: audio '0' -> '4'\n"
                  "R1: reel_available_flag '1' -> '0'\n"
                  "R1: reel_labelmapping 'fire' -> ''\n"
                  "R1: reel_type - -> ''\n"
                  "R1: reel_userfield0 'scene' -> ''\n"
                  "R1: reel_userfield5 'roll' -> ''\n"
                  "R1: row's type 'F2' -> ''\n"
                  "R1: video '0' -> '1'\n",
       .heard = "some(R1)",
       .toldWithoutChange = "clients are notified of the target, whatever came of it",
       .doneByHalves = "a type that was set half is taken for set"},
  };
}

std::vector<Scenario> shots()
{
  constexpr auto remove = [](Scene& s) {
    CookieVec rest = s.selection;
    s.intOut = s.manager().removeReelsFromCookieSet(rest);
    s.answer = rest;
  };
  constexpr auto select = [](Scene& s) {
    for (const char* name : {"shot 1", "R1", "cam", "nameless", "shot 3", "R2"}) {
      s.selection.add(s.log(name));
      s.logSet.insert(s.log(name));
    }
  };
  return {
      {.operation = "ReelDbManager::doesCookieSetContainReels(CookieSet&)",
       .arrange = select,
       .act = [](Scene& s) { s.answer = s.manager().doesCookieSetContainReels(s.logSet); },
       .answer = "true"},
      {.operation = "ReelDbManager::doesCookieSetContainReels(CookieSet&)",
       .situation = "without a database",
       .arrange = select,
       .act =
           [](Scene& s) {
             const WithoutDatabase gone(s);
             s.answer = s.manager().doesCookieSetContainReels(s.logSet);
           },
       .answer = "true"},
      {.operation = "ReelDbManager::removeReelsFromCookieSet(CookieVec&)",
       .arrange = select,
       .act = remove,
       .answer = "[shot 1, shot 3] out 1"},
      {.operation = "ReelDbManager::removeReelsFromCookieSet(CookieVec&)",
       .situation = "without a database",
       .arrange = select,
       .act =
           [](Scene& s) {
             const WithoutDatabase gone(s);
             CookieVec rest = s.selection;
             s.intOut = s.manager().removeReelsFromCookieSet(rest);
             s.answer = rest;
           },
       .answer = "[shot 1, shot 3] out 1"},
      {.operation = "ReelDbManager::getReelsReferenced(CookieVec const&)",
       .arrange =
           [](Scene& s) {
             for (const char* name : {"shot 2", "shot 5", "shot 3", "shot 1"})
               s.selection.add(s.log(name));
           },
       .act = [](Scene& s) { s.answer = s.manager().getReelsReferenced(s.selection); },
       .answer = "[R1, cam, R1]"},
      {.operation = "ReelDbManager::addShotsFromReel(Cookie, CookieVec&)",
       .act =
           [](Scene& s) {
             CookieVec out;
             s.manager().addShotsFromReel(s.rec, out);
             s.answer = out;
           },
       .answer = "[shot 1, shot 2, shot 4] printed Preparing to delete: shot 1 from Reel: R1\n"
                 "Preparing to delete: shot 2 from Reel: R1\n"
                 "Preparing to delete: shot 4 from Reel: R1\n"},
      {.operation = "ReelDbManager::buildSetOfReelsAndAssociatedShots(CookieVec)",
       .arrange = select,
       .act = [](Scene& s) { s.answer = s.manager().buildSetOfReelsAndAssociatedShots(s.selection); },
       .answer = "[R1, shot 1, shot 2, shot 4, nameless, R2] printed Preparing to delete: shot 1 from Reel: R1\n"
                 "Preparing to delete: shot 2 from Reel: R1\n"
                 "Preparing to delete: shot 4 from Reel: R1\n"
                 "Couldn't delete reel: cam because it was marked as in use.\n"},
  };
}

std::vector<Scenario> liveDevices()
{
  return {
      {.operation = "ReelDbManager::getLiveDeviceMediaName(LightweightString<char>)",
       .id = "Deck",
       .act = [](Scene& s) { s.answer = s.manager().getLiveDeviceMediaName(s.id); },
       .answer = "'Deck live feed'",
       .noHostCall = "only the text is looked at"},
      {.operation = "ReelDbManager::checkLiveDeviceMedia(int)",
       .act = [](Scene& s) { s.manager().checkLiveDeviceMedia(s.number); },
       .changes = "last reel of Deck '' -> 'Deck live feed'\n"
                  "new 1: audio - -> '2'\n"
                  "new 1: log type - -> '9'\n"
                  "new 1: name - -> 'Reel Deck live feed'\n"
                  "new 1: reel_available_flag - -> '1'\n"
                  "new 1: reel_last_device - -> 'Deck'\n"
                  "new 1: reel_type - -> 'Live'\n"
                  "new 1: reelid - -> 'Deck live feed'\n"
                  "new 1: row's type - -> 'Live'\n"
                  "new 1: video - -> '1'\n"
                  "reel list '[R1, cam, CAM, R2, R3, nameless]' -> '[R1, cam, CAM, R2, R3, nameless, new 1]'\n",
       .heard =
           "some(Deck live feed) some(Deck live feed) dbC(Deck live feed) some(Deck live feed) some(Deck live feed)",
       .doneByHalves = "a reel that was made half is taken for made"},
      {.operation = "ReelDbManager::checkLiveDeviceMedia(int)",
       .situation = "the reel is there",
       .number = 2,
       .arrange = [](Scene& s) { s.manager().checkLiveDeviceMedia(2); },
       .act = [](Scene& s) { s.manager().checkLiveDeviceMedia(s.number); },
       .doneByHalves = "a reel that was not found for a log that did not open is made a second time"},
      {.operation = "ReelDbManager::checkLiveDeviceMedia(int)",
       .situation = "on another thread",
       .arrange = [](Scene& s) { s.onAnotherThread(); },
       .act = [](Scene& s) { s.manager().checkLiveDeviceMedia(s.number); },
       .changes = "deferred '0' -> '1'\n"
                  "last reel of Deck '' -> 'Deck live feed'\n",
       .doneByHalves = "what was deferred stays so"},
  };
}

} // namespace

std::vector<Scenario> changeScenarios()
{
  std::vector<Scenario> all;
  for (const std::vector<Scenario>& some : {creation(), renaming(), shots(), liveDevices()})
    all.insert(all.end(), some.begin(), some.end());
  return all;
}

} // namespace reeldb_tests
