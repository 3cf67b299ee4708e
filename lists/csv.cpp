// SPDX-License-Identifier: Apache-2.0
#include "lists/csv.h"

namespace reeldb::lists {

namespace {

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
    row += (i == 0 ? "" : ",") + quoted(fields[i]);
  return row + "\r\n";
}

} // namespace reeldb::lists
