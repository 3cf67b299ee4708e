// SPDX-License-Identifier: Apache-2.0
//
// A fuzz target throws if a property does not hold. A fuzzer reports that as a finding, and the test that replays the
// corpus as a failure.
#ifndef REELDB_FUZZ_SUPPORT_CHECK_H
#define REELDB_FUZZ_SUPPORT_CHECK_H

#include <sstream>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

namespace reeldb_fuzz {

class Broken : public std::logic_error {
public:
  using std::logic_error::logic_error;
};

template <class T>
std::string shown(const T& value)
{
  if constexpr (std::is_integral_v<T>)
    return std::to_string(value);
  std::ostringstream text;
  text << value;
  return text.str();
}

/// A word.
inline std::string shown(const char* word)
{
  return word;
}

/// The text in quotes, with \xNN for every byte that is not printable ASCII.
inline std::string shown(const std::string& value)
{
  static const char digits[] = "0123456789abcdef";
  std::string text = "\"";
  for (const char c : value) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte >= 0x20 && byte < 0x7F)
      text += c;
    else
      text.append("\\x").append(1, digits[byte >> 4]).append(1, digits[byte & 15]);
  }
  return text + "\"";
}

template <class T>
std::string shown(const std::vector<T>& values)
{
  std::string text = "[";
  for (const T& value : values)
    text += (text.size() > 1 ? ", " : "") + shown(value);
  return text + "]";
}

/// Throws Broken unless the condition holds. The message consists of @p parts: words (const char*) unchanged, values as
/// shown(). It is formed only if it is needed.
template <class... Parts>
void require(bool holds, const Parts&... parts)
{
  if (holds)
    return;
  std::string text;
  ((text += (text.empty() ? "" : " ") + shown(parts)), ...);
  throw Broken(text);
}

template <class Got, class Wanted, class... Parts>
void requireEqual(const Got& got, const Wanted& wanted, const Parts&... what)
{
  require(got == wanted, what..., "is", got, "and should be", wanted);
}

} // namespace reeldb_fuzz

#endif
