// SPDX-License-Identifier: Apache-2.0
//
// The text of list files: lines, blanks, control characters.
#ifndef REELDB_LISTS_TEXT_H
#define REELDB_LISTS_TEXT_H

#include <cstddef>
#include <string>
#include <string_view>

namespace reeldb::lists {

/// Splits a text into lines that end with CR, LF or CRLF, which may be mixed. NUL, end marks (0x1A) and form feeds at
/// either end of a line are padding and are removed.
class Lines {
public:
  explicit Lines(std::string_view text) : rest_(text) {}
  /// Sets @p line to the next line, without its line end; it views the text. Returns false at the end.
  bool next(std::string_view& line);
  /// The number of the last line from next(), counted from 1.
  int number() const { return number_; }

private:
  std::string_view rest_;
  int number_ = 0;
};

/// The place of the next CR or LF from there on; the size of the text if there is none.
std::size_t lineEnd(std::string_view text, std::size_t from = 0);

/// Whether it is a blank or a tab.
bool isBlank(char c);
bool isDigit(char c);
bool isLetter(char c); ///< ASCII only

std::string_view trimLeft(std::string_view text);
std::string_view trimRight(std::string_view text);
std::string_view trim(std::string_view text);

/// The text with a blank for every tab, without outer blanks.
std::string clean(std::string_view text);

/// The first ASCII control character other than the tab; empty if there is no such character. Control characters of
/// Latin-1 are allowed, because a file may be full of them.
std::string_view firstControl(std::string_view text);

/// The clean text as base::displayText shows it. A text of more bytes than @p bytes is cut between two characters, and
/// "..." is added.
std::string shortened(std::string_view text, std::size_t bytes);

/// A line, a title or a special is shown up to this number of bytes.
inline constexpr std::size_t shownBytes = 1000;

/// A piece of the list in quotes, shortened to 40 bytes, as messages show it.
std::string inQuotes(std::string_view text);

/// Takes the first or the last word off the text, and the blanks around it. Empty if there is no word.
std::string_view takeFirst(std::string_view& text);
std::string_view takeLast(std::string_view& text);

/// The number of code points.
std::size_t length(std::string_view text);

/// The first @p characters code points of the text, or all of it.
std::string_view beginning(std::string_view text, std::size_t characters);

} // namespace reeldb::lists

#endif
