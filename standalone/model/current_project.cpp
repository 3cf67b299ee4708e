// SPDX-License-Identifier: Apache-2.0
#include "host/codes.h"
#include "host/projdb.h"
#include "host/project.h"
#include "host/text.h"
#include "journal/host_call.h"
#include "model/project.h"

using reelhost::describeAll;
using reelhost::hostCall;
using reelhost::noArguments;
using reelhost::Script;
using reelhost::model::Log;
using reelhost::model::openedProject;

Cookie get_project_cookie()
{
  return hostCall(
      "get_project_cookie", noArguments, [] { return openedProject ? openedProject->cookie() : Cookie(); },
      reelhost::scripted::nextProjectCookie);
}

LightweightString<wchar_t> getFilenameForCookie(const Cookie& cookie, Cookie other)
{
  return hostCall(
      "getFilenameForCookie", [&] { return describeAll(cookie, other); },
      [&] {
        const Log* const log = openedProject ? openedProject->find(cookie) : nullptr;
        return log ? Zr::WStringFromAscii(reelhost::model::fileNameOf(*log).c_str()) : LightweightString<wchar_t>();
      });
}

int Zr::CurrentProject::getFrameRate(Revision revision)
{
  return hostCall(
      "Zr::CurrentProject::getFrameRate", [&] { return describeAll(revision); },
      [] { return openedProject ? openedProject->info().frameRate : codes::noFrameRate; },
      [] { return Script::the().frameRate; });
}

int Zr::CurrentProject::getOutputImageZRFrameRate()
{
  return hostCall(
      "Zr::CurrentProject::getOutputImageZRFrameRate", noArguments,
      [] { return openedProject ? openedProject->info().outputFrameRate : codes::noFrameRate; },
      [] { return Script::the().outputFrameRate; });
}
