// SPDX-License-Identifier: Apache-2.0
#include <fmt/format.h>

#include "commands/commands.h"
#include "text/display_text.h"
#include "line/failure.h"
#include "app/host_text.h"
#include "app/plain_text.h"
#include "app/reel.h"
#include "app/session.h"

namespace reeldb::cli {

namespace {

struct Options {
  std::string from, to;
  bool json = false;
};

/// Throws Failure when one of the texts to copy cannot be shown and handed on. The command takes none, but another
/// program may have stored it.
void requirePlainTexts(const Reel& reel)
{
  const auto require = [&reel](const std::string& value, const std::string& field) {
    requirePlainText(value, fmt::format("{}: its {} cannot be copied", shortText(reel.id), field));
  };
  require(reel.type, "type");
  require(reel.labelMapping, "label mapping");
  for (std::size_t i = 0; i < userFieldCount; ++i)
    require(reel.userFields[i], fmt::format("user field {}", i));
}

ExitCode run(const Options& options, const Globals& globals)
{
  Session session(globals, reelhost::Access::Write);
  // The library would copy an unknown reel too, and so empty the other.
  ReelDbRec source = session.requireReel(options.from);
  const std::string from = text(source.reelId());
  ReelDbRec target = session.requireReel(options.to);
  const std::string to = text(target.reelId());
  requirePlainTexts(readReel(source, {}));
  session.manager().copyReelInfo(hostText(from), hostText(to));
  const Json reel = toJson(readReel(target, reelhost::shotCounts()));
  const bool stored = session.commit();
  if (options.json)
    printJson({{"from", from}, {"to", to}, {"stored", stored}, {"reel", reel}});
  else
    print(fmt::format("{}: {}\n", displayText(to),
                      stored ? "now as " + displayText(from) : "is already as " + displayText(from)));
  return done;
}

} // namespace

void addCopy(CommandLine& line)
{
  const auto options = std::make_shared<Options>();
  CLI::App& app = line.add(
      {.name = "copy",
       .description = "Copy what is known of one reel to another",
       .examples = {"reeldb copy A001 A002"},
       .details =
           "Copied are type, available, inhibit, label mapping and the user fields; bin and last device are not."},
      [options](const Globals& globals) { return run(*options, globals); });
  takeText(app, "FROM", options->from, "The reel to copy from")->required()->type_name("");
  takeText(app, "TO", options->to, "The reel to change")->required()->type_name("");
  takeJson(app, options->json);
}

} // namespace reeldb::cli
