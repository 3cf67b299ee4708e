// SPDX-License-Identifier: Apache-2.0
/// @file
/// Cookies, the names of logs in the project database, and the collections of them.
/// Main thread only; a Cookie and an IdStamp are values and may be anywhere. What has to grow throws std::bad_alloc
/// when there is no memory, and is then as it was.
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
  unsigned char bytes[16];        ///< the name, in the order in which it is written
};
} // namespace Zr

/// Names one log of the project database, by value. A Cookie of kind 'I' names none.
class Cookie {
public:
  Cookie(); ///< invalid: kind 'I', all other bytes zero
  /// From the text form, as asString gives it; what is none, null too, gives an invalid Cookie. The second argument is
  /// false.
  Cookie(const char* text, bool);
  /// Of its parts; of kind 'I', one like all invalid ones.
  Cookie(const Zr::UUID& uuid, std::uint16_t tag, char kind);
  void invalidate();                ///< the state of Cookie()
  int compare(const Cookie&) const; ///< 0 when equal, else the sign of an order; two invalid Cookies are equal
  bool valid() const { return kind_ != 'I'; } ///< whether it names a log; there need be none of that name
  char kind() const { return kind_; }         ///< one letter; 'I': it names none
  /// The text form, ASCII, which starts with the kind; Cookie(text, false) of it is this Cookie. The argument is false.
  LightweightString<char> asString(bool) const;

private:
  Zr::UUID uuid_;
  std::uint16_t tag_;
  char kind_;
};

/// A vector with shared storage. The host has that of Cookies.
template <class T>
class LightweightVector;

/// The shared storage of a CookieVec.
template <>
class LightweightVector<Cookie> {
public:
  LightweightVector();
  LightweightVector(const LightweightVector&);
  LightweightVector& operator=(const LightweightVector&);
  ~LightweightVector(); ///< the last holder frees the storage
  struct Storage;
  Storage* storage; ///< null as long as there was no Cookie
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
  const Cookie& operator[](int index) const; ///< @p index from 0 to count() - 1; valid until the next change
  const Cookie* begin() const;               ///< the first Cookie, the others behind it; valid until the next change
  const Cookie* end() const;
  void add(const Cookie&);    ///< at the end; it may be one of this vector
  void remove(const Cookie&); ///< the first equal Cookie, if any
  void clear();               ///< count 0; the storage is kept

private:
  LightweightVector<Cookie> items_;
  int count_;
};

/// The shared body of a CookieSet.
class CookieSetRep : public Zr::InternalRefCount {
public:
  const Cookie& operator[](int index) const; ///< @p index from 0 to count() - 1; valid until the next insert
  int count() const;
  void insert(const Cookie&); ///< does nothing when an equal Cookie is there

private:
  CookieVec items_;
};

/// A set of Cookies that is read by index, in the order they were put in. Copies share the body, so that a change of
/// one is a change of all.
class CookieSet {
public:
  CookieSet();                      ///< empty, with a body of its own
  CookieSetRep* operator->() const; ///< the body; never null
  CookieSetRep& operator*() const;
  void insert(const Cookie&); ///< at the end; does nothing when an equal Cookie is there

private:
  Zr::Ptr<CookieSetRep> rep_;
};

/// Names one device configuration; 0 names none.
class IdStamp {
public:
  IdStamp();                        ///< invalid
  explicit IdStamp(unsigned value); ///< the device's identity, by which the host finds it
  IdStamp(const IdStamp&);
  IdStamp& operator=(const IdStamp&);
  bool valid() const; ///< whether the value is not 0; there need be no such device

private:
  unsigned value_;
};

#endif
