// SPDX-License-Identifier: Apache-2.0
//
// Output that several commands share.
#ifndef REELDB_CLI_TABLES_H
#define REELDB_CLI_TABLES_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "app/names.h"
#include "app/shots.h"

namespace reeldb::cli {

std::string_view yesOrNo(bool value);

/// The text, or a dash for an empty one.
std::string orDash(const std::string& text);

/// The rate of the clip's timecodes: "29.97 drop frame", "25". Empty if the list does not say it.
std::string rateText(const lists::Clip& clip);

/// "2026-11-22T13:38:48Z" as the time of this place, to the minute; empty if the text is not such a time.
std::string localTime(const std::string& utc);

/// Prints a table with a line for each shot, indented by @p indent blanks.
void printShots(const std::vector<app::Shot>& shots, std::size_t indent = 0);

/// The same, with the numbers of the shots.
void printShots(const std::vector<app::NumberedShot>& shots);

/// The numbers of shots as a person types them. Throws Error (Invalid) for anything else; @p command is its subject.
std::vector<std::int64_t> shotNumbers(const std::string& command, const std::vector<std::string>& words);

/// The reasons why a name means a reel, in words: "cut form, other name in a list".
std::string reasonsText(const app::Candidate& candidate);

/// Throws Error (Invalid) for a group of reels, the value of --by, that there is not.
void requireGroup(const std::optional<std::string>& by);

/// Writes each message to standard error.
void complainOf(const std::vector<std::string>& messages);

} // namespace reeldb::cli

#endif
