// SPDX-License-Identifier: Apache-2.0
#include "journal/describe.h"

#include <cstdio>

#include "host/text.h"
#include "reelhost/display_text.h"

namespace reelhost {

std::string quoted(std::string_view text)
{
  std::string marked;
  for (const char c : text) {
    if (c == '"' || c == '\\')
      marked += '\\';
    marked += c;
  }
  return '"' + displayText(marked) + '"';
}

std::string describe(Word word)
{
  return word.text;
}

std::string describe(const char* text)
{
  return text ? quoted(text) : "null";
}

std::string describe(const wchar_t* text)
{
  return text ? describe(LightweightString<wchar_t>(text)) : "null";
}

std::string describe(const std::string& text)
{
  return reelhost::quoted(text); // there is a std::quoted, too
}

std::string describe(const LightweightString<char>& text)
{
  return quoted(text.c_str());
}

std::string describe(const LightweightString<wchar_t>& text)
{
  return quoted(toUTF8(text).c_str());
}

std::string describe(const strp_field& field)
{
  return describe(field.text());
}

std::string describe(const Cookie& cookie)
{
  return cookie.asString(false).c_str();
}

std::string describe(const CookieVec& cookies)
{
  return std::to_string(cookies.count()) + (cookies.count() == 1 ? " log" : " logs");
}

std::string describe(const StringList& list)
{
  std::string text = "[";
  for (unsigned i = 0; i < list.count(); ++i) {
    if (i)
      text += ", ";
    text += describe(list[i]);
  }
  return text += ']';
}

std::string describe(const Edit* opened)
{
  return opened ? "opened" : "not opened";
}

std::string describe(const projdb* database)
{
  return database ? "database" : "null";
}

std::string describe(const dbrecord* row)
{
  return row ? "row" : "null";
}

std::string describe(double number)
{
  char text[32];
  std::snprintf(text, sizeof text, "%.17g", number);
  std::string described = text;
  if (described.find_first_not_of("-0123456789") == std::string::npos)
    described += ".0";
  return described;
}

std::string describe(bool truth)
{
  return truth ? "true" : "false";
}

} // namespace reelhost
