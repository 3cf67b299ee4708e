// SPDX-License-Identifier: Apache-2.0
#include "ReelDbClient.h"

#include <utility>

#include "ReelDbManager.h"
#include "reeldb/client_pass.h"

ReelDbClient::ReelDbClient()
{
  ReelDbManager::theReelDbManager()->registerClient(this);
}

ReelDbClient::ReelDbClient(LightweightString<char> id)
{
  ReelDbManager::theReelDbManager()->registerClient(this);
  // Moved, which cannot fail: a client that is never finished must not stay with the manager.
  reelIdOfInterest_ = std::move(id);
}

ReelDbClient::~ReelDbClient()
{
  ReelDbManager::theReelDbManager()->deRegisterClient(this);
  reeldb::ClientPass::clientEnds(this);
}

void ReelDbClient::setReelIdOfInterest(LightweightString<char> id)
{
  reelIdOfInterest_ = id;
}

void ReelDbClient::reelDbChanged(LightweightString<char>) {}

void ReelDbClient::ourReelDbRecChanged() {}

void ReelDbClient::someReelDbRecChanged(LightweightString<char>) {}
