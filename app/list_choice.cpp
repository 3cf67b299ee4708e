// SPDX-License-Identifier: Apache-2.0
#include "app/list_choice.h"

#include <filesystem>
#include <vector>

#include <fmt/format.h>

#include "app/error.h"
#include "base/ascii.h"
#include "base/number.h"
#include "base/text_width.h"

namespace reeldb::app {

namespace {

/// The only one of the lists that has the name. Empty if no list has it.
std::optional<reelhost::KeptList> theOneWith(const std::vector<reelhost::KeptList>& lists, const std::string& name,
                                             std::string reelhost::KeptList::*part, const char* advice)
{
  std::vector<const reelhost::KeptList*> found;
  for (const reelhost::KeptList& list : lists)
    if (!name.empty() && base::sameName(list.*part, name))
      found.push_back(&list);
  if (found.empty())
    return {};
  if (found.size() > 1)
    throw Error(ErrorKind::Refused, fmt::format("{}: {} lists have this name ({})", base::shortText(name), found.size(),
                                                fmt::format(fmt::runtime(advice), found.back()->number)));
  return *found.front();
}

} // namespace

void requireKeepsLists()
{
  if (!reelhost::keepsLists())
    throw Error(ErrorKind::Refused, fmt::format("{}: keeps no lists", reelhost::projectInfo().name));
}

reelhost::KeptList listNamed(const std::string& name)
{
  requireKeepsLists();
  const std::vector<reelhost::KeptList> lists = reelhost::keptLists();
  if (const std::optional<int> number = base::parseNumber(name))
    for (const reelhost::KeptList& list : lists)
      if (list.number == *number)
        return list;
  for (const auto part : {&reelhost::KeptList::file, &reelhost::KeptList::title})
    if (auto list =
            theOneWith(lists, name, part, "use the number of one, such as {}; reeldb list-file list shows them"))
      return *list;
  throw Error(ErrorKind::NotFound,
              fmt::format("{}: no such list (reeldb list-file list shows them)", base::shortText(name)));
}

std::optional<reelhost::KeptList> listWith(const reelhost::Digest& digest)
{
  for (const reelhost::KeptList& list : reelhost::keptLists())
    if (list.digest == digest)
      return list;
  return {};
}

std::optional<reelhost::KeptList> versionOf(const ListFile& file, const reelhost::Digest& digest)
{
  if (auto list = listWith(digest))
    return list;
  const std::vector<reelhost::KeptList> lists = reelhost::keptLists();
  constexpr const char* advice = "name one of them: --as {}; reeldb list-file list shows them";
  if (auto list = theOneWith(lists, fileNameOf(file), &reelhost::KeptList::file, advice))
    return list;
  return theOneWith(lists, file.list.title, &reelhost::KeptList::title, advice);
}

std::string fileNameOf(const ListFile& file)
{
  return std::filesystem::path(file.path).filename().native();
}

} // namespace reeldb::app
