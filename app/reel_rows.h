// SPDX-License-Identifier: Apache-2.0
//
// Gives reels of the open project the fields that tables and JSON have for them. For the sources of this room.
#ifndef REELDB_APP_REEL_ROWS_H
#define REELDB_APP_REEL_ROWS_H

#include <cstddef>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "ReelDbManager.h"
#include "ReelDbRec.h"
#include "app/import.h"
#include "app/project_names.h"
#include "app/reel_field.h"

namespace reeldb::app {

class ReelRows {
public:
  ReelRows(Session& session, const Treatment& treatment);

  /// Changes and creates the reels of the rows in the list of the result, which gets what changed, what cannot be done
  /// and the columns that mean no field. Nothing is stored. A row whose values are not all valid changes nothing.
  /// Throws Error if two user fields have the name of a column.
  void import(ImportedList& result);

  /// Gives shots the reels of names that rows gave or took. Returns what moved.
  std::vector<ReelMove> moveShots();

  /// Why values are doubtful.
  const std::vector<std::string>& remarks() const { return remarks_; }

private:
  /// A value that a row gives a field, as it is to be stored.
  struct Wanted {
    const ReelField* field = nullptr;
    std::string value;
    std::optional<std::string> before = {}; ///< what a reel that exists has there
  };

  std::optional<ReelDbRec> find(const std::string& name);
  std::vector<Wanted> wantedOf(const lists::ReelRow& row, std::optional<ReelDbRec>& reel);
  std::vector<std::string> newAliasesOf(const lists::ReelRow& row, const std::string& id);
  ReelDbRec create(const std::string& name, const std::vector<Wanted>& wanted, ImportedList& result);
  void importRow(const lists::ReelRow& row, ImportedList& result);
  void giveAliases(ReelDbRec& reel, const std::string& id, const std::vector<std::string>& aliases,
                   const lists::ReelRow& row, ImportedList& result);

  Session& session_;
  ReelDbManager& manager_;
  Treatment treatment_;
  std::unordered_map<std::string, Cookie> logs_;            ///< of the reels, by folded identifier
  std::optional<ProjectNames> names_;                       ///< read when a row has another name than an identifier
  std::unordered_map<std::string, std::string> otherNames_; ///< folded, with the identifier; read for the first alias
  bool knowsOtherNames_ = false;
  bool changesNames_ = false;
  std::vector<std::optional<ReelField>> fields_; ///< of the columns of the list
  std::vector<bool> isUnread_;                   ///< whether a row has a text in a column that means no field
  std::vector<std::string> remarks_;
};

} // namespace reeldb::app

#endif
