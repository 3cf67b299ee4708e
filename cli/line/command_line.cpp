// SPDX-License-Identifier: Apache-2.0
#include "line/command_line.h"

#include <algorithm>
#include <map>
#include <string_view>

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <fmt/format.h>

#include "app/process.h"
#include "base/text_width.h"
#include "line/guess.h"

namespace reeldb::cli {

namespace {

// The parser reads "[a,b]" as a list, "{}" as an empty one and "++" as the end of a command. Reel identifiers may look
// like that, so the parser gets such an argument with a mark before it, which is removed afterwards.
constexpr char mark = '\x01';

bool needsMark(std::string_view argument)
{
  return argument == "++" || argument == "{}" ||
         (!argument.empty() && (argument.front() == mark || (argument.front() == '[' && argument.back() == ']')));
}

std::string marked(std::string argument)
{
  return needsMark(argument) ? mark + argument : argument;
}

/// Changes "-p=NAME" to "--project=NAME", because the parser would read the equals sign as part of the name.
std::string longProject(const std::string& argument)
{
  return argument.compare(0, 3, "-p=") == 0 ? "--project=" + argument.substr(3) : argument;
}

std::string unmarked(const std::string& argument)
{
  return !argument.empty() && argument.front() == mark ? argument.substr(1) : argument;
}

std::string examplesText(const CommandInfo& info)
{
  std::string result = info.details.empty() ? "" : info.details + "\n\n";
  result += "Every command also takes -C DIR, -p PROJECT and --trace; see reeldb --help.\n\n";
  result += info.examples.size() > 1 ? "Examples:" : "Example:";
  for (const std::string& example : info.examples)
    result += "\n  " + example;
  return result;
}

const char* const generalHelp =
    R"(The facility is the folder with facility.toml: the one given with -C, else the one in the environment variable
REELDB_FACILITY, else the nearest folder from the working folder upwards. The project is the one given with -p, else
the one in the environment variable REELDB_PROJECT, else the facility's default project. A command stores all of its
changes, or none.

Exit codes:
  0  done
  1  nothing found, or refused (for example because the project is read-only or in use)
  2  the command line is wrong
  3  damaged or unreadable data, or the system refused a read or a write
  4  done, but some input lines were rejected

Example:
  reeldb --version)";

/// The words from "reeldb" to the command, as a user writes them.
std::string path(const CLI::App& app)
{
  return app.get_parent() ? path(*app.get_parent()) + " " + app.get_name() : app.get_name();
}

bool hasCommands(const CLI::App& app)
{
  return !app.get_subcommands([](const CLI::App*) { return true; }).empty();
}

/// The message "WORD: no such command", with a guess of the intended command.
std::string unknownCommand(const CLI::App& group, const std::string& word)
{
  std::vector<std::string> names;
  for (const CLI::App* const command : group.get_subcommands([](const CLI::App*) { return true; }))
    names.push_back(command->get_name());
  const std::string meant = guess(word, names);
  return fmt::format("\"{}\": no such command ({}see {} --help)", base::shortText(word),
                     meant.empty() ? "" : "perhaps " + meant + "; ", path(group));
}

/// The first word in the place of a command that is not a command, and the group of commands that lacks it. Options and
/// their values are skipped.
std::pair<const CLI::App*, std::string> misnamedCommand(const CLI::App& root, const std::vector<std::string>& arguments)
{
  const CLI::App* group = &root;
  for (std::size_t i = 0; i < arguments.size() && hasCommands(*group); ++i) {
    const std::string& word = arguments[i];
    if (word == "--")
      break;
    if (word.size() > 1 && word.front() == '-') {
      const CLI::Option* const option = root.get_option_no_throw(word);
      i += option && option->get_items_expected_max() > 0 ? 1 : 0; // its value
      continue;
    }
    const auto named = group->get_subcommands([&](const CLI::App* command) { return command->get_name() == word; });
    if (named.empty())
      return {group, word};
    group = named.front();
  }
  return {nullptr, {}};
}

const std::string noFolder = "-C: no folder given";
const std::string facilityHint = " (-C DIR names the facility)";

/// The message for a line with an error: the fault, and what to do.
std::string fault(const CLI::App& root, const CLI::App& command, const CLI::ParseError& error)
{
  const std::string hint = " (see " + path(command) + " --help)";
  std::vector<std::string> left = root.remaining(true);
  left.erase(std::remove(left.begin(), left.end(), "--"), left.end());
  const bool isOption = !left.empty() && left.front().size() > 1 && left.front().front() == '-';
  if (dynamic_cast<const CLI::RequiredError*>(&error) && hasCommands(command))
    return (isOption ? '"' + base::shortText(unmarked(left.front())) + "\": no such option" : "no command given") +
           hint;
  if (dynamic_cast<const CLI::ExtrasError*>(&error) && !left.empty())
    return '"' + base::shortText(unmarked(left.front())) + '"' +
           (command.get_option_no_throw(left.front()) ? ": not expected before the command" : ": not expected here") +
           hint;
  const std::string text = error.what();
  const bool isMismatch = dynamic_cast<const CLI::ArgumentMismatch*>(&error) != nullptr;
  if (isMismatch && text.rfind("--facility", 0) == 0)
    return (text.find("missing") != std::string::npos ? noFolder : "-C: given more than once") + facilityHint;
  if (isMismatch)
    return text.substr(0, text.find(": ")) +
           (text.find("missing") != std::string::npos ? ": a value is missing" : ": given more than once") + hint;
  return text + hint;
}

CLI::Option* takeResults(CLI::App& app, const std::string& name, const std::string& description,
                         std::function<void(const CLI::results_t&)> take)
{
  const auto taken = [take = std::move(take)](const CLI::results_t& results) {
    take(results);
    return true;
  };
  return app.add_option(name, taken, description)->type_name("TEXT");
}

} // namespace

struct CommandLine::Parser {
  struct Entry {
    Run run;
    bool needsFacility;
  };

  CLI::App app{"Keeps the reels of a project, their fields and their shots, and imports cut lists and log files.",
               "reeldb"};
  Globals globals;
  std::map<const CLI::App*, Entry> commands;
  CLI::App* help = nullptr;
  std::vector<std::string> helpWords;

  const CLI::App& chosen() const
  {
    const CLI::App* found = &app;
    while (!found->get_subcommands().empty())
      found = found->get_subcommands().back();
    return *found;
  }

  /// Returns the help of the command that the words name.
  Reading helpFor(const std::vector<std::string>& words)
  {
    CLI::App* found = &app;
    for (const std::string& word : words) {
      const auto named = found->get_subcommands([&](const CLI::App* command) { return command->get_name() == word; });
      if (named.empty()) {
        Reading reading;
        reading.code = usage;
        reading.message = "help: " + unknownCommand(*found, word);
        return reading;
      }
      found = named.front();
    }
    Reading reading;
    reading.text = found->get_formatter()->make_help(found, path(*found), CLI::AppFormatMode::Normal);
    return reading;
  }
};

CommandLine::CommandLine() : parser_(std::make_unique<Parser>())
{
  CLI::App& app = parser_->app;
  auto formatter = std::make_shared<CLI::Formatter>();
  formatter->label("Positionals", "Arguments");
  formatter->label("SUBCOMMAND", "COMMAND");
  formatter->column_width(28);
  app.formatter(formatter);
  app.set_help_flag("-h,--help", "Show this help, or the help of a command");
  app.set_version_flag(
      "--version", [] { return "reeldb " + app::libraryVersion(); }, "Show the version of the library");
  app.require_subcommand(1);
  app.footer(generalHelp);
  Command root(&app);
  root.text("-C,--facility", parser_->globals.facility, "The facility to work in").shownAs("DIR");
  root.text("-p,--project", parser_->globals.project, "The project to work on; without it, REELDB_PROJECT")
      .shownAs("PROJECT");
  root.flag("--trace", parser_->globals.trace, "Show every call of the library to its host on standard error");
}

CommandLine::~CommandLine() = default;

Command CommandLine::add(CommandInfo info, Run run)
{
  return add(Command(&parser_->app), std::move(info), std::move(run));
}

Command CommandLine::add(const Command& group, CommandInfo info, Run run)
{
  CLI::App& app = *group.app_->add_subcommand(info.name, info.description);
  app.group("Commands");
  app.fallthrough();
  app.footer(examplesText(info));
  parser_->commands[&app] = {std::move(run), info.needsFacility};
  return Command(&app);
}

Command CommandLine::addGroup(const std::string& name, const std::string& description, const std::string& example)
{
  CLI::App& app = *parser_->app.add_subcommand(name, description);
  app.group("Commands");
  app.fallthrough();
  app.require_subcommand(1);
  app.footer(fmt::format("reeldb {} COMMAND --help shows the help of a command.\n\nExample:\n  {}", name, example));
  return Command(&app);
}

void CommandLine::addHelp()
{
  Command help = add({.name = "help",
                      .description = "Show the help of a command",
                      .examples = {"reeldb help import", "reeldb help project new"},
                      .details = "Without a command it shows the general help, as reeldb --help does.",
                      .needsFacility = false},
                     {});
  help.texts("COMMAND", parser_->helpWords, "The command").shownAs("");
  parser_->help = help.app_;
}

const Globals& CommandLine::globals() const
{
  return parser_->globals;
}

Completion CommandLine::complete(const std::vector<std::string>& words) const
{
  return completionOf(parser_->app, words);
}

Reading CommandLine::read(int argc, char** argv)
{
  std::vector<std::string> arguments(argv + std::min(argc, 1), argv + argc);
  const auto options = std::find(arguments.begin(), arguments.end(), "--"); // arguments after "--" stay as they are
  std::transform(arguments.begin(), options, arguments.begin(), longProject);
  std::transform(arguments.begin(), arguments.end(), arguments.begin(), marked);
  Reading reading;
  CLI::App& app = parser_->app;
  const auto refuseFor = [&](const CLI::App& command, const std::string& what) {
    const std::string words = path(command);
    const std::string subject = &command == &app ? "" : words.substr(words.find(' ') + 1) + ": ";
    reading.code = usage;
    reading.message = subject + what;
  };
  if (const auto [group, word] = misnamedCommand(app, arguments); group) {
    refuseFor(*group, unknownCommand(*group, unmarked(word)));
    return reading;
  }
  const auto refuse = [&](const std::string& what) { refuseFor(parser_->chosen(), what); };
  if (std::find(arguments.begin(), options, "--facility=") !=
      options) { // the parser would read the next word as its value
    refuse(noFolder + facilityHint);
    return reading;
  }
  std::reverse(arguments.begin(), arguments.end()); // the parser requires this order
  try {
    app.parse(std::move(arguments));
    const CLI::App& command = parser_->chosen();
    if (&command == parser_->help)
      return parser_->helpFor(parser_->helpWords);
    if (parser_->globals.facility && parser_->globals.facility->empty()) {
      refuse(noFolder + facilityHint);
      return reading;
    }
    const Parser::Entry& entry = parser_->commands.at(&command);
    reading.run = entry.run;
    reading.needsFacility = entry.needsFacility;
  } catch (const CLI::CallForHelp&) {
    reading.text = app.help();
  } catch (const CLI::CallForVersion& version) {
    reading.text = std::string(version.what()) + "\n";
  } catch (const CLI::ParseError& error) {
    refuse(fault(app, parser_->chosen(), error));
  }
  return reading;
}

// --- What commands take --------------------------------------------------------------------------

Argument& Argument::required()
{
  option_->required();
  return *this;
}

Argument& Argument::shownAs(const std::string& metavariable)
{
  option_->type_name(metavariable);
  return *this;
}

Argument& Argument::oneEachTime()
{
  option_->allow_extra_args(false);
  return *this;
}

Argument Command::text(const std::string& name, std::string& value, const std::string& description)
{
  return Argument(takeResults(*app_, name, description,
                              [&value](const CLI::results_t& results) { value = unmarked(results.front()); }));
}

Argument Command::text(const std::string& name, std::optional<std::string>& value, const std::string& description)
{
  return Argument(takeResults(*app_, name, description,
                              [&value](const CLI::results_t& results) { value = unmarked(results.front()); }));
}

Argument Command::texts(const std::string& name, std::vector<std::string>& values, const std::string& description)
{
  return Argument(takeResults(*app_, name, description,
                              [&values](const CLI::results_t& results) {
                                values.clear();
                                std::transform(results.begin(), results.end(), std::back_inserter(values), unmarked);
                              })
                      ->expected(1, CLI::detail::expected_max_vector_size)
                      ->allow_extra_args());
}

void Command::flag(const std::string& name, bool& value, const std::string& description)
{
  app_->add_flag(name, value, description);
}

void Command::json(bool& value)
{
  flag("--json", value, "Report as JSON");
}

} // namespace reeldb::cli
