// SPDX-License-Identifier: Apache-2.0
//
// Results of operations as JSON, and back: for reports, for export, and for other programs. A key is never removed and
// never changes its name, type or meaning; keys may be added. Sentences for people ("reason", "why") may be reworded.
#ifndef REELDB_APP_JSON_JSON_H
#define REELDB_APP_JSON_JSON_H

#include <string>
#include <string_view>

namespace reeldb::app {

/// The result as JSON text with a line end, indented by two blanks. Bytes that are not UTF-8 become U+FFFD; characters
/// that must not reach a terminal are written as \u009b and the like, which means the same. T is a result of this room,
/// or a std::vector of one.
template <class T>
std::string jsonText(const T& result);

/// The same in one line.
template <class T>
std::string jsonLine(const T& result);

/// Reads a result from such a text, as far as the text contains it: for example, a report of an import counts the clips
/// and does not list them. Throws Error (Unreadable) for a text that is not JSON or not of that result: a missing key,
/// or a value of another type. Unknown keys are ignored. This room reads a ProjectState; a source that reads another
/// result includes from_json.h.
template <class T>
T fromJson(std::string_view text);

} // namespace reeldb::app

#endif
