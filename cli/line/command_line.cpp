// SPDX-License-Identifier: Apache-2.0
#include "line/command_line.h"

#include <algorithm>
#include <string_view>

#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <fmt/format.h>

#include "ReelDbVersion.h"
#include "commands/commands.h"
#include "text/display_text.h"

namespace reeldb::cli {

namespace {

// The parser reads "[a,b]" as a list, "{}" as an empty one and "++" as the end of a command. Reel identifiers may look
// like that, so such an argument travels through the parser behind a mark.
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

/// "-p=NAME" as "--project=NAME": the parser would take the equals sign for part of the name, where -C=DIR does not.
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
  result += "Every command takes -C DIR, -p PROJECT and --trace too; reeldb --help tells about them.\n\n";
  result += info.examples.size() > 1 ? "Examples:" : "Example:";
  for (const std::string& example : info.examples)
    result += "\n  " + example;
  return result;
}

const char* const generalHelp =
    R"(The facility is the folder with facility.toml: the one given with -C, else the one in the environment variable
REELDB_FACILITY, else the nearest folder from the working folder upwards. The project is the one given with -p, else
the facility's default project. One command is one transaction: all of it is stored, or nothing.

Exit codes:
  0  done
  1  nothing found, or refused
  2  the command line makes no sense
  3  damaged or unreadable data, or the system refused a read or a write
  4  done, but some input lines were rejected

Example:
  reeldb --version)";

/// The words from "reeldb" to the command, as a user writes them.
std::string path(const CLI::App& app)
{
  return app.get_parent() ? path(*app.get_parent()) + " " + app.get_name() : app.get_name();
}

std::string fault(const CLI::App& root, const CLI::App& command, const CLI::ParseError& error)
{
  std::vector<std::string> left = root.remaining(true);
  left.erase(std::remove(left.begin(), left.end(), "--"), left.end());
  const std::string argument = left.empty() ? "" : '"' + shortText(unmarked(left.front())) + '"';
  const bool missesCommand = !command.get_subcommands([](const CLI::App*) { return true; }).empty();
  if (dynamic_cast<const CLI::RequiredError*>(&error) && missesCommand)
    return argument.empty() ? "no command given" : argument + ": no such command";
  if (dynamic_cast<const CLI::ExtrasError*>(&error) && !argument.empty())
    return argument +
           (command.get_option_no_throw(left.front()) ? ": not expected before the command" : ": not expected here");
  const std::string text = error.what();
  if (dynamic_cast<const CLI::ArgumentMismatch*>(&error))
    return text.substr(0, text.find(": ")) +
           (text.find("missing") != std::string::npos ? ": a value is missing" : ": given more than once");
  return text;
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

CommandLine::CommandLine()
    : app_("Reels of a project: imports cut lists and log files, and keeps what is known of each reel.", "reeldb")
{
  auto formatter = std::make_shared<CLI::Formatter>();
  formatter->label("Positionals", "Arguments");
  formatter->label("SUBCOMMAND", "COMMAND");
  formatter->column_width(28);
  app_.formatter(formatter);
  app_.set_help_flag("-h,--help", "Show this text, or that of a command");
  app_.set_version_flag(
      "--version", [] { return std::string("reeldb ") + reeldbDllVersionStr(); }, "Show the version of the library");
  app_.require_subcommand(1);
  app_.footer(generalHelp);
  takeText(app_, "-C,--facility", globals_.facility, "The facility to work in")->type_name("DIR");
  takeText(app_, "-p,--project", globals_.project, "The project to work on")->type_name("PROJECT");
  takeFlag(app_, "--trace", globals_.trace, "Show every call of the library to its host on standard error");
  addCommands(*this);
}

CLI::App& CommandLine::add(CLI::App& group, CommandInfo info, Run run)
{
  CLI::App& app = *group.add_subcommand(info.name, info.description);
  app.group("Commands");
  app.fallthrough();
  app.footer(examplesText(info));
  commands_[&app] = {std::move(run), info.needsFacility};
  return app;
}

CLI::App& CommandLine::addGroup(const std::string& name, const std::string& description, const std::string& example)
{
  CLI::App& app = *app_.add_subcommand(name, description);
  app.group("Commands");
  app.fallthrough();
  app.require_subcommand(1);
  app.footer(fmt::format("reeldb {} COMMAND --help tells about each.\n\nExample:\n  {}", name, example));
  return app;
}

const CLI::App& CommandLine::chosen() const
{
  const CLI::App* app = &app_;
  while (!app->get_subcommands().empty())
    app = app->get_subcommands().back();
  return *app;
}

Reading CommandLine::read(int argc, char** argv)
{
  std::vector<std::string> arguments(argv + std::min(argc, 1), argv + argc);
  const auto options = std::find(arguments.begin(), arguments.end(), "--"); // what follows is left alone
  std::transform(arguments.begin(), options, arguments.begin(), longProject);
  std::transform(arguments.begin(), arguments.end(), arguments.begin(), marked);
  std::reverse(arguments.begin(), arguments.end()); // as the parser wants them
  Reading reading;
  try {
    app_.parse(std::move(arguments));
    const Entry& entry = commands_.at(&chosen());
    reading.run = entry.run;
    reading.needsFacility = entry.needsFacility;
  } catch (const CLI::CallForHelp&) {
    reading.text = app_.help();
  } catch (const CLI::CallForVersion& version) {
    reading.text = std::string(version.what()) + "\n";
  } catch (const CLI::ParseError& error) {
    const CLI::App& command = chosen();
    const std::string words = path(command);
    const std::string subject = &command == &app_ ? "" : words.substr(words.find(' ') + 1) + ": ";
    reading.code = usage;
    reading.message = subject + fault(app_, command, error) + " (" + words + " --help tells more)";
  }
  return reading;
}

CLI::Option* takeText(CLI::App& app, const std::string& name, std::string& value, const std::string& description)
{
  return takeResults(app, name, description,
                     [&value](const CLI::results_t& results) { value = unmarked(results.front()); });
}

CLI::Option* takeText(CLI::App& app, const std::string& name, std::optional<std::string>& value,
                      const std::string& description)
{
  return takeResults(app, name, description,
                     [&value](const CLI::results_t& results) { value = unmarked(results.front()); });
}

CLI::Option* takeTexts(CLI::App& app, const std::string& name, std::vector<std::string>& values,
                       const std::string& description)
{
  return takeResults(app, name, description,
                     [&values](const CLI::results_t& results) {
                       values.clear();
                       std::transform(results.begin(), results.end(), std::back_inserter(values), unmarked);
                     })
      ->expected(1, CLI::detail::expected_max_vector_size)
      ->allow_extra_args();
}

void takeFlag(CLI::App& app, const std::string& name, bool& value, const std::string& description)
{
  app.add_flag(name, value, description);
}

void takeJson(CLI::App& app, bool& value)
{
  takeFlag(app, "--json", value, "Report as JSON");
}

} // namespace reeldb::cli
