// SPDX-License-Identifier: Apache-2.0
#include "faults/listening.h"

#include <cstdio>
#include <cstdlib>

#include "ReelDbManager.h"

namespace reeldb_tests {

void Listening::keep(const char* kind, const LightweightString<char>& id)
{
  if (count_ == notices_.size())
    std::abort(); // no scenario has so long a record
  Notice& notice = notices_[count_++];
  notice.kind = kind;
  std::snprintf(notice.id.data(), notice.id.size(), "%s", id.c_str());
  if (inHandler)
    inHandler(*ReelDbManager::theReelDbManager());
}

std::vector<std::string> Listening::heard() const
{
  std::vector<std::string> lines;
  for (std::size_t i = 0; i < count_; ++i)
    lines.push_back(std::string(notices_[i].kind) + "(" + notices_[i].id.data() + ")");
  return lines;
}

namespace {
bool happenedBefore = false;
bool happenedInReport = false;
} // namespace

ReportWatch::ReportWatch(Place place, std::function<bool()> faultHappened)
    : place_(place), faultHappened_(std::move(faultHappened))
{
}

void ReportWatch::handleLogModification(const Cookie&, const EditModification&)
{
  if (place_ == Place::First)
    happenedBefore = faultHappened_();
  else
    happenedInReport |= !happenedBefore && faultHappened_();
}

void ReportWatch::forget()
{
  happenedBefore = happenedInReport = false;
}

bool ReportWatch::faultHappenedInReport()
{
  return happenedInReport;
}

} // namespace reeldb_tests
