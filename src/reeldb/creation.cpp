// SPDX-License-Identifier: Apache-2.0
#include <cstring>

#include "CreateNewReelAction.h"
#include "MainThread.h"
#include "ReelDbManager.h"
#include "host/codes.h"
#include "host/config.h"
#include "host/device.h"
#include "host/edit.h"
#include "host/projdb.h"
#include "host/text.h"
#include "reeldb/identifier.h"
#include "reelrec/config_access.h"
#include "reelrec/open_log.h"
#include "reelrec/text_equality.h"

using reeldb::OpenLog;
using reeldb::reelLogName;
using reeldb::sameText;

namespace {

bool onMainThread()
{
  return (co_pid() & codes::threadMask) == glib_pid;
}

void addAudioChannels(Edit* log, int count)
{
  for (int i = 0; i < count; ++i)
    reeldb::addChannel(OpenLog(log), codes::audioChannel);
}

struct NewReel {
  LightweightString<char> id;
  LightweightString<wchar_t> logName;
};

/// The names of a new reel on this device. Adds the device's audio channels to its log.
NewReel fromDevice(Edit* log, const LightweightString<char>& requested, int deviceId)
{
  const ExtDeviceConfig config = theConfigurationManager().getConfig(deviceId);
  addAudioChannels(log, config.getNumConnectedAudioInputs());
  if (config.getPortType() != codes::portNamingReel)
    return {requested, reelLogName(requested)};
  const LightweightString<char> deviceName = toUTF8(config.getTextName());
  if (sameText(toUTF8(config.getTextName()), requested))
    return {deviceName, Zr::WStringFromAscii(requested.c_str())};
  return {deviceName, reelLogName(requested)};
}

/// Each change opens the log separately; the host expects that of independent changes.
void writeLog(Edit* log, const NewReel& reel)
{
  OpenLog(log)->set_reelid(0, reel.id.c_str());
  OpenLog(log)->set_entire_medium(1);
  OpenLog(log)->make_original(false, false);
  OpenLog(log)->setName(reel.logName, false);
  OpenLog(log)->redetermineLogType();
}

} // namespace

CreateNewReelAction::CreateNewReelAction(const LightweightString<char>& reelId, int deviceId)
    : reelId_(reelId), deviceId_(deviceId)
{
}

CreateNewReelAction::~CreateNewReelAction() = default;

void CreateNewReelAction::execute()
{
  ReelDbManager::theReelDbManager()->createNewReel(reelId_, deviceId_);
}

ReelDbRec ReelDbManager::createNewReel(const LightweightString<char>& reelId, int deviceId)
{
  ReelDbRec rec;
  if (!onMainThread()) {
    defer(Zr::Ptr<iExecutableAction>(new CreateNewReelAction(reelId, deviceId)));
    return rec;
  }
  // The checks use the untrimmed identifier; the reel gets the trimmed one.
  if (doesReelExist(reelId) || representsInternallyGeneratedMaterial(reelId))
    return rec;
  const LightweightString<char> trimmed = trimLeadingTrailingSpaces(reelId);
  if (trimmed.empty())
    return rec;

  const EditModifier modifier(EditManager::makeNewEdit(Cookie()));
  Edit* const log = modifier.get();
  if (!log)
    return rec;
  const NewReel reel = deviceId < 0 ? NewReel{trimmed, reelLogName(trimmed)} : fromDevice(log, trimmed, deviceId);
  writeLog(log, reel);

  rec = ReelDbRec(Cookie(log->uuid(), log->cookieTag(), log->cookieKind()));
  rec.labelMapping("");
  rec.recInhibit(false);
  rec.reelAvailable(true);
  rec.typeName(reeldb::textOf(EditManager::ProjOpts(), "reeldb_defaultType"));
  OpenLog(log)->setChangeDescription(codes::madeOrImported, true);
  informReelDbChanged(reel.id);
  return rec;
}

LightweightString<char> ReelDbManager::trimLeadingTrailingSpaces(LightweightString<char> s)
{
  if (!s.empty()) {
    const std::size_t leading = std::strspn(s.c_str(), " ");
    s = LightweightString<char>(s.c_str() + leading, s.length() - leading);
  }
  trimTrailingSpaces(s);
  return s;
}

void ReelDbManager::handleLogModification(const Cookie& log, const EditModification& mod)
{
  if (mod.type() != codes::madeOrImported)
    return;
  const OpenLog material(log);
  if (!material || material->getLogType() != codes::materialLog || !material->isImported())
    return;
  strp_field reelId;
  material->get_reelid(reelId, 0, -1);
  theReelDbManager()->createNewReel(reelId.text(), -1);
}
