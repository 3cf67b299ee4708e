// SPDX-License-Identifier: Apache-2.0
//
// The names of the open project as one index: which reel a name is, and what changes when names come. For the sources
// of this room.
#ifndef REELDB_APP_PROJECT_NAMES_H
#define REELDB_APP_PROJECT_NAMES_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "app/decisions.h"
#include "app/names.h"
#include "app/new_reel_types.h"
#include "app/session.h"
#include "app/shots.h"
#include "host/cookie.h"
#include "lists/list.h"
#include "lists/name_index.h"

namespace reeldb::app {

/// A shot and its log.
struct KnownShot {
  Cookie log;
  Shot shot;
};

/// Reads the project once. Names of lists are added, then the index is settled, then it is asked.
class ProjectNames {
public:
  /// @p merged: reels that a person has joined with others. Their names are decided to be those; moveShots() moves all
  /// of their shots there and deletes their records.
  explicit ProjectNames(Session& session, lists::NameRules rules = lists::NameRules::All,
                        const std::vector<std::string>& merged = {});

  void add(const lists::Clip& clip);
  /// Adds a name that a person asks for. It may be cut if it fills any field.
  void add(const std::string& name);
  /// Takes what a list says today of a shot that was made before names were kept: its names and texts are those of the
  /// clip, and moveShots() gives it the reel of that name.
  void adopt(std::size_t place, const lists::Clip& clip);
  /// Takes the name of a shot, which no list gave it, for one that may be cut, if it fills the reel field of any list.
  void assumeCut(std::size_t place);
  void settle();

  /// The reel of a clip's name, in the spelling of its record if it has one. REQUIRES: settle() was called.
  NamedReel find(const lists::Clip& clip) const;
  NamedReel find(const std::string& name, const std::string& sourceId = {}) const;

  /// Gives reels and shots of the project the reels that follow from all names: the reel of a short form takes the
  /// whole name or joins its reel, and shots of a short form that is no longer clear go to a reel of their own. A shot
  /// that lists know by names of several reels becomes several, and shots that become the same are joined. A reel that
  /// this leaves without a shot is deleted if imports alone made and changed it. A shot that does not lie where its
  /// names put it stays there. Returns what moved. REQUIRES: settle() was called.
  std::vector<ReelMove> moveShots();

  /// The shots of the project in the order of creation, as they were when it was read and as moveShots() left them.
  const std::vector<KnownShot>& shots() const { return shots_; }
  /// The same, for the caller to change them. The names are asked as before.
  std::vector<KnownShot> takeShots() { return std::move(shots_); }
  /// What the shots of the project say of the reels that have a record, by the numbers of their logs. REQUIRES: before
  /// moveShots().
  std::unordered_map<std::int64_t, TypeEvidence> uses() const;
  /// Whether a record has the identifier, ignoring ASCII case.
  bool hasRecord(const std::string& id) const;
  /// Whether the names of the shot put it where it lies. Else a person or another program put it there.
  bool liesByNames(const Shot& shot) const;
  /// The keys by which lists know the shot: its own, and if a person put it into its reel, also those that its names
  /// would give it.
  std::vector<std::string> keysOf(const Shot& shot) const;
  /// Whether a person deleted this shot of the reel, which lists do not bring back.
  bool isDeleted(const Shot& shot) const;

  /// Whether a person decided what a list means by a name.
  bool readsLists() const { return !inLists_.empty(); }
  /// Lets the clips of a list name their sources as a person decided. @p list is its number, or 0 if the project does
  /// not keep it. REQUIRES: before they are added.
  void read(std::int64_t list, const reelhost::Digest& bytes, std::vector<lists::Clip>& clips) const;
  /// Makes the name a reel that no short form means. REQUIRES: settle() was not called.
  void setApart(const std::string& reel) { index_.decide(reel, reel); }

private:
  struct Record {
    std::string id;
    Cookie log;
    std::vector<std::string> oldNames;
    Decisions decisions;
  };

  NamedReel named(const std::string& name, const lists::ReelOfName& found) const;
  /// The record's spelling of a reel of the index; the reel itself without a record.
  std::string spelt(const std::string& reel) const;
  void addNames(const Shot& shot);
  void addNamesOfProject();
  void decideNames();
  /// The record whose spelling the reel of the index has, if any: one that is in use, which cannot be renamed; one of
  /// that very name; the first one whose name is not a short form.
  std::optional<std::size_t> keeperOf(const std::string& reel, const std::vector<std::size_t>& records);
  friend class ShotMover; ///< moves shots; in shot_mover.cpp

  Session& session_;
  std::vector<Record> records_;
  std::vector<KnownShot> shots_;
  std::vector<std::size_t> adopted_; ///< places of shots
  lists::NameIndex index_;
  std::unordered_map<std::string, std::vector<std::size_t>> recordsOf_; ///< folded reel of the index: its records
  std::unordered_map<std::string, std::string> names_;                  ///< folded reel of the index: its name here
  std::unordered_set<std::string> ids_;                                 ///< folded identifiers of the records
  std::unordered_map<std::string, std::size_t> byId_;                   ///< the records by folded identifier
  std::unordered_map<std::string, std::string> inLists_; ///< list, by its number or bytes, and folded name: the name
  ///< that it means
  std::unordered_set<std::string> merged_; ///< those of the reels that are joined
};

} // namespace reeldb::app

#endif
