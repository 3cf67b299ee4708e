// SPDX-License-Identifier: Apache-2.0
/// @file
/// Which timecode label map suits the project, a device or a reel. Each call loads the map anew: a map is named as
/// LabelMappingSet::load takes it. None throws of its own; exceptions of the host pass. Main thread only.
#ifndef REELDB_LABEL_MAPS_H
#define REELDB_LABEL_MAPS_H

#include "ReelDbExport.h"
#include "host/cookie.h"
#include "host/lwstring.h"

/// Whether some entry in use reads VITC (source 1 or 2); false when the map cannot be loaded.
REELDB_EXPORT bool map_file_uses_vitc(const LightweightString<wchar_t>& mapName);

/// Whether no entry in use conflicts with the project's frame rate: formats 0 and 10 do with the codes 3 and 8, formats
/// 1 and 9 with the codes 4 and 9. True when the map cannot be loaded. Prints nothing.
REELDB_EXPORT bool map_file_is_compatible_with_project(const LightweightString<wchar_t>& mapName);

/// Whether the device's port and inputs can deliver the labels in use; labels over 1394 are held against 9-pin devices
/// only. Prints one line that says why not; false, with a line, when the map cannot be loaded.
REELDB_EXPORT bool map_file_is_compatible_with_device(const LightweightString<wchar_t>& mapName, const IdStamp& device);

/// The device's configured map if it is compatible, else the default for its port and the project's output frame rate:
/// one of "pal9pin", "nts9pin", "24f9pin", "pal1394", "ntsc1394", "24f1394", "paltofd", "ntstofd" and "24ftofd". Prints
/// why a configured map is passed over. Never empty.
REELDB_EXPORT LightweightString<wchar_t> get_device_label_map_name(const IdStamp& device);

/// The reel's own map, untested and widened byte by byte, if it names one; else the device's. The text "Device default"
/// names none, and neither does a reel that does not exist.
REELDB_EXPORT LightweightString<wchar_t> get_required_label_map_name(LightweightString<char> reelId,
                                                                     const IdStamp& device);

#endif
