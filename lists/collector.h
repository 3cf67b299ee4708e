// SPDX-License-Identifier: Apache-2.0
//
// Puts a List together: the rules that hold for every clip, whatever format it comes from.
#ifndef REELDB_LISTS_COLLECTOR_H
#define REELDB_LISTS_COLLECTOR_H

#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "lists/list.h"

namespace reeldb::lists {

class Collector {
public:
  explicit Collector(Format format) { list_.format = format; }

  List& list() { return list_; }

  /// Takes a clip with its identifier decided and its aliases in any number and state; `text` is its line. It becomes
  /// a clip, a special if the identifier makes no reel, or a rejected line if one of its names is too long or holds a
  /// control character. Returns true for a clip. The clip gets the spelling that its reel had first, and aliases that
  /// are not another name are removed. Warns of an in point behind its out point.
  bool clip(Clip clip, std::string_view text);

  /// Takes a clip that has no source: the reel is the text in place of one, in any state. A name that cannot be kept
  /// is removed, because the clip does not need it.
  void special(Clip clip, std::string_view reason);
  /// Why clip() would reject the clip; empty if it would not.
  static std::string fault(const Clip& clip);
  void reject(int line, std::string_view text, std::string reason);
  /// Notes that a line gives this rate, or that it begins drop frame, unless an earlier line has done so. clip() notes
  /// what the clip itself says.
  void rate(const std::string& rate, int line, std::string_view text);
  void dropFrame(int line, std::string_view text);
  /// Adds a warning about a line that is kept.
  void warn(int line, std::string_view text, std::string reason);

  /// The spelling that clips of this reel carry; the name itself when no clip has it.
  const std::string& spelling(const std::string& reel) const;

  /// The list, with the rejected lines and the warnings in order; to be called once.
  List finish();

private:
  void warnOfOrder(const Clip& clip, std::string_view text);
  /// Notes what the clip says of how its timecodes count.
  void noteTiming(Clip& clip, std::string_view text);
  /// A timecode that drop frame leaves out at one of its rates.
  struct DroppedLabel {
    int line = 0;
    std::string text; ///< of the line, as in Warning
    std::string name; ///< "source in"
    std::string timecode;
    std::string clipRate; ///< empty if the clip has none of its own
  };
  void noteDroppedLabels(const Clip& clip, std::string_view text);
  /// Whether frames prove the higher rate for the clips in drop frame without a rate.
  bool provesRate() const;
  /// Gives them that rate.
  void proveRate();
  /// Only the whole list says at which rate a timecode counts.
  void warnOfDroppedLabels();

  List list_;
  int mostDropFrames_ = 0; ///< of the clips in drop frame without a rate
  std::optional<Proof>
      higherDropFrame_; ///< the first timecode in drop frame, of a clip without a rate, that only the higher rate has
  std::vector<DroppedLabel> droppedLabels_;
  std::unordered_map<std::string, std::string> spellings_; ///< folded name to the spelling used first
  std::unordered_set<std::string> otherSpellings_;         ///< reported
  std::unordered_map<std::string, std::size_t> specials_;  ///< folded text and reason to the entry
};

} // namespace reeldb::lists

#endif
