// SPDX-License-Identifier: Apache-2.0
//
// Finds the reel that a name means. Lists cut names, change their case, and continue to use former names of a reel.
#ifndef REELDB_APP_NAMES_H
#define REELDB_APP_NAMES_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "app/session.h"
#include "lists/list.h"
#include "lists/name_index.h"

namespace reeldb::app {

/// The reasons why a name may mean a reel, the strongest first.
enum class Reason {
  Exact,   ///< it is the reel's identifier
  Case,    ///< it differs from the identifier in the case of ASCII letters only
  Given,   ///< a person gave it to the reel
  Cut,     ///< it is the identifier as cut by a list with names of 6, 8, 32 or 129 characters
  Alias,   ///< a list gave it as another name of the reel
  OldName, ///< it is a former name of the reel, or a former name as cut by a list
  Form,    ///< it is another form of a name of the reel, such as with another ending
};

/// "exact", "case", "given", "cut", "alias", "old-name", "form"
std::string_view wordOf(Reason reason);

struct Candidate {
  std::string reel;            ///< the identifier
  bool isThere = true;         ///< false: shots name the reel, but it has no record
  std::vector<Reason> reasons; ///< at least one, each once, the strongest first
};

/// A name that a list gives a source, and its reel in the project.
struct NamedReel {
  std::string name;
  lists::NameEvidence evidence = lists::NameEvidence::ReelText; ///< where the list has the name
  bool mayBeCut = false;                                        ///< whether it may be the beginning of a longer name
  std::string sourceId;                                         ///< the list's id of the source
  std::string reel;                                             ///< the identifier, as its record spells it
  lists::Match match = lists::Match::Itself;                    ///< how the name leads to it
  std::vector<std::string> perhaps; ///< other reels that the name may mean; empty if its reel is clear
  std::vector<std::string>
      clipNames; ///< longer clip names that begin with a name that may be cut and is a reel of its own
};

/// Shots that a name's new meaning gave another reel.
struct ReelMove {
  std::string from, to; ///< identifiers
  std::size_t shots = 0;
};

/// The names of the reels of a project. ASCII case matters only for the reason.
class ReelNames {
public:
  void addReel(const std::string& id, const std::vector<std::string>& oldNames,
               const std::vector<std::string>& given = {});
  /// Adds another name of the reel, which a shot has.
  void addAlias(const std::string& name, const std::string& reel);

  /// All reels that the name may mean: by the strongest reason, then as they were added. Outer blanks of the name are
  /// ignored.
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
  /// The forms to which the reel fields of lists cut a name.
  void linkCuts(const std::string& name, std::size_t entry, Reason reason);
  void link(const std::string& foldedName, std::size_t entry, Reason reason);

  std::vector<Entry> entries_;
  std::unordered_map<std::string, std::size_t> byId_; ///< folded identifier: the first entry with it
  std::unordered_map<std::string, std::vector<Link>> byName_;
};

/// The only candidate with the strongest reason of all. Null if there are several such candidates, or no candidate.
const Candidate* theOne(const std::vector<Candidate>& candidates);

/// All names of the reels in the open project: identifiers, old names, and the names in its shots.
ReelNames knownNames(Session& session);

/// The meaning of a name in a list.
struct NameMeaning {
  std::string name;
  std::vector<Candidate> candidates; ///< at least one
  std::vector<std::int64_t> shots;   ///< the number of shots of each candidate
  NamedReel asList = {};             ///< the reel that an import would take a list's name for
};

/// The reels that a name may mean. Throws Error (NotFound) if there is no such reel. The error lists reels of a similar
/// name, or says what the name means in lists.
NameMeaning whichReel(Session& session, const std::string& name);

} // namespace reeldb::app

#endif
