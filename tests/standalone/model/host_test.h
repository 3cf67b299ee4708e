// SPDX-License-Identifier: Apache-2.0
//
// Shared by the tests of the standalone host.
#ifndef REELDB_TESTS_STANDALONE_MODEL_HOST_TEST_H
#define REELDB_TESTS_STANDALONE_MODEL_HOST_TEST_H

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/codes.h"
#include "host/edit.h"
#include "host/events.h"
#include "host/projdb.h"
#include "reelhost/host.h"
#include "reelhost/journal.h"

namespace reeldb_tests {

/// Records its notifications. If @p onEvent is set, it is called each time and may throw.
class RecordingListener final : public ProjectListener {
public:
  void handleLogModification(const Cookie& log, const EditModification& modification) override
  {
    note("modified " + std::string(log.asString(false).c_str()) + " " + std::to_string(modification.type()));
  }
  void handleLogsModification(const CookieVec& logs) override { note("modified " + std::to_string(logs.count())); }
  void handleLogsDeletion(const CookieVec& logs, LightweightString<char> text) override
  {
    note("deleted " + std::to_string(logs.count()) + " \"" + text.c_str() + "\"");
  }
  void handleProjectEntry() override { note("entry"); }
  void handleProjectExit() override { note("exit"); }

  std::vector<std::string> heard;
  std::function<void(const std::string&)> onEvent;

private:
  void note(const std::string& what)
  {
    heard.push_back(what);
    if (onEvent)
      onEvent(what);
  }
};

/// A host without a project, devices and script. At the end of a case, every log must be closed.
class HostTest : public ::testing::Test {
protected:
  HostTest();
  ~HostTest() override;

  static reelhost::ProjectInfo info(const std::string& name = "TEST");
  /// A project in memory, opened for writing. It can be opened again with reopen.
  void openMemory();
  void reopen(reelhost::Access access = reelhost::Access::Write);
  const std::shared_ptr<reelhost::Store>& kept() const { return kept_; } ///< the project that openMemory made

  static Cookie addLog(int type, const std::string& reelId, const std::string& name = {});
  static std::string text(const Cookie& log);
  static std::vector<std::string> texts(const CookieVec& logs);
  static std::string reelIdOf(const Cookie& log);                 ///< attribute 20
  static std::string fieldOf(const Cookie& log, const char* key); ///< "<absent>" if the key is absent
  static bool opens(const Cookie& log);
  static void withLog(const Cookie& log, const std::function<void(Edit&)>& work);
  static void rename(const Cookie& log, const char* reelId);
  static CookieVec reels(); ///< the result of the mask search
  static CookieVec shotsOf(const char* reelId);
  static std::string typeNameOf(const Cookie& log); ///< the type in a view; "<no row>" if the view has no row

  /// The kind and text of the Error that @p work throws; "none" if it does not throw.
  static std::string errorOf(const std::function<void()>& work);
  static std::vector<std::string> linesOf(const std::function<void()>& work); ///< the host calls it makes

private:
  std::shared_ptr<reelhost::Store> kept_;
};

} // namespace reeldb_tests

#endif
