// SPDX-License-Identifier: Apache-2.0
//
// Reels of the open project: reading, creating and copying them.
#ifndef REELDB_APP_REELS_H
#define REELDB_APP_REELS_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "app/session.h"

namespace reeldb::app {

/// The user fields of a reel are numbered from 0; these are the ones that are copied with it.
inline constexpr std::size_t userFieldCount = 6;

/// The fields of a reel. Texts are as they are stored, so they may hold any bytes.
struct Reel {
  std::string id;
  std::string type;
  bool available = false;
  bool inhibit = false;
  std::string labelMapping;
  std::string bin; ///< the shelf
  std::string lastDevice;
  int videoChannels = 0; ///< the log's own, whatever the type says
  int audioChannels = 0;
  std::array<std::string, userFieldCount> userFields;
  std::int64_t shots = 0; ///< the number of other logs with this identifier, ignoring letter case

  bool operator==(const Reel&) const = default;
};

/// All reels in the order of the project; those without an identifier are left out, as the library does in its lists.
std::vector<Reel> listReels(Session& session);

/// A reel, and the library's classification of it.
struct ReelDetails {
  Reel reel;
  bool knownType = false; ///< the type is in the catalogue
  bool live = false;      ///< the reel is a live feed
};

/// The reel with that identifier, ignoring letter case. Throws Error (NotFound), which lists similar names.
ReelDetails showReel(Session& session, const std::string& id);

/// The names of the user fields, by number.
std::array<std::string, userFieldCount> userFieldNames();

struct CreatedReel {
  Reel reel;
  std::vector<std::string> remarks; ///< why its name or type is doubtful; each "subject: fact (cause)"
};

/// The rule for identifiers of new reels and for new names, for the help of faces.
inline constexpr const char* reelNameRule =
    "A name that is blank, or that contains a star or a control character, is refused. A name that cut lists\n"
    "use for sources without a reel (BL, BLACK, BARS, GEN, AX) is accepted with a warning, because import\n"
    "cannot find a reel by such a name.";

/// Creates a reel, on the device of that number if one is given, and stores it. The identifier is stored without outer
/// blanks, or is the device's own name. Throws Error: Invalid or Refused for an identifier that breaks the rule,
/// Refused if there is such a reel. REQUIRES: a session for writing.
CreatedReel createReel(Session& session, const std::string& id, const std::optional<std::string>& device);

struct CopiedReel {
  std::string from, to; ///< identifiers as the records spell them
  bool stored = false;  ///< false: the fields were equal
  Reel reel;            ///< the reel @p to after copying
};

/// Copies type, available, inhibit, label map and the user fields from one reel to another, and stores that.
/// Throws Error: NotFound; Invalid if a text is not plain text. REQUIRES: a session for writing.
CopiedReel copyReel(Session& session, const std::string& from, const std::string& to);

} // namespace reeldb::app

#endif
