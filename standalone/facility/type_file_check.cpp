// SPDX-License-Identifier: Apache-2.0
#include "facility/type_file_check.h"

#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <optional>

#include "host/text.h"
#include "reelhost/display_text.h"
#include "store/file_error.h"

namespace reelhost {

namespace {

/// The library trims a field in a buffer of this size and forms its warning in another, both with the terminator.
constexpr std::size_t bufferSize = 2048;

/// In bytes, enough for more than a million types. A larger file is not a list of types, but the library would read all
/// of it into memory.
constexpr std::size_t largestSize = std::size_t{64} << 20;

constexpr const char* byteOrderMark = "\xEF\xBB\xBF";

/// The most channels that a reel can have.
constexpr long mostChannels = 65535;

struct FileCloser {
  void operator()(std::FILE* file) const { std::fclose(file); }
};

const char* withoutLeadingSpaces(const char* text)
{
  while (std::isspace(static_cast<signed char>(*text)) != 0)
    ++text;
  return text;
}

std::string trimmed(const char* field)
{
  std::string text = withoutLeadingSpaces(field);
  while (!text.empty() && std::isspace(static_cast<signed char>(text.back())) != 0)
    text.pop_back();
  return text;
}

/// The value of a token "NAME=VALUE"; empty if there is no "=" with a value behind it.
std::optional<std::string> valueIn(const LightweightString<char>& token)
{
  ByteStream stream(token);
  stream.separators.append('=');
  GrowString piece;
  stream >> piece;
  if (stream.atEnd())
    return {};
  stream >> piece;
  return std::string(piece);
}

/// Reads the file record by record, as the library does.
class TypeFileCheck {
public:
  explicit TypeFileCheck(const std::filesystem::path& path) : path_(path) {}

  CheckedTypes run(std::FILE* file)
  {
    ByteStream records(file);
    records.separators = "\r\n";
    records.joinCrLf = true;
    for (line_ = 1; !records.atEnd(); ++line_) {
      GrowString record;
      records >> record;
      checkRecord(record);
    }
    return std::move(types_);
  }

private:
  void checkRecord(GrowString& record)
  {
    ByteStream fields(record);
    fields.separators = ":";
    if (fields.atEnd())
      return;
    GrowString name;
    fields >> name;
    if (line_ == 1 && std::strncmp(name, byteOrderMark, std::strlen(byteOrderMark)) == 0)
      types_.remarks.push_back(place() + "a byte order mark is part of the name (store the file without it)");
    if (fields.atEnd()) {
      requireRoomForWarning(name);
      return;
    }
    GrowString parameters;
    fields >> parameters;
    requireRoom(name, "the name is longer than 2047 bytes");
    requireRoom(parameters, "the parameters are longer than 2047 bytes");
    types_.names.push_back(trimmed(name));
    for (const char* const count : {"VideoChannels", "AudioChannels"})
      checkCount(count, parameters);
  }

  void requireRoom(const char* field, const char* fact) const
  {
    if (std::strlen(withoutLeadingSpaces(field)) >= bufferSize)
      fail(fact);
  }

  /// The library's warning contains the whole record.
  void requireRoomForWarning(const char* record) const
  {
    const int length = std::snprintf(nullptr, 0, "ReelTypeList Warning: %s: no parameters. Line %d\n", record, line_);
    if (static_cast<std::size_t>(length) >= bufferSize) // a negative length becomes a large number
      fail("the record has no parameters and is too long for the library's warning");
  }

  /// The library takes the first token that contains the name, in any case, and has a value.
  void checkCount(const char* name, const char* parameters)
  {
    ByteStream tokens(LightweightString<char>(trimmed(parameters).c_str()));
    tokens.separators.append(' ');
    bool named = false;
    while (!tokens.atEnd()) {
      GrowString token;
      tokens >> token;
      if (!isNamed(static_cast<const char*>(token), name))
        continue;
      named = true;
      if (const auto value = valueIn(static_cast<const char*>(token))) {
        checkValue(name, *value);
        return;
      }
    }
    if (named) // with blanks around the "=", the number is in another token
      remark(name, "no number directly after the \"=\" (no channels are added)");
  }

  static bool isNamed(LightweightString<char> token, LightweightString<char> name)
  {
    toUpper(token);
    toUpper(name);
    return std::strstr(token.c_str(), name.c_str()) != nullptr;
  }

  /// The library reads the number up to the first other character, as an int. The host refuses more channels than the
  /// most.
  void checkValue(const char* name, const std::string& value)
  {
    const char* const text = value.c_str();
    char* end = nullptr;
    const long number = std::strtol(text, &end, 10);
    const int taken = static_cast<int>(number);
    const std::string shown = displayText(value);
    if (end == text || *end != '\0')
      remark(name, '"' + shown + "\" is not a number (read as " + std::to_string(taken) + ")");
    else if (number < 0)
      remark(name, shown + " is not a number of channels (no channels are added)");
    else if (number > mostChannels)
      remark(name, shown + " is too many (at most " + std::to_string(mostChannels) + "; " +
                       (taken > mostChannels ? "no reel can get this type" : "read as " + std::to_string(taken)) + ")");
  }

  void remark(const char* name, const std::string& fact) { types_.remarks.push_back(place() + name + ": " + fact); }

  [[noreturn]] void fail(const char* fact) const { throw Error(ErrorKind::Unreadable, place() + fact); }

  std::string place() const { return displayText(path_.native()) + ":" + std::to_string(line_) + ": "; }

  const std::filesystem::path& path_;
  int line_ = 0;
  CheckedTypes types_;
};

} // namespace

CheckedTypes checkTypeFile(const std::filesystem::path& file)
{
  std::string content;
  try {
    content = base::readRegularFile(file, largestSize);
  } catch (const base::FileError& error) {
    if (error.fault() == base::FileFault::NotFound)
      return {};
    throw hostError(error);
  }
  const std::unique_ptr<std::FILE, FileCloser> stream(::fmemopen(content.data(), content.size(), "r"));
  if (!stream)
    throw hostError(base::FileError(file, "cannot be read", errno));
  return TypeFileCheck(file).run(stream.get());
}

} // namespace reelhost
