// SPDX-License-Identifier: Apache-2.0
//
// The host's arrays of records, its lists of strings, and its keyed list.
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
  virtual ~ArrayRec();
  virtual int compare(const ArrayRec&) const;     ///< by address, unless overridden
  virtual bool operator==(const ArrayRec&) const; ///< whether compare gives 0
  virtual bool operator!=(const ArrayRec&) const; ///< the negation of operator==
  virtual void printOn(GrowString&) const;        ///< nothing, unless overridden

protected:
  void* arrayData_; ///< the host's own; left null
};

/// The element of a StringList: one text, compared byte by byte.
class StringRec : public ArrayRec {
public:
  explicit StringRec(const LightweightString<char>& text) : text_(text) {}
  ~StringRec() override {}
  int compare(const ArrayRec& other) const override
  {
    return std::strcmp(text_.c_str(), static_cast<const StringRec&>(other).text_.c_str());
  }
  void printOn(GrowString& out) const override { out.append(text_.c_str()); }
  const LightweightString<char>& text() const { return text_; }

private:
  LightweightString<char> text_;
};

/// A list of records in order. It never owns them, and compares them only when it is marked sorted.
class Array {
public:
  Array();
  ~Array();
  Array(const Array&) = delete;
  Array& operator=(const Array&) = delete;
  void init();
  void clear();           ///< count 0; the sorted mark is kept
  void add(ArrayRec*);    ///< in its place when marked sorted, else at the end
  void append(ArrayRec*); ///< at the end, sorted or not
  void remove(unsigned index);
  void sorted(bool); ///< marks or unmarks; does not move what is there
  unsigned count() const;
  ArrayRec* at(unsigned index) const;

protected:
  ArrayRec** items_;
  unsigned count_, capacity_;
  bool sorted_;
};

/// A list of strings that owns its elements, however they came in. clear, add and remove hide those of Array, which
/// must not be called on a StringList through a reference to Array.
class StringList : public Array {
public:
  StringList();
  StringList(const StringList&); ///< copies the elements
  StringList& operator=(const StringList&);
  ~StringList();
  void clear();                                        ///< deletes the elements; the sorted mark is kept
  void add(const LightweightString<char>&);            ///< an equal text may be there already
  void remove(const LightweightString<char>&);         ///< every equal element
  bool contains(const LightweightString<char>&) const; ///< byte for byte
  const LightweightString<char>& operator[](unsigned index) const;
};

/// The shared body of an AssocList.
class AssocListRep : public Zr::InternalRefCount {
public:
  class Entry : public Zr::InternalRefCount {
  public:
    LightweightString<char> key, value;
  };
  explicit AssocListRep(bool); ///< false: entries in the order they were made, keys compared byte for byte
  ~AssocListRep() override;
  Zr::Ptr<Entry> find(const LightweightString<char>& key) const; ///< null when absent; never adds
  Entry& findOrCreate(const LightweightString<char>& key);       ///< a new entry has an empty value
  Entry* entry(unsigned index) const;                            ///< null past the end
  unsigned count() const;
  void discardAll();

private:
  struct Impl;
  Impl* impl_;
};

/// A list of keys with a value each. Copies and iterators share the body.
class AssocList {
public:
  explicit AssocList(AssocListRep* rep);
  ~AssocList();
  AssocListRep::Entry& operator[](const LightweightString<char>& key); ///< finds or creates
  AssocListRep::Entry& at(unsigned index) const;                       ///< past the end: an entry that is always empty
  AssocListRep* rep() const;

protected:
  Zr::Ptr<AssocListRep> rep_;
  bool flag_;
  friend class AssocListIter;
};

/// Walks an AssocList from its first entry to its last.
class AssocListIter {
public:
  explicit AssocListIter(const AssocList&);
  const AssocListRep::Entry* operator*() const; ///< null at the end
  AssocListIter& operator++();

private:
  Zr::Ptr<AssocListRep> rep_;
  [[maybe_unused]] bool flag_;
  unsigned pos_;
};

#endif
