// SPDX-License-Identifier: Apache-2.0
#include "text/table.h"

#include <algorithm>
#include <numeric>

#include <fmt/format.h>

#include "base/text_width.h"
#include "text/output.h"
#include "text/terminal.h"

namespace reeldb::cli {

namespace {

constexpr std::size_t gap = 2;
constexpr std::size_t narrowest = 8;

/// Narrows the widest column, except the first, one character at a time, until the row fits or no column can be
/// narrowed.
void shrink(std::vector<std::size_t>& widths, const std::vector<Column>& columns, std::size_t available)
{
  const auto total = [&widths] {
    return std::accumulate(widths.begin(), widths.end(), std::size_t{0}) + gap * (widths.size() - 1);
  };
  while (total() > available) {
    std::size_t widest = 0;
    for (std::size_t i = 1; i < widths.size(); ++i)
      if (!columns[i].number && widths[i] > narrowest && (widest == 0 || widths[i] > widths[widest]))
        widest = i;
    if (widest == 0)
      return;
    --widths[widest];
  }
}

} // namespace

Table::Table(std::vector<Column> columns) : columns_(std::move(columns))
{
  for (Column& column : columns_)
    column.title = base::displayText(column.title);
}

void Table::add(std::vector<std::string> row)
{
  for (std::string& cell : row)
    cell = base::displayText(cell);
  row.resize(columns_.size());
  rows_.push_back(std::move(row));
}

std::string Table::text(std::optional<std::size_t> terminalColumns, bool colours, std::size_t indent) const
{
  std::vector<std::size_t> shown;
  std::vector<Column> columns;
  std::vector<std::size_t> widths;
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    std::size_t width = showsTitles_ ? base::displayWidth(columns_[i].title) : 0;
    bool used = !columns_[i].optional;
    for (const auto& row : rows_) {
      used = used || !row[i].empty();
      width = std::max(width, base::displayWidth(row[i]));
    }
    if (!used)
      continue;
    shown.push_back(i);
    columns.push_back(columns_[i]);
    widths.push_back(width);
  }
  if (terminalColumns)
    shrink(widths, columns, *terminalColumns - std::min(indent, *terminalColumns));

  const auto line = [&](const auto& cellAt) {
    std::string result(indent, ' ');
    for (std::size_t i = 0; i < shown.size(); ++i) {
      const std::string& cell = cellAt(i);
      const std::size_t width = base::displayWidth(cell); // a character may be wider than its column
      const std::string padding(widths[i] - std::min(width, widths[i]), ' ');
      result.append(i ? gap : 0, ' ');
      result += columns[i].number ? padding : cell;
      result += columns[i].number ? cell : padding;
    }
    result.erase(result.find_last_not_of(' ') + 1);
    return result;
  };
  const auto linesOf = [&](const std::vector<std::string>& row, std::string_view before, std::string_view after) {
    std::vector<std::vector<std::string>> cells;
    std::size_t height = 1;
    for (std::size_t i = 0; i < shown.size(); ++i) {
      cells.push_back(base::wrapToWidth(row[shown[i]], std::max<std::size_t>(widths[i], 1)));
      height = std::max(height, cells.back().size());
    }
    std::string lines;
    for (std::size_t at = 0; at < height; ++at) {
      const std::string none;
      const auto cellAt = [&](std::size_t i) -> const std::string& {
        return at < cells[i].size() ? cells[i][at] : none;
      };
      lines.append(before).append(line(cellAt)).append(after).append("\n");
    }
    return lines;
  };
  std::string result;
  if (showsTitles_) {
    std::vector<std::string> titles;
    titles.reserve(columns_.size());
    for (const Column& column : columns_)
      titles.push_back(column.title);
    result = linesOf(titles, colours ? "\x1b[1m" : "", colours ? "\x1b[0m" : "");
  }
  for (const auto& row : rows_)
    result += linesOf(row, "", "");
  return result;
}

void Table::print(std::size_t indent) const
{
  cli::print(text(terminalColumns(stdout), showsColours(stdout), indent));
}

void Table::printOr(std::string_view nothing) const
{
  if (empty())
    cli::print(nothing);
  else
    print();
}

} // namespace reeldb::cli
