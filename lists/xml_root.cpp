// SPDX-License-Identifier: Apache-2.0
#include "lists/xml_root.h"

#include "lists/timeline.h"

namespace reeldb::lists {

namespace {

/// The place behind a document type at the start of the text, which may hold declarations with quoted brackets.
std::size_t endOfType(std::string_view text)
{
  bool isInside = false; // between the brackets
  for (std::size_t at = text.find_first_of("[]>\"'"); at < text.size(); at = text.find_first_of("[]<>\"'", at + 1)) {
    const char c = text[at];
    if (c == '>' && !isInside)
      return at + 1;
    if (c == '[' || c == ']')
      isInside = c == '[';
    else if (c == '"' || c == '\'')
      at = text.find(c, at + 1);
    else if (text.substr(at).starts_with("<!--")) // may hold single quotes
      at = text.find("-->", at);
    if (at == std::string_view::npos)
      break;
  }
  return std::string_view::npos;
}

} // namespace

std::string_view rootName(std::string_view text)
{
  while (text.starts_with("<?") || text.starts_with("<!")) {
    std::size_t end = 0;
    if (text.starts_with("<!--") || text.starts_with("<?")) {
      const std::string_view close = text.starts_with("<?") ? "?>" : "-->";
      end = text.find(close);
      end += end == std::string_view::npos ? 0 : close.size();
    } else {
      end = endOfType(text);
    }
    if (end == std::string_view::npos)
      return {};
    text = trimWhite(text.substr(end));
  }
  return text.starts_with('<') ? text.substr(1, text.find_first_of("/> \t\r\n", 1) - 1) : std::string_view();
}

} // namespace reeldb::lists
