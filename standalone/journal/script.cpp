// SPDX-License-Identifier: Apache-2.0
#include <atomic>
#include <set>

#include "journal/describe.h"
#include "journal/script_answers.h"
#include "journal/watch.h"

namespace reelhost {

namespace {

/// The script's counts. Counts that worker threads use are atomic.
struct State {
  std::atomic<std::int64_t> throwingCalls = 0, throwAt = 0;
  std::atomic<bool> faultHappened = false;
  std::int64_t openings = 0, failOpenNumber = 0;
  std::int64_t databaseCalls = 0, noDatabaseAt = 0;
  bool noDatabase = false;
  std::set<std::string> failOpen, noRow; // Cookies in their text form, also below
  std::map<std::string, std::string> attributes;
  std::map<std::string, std::optional<std::string>> typeFields;
};

State& state()
{
  static State& instance = *new State;
  return instance;
}

std::string keyOf(const Cookie& log)
{
  return log.asString(false).c_str();
}

template <class Map>
auto find(Map& map, const Cookie& log) -> decltype(&map.begin()->second)
{
  const auto found = map.find(keyOf(log));
  return found == map.end() ? nullptr : &found->second;
}

} // namespace

// The caller may assign the script's members at any time, so from here on every operation consults the script.
Script& Script::the()
{
  static Script& instance = *new Script;
  watch(Watcher::Script, true);
  return instance;
}

void Script::reset()
{
  *this = Script();
  State& s = state();
  s.openings = s.failOpenNumber = s.databaseCalls = s.noDatabaseAt = 0;
  s.noDatabase = false;
  s.failOpen.clear();
  s.noRow.clear();
  s.attributes.clear();
  s.typeFields.clear();
  throwAt(0);
}

void Script::throwAt(std::int64_t n)
{
  State& s = state();
  s.throwAt = n;
  s.throwingCalls = 0;
  s.faultHappened = false;
}

std::int64_t Script::throwingCalls() const
{
  return state().throwingCalls;
}

bool Script::faultHappened() const
{
  return state().faultHappened;
}

void Script::failOpen(const Cookie& log)
{
  state().failOpen.insert(keyOf(log));
}

void Script::failOpenNumber(std::int64_t n)
{
  state().failOpenNumber = n;
  state().openings = 0;
}

std::int64_t Script::openings() const
{
  return state().openings;
}

void Script::noDatabase(bool gone)
{
  state().noDatabase = gone;
}

void Script::noDatabaseAt(std::int64_t n)
{
  state().noDatabaseAt = n;
  state().databaseCalls = 0;
}

void Script::attribute(const Cookie& log, const std::string& text)
{
  state().attributes[keyOf(log)] = text;
}

void Script::typeField(const Cookie& log, std::optional<std::string> text)
{
  state().typeFields[keyOf(log)] = std::move(text);
}

void Script::noRow(const Cookie& log)
{
  state().noRow.insert(keyOf(log));
}

namespace scripted {

namespace {

/// Whether this thread is inside Script::before. Operations called there belong to the test and are not replaced.
thread_local bool insideBefore = false;

struct InsideBefore {
  InsideBefore() { insideBefore = true; }
  ~InsideBefore() { insideBefore = false; }
};

} // namespace

void meet(const char* operation, const std::string& arguments, bool mayThrow)
{
  if (insideBefore)
    return;
  State& s = state();
  const std::int64_t number = mayThrow ? ++s.throwingCalls : 0;
  if (const auto& before = Script::the().before) {
    const InsideBefore inside;
    before(operation, arguments);
  }
  if (mayThrow && number == s.throwAt) {
    s.faultHappened = true;
    throw ScriptedFault(std::string(operation) + ": scripted fault (call " + std::to_string(number) + ")");
  }
}

bool openingFails(const Cookie& log)
{
  State& s = state();
  return ++s.openings == s.failOpenNumber || s.failOpen.count(keyOf(log)) != 0;
}

bool databaseIsGone()
{
  State& s = state();
  return ++s.databaseCalls == s.noDatabaseAt || s.noDatabase;
}

bool hasNoRow(const Cookie& log)
{
  return state().noRow.count(keyOf(log)) != 0;
}

std::optional<std::string> attributeOf(const Cookie& log)
{
  const std::string* const text = find(state().attributes, log);
  return text ? std::optional(*text) : std::nullopt;
}

std::optional<TypeField> typeFieldOf(const Cookie& log)
{
  const std::optional<std::string>* const text = find(state().typeFields, log);
  if (!text)
    return std::nullopt;
  return TypeField{*text ? (*text)->c_str() : nullptr};
}

std::optional<Cookie> nextProjectCookie()
{
  std::vector<Cookie>& cookies = Script::the().projectCookies;
  if (cookies.empty())
    return std::nullopt;
  const Cookie next = cookies.front();
  if (cookies.size() > 1)
    cookies.erase(cookies.begin());
  return next;
}

} // namespace scripted

} // namespace reelhost
