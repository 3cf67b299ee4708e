// SPDX-License-Identifier: Apache-2.0
//
// Which reel a name means. Lists cut names, change their case, and continue to use former names of a reel.
#ifndef REELDB_APP_NAMES_H
#define REELDB_APP_NAMES_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "app/session.h"

namespace reeldb::app {

/// Why a name stands for a reel, the strongest reason first.
enum class Reason {
  Exact,   ///< it is the reel's identifier
  Case,    ///< it differs from the identifier in the case of ASCII letters only
  Cut,     ///< it is the identifier as cut by a list with names of 6, 8, 32 or 129 characters
  Alias,   ///< a list gave it as another name of the reel
  OldName, ///< it is a former name of the reel, or a former name as cut by a list
};

/// "exact", "case", "cut", "alias", "old-name"
std::string_view wordOf(Reason reason);

struct Candidate {
  std::string reel;            ///< the identifier
  bool isThere = true;         ///< false: only shots speak of the reel, it has no record
  std::vector<Reason> reasons; ///< at least one, each once, the strongest first
};

/// The names of the reels of a project. ASCII case matters only for the reason.
class ReelNames {
public:
  void addReel(const std::string& id, const std::vector<std::string>& oldNames);
  /// A further name of the reel, as a shot carries it.
  void addAlias(const std::string& name, const std::string& reel);

  /// Every reel that the name may stand for: by the strongest reason, then as they were added. Outer blanks of the name
  /// do not count.
  std::vector<Candidate> find(std::string_view name) const;

private:
  struct Entry {
    std::string id;
    bool isThere;
  };
  struct Link {
    std::size_t entry;
    Reason reason;
  };
  /// The forms that the reel fields of lists leave of a name.
  void linkCuts(const std::string& name, std::size_t entry, Reason reason);
  void link(const std::string& foldedName, std::size_t entry, Reason reason);

  std::vector<Entry> entries_;
  std::unordered_map<std::string, std::size_t> byId_; ///< folded identifier to the first entry that has it
  std::unordered_map<std::string, std::vector<Link>> byName_;
};

/// The only candidate with the strongest reason of all. Null if there are several such candidates, or no candidate.
const Candidate* theOne(const std::vector<Candidate>& candidates);

/// All names by which the open project knows its reels: identifiers, old names, and what its shots say.
ReelNames knownNames(Session& session);

/// What a name in a list means.
struct NameMeaning {
  std::string name;
  std::vector<Candidate> candidates; ///< at least one
  std::vector<std::int64_t> shots;   ///< of each candidate
};

/// The reels that a name may mean. Throws Error (NotFound) if there is no such reel. The error lists reels of a similar
/// name, or says what the name means in lists.
NameMeaning whichReel(Session& session, const std::string& name);

} // namespace reeldb::app

#endif
