// SPDX-License-Identifier: Apache-2.0
#include "lists/otio_tree.h"

#include <algorithm>
#include <array>
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

/// The members that the reader asks for, sorted. All others are skipped with what they hold.
constexpr std::array<std::string_view, 49> keptNames = {"AAF",
                                                        "ALE",
                                                        "OTIO_SCHEMA",
                                                        "Tape",
                                                        "TapeID",
                                                        "TapeName",
                                                        "UserComments",
                                                        "active_media_reference_key",
                                                        "aliases",
                                                        "audio_channels",
                                                        "available_range",
                                                        "camera_roll",
                                                        "children",
                                                        "cmx_3600",
                                                        "comments",
                                                        "displayformat",
                                                        "drop_frame",
                                                        "duration",
                                                        "effects",
                                                        "enabled",
                                                        "fcp_xml",
                                                        "frame_rate",
                                                        "generator_kind",
                                                        "global_start_time",
                                                        "kind",
                                                        "media_reference",
                                                        "media_references",
                                                        "metadata",
                                                        "name",
                                                        "name_prefix",
                                                        "name_suffix",
                                                        "number",
                                                        "rate",
                                                        "record_in",
                                                        "record_out",
                                                        "reel",
                                                        "reeldb",
                                                        "sound_of",
                                                        "source_in",
                                                        "source_out",
                                                        "source_range",
                                                        "start_time",
                                                        "target_url",
                                                        "target_url_base",
                                                        "time_scalar",
                                                        "timecode",
                                                        "tracks",
                                                        "value",
                                                        "video_channels"};

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
  explicit Builder(const CountingStream& stream) : stream_(stream) {}

  OtioValue root() { return std::move(root_); }
  bool isTooDeep() const { return isTooDeep_; }

  // NOLINTBEGIN(readability-identifier-naming): the names that RapidJSON requires
  bool Null() { return scalar(OtioValue::Kind::Null, {}); }
  bool Bool(bool value) { return scalar(OtioValue::Kind::Bool, value ? "true" : "false"); }
  bool Int(int value) { return scalar(OtioValue::Kind::Number, std::to_string(value)); }
  bool Uint(unsigned value) { return scalar(OtioValue::Kind::Number, std::to_string(value)); }
  bool Int64(std::int64_t value) { return scalar(OtioValue::Kind::Number, std::to_string(value)); }
  bool Uint64(std::uint64_t value) { return scalar(OtioValue::Kind::Number, std::to_string(value)); }
  bool Double(double value)
  {
    return scalar(OtioValue::Kind::Number, std::isnan(value) ? "NaN" : value < 0 ? "-Infinity" : "Infinity");
  }
  bool RawNumber(const char* digits, rapidjson::SizeType size, bool)
  {
    return scalar(OtioValue::Kind::Number, {digits, size});
  }
  bool String(const char* text, rapidjson::SizeType size, bool) { return scalar(OtioValue::Kind::Text, {text, size}); }
  bool Key(const char* name, rapidjson::SizeType size, bool)
  {
    if (skipped_ == 0) {
      name_.assign(name, size);
      // The media of a clip have names of their own.
      const bool isMedium = open_.size() > 1 && names_.back() == "media_references";
      skipsNext_ = !isMedium && !std::binary_search(keptNames.begin(), keptNames.end(), std::string_view(name_));
    }
    return true;
  }
  bool StartObject() { return open(OtioValue::Kind::Object); }
  bool StartArray() { return open(OtioValue::Kind::Array); }
  bool EndObject(rapidjson::SizeType) { return close(); }
  bool EndArray(rapidjson::SizeType) { return close(); }
  // NOLINTEND(readability-identifier-naming)

private:
  bool scalar(OtioValue::Kind kind, std::string_view text)
  {
    if (skipped_ == 0 && !std::exchange(skipsNext_, false))
      add({kind, stream_.line(), std::string(text), {}});
    return true;
  }

  bool open(OtioValue::Kind kind)
  {
    if (++levels_ > mostLevels) {
      isTooDeep_ = true;
      return false;
    }
    if (skipped_ > 0 || std::exchange(skipsNext_, false)) {
      ++skipped_;
      return true;
    }
    names_.push_back(name_);
    open_.push_back(&add({kind, stream_.line(), {}, {}}));
    return true;
  }

  bool close()
  {
    --levels_;
    if (skipped_ > 0) {
      --skipped_;
    } else {
      open_.pop_back();
      names_.pop_back();
    }
    return true;
  }

  /// Adds the value to the innermost open one. The others stay where they are while it is open.
  OtioValue& add(OtioValue value)
  {
    if (open_.empty())
      return root_ = std::move(value);
    OtioValue& parent = *open_.back();
    parent.members.push_back({parent.kind == OtioValue::Kind::Object ? name_ : std::string(), std::move(value)});
    return parent.members.back().value;
  }

  const CountingStream& stream_;
  OtioValue root_;
  std::vector<OtioValue*> open_;
  std::vector<std::string> names_; ///< of the open ones
  std::string name_;               ///< of the next member
  int levels_ = 0;
  int skipped_ = 0; ///< the number of open values that are not in the tree
  bool skipsNext_ = false;
  bool isTooDeep_ = false;
};

} // namespace

const OtioValue& OtioValue::operator[](std::string_view name) const
{
  static const OtioValue null;
  const auto found =
      std::find_if(members.begin(), members.end(), [name](const auto& member) { return member.name == name; });
  return kind == Kind::Object && found != members.end() ? found->value : null;
}

std::string_view OtioValue::asText() const
{
  return kind == Kind::Text || kind == Kind::Number ? std::string_view(text) : std::string_view();
}

OtioValue parseOtio(std::string_view text)
{
  using rapidjson::ParseFlag;
  constexpr unsigned flags = ParseFlag::kParseNanAndInfFlag | ParseFlag::kParseIterativeFlag |
                             ParseFlag::kParseValidateEncodingFlag | ParseFlag::kParseNumbersAsStringsFlag;
  CountingStream stream(text);
  Builder builder(stream);
  rapidjson::Reader reader;
  const rapidjson::ParseResult result = reader.Parse<flags>(stream, builder);
  const std::string where = " in line " + std::to_string(stream.line());
  if (builder.isTooDeep())
    throw Error("OTIO with more than " + std::to_string(mostLevels) + " levels" + where);
  if (!result) // a NUL byte looks like the end
    throw Error("damaged OTIO" + where + " (" +
                (stream.isAtEnd() ? "the file is cut short" : rapidjson::GetParseError_En(result.Code())) + ")");
  if (!stream.isAtEnd())
    throw Error("damaged OTIO" + where + " (a NUL byte)");
  return builder.root();
}

} // namespace reeldb::lists
