// SPDX-License-Identifier: Apache-2.0
//
// The kinds of faults during an operation.
#ifndef REELDB_TESTS_FAULTS_FAULT_KINDS_H
#define REELDB_TESTS_FAULTS_FAULT_KINDS_H

#include <cstdint>
#include <exception>
#include <string>

namespace reeldb_tests {

/// Whether a fault happens once, or stays until it is disarmed, as a full disk stays full.
enum class Fault { Once, Stays };

/// A kind of fault: the n-th possible fault happens.
class FaultKind {
public:
  explicit FaultKind(Fault fault) : stays_(fault == Fault::Stays) {}
  virtual ~FaultKind() = default;
  virtual const char* name() const = 0;
  /// Why this build cannot cause the fault; empty if it can.
  virtual std::string unavailable() const { return {}; }
  virtual void arm(std::int64_t n) = 0; ///< counted from now
  virtual bool happened() const = 0;    ///< whether the armed fault has happened
  virtual void disarm() = 0;            ///< happened() does not change

  virtual bool throws() const { return true; } ///< whether the operation ends in an exception
  /// Whether the host may suppress the fault if all results are the same as without it.
  virtual bool hostMayDoWithout() const { return false; }
  /// Compares the type and value of the exception with the fault. Empty if they are equal, else the difference.
  virtual std::string differs(const std::exception_ptr& thrown) const = 0;
  virtual bool isJournaled() const { return true; } ///< whether the journal may be on meanwhile

protected:
  bool stays() const { return stays_; } ///< whether all later ones fail, too

private:
  bool stays_;
};

/// The n-th host call throws. Calls of i_close and destructors, values and memory do not count.
class HostCallThrows final : public FaultKind {
public:
  using FaultKind::FaultKind;
  const char* name() const override { return "host calls that threw"; }
  void arm(std::int64_t n) override;
  bool happened() const override;
  void disarm() override;
  std::string differs(const std::exception_ptr& thrown) const override;

private:
  std::int64_t n_ = 0;
  bool happened_ = false, armed_ = false;
};

/// The n-th opening of a log yields no Edit.
class OpeningRefused final : public FaultKind {
public:
  using FaultKind::FaultKind;
  const char* name() const override { return "logs that did not open"; }
  void arm(std::int64_t n) override;
  bool happened() const override;
  void disarm() override;
  bool throws() const override { return false; }
  std::string differs(const std::exception_ptr&) const override { return "an exception where there was none"; }

private:
  std::int64_t n_ = 0, openings_ = 0;
  bool happened_ = false, armed_ = false;
};

/// The n-th request for memory is refused. The host may do without some of its own requests.
class AllocationFails final : public FaultKind {
public:
  using FaultKind::FaultKind;
  const char* name() const override { return "allocations that failed"; }
  bool hostMayDoWithout() const override { return true; }
  void arm(std::int64_t n) override;
  bool happened() const override;
  void disarm() override;
  std::string differs(const std::exception_ptr& thrown) const override;
  bool isJournaled() const override { return false; }

private:
  bool happened_ = false, armed_ = false;
};

/// The n-th call of the library to any function of the host throws, including values and copies of texts. Calls that
/// the host promises not to fail do not count: closing a log, destructors, moves, and the counting of references.
class LibraryCallThrows final : public FaultKind {
public:
  using FaultKind::FaultKind;
  const char* name() const override { return "calls from the library that threw"; }
  std::string unavailable() const override;
  void arm(std::int64_t n) override;
  bool happened() const override;
  void disarm() override;
  std::string differs(const std::exception_ptr& thrown) const override;
  bool isJournaled() const override { return false; }

private:
  std::int64_t n_ = 0;
};

} // namespace reeldb_tests

#endif
