// SPDX-License-Identifier: Apache-2.0
//
// Imports the clips of lists into the open project.
#ifndef REELDB_APP_IMPORT_H
#define REELDB_APP_IMPORT_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "app/list_files.h"
#include "app/list_versions.h"
#include "app/names.h"
#include "app/progress.h"
#include "app/session.h"

namespace reeldb::app {

/// What the project now keeps of an imported list.
enum class Keeping {
  NotKept,   ///< nothing: its store keeps no lists
  New,       ///< a further list
  Unchanged, ///< what it kept before, because the list has these very bytes
  NewVersion ///< the list in the place of what was kept before
};

/// "no", "new", "unchanged", "new version"
std::string_view wordOf(Keeping keeping);

/// Reels that were given a type other than the project's default.
struct TypedReels {
  std::string type;
  std::vector<std::string> reels; ///< identifiers
};

/// A reel whose type follows from further shots.
struct TypeChange {
  std::string reel, from, to;
};

/// What a row of a table, or an object of JSON, changed in a field of a reel.
struct RowChange {
  int line = 0; ///< of the row
  std::string reel, field, before, after;
};

/// The result for one list.
struct ImportedList {
  std::string file;
  lists::List list; ///< as it was read, without the clips; its spellings also name those that differ from a record's
  std::size_t clips = 0;
  std::size_t shotsAdded = 0;
  std::size_t shotsThere = 0;       ///< clips whose shot already existed, from another list or earlier in this one
  std::size_t shotsLeftOut = 0;     ///< clips whose shot a person deleted
  std::size_t shotsRepeated = 0;    ///< the part of shotsThere whose shot came earlier in this list
  std::vector<std::string> created; ///< identifiers of the reels that were created, in order
  std::vector<TypedReels> types;    ///< of the created reels, those with a type by rule or by choice
  std::vector<std::string> matched; ///< identifiers of reels that existed before, as their records spell them
  std::vector<NamedReel> names;     ///< the names of its sources, each once, in the order of the list
  std::vector<RowChange> changes;   ///< of fields, in the order of the rows
  std::size_t reelsOfFiles = 0;     ///< the number of reels that its sources have by the name of their file alone
  Keeping keeping = Keeping::NotKept;
  std::int64_t keptAs = 0;             ///< the number of the kept list; 0: it is not kept
  VersionDifference difference;        ///< of a new version from the version before
  bool replacesNothing = false;        ///< a version was to be replaced, but no list has this file name or title
  std::optional<std::int64_t> earlier; ///< a kept list of this file name or title, in whose place this one was not put

  bool changesProject() const; ///< whether the import of this list changes the project
};

/// A file that an import left out, because it cannot be read.
struct SkippedFile {
  std::string file;
  std::string reason;
};

/// The sums over all lists and files of an import.
struct ImportTotals {
  std::size_t lists = 0, listsNew = 0, listsReplaced = 0, listsUnchanged = 0;
  std::size_t clips = 0, shotsAdded = 0;
  std::size_t shotsThere = 0, shotsRepeated = 0; ///< before the list, and earlier in the same list
  std::size_t reelsCreated = 0, reelsChanged = 0;
  std::size_t warnings = 0, rejected = 0; ///< lines
  std::size_t skipped = 0;                ///< files
};

/// The result for all lists.
struct ImportReport {
  std::vector<ImportedList> lists;
  std::vector<SkippedFile> skipped; ///< filled by the caller that read the files
  bool dryRun = false;
  bool changes = false;                  ///< whether the lists contain anything new
  bool stored = false;                   ///< whether that was stored
  std::vector<std::string> remarks;      ///< why the new reels are doubtful; each "subject: fact (cause)"
  std::vector<std::string> reelsRemoved; ///< identifiers of reels that only replaced versions named
  std::vector<Shot> shotsRemoved;        ///< shots that only replaced versions used
  std::vector<ReelMove> moves;           ///< shots of the project that the names of the lists gave another reel
  std::vector<TypeChange> typeChanges;   ///< reels of the project that the shots of the lists gave another type

  ImportTotals totals() const;
  bool isIncomplete() const; ///< whether a line of any list was rejected, or a file skipped
};

/// Throws Error (Invalid) unless each title of a table is mapped to a title that tables have, or to a field of a reel.
void requireMeanings(const lists::TitleMap& titles);

/// Which kept lists an import replaces.
struct Replacing {
  bool byName = false;                  ///< those of the file name, or else of the title, of an imported list
  std::optional<std::string> list = {}; ///< this one, as requireList reads it; for an import of one list
};

/// A name of the imported lists that is another source than in the project.
struct OtherReel {
  std::string name; ///< the reel text or the name of clips; empty: the only name in the lists
  std::string reel; ///< the identifier that the source gets
};

/// How an import treats what it reads.
struct Treatment {
  /// How the names of the lists are matched. NameRules::Exact moves no shot of the project; it does not keep what it
  /// decides, so a later import by all rules may join these names.
  lists::NameRules rules = lists::NameRules::All;
  /// The type of all reels that the import makes; empty: the rules of the facility decide, then the project's default.
  std::optional<std::string> type = {};
  /// Names that are other sources than in the project.
  std::vector<OtherReel> others = {};
};

/// Reports every new clip to the host as imported material; the library creates the reels. The reel of a clip follows
/// from all names of the project and of the lists; shots of the project that get another reel by them are moved first.
/// Two shots are the same if reel (ignoring ASCII case), clip name, source in, source out and tracks are equal; the
/// same shot is not added twice. The project keeps each list with its bytes and its events. A list whose bytes it keeps
/// already is not kept twice, and its clips are the shots that they became then, whatever their reels are called now. A
/// list that is replaced gives its place to the new version; clips that are in both keep their shots. Shots and reels
/// that only the old version named, and that imports alone made and changed, are deleted. A clip of one of the other
/// reels of the treatment is of that new reel, now and in later versions of its list. A shot that a person moved is the
/// same shot still, and one that a person deleted does not come back. The import is one transaction. A new reel gets
/// the type that the treatment or a rule of the facility says, and the channels of that type. A reel of the project
/// that imports alone made and changed gets another type if its type followed from its shots and all of its shots now
/// say another one; its record is made again, because the library removes no channels. Then the reels that tables and
/// JSON have rows of get their fields, and are created if they do not exist; a table without a clip is not kept, nor is
/// one that brings nothing new. With @p dryRun nothing is stored, and the report contains what would be stored. If it
/// throws Error, nothing is stored: NotFound for a type that the catalogue does not have; Invalid or Refused for one of
/// the other reels if no clip has its name, if the reel exists, or if the project keeps the list already. REQUIRES: a
/// session for writing, unless it is a dry run.
ImportReport importLists(Session& session, std::vector<ListFile> files, bool dryRun, const Progress& progress = {},
                         const Replacing& replacing = {}, const Treatment& treatment = {});

} // namespace reeldb::app

#endif
