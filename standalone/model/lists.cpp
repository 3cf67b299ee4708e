// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <utility>

#include "model/project.h"
#include "reelhost/host.h"

namespace reelhost::model {

namespace {

KeptList headOf(const KeptList& list)
{
  return {list.number, list.digest, list.file, list.title, list.format, list.eventCount, {}};
}

} // namespace

std::optional<const KeptList*> Project::pendingList(std::int64_t number) const
{
  if (const auto found = changedLists_.find(number); found != changedLists_.end())
    return found->second ? &*found->second : nullptr;
  if (std::count(inverse_.deletedLists.begin(), inverse_.deletedLists.end(), number) != 0)
    return nullptr;
  for (const KeptList& list : inverse_.lists)
    if (list.number == number)
      return &list;
  return {};
}

std::vector<KeptList> Project::lists()
{
  std::vector<KeptList> lists;
  if (!keepsLists())
    return lists;
  use(Access::Read);
  store_->lists()->readListHeads([&](KeptList&& list) {
    if (!pendingList(list.number))
      lists.push_back(std::move(list));
  });
  for (const KeptList& list : inverse_.lists)
    if (changedLists_.count(list.number) == 0)
      lists.push_back(headOf(list));
  for (const auto& [number, list] : changedLists_)
    if (list)
      lists.push_back(headOf(*list));
  std::sort(lists.begin(), lists.end(), [](const KeptList& a, const KeptList& b) { return a.number < b.number; });
  return lists;
}

Lists& Project::requireLists() const
{
  if (Lists* const lists = store_->lists())
    return *lists;
  throw Error(ErrorKind::Refused, subject() + ": this project keeps no lists");
}

std::vector<ListEvent> Project::eventsOf(std::int64_t number)
{
  Lists& lists = requireLists();
  if (const auto pending = pendingList(number)) {
    if (*pending)
      return (*pending)->events;
    throw Error(ErrorKind::NotFound, subject() + ": no list " + std::to_string(number));
  }
  use(Access::Read);
  return lists.eventsOf(number);
}

std::string Project::listBytes(const Digest& digest)
{
  Lists& lists = requireLists();
  if (const auto pending = listBytes_.find(digest); pending != listBytes_.end())
    return pending->second;
  use(Access::Read);
  return lists.listBytes(digest);
}

std::int64_t Project::keep(KeptList&& list, std::string&& bytes)
{
  Lists& lists = requireLists();
  useForChange();
  if (list.number == 0) {
    use(Access::Read);
    list.number = lists.nextListNumber();
    if (!changedLists_.empty())
      list.number = std::max(list.number, changedLists_.rbegin()->first + 1);
  }
  list.eventCount = static_cast<std::int64_t>(list.events.size());
  const std::int64_t number = list.number;
  listBytes_.insert_or_assign(list.digest, std::move(bytes));
  changedLists_.insert_or_assign(number, std::move(list));
  return number;
}

void Project::removeList(std::int64_t number)
{
  requireLists();
  useForChange();
  changedLists_.insert_or_assign(number, std::nullopt);
}

void Project::dropEventsOfDeletedLogs()
{
  if (deleted_.empty() || !keepsLists())
    return;
  for (KeptList& list : lists()) {
    list.events = eventsOf(list.number);
    if (std::erase_if(list.events, [&](const ListEvent& event) { return deleted_.count(event.shot) != 0; }) == 0)
      continue;
    list.eventCount = static_cast<std::int64_t>(list.events.size());
    changedLists_.insert_or_assign(list.number, std::move(list));
  }
}

} // namespace reelhost::model

namespace reelhost {

bool keepsLists()
{
  return model::openedProject && model::openedProject->keepsLists();
}

std::vector<KeptList> keptLists()
{
  return model::openedProject ? model::openedProject->lists() : std::vector<KeptList>();
}

std::vector<ListEvent> eventsOfList(std::int64_t list)
{
  return model::requireProject("list").eventsOf(list);
}

std::string bytesOfList(const Digest& digest)
{
  return model::requireProject("list").listBytes(digest);
}

std::int64_t keepList(KeptList list, std::string bytes)
{
  return model::requireProject("list").keep(std::move(list), std::move(bytes));
}

void removeList(std::int64_t list)
{
  model::requireProject("list").removeList(list);
}

std::int64_t logNumber(const Cookie& log)
{
  const model::Log* const found = model::openedProject ? model::openedProject->find(log) : nullptr;
  return found ? found->number : 0;
}

} // namespace reelhost
