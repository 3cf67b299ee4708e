// SPDX-License-Identifier: Apache-2.0
#include "faults/fault_kinds.h"

#include <cxxabi.h>

#include <cstdlib>
#include <memory>
#include <new>
#include <typeinfo>

#include "faults/library_calls.h"
#include "journal/watch.h"
#include "reelhost/journal.h"
#include "support/counting_services.h"

namespace reeldb_tests {

namespace {

std::string readable(const std::type_info& type)
{
  int status = 0;
  const std::unique_ptr<char, decltype(&std::free)> name(abi::__cxa_demangle(type.name(), nullptr, nullptr, &status),
                                                         &std::free);
  return status == 0 ? name.get() : type.name();
}

/// Empty when the exception is a @p Wanted, not of a class derived from it, and says @p what.
template <class Wanted>
std::string differsFrom(const std::exception_ptr& thrown, const std::string& what)
{
  try {
    std::rethrow_exception(thrown);
  } catch (const std::exception& e) {
    if (typeid(e) != typeid(Wanted))
      return readable(typeid(e)) + ": " + e.what();
    return e.what() == what ? std::string() : "says: " + std::string(e.what());
  } catch (...) {
    return "an exception of another kind";
  }
}

reelhost::Script& script()
{
  return reelhost::Script::the();
}

/// The operation of the host that threw.
std::string operationThatThrew()
{
  for (const reelhost::Call& call : reelhost::Journal::the().calls())
    if (call.result == "threw reelhost::ScriptedFault")
      return call.operation;
  return "none";
}

} // namespace

void HostCallThrows::arm(std::int64_t n)
{
  n_ = n;
  armed_ = true;
  script().throwAt(n);
}

bool HostCallThrows::happened() const
{
  return armed_ ? script().faultHappened() : happened_;
}

void HostCallThrows::disarm()
{
  happened_ = happened();
  armed_ = false;
  script().throwAt(0);
}

std::string HostCallThrows::differs(const std::exception_ptr& thrown) const
{
  return differsFrom<reelhost::ScriptedFault>(thrown, operationThatThrew() + ": scripted fault (call " +
                                                          std::to_string(n_) + ")");
}

void OpeningRefused::arm(std::int64_t n)
{
  n_ = n;
  armed_ = true;
  script().failOpenNumber(n);
}

bool OpeningRefused::happened() const
{
  return armed_ ? script().openings() >= n_ : happened_;
}

void OpeningRefused::disarm()
{
  happened_ = happened();
  armed_ = false;
  script().failOpenNumber(0);
}

// Nobody watches meanwhile: the journal asks for memory itself, also while a log is closed.
void AllocationFails::arm(std::int64_t n)
{
  reelhost::watch(reelhost::Watcher::Script, false);
  armed_ = true;
  failAllocation(n);
}

bool AllocationFails::happened() const
{
  return armed_ ? !allocationWillFail() : happened_;
}

void AllocationFails::disarm()
{
  happened_ = happened();
  armed_ = false;
  failAllocation(0);
}

std::string AllocationFails::differs(const std::exception_ptr& thrown) const
{
  return differsFrom<std::bad_alloc>(thrown, std::bad_alloc().what());
}

std::string LibraryCallThrows::unavailable() const
{
  return LibraryCalls::the().unavailable();
}

void LibraryCallThrows::arm(std::int64_t n)
{
  n_ = n;
  reelhost::watch(reelhost::Watcher::Script, false);
  LibraryCalls::the().failAt(n);
}

bool LibraryCallThrows::happened() const
{
  return LibraryCalls::the().failed();
}

void LibraryCallThrows::disarm()
{
  LibraryCalls::the().stop();
}

std::string LibraryCallThrows::differs(const std::exception_ptr& thrown) const
{
  try {
    std::rethrow_exception(thrown);
  } catch (const LibraryCallFault& fault) {
    return fault.number == n_ ? std::string() : "call number " + std::to_string(fault.number);
  } catch (...) {
    return "an exception of another kind";
  }
}

} // namespace reeldb_tests
