// SPDX-License-Identifier: Apache-2.0
#include <cstdarg>
#include <cstdio>
#include <string>

#include "host/text.h"
#include "journal/host_call.h"
#include "model/settings.h"

using reelhost::describeAll;
using reelhost::hostCall;
using reelhost::Script;

namespace {

LightweightString<wchar_t> padded(const wchar_t* before, LightweightString<wchar_t> text, const wchar_t* after)
{
  return LightweightString<wchar_t>(before) + text + LightweightString<wchar_t>(after);
}

/// What printf would print.
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
      [&] {
        const std::size_t written = std::fwrite(text.data(), 1, text.size(), stderr);
        return written == text.size() ? static_cast<int>(written) : -1;
      });
}
