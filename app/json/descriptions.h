// SPDX-License-Identifier: Apache-2.0
//
// The keys of each result. For json.cpp.
#ifndef REELDB_APP_JSON_DESCRIPTIONS_H
#define REELDB_APP_JSON_DESCRIPTIONS_H

#include <algorithm>
#include <array>
#include <stdexcept>
#include <string_view>

#include "app/alias.h"
#include "app/conflict.h"
#include "app/deletion.h"
#include "app/devices.h"
#include "app/diff.h"
#include "app/export.h"
#include "app/history.h"
#include "app/import.h"
#include "app/json/io.h"
#include "app/kept_lists.h"
#include "app/label_maps.h"
#include "app/merge.h"
#include "app/names.h"
#include "app/names_check.h"
#include "app/needs.h"
#include "app/projects.h"
#include "app/reel_fields.h"
#include "app/reels.h"
#include "app/rename.h"
#include "app/report.h"
#include "app/rolls.h"
#include "app/shot_logs.h"
#include "app/split.h"
#include "app/state.h"
#include "app/types.h"
#include "app/watch.h"

namespace reeldb::lists {

template <class Io, app::json::Like<SourceName> R>
void describe(Io& io, R& name)
{
  io("name", name.name);
  io("may_be_cut", name.mayBeCut);
  io("source_id", name.sourceId);
}

template <class Io, app::json::Like<Clip> R>
void describe(Io& io, R& shot)
{
  for (const app::ShotText& text : app::shotTexts)
    io(text.name, shot.*text.text);
  io("aliases", shot.aliases);
  io("video_channels", shot.videoChannels);
  io("audio_channels", shot.audioChannels);
  io("frame_rate", shot.frameRate);
  io("drop_frame", shot.dropFrame);
  // What has a reel has a name. In the result it is empty if it is the reel.
  if constexpr (Io::writes)
    io("own_name", app::ownNameOf(shot));
  else
    io("own_name", shot.ownName);
  io("own_name_may_be_cut", shot.mayBeCut);
  io("source_id", shot.sourceId);
  io("further_names", shot.furtherNames);
  io("camera_roll", shot.cameraRoll);
  io("sound_of", shot.soundOf);
}

template <class Io, app::json::Like<SourceId> R>
void describe(Io& io, R& id)
{
  io("kind", id.kind);
  io("id", id.id);
}

template <class Io, app::json::Like<Proof> R>
void describe(Io& io, R& proof)
{
  io("says", proof.says);
  io("line", proof.line);
  io("text", proof.text);
}

template <class Io, app::json::Like<Timing> R>
void describe(Io& io, R& timing)
{
  io("frame_rates", timing.rates);
  io.optional("drop_frame", timing.dropFrame);
  io.optional("most_frames", timing.mostFrames);
  io("frames", timing.frames);
}

template <class Io, app::json::Like<Special> R>
void describe(Io& io, R& special)
{
  io("text", special.text);
  io("reason", special.reason);
  io("count", special.count);
  io("lines", special.lines);
}

template <class Io, app::json::Like<Spelling> R>
void describe(Io& io, R& spelling)
{
  io("reel", spelling.reel);
  io("other", spelling.other);
}

template <class Io, app::json::Like<Ambiguous> R>
void describe(Io& io, R& ambiguous)
{
  io("reel", ambiguous.reel);
  io("reason", ambiguous.reason);
  io("names", ambiguous.names);
  io("source_ids", ambiguous.sourceIds);
}

template <class Io, class R>
requires app::json::Like<R, Rejected> || app::json::Like<R, Warning>
void describe(Io& io, R& remark)
{
  io("line", remark.line);
  io("text", remark.text);
  io("reason", remark.reason);
}

template <class Io, app::json::Like<Tally> R>
void describe(Io& io, R& tally)
{
  io("total", tally.lines);
  io("blank", tally.blank);
  io("headers", tally.headers);
  io("notes", tally.notes);
  io("statements", tally.statements);
}

} // namespace reeldb::lists

namespace reeldb::app {

using json::Like;
using json::Value;

/// Reads a word of a fixed set. Throws std::invalid_argument for another word.
template <class Enum, std::size_t size>
Enum fromWord(const Value& json, const std::array<Enum, size>& all)
{
  const auto& word = json.get_ref<const std::string&>();
  for (const Enum one : all)
    if (wordOf(one) == word)
      return one;
  throw std::invalid_argument("unknown word \"" + word + "\"");
}

// --- Reels ---------------------------------------------------------------------------------------

template <class Io, Like<Reel> R>
void describe(Io& io, R& reel)
{
  io("id", reel.id);
  io("type", reel.type);
  io("available", reel.available);
  io("inhibit", reel.inhibit);
  io("label_mapping", reel.labelMapping);
  io("bin", reel.bin);
  io("last_device", reel.lastDevice);
  io("video_channels", reel.videoChannels);
  io("audio_channels", reel.audioChannels);
  // The user fields that are not empty, by number.
  if constexpr (Io::writes) {
    Value fields = Value::object();
    for (std::size_t i = 0; i < userFieldCount; ++i)
      if (!reel.userFields[i].empty())
        fields[std::to_string(i)] = reel.userFields[i];
    io.json()["user_fields"] = std::move(fields);
  } else {
    for (const auto& [number, field] : io.json().at("user_fields").items())
      reel.userFields.at(std::stoul(number)) = field.template get<std::string>();
  }
  io("shots", reel.shots);
}

template <class Io, Like<ReelDetails> R>
void describe(Io& io, R& details)
{
  describe(io, details.reel);
  io("known_type", details.knownType);
  io("live", details.live);
}

template <class Io, Like<CreatedReel> R>
void describe(Io& io, R& created)
{
  describe(io, created.reel);
}

template <class Io, Like<CopiedReel> R>
void describe(Io& io, R& copied)
{
  io("from", copied.from);
  io("to", copied.to);
  io("stored", copied.stored);
  io("reel", copied.reel);
}

template <class Io, Like<LiveReel> R>
void describe(Io& io, R& live)
{
  describe(io, live.reel);
  io("created", live.created);
}

template <class Io, Like<ChangedReel> R>
void describe(Io& io, R& changed)
{
  // One field has another name in reports than elsewhere, because its key must not change.
  const auto renamed = [](std::string_view field, std::string_view from, std::string_view to) {
    return std::string(field == from ? to : field);
  };
  io("id", changed.id);
  if constexpr (Io::writes) {
    Value& json = io.json();
    json["changed"] = Value::array();
    json["unchanged"] = Value::array();
    for (const FieldChange& change : changed.changes) {
      const std::string field = renamed(change.field, "label-map", "label-mapping");
      if (change.changed())
        json["changed"].push_back({{"field", field}, {"from", change.before}, {"to", change.after}});
      else
        json["unchanged"].push_back({{"field", field}, {"value", change.after}});
    }
  } else {
    const auto fieldOf = [&](const Value& change) {
      return renamed(change.at("field").template get_ref<const std::string&>(), "label-mapping", "label-map");
    };
    for (const Value& change : io.json().at("changed"))
      changed.changes.push_back({fieldOf(change), change.at("from"), change.at("to")});
    for (const Value& change : io.json().at("unchanged"))
      changed.changes.push_back({fieldOf(change), change.at("value"), change.at("value")});
  }
}

template <class Io, Like<UserField> R>
void describe(Io& io, R& field)
{
  io("key", field.number);
  io("name", field.display);
  io("stored", field.stored);
  io("default", field.defaultName);
}

template <class Io, Like<Renamed> R>
void describe(Io& io, R& renamed)
{
  io("from", renamed.from);
  io("to", renamed.to);
  io("dry_run", renamed.dryRun);
  io("stored", renamed.stored);
  io("shots", renamed.shots);
}

inline constexpr std::array allMatches = {lists::Match::Itself,   lists::Match::Decided,     lists::Match::SourceId,
                                          lists::Match::SameName, lists::Match::OtherEnding, lists::Match::NoEnding,
                                          lists::Match::Cut};

template <class Io, Like<NamedReel> R>
void describe(Io& io, R& named)
{
  using lists::NameEvidence;
  io("name", named.name);
  io("reel", named.reel);
  if constexpr (Io::writes) {
    io.json()["match"] = lists::wordOf(named.match);
    io.json()["evidence"] = lists::wordOf(named.evidence);
  } else {
    constexpr std::array evidences = {NameEvidence::CameraRoll, NameEvidence::SoundRoll,   NameEvidence::ReelMap,
                                      NameEvidence::SourceFile, NameEvidence::SourceTable, NameEvidence::ReplacedReel,
                                      NameEvidence::ReelNote,   NameEvidence::ClipName,    NameEvidence::ReelText};
    named.match = fromWord(io.json().at("match"), allMatches);
    named.evidence = fromWord(io.json().at("evidence"), evidences);
  }
  io("may_be_cut", named.mayBeCut);
  io("source_id", named.sourceId);
  io("perhaps", named.perhaps);
  io("clip_names", named.clipNames);
}

template <class Io, Like<NeededRoll> R>
void describe(Io& io, R& roll)
{
  io("roll", roll.name);
  io("reels", roll.reels);
  io("shots", roll.shots);
  io("ready", roll.ready);
}

template <class Io, Like<Roll> R>
void describe(Io& io, R& roll)
{
  io("roll", roll.name);
  io("reels", roll.reels);
  io("shots", roll.shots);
}

template <class Io, Like<ReelMove> R>
void describe(Io& io, R& move)
{
  io("from", move.from);
  io("to", move.to);
  io("shots", move.shots);
}

template <class Io, Like<ReelName> R>
void describe(Io& io, R& name)
{
  using lists::Match;
  io("name", name.name);
  if constexpr (Io::writes) {
    io.json()["from"] = wordOf(name.origin);
    io.json()["match"] = lists::wordOf(name.match);
  } else {
    constexpr std::array origins = {NameOrigin::Renamed, NameOrigin::Given, NameOrigin::OneList, NameOrigin::Lists};
    name.origin = fromWord(io.json().at("from"), origins);
    name.match = fromWord(io.json().at("match"), allMatches);
  }
  io("source_id", name.sourceId);
  io("list", name.list);
}

template <class Io, Like<NumberedShot> R>
void describe(Io& io, R& shot)
{
  describe(io, shot.shot);
  io("number", shot.number);
}

template <class Io, Like<ReelAliases> R>
void describe(Io& io, R& aliases)
{
  io("reel", aliases.reel);
  io("dry_run", aliases.dryRun);
  io("stored", aliases.stored);
  io("names", aliases.names);
  io("moved", aliases.moves);
}

template <class Io, Like<LostField> R>
void describe(Io& io, R& lost)
{
  io("reel", lost.reel);
  io("field", lost.field);
  io("value", lost.value);
  io("kept", lost.kept);
}

template <class Io, Like<Split> R>
void describe(Io& io, R& split)
{
  io("from", split.from);
  io("into", split.into);
  io("dry_run", split.dryRun);
  io("stored", split.stored);
  io("moved", split.moves);
}

template <class Io, Like<ShotsMoved> R>
void describe(Io& io, R& moved)
{
  io("to", moved.to);
  io("dry_run", moved.dryRun);
  io("stored", moved.stored);
  io("shots", moved.shots);
  io("moved", moved.moves);
}

template <class Io, Like<ShotsDeleted> R>
void describe(Io& io, R& deleted)
{
  io("dry_run", deleted.dryRun);
  io("stored", deleted.stored);
  io("shots", deleted.shots);
}

template <class Io, Like<Merged> R>
void describe(Io& io, R& merged)
{
  io("from", merged.from);
  io("into", merged.into);
  io("dry_run", merged.dryRun);
  io("stored", merged.stored);
  io("names", merged.names);
  io("different", merged.different);
  io("moved", merged.moves);
}

template <class Io, Like<NamesCheck> R>
void describe(Io& io, R& check)
{
  io("applied", check.applied);
  io("stored", check.stored);
  io("moved", check.moves);
  io("names", check.names);
  io("shots_without_list", check.shotsWithoutList);
}

template <class Io, Like<ReelType> R>
void describe(Io& io, R& type)
{
  io("name", type.name);
  io("video_channels", type.videoChannels);
  io("audio_channels", type.audioChannels);
  io("parameters", type.parameters);
}

// --- Names ---------------------------------------------------------------------------------------

template <class Io, Like<Candidate> R>
void describe(Io& io, R& candidate)
{
  io("reel", candidate.reel);
  if constexpr (Io::writes) {
    Value reasons = Value::array();
    for (const Reason reason : candidate.reasons)
      reasons.push_back(wordOf(reason));
    io.json()["reasons"] = std::move(reasons);
  } else {
    constexpr std::array all = {Reason::Exact, Reason::Case,    Reason::Given, Reason::Cut,
                                Reason::Alias, Reason::OldName, Reason::Form};
    for (const Value& reason : io.json().at("reasons"))
      candidate.reasons.push_back(fromWord(reason, all));
  }
  io("record", candidate.isThere);
}

template <class Io, Like<Need> R>
void describe(Io& io, R& need)
{
  io("id", need.id);
  io("shots", need.shots);
  if constexpr (Io::writes) {
    io("state", need.state());
    io("type", need.reel ? need.reel->type : std::string());
    io("bin", need.reel ? need.reel->bin : std::string());
    io("names", need.names);
    io("candidates", need.candidates);
    io("last_device", need.reel ? need.reel->lastDevice : std::string());
  } else {
    io("names", need.names);
    io("candidates", need.candidates);
    std::string state;
    io("state", state);
    for (const char* trouble : {"missing", "perhaps", "unavailable", "unknown type"})
      if (state.find(trouble) != std::string::npos)
        need.troubles.emplace_back(trouble);
    if (state == "missing" || state == "perhaps")
      return;
    Reel& reel = need.reel.emplace();
    reel.id = need.id;
    reel.available = state.find("unavailable") == std::string::npos;
    io("type", reel.type);
    io("bin", reel.bin);
    io("last_device", reel.lastDevice);
  }
}

template <class Io, Like<NameMeaning> R>
void describe(Io& io, R& meaning)
{
  io("name", meaning.name);
  if constexpr (Io::writes) {
    const Candidate* const one = theOne(meaning.candidates);
    io.json()["reel"] = one ? Value(one->reel) : Value(nullptr);
    io("candidates", meaning.candidates);
    for (std::size_t i = 0; i < meaning.shots.size(); ++i)
      io.json()["candidates"][i]["shots"] = meaning.shots[i];
    io("as_list", meaning.asList);
  } else {
    io("candidates", meaning.candidates);
    for (const Value& candidate : io.json().at("candidates"))
      meaning.shots.push_back(candidate.at("shots"));
    io("as_list", meaning.asList);
  }
}

// --- Lists ---------------------------------------------------------------------------------------

template <class Io, Like<ClipStep> R>
void describe(Io& io, R& step)
{
  io("from", step.before);
  io("to", step.after);
}

template <class Io, Like<VersionDifference> R>
void describe(Io& io, R& difference)
{
  io("added", difference.added);
  io("gone", difference.gone);
  io("trimmed", difference.trimmed);
  io("changed", difference.changed);
}

template <class Io, Like<TypedReels> R>
void describe(Io& io, R& typed)
{
  io("type", typed.type);
  io("reels", typed.reels);
}

template <class Io, Like<RowChange> R>
void describe(Io& io, R& change)
{
  io("line", change.line);
  io("reel", change.reel);
  io("field", change.field);
  io("from", change.before);
  io("to", change.after);
}

template <class Io, Like<ImportedList> R>
void describe(Io& io, R& imported)
{
  auto& list = imported.list;
  io("file", imported.file);
  if constexpr (Io::writes) {
    io.json()["format"] = lists::wordOf(list.format);
  } else {
    list.format = fromWord(io.json().at("format"), lists::formats);
  }
  io("title", list.title);
  io("clips", imported.clips);
  io("shots_added", imported.shotsAdded);
  if constexpr (Io::writes) {
    io("shots_there", imported.shotsThere - imported.shotsRepeated);
    io("shots_repeated", imported.shotsRepeated);
    io("shots_left_out", imported.shotsLeftOut);
  } else {
    io("shots_there", imported.shotsThere);
    io("shots_repeated", imported.shotsRepeated);
    io("shots_left_out", imported.shotsLeftOut);
    imported.shotsThere += imported.shotsRepeated;
  }
  io("created", imported.created);
  io("types", imported.types);
  io("matched", imported.matched);
  io("names", imported.names);
  io("reel_changes", imported.changes);
  io("reels_of_files", imported.reelsOfFiles);
  io("special", list.specials);
  io("spellings", list.spellings);
  io("ambiguous", list.ambiguous);
  io("unread", list.unread);
  io("warnings", list.warnings);
  io("rejected", list.rejected);
  io("lines", list.tally);
  io("timing", list.timing);
  if constexpr (Io::writes) {
    io.json()["kept"] = wordOf(imported.keeping);
    io.json()["list"] = imported.keptAs == 0 ? Value(nullptr) : Value(imported.keptAs);
  } else {
    imported.keeping = fromWord(io.json().at("kept"),
                                std::array{Keeping::NotKept, Keeping::New, Keeping::Unchanged, Keeping::NewVersion});
    if (const Value& number = io.json().at("list"); !number.is_null())
      imported.keptAs = number;
  }
  io("difference", imported.difference);
  io.optional("earlier_list", imported.earlier);
}

template <class Io, Like<KeptList> R>
void describe(Io& io, R& list)
{
  io("number", list.number);
  io("file", list.file);
  io("title", list.title);
  io("format", list.format);
  io("events", list.events);
}

template <class Io, Like<ListUse> R>
void describe(Io& io, R& use)
{
  auto& event = use.clip.event;
  io("number", event.number);
  io("part", event.part);
  io("line", use.clip.line);
  describe(io, use.clip);
  io("special", use.clip.special);
  io("reel_text", event.reelText);
  io("reel_field", event.reelField);
  io("transition", event.transition);
  io("duration", event.duration);
  if constexpr (Io::writes) {
    io.json()["speed"] = event.speed ? Value(event.speed->framesPerSecond) : Value(nullptr);
    io.json()["speed_timecode"] = event.speed ? Value(event.speed->timecode) : Value(nullptr);
  } else if (const Value& speed = io.json().at("speed"); !speed.is_null()) {
    event.speed = lists::Speed{speed, io.json().at("speed_timecode")};
  }
  io("source_ids", event.sourceIds);
  io("reel_now", use.reel);
}

template <class Io, Like<ListEvents> R>
void describe(Io& io, R& found)
{
  io("list", found.list);
  io("events", found.events);
}

template <class Io, Like<RemovedList> R>
void describe(Io& io, R& removed)
{
  io("list", removed.list);
  io("dry_run", removed.dryRun);
  io("stored", removed.stored);
  io("reels", removed.reels);
  io("shots", removed.shots);
}

template <class Io, Like<TypeChange> R>
void describe(Io& io, R& change)
{
  io("reel", change.reel);
  io("from", change.from);
  io("to", change.to);
}

template <class Io, Like<SkippedFile> R>
void describe(Io& io, R& skipped)
{
  io("file", skipped.file);
  io("reason", skipped.reason);
}

template <class Io, Like<ImportTotals> R>
void describe(Io& io, R& totals)
{
  io("lists", totals.lists);
  io("lists_new", totals.listsNew);
  io("lists_replaced", totals.listsReplaced);
  io("lists_unchanged", totals.listsUnchanged);
  io("clips", totals.clips);
  io("shots_added", totals.shotsAdded);
  io("shots_there", totals.shotsThere);
  io("shots_repeated", totals.shotsRepeated);
  io("reels_created", totals.reelsCreated);
  io("reels_changed", totals.reelsChanged);
  io("warnings", totals.warnings);
  io("rejected", totals.rejected);
  io("skipped", totals.skipped);
}

template <class Io, Like<ImportReport> R>
void describe(Io& io, R& report)
{
  io("dry_run", report.dryRun);
  io("stored", report.stored);
  io("files", report.lists);
  io("reels_removed", report.reelsRemoved);
  io("shots_removed", report.shotsRemoved);
  io("moved", report.moves);
  io("type_changes", report.typeChanges);
  io("skipped", report.skipped);
  if constexpr (Io::writes)
    io.json()["totals"] = json::write(report.totals());
  else
    report.changes = std::any_of(report.lists.begin(), report.lists.end(),
                                 [](const ImportedList& imported) { return imported.changesProject(); }) ||
                     !report.moves.empty();
}

template <class Io, Like<NewReel> R>
void describe(Io& io, R& reel)
{
  io("reel", reel.id);
  io("candidates", reel.candidates);
  io("perhaps", reel.perhaps);
}

template <class Io, Like<RejectedLine> R>
void describe(Io& io, R& rejected)
{
  io("file", rejected.file);
  describe(io, rejected.line);
}

template <class Io, Like<ListDiff> R>
void describe(Io& io, R& diff)
{
  io("files", diff.files);
  if constexpr (Io::writes)
    io.json()["equal"] = diff.empty();
  io("reels_new", diff.newReels);
  if constexpr (Io::writes) {
    io.json()["reels_gone"] = diff.whole ? json::write(diff.goneReels) : Value(nullptr);
  } else {
    diff.whole = !io.json().at("reels_gone").is_null();
    if (diff.whole)
      io("reels_gone", diff.goneReels);
  }
  io("spellings", diff.spellings);
  io("names", diff.names);
  io("moved", diff.moves);
  io("shots_added", diff.added);
  io("shots_gone", diff.missing);
  io("rejected", diff.rejected);
  io("shots_trimmed", diff.trimmed);
  io("shots_changed", diff.changed);
  if constexpr (Io::writes) {
    io.json()["versions"] = Value::array();
    for (const std::optional<std::int64_t>& version : diff.versions)
      io.json()["versions"].push_back(version ? Value(*version) : Value(nullptr));
  } else {
    for (const Value& version : io.json().at("versions"))
      diff.versions.push_back(version.is_null() ? std::nullopt : std::optional<std::int64_t>(version));
  }
}

/// A whole number. Other numbers would be rounded in silence.
template <class Io, class T>
void whole(Io& io, const char* key, T& number)
{
  if constexpr (!Io::writes)
    if (!io.json().at(key).is_number_integer())
      throw std::invalid_argument(std::string(key) + " is not a whole number");
  io(key, number);
}

/// An object, and beside it an array of the keys that are not UTF-8, if there are any.
template <class Io, class T>
void keyTexts(Io& io, const char* key, T& texts)
{
  const std::string others = std::string(key) + "_in_bytes";
  if constexpr (Io::writes) {
    Value named = Value::object(), unnamed = Value::array();
    for (const auto& [name, text] : texts)
      if (utf8::is_valid(name))
        named[name] = json::bytesJson(text);
      else
        unnamed.push_back({{"key", json::bytesJson(name)}, {"text", json::bytesJson(text)}});
    io.json()[key] = std::move(named);
    if (!unnamed.empty())
      io.json()[others] = std::move(unnamed);
  } else {
    for (const auto& [name, text] : io.json().at(key).template get_ref<const Value::object_t&>())
      texts.emplace_back(name, json::bytesFrom(text));
    if (io.json().contains(others))
      for (const Value& entry : io.json().at(others).template get_ref<const Value::array_t&>())
        texts.emplace_back(json::bytesFrom(entry.at("key")), json::bytesFrom(entry.at("text")));
  }
}

template <class Io, Like<LogState> R>
void describe(Io& io, R& log)
{
  whole(io, "number", log.number);
  io("id", log.id);
  whole(io, "tag", log.tag);
  io.bytes("kind", log.kind);
  whole(io, "type", log.type);
  io("imported", log.imported);
  io("entire_medium", log.entireMedium);
  io.bytes("name", log.name);
  io.bytes("reel_type", log.reelType);
  whole(io, "video_channels", log.videoChannels);
  whole(io, "audio_channels", log.audioChannels);
  keyTexts(io, "keys", log.keys);
}

template <class Io, class T>
void bytesArray(Io& io, const char* key, T& texts)
{
  if constexpr (Io::writes) {
    Value array = Value::array();
    for (const std::string& text : texts)
      array.push_back(json::bytesJson(text));
    io.json()[key] = std::move(array);
  } else {
    for (const Value& text : io.json().at(key).template get_ref<const Value::array_t&>())
      texts.push_back(json::bytesFrom(text));
  }
}

template <class Io, Like<EventState> R>
void describe(Io& io, R& event)
{
  whole(io, "shot", event.shot);
  whole(io, "line", event.clip.line);
  for (const ShotText& text : shotTexts)
    io.bytes(text.name, event.clip.*text.text);
  bytesArray(io, "aliases", event.clip.aliases);
  whole(io, "video_channels", event.clip.videoChannels);
  whole(io, "audio_channels", event.clip.audioChannels);
  io.bytes("frame_rate", event.clip.frameRate);
  io("drop_frame", event.clip.dropFrame);
  io.bytes("own_name", event.clip.ownName);
  io("own_name_may_be_cut", event.clip.mayBeCut);
  io.bytes("source_id", event.clip.sourceId);
  io.bytes("camera_roll", event.clip.cameraRoll);
  io.bytes("sound_of", event.clip.soundOf);
  io.bytes("special", event.clip.special);
  io.bytes("number", event.clip.event.number);
  whole(io, "part", event.clip.event.part);
  io.bytes("reel_text", event.clip.event.reelText);
  whole(io, "reel_field", event.clip.event.reelField);
  io.bytes("transition", event.clip.event.transition);
  io.bytes("duration", event.clip.event.duration);
  auto& speed = event.clip.event.speed;
  if constexpr (Io::writes) {
    io.json()["speed"] = speed ? json::bytesJson(speed->framesPerSecond) : Value(nullptr);
    io.json()["speed_timecode"] = speed ? json::bytesJson(speed->timecode) : Value(nullptr);
    Value ids = Value::array();
    for (const lists::SourceId& id : event.clip.event.sourceIds)
      ids.push_back({{"kind", json::bytesJson(id.kind)}, {"id", json::bytesJson(id.id)}});
    io.json()["source_ids"] = std::move(ids);
  } else {
    if (const Value& written = io.json().at("speed"); !written.is_null())
      speed = lists::Speed{json::bytesFrom(written), json::bytesFrom(io.json().at("speed_timecode"))};
    for (const Value& id : io.json().at("source_ids").template get_ref<const Value::array_t&>())
      event.clip.event.sourceIds.push_back({json::bytesFrom(id.at("kind")), json::bytesFrom(id.at("id"))});
  }
}

template <class Io, Like<ListState> R>
void describe(Io& io, R& list)
{
  whole(io, "number", list.number);
  io.bytes("file", list.file);
  io.bytes("title", list.title);
  io.bytes("format", list.format);
  io.bytes("content", list.content);
  io("events", list.events);
}

template <class Io, Like<ProjectState> R>
void describe(Io& io, R& state)
{
  constexpr int knownVersion = 1;
  if constexpr (Io::writes) {
    io.json()["state_version"] = knownVersion;
  } else {
    if (!io.json().contains("state_version"))
      throw std::invalid_argument("it has no state; reeldb export --json without --reels writes one");
    if (io.json().at("state_version") != knownVersion)
      throw std::invalid_argument("its state_version is " + io.json().at("state_version").dump() + ", not " +
                                  std::to_string(knownVersion));
  }
  io("project_id", state.id);
  whole(io, "frame_rate_code", state.frameRateCode);
  whole(io, "output_frame_rate_code", state.outputFrameRateCode);
  keyTexts(io, "options", state.options);
  io("logs", state.logs);
  io("lists", state.lists);
}

template <class Io, Like<ProjectContent> R>
void describe(Io& io, R& content)
{
  io("project", content.project);
  io("frame_rate", content.rate);
  io("reels", content.reels);
  if constexpr (Io::writes) {
    for (std::size_t i = 0; i < content.reels.size(); ++i)
      io.json()["reels"][i]["old_names"] = content.oldNames[i];
    if (!content.reelsOnly)
      io("shots", content.shots);
    if (content.state)
      describe(io, *content.state);
  } else {
    for (const Value& reel : io.json().at("reels"))
      json::read(reel.at("old_names"), content.oldNames.emplace_back());
    content.reelsOnly = !io.json().contains("shots");
    if (!content.reelsOnly)
      io("shots", content.shots);
    if (io.json().contains("state_version"))
      describe(io, content.state.emplace());
  }
  io.optional("history", content.history);
}

// --- Deletions -----------------------------------------------------------------------------------

/// The only reason to keep a reel.
inline constexpr const char* whyKept = "--keep";

template <class Io, Like<DeletionPlan::Item> R>
void describe(Io& io, R& item)
{
  io("id", item.reel);
  io("kept", item.kept);
  if constexpr (Io::writes)
    if (item.kept)
      io.json()["why"] = whyKept;
  io("shots", item.shots);
}

template <class Io, Like<DeletionPlan> R>
void describe(Io& io, R& plan)
{
  io("dry_run", plan.dryRun);
  if constexpr (Io::writes) {
    std::vector<std::string> deleted, kept;
    for (const DeletionPlan::Item& item : plan.items)
      (item.kept ? kept : deleted).push_back(item.reel);
    io("deleted", deleted);
    io("shots", plan.shotCount());
    io("kept", kept);
  }
  io("reels", plan.items);
}

template <class Io, Like<Undeleted> R>
void describe(Io& io, R& undeleted)
{
  io("reels", undeleted.reels);
  io("shots", undeleted.shots);
}

// --- History -------------------------------------------------------------------------------------

template <class Io, Like<FieldStep> R>
void describe(Io& io, R& step)
{
  io("field", step.field);
  io("before", step.before);
  io("after", step.after);
}

template <class Io, Like<CommitEntry> R>
void describe(Io& io, R& commit)
{
  io("revision", commit.revision);
  io("time", commit.time);
  io("program", commit.program);
  io("command", commit.command);
  io("user", commit.user);
  io("machine", commit.machine);
  io("folder", commit.folder);
  io("takes_back", commit.takesBack);
  io("redo", commit.isRedo);
  io("taken_back_by", commit.takenBackBy);
  io("created", commit.created);
  io("changed", commit.changed);
  io("deleted", commit.deleted);
  io("elsewhere", commit.elsewhere);
  io("fields", commit.fields);
  io("lists", commit.lists);
  io("options", commit.options);
}

template <class Io, Like<FieldConflict> R>
void describe(Io& io, R& conflict)
{
  io("id", conflict.id);
  io("field", conflict.field);
  io("expected", conflict.expected);
  io("found", conflict.found);
  io.optional("commit", conflict.commit);
}

template <class Io, Like<ProjectHistory> R>
void describe(Io& io, R& history)
{
  io.optional("reel", history.reel);
  io("commits", history.commits);
}

template <class Io, Like<KeptDeletion> R>
void describe(Io& io, R& deletion)
{
  io("commit", deletion.commit);
  io("reels", deletion.reels);
  io("shots", deletion.shots);
}

template <class Io, Like<ReportedList> R>
void describe(Io& io, R& use)
{
  io("list", use.list);
  io("events", use.events);
  io("clips", use.clips);
}

template <class Io, Like<ReportedReel> R>
void describe(Io& io, R& reel)
{
  io("need", reel.need);
  io("uses", reel.uses);
}

template <class Io, Like<ReelReport> R>
void describe(Io& io, R& report)
{
  io("project", report.project);
  io("frame_rate", report.rate);
  io("time", report.time);
  io.optional("list", report.list);
  io("reels", report.reels);
}

template <class Io, Like<TakenBackCommit> R>
void describe(Io& io, R& result)
{
  io("commit", result.commit);
  io("redo", result.isRedo);
  io("revision", result.revision);
  io("reels_restored", result.reelsRestored);
  io("reels_removed", result.reelsRemoved);
  io("shots_restored", result.shotsRestored);
  io("shots_removed", result.shotsRemoved);
  io("changed", result.logsChanged);
  io("lists", result.lists);
  io("lists_restored", result.listsRestored);
  io("lists_removed", result.listsRemoved);
  io("options", result.options);
}

template <class Io, Like<Compacted> R>
void describe(Io& io, R& compacted)
{
  io("gone", compacted.gone);
  io("lists", compacted.lists);
  io.optional("revisions", compacted.revisions);
}

// --- The facility --------------------------------------------------------------------------------

template <class Io, Like<Device> R>
void describe(Io& io, R& device)
{
  io("number", device.number);
  io("name", device.name);
  io("port", device.port);
  io("input", device.input);
  io("audio_inputs", device.audioInputs);
  io("tapes", device.tapes);
  io("label_map", device.labelMap);
  io("last_reel", device.lastReel);
}

template <class Io, Like<Verdict> R>
void describe(Io& io, R& verdict)
{
  io("id", verdict.reel.id);
  io("type", verdict.reel.type);
  io("accepted", verdict.accepted);
  io("why", verdict.why);
}

template <class Io, Like<LabelMap> R>
void describe(Io& io, R& map)
{
  io("name", map.name);
  if constexpr (Io::writes) {
    io.json()["uses_vitc"] = map.fault.empty() ? Value(map.usesVitc) : Value(nullptr);
    io.json()["fits_project"] = map.fault.empty() ? Value(map.fitsProject) : Value(nullptr);
  } else if (!io.json().contains("fault")) {
    io("uses_vitc", map.usesVitc);
    io("fits_project", map.fitsProject);
  }
  io.optional("fault", map.fault);
}

template <class Io, Like<LabelMapCheck> R>
void describe(Io& io, R& check)
{
  describe(io, check.map);
  io.optional("why", check.why);
  io.optional("device", check.device);
  if (check.device)
    io("fits_device", check.fitsDevice);
}

template <class Io, Like<NeededLabelMap> R>
void describe(Io& io, R& needed)
{
  io.optional("reel", needed.reel);
  io("device", needed.device);
  io("label_map", needed.map);
  io.optional("fault", needed.fault);
}

template <class Io, Like<Project> R>
void describe(Io& io, R& project)
{
  io("name", project.name);
  io("default", project.isDefault);
  io("rate", project.rate);
  io("rate_code", project.rateCode);
  io.optional("fault", project.fault);
}

template <class Io, Like<ProjectRate> R>
void describe(Io& io, R& rate)
{
  io("project", rate.project);
  io("rate", rate.rate);
  io("rate_code", rate.rateCode);
  io("before", rate.before);
  io("stored", rate.stored);
}

template <class Io, Like<Backup> R>
void describe(Io& io, R& backup)
{
  io("project", backup.project);
  io("file", backup.file);
}

template <class Io, Like<ProjectCheck> R>
void describe(Io& io, R& check)
{
  io("project", check.project);
  if constexpr (Io::writes)
    io.json()["sound"] = check.problems.empty();
  io("problems", check.problems);
}

template <class Io, Like<Revisions> R>
void describe(Io& io, R& revisions)
{
  io("first", revisions.first);
  io("last", revisions.last);
}

template <class Io, Like<ReelEvent> R>
void describe(Io& io, R& event)
{
  using What = ReelEvent::What;
  if constexpr (Io::writes) {
    io.json()["what"] = wordOf(event.what);
  } else {
    constexpr std::array all = {What::New, What::Changed, What::Gone, What::Renamed, What::Database};
    event.what = fromWord(io.json().at("what"), all);
  }
  io("reel", event.reel);
  if (event.what == What::Renamed)
    io("from", event.from);
  if constexpr (Io::writes) {
    if (event.what == What::Changed)
      io("fields", event.fields);
  } else if (io.json().contains("fields")) {
    io("fields", event.fields);
  }
  io.optional("commit", event.commit);
  io.optional("forgotten", event.forgotten);
}

} // namespace reeldb::app

#endif
