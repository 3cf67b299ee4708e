// SPDX-License-Identifier: Apache-2.0
//
// A whole list, or its events, as one text of bytes. docs/formats/project.md describes it. Any thread.
#ifndef REELDB_STORE_LIST_IMAGE_H
#define REELDB_STORE_LIST_IMAGE_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "reelhost/lists.h"

namespace reelhost {

/// The image of the list without its number. It begins with the digest.
std::string imageOf(const KeptList& list);
/// The list of that number; empty if @p image is not an image.
std::optional<KeptList> listFrom(std::int64_t number, std::string_view image);

/// The events as one text, deflated.
std::string packed(const std::vector<ListEvent>& events);
/// Empty if @p packed is not such a text.
std::optional<std::vector<ListEvent>> eventsFrom(std::string_view packed);

} // namespace reelhost

#endif
