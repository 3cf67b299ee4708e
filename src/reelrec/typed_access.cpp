// SPDX-License-Identifier: Apache-2.0
#include <cstdio>

#include "ReelDbRec.h"
#include "host/codes.h"
#include "reelrec/config_access.h"
#include "reelrec/open_log.h"

using reeldb::OpenLog;
using reeldb::readValue;
using reeldb::writeText;

ReelDbRec::ReelDbRec() = default;

ReelDbRec::ReelDbRec(Cookie log) : Cookie(log) {}

bool ReelDbRec::getIntValFromEdit(LightweightString<char> key, int& out)
{
  const OpenLog log(*this);
  return log && readValue(log->config(), key.c_str(), out);
}

void ReelDbRec::setIntValInEdit(LightweightString<char> key, int value)
{
  const OpenLog log(*this);
  if (!log)
    return;
  char text[33] = {};
  std::snprintf(text, sizeof text, "%d", value);
  writeText(log->config(), key.c_str(), text);
  log->setDirty(true);
}

bool ReelDbRec::getStrpFieldValFromEdit(LightweightString<char> key, strp_field& out)
{
  const OpenLog log(*this);
  return log && readValue(log->config(), key.c_str(), out);
}

void ReelDbRec::setStrpFieldValInEdit(LightweightString<char> key, LightweightString<char> value)
{
  const OpenLog log(*this);
  if (!log)
    return;
  strp_field field;
  field.set(value.c_str());
  log->config().set(key.c_str(), field);
  log->setDirty(true);
}

bool ReelDbRec::getStringValFromEdit(LightweightString<char> key, LightweightString<char>& out)
{
  const OpenLog log(*this);
  if (!log)
    return false;
  char text[codes::textBufferSize] = {};
  const bool found = readValue(log->config(), key.c_str(), text);
  // The result of `in` does not matter: an absent key leaves the buffer, and so the text, empty.
  out = text;
  return found;
}

void ReelDbRec::setStringValInEdit(LightweightString<char> key, LightweightString<char> value)
{
  const OpenLog log(*this);
  if (!log)
    return;
  writeText(log->config(), key.c_str(), value.c_str());
  log->setDirty(true);
}
