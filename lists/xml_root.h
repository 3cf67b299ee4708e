// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_LISTS_XML_ROOT_H
#define REELDB_LISTS_XML_ROOT_H

#include <string_view>

namespace reeldb::lists {

/// The name of the first element of a text, which begins with it or with what XML may have before it; empty for any
/// other text.
std::string_view rootName(std::string_view text);

} // namespace reeldb::lists

#endif
