// SPDX-License-Identifier: Apache-2.0
#include "app/kept_events.h"

#include <algorithm>

#include "app/shot_logs.h"

namespace reeldb::app {

namespace {

constexpr char idEnd = '\n', kindEnd = '\t'; // no id and no kind contains them

std::string textOf(const std::vector<lists::SourceId>& ids)
{
  std::string text;
  for (const lists::SourceId& id : ids)
    text += (text.empty() ? "" : std::string(1, idEnd)) + id.kind + kindEnd + id.id;
  return text;
}

std::vector<lists::SourceId> idsFrom(const std::string& text)
{
  std::vector<lists::SourceId> ids;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t end = std::min(text.find(idEnd, at), text.size());
    const std::size_t kind = std::min(text.find(kindEnd, at), end);
    ids.push_back({text.substr(at, kind - at), kind < end ? text.substr(kind + 1, end - kind - 1) : std::string()});
    at = end + 1;
  }
  return ids;
}

} // namespace

reelhost::ListEvent eventFrom(const lists::Clip& clip, std::int64_t shot)
{
  reelhost::ListEvent event;
  event.shot = shot;
  event.line = clip.line;
  event.clip = materialFrom(clip);
  event.special = clip.special;
  event.number = clip.event.number;
  event.part = clip.event.part;
  event.reelText = clip.event.reelText;
  event.reelField = static_cast<int>(clip.event.reelField);
  event.transition = clip.event.transition;
  event.duration = clip.event.duration;
  if (clip.event.speed) {
    event.speed = clip.event.speed->framesPerSecond;
    event.speedTimecode = clip.event.speed->timecode;
  }
  event.sourceIds = textOf(clip.event.sourceIds);
  return event;
}

lists::Clip clipFrom(const reelhost::ListEvent& event)
{
  lists::Clip clip = shotFrom(event.clip);
  clip.line = event.line;
  clip.special = event.special;
  clip.event.number = event.number;
  clip.event.part = event.part;
  clip.event.reelText = event.reelText;
  clip.event.reelField = static_cast<std::size_t>(event.reelField);
  clip.event.transition = event.transition;
  clip.event.duration = event.duration;
  if (!event.speed.empty())
    clip.event.speed = lists::Speed{event.speed, event.speedTimecode};
  clip.event.sourceIds = idsFrom(event.sourceIds);
  return clip;
}

} // namespace reeldb::app
