// SPDX-License-Identifier: Apache-2.0
//
// Files of XML. Nothing that a file names is opened, and no entity that it declares is resolved.
#ifndef REELDB_LISTS_XML_FILE_H
#define REELDB_LISTS_XML_FILE_H

#include <cstddef>
#include <functional>
#include <string_view>
#include <vector>

#include <pugixml.hpp>

namespace reeldb::lists {

class XmlFile {
public:
  using Visit = std::function<void(pugi::xml_node node)>;

  /// Reads the text of a file, which outlives the object, and visits each node in the order of the text. Throws Error,
  /// with @p format in its text, if it is damaged or has more than mostLevels levels.
  XmlFile(std::string_view text, std::string_view format, const Visit& visit = {});

  pugi::xml_node root() const { return document_.document_element(); }
  /// The line where the element begins, counted from 1.
  int lineOf(pugi::xml_node element) const;

private:
  int lineAt(std::ptrdiff_t offset) const;
  void walk(std::string_view format, const Visit& visit) const;

  std::vector<std::size_t> lineStarts_;
  pugi::xml_document document_;
};

/// The text of the element below that has this name, without outer white space.
std::string_view childText(pugi::xml_node element, const char* name);

} // namespace reeldb::lists

#endif
