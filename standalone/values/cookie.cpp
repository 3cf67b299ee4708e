// SPDX-License-Identifier: Apache-2.0
#include "host/cookie.h"

#include <algorithm>
#include <atomic>
#include <charconv>
#include <cstring>
#include <limits>
#include <memory>
#include <new>
#include <type_traits>

#include "host/os.h"

namespace Zr {

UUID::UUID() : bytes() {}

UUID::UUID(const UUID& other)
{
  std::memcpy(bytes, other.bytes, sizeof bytes);
}

UUID& UUID::operator=(const UUID& other)
{
  std::memmove(bytes, other.bytes, sizeof bytes);
  return *this;
}

int UUID::compare(const UUID& other) const
{
  const int order = std::memcmp(bytes, other.bytes, sizeof bytes);
  return (order > 0) - (order < 0);
}

} // namespace Zr

// --- The text form: the kind, then the name that the bytes spell ("P0001000") or the bytes and the tag in hexadecimal
// digits ("E{000102030405060708090a0b0c0d0e0f.0001}"). Each Cookie has one text and each text one Cookie.

namespace {

constexpr std::size_t uuidSize = sizeof(Zr::UUID::bytes);
constexpr std::size_t longestText = 1 + 1 + 2 * uuidSize + 1 + 4 + 1;

using CookieText = char[longestText];

bool isLetterOrDigit(unsigned char c)
{
  return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

/// The length of the name the bytes spell: letters and digits, then NULs only. 0 when they spell none.
std::size_t nameLength(const Zr::UUID& uuid)
{
  const unsigned char* const first = uuid.bytes;
  const unsigned char* const last = uuid.bytes + uuidSize;
  const unsigned char* const nameEnd = std::find_if_not(first, last, isLetterOrDigit);
  const bool restIsNul = std::all_of(nameEnd, last, [](unsigned char c) { return c == 0; });
  return restIsNul ? static_cast<std::size_t>(nameEnd - first) : 0;
}

/// Writes the text, without a NUL at its end, and returns its length.
std::size_t writeText(const Zr::UUID& uuid, std::uint16_t tag, char kind, CookieText& out)
{
  out[0] = kind;
  const std::size_t name = tag == 0 ? nameLength(uuid) : 0;
  if (name) {
    std::memcpy(out + 1, uuid.bytes, name);
    return 1 + name;
  }
  static constexpr char digits[] = "0123456789abcdef";
  char* p = out + 1;
  *p++ = '{';
  for (const unsigned char byte : uuid.bytes) {
    *p++ = digits[byte >> 4];
    *p++ = digits[byte & 15];
  }
  *p++ = '.';
  for (int shift = 12; shift >= 0; shift -= 4)
    *p++ = digits[(tag >> shift) & 15];
  *p++ = '}';
  return longestText;
}

/// Reads what writeText may have written; false when it surely has not.
bool readText(const char* text, std::size_t length, Zr::UUID& uuid, std::uint16_t& tag)
{
  if (length < 2 || length > longestText)
    return false;
  if (text[1] != '{') {
    if (length - 1 > uuidSize)
      return false;
    std::memcpy(uuid.bytes, text + 1, length - 1);
    return true;
  }
  if (length != longestText)
    return false;
  const char* p = text + 2;
  for (unsigned char& byte : uuid.bytes) {
    std::from_chars(p, p + 2, byte, 16);
    p += 2;
  }
  std::from_chars(p + 1, p + 5, tag, 16);
  return true;
}

} // namespace

Cookie::Cookie() : tag_(0), kind_('I') {}

// What was read counts if it gives back the very text: that turns away all that is not quite the form.
Cookie::Cookie(const char* text, bool) : Cookie()
{
  const std::size_t length = text ? strnlen(text, longestText + 1) : 0;
  Zr::UUID uuid;
  std::uint16_t tag = 0;
  CookieText again;
  if (readText(text, length, uuid, tag) && writeText(uuid, tag, text[0], again) == length &&
      std::memcmp(text, again, length) == 0)
    *this = Cookie(uuid, tag, text[0]);
}

Cookie::Cookie(const Zr::UUID& uuid, std::uint16_t tag, char kind) : uuid_(uuid), tag_(tag), kind_(kind)
{
  if (!valid())
    invalidate(); // one invalid state, so that all invalid Cookies are equal
}

void Cookie::invalidate()
{
  *this = Cookie();
}

int Cookie::compare(const Cookie& other) const
{
  if (const int order = uuid_.compare(other.uuid_))
    return order;
  if (tag_ != other.tag_)
    return tag_ < other.tag_ ? -1 : 1;
  return (kind_ > other.kind_) - (kind_ < other.kind_);
}

LightweightString<char> Cookie::asString(bool) const
{
  CookieText text;
  const std::size_t length = writeText(uuid_, tag_, kind_, text);
  return LightweightString<char>(text, length);
}

// --- Vectors and sets

/// The Cookies follow the head. Several vectors may hold one storage, each with a count of its own: it sees the first
/// so many Cookies, and those no other vector changes. What lies behind its count is another vector's, if anyone's.
struct LightweightVector<Cookie>::Storage {
  int refs, capacity, used;

  Cookie* items() { return reinterpret_cast<Cookie*>(this + 1); }

  static Storage* make(int capacity)
  {
    void* memory = OS()->allocator().allocate(sizeof(Storage) + static_cast<std::size_t>(capacity) * sizeof(Cookie));
    if (!memory)
      throw std::bad_alloc();
    return ::new (memory) Storage{1, capacity, 0};
  }

  static Storage* share(Storage* s)
  {
    if (s)
      OS()->refCounts().incRef(&s->refs);
    return s;
  }

  static void drop(Storage* s)
  {
    if (s && OS()->refCounts().decRef(&s->refs) == 0)
      OS()->allocator().release(s);
  }

  bool shared() { return std::atomic_ref(refs).load(std::memory_order_acquire) != 1; }

  /// Adds the Cookies at the end. There must be room.
  void append(const Cookie* first, int count)
  {
    std::uninitialized_copy_n(first, count, items() + used);
    used += count;
  }
};

namespace {
using Storage = LightweightVector<Cookie>::Storage;
static_assert(sizeof(Storage) % alignof(Cookie) == 0, "the Cookies directly follow the head");
static_assert(std::is_trivially_destructible_v<Cookie>, "storage is freed as it is");
} // namespace

LightweightVector<Cookie>::LightweightVector() : storage(nullptr) {}

LightweightVector<Cookie>::LightweightVector(const LightweightVector& other) : storage(Storage::share(other.storage)) {}

LightweightVector<Cookie>& LightweightVector<Cookie>::operator=(const LightweightVector& other)
{
  Storage* previous = storage;
  storage = Storage::share(other.storage);
  Storage::drop(previous);
  return *this;
}

LightweightVector<Cookie>::~LightweightVector()
{
  Storage::drop(storage);
}

CookieVec::CookieVec() : count_(0) {}

CookieVec::CookieVec(const CookieVec& other) : items_(other.items_), count_(other.count_) {}

CookieVec& CookieVec::operator=(const CookieVec& other)
{
  items_ = other.items_;
  count_ = other.count_;
  return *this;
}

CookieVec::~CookieVec() {}

int CookieVec::count() const
{
  return count_;
}

bool CookieVec::empty() const
{
  return count_ == 0;
}

const Cookie& CookieVec::operator[](int index) const
{
  return begin()[index];
}

const Cookie* CookieVec::begin() const
{
  return items_.storage ? items_.storage->items() : nullptr;
}

const Cookie* CookieVec::end() const
{
  return begin() + count_;
}

void CookieVec::add(const Cookie& cookie)
{
  const Cookie added = cookie; // may lie in this vector
  Storage* s = items_.storage;
  if (s && !s->shared())
    s->used = count_; // nobody sees what a clear or a copy that is gone has left behind
  if (!s || s->used != count_ || count_ == s->capacity) {
    if (count_ > std::numeric_limits<int>::max() / 2)
      throw std::bad_alloc();
    s = Storage::make(std::max(2 * count_, 8));
    s->append(begin(), count_);
    Storage::drop(items_.storage);
    items_.storage = s;
  }
  s->append(&added, 1);
  count_ = s->used;
}

void CookieVec::remove(const Cookie& cookie)
{
  const Cookie* const found =
      std::find_if(begin(), end(), [&](const Cookie& item) { return item.compare(cookie) == 0; });
  if (found == end())
    return;
  const int index = static_cast<int>(found - begin());
  Storage* s = items_.storage;
  if (s->shared()) {
    Storage* fresh = Storage::make(count_);
    fresh->append(begin(), index);
    fresh->append(found + 1, count_ - index - 1);
    Storage::drop(s);
    items_.storage = fresh;
  } else {
    std::copy(found + 1, end(), s->items() + index);
    s->used = count_ - 1;
  }
  --count_;
}

void CookieVec::clear()
{
  count_ = 0;
}

const Cookie& CookieSetRep::operator[](int index) const
{
  return items_[index];
}

int CookieSetRep::count() const
{
  return items_.count();
}

void CookieSetRep::insert(const Cookie& cookie)
{
  const auto same = [&](const Cookie& item) { return item.compare(cookie) == 0; };
  if (std::none_of(items_.begin(), items_.end(), same))
    items_.add(cookie);
}

CookieSet::CookieSet() : rep_(new CookieSetRep) {}

CookieSetRep* CookieSet::operator->() const
{
  return rep_.get();
}

CookieSetRep& CookieSet::operator*() const
{
  return *rep_;
}

void CookieSet::insert(const Cookie& cookie)
{
  rep_->insert(cookie);
}

IdStamp::IdStamp() : value_(0) {}

IdStamp::IdStamp(unsigned value) : value_(value) {}

IdStamp::IdStamp(const IdStamp& other) : value_(other.value_) {}

IdStamp& IdStamp::operator=(const IdStamp& other)
{
  value_ = other.value_;
  return *this;
}

bool IdStamp::valid() const
{
  return value_ != 0;
}
