// SPDX-License-Identifier: Apache-2.0
/// @file
/// Work that is deferred to the host's main thread, and the identity of threads.
#ifndef REELDB_HOST_ACTION_H
#define REELDB_HOST_ACTION_H

#include "refcount.h"

// Also in a host that is compiled with -fvisibility=hidden.
#pragma GCC visibility push(default)

/// A reference-counted object; the base of objects that modules of the host pass to each other.
class iObject : public virtual Zr::InternalRefCount {
public:
  ~iObject() override; ///< release() calls it, on the thread of the last holder
};

/// An action the host runs later, once.
class iExecutableAction : public iObject {
public:
  ~iExecutableAction() override;
  virtual void execute() = 0; ///< the host calls it on the main thread
};

/// Queues the action for the main thread, behind the actions that already wait. Takes a reference of its own and
/// releases it when the action has run. Callable on any thread. Must not run the action before it returns. An action
/// that is deferred while the host runs actions waits until the main thread comes back the next time: an action that
/// defers itself must not run for ever.
void defer(const Zr::Ptr<iExecutableAction>&);

/// The calling thread's id, the same for every call. Callable on any thread. The library compares its bits in
/// codes::threadMask with `glib_pid`, so these bits must differ between threads. They must not be 0 on any thread,
/// because `glib_pid` is 0 before the start-up.
int co_pid();

#pragma GCC visibility pop

#endif
