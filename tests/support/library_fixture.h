// SPDX-License-Identifier: Apache-2.0
//
// The library on the standalone host, with a project in memory: what the tests of the library start from.
#ifndef REELDB_TESTS_SUPPORT_LIBRARY_FIXTURE_H
#define REELDB_TESTS_SUPPORT_LIBRARY_FIXTURE_H

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "ReelDbManager.h"
#include "ReelTypeManager.h"
#include "host/device.h"
#include "reelhost/host.h"
#include "reelhost/journal.h"

namespace reeldb_tests {

/// The notifications of clients, in order: "dbC(id)", "our(name)", "some(id)"; several clients share one list, each
/// line then starts with the client's name and a colon.
using Heard = std::vector<std::string>;

/// A client that records its notifications.
class RecordingClient : public ReelDbClient {
public:
  explicit RecordingClient(Heard& heard, std::string name = {}) : heard_(heard), name_(std::move(name)) {}
  RecordingClient(Heard& heard, std::string name, const char* interest)
      : ReelDbClient(LightweightString<char>(interest)), heard_(heard), name_(std::move(name))
  {
  }

  void reelDbChanged(LightweightString<char> id) override
  {
    note("dbC(" + std::string(id.c_str()) + ")");
    if (onDbChanged)
      onDbChanged(id.c_str());
  }
  void ourReelDbRecChanged() override
  {
    note("our()");
    if (onOur)
      onOur(); // may end this client: nothing may follow
  }
  void someReelDbRecChanged(LightweightString<char> id) override
  {
    note("some(" + std::string(id.c_str()) + ")");
    if (onSome)
      onSome(id.c_str());
  }

  std::function<void(const std::string&)> onDbChanged, onSome;
  std::function<void()> onOur;

private:
  void note(const std::string& what) { heard_.push_back(name_.empty() ? what : name_ + ":" + what); }

  Heard& heard_;
  std::string name_;
};

/// A project in memory, entered; the script and the journal are as new. The catalogue of reel types is the process's
/// own: entries that a test adds stay, so each test uses type names of its own.
class LibraryTest : public ::testing::Test {
protected:
  LibraryTest();
  ~LibraryTest() override;

  ReelDbManager& manager() { return *ReelDbManager::theReelDbManager(); }
  reelhost::Script& script() { return reelhost::Script::the(); }
  reelhost::Journal& journal() { return reelhost::Journal::the(); }

  /// Opens another project in memory; its name makes it another project than the one before.
  void enterProject(const std::string& name, const reelhost::KeyValues& options = {{"reeldb_defaultType", ""}});

  /// A reel log in the database, known to the manager; @p id may be empty: the key then is absent.
  Cookie addReel(const std::string& id, const std::string& type = {}, const reelhost::KeyValues& fields = {});
  /// A material log that carries the identifier @p reel (absent when empty).
  Cookie addShot(const std::string& reel, const std::string& name = "shot", bool imported = true);
  /// A log of any type, of which the manager is not notified.
  Cookie addLog(int type, const std::string& id, const std::string& reelType = {},
                const reelhost::KeyValues& fields = {}, bool imported = false, const std::string& name = {});

  /// Devices of the facility, which the test replaces as a whole.
  void setDevices(std::vector<reelhost::DeviceSettings> devices);
  static reelhost::DeviceSettings device(int number, const std::string& name);

  std::string configText(const Cookie& log, const char* key); ///< text of a key as the log holds it; "<absent>"
  int channels(const Cookie& log, int type);                  ///< 1 video, 2 audio
  std::string logName(const Cookie& log);                     ///< UTF-8

  /// Runs something with the journal on; the operations it made, as lines or by name alone.
  std::vector<std::string> linesOf(const std::function<void()>& action);
  std::vector<std::string> operationsOf(const std::function<void()>& action);
  /// The lines that vorn_printf printed while it ran.
  std::vector<std::string> printedBy(const std::function<void()>& action);

  static std::string text(const LightweightString<char>& s) { return s.c_str(); }
  static std::string text(const Cookie& c) { return c.asString(false).c_str(); }
};

/// How often @p what stands in @p lines.
int countOf(const std::vector<std::string>& lines, const std::string& what);
/// Whether @p lines holds @p wanted as a subsequence: in this order, other lines between them.
::testing::AssertionResult inOrder(const std::vector<std::string>& lines, const std::vector<std::string>& wanted);

} // namespace reeldb_tests

#endif
