// SPDX-License-Identifier: Apache-2.0
//
// A parameter's name, a line feed, and a parameter string of any bytes: the catalogue finds the value that the string
// has for the name, changes nothing if there is no value, and splits a single token in the same way.
#include <cstdint>

#include "ReelTypeManager.h"
#include "models/reel_types.h"
#include "support/bytes.h"
#include "support/check.h"

namespace {

using namespace reeldb_fuzz;

constexpr int untouched = -123456789;
constexpr char typeName[] = "the type";

/// The result of the catalogue: the value, or empty.
template <class Question>
std::optional<int> answerOf(const Question& question)
{
  int value = untouched;
  if (question(value))
    return value;
  requireEqual(value, untouched, "value where nothing was found");
  return {};
}

std::string shownAnswer(const std::optional<int>& answer)
{
  return answer ? std::to_string(*answer) : "nothing";
}

void requireAnswer(const std::optional<int>& got, const std::optional<int>& wanted, const char* what)
{
  require(got == wanted, what, "is", shownAnswer(got).c_str(), "and should be", shownAnswer(wanted).c_str());
}

std::string otherCase(std::string text)
{
  for (char& c : text)
    if ((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'))
      c = static_cast<char>(c ^ 0x20);
  return text;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
  const std::string bytes = allOf(data, size);
  const std::size_t lineFeed = std::min(bytes.find('\n'), bytes.size());
  const std::string nameText = upToNul(bytes.substr(0, lineFeed));
  const std::string text = upToNul(bytes.substr(std::min(lineFeed + 1, bytes.size())));
  const std::string params = chopped(text);

  ReelTypeManager types;
  types.rep()->discardAll();
  types.add(typeName, text.c_str());
  requireEqual(std::string(types.at(0).value.c_str()), params, "parameters as stored");

  const LightweightString<char> name(nameText.c_str());
  const auto ask = [&](const LightweightString<char>& wanted) {
    return answerOf([&](int& value) { return types.getReelParam(typeName, wanted, value); });
  };
  requireAnswer(ask(name), valueInParams(params, nameText), "value in the parameters");
  requireAnswer(ask(otherCase(nameText).c_str()), valueInParams(params, nameText), "value by the name in other case");
  requireEqual(std::string(types.at(0).value.c_str()), params, "parameters after asking");

  const LightweightString<char> token(text.c_str());
  requireAnswer(answerOf([&](int& value) { return types.parseParamToken(token, name, value); }),
                valueInToken(text, nameText), "value in the token");
  requireEqual(std::string(token.c_str()), text, "the caller's token afterwards");
  requireEqual(std::string(name.c_str()), nameText, "the caller's name afterwards");

  // An undefined type has no value, and looking it up adds it.
  require(!types.rep()->find("another type"), "a type that was not asked for yet is listed");
  requireAnswer(answerOf([&](int& value) { return types.getReelParam("another type", name, value); }), {},
                "value in a type that nobody defined");
  require(bool(types.rep()->find("another type")), "a type that was asked for is not listed");
  requireEqual(types.rep()->count(), 2U, "types listed");
  return 0;
}
