// SPDX-License-Identifier: Apache-2.0
#include "commands/taken_back.h"

#include <fmt/format.h>

#include "app/json/json.h"
#include "base/display_text.h"
#include "commands/names_text.h"
#include "text/counted.h"
#include "text/output.h"

namespace reeldb::cli {

using base::displayText;

namespace {

std::string reelsAndShots(const std::vector<std::string>& reels, std::size_t shots, const char* what)
{
  if (reels.empty() && shots == 0)
    return {};
  return headedNames(fmt::format("{} {}", countedReelsAndShots(reels.size(), shots), what), reels);
}

std::string lists(const std::vector<std::string>& files, const char* what)
{
  return files.empty() ? "" : headedNames(fmt::format("{} {}", counted(files.size(), "list"), what), files);
}

} // namespace

ExitCode report(const app::TakenBackCommit& result, bool json)
{
  changesAreStored();
  if (json) {
    print(app::jsonText(result));
    return done;
  }
  const app::CommitEntry& commit = result.commit;
  print(fmt::format("revision {} {}: {}\n", commit.revision, result.isRedo ? "repeated" : "taken back",
                    commit.command.empty() ? "no command line is kept of it" : displayText(commit.command)));
  print(reelsAndShots(result.reelsRestored, result.shotsRestored, "restored"));
  print(reelsAndShots(result.reelsRemoved, result.shotsRemoved, "removed"));
  const char* const changed = result.isRedo ? "changed again" : "changed back";
  if (result.logsChanged != 0)
    print(fmt::format("{} {} {}\n", result.logsChanged, result.logsChanged == 1 ? "reel or shot" : "reels or shots",
                      changed));
  print(lists(result.listsRestored, "restored"));
  print(lists(result.listsRemoved, "removed"));
  if (const std::size_t others = result.lists - result.listsRestored.size() - result.listsRemoved.size(); others != 0)
    print(fmt::format("{} {}\n", counted(others, "list"), changed));
  if (result.options)
    print(fmt::format("options of the project {}\n", changed));
  for (const std::string& change : commit.elsewhere)
    print(fmt::format("not {}: {}\n", result.isRedo ? "repeated" : "taken back", displayText(change)));
  return done;
}

} // namespace reeldb::cli
