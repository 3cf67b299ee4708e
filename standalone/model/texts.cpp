// SPDX-License-Identifier: Apache-2.0
#include <cstdarg>
#include <cstdio>
#include <functional>
#include <string>
#include <string_view>
#include <utility>

#include "host/text.h"
#include "journal/host_call.h"
#include "model/settings.h"
#include "reelhost/display_text.h"
#include "reelhost/host.h"

using reelhost::describeAll;
using reelhost::hostCall;
using reelhost::Script;

namespace {

LightweightString<wchar_t> padded(const wchar_t* before, LightweightString<wchar_t> text, const wchar_t* after)
{
  return LightweightString<wchar_t>(before) + text + LightweightString<wchar_t>(after);
}

/// The text that printf would print.
std::string formatted(const char* format, std::va_list arguments)
{
  std::va_list again;
  va_copy(again, arguments);
  const int length = std::vsnprintf(nullptr, 0, format, arguments);
  std::string text(length > 0 ? static_cast<std::size_t>(length) : 0, '\0');
  std::vsnprintf(text.data(), text.size() + 1, format, again);
  va_end(again);
  return text;
}

std::function<void(std::string_view)>& sink()
{
  static auto& instance = *new std::function<void(std::string_view)>;
  return instance;
}

/// Prints the text. Returns whether all of it was written.
bool print(const std::string& text)
{
  if (const auto to = sink()) { // a copy: the sink may set another sink
    to(text);
    return true;
  }
  return std::fwrite(text.data(), 1, text.size(), stderr) == text.size();
}

/// The text as it may be printed. A line feed at its end stays, because it ends the message. Others are escaped.
std::string shown(std::string_view text)
{
  const bool ends = !text.empty() && text.back() == '\n';
  return reelhost::displayText(text.substr(0, text.size() - ends)) + (ends ? "\n" : "");
}

} // namespace

LightweightString<wchar_t> paddedResourceStrW(ResId id, const wchar_t* before, const wchar_t* after, ResStrFmt format)
{
  using Text = LightweightString<wchar_t>;
  return hostCall(
      "paddedResourceStrW", [&] { return describeAll(id, before, after, format); },
      [&] { return padded(before, fromUTF8(reelhost::model::facilityOrNone().resourceText(id).c_str()), after); },
      [&]() -> std::optional<Text> {
        const auto& text = Script::the().resourceText;
        return text ? std::optional(padded(before, text->c_str(), after)) : std::nullopt;
      });
}

int vorn_printf(const char* format, ...)
{
  std::va_list arguments;
  va_start(arguments, format);
  const std::string text = formatted(format, arguments);
  va_end(arguments);
  return hostCall(
      "vorn_printf", [&] { return describeAll(text); },
      [&] { return print(shown(text)) ? static_cast<int>(text.size()) : -1; });
}

void reelhost::printTo(std::function<void(std::string_view)> to)
{
  sink() = std::move(to);
}
