// SPDX-License-Identifier: Apache-2.0
#include "tests/app/app_fixture.h"

#include <fmt/format.h>

#include "app/import.h"
#include "app/process.h"
#include "app/projects.h"
#include "app/reels.h"
#include "reelhost/host.h"

namespace reeldb_tests {

using namespace reeldb;

void AppTest::SetUp()
{
  app::startUp();
  app::makeFacility(folder_.path().string());
  reelhost::useFacility(reelhost::Facility::read(folder_.path()));
}

std::string AppTest::cutList(const std::string& name, const std::vector<std::string>& reels) const
{
  std::string text = "TITLE: TEST\n";
  int number = 0;
  for (const std::string& reel : reels) {
    ++number;
    text +=
        fmt::format("{0:03}  {1:<8} V     C        01:00:{0:02}:00 01:00:{0:02}:10 10:00:{0:02}:00 10:00:{0:02}:10\n",
                    number, reel);
  }
  return folder_.write(name, text);
}

void AppTest::import(const std::vector<std::string>& reels) const
{
  app::Session session({}, app::Access::Write);
  app::importLists(session, {app::readListFile(cutList("fixture.edl", reels))}, false);
}

std::vector<std::string> AppTest::reelIds() const
{
  app::Session session({}, app::Access::Read);
  std::vector<std::string> ids;
  for (const app::Reel& reel : app::listReels(session))
    ids.push_back(reel.id);
  return ids;
}

app::Error AppTest::errorOf(const std::function<void()>& work)
{
  try {
    work();
  } catch (const app::Error& error) {
    return error;
  }
  ADD_FAILURE() << "nothing was thrown";
  return {app::ErrorKind::Io, ""};
}

} // namespace reeldb_tests
