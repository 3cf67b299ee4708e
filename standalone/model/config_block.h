// SPDX-License-Identifier: Apache-2.0
//
// The implementation of a configb: keys with one text per key, in the order in which they were first set.
#ifndef REELHOST_MODEL_CONFIG_BLOCK_H
#define REELHOST_MODEL_CONFIG_BLOCK_H

#include <string>
#include <string_view>
#include <vector>

#include "host/config.h"
#include "reelhost/store.h"

namespace reelhost::model {

/// A key's text, once in the process: two Keys are equal when the pointers are. Never freed.
using Key = const std::string*;
Key internKey(std::string_view text);
Key reelIdKey(); ///< "reelid": the configuration key that is a log's reel identifier

/// Is notified of every set that changes the block.
class ConfigOwner {
public:
  virtual void configChanging(Key key) = 0; ///< called before the change; an exception prevents the change
  virtual void configChanged(Key key) = 0;

protected:
  ~ConfigOwner() = default;
};

/// A block has few keys and is read far more often than written, so a linear search is used.
class ConfigBlock {
public:
  /// The text of a key; null when it is absent. Valid until the next set.
  const LightweightString<char>* find(Key key) const
  {
    for (const Entry& entry : entries_)
      if (entry.key == key)
        return &entry.text;
    return nullptr;
  }
  const LightweightString<char>* find(const char* key) const; ///< null means the empty key, here and in set

  void set(const char* key, const char* text); ///< a null text is the empty text; an equal text changes nothing
  void assign(const KeyValues& fields);        ///< replaces all keys; the owner is not notified
  KeyValues fields() const;
  void setOwner(ConfigOwner* owner) { owner_ = owner; } ///< borrowed; null: no owner

private:
  struct Entry {
    Key key;
    LightweightString<char> text;
  };
  std::vector<Entry> entries_;
  ConfigOwner* owner_ = nullptr;
};

/// The block behind a configb.
ConfigBlock& blockOf(const configb& config);

} // namespace reelhost::model

#endif
