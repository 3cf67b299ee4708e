// SPDX-License-Identifier: Apache-2.0
#include "line/entry.h"

#include <algorithm>
#include <cstdio>
#include <exception>
#include <new>

#include "line/command_line.h"
#include "app/completion_values.h"
#include "text/display_text.h"
#include "line/failure.h"
#include "text/output.h"
#include "reelhost/host.h"
#include "reelhost/journal.h"

namespace reeldb::cli {

namespace {

ExitCode fail(ExitCode code, const char* message)
{
  complain(message);
  return code;
}

ExitCode carryOut(const Reading& reading, const Globals& globals)
{
  try {
    reelhost::startUp();
    if (globals.trace)
      reelhost::Journal::the().traceTo(stderr);
    return reading.run(globals);
  } catch (const Failure& failure) {
    return fail(failure.code(), failure.what());
  } catch (const reelhost::Error& error) {
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
  const Reading reading = line.read(argc, argv);
  ExitCode code = reading.code;
  if (reading.run)
    code = carryOut(reading, line.globals());
  else if (!reading.message.empty())
    complain(reading.message);
  else
    print(reading.text);
  reelhost::Journal::the().traceTo(nullptr);
  return flushOutput() ? code : unreadable;
}

std::vector<CompletionWord> completionWords(const Completion& completion)
{
  if (!completion.words.empty())
    return completion.words;
  try {
    reelhost::startUp();
    return completionValues(completion);
  } catch (const std::exception&) {
    return {}; // without a facility, say; who runs the line is told
  }
}

/// A word that shows its own bytes and fits into one line.
bool canBeTyped(const std::string& word)
{
  return displayText(word) == word;
}

ExitCode complete(int argc, char** argv)
{
  const Completion completion = CommandLine().complete(std::vector<std::string>(argv + std::min(argc, 1), argv + argc));
  print(completion.value == ValueKind::File     ? "files\n"
        : completion.value == ValueKind::Folder ? "folders\n"
                                                : "words\n");
  for (const CompletionWord& candidate : completionWords(completion))
    if (canBeTyped(candidate.word) && candidate.word.compare(0, completion.typed.size(), completion.typed) == 0)
      print(completion.start + candidate.word + '\t' + displayText(candidate.description) + '\n');
  return flushOutput() ? done : unreadable;
}

} // namespace

} // namespace reeldb::cli

// The commands catch everything they throw; what comes here anyway ends the process in std::terminate.
extern "C" __attribute__((visibility("default"))) int reeldb_main(int argc, char** argv)
{
  return reeldb::cli::runLine(argc, argv);
}

extern "C" __attribute__((visibility("default"))) int reeldb_complete(int argc, char** argv)
{
  return reeldb::cli::complete(argc, argv);
}

extern "C" __attribute__((visibility("default"))) int reeldb_needs_facility(int argc, char** argv)
{
  return reeldb::cli::CommandLine().read(argc, argv).needsFacility;
}

extern "C" __attribute__((visibility("default"))) void reeldb_complain(const char* message)
{
  reeldb::cli::complain(message);
}
