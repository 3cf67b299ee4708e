// SPDX-License-Identifier: Apache-2.0
/// @file
/// Reference-counted objects, and the pointer that counts.
#ifndef REELDB_HOST_REFCOUNT_H
#define REELDB_HOST_REFCOUNT_H

// Also in a host that is compiled with -fvisibility=hidden.
#pragma GCC visibility push(default)

/// What the modules of the host share.
namespace Zr {

/// An object that counts its holders. The count starts at 0, and the object deletes itself when the last holder
/// releases it. Counting uses OS()->refCounts() and is as thread-safe as that service.
class InternalRefCount {
public:
  InternalRefCount();
  InternalRefCount(const InternalRefCount&) = delete; ///< holders share one object
  InternalRefCount& operator=(const InternalRefCount&) = delete;
  virtual ~InternalRefCount(); ///< release() calls it; call it directly only if the object never had a holder
  void addRef() const;
  void release() const; ///< deletes the object when no holder remains

private:
  mutable int refs_;
};

/// Holds an object derived from InternalRefCount; may be null. Two threads must not change one Ptr at the same time.
template <class T>
class Ptr {
public:
  Ptr() : p_(nullptr) {}
  /// Becomes a holder of the object, which may be new. Implicit by design.
  Ptr(T* p) : p_(p)
  {
    if (p_)
      p_->addRef();
  }
  Ptr(const Ptr& o) : p_(o.p_)
  {
    if (p_)
      p_->addRef();
  }
  /// Becomes one more holder, through a base class of the object.
  template <class U>
  Ptr(const Ptr<U>& o) : p_(o.get())
  {
    if (p_)
      p_->addRef();
  }
  Ptr& operator=(Ptr o)
  {
    T* t = p_;
    p_ = o.p_;
    o.p_ = t;
    return *this;
  }
  ~Ptr()
  {
    if (p_)
      p_->release();
  }
  T* get() const { return p_; }        ///< the object or null, borrowed from the Ptr
  T* operator->() const { return p_; } ///< REQUIRES: not null
  T& operator*() const { return *p_; } ///< REQUIRES: not null
  explicit operator bool() const { return p_ != nullptr; }

private:
  T* p_;
};

} // namespace Zr

#pragma GCC visibility pop

#endif
