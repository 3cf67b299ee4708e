// SPDX-License-Identifier: Apache-2.0
//
// The notes of a cut list: lines with a star. Some of them name the sources of the event above.
#ifndef REELDB_LISTS_EDL_NOTE_H
#define REELDB_LISTS_EDL_NOTE_H

#include <optional>
#include <string>
#include <string_view>

namespace reeldb::lists {

enum class NoteKind {
  FromClipName,
  ToClipName,
  KeyClipName,
  SourceFile,
  FromFile, ///< FROM FILE, FROM CLIP: a path
  ToFile,   ///< TO FILE, TO CLIP
  Reel,
  ReelIsClip, ///< REEL x IS CLIP y
  ReelMap,    ///< REEL MAP: x = y
  AlsoCalled, ///< REEL ALSO CALLED: another name of the reel
  Tracks,     ///< TRACKS AS WRITTEN
  NoTimecode, ///< NO TIMECODE: which of the four timecodes the event does not have
  FrameRate,  ///< FRAME RATE: of the event, or of all events if the note comes before them
  EventLine,  ///< EVENT LINE: 1 OF 2: the line that the notes below belong to, and the number of lines of the event
  Other,
};

struct Note {
  NoteKind kind = NoteKind::Other;
  std::string value; ///< clean; also empty if the list has (NULL)
  std::string reel;  ///< the x of REEL x IS CLIP y and of REEL MAP: x = y
};

/// Whether the value means that there is no value. Other programs write (NULL) for that.
bool saysNothing(std::string_view value);

/// Whether the line is a note. Blanks may stand before the star.
bool isNote(std::string_view line);

/// Whether the note says that the program that wrote the list had a problem with the event: PROBLEM WITH EDIT.
bool reportsProblem(std::string_view line);

/// Whether the line is a marker of an event, without a star: it has a field such as "|C:" or "|M:", begins with "LOC:",
/// or is a rule of hyphens between markers.
bool isMarker(std::string_view line);

/// Joins notes that were wrapped at column 80 or behind 63 characters of a name, in the middle of a word or between two
/// words.
///
/// A line of 60 columns or more goes on in the next line if that starts with "* ", opens no note of its own, and its
/// first word would not have fitted into 80 columns. If the word had fitted, the writer would not have wrapped the
/// line, so it starts a new note.
class NoteJoiner {
public:
  /// Adds a note line, with its outer blanks. Returns the previous note if it is now complete.
  std::optional<Note> line(std::string_view line);
  /// Returns the last note; to be called at every line that is not a note, and at the end.
  std::optional<Note> flush();

private:
  bool continues(std::string_view text) const;

  std::optional<std::string> open_; ///< the text after the star, with its outer blanks
  std::size_t width_ = 0;           ///< the length of its last line, in characters
  bool isCut_ = false;              ///< whether its last line was cut, so that the next one goes on without a blank
};

} // namespace reeldb::lists

#endif
