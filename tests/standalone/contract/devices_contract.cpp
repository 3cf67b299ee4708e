// SPDX-License-Identifier: Apache-2.0
#include <string>
#include <type_traits>

#include "host/device.h"
#include "host_fixture.h"

namespace {

using host_contract::Device;

HOST_CONTRACT(Devices);

static_assert(std::is_same_v<decltype(theConfigurationManager()), ExtDeviceConfigurationManager&>);

Device deck()
{
  Device device;
  device.number = 3;
  device.id = 42;
  device.name = "Deck \xC3\xA9";
  device.portType = 0;
  device.inputType = 2;
  device.audioInputs = 4;
  device.tapes = {"Live", "Tape 2ch"};
  device.labelMap = "pal9pin";
  return device;
}

void expectDeck(const ExtDeviceConfig& config)
{
  EXPECT_EQ(std::wstring(config.getTextName().c_str()), L"Deck \u00e9");
  EXPECT_EQ(config.getPortType(), 0);
  EXPECT_EQ(config.getInputType(), 2);
  EXPECT_EQ(config.getNumConnectedAudioInputs(), 4);
  EXPECT_EQ(std::wstring(config.getLabelMapping().c_str()), L"pal9pin");
  const StringList tapes = config.getTapeList();
  EXPECT_EQ(tapes.count(), 2u);
  EXPECT_TRUE(tapes.contains("Live"));
  EXPECT_TRUE(tapes.contains("Tape 2ch"));
  EXPECT_FALSE(tapes.contains("live"));
}

/// A reel without a device must get no channels, and a label map of no control port.
void expectNone(const ExtDeviceConfig& config)
{
  EXPECT_TRUE(config.getTextName().empty());
  EXPECT_NE(config.getPortType(), 0);
  EXPECT_NE(config.getPortType(), 1);
  EXPECT_NE(config.getPortType(), 2);
  EXPECT_EQ(config.getInputType(), 9);
  EXPECT_EQ(config.getNumConnectedAudioInputs(), 0);
  EXPECT_TRUE(config.getLabelMapping().empty());
  EXPECT_EQ(config.getTapeList().count(), 0u);
}

TEST_P(Devices, AreFoundByNumberByStampAndByName)
{
  PROMISE("host/device.h", "A device has a number, which is its index, and a permanent identity.");
  HOST_NEEDS(Devices);
  host().addDevice(deck());
  const ExtDeviceConfigurationManager& manager = theConfigurationManager();
  expectDeck(manager.getConfig(3));
  expectDeck(manager.getConfig(IdStamp(42)));
  EXPECT_EQ(manager.findConfigForName(L"Deck \u00e9"), 3);
}

TEST_P(Devices, WhereThereAreNoneAllAreUnknownAndHaveNothing)
{
  PROMISE("host/device.h", "belongs to no device: without inputs, port, tapes and name");
  ExtDeviceConfigurationManager& manager = theConfigurationManager();
  expectNone(manager.getConfig(0));
  expectNone(manager.getConfig(-1));
  expectNone(manager.getConfig(IdStamp()));
  expectNone(manager.getConfig(IdStamp(42)));
  EXPECT_EQ(manager.findConfigForName(L"Deck"), -1);
  EXPECT_EQ(manager.findConfigForName(L""), -1);
  ExtDeviceConfig config = manager.getConfig(0);
  config.setLastReel("R1");
  manager.storeDevice(config, false);
  expectNone(manager.getConfig(0));
}

TEST_P(Devices, UnknownOnesHaveNothing)
{
  PROMISE("host/device.h", "an unknown number gives a device without inputs, port or tapes");
  HOST_NEEDS(Devices);
  host().addDevice(deck());
  Device nameless;
  nameless.number = 0;
  nameless.id = 7;
  nameless.audioInputs = 2;
  host().addDevice(nameless);
  const ExtDeviceConfigurationManager& manager = theConfigurationManager();
  expectNone(manager.getConfig(999));
  expectNone(manager.getConfig(-1));
  expectNone(manager.getConfig(IdStamp()));
  expectNone(manager.getConfig(IdStamp(999)));
  EXPECT_EQ(manager.findConfigForName(L"Deck"), -1);
  EXPECT_EQ(manager.findConfigForName(L"deck \u00e9"), -1);
  EXPECT_EQ(manager.findConfigForName(L""), -1); // never a device without a name
}

TEST_P(Devices, AConfigurationIsACopyUntilItIsStored)
{
  PROMISE("host/device.h", "The configuration of one device, by value: a change stays in the copy until it is stored.");
  HOST_NEEDS(Devices);
  host().addDevice(deck());
  ExtDeviceConfig config = theConfigurationManager().getConfig(3);
  const ExtDeviceConfig before(config);
  config.setLastReel("Deck live feed");
  EXPECT_EQ(host().lastReelOf(42), "");
  theConfigurationManager().storeDevice(config, false);
  EXPECT_EQ(host().lastReelOf(42), "Deck live feed");
  theConfigurationManager().storeDevice(before, false);
  EXPECT_EQ(host().lastReelOf(42), "");
}

TEST_P(Devices, AConfigurationOutlivesTheDeviceItCameFrom)
{
  PROMISE("host/device.h", "A copy stays usable when the device is gone.");
  HOST_NEEDS(Devices);
  ExtDeviceConfig kept;
  expectNone(kept);
  {
    host().addDevice(deck());
    const ExtDeviceConfig config = theConfigurationManager().getConfig(3);
    kept = config;
  }
  expectDeck(kept);
}

TEST_P(Devices, ADeviceIsStoredByItsIdentityNotByItsName)
{
  PROMISE("host/device.h", "The device is found by its identity, not by its name; an unknown device is ignored.");
  HOST_NEEDS(Devices);
  host().addDevice(deck());
  Device other;
  other.number = 4;
  other.id = 43;
  other.name = "Other";
  host().addDevice(other);
  ExtDeviceConfig config = theConfigurationManager().getConfig(3);
  config.setLastReel("R1");
  host().renameDevice(42, "Renamed");
  host().renameDevice(43, "Deck \xC3\xA9");
  theConfigurationManager().storeDevice(config, false);
  EXPECT_EQ(host().lastReelOf(42), "R1");
  EXPECT_EQ(host().lastReelOf(43), "");
}

TEST_P(Devices, AnOlderCopyStoresItsLastReelAndNothingElse)
{
  PROMISE(
      "host/device.h",
      "Stores the last reel of the copy. All other values of the device stay as they are, even if the copy is older.");
  HOST_NEEDS(Devices);
  host().addDevice(deck());
  ExtDeviceConfig config = theConfigurationManager().getConfig(3);
  config.setLastReel("R1");
  host().renameDevice(42, "Renamed");
  theConfigurationManager().storeDevice(config, false);
  EXPECT_EQ(host().lastReelOf(42), "R1");
  EXPECT_EQ(std::wstring(theConfigurationManager().getConfig(3).getTextName().c_str()), L"Renamed");
}

TEST_P(Devices, AnUnknownDeviceIsNotStored)
{
  PROMISE("host/device.h", "The device is found by its identity, not by its name; an unknown device is ignored.");
  HOST_NEEDS(Devices);
  Device nameless;
  nameless.number = 0;
  nameless.id = 7;
  host().addDevice(nameless);
  ExtDeviceConfig config = theConfigurationManager().getConfig(999);
  config.setLastReel("R1");
  theConfigurationManager().storeDevice(config, false);
  EXPECT_EQ(host().lastReelOf(7), "");
  EXPECT_EQ(theConfigurationManager().findConfigForName(L""), -1);
}

TEST_P(Devices, AMessageNamesItsDevice)
{
  PROMISE("host/device.h", "the device that the message names; invalid: no device");
  HOST_NEEDS(Devices);
  const IdStamp known = ExtDeviceConfigurationManager::DeviceChangedMsgParser(host().messageAbout(42));
  EXPECT_TRUE(known.valid());
  EXPECT_EQ(known.value(), 42u);
  const IdStamp none = ExtDeviceConfigurationManager::DeviceChangedMsgParser(host().messageAbout(0));
  EXPECT_FALSE(none.valid());
}

// --- Label maps ----------------------------------------------------------------------------------

std::vector<LabelMappingSet::Entry> entries()
{
  std::vector<LabelMappingSet::Entry> all(LabelMappingSet::numEntries);
  all[0] = {1, 1, 0};
  all[13] = {1, 9, 10};
  return all;
}

TEST_P(Devices, ALabelMapIsLoadedByName)
{
  PROMISE("host/device.h",
          "Resets the entries and loads the map of this name: a file name without folder and extension.");
  HOST_NEEDS(LabelMaps);
  host().addLabelMap("mine", entries());
  LabelMappingSet map;
  ASSERT_TRUE(map.load(L"mine"));
  EXPECT_NE(map.entries[0].inUse, 0);
  EXPECT_EQ(map.entries[0].source, 1u);
  EXPECT_EQ(map.entries[0].format, 0u);
  EXPECT_EQ(map.entries[1].inUse, 0);
  EXPECT_NE(map.entries[13].inUse, 0);
  EXPECT_EQ(map.entries[13].source, 9u);
  EXPECT_EQ(map.entries[13].format, 10u);
}

TEST_P(Devices, ANewLabelMapIsEmpty)
{
  PROMISE("host/device.h", "all entries zero");
  const LabelMappingSet map;
  for (const LabelMappingSet::Entry& entry : map.entries) {
    EXPECT_EQ(entry.inUse, 0);
    EXPECT_EQ(entry.source, 0u);
    EXPECT_EQ(entry.format, 0u);
  }
}

TEST_P(Devices, ALabelMapThatIsNotThereResetsTheEntries)
{
  PROMISE("host/device.h",
          "Returns false if there is no such map or it cannot be loaded; the entries then stay reset.");
  LabelMappingSet map;
  map.entries[2] = {1, 3, 4};
  EXPECT_FALSE(map.load(L"no map of this name"));
  EXPECT_EQ(map.entries[2].inUse, 0);
  EXPECT_EQ(map.entries[2].source, 0u);
  EXPECT_FALSE(map.load(L""));
  EXPECT_FALSE(map.load(L"../no map of this name"));
}

} // namespace
