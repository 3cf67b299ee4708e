// SPDX-License-Identifier: Apache-2.0
//
// Clients are told by index, and their number is read again after each: a handler may register and unregister clients
// and cause further notifications. One that unregisters itself or an earlier client makes the next one miss this pass.
#include "ReelDbManager.h"
#include "reeldb/client_pass.h"
#include "reelrec/text_equality.h"

using reeldb::ClientPass;
using reeldb::sameText;

void ReelDbManager::registerClient(ReelDbClient* client)
{
  clients.add(client);
}

void ReelDbManager::deRegisterClient(ReelDbClient* client)
{
  for (unsigned i = 0; i < clients.count(); ++i)
    if (clients.at(i) == client) {
      clients.remove(i);
      return;
    }
}

void ReelDbManager::informReelDbChanged(LightweightString<char> id)
{
  buildReelList();
  if (notifyHoldCount != 0)
    return;
  for (unsigned i = 0; i < clients.count(); ++i)
    static_cast<ReelDbClient*>(clients.at(i))->reelDbChanged(id);
}

void ReelDbManager::informReelDbRecChanged(LightweightString<char> id)
{
  if (id.empty() || notifyHoldCount != 0)
    return;
  ClientPass pass;
  for (unsigned i = 0; i < clients.count(); ++i) {
    pass.visit(static_cast<ReelDbClient*>(clients.at(i)));
    if (sameText(pass.current()->reelIdOfInterest_, id))
      pass.current()->ourReelDbRecChanged();
    if (pass.current())
      pass.current()->someReelDbRecChanged(id);
  }
}
