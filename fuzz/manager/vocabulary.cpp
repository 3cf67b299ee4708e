// SPDX-License-Identifier: Apache-2.0
#include "manager/vocabulary.h"

#include <array>
#include <iterator>

namespace reeldb_fuzz {

namespace {

// Identifiers that differ only in case or blanks, generated material, types, the words that mean no value, names of
// devices and of their feeds, bytes that are not ASCII and bytes that are not UTF-8.
constexpr const char* texts[] = {
    "R1",
    "r1",
    "R2",
    " R1",
    "R1 ",
    "  R1  ",
    " ",
    "",
    "*",
    "A*B",
    "Live",
    "live",
    "Deck 1",
    "Deck 1 live feed",
    "Namer",
    "namer",
    "\xC3\x89",
    "\xC3\xA9",
    "\xFF",
    "\tR1",
    "unknown",
    "default",
    "Tape 2ch",
    "Tape 4ch",
    "Negative",
    "1",
    "0",
    "-7",
    "2x",
    "House",
    "Device default",
    "no such thing",
};

constexpr const char* deviceNames[] = {"", "Deck 1", "Namer", " Camera", "Star*", "Caf\xC3\xA9", "no such device"};

constexpr const char* params[] = {
    "",
    "VideoChannels=1 AudioChannels=2",
    "AudioChannels=4",
    "VideoChannels=-3 AudioChannels=x",
    "Channels=5",
    "VideoChannels=2\tAudioChannels=3",
    "videochannels=1 VideoChannels=7 audiochannels==9",
};

constexpr const char* keys[] = {
    "reelid",           "record_inhibit_flag", "reel_available_flag",
    "reel_userfield0",  "reel_userfield6",     "reel_labelmapping",
    "profile_bin_name", "reel_type",           "",
};

constexpr int userFields[] = {0, 1, 5, 6, -1, 2147483647, -2147483647 - 1};
constexpr int deviceNumbers[] = {-1, 0, 1, 2, 3, 4, 7, -2147483647 - 1};
constexpr int holds[] = {1, -1, 2, -2};

template <class T, std::size_t N>
T oneOf(Bytes& bytes, const T (&choices)[N])
{
  return choices[bytes.below(N)];
}

reelhost::DeviceSettings device(int number, const char* name, int port, int input, int inputs,
                                std::vector<std::string> tapes)
{
  reelhost::DeviceSettings settings;
  settings.number = number;
  settings.id = static_cast<unsigned>(number) + 100;
  settings.name = name;
  settings.portType = port;
  settings.inputType = input;
  settings.audioInputs = inputs;
  settings.tapes = std::move(tapes);
  return settings;
}

} // namespace

std::string anyText(Bytes& bytes)
{
  const unsigned first = bytes.byte();
  return first < 0xC0 ? texts[first % std::size(texts)] : bytes.text(first & 0x3F);
}

std::string anyDeviceName(Bytes& bytes)
{
  return oneOf(bytes, deviceNames);
}

std::string anyParams(Bytes& bytes)
{
  return oneOf(bytes, params);
}

std::string anyKey(Bytes& bytes)
{
  return oneOf(bytes, keys);
}

int anyUserField(Bytes& bytes)
{
  return oneOf(bytes, userFields);
}

int anyDevice(Bytes& bytes)
{
  return oneOf(bytes, deviceNumbers);
}

int anyHold(Bytes& bytes)
{
  return oneOf(bytes, holds);
}

std::vector<reelhost::DeviceSettings> allDevices()
{
  return {
      device(0, "Deck 1", 0, 3, 4, {"Tape 2ch", "Live"}),
      device(1, "Namer", 2, 9, 2, {"Tape 4ch"}),
      device(2, " Camera", 1, 5, 0, {"live", "Live"}),
      device(3, "Star*", 3, 9, 1, {"Live", "Tape 2ch", ""}),
      device(4, "Caf\xC3\xA9", 2, 0, 0, {}),
  };
}

std::vector<std::pair<std::string, std::string>> firstTypes()
{
  return {
      {"Tape 2ch", "VideoChannels=1 AudioChannels=2"},
      {"Tape 4ch", "VideoChannels=1 AudioChannels=4"},
      {"Live", "VideoChannels=1 AudioChannels=2"},
      {"Negative", "VideoChannels=-1 AudioChannels=-2"},
  };
}

} // namespace reeldb_fuzz
