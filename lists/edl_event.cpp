// SPDX-License-Identifier: Apache-2.0
#include "lists/edl_event.h"

#include <algorithm>
#include <span>
#include <utility>

#include "base/ascii.h"
#include "base/number.h"
#include "lists/names.h"
#include "lists/text.h"

namespace reeldb::lists {
namespace {

/// Far more lines than any event has. The limit keeps the work small when all lines of a list have the same number.
constexpr std::size_t mostLines = 16;

enum class Role { From, To, Key };

Role roleOf(Transition transition)
{
  switch (transition) {
  case Transition::Cut:
  case Transition::Background:
    return Role::From;
  case Transition::Into:
    return Role::To;
  case Transition::Key:
    return Role::Key;
  }
  return Role::From;
}

/// The lines from first up to last, without last itself, and the notes for them.
struct Side {
  Role role = Role::From;
  std::string_view reel;
  std::size_t first = 0;
  std::size_t last = 0;
  std::string clipName, sourceFile, reelNote, otherReel;

  /// Whether the reel is a placeholder such as black or bars, which has neither a clip name nor a file.
  bool isPlaceholder() const { return !placeholderReason(reel).empty(); }
};

using Texts = std::vector<std::string>;
using Field = std::string Side::*;

std::vector<Side> sidesOf(std::span<const EventSource> sources)
{
  std::vector<Side> sides;
  for (std::size_t i = 0; i < sources.size(); ++i) {
    const EventLine& fields = sources[i].fields;
    const Role role = roleOf(fields.transition);
    if (sides.empty() || sides.back().role != role || !base::sameName(sides.back().reel, fields.reel)) {
      Side side;
      side.role = role;
      side.reel = fields.reel;
      side.first = i;
      sides.push_back(std::move(side));
    }
    sides.back().last = i + 1;
  }
  return sides;
}

/// The notes of one kind in the order of their lines, and the number of those that were dealt out.
struct Pile {
  Texts texts;
  std::size_t next = 0;

  std::string take() { return next < texts.size() ? texts[next++] : std::string(); }
};

struct Piles {
  Pile fromName, toName, keyName, fromFile, toFile;
  Texts sourceFiles, reels;
  std::vector<std::pair<std::string, std::string>> reelIsClip;
  Texts alsoCalled;
  std::string tracks, noTimecode, frameRate;
};

Piles sorted(std::vector<Note>& notes)
{
  Piles piles;
  for (Note& note : notes) {
    switch (note.kind) {
    case NoteKind::FromClipName:
      piles.fromName.texts.push_back(std::move(note.value));
      break;
    case NoteKind::ToClipName:
      piles.toName.texts.push_back(std::move(note.value));
      break;
    case NoteKind::KeyClipName:
      piles.keyName.texts.push_back(std::move(note.value));
      break;
    case NoteKind::FromFile:
      piles.fromFile.texts.push_back(std::move(note.value));
      break;
    case NoteKind::ToFile:
      piles.toFile.texts.push_back(std::move(note.value));
      break;
    case NoteKind::SourceFile:
      piles.sourceFiles.push_back(std::move(note.value));
      break;
    case NoteKind::Reel:
      piles.reels.push_back(std::move(note.value));
      break;
    case NoteKind::ReelIsClip:
      piles.reelIsClip.emplace_back(std::move(note.reel), std::move(note.value));
      break;
    case NoteKind::AlsoCalled:
      piles.alsoCalled.push_back(std::move(note.value));
      break;
    case NoteKind::Tracks:
      piles.tracks = std::move(note.value);
      break;
    case NoteKind::NoTimecode:
      piles.noTimecode = std::move(note.value);
      break;
    case NoteKind::FrameRate:
      piles.frameRate = std::move(note.value);
      break;
    case NoteKind::ReelMap:   // it belongs to the list, not to the event
    case NoteKind::EventLine: // it says where other notes belong
    case NoteKind::Other:
      break;
    }
  }
  return piles;
}

/// Gives each side the note of its role, then the remaining notes to the sides that got none.
void dealByRole(std::vector<Side>& sides, Field field, Pile from, Pile to, Pile key)
{
  for (Side& side : sides) {
    Pile& own = side.role == Role::From ? from : side.role == Role::To ? to : key;
    std::string text = own.take();
    if ((side.*field).empty())
      side.*field = std::move(text);
  }
  for (Side& side : sides) {
    for (Pile* pile : {&from, &to, &key}) {
      if ((side.*field).empty() && !side.isPlaceholder())
        side.*field = pile->take();
    }
  }
}

/// Moves the clip name of a placeholder such as black to the side without a clip name, for which it is meant.
void passNamesOn(std::vector<Side>& sides)
{
  const auto named = std::find_if(sides.begin(), sides.end(), [](const Side& side) {
    return side.isPlaceholder() && !side.clipName.empty() && placeholderReason(side.clipName).empty();
  });
  const auto nameless = std::find_if(sides.begin(), sides.end(),
                                     [](const Side& side) { return !side.isPlaceholder() && side.clipName.empty(); });
  if (named != sides.end() && nameless != sides.end())
    nameless->clipName = std::exchange(named->clipName, std::string());
}

/// Whether a note that could belong to any side does not belong to this one, given that there are fewer notes than
/// sides: a placeholder has no notes, and neither has a side without a clip name if another side has one.
bool isSkipped(const Side& side, const std::vector<Side>& sides)
{
  const auto isNamed = [](const Side& other) { return !other.clipName.empty(); };
  return side.isPlaceholder() || (side.clipName.empty() && std::any_of(sides.begin(), sides.end(), isNamed));
}

/// Deals texts out to the sides in order. An empty text is dealt out, too: it means that the side has no such text.
void dealInOrder(std::vector<Side>& sides, Field field, const Texts& texts)
{
  const bool enough = texts.size() >= sides.size();
  std::size_t next = 0;
  for (Side& side : sides) {
    if (next == texts.size())
      return;
    if (!enough && !texts[next].empty() && isSkipped(side, sides))
      continue;
    side.*field = texts[next++];
  }
}

/// As dealInOrder(), but a single REEL note that is the longer form of exactly one side's reel goes to that side.
void dealReelNotes(std::vector<Side>& sides, const Texts& texts)
{
  if (texts.size() == 1 && !texts.front().empty()) {
    const auto isLonger = [&](const Side& side) { return base::startsWithName(texts.front(), side.reel); };
    if (std::count_if(sides.begin(), sides.end(), isLonger) == 1) {
      std::find_if(sides.begin(), sides.end(), isLonger)->reelNote = texts.front();
      return;
    }
  }
  dealInOrder(sides, &Side::reelNote, texts);
}

/// Whether two sides have the same source: the same reel, and for AX also the same clip name.
bool sameSource(const Side& a, const Side& b)
{
  return base::sameName(a.reel, b.reel) && (!isAuxiliary(a.reel) || base::sameName(a.clipName, b.clipName));
}

void share(std::vector<Side>& sides, Field field)
{
  for (Side& side : sides) {
    if (!(side.*field).empty())
      continue;
    const auto other = std::find_if(sides.begin(), sides.end(),
                                    [&](const Side& s) { return !(s.*field).empty() && sameSource(s, side); });
    if (other != sides.end())
      side.*field = (*other).*field;
  }
}

/// Deals the notes out to the lines.
void deal(std::span<EventSource> sources, std::vector<Note>& notes)
{
  std::vector<Side> sides = sidesOf(sources);
  Piles piles = sorted(notes);
  Texts otherReels, isClips;
  for (auto& [reel, clip] : piles.reelIsClip) {
    otherReels.push_back(std::move(reel));
    isClips.push_back(std::move(clip));
  }

  dealByRole(sides, &Side::clipName, std::move(piles.fromName), std::move(piles.toName), std::move(piles.keyName));
  passNamesOn(sides);
  dealInOrder(sides, &Side::otherReel, otherReels);
  if (std::all_of(sides.begin(), sides.end(), [](const Side& side) { return side.clipName.empty(); }))
    dealInOrder(sides, &Side::clipName, isClips);
  dealReelNotes(sides, piles.reels);
  dealInOrder(sides, &Side::sourceFile, piles.sourceFiles);
  dealByRole(sides, &Side::sourceFile, std::move(piles.fromFile), std::move(piles.toFile), Pile());
  share(sides, &Side::reelNote);
  share(sides, &Side::sourceFile);

  for (const Side& side : sides) {
    for (std::size_t i = side.first; i < side.last; ++i) {
      sources[i].clipName = side.clipName;
      sources[i].sourceFile = side.sourceFile;
      sources[i].reelNote = side.reelNote;
      sources[i].otherReel = side.otherReel;
      sources[i].alsoCalled = piles.alsoCalled;
      sources[i].tracks = piles.tracks;
      sources[i].noTimecode = piles.noTimecode;
      sources[i].frameRate = piles.frameRate;
    }
  }
}

/// The line that an EVENT LINE note for an event of this number of lines means, from 0; empty if there is no such line.
std::optional<std::size_t> lineOf(const Note& note, std::size_t lines)
{
  std::string_view rest = note.value;
  const std::optional<int> line = base::parseNumber(takeFirst(rest));
  if (!base::sameName(takeFirst(rest), "OF"))
    return std::nullopt;
  const std::optional<int> count = base::parseNumber(rest);
  if (!line || !count || *line < 1 || *line > *count || static_cast<std::size_t>(*count) != lines)
    return std::nullopt;
  return static_cast<std::size_t>(*line) - 1;
}

} // namespace

bool EdlEvent::takes(const EventLine& fields) const
{
  if (sources_.empty() || divided_ || sources_.size() == mostLines || sources_.back().fields.number != fields.number)
    return false;
  if (fields.transition != Transition::Cut)
    return true;
  const EventLine& above = sources_.back().fields;
  return !noted_ && above.transition == Transition::Cut && base::sameName(above.reel, fields.reel) &&
         above.timecodes[2] == fields.timecodes[2];
}

void EdlEvent::add(int line, std::string_view text, const EventLine& fields)
{
  EventSource source;
  source.line = line;
  source.isFirst = sources_.empty();
  source.text = text;
  source.fields = fields;
  sources_.push_back(std::move(source));
}

void EdlEvent::note(Note note)
{
  noted_ = true;
  if (note.kind == NoteKind::EventLine) {
    const std::optional<std::size_t> line = lineOf(note, sources_.size());
    if (!line)
      return;
    divided_ = true;
    at_ = *line;
    notes_.resize(sources_.size());
  } else if (note.kind != NoteKind::Other) {
    notes_[at_].push_back(std::move(note));
  }
}

bool EdlEvent::speed(const SpeedLine& line)
{
  const std::span<EventSource> lines = divided_ ? std::span(&sources_[at_], 1) : std::span(sources_);
  const auto takes = [&](const EventSource& source) {
    return !source.speed && base::sameName(source.fields.reel, line.reel);
  };
  auto found = std::find_if(lines.begin(), lines.end(), [&](const EventSource& source) {
    return takes(source) && source.fields.timecodes[0] == line.speed.timecode;
  });
  if (found == lines.end())
    found = std::find_if(lines.begin(), lines.end(), takes);
  if (found == lines.end())
    return false;
  found->speed = line.speed;
  return true;
}

std::vector<EventSource> EdlEvent::finish()
{
  if (divided_) {
    for (std::size_t i = 0; i < sources_.size(); ++i)
      deal({&sources_[i], 1}, notes_[i]);
  } else {
    deal(sources_, notes_[0]);
  }
  return std::exchange(*this, EdlEvent()).sources_;
}

} // namespace reeldb::lists
