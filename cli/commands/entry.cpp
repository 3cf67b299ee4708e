// SPDX-License-Identifier: Apache-2.0
#include "commands/entry.h"

#include <algorithm>
#include <cstdio>
#include <exception>
#include <new>

#include "app/completion.h"
#include "app/process.h"
#include "base/display_text.h"
#include "commands/commands.h"
#include "commands/tables.h"
#include "text/output.h"

namespace reeldb::cli {

namespace {

ExitCode fail(ExitCode code, const char* message)
{
  complain(message);
  return code;
}

/// The command line, with the program's name alone in front.
std::vector<std::string> wordsOf(int argc, char** argv)
{
  std::vector<std::string> words = {"reeldb"};
  words.insert(words.end(), argv + std::min(argc, 1), argv + argc);
  return words;
}

ExitCode carryOut(const Reading& reading, const Globals& globals, std::vector<std::string> words)
{
  try {
    app::startUp();
    app::setCommandLine(std::move(words));
    app::noticesTo([](const std::string& message) { complain(message); });
    if (globals.trace)
      app::traceHostCalls(stderr);
    if (reading.needsFacility)
      complainOf(app::facilityRemarks());
    return reading.run(globals);
  } catch (const app::Error& error) {
    return fail(exitCodeOf(error.kind()), error.what());
  } catch (const std::bad_alloc&) {
    return fail(unreadable, "out of memory");
  } catch (const std::exception& error) {
    return fail(unreadable, error.what());
  }
}

ExitCode runLine(int argc, char** argv)
{
  CommandLine line;
  addCommands(line);
  const Reading reading = line.read(argc, argv);
  ExitCode code = reading.code;
  if (reading.run)
    code = carryOut(reading, line.globals(), wordsOf(argc, argv));
  else if (!reading.message.empty())
    complain(reading.message);
  else
    print(reading.text);
  app::traceHostCalls(nullptr);
  return flushOutput() ? code : unreadable;
}

std::vector<app::Choice> choicesFor(const Completion& completion)
{
  if (!completion.words.empty())
    return completion.words;
  try {
    app::startUp();
    return app::choices(completion.value, completion.typed, completion.project);
  } catch (const std::exception&) {
    return {}; // for example without a facility; the command itself will report it
  }
}

/// Whether displayText leaves the word unchanged, so that it can be offered on one line.
bool canBeTyped(const std::string& word)
{
  return base::displayText(word) == word;
}

ExitCode complete(int argc, char** argv)
{
  CommandLine line;
  addCommands(line);
  const Completion completion = line.complete(std::vector<std::string>(argv + std::min(argc, 1), argv + argc));
  print(completion.value == app::ValueKind::File     ? "files\n"
        : completion.value == app::ValueKind::Folder ? "folders\n"
                                                     : "words\n");
  for (const app::Choice& choice : choicesFor(completion))
    if (canBeTyped(choice.word) && choice.word.compare(0, completion.typed.size(), completion.typed) == 0)
      print(completion.start + choice.word + '\t' + base::displayText(choice.description) + '\n');
  return flushOutput() ? done : unreadable;
}

} // namespace

} // namespace reeldb::cli

// The commands catch their exceptions. An exception that arrives here ends the process in std::terminate.
extern "C" __attribute__((visibility("default"))) int reeldb_main(int argc, char** argv)
{
  return reeldb::cli::runLine(argc, argv);
}

extern "C" __attribute__((visibility("default"))) int reeldb_complete(int argc, char** argv)
{
  return reeldb::cli::complete(argc, argv);
}
