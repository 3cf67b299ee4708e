// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_TESTS_CLI_PROCESS_H
#define REELDB_TESTS_CLI_PROCESS_H

#include <chrono>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

namespace reeldb_tests {

/// The settings of a process. Its environment contains what is needed to find programs, the variables of sanitizers,
/// and the variables given here, but not the facility and the terminal of the person who runs the tests.
struct ProcessSetting {
  std::filesystem::path folder = ".";
  std::map<std::string, std::string> environment;
  std::string input; ///< standard input; otherwise it is empty
  bool terminal =
      false; ///< standard output and error are one terminal of 80 columns, at which the input, if any, is typed
  std::string outputFile; ///< standard output goes there instead; the file is there already
};

struct ProcessResult {
  int code = -1;   ///< exit code; -1 when a signal ended the process
  int signal = 0;  ///< that signal
  std::string out; ///< with a terminal: everything
  std::string err;
  long peakKilobytes = 0; ///< of memory that it had at a time
};

/// Runs a program to its end. A process that takes longer than two minutes is killed; its signal then says so.
ProcessResult runProcess(const std::vector<std::string>& words, const ProcessSetting& setting = {});

/// A process that is still running, for tests that end it. Its output is thrown away, unless it goes to a file.
class RunningProcess {
public:
  RunningProcess(const std::vector<std::string>& words, const ProcessSetting& setting);
  ~RunningProcess(); ///< kills it if it still runs
  RunningProcess(const RunningProcess&) = delete;
  RunningProcess& operator=(const RunningProcess&) = delete;
  pid_t id() const { return id_; }
  void signal(int number);
  ProcessResult wait(); ///< code and signal

private:
  pid_t id_;
};

} // namespace reeldb_tests

#endif
