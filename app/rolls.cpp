// SPDX-License-Identifier: Apache-2.0
#include "app/rolls.h"

#include <algorithm>
#include <map>
#include <set>

#include "app/host_errors.h"
#include "app/reels.h"
#include "app/shots.h"
#include "lists/name_forms.h"

namespace reeldb::app {

namespace {

bool isLetter(char c)
{
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

bool isDigit(char c)
{
  return c >= '0' && c <= '9';
}

/// The number of digits from a place on.
std::size_t digitsAt(std::string_view text, std::size_t at)
{
  const auto end = std::find_if_not(text.begin() + static_cast<std::ptrdiff_t>(at), text.end(), isDigit);
  return static_cast<std::size_t>(end - text.begin()) - at;
}

} // namespace

std::string_view rollOfCameraClip(std::string_view name)
{
  constexpr std::size_t fewestDigits = 3, mostDigits = 4;
  if (name.empty() || !isLetter(name.front()))
    return {};
  const std::size_t number = name.size() > 1 && name[1] == '_' ? 2 : 1;
  const std::size_t digits = digitsAt(name, number);
  const std::size_t clip = number + digits;
  if (digits < fewestDigits || digits > mostDigits || clip == name.size() || (name[clip] != 'C' && name[clip] != 'c'))
    return {};
  const std::size_t clipDigits = digitsAt(name, clip + 1);
  return clipDigits >= fewestDigits && clipDigits <= mostDigits ? name.substr(0, clip) : std::string_view();
}

std::vector<Roll> reelsByRoll(Session& session)
{
  return guarded([&] {
    std::map<std::string, std::string> spellings; // of rolls, by their forms
    for (const Shot& shot : allShots(session))
      if (!shot.cameraRoll.empty())
        spellings.try_emplace(lists::nameForm(shot.cameraRoll), shot.cameraRoll);
    std::set<std::size_t, std::greater<>> lengths;
    for (const auto& [form, spelling] : spellings)
      lengths.insert(form.size());
    const auto rollOf = [&](const std::string& reel) {
      const std::string form = lists::nameForm(reel);
      for (const std::size_t length : lengths)
        if (length <= form.size())
          if (const auto known = spellings.find(form.substr(0, length)); known != spellings.end())
            return known->second;
      const std::string_view roll = rollOfCameraClip(reel);
      return roll.empty() ? std::string() : spellings.try_emplace(lists::nameForm(roll), roll).first->second;
    };
    std::map<std::string, Roll> rolls;
    for (const Reel& reel : listReels(session)) {
      const std::string name = rollOf(reel.id);
      Roll& roll = rolls[name];
      roll.name = name;
      roll.reels.push_back(reel.id);
      roll.shots += reel.shots;
    }
    std::vector<Roll> result;
    for (auto& [name, roll] : rolls)
      if (!name.empty())
        result.push_back(std::move(roll));
    if (const auto none = rolls.find(std::string()); none != rolls.end())
      result.push_back(std::move(none->second));
    return result;
  });
}

} // namespace reeldb::app
