// SPDX-License-Identifier: Apache-2.0
#include "model/config_block.h"

#include <cstring>
#include <unordered_set>

#include "reelhost/material.h"

namespace reelhost::model {

namespace {

struct TextHash {
  using is_transparent = void;
  std::size_t operator()(std::string_view text) const { return std::hash<std::string_view>()(text); }
};

std::string_view viewOf(const char* text)
{
  return text ? std::string_view(text) : std::string_view();
}

} // namespace

Key internKey(std::string_view text)
{
  static auto& keys = *new std::unordered_set<std::string, TextHash, std::equal_to<>>;
  const auto found = keys.find(text);
  return found != keys.end() ? &*found : &*keys.emplace(text).first;
}

Key reelIdKey()
{
  static const Key key = internKey(shotTexts.front().key);
  return key;
}

const LightweightString<char>* ConfigBlock::find(const char* key) const
{
  const std::string_view wanted = viewOf(key);
  for (const Entry& entry : entries_)
    if (*entry.key == wanted)
      return &entry.text;
  return nullptr;
}

void ConfigBlock::set(const char* key, const char* text)
{
  LightweightString<char> value(text); // copied first: the text may be in this block
  const std::string_view wanted = viewOf(key);
  Entry* entry = nullptr;
  for (Entry& e : entries_)
    if (*e.key == wanted)
      entry = &e;
  if (entry && std::strcmp(entry->text.c_str(), value.c_str()) == 0)
    return;

  const Key changing = entry ? entry->key : internKey(wanted);
  if (owner_)
    owner_->configChanging(changing);
  if (!entry)
    entry = &entries_.emplace_back(Entry{changing, {}});
  entry->text = std::move(value);
  if (owner_)
    owner_->configChanged(entry->key);
}

void ConfigBlock::assign(const KeyValues& fields)
{
  entries_.clear();
  entries_.reserve(fields.size());
  for (const auto& [key, text] : fields)
    entries_.push_back({internKey(key), LightweightString<char>(text.c_str())});
}

KeyValues ConfigBlock::fields() const
{
  KeyValues fields;
  fields.reserve(entries_.size());
  for (const Entry& entry : entries_)
    fields.emplace_back(*entry.key, entry.text.c_str());
  return fields;
}

} // namespace reelhost::model
