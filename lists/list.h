// SPDX-License-Identifier: Apache-2.0
//
// Reads cut lists (CMX3600 EDL), log exchange files (ALE), timelines (OTIO, xmeml, FCPXML), tables (CSV) and the JSON
// of this program: bytes in, a plain value out. It uses neither the host nor the library nor files. docs/formats/
// describes what is understood of each format.
#ifndef REELDB_LISTS_LIST_H
#define REELDB_LISTS_LIST_H

#include <array>
#include <cstddef>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace reeldb::lists {

/// The bytes are not a list. what() is the fact alone, without the file's name: "holds no text".
class Error : public std::runtime_error {
public:
  using std::runtime_error::runtime_error;
};

enum class Format { Edl, Ale, Otio, Xmeml, Fcpxml, Json, Sheet };

inline constexpr std::array formats = {Format::Edl,    Format::Ale,  Format::Otio, Format::Xmeml,
                                       Format::Fcpxml, Format::Json, Format::Sheet};

/// "edl", "ale", "otio", "xmeml", "fcpxml", "json", "sheet"
std::string_view wordOf(Format format);

/// The place of a list that gives the name of a clip's source.
enum class NameEvidence {
  ReelMap,      ///< the list's own map
  SourceFile,   ///< the source file of the clip, or the one noted in the source table
  SourceTable,  ///< the longer name in the source table
  ReplacedReel, ///< the statement that a reel was replaced
  ReelNote,     ///< the REEL note
  ClipName,
  CameraRoll, ///< the camera roll of a row without a tape and a source file
  SoundRoll,  ///< the sound roll of a row, for its sound
  ReelText,   ///< the text in the place of the reel: the event's, or the tape of the row
};

/// "reel-map", "source-file", "source-table", "replaced-reel", "reel-note", "clip-name", "camera-roll", "sound-roll",
/// "reel"
std::string_view wordOf(NameEvidence evidence);

/// The kinds of source ids.
inline constexpr std::string_view umidKind = "umid";          ///< a UMID, the same in every list
inline constexpr std::string_view tableKind = "source table"; ///< any other id in the source table of a cut list
inline constexpr std::string_view assetKind = "asset";        ///< the uid of an asset of FCPXML

/// An id that a list gives a source.
struct SourceId {
  std::string kind; ///< umidKind, tableKind or assetKind
  std::string id;   ///< as written
  friend bool operator==(const SourceId&, const SourceId&) = default;
};

/// How fast a source plays: the M2 line of an event. lists/speed.h has its exact value.
struct Speed {
  std::string framesPerSecond; ///< as written: "047.6", "-024.0" (backwards), "000.0" (a freeze frame)
  std::string timecode;        ///< of the source, where the speed begins, as written; may be empty
  friend bool operator==(const Speed&, const Speed&) = default;
};

/// What an event says of the cut. In a log file, a row has a reel text at most.
///
/// The lines of a dissolve, a wipe or a key are clips of their own that follow each other. They have one number and
/// count up from 1 in `part`; the same goes for picture and sound of one event. Each line has its own transition. The
/// picture that the event comes from is a cut, or the background of a key; the one that it goes to has the code and the
/// duration.
struct Event {
  std::string number;        ///< as written: "001", "000012", "012A"
  int part = 1;              ///< the place of the line in its event
  std::string reelText;      ///< the reel field as written; the tape of a row
  std::size_t reelField = 0; ///< the width of the list's reel field, one of paddedReelFields; 0: unknown
  std::string
      transition;       ///< the code in capitals and without blanks: "C" (also if the line has none), "D", "W001", "KB"
  std::string duration; ///< of the transition, in frames; digits as written: "024"
  std::optional<Speed> speed;
  std::vector<SourceId> sourceIds; ///< the ids that the list gives to the reel text, each once
  friend bool operator==(const Event&, const Event&) = default;
};

/// A name that a list gives a source.
struct SourceName {
  std::string name;
  bool mayBeCut = false; ///< whether it may be the beginning of a longer one
  std::string sourceId;  ///< the list's id of the source; may be empty
  friend bool operator==(const SourceName&, const SourceName&) = default;
};

/// One event line of a cut list, or one row of a log file. Every text is UTF-8 of at most 2,047 bytes without outer
/// blanks and without control characters, except for U+0080 to U+009F, which Latin-1 may contain. A text that the list
/// does not give is empty.
struct Clip {
  std::string reel;       ///< the reel identifier, never empty, in the spelling the list used first
  std::string clipName;   ///< the editor's name for it
  std::string sourceFile; ///< as written, a path or a name
  std::string tracks;     ///< as written: "V", "A34", "VA1A2"
  /// hh:mm:ss:ff with the separators as written (';' means drop frame), or frame numbers, both of digits alone
  std::string sourceIn, sourceOut;
  std::string recordIn, recordOut;  ///< hh:mm:ss:ff as above; always empty in a log file
  std::string frameRate;            ///< of its timecodes, as rateName() writes it: "23.98"
  bool dropFrame = false;           ///< whether the list says that its timecodes are drop frame
  std::vector<std::string> aliases; ///< other names of this source in the list; each once, ignoring ASCII case
  int line = 0;                     ///< the number of its line, from 1
  int videoChannels = 0;
  int audioChannels = 0;
  Event event;
  std::string special; ///< why the clip has no source, and `reel` is not a reel: "black"; empty if it has one
  std::string ownName; ///< the name that its list gives its source, if that is not its reel: for a reel text without
                       ///< the ending of its file the file, for a shot whatever its list said; else empty
  NameEvidence evidence = NameEvidence::ReelText; ///< where the name of its source stands
  bool mayBeCut = false;                          ///< whether that name may be the beginning of a longer one
  std::string sourceId;                 ///< the UMID of its source in the source table: it is the same in every list
  std::vector<SourceName> furtherNames; ///< for a shot, what other lists call its source; else empty
  std::string reelOfNames;              ///< for a shot, the reel that its names gave it, if that is not its own name
  std::string cameraRoll;               ///< of a row of a log
  std::string soundOf; ///< for the sound of a row that has a roll of its own, the name of its picture's source
};

/// Clips that name no reel (black, colour bars, generated pictures ...): one entry for each text and reason.
struct Special {
  std::string text;       ///< the text in place of the reel, shown as in Rejected
  std::string reason;     ///< why the text is not a reel
  int count = 0;          ///< the number of event lines or rows
  std::vector<int> lines; ///< the numbers of these lines
};

/// A line that could not be read. The rest of the list is not affected.
struct Rejected {
  int line = 0;       ///< counted from 1
  std::string text;   ///< without outer blanks, tabs as blanks, other controls as \x1b, cut after 1,000 bytes by "..."
  std::string reason; ///< what is wrong, with the offending value
};

/// A line that was read and is in the list, but has a questionable value.
struct Warning {
  int line = 0;       ///< counted from 1
  std::string text;   ///< as in Rejected
  std::string reason; ///< what is odd, and how it was read
};

/// A line that says how timecodes count.
struct Proof {
  std::string says; ///< "23.98", "drop frame", "source in 01:00:00:29"
  int line = 0;     ///< counted from 1
  std::string text; ///< as in Rejected
};

/// What a list says of how its timecodes count.
struct Timing {
  std::vector<Proof> rates;        ///< the rates of its clips, each once and with the first line that says so
  std::optional<Proof> dropFrame;  ///< the first line that says so
  std::optional<Proof> mostFrames; ///< of the timecodes without a rate, the first one with the most frames
  int frames = 0;                  ///< the frames of that one: 29
};

/// Two spellings that differ only in ASCII case: the same reel. One entry for each further spelling.
struct Spelling {
  std::string reel;  ///< the spelling used first, which all clips carry
  std::string other; ///< the further one
};

/// A name that means more than one source. The clips keep the name; this entry reports that it is ambiguous.
struct Ambiguous {
  std::string reel;                   ///< the identifier
  std::string reason;                 ///< why it means more than one source, or may: all clips of the list have it
  std::vector<std::string> names;     ///< the longer names that a cut name fits; empty if the name is not cut
  std::vector<std::string> sourceIds; ///< the list's ids of the sources that it means; may be empty
};

/// The numbers of lines of each kind. Each line is counted in exactly one of these: blank, headers, notes, statements,
/// the clips (a row with a sound roll is two), Special::count of all specials, the rejected lines.
struct Tally {
  int lines = 0;
  int blank = 0;
  int headers = 0;    ///< title, frame code mode and the like before the first event; headings, sections and columns
  int notes = 0;      ///< lines with a star, and markers without one
  int statements = 0; ///< M2, FCM, AUD, >>> SOURCE and the like; rows of reels, and the further lines of a row
  int ignored = 0;    ///< the number of notes and statements, of those above, that no clip keeps
};

/// A value of a reel's field.
struct ReelValue {
  std::size_t field = 0; ///< its place in List::fields
  std::string text;      ///< as written; empty removes the value
  friend bool operator==(const ReelValue&, const ReelValue&) = default;
};

/// A row of a table, or an object of JSON, that gives a reel fields. What it does not have is not to be changed.
struct ReelRow {
  std::string reel; ///< its name, as written
  int line = 0;     ///< counted from 1
  std::string text; ///< as in Rejected
  std::vector<ReelValue> values;
  std::vector<std::string> aliases; ///< further names of the reel
  bool clearsAliases = false;       ///< whether the names that people gave it are to be removed
};

/// A list that JSON holds: the file that it was.
struct InnerList {
  std::string file;
  std::string bytes;
};

struct List {
  Format format = Format::Edl;
  std::string title;              ///< the title of a cut list, shown as in Rejected; empty if it has no title
  std::vector<Clip> clips;        ///< with a source, in the order of their lines
  std::vector<Clip> specialClips; ///< without one, in the order of their lines; counted in specials
  std::vector<Special> specials;  ///< in the order of first appearance, like all below
  std::vector<Rejected> rejected; ///< in the order of their lines
  std::vector<Warning> warnings;  ///< likewise
  std::vector<Spelling> spellings;
  std::vector<Ambiguous> ambiguous;
  std::string headingRate; ///< of a log: the rate in its heading, as rateName() writes it; empty if it gives none
  std::vector<std::string> unread; ///< the headings and the columns with a text that no clip and no reel keeps
  std::vector<std::string> fields; ///< the fields that reels has values of: their names elsewhere, or any titles
  std::vector<ReelRow> reels;      ///< one for each reel, in the order of the first row
  std::vector<InnerList> lists;    ///< of JSON
  Timing timing;
  Tally tally;
  bool holdsProject = false; ///< of JSON: whether it is all that a project keeps, of which the clips are the shots
};

/// The widths of the reel fields that cut lists pad, in characters. A name that fills its field may be cut.
inline constexpr std::array<std::size_t, 5> paddedReelFields = {6, 8, 16, 32, 129};

/// The longest name of a clip, in bytes. A reel's fields return names up to this length whole.
inline constexpr std::size_t nameBytes = 2047;

/// Detects the format by the content; empty if it is neither format. The text may be UTF-8, UTF-16 with a byte order
/// mark, or Latin-1.
std::optional<Format> detect(std::string_view bytes);

/// Titles of columns, and the title or field that each means: "Tape No" and "reel".
using TitleMap = std::vector<std::pair<std::string, std::string>>;

/// How a list is read.
struct ReadOptions {
  bool clipNames = false; ///< whether a clip name that begins with the cut name of a reel is the name of its source
  TitleMap titles = {};   ///< of a table, beside those that are known
};

/// Reads a list. Bad lines are part of the result. Throws Error if the bytes are neither format, or are a log file
/// without the sections and columns that are needed to read any row. Time and space are linear in the size.
List read(std::string_view bytes, const ReadOptions& options = {});

/// The clips of the list, those without a source included, in the order of their lines.
std::vector<Clip> eventsOf(const List& list);

} // namespace reeldb::lists

#endif
