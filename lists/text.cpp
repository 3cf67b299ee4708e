// SPDX-License-Identifier: Apache-2.0
#include "lists/text.h"

#include <algorithm>

#include "base/ascii.h"
#include "base/display_text.h"

namespace reeldb::lists {
namespace {

constexpr std::string_view blanks = " \t";

/// The characters with which devices pad records and files: NUL, the end mark, the form feed, and blanks among them.
constexpr std::string_view padding("\0\x1A\f \t", 5);

/// The line without padding at its ends; blanks next to the text stay.
std::string_view withoutPadding(std::string_view line)
{
  const std::size_t first = line.find_first_not_of(padding);
  if (first == std::string_view::npos)
    return {};
  const std::size_t start = line.substr(0, first).find_last_not_of(blanks) + 1; // npos + 1 is 0
  const std::size_t end = line.find_first_not_of(blanks, line.find_last_not_of(padding) + 1);
  return line.substr(start, end == std::string_view::npos ? end : end - start);
}

} // namespace

bool Lines::next(std::string_view& line)
{
  if (rest_.empty())
    return false;
  const std::size_t end = lineEnd(rest_);
  line = withoutPadding(rest_.substr(0, end));
  rest_.remove_prefix(end);
  if (rest_.starts_with("\r\n"))
    rest_.remove_prefix(2);
  else if (!rest_.empty())
    rest_.remove_prefix(1);
  ++number_;
  return true;
}

std::size_t lineEnd(std::string_view text, std::size_t from)
{
  // A search for one character is many times as fast as one for several. The windows keep it linear in texts that have
  // one of the two alone.
  constexpr std::size_t window = 4096;
  for (; from < text.size(); from += window) {
    const std::string_view part = text.substr(from, window);
    const std::string_view line = part.substr(0, part.find('\n'));
    const std::size_t end = std::min(line.find('\r'), line.size());
    if (end < part.size())
      return from + end;
  }
  return text.size();
}

bool isBlank(char c)
{
  return c == ' ' || c == '\t';
}

bool isDigit(char c)
{
  return c >= '0' && c <= '9';
}

bool isLetter(char c)
{
  return base::toUpper(c) >= 'A' && base::toUpper(c) <= 'Z';
}

std::string_view trimLeft(std::string_view text)
{
  while (!text.empty() && isBlank(text.front()))
    text.remove_prefix(1);
  return text;
}

std::string_view trimRight(std::string_view text)
{
  while (!text.empty() && isBlank(text.back()))
    text.remove_suffix(1);
  return text;
}

std::string_view trim(std::string_view text)
{
  return trimLeft(trimRight(text));
}

std::string clean(std::string_view text)
{
  std::string result(trim(text));
  std::replace(result.begin(), result.end(), '\t', ' ');
  return result;
}

std::string_view firstControl(std::string_view text)
{
  const auto found = std::find_if(text.begin(), text.end(), [](char c) {
    const auto byte = static_cast<unsigned char>(c);
    return (byte < 0x20 && c != '\t') || byte == 0x7F;
  });
  return text.substr(static_cast<std::size_t>(found - text.begin()), 1);
}

std::string inQuotes(std::string_view text)
{
  constexpr std::size_t quotedBytes = 40;
  return std::string("'").append(shortened(text, quotedBytes)).append("'");
}

std::string shortened(std::string_view text, std::size_t bytes)
{
  if (text.size() <= bytes)
    return base::displayText(clean(text));
  std::size_t end = bytes;
  while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80)
    --end;
  return base::displayText(clean(text.substr(0, end))) + "...";
}

std::string_view takeFirst(std::string_view& text)
{
  text = trimLeft(text);
  const auto end = std::find_if(text.begin(), text.end(), isBlank);
  const auto size = static_cast<std::size_t>(end - text.begin());
  const std::string_view token = text.substr(0, size);
  text = trimLeft(text.substr(size));
  return token;
}

std::string_view takeLast(std::string_view& text)
{
  text = trimRight(text);
  const auto start = std::find_if(text.rbegin(), text.rend(), isBlank);
  const auto size = static_cast<std::size_t>(start - text.rbegin());
  const std::string_view token = text.substr(text.size() - size);
  text = trimRight(text.substr(0, text.size() - size));
  return token;
}

std::size_t length(std::string_view text)
{
  // Every byte that is not a continuation byte starts a code point.
  return static_cast<std::size_t>(
      std::count_if(text.begin(), text.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }));
}

std::string_view beginning(std::string_view text, std::size_t characters)
{
  for (std::size_t at = 0; at < text.size(); ++at)
    if ((static_cast<unsigned char>(text[at]) & 0xC0) != 0x80 && characters-- == 0)
      return text.substr(0, at);
  return text;
}

} // namespace reeldb::lists
