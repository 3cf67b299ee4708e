// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_CREATE_NEW_REEL_ACTION_H
#define REELDB_CREATE_NEW_REEL_ACTION_H

#include "ReelDbExport.h"
#include "host/action.h"
#include "host/lwstring.h"

/// A reel creation that waits for the main thread. It keeps the identifier alive until it has run.
class REELDB_EXPORT CreateNewReelAction : public iExecutableAction {
public:
  CreateNewReelAction(const LightweightString<char>& reelId, int deviceId); ///< any thread
  ~CreateNewReelAction() override;
  void execute() override; ///< main thread: creates the reel; a reel made meanwhile makes it a no-op

private:
  LightweightString<char> reelId_;
  int deviceId_;
};

#endif
