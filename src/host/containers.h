// SPDX-License-Identifier: Apache-2.0
/// @file
/// The host's arrays of records, its lists of strings, and its keyed list.
/// Main thread only; the keyed list is also used on the thread that loads the library. A container that cannot grow
/// throws std::bad_alloc and stays as it was.
#ifndef REELDB_HOST_CONTAINERS_H
#define REELDB_HOST_CONTAINERS_H

#include <cstring>

#include "lwstring.h"
#include "refcount.h"
#include "text.h"

// Also in a host that is compiled with -fvisibility=hidden.
#pragma GCC visibility push(default)

/// The element of an Array. The order of the virtual functions is part of the contract.
class ArrayRec {
public:
  ArrayRec();
  virtual ~ArrayRec(); ///< does not remove the record from Arrays; remove it first
  /// Negative, 0 or positive if this record comes before, with or after the other. Compares addresses unless
  /// overridden.
  virtual int compare(const ArrayRec&) const;
  virtual bool operator==(const ArrayRec&) const; ///< whether compare returns 0
  virtual bool operator!=(const ArrayRec&) const;
  virtual void printOn(GrowString&) const; ///< appends a readable text; appends nothing unless overridden

protected:
  void* arrayData_; ///< reserved for the host; the library leaves it null
};

/// The element of a StringList: one text, compared byte by byte.
class StringRec : public ArrayRec {
public:
  explicit StringRec(const LightweightString<char>& text) : text_(text) {}
  ~StringRec() override {}
  /// Compares the bytes of the texts. @p other must be a StringRec.
  int compare(const ArrayRec& other) const override
  {
    return std::strcmp(text_.c_str(), static_cast<const StringRec&>(other).text_.c_str());
  }
  void printOn(GrowString& out) const override { out.append(text_.c_str()); }
  const LightweightString<char>& text() const { return text_; } ///< valid while the record lives

private:
  LightweightString<char> text_;
};

/// A list of records in order. It does not own them, and compares them only if it is marked sorted.
class Array {
public:
  Array(); ///< empty, not marked sorted
  ~Array();
  Array(const Array&) = delete; ///< an Array does not own its records
  Array& operator=(const Array&) = delete;
  void init();                 ///< count 0, not marked sorted
  void clear();                ///< count 0; the sorted mark is kept
  void add(ArrayRec*);         ///< if marked sorted, at its position behind equal records; else at the end
  void append(ArrayRec*);      ///< at the end, sorted or not
  void remove(unsigned index); ///< moves later records up; an index past the end does nothing
  void sorted(bool);           ///< sets or clears the mark; does not move any record
  unsigned count() const;
  ArrayRec* at(unsigned index) const; ///< null past the end

protected:
  ArrayRec** items_; ///< the records, in memory of OS()->allocator(); null until the first record
  unsigned count_, capacity_;
  bool sorted_; ///< the sorted mark
};

/// A list of strings that owns its elements, also those that were added through Array. clear, add and remove hide the
/// functions of Array. Do not call those on a StringList through a reference to Array.
class StringList : public Array {
public:
  StringList();                             ///< empty, not marked sorted
  StringList(const StringList&);            ///< copies the elements in their order, and the sorted mark
  StringList& operator=(const StringList&); ///< likewise; deletes the old elements
  ~StringList();
  void clear(); ///< deletes the elements; the sorted mark is kept
  /// Adds an element with this text, at its position if the list is marked sorted. Duplicates are allowed.
  void add(const LightweightString<char>&);
  void remove(const LightweightString<char>&);         ///< removes every equal element; may be the text of an element
  bool contains(const LightweightString<char>&) const; ///< compares byte by byte
  /// The text at @p index, below count(). Valid until the element is deleted.
  const LightweightString<char>& operator[](unsigned index) const;
};

/// The shared body of an AssocList.
class AssocListRep : public Zr::InternalRefCount {
public:
  /// A key with its value. A holder keeps it alive after the list is gone.
  class Entry : public Zr::InternalRefCount {
  public:
    /// The key must not be changed. The value may be changed at any time.
    LightweightString<char> key, value;
  };
  explicit AssocListRep(bool); ///< false: entries in order of creation, keys compared byte by byte
  ~AssocListRep() override;
  Zr::Ptr<Entry> find(const LightweightString<char>& key) const; ///< null if absent; never adds
  Entry& findOrCreate(const LightweightString<char>& key);       ///< adds a new entry at the end, with an empty value
  Entry* entry(unsigned index) const;                            ///< null past the end
  unsigned count() const;
  void discardAll(); ///< removes all entries, for every holder of the body

private:
  struct Impl;
  Impl* impl_;
};

/// A list of keys with one value per key. Copies and iterators share the body.
class AssocList {
public:
  explicit AssocList(AssocListRep* rep); ///< shares the body, which must not be null
  ~AssocList();
  AssocListRep::Entry& operator[](const LightweightString<char>& key); ///< finds or creates
  AssocListRep::Entry& at(unsigned index) const;                       ///< past the end: an entry that is always empty
  AssocListRep* rep() const;                                           ///< the body, borrowed from the list

protected:
  Zr::Ptr<AssocListRep> rep_;
  bool flag_; ///< reserved for the host; false
  friend class AssocListIter;
};

/// Walks an AssocList from its first entry to its last, including entries that are added meanwhile. Holds the body.
class AssocListIter {
public:
  explicit AssocListIter(const AssocList&);
  const AssocListRep::Entry* operator*() const; ///< null at the end
  AssocListIter& operator++();                  ///< to the next entry; not past the end

private:
  Zr::Ptr<AssocListRep> rep_;
  [[maybe_unused]] bool flag_;
  unsigned pos_;
};

#pragma GCC visibility pop

#endif
