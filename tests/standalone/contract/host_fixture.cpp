// SPDX-License-Identifier: Apache-2.0
#include "host_fixture.h"

#include <unistd.h>

#include <csignal>
#include <cstring>
#include <exception>
#include <iterator>
#include <stdexcept>
#include <utility>

namespace host_contract {

namespace {

[[noreturn]] void missing(const char* what)
{
  throw std::logic_error(std::string(what) + ": neither is it in the set-up, nor does lacks() say that it need not be");
}

const Promise* innermost = nullptr;

std::string quoted(const char* header, const char* sentence)
{
  return std::string(header) + " says: \"" + sentence + '"';
}

constexpr int faults[] = {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT};
struct sigaction handlersBefore[std::size(faults)];

/// Ends like the fault itself, after it has quoted what was tried: the handler that was there before comes next, if
/// the fault repeats. Calls nothing that a handler must not call.
void quotePromises(int fault)
{
  const auto print = [](const char* text) { static_cast<void>(!write(STDERR_FILENO, text, std::strlen(text))); };
  for (const Promise* promise = std::exchange(innermost, nullptr); promise; promise = promise->outer()) {
    print("a fault ended the case: ");
    print(promise->header());
    print(" says: \"");
    print(promise->sentence());
    print("\"\n");
  }
  for (std::size_t i = 0; i < std::size(faults); ++i)
    if (faults[i] == fault)
      sigaction(fault, &handlersBefore[i], nullptr);
}

void quotePromisesOnFaults()
{
  static const bool done = [] {
    for (std::size_t i = 0; i < std::size(faults); ++i) {
      struct sigaction action = {};
      action.sa_handler = quotePromises;
      sigaction(faults[i], &action, &handlersBefore[i]);
    }
    return true;
  }();
  static_cast<void>(done);
}

} // namespace

Promise::Promise(const char* file, int line, const char* header, const char* sentence)
    : file_(file), header_(header), sentence_(sentence), line_(line), exceptions_(std::uncaught_exceptions()),
      outer_(innermost), trace_(file, line, quoted(header, sentence))
{
  quotePromisesOnFaults();
  innermost = this;
}

Promise::~Promise()
{
  innermost = outer_;
  if (std::uncaught_exceptions() > exceptions_)
    ADD_FAILURE_AT(file_, line_) << "an exception left the case";
}

std::string HostSetUp::lacks(Ability) const
{
  return {};
}

void HostSetUp::storeAndReopen()
{
  missing("storeAndReopen");
}

void HostSetUp::addDevice(const Device&)
{
  missing("addDevice");
}

void HostSetUp::renameDevice(unsigned, const std::string&)
{
  missing("renameDevice");
}

std::string HostSetUp::lastReelOf(unsigned)
{
  missing("lastReelOf");
}

const NotifyMsg& HostSetUp::messageAbout(unsigned)
{
  missing("messageAbout");
}

void HostSetUp::addLabelMap(const std::string&, const std::vector<LabelMappingSet::Entry>&)
{
  missing("addLabelMap");
}

std::optional<Cookie> HostSetUp::importClip(const std::string&)
{
  return std::nullopt;
}

std::optional<int> HostSetUp::openLogs()
{
  return std::nullopt;
}

std::optional<std::wstring> HostSetUp::nameOf(const Cookie&)
{
  return std::nullopt;
}

void Contract::TearDown()
{
  PROMISE("host/edit.h", "pair every i_open with an i_close");
  EXPECT_EQ(host().openLogs(), openBefore_) << "openings and modifiers after the case, and before it";
}

std::string Contract::reelIdOf(const Cookie& log)
{
  EditInfo info(log, codes::openAsUsual);
  const std::string id = info.getAttrib(codes::reelIdAttribute).c_str();
  info.i_close();
  return id;
}

bool Contract::opens(const Cookie& log)
{
  EditPtr edit;
  edit.i_open(log, codes::openAsUsual);
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
  edit.i_open(log, codes::openAsUsual);
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
