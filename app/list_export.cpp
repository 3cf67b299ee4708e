// SPDX-License-Identifier: Apache-2.0
#include "app/list_export.h"

#include <algorithm>
#include <unordered_set>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "app/error.h"
#include "app/kept_events.h"
#include "app/kept_lists.h"
#include "app/projects.h"
#include "base/ascii.h"
#include "base/display_text.h"
#include "lists/name_forms.h"
#include "lists/names.h"
#include "lists/write.h"

namespace reeldb::app {

namespace {

constexpr std::size_t usualReelLength = 8;

/// The narrowest reel field that has room for that of the list.
std::size_t reelLengthOf(const std::vector<Shot>& events)
{
  const std::size_t field = events.empty() ? 0 : events.front().event.reelField;
  const std::vector<std::size_t>& lengths = reelLengths();
  const auto found = std::lower_bound(lengths.begin(), lengths.end(), field);
  return field == 0 || found == lengths.end() ? usualReelLength : *found;
}

/// What the list's own bytes say besides its events.
std::vector<std::string> remarksOnOriginal(const lists::List& original, const KeptList& list)
{
  std::vector<std::string> remarks;
  const auto remark = [&](auto count, const char* what, const std::string& cause) {
    if (count > 0)
      remarks.push_back(fmt::format("{}: {} not written: {} ({})", base::displayText(list.file), what, count, cause));
  };
  remark(original.tally.ignored, "notes and statements", "list-file show --original has them");
  remark(original.unread.size(), "headings and columns of the log",
         fmt::format("{}", fmt::join(original.unread, ", ")));
  remark(original.rejected.size(), "rejected lines", "they could not be read");
  remark(static_cast<std::int64_t>(lists::eventsOf(original).size()) - list.events, "events",
         "their shots were deleted");
  return remarks;
}

/// Whether what the list calls its reel is a form of that name: a spelling, a cut form, or with another ending.
bool isCalled(const Shot& event, const std::string& reel)
{
  const auto isForm = [&](const std::string& name, bool mayBeCut) {
    return lists::isSameName(lists::partsOf(name).stem, lists::partsOf(reel).stem) ||
           lists::isShortForm(name, mayBeCut, reel);
  };
  return isForm(event.reel, event.mayBeCut) || isForm(event.event.reelText, lists::fillsField(event.event));
}

/// Gives the event the reel that its shot has now. A text of the list that means another reel goes: another reel may
/// have that name now.
void takeReel(Shot& event, const std::string& reel)
{
  if (!isCalled(event, reel))
    event.event.reelText.clear();
  if (event.ownName.empty())
    event.ownName = event.reel;
  event.reel = reel;
}

/// The format in which a list is written if no other is asked for. The others are not written.
lists::Format ownFormat(const KeptList& list)
{
  for (const lists::Format format : {lists::Format::Ale, lists::Format::Otio})
    if (list.format == lists::wordOf(format))
      return format;
  return lists::Format::Edl;
}

/// What the list's own bytes say. Nothing if they are a table whose titles a person explained: the project does not
/// keep the explanation.
lists::List originalList(Session& session, const KeptList& list)
{
  try {
    return lists::read(originalOf(session, std::to_string(list.number)));
  } catch (const lists::Error&) {
    return {};
  }
}

std::string titleOf(const KeptList& list)
{
  return list.title.empty() ? list.file : list.title;
}

} // namespace

ListEvents selectedEvents(Session& session, const std::string& list, const Selection& selection)
{
  ListEvents found = eventsOf(session, list);
  if (selection.empty())
    return found;
  std::unordered_set<std::string> reels;
  for (const std::string& reel : requireSelected(session, selection))
    reels.insert(base::fold(reel));
  std::erase_if(found.events, [&](const ListUse& use) { return !reels.contains(base::fold(use.reel)); });
  return found;
}

Written exportList(Session& session, const std::string& name, const ListForm& form, const Selection& selection)
{
  const ListEvents found = selectedEvents(session, name, selection);
  std::vector<Shot> events;
  for (const ListUse& use : found.events) {
    events.push_back(use.clip);
    if (!use.reel.empty())
      takeReel(events.back(), use.reel);
  }
  const lists::Format format = form.format.value_or(ownFormat(found.list));
  const lists::List original = originalList(session, found.list);
  try {
    lists::Written written =
        format == lists::Format::Ale ? lists::writeAle(rateOf(session).rate, events, original.headingRate)
        : format == lists::Format::Otio
            ? lists::writeOtio(titleOf(found.list), events, rateOf(session).rate, true)
            : lists::writeEdl(found.list.title, events, form.reelLength ? *form.reelLength : reelLengthOf(events));
    std::vector<std::string> remarks;
    if (selection.empty()) // what a part of the list leaves out was asked for
      remarks = remarksOnOriginal(original, found.list);
    Written result{std::move(written.text), written.clips, std::move(remarks), std::move(written.leftOut)};
    result.remarks.insert(result.remarks.end(), written.remarks.begin(), written.remarks.end());
    return result;
  } catch (const lists::Error& error) {
    throw Error(ErrorKind::Refused, fmt::format("export: nothing written ({})", error.what()));
  }
}

} // namespace reeldb::app
