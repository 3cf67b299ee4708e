// SPDX-License-Identifier: Apache-2.0
#include "lists/csv.h"

#include <string_view>

namespace reeldb::lists {

namespace {

/// Spreadsheets run a cell that begins with one of these as a formula. They show it if an apostrophe stands before it.
/// A field that begins with an apostrophe gets one, too, so that a reader of the table can always remove exactly one.
std::string guarded(const std::string& field)
{
  const bool looksLikeFormula =
      !field.empty() && std::string_view("=+-@\t\r'").find(field.front()) != std::string::npos;
  return looksLikeFormula ? "'" + field : field;
}

std::string quoted(const std::string& field)
{
  if (field.find_first_of(",\"\r\n") == std::string::npos)
    return field;
  std::string result = "\"";
  for (const char c : field)
    result += c == '"' ? "\"\"" : std::string(1, c);
  return result + '"';
}

} // namespace

std::string csvRow(const std::vector<std::string>& fields)
{
  std::string row;
  for (std::size_t i = 0; i < fields.size(); ++i)
    row.append(i == 0 ? "" : ",").append(quoted(guarded(fields[i])));
  return row + "\r\n";
}

} // namespace reeldb::lists
