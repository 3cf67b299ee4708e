// SPDX-License-Identifier: Apache-2.0
#include "line/completion.h"

#include <map>
#include <string_view>
#include <utility>

#include <CLI/App.hpp>

namespace reeldb::cli {

using app::ValueKind;

namespace {

bool takesValue(const CLI::Option& option)
{
  return option.get_items_expected_max() > 0;
}

/// An argument that is an option: the option's name, and the position of its value if the argument contains it.
struct Argument {
  std::string name;
  bool hasValue;
  std::size_t valueAt;
};

Argument split(const std::string& argument)
{
  const std::size_t equals = argument.find('=');
  if (equals != std::string::npos)
    return {argument.substr(0, equals), true, equals + 1};
  const bool isShort = argument.size() > 2 && argument[1] != '-';
  return isShort ? Argument{argument.substr(0, 2), true, 2} : Argument{argument, false, argument.size()};
}

/// Reads the words before the typed one, to find out what can come next.
class Walk {
public:
  explicit Walk(const CLI::App& root) : root_(root), app_(&root) {}

  void pass(const std::string& word)
  {
    if (const CLI::Option* const option = std::exchange(awaiting_, nullptr))
      note(*option, word);
    else if (!onlyArguments_ && word == "--")
      onlyArguments_ = true;
    else if (!onlyArguments_ && word.size() > 1 && word.front() == '-')
      passOption(word);
    else if (hasCommands())
      descend(word);
    else
      ++arguments_;
  }

  Completion complete(const std::string& word) const
  {
    Completion result;
    result.project = project_;
    result.typed = word;
    if (!app_)
      return result;
    if (awaiting_)
      result.value = valueKindOf(awaiting_->get_type_name());
    else if (!onlyArguments_ && word.size() > 1 && word.front() == '-' && split(word).hasValue)
      completeAttached(word, result);
    else if (!onlyArguments_ && !word.empty() && word.front() == '-')
      result.words = options(); // NOLINT(bugprone-branch-clone): the order decides
    else if (hasCommands())
      result.words = commands();
    else if (isHelp_)
      return result;
    else if (const CLI::Option* const argument = argumentAt(arguments_))
      result.value = valueKindOf(argument->get_name(true));
    else if (!onlyArguments_)
      result.words = options();
    return result;
  }

private:
  bool hasCommands() const
  {
    return app_ && !app_->get_subcommands([](const CLI::App*) { return true; }).empty();
  }

  void descend(const std::string& word)
  {
    if (app_ == &root_ && word == "help") {
      isHelp_ = true; // the next words are commands, as at the start of the line
      return;
    }
    const CLI::App* next = nullptr;
    for (const CLI::App* const command : app_->get_subcommands([](const CLI::App*) { return true; }))
      if (command->get_name() == word)
        next = command;
    app_ = next;
    arguments_ = 0;
  }

  /// The option of the command, or the option that every command takes.
  const CLI::Option* find(const std::string& name) const
  {
    for (const CLI::App* const app : {app_, &root_})
      if (const CLI::Option* const option = app ? app->get_option_no_throw(name) : nullptr)
        return option;
    return nullptr;
  }

  void passOption(const std::string& word)
  {
    const Argument argument = split(word);
    const CLI::Option* const option = find(argument.name);
    if (!option || !takesValue(*option))
      return;
    if (argument.hasValue)
      note(*option, word.substr(argument.valueAt));
    else
      awaiting_ = option;
  }

  void note(const CLI::Option& option, const std::string& value)
  {
    if (option.check_lname("project"))
      project_ = value;
  }

  void completeAttached(const std::string& word, Completion& result) const
  {
    const Argument argument = split(word);
    const CLI::Option* const option = find(argument.name);
    if (!option || !takesValue(*option))
      return;
    result.start = word.substr(0, argument.valueAt);
    result.typed = word.substr(argument.valueAt);
    result.value = valueKindOf(option->get_type_name());
  }

  const CLI::Option* argumentAt(std::size_t index) const
  {
    std::size_t at = 0;
    for (const CLI::Option* const option : app_->get_options())
      if (option->get_positional() && (at++ == index || option->get_items_expected_max() > 1))
        return option;
    return nullptr;
  }

  std::vector<app::Choice> commands() const
  {
    std::vector<app::Choice> words;
    for (const CLI::App* const command : app_->get_subcommands([](const CLI::App*) { return true; }))
      words.push_back({command->get_name(), command->get_description()});
    return words;
  }

  /// All options by their long names; after a command also the options that every command takes.
  std::vector<app::Choice> options() const
  {
    std::vector<app::Choice> words;
    const auto add = [&](const CLI::App& app, bool all) {
      for (const CLI::Option* const option : app.get_options())
        if (!option->get_positional() && (all || !isForRootAlone(*option)))
          words.push_back({"--" + option->get_lnames().front(), option->get_description()});
    };
    add(*app_, true);
    if (app_ != &root_)
      add(root_, false);
    return words;
  }

  bool isForRootAlone(const CLI::Option& option) const
  {
    return &option == root_.get_help_ptr() || option.check_lname("version");
  }

  const CLI::App& root_;
  const CLI::App* app_;                   ///< the current command; null after a word that is not a command
  const CLI::Option* awaiting_ = nullptr; ///< the option whose value is the next word
  std::size_t arguments_ = 0;
  bool onlyArguments_ = false; ///< after "--"
  bool isHelp_ = false;        ///< after the command "help"
  std::optional<std::string> project_;
};

} // namespace

ValueKind valueKindOf(const std::string& metavariable)
{
  static const std::map<std::string_view, ValueKind> kinds = {
      {"ID", ValueKind::Reel},
      {"REEL", ValueKind::Reel},
      {"OLD", ValueKind::Reel},
      {"FROM", ValueKind::Reel},
      {"TO", ValueKind::Reel},
      {"NUMBER", ValueKind::Device},
      {"PROJECT", ValueKind::Project},
      {"MAP", ValueKind::LabelMap},
      {"LIST", ValueKind::ListFile},
      {"CODE|NAME", ValueKind::FrameRate},
      {"RATE", ValueKind::FrameRate},
      {"FIELD=VALUE", ValueKind::Field},
      {"NUMBER=NAME", ValueKind::UserField},
      {"MATCH", ValueKind::Match},
      {"GROUP", ValueKind::Group},
      {"TYPE", ValueKind::ReelType},
      {"NAMES", ValueKind::NameSource},
      {"FILE", ValueKind::File},
      {"DIR", ValueKind::Folder},
  };
  const auto found = kinds.find(metavariable);
  return found == kinds.end() ? ValueKind::Other : found->second;
}

Completion completionOf(const CLI::App& root, const std::vector<std::string>& words)
{
  Walk walk(root);
  for (std::size_t i = 0; i + 1 < words.size(); ++i)
    walk.pass(words[i]);
  return walk.complete(words.empty() ? std::string() : words.back());
}

} // namespace reeldb::cli
