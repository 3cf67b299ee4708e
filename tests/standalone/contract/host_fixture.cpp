// SPDX-License-Identifier: Apache-2.0
#include "host_fixture.h"

namespace host_contract {

std::string Contract::reelIdOf(const Cookie& log)
{
  EditInfo info(log, openAsUsual);
  const std::string id = info.getAttrib(reelIdAttribute).c_str();
  info.i_close();
  return id;
}

bool Contract::opens(const Cookie& log)
{
  EditPtr edit;
  edit.i_open(log, openAsUsual);
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
  edit.i_open(log, openAsUsual);
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
