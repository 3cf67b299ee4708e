// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_CLIENT_H
#define REELDB_CLIENT_H

#include "ReelDbExport.h"
#include "host/containers.h"
#include "host/lwstring.h"

/// Hears of changes to the reels of the project. It registers with the manager when it is made and unregisters when it
/// ends. Handlers run on the main thread, inside the call that made the change; they may change reels, register and
/// unregister clients, and end their own client. The order of the virtual functions is part of the interface.
class REELDB_EXPORT ReelDbClient : public ArrayRec {
public:
  ReelDbClient();                                    ///< follows no reel in particular
  explicit ReelDbClient(LightweightString<char> id); ///< follows this reel; calls no virtual function
  ~ReelDbClient() override;
  ReelDbClient(const ReelDbClient&) = delete;
  ReelDbClient& operator=(const ReelDbClient&) = delete;

  /// Names the reel to follow. It is matched exactly, letter case included, unlike a lookup.
  virtual void setReelIdOfInterest(LightweightString<char> id);
  /// The set of reels was rebuilt; @p id is the reel that caused it, or empty when the whole database changed.
  virtual void reelDbChanged(LightweightString<char> id);
  /// A field of the reel of interest changed; someReelDbRecChanged follows for the same change.
  virtual void ourReelDbRecChanged();
  /// A field of reel @p id changed.
  virtual void someReelDbRecChanged(LightweightString<char> id);

private:
  friend class ReelDbManager;
  LightweightString<char> reelIdOfInterest_;
};

#endif
