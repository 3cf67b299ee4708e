// SPDX-License-Identifier: Apache-2.0
//
// The command line: which commands there are, what they take, and which one was asked for.
#ifndef REELDB_CLI_COMMAND_LINE_H
#define REELDB_CLI_COMMAND_LINE_H

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <CLI/App.hpp>

#include "line/completion.h"
#include "line/exit_code.h"

namespace reeldb::cli {

/// What can be said with any command.
struct Globals {
  std::optional<std::string> facility; ///< the folder given with -C; the front has resolved it, only init asks
  std::optional<std::string> project;  ///< given with -p
  bool trace = false;
};

/// Carries a command out. Throws Failure or reelhost::Error when it cannot.
using Run = std::function<ExitCode(const Globals&)>;

struct CommandInfo {
  std::string name;
  std::string description;           ///< one line
  std::vector<std::string> examples; ///< whole command lines; every one of them is run by a test
  std::string details = {};          ///< what else there is to know, in lines
  bool needsFacility = true;
};

/// What a command line came to.
struct Reading {
  Run run;                    ///< empty when there is nothing to run
  bool needsFacility = false; ///< whether what is to be run works on a facility
  ExitCode code = done;       ///< when there is nothing to run
  std::string text;           ///< when there is nothing to run: help or version, for standard output
  std::string message;        ///< or what is wrong with the line
};

class CommandLine {
public:
  CommandLine();

  /// Adds a command, or one that belongs to a group.
  CLI::App& add(CommandInfo info, Run run) { return add(app_, std::move(info), std::move(run)); }
  CLI::App& add(CLI::App& group, CommandInfo info, Run run);
  /// Adds a word under which commands stand. The example is a whole command line, like those of commands.
  CLI::App& addGroup(const std::string& name, const std::string& description, const std::string& example);

  /// Reads a line as main gets it. Once.
  Reading read(int argc, char** argv);
  const Globals& globals() const { return globals_; }

  /// What may stand in place of the last of these words, or go on from it.
  Completion complete(const std::vector<std::string>& words) const { return completionOf(app_, words); }

private:
  struct Entry {
    Run run;
    bool needsFacility;
  };
  const CLI::App& chosen() const;

  CLI::App app_;
  Globals globals_;
  std::map<const CLI::App*, Entry> commands_;
};

// --- What commands take. All values come as texts, byte for byte -----------------------------------------------------

/// A positional argument or an option, by its name: "ID", "--rate".
CLI::Option* takeText(CLI::App& app, const std::string& name, std::string& value, const std::string& description);
CLI::Option* takeText(CLI::App& app, const std::string& name, std::optional<std::string>& value,
                      const std::string& description);
/// Any number of them, at least one if it is given.
CLI::Option* takeTexts(CLI::App& app, const std::string& name, std::vector<std::string>& values,
                       const std::string& description);
void takeFlag(CLI::App& app, const std::string& name, bool& value, const std::string& description);
/// The flag --json of every command that lists or reports.
void takeJson(CLI::App& app, bool& value);

} // namespace reeldb::cli

#endif
