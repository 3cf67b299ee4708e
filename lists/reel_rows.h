// SPDX-License-Identifier: Apache-2.0
//
// The rows of a table, or the objects of JSON, that give reels their fields: one for each reel.
#ifndef REELDB_LISTS_REEL_ROWS_H
#define REELDB_LISTS_REEL_ROWS_H

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "lists/collector.h"
#include "lists/list.h"

namespace reeldb::lists {

class ReelRows {
public:
  explicit ReelRows(Collector& collector) : collector_(collector) {}

  /// The place of the field in List::fields. A new one is added.
  std::size_t field(const std::string& name);

  /// Takes a row, whose values each name another field. If an earlier row names the reel, that one gets what it lacks;
  /// a value that is another one there is left out, with a warning. A name that no reel can have is a rejected line.
  /// Returns false for that.
  bool add(ReelRow row);

private:
  void merge(ReelRow& first, ReelRow row);

  Collector& collector_;
  std::unordered_map<std::string, std::size_t> fields_; ///< by name
  std::unordered_map<std::string, std::size_t> rows_;   ///< by folded reel
};

} // namespace reeldb::lists

#endif
