// SPDX-License-Identifier: Apache-2.0
#include "app/watch.h"

#include <map>

#include "ReelDbClient.h"
#include "ReelDbManager.h"
#include "app/host_errors.h"
#include "app/host_text.h"
#include "app/reel_records.h"
#include "base/ascii.h"
#include "reelhost/inform_manager.h"

namespace reeldb::app {

namespace {

/// The fields of all reels by log, for comparison. The key is the log because identifiers may change.
using Snapshot = std::map<std::string, Reel>;

std::string nameOf(const Cookie& log)
{
  return log.asString(false).c_str();
}

Snapshot takeSnapshot(const ReelDbManager& manager)
{
  Snapshot snapshot;
  const ShotCounts shots = reelhost::shotCounts();
  for (const Cookie& log : manager.reelList)
    if (Reel reel = readReel(ReelDbRec(log), shots); !reel.id.empty())
      snapshot[nameOf(log)] = std::move(reel);
  return snapshot;
}

/// Whether anything but the identifier differs.
bool differs(const Reel& a, Reel b)
{
  b.id = a.id;
  return !(a == b);
}

} // namespace

std::string_view wordOf(ReelEvent::What what)
{
  switch (what) {
  case ReelEvent::What::New:
    return "new";
  case ReelEvent::What::Changed:
    return "changed";
  case ReelEvent::What::Gone:
    return "gone";
  case ReelEvent::What::Renamed:
    return "renamed";
  case ReelEvent::What::Database:
    return "database";
  case ReelEvent::What::Record:
    return "record";
  case ReelEvent::What::Ours:
    return "ours";
  }
  return "";
}

class Watcher::Client : public ReelDbClient {
public:
  using What = ReelEvent::What;

  Client(Session& session, const std::optional<std::string>& reel, Listener listener)
      : manager_(session.manager()), listener_(std::move(listener)), reel_(reel), known_(takeSnapshot(manager_))
  {
    if (!reel_)
      return;
    ReelDbRec record = requireReel(manager_, *reel_);
    follow(nameOf(record), text(record.reelId()));
  }

  void reelDbChanged(LightweightString<char> id) override
  {
    Snapshot now = takeSnapshot(manager_);
    for (const auto& [log, before] : known_)
      if (now.count(log) == 0)
        reportGone(log, before.id);
    for (const auto& [log, reel] : now) {
      const auto before = known_.find(log);
      if (before == known_.end())
        report(What::New, log, reel.id);
      else if (before->second.id != reel.id)
        reportRenamed(log, before->second.id, reel.id);
      if (before != known_.end() && differs(before->second, reel))
        report(What::Changed, log, reel.id);
    }
    known_ = std::move(now);
    if (!reel_)
      listener_({What::Database, text(id), {}});
  }
  void ourReelDbRecChanged() override { listener_({What::Ours, reel_.value_or(""), {}}); }
  void someReelDbRecChanged(LightweightString<char> id) override
  {
    if (!reel_ || base::sameName(text(id), *reel_))
      listener_({What::Record, text(id), {}});
  }

private:
  /// If the reel of interest was deleted, the next log with its identifier becomes the reel of interest.
  bool isOfInterest(const std::string& log, const std::string& reel)
  {
    if (!reel_)
      return true;
    if (log_.empty() && base::sameName(reel, *reel_))
      follow(log, reel);
    return log == log_;
  }

  void follow(const std::string& log, const std::string& reel)
  {
    log_ = log;
    reel_ = reel;
    setReelIdOfInterest(hostText(reel)); // case-sensitive
  }

  void report(What what, const std::string& log, const std::string& reel)
  {
    if (isOfInterest(log, reel))
      listener_({what, reel, {}});
  }

  void reportGone(const std::string& log, const std::string& reel)
  {
    report(What::Gone, log, reel);
    if (log == log_)
      log_.clear();
  }

  void reportRenamed(const std::string& log, const std::string& before, const std::string& after)
  {
    if (!isOfInterest(log, after))
      return;
    if (reel_)
      follow(log, after);
    listener_({What::Renamed, after, before});
  }

  ReelDbManager& manager_;
  const Listener listener_;
  std::optional<std::string> reel_; ///< the reel of interest, as its record spells it
  std::string log_;                 ///< the log of that reel; empty while it does not exist
  Snapshot known_;
};

Watcher::Watcher(Session& session, const std::optional<std::string>& reel, Listener listener)
    : session_(session), client_(guarded([&] { return std::make_unique<Client>(session, reel, std::move(listener)); }))
{
}

Watcher::~Watcher() = default;

void Watcher::idle()
{
  guarded([] { reelhost::idle(); });
}

void Watcher::poll()
{
  guarded([this] { reelhost::informOfChangesFromElsewhere(session_.manager()); });
}

} // namespace reeldb::app
