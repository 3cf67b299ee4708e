// SPDX-License-Identifier: Apache-2.0
//
// Cookies, the names of logs in the project database, and the collections of them.
#ifndef REELDB_HOST_COOKIE_H
#define REELDB_HOST_COOKIE_H

#include <cstdint>

#include "lwstring.h"
#include "refcount.h"

namespace Zr {
/// Sixteen bytes that name one object for good.
class UUID {
public:
  UUID(); ///< all bytes zero
  UUID(const UUID&);
  UUID& operator=(const UUID&);
  int compare(const UUID&) const; ///< 0 when equal, else the sign of the byte order
  unsigned char bytes[16];
};
} // namespace Zr

/// Names one log of the project database, by value. A Cookie of kind 'I' names none.
class Cookie {
public:
  Cookie();                       ///< invalid: kind 'I', all other bytes zero
  Cookie(const char* text, bool); ///< from the text form; the second argument is false
  Cookie(const Zr::UUID& uuid, std::uint16_t tag, char kind);
  void invalidate();                ///< the state of Cookie()
  int compare(const Cookie&) const; ///< 0 when equal; two invalid Cookies are equal
  bool valid() const { return kind_ != 'I'; }
  char kind() const { return kind_; }
  LightweightString<char> asString(bool) const; ///< the text form, which starts with the kind; the argument is false

private:
  Zr::UUID uuid_;
  std::uint16_t tag_;
  char kind_;
};

template <class T>
class LightweightVector;

/// The shared storage of a CookieVec.
template <>
class LightweightVector<Cookie> {
public:
  LightweightVector();
  LightweightVector(const LightweightVector&); ///< shares the storage
  LightweightVector& operator=(const LightweightVector&);
  ~LightweightVector(); ///< the last holder frees the storage
  struct Storage;
  Storage* storage;
};

/// A vector of Cookies. Copies share the storage; a change detaches it first, so no other copy sees it.
class CookieVec {
public:
  CookieVec();
  CookieVec(const CookieVec&);
  CookieVec& operator=(const CookieVec&);
  ~CookieVec();
  int count() const;
  bool empty() const;
  const Cookie& operator[](int index) const; ///< @p index from 0 to count() - 1
  const Cookie* begin() const;
  const Cookie* end() const;
  void add(const Cookie&);    ///< at the end
  void remove(const Cookie&); ///< the first equal Cookie, if any
  void clear();               ///< count 0; the storage is kept

private:
  LightweightVector<Cookie> items_;
  int count_;
};

class CookieSetRep : public Zr::InternalRefCount {
public:
  const Cookie& operator[](int index) const;
  int count() const;
  void insert(const Cookie&); ///< does nothing when an equal Cookie is there

private:
  CookieVec items_;
};

/// A set of Cookies that is read by index, in the order they were put in.
class CookieSet {
public:
  CookieSet();
  CookieSetRep* operator->() const;
  CookieSetRep& operator*() const;
  void insert(const Cookie&);

private:
  Zr::Ptr<CookieSetRep> rep_;
};

/// Names one device configuration; 0 names none.
class IdStamp {
public:
  IdStamp(); ///< invalid
  explicit IdStamp(unsigned value);
  IdStamp(const IdStamp&);
  IdStamp& operator=(const IdStamp&);
  bool valid() const;

private:
  unsigned value_;
};

#endif
