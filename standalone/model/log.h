// SPDX-License-Identifier: Apache-2.0
//
// One log of the open project. It does not move while its project lives, so an Edit may point at it.
#ifndef REELHOST_MODEL_LOG_H
#define REELHOST_MODEL_LOG_H

#include <optional>

#include "host/edit.h"
#include "host/projdb.h"
#include "model/config_block.h"
#include "model/cookie_words.h"
#include "reelhost/store.h"

namespace reelhost::model {

class Project;
using Log = Edit::Impl;

} // namespace reelhost::model

struct dbrecord::Impl {
  Edit::Impl* log;
};

/// The log behind an Edit.
struct alignas(64) Edit::Impl final : reelhost::model::ConfigOwner {
  Impl(reelhost::model::Project& project, reelhost::StoredLog&& stored);
  Impl(const Impl&) = delete;
  Impl& operator=(const Impl&) = delete;
  reelhost::StoredLog toStored() const;
  /// Takes all values over but number and identity. Notifies neither the project nor a listener.
  void assign(const reelhost::StoredLog& stored);
  /// Becomes another log. REQUIRES: it is gone, and no handle on it is open.
  void become(const reelhost::StoredLog& stored);

  void showReelId(const LightweightString<char>& id);
  void setReelType(const LightweightString<char>& name, bool shownAtOnce);

  void configChanging(reelhost::model::Key key) override;
  void configChanged(reelhost::model::Key key) override;

  // The members used to open a log and read its identifier come first, so that they are in one cache line: the library
  // opens all reel logs, one after the other, to find one.
  Edit edit; ///< the one Edit that all openings share
  reelhost::model::CookieWords words;
  LightweightString<char> reelId; ///< the block's text for "reelid"; without a body if the key is absent
  const char* reelIdText = "";    ///< the text of reelId, for prefetching
  Edit::Impl* follower = nullptr; ///< the log that is likely to be opened next; may be null
  bool isGone = false;            ///< deleted; only handles that were open at that time still refer to it

  Zr::UUID uuid;
  std::uint16_t tag;
  char kind;
  Cookie cookie;
  reelhost::model::Project& project;
  std::int64_t number;

  configb config;
  reelhost::model::ConfigBlock& block; ///< the implementation of config

  int type;
  bool imported, entireMedium;
  bool original; ///< not stored: a stored reel log was made not-original
  std::string name;
  int videoChannels, audioChannels;
  LightweightString<char> reelTypeName;
  std::optional<EditModificationType> changeDescription; ///< reported when the modification ends

  // The row.
  dbrecord row;
  dbrecord::Impl rowImpl;
  LightweightString<char> shownReelType; ///< the row's "Reel Type"

  // What the project keeps about the log.
  bool isDirty = false;                      ///< differs from what is stored
  LightweightString<char> storedReelId;      ///< of a dirty log: reelId as it is stored, empty for a new log
  const std::string* indexedUnder = nullptr; ///< its place in the attribute index
};

#endif
