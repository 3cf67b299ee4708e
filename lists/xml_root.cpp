// SPDX-License-Identifier: Apache-2.0
#include "lists/xml_root.h"

#include <algorithm>

#include "lists/timeline.h"

namespace reeldb::lists {

std::string_view rootName(std::string_view text)
{
  while (text.starts_with("<?") || text.starts_with("<!")) {
    const bool isComment = text.starts_with("<!--");
    std::size_t end = text.find(isComment ? "-->" : ">");
    if (!isComment) // a document type may hold declarations
      if (const std::size_t bracket = text.find('['); bracket < end)
        end = text.find('>', std::min(text.find(']', bracket), text.size()));
    if (end == std::string_view::npos)
      return {};
    text = trimWhite(text.substr(end + (isComment ? 3 : 1)));
  }
  return text.starts_with('<') ? text.substr(1, text.find_first_of("/> \t\r\n", 1) - 1) : std::string_view();
}

} // namespace reeldb::lists
