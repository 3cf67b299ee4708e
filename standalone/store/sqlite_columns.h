// SPDX-License-Identifier: Apache-2.0
//
// The columns of a log, in the order in which they are read and written.
#ifndef REELDB_STORE_SQLITE_COLUMNS_H
#define REELDB_STORE_SQLITE_COLUMNS_H

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "reelhost/material.h"

namespace reelhost {

/// The columns that every log fills; the texts of a shot follow in the order of shotTexts.
inline constexpr std::array<std::string_view, 11> plainColumns = {
    "number", "type", "uuid", "tag", "kind", "imported", "entire_medium", "name", "reel_type", "video", "audio"};
inline constexpr int firstTextColumn = static_cast<int>(plainColumns.size());

inline std::vector<std::string> logColumns()
{
  std::vector<std::string> columns(plainColumns.begin(), plainColumns.end());
  for (const ShotText& text : shotTexts)
    columns.emplace_back(text.text == &Material::reel ? "reel_id" : text.key);
  return columns;
}

/// The results of @p make for each name, separated by commas.
template <class Make>
std::string listOf(const std::vector<std::string>& names, Make make)
{
  std::string list;
  for (const std::string& name : names)
    list += (list.empty() ? "" : ", ") + std::string(make(name));
  return list;
}

} // namespace reelhost

#endif
