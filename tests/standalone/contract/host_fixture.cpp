// SPDX-License-Identifier: Apache-2.0
#include "host_fixture.h"

#include <stdexcept>

namespace host_contract {

namespace {

[[noreturn]] void missing(const char* what)
{
  throw std::logic_error(std::string(what) + ": neither is it in the set-up, nor does lacks() say that it need not be");
}

} // namespace

std::string HostSetUp::lacks(Ability) const
{
  return {};
}

void HostSetUp::storeAndReopen()
{
  missing("storeAndReopen");
}

void HostSetUp::addDevice(const Device&)
{
  missing("addDevice");
}

void HostSetUp::renameDevice(unsigned, const std::string&)
{
  missing("renameDevice");
}

std::string HostSetUp::lastReelOf(unsigned)
{
  missing("lastReelOf");
}

const NotifyMsg& HostSetUp::messageAbout(unsigned)
{
  missing("messageAbout");
}

void HostSetUp::addLabelMap(const std::string&, const std::vector<LabelMappingSet::Entry>&)
{
  missing("addLabelMap");
}

std::string Contract::reelIdOf(const Cookie& log)
{
  EditInfo info(log, codes::openAsUsual);
  const std::string id = info.getAttrib(codes::reelIdAttribute).c_str();
  info.i_close();
  return id;
}

bool Contract::opens(const Cookie& log)
{
  EditPtr edit;
  edit.i_open(log, codes::openAsUsual);
  const bool opened = edit.get() != nullptr;
  edit.i_close();
  return opened;
}

Cookie Contract::cookieOf(const Edit& edit)
{
  return Cookie(edit.uuid(), edit.cookieTag(), edit.cookieKind());
}

void Contract::withLog(const Cookie& log, const std::function<void(Edit&)>& work)
{
  EditPtr edit;
  edit.i_open(log, codes::openAsUsual);
  if (edit)
    work(*edit.get());
  else
    ADD_FAILURE() << log.asString(false).c_str() << " does not open";
  edit.i_close();
}

std::vector<std::string> Contract::textsOf(const CookieVec& cookies)
{
  std::vector<std::string> texts;
  for (const Cookie& cookie : cookies)
    texts.push_back(cookie.asString(false).c_str());
  return texts;
}

} // namespace host_contract
