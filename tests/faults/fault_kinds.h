// SPDX-License-Identifier: Apache-2.0
//
// What can go wrong beneath an operation.
#ifndef REELDB_TESTS_FAULTS_FAULT_KINDS_H
#define REELDB_TESTS_FAULTS_FAULT_KINDS_H

#include <cstdint>
#include <exception>
#include <string>

namespace reeldb_tests {

/// Whether a fault comes once, or stays until it is taken away: a disk that is full stays full.
enum class Fault { Once, Stays };

/// The n-th time something could fail it does.
class FaultKind {
public:
  explicit FaultKind(Fault fault) : stays_(fault == Fault::Stays) {}
  virtual ~FaultKind() = default;
  virtual const char* name() const = 0;
  /// Why this build cannot make it fail; empty when it can.
  virtual std::string unavailable() const { return {}; }
  virtual void arm(std::int64_t n) = 0; ///< counted from now
  virtual bool happened() const = 0;    ///< whether the armed one has come
  virtual void disarm() = 0;            ///< happened stays what it is

  virtual bool throws() const { return true; } ///< whether the operation ends in an exception
  /// Whether the host may keep it to itself, if everything comes out as it would have without.
  virtual bool hostMayDoWithout() const { return false; }
  /// Whether it is the one that was thrown: type and value. Empty when it is, else what it is.
  virtual std::string differs(const std::exception_ptr& thrown) const = 0;
  virtual bool isJournaled() const { return true; } ///< whether the journal may be on meanwhile

protected:
  bool stays() const { return stays_; } ///< whether all that come after the n-th fail, too

private:
  bool stays_;
};

/// The n-th host call throws: all but i_close and destructors, and but values and memory.
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

/// The n-th log that is opened does not open.
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

/// The n-th request for memory is refused. A host may have wanted it for something it can make again.
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

/// The n-th call that the library makes to anything of the host's throws: values included, down to the copy of a text.
/// Left out is what the host promises not to fail: closing a log, destructors, moves, and the counting of references.
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
