// SPDX-License-Identifier: Apache-2.0
#include "model/log.h"

#include <algorithm>
#include <utility>

#include "host/codes.h"
#include "model/project.h"

using reelhost::StoredLog;
using reelhost::model::Key;

namespace {

Zr::UUID uuidOf(const StoredLog& stored)
{
  Zr::UUID uuid;
  std::copy(stored.uuid.begin(), stored.uuid.end(), uuid.bytes);
  return uuid;
}

} // namespace

Edit::Impl::Impl(reelhost::model::Project& of, StoredLog&& stored)
    : words(Cookie(uuidOf(stored), stored.tag, stored.kind)), uuid(uuidOf(stored)), tag(stored.tag), kind(stored.kind),
      cookie(uuid, tag, kind), project(of), number(stored.number), block(reelhost::model::blockOf(config)),
      type(stored.type), imported(stored.imported), entireMedium(stored.entireMedium),
      original(stored.type != codes::reelLog), name(std::move(stored.name)), videoChannels(stored.videoChannels),
      audioChannels(stored.audioChannels), reelTypeName(stored.reelType.c_str()), rowImpl{this},
      shownReelType(reelTypeName)
{
  edit.impl = this;
  row.impl = &rowImpl;
  block.assign(stored.fields);
  block.setOwner(this);
  if (const LightweightString<char>* const id = block.find(reelhost::model::reelIdKey()))
    showReelId(*id);
}

StoredLog Edit::Impl::toStored() const
{
  StoredLog stored;
  stored.number = number;
  std::copy(std::begin(uuid.bytes), std::end(uuid.bytes), stored.uuid.begin());
  stored.tag = tag;
  stored.kind = kind;
  stored.type = type;
  stored.imported = imported;
  stored.entireMedium = entireMedium;
  stored.name = name;
  stored.videoChannels = videoChannels;
  stored.audioChannels = audioChannels;
  stored.reelType = reelTypeName.c_str();
  stored.fields = block.fields();
  return stored;
}

void Edit::Impl::assign(const StoredLog& stored)
{
  type = stored.type;
  imported = stored.imported;
  entireMedium = stored.entireMedium;
  name = stored.name;
  videoChannels = stored.videoChannels;
  audioChannels = stored.audioChannels;
  reelTypeName = stored.reelType.c_str();
  shownReelType = reelTypeName;
  block.assign(stored.fields);
  const LightweightString<char>* const id = block.find(reelhost::model::reelIdKey());
  showReelId(id ? *id : LightweightString<char>());
}

void Edit::Impl::become(const StoredLog& stored)
{
  uuid = uuidOf(stored);
  tag = stored.tag;
  kind = stored.kind;
  cookie = Cookie(uuid, tag, kind);
  words = reelhost::model::CookieWords(cookie);
  number = stored.number;
  original = stored.type != codes::reelLog;
  changeDescription.reset();
  assign(stored);
}

void Edit::Impl::showReelId(const LightweightString<char>& id)
{
  reelId = id;
  reelIdText = reelId.c_str();
}

// This host reads the type from the row's cell; other modules read the key.
void Edit::Impl::setReelType(const LightweightString<char>& typeName, bool shownAtOnce)
{
  project.changing(*this);
  reelTypeName = typeName;
  block.set("reel_type", typeName.c_str());
  if (shownAtOnce)
    shownReelType = typeName;
}

void Edit::Impl::configChanging(Key)
{
  project.changing(*this);
}

void Edit::Impl::configChanged(Key key)
{
  if (key != reelhost::model::reelIdKey())
    return;
  showReelId(*block.find(key));
  project.reelIdChanged(*this);
}
