// SPDX-License-Identifier: Apache-2.0
//
// The catalogue of reel types, clients, label maps, memory, version.
#include <new>

#include "LabelMaps.h"
#include "ReelDbVersion.h"
#include "faults/scene.h"
#include "host/codes.h"
#include "host/text.h"

namespace reeldb_tests {

namespace {

constexpr const char* catalogueIsItsOwn = "the catalogue is the library's own";
constexpr const char* onlyMemory = "memory is a service of its own";

ReelTypeManager& catalogue()
{
  return *theReelTypeManager();
}

/// The type as "name: video, audio".
Text described(const ReelType& type)
{
  Text text = type.name + ": ";
  text += type.numVideoChans;
  text.append(", ");
  text += type.numAudioChans;
  return text;
}

void* volatile made;

/// Allocates memory and releases it. Returns whether there was any.
template <class Make, class Unmake>
bool madeAndUnmade(Make make, Unmake unmake)
{
  made = make();
  if (!made)
    return false;
  unmake(made);
  return true;
}

std::vector<Scenario> memory()
{
  return {
      {.operation = "operator new(unsigned long)",
       .act =
           [](Scene& s) {
             s.answer = madeAndUnmade([] { return ::operator new(100); }, [](void* p) { ::operator delete(p); });
           },
       .answer = "true",
       .noHostCall = onlyMemory},
      {.operation = "operator new[](unsigned long)",
       .act =
           [](Scene& s) {
             s.answer = madeAndUnmade([] { return ::operator new[](100); }, [](void* p) { ::operator delete[](p); });
           },
       .answer = "true",
       .noHostCall = onlyMemory},
      {.operation = "operator new(unsigned long, std::nothrow_t const&)",
       .act =
           [](Scene& s) {
             s.answer = madeAndUnmade([] { return ::operator new(100, std::nothrow); },
                                      [](void* p) { ::operator delete(p, std::nothrow); });
           },
       .answer = "true",
       .noHostCall = onlyMemory,
       .withoutMemory = "false"},
      {.operation = "operator new[](unsigned long, std::nothrow_t const&)",
       .act =
           [](Scene& s) {
             s.answer = madeAndUnmade([] { return ::operator new[](100, std::nothrow); },
                                      [](void* p) { ::operator delete[](p, std::nothrow); });
           },
       .answer = "true",
       .noHostCall = onlyMemory,
       .withoutMemory = "false"},
  };
}

std::vector<Scenario> types()
{
  return {
      {.operation = "theReelTypeManager()",
       .act = [](Scene& s) { s.answer = theReelTypeManager() == &theReelTypeManager_; },
       .answer = "true",
       .noHostCall = "it is there from the start"},
      {.operation = "ReelTypeManager::ReelTypeManager()",
       .act =
           [](Scene& s) {
             s.otherTypes.emplace();
             s.otherTypes->getAllReelTypes(s.list);
           },
       .answer = "[F2, New type, F4, Last] printed ReelTypeList Warning: Scratch: no parameters. Line 3\n"},
      {.operation = "ReelTypeManager::getAllReelTypes(StringList&)",
       .fill = [](Scene& s) { s.list.add("there before"); },
       .act = [](Scene& s) { catalogue().getAllReelTypes(s.list); },
       .answer = "[there before, F2, Live, F4]",
       .noHostCall = catalogueIsItsOwn},
      {.operation = "ReelTypeManager::type(unsigned int const&)",
       .number = 2,
       .act = [](Scene& s) { s.answer = described(catalogue().type(static_cast<unsigned>(s.number))); },
       .answer = "'F4: 1, 4'",
       .noHostCall = catalogueIsItsOwn},
      {.operation = "ReelTypeManager::type(LightweightString<char> const&)",
       .id = "F4",
       .act = [](Scene& s) { s.answer = described(catalogue().type(s.id)); },
       .answer = "'F4: 1, 4'",
       .noHostCall = catalogueIsItsOwn},
      {.operation = "ReelTypeManager::getReelParam(LightweightString<char>, LightweightString<char>, int&)",
       .id = "F4",
       .value = "audiochannels",
       .act = [](Scene& s) { s.answer = catalogue().getReelParam(s.id, s.value, s.intOut); },
       .answer = "true out 4",
       .noHostCall = catalogueIsItsOwn},
      {.operation = "ReelTypeManager::numVideoChans(LightweightString<char>)",
       .situation = "a name nobody defined",
       .id = "nobody's",
       .act = [](Scene& s) { s.answer = catalogue().numVideoChans(s.id); },
       .answer = "0",
       .changes = "type 'nobody's' - -> ''\n",
       .noHostCall = catalogueIsItsOwn},
      {.operation = "ReelTypeManager::numAudioChans(LightweightString<char>)",
       .id = "F4",
       .act = [](Scene& s) { s.answer = catalogue().numAudioChans(s.id); },
       .answer = "4",
       .noHostCall = catalogueIsItsOwn},
      {.operation = "ReelTypeManager::load(LightweightString<char>)",
       .act = [](Scene& s) { catalogue().load(s.typeFile); },
       .answer = " printed ReelTypeList Warning: Scratch: no parameters. Line 3\n",
       .changes = "type 'F4' 'VideoChannels=1 AudioChannels=4' -> ''\n"
                  "type 'Last' - -> 'VideoChannels=3'\n"
                  "type 'New type' - -> 'AudioChannels=8 VideoChannels=1'\n"},
      {.operation = "ReelTypeManager::load(LightweightString<char>)",
       .situation = "no such file",
       .id = "/dev/null/reeltype.dat",
       .act = [](Scene& s) { catalogue().load(s.id); },
       .noHostCall = "there is nothing to read"},
      {.operation = "ReelTypeManager::add(LightweightString<char>, LightweightString<char>)",
       .id = "  New type ",
       .value = " AudioChannels=8 ",
       .act = [](Scene& s) { catalogue().add(s.id, s.value); },
       .changes = "type 'New type' - -> 'AudioChannels=8'\n",
       .noHostCall = catalogueIsItsOwn},
      {.operation = "ReelTypeManager::chopSpaces(LightweightString<char>)",
       .id = "\t A B \n",
       .act = [](Scene& s) { s.answer = catalogue().chopSpaces(s.id); },
       .answer = "'A B'",
       .noHostCall = "only the text is looked at"},
      {.operation = "ReelTypeManager::parseParamToken(LightweightString<char>, LightweightString<char>, int&)",
       .id = "VideoChannels=4",
       .value = "videochannels",
       .act = [](Scene& s) { s.answer = catalogue().parseParamToken(s.id, s.value, s.intOut); },
       .answer = "true out 4",
       .noHostCall = "only the text is looked at"},
      {.operation = "ReelTypeManager::errMsg(char const*)",
       .act = [](Scene&) { catalogue().errMsg("said\n"); },
       .answer = " printed said\n"},
  };
}

std::vector<Scenario> clients()
{
  constexpr const char* nothingToAsk = "a client of no class of its own does nothing in its handlers";
  return {
      {.operation = "ReelDbClient::ReelDbClient()",
       .situation = "the manager's list is full",
       .arrange = [](Scene& s) { s.gather(6); },
       .act =
           [](Scene& s) {
             s.made.emplace();
             s.answer = static_cast<int>(s.manager().clients.count());
           },
       .answer = "9",
       .changes = "clients '8' -> '9'\n",
       .noHostCall = "the manager is there"},
      {.operation = "ReelDbClient::ReelDbClient(LightweightString<char>)",
       .situation = "the manager's list is full",
       .arrange = [](Scene& s) { s.gather(6); },
       .act =
           [](Scene& s) {
             s.made.emplace(s.id);
             s.answer = static_cast<int>(s.manager().clients.count());
           },
       .answer = "9",
       .changes = "clients '8' -> '9'\n",
       .noHostCall = "the manager is there"},
      {.operation = "ReelDbClient::ReelDbClient(LightweightString<char>)",
       .act =
           [](Scene& s) {
             s.made.emplace(s.id);
             s.answer = static_cast<int>(s.manager().clients.count());
           },
       .answer = "3",
       .changes = "clients '2' -> '3'\n",
       .noHostCall = "the manager is there"},
      {.operation = "ReelDbClient::setReelIdOfInterest(LightweightString<char>)",
       .arrange = [](Scene& s) { s.gather(1); },
       .act = [](Scene& s) { s.crowd[0]->setReelIdOfInterest(s.id); },
       .noHostCall = "it only keeps what it is given"},
      {.operation = "ReelDbClient::reelDbChanged(LightweightString<char>)",
       .arrange = [](Scene& s) { s.gather(1); },
       .act = [](Scene& s) { s.crowd[0]->reelDbChanged(s.id); },
       .noHostCall = nothingToAsk},
      {.operation = "ReelDbClient::ourReelDbRecChanged()",
       .arrange = [](Scene& s) { s.gather(1); },
       .act = [](Scene& s) { s.crowd[0]->ourReelDbRecChanged(); },
       .noHostCall = nothingToAsk},
      {.operation = "ReelDbClient::someReelDbRecChanged(LightweightString<char>)",
       .arrange = [](Scene& s) { s.gather(1); },
       .act = [](Scene& s) { s.crowd[0]->someReelDbRecChanged(s.id); },
       .noHostCall = nothingToAsk},
  };
}

std::vector<Scenario> labelMaps()
{
  constexpr const char* withDevice =
      "map_file_is_compatible_with_device(LightweightString<wchar_t> const&, IdStamp const&)";
  constexpr const char* required = "get_required_label_map_name(LightweightString<char>, IdStamp const&)";
  constexpr auto test = [](Scene& s) { s.answer = map_file_is_compatible_with_device(s.wide, s.stamp); };
  constexpr auto deck = [](Scene& s) { s.stamp = IdStamp(101); };
  constexpr auto cam = [](Scene& s) { s.stamp = IdStamp(102); };
  constexpr auto feed = [](Scene& s) { s.stamp = IdStamp(103); };
  return {
      {.operation = "map_file_uses_vitc(LightweightString<wchar_t> const&)",
       .wide = L"vitc",
       .act = [](Scene& s) { s.answer = map_file_uses_vitc(s.wide); },
       .answer = "true"},
      {.operation = "map_file_is_compatible_with_project(LightweightString<wchar_t> const&)",
       .wide = L"9pin",
       .act = [](Scene& s) { s.answer = map_file_is_compatible_with_project(s.wide); },
       .answer = "true"},
      {.operation = withDevice, .situation = "suits", .wide = L"9pin", .arrange = deck, .act = test, .answer = "true"},
      {.operation = withDevice,
       .situation = "no such map",
       .wide = L"none",
       .arrange = deck,
       .act = test,
       .answer = "false printed Invalid label mapping file name <none>\n"},
      {.operation = withDevice,
       .situation = "needs a 1394 device",
       .wide = L"fire",
       .arrange = deck,
       .act = test,
       .answer = "false printed Label map <fire> requires 1394 labels - device <Deck> is not controllable via 1394\n"},
      {.operation = withDevice,
       .situation = "a 1394 device",
       .wide = L"9pin",
       .arrange = feed,
       .act = test,
       .answer = "false printed Label map <9pin> not compatible with 1394 device <Feed>\n"},
      {.operation = withDevice,
       .situation = "needs video",
       .wide = L"vitc",
       .arrange =
           [](Scene& s) {
             reelhost::facility().devices()[1].inputType = codes::noVideoInput;
             s.stamp = IdStamp(102);
           },
       .act = test,
       .answer = "false printed Label map <vitc> requires VITC - device <Cam> has no video input\n"},
      {.operation = withDevice,
       .situation = "needs 9-pin",
       .wide = L"9pin",
       .arrange = cam,
       .act = test,
       .answer = "false printed Label map <9pin> requires 9-PIN labels - device <Cam> is not controllable via 9-PIN\n"},
      {.operation = "get_device_label_map_name(IdStamp const&)",
       .situation = "the configured map",
       .arrange = deck,
       .act = [](Scene& s) { s.answer = get_device_label_map_name(s.stamp); },
       .answer = "'9pin'"},
      {.operation = "get_device_label_map_name(IdStamp const&)",
       .situation = "the configured map does not suit",
       .arrange = feed,
       .act = [](Scene& s) { s.answer = get_device_label_map_name(s.stamp); },
       .answer = "'pal1394' printed Label map <vitc> not compatible with 1394 device <Feed>\n"},
      {.operation = required,
       .situation = "the reel's own map",
       .arrange = deck,
       .act = [](Scene& s) { s.answer = get_required_label_map_name(s.id, s.stamp); },
       .answer = "'fire'"},
      {.operation = required,
       .situation = "the device's map",
       .id = "R2",
       .arrange = deck,
       .act = [](Scene& s) { s.answer = get_required_label_map_name(s.id, s.stamp); },
       .answer = "'9pin'"},
  };
}

std::vector<Scenario> version()
{
  return {{.operation = "reeldbDllVersionStr()",
           .act = [](Scene& s) { s.answer = *reeldbDllVersionStr() == '1'; },
           .answer = "true",
           .noHostCall = "it is a constant"}};
}

} // namespace

std::vector<Scenario> otherScenarios()
{
  std::vector<Scenario> all;
  for (const std::vector<Scenario>& some : {memory(), types(), clients(), labelMaps(), version()})
    all.insert(all.end(), some.begin(), some.end());
  return all;
}

std::vector<Scenario> allScenarios()
{
  std::vector<Scenario> all;
  for (const std::vector<Scenario>& some : {managerScenarios(), changeScenarios(), recordScenarios(), otherScenarios()})
    all.insert(all.end(), some.begin(), some.end());
  return all;
}

} // namespace reeldb_tests
