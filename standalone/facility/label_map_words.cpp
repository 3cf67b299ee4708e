// SPDX-License-Identifier: Apache-2.0
#include "facility/label_map_words.h"

#include <algorithm>
#include <array>

#include "reelhost/facility.h"

namespace reelhost {

namespace {

// The index of a word is its code.
constexpr std::array<std::string_view, 10> sources = {"none",        "vitc", "vitc2", "9-pin ltc",   "9-pin vitc",
                                                      "9-pin timer", "ltc",  "rp188", "time of day", "1394"};
constexpr std::array<std::string_view, 11> formats = {
    "30 fps", "25 fps", "24 fps", "35mm feet+frames", "16mm feet+frames", "key number", "ink number", "frame count",
    "text",   "50 fps", "60 fps"};

template <std::size_t N>
std::optional<unsigned> codeOf(const std::array<std::string_view, N>& words, std::string_view word)
{
  const auto found = std::find(words.begin(), words.end(), word);
  if (found == words.end())
    return {};
  return static_cast<unsigned>(found - words.begin());
}

template <std::size_t N>
std::string listed(const std::array<std::string_view, N>& words)
{
  std::string result;
  for (const std::string_view word : words)
    result += (result.empty() ? "" : ", ") + std::string(word);
  return result;
}

} // namespace

std::optional<unsigned> labelSourceCode(std::string_view word)
{
  return codeOf(sources, word);
}

std::optional<unsigned> labelFormatCode(std::string_view word)
{
  return codeOf(formats, word);
}

std::string labelFormatWord(unsigned code)
{
  return code < formats.size() ? std::string(formats[code]) : std::to_string(code);
}

std::string labelSourceWords()
{
  return listed(sources);
}

std::string labelFormatWords()
{
  return listed(formats);
}

} // namespace reelhost
