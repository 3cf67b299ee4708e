// SPDX-License-Identifier: Apache-2.0
//
// Work put off until the host's main thread comes back to the host, and the identity of threads.
#ifndef REELDB_HOST_ACTION_H
#define REELDB_HOST_ACTION_H

#include "refcount.h"

class iObject : public virtual Zr::InternalRefCount {
public:
  ~iObject() override;
};

/// An action the host runs later, once.
class iExecutableAction : public iObject {
public:
  ~iExecutableAction() override;
  virtual void execute() = 0; ///< called on the main thread
};

/// Queues the action for the main thread; takes a reference of its own. Callable on any thread. Must not run the
/// action before it returns.
void defer(const Zr::Ptr<iExecutableAction>&);

/// The calling thread's id; callable on any thread. The library compares its low 16 bits with `glib_pid`.
int co_pid();

#endif
