// SPDX-License-Identifier: Apache-2.0
#include "app/process.h"

#include <utility>

#include "ReelDbVersion.h"
#include "app/facility.h"
#include "app/notice.h"
#include "reelhost/host.h"
#include "reelhost/journal.h"

namespace reeldb::app {

namespace {

std::function<void(const std::string&)>& noticeSink()
{
  static std::function<void(const std::string&)> sink;
  return sink;
}

} // namespace

void startUp()
{
  reelhost::startUp();
}

void setCommandLine(std::vector<std::string> words)
{
  reelhost::setCommandLine("reeldb " + libraryVersion(), std::move(words));
}

std::string libraryVersion()
{
  return reeldbDllVersionStr();
}

std::vector<std::string> facilityRemarks()
{
  return requireFacility().remarks();
}

void printLibraryTo(std::function<void(std::string_view)> sink)
{
  reelhost::printTo(std::move(sink));
}

void noticesTo(std::function<void(const std::string&)> sink)
{
  noticeSink() = std::move(sink);
}

void notice(const std::string& message)
{
  if (noticeSink())
    noticeSink()(message);
}

void traceHostCalls(std::FILE* file)
{
  reelhost::Journal::the().traceTo(file);
}

} // namespace reeldb::app
