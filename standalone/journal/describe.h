// SPDX-License-Identifier: Apache-2.0
//
// How the journal writes arguments and results.
#ifndef REELHOST_JOURNAL_DESCRIBE_H
#define REELHOST_JOURNAL_DESCRIBE_H

#include <string>
#include <string_view>
#include <type_traits>

#include "host/action.h"
#include "host/config.h"
#include "host/containers.h"
#include "host/cookie.h"
#include "host/device.h"
#include "host/edit.h"
#include "host/projdb.h"

namespace reelhost {

/// Words that are written unchanged because they are not a text of the call, such as "char*" for an out-argument.
struct Word {
  const char* text;
};

/// The text in double quotes, as displayText writes it, and with a backslash before quotes and backslashes.
std::string quoted(std::string_view text);

std::string describe(Word word);
std::string describe(const char* text);    ///< quoted, or `null`
std::string describe(const wchar_t* text); ///< likewise, as UTF-8
std::string describe(const std::string& text);
std::string describe(const LightweightString<char>& text);
std::string describe(const LightweightString<wchar_t>& text);
std::string describe(const strp_field& field); ///< its text, or `null`
std::string describe(const Cookie& cookie);
std::string describe(const CookieVec& cookies);      ///< their number
std::string describe(const StringList& list);        ///< `["a", "b"]`
std::string describe(const ExtDeviceConfig& device); ///< its name
std::string describe(const IdStamp& stamp);          ///< `IdStamp` and its number
std::string describe(const Edit* opened);            ///< `opened` or `not opened`
std::string describe(const projdb* database);        ///< `database` or `null`
std::string describe(const dbrecord* row);           ///< `row` or `null`
std::string describe(double number);                 ///< with at least one digit after the point
std::string describe(bool truth);

template <class T>
requires(std::is_integral_v<T> || std::is_enum_v<T>) std::string describe(T number)
{
  return std::to_string(static_cast<long long>(number));
}

/// `object` or `null`.
template <class T>
std::string describe(const Zr::Ptr<T>& object)
{
  return object ? "object" : "null";
}

/// The arguments of an operation without arguments.
inline constexpr auto noArguments = [] { return std::string(); };

/// The descriptions, separated by ", ".
template <class First, class... Rest>
std::string describeAll(const First& first, const Rest&... rest)
{
  std::string text = describe(first);
  ((text += ", ", text += describe(rest)), ...);
  return text;
}

} // namespace reelhost

#endif
