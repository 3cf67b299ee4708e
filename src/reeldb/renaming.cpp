// SPDX-License-Identifier: Apache-2.0
#include "ReelDbManager.h"
#include "host/projdb.h"
#include "host/text.h"
#include "reeldb/identifier.h"
#include "reeldb/shots.h"
#include "reelrec/open_log.h"

using reeldb::OpenLog;

namespace {

constexpr int copiedUserFields = 6;

/// Holds the manager's notifications while this lives, also when an exception passes: if the count stayed up, no client
/// would ever be notified again. The count never falls below 0.
class NotificationHold {
public:
  explicit NotificationHold(int& count) : count_(count) { ++count_; }
  ~NotificationHold()
  {
    if (count_ > 0)
      --count_;
  }
  NotificationHold(const NotificationHold&) = delete;
  NotificationHold& operator=(const NotificationHold&) = delete;

private:
  int& count_;
};

void renameShot(const Cookie& shot, const LightweightString<char>& oldId, const LightweightString<char>& newId)
{
  const OpenLog log(shot);
  if (!log)
    return;
  log->set_reelid(0, newId.c_str());
  EditManager::updateProjdbRec(shot);
  vorn_printf("Shot: %s  Changing reel from %s to %s\n", toUTF8(getFilenameForCookie(shot, Cookie())).c_str(),
              oldId.c_str(), newId.c_str());
}

} // namespace

void ReelDbManager::changeReelId(LightweightString<char> oldId, LightweightString<char> newId)
{
  ReelDbRec rec = getReelInfo(oldId);
  if (!rec.valid())
    return;
  rec.reelId(newId);

  // Stays open until the end, so the host holds the reel while clients are notified and shots renamed.
  const OpenLog log(rec);
  if (log)
    log->setName(reeldb::reelLogName(newId), false);
  informReelDbRecChanged(oldId);

  projdb* const db = EditManager::getProjdb();
  if (!db)
    return;
  const CookieVec shots = reeldb::findShots(*db, oldId);
  for (const Cookie& shot : shots)
    if (reeldb::isRecordedFrom(shot, oldId))
      renameShot(shot, oldId, newId);
  informReelDbChanged("");
}

void ReelDbManager::copyReelInfo(LightweightString<char> fromId, LightweightString<char> toId)
{
  {
    const NotificationHold hold(notifyHoldCount);
    ReelDbRec from = getReelInfo(fromId);
    ReelDbRec to = getReelInfo(toId);
    if (to.valid()) {
      to.typeName(from.typeName());
      to.reelAvailable(from.reelAvailable());
      to.recInhibit(from.recInhibit());
      to.labelMapping(from.labelMapping());
      for (int i = 0; i < copiedUserFields; ++i)
        to.userField(i, from.userField(i));
    }
  }
  informReelDbRecChanged(toId);
}
