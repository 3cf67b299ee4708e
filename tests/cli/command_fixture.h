// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_TESTS_CLI_COMMAND_FIXTURE_H
#define REELDB_TESTS_CLI_COMMAND_FIXTURE_H

#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "cli/process.h"
#include "support/temp_folder.h"

namespace reeldb_tests {

using Json = nlohmann::ordered_json;
using Words = std::vector<std::string>;

/// The program under test.
extern const char* const reeldbProgram;

/// Runs reeldb in a folder of its own, where nothing is yet.
class CommandTest : public testing::Test {
protected:
  ProcessResult reeldb(const Words& words) { return reeldb(words, setting_); }
  ProcessResult reeldb(const Words& words, const ProcessSetting& setting);
  /// Runs it, expects that exit code and an empty standard error, and returns standard output.
  std::string output(const Words& words, int code = 0);
  Json json(const Words& words, int code = 0);

  std::string path(const std::string& name) const { return (dir_.path() / name).string(); }
  std::string readFile(const std::string& name) const;

  TempFolder dir_;
  ProcessSetting setting_ = inFolder(dir_.path());

private:
  static ProcessSetting inFolder(const std::filesystem::path& folder)
  {
    ProcessSetting setting;
    setting.folder = folder;
    return setting;
  }
};

/// The same, with a facility there: the project "main", two devices and known reel types.
class FacilityTest : public CommandTest {
protected:
  void SetUp() override;

  /// Runs it, expects that exit code, this message on standard error and nothing else, and that the project's file
  /// keeps its bytes.
  void expectRefusal(const Words& words, const std::string& message, int code = 1);
  /// The reel of that identifier out of `list --json`; null when there is none.
  Json reel(const std::string& id);
  /// Identifiers of all reels, in order.
  Words reelIds();
};

/// "p7"
std::string numbered(const std::string& name, std::size_t number);

/// An event line of a cut list.
std::string event(int number, const std::string& reel, const std::string& tracks, const std::string& in,
                  const std::string& out);

} // namespace reeldb_tests

#endif
