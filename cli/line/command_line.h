// SPDX-License-Identifier: Apache-2.0
//
// The command line: the commands, their arguments, and the reading of a line.
#ifndef REELDB_CLI_COMMAND_LINE_H
#define REELDB_CLI_COMMAND_LINE_H

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "line/completion.h"
#include "line/exit_code.h"
#include "line/globals.h"

namespace CLI {
class App;
class Option;
} // namespace CLI

namespace reeldb::cli {

/// Runs a command. Throws app::Error if it fails.
using Run = std::function<ExitCode(const Globals&)>;

struct CommandInfo {
  std::string name;
  std::string description;           ///< one line
  std::vector<std::string> examples; ///< whole command lines; every one of them is run by a test
  std::string details = {};          ///< the rest of the help, in lines
  bool needsFacility = true;
};

/// The result of reading a command line: a command to run, a text to print, or an error.
struct Reading {
  Run run;                    ///< the command; empty if there is a text or an error
  bool needsFacility = false; ///< whether the command works on a facility
  ExitCode code = done;       ///< the exit code if there is no command
  std::string text;           ///< help or version, for standard output
  std::string message;        ///< the error in the line
};

/// An argument or option of a command, while the command is being defined.
class Argument {
public:
  explicit Argument(CLI::Option* option) : option_(option) {}
  Argument& required();
  /// Sets the name of the value in the help text, such as "NUMBER". The name also decides what a shell completes there.
  Argument& shownAs(const std::string& metavariable);
  /// Makes a repeatable option take one value each time. The words after that value are other arguments.
  Argument& oneEachTime();

private:
  CLI::Option* option_;
};

/// A command or a group of commands, while the command line is being defined. Values are texts, byte for byte.
class Command {
public:
  explicit Command(CLI::App* app) : app_(app) {}

  /// Adds a positional argument or an option, by its name: "ID", "--rate".
  Argument text(const std::string& name, std::string& value, const std::string& description);
  Argument text(const std::string& name, std::optional<std::string>& value, const std::string& description);
  /// Adds an argument or option with any number of values, at least one if it is given.
  Argument texts(const std::string& name, std::vector<std::string>& values, const std::string& description);
  void flag(const std::string& name, bool& value, const std::string& description);
  /// Adds the flag --json. Every command that lists or reports has it.
  void json(bool& value);

private:
  friend class CommandLine;
  CLI::App* app_;
};

class CommandLine {
public:
  CommandLine();
  ~CommandLine();

  /// Adds a command, to a group if one is given.
  Command add(CommandInfo info, Run run);
  Command add(const Command& group, CommandInfo info, Run run);
  /// Adds a group of commands: a noun whose verbs are the commands. The example is a whole command line.
  Command addGroup(const std::string& name, const std::string& description, const std::string& example);

  /// Adds the command "help", which shows the help of any other command.
  void addHelp();

  /// Reads the arguments of main. To be called once.
  Reading read(int argc, char** argv);
  const Globals& globals() const;

  /// The possible completions of the last of these words.
  Completion complete(const std::vector<std::string>& words) const;

private:
  struct Parser;
  std::unique_ptr<Parser> parser_;
};

} // namespace reeldb::cli

#endif
