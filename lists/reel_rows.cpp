// SPDX-License-Identifier: Apache-2.0
#include "lists/reel_rows.h"

#include <algorithm>

#include "base/ascii.h"
#include "lists/names.h"
#include "lists/text.h"

namespace reeldb::lists {
namespace {

/// A name in a warning is shown up to this number of bytes.
constexpr std::size_t shownName = 100;

} // namespace

std::size_t ReelRows::field(const std::string& name)
{
  std::vector<std::string>& fields = collector_.list().fields;
  const auto [known, isNew] = fields_.try_emplace(name, fields.size());
  if (isNew)
    fields.push_back(name);
  return known->second;
}

bool ReelRows::add(ReelRow row)
{
  std::vector<ReelRow>& rows = collector_.list().reels;
  Clip named; // the rules for the names of clips hold for reels, too
  named.reel = row.reel;
  named.aliases = row.aliases;
  std::string fault = Collector::fault(named);
  if (fault.empty() && isAuxiliary(row.reel))
    fault = inQuotes(row.reel) + " is not a reel (a source without a tape)";
  else if (const std::string_view reason = specialReason(row.reel); fault.empty() && !reason.empty())
    fault = inQuotes(row.reel) + " is not a reel (" + std::string(reason) + ")";
  if (!fault.empty()) {
    collector_.reject(row.line, row.text, std::move(fault));
    return false;
  }
  const auto [known, isNew] = rows_.try_emplace(base::fold(row.reel), rows.size());
  if (isNew)
    rows.push_back(std::move(row));
  else
    merge(rows[known->second], std::move(row));
  return true;
}

void ReelRows::merge(ReelRow& first, ReelRow row)
{
  for (ReelValue& value : row.values) {
    const auto same = std::find_if(first.values.begin(), first.values.end(),
                                   [&](const ReelValue& other) { return other.field == value.field; });
    if (same == first.values.end())
      first.values.push_back(std::move(value));
    else if (same->text != value.text)
      collector_.warn(row.line, row.text,
                      shortened(first.reel, shownName) + ": " +
                          shortened(collector_.list().fields[value.field], shownName) + " " + inQuotes(value.text) +
                          " differs from " + inQuotes(same->text) + " in line " + std::to_string(first.line) +
                          ", which counts");
  }
  if (first.clearsAliases != row.clearsAliases && !(first.aliases.empty() && row.aliases.empty()))
    collector_.warn(row.line, row.text,
                    shortened(first.reel, shownName) + ": other names than in line " + std::to_string(first.line) +
                        ", which counts");
  else
    first.aliases.insert(first.aliases.end(), row.aliases.begin(), row.aliases.end());
}

} // namespace reeldb::lists
