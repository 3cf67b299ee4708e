// SPDX-License-Identifier: Apache-2.0
/// @file
/// Work put off until the host's main thread comes back to the host, and the identity of threads.
#ifndef REELDB_HOST_ACTION_H
#define REELDB_HOST_ACTION_H

#include "refcount.h"

/// An object that is held by counting; the base of what crosses between modules of the host.
class iObject : public virtual Zr::InternalRefCount {
public:
  ~iObject() override; ///< by release, on the thread of the last holder
};

/// An action the host runs later, once.
class iExecutableAction : public iObject {
public:
  ~iExecutableAction() override;
  virtual void execute() = 0; ///< does the work; called on the main thread
};

/// Queues the action for the main thread, behind those that wait already; takes a reference of its own and lets go of
/// it when the action has run. Callable on any thread. Must not run the action before it returns.
void defer(const Zr::Ptr<iExecutableAction>&);

/// The calling thread's id, the same each time; callable on any thread. The library compares its bits in
/// codes::threadMask with `glib_pid`, so they have to differ from those of every other thread.
int co_pid();

#endif
