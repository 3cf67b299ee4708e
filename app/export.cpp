// SPDX-License-Identifier: Apache-2.0
#include "app/export.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "app/host_errors.h"
#include "app/projects.h"
#include "app/reel_records.h"
#include "app/shot_logs.h"
#include "base/ascii.h"
#include "base/display_text.h"
#include "lists/csv.h"
#include "lists/short_names.h"
#include "lists/write.h"

namespace reeldb::app {

namespace {

/// The shots, with their reels in the spelling of the records.
std::vector<lists::Clip> clipsOf(const ProjectContent& content)
{
  std::unordered_map<std::string, std::string> spellings;
  for (const Reel& reel : content.reels)
    spellings.try_emplace(base::fold(reel.id), reel.id);
  std::vector<lists::Clip> clips = content.shots;
  for (lists::Clip& clip : clips)
    if (const auto found = spellings.find(base::fold(clip.reel)); found != spellings.end())
      clip.reel = found->second;
  return clips;
}

std::string wordOf(bool flag)
{
  return flag ? "yes" : "no";
}

/// The titles of what a table has of each shot.
std::vector<std::string> shotTitles()
{
  std::vector<std::string> titles;
  titles.reserve(shotTexts.size());
  for (const ShotText& text : shotTexts)
    titles.emplace_back(text.name);
  titles.insert(titles.end(), {"aliases", "video_channels", "audio_channels", "frame_rate", "drop_frame"});
  return titles;
}

std::vector<std::string> cellsOf(const Shot& shot)
{
  std::vector<std::string> cells;
  cells.reserve(shotTexts.size());
  for (const ShotText& text : shotTexts)
    cells.push_back(shot.*text.text);
  cells.insert(cells.end(), {fmt::format("{}", fmt::join(shot.aliases, "\n")), std::to_string(shot.videoChannels),
                             std::to_string(shot.audioChannels), shot.frameRate, wordOf(shot.dropFrame)});
  return cells;
}

/// Adds warnings: what the list of the project's shots does not contain, among that the reels without shots.
Written listFrom(lists::Written written, const ProjectContent& content)
{
  Written result{std::move(written.text), written.clips, {}, std::move(written.leftOut)};
  if (written.clips > 0)
    result.remarks.push_back(fmt::format("{}: each shot of the project is written once, as a cut "
                                         "(reeldb export LIST writes an imported list with its transitions and speeds)",
                                         base::displayText(content.project)));
  const auto shotless =
      std::count_if(content.reels.begin(), content.reels.end(), [](const Reel& reel) { return reel.shots == 0; });
  if (shotless > 0)
    result.remarks.push_back(
        fmt::format("{} reel{} without a shot: not in the list", shotless, shotless == 1 ? "" : "s"));
  result.remarks.insert(result.remarks.end(), written.remarks.begin(), written.remarks.end());
  return result;
}

template <class Write>
Written listBy(const ProjectContent& content, Write write)
{
  try {
    return listFrom(write(clipsOf(content)), content);
  } catch (const lists::Error& error) {
    throw Error(ErrorKind::Refused, fmt::format("export: nothing written ({})", error.what()));
  }
}

} // namespace

ProjectContent readContent(Session& session)
{
  return guarded([&] {
    ProjectContent content;
    content.project = reelhost::projectInfo().name;
    content.rate = frameRateName(reelhost::projectInfo().frameRate);
    const ShotCounts shots = reelhost::shotCounts();
    for (const Cookie& log : session.manager().reelList) {
      const ReelDbRec record(log);
      Reel reel = readReel(record, shots);
      if (reel.id.empty())
        continue;
      content.reels.push_back(std::move(reel));
      content.oldNames.push_back(oldNamesOf(record));
    }
    content.shots = allShots(session);
    return content;
  });
}

void restrictTo(Session& session, ProjectContent& content, const Selection& selection)
{
  const std::vector<std::string> selected = requireSelected(session, selection);
  std::unordered_set<std::string> reels;
  for (const std::string& reel : selected)
    reels.insert(base::fold(reel));
  ProjectContent rest;
  rest.project = std::move(content.project);
  rest.rate = std::move(content.rate);
  for (std::size_t i = 0; i < content.reels.size(); ++i)
    if (reels.contains(base::fold(content.reels[i].id))) {
      rest.reels.push_back(std::move(content.reels[i]));
      rest.oldNames.push_back(std::move(content.oldNames[i]));
    }
  for (Shot& shot : content.shots)
    if (reels.contains(base::fold(shot.reel)))
      rest.shots.push_back(std::move(shot));
  content = std::move(rest);
}

const std::vector<std::size_t>& reelLengths()
{
  static const std::vector<std::size_t> lengths(lists::reelFields.begin(), lists::reelFields.end());
  return lengths;
}

Written writeEdl(const ProjectContent& content, std::size_t reelLength)
{
  return listBy(content, [&](const std::vector<lists::Clip>& clips) {
    return lists::writeEdl(content.project, clips, reelLength);
  });
}

Written writeAle(const ProjectContent& content)
{
  return listBy(content, [&](const std::vector<lists::Clip>& clips) { return lists::writeAle(content.rate, clips); });
}

Written writeOtio(const ProjectContent& content)
{
  return listBy(content, [&](const std::vector<lists::Clip>& clips) {
    return lists::writeOtio(content.project, clips, content.rate, false);
  });
}

Written writeReelsCsv(const ProjectContent& content)
{
  std::vector<std::string> titles = {"id",  "type",        "available",      "inhibit",       "label_mapping",
                                     "bin", "last_device", "video_channels", "audio_channels"};
  for (std::size_t i = 0; i < userFieldCount; ++i)
    titles.push_back(fmt::format("user_field_{}", i));
  titles.insert(titles.end(), {"shots", "old_names"});
  Written written{lists::csvRow(titles), content.shots.size(), {}, {}};
  for (std::size_t i = 0; i < content.reels.size(); ++i) {
    const Reel& reel = content.reels[i];
    std::vector<std::string> row = {reel.id,
                                    reel.type,
                                    wordOf(reel.available),
                                    wordOf(reel.inhibit),
                                    reel.labelMapping,
                                    reel.bin,
                                    reel.lastDevice,
                                    std::to_string(reel.videoChannels),
                                    std::to_string(reel.audioChannels)};
    row.insert(row.end(), reel.userFields.begin(), reel.userFields.end());
    row.push_back(std::to_string(reel.shots));
    row.push_back(fmt::format("{}", fmt::join(content.oldNames[i], "\n")));
    written.text += lists::csvRow(row);
  }
  return written;
}

Written writeShotsCsv(const ProjectContent& content)
{
  Written written{lists::csvRow(shotTitles()), content.shots.size(), {}, {}};
  for (const Shot& shot : content.shots)
    written.text += lists::csvRow(cellsOf(shot));
  return written;
}

Written writeEventsCsv(const ListEvents& list)
{
  std::vector<std::string> row = shotTitles();
  row.insert(row.end(), {"reel_now", "special", "event", "part", "reel_text", "transition", "duration", "speed",
                         "speed_timecode", "source_ids", "line"});
  Written written{lists::csvRow(row), list.events.size(), {}, {}};
  for (const ListUse& use : list.events) {
    const lists::Event& event = use.clip.event;
    std::vector<std::string> ids;
    for (const lists::SourceId& id : event.sourceIds)
      ids.push_back(id.id);
    const lists::Speed speed = event.speed.value_or(lists::Speed());
    row = cellsOf(use.clip);
    row.insert(row.end(), {use.reel, use.clip.special, event.number, std::to_string(event.part), event.reelText,
                           event.transition, event.duration, speed.framesPerSecond, speed.timecode,
                           fmt::format("{}", fmt::join(ids, "\n")), std::to_string(use.clip.line)});
    written.text += lists::csvRow(row);
  }
  return written;
}

} // namespace reeldb::app
