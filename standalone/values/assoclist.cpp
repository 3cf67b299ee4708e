// SPDX-License-Identifier: Apache-2.0
#include <string_view>
#include <unordered_map>
#include <vector>

#include "host/containers.h"

namespace {

std::string_view view(const LightweightString<char>& text)
{
  return {text.c_str(), text.length()};
}

struct KeyHash {
  std::size_t operator()(const LightweightString<char>& key) const { return std::hash<std::string_view>()(view(key)); }
};

struct KeyEqual {
  bool operator()(const LightweightString<char>& a, const LightweightString<char>& b) const
  {
    return view(a) == view(b);
  }
};

} // namespace

struct AssocListRep::Impl {
  std::vector<Zr::Ptr<Entry>> inOrder;
  // Its own references to both keys keep them unchanged even if the entry changes.
  std::unordered_map<LightweightString<char>, Zr::Ptr<Entry>, KeyHash, KeyEqual> byKey;
};

AssocListRep::AssocListRep(bool) : impl_(new Impl) {}

AssocListRep::~AssocListRep()
{
  delete impl_;
}

Zr::Ptr<AssocListRep::Entry> AssocListRep::find(const LightweightString<char>& key) const
{
  const auto found = impl_->byKey.find(key);
  return found == impl_->byKey.end() ? Zr::Ptr<Entry>() : found->second;
}

AssocListRep::Entry& AssocListRep::findOrCreate(const LightweightString<char>& key)
{
  const auto [place, isNew] = impl_->byKey.try_emplace(key);
  if (!isNew)
    return *place->second;
  try {
    place->second = new Entry;
    place->second->key = key;
    impl_->inOrder.push_back(place->second);
  } catch (...) {
    impl_->byKey.erase(place);
    throw;
  }
  return *place->second;
}

AssocListRep::Entry* AssocListRep::entry(unsigned index) const
{
  return index < count() ? impl_->inOrder[index].get() : nullptr;
}

unsigned AssocListRep::count() const
{
  return static_cast<unsigned>(impl_->inOrder.size());
}

void AssocListRep::discardAll()
{
  impl_->byKey.clear();
  impl_->inOrder.clear();
}

AssocList::AssocList(AssocListRep* rep) : rep_(rep), flag_(false) {}

AssocList::~AssocList() {}

AssocListRep::Entry& AssocList::operator[](const LightweightString<char>& key)
{
  return rep_->findOrCreate(key);
}

AssocListRep::Entry& AssocList::at(unsigned index) const
{
  if (AssocListRep::Entry* entry = rep_->entry(index))
    return *entry;
  // Created once and never destroyed. It is emptied each time, in case a caller has written to it.
  static AssocListRep::Entry* const nothing = [] {
    auto* entry = new AssocListRep::Entry;
    entry->addRef();
    return entry;
  }();
  nothing->key = "";
  nothing->value = "";
  return *nothing;
}

AssocListRep* AssocList::rep() const
{
  return rep_.get();
}

AssocListIter::AssocListIter(const AssocList& list) : rep_(list.rep_), flag_(list.flag_), pos_(0) {}

const AssocListRep::Entry* AssocListIter::operator*() const
{
  return rep_->entry(pos_);
}

AssocListIter& AssocListIter::operator++()
{
  ++pos_;
  return *this;
}
