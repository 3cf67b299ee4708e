// SPDX-License-Identifier: Apache-2.0
/// @file
/// The lists that were imported into a project, as the project keeps them. Main thread only.
#ifndef REELHOST_LISTS_H
#define REELHOST_LISTS_H

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "reelhost/material.h"

namespace reelhost {

/// The SHA-256 digest of a list's bytes.
using Digest = std::array<unsigned char, 32>;
Digest digestOf(std::string_view bytes);

/// One event line of a list. A shot that a list uses twice has two events. Texts are as the list has them, whatever the
/// shot has become since; a text that the list does not give is empty.
struct ListEvent {
  std::int64_t shot = 0;     ///< the number of its shot's log; 0: the line has no source, and no shot
  int line = 0;              ///< of the list, counted from 1
  Material clip;             ///< the shot as the list gives it
  std::string special;       ///< why the line has no source: "black"
  std::string number;        ///< the number of the event
  int part = 1;              ///< the place of the line in its event, from 1
  std::string reelText;      ///< the text in the reel field; clip.reel is derived from it
  int reelField = 0;         ///< the width of the list's reel field; 0: unknown
  std::string transition;    ///< its code: "C", "D", "W001"
  std::string duration;      ///< of the transition, in frames
  std::string speed;         ///< in frames per second: "-024.0"
  std::string speedTimecode; ///< of the source, where the speed begins
  std::string sourceIds;     ///< the ids of the source, one per line: the kind, a tab, the id

  friend bool operator==(const ListEvent& a, const ListEvent& b)
  {
    return std::tie(a.shot, a.line, a.clip, a.special, a.number, a.part, a.reelText, a.reelField, a.transition,
                    a.duration, a.speed, a.speedTimecode, a.sourceIds) ==
           std::tie(b.shot, b.line, b.clip, b.special, b.number, b.part, b.reelText, b.reelField, b.transition,
                    b.duration, b.speed, b.speedTimecode, b.sourceIds);
  }
  friend bool operator!=(const ListEvent& a, const ListEvent& b) { return !(a == b); }
};

/// A list that was imported. No text holds NUL.
struct KeptList {
  std::int64_t number = 0;       ///< 1, 2, 3, ... in the order of the first import; never used twice
  Digest digest{};               ///< of its bytes
  std::string file;              ///< the name of its file, without folders
  std::string title;             ///< empty if it has no title
  std::string format;            ///< "edl", "ale"
  std::int64_t eventCount = 0;   ///< stores take it from events
  std::vector<ListEvent> events; ///< in the order of the list; empty where only the head of the list is read

  friend bool operator==(const KeptList& a, const KeptList& b)
  {
    return std::tie(a.number, a.digest, a.file, a.title, a.format, a.eventCount, a.events) ==
           std::tie(b.number, b.digest, b.file, b.title, b.format, b.eventCount, b.events);
  }
  friend bool operator!=(const KeptList& a, const KeptList& b) { return !(a == b); }
};

/// What a store keeps of imported lists. Bytes are kept once for each digest, as long as a list or the history names
/// it. REQUIRES for all functions: a use of the store was begun. Throws Error: Unreadable if the data are damaged, Io.
/// Exceptions of a sink pass through.
class Lists {
public:
  virtual ~Lists() = default;

  virtual std::int64_t nextListNumber() = 0; ///< one more than the highest number ever used
  /// Reads the lists without their events, by number.
  virtual void readListHeads(const std::function<void(KeptList&&)>& sink) = 0;
  /// The events of the list. Throws Error (NotFound) if there is no such list.
  virtual std::vector<ListEvent> eventsOf(std::int64_t list) = 0;
  /// The bytes with this digest. Throws Error (NotFound) if there are none.
  virtual std::string listBytes(const Digest& digest) = 0;
};

} // namespace reelhost

#endif
