// SPDX-License-Identifier: Apache-2.0
#include "app/needs.h"

#include <algorithm>
#include <map>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "app/host_errors.h"
#include "app/host_text.h"
#include "app/reel_records.h"
#include "app/shot_logs.h"
#include "base/ascii.h"
#include "base/text_width.h"

namespace reeldb::app {

namespace {

std::vector<std::string> troublesOf(const std::optional<Reel>& reel)
{
  if (!reel)
    return {"missing"};
  std::vector<std::string> troubles;
  if (!reel->available)
    troubles.emplace_back("unavailable");
  if (!isListedType(reel->type))
    troubles.emplace_back("unknown type");
  return troubles;
}

class Needs {
public:
  explicit Needs(Session& session) : manager_(session.manager()) {}

  void addShot(const std::string& reelId)
  {
    if (reelId.empty())
      return;
    const auto [found, first] = places_.emplace(base::fold(reelId), needs_.size());
    if (first)
      needs_.push_back(lookUp(reelId));
    ++needs_[found->second].shots;
  }
  std::vector<Need> take() { return std::move(needs_); }

private:
  Need lookUp(const std::string& reelId)
  {
    Need need{reelId, 0, std::nullopt, {}};
    if (const ReelDbRec record = manager_.getReelInfo(hostText(reelId)); record.valid()) {
      need.reel = readReel(record, {});
      need.id = need.reel->id;
    }
    need.troubles = troublesOf(need.reel);
    return need;
  }

  ReelDbManager& manager_;
  std::map<std::string, std::size_t> places_;
  std::vector<Need> needs_;
};

} // namespace

std::string Need::state() const
{
  return troubles.empty() ? "ready" : fmt::format("{}", fmt::join(troubles, ", "));
}

std::vector<Need> needsOfClips(Session& session, const std::vector<std::string>& clips)
{
  return guarded([&] {
    Needs needs(session);
    const std::vector<Shot> shots = allShots(session);
    for (const std::string& name : clips) {
      bool found = false;
      for (const Shot& shot : shots) {
        if (!base::sameName(shot.clipName, name))
          continue;
        found = true;
        needs.addShot(shot.reel);
      }
      if (!found)
        throw Error(ErrorKind::NotFound, fmt::format("{}: no shot has this clip name", base::shortText(name)));
    }
    std::vector<Need> result = needs.take();
    if (result.empty())
      throw Error(ErrorKind::Refused, "reels-of: none of these shots has a reel");
    return result;
  });
}

std::vector<Need> needsOfReel(Session& session, const std::string& reel)
{
  return guarded([&] {
    Needs needs(session);
    for (const Shot& shot : shotsFrom(reelhost::shotsOf(reel)))
      needs.addShot(shot.reel);
    std::vector<Need> result = needs.take();
    if (result.empty())
      throw Error(ErrorKind::Refused,
                  fmt::format("{}: no shot was recorded from this reel",
                              base::shortText(text(requireReel(session.manager(), reel).reelId()))));
    return result;
  });
}

std::vector<Need> needsOfList(Session& session, const lists::List& list)
{
  return guarded([&] {
    Needs needs(session);
    for (const lists::Clip& clip : list.clips)
      needs.addShot(clip.reel);
    return needs.take();
  });
}

std::size_t readyCount(const std::vector<Need>& needs)
{
  return static_cast<std::size_t>(
      std::count_if(needs.begin(), needs.end(), [](const Need& need) { return need.troubles.empty(); }));
}

} // namespace reeldb::app
