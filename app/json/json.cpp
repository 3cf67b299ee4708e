// SPDX-License-Identifier: Apache-2.0
#include "app/json/json.h"

#include <fmt/format.h>
#include <utf8.h>

#include "app/json/from_json.h"
#include "base/display_text.h"

namespace reeldb::app {

namespace {

std::string dumped(const Value& value, int indent)
{
  const std::string text = value.dump(indent, ' ', false, Value::error_handler_t::replace);
  std::string result;
  result.reserve(text.size() + 1);
  for (auto at = text.begin(); at != text.end();) {
    const auto start = at;
    // The dump has escaped control characters below 0x7F itself, except for its own line ends.
    if (const char32_t c = utf8::next(at, text.end()); c >= 0x7F && base::isShownEscaped(c))
      result += fmt::format("\\u{:04x}", static_cast<unsigned>(c));
    else
      result.append(start, at);
  }
  return result += '\n';
}

} // namespace

template <class T>
std::string jsonText(const T& result)
{
  return dumped(json::write(result), 2);
}

template <class T>
std::string jsonLine(const T& result)
{
  return dumped(json::write(result), -1);
}

template ProjectState fromJson(std::string_view);

/// One line for each result that has a JSON form.
#define REELDB_JSON_RESULT(...)                                                                                        \
  template std::string jsonText(const __VA_ARGS__&);                                                                   \
  template std::string jsonLine(const __VA_ARGS__&);
#define REELDB_JSON_RESULTS(...)                                                                                       \
  REELDB_JSON_RESULT(__VA_ARGS__)                                                                                      \
  REELDB_JSON_RESULT(std::vector<__VA_ARGS__>)

REELDB_JSON_RESULTS(Device)
REELDB_JSON_RESULTS(KeptDeletion)
REELDB_JSON_RESULTS(KeptList)
REELDB_JSON_RESULTS(LabelMap)
REELDB_JSON_RESULTS(ListEvents)
REELDB_JSON_RESULT(NamesCheck)
REELDB_JSON_RESULTS(Need)
REELDB_JSON_RESULTS(NumberedShot)
REELDB_JSON_RESULTS(Roll)
REELDB_JSON_RESULTS(NeededRoll)
REELDB_JSON_RESULTS(Project)
REELDB_JSON_RESULTS(Reel)
REELDB_JSON_RESULTS(ReelType)
REELDB_JSON_RESULTS(Shot)
REELDB_JSON_RESULTS(UserField)
REELDB_JSON_RESULTS(Verdict)
REELDB_JSON_RESULT(Backup)
REELDB_JSON_RESULTS(ChangedReel)
REELDB_JSON_RESULT(Compacted)
REELDB_JSON_RESULT(CopiedReel)
REELDB_JSON_RESULT(CreatedReel)
REELDB_JSON_RESULT(DeletionPlan)
REELDB_JSON_RESULT(FieldConflict)
REELDB_JSON_RESULT(ImportReport)
REELDB_JSON_RESULT(LabelMapCheck)
REELDB_JSON_RESULT(ListDiff)
REELDB_JSON_RESULT(LiveReel)
REELDB_JSON_RESULT(Merged)
REELDB_JSON_RESULT(NameMeaning)
REELDB_JSON_RESULT(NeededLabelMap)
REELDB_JSON_RESULT(ProjectCheck)
REELDB_JSON_RESULT(ProjectContent)
REELDB_JSON_RESULT(ProjectHistory)
REELDB_JSON_RESULT(ProjectRate)
REELDB_JSON_RESULT(ProjectState)
REELDB_JSON_RESULT(ReelAliases)
REELDB_JSON_RESULT(ReelDetails)
REELDB_JSON_RESULT(ReelEvent)
REELDB_JSON_RESULT(RemovedList)
REELDB_JSON_RESULT(Renamed)
REELDB_JSON_RESULT(ReelReport)
REELDB_JSON_RESULT(ShotsDeleted)
REELDB_JSON_RESULT(ShotsMoved)
REELDB_JSON_RESULT(Split)
REELDB_JSON_RESULT(TakenBackCommit)
REELDB_JSON_RESULT(Undeleted)

} // namespace reeldb::app
