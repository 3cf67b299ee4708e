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

/// The camera rolls that logs give, and those that the names of camera clips have.
class RollNames {
public:
  explicit RollNames(Session& session)
  {
    for (const Shot& shot : allShots(session))
      add(shot);
  }

  void add(const Shot& shot)
  {
    if (shot.cameraRoll.empty())
      return;
    std::string form = lists::nameForm(shot.cameraRoll);
    lengths_.insert(form.size());
    spellings_.try_emplace(std::move(form), shot.cameraRoll);
  }

  /// The roll of the reel, in the spelling that came first; empty if it is of none.
  std::string rollOf(const std::string& reel)
  {
    const std::string form = lists::nameForm(reel);
    for (const std::size_t length : lengths_)
      if (length <= form.size())
        if (const auto known = spellings_.find(form.substr(0, length)); known != spellings_.end())
          return known->second;
    const std::string_view roll = rollOfCameraClip(reel);
    return roll.empty() ? std::string() : spellings_.try_emplace(lists::nameForm(roll), roll).first->second;
  }

private:
  std::map<std::string, std::string> spellings_;  ///< of rolls, by their forms
  std::set<std::size_t, std::greater<>> lengths_; ///< of the forms that logs give
};

/// The groups by name, that of no roll last.
template <class Group>
std::vector<Group> sorted(std::map<std::string, Group> groups)
{
  std::vector<Group> result;
  for (auto& [name, group] : groups)
    if (!name.empty())
      result.push_back(std::move(group));
  if (const auto none = groups.find(std::string()); none != groups.end())
    result.push_back(std::move(none->second));
  return result;
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
    RollNames names(session);
    std::map<std::string, Roll> rolls;
    for (const Reel& reel : listReels(session)) {
      const std::string name = names.rollOf(reel.id);
      Roll& roll = rolls[name];
      roll.name = name;
      roll.reels.push_back(reel.id);
      roll.shots += reel.shots;
    }
    return sorted(std::move(rolls));
  });
}

std::vector<NeededRoll> needsByRoll(Session& session, const std::vector<Need>& needs,
                                    const std::vector<lists::Clip>& clips)
{
  return guarded([&] {
    RollNames names(session);
    for (const lists::Clip& clip : clips)
      names.add(clip);
    std::map<std::string, NeededRoll> rolls;
    for (const Need& need : needs) {
      const std::string name = names.rollOf(need.id);
      NeededRoll& roll = rolls[name];
      roll.name = name;
      roll.reels.push_back(need.id);
      roll.shots += need.shots;
      roll.ready += need.troubles.empty() ? 1 : 0;
    }
    return sorted(std::move(rolls));
  });
}

} // namespace reeldb::app
