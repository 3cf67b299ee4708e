// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <atomic>
#include <cstring>
#include <limits>
#include <new>
#include <type_traits>

#include "host/cookie.h"
#include "host/os.h"

/// The Cookies follow the head. Several vectors may hold one storage, each with a count of its own. Each vector sees
/// the first count_ Cookies, which no other vector changes; later entries belong to other vectors, if any.
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
    copy(first, count, items() + used);
    used += count;
  }

  /// Copies Cookies, also to memory that they overlap. A copy of a Cookie is a copy of its bytes, which the compiler
  /// does not know: it would call the copy function of the UUID for each of, say, 100,000 reels.
  static void copy(const Cookie* first, int count, Cookie* to)
  {
    if (count > 0)
      std::memmove(static_cast<void*>(to), static_cast<const void*>(first),
                   static_cast<std::size_t>(count) * sizeof(Cookie));
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
  const Cookie added = cookie; // a copy: it may be an element of this vector
  Storage* s = items_.storage;
  if (s && !s->shared())
    s->used = count_; // later entries are left over from a clear or from a destroyed copy
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
    Storage::copy(found + 1, count_ - index - 1, s->items() + index);
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
