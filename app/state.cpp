// SPDX-License-Identifier: Apache-2.0
#include "app/state.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <limits>
#include <optional>
#include <set>
#include <string_view>
#include <tuple>
#include <utility>

#include <fmt/format.h>

#include "app/commit_entries.h"
#include "app/facility.h"
#include "app/host_errors.h"
#include "app/json/json.h"
#include "app/kept_events.h"
#include "app/list_files.h"
#include "app/plain_text.h"
#include "app/projects.h"
#include "base/display_text.h"
#include "base/text_width.h"
#include "host/codes.h"
#include "reelhost/host.h"
#include "reelhost/lists.h"
#include "reelhost/store.h"

namespace reeldb::app {

namespace {

constexpr std::size_t largestState = std::size_t{2} << 30;

/// The largest number that every reader of JSON keeps exactly.
constexpr std::int64_t largestNumber = (std::int64_t{1} << 53) - 1;

constexpr std::size_t largestReelField = std::numeric_limits<int>::max();

using Uuid = std::array<unsigned char, 16>;

constexpr std::string_view hexDigits = "0123456789abcdef";

std::string hexOf(const Uuid& uuid)
{
  std::string text;
  for (const unsigned char byte : uuid) {
    text += hexDigits[byte >> 4U];
    text += hexDigits[byte & 15U];
  }
  return text;
}

[[noreturn]] void refuse(const std::string& subject, const std::string& fact)
{
  throw Error(ErrorKind::Unreadable, fmt::format("{}: {}", subject, fact));
}

Uuid uuidFrom(const std::string& subject, const std::string& text)
{
  Uuid uuid{};
  if (text.size() != 2 * uuid.size() || text.find_first_not_of(hexDigits) != std::string::npos)
    refuse(subject, fmt::format("\"{}\" is not an id (32 digits, 0 to 9 and a to f)", base::shortText(text)));
  for (std::size_t i = 0; i < uuid.size(); ++i)
    uuid[i] = static_cast<unsigned char>(hexDigits.find(text[2 * i]) << 4U | hexDigits.find(text[2 * i + 1]));
  return uuid;
}

int within(const std::string& subject, const char* what, std::int64_t value, int least, int most)
{
  if (value < least || value > most)
    refuse(subject, fmt::format("{} {}: not between {} and {}", what, value, least, most));
  return static_cast<int>(value);
}

const std::string& withoutNul(const std::string& subject, const std::string& text)
{
  if (text.find('\0') != std::string::npos)
    refuse(subject, "a text holds a byte 0");
  return text;
}

reelhost::KeyValues keysFrom(const std::string& subject, const KeyTexts& keys)
{
  std::set<std::string_view> seen;
  for (const auto& [key, text] : keys) {
    withoutNul(subject, key);
    withoutNul(subject, text);
    if (!seen.insert(key).second)
      refuse(subject, fmt::format("key \"{}\": given twice", base::shortText(key)));
  }
  return keys;
}

LogState stateOf(const reelhost::StoredLog& log)
{
  return {.number = log.number,
          .id = hexOf(log.uuid),
          .tag = log.tag,
          .kind = std::string(1, log.kind),
          .type = log.type,
          .imported = log.imported,
          .entireMedium = log.entireMedium,
          .name = log.name,
          .reelType = log.reelType,
          .videoChannels = log.videoChannels,
          .audioChannels = log.audioChannels,
          .keys = log.fields};
}

reelhost::StoredLog logFrom(const LogState& state)
{
  constexpr int mostChannels = 65535;
  const std::string subject = fmt::format("log {}", state.number);
  if (state.number < 1 || state.number > reelhost::lastLogNumber)
    refuse(subject, fmt::format("its number is not between 1 and {}", reelhost::lastLogNumber));
  if (state.kind.size() != 1 || state.kind == "I" || state.kind[0] == '\0')
    refuse(subject, fmt::format("\"{}\" is not a kind of log", base::shortText(state.kind)));
  reelhost::StoredLog log;
  log.number = state.number;
  log.uuid = uuidFrom(subject, state.id);
  log.tag = static_cast<std::uint16_t>(within(subject, "tag", state.tag, 0, 65535));
  log.kind = state.kind[0];
  log.type = within(subject, "type", state.type, std::numeric_limits<int>::min(), std::numeric_limits<int>::max());
  log.imported = state.imported;
  log.entireMedium = state.entireMedium;
  log.name = withoutNul(subject, state.name);
  log.reelType = withoutNul(subject, state.reelType);
  log.videoChannels = within(subject, "video_channels", state.videoChannels, 0, mostChannels);
  log.audioChannels = within(subject, "audio_channels", state.audioChannels, 0, mostChannels);
  log.fields = keysFrom(subject, state.keys);
  return log;
}

std::vector<reelhost::StoredLog> logsFrom(const std::vector<LogState>& states)
{
  std::vector<reelhost::StoredLog> logs;
  std::set<std::tuple<Uuid, std::uint16_t, char>> identities;
  logs.reserve(states.size());
  for (const LogState& state : states) {
    logs.push_back(logFrom(state));
    const reelhost::StoredLog& log = logs.back();
    if (logs.size() > 1 && log.number <= logs[logs.size() - 2].number)
      refuse(fmt::format("log {}", log.number), "its number is not above that of the log before it");
    if (!identities.emplace(log.uuid, log.tag, log.kind).second)
      refuse(fmt::format("log {}", log.number), "another log has its id, tag and kind");
  }
  return logs;
}

std::vector<ListState> listsOf(reelhost::Lists& lists)
{
  std::vector<reelhost::KeptList> heads;
  lists.readListHeads([&](reelhost::KeptList&& head) { heads.push_back(std::move(head)); });
  std::vector<ListState> states;
  for (const reelhost::KeptList& head : heads) {
    ListState& state = states.emplace_back(
        ListState{head.number, head.file, head.title, head.format, lists.listBytes(head.digest), {}});
    for (const reelhost::ListEvent& event : lists.eventsOf(head.number))
      state.events.push_back({event.shot, clipFrom(event)});
  }
  return states;
}

/// Throws Error if a text of the event holds NUL, or if its numbers are not those of an event.
void checkEvent(const std::string& subject, const EventState& event)
{
  const lists::Clip& clip = event.clip;
  for (const std::string* text :
       {&clip.reel, &clip.clipName, &clip.sourceFile, &clip.tracks, &clip.sourceIn, &clip.sourceOut, &clip.recordIn,
        &clip.recordOut, &clip.frameRate, &clip.ownName, &clip.sourceId, &clip.special, &clip.event.number,
        &clip.event.reelText, &clip.event.transition, &clip.event.duration})
    withoutNul(subject, *text);
  for (const std::string& alias : clip.aliases)
    withoutNul(subject, alias);
  if (clip.event.speed) {
    withoutNul(subject, clip.event.speed->framesPerSecond);
    withoutNul(subject, clip.event.speed->timecode);
  }
  for (const lists::SourceId& id : clip.event.sourceIds) {
    withoutNul(subject, id.kind);
    withoutNul(subject, id.id);
  }
  if (clip.line < 0 || clip.event.part < 1 || clip.videoChannels < 0 || clip.audioChannels < 0)
    refuse(subject, "an event has a line, a part or channels that no list has");
  if (clip.event.reelField > largestReelField)
    refuse(subject, fmt::format("an event has a reel field of {} characters, more than {}", clip.event.reelField,
                                largestReelField));
}

/// @p logs are those of the state, by number.
reelhost::KeptList listFrom(const ListState& state, const std::vector<reelhost::StoredLog>& logs)
{
  const std::string subject = fmt::format("list {}", state.number);
  if (state.number < 1 || state.number > largestNumber)
    refuse(subject, fmt::format("its number is not between 1 and {}", largestNumber));
  reelhost::KeptList list;
  list.number = state.number;
  list.digest = reelhost::digestOf(state.content);
  list.file = withoutNul(subject, state.file);
  list.title = withoutNul(subject, state.title);
  list.format = withoutNul(subject, state.format);
  std::set<std::pair<int, std::int64_t>> places;
  for (const EventState& event : state.events) {
    checkEvent(subject, event);
    const auto log =
        std::lower_bound(logs.begin(), logs.end(), event.shot,
                         [](const reelhost::StoredLog& one, std::int64_t number) { return one.number < number; });
    if (event.shot != 0 && (log == logs.end() || log->number != event.shot))
      refuse(subject, fmt::format("an event names log {}, which does not exist", event.shot));
    if (event.shot != 0 && log->type == codes::reelLog)
      refuse(subject, fmt::format("an event names log {}, which is a reel", event.shot));
    if (!places.emplace(event.clip.line, event.shot).second)
      refuse(subject, fmt::format("two events of line {} have the same shot", event.clip.line));
    list.events.push_back(eventFrom(event.clip, event.shot));
  }
  return list;
}

/// What a store gets.
struct Content {
  reelhost::ProjectInfo info; ///< without a name
  reelhost::KeyValues options;
  reelhost::Changes changes;
};

Content contentOf(const ProjectState& state)
{
  constexpr int mostCode = std::numeric_limits<int>::max();
  Content content;
  content.info.uuid = uuidFrom("project", state.id);
  content.info.frameRate = within("project", "frame_rate_code", state.frameRateCode, -1, mostCode);
  content.info.outputFrameRate = within("project", "output_frame_rate_code", state.outputFrameRateCode, -1, mostCode);
  reelhost::Changes& changes = content.changes;
  changes.logs = logsFrom(state.logs);
  for (const ListState& list : state.lists) {
    changes.lists.push_back(listFrom(list, changes.logs));
    changes.listBytes.emplace(changes.lists.back().digest, list.content);
    if (changes.lists.size() > 1 && list.number <= changes.lists[changes.lists.size() - 2].number)
      refuse(fmt::format("list {}", list.number), "its number is not above that of the list before it");
  }
  content.options = keysFrom("options", state.options);
  return content;
}

ProjectState stateIn(const std::string& text, const std::string& path)
{
  try {
    return fromJson<ProjectState>(text);
  } catch (const Error& error) {
    throw Error(error.kind(), fmt::format("{}: {}", base::displayText(path), error.what()));
  }
}

/// Throws Error if the project has had anything.
void requireUnused(const std::string& name, const std::filesystem::path& path)
{
  const auto store = reelhost::makeSqliteStore(path);
  store->begin(reelhost::Access::Read, {});
  reelhost::Lists* const lists = store->lists();
  if (store->nextNumber() != 1 || (lists && lists->nextListNumber() != 1))
    throw Error(ErrorKind::Refused,
                fmt::format("{}: has had reels, shots or lists, and the file is a whole project (reeldb project new "
                            "NAME --from FILE makes a project of it)",
                            base::displayText(name)));
}

} // namespace

ProjectState readState(Session&)
{
  return guarded([] {
    reelhost::Store& store = reelhost::projectStore();
    const reelhost::ProjectInfo info = store.info();
    ProjectState state;
    state.id = hexOf(info.uuid);
    state.frameRateCode = info.frameRate;
    state.outputFrameRateCode = info.outputFrameRate;
    state.options = store.options();
    const auto keep = [&](const reelhost::StoredLog& log) { state.logs.push_back(stateOf(log)); };
    store.readReels(keep);
    store.readOthers(keep);
    std::sort(state.logs.begin(), state.logs.end(),
              [](const LogState& one, const LogState& other) { return one.number < other.number; });
    if (reelhost::Lists* const lists = store.lists())
      state.lists = listsOf(*lists);
    return state;
  });
}

ProjectState readStateFile(const std::string& path)
{
  return stateIn(readInputFile(path, largestState), path);
}

std::string makeProjectFrom(const ProjectState& state, const std::string& name)
{
  return guarded([&] {
    const reelhost::Facility& facility = requireFacility();
    requirePlainText(name, fmt::format("\"{}\": not a valid project name", base::shortText(name)));
    Content content = contentOf(state);
    content.info.name = name;
    createSqliteProject(facility.projectFile(name), content.info, content.options, content.changes);
    const auto same = makeMemoryStore(content.info, content.options);
    same->begin(reelhost::Access::Read, {});
    return frameRateName(reelhost::currentInfo(*same).frameRate);
  });
}

bool isState(const ListFile& file)
{
  return file.list.holdsProject;
}

ImportReport importState(const std::optional<std::string>& project, const ListFile& file, bool dryRun)
{
  return guarded([&] {
    const std::string name = chosenProject(project);
    const std::filesystem::path path = requireFacility().projectFile(name);
    requireUnused(name, path);
    Content content = contentOf(stateIn(file.bytes, file.path));
    ImportReport report;
    ImportedList& imported = report.lists.emplace_back();
    imported.file = file.path;
    imported.list.format = file.list.format;
    for (const reelhost::StoredLog& log : content.changes.logs)
      if (log.type == codes::reelLog)
        imported.created.push_back(idOf(log));
      else
        ++imported.shotsAdded;
    imported.clips = imported.shotsAdded;
    report.dryRun = dryRun;
    report.changes = true;
    report.stored = !dryRun;
    content.changes.origin = reelhost::currentOrigin();
    if (report.stored)
      reelhost::fillSqliteProject(path, content.info, content.options, content.changes);
    return report;
  });
}

} // namespace reeldb::app
