// SPDX-License-Identifier: Apache-2.0
#include "CreateNewReelAction.h"

#include "ReelDbManager.h"

CreateNewReelAction::CreateNewReelAction(const LightweightString<char>& reelId, int deviceId)
    : reelId_(reelId), deviceId_(deviceId)
{
}

CreateNewReelAction::~CreateNewReelAction() = default;

void CreateNewReelAction::execute()
{
  ReelDbManager::theReelDbManager()->createNewReel(reelId_, deviceId_);
}
