// SPDX-License-Identifier: Apache-2.0
//
// What the readers of timeline files share: their clips have no line of their own, their times are fractions of a
// second, the picture and the sound of one clip stand on several tracks, and a source often has a file and no reel.
#ifndef REELDB_LISTS_TIMELINE_H
#define REELDB_LISTS_TIMELINE_H

#include <cstddef>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "lists/collector.h"
#include "lists/list.h"
#include "lists/seconds.h"

namespace reeldb::lists {

/// The most levels that a timeline file may have within each other.
inline constexpr int mostLevels = 512;

/// The most clips of one timeline file.
inline constexpr std::size_t mostTimelineClips = 1'000'000;

/// A range of time. Both ends are empty, or neither is.
struct TimeRange {
  std::optional<Seconds> in, out;
  std::optional<Counting> counting; ///< how its timecodes count; empty if nothing says so
};

/// What this program wrote of a clip beside its times. Another program may have changed the times since.
struct WrittenClip {
  int number = 0; ///< of the clip: its copies on other tracks have the same
  std::string tracks;
  int videoChannels = 0;
  int audioChannels = 0;
  std::string sourceIn, sourceOut, recordIn, recordOut;
  std::string frameRate;
  bool dropFrame = false;
  std::string cameraRoll, soundOf;
};

/// A clip as a timeline file has it. Texts may be in any state.
struct TimelineClip {
  int line = 0;
  std::string what; ///< what it is in the file: "clip", "asset-clip"
  std::string name;
  std::string reel;          ///< of its source, if the file says it
  std::size_t reelField = 0; ///< the field that the reel fills, if it comes from a cut list
  std::string file;          ///< of its source: a path or a name
  std::vector<std::string> aliases;
  std::vector<SourceId> ids;
  TimeRange source, record;
  bool picture = false;
  std::set<int> sound; ///< the numbers of its sound tracks
  std::string place;   ///< clips of different places are different clips
  std::vector<std::string> doubts;
  std::optional<WrittenClip> written; ///< its reel and its aliases are then those of the clip, whatever its file is
};

class Timeline {
public:
  explicit Timeline(Format format) : collector_(format) {}

  /// Takes a clip. The sound of a clip becomes one clip with its picture if everything but the tracks is equal.
  void clip(TimelineClip clip);
  /// Takes something that has no source: a gap, a title, a nested sequence.
  void special(TimelineClip clip, std::string_view reason);
  void reject(const TimelineClip& clip, std::string reason);
  void warn(int line, std::string_view text, std::string reason) { collector_.warn(line, text, std::move(reason)); }
  void title(std::string_view title);
  /// The list; to be called once. @p text is the whole file.
  List finish(std::string_view text);

private:
  void requireRoom();
  void report(TimelineClip clip);
  Clip clipOf(TimelineClip& clip);
  void setSource(TimelineClip& from, Clip& clip) const;
  void setRecord(TimelineClip& from, Clip& clip) const;
  void setTimes(const TimeRange& range, const std::string& what, std::string& in, std::string& out,
                std::vector<std::string>& doubts) const;
  void reportSameNames();

  Collector collector_;
  std::vector<TimelineClip> clips_;
  std::vector<std::pair<TimelineClip, std::string>> specials_; ///< with their reasons
  std::size_t rejected_ = 0;
  std::unordered_map<std::string, std::size_t> linked_; ///< the place in clips_ by all but the tracks
  std::map<std::string, std::pair<std::string, std::vector<std::string>>>
      filesOfNames_; ///< folded names of sources without a reel, with their spelling and the ids of their files
};

/// The path or name that a URL of a medium means: "file://localhost/D%3a/a.mov" is "/D:/a.mov". A text that is not a
/// URL is a path already.
std::string pathOfUrl(std::string_view url);

/// The text of an element or a value, without outer white space of any kind.
std::string_view trimWhite(std::string_view text);

} // namespace reeldb::lists

#endif
