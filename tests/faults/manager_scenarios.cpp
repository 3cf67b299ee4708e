// SPDX-License-Identifier: Apache-2.0
//
// The manager: lifecycle, clients, lookup, listing.
#include <utility>

#include "faults/scene.h"
#include "host/codes.h"
#include "reelhost/notify_msg.h"

namespace reeldb_tests {

namespace {

/// Unregisters the manager, so that another one can be made in its place.
class Aside {
public:
  Aside() : manager_(std::exchange(ReelDbManager::theReelDbManager_, nullptr)) {}
  ~Aside()
  {
    ReelDbManager* const made = std::exchange(ReelDbManager::theReelDbManager_, manager_);
    if (!made)
      return;
    made->ReelDbManager::~ReelDbManager();
    ::operator delete(made);
  }
  Aside(const Aside&) = delete;
  Aside& operator=(const Aside&) = delete;

private:
  ReelDbManager* manager_;
};

/// A reel that the manager has not read yet.
void addUnknownReel(Scene& s)
{
  s.addLog(9, "R5", "F2");
}

void askInHandlers(Scene& s)
{
  s.anyReel->inHandler = [](ReelDbManager& manager) { manager.checkReelValid("R2"); };
}

constexpr const char* callerSays = "the caller says what changed";

std::vector<Scenario> lifecycle()
{
  return {
      {.operation = "ReelDbManager::ReelDbManager()",
       .act =
           [](Scene& s) {
             const ReelDbManager another;
             s.answer = another.reelsInUse.count() == 0;
           },
       .answer = "true",
       .noHostCall = "a manager reads nothing when it is made"},
      {.operation = "ReelDbManager::theReelDbManager()",
       .situation = "the first use",
       .act =
           [](Scene& s) {
             const Aside aside;
             s.answer = ReelDbManager::theReelDbManager() == ReelDbManager::theReelDbManager();
           },
       .answer = "true",
       .noHostCall = "a manager reads nothing when it is made"},
      {.operation = "ReelDbManager::handleLogModification(Cookie const&, EditModification const&)",
       .situation = "imported material of a reel nobody knows",
       .arrange = [](Scene& s) { s.importClip("R9"); },
       .act = [](Scene& s) { s.manager().handleLogModification(s.rec, EditModification(codes::madeOrImported)); },
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
       .doneByHalves = "a reel that was made half stays"},
      {.operation = "ReelDbManager::handleLogModification(Cookie const&, EditModification const&)",
       .situation = "the reel is there",
       .arrange = [](Scene& s) { s.importClip("r1"); },
       .act = [](Scene& s) { s.manager().handleLogModification(s.rec, EditModification(codes::madeOrImported)); },
       .doneByHalves = "a reel that was not found for a log that did not open is made a second time"},
      {.operation = "ReelDbManager::handleProjectEntry()",
       .situation = "another project than last time",
       .arrange =
           [](Scene& s) {
             s.enterWithoutDefaultType();
             s.manager().reelList.clear();
             s.manager().lastProject.invalidate();
           },
       .act = [](Scene& s) { s.manager().handleProjectEntry(); },
       .changes = "default type - -> 'F4'\n"
                  "devices reset for this project 'no' -> 'yes'\n"
                  "in use '[cam]' -> '[]'\n"
                  "reel list '[]' -> '[R1, cam, CAM, R2, R3, nameless]'\n",
       .heard = "dbC()",
       .callerTells = callerSays},
      {.operation = "ReelDbManager::handleProjectEntry()",
       .situation = "the project of last time",
       .arrange =
           [](Scene& s) {
             s.manager().handleProjectExit();
             askInHandlers(s);
           },
       .act = [](Scene& s) { s.manager().handleProjectEntry(); },
       .changes = "in use '[cam]' -> '[]'\n"
                  "reel list '[]' -> '[R1, cam, CAM, R2, R3, nameless]'\n",
       .heard = "dbC()",
       .callerTells = callerSays},
      {.operation = "ReelDbManager::handleProjectExit()",
       .act = [](Scene& s) { s.manager().handleProjectExit(); },
       .changes = "reel list '[R1, cam, CAM, R2, R3, nameless]' -> '[]'\n",
       .noHostCall = "the list is the manager's own"},
      {.operation = "ReelDbManager::buildReelList()",
       .arrange = addUnknownReel,
       .act = [](Scene& s) { s.manager().buildReelList(); },
       .changes = "reel list '[R1, cam, CAM, R2, R3, nameless]' -> '[R1, cam, CAM, R2, R3, nameless, new 1]'\n"},
      {.operation = "ReelDbManager::handleDeviceChange(NotifyMsg const&)",
       .act = [](Scene& s) { s.answer = s.manager().handleDeviceChange(NotifyMsg(101)); },
       .answer = "true"},
      {.operation = "ReelDbManager::setProjectDefaultReelType(LightweightString<char>)",
       .act = [](Scene& s) { s.manager().setProjectDefaultReelType(s.value); },
       .changes = "default type 'F2' -> 'X'\n"},
  };
}

std::vector<Scenario> clients()
{
  return {
      {.operation = "ReelDbManager::registerClient(ReelDbClient*)",
       .situation = "the list is full",
       .arrange = [](Scene& s) { s.gather(6); },
       .act = [](Scene& s) { s.manager().registerClient(s.crowd.back().get()); },
       .changes = "clients '8' -> '9'\n",
       .noHostCall = "the list is the manager's own"},
      {.operation = "ReelDbManager::deRegisterClient(ReelDbClient*)",
       .arrange = [](Scene& s) { s.gather(3); },
       .act = [](Scene& s) { s.manager().deRegisterClient(s.crowd[1].get()); },
       .changes = "clients '5' -> '4'\n",
       .noHostCall = "the list is the manager's own"},
      {.operation = "ReelDbManager::informReelDbChanged(LightweightString<char>)",
       .arrange = addUnknownReel,
       .act = [](Scene& s) { s.manager().informReelDbChanged(s.id); },
       .changes = "reel list '[R1, cam, CAM, R2, R3, nameless]' -> '[R1, cam, CAM, R2, R3, nameless, new 1]'\n",
       .heard = "dbC(R1)",
       .callerTells = callerSays},
      {.operation = "ReelDbManager::informReelDbChanged(LightweightString<char>)",
       .situation = "a client asks the manager in its handler",
       .arrange = askInHandlers,
       .act = [](Scene& s) { s.manager().informReelDbChanged(s.id); },
       .heard = "dbC(R1)",
       .callerTells = callerSays},
      {.operation = "ReelDbManager::informReelDbRecChanged(LightweightString<char>)",
       .act = [](Scene& s) { s.manager().informReelDbRecChanged(s.id); },
       .heard = "some(R1)",
       .callerTells = callerSays,
       .noHostCall = "the clients are the manager's own"},
      {.operation = "ReelDbManager::informReelDbRecChanged(LightweightString<char>)",
       .situation = "a client asks the manager in its handler",
       .arrange = askInHandlers,
       .act = [](Scene& s) { s.manager().informReelDbRecChanged(s.id); },
       .heard = "some(R1)",
       .callerTells = callerSays},
      {.operation = "ReelDbManager::informReelDbRecChanged(LightweightString<char>)",
       .situation = "a client causes another notification in its handler",
       .arrange =
           [](Scene& s) {
             s.followsR1->inHandler = [](ReelDbManager& manager) {
               ReelDbRec other(manager.getCookieFromReelId("R3"));
               other.binName("changed meanwhile");
             };
           },
       .act = [](Scene& s) { s.manager().informReelDbRecChanged(s.id); },
       .changes = "R3: profile_bin_name - -> 'changed meanwhile'\n",
       .heard = "some(R1) some(R3)",
       .callerTells = callerSays,
       .changesWhenTold = "the client changes a reel when it is notified of one"},
  };
}

std::vector<Scenario> lookup()
{
  return {
      {.operation = "ReelDbManager::getCookieFromReelId(LightweightString<char>)",
       .id = "r3",
       .act = [](Scene& s) { s.answer = s.manager().getCookieFromReelId(s.id); },
       .answer = "R3"},
      {.operation = "ReelDbManager::getCookieFromReelId(LightweightString<char>)",
       .situation = "no such reel",
       .id = "nobody",
       .act = [](Scene& s) { s.answer = s.manager().getCookieFromReelId(s.id); },
       .answer = "none"},
      {.operation = "ReelDbManager::getReelInfo(LightweightString<char>)",
       .id = "CAM",
       .act = [](Scene& s) { s.answer = Cookie(s.manager().getReelInfo(s.id)); },
       .answer = "cam"},
      {.operation = "ReelDbManager::doesReelExist(LightweightString<char>)",
       .id = "R2",
       .act = [](Scene& s) { s.answer = s.manager().doesReelExist(s.id); },
       .answer = "true"},
      {.operation = "ReelDbManager::checkReelValid(LightweightString<char>)",
       .id = "R2",
       .act = [](Scene& s) { s.answer = s.manager().checkReelValid(s.id); },
       .answer = "4"},
      {.operation = "ReelDbManager::representsLiveMaterial(LightweightString<char>)",
       .id = "CAM",
       .act = [](Scene& s) { s.answer = s.manager().representsLiveMaterial(s.id); },
       .answer = "true"},
      {.operation = "ReelDbManager::representsInternallyGeneratedMaterial(LightweightString<char>)",
       .id = "A*B",
       .act = [](Scene& s) { s.answer = s.manager().representsInternallyGeneratedMaterial(s.id); },
       .answer = "true",
       .noHostCall = "only the identifier is looked at"},
      {.operation = "ReelDbManager::reelInUse(LightweightString<char>, bool)",
       .act = [](Scene& s) { s.manager().reelInUse(s.id, true); },
       .changes = "in use '[cam]' -> '[R1, cam]'\n",
       .noHostCall = "the marks are the manager's own"},
      {.operation = "ReelDbManager::reelInUse(LightweightString<char>, bool)",
       .situation = "the mark is taken away",
       .id = "cam",
       .act = [](Scene& s) { s.manager().reelInUse(s.id, false); },
       .changes = "in use '[cam]' -> '[]'\n",
       .noHostCall = "the marks are the manager's own"},
      {.operation = "ReelDbManager::reelInUse(LightweightString<char>)",
       .id = "cam",
       .act = [](Scene& s) { s.answer = s.manager().reelInUse(s.id); },
       .answer = "true",
       .noHostCall = "the marks are the manager's own"},
      {.operation = "ReelDbManager::userFieldName(int)",
       .act = [](Scene& s) { s.answer = s.manager().userFieldName(s.number); },
       .answer = "'User field 2'"},
      {.operation = "ReelDbManager::userFieldName(int)",
       .situation = "a stored name",
       .arrange = [](Scene& s) { s.manager().userFieldName(1, "Scene"); },
       .act = [](Scene& s) { s.answer = s.manager().userFieldName(s.number); },
       .answer = "'Scene'"},
      {.operation = "ReelDbManager::userFieldName(int, LightweightString<char>)",
       .act = [](Scene& s) { s.manager().userFieldName(s.number, s.value); },
       .changes = "name of user field 1 - -> 'X'\n"},
  };
}

std::vector<Scenario> listing()
{
  return {
      {.operation = "ReelDbManager::getAllReelIds(std::vector<LightweightString<char>, "
                    "std::allocator<LightweightString<char> > >&, bool)",
       .fill = [](Scene& s) { s.ids = {"there before"}; },
       .act = [](Scene& s) { s.manager().getAllReelIds(s.ids, true); },
       .answer = "[there before, R1, cam, CAM, R2, R3]"},
      {.operation = "ReelDbManager::getAllReelIds(std::vector<LightweightString<char>, "
                    "std::allocator<LightweightString<char> > >&, bool)",
       .situation = "without live reels",
       .act = [](Scene& s) { s.manager().getAllReelIds(s.ids, false); },
       .answer = "[R1, R2, R3]"},
      {.operation = "ReelDbManager::getAllReelIds(StringList&, bool)",
       .fill = [](Scene& s) { s.list.add("there before"); },
       .act = [](Scene& s) { s.manager().getAllReelIds(s.list, false); },
       .answer = "[R1, R2, R3]"},
      {.operation = "ReelDbManager::getReelsCompatibleWithDevice(std::vector<LightweightString<char>, "
                    "std::allocator<LightweightString<char> > >&, int)",
       .number = 2,
       .act = [](Scene& s) { s.manager().getReelsCompatibleWithDevice(s.ids, s.number); },
       .answer = "[cam, R2, R3]"},
      {.operation = "ReelDbManager::getReelsCompatibleWithDevice(StringList&, int)",
       .fill = [](Scene& s) { s.list.add("there before"); },
       .act = [](Scene& s) { s.manager().getReelsCompatibleWithDevice(s.list, s.number); },
       .answer = "[R1, cam, CAM, R2, R3, ]"},
  };
}

} // namespace

std::vector<Scenario> managerScenarios()
{
  std::vector<Scenario> all;
  for (const std::vector<Scenario>& some : {lifecycle(), clients(), lookup(), listing()})
    all.insert(all.end(), some.begin(), some.end());
  return all;
}

} // namespace reeldb_tests
