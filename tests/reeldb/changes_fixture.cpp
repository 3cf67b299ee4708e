// SPDX-License-Identifier: Apache-2.0
#include "reeldb/changes_fixture.h"

#include "MainThread.h"
#include "host/codes.h"
#include "host/edit.h"

namespace reeldb_tests {

namespace {

void replaceAll(std::string& text, const std::string& what, const std::string& with)
{
  for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + with.size()))
    text.replace(at, what.size(), with);
}

/// While it lives, it detects whether the n-th host call that may throw belongs to the host's own report of a new log,
/// that is, lies between the end of the modifier and the close of the log that the report opened.
class ReportWatch {
public:
  ReportWatch(reelhost::Script& script, int n) : script_(script)
  {
    script_.before = [this, n](const std::string& operation, const std::string&) {
      if (operation == "EditModifier::~EditModifier")
        reporting_ = true;
      else if (operation == "EditPtr::i_close")
        reporting_ = false;
      if (!reached_ && script_.throwingCalls() == n) {
        reached_ = true;
        reachedInReport_ = reporting_;
      }
    };
  }
  ~ReportWatch() { script_.before = nullptr; }
  ReportWatch(const ReportWatch&) = delete;
  ReportWatch& operator=(const ReportWatch&) = delete;

  bool reachedInReport() const { return reachedInReport_; }

private:
  reelhost::Script& script_;
  bool reporting_ = false;
  bool reached_ = false;
  bool reachedInReport_ = false;
};

} // namespace

ChangesTest::ChangesTest()
{
  script().resourceText = L"[reel]";
}

Lines ChangesTest::reelIds()
{
  std::vector<LightweightString<char>> ids;
  manager().getAllReelIds(ids, true);
  Lines result;
  for (const LightweightString<char>& id : ids)
    result.push_back(id.c_str());
  return result;
}

Lines ChangesTest::texts(const CookieVec& logs)
{
  Lines result;
  for (const Cookie& log : logs)
    result.push_back(text(log));
  return result;
}

CookieVec ChangesTest::cookies(std::initializer_list<Cookie> logs)
{
  CookieVec result;
  for (const Cookie& log : logs)
    result.add(log);
  return result;
}

std::string ChangesTest::listing(Lines lines, const std::vector<std::pair<Cookie, std::string>>& names)
{
  std::string all;
  for (std::string& line : lines) {
    for (const auto& [cookie, name] : names)
      replaceAll(line, text(cookie), name);
    if (line.compare(0, 11, "vorn_printf") == 0)
      line.erase(line.rfind(')') + 1);
    all += line + '\n';
  }
  return all;
}

std::string ChangesTest::mainThread()
{
  return "co_pid() -> " + std::to_string(glib_pid);
}

std::string ChangesTest::attributeOf(const Cookie& log)
{
  EditInfo info(log, codes::openAsUsual);
  const std::string result = text(info.getAttrib(codes::reelIdAttribute));
  info.i_close();
  return result;
}

int ChangesTest::failEachHostCall(const std::function<void()>& prepare, const std::function<void()>& operation,
                                  const std::function<void()>& afterwards)
{
  for (int n = 1;; ++n) {
    SCOPED_TRACE("the host call that fails is number " + std::to_string(n));
    enterProject("FAULT" + std::to_string(n));
    prepare();
    const int hold = manager().notifyHoldCount;
    bool thrown = false;
    bool inReport = false;
    {
      const ReportWatch watch(script(), n);
      script().throwAt(n);
      try {
        operation();
      } catch (const reelhost::ScriptedFault&) {
        thrown = true;
      }
      inReport = watch.reachedInReport();
    }
    const bool faultHappened = script().faultHappened();
    script().throwAt(0);
    EXPECT_EQ(thrown, faultHappened && !inReport);
    EXPECT_EQ(reelhost::openLogs(), 0);
    EXPECT_EQ(reelhost::openModifiers(), 0);
    EXPECT_EQ(manager().notifyHoldCount, hold);
    afterwards();
    if (!faultHappened || HasFailure())
      return n - 1;
  }
}

Lines join(std::initializer_list<Lines> parts)
{
  Lines all;
  for (const Lines& part : parts)
    all.insert(all.end(), part.begin(), part.end());
  return all;
}

std::string quoted(const std::string& text)
{
  return '"' + text + '"';
}

Lines attributeRead(const std::string& log, const std::string& id)
{
  return {"EditInfo::EditInfo(" + log + ", 0) -> opened", "EditInfo::getAttrib(" + log + ", 20) -> " + quoted(id),
          "EditPtr::i_close(" + log + ")"};
}

Lines withLog(const std::string& log, const Lines& inside)
{
  return join({{"EditPtr::i_open(" + log + ", 0) -> opened"}, inside, {"EditPtr::i_close(" + log + ")"}});
}

Lines withNewLog(const std::string& log, const std::string& change)
{
  return {"EditPtr::operator=(" + log + ")", change, "EditPtr::i_close(" + log + ")"};
}

Lines idRead(const std::string& log, const std::string& id)
{
  return withLog(log, {"configb::in(\"reelid\", strp_field&) -> 0 " + quoted(id)});
}

Lines typeRead(const std::string& log, const std::string& type)
{
  return {"EditManager::getProjdb() -> database",
          "ODBViewRep::ODBViewRep()",
          "ODBViewRep::displayRecordsAt([" + log + "], 0)",
          "ODBViewRep::numRows() -> 1",
          "ODBViewRep::cellText(0, \"Reel Type\") -> " + quoted(type),
          "ODBView::~ODBView()"};
}

Lines rebuild(int reels)
{
  return {"EditManager::getProjdb() -> database",
          "projdb::search(0x10040, 0xFFFEEF9F) -> " + std::to_string(reels) + (reels == 1 ? " log" : " logs")};
}

Lines shotSearch(const std::string& id, const std::string& result)
{
  return {"projdb::SearchCriteria::SearchCriteria()", "LogAttributes::Map::add(20, " + quoted(id) + ")",
          "projdb::search(1, 102350, 20: " + quoted(id) + ") -> " + result};
}

} // namespace reeldb_tests
