// SPDX-License-Identifier: Apache-2.0
#include "lists/edl_note.h"

#include <algorithm>
#include <array>
#include <utility>

#include "base/ascii.h"
#include "lists/text.h"

namespace reeldb::lists {
namespace {

/// Programs that wrap notes fill up to 80 columns.
constexpr std::size_t wrapColumn = 80;

/// Other programs wrap names, whatever stands before them.
constexpr std::size_t wrappedName = 63;

/// A line of fewer columns was ended on purpose, however long the first word of the next line is.
constexpr std::size_t leastWrapped = 60;

constexpr std::array<std::pair<std::string_view, NoteKind>, 14> noteKeys = {{
    {"FROM CLIP NAME", NoteKind::FromClipName},
    {"TO CLIP NAME", NoteKind::ToClipName},
    {"KEY CLIP NAME", NoteKind::KeyClipName},
    {"SOURCE FILE", NoteKind::SourceFile},
    {"FROM FILE", NoteKind::FromFile},
    {"FROM CLIP", NoteKind::FromFile},
    {"TO FILE", NoteKind::ToFile},
    {"TO CLIP", NoteKind::ToFile},
    {"REEL", NoteKind::Reel},
    {"REEL ALSO CALLED", NoteKind::AlsoCalled},
    {"TRACKS AS WRITTEN", NoteKind::Tracks},
    {"NO TIMECODE", NoteKind::NoTimecode},
    {"FRAME RATE", NoteKind::FrameRate},
    {"EVENT LINE", NoteKind::EventLine},
}};

constexpr std::string_view reelMapKey = "REEL MAP";

/// First words of notes that have neither a name nor a colon. Such a note does not continue the one above.
constexpr std::array<std::string_view, 10> openingWords = {
    "ASC_SOP", "ASC_SAT", "BLEND", "COMMENT", "EFFECT", "FREEZE", "LOC", "PATCH", "REEL", "TIMEWARP",
};

std::string_view afterStar(std::string_view line)
{
  line = trimLeft(line);
  line.remove_prefix(1);
  return line;
}

std::string valueOf(std::string_view text)
{
  std::string value = clean(text);
  return saysNothing(value) ? std::string() : value;
}

/// REEL x IS CLIP y, with or without a colon after REEL. @p text starts behind that.
bool readReelIsClip(std::string_view text, Note& note)
{
  constexpr std::string_view middle = " IS CLIP ";
  const auto found = std::search(text.begin(), text.end(), middle.begin(), middle.end(),
                                 [](char a, char b) { return base::toLower(a) == base::toLower(b); });
  if (found == text.end())
    return false;
  const auto at = static_cast<std::size_t>(found - text.begin());
  note.kind = NoteKind::ReelIsClip;
  note.reel = valueOf(text.substr(0, at));
  note.value = valueOf(text.substr(at + middle.size()));
  return true;
}

/// REEL MAP: x = y, where x is a single word and y is the rest of the line.
bool readReelMap(std::string_view text, Note& note)
{
  const std::size_t colon = text.find(':');
  if (colon == std::string_view::npos || !base::sameName(trimRight(text.substr(0, colon)), reelMapKey))
    return false;
  std::string_view rest = text.substr(colon + 1);
  note.reel = clean(takeFirst(rest));
  if (takeFirst(rest) != "=" || rest.empty())
    return false;
  note.kind = NoteKind::ReelMap;
  note.value = clean(rest);
  return true;
}

Note parseNote(std::string_view text)
{
  Note note;
  text = trim(text);
  if (readReelMap(text, note))
    return note;
  note.reel.clear();
  std::string_view rest = text;
  if (base::sameName(takeFirst(rest), "REEL") && readReelIsClip(rest, note))
    return note;
  const std::size_t colon = text.find(':');
  if (colon == std::string_view::npos)
    return note;
  const std::string_view key = trimRight(text.substr(0, colon));
  const auto known =
      std::find_if(noteKeys.begin(), noteKeys.end(), [&](const auto& k) { return base::sameName(k.first, key); });
  if (known == noteKeys.end())
    return note;
  rest = text.substr(colon + 1);
  if (known->second == NoteKind::Reel && readReelIsClip(rest, note))
    return note;
  note.kind = known->second;
  note.value = valueOf(rest);
  return note;
}

/// Whether the text opens a note of its own: a star, a known first word, or capitals up to a colon or an equals sign.
bool opensNote(std::string_view text)
{
  if (text.starts_with('*'))
    return true;
  std::string_view rest = text;
  std::string_view first = takeFirst(rest);
  if (first.ends_with(',') || first.ends_with(':'))
    first.remove_suffix(1);
  if (std::find(openingWords.begin(), openingWords.end(), first) != openingWords.end())
    return true;
  const auto isKeyLetter = [](char c) { return (c >= 'A' && c <= 'Z') || isDigit(c) || c == ' ' || c == '_'; };
  const auto end = std::find_if_not(text.begin(), text.end(), isKeyLetter);
  return end != text.begin() && end != text.end() && (*end == ':' || *end == '=');
}

} // namespace

bool saysNothing(std::string_view value)
{
  return value.empty() || base::sameName(value, "(NULL)");
}

bool isNote(std::string_view line)
{
  return trimLeft(line).starts_with('*');
}

bool isMarker(std::string_view line)
{
  line = trim(line);
  if (base::startsWithName(line, "LOC:") || (!line.empty() && line.find_first_not_of('-') == std::string_view::npos))
    return true;
  for (std::size_t bar = line.find('|'); bar != std::string_view::npos; bar = line.find('|', bar + 1))
    if (bar + 2 < line.size() && isLetter(line[bar + 1]) && line[bar + 2] == ':')
      return true;
  return false;
}

bool reportsProblem(std::string_view line)
{
  return base::startsWithName(trim(afterStar(line)), "PROBLEM WITH EDIT");
}

std::optional<Note> NoteJoiner::line(std::string_view line)
{
  const std::string_view text = afterStar(line);
  const bool goesOn = continues(text);
  std::optional<Note> complete;
  if (!goesOn) {
    complete = flush();
    open_.emplace();
  } else if (!isCut_ && !open_->empty() && !isBlank(open_->back())) {
    *open_ += ' '; // the line above ends with a word, and the blank behind it was dropped
  }
  width_ = length(line);
  std::string_view part = goesOn ? text.substr(1) : text;
  const std::size_t colon = goesOn ? 0 : text.find(':');
  isCut_ = width_ == wrapColumn;
  if (colon != std::string_view::npos) {
    const std::string_view name = goesOn ? part : trimLeft(text.substr(colon + 1));
    const std::string_view full = beginning(name, wrappedName);
    if (length(full) == wrappedName && trim(name.substr(full.size())).empty()) {
      part.remove_suffix(name.size() - full.size());
      isCut_ = true;
    }
  }
  *open_ += part;
  return complete;
}

std::optional<Note> NoteJoiner::flush()
{
  std::optional<Note> note;
  if (open_)
    note = parseNote(*open_);
  open_.reset();
  return note;
}

bool NoteJoiner::continues(std::string_view text) const
{
  if (!open_ || width_ < leastWrapped || !text.starts_with(' ') || trim(text).empty() || opensNote(trim(text)))
    return false;
  std::string_view rest = text;
  return width_ + 1 + length(takeFirst(rest)) > wrapColumn;
}

} // namespace reeldb::lists
