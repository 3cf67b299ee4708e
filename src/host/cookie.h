// SPDX-License-Identifier: Apache-2.0
/// @file
/// Cookies, the names of logs in the project database, and collections of Cookies.
/// Main thread only; a Cookie and an IdStamp are values and may be used on any thread. A collection that cannot grow
/// throws std::bad_alloc and stays as it was.
/// Where a comment says what an argument is "called with", the library passes nothing else, and a host may ignore the
/// argument.
#ifndef REELDB_HOST_COOKIE_H
#define REELDB_HOST_COOKIE_H

#include <cstdint>

#include "lwstring.h"
#include "refcount.h"

// Also in a host that is compiled with -fvisibility=hidden.
#pragma GCC visibility push(default)

namespace Zr {
/// Sixteen bytes that identify one object for good.
class UUID {
public:
  UUID(); ///< all bytes zero
  UUID(const UUID&);
  UUID& operator=(const UUID&);
  int compare(const UUID&) const; ///< 0 when equal, else the sign of the byte order
  unsigned char bytes[16];        ///< in the order of the written form
};
} // namespace Zr

/// Names one log of the project database, by value. A Cookie of kind 'I' is invalid and names no log.
class Cookie {
public:
  Cookie(); ///< invalid: kind 'I', all other bytes zero
  /// From the text form that asString returns. Any other text, and null, gives an invalid Cookie. In every host,
  /// "P0001000" is a text form, too, of kind 'P': the placeholder project, whose text form is "P0001000" again. Called
  /// with false.
  Cookie(const char* text, bool);
  /// From its parts. Kind 'I' gives the same Cookie as Cookie().
  Cookie(const Zr::UUID& uuid, std::uint16_t tag, char kind);
  void invalidate();                ///< restores the state of Cookie()
  int compare(const Cookie&) const; ///< 0 when equal, else the sign of an order; two invalid Cookies are equal
  bool valid() const { return kind_ != 'I'; } ///< whether it names a log; the log need not exist
  char kind() const { return kind_; }         ///< one letter; 'I' is invalid
  /// The text form: ASCII, starting with the kind. Cookie(text, false) gives this Cookie again. Called with false.
  LightweightString<char> asString(bool) const;

private:
  Zr::UUID uuid_;
  std::uint16_t tag_;
  char kind_;
};

/// A vector with shared storage. The host defines it for Cookies only.
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
  Storage* storage; ///< null until the first Cookie
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
  const Cookie* begin() const;               ///< the Cookies are contiguous; valid until the next change
  const Cookie* end() const;
  void add(const Cookie&);    ///< at the end; it may be one of this vector
  void remove(const Cookie&); ///< removes the first equal Cookie, if any
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
  void insert(const Cookie&); ///< at the end; does nothing if an equal Cookie is there

private:
  CookieVec items_;
};

/// A set of Cookies, read by index in the order of insertion. Copies share the body, so a change to one copy changes
/// all.
class CookieSet {
public:
  CookieSet();                      ///< empty, with a body of its own
  CookieSetRep* operator->() const; ///< the body; never null
  CookieSetRep& operator*() const;
  void insert(const Cookie&); ///< at the end; does nothing if an equal Cookie is there

private:
  Zr::Ptr<CookieSetRep> rep_;
};

/// Identifies one device configuration; 0 identifies no device.
class IdStamp {
public:
  IdStamp();                        ///< invalid
  explicit IdStamp(unsigned value); ///< @p value is the device's identity, by which the host finds it
  IdStamp(const IdStamp&);
  IdStamp& operator=(const IdStamp&);
  bool valid() const; ///< whether the value is not 0; the device need not exist
  unsigned value() const { return value_; }

private:
  unsigned value_;
};

#pragma GCC visibility pop

#endif
