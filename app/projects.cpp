// SPDX-License-Identifier: Apache-2.0
#include "app/projects.h"

#include <array>
#include <ctime>
#include <random>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "app/facility.h"
#include "app/host_errors.h"
#include "app/notice.h"
#include "app/plain_text.h"
#include "base/number.h"
#include "base/text_width.h"
#include "host/projdb.h"
#include "reelhost/history.h"
#include "reelhost/host.h"
#include "reelhost/store.h"

namespace reeldb::app {

namespace {

std::array<unsigned char, 16> newUuid()
{
  std::random_device source;
  std::array<unsigned char, 16> bytes{};
  for (unsigned char& byte : bytes)
    byte = static_cast<unsigned char>(source());
  // Marks the uuid as random.
  bytes[6] = static_cast<unsigned char>((bytes[6] & 0x0F) | 0x40);
  bytes[8] = static_cast<unsigned char>((bytes[8] & 0x3F) | 0x80);
  return bytes;
}

std::string nameOfRate(const reelhost::Facility& facility, int code)
{
  for (const auto& [name, known] : facility.frameRates())
    if (known == code)
      return name;
  return std::to_string(code);
}

/// The code of a rate by its name or its code, or by another way to write a rate that is named: 23.976 is 23.98. Throws
/// Error (Invalid) for a rate that the facility does not have.
int codeOfRate(const reelhost::Facility& facility, const std::string& rate)
{
  if (const auto code = facility.frameRateCode(rate))
    return *code;
  const auto meant = lists::rateOf(rate);
  std::vector<std::string> known;
  for (const auto& [name, code] : facility.frameRates()) {
    if (meant && lists::rateOf(name) == meant)
      return code;
    known.push_back(fmt::format("{} (code {})", name, code));
  }
  throw Error(ErrorKind::Invalid, fmt::format("\"{}\": no such frame rate (this facility has: {})",
                                              base::shortText(rate), fmt::join(known, ", ")));
}

std::string makeProjectIn(const reelhost::Facility& facility, const std::string& name, const std::string& rate)
{
  const int code = codeOfRate(facility, rate);
  requirePlainText(name, fmt::format("\"{}\": not a valid project name", base::shortText(name)));
  reelhost::ProjectInfo info;
  info.name = name;
  info.uuid = newUuid();
  info.frameRate = code;
  info.outputFrameRate = code;
  createSqliteProject(facility.projectFile(name), info,
                      {{"reeldb_defaultType", facility.configString("default_reel_type").value_or("")}});
  return nameOfRate(facility, code);
}

/// Seconds since 1970 of the day's start by the clock of this place; empty if the text is not a day.
std::optional<std::int64_t> startOfDay(const std::string& text)
{
  std::tm day = {};
  const char* const end = ::strptime(text.c_str(), "%Y-%m-%d", &day);
  if (!end || *end != '\0')
    return {};
  day.tm_isdst = -1;
  return std::mktime(&day);
}

std::int64_t newestRevision(reelhost::History& history)
{
  std::int64_t newest = 0;
  history.readRevisions([&](reelhost::Revision&& revision) {
    newest = revision.number;
    return false;
  });
  return newest;
}

/// The first revision that is not older than @p before, which is a day or the number of a revision; the one after the
/// newest if all are older.
std::int64_t firstRevisionToKeep(reelhost::History& history, const std::string& before)
{
  if (const std::optional<int> revision = base::parseNumber(before)) {
    const std::int64_t newest = newestRevision(history);
    if (*revision > newest + 1)
      throw Error(
          ErrorKind::NotFound,
          fmt::format("{}: no such revision (the newest is {}; a day is written like 2026-11-01)", *revision, newest));
    return *revision;
  }
  const std::optional<std::int64_t> start = startOfDay(before);
  if (!start)
    throw Error(ErrorKind::Invalid,
                fmt::format("\"{}\": neither a revision nor a day such as 2026-11-01 (reeldb history "
                            "lists revisions)",
                            base::shortText(before)));
  // A clock that was wrong must not take newer revisions along: the first one that is not older ends the search.
  std::int64_t first = newestRevision(history) + 1;
  history.readRevisions([&](reelhost::Revision&& revision) {
    if (revision.origin.time >= *start)
      first = revision.number;
    return true;
  });
  return first;
}

Project look(const reelhost::Facility& facility, const std::string& name)
{
  Project project;
  project.name = name;
  project.isDefault = name == facility.defaultProject();
  try {
    const auto store = reelhost::makeSqliteStore(facility.projectFile(name));
    store->begin(reelhost::Access::Read, {});
    project.rateCode = reelhost::currentInfo(*store).frameRate;
    project.rate = nameOfRate(facility, project.rateCode);
    store->end();
  } catch (const reelhost::Error& error) {
    project.fault = error.what();
  }
  return project;
}

} // namespace

NewFacilityReport makeFacility(const std::string& folder, const std::string& rate)
{
  return guarded([&] {
    reelhost::NewFacility made(folder);
    const reelhost::Facility facility = reelhost::Facility::read(folder);
    NewFacilityReport report;
    report.project = facility.defaultProject();
    if (!report.project.empty())
      report.rate = makeProjectIn(facility, report.project, rate);
    made.keep();
    return report;
  });
}

std::string makeProject(const std::string& name, const std::string& rate)
{
  return guarded([&] { return makeProjectIn(requireFacility(), name, rate); });
}

std::string frameRateName(int code)
{
  return nameOfRate(requireFacility(), code);
}

ProjectRate rateOf(Session&)
{
  return guarded([] {
    const reelhost::ProjectInfo& info = reelhost::projectInfo();
    ProjectRate result;
    result.project = info.name;
    result.rateCode = info.frameRate;
    result.rate = result.before = nameOfRate(requireFacility(), info.frameRate);
    return result;
  });
}

ProjectRate changeRate(Session& session, const std::string& rate)
{
  return guarded([&] {
    ProjectRate result = rateOf(session);
    const int code = codeOfRate(requireFacility(), rate);
    if (code == result.rateCode)
      return result;
    EditManager::ProjOpts().set(reelhost::frameRateOption, std::to_string(code).c_str(), nullptr);
    result.stored = session.commit();
    result.rateCode = code;
    result.rate = nameOfRate(requireFacility(), code);
    return result;
  });
}

std::optional<lists::FrameRate> projectRate()
{
  return guarded([]() -> std::optional<lists::FrameRate> {
    const int code = reelhost::projectInfo().frameRate;
    for (const auto& [name, known] : reelhost::facility().frameRates())
      if (known == code)
        if (const auto rate = lists::rateOf(name))
          return rate;
    return std::nullopt;
  });
}

std::vector<FrameRate> frameRates()
{
  return guarded([] {
    std::vector<FrameRate> rates;
    for (const auto& [name, code] : reelhost::facility().frameRates())
      rates.push_back({name, code});
    return rates;
  });
}

std::vector<Project> listProjects()
{
  return guarded([] {
    const reelhost::Facility& facility = requireFacility();
    std::vector<Project> projects;
    for (const std::string& name : facility.projectNames())
      projects.push_back(look(facility, name));
    return projects;
  });
}

std::vector<std::string> projectNames()
{
  return requireFacility().projectNames();
}

std::string defaultProject()
{
  return requireFacility().defaultProject();
}

ProjectCheck checkProject(const std::optional<std::string>& project)
{
  return guarded([&] {
    ProjectCheck check;
    check.project = chosenProject(project);
    check.problems = reelhost::makeSqliteStore(requireFacility().projectFile(check.project))->check();
    return check;
  });
}

Compacted compactProject(Session& session)
{
  return guarded([&] {
    const reelhost::Compacted compacted = reelhost::compact();
    session.commit();
    return Compacted{compacted.logs, compacted.lists};
  });
}

Compacted forgetHistory(Session& session, const std::string& before)
{
  return guarded([&] {
    reelhost::History* const history = reelhost::projectStore().history();
    if (!history)
      throw Error(ErrorKind::Refused, fmt::format("{}: keeps no history", reelhost::projectInfo().name));
    Compacted compacted;
    compacted.revisions = reelhost::forgetHistory(firstRevisionToKeep(*history, before));
    if (!session.commit())
      return compacted;
    try {
      history->giveSpaceBack();
    } catch (const reelhost::Error& error) {
      notice(error.what());
    }
    return compacted;
  });
}

Backup backUpProject(const std::optional<std::string>& project, const std::string& file)
{
  return guarded([&] {
    Backup backup{chosenProject(project), file};
    reelhost::backUpSqliteProject(requireFacility().projectFile(backup.project), file);
    return backup;
  });
}

} // namespace reeldb::app
