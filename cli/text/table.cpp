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
      const std::string cell = base::cutToWidth(cellAt(shown[i]), widths[i]);
      const std::string padding(widths[i] - base::displayWidth(cell), ' ');
      result.append(i ? gap : 0, ' ');
      result += columns[i].number ? padding : cell;
      result += columns[i].number ? cell : padding;
    }
    result.erase(result.find_last_not_of(' ') + 1);
    return result;
  };
  std::string result;
  if (showsTitles_) {
    const std::string titles = line([this](std::size_t i) { return columns_[i].title; });
    result = colours ? fmt::format("\x1b[1m{}\x1b[0m\n", titles) : titles + '\n';
  }
  for (const auto& row : rows_)
    result += line([&row](std::size_t i) { return row[i]; }) + "\n";
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
