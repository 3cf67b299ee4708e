// SPDX-License-Identifier: Apache-2.0
//
// The reel type file: records "name:parameters", separated by CR and LF. The reader never fails; it skips a bad record
// with a warning.
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "ReelTypeManager.h"
#include "host/text.h"

namespace {

// The working buffers of this file hold 2,048 bytes. A text that does not fit ends the process: cutting it could make
// two types equal, and the site maintains the file.
constexpr std::size_t bufferSize = 2048;

bool isSpace(char c)
{
  return std::isspace(static_cast<signed char>(c)) != 0;
}

struct FileCloser {
  void operator()(std::FILE* file) const { std::fclose(file); }
};

void warnNoParameters(ReelTypeManager& catalogue, const char* name, int line)
{
  char text[bufferSize];
  const int length = std::snprintf(text, sizeof text, "ReelTypeList Warning: %s: no parameters. Line %d\n", name, line);
  if (static_cast<std::size_t>(length) >= sizeof text) // also when it is negative
    std::abort();
  catalogue.errMsg(text);
}

} // namespace

void ReelTypeManager::load(LightweightString<char> path)
{
  std::unique_ptr<std::FILE, FileCloser> file(std::fopen(path.c_str(), "r"));
  if (!file)
    return;
  ByteStream records(file.get());
  records.separators = "\r\n";
  records.joinCrLf = true;
  for (int line = 1; !records.atEnd(); ++line) {
    GrowString record;
    records >> record;
    ByteStream fields(record);
    fields.separators = ":";
    if (fields.atEnd())
      continue;
    GrowString name;
    fields >> name;
    if (fields.atEnd()) {
      warnNoParameters(*this, name, line);
      continue;
    }
    GrowString params;
    fields >> params;
    add(static_cast<const char*>(name), static_cast<const char*>(params));
  }
  file.reset(); // before the stream that borrows it goes
}

void ReelTypeManager::add(LightweightString<char> name, LightweightString<char> params)
{
  name = chopSpaces(name);
  params = chopSpaces(params);
  (*this)[name].value = params.c_str();
}

LightweightString<char> ReelTypeManager::chopSpaces(LightweightString<char> text)
{
  const char* begin = text.c_str();
  while (isSpace(*begin))
    ++begin;
  std::size_t length = std::strlen(begin);
  if (length >= bufferSize)
    std::abort();
  while (length > 0 && isSpace(begin[length - 1]))
    --length;
  return LightweightString<char>(begin, length);
}

bool ReelTypeManager::parseParamToken(LightweightString<char> token, LightweightString<char> paramName, int& value)
{
  toUpper(token);
  toUpper(paramName);
  if (token.empty() || !std::strstr(token.c_str(), paramName.c_str()))
    return false;
  ByteStream stream(token);
  stream.separators.append('=');
  stream.separators.append(' ');
  GrowString piece;
  stream >> piece;
  if (stream.atEnd())
    return false;
  stream >> piece;
  value = static_cast<int>(std::strtol(piece, nullptr, 10));
  return true;
}

void ReelTypeManager::errMsg(const char* text)
{
  vorn_printf("%s", text);
}
