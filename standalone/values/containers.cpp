// SPDX-License-Identifier: Apache-2.0
#include "host/containers.h"

#include <algorithm>
#include <functional>
#include <limits>
#include <memory>
#include <new>
#include <utility>

#include "host/os.h"

namespace {

/// Makes room for one more element.
void makeRoom(ArrayRec**& items, unsigned count, unsigned& capacity)
{
  if (count < capacity)
    return;
  if (capacity > std::numeric_limits<unsigned>::max() / 2)
    throw std::bad_alloc();
  const unsigned larger = std::max(2 * capacity, 8U);
  void* memory = OS()->allocator().allocate(larger * sizeof(ArrayRec*)); // NOLINT(bugprone-sizeof-expression): pointers
  if (!memory)
    throw std::bad_alloc();
  ArrayRec** fresh = static_cast<ArrayRec**>(memory);
  std::copy_n(items, count, fresh);
  OS()->allocator().release(items);
  items = fresh;
  capacity = larger;
}

bool sameText(const ArrayRec* element, const LightweightString<char>& text)
{
  return std::strcmp(static_cast<const StringRec*>(element)->text().c_str(), text.c_str()) == 0;
}

} // namespace

ArrayRec::ArrayRec() : arrayData_(nullptr) {}

ArrayRec::~ArrayRec() {}

int ArrayRec::compare(const ArrayRec& other) const
{
  if (this == &other)
    return 0;
  return std::less<const ArrayRec*>()(this, &other) ? -1 : 1;
}

bool ArrayRec::operator==(const ArrayRec& other) const
{
  return compare(other) == 0;
}

bool ArrayRec::operator!=(const ArrayRec& other) const
{
  return !(*this == other);
}

void ArrayRec::printOn(GrowString&) const {}

Array::Array() : items_(nullptr), count_(0), capacity_(0), sorted_(false) {}

Array::~Array()
{
  OS()->allocator().release(items_);
}

void Array::init()
{
  count_ = 0;
  sorted_ = false;
}

void Array::clear()
{
  count_ = 0;
}

// A linear search from the end: an array that is marked as sorted may not be sorted, and records often come in order.
void Array::add(ArrayRec* record)
{
  makeRoom(items_, count_, capacity_);
  unsigned place = count_;
  while (sorted_ && place > 0 && items_[place - 1]->compare(*record) > 0)
    --place;
  std::copy_backward(items_ + place, items_ + count_, items_ + count_ + 1);
  items_[place] = record;
  ++count_;
}

void Array::append(ArrayRec* record)
{
  makeRoom(items_, count_, capacity_);
  items_[count_++] = record;
}

void Array::remove(unsigned index)
{
  if (index >= count_)
    return;
  std::copy(items_ + index + 1, items_ + count_, items_ + index);
  --count_;
}

void Array::sorted(bool on)
{
  sorted_ = on;
}

unsigned Array::count() const
{
  return count_;
}

ArrayRec* Array::at(unsigned index) const
{
  return index < count_ ? items_[index] : nullptr;
}

StringList::StringList() {}

StringList::StringList(const StringList& other) : StringList()
{
  for (unsigned i = 0; i < other.count(); ++i)
    add(other[i]);
  sorted_ = other.sorted_; // set last: the copied elements keep their order
}

StringList& StringList::operator=(const StringList& other)
{
  StringList copy(other);
  std::swap(items_, copy.items_);
  std::swap(count_, copy.count_);
  std::swap(capacity_, copy.capacity_);
  std::swap(sorted_, copy.sorted_);
  return *this;
}

StringList::~StringList()
{
  clear();
}

void StringList::clear()
{
  std::for_each(items_, items_ + count_, std::default_delete<ArrayRec>());
  Array::clear();
}

void StringList::add(const LightweightString<char>& text)
{
  auto record = std::make_unique<StringRec>(text);
  Array::add(record.get());
  static_cast<void>(record.release());
}

void StringList::remove(const LightweightString<char>& text)
{
  // A copy: it may be the text of an element that is removed.
  // NOLINTNEXTLINE(performance-unnecessary-copy-initialization)
  const LightweightString<char> wanted = text;
  unsigned kept = 0;
  for (unsigned i = 0; i < count_; ++i) {
    if (sameText(items_[i], wanted))
      delete items_[i];
    else
      items_[kept++] = items_[i];
  }
  count_ = kept;
}

bool StringList::contains(const LightweightString<char>& text) const
{
  return std::any_of(items_, items_ + count_, [&](const ArrayRec* e) { return sameText(e, text); });
}

const LightweightString<char>& StringList::operator[](unsigned index) const
{
  return static_cast<const StringRec*>(items_[index])->text();
}
