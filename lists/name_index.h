// SPDX-License-Identifier: Apache-2.0
//
// The reel of a name, as it follows from all names of a project together and from what people decided, never from the
// order in which they came. docs/formats/names.md has the rules in prose.
#ifndef REELDB_LISTS_NAME_INDEX_H
#define REELDB_LISTS_NAME_INDEX_H

#include <cstddef>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace reeldb::lists {

/// How a name leads to its reel.
enum class Match {
  Itself,      ///< it is the name of the reel
  Decided,     ///< a person said so
  SourceId,    ///< a source id of the name is one of the reel
  SameName,    ///< it is the same name in another spelling
  OtherEnding, ///< it is the same name with another ending of the same kind
  NoEnding,    ///< it is the same name, and one of both has no ending
  Cut,         ///< it fills its field, and is the cut form of the only reel that it may be
};

/// "itself", "decided", "source-id", "same-name", "other-ending", "no-ending", "cut"
std::string_view wordOf(Match match);

/// The rules that join names.
enum class NameRules {
  All,
  Exact, ///< what a person decided, and the same name; source ids only keep reels apart
};

/// What a clip says of its source. Texts are UTF-8, without outer blanks.
struct NameUse {
  std::string_view name;
  bool mayBeCut = false; ///< whether it fills the field of its list, and no other text of the list proves it whole
  std::string_view sourceId = {}; ///< empty if the list gives none
  std::string_view clipName = {}; ///< matters only if the name may be cut
};

/// The reel of a name.
struct ReelOfName {
  std::string reel; ///< the identifier: the whole name of the reel in one of its spellings
  Match match = Match::Itself;
  std::vector<std::string> perhaps;   ///< reels that the name may mean, sorted; empty if its reel is clear
  std::vector<std::string> clipNames; ///< longer clip names that begin with a name that may be cut, sorted, each once
};

/// Joins names to reels. All uses are added first, then settle() works the reels out, then find() is asked.
///
/// The index owns copies of all texts. settle() takes time O(n log n) in the number of different names, find() constant
/// time on average and one comparison per name that may be meant. Not safe for use by several threads before settle().
class NameIndex {
public:
  explicit NameIndex(NameRules rules = NameRules::All) : rules_(rules) {}

  /// Adds a use of a name. Equal uses may be added any number of times. An empty name is ignored.
  /// REQUIRES: settle() was not called.
  void add(const NameUse& use);

  /// Notes that a person decided that the name is that reel: its own reel, if both are equal. No rule joins two reels
  /// that are decided, no rule parts what is decided, and no short form follows a name that is decided to be its own
  /// reel. REQUIRES: settle() was not called; a name is decided once.
  void decide(std::string_view name, std::string_view reel);

  /// Notes that a person gave a reel this name: the name is whole and names its reel, and no rule joins two reels that
  /// have such names. Short forms follow it. A name with several source ids is several reels nevertheless.
  /// REQUIRES: settle() was not called.
  void nameReel(std::string_view name);

  /// Works the reels out. To be called once.
  void settle();

  /// The reel of a name that was added. A name with several source ids is several reels; then the id decides. A name
  /// that was not added is a reel of its own. REQUIRES: settle() was called.
  ReelOfName find(std::string_view name, std::string_view sourceId = {}) const;

private:
  /// A name, ignoring ASCII case, and what its uses say.
  struct Name {
    std::string spelling; ///< the first of its spellings by their bytes
    std::string form;     ///< nameForm()
    bool whole = false;   ///< whether a use is whole
    bool bare = false;    ///< whether a use has no source id
    bool given = false;   ///< whether a person gave it to a reel
    std::set<std::string> ids, clipNames;
    std::optional<std::size_t> target; ///< the name of the reel that it is decided to be
    std::vector<std::size_t> sources;  ///< indexes; several if the name has several source ids
  };
  /// A name with one source id at most: what is joined.
  struct Source {
    std::size_t name = 0;
    std::string id;
    Match match = Match::Itself;
    std::size_t reel = 0;             ///< the source that names its reel
    std::vector<std::size_t> perhaps; ///< sources of the reels that it may be
  };
  friend class NameJoiner; ///< settles; in name_index.cpp

  std::size_t indexOf(std::string_view name);
  std::string identifierOf(std::size_t source) const;
  /// The reels of these sources, sorted, each once, without @p own.
  std::vector<std::string> reelsOf(const std::vector<std::size_t>& sources, const std::string& own) const;

  NameRules rules_;
  std::vector<Name> names_;
  std::vector<Source> sources_;
  std::unordered_map<std::string, std::size_t> byName_; ///< folded name: its index
};

} // namespace reeldb::lists

#endif
