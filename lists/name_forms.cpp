// SPDX-License-Identifier: Apache-2.0
#include "lists/name_forms.h"

#include <algorithm>
#include <array>

#include "base/ascii.h"
#include "lists/text.h"

namespace reeldb::lists {
namespace {

constexpr std::array<std::string_view, 16> soundExtensions = {
    "wav", "bwf", "rf64", "w64", "aif", "aiff", "aifc", "caf", "mp3", "m4a", "aac", "flac", "ac3", "ogg", "opus", "sd2",
};
constexpr std::array<std::string_view, 12> stillExtensions = {
    "png", "tif", "tiff", "psd", "jpg", "jpeg", "bmp", "tga", "gif", "pct", "pict", "heic",
};
constexpr std::array<std::string_view, 34> fileExtensions = {
    "mov", "mxf", "mp4", "m4v",  "avi", "r3d",  "ari", "arx", "braw", "crm", "rmf", "cine",
    "dng", "dpx", "exr", "cin",  "mpg", "mpeg", "m2v", "mts", "m2ts", "m2t", "vob", "dv",
    "dif", "wmv", "mkv", "webm", "ogv", "3gp",  "flv", "gxf", "lxf",  "qt",
};

constexpr std::array<std::string_view, 4> additions = {"NEW", "COPY", "SUB", "SYNC"};

constexpr char other = '_';

bool isAscii(char c)
{
  return (static_cast<unsigned char>(c) & 0x80) == 0;
}

template <std::size_t count>
bool holds(const std::array<std::string_view, count>& words, std::string_view word)
{
  return std::any_of(words.begin(), words.end(), [&](std::string_view each) { return base::sameName(each, word); });
}

Ending endingOf(std::string_view extension)
{
  if (holds(soundExtensions, extension))
    return Ending::Sound;
  if (holds(stillExtensions, extension))
    return Ending::Still;
  return holds(fileExtensions, extension) ? Ending::File : Ending::None;
}

/// Takes the text behind the last point off, and the point. Empty, and nothing taken, if no other text would be left.
std::string_view takeExtension(std::string_view& name)
{
  const std::size_t point = name.rfind('.');
  if (point == std::string_view::npos || point == 0)
    return {};
  const std::string_view extension = name.substr(point + 1);
  name = name.substr(0, point);
  return extension;
}

/// "[1-96]", "[0086400-0086499]".
bool isFrameRange(std::string_view text)
{
  if (text.size() < 2 || text.front() != '[' || text.back() != ']')
    return false;
  text = text.substr(1, text.size() - 2);
  const std::size_t dash = text.find('-');
  const auto isNumber = [](std::string_view digits) {
    return !digits.empty() && std::all_of(digits.begin(), digits.end(), isDigit);
  };
  return dash != std::string_view::npos && isNumber(text.substr(0, dash)) && isNumber(text.substr(dash + 1));
}

bool beginsWith(std::string_view longer, std::string_view start)
{
  return longer.size() > start.size() && longer.starts_with(start);
}

} // namespace

bool fillsField(std::string_view name, std::size_t field)
{
  return field > 0 && length(name) == field;
}

std::string nameForm(std::string_view name)
{
  std::string form(name);
  for (char& c : form)
    c = isAscii(c) && !isLetter(c) && !isDigit(c) ? other : base::toLower(c);
  return form;
}

std::string lettersForm(std::string_view name)
{
  std::string form = nameForm(name);
  std::erase(form, other);
  return form;
}

bool isLettersOnly(std::string_view name)
{
  return !name.empty() && std::all_of(name.begin(), name.end(), [](char c) { return isLetter(c) || isDigit(c); });
}

bool isSameName(std::string_view a, std::string_view b)
{
  return nameForm(a) == nameForm(b);
}

bool isCutForm(std::string_view cut, std::string_view name)
{
  if (cut.empty())
    return false;
  return beginsWith(nameForm(name), nameForm(cut)) ||
         (isLettersOnly(cut) && beginsWith(lettersForm(name), lettersForm(cut)));
}

NameParts partsOf(std::string_view name)
{
  std::string_view rest = name;
  const std::string_view last = takeExtension(rest);
  if (rest.empty() || last.empty())
    return {name, Ending::None};
  const bool range = isFrameRange(last);
  const Ending ending = range ? Ending::File : endingOf(last);
  if (ending == Ending::None)
    return {name, Ending::None};
  std::string_view before = rest;
  const std::string_view next = takeExtension(before);
  if (!before.empty() && (range ? endingOf(next) != Ending::None : isFrameRange(next)))
    return {before, Ending::File};
  return {rest, ending};
}

bool isShortForm(std::string_view name, bool fills, std::string_view longer)
{
  if (fills && isCutForm(name, longer))
    return true;
  const NameParts parts = partsOf(longer);
  return parts.ending != Ending::None && partsOf(name).ending == Ending::None && isSameName(name, parts.stem);
}

std::string_view withoutAdditions(std::string_view clipName)
{
  for (;;) {
    std::string_view rest = clipName;
    const std::string_view number = takeExtension(rest);
    if (number.empty() || !std::all_of(number.begin(), number.end(), isDigit))
      return clipName;
    const std::string_view word = takeExtension(rest);
    if (rest.empty() || !holds(additions, word))
      return clipName;
    clipName = trimRight(rest);
  }
}

std::string_view fileName(std::string_view path)
{
  const std::size_t slash = path.find_last_of("/\\");
  if (slash == std::string_view::npos || slash + 1 == path.size())
    return path;
  return trim(path.substr(slash + 1));
}

} // namespace reeldb::lists
