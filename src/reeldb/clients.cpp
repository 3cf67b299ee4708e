// SPDX-License-Identifier: Apache-2.0
//
// Clients and their notification: by index, and the number of clients is read again after each call. A handler may
// register and unregister clients and cause further notifications. If a client unregisters itself or an earlier one,
// the next client misses this pass.
#include "ReelDbClient.h"

#include <utility>

#include "ReelDbManager.h"
#include "reelrec/text_equality.h"

using reeldb::sameText;

namespace {

/// The current client of a notification pass. Passes nest: a handler may cause another notification. A client that ends
/// inside its own handler removes itself from every pass, so that no pass calls it again. Main thread only.
class ClientPass {
public:
  ClientPass() : outer_(innermost_), current_(nullptr) { innermost_ = this; }
  ~ClientPass() { innermost_ = outer_; }
  ClientPass(const ClientPass&) = delete;
  ClientPass& operator=(const ClientPass&) = delete;

  void visit(ReelDbClient* client) { current_ = client; }
  ReelDbClient* current() const { return current_; } ///< null once the client has ended

  static void clientEnds(const ReelDbClient* client)
  {
    for (ClientPass* pass = innermost_; pass; pass = pass->outer_)
      if (pass->current_ == client)
        pass->current_ = nullptr;
  }

private:
  static ClientPass* innermost_;
  ClientPass* outer_;
  ReelDbClient* current_;
};

ClientPass* ClientPass::innermost_ = nullptr;

} // namespace

ReelDbClient::ReelDbClient()
{
  ReelDbManager::theReelDbManager()->registerClient(this);
}

ReelDbClient::ReelDbClient(LightweightString<char> id)
{
  ReelDbManager::theReelDbManager()->registerClient(this);
  // A move cannot fail. If this could throw after the registration, the manager would keep an unfinished client.
  reelIdOfInterest_ = std::move(id);
}

ReelDbClient::~ReelDbClient()
{
  ReelDbManager::theReelDbManager()->deRegisterClient(this);
  ClientPass::clientEnds(this);
}

void ReelDbClient::setReelIdOfInterest(LightweightString<char> id)
{
  reelIdOfInterest_ = id;
}

void ReelDbClient::reelDbChanged(LightweightString<char>) {}

void ReelDbClient::ourReelDbRecChanged() {}

void ReelDbClient::someReelDbRecChanged(LightweightString<char>) {}

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
