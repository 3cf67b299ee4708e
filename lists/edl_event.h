// SPDX-License-Identifier: Apache-2.0
//
// One event of a cut list: a line, or the two lines of a dissolve, a wipe or a key, and the notes below them, which
// have to be dealt out to the lines.
#ifndef REELDB_LISTS_EDL_EVENT_H
#define REELDB_LISTS_EDL_EVENT_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "lists/edl_line.h"
#include "lists/edl_note.h"
#include "lists/speed.h"

namespace reeldb::lists {

/// An event line with the notes that belong to it. The texts of notes are clean; the text of a missing note is empty.
struct EventSource {
  int line = 0;
  bool isFirst = false;  ///< whether the event begins with it
  std::string_view text; ///< the whole line
  EventLine fields;
  std::optional<Speed> speed;
  std::string clipName;
  std::string sourceFile;
  std::string reelNote;                ///< * REEL:
  std::string otherReel;               ///< * REEL x IS CLIP y: the x; y is the clip name if no other note gives one
  std::vector<std::string> alsoCalled; ///< * REEL ALSO CALLED:
  std::string tracks;                  ///< * TRACKS AS WRITTEN:
  std::string noTimecode;              ///< * NO TIMECODE:
  std::string frameRate;               ///< * FRAME RATE:
};

class EdlEvent {
public:
  bool empty() const { return sources_.empty(); }

  /// Whether the line belongs to this event: it has the same number, and is either a dissolve, wipe or key line, or a
  /// cut from the same reel with the same record in, directly below a cut (picture and sound of one event). After an
  /// EVENT LINE note the event has all its lines.
  bool takes(const EventLine& fields) const;
  void add(int line, std::string_view text, const EventLine& fields);
  void note(Note note);
  /// Gives the speed to the line of its reel: the one with that source in, else the first one without a speed. Below an
  /// EVENT LINE note it is for that line alone. Returns false if the event has no such line.
  bool speed(const SpeedLine& line);

  /// Returns the lines in order, with their notes, and empties the event.
  ///
  /// Lines of one role and one reel that follow each other form a side. FROM CLIP NAME names the side it comes from
  /// (cut, K B), TO CLIP NAME the side dissolved or wiped to, KEY CLIP NAME the key. A side without a name of its own
  /// takes a remaining name, or the one that black cannot use. SOURCE FILE and REEL notes go to the sides in order; a
  /// single note is for the first side, unless that is black or only the second side has a clip name. Sides of the
  /// same reel share a source file and a REEL note; AX sides do so only when they are the same clip.
  ///
  /// The notes that this program writes (REEL ALSO CALLED, TRACKS AS WRITTEN, NO TIMECODE, FRAME RATE) hold for every
  /// line. If it writes EVENT LINE, each line has the notes below its own, as if it were an event by itself.
  std::vector<EventSource> finish();

private:
  std::vector<EventSource> sources_;
  std::vector<std::vector<Note>> notes_{1}; ///< one vector for all lines, or one per line if the event is divided
  std::size_t at_ = 0;                      ///< the vector that notes go to
  bool divided_ = false;                    ///< whether an EVENT LINE note came
  bool noted_ = false;                      ///< whether the event has a note of any kind
};

} // namespace reeldb::lists

#endif
