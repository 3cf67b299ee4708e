// SPDX-License-Identifier: Apache-2.0
/// @file
/// Clients: objects that are notified of changes to reels. Main thread only.
#ifndef REELDB_CLIENT_H
#define REELDB_CLIENT_H

#include "ReelDbExport.h"
#include "host/containers.h"
#include "host/lwstring.h"

/// Is notified of changes to the reels of the project. The constructor registers it with the manager, the destructor
/// unregisters it. Handlers run on the main thread, inside the call that made the change. They may change reels,
/// register and unregister clients, and delete their own client. If a handler unregisters its own client or an earlier
/// one, the next client misses this change. If a handler throws, the clients after it are not notified, and the
/// exception passes to the caller that made the change. The order of the virtual functions is part of the interface.
class REELDB_EXPORT ReelDbClient : public ArrayRec {
public:
  ReelDbClient();                                    ///< without a reel of interest
  explicit ReelDbClient(LightweightString<char> id); ///< sets the reel of interest; calls no virtual function
  /// Removes one registration; no handler is called any more. A client that was registered twice has to be
  /// unregistered once before.
  ~ReelDbClient() override;
  ReelDbClient(const ReelDbClient&) = delete; ///< the manager knows a client by its address
  ReelDbClient& operator=(const ReelDbClient&) = delete;

  /// Sets the reel of interest; an empty identifier means no reel. Unlike a lookup, the match is exact, letter case
  /// included. The owner calls it, never the library.
  virtual void setReelIdOfInterest(LightweightString<char> id);
  /// The reel list was rebuilt. @p id is the reel that caused it, or empty if the whole database changed. Lookups
  /// return the new state. Does nothing unless overridden.
  virtual void reelDbChanged(LightweightString<char> id);
  /// A field of the reel of interest changed; someReelDbRecChanged follows for the same change. Does nothing unless
  /// overridden.
  virtual void ourReelDbRecChanged();
  /// A field of reel @p id changed; the reel of interest is reported here too. @p id is spelt as in the reel's log. If
  /// the reel was renamed or copied to, @p id is spelt as the caller gave it; after a renaming it is the old
  /// identifier. Does nothing unless overridden.
  virtual void someReelDbRecChanged(LightweightString<char> id);

private:
  friend class ReelDbManager;
  LightweightString<char> reelIdOfInterest_;
};

#endif
