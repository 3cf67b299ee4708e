// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_LABEL_MAPS_H
#define REELDB_LABEL_MAPS_H

#include "ReelDbExport.h"
#include "host/cookie.h"
#include "host/lwstring.h"

// Which timecode label map suits the project, a device or a reel. Each call loads the map anew. Main thread only.

/// Whether some entry in use reads VITC (source 1 or 2); false when the map cannot be loaded.
REELDB_EXPORT bool map_file_uses_vitc(const LightweightString<wchar_t>& mapName);

/// Whether no entry in use conflicts with the project's frame rate; true when the map cannot be loaded.
REELDB_EXPORT bool map_file_is_compatible_with_project(const LightweightString<wchar_t>& mapName);

/// Whether the device's port and inputs can deliver the labels in use; labels over 1394 are held against 9-pin devices
/// only. Prints one line that says why not; false, with a line, when the map cannot be loaded.
REELDB_EXPORT bool map_file_is_compatible_with_device(const LightweightString<wchar_t>& mapName, const IdStamp& device);

/// The device's configured map if it is compatible, else the default for its port and the project's output frame rate.
REELDB_EXPORT LightweightString<wchar_t> get_device_label_map_name(const IdStamp& device);

/// The reel's own map, untested, if it names one; else the device's.
REELDB_EXPORT LightweightString<wchar_t> get_required_label_map_name(LightweightString<char> reelId,
                                                                     const IdStamp& device);

#endif
