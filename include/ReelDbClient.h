// SPDX-License-Identifier: Apache-2.0
/// @file
/// Clients: who wants to hear of changes to reels. Main thread only.
#ifndef REELDB_CLIENT_H
#define REELDB_CLIENT_H

#include "ReelDbExport.h"
#include "host/containers.h"
#include "host/lwstring.h"

/// Hears of changes to the reels of the project. It registers with the manager when it is made and unregisters when it
/// ends. Handlers run on the main thread, inside the call that made the change; they may change reels, register and
/// unregister clients, and end their own client. A handler that unregisters its own client or an earlier one makes the
/// next one miss this change; one that throws keeps the clients after it from hearing, and the exception passes to who
/// made the change. The order of the virtual functions is part of the interface.
class REELDB_EXPORT ReelDbClient : public ArrayRec {
public:
  ReelDbClient();                                    ///< follows no reel in particular
  explicit ReelDbClient(LightweightString<char> id); ///< follows this reel; calls no virtual function
  ~ReelDbClient() override;                          ///< leaves the manager; nothing is called from here on
  ReelDbClient(const ReelDbClient&) = delete;        ///< not copied: a client is known by its address
  ReelDbClient& operator=(const ReelDbClient&) = delete;

  /// Names the reel to follow; empty: none. It is matched exactly, letter case included, unlike a lookup. Called by the
  /// owner, never by the library.
  virtual void setReelIdOfInterest(LightweightString<char> id);
  /// The set of reels was rebuilt; @p id is the reel that caused it, or empty when the whole database changed. Lookups
  /// answer the new state. Does nothing unless overridden.
  virtual void reelDbChanged(LightweightString<char> id);
  /// A field of the reel of interest changed; someReelDbRecChanged follows for the same change. Does nothing unless
  /// overridden.
  virtual void ourReelDbRecChanged();
  /// A field of reel @p id changed, that of interest included. @p id is spelt as the reel's log has it; of a reel that
  /// is renamed or copied to, as the caller has it: the old one of a reel that is renamed. Does nothing unless
  /// overridden.
  virtual void someReelDbRecChanged(LightweightString<char> id);

private:
  friend class ReelDbManager;
  LightweightString<char> reelIdOfInterest_;
};

#endif
