// SPDX-License-Identifier: Apache-2.0
/// @file
/// The host's arrays of records, its lists of strings, and its keyed list.
/// Main thread only, and the keyed list also on the thread that loads the library. What has to grow throws
/// std::bad_alloc when there is no memory, and is then as it was.
#ifndef REELDB_HOST_CONTAINERS_H
#define REELDB_HOST_CONTAINERS_H

#include <cstring>

#include "lwstring.h"
#include "refcount.h"
#include "text.h"

/// What an Array can hold. The order of the virtual functions is part of the contract.
class ArrayRec {
public:
  ArrayRec();
  virtual ~ArrayRec(); ///< leaves the Arrays that hold it as they are: it has to be taken out of them before
  /// Negative, 0 or positive as this one comes before, with or after the other; by address, unless overridden.
  virtual int compare(const ArrayRec&) const;
  virtual bool operator==(const ArrayRec&) const; ///< whether compare gives 0
  virtual bool operator!=(const ArrayRec&) const;
  virtual void printOn(GrowString&) const; ///< appends a text for people; nothing, unless overridden

protected:
  void* arrayData_; ///< the host's own; left null
};

/// The element of a StringList: one text, compared byte by byte.
class StringRec : public ArrayRec {
public:
  explicit StringRec(const LightweightString<char>& text) : text_(text) {}
  ~StringRec() override {}
  /// By the bytes of the texts; the other one has to be a StringRec, too.
  int compare(const ArrayRec& other) const override
  {
    return std::strcmp(text_.c_str(), static_cast<const StringRec&>(other).text_.c_str());
  }
  void printOn(GrowString& out) const override { out.append(text_.c_str()); }
  const LightweightString<char>& text() const { return text_; } ///< valid as long as the record

private:
  LightweightString<char> text_;
};

/// A list of records in order. It never owns them, and compares them only when it is marked sorted.
class Array {
public:
  Array(); ///< empty, not marked sorted
  ~Array();
  Array(const Array&) = delete; ///< not copied: what it holds is another's
  Array& operator=(const Array&) = delete;
  void init();                 ///< count 0, not marked sorted
  void clear();                ///< count 0; the sorted mark is kept
  void add(ArrayRec*);         ///< in its place, behind its equals, when marked sorted; else at the end
  void append(ArrayRec*);      ///< at the end, sorted or not
  void remove(unsigned index); ///< closes the gap; past the end: nothing
  void sorted(bool);           ///< marks or unmarks; does not move what is there
  unsigned count() const;
  ArrayRec* at(unsigned index) const; ///< null past the end

protected:
  ArrayRec** items_; ///< the records, in memory of OS()->allocator(); null as long as there was none
  unsigned count_, capacity_;
  bool sorted_; ///< whether add keeps an order
};

/// A list of strings that owns its elements, however they came in. clear, add and remove hide those of Array, which
/// must not be called on a StringList through a reference to Array.
class StringList : public Array {
public:
  StringList();                             ///< empty, not marked sorted
  StringList(const StringList&);            ///< copies the elements in their order, and the sorted mark
  StringList& operator=(const StringList&); ///< the same; what was there is deleted
  ~StringList();
  void clear(); ///< deletes the elements; the sorted mark is kept
  /// Makes an element of the text, in its place when marked sorted. An equal text may be there already.
  void add(const LightweightString<char>&);
  void remove(const LightweightString<char>&);         ///< every equal element; the text may be that of one
  bool contains(const LightweightString<char>&) const; ///< byte for byte
  /// The text at @p index, below count(); valid until the element goes.
  const LightweightString<char>& operator[](unsigned index) const;
};

/// The shared body of an AssocList.
class AssocListRep : public Zr::InternalRefCount {
public:
  /// A key with its value. It outlives the list as long as somebody holds it.
  class Entry : public Zr::InternalRefCount {
  public:
    /// Not to be changed.
    LightweightString<char> key, value; ///< what the key stands for; a change counts at once
  };
  explicit AssocListRep(bool); ///< false: entries in the order they were made, keys compared byte for byte
  ~AssocListRep() override;
  Zr::Ptr<Entry> find(const LightweightString<char>& key) const; ///< null when absent; never adds
  Entry& findOrCreate(const LightweightString<char>& key);       ///< a new entry, at the end, has an empty value
  Entry* entry(unsigned index) const;                            ///< null past the end
  unsigned count() const;
  void discardAll(); ///< count 0, for all who share the body

private:
  struct Impl;
  Impl* impl_;
};

/// A list of keys with a value each. Copies and iterators share the body.
class AssocList {
public:
  explicit AssocList(AssocListRep* rep); ///< shares the body, which is not null
  ~AssocList();
  AssocListRep::Entry& operator[](const LightweightString<char>& key); ///< finds or creates
  AssocListRep::Entry& at(unsigned index) const;                       ///< past the end: an entry that is always empty
  AssocListRep* rep() const;                                           ///< the body; the list goes on holding it

protected:
  Zr::Ptr<AssocListRep> rep_;
  bool flag_; ///< the host's own; false
  friend class AssocListIter;
};

/// Walks an AssocList from its first entry to its last, those included that are added meanwhile. Holds the body.
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

#endif
