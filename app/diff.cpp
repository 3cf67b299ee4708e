// SPDX-License-Identifier: Apache-2.0
#include "app/diff.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <unordered_set>

#include "ReelDbManager.h"
#include "app/host_errors.h"
#include "app/host_text.h"
#include "app/kept_events.h"
#include "app/list_choice.h"
#include "app/project_names.h"
#include "app/reel_records.h"
#include "app/shot_logs.h"
#include "base/ascii.h"

namespace reeldb::app {

namespace {

/// Whether the shot seems to come from a log, which does not say where it is in a cut.
bool isOfLog(const Shot& shot)
{
  return shot.recordIn.empty() && shot.recordOut.empty();
}

/// The kept list with which each file is compared, if there is one.
using KeptVersions = std::vector<std::optional<reelhost::KeptList>>;

class Comparison {
public:
  /// Lets the clips of lists with a kept version name their sources as a person decided.
  Comparison(Session& session, std::vector<ListFile>& files, const KeptVersions& versions, bool whole,
             lists::NameRules rules)
      : session_(session), names_(session, rules)
  {
    diff_.whole = whole;
    for (std::size_t i = 0; i < files.size(); ++i) {
      std::vector<lists::Clip>& clips = files[i].list.clips;
      names_.read(versions[i] ? versions[i]->number : 0, reelhost::digestOf(files[i].bytes), clips);
      for (const lists::Clip& clip : clips)
        names_.add(clip);
    }
    names_.settle();
    if (rules == lists::NameRules::All)
      diff_.moves = names_.moveShots(); // in memory, as an import would do it
    for (const KnownShot& known : names_.shots())
      for (std::string& key : names_.keysOf(known.shot))
        there_.insert(std::move(key));
  }

  /// Compares the list with its kept version.
  void compare(const lists::List& list, const reelhost::KeptList& kept)
  {
    std::vector<Shot> before, after;
    for (const reelhost::ListEvent& event : reelhost::eventsOfList(kept.number))
      before.push_back(named(clipFrom(event)));
    for (const Shot& clip : list.clips)
      if (Shot shot = named(clip); !isDeleted(shot))
        after.push_back(std::move(shot));
    VersionDifference found = difference(before, after);
    for (const Shot& shot : found.added)
      addReel(noteName(shot));
    const auto move = [](auto& from, auto& to) {
      to.insert(to.end(), std::make_move_iterator(from.begin()), std::make_move_iterator(from.end()));
    };
    move(found.added, diff_.added);
    move(found.gone, diff_.missing);
    move(found.trimmed, diff_.trimmed);
    move(found.changed, diff_.changed);
  }

  void add(const lists::List& list)
  {
    (list.format == lists::Format::Ale ? logs_ : cuts_) = true;
    for (lists::Clip clip : list.clips) {
      const NamedReel name = noteName(clip);
      clip.reel = name.reel;
      addReel(name);
      named_.insert(base::fold(name.reel));
      const std::string key = shotKey(clip);
      if (listed_.insert(key).second && !there_.contains(key) && !isDeleted(clip))
        diff_.added.push_back(clip);
    }
    for (const lists::Spelling& spelling : list.spellings)
      addSpelling({spellingOf(spelling.reel).value_or(spelling.reel), spelling.other});
  }

  ListDiff finish()
  {
    std::unordered_set<std::string> told;
    for (const KnownShot& known : names_.shots()) {
      const Shot& shot = known.shot;
      if (shot.reel.empty() || !(isOfLog(shot) ? logs_ : cuts_))
        continue;
      const bool named = named_.contains(base::fold(shot.reel));
      if ((named || diff_.whole) && !isListed(shot))
        diff_.missing.push_back(shot);
      if (!named && diff_.whole && told.insert(base::fold(shot.reel)).second)
        diff_.goneReels.push_back(spellingOf(shot.reel).value_or(shot.reel));
    }
    return std::move(diff_);
  }

private:
  /// Whether an import would leave the clip out.
  bool isDeleted(const Shot& shot) const { return names_.isDeleted(shot) && !there_.contains(shotKey(shot)); }

  bool isListed(const Shot& shot) const
  {
    const std::vector<std::string> keys = names_.keysOf(shot);
    return std::any_of(keys.begin(), keys.end(), [&](const std::string& key) { return listed_.contains(key); });
  }

  std::optional<std::string> spellingOf(const std::string& id)
  {
    ReelDbRec record = session_.manager().getReelInfo(hostText(id));
    return record.valid() ? std::optional(text(record.reelId())) : std::nullopt;
  }

  /// The clip with the reel of its name.
  Shot named(Shot clip) const
  {
    std::string reel = names_.find(clip).reel;
    if (clip.ownName.empty())
      clip.ownName = std::move(clip.reel);
    clip.reel = std::move(reel);
    return clip;
  }

  NamedReel noteName(const Shot& clip)
  {
    NamedReel name = names_.find(clip);
    if (metNames_.insert(base::fold(name.name) + '\n' + name.sourceId).second)
      diff_.names.push_back(name);
    return name;
  }

  void addReel(const NamedReel& name)
  {
    if (base::sameName(name.reel, name.name))
      addSpelling({name.reel, name.name});
    if (!reels_.insert(base::fold(name.reel)).second || names_.hasRecord(name.reel))
      return;
    if (!candidates_)
      candidates_ = knownNames(session_);
    diff_.newReels.push_back({name.reel, candidates_->find(name.name), name.perhaps});
  }

  void addSpelling(const lists::Spelling& spelling)
  {
    if (spelling.reel != spelling.other && spellings_.insert(spelling.reel + '\0' + spelling.other).second)
      diff_.spellings.push_back(spelling);
  }

  Session& session_;
  ProjectNames names_;
  std::unordered_set<std::string> there_, listed_; ///< the keys of the shots of the project, and of the lists
  std::unordered_set<std::string> reels_;          ///< the folded reels that the lists name
  std::unordered_set<std::string> named_;          ///< those of lists without a kept version
  std::unordered_set<std::string> spellings_;      ///< the spellings that were reported
  bool cuts_ = false, logs_ = false;               ///< whether one of the lists is a cut, a log
  std::unordered_set<std::string> metNames_;
  std::optional<ReelNames> candidates_; ///< gathered for the first new reel
  ListDiff diff_;
};

} // namespace

ListDiff compareLists(Session& session, std::vector<ListFile> files, bool whole, const std::optional<std::string>& as,
                      lists::NameRules rules)
{
  return guarded([&] {
    if (as && (whole || files.size() != 1))
      throw Error(ErrorKind::Invalid, "diff: --as compares one file with one list");
    KeptVersions versions;
    for (const ListFile& file : files)
      versions.push_back(as ? listNamed(*as) : whole ? std::nullopt : versionOf(file, reelhost::digestOf(file.bytes)));
    Comparison comparison(session, files, versions, whole, rules);
    for (std::size_t i = 0; i < files.size(); ++i) {
      if (versions[i])
        comparison.compare(files[i].list, *versions[i]);
      else
        comparison.add(files[i].list);
    }
    ListDiff diff = comparison.finish();
    for (const std::optional<reelhost::KeptList>& version : versions)
      diff.versions.push_back(version ? std::optional(version->number) : std::nullopt);
    for (const ListFile& file : files) {
      diff.files.push_back(file.path);
      for (const lists::Rejected& line : file.list.rejected)
        diff.rejected.push_back({file.path, line});
    }
    return diff;
  });
}

} // namespace reeldb::app
