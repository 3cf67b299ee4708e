// SPDX-License-Identifier: Apache-2.0
#include <memory>

#include "ReelTypeManager.h"
#include "host/codes.h"
#include "host/config.h"
#include "host/text.h"

namespace {

// Defined before the catalogue: a query before these texts are constructed would use an empty parameter name, and every
// token contains the empty name.
const LightweightString<char> videoChannels("VideoChannels");
const LightweightString<char> audioChannels("AudioChannels");

LightweightString<char> typeFilePath()
{
  return toUTF8(getDeviceDataDirectory(codes::deviceData) + L"reeltype.dat");
}

} // namespace

ReelTypeManager theReelTypeManager_;

ReelTypeManager* theReelTypeManager()
{
  return &theReelTypeManager_;
}

// A pointer of our own holds the body until the list does, so that it is freed if the list cannot be constructed.
ReelTypeManager::ReelTypeManager() : AssocList(Zr::Ptr<AssocListRep>(new AssocListRep(false)).get())
{
  flag_ = false;
  load(typeFilePath());
}

ReelTypeManager::~ReelTypeManager()
{
  if (rep_)
    rep_->discardAll();
}

void ReelTypeManager::getAllReelTypes(StringList& list)
{
  for (AssocListIter it(*this); const AssocListRep::Entry* entry = *it; ++it) {
    auto name = std::make_unique<StringRec>(entry->key.c_str());
    list.append(name.get());
    static_cast<void>(name.release()); // the list owns it now
  }
}

ReelType ReelTypeManager::type(const unsigned& index)
{
  ReelType result;
  result.name = at(index).key.c_str();
  result.numAudioChans = numAudioChans(result.name);
  result.numVideoChans = numVideoChans(result.name);
  return result;
}

ReelType ReelTypeManager::type(const LightweightString<char>& name)
{
  ReelType result;
  result.numAudioChans = numAudioChans(name);
  result.numVideoChans = numVideoChans(name);
  result.name = name;
  return result;
}

bool ReelTypeManager::getReelParam(LightweightString<char> typeName, LightweightString<char> paramName, int& value)
{
  // Finds or creates: an undefined name becomes a type without parameters.
  const LightweightString<char> params = (*this)[typeName].value;
  ByteStream stream(params);
  stream.separators.append(' ');
  bool found = false;
  while (!found && !stream.atEnd()) {
    GrowString token;
    stream >> token;
    found = parseParamToken(static_cast<const char*>(token), paramName, value);
  }
  return found;
}

int ReelTypeManager::numVideoChans(LightweightString<char> typeName)
{
  int count = 0;
  getReelParam(typeName, videoChannels, count);
  return count;
}

int ReelTypeManager::numAudioChans(LightweightString<char> typeName)
{
  int count = 0;
  getReelParam(typeName, audioChannels, count);
  return count;
}
