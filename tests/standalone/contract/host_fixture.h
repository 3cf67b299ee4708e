// SPDX-License-Identifier: Apache-2.0
//
// The host contract: what the library relies on of any host, one case per promise. The cases are written against the
// host headers alone; what else they need, they ask of this interface. To try a host, write a HostSetUp for it, define
// hosts(), and link both with the suite and the host: with CMake, reeldb_add_host_contract(NAME SETUP file.cpp HOST
// host) does it.
#ifndef REELDB_CONTRACT_HOST_FIXTURE_H
#define REELDB_CONTRACT_HOST_FIXTURE_H

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "host/codes.h"
#include "host/cookie.h"
#include "host/device.h"
#include "host/edit.h"

namespace host_contract {

/// What a host may do without. Everything else is needed by every host.
enum class Ability {
  Storage,   ///< a project outlives its being open
  Devices,   ///< external devices, and messages about them
  LabelMaps, ///< label maps that can be loaded
};

struct Device {
  int number = 0;
  unsigned id = 0;
  std::string name; ///< UTF-8
  int portType = codes::noPort;
  int inputType = codes::noVideoInput;
  int audioInputs = 0;
  std::vector<std::string> tapes;
  std::string labelMap;
};

/// Brings the host into the state that a case starts from. Each case has one of its own. Nothing of an earlier
/// case may be visible in it, except that numbers are never given out twice. When a case begins, no project is open and
/// no device is there.
class HostSetUp {
public:
  virtual ~HostSetUp() = default;

  /// Why the host does without this; empty: it has it. A case that needs what the host lacks is skipped, and says so.
  virtual std::string lacks(Ability ability) const;

  /// A new, empty project is opened and entered; a project that was open is left first. @p name makes it another
  /// project than one of another name, and the same as one of the same name.
  virtual void openEmptyProject(const std::string& name, int frameRate = codes::rate25,
                                int outputFrameRate = codes::rate2997) = 0;
  virtual void closeProject() = 0; ///< leaves the open project

  /// A log that another module made: of this type (codes::reelLog, codes::materialLog, or 0 for neither), with this
  /// identifier unless it is empty. It was not imported, and it is not reported.
  virtual Cookie addLog(int type, const std::string& reelId) = 0;

  virtual std::wstring textOfResource(unsigned id) = 0;
  virtual void runDeferredActions() = 0; ///< as the host does when the main thread comes back to it

  // What follows is called only where lacks() does not say that the host does without it; it then has to be there.

  /// Storage: stores what was changed, leaves the project and opens it again as it was stored.
  virtual void storeAndReopen();

  /// Devices
  virtual void addDevice(const Device& device);
  virtual void renameDevice(unsigned id, const std::string& name);
  virtual std::string lastReelOf(unsigned deviceId);        ///< as the host now has it
  virtual const NotifyMsg& messageAbout(unsigned deviceId); ///< "this device changed"; valid until the next call

  /// LabelMaps: makes a label map that can be loaded by this name.
  virtual void addLabelMap(const std::string& name, const std::vector<LabelMappingSet::Entry>& entries);

  // What follows looks behind the interface. Where a set-up leaves one out, the cases that need it are skipped.

  /// Imports a clip, as a user does: the host makes an imported log of codes::materialLog with this identifier and
  /// reports it to the listeners as codes::madeOrImported.
  virtual std::optional<Cookie> importClip(const std::string& reelId);
  /// The number of openings that are not closed, of all logs, plus the number of modifiers that have not ended.
  virtual std::optional<int> openLogs();
  /// The display name of the log, as the host has it.
  virtual std::optional<std::wstring> nameOf(const Cookie& log);
};

struct Host {
  std::string name; ///< letters and digits: part of the names of the cases
  std::function<std::unique_ptr<HostSetUp>()> make;
};

inline void PrintTo(const Host& host, std::ostream* out)
{
  *out << host.name;
}

/// The hosts, or the kinds of one host, that the suite runs against. The author of the host defines it.
std::vector<Host> hosts();

/// A sentence of a header that a case tries. While it lives, every failure of the case quotes it, also an exception
/// that leaves the case, and a fault that ends the program.
class Promise {
public:
  Promise(const char* file, int line, const char* header, const char* sentence);
  ~Promise();
  Promise(const Promise&) = delete;
  Promise& operator=(const Promise&) = delete;

  const Promise* outer() const { return outer_; }
  const char* header() const { return header_; }
  const char* sentence() const { return sentence_; }

private:
  const char *file_, *header_, *sentence_;
  int line_, exceptions_;
  const Promise* outer_;
  ::testing::ScopedTrace trace_;
};

/// A case of the contract. REQUIRES of the case: no log is left open.
class Contract : public ::testing::TestWithParam<Host> {
protected:
  /// Fails if a log that was opened in the case is still open, where the set-up counts them.
  void TearDown() override;

  HostSetUp& host() { return *host_; }

  /// The reel identifier of a log, read as the library reads it.
  static std::string reelIdOf(const Cookie& log);
  static bool opens(const Cookie& log);
  /// What a new log's Cookie is made of.
  static Cookie cookieOf(const Edit& edit);
  /// Opens the log, hands it over, and closes it.
  static void withLog(const Cookie& log, const std::function<void(Edit&)>& work);
  static std::vector<std::string> textsOf(const CookieVec& cookies); ///< their text forms

private:
  std::unique_ptr<HostSetUp> host_ = GetParam().make();
  std::optional<int> openBefore_ = host_->openLogs();
};

} // namespace host_contract

/// First in a case: skips it, with the host's reason, where the host lacks what the case is about.
#define HOST_NEEDS(ability)                                                                                            \
  if (const std::string why = host().lacks(host_contract::Ability::ability); !why.empty())                             \
  GTEST_SKIP() << GetParam().name << ": " << why

/// The value of an optional hook of the set-up, as @p variable. Skips the case where the set-up does not have it.
#define SET_UP_GIVES(variable, hook, ...)                                                                              \
  const auto variable = host().hook(__VA_ARGS__);                                                                      \
  if (!variable)                                                                                                       \
  GTEST_SKIP() << GetParam().name << ": its set-up does not have " #hook "() (see host_fixture.h)"

/// What the scope tries: a sentence of a header, as it is written there, or of a document.
#define PROMISE(header, sentence) HOST_CONTRACT_PROMISE(__LINE__, header, sentence)
#define HOST_CONTRACT_PROMISE(line, header, sentence) HOST_CONTRACT_PROMISE_NAMED(line, header, sentence)
#define HOST_CONTRACT_PROMISE_NAMED(line, header, sentence)                                                            \
  const ::host_contract::Promise promise_##line(__FILE__, line, header, sentence)

/// One suite of cases, run against every host.
#define HOST_CONTRACT(Suite)                                                                                           \
  class Suite : public host_contract::Contract {}; /* NOLINT(bugprone-macro-parentheses): a name has none */           \
  INSTANTIATE_TEST_SUITE_P(Host, Suite, ::testing::ValuesIn(host_contract::hosts()),                                   \
                           [](const auto& of) { return of.param.name; })

#endif
