// SPDX-License-Identifier: Apache-2.0
/// @file
/// Objects that carry their own count, and the pointer that keeps it.
#ifndef REELDB_HOST_REFCOUNT_H
#define REELDB_HOST_REFCOUNT_H

/// What the modules of the host share.
namespace Zr {

/// An object with a count of its holders, 0 when made. It deletes itself when the last holder lets go.
/// Counting goes through OS()->refCounts() and so is as thread-safe as that service.
class InternalRefCount {
public:
  InternalRefCount();
  InternalRefCount(const InternalRefCount&) = delete; ///< not copied: holders hold one object
  InternalRefCount& operator=(const InternalRefCount&) = delete;
  virtual ~InternalRefCount(); ///< by release; directly only when nobody held it
  void addRef() const;
  void release() const; ///< deletes the object when no holder remains

private:
  mutable int refs_;
};

/// Holds a counted object, one that is derived from InternalRefCount; may be null. One Ptr is not changed by two
/// threads at once.
template <class T>
class Ptr {
public:
  Ptr() : p_(nullptr) {}
  /// Becomes a holder of the object, also of a new one. Implicit by design.
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
  /// One holder more, as of a base of the object.
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
  T* get() const { return p_; }        ///< the object or null; the Ptr goes on holding it
  T* operator->() const { return p_; } ///< the object; not of a null Ptr
  T& operator*() const { return *p_; } ///< the object; not of a null Ptr
  explicit operator bool() const { return p_ != nullptr; }

private:
  T* p_;
};

} // namespace Zr

#endif
