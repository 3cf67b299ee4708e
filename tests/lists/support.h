// SPDX-License-Identifier: Apache-2.0
//
// What the tests of the list readers share.
#ifndef REELDB_TESTS_LISTS_SUPPORT_H
#define REELDB_TESTS_LISTS_SUPPORT_H

#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <vector>

#include "lists/list.h"

namespace reeldb::lists::test {

/// The four timecodes of an event line that is not about timecodes.
inline const std::string anyTimecodes = "01:00:00:00 01:00:01:00 10:00:00:00 10:00:01:00";

/// An event line: "001  REEL V C <timecodes>".
inline std::string event(const std::string& number, const std::string& fields)
{
  return number + "  " + fields + " " + anyTimecodes + "\n";
}

inline std::vector<std::string> reels(const List& list)
{
  std::vector<std::string> result;
  for (const Clip& clip : list.clips)
    result.push_back(clip.reel);
  return result;
}

inline std::set<std::string> distinctReels(const List& list)
{
  const std::vector<std::string> all = reels(list);
  return {all.begin(), all.end()};
}

inline std::vector<std::string> clipNames(const List& list)
{
  std::vector<std::string> result;
  for (const Clip& clip : list.clips)
    result.push_back(clip.clipName);
  return result;
}

inline std::vector<std::string> sourceFiles(const List& list)
{
  std::vector<std::string> result;
  for (const Clip& clip : list.clips)
    result.push_back(clip.sourceFile);
  return result;
}

inline int specialLines(const List& list)
{
  int count = 0;
  for (const Special& special : list.specials)
    count += special.count;
  return count;
}

/// How many lines of the list went somewhere; Tally::lines when nothing is lost.
inline int accountedLines(const List& list)
{
  const Tally& tally = list.tally;
  return tally.blank + tally.headers + tally.notes + tally.statements + static_cast<int>(list.clips.size()) +
         specialLines(list) + static_cast<int>(list.rejected.size());
}

/// The bytes of a file; empty when there is none.
inline std::string fileBytes(const std::string& path)
{
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

using Strings = std::vector<std::string>;

} // namespace reeldb::lists::test

#endif
