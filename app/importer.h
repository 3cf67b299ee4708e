// SPDX-License-Identifier: Apache-2.0
//
// Brings the clips of lists into the open project.
#ifndef REELDB_CLI_IMPORTER_H
#define REELDB_CLI_IMPORTER_H

#include <string>
#include <unordered_map>
#include <unordered_set>

#include "ReelDbManager.h"
#include "lists/list.h"
#include "app/imported.h"
#include "text/progress.h"

namespace reeldb::cli {

class Importer {
public:
  /// The project is open. Looks over the reels and the shots that are there.
  explicit Importer(ReelDbManager& manager);

  /// Reports every new clip as imported material; the library makes the reels. A shot is the same as another when
  /// reel (ASCII case aside), clip name, source in, source out and tracks are equal; it is not added twice.
  Imported import(std::string file, lists::List list, Progress& progress);

private:
  void addReel(const std::string& id);
  /// Notes a reel that is there, and how its record spells it; answers whether it is.
  bool noteReel(const std::string& id, Imported& result);
  /// Makes the clip's shot, unless one with that key is there already; answers whether it was made.
  bool bringIn(const lists::Clip& clip, std::string key);

  ReelDbManager& manager_;
  /// How each reel is spelt, by its folded identifier: asking the library opens every log for every reel of a list.
  std::unordered_map<std::string, std::string> reels_;
  std::unordered_set<std::string> shots_;
};

} // namespace reeldb::cli

#endif
