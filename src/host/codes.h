// SPDX-License-Identifier: Apache-2.0
/// @file
/// Names for the numbers that the library and its host exchange. Their values are part of the interface.
#ifndef REELDB_HOST_CODES_H
#define REELDB_HOST_CODES_H

#include <cstddef>
#include <cstdint>

#include "config.h"
#include "edit.h"
#include "text.h"

/// Every number of the interface that has a meaning of its own.
namespace codes {

/// @name Logs
/// @{

inline constexpr eEditOpenBehaviour openAsUsual{0};                ///< the default way
inline constexpr eLogType materialLog{1};                          ///< a log of recorded or imported material: a shot
inline constexpr eLogType reelLog{9};                              ///< a log that stands for a reel
inline constexpr LogAttributes::eLogAttribute reelIdAttribute{20}; ///< the reel identifier of a log
inline constexpr EditModificationType madeOrImported{59};          ///< the log was made or imported
inline constexpr EditChanType videoChannel{1};                     ///< a channel that carries video
inline constexpr EditChanType audioChannel{2};                     ///< a channel that carries audio
inline constexpr int channelCountMask = 0xFFFF;                    ///< the bits of Edit::getNumChans with the number

/// @}
/// @name Searches
/// @{

inline constexpr unsigned reelSearchMask = 0x10040;       ///< projdb::search by masks: the reel logs
inline constexpr unsigned reelSearchMaskOff = 0xFFFEEF9F; ///< with reelSearchMask
inline constexpr int shotSearchFirst = 1;                 ///< projdb::SearchCriteria: every log that is not a reel log
inline constexpr int shotSearchSecond = 102350;           ///< with shotSearchFirst

/// @}
/// @name Texts and settings
/// @{

inline constexpr ResId wordForReel = 10043;                    ///< the host's word for a reel
inline constexpr std::size_t textBufferSize = 2048;            ///< bytes of a buffer for configb::in, NUL included
inline constexpr std::size_t longestText = textBufferSize - 1; ///< the longest text that fits there
inline constexpr iSettings::eType deviceData{1};               ///< the settings of external devices

/// @}
/// @name Threads
/// @{

inline constexpr int threadMask = 0xFFFF; ///< the bits of co_pid() that identify a thread; glib_pid holds them

/// @}
/// @name Devices
/// @{

inline constexpr int port9Pin = 0;       ///< controlled over a 9-pin port
inline constexpr int port1394 = 1;       ///< controlled over a 1394 port
inline constexpr int portNamingReel = 2; ///< the device gives a new reel its own name as identifier
inline constexpr int noPort = 3;         ///< not controlled; any other port type means the same
inline constexpr int compositeInput = 0; ///< the video inputs; the library only distinguishes whether there is one
inline constexpr int sVideoInput = 1;
inline constexpr int componentInput = 2;
inline constexpr int sdiInput = 3;
inline constexpr int hdmiInput = 4;
inline constexpr int input1394 = 5;
inline constexpr int noVideoInput = 9; ///< the input type of a device without a video input

/// @}
/// @name Frame rates
/// @{

inline constexpr int noFrameRate = -1; ///< there is no project
inline constexpr int rate25 = 3;       ///< 25 frames a second; PAL family
inline constexpr int rate2997 = 4;     ///< 29.97; NTSC family
inline constexpr int rate30 = 5;       ///< 30; NTSC family
inline constexpr int rate24 = 6;       ///< 24; 24-frame family, like every code without a name here
inline constexpr int rate2398 = 7;     ///< 23.98; 24-frame family
inline constexpr int rate50 = 8;       ///< 50; PAL family
inline constexpr int rate5994 = 9;     ///< 59.94; NTSC family
inline constexpr int rate60 = 10;      ///< 60; NTSC family

/// @}
/// @name Label maps
/// Where a label is read, and what it counts. The library tests no other codes.
/// @{

inline constexpr std::uint32_t fromVitc = 1;      ///< VITC in the video
inline constexpr std::uint32_t fromVitc2 = 2;     ///< VITC in the video, the second one
inline constexpr std::uint32_t from9PinLtc = 3;   ///< LTC, reported over the 9-pin port
inline constexpr std::uint32_t from9PinVitc = 4;  ///< VITC, reported over the 9-pin port
inline constexpr std::uint32_t from9PinTimer = 5; ///< the deck's timer, reported over the 9-pin port
inline constexpr std::uint32_t from1394 = 9;      ///< timecode over the 1394 port
inline constexpr std::uint32_t counts30Fps = 0;   ///< 30 frames a second; not in projects of 25 or 50
inline constexpr std::uint32_t counts25Fps = 1;   ///< 25 frames a second; not in projects of 29.97 or 59.94
inline constexpr std::uint32_t counts50Fps = 9;   ///< 50 frames a second; as 25
inline constexpr std::uint32_t counts60Fps = 10;  ///< 60 frames a second; as 30

/// @}

} // namespace codes

#endif
