// SPDX-License-Identifier: Apache-2.0
#include "line/guess.h"

#include <algorithm>
#include <cstddef>

#include "base/ascii.h"

namespace reeldb::cli {

namespace {

/// The number of edits between two words (optimal string alignment).
std::size_t distance(std::string_view a, std::string_view b)
{
  std::vector<std::vector<std::size_t>> edits(a.size() + 1, std::vector<std::size_t>(b.size() + 1));
  for (std::size_t i = 0; i <= a.size(); ++i)
    edits[i][0] = i;
  for (std::size_t j = 0; j <= b.size(); ++j)
    edits[0][j] = j;
  for (std::size_t i = 1; i <= a.size(); ++i)
    for (std::size_t j = 1; j <= b.size(); ++j) {
      const std::size_t replaced = edits[i - 1][j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1);
      edits[i][j] = std::min({edits[i - 1][j] + 1, edits[i][j - 1] + 1, replaced});
      if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
        edits[i][j] = std::min(edits[i][j], edits[i - 2][j - 2] + 1);
    }
  return edits[a.size()][b.size()];
}

} // namespace

std::string guess(std::string_view typed, const std::vector<std::string>& words)
{
  constexpr std::size_t longest = 40; // a longer word is not a mistyped command
  if (typed.size() > longest)
    return {};
  const std::string wanted = base::fold(typed);
  std::string best;
  std::size_t fewest = typed.size() / 3 + 1;
  for (const std::string& word : words)
    if (const std::size_t edits = distance(wanted, word); edits < fewest) {
      fewest = edits;
      best = word;
    }
  return best;
}

} // namespace reeldb::cli
