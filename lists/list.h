// SPDX-License-Identifier: Apache-2.0
//
// Reads cut lists (CMX3600 EDL) and log exchange files (ALE): bytes in, a plain value out. Knows no host, no library
// and no files. docs/formats/edl.md and docs/formats/ale.md say what is understood.
#ifndef REELDB_LISTS_LIST_H
#define REELDB_LISTS_LIST_H

#include <cstddef>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace reeldb::lists {

/// The bytes are not a list. what() is the fact alone, without the file's name: "holds no text".
class Error : public std::runtime_error {
public:
  using std::runtime_error::runtime_error;
};

enum class Format { Edl, Ale };

/// One event line of a cut list, or one row of a log file, that names a source. Every text is UTF-8 of at most 2,047
/// bytes, without control characters (but for U+0080 to U+009F, which Latin-1 may hold) and without outer blanks; an
/// empty text means that the list does not say.
struct Clip {
  std::string reel;                 ///< the reel identifier, never empty, in the spelling the list used first
  std::string clipName;             ///< what the editor calls it
  std::string sourceFile;           ///< as written, a path or a name
  std::string tracks;               ///< as written: "V", "A34", "VA1A2"
  std::string sourceIn, sourceOut;  ///< hh:mm:ss:ff with the separators as written (';' means drop frame)
  std::string recordIn, recordOut;  ///< as above; always empty in a log file
  std::vector<std::string> aliases; ///< other names of this source in the list; each once, ignoring ASCII case
  int line = 0;                     ///< its line, counted from 1
  int videoChannels = 0;
  int audioChannels = 0;
};

/// Clips that name no reel (black, colour bars, generated pictures ...): one entry for each text and reason.
struct Special {
  std::string text;       ///< the text in place of the reel, shown as in Rejected
  std::string reason;     ///< why that is not a reel
  int count = 0;          ///< the number of event lines or rows
  std::vector<int> lines; ///< their numbers
};

/// A line that could not be read. The rest of the list is not affected.
struct Rejected {
  int line = 0;     ///< counted from 1
  std::string text; ///< without outer blanks, tabs as blanks, other controls as \x1b; cut after 1,000 bytes with "..."
  std::string reason; ///< what is wrong, with the offending value
};

/// A line that was read and is in the list, but has a questionable value.
struct Warning {
  int line = 0;       ///< counted from 1
  std::string text;   ///< as in Rejected
  std::string reason; ///< what is odd, and what was made of it
};

/// Two spellings that differ only in ASCII case: the same reel. One entry for each further spelling.
struct Spelling {
  std::string reel;  ///< the spelling used first, which all clips carry
  std::string other; ///< the further one
};

/// A name that means more than one source. The clips keep the name; this entry reports that it is ambiguous.
struct Ambiguous {
  std::string reel;                   ///< the identifier
  std::string reason;                 ///< how it comes to stand for several
  std::vector<std::string> names;     ///< the longer names that a cut name fits; empty when the name is clear
  std::vector<std::string> sourceIds; ///< the sources it stands for, as the list numbers them; may be empty
};

/// Where the lines went. blank + headers + notes + statements + clips + (the sum of Special::count) + rejected = lines.
struct Tally {
  int lines = 0;
  int blank = 0;
  int headers = 0;    ///< title, frame code mode and the like before the first event; headings, sections and columns
  int notes = 0;      ///< lines with a star
  int statements = 0; ///< M2, FCM, AUD, >>> SOURCE and the like
};

struct List {
  Format format = Format::Edl;
  std::string title;              ///< of a cut list, shown as in Rejected; empty when it has none
  std::vector<Clip> clips;        ///< in the order of their lines
  std::vector<Special> specials;  ///< in the order of first appearance, as all that follow
  std::vector<Rejected> rejected; ///< in the order of their lines
  std::vector<Warning> warnings;  ///< likewise
  std::vector<Spelling> spellings;
  std::vector<Ambiguous> ambiguous;
  Tally tally;
};

/// The longest name a clip can carry, in bytes: as much as a reel's fields give back whole.
inline constexpr std::size_t kNameBytes = 2047;

/// Detects the format by the content; empty if it is neither. Takes text in UTF-8, UTF-16 with a byte order mark, or
/// Latin-1.
std::optional<Format> detect(std::string_view bytes);

/// Reads a list. Bad lines are in the value, never thrown. Throws Error when the bytes are neither format, or are a log
/// file without the sections and columns it takes to read any row. Works in time and space linear in the size.
List read(std::string_view bytes);

} // namespace reeldb::lists

#endif
