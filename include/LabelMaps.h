// SPDX-License-Identifier: Apache-2.0
/// @file
/// Which timecode label map suits the project, a device or a reel. Each call loads the map again. Map names are those
/// that LabelMappingSet::load takes. These functions throw nothing themselves; exceptions of the host pass through.
/// Main thread only.
#ifndef REELDB_LABEL_MAPS_H
#define REELDB_LABEL_MAPS_H

#include "ReelDbExport.h"
#include "host/cookie.h"
#include "host/lwstring.h"

/// Whether any entry in use reads VITC (source 1 or 2). False if the map cannot be loaded.
REELDB_EXPORT bool map_file_uses_vitc(const LightweightString<wchar_t>& mapName);

/// Whether no entry in use conflicts with the project's frame rate. Formats 0 and 10 conflict with the rate codes 3 and
/// 8, formats 1 and 9 with the rate codes 4 and 9. True if the map cannot be loaded. Prints nothing.
REELDB_EXPORT bool map_file_is_compatible_with_project(const LightweightString<wchar_t>& mapName);

/// Whether the device's port and inputs can deliver the labels in use. Labels over 1394 make a map incompatible with
/// 9-pin devices only. False if the map cannot be loaded. Before it returns false it prints one line with the reason.
REELDB_EXPORT bool map_file_is_compatible_with_device(const LightweightString<wchar_t>& mapName, const IdStamp& device);

/// The device's configured map if it is compatible, else the default for its port and the project's output frame rate:
/// one of "pal9pin", "nts9pin", "24f9pin", "pal1394", "ntsc1394", "24f1394", "paltofd", "ntstofd" and "24ftofd". Prints
/// why a configured map is not used. Never empty.
REELDB_EXPORT LightweightString<wchar_t> get_device_label_map_name(const IdStamp& device);

/// The reel's own map if it names one, unchecked and widened byte by byte; else the device's map. A reel whose map is
/// "Device default", and a reel that does not exist, name no map.
REELDB_EXPORT LightweightString<wchar_t> get_required_label_map_name(LightweightString<char> reelId,
                                                                     const IdStamp& device);

#endif
