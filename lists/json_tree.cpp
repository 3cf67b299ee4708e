// SPDX-License-Identifier: Apache-2.0
#include "lists/json_tree.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <utility>

#include <rapidjson/error/en.h>
#include <rapidjson/reader.h>

#include "lists/list.h"
#include "lists/timeline.h"

namespace reeldb::lists {
namespace {

/// A text that counts its lines while it is read. RapidJSON names the members.
class CountingStream {
public:
  using Ch = char; // NOLINT(readability-identifier-naming): the name that RapidJSON requires
  explicit CountingStream(std::string_view text) : text_(text) {}

  // NOLINTBEGIN(readability-identifier-naming): likewise
  char Peek() const { return at_ < text_.size() ? text_[at_] : '\0'; }
  char Take()
  {
    const char c = Peek();
    ++at_;
    line_ += c == '\n' || (c == '\r' && Peek() != '\n') ? 1 : 0;
    return c;
  }
  std::size_t Tell() const { return at_; }
  char* PutBegin() { return nullptr; }
  void Put(char) {}
  void Flush() {}
  std::size_t PutEnd(char*) { return 0; }
  // NOLINTEND(readability-identifier-naming)

  int line() const { return line_; }
  bool isAtEnd() const { return at_ >= text_.size(); }

private:
  std::string_view text_;
  std::size_t at_ = 0;
  int line_ = 1;
};

/// Builds the tree. RapidJSON names the members.
class Builder {
public:
  Builder(const CountingStream& stream, AsksFor asksFor) : stream_(stream), asksFor_(asksFor) {}

  JsonValue root() { return std::move(root_); }
  bool isTooDeep() const { return isTooDeep_; }

  // NOLINTBEGIN(readability-identifier-naming): the names that RapidJSON requires
  bool Null() { return scalar(JsonValue::Kind::Null, {}); }
  bool Bool(bool value) { return scalar(JsonValue::Kind::Bool, value ? "true" : "false"); }
  bool Int(int value) { return scalar(JsonValue::Kind::Number, std::to_string(value)); }
  bool Uint(unsigned value) { return scalar(JsonValue::Kind::Number, std::to_string(value)); }
  bool Int64(std::int64_t value) { return scalar(JsonValue::Kind::Number, std::to_string(value)); }
  bool Uint64(std::uint64_t value) { return scalar(JsonValue::Kind::Number, std::to_string(value)); }
  bool Double(double value)
  {
    return scalar(JsonValue::Kind::Number, std::isnan(value) ? "NaN" : value < 0 ? "-Infinity" : "Infinity");
  }
  bool RawNumber(const char* digits, rapidjson::SizeType size, bool)
  {
    return scalar(JsonValue::Kind::Number, {digits, size});
  }
  bool String(const char* text, rapidjson::SizeType size, bool) { return scalar(JsonValue::Kind::Text, {text, size}); }
  bool Key(const char* name, rapidjson::SizeType size, bool)
  {
    if (skipped_ == 0) {
      name_.assign(name, size);
      skipsNext_ = !asksFor_(name_, names_.back());
    }
    return true;
  }
  bool StartObject() { return open(JsonValue::Kind::Object); }
  bool StartArray() { return open(JsonValue::Kind::Array); }
  bool EndObject(rapidjson::SizeType) { return close(); }
  bool EndArray(rapidjson::SizeType) { return close(); }
  // NOLINTEND(readability-identifier-naming)

private:
  bool scalar(JsonValue::Kind kind, std::string_view text)
  {
    if (skipped_ == 0 && !std::exchange(skipsNext_, false))
      add({kind, stream_.line(), std::string(text), {}});
    return true;
  }

  bool open(JsonValue::Kind kind)
  {
    if (++levels_ > mostLevels) {
      isTooDeep_ = true;
      return false;
    }
    if (skipped_ > 0 || std::exchange(skipsNext_, false)) {
      ++skipped_;
      return true;
    }
    const bool isElement = !open_.empty() && open_.back()->kind == JsonValue::Kind::Array;
    names_.push_back(isElement ? names_.back() : name_);
    open_.push_back(&add({kind, stream_.line(), {}, {}}));
    return true;
  }

  bool close()
  {
    --levels_;
    if (skipped_ > 0) {
      --skipped_;
    } else {
      open_.back()->members.shrink_to_fit(); // most have a few members, and there may be millions
      open_.pop_back();
      names_.pop_back();
    }
    return true;
  }

  /// Adds the value to the innermost open one. The others stay where they are while it is open.
  JsonValue& add(JsonValue value)
  {
    if (open_.empty())
      return root_ = std::move(value);
    JsonValue& parent = *open_.back();
    parent.members.push_back({parent.kind == JsonValue::Kind::Object ? name_ : std::string(), std::move(value)});
    return parent.members.back().value;
  }

  const CountingStream& stream_;
  AsksFor asksFor_;
  JsonValue root_;
  std::vector<JsonValue*> open_;
  std::vector<std::string> names_; ///< of the open ones; an element of an array has the name of the array
  std::string name_;               ///< of the next member
  int levels_ = 0;
  int skipped_ = 0; ///< the number of open values that are not in the tree
  bool skipsNext_ = false;
  bool isTooDeep_ = false;
};

constexpr unsigned usualFlags = rapidjson::ParseFlag::kParseNanAndInfFlag | rapidjson::ParseFlag::kParseIterativeFlag |
                                rapidjson::ParseFlag::kParseValidateEncodingFlag |
                                rapidjson::ParseFlag::kParseNumbersAsStringsFlag;

std::string inLine(const CountingStream& stream)
{
  return " in line " + std::to_string(stream.line());
}

std::string reasonOf(const rapidjson::ParseResult& result, const CountingStream& stream)
{
  if (stream.isAtEnd())
    return "the file is cut short";
  return stream.Peek() == '\0' ? "a NUL byte" : rapidjson::GetParseError_En(result.Code());
}

template <unsigned flags>
JsonValue parseNext(CountingStream& stream, std::string_view format, AsksFor asksFor)
{
  Builder builder(stream, asksFor);
  rapidjson::Reader reader;
  const rapidjson::ParseResult result = reader.Parse<flags>(stream, builder);
  if (builder.isTooDeep())
    throw Error(std::string(format) + " with more than " + std::to_string(mostLevels) + " levels" + inLine(stream));
  if (!result)
    throw Error("damaged " + std::string(format) + inLine(stream) + " (" + reasonOf(result, stream) + ")");
  return builder.root();
}

/// Throws Error if the parser took a NUL byte for the end of the text.
void requireEnd(const CountingStream& stream, std::string_view format)
{
  if (!stream.isAtEnd())
    throw Error("damaged " + std::string(format) + inLine(stream) + " (a NUL byte)");
}

} // namespace

const JsonValue& JsonValue::operator[](std::string_view name) const
{
  static const JsonValue null;
  const auto found =
      std::find_if(members.begin(), members.end(), [name](const auto& member) { return member.name == name; });
  return kind == Kind::Object && found != members.end() ? found->value : null;
}

std::string_view JsonValue::asText() const
{
  return kind == Kind::Text || kind == Kind::Number ? std::string_view(text) : std::string_view();
}

JsonValue parseJson(std::string_view text, std::string_view format, AsksFor asksFor)
{
  CountingStream stream(text);
  JsonValue value = parseNext<usualFlags>(stream, format, asksFor);
  requireEnd(stream, format);
  return value;
}

std::vector<JsonValue> parseJsonValues(std::string_view text, std::string_view format, AsksFor asksFor)
{
  std::vector<JsonValue> values;
  CountingStream stream(text);
  for (rapidjson::SkipWhitespace(stream); !stream.isAtEnd(); rapidjson::SkipWhitespace(stream))
    values.push_back(parseNext<usualFlags | rapidjson::ParseFlag::kParseStopWhenDoneFlag>(stream, format, asksFor));
  return values;
}

} // namespace reeldb::lists
