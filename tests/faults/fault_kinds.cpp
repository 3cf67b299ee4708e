// SPDX-License-Identifier: Apache-2.0
#include "faults/fault_kinds.h"

#include <cxxabi.h>

#include <cstdlib>
#include <memory>
#include <new>
#include <typeinfo>
#include <vector>

#include "faults/library_calls.h"
#include "faults/listening.h"
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

/// Empty if the exception is exactly of the class @p Wanted and its text is @p what.
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

/// The operations of the host that threw, in their order.
std::vector<std::string> operationsThatThrew()
{
  std::vector<std::string> operations;
  for (const reelhost::Call& call : reelhost::Journal::the().calls())
    if (call.result == "threw reelhost::ScriptedFault")
      operations.push_back(call.operation);
  return operations;
}

/// Whether the host promises that this operation never throws.
bool neverThrows(const std::string& operation)
{
  return operation == "EditPtr::i_close" || operation.find("::~") != std::string::npos;
}

/// What the fault of this operation says.
std::string textOf(const std::string& operation, std::int64_t number)
{
  return operation + ": scripted fault (call " + std::to_string(number) + ")";
}

} // namespace

void HostCallThrows::arm(std::int64_t n)
{
  n_ = n;
  armed_ = true;
  script().throwAt(n);
  if (stays())
    script().before = [](const std::string& operation, const std::string&) {
      if (script().faultHappened() && !neverThrows(operation))
        throw reelhost::ScriptedFault(textOf(operation, script().throwingCalls()));
    };
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
  script().before = nullptr;
}

std::string HostCallThrows::differs(const std::exception_ptr& thrown) const
{
  std::string difference = "an exception though no operation threw";
  std::int64_t number = n_; // the number of a call among consecutive ones
  for (const std::string& operation : operationsThatThrew()) {
    difference = differsFrom<reelhost::ScriptedFault>(thrown, textOf(operation, number++));
    // The exception is a later one only if the host has suppressed the first.
    if (difference.empty() || !ReportWatch::faultHappenedInReport())
      break;
  }
  return difference;
}

void OpeningRefused::arm(std::int64_t n)
{
  n_ = n;
  openings_ = 0;
  armed_ = true;
  script().failOpenNumber(n);
  if (stays())
    script().before = [this](const std::string& operation, const std::string&) {
      const bool opens = operation == "EditPtr::i_open" || operation == "EditInfo::EditInfo";
      if (opens && ++openings_ > n_)
        script().failOpenNumber(1); // the next opening
    };
}

bool OpeningRefused::happened() const
{
  return armed_ ? openings_ > n_ || script().openings() >= n_ : happened_;
}

void OpeningRefused::disarm()
{
  happened_ = happened();
  armed_ = false;
  script().failOpenNumber(0);
  script().before = nullptr;
}

// The host must not be watched meanwhile, because the journal itself allocates memory, also when a log is closed.
void AllocationFails::arm(std::int64_t n)
{
  reelhost::watch(reelhost::Watcher::Script, false);
  armed_ = true;
  if (stays())
    failAllocationsFrom(n);
  else
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
  if (stays())
    LibraryCalls::the().failFrom(n);
  else
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
