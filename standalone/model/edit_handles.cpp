// SPDX-License-Identifier: Apache-2.0
#include "model/edit_handles.h"

#include <cstdint>

#include "host/codes.h"
#include "host/edit.h"
#include "journal/host_call.h"
#include "model/listeners.h"
#include "model/log.h"
#include "model/project.h"
#include "reelhost/journal.h"

using reelhost::describeAll;
using reelhost::hostCall;
using reelhost::hostCallNoThrow;
using reelhost::model::Log;
using reelhost::model::openedProject;

namespace {

constinit std::int64_t openLogCount = 0;
constinit std::int64_t openModifierCount = 0;

Edit* findEdit(const Cookie& cookie)
{
  if (!openedProject)
    return nullptr;
  Log* const log = openedProject->find(cookie);
  return log ? &log->edit : nullptr;
}

/// The script's result for an opening: a null Edit if the opening is to fail.
std::optional<Edit*> scriptedOpening(const Cookie& cookie)
{
  return reelhost::scripted::openingFails(cookie) ? std::optional<Edit*>(nullptr) : std::nullopt;
}

/// Opens a log. @p operation is the name of the operation in the journal.
Edit* openLog(const char* operation, const Cookie& cookie, eEditOpenBehaviour behaviour)
{
  Edit* const edit = hostCall(
      operation, [&] { return describeAll(cookie, behaviour); }, [&] { return findEdit(cookie); },
      [&] { return scriptedOpening(cookie); });
  if (edit)
    ++openLogCount;
  return edit;
}

std::string logOf(const Edit* edit)
{
  return edit ? reelhost::describe(edit->impl->cookie) : std::string();
}

/// Ends a change: notifies the listeners of it if it was described.
void report(Edit* edit)
{
  if (!edit || !edit->impl->changeDescription)
    return;
  const Cookie cookie = edit->impl->cookie;
  const EditModification modification(*edit->impl->changeDescription);
  edit->impl->changeDescription.reset();
  if (&edit->impl->project != openedProject)
    return;
  try {
    reelhost::model::notifyLogModification(cookie, modification);
  } catch (...) {
    // The change stays, and a destructor cannot report the exception of a listener.
  }
}

} // namespace

EditPtr::EditPtr() : edit_(nullptr) {}

EditPtr::~EditPtr() {}

void EditPtr::i_open(const Cookie& cookie, eEditOpenBehaviour behaviour)
{
  edit_ = openLog("EditPtr::i_open", cookie, behaviour);
}

void EditPtr::i_close()
{
  hostCallNoThrow(
      "EditPtr::i_close", [&] { return logOf(edit_); },
      [&] {
        if (!edit_)
          return;
        edit_ = nullptr;
        --openLogCount;
      });
}

EditPtr& EditPtr::operator=(Edit* edit)
{
  hostCall(
      "EditPtr::operator=", [&] { return edit ? logOf(edit) : "null"; },
      [&] {
        edit_ = edit;
        if (edit)
          ++openLogCount;
      });
  return *this;
}

Edit* EditPtr::get() const
{
  return edit_;
}

Edit* EditPtr::operator->() const
{
  return edit_;
}

EditPtr::operator bool() const
{
  return edit_ != nullptr;
}

EditInfo::EditInfo(const Cookie& cookie, eEditOpenBehaviour behaviour)
{
  edit_ = openLog("EditInfo::EditInfo", cookie, behaviour);
}

LightweightString<char> EditInfo::getAttrib(LogAttributes::eLogAttribute attribute) const
{
  using Text = LightweightString<char>;
  return hostCall(
      "EditInfo::getAttrib",
      [&] { return edit_ ? describeAll(edit_->impl->cookie, attribute) : describeAll(attribute); },
      [&] { return edit_ && attribute == codes::reelIdAttribute ? edit_->impl->reelId : Text(); },
      [&]() -> std::optional<Text> {
        if (!edit_ || attribute != codes::reelIdAttribute)
          return std::nullopt;
        const std::optional<std::string> text = reelhost::scripted::attributeOf(edit_->impl->cookie);
        return text ? std::optional(Text(text->c_str())) : std::nullopt;
      });
}

EditModifier::EditModifier(Edit* edit) : edit_(edit)
{
  ++openModifierCount;
}

EditModifier::~EditModifier()
{
  --openModifierCount;
  hostCallNoThrow(
      "EditModifier::~EditModifier", [&] { return logOf(edit_); }, [&] { report(edit_); });
}

Edit* EditModifier::get() const
{
  return edit_;
}

namespace reelhost {

namespace model {

bool logsAreHeld()
{
  return openLogCount != 0 || openModifierCount != 0;
}

} // namespace model

std::int64_t openLogs()
{
  return openLogCount;
}

std::int64_t openModifiers()
{
  return openModifierCount;
}

} // namespace reelhost
