// SPDX-License-Identifier: Apache-2.0
#include "lists/xml_file.h"

#include <algorithm>
#include <string>

#include "lists/list.h"
#include "lists/text.h"
#include "lists/timeline.h"

namespace reeldb::lists {

XmlFile::XmlFile(std::string_view text, std::string_view format, const Visit& visit)
{
  lineStarts_.push_back(0);
  for (std::size_t at = lineEnd(text); at < text.size(); at = lineEnd(text, at)) {
    at += text.substr(at, 2) == "\r\n" ? 2 : 1;
    lineStarts_.push_back(at);
  }
  const std::string damaged = "damaged " + std::string(format) + " in line ";
  if (const std::size_t nul = text.find('\0'); nul != std::string_view::npos)
    throw Error(damaged + std::to_string(lineAt(static_cast<std::ptrdiff_t>(nul))) + " (a NUL byte)");
  // The text is UTF-8 whatever it declares.
  const pugi::xml_parse_result result =
      document_.load_buffer(text.data(), text.size(), pugi::parse_default, pugi::encoding_utf8);
  if (!result)
    throw Error(
        damaged + std::to_string(lineAt(result.offset)) + " (" +
        (static_cast<std::size_t>(result.offset) + 1 >= text.size() ? "the file is cut short" : result.description()) +
        ")");
  walk(format, visit);
}

void XmlFile::walk(std::string_view format, const Visit& visit) const
{
  int level = 0;
  for (pugi::xml_node node = document_.first_child(); node;) {
    if (level >= mostLevels)
      throw Error(std::string(format) + " with more than " + std::to_string(mostLevels) + " levels in line " +
                  std::to_string(lineOf(node)));
    if (visit)
      visit(node);
    pugi::xml_node next = node.first_child();
    if (next)
      ++level;
    for (; !next && node; --level) {
      next = node.next_sibling();
      if (next)
        break;
      node = node.parent();
    }
    node = next;
  }
}

int XmlFile::lineOf(pugi::xml_node element) const
{
  return lineAt(element.offset_debug());
}

int XmlFile::lineAt(std::ptrdiff_t offset) const
{
  const auto after = std::upper_bound(lineStarts_.begin(), lineStarts_.end(), static_cast<std::size_t>(offset));
  return static_cast<int>(after - lineStarts_.begin());
}

std::string_view childText(pugi::xml_node element, const char* name)
{
  return trimWhite(element.child(name).text().get());
}

} // namespace reeldb::lists
