// SPDX-License-Identifier: Apache-2.0
#include "lists/seconds.h"

#include <algorithm>
#include <limits>

#include "lists/text.h"

namespace reeldb::lists {
namespace {

/// Holds every product of two numbers of 64 bits, and the sum of two such products.
using Wide = __int128;

/// More decimal places and exponents than a number of 64 bits has.
constexpr int mostPlaces = 18;

std::optional<Seconds> inLowestTerms(Wide above, Wide below)
{
  if (below == 0)
    return std::nullopt;
  Wide divisor = above, rest = below;
  while (rest != 0) {
    const Wide next = divisor % rest;
    divisor = rest;
    rest = next;
  }
  if ((divisor < 0) != (below < 0))
    divisor = -divisor; // the denominator becomes positive
  above /= divisor;
  below /= divisor;
  constexpr Wide least = std::numeric_limits<std::int64_t>::min(), most = std::numeric_limits<std::int64_t>::max();
  if (above < least || above > most || below > most)
    return std::nullopt;
  return Seconds{static_cast<std::int64_t>(above), static_cast<std::int64_t>(below)};
}

/// A number of decimal digits without a sign; empty if it has none or more than 64 bits hold.
std::optional<std::int64_t> digitsOf(std::string_view text)
{
  constexpr std::int64_t ten = 10;
  std::int64_t number = 0;
  if (text.empty() || !std::all_of(text.begin(), text.end(), isDigit))
    return std::nullopt;
  for (const char digit : text)
    if (__builtin_mul_overflow(number, ten, &number) || __builtin_add_overflow(number, digit - '0', &number))
      return std::nullopt;
  return number;
}

bool takeSign(std::string_view& text)
{
  const bool isNegative = text.starts_with('-');
  if (isNegative || text.starts_with('+'))
    text.remove_prefix(1);
  return isNegative;
}

/// 1 with this number of zeros.
std::int64_t powerOfTen(int zeros)
{
  constexpr std::int64_t ten = 10;
  std::int64_t power = 1;
  for (; zeros > 0; --zeros)
    power *= ten;
  return power;
}

std::optional<Seconds> parseDecimal(std::string_view text)
{
  const bool isNegative = takeSign(text);
  int exponent = 0;
  if (const std::size_t mark = text.find_first_of("eE"); mark != std::string_view::npos) {
    std::string_view power = text.substr(mark + 1);
    text = text.substr(0, mark);
    const bool isSmall = takeSign(power);
    const std::optional<std::int64_t> value = digitsOf(power);
    if (!value || *value > mostPlaces)
      return std::nullopt;
    exponent = static_cast<int>(isSmall ? -*value : *value);
  }
  const std::size_t point = text.find('.');
  const std::string_view whole = text.substr(0, point);
  std::string_view places = point == std::string_view::npos ? std::string_view() : text.substr(point + 1);
  if (point != std::string_view::npos && !std::all_of(places.begin(), places.end(), isDigit))
    return std::nullopt;
  while (places.ends_with('0'))
    places.remove_suffix(1);
  if (places.size() > mostPlaces)
    return std::nullopt;
  const std::optional<std::int64_t> above = digitsOf(whole);
  const std::int64_t decimals = places.empty() ? 0 : *digitsOf(places);
  const std::int64_t unit = powerOfTen(static_cast<int>(places.size()));
  if (!above)
    return std::nullopt;
  const Wide number = Wide{*above} * unit + decimals;
  if (exponent >= 0 && number != 0 && number > std::numeric_limits<Wide>::max() / powerOfTen(exponent))
    return std::nullopt;
  const Wide sign = isNegative ? -1 : 1;
  return exponent >= 0 ? inLowestTerms(sign * number * powerOfTen(exponent), unit)
                       : inLowestTerms(sign * number, Wide{unit} * powerOfTen(-exponent));
}

} // namespace

std::optional<Seconds> parseFraction(std::string_view text)
{
  text = trim(text);
  const std::size_t slash = text.find('/');
  if (slash == std::string_view::npos)
    return parseDecimal(text);
  const std::optional<Seconds> above = parseDecimal(trim(text.substr(0, slash)));
  const std::optional<Seconds> below = parseDecimal(trim(text.substr(slash + 1)));
  return above && below ? quotient(*above, *below) : std::nullopt;
}

std::optional<Seconds> sum(Seconds a, Seconds b)
{
  return inLowestTerms(Wide{a.numerator} * b.denominator + Wide{b.numerator} * a.denominator,
                       Wide{a.denominator} * b.denominator);
}

std::optional<Seconds> difference(Seconds a, Seconds b)
{
  return inLowestTerms(Wide{a.numerator} * b.denominator - Wide{b.numerator} * a.denominator,
                       Wide{a.denominator} * b.denominator);
}

std::optional<Seconds> product(Seconds a, Seconds b)
{
  return inLowestTerms(Wide{a.numerator} * b.numerator, Wide{a.denominator} * b.denominator);
}

std::optional<Seconds> quotient(Seconds a, Seconds b)
{
  return inLowestTerms(Wide{a.numerator} * b.denominator, Wide{a.denominator} * b.numerator);
}

Seconds frameDuration(FrameRate rate)
{
  Seconds duration;
  secondsOf(1, rate, duration); // never fails for one frame
  return duration;
}

std::optional<FrameRate> rateOfFrames(Seconds duration)
{
  const auto found = std::find_if(frameRates.begin(), frameRates.end(),
                                  [&](FrameRate rate) { return frameDuration(rate) == duration; });
  return found == frameRates.end() ? std::nullopt : std::optional(*found);
}

std::optional<FrameAt> frameAt(Seconds time, FrameRate rate)
{
  const std::optional<Seconds> frames = quotient(time, frameDuration(rate));
  if (!frames)
    return std::nullopt;
  const std::int64_t rest = frames->numerator % frames->denominator;
  return FrameAt{frames->numerator / frames->denominator - (rest < 0 ? 1 : 0), rest == 0};
}

} // namespace reeldb::lists
