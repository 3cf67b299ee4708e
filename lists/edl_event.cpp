// SPDX-License-Identifier: Apache-2.0
#include "lists/edl_event.h"

#include <algorithm>
#include <utility>

#include "base/ascii.h"
#include "lists/names.h"
#include "lists/text.h"

namespace reeldb::lists {
namespace {

/// Far more than any event has; keeps the dealing cheap when a list gives all its lines one number.
constexpr std::size_t kMostLines = 16;

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

/// What the notes say of the lines first to last (not included).
struct Side {
  Role role = Role::From;
  std::string_view reel;
  std::size_t first = 0;
  std::size_t last = 0;
  std::string clipName, sourceFile, reelNote, otherReel;

  /// Black, bars: it has no clip name and no file.
  bool isPlaceholder() const { return !placeholderReason(reel).empty(); }
};

using Texts = std::vector<std::string>;
using Field = std::string Side::*;

std::vector<Side> sidesOf(const std::vector<EventSource>& sources)
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

/// The notes of one kind in the order they came, and how many are dealt out.
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
  std::string tracks, noTimecode;
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
    case NoteKind::ReelMap: // it is the list's, not the event's
    case NoteKind::Other:
      break;
    }
  }
  return piles;
}

/// Gives each side the notes of its role, then what is left to the sides that went without.
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

/// A name given to black is meant for the side that has none.
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

/// Whether a note that could be for any side is not for this one: there are too few for all, and this is black, or the
/// side that nothing was said about while another has a name.
bool passesOver(const Side& side, const std::vector<Side>& sides)
{
  const auto isNamed = [](const Side& other) { return !other.clipName.empty(); };
  return side.isPlaceholder() || (side.clipName.empty() && std::any_of(sides.begin(), sides.end(), isNamed));
}

/// Deals texts out to the sides in order. An empty text holds its place: the list says that this side has none.
void dealInOrder(std::vector<Side>& sides, Field field, const Texts& texts)
{
  const bool enough = texts.size() >= sides.size();
  std::size_t next = 0;
  for (Side& side : sides) {
    if (next == texts.size())
      return;
    if (!enough && !texts[next].empty() && passesOver(side, sides))
      continue;
    side.*field = texts[next++];
  }
}

/// As dealInOrder(), but a REEL note that is the longer form of one side's reel alone goes to that side.
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

/// Sides of the same reel are the same source, but for AX, where only the same clip is.
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

} // namespace

bool EdlEvent::takes(const EventLine& fields) const
{
  if (sources_.empty() || sources_.size() == kMostLines || sources_.back().fields.number != fields.number)
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
  source.text = text;
  source.fields = fields;
  sources_.push_back(std::move(source));
}

void EdlEvent::note(Note note)
{
  noted_ = true;
  if (note.kind != NoteKind::Other)
    notes_.push_back(std::move(note));
}

std::vector<EventSource> EdlEvent::finish()
{
  std::vector<Side> sides = sidesOf(sources_);
  Piles piles = sorted(notes_);
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
      sources_[i].clipName = side.clipName;
      sources_[i].sourceFile = side.sourceFile;
      sources_[i].reelNote = side.reelNote;
      sources_[i].otherReel = side.otherReel;
      sources_[i].alsoCalled = piles.alsoCalled;
      sources_[i].tracks = piles.tracks;
      sources_[i].noTimecode = piles.noTimecode;
    }
  }
  notes_.clear();
  noted_ = false;
  return std::exchange(sources_, {});
}

} // namespace reeldb::lists
