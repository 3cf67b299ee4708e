// SPDX-License-Identifier: Apache-2.0
//
// What stands behind a configb: keys with a text each, in the order in which they were first set.
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

/// Hears of every set that changes the block.
class ConfigOwner {
public:
  virtual void configChanging() = 0; ///< before the change; what it throws prevents the change
  virtual void configChanged(Key key) = 0;

protected:
  ~ConfigOwner() = default;
};

/// A block has few keys and is read far more often than written, so it is searched from its first key on.
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
  const LightweightString<char>* find(const char* key) const; ///< null stands for the empty key, here and in set

  void set(const char* key, const char* text); ///< a null text is the empty text; an equal text changes nothing
  void assign(const KeyValues& fields);        ///< takes the place of everything; the owner is not told
  KeyValues fields() const;
  void setOwner(ConfigOwner* owner) { owner_ = owner; } ///< borrowed; null for none

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
