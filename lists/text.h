// SPDX-License-Identifier: Apache-2.0
//
// Text as list files hold it: lines, blanks, control characters.
#ifndef REELDB_LISTS_TEXT_H
#define REELDB_LISTS_TEXT_H

#include <cstddef>
#include <string>
#include <string_view>

namespace reeldb::lists {

/// Splits a text into lines that end with CR, LF or CRLF, whichever comes; they may be mixed. NUL, end marks (0x1A) and
/// form feeds at either end of a line are padding, which goes.
class Lines {
public:
  explicit Lines(std::string_view text) : rest_(text) {}
  /// False at the end. The line comes without its end; views the text.
  bool next(std::string_view& line);
  /// The number of the line that next() gave last, counted from 1.
  int number() const { return number_; }

private:
  std::string_view rest_;
  int number_ = 0;
};

/// Blank or tab.
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

/// The text clean and as base::displayText shows it, cut between two characters with "..." when it has more bytes than
/// this.
std::string shortened(std::string_view text, std::size_t bytes);

/// The number of bytes that are shown of a line, a title or a special.
inline constexpr std::size_t kShownBytes = 1000;

/// A piece of the list as a reason shows it: shortened to 40 bytes, in quotes.
std::string inQuotes(std::string_view text);

/// Takes the first or the last run of non-blanks off the text, and the blanks around it. Empty when there is none.
std::string_view takeFirst(std::string_view& text);
std::string_view takeLast(std::string_view& text);

/// The number of code points.
std::size_t length(std::string_view text);

} // namespace reeldb::lists

#endif
