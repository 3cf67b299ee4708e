// SPDX-License-Identifier: Apache-2.0
#include "host/edit.h"

#include <cstring>
#include <string>

#include "host/codes.h"
#include "host/text.h"
#include "journal/host_call.h"
#include "model/log.h"
#include "model/log_types.h"
#include "model/project.h"
#include "reelhost/display_text.h"
#include "reelhost/error.h"

using reelhost::describeAll;
using reelhost::hostCall;
using reelhost::model::Log;
using reelhost::model::reelIdKey;

namespace {

/// Sets a member of a log, and marks the log as to be stored.
template <class T>
void change(Log& log, T& member, const T& value)
{
  if (member == value)
    return;
  log.project.changing(log);
  member = value;
}

/// Adds one to the channels of a kind. Throws Error (Refused) for the 65,536th: the bits that count channels would be 0
/// again, so a caller that adds channels up to a number would never end.
void addChannel(Log& log, int& channels, const char* kind)
{
  if ((channels & codes::channelCountMask) == codes::channelCountMask)
    throw reelhost::Error(
        reelhost::ErrorKind::Refused,
        reelhost::displayText(log.reelId.empty() ? reelhost::model::fileNameOf(log) : log.reelId.c_str()) +
            ": too many " + kind + " channels (at most " + std::to_string(codes::channelCountMask) +
            "; its type or its device requires more)");
  change(log, channels, channels + 1);
}

} // namespace

configb& Edit::config()
{
  return impl->config;
}

const Zr::UUID& Edit::uuid() const
{
  return impl->uuid;
}

std::uint16_t Edit::cookieTag() const
{
  return impl->tag;
}

char Edit::cookieKind() const
{
  return impl->kind;
}

eLogType Edit::getLogType() const
{
  return hostCall(
      "Edit::getLogType", [&] { return describeAll(impl->cookie); }, [&] { return eLogType(impl->type); });
}

eLogType Edit::getLogTypeFromString(const LightweightString<char>& text)
{
  return hostCall(
      "Edit::getLogTypeFromString", [&] { return describeAll(text); },
      [&] { return eLogType(reelhost::model::logTypeOf(text.c_str())); });
}

bool Edit::isImported() const
{
  return hostCall(
      "Edit::isImported", [&] { return describeAll(impl->cookie); }, [&] { return impl->imported; });
}

// A log of this host has one reel, so the slot is ignored.
void Edit::get_reelid(strp_field& out, int slot, int channel) const
{
  hostCall(
      "Edit::get_reelid", [&] { return describeAll(impl->cookie, reelhost::Word{"strp_field&"}, slot, channel); },
      [&]() -> const char* { // the text for the journal
        if (const LightweightString<char>* const id = impl->block.find(reelIdKey()))
          out.set(id->c_str());
        return out.text();
      });
}

void Edit::set_reelid(int slot, const char* id)
{
  hostCall(
      "Edit::set_reelid", [&] { return describeAll(impl->cookie, slot, id); },
      [&] { impl->block.set(reelIdKey()->c_str(), id); });
}

void Edit::setName(const LightweightString<wchar_t>& name, bool flag)
{
  hostCall(
      "Edit::setName", [&] { return describeAll(impl->cookie, name, flag); },
      [&] { change<std::string>(*impl, impl->name, toUTF8(name).c_str()); });
}

void Edit::set_entire_medium(int entire)
{
  hostCall(
      "Edit::set_entire_medium", [&] { return describeAll(impl->cookie, entire); },
      [&] { change(*impl, impl->entireMedium, entire != 0); });
}

void Edit::make_original(bool original, bool flag)
{
  hostCall(
      "Edit::make_original", [&] { return describeAll(impl->cookie, original, flag); },
      [&] { impl->original = original; });
}

void Edit::redetermineLogType()
{
  hostCall(
      "Edit::redetermineLogType", [&] { return describeAll(impl->cookie); },
      [&] {
        const bool reel = impl->entireMedium && !impl->original;
        const int type = reel ? int{codes::reelLog} : impl->imported ? int{codes::materialLog} : 0;
        if (type == impl->type)
          return;
        change(*impl, impl->type, type);
        impl->project.typeChanged(*impl);
      });
}

void Edit::setChangeDescription(EditModificationType type, bool flag)
{
  hostCall(
      "Edit::setChangeDescription", [&] { return describeAll(impl->cookie, type, flag); },
      [&] { impl->changeDescription = type; });
}

// Changes are stored anyway, so false has no effect.
void Edit::setDirty(bool dirty)
{
  hostCall(
      "Edit::setDirty", [&] { return describeAll(impl->cookie, dirty); },
      [&] {
        if (dirty)
          impl->project.changing(*impl);
      });
}

void Edit::reelType(const LightweightString<char>& name)
{
  using Follows = reelhost::Script::ViewFollows;
  hostCall(
      "Edit::reelType", [&] { return describeAll(impl->cookie, name); }, [&] { impl->setReelType(name, true); },
      [&] {
        impl->setReelType(name, reelhost::Script::the().viewFollows == Follows::OnReelType);
        return true;
      });
}

int Edit::getNumChans(EditChanType type) const
{
  return hostCall(
      "Edit::getNumChans", [&] { return describeAll(impl->cookie, type); },
      [&] {
        return type == codes::videoChannel   ? impl->videoChannels
               : type == codes::audioChannel ? impl->audioChannels
                                             : 0;
      });
}

void Edit::addChan(EditChanType type, Zr::Ptr<Cel> cel, bool flag, EditChanSubType subType, bool otherFlag,
                   double value)
{
  hostCall(
      "Edit::addChan", [&] { return describeAll(impl->cookie, type, cel, flag, subType, otherFlag, value); },
      [&] {
        if (type == codes::videoChannel)
          addChannel(*impl, impl->videoChannels, "video");
        else if (type == codes::audioChannel)
          addChannel(*impl, impl->audioChannels, "audio");
      });
}
