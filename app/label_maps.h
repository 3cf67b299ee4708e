// SPDX-License-Identifier: Apache-2.0
//
// The label maps of the facility, and the label map that a reel, a device and a project need.
#ifndef REELDB_APP_LABEL_MAPS_H
#define REELDB_APP_LABEL_MAPS_H

#include <optional>
#include <string>
#include <vector>

#include "app/error.h"
#include "app/session.h"

namespace reeldb::app {

/// The names of the facility's label maps, sorted.
std::vector<std::string> labelMapNames();

struct LabelMap {
  std::string name;
  bool usesVitc = false;
  bool fitsProject = false;
  std::string fault; ///< why it cannot be read; if set, the other members have no meaning
};

/// All label maps of the facility, by name.
std::vector<LabelMap> listLabelMaps(Session& session);

struct LabelMapCheck {
  LabelMap map;
  std::string why;           ///< why it does not fit the project; empty if it fits
  std::optional<int> device; ///< the number of the device that it was checked against
  std::string deviceName;    ///< of that device
  bool fitsDevice = true;    ///< true also without a device
  bool fits() const { return map.fitsProject && fitsDevice; }
};

/// Checks whether a label map fits the project, and the device of that number if one is given. Throws Error: NotFound
/// if there is no such map or device; Unreadable, with the line, if its file has an error.
LabelMapCheck checkLabelMap(Session& session, const std::string& name, const std::optional<std::string>& device);

struct NeededLabelMap {
  std::optional<std::string> reel; ///< as its record spells it; empty: for the device and the project alone
  int device = -1;
  std::string map;
  std::string fault; ///< why the facility cannot provide it: no such map, or it cannot be read; else empty
};

/// The label map for a reel on a device: the reel's own, if it names one, whether it fits or not; else that of the
/// device. Throws Error (NotFound).
NeededLabelMap labelMapForReel(Session& session, const std::string& reel, const std::string& device);

/// The label map for a device and the project: the device's own if it fits the device, else the usual one for its port
/// and the frame rate. Throws Error (NotFound).
NeededLabelMap labelMapForDevice(Session& session, const std::string& device);

/// Why the facility has no readable label map of that name; empty if it has one.
std::optional<Error> labelMapFault(const std::string& name);

} // namespace reeldb::app

#endif
