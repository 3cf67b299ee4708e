// SPDX-License-Identifier: Apache-2.0
//
// A whole log, or all options of a project, as one text of bytes. docs/formats/project.md describes it. Any thread.
#ifndef REELDB_STORE_LOG_IMAGE_H
#define REELDB_STORE_LOG_IMAGE_H

#include <optional>
#include <string>
#include <string_view>

#include "reelhost/store.h"

namespace reelhost {

/// The image of the log without its number. Equal logs have equal images, whatever the order of their fields.
std::string imageOf(const StoredLog& log);
/// The log of that number; empty if @p image is not an image.
std::optional<StoredLog> logFrom(std::int64_t number, std::string_view image);

std::string imageOf(const KeyValues& values); ///< in the order of @p values
std::optional<KeyValues> valuesFrom(std::string_view image);

} // namespace reelhost

#endif
