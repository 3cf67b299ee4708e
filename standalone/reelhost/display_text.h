// SPDX-License-Identifier: Apache-2.0
/// @file
/// Text that is safe to show on a terminal. Identifiers, names and paths come from lists and other people, and may
/// contain escape sequences, which must not reach a terminal. Every message and every line of the journal goes through
/// displayText. Any thread.
#ifndef REELHOST_DISPLAY_TEXT_H
#define REELHOST_DISPLAY_TEXT_H

#include <string>
#include <string_view>

/// The standalone host: facilities, projects, and operations for applications.
namespace reelhost {

/// Whether displayText escapes the character: a control character, a mark that changes the direction of writing, or a
/// character that ends a line.
bool isShownEscaped(char32_t c);

/// The text as valid UTF-8 without characters that isShownEscaped. These become `\n`, `\x1b`, `\u009b` and `\u202e`;
/// bytes that are not UTF-8 become `\xff`. Everything else stays, backslashes too, so a second call changes nothing.
std::string displayText(std::string_view text);

/// Why the text must not be stored as it is: "it is not UTF-8" or "it holds a control character". Empty if it may. The
/// result stays valid until the process ends. Marks of direction belong to some languages and are not a flaw.
std::string_view textFlaw(std::string_view text);

/// Whether the text holds a control character (U+0000 to U+001F, U+007F to U+009F). The text need not be UTF-8.
bool holdsControlCharacter(std::string_view text);

} // namespace reelhost

#endif
