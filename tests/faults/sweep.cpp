// SPDX-License-Identifier: Apache-2.0
#include "faults/sweep.h"

#include <strings.h>

#include <algorithm>
#include <set>

#include "MainThread.h"
#include "faults/answering_host.h"
#include "host/projdb.h"
#include "journal/watch.h"
#include "support/counting_services.h"

namespace reeldb_tests {

namespace {

constexpr std::int64_t mostFaults = 20000; // no operation calls that often

int failures()
{
  return ::testing::UnitTest::GetInstance()->current_test_info()->result()->total_part_count();
}

/// The host's memory and the shared bodies that are in use.
struct Held {
  std::int64_t memory = memoryInUse();
  std::int64_t shares = furtherHolders();
};

std::string joinedLines(const std::vector<std::string>& lines)
{
  std::string all;
  for (const std::string& line : lines)
    all += (all.empty() ? "" : " ") + line;
  return all;
}

/// The identifier in "some(R1)".
std::string idIn(const std::string& notice)
{
  const std::size_t start = notice.find('(') + 1;
  return notice.substr(start, notice.size() - start - 1);
}

bool sameId(const std::string& a, const std::string& b)
{
  return strcasecmp(a.c_str(), b.c_str()) == 0;
}

/// The log of a line of a state; empty if the line is not about a log.
std::string logOf(const std::string& key)
{
  const std::size_t colon = key.find(": ");
  return colon == std::string::npos ? std::string() : key.substr(0, colon);
}

/// The names of the logs that have changed.
std::set<std::string> changedLogs(const Scene::State& before, const Scene::State& after)
{
  std::set<std::string> names;
  const auto compare = [&](const Scene::State& one, const Scene::State& other) {
    for (const auto& [key, value] : one) {
      const auto there = other.find(key);
      if (!logOf(key).empty() && (there == other.end() || there->second != value))
        names.insert(logOf(key));
    }
  };
  compare(before, after);
  compare(after, before);
  return names;
}

/// Whether a log that has or had this identifier has changed. Material has the identifier of its reel and does not
/// count.
bool hasChanged(const std::string& id, const Scene::State& before, const Scene::State& after)
{
  for (const std::string& log : changedLogs(before, after))
    for (const Scene::State* state : {&before, &after}) {
      const auto found = state->find(log + ": reelid");
      if (found != state->end() && sameId(found->second, id) && state->at(log + ": log type") != "1")
        return true;
    }
  return false;
}

/// The openings and closings of each log in the journal. An opening that failed is closed like one that did not open a
/// log, but a failed EditInfo was never constructed.
std::map<std::string, int> openingsLeft(const std::vector<reelhost::Call>& calls)
{
  std::map<std::string, int> left;
  for (const reelhost::Call& call : calls) {
    const bool threw = call.result.compare(0, 5, "threw") == 0;
    const std::string log = call.arguments.substr(0, call.arguments.find(','));
    if (call.operation == "EditPtr::i_open")
      ++left[call.result == "opened" ? log : ""];
    else if (call.operation == "EditPtr::operator=")
      ++left[threw ? "" : log];
    else if (call.operation == "EditInfo::EditInfo" && !threw)
      ++left[call.result == "opened" ? log : ""];
    else if (call.operation == "EditPtr::i_close")
      --left[log];
  }
  return left;
}

} // namespace

Sweep::Outcome Sweep::act(const Run& run, std::int64_t n)
{
  FaultKind& kind = run.kind;
  Outcome outcome;
  outcome.before = state();
  faultHappened = [&kind] { return kind.happened(); };
  journal().record(kind.isJournaled());
  kind.arm(n);
  try {
    run.scenario.act(*this);
  } catch (...) {
    outcome.thrown = std::current_exception();
  }
  kind.disarm();
  reelhost::watch(reelhost::Watcher::Script, false); // the checks below need not be watched
  outcome.answer = described();
  return outcome;
}

void Sweep::warmUp(FaultKind& kind)
{
  for (const Scenario& scenario : recordScenarios()) {
    set(scenario, 0);
    static_cast<void>(act({scenario, kind, 0}, 1));
    journal().record(false);
    useTheManager();
    clear();
  }
}

int Sweep::runClean(const Scenario& scenario, int hold)
{
  HostCallThrows nothing(Fault::Once);
  set(scenario, hold);
  Outcome outcome = act({scenario, nothing, hold}, 0);
  const int openings = journal().count("EditPtr::i_open") + journal().count("EditInfo::EditInfo");
  journal().record(false);
  EXPECT_EQ(outcome.thrown, nullptr);
  outcome.after = state();
  cleanAnswer_ = outcome.answer;
  cleanChanges_ = difference(outcome.before, outcome.after);
  EXPECT_EQ(cleanAnswer_, scenario.answer);
  EXPECT_EQ(cleanChanges_, scenario.changes);
  EXPECT_EQ(joinedLines(heard()), hold == 0 ? scenario.heard : "");
  clear();
  return openings;
}

int Sweep::failEach(const Scenario& scenario, FaultKind& kind, int hold)
{
  const Run run{scenario, kind, hold};
  for (std::int64_t n = 1; n < mostFaults; ++n) {
    SCOPED_TRACE("the one that fails is number " + std::to_string(n));
    const int failuresBefore = failures();
    const Held before;
    const bool happened = failOne(run, n);
    clear();
    const Held after;
    if (failures() == failuresBefore) { // a recorded failure of the test itself uses memory
      EXPECT_EQ(after.memory, before.memory) << "memory is held that was not held before, or the other way round";
      EXPECT_EQ(after.shares, before.shares) << "texts, lists or objects are held that were not held before";
    }
    if (!happened || failures() != failuresBefore)
      return static_cast<int>(n - 1);
  }
  ADD_FAILURE() << "no run went without a fault";
  return 0;
}

bool Sweep::failOne(const Run& run, std::int64_t n)
{
  set(run.scenario, run.hold);
  Outcome outcome = act(run, n);
  checkLogs(run);
  journal().record(false);
  if (!run.kind.happened())
    return false;
  outcome.after = state();
  checkException(run, outcome);
  EXPECT_EQ(manager().notifyHoldCount, run.hold);
  checkNotices(run, outcome);
  checkList(outcome);
  checkClients();
  runAgain(run, outcome);
  useTheManager();
  return true;
}

void Sweep::checkException(const Run& run, const Outcome& outcome)
{
  if (outcome.thrown) {
    EXPECT_EQ(run.kind.differs(outcome.thrown), "") << "another exception came out";
    return;
  }
  const bool isAnswered = run.scenario.withoutMemory && outcome.answer == run.scenario.withoutMemory;
  if (!run.kind.throws() || isAnswered || ReportWatch::faultHappenedInReport())
    return;
  EXPECT_TRUE(run.kind.hostMayDoWithout()) << "the exception did not come out";
  EXPECT_EQ(outcome.answer, cleanAnswer_) << "the exception did not come out";
  EXPECT_EQ(difference(outcome.before, outcome.after), cleanChanges_) << "the exception did not come out";
  EXPECT_EQ(joinedLines(heard()), run.hold == 0 ? run.scenario.heard : "") << "the exception did not come out";
}

void Sweep::checkLogs(const Run& run)
{
  EXPECT_EQ(reelhost::openLogs(), 0);
  EXPECT_EQ(reelhost::openModifiers(), 0);
  if (!run.kind.isJournaled())
    return;
  for (const auto& [log, count] : openingsLeft(journal().calls()))
    EXPECT_EQ(count, 0) << "openings without a close, or closes without an opening, of "
                        << (log.empty() ? "logs that did not open" : log);
}

void Sweep::checkNotices(const Run& run, const Outcome& outcome)
{
  const std::vector<std::string> all = anyReel->heard();
  if (run.hold != 0) {
    EXPECT_EQ(joinedLines(all), "") << "notifications are held";
    EXPECT_EQ(joinedLines(followsR1->heard()), "") << "notifications are held";
    return;
  }
  if (!anyReel->inHandler && !followsR1->inHandler) // after a handler that fails, later clients are not notified
    checkFollower(all, outcome.thrown && !run.kind.isJournaled());
  const Scenario& scenario = run.scenario;
  for (const std::string& notice : all) {
    const std::string reelId = idIn(notice);
    const bool isOfTheSet = notice.compare(0, 4, "dbC(") == 0;
    if (isOfTheSet) {
      EXPECT_EQ(reelList(), reelsOfTheDatabase()) << "clients were notified of a list that was not rebuilt: " << notice;
    }
    // A notification without an identifier means that the list was rebuilt. It is not about a reel.
    if (scenario.callerTells || reelId.empty())
      continue;
    const bool mayBeTold = !run.kind.throws() && scenario.toldWithoutChange;
    EXPECT_TRUE(hasChanged(reelId, outcome.before, outcome.after) || mayBeTold)
        << "clients were notified of a change that was not made: " << notice;
    if (isOfTheSet) {
      EXPECT_TRUE(manager().doesReelExist(reelId.c_str()))
          << "clients were notified of a reel that is not in the list: " << notice;
    }
  }
}

// The client that follows R1 receives all notifications, and before each change of R1 one that it is its own reel.
void Sweep::checkFollower(const std::vector<std::string>& all, bool mayMissTheLast)
{
  std::vector<std::string> expected;
  for (const std::string& notice : all) {
    if (notice == "some(R1)")
      expected.push_back("our()");
    expected.push_back(notice);
  }
  const std::string whole = joinedLines(expected);
  const std::string have = joinedLines(followsR1->heard());
  if (mayMissTheLast) { // after an exception between two clients the second is not notified
    EXPECT_EQ(have, whole.substr(0, have.size()));
  } else {
    EXPECT_EQ(have, whole);
  }
}

void Sweep::checkList(const Outcome& outcome)
{
  const std::string now = reelList();
  EXPECT_TRUE(now == outcome.before.at("reel list") || now == reelsOfTheDatabase())
      << "the manager's list is neither the one of before nor the database's: " << now;
  const CookieVec reels = manager().reelList;
  std::vector<std::string> seen;
  for (const Cookie& reel : reels) {
    const std::string reelId = configText(reel, "reelid");
    if (reelId == "<absent>" || reelId.empty())
      continue;
    const bool isFirst =
        std::none_of(seen.begin(), seen.end(), [&](const std::string& other) { return sameId(other, reelId); });
    const Cookie found = manager().getCookieFromReelId(reelId.c_str());
    EXPECT_EQ(found.compare(reel) == 0, isFirst)
        << "the reel of this identifier that comes first is the one: " << reelId;
    seen.push_back(reelId);
  }
  EXPECT_FALSE(manager().doesReelExist("nobody"));
}

void Sweep::checkClients()
{
  const Array& clients = manager().clients;
  for (unsigned i = 0; i < clients.count(); ++i) {
    const ArrayRec* const client = clients.at(i);
    const bool isThere = client == &*anyReel || client == &*followsR1 || (made && client == &*made) ||
                         std::any_of(crowd.begin(), crowd.end(), [&](const auto& one) { return one.get() == client; });
    EXPECT_TRUE(isThere) << "a client is registered that is gone";
  }
}

void Sweep::runAgain(const Run& run, const Outcome& outcome)
{
  again();
  try {
    run.scenario.act(*this);
  } catch (...) {
    ADD_FAILURE() << "without a fault the operation throws";
  }
  EXPECT_EQ(manager().notifyHoldCount, run.hold);
  EXPECT_EQ(reelhost::openLogs(), 0);
  if (run.scenario.doneByHalves)
    return;
  EXPECT_EQ(described(), cleanAnswer_) << "run again, the operation has another result";
  EXPECT_EQ(difference(outcome.before, state()), cleanChanges_) << "run again, the operation makes another change";
}

// One operation of each kind, with known results.
void Sweep::useTheManager()
{
  reelhost::startUp();
  anyReel->inHandler = followsR1->inHandler = nullptr;
  ReelDbManager& reels = manager();
  again();
  const int hold = reels.notifyHoldCount;
  const unsigned clients = reels.clients.count();
  setDefaultType("F2");

  reels.informReelDbChanged("");
  EXPECT_EQ(reelList(), reelsOfTheDatabase());
  ReelDbRec next = reels.createNewReel(" NEXT ", -1);
  EXPECT_TRUE(next.valid());
  EXPECT_EQ(reels.getCookieFromReelId("next").compare(next), 0);
  EXPECT_EQ(text(next.typeName()), "F2");
  EXPECT_TRUE(next.reelAvailable());
  EXPECT_FALSE(next.recInhibit());
  EXPECT_EQ(channels(next, 2), 2);
  reels.changeReelId("NEXT", "LAST");
  EXPECT_FALSE(reels.doesReelExist("NEXT"));
  EXPECT_EQ(text(reels.getReelInfo("LAST").reelId()), "LAST");
  {
    const ReelDbClient passing("LAST");
    EXPECT_EQ(reels.clients.count(), clients + 1);
  }
  EXPECT_EQ(reels.clients.count(), clients);
  EXPECT_EQ(joinedLines(heard()), hold == 0 ? "dbC() some(NEXT) some(NEXT) dbC(NEXT) some(NEXT) dbC()" : "");
  EXPECT_EQ(theReelTypeManager()->numAudioChans("F2"), 2);
  EXPECT_EQ(reels.notifyHoldCount, hold);
  EXPECT_EQ(reelhost::openLogs(), 0);
  EXPECT_EQ(reelhost::openModifiers(), 0);
}

} // namespace reeldb_tests
