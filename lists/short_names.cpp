// SPDX-License-Identifier: Apache-2.0
#include "lists/short_names.h"

#include <string_view>
#include <unordered_map>
#include <unordered_set>

#include "base/ascii.h"
#include "lists/names.h"
#include "lists/text.h"

namespace reeldb::lists {
namespace {

constexpr std::size_t digitsField = 3;
constexpr int highestNumber = 998;

/// Fields up to this width allow only capitals and digits.
constexpr std::size_t widestNarrow = 8;

/// The start of a name if the field allows no character of the identifier.
constexpr std::string_view nameless = "REEL";

bool isReserved(std::string_view name)
{
  return isAuxiliary(name) || !placeholderReason(name).empty();
}

std::string padded(int number)
{
  const std::string digits = std::to_string(number);
  return std::string(digitsField - digits.size(), '0') + digits;
}

/// The identifier in the field's characters, of any length.
std::string spelt(std::string_view reel, bool narrow)
{
  std::string result;
  for (const char c : narrow ? base::upperCase(reel) : std::string(reel)) {
    if (isDigit(c) || isLetter(c) || (!narrow && std::string_view("_.-&").find(c) != std::string_view::npos))
      result += c;
    else if (!narrow && (static_cast<unsigned char>(c) & 0xC0) != 0x80) // one '_' per character
      result += '_';
  }
  return result;
}

class Namer {
public:
  Namer(const std::vector<std::string>& reels, std::size_t field)
      : reels_(reels), field_(field), narrow_(field <= widestNarrow), names_(reels.size())
  {
  }

  std::optional<std::vector<std::string>> run()
  {
    for (std::size_t i = 0; i < reels_.size(); ++i)
      keep(i);
    for (std::size_t i = 0; i < reels_.size(); ++i)
      if (names_[i].empty() && !(field_ == digitsField ? takeNumber(i) : takeName(i)))
        return std::nullopt;
    return std::move(names_);
  }

private:
  void give(std::size_t reel, std::string name)
  {
    taken_.insert(base::fold(name));
    names_[reel] = std::move(name);
  }

  /// Names the reel by its identifier if the field allows that.
  void keep(std::size_t i)
  {
    std::string name = spelt(reels_[i], narrow_);
    const bool fits = !name.empty() && name.size() <= field_ && base::sameName(name, reels_[i]) && !isReserved(name);
    const bool isNumber = field_ != digitsField || (name.size() == digitsField && name != "000" && name != "999" &&
                                                    name.find_first_not_of("0123456789") == std::string::npos);
    if (fits && isNumber)
      give(i, std::move(name));
    else
      ++cuts_[base::fold(name.substr(0, field_))];
  }

  bool takeNumber(std::size_t i)
  {
    while (number_ <= highestNumber && taken_.contains(padded(number_)))
      ++number_;
    if (number_ > highestNumber)
      return false;
    give(i, padded(number_));
    return true;
  }

  bool takeName(std::size_t i)
  {
    std::string name = spelt(reels_[i], narrow_);
    std::string cut = name.substr(0, field_);
    if (!cut.empty() && cuts_.at(base::fold(cut)) == 1 && !taken_.contains(base::fold(cut)) && !isReserved(cut)) {
      give(i, std::move(cut));
      return true;
    }
    if (name.empty())
      name = nameless;
    const std::string divider = narrow_ ? "" : "_";
    for (std::size_t digits = 1; digits + divider.size() <= field_; ++digits) {
      const std::string head = name.substr(0, field_ - digits - divider.size()) + divider;
      // The numbering goes on for all names with the same head, so that no number is tried twice.
      std::size_t& next = next_.try_emplace(base::fold(head), 1).first->second;
      for (; std::to_string(next).size() <= digits; ++next) {
        std::string numbered = head + std::to_string(next);
        // A name that another reel would be cut to must not mean this reel.
        if (taken_.contains(base::fold(numbered)) || cuts_.contains(base::fold(numbered)))
          continue;
        give(i, std::move(numbered));
        return true;
      }
    }
    return false;
  }

  const std::vector<std::string>& reels_;
  std::size_t field_;
  bool narrow_;
  std::vector<std::string> names_;
  std::unordered_set<std::string> taken_;             ///< folded
  std::unordered_map<std::string, int> cuts_;         ///< folded cut form of reels that do not fit: their number
  std::unordered_map<std::string, std::size_t> next_; ///< folded head: the next number
  int number_ = 1;
};

} // namespace

std::string fieldForm(std::string_view reel, std::size_t field)
{
  return spelt(reel, field <= widestNarrow).substr(0, field);
}

std::optional<std::vector<std::string>> shortReelNames(const std::vector<std::string>& reels, std::size_t field)
{
  return Namer(reels, field).run();
}

} // namespace reeldb::lists
