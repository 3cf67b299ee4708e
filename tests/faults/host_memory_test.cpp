// SPDX-License-Identifier: Apache-2.0
//
// The standalone host without memory: what a project shows is what it finds and what it stores.
#include <algorithm>

#include "host/codes.h"
#include "host/edit.h"
#include "host/projdb.h"
#include "journal/watch.h"
#include "standalone/model/forwarding_store.h"
#include "support/counting_services.h"
#include "support/library_fixture.h"

namespace reeldb_tests {

namespace {

using Texts = std::vector<std::string>;

/// What can be seen of a project: its logs by way of its lists, one line each, and its options.
Texts shown()
{
  Texts lines;
  CookieVec logs = EditManager::getProjdb()->search(codes::reelSearchMask, codes::reelSearchMaskOff);
  for (const Cookie& shot : reelhost::allShots())
    logs.add(shot);
  for (const Cookie& log : logs) {
    EditPtr edit;
    edit.i_open(log, codes::openAsUsual);
    const char* const id = edit ? edit->config().in("reelid") : "does not open";
    lines.push_back(std::string(log.asString(false).c_str()) + " " + (id ? id : "-"));
    edit.i_close();
  }
  const char* const option = EditManager::ProjOpts().in("an option");
  lines.push_back(option ? option : "-");
  return lines;
}

CookieVec shotsOf(const char* reel)
{
  projdb::SearchCriteria criteria;
  criteria.first = codes::shotSearchFirst;
  criteria.second = codes::shotSearchSecond;
  criteria.attributes.add(codes::reelIdAttribute, reel);
  return EditManager::getProjdb()->search(criteria);
}

class HostMemory : public LibraryTest {
protected:
  /// Opens a project with this number of logs, half of them reels, from a store that can be opened again.
  void open(int logs)
  {
    reelhost::closeProject();
    reelhost::ProjectInfo info;
    info.name = "MEMORY";
    store_ = reelhost::makeMemoryStore(info);
    reelhost::openProject(std::make_unique<ForwardingStore>(store_), reelhost::Access::Write);
    for (int i = 0; i < logs; ++i)
      last_ = addLog(i % 2 ? 1 : 9, "A" + std::to_string(i % 4));
    stored(); // opened again, because a project that was not changed yet has no room to spare
    static_cast<void>(shotsOf("A1"));
  }

  /// The stored content, read by opening the project again.
  Texts stored()
  {
    reelhost::commit();
    reelhost::openProject(std::make_unique<ForwardingStore>(store_), reelhost::Access::Write);
    return shown();
  }

  /// Lets each allocation of a change fail in turn, in projects of all sizes up to one that has outgrown its tables:
  /// that one alone, then it and all after it.
  void failEach(const std::function<void()>& change)
  {
    failEach(failAllocation, change);
    failEach(failAllocationsFrom, change);
  }

  Cookie last_; ///< the log made last: a shot if the number of logs is even

private:
  void failEach(void (*fail)(std::int64_t), const std::function<void()>& change)
  {
    int faults = 0;
    for (int logs = 2; logs <= 34; ++logs)
      for (int n = 1;; ++n) {
        SCOPED_TRACE(std::to_string(logs) + " logs, allocation " + std::to_string(n));
        open(logs);
        reelhost::watch(reelhost::Watcher::Script, false);
        fail(n);
        try {
          change();
        } catch (const std::bad_alloc&) {
        }
        const bool happened = !allocationWillFail();
        failAllocation(0);
        faults += happened;
        expectWhole();
        change();
        expectWhole();
        if (!happened || HasFailure())
          break;
      }
    EXPECT_GT(faults, 0);
    std::printf("%d allocations failed\n", faults);
  }

  void expectWhole()
  {
    const Texts now = shown();
    EXPECT_EQ(
        std::count_if(now.begin(), now.end(), [](const std::string& line) { return line.find("open") != line.npos; }),
        0);
    for (const char* reel : {"A1", "A3", "B"}) {
      const auto carries = [&](const Cookie& shot) { return reelhost::materialOf(shot).reel == reel; };
      const CookieVec all = reelhost::allShots();
      EXPECT_EQ(shotsOf(reel).count(), std::count_if(all.begin(), all.end(), carries)) << reel;
    }
    EXPECT_EQ(stored(), now);
  }

  std::shared_ptr<reelhost::Store> store_;
};

TEST_F(HostMemory, NewReelIsThereWholeOrNotAtAll)
{
  failEach([this] { addLog(9, "B"); });
}

TEST_F(HostMemory, NewShotIsThereWholeOrNotAtAll)
{
  failEach([this] { addLog(1, "B"); });
}

TEST_F(HostMemory, NewIdentifierIsFoundAndStored)
{
  failEach([this] {
    EditPtr edit;
    edit.i_open(last_, codes::openAsUsual);
    try {
      edit->set_reelid(0, "B");
    } catch (...) {
      edit.i_close();
      throw;
    }
    edit.i_close();
  });
}

TEST_F(HostMemory, OptionIsStored)
{
  failEach([] { EditManager::ProjOpts().set("an option", "a value that is longer than a short text", nullptr); });
}

} // namespace

} // namespace reeldb_tests
