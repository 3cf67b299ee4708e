// SPDX-License-Identifier: Apache-2.0
/// @file
/// Memory and reference counts: the services that every other part of the host uses.
///
/// They are called first and last in a process: the library's operator new calls them before any constructor of the
/// program has run, and its operator delete calls them after all destructors have run. The implementation of OS()
/// therefore must not use constructors at namespace scope, operator new or containers.
#ifndef REELDB_HOST_OS_H
#define REELDB_HOST_OS_H

#include <cstddef>

// Also in a host that is compiled with -fvisibility=hidden.
#pragma GCC visibility push(default)

/// Allocates memory. Any thread may call it.
class iAllocator {
public:
  /// Returns @p size bytes aligned for any object without extended alignment, or null when there is no memory.
  /// Never throws and never calls operator new.
  virtual void* allocate(std::size_t size) = 0;
  /// Frees memory from allocate; null does nothing.
  virtual void release(void* p) = 0;

protected:
  ~iAllocator() = default; ///< the host owns it; callers never delete it
};

/// Counts references to shared bodies. The count is stored in the body. Only the service changes it, so the host
/// decides whether counting is atomic. Any thread may call it: the identifier of a deferred reel creation is counted up
/// on a worker thread and down on the main thread.
class iRefCountService {
public:
  /// Adds one to `*address`.
  virtual void incRef(int* address) = 0;
  /// Subtracts one from `*address` and returns the new value. The caller frees the body when that is 0.
  virtual int decRef(int* address) = 0;

protected:
  ~iRefCountService() = default;
};

/// The services that OS() returns.
class iHostServices {
public:
  virtual iAllocator& allocator() = 0;       ///< always the same one
  virtual iRefCountService& refCounts() = 0; ///< always the same one

protected:
  ~iHostServices() = default;
};

/// The host's services: never null, always the same, usable from any thread, before main() and after exit().
iHostServices* OS();

#pragma GCC visibility pop

#endif
