// SPDX-License-Identifier: Apache-2.0
/// @file
/// Memory and reference counts: the services every other part of the host rests on.
///
/// These are the first things called in a process and the last: the library's operator new arrives here before any
/// constructor of the program has run, and its operator delete after all destructors have. A host therefore keeps
/// whatever stands behind OS() free of constructors, of operator new and of containers.
#ifndef REELDB_HOST_OS_H
#define REELDB_HOST_OS_H

#include <cstddef>

/// The allocator. Any thread may call it.
class iAllocator {
public:
  /// Returns @p size bytes aligned for any object without extended alignment, or null when there is no memory.
  /// Never throws and never calls operator new.
  virtual void* allocate(std::size_t size) = 0;
  /// Gives back what allocate returned; null is accepted and does nothing.
  virtual void release(void* p) = 0;

protected:
  ~iAllocator() = default; ///< the host's own; never deleted by who calls it
};

/// Counts of shared bodies. The count lives in the body; the service alone changes it, so that the host decides
/// whether counting is atomic. Any thread may call it: the identifier of a deferred reel creation is counted up on a
/// worker thread and down on the main thread.
class iRefCountService {
public:
  /// Adds one to `*address`.
  virtual void incRef(int* address) = 0;
  /// Takes one from `*address` and returns what remains; the caller frees the body when that is 0.
  virtual int decRef(int* address) = 0;

protected:
  ~iRefCountService() = default;
};

/// The services that OS() hands out.
class iHostServices {
public:
  virtual iAllocator& allocator() = 0;       ///< always the same one
  virtual iRefCountService& refCounts() = 0; ///< always the same one

protected:
  ~iHostServices() = default;
};

/// The host's services: never null, always the same, usable from any thread, before main() and after exit().
iHostServices* OS();

#endif
