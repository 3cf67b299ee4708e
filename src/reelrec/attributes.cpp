// SPDX-License-Identifier: Apache-2.0
#include <cstdio>
#include <cstring>
#include <vector>

#include "ReelDbManager.h"
#include "ReelDbRec.h"
#include "host/codes.h"
#include "host/projdb.h"
#include "host/text.h"
#include "reelrec/open_log.h"
#include "reelrec/text_equality.h"

using reeldb::OpenLog;
using reeldb::sameText;

namespace {

LightweightString<char> userFieldKey(int n)
{
  char digits[33] = {};
  std::snprintf(digits, sizeof digits, "%d", n);
  return LightweightString<char>(TR_USER_FIELD_BASE) + LightweightString<char>(digits);
}

/// The text of a field in which one special text means "no value".
LightweightString<char> textUnless(ReelDbRec& rec, const char* key, const char* nothing)
{
  LightweightString<char> text;
  rec.getStringValFromEdit(key, text);
  return sameText(text, nothing) ? LightweightString<char>() : text;
}

bool flag(ReelDbRec& rec, const char* key)
{
  int value = 0;
  rec.getIntValFromEdit(key, value);
  return value != 0;
}

/// Notifies the manager that a field of this reel changed. Reads the identifier again, because the clients know that
/// spelling.
void notify(ReelDbRec& rec)
{
  const LightweightString<char> id = rec.reelId();
  ReelDbManager::theReelDbManager()->informReelDbRecChanged(id);
}

} // namespace

LightweightString<char> ReelDbRec::reelId()
{
  strp_field field;
  if (!getStrpFieldValFromEdit(TR_REEL_ID, field) || !field.text())
    return {};
  return LightweightString<char>(field.text(), strnlen(field.text(), codes::longestText));
}

void ReelDbRec::reelId(LightweightString<char> id)
{
  if (sameText(id, reelId()) || !valid())
    return;
  const OpenLog log(*this);
  if (!log)
    return;
  log->set_reelid(0, id.c_str());
  EditManager::updateProjdbRec(*this);
}

bool ReelDbRec::recInhibit()
{
  return flag(*this, TR_REC_INHIBIT_FLAG);
}

void ReelDbRec::recInhibit(bool inhibit)
{
  if (inhibit == recInhibit())
    return;
  setIntValInEdit(TR_REC_INHIBIT_FLAG, inhibit ? 1 : 0);
  notify(*this);
}

bool ReelDbRec::reelAvailable()
{
  return flag(*this, TR_REEL_AVAILABLE_FLAG);
}

void ReelDbRec::reelAvailable(bool available)
{
  if (available == reelAvailable())
    return;
  setIntValInEdit(TR_REEL_AVAILABLE_FLAG, available ? 1 : 0);
  notify(*this);
}

LightweightString<char> ReelDbRec::userField(int n)
{
  LightweightString<char> text;
  getStringValFromEdit(userFieldKey(n), text);
  return text;
}

void ReelDbRec::userField(int n, LightweightString<char> value)
{
  if (sameText(value, userField(n)))
    return;
  setStringValInEdit(userFieldKey(n), value);
  notify(*this);
}

LightweightString<char> ReelDbRec::labelMapping()
{
  return textUnless(*this, TR_LABEL_MAPPING, "unknown");
}

void ReelDbRec::labelMapping(LightweightString<char> name)
{
  if (sameText(name, labelMapping()))
    return;
  setStringValInEdit(TR_LABEL_MAPPING, name);
  notify(*this);
}

LightweightString<char> ReelDbRec::binName()
{
  return textUnless(*this, TR_BIN_NAME, "default");
}

void ReelDbRec::binName(LightweightString<char> name)
{
  if (sameText(name, binName()))
    return;
  setStringValInEdit(TR_BIN_NAME, name);
  notify(*this);
}

LightweightString<wchar_t> ReelDbRec::lastDevice()
{
  LightweightString<char> name;
  getStringValFromEdit(TR_LAST_DEVICE, name);
  return fromUTF8(name);
}

void ReelDbRec::lastDevice(const LightweightString<wchar_t>& name)
{
  if (sameText(name, lastDevice()))
    return;
  setStringValInEdit(TR_LAST_DEVICE, toUTF8(name));
  notify(*this);
  updateNumChansInReel();
}

LightweightString<char> ReelDbRec::typeName()
{
  projdb* const db = EditManager::getProjdb();
  if (!db)
    return {};
  const Zr::Ptr<ODBViewRep> rep(new ODBViewRep(db->database()));
  const ODBView view(rep.get());
  view->displayRecordsAt(std::vector<Cookie>(1, *this), 0);
  if (view->numRows() < 1)
    return {};
  return view->cellText(0, "Reel Type");
}

void ReelDbRec::typeName(LightweightString<char> name)
{
  if (sameText(name, typeName()))
    return;
  const OpenLog log(*this);
  if (log) {
    log->reelType(name);
    log->setDirty(true);
    updateNumChansInReel();
  }
  notify(*this);
}
