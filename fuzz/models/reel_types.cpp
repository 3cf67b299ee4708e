// SPDX-License-Identifier: Apache-2.0
#include "models/reel_types.h"

#include <algorithm>
#include <limits>

#include "support/bytes.h"

namespace reeldb_fuzz {

namespace {

constexpr char white[] = " \t\n\v\f\r";

std::string withoutLeadingWhite(const std::string& text)
{
  const std::size_t first = text.find_first_not_of(white);
  return first == std::string::npos ? std::string() : text.substr(first);
}

std::string upperCase(std::string text)
{
  for (char& c : text)
    if (c >= 'a' && c <= 'z')
      c = static_cast<char>(c - 'a' + 'A');
  return text;
}

/// The records of a file. CR, LF and CR LF end a record, and an empty rest after the last record is not a record.
std::vector<std::string> recordsOf(const std::string& bytes)
{
  std::vector<std::string> records;
  for (std::size_t at = 0; at < bytes.size();) {
    const std::size_t end = std::min(bytes.find_first_of("\r\n", at), bytes.size());
    records.push_back(upToNul(bytes.substr(at, end - at)));
    at = end + (bytes.compare(end, 2, "\r\n") == 0 ? 2 : 1);
  }
  return records;
}

void store(TypeFile& file, const std::string& name, const std::string& params)
{
  for (auto& [known, value] : file.types)
    if (known == name) {
      value = params;
      return;
    }
  file.types.emplace_back(name, params);
}

void read(TypeFile& file, const std::string& record, int line)
{
  const std::size_t colon = record.find(':');
  const std::string name = record.substr(0, colon);
  if (colon == std::string::npos || colon + 1 == record.size()) {
    file.warnings.push_back("ReelTypeList Warning: " + name + ": no parameters. Line " + std::to_string(line) + "\n");
    file.endsProcess = file.warnings.back().size() > longestTypeText;
    return;
  }
  const std::string params = record.substr(colon + 1, record.find(':', colon + 1) - colon - 1);
  file.endsProcess =
      withoutLeadingWhite(name).size() > longestTypeText || withoutLeadingWhite(params).size() > longestTypeText;
  store(file, chopped(name), chopped(params));
}

} // namespace

TypeFile typeFileOf(const std::string& bytes)
{
  TypeFile file;
  int line = 0;
  for (const std::string& record : recordsOf(bytes)) {
    ++line;
    if (!record.empty() && !file.endsProcess)
      read(file, record, line);
  }
  return file;
}

std::string chopped(const std::string& text)
{
  const std::string begun = withoutLeadingWhite(text);
  return begun.substr(0, begun.find_last_not_of(white) + 1);
}

std::optional<int> valueInToken(const std::string& token, const std::string& name)
{
  if (token.empty() || upperCase(token).find(upperCase(name)) == std::string::npos)
    return {};
  const std::size_t mark = token.find_first_of("= ");
  if (mark == std::string::npos || mark + 1 == token.size())
    return {};
  return leadingNumber(token.substr(mark + 1, token.find_first_of("= ", mark + 1) - mark - 1));
}

std::optional<int> valueInParams(const std::string& params, const std::string& name)
{
  for (std::size_t at = 0; at < params.size();) {
    const std::size_t end = std::min(params.find(' ', at), params.size());
    if (const auto value = valueInToken(params.substr(at, end - at), name))
      return value;
    at = end + 1;
  }
  return {};
}

int leadingNumber(const std::string& text)
{
  std::size_t at = std::min(text.find_first_not_of(white), text.size());
  const bool negative = at < text.size() && text[at] == '-';
  if (at < text.size() && (text[at] == '-' || text[at] == '+'))
    ++at;
  constexpr long long largest = std::numeric_limits<long>::max();
  long long number = 0; // never positive, because there is one more negative number than there are positive ones
  for (; at < text.size() && text[at] >= '0' && text[at] <= '9'; ++at) {
    const int digit = text[at] - '0';
    number = number < (-largest - 1 + digit) / 10 ? -largest - 1 : number * 10 - digit;
  }
  if (!negative)
    number = number < -largest ? largest : -number;
  return static_cast<int>(number);
}

} // namespace reeldb_fuzz
