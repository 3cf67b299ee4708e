// SPDX-License-Identifier: Apache-2.0
#include "lists/source_table.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

#include "base/ascii.h"
#include "base/display_text.h"
#include "lists/edl_line.h"
#include "lists/list.h"
#include "lists/text.h"

namespace reeldb::lists {
namespace {

/// The bytes of two reel fields of the widest kind, and of the blank between them.
constexpr std::size_t longestNames = std::size_t{2} * 4 * reelLength + 1;

/// Names of more words are not split by their meaning. No list has such names, and the limit keeps the work per row
/// small.
constexpr std::size_t mostGaps = 64;

bool isHex(char c)
{
  return isDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

bool isHexWord(std::string_view text)
{
  return text.size() == 8 && std::all_of(text.begin(), text.end(), isHex);
}

/// Whether the text is a UMID or two hexadecimal words, with the separators between the groups.
bool isSourceId(std::string_view text)
{
  const auto isPart = [](char c) { return isHex(c) || c == '-' || c == '.' || c == '{' || c == '}'; };
  return text.size() >= 16 && std::all_of(text.begin(), text.end(), isPart);
}

/// Takes the id off the end: the last word, or the last two if both are hexadecimal words.
std::string_view takeId(std::string_view& row)
{
  std::string_view names = row;
  const std::string_view last = takeLast(names);
  if (names.empty()) // a single word is a name
    return {};
  std::string_view before = names;
  const std::string_view word = takeLast(before);
  std::string_view first = before;
  if (isHexWord(last) && isHexWord(word) && takeFirst(first) != before) { // two names stand before them
    row = before;
    return {word.data(), static_cast<std::size_t>(last.data() + last.size() - word.data())};
  }
  if (before.empty() && !isSourceId(last)) // two words are two names unless the second is certainly an id
    return {};
  row = names;
  return last;
}

/// A run of blanks between the names.
struct Gap {
  std::size_t at = 0;
  std::size_t size = 0;
};

std::vector<Gap> gapsOf(std::string_view text)
{
  std::vector<Gap> gaps;
  for (std::size_t at = text.find(' '); at != std::string_view::npos; at = text.find(' ', at)) {
    const std::size_t end = std::min(text.find_first_not_of(' ', at), text.size());
    gaps.push_back({at, end - at});
    at = end;
  }
  return gaps;
}

/// Whether one name is the start of the other, as a cut name is.
bool isCut(std::string_view a, std::string_view b)
{
  return base::startsWithName(a, b) || base::startsWithName(b, a);
}

} // namespace

bool isUmid(std::string_view id)
{
  return base::startsWithName(id, "060a2b34");
}

std::string SourceTable::add(std::string_view row)
{
  Row added;
  added.whole = clean(row);
  if (const std::string_view control = firstControl(added.whole); !control.empty())
    return "source row with a control character (" + base::displayText(control) + ")";
  added.id = clean(takeId(row));
  added.names = clean(row);
  if (added.names.empty())
    return "source row without a name";
  if (added.names.size() > longestNames)
    return "source row with names of " + std::to_string(added.names.size()) + " bytes (at most " +
           std::to_string(longestNames) + ")";
  if (added.id.size() > nameBytes)
    return "source row with an id of " + std::to_string(added.id.size()) + " bytes (at most " +
           std::to_string(nameBytes) + ")";
  rows_.push_back(std::move(added));
  return {};
}

void SourceTable::split(Row& row, const IsReel& isReel)
{
  if (isReel(base::fold(row.whole))) { // one name with blanks, and its last word looks like an id
    row.names = row.whole;
    row.id.clear();
  }
  const std::string_view names = row.names;
  const auto cutAt = [&](const Gap& gap) {
    row.first = std::string(names.substr(0, gap.at));
    row.second = std::string(names.substr(gap.at + gap.size));
    row.single = false;
  };
  row.first = row.second = row.names;
  row.single = true;
  if (isReel(base::fold(names)))
    return;
  const std::vector<Gap> gaps = gapsOf(names);
  std::vector<Gap> wide;
  std::copy_if(gaps.begin(), gaps.end(), std::back_inserter(wide), [](const Gap& gap) { return gap.size > 1; });
  if (gaps.size() == 1 || wide.size() == 1)
    return cutAt(wide.empty() ? gaps.front() : wide.front());

  // The names contain blanks as wide as those between them. Look for a split into plausible names.
  if (gaps.size() > mostGaps)
    return;
  for (const Gap& gap : gaps) {
    if (isReel(base::fold(names.substr(0, gap.at))) && isReel(base::fold(names.substr(gap.at + gap.size))))
      return cutAt(gap);
  }
  for (const Gap& gap : gaps) {
    if (isCut(names.substr(0, gap.at), names.substr(gap.at + gap.size)))
      return cutAt(gap);
  }
  for (const Gap& gap : gaps) {
    if (isReel(base::fold(names.substr(0, gap.at))) || isReel(base::fold(names.substr(gap.at + gap.size))))
      return cutAt(gap);
  }
}

std::string SourceTable::fault(const Row& row, const IsReel& isReel)
{
  const bool isUsed = isReel(base::fold(row.first)) || isReel(base::fold(row.second));
  if (row.single)
    return isUsed ? std::string() : "source row with one name, and no event has the reel " + inQuotes(row.first);
  if (!row.id.empty())
    return {};
  const std::string names = inQuotes(row.first) + " and " + inQuotes(row.second);
  if (!isCut(row.first, row.second))
    return "source row without an id, and " + names + " are not two forms of one name";
  return isUsed ? std::string() : "source row without an id, and no event has the reels " + names;
}

std::vector<UnusedRow> SourceTable::settle(const IsReel& isReel)
{
  std::vector<UnusedRow> unused;
  for (std::size_t i = 0; i < rows_.size(); ++i) {
    Row& row = rows_[i];
    split(row, isReel);
    for (std::string* text : {&row.whole, &row.names}) {
      text->clear();
      text->shrink_to_fit();
    }
    if (std::string reason = fault(row, isReel); !reason.empty()) {
      unused.push_back({i, std::move(reason)});
      continue;
    }
    const std::string first = base::fold(row.first);
    const std::string second = base::fold(row.second);
    byName_[first].push_back(i);
    if (second != first)
      byName_[second].push_back(i);
  }
  return unused;
}

SourceMatch SourceTable::find(const std::string& reel) const
{
  SourceMatch match;
  const auto bucket = byName_.find(base::fold(reel));
  if (bucket == byName_.end())
    return match;
  match.found = true;

  const auto longer = [&](const Row& row) -> const std::string& {
    const std::size_t first = length(row.first);
    const std::size_t second = length(row.second);
    return first == second ? reel : first > second ? row.first : row.second;
  };
  for (const std::size_t i : bucket->second) {
    const Row& row = rows_[i];
    match.rows.push_back({longer(row), length(row.second) > length(row.first), row.sourceFile, row.id});
  }
  // Rows in which the reel text is the whole name come before rows in which it is the cut one.
  std::vector<const Row*> rows;
  for (std::size_t i : bucket->second) {
    if (base::sameName(longer(rows_[i]), reel))
      rows.push_back(&rows_[i]);
  }
  if (rows.empty()) {
    for (std::size_t i : bucket->second)
      rows.push_back(&rows_[i]);
  }

  std::unordered_set<std::string> seenNames, seenIds, seenFits;
  for (const Row* row : rows) {
    if (seenFits.insert(base::fold(longer(*row))).second)
      match.fits.push_back(longer(*row));
    if (!row->id.empty() && seenIds.insert(base::fold(row->id)).second)
      match.ids.push_back(row->id);
    for (const std::string* name : {&row->first, &row->second}) {
      if (seenNames.insert(base::fold(*name)).second)
        match.names.push_back(*name);
    }
  }
  if (match.fits.size() == 1) {
    if (!base::sameName(match.fits.front(), reel))
      match.identifier = match.fits.front();
    match.fits.clear();
  }
  return match;
}

} // namespace reeldb::lists
