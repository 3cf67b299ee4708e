// SPDX-License-Identifier: Apache-2.0
//
// The command line: which commands there are, what they take, and which one was asked for.
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

/// Carries a command out. Throws app::Error when it cannot.
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

/// An argument or option of a command, while the command is put together.
class Argument {
public:
  explicit Argument(CLI::Option* option) : option_(option) {}
  Argument& required();
  /// What help calls the value: "NUMBER". It decides, too, what a shell completes there.
  Argument& shownAs(const std::string& metavariable);
  /// A repeatable option takes one value each time: the words that follow belong to something else.
  Argument& oneEachTime();

private:
  CLI::Option* option_;
};

/// A command or a group of commands, while the command line is put together. Values come as texts, byte for byte.
class Command {
public:
  explicit Command(CLI::App* app) : app_(app) {}

  /// A positional argument or an option, by its name: "ID", "--rate".
  Argument text(const std::string& name, std::string& value, const std::string& description);
  Argument text(const std::string& name, std::optional<std::string>& value, const std::string& description);
  /// Any number of them, at least one if it is given.
  Argument texts(const std::string& name, std::vector<std::string>& values, const std::string& description);
  void flag(const std::string& name, bool& value, const std::string& description);
  /// The flag --json of every command that lists or reports.
  void json(bool& value);

private:
  friend class CommandLine;
  CLI::App* app_;
};

class CommandLine {
public:
  CommandLine();
  ~CommandLine();

  /// Adds a command, or one that belongs to a group.
  Command add(CommandInfo info, Run run);
  Command add(const Command& group, CommandInfo info, Run run);
  /// Adds a noun under which commands stand. The example is a whole command line, like those of commands.
  Command addGroup(const std::string& name, const std::string& description, const std::string& example);

  /// Adds the command help, which shows the help of any other.
  void addHelp();

  /// Reads a line as main gets it. Once.
  Reading read(int argc, char** argv);
  const Globals& globals() const;

  /// What may stand in place of the last of these words, or go on from it.
  Completion complete(const std::vector<std::string>& words) const;

private:
  struct Parser;
  std::unique_ptr<Parser> parser_;
};

} // namespace reeldb::cli

#endif
