// SPDX-License-Identifier: Apache-2.0
//
// Which kept list a name means, and which one a file is a new version of. For the sources of this room.
#ifndef REELDB_APP_LIST_CHOICE_H
#define REELDB_APP_LIST_CHOICE_H

#include <optional>
#include <string>

#include "app/list_files.h"
#include "reelhost/host.h"

namespace reeldb::app {

/// Throws Error (Refused) if the open project keeps no lists.
void requireKeepsLists();

/// As requireList of app/kept_lists.h; without the events.
reelhost::KeptList listNamed(const std::string& name);

/// The kept list whose bytes have the digest, without its events.
std::optional<reelhost::KeptList> listWith(const reelhost::Digest& digest);

/// The kept list whose new version the file is: the one with its bytes, of this digest, or else with its file name, or
/// else with its title. Empty if there is no such list. Throws Error (Refused) if several lists have the file name, or
/// the title.
std::optional<reelhost::KeptList> versionOf(const ListFile& file, const reelhost::Digest& digest);

/// The name of the file without folders, under which the project keeps a list.
std::string fileNameOf(const ListFile& file);

} // namespace reeldb::app

#endif
