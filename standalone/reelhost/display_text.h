// SPDX-License-Identifier: Apache-2.0
/// @file
/// Text as it may be shown. Identifiers, names and paths are data from lists and other people: one that carries an
/// escape sequence must not move anybody's cursor. Every message and every line of the journal goes through here. Any
/// thread.
#ifndef REELHOST_DISPLAY_TEXT_H
#define REELHOST_DISPLAY_TEXT_H

#include <string>
#include <string_view>

/// The standalone host: facilities, projects, and what it does for an application.
namespace reelhost {

/// Whether the character is shown by an escape: a control character, a mark that changes the direction of writing, or
/// one that ends a line.
bool isShownEscaped(char32_t c);

/// The text as valid UTF-8 without characters that isShownEscaped. These are written as `\n`, `\x1b`, `\u009b` and
/// `\u202e`, bytes that are no UTF-8 as `\xff`. Everything else, backslashes too, stays as it is, so that doing it
/// twice does no harm.
std::string displayText(std::string_view text);

/// Why the text cannot be shown and handed on as it is: "it is not UTF-8" or "it holds a control character"; empty when
/// it can. What it answers stays for good. Marks of direction are part of some languages and are no flaw.
std::string_view textFlaw(std::string_view text);

/// Whether a control character (U+0000 to U+001F, U+007F to U+009F) is in the text, which need not be UTF-8.
bool holdsControlCharacter(std::string_view text);

} // namespace reelhost

#endif
