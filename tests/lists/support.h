// SPDX-License-Identifier: Apache-2.0
//
// What the tests of the list readers share.
#ifndef REELDB_TESTS_LISTS_SUPPORT_H
#define REELDB_TESTS_LISTS_SUPPORT_H

#include <fstream>
#include <iterator>
#include <set>
#include <sstream>
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
  std::set<int> lines; // a row with a sound roll is two clips
  for (const Clip& clip : list.clips)
    lines.insert(clip.line);
  return tally.blank + tally.headers + tally.notes + tally.statements + static_cast<int>(lines.size()) +
         specialLines(list) + static_cast<int>(list.rejected.size());
}

/// All that an event says, as a text for comparisons: without its line, and without the reel text and its field, which
/// another list may write in another way.
inline std::string eventText(const Clip& clip)
{
  std::ostringstream text;
  text << clip.reel << '|' << clip.clipName << '|' << clip.sourceFile << '|' << clip.tracks << '|' << clip.sourceIn
       << '|' << clip.sourceOut << '|' << clip.recordIn << '|' << clip.recordOut << '|' << clip.frameRate << '|'
       << clip.dropFrame << '|' << clip.videoChannels << '|' << clip.audioChannels << '|' << clip.special << '|'
       << clip.event.number << '|' << clip.event.part << '|' << clip.event.transition << '|' << clip.event.duration;
  for (const std::string& alias : clip.aliases)
    text << "|alias " << alias;
  if (clip.event.speed)
    text << "|speed " << clip.event.speed->framesPerSecond << ' ' << clip.event.speed->timecode;
  for (const SourceId& id : clip.event.sourceIds)
    text << '|' << id.kind << ' ' << id.id;
  return text.str();
}

inline std::vector<std::string> eventTexts(const std::vector<Clip>& clips)
{
  std::vector<std::string> result;
  for (const Clip& clip : clips)
    result.push_back(eventText(clip));
  return result;
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
